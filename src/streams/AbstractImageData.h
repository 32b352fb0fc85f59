#pragma once

#include "imaging/ImageData.h"
#include "streams/AbstractData.h"

#include <QImage>
#include <memory>
#include <opencv2/core.hpp>

namespace cv {
class VideoWriter;
}

/// Base of the image streams: the size of the source, the holder of the latest frame, video recording in
/// place of the text recording, and saving one frame.
class AbstractImageData : public AbstractData {
    Q_OBJECT
    Q_PROPERTY(int sourceWidth READ sourceWidth WRITE setSourceWidth NOTIFY sourceWidthChanged)
    Q_PROPERTY(int sourceHeight READ sourceHeight WRITE setSourceHeight NOTIFY sourceHeightChanged)
    Q_PROPERTY(ImageData *image READ image NOTIFY imageChanged)

public:
    /// `isColor` is the colour flag of the recorded video.
    explicit AbstractImageData(bool isColor, QObject *parent = nullptr);
    ~AbstractImageData() override;

    int sourceWidth() const;
    int sourceHeight() const;
    ImageData *image() const;

    /// The current frame, as a copy; null before the first one.
    virtual QImage toImage() const = 0;
    /// The current frame for the video writer, as a copy; empty before the first one.
    virtual cv::Mat toMat() const = 0;

    /// Frames per second of the next video; one that is being written keeps its rate.
    void setRecordFrameRate(int rate);
    /// Appends the current frame to the running video; false without a video or without a frame. Thread-safe.
    bool writeFrame();

public slots:
    /// Starts or ends a video recording. Size and rate of the video are those of this moment; nothing tells
    /// whether the writer opened.
    void setRecording(bool recording) override;
    /// Thread-safe.
    void setSourceWidth(int sourceWidth);
    /// Thread-safe.
    void setSourceHeight(int sourceHeight);
    /// Writes the current frame to a file, in the format that the ending of `path` names.
    virtual bool save(QString path);

signals:
    /// Hides the signal of the base, which the property `recording` goes on notifying with.
    void recordingChanged(bool recording);
    void sourceWidthChanged(int sourceWidth);
    void sourceHeightChanged(int sourceHeight);
    void imageChanged(ImageData *image);

private:
    bool hasVideoWriter() const;
    void openVideoWriter();
    void closeVideoWriter();

    std::unique_ptr<cv::VideoWriter> m_videoWriter;
    std::atomic<int> m_recordFrameRate{100};
    const bool m_isColor;
    std::atomic<int> m_sourceWidth{0};
    std::atomic<int> m_sourceHeight{0};
    ImageData *m_imageData;
};
