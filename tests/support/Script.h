#pragma once

#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlError>
#include <QQmlExpression>
#include <QVariant>
#include <gtest/gtest.h>

/// Calls an object as QML does: values are JavaScript's on one side and the declared types on the other.
class Script {
public:
    /// The object is known to the scripts by `name` and stays with its owner.
    Script(const QString &name, QObject &object)
    {
        QQmlEngine::setObjectOwnership(&object, QQmlEngine::CppOwnership);
        m_engine.rootContext()->setContextProperty(name, &object);
    }

    /// The value of a JavaScript expression; an error of the script is a failure of the test.
    QVariant operator()(const QString &text)
    {
        QQmlExpression expression(m_engine.rootContext(), nullptr, text);
        const QVariant value = expression.evaluate();
        if (expression.hasError())
            ADD_FAILURE() << text.toStdString() << ": " << expression.error().toString().toStdString();
        return value;
    }

private:
    QQmlEngine m_engine;
};
