#include "streams/AbstractData.h"

#include "imaging/Relaxed.h"
#include "streams/Timing.h"

#include <QDebug>
#include <QFile>
#include <QTimer>
#include <utility>

AbstractData::AbstractData(QObject *parent)
    : QObject(parent)
    , m_timer(new QTimer(this))
{
    m_timer->setInterval(rateIntervalMs);
    connect(m_timer, &QTimer::timeout, this, &AbstractData::measureRate, Qt::DirectConnection);
    connect(m_timer, &QTimer::timeout, this, &AbstractData::measureRate2, Qt::DirectConnection);
    m_timer->start();
}

AbstractData::~AbstractData()
{
    m_timer->stop();
    m_timer->deleteLater();
    m_timer = nullptr;
    closeRecordFile();
}

double AbstractData::dataFrameRate() const
{
    return m_dataFrameRate.load(relaxed);
}

QString AbstractData::recordPath() const
{
    return m_recordPath;
}

bool AbstractData::recording() const
{
    return m_recording.load(relaxed);
}

QString AbstractData::header() const
{
    return {};
}

double AbstractData::dataFrameRate2() const
{
    return m_dataFrameRate2;
}

void AbstractData::setDataFrameRate2(double dataFrameRate2)
{
    if (qFuzzyCompare(dataFrameRate2, m_dataFrameRate2))
        return;
    m_dataFrameRate2 = dataFrameRate2;
    emit dataFrameRate2Changed();
}

void AbstractData::setRecordPath(QString recordPath)
{
    if (recordPath == m_recordPath)
        return;
    m_recordPath = recordPath;
    emit recordPathChanged(recordPath);
}

void AbstractData::setRecording(bool recording)
{
    if (!storeRecording(recording))
        return;
    emit recordingChanged(recording);
    if (recording)
        openRecordFile();
    else
        closeRecordFile();
}

void AbstractData::write(QString line)
{
    const std::lock_guard lock(m_recordMutex);
    if (m_recordFile)
        m_recordFile->write(line.toLocal8Bit());
}

void AbstractData::tick()
{
    m_tickCount.fetch_add(1, relaxed);
}

void AbstractData::tick2()
{
    m_tick2Count.fetch_add(1, relaxed);
}

bool AbstractData::storeRecording(bool recording)
{
    return m_recording.exchange(recording, relaxed) != recording;
}

std::mutex &AbstractData::recordMutex() const
{
    return m_recordMutex;
}

void AbstractData::measureRate()
{
    const double rate = m_tickCount.exchange(0, relaxed);
    if (qFuzzyCompare(rate, m_dataFrameRate.load(relaxed)))
        return;
    m_dataFrameRate.store(rate, relaxed);
    emit dataFrameRateChanged(rate);
}

void AbstractData::measureRate2()
{
    setDataFrameRate2(m_tick2Count.exchange(0, relaxed));
}

void AbstractData::openRecordFile()
{
    if (m_recordPath.isEmpty()) {
        qDebug() << "Set file path before recoring";
        return;
    }
    auto *file = new QFile(m_recordPath, this);
    if (!file->open(QIODevice::WriteOnly))
        qWarning() << "Failed to open file:" << m_recordPath;
    else if (const QString first = header(); !first.isEmpty())
        file->write((first + QLatin1Char('\n')).toLocal8Bit());
    // Only now, so that no sample gets ahead of the header.
    const std::lock_guard lock(m_recordMutex);
    m_recordFile = file;
}

void AbstractData::closeRecordFile()
{
    std::unique_lock lock(m_recordMutex);
    QFile *file = std::exchange(m_recordFile, nullptr);
    lock.unlock();
    if (!file)
        return;
    file->close();
    file->deleteLater();
}
