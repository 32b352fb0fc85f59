#include "device/HidChannel.h"

#include "device/CameraDevice.h"
#include "support/FakeDevice.h"
#include "support/LogCatcher.h"

#include <QMetaMethod>

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

using Bytes = std::vector<unsigned char>;

Bytes padded(Bytes bytes)
{
    bytes.resize(63, 0);
    return bytes;
}

/// A device object on a fake device, and what its log says from the exchange on.
class HidChannelTest : public testing::Test {
protected:
    QString send(const QString &text)
    {
        const LogCatcher log;
        const QString reply = m_camera.sendHid(text);
        m_log = log.lines();
        return reply;
    }

    QString glassLog()
    {
        const LogCatcher log;
        const QString reply = m_camera.getGlassLog();
        m_log = log.lines();
        return reply;
    }

    const std::shared_ptr<FakeDeviceEx> m_device = std::make_shared<FakeDeviceEx>();
    CameraDevice m_camera{m_device, nullptr};
    QStringList m_log;
};

} // namespace

TEST_F(HidChannelTest, emptyTextSendsZeros)
{
    send(QString());
    EXPECT_THAT(m_device->hidCommands, ElementsAre(padded({})));
    EXPECT_EQ(m_device->hidResult, padded({}));
    EXPECT_THAT(m_log, IsEmpty());
}

TEST_F(HidChannelTest, blanksDoNotCount)
{
    send(QStringLiteral("02 fe 55 04"));
    send(QStringLiteral("02fe5504"));
    send(QStringLiteral(" 0 2F E5504  "));
    const Bytes expected = padded({0x02, 0xFE, 0x55, 0x04});
    EXPECT_THAT(m_device->hidCommands, ElementsAre(expected, expected, expected));
}

TEST_F(HidChannelTest, otherWhiteSpaceStaysAndShiftsTheTokens)
{
    // "\tf" is a number with white space before it, which is no error.
    send(QStringLiteral("02\tfe 55"));
    EXPECT_THAT(m_device->hidCommands, ElementsAre(padded({0x02, 0x0F, 0xE5, 0x05})));
    EXPECT_THAT(m_log, IsEmpty());
}

TEST_F(HidChannelTest, singleLastDigitIsAByte)
{
    send(QStringLiteral("abc"));
    EXPECT_THAT(m_device->hidCommands, ElementsAre(padded({0xAB, 0x0C})));
}

TEST_F(HidChannelTest, signedTokenIsTaken)
{
    send(QStringLiteral("+1-1"));
    EXPECT_THAT(m_device->hidCommands, ElementsAre(padded({0x01, 0xFF})));
}

TEST_F(HidChannelTest, sixtyThreeBytesAreTheLimit)
{
    send(QString(126, QLatin1Char('7')));
    EXPECT_THAT(m_device->hidCommands, ElementsAre(Bytes(63, 0x77)));
    m_device->hidCommands.clear();

    EXPECT_EQ(send(QString(127, QLatin1Char('7'))), QString());
    EXPECT_THAT(m_log, ElementsAre(QStringLiteral("debug: This command is too long!")));
    EXPECT_THAT(m_device->hidCommands, IsEmpty());
}

TEST_F(HidChannelTest, tooLongIsReportedBeforeBadDigits)
{
    send(QString(127, QLatin1Char('z')));
    EXPECT_THAT(m_log, ElementsAre(QStringLiteral("debug: This command is too long!")));
}

TEST_F(HidChannelTest, badDigitsAreRefused)
{
    for (const char *text : {"zz", "02 fe xx", "0x", "02\nfz"}) {
        EXPECT_EQ(send(QString::fromLatin1(text)), QString());
        EXPECT_THAT(
            m_log, ElementsAre(QStringLiteral("debug: Parsing failed, Please send command correctly!")));
    }
    EXPECT_THAT(m_device->hidCommands, IsEmpty());
}

TEST_F(HidChannelTest, onlyBlanksAreRemoved)
{
    send(QStringLiteral("\n02"));
    EXPECT_THAT(m_device->hidCommands, ElementsAre(padded({0x00, 0x02})));
}

TEST_F(HidChannelTest, replyIsPairsWithABlankEach)
{
    m_device->hidAnswer = padded({0x02, 0xFE, 0x0A, 0xFF});
    const QString reply = send(QStringLiteral("01"));
    EXPECT_EQ(reply.size(), 189);
    EXPECT_EQ(reply.left(15), QStringLiteral("02 fe 0a ff 00 "));
    EXPECT_EQ(reply.right(6), QStringLiteral("00 00 "));
}

TEST_F(HidChannelTest, replyOfAnyLengthIsShown)
{
    m_device->hidAnswer = {};
    EXPECT_EQ(send(QStringLiteral("01")), QString());
    m_device->hidAnswer = Bytes(64, 0x11);
    EXPECT_EQ(send(QStringLiteral("01")).size(), 192);
}

TEST_F(HidChannelTest, refusedExchangeIsReported)
{
    m_device->hidSucceeds = false;
    m_device->hidAnswer = Bytes(63, 'x');
    EXPECT_EQ(send(QStringLiteral("01")), QString());
    EXPECT_THAT(m_log, ElementsAre(QStringLiteral("debug: hidWriteAndRead fail!")));
    EXPECT_EQ(glassLog(), QString());
    EXPECT_THAT(m_log, ElementsAre(QStringLiteral("debug: hidWriteAndRead fail!")));
}

TEST_F(HidChannelTest, withoutADeviceThereIsNoExchange)
{
    CameraDevice none(nullptr, nullptr);
    const LogCatcher log;
    EXPECT_EQ(none.sendHid(QStringLiteral("01")), QString());
    EXPECT_EQ(none.getGlassLog(), QString());
    EXPECT_THAT(log.lines(),
        ElementsAre(QStringLiteral("debug: m_device is null!"), QStringLiteral("debug: m_device is null!")));
}

TEST_F(HidChannelTest, glassLogSendsItsFixedCommand)
{
    glassLog();
    EXPECT_THAT(m_device->hidCommands, ElementsAre(padded({0x02, 0xFE, 0x55, 0x04})));
    EXPECT_EQ(m_device->hidResult, padded({}));
}

TEST_F(HidChannelTest, glassLogIsTheTextBehindTheHeader)
{
    m_device->hidAnswer = padded({1, 2, 3, 4, 'H', 'i', '\n', 0xE4});
    const QString text = glassLog();
    // The walk goes to the end of the reply: zeros follow the text.
    EXPECT_EQ(text.size(), 59);
    EXPECT_EQ(text.left(4), QStringLiteral("Hi\nä"));
    EXPECT_EQ(text.mid(4), QString(55, QChar(0)));
    EXPECT_THAT(m_log, IsEmpty());
}

TEST_F(HidChannelTest, glassLogWithoutTextIsEmpty)
{
    for (const Bytes &answer : {Bytes{1, 2, 3, 4, 0, 'i', 'j'}, Bytes{1, 2, 3, 4, 'H', 0, 'j'}}) {
        m_device->hidAnswer = padded(answer);
        EXPECT_EQ(glassLog(), QString());
        EXPECT_THAT(m_log, IsEmpty());
    }
}

TEST_F(HidChannelTest, glassLogReplyShorterThanSixBytesHasNoText)
{
    m_device->hidAnswer = {};
    EXPECT_EQ(glassLog(), QString());
    m_device->hidAnswer = {1, 2, 3, 4, 'H'};
    EXPECT_EQ(glassLog(), QString());
    m_device->hidAnswer = {1, 2, 3, 4, 'H', 'i'};
    EXPECT_EQ(glassLog(), QStringLiteral("Hi"));
}

TEST_F(HidChannelTest, documentsReachBoth)
{
    m_device->hidAnswer = {0x0B, 2, 3, 4, 'o', 'k'};
    QString reply;
    ASSERT_TRUE(QMetaObject::invokeMethod(
        &m_camera, "sendHid", Q_RETURN_ARG(QString, reply), Q_ARG(QString, QStringLiteral("1"))));
    EXPECT_EQ(reply, QStringLiteral("0b 02 03 04 6f 6b "));
    ASSERT_TRUE(QMetaObject::invokeMethod(&m_camera, "getGlassLog", Q_RETURN_ARG(QString, reply)));
    EXPECT_EQ(reply, QStringLiteral("ok"));
}
