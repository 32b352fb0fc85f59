#pragma once

#include <QMatrix3x3>
#include <QQuaternion>
#include <QVector3D>

/// Comparisons to the last bit, where Qt's own operators might be fuzzy. A NaN differs from everything.
namespace exactly {

inline bool equal(const QVector3D &a, const QVector3D &b)
{
    return a.x() == b.x() && a.y() == b.y() && a.z() == b.z();
}

inline bool equal(const QQuaternion &a, const QQuaternion &b)
{
    return a.scalar() == b.scalar() && equal(a.vector(), b.vector());
}

inline bool equal(const QMatrix3x3 &a, const QMatrix3x3 &b)
{
    for (int i = 0; i < 9; ++i) {
        if (!(a.constData()[i] == b.constData()[i]))
            return false;
    }
    return true;
}

} // namespace exactly
