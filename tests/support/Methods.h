#pragma once

#include <QMetaMethod>
#include <QStringList>

namespace methods {

/// The public methods of the wanted types that a class adds to those of its base: "type name(arguments)".
template <class Object, class Wanted>
QStringList ofClass(Wanted wanted)
{
    QStringList all;
    const QMetaObject &meta = Object::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.access() == QMetaMethod::Public && wanted(method.methodType()))
            all.append(QString::fromLatin1(method.typeName()) + QLatin1Char(' ')
                + QString::fromLatin1(method.methodSignature()));
    }
    return all;
}

} // namespace methods

/// In the order of their declaration.
template <class Object>
QStringList signalsOf()
{
    return methods::ofClass<Object>([](QMetaMethod::MethodType type) { return type == QMetaMethod::Signal; });
}

/// In the order of their declaration, those for the class alone marked as such.
template <class Object>
QStringList slotsOf()
{
    QStringList all;
    const QMetaObject &meta = Object::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.methodType() == QMetaMethod::Slot)
            all.append((method.access() == QMetaMethod::Public ? QString() : QStringLiteral("protected "))
                + QString::fromLatin1(method.typeName()) + QLatin1Char(' ')
                + QString::fromLatin1(method.methodSignature()));
    }
    return all;
}

/// What QML can call: slots and invokable methods, sorted.
template <class Object>
QStringList callablesOf()
{
    QStringList all = methods::ofClass<Object>([](QMetaMethod::MethodType type) {
        return type == QMetaMethod::Slot || type == QMetaMethod::Method;
    });
    all.sort();
    return all;
}
