#include "app/CommandLine.h"

#include "support/LogCatcher.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

struct Level {
    int level;
    QStringList log;
};

Level levelOf(const QStringList &arguments)
{
    CommandLine commandLine;
    commandLine.process(QStringList{QStringLiteral("viewer")} + arguments);
    const LogCatcher log;
    const int level = commandLine.debugLevel();
    return {level, log.lines()};
}

Level levelOf(const char *value)
{
    return levelOf({QStringLiteral("-d"), QString::fromLatin1(value)});
}

} // namespace

TEST(CommandLine, defaultsAreLevelTwoAndNoFlags)
{
    CommandLine commandLine;
    commandLine.process({QStringLiteral("viewer")});
    EXPECT_FALSE(commandLine.console());
    EXPECT_FALSE(commandLine.advanced());
    const Level absent = levelOf(QStringList());
    EXPECT_EQ(absent.level, 2);
    EXPECT_THAT(absent.log, IsEmpty());
}

TEST(CommandLine, levelsZeroToSixAreTaken)
{
    for (int level = 0; level <= 6; ++level) {
        const Level taken = levelOf(QByteArray::number(level).constData());
        EXPECT_EQ(taken.level, level);
        EXPECT_THAT(taken.log, IsEmpty());
    }
    EXPECT_EQ(levelOf({QStringLiteral("--debug"), QStringLiteral("5")}).level, 5);
    EXPECT_EQ(levelOf({QStringLiteral("--debug=4")}).level, 4);
}

TEST(CommandLine, anyOtherLevelIsReportedAndCountsAsTwo)
{
    for (const char *value : {"7", "-1", "abc", "", "1.5", "0x3", "4294967296", "2147483648"}) {
        const Level refused = levelOf(value);
        EXPECT_EQ(refused.level, 2) << value;
        EXPECT_THAT(refused.log,
            ElementsAre(QStringLiteral("debug: Invalid debug level:  \"%1\"").arg(QLatin1String(value))));
    }
}

TEST(CommandLine, flagsAreRead)
{
    CommandLine shortNames;
    shortNames.process({QStringLiteral("viewer"), QStringLiteral("-c"), QStringLiteral("-a")});
    EXPECT_TRUE(shortNames.console());
    EXPECT_TRUE(shortNames.advanced());
    CommandLine longName;
    longName.process({QStringLiteral("viewer"), QStringLiteral("--advanced")});
    EXPECT_TRUE(longName.advanced());
}
