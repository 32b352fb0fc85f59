#pragma once

#include "imaging/DepthProbe.h"
#include <QStringList>

/// A depth stream that does as it is told and remembers what it was asked.
class FakeProbe : public QObject, public DepthProbe {
    Q_OBJECT
    Q_INTERFACES(DepthProbe)

public:
    bool isRunning() const override { return running; }
    void setObjectX(int x) override { asked.append(QStringLiteral("x %1").arg(x)); }
    void setObjectY(int y) override { asked.append(QStringLiteral("y %1").arg(y)); }
    int objectDepth() const override { return depth; }

    bool running = true;
    int depth = 1234;
    QStringList asked;
};
