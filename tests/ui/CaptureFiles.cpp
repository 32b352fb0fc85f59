#include "ui/CaptureFiles.h"

#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <algorithm>

namespace captures {

namespace {

constexpr int limit = 120000;
constexpr const char *poseNames = "hostTimestamp,edgeTimestampUs,x,y,z,qx,qy,qz,qw,confidence";

struct Output {
    QByteArray text;
    QString errors;
};

Output run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted(limit) || !process.waitForFinished(limit))
        return {{}, program + QLatin1String(": ") + process.errorString()};
    return {process.readAllStandardOutput(), QString::fromUtf8(process.readAllStandardError())};
}

bool readLine(const QStringList &fields, PoseLine &line)
{
    // Each line ends in a comma.
    if (fields.size() != 11 || !fields.last().isEmpty())
        return false;
    bool isRight[10];
    line.hostTimestamp = fields[0].toDouble(&isRight[0]);
    line.edgeTimestampUs = fields[1].toLongLong(&isRight[1]);
    for (std::size_t i = 0; i < 3; ++i)
        line.position[i] = fields[int(2 + i)].toDouble(&isRight[2 + i]);
    for (std::size_t i = 0; i < 4; ++i)
        line.orientation[i] = fields[int(5 + i)].toDouble(&isRight[5 + i]);
    line.confidence = fields[9].toDouble(&isRight[9]);
    return std::find(std::begin(isRight), std::end(isRight), false) == std::end(isRight);
}

} // namespace

Video probe(const QString &path)
{
    const Output output = run(QStringLiteral("ffprobe"),
        {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-count_frames"),
            QStringLiteral("-select_streams"), QStringLiteral("v"), QStringLiteral("-show_entries"),
            QStringLiteral("stream=codec_name,width,height,r_frame_rate,nb_read_frames"),
            QStringLiteral("-of"), QStringLiteral("default=noprint_wrappers=1"), path});
    Video video;
    video.errors = output.errors;
    for (const QString &line : QString::fromUtf8(output.text).split(QLatin1Char('\n'))) {
        const QString key = line.section(QLatin1Char('='), 0, 0);
        const QString value = line.section(QLatin1Char('='), 1);
        if (key == QLatin1String("codec_name"))
            video.codec = value;
        else if (key == QLatin1String("width"))
            video.width = value.toInt();
        else if (key == QLatin1String("height"))
            video.height = value.toInt();
        else if (key == QLatin1String("r_frame_rate"))
            video.rate = value;
        else if (key == QLatin1String("nb_read_frames"))
            video.frames = value.toInt();
    }
    return video;
}

std::vector<cv::Mat> decode(const QString &path, bool isColor)
{
    const Video video = probe(path);
    const int type = isColor ? CV_8UC3 : CV_8UC1;
    const int size = video.width * video.height * int(CV_ELEM_SIZE(type));
    const QByteArray raw = run(QStringLiteral("ffmpeg"),
        {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), path, QStringLiteral("-vsync"),
            QStringLiteral("passthrough"), QStringLiteral("-f"), QStringLiteral("rawvideo"),
            QStringLiteral("-pix_fmt"), isColor ? QStringLiteral("bgr24") : QStringLiteral("gray"),
            QStringLiteral("-")})
                               .text;
    std::vector<cv::Mat> pictures;
    for (int at = 0; size > 0 && at + size <= raw.size(); at += size)
        pictures.push_back(
            cv::Mat(video.height, video.width, type, const_cast<char *>(raw.constData() + at)).clone());
    return pictures;
}

std::vector<std::array<double, 3>> pointsOf(const QString &pcd)
{
    const QTemporaryDir folder;
    const QString text = folder.filePath(QStringLiteral("text.pcd"));
    run(QStringLiteral("pcl_convert_pcd_ascii_binary"), {pcd, text, QStringLiteral("0")});
    QFile file(text);
    std::vector<std::array<double, 3>> points;
    if (!file.open(QIODevice::ReadOnly))
        return points;
    int expected = -1;
    QByteArray line;
    while (!file.atEnd() && !line.startsWith("DATA")) {
        line = file.readLine().trimmed();
        if (line.startsWith("FIELDS") && line != "FIELDS x y z")
            return points;
        if (line.startsWith("POINTS"))
            expected = line.mid(7).toInt();
    }
    while (!file.atEnd()) {
        const QList<QByteArray> fields = file.readLine().trimmed().split(' ');
        if (fields.size() == 3)
            points.push_back({fields[0].toDouble(), fields[1].toDouble(), fields[2].toDouble()});
    }
    if (int(points.size()) != expected)
        points.clear();
    return points;
}

bool isEmptyPoseFile(const QString &csv)
{
    QFile file(csv);
    return file.open(QIODevice::ReadOnly) && file.readAll() == QByteArray(poseNames) + '\n';
}

std::vector<PoseLine> posesOf(const QString &csv)
{
    QFile file(csv);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray text = file.readAll();
    QStringList lines = QString::fromUtf8(text).split(QLatin1Char('\n'));
    if (!text.endsWith('\n') || lines.takeFirst() != QLatin1String(poseNames))
        return {};
    lines.removeLast();
    std::vector<PoseLine> poses(std::size_t(lines.size()));
    for (std::size_t i = 0; i < poses.size(); ++i) {
        if (!readLine(lines[int(i)].split(QLatin1Char(',')), poses[i]))
            return {};
    }
    return poses;
}

double difference(const cv::Mat &a, const cv::Mat &b)
{
    if (a.empty() || a.size() != b.size() || a.type() != b.type())
        return 255;
    return cv::norm(a, b, cv::NORM_L1) / double(a.total() * std::size_t(a.channels()));
}

} // namespace captures
