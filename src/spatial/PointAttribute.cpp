#include "spatial/PointAttribute.h"

#include <limits>

using Qt3DRender::QAttribute;

namespace pointAttribute {

QAttribute *add(Qt3DRender::QGeometry *geometry, Qt3DRender::QBuffer *buffer, const QString &name, int count)
{
    auto *attribute = new QAttribute;
    attribute->setName(name);
    attribute->setVertexBaseType(QAttribute::Float);
    attribute->setVertexSize(3);
    attribute->setAttributeType(QAttribute::VertexAttribute);
    attribute->setBuffer(buffer);
    attribute->setByteStride(12);
    attribute->setByteOffset(0);
    attribute->setCount(static_cast<uint>(count));
    geometry->addAttribute(attribute);
    return attribute;
}

QByteArray filledUp(QByteArray bytes, int count)
{
    constexpr int bytesPerPoint = 12;
    const qint64 needed = qint64(count) * bytesPerPoint;
    if (bytes.size() < needed && needed < std::numeric_limits<int>::max())
        bytes.append(static_cast<int>(needed) - bytes.size(), '\0');
    return bytes;
}

void setCount(const Qt3DRender::QGeometry *geometry, const QString &name, int count)
{
    const QVector<QAttribute *> attributes = geometry->attributes();
    for (QAttribute *attribute : attributes) {
        if (attribute->attributeType() == QAttribute::VertexAttribute && attribute->name() == name)
            attribute->setCount(static_cast<uint>(count));
    }
}

} // namespace pointAttribute
