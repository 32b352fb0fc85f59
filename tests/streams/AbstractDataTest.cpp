#include "streams/AbstractData.h"

#include "streams/AbstractImageData.h"
#include "support/LogCatcher.h"
#include "support/Methods.h"
#include "support/Properties.h"
#include "support/Timers.h"
#include "support/Wait.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QTimer>
#include <atomic>
#include <gmock/gmock.h>
#include <thread>

using testing::ElementsAre;

namespace {

class PlainData : public AbstractData {
public:
    using AbstractData::AbstractData;

    void sample(int times = 1)
    {
        for (int i = 0; i < times; ++i)
            tick();
    }

    void sample2(int times = 1)
    {
        for (int i = 0; i < times; ++i)
            tick2();
    }

    QString header() const override { return firstLine; }

    QString firstLine;
};

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

QList<double> rates(const QSignalSpy &spy)
{
    QList<double> values;
    for (const QList<QVariant> &arguments : spy)
        values.append(arguments.at(0).toDouble());
    return values;
}

} // namespace

TEST(AbstractData, oneRunningTimerOfASecond)
{
    PlainData data;
    const auto timers = data.findChildren<QTimer *>();
    ASSERT_EQ(timers.size(), 1);
    EXPECT_EQ(timers[0]->interval(), 1000);
    EXPECT_TRUE(timers[0]->isActive());
    EXPECT_FALSE(timers[0]->isSingleShot());
}

TEST(AbstractData, noDataNeverSignalsARate)
{
    PlainData data;
    QSignalSpy rate(&data, &AbstractData::dataFrameRateChanged),
        rate2(&data, &AbstractData::dataFrameRate2Changed);
    fireTimers(data);
    fireTimers(data);
    EXPECT_EQ(rate.count(), 0);
    EXPECT_EQ(rate2.count(), 0);
    EXPECT_EQ(data.dataFrameRate(), 0.0);
    EXPECT_EQ(data.dataFrameRate2(), 0.0);
}

TEST(AbstractData, rateIsTheWholeCountOfTheLastSecond)
{
    PlainData data;
    QSignalSpy rate(&data, &AbstractData::dataFrameRateChanged);
    data.sample(30);
    EXPECT_EQ(data.dataFrameRate(), 0.0) << "only full seconds count";
    fireTimers(data);
    EXPECT_EQ(data.dataFrameRate(), 30.0);
    data.sample(30);
    fireTimers(data);
    data.sample(31);
    fireTimers(data);
    EXPECT_EQ(rates(rate), (QList<double>{30.0, 31.0})) << "an equal rate is no change";
}

TEST(AbstractData, aStalledStreamSignalsZeroOnce)
{
    PlainData data;
    QSignalSpy rate(&data, &AbstractData::dataFrameRateChanged);
    data.sample(5);
    for (int second = 0; second < 4; ++second)
        fireTimers(data);
    EXPECT_EQ(rates(rate), (QList<double>{5.0, 0.0}));
}

TEST(AbstractData, theSecondRateIsMeasuredLikeTheFirst)
{
    PlainData data;
    QList<double> told;
    QObject::connect(&data, &AbstractData::dataFrameRate2Changed, [&] { told << data.dataFrameRate2(); });
    data.sample2(30);
    EXPECT_EQ(data.dataFrameRate2(), 0.0) << "only full seconds count";
    fireTimers(data);
    data.sample2(30);
    fireTimers(data);
    data.sample2(31);
    for (int second = 0; second < 4; ++second)
        fireTimers(data);
    EXPECT_EQ(told, (QList<double>{30.0, 31.0, 0.0})) << "an equal rate is no change, a stall tells 0 once";
    EXPECT_EQ(data.dataFrameRate(), 0.0);
}

TEST(AbstractData, offersItsProperties)
{
    EXPECT_EQ(propertiesOf<AbstractData>(),
        (QStringList{"bool recording read-write recordingChanged(bool)",
            "double dataFrameRate read dataFrameRateChanged(double)",
            "double dataFrameRate2 read-write dataFrameRate2Changed()",
            "QString recordPath read-write recordPathChanged(QString)"}));
    EXPECT_EQ(propertiesOf<AbstractImageData>(),
        (QStringList{"int sourceWidth read-write sourceWidthChanged(int)",
            "int sourceHeight read-write sourceHeightChanged(int)",
            "ImageData* image read imageChanged(ImageData*)"}));
}

TEST(AbstractData, offersItsSignalsAndSlotsInOrder)
{
    EXPECT_EQ(signalsOf<AbstractData>(),
        (QStringList{"void dataFrameRateChanged(double)", "void recordPathChanged(QString)",
            "void recordingChanged(bool)", "void dataFrameRate2Changed()"}));
    EXPECT_EQ(slotsOf<AbstractData>(),
        (QStringList{"protected void tick()", "protected void tick2()", "void setRecordPath(QString)",
            "void setRecording(bool)", "void write(QString)"}));
    EXPECT_EQ(callablesOf<AbstractData>().size(), 3);
    EXPECT_EQ(signalsOf<AbstractImageData>(),
        (QStringList{"void recordingChanged(bool)", "void sourceWidthChanged(int)",
            "void sourceHeightChanged(int)", "void imageChanged(ImageData*)"}));
    EXPECT_EQ(slotsOf<AbstractImageData>(),
        (QStringList{"void setRecording(bool)", "void setSourceWidth(int)", "void setSourceHeight(int)",
            "bool save(QString)"}));
    EXPECT_EQ(callablesOf<AbstractImageData>().size(), 4);
}

TEST(AbstractData, theTimerItselfMeasures)
{
    PlainData data;
    QSignalSpy rate(&data, &AbstractData::dataFrameRateChanged);
    data.sample(7);
    ASSERT_TRUE(waitFor([&] { return rate.count() == 1; }));
    EXPECT_EQ(data.dataFrameRate(), 7.0);
}

TEST(AbstractData, bothRatesAreApart)
{
    PlainData data;
    QStringList order;
    QObject::connect(&data, &AbstractData::dataFrameRateChanged, [&] { order << "first"; });
    QObject::connect(&data, &AbstractData::dataFrameRate2Changed, [&] { order << "second"; });
    data.sample(3);
    data.sample2(4);
    fireTimers(data);
    EXPECT_EQ(data.dataFrameRate(), 3.0);
    EXPECT_EQ(data.dataFrameRate2(), 4.0);
    EXPECT_EQ(order, (QStringList{"first", "second"}));
}

TEST(AbstractData, theSecondRateCanBeWritten)
{
    PlainData data;
    QSignalSpy rate2(&data, &AbstractData::dataFrameRate2Changed);
    EXPECT_TRUE(data.setProperty("dataFrameRate2", 12.5));
    data.setDataFrameRate2(12.5 * (1 + 1e-13));
    EXPECT_EQ(rate2.count(), 1) << "fuzzily equal is equal";
    EXPECT_EQ(data.dataFrameRate2(), 12.5);
}

TEST(AbstractData, noTickIsLostAcrossThreads)
{
    PlainData data;
    double total = 0;
    const auto second = [&] {
        fireTimers(data);
        total += data.dataFrameRate();
    };
    std::atomic<bool> done{false};
    std::thread library([&] {
        for (int i = 0; i < 100000; ++i)
            data.sample();
        done = true;
    });
    while (!done)
        second();
    library.join();
    second();
    EXPECT_EQ(total, 100000);
    second();
    EXPECT_EQ(data.dataFrameRate(), 0.0);
}

TEST(AbstractData, recordPathSignalsChangesOnly)
{
    PlainData data;
    QSignalSpy path(&data, &AbstractData::recordPathChanged);
    data.setRecordPath("a.csv");
    data.setRecordPath("a.csv");
    ASSERT_EQ(path.count(), 1);
    EXPECT_EQ(path[0][0].toString(), "a.csv");
    QObject::connect(&data, &AbstractData::recordPathChanged,
        [&](const QString &told) { EXPECT_EQ(data.recordPath(), told) << "stored when it is told"; });
    data.setRecordPath("b.csv");
    EXPECT_EQ(path.count(), 2);
    data.setRecordPath("a.csv");
    EXPECT_EQ(data.property("recordPath").toString(), "a.csv");
}

TEST(AbstractData, writesHeaderAndLinesAsTheyCome)
{
    const QTemporaryDir folder;
    PlainData data;
    data.firstLine = "time,x";
    data.setRecordPath(folder.filePath("pose.csv"));
    data.setRecording(true);
    data.write("1,2\n");
    data.write("3");
    data.write(",4\n");
    data.setRecording(false);
    EXPECT_EQ(contents(data.recordPath()), "time,x\n1,2\n3,4\n");
}

TEST(AbstractData, textIsWrittenInTheLocalEncoding)
{
    QTextCodec *const before = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-15"));
    const QTemporaryDir folder;
    PlainData data;
    data.firstLine = QStringLiteral("Gr\u00f6\u00dfe in \u20ac");
    data.setRecordPath(folder.filePath("a.csv"));
    data.setRecording(true);
    data.write(QStringLiteral("5\u20ac\n"));
    data.setRecording(false);
    QTextCodec::setCodecForLocale(before);
    EXPECT_EQ(contents(data.recordPath()),
        QByteArray("Gr\xf6\xdf"
                   "e in \xa4\n5\xa4\n"));
}

TEST(AbstractData, anEmptyHeaderWritesNothing)
{
    const QTemporaryDir folder;
    PlainData data;
    data.setRecordPath(folder.filePath("a.csv"));
    data.setRecording(true);
    data.write("first\n");
    data.setRecording(false);
    EXPECT_EQ(contents(data.recordPath()), "first\n");
}

TEST(AbstractData, anExistingFileIsTruncated)
{
    const QTemporaryDir folder;
    PlainData data;
    data.setRecordPath(folder.filePath("a.csv"));
    for (const char *line : {"a longer first recording\n", "short\n"}) {
        data.setRecording(true);
        data.write(line);
        data.setRecording(false);
    }
    EXPECT_EQ(contents(data.recordPath()), "short\n");
}

TEST(AbstractData, startingTwiceOpensOneFile)
{
    const QTemporaryDir folder;
    PlainData data;
    QSignalSpy recording(&data, &AbstractData::recordingChanged);
    data.setRecordPath(folder.filePath("a.csv"));
    data.setRecording(true);
    data.write("kept\n");
    data.setRecording(true);
    EXPECT_EQ(data.findChildren<QFile *>().size(), 1);
    ASSERT_EQ(recording.count(), 1);
    EXPECT_TRUE(recording[0][0].toBool());
    data.setRecording(false);
    ASSERT_EQ(recording.count(), 2);
    EXPECT_FALSE(recording[1][0].toBool());
    EXPECT_EQ(contents(data.recordPath()), "kept\n");
}

TEST(AbstractData, withoutAFileWriteDoesNothing)
{
    const LogCatcher log;
    PlainData data;
    data.write("lost\n");
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(AbstractData, withoutAPathTheFlagStaysAndNothingOpens)
{
    const LogCatcher log;
    PlainData data;
    QSignalSpy recording(&data, &AbstractData::recordingChanged);
    data.setRecording(true);
    EXPECT_EQ(log.lines(), QStringList{"debug: Set file path before recoring"});
    EXPECT_TRUE(data.recording());
    EXPECT_EQ(recording.count(), 1);
    EXPECT_TRUE(data.findChildren<QFile *>().isEmpty());
    data.write("lost\n");
    data.setRecording(false);
    EXPECT_FALSE(data.recording()) << "the stop of what never started is harmless";
}

TEST(AbstractData, aFileThatCannotBeOpenedIsReportedAndKept)
{
    const QTemporaryDir folder;
    const LogCatcher log;
    PlainData data;
    data.setRecordPath(folder.filePath("none/a.csv"));
    data.setRecording(true);
    EXPECT_EQ(log.lines(), QStringList{"warning: Failed to open file: \"" + data.recordPath() + "\""});
    EXPECT_TRUE(data.recording());
    const auto files = data.findChildren<QFile *>();
    ASSERT_EQ(files.size(), 1);
    EXPECT_FALSE(files[0]->isOpen());
    data.write("lost\n");
    EXPECT_FALSE(QFile::exists(data.recordPath()));
    EXPECT_TRUE(data.recording());
    ASSERT_EQ(log.lines().size(), 2);
    EXPECT_TRUE(log.lines()[1].startsWith("warning: QIODevice::write")) << log.lines()[1].toStdString();
    data.setRecording(false);
    EXPECT_TRUE(waitFor([&] { return data.findChildren<QFile *>().isEmpty(); }));
}

TEST(AbstractData, theSignalLeavesBeforeTheFileOpens)
{
    const QTemporaryDir folder;
    PlainData data;
    data.setRecordPath(folder.filePath("a.csv"));
    bool existed = true;
    QObject::connect(
        &data, &AbstractData::recordingChanged, [&] { existed = QFile::exists(data.recordPath()); });
    data.setRecording(true);
    EXPECT_FALSE(existed);
    EXPECT_TRUE(QFile::exists(data.recordPath()));
}

TEST(AbstractData, destructionEndsARecordingCleanly)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.csv");
    {
        PlainData data;
        data.setRecordPath(path);
        data.setRecording(true);
        data.write("last line\n");
    }
    EXPECT_EQ(contents(path), "last line\n");
}

TEST(AbstractData, aStopInMidSampleLosesNoLineHalfway)
{
    const QTemporaryDir folder;
    PlainData data;
    data.firstLine = "header";
    data.setRecordPath(folder.filePath("a.csv"));
    std::atomic<bool> done{false};
    std::thread library([&] {
        while (!done)
            data.write("0123456789\n");
    });
    for (int i = 0; i < 50; ++i) {
        data.setRecording(true);
        QThread::usleep(200);
        data.setRecording(false);
        const QByteArray text = contents(data.recordPath());
        ASSERT_TRUE(text.startsWith("header\n"));
        ASSERT_TRUE(text.endsWith('\n'));
        ASSERT_EQ((text.size() - 7) % 11, 0);
    }
    done = true;
    library.join();
}
