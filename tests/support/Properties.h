#pragma once

#include <QMetaProperty>
#include <QStringList>

/// The properties that a class adds to those of its base, in order: "type name access notifier".
template <class Object>
QStringList propertiesOf()
{
    QStringList all;
    const QMetaObject &meta = Object::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        all.append(QStringLiteral("%1 %2 %3 %4")
                       .arg(QString::fromLatin1(property.typeName()), QString::fromLatin1(property.name()),
                           property.isWritable() ? QStringLiteral("read-write") : QStringLiteral("read"),
                           QString::fromLatin1(property.notifySignal().methodSignature())));
    }
    return all;
}
