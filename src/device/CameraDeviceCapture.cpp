// The part of CameraDevice that turns a press of a button into files.
#include "device/CameraDevice.h"
#include "device/CaptureFolder.h"

#include <QDebug>

namespace {

void report(bool saved, const char *failure)
{
    if (!saved)
        qDebug() << failure;
}

} // namespace

QString CameraDevice::saveImages(QString objectName)
{
    const QDir folder = makeCaptureFolder();
    qDebug() << folder.absolutePath();
    const auto file = [&folder](const char *name) { return folder.absoluteFilePath(QLatin1String(name)); };
    if (m_stereo && objectName == QLatin1String("stereo")) {
        report(m_stereo->saveImage(0, file("left.png")), "Failed to create left image");
        report(m_stereo->saveImage(1, file("right.png")), "Failed to create right image");
    }
    if (m_tof && objectName == QLatin1String("tof")) {
        report(m_tof->save(file("tof.png")), "Failed to create tof image");
        emit savePcd(file("tof.pcd"));
    }
    if (m_tofIr && objectName == QLatin1String("tofIr"))
        report(m_tofIr->save(file("tofIr.png")), "Failed to create tof IR image");
    if (m_rgb && objectName == QLatin1String("rgb"))
        report(m_rgb->save(file("rgb.png")), "Failed to create rgb image");
    if (m_sgbm && objectName == QLatin1String("sgbm"))
        report(m_sgbm->save(file("sbgm.png")), "Failed to create sgbm image");
    return folder.absolutePath();
}

QString CameraDevice::setRecording(bool recording)
{
    if (recording == m_recording)
        return QString();
    m_recording = recording;
    emit recordingChanged(recording);
    // The paths come before the switches: a stream reads its path when it is switched on.
    QString path;
    if (recording) {
        const QDir folder = makeCaptureFolder();
        path = folder.absolutePath();
        if (m_stereo)
            m_stereo->setImageRecordPath(0, folder.absoluteFilePath(QStringLiteral("left.avi")));
        if (m_stereo)
            m_stereo->setImageRecordPath(1, folder.absoluteFilePath(QStringLiteral("right.avi")));
        if (m_rgb)
            m_rgb->setRecordPath(folder.absoluteFilePath(QStringLiteral("rgb.avi")));
        if (m_tof)
            m_tof->setRecordPath(folder.absoluteFilePath(QStringLiteral("tof.avi")));
    }
    if (m_stereo)
        m_stereo->setImageRecording(0, recording);
    if (m_stereo)
        m_stereo->setImageRecording(1, recording);
    if (m_rgb)
        m_rgb->setRecording(recording);
    if (m_tof)
        m_tof->setRecording(recording);
    return path;
}

QString CameraDevice::setRecordingSlam(bool recordingSlam)
{
    if (recordingSlam == m_recordingSlam)
        return QString();
    m_recordingSlam = recordingSlam;
    emit recordingSlamChanged(recordingSlam);
    QString path;
    if (recordingSlam) {
        const QDir folder = makeCaptureFolder();
        path = folder.absolutePath();
        if (m_slam)
            m_slam->setRecordPath(folder.absoluteFilePath(QStringLiteral("host.csv")));
        if (m_edge)
            m_edge->setRecordPath(folder.absoluteFilePath(QStringLiteral("edge.csv")));
    }
    if (m_slam)
        m_slam->setRecording(recordingSlam);
    if (m_edge)
        m_edge->setRecording(recordingSlam);
    return path;
}
