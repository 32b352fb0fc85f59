#include "app/MessageLog.h"

#include <QDebug>

namespace {

std::string written(QtMsgType type, const QString &message)
{
    testing::internal::CaptureStderr();
    writeBareLine(type, QMessageLogContext("file.cpp", 12, "function", "category"), message);
    return testing::internal::GetCapturedStderr();
}

} // namespace

TEST(MessageLog, everyTypeIsABareLine)
{
    for (const QtMsgType type : {QtDebugMsg, QtWarningMsg, QtCriticalMsg, QtFatalMsg, QtInfoMsg})
        EXPECT_EQ(written(type, QStringLiteral("some %s text")), "some %s text\n");
}

TEST(MessageLog, unknownTypePrintsNothing)
{
    EXPECT_EQ(written(static_cast<QtMsgType>(17), QStringLiteral("text")), "");
}

TEST(MessageLog, textIsInTheLocalEncoding)
{
    const QString text = QStringLiteral("Öffnen");
    EXPECT_EQ(written(QtInfoMsg, text), text.toLocal8Bit().toStdString() + "\n");
}

TEST(MessageLog, installedHandlerTakesAllMessages)
{
    testing::internal::CaptureStderr();
    const QtMessageHandler previous = qInstallMessageHandler(nullptr);
    installMessageHandler();
    qDebug() << "a" << 1;
    qWarning("b");
    qCritical("c");
    qInfo("d");
    qInstallMessageHandler(previous);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "a 1\nb\nc\nd\n");
}

TEST(MessageLog, fatalIsABareLineToo)
{
    installMessageHandler();
    EXPECT_DEATH(qFatal("the end"), "^the end\n");
}
