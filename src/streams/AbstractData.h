#pragma once

#include <QObject>
#include <QString>
#include <atomic>
#include <mutex>

class QFile;
class QTimer;

/// Base of the stream models that count their samples and write a recording: measures the rate of two
/// counters once a second, and appends lines to a text file.
class AbstractData : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool recording READ recording WRITE setRecording NOTIFY recordingChanged)
    Q_PROPERTY(double dataFrameRate READ dataFrameRate NOTIFY dataFrameRateChanged)
    Q_PROPERTY(double dataFrameRate2 READ dataFrameRate2 WRITE setDataFrameRate2 NOTIFY dataFrameRate2Changed)
    Q_PROPERTY(QString recordPath READ recordPath WRITE setRecordPath NOTIFY recordPathChanged)

public:
    explicit AbstractData(QObject *parent = nullptr);
    ~AbstractData() override;

    /// Samples that `tick` counted in the last full second.
    virtual double dataFrameRate() const;
    virtual QString recordPath() const;
    /// Thread-safe.
    virtual bool recording() const;
    /// First line of a text recording, without its line end; empty for none.
    virtual QString header() const;

    /// Samples that `tick2` counted in the last full second.
    double dataFrameRate2() const;
    void setDataFrameRate2(double dataFrameRate2);

protected slots:
    /// One sample has come. Thread-safe.
    void tick();
    /// One sample of the second kind has come. Thread-safe.
    void tick2();

public slots:
    virtual void setRecordPath(QString recordPath);
    /// Starts or ends a text recording. The flag follows the request even where no file could be opened.
    virtual void setRecording(bool recording);
    /// Appends `line`, which brings its own line end, to a running text recording. Thread-safe.
    virtual void write(QString line);

signals:
    void dataFrameRateChanged(double dataFrameRate);
    void recordPathChanged(QString recordPath);
    void recordingChanged(bool recording);
    void dataFrameRate2Changed();

protected:
    /// Stores the flag without a signal; false when it had that value already.
    bool storeRecording(bool recording);
    /// Guards what a recording writes to against a stop in mid-sample. Never held while a signal leaves.
    std::mutex &recordMutex() const;

private:
    void measureRate();
    void measureRate2();
    void openRecordFile();
    void closeRecordFile();

    QTimer *m_timer;
    std::atomic<double> m_dataFrameRate{0}; ///< read on the library's threads too
    double m_dataFrameRate2 = 0;
    std::atomic<int> m_tickCount{0};
    std::atomic<int> m_tick2Count{0};
    QString m_recordPath;
    std::atomic<bool> m_recording{false};
    QFile *m_recordFile = nullptr;
    mutable std::mutex m_recordMutex;
};
