#include "support/LogCatcher.h"

#include "spatial/SlamFixture.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// A local socket at a path of its own, which is left there.
class LocalSocket {
public:
    explicit LocalSocket(const QString &path)
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const QByteArray bytes = path.toLocal8Bit();
        if (m_socket < 0 || bytes.size() >= int(sizeof address.sun_path))
            return;
        std::memcpy(address.sun_path, bytes.constData(), std::size_t(bytes.size()));
        bound = bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    }
    LocalSocket(const LocalSocket &) = delete;
    LocalSocket &operator=(const LocalSocket &) = delete;
    ~LocalSocket() { close(m_socket); }

    bool bound = false;

private:
    const int m_socket = socket(AF_UNIX, SOCK_STREAM, 0);
};

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

/// With a temporary folder of the process's own, where maps lie by default.
class SlamMap : public Slam {
protected:
    SlamMap() { qputenv("TMPDIR", m_folder.path().toLocal8Bit()); }
    ~SlamMap() override
    {
        if (m_before.isEmpty())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", m_before);
    }

    QString path(const QString &name) const { return m_folder.filePath(name); }
    QString map() const { return path(QStringLiteral("loopclosure.map")); }
    void writeMap(const QByteArray &bytes) const { writeMap(map(), bytes); }
    void writeMap(const QString &path, const QByteArray &bytes) const
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    /// What the library can read of the map.
    std::string readMap() const
    {
        char bytes[64];
        return {bytes, std::size_t(slam->loadStream->sgetn(bytes, sizeof bytes))};
    }

private:
    const QByteArray m_before = qgetenv("TMPDIR");
    const QTemporaryDir m_folder;
};

} // namespace

TEST_F(SlamMap, visualOdometryRestarts)
{
    data->visualOdometry();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("stop", "start"));
}

TEST_F(SlamMap, mapPathLiesInTheTemporaryFolder)
{
    EXPECT_EQ(data->getMapPath(), QDir::tempPath() + QLatin1String("/loopclosure.map"));
}

TEST_F(SlamMap, savedMapIsWrittenByTheLibraryAndClosedWhenItIsDone)
{
    writeMap("an older and longer map");
    int finished = 0;
    const LogCatcher log;
    QObject::connect(data.get(), &SlamData::loopClosureFinished, [&] {
        ++finished;
        EXPECT_EQ(log.lines().size(), 2); // it is told after the log
        EXPECT_EQ(slam->saveStream->sputc('.'), '.'); // and before the file is closed
    });
    data->loopClosure();
    ASSERT_TRUE(slam->saveStream);
    slam->saveStream->sputn("a map", 5);
    slam->saveProgress(0.5F);
    EXPECT_EQ(data->localizedPercent(), 0);
    slam->saveDone(1, 90);
    EXPECT_EQ(finished, 1);
    EXPECT_EQ(bytesOf(map()), QByteArray("a map."));
    EXPECT_EQ(log.lines(),
        (QStringList{QStringLiteral("debug: Save map to \"%1\"").arg(map()),
            QStringLiteral("debug: loopClosureDone status:  1 quality:  90")}));
}

TEST_F(SlamMap, secondSaveWhileOneRunsCallsTheLibraryOnTheFirstOnesFile)
{
    data->loopClosure();
    slam->saveStream->sputn("first", 5);
    data->loopClosure();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("saveMapAndSwitchToCslam", "saveMapAndSwitchToCslam"));
    slam->saveStream->sputn(" second", 7);
    slam->saveDone(0, 0);
    EXPECT_EQ(bytesOf(map()), QByteArray("first second"));
}

TEST_F(SlamMap, saveToAFileThatCannotBeOpenedSaysNothingAndStillEnds)
{
    ASSERT_TRUE(QDir().mkdir(map()));
    const QSignalSpy finished(data.get(), &SlamData::loopClosureFinished);
    const LogCatcher log;
    data->loopClosure();
    EXPECT_EQ(log.lines(), (QStringList{QStringLiteral("debug: Save map to \"%1\"").arg(map())}));
    EXPECT_THAT(slam->takeCalls(), ElementsAre("saveMapAndSwitchToCslam"));
    EXPECT_EQ(slam->saveStream->sputc('x'), EOF);
    slam->saveDone(-1, 0);
    EXPECT_EQ(finished.count(), 1);
    ASSERT_TRUE(QDir().rmdir(map()));
    data->loopClosure();
    slam->saveStream->sputn("next", 4);
    slam->saveDone(0, 0);
    EXPECT_EQ(bytesOf(map()), QByteArray("next"));
}

TEST_F(SlamMap, saveThatEndsAfterTheModelStillHasItsFile)
{
    data->loopClosure();
    data.reset();
    EXPECT_EQ(slam->saveStream->sputn("late", 4), 4);
    const LogCatcher log;
    slam->saveProgress(0.5F);
    slam->saveDone(0, 0);
    EXPECT_EQ(bytesOf(map()), QByteArray("late"));
    EXPECT_EQ(log.lines(), QStringList()); // it tells nobody
}

TEST_F(SlamMap, loadWithoutAFileFails)
{
    const LogCatcher log;
    EXPECT_FALSE(data->loadMap());
    EXPECT_FALSE(data->loadMap(QString()));
    EXPECT_FALSE(data->loadMap(QStringLiteral("/not/there")));
    const QString line = QStringLiteral("warning: \"%1\" does not exists").arg(map());
    EXPECT_EQ(log.lines(), (QStringList{line, line, line}));
    EXPECT_THAT(slam->calls(), IsEmpty());
}

TEST_F(SlamMap, loadedMapIsReadByTheLibraryAndLoadedAgainByAReset)
{
    writeMap("bytes");
    const LogCatcher log;
    EXPECT_TRUE(data->loadMap(QStringLiteral("/not/there")));
    EXPECT_EQ(readMap(), "bytes");
    slam->loadDone(77);
    EXPECT_EQ(log.lines(),
        (QStringList{QStringLiteral("debug: Load map  \"%1\"").arg(map()),
            QStringLiteral("debug:  map (quality is  77 /100) and switch to CSlam:")}));
    slam->takeCalls();
    data->reset();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("reset", "loadMapAndSwitchToCslam"));
    slam->loadDone(77);
    data->setLocalizedPercent(7);
    data->visualOdometry();
    EXPECT_EQ(data->localizedPercent(), 7);
    slam->takeCalls();
    data->reset();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("reset"));
}

TEST_F(SlamMap, givenPathIsTakenWhereItExists)
{
    const QString other = path(QStringLiteral("other.map"));
    writeMap(other, "other");
    EXPECT_TRUE(data->loadMap(other));
    EXPECT_EQ(slam->loadStream->sputc('x'), EOF); // only to be read
    EXPECT_EQ(readMap(), "other");
    slam->loadDone(0);
}

TEST_F(SlamMap, secondLoadInTheProcessFailsWhileOneIsUnderWay)
{
    writeMap("bytes");
    SlamData other(std::make_shared<FakeSlam>(), nullptr);
    EXPECT_TRUE(data->loadMap());
    const LogCatcher log;
    EXPECT_FALSE(other.loadMap());
    EXPECT_EQ(log.lines().last(), QStringLiteral("debug: open  \"%1\"  failed.").arg(map()));
    slam->loadDone(0);
}

TEST_F(SlamMap, mapThatCannotBeOpenedFailsAndTheNextTryWorks)
{
    const LocalSocket socket(map()); // exists, and opens for nobody
    ASSERT_TRUE(socket.bound);
    const LogCatcher log;
    EXPECT_FALSE(data->loadMap());
    EXPECT_EQ(log.lines(),
        (QStringList{QStringLiteral("debug: Load map  \"%1\"").arg(map()),
            QStringLiteral("debug: open  \"%1\"  failed.").arg(map())}));
    EXPECT_THAT(slam->calls(), IsEmpty());
    ASSERT_TRUE(QFile::remove(map()));
    writeMap("bytes");
    EXPECT_TRUE(data->loadMap());
    EXPECT_EQ(readMap(), "bytes");
    slam->loadDone(0);
}

TEST_F(SlamMap, mapThatIsAFolderFailsAndTheNextTryWorks)
{
    ASSERT_TRUE(QDir().mkdir(map())); // opens, and throws at the first read
    const LogCatcher log;
    EXPECT_FALSE(data->loadMap());
    EXPECT_EQ(log.lines().last(), QStringLiteral("debug: open  \"%1\"  failed.").arg(map()));
    EXPECT_THAT(slam->calls(), IsEmpty());
    ASSERT_TRUE(QDir().rmdir(map()));
    writeMap("bytes");
    EXPECT_TRUE(data->loadMap());
    slam->loadDone(0);
}

TEST_F(SlamMap, emptyMapIsTheLibrarysToRefuse)
{
    writeMap("");
    slam->loadResult = false;
    EXPECT_FALSE(data->loadMap());
    EXPECT_THAT(slam->calls(), ElementsAre("loadMapAndSwitchToCslam"));
}

TEST_F(SlamMap, refusedLoadFailsWithoutAWordAndIsNotRepeatedByAReset)
{
    writeMap("bytes");
    slam->loadResult = false;
    const LogCatcher log;
    EXPECT_FALSE(data->loadMap());
    EXPECT_EQ(log.lines(), (QStringList{QStringLiteral("debug: Load map  \"%1\"").arg(map())}));
    slam->takeCalls();
    data->reset();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("reset"));
}

TEST_F(SlamMap, refusedLoadLeavesTheMapOfTheLastOneToAReset)
{
    writeMap("bytes");
    ASSERT_TRUE(data->loadMap());
    slam->loadDone(0);
    slam->takeCalls();
    slam->loadResult = false;
    data->reset();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("reset", "loadMapAndSwitchToCslam"));
    data->reset();
    EXPECT_THAT(slam->takeCalls(), ElementsAre("reset", "loadMapAndSwitchToCslam"));
}

TEST_F(SlamMap, nextTryAfterARefusalWorksWithoutACompletion)
{
    writeMap("bytes");
    slam->loadResult = false;
    EXPECT_FALSE(data->loadMap());
    const auto otherSlam = std::make_shared<FakeSlam>();
    SlamData other(otherSlam, nullptr);
    EXPECT_TRUE(other.loadMap());
    otherSlam->loadDone(0);
    slam->loadResult = true;
    EXPECT_TRUE(data->loadMap());
    EXPECT_EQ(readMap(), "bytes");
    slam->loadDone(0);
}

TEST_F(SlamMap, lateCompletionOfARefusedLoadLeavesTheNextOneAlone)
{
    writeMap("bytes");
    slam->loadResult = false;
    EXPECT_FALSE(data->loadMap());
    const auto late = slam->loadDone;
    slam->loadResult = true;
    ASSERT_TRUE(data->loadMap());
    late(0);
    EXPECT_EQ(readMap(), "bytes");
    EXPECT_FALSE(data->loadMap()); // still under way
    slam->loadDone(0);
    late(0);
    EXPECT_TRUE(data->loadMap());
    slam->loadDone(0);
}

TEST_F(SlamMap, libraryThatGoesInTheMiddleOfALoadLetsTheNextOneWork)
{
    writeMap("bytes");
    ASSERT_TRUE(data->loadMap());
    data.reset();
    slam.reset();
    const auto otherSlam = std::make_shared<FakeSlam>();
    SlamData other(otherSlam, nullptr);
    EXPECT_TRUE(other.loadMap());
    otherSlam->loadDone(0);
}

TEST_F(SlamMap, progressIsTakenOnEveryHundredthCallAcrossLoadsAndInstances)
{
    writeMap("bytes");
    ASSERT_TRUE(data->loadMap());
    const QSignalSpy changed(data.get(), &SlamData::localizedPercentChanged);
    float share = 0.05F;
    int calls = 0;
    while (changed.isEmpty() && calls < 100) {
        share += 0.001F;
        slam->loadProgress(share);
        ++calls;
    }
    ASSERT_EQ(changed.count(), 1);
    EXPECT_EQ(data->localizedPercent(), int(share * 100.0F));
    for (int i = 0; i < 60; ++i)
        slam->loadProgress(0.999F);
    slam->loadDone(0);
    ASSERT_TRUE(data->loadMap());
    for (int i = 0; i < 39; ++i)
        slam->loadProgress(0.999F);
    EXPECT_EQ(changed.count(), 1);
    slam->loadProgress(0.999F);
    EXPECT_EQ(data->localizedPercent(), 99); // cut, not rounded
    slam->loadDone(0);

    const auto otherSlam = std::make_shared<FakeSlam>();
    SlamData other(otherSlam, nullptr);
    ASSERT_TRUE(other.loadMap());
    for (int i = 0; i < 99; ++i)
        otherSlam->loadProgress(0.5F);
    EXPECT_EQ(other.localizedPercent(), 0);
    otherSlam->loadProgress(0.5F);
    EXPECT_EQ(other.localizedPercent(), 50);
    EXPECT_EQ(data->localizedPercent(), 99);
    otherSlam->loadDone(0);
}

// In a process of its own, as the counter runs on through all tests of this one.
TEST_F(SlamMap, theVeryFirstProgressIsTaken)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto percentOfTheFirst = [&] {
        writeMap("bytes");
        data->loadMap();
        slam->loadProgress(0.42F);
        slam->loadProgress(0.43F);
        std::exit(data->localizedPercent()); // NOLINT(concurrency-mt-unsafe)
    };
    EXPECT_EXIT(percentOfTheFirst(), ::testing::ExitedWithCode(42), "");
}

TEST_F(SlamMap, progressIsStoredAsItComes)
{
    writeMap("bytes");
    ASSERT_TRUE(data->loadMap());
    for (const auto &[share, percent] : {std::pair(1.5F, 150), std::pair(-0.25F, -25)}) {
        for (int i = 0; i < 100; ++i)
            slam->loadProgress(share);
        EXPECT_EQ(data->localizedPercent(), percent);
    }
    slam->loadDone(0);
}

TEST_F(SlamMap, progressThatIsTakenIsLoggedAlsoWhereThePercentStays)
{
    writeMap("bytes");
    ASSERT_TRUE(data->loadMap());
    for (int i = 0; i < 100; ++i)
        slam->loadProgress(0.42F);
    const LogCatcher log;
    const QSignalSpy changed(data.get(), &SlamData::localizedPercentChanged);
    for (int i = 0; i < 200; ++i)
        slam->loadProgress(0.42F);
    const QString line = QStringLiteral("debug: localized:  42 %");
    EXPECT_EQ(log.lines(), (QStringList{line, line}));
    EXPECT_EQ(changed.count(), 0);
    slam->loadDone(0);
}

TEST_F(SlamMap, progressOnItsWayFindsTheModelGone)
{
    writeMap("bytes");
    ASSERT_TRUE(data->loadMap());
    data.reset();
    const LogCatcher log;
    for (int i = 0; i < 100; ++i)
        slam->loadProgress(0.42F);
    EXPECT_EQ(log.lines(), QStringList());
    slam->loadDone(0);
}

TEST_F(SlamMap, progressThatIsNoNumberCountsAsNothing)
{
    writeMap("bytes");
    ASSERT_TRUE(data->loadMap());
    for (const float share : {std::nanf(""), INFINITY, -INFINITY, 1e30F}) {
        data->setLocalizedPercent(7);
        for (int i = 0; i < 100; ++i)
            slam->loadProgress(share);
        EXPECT_EQ(data->localizedPercent(), 0) << share;
    }
    slam->loadDone(0);
}
