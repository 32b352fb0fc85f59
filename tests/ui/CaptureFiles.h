#pragma once

#include <QString>
#include <array>
#include <opencv2/core.hpp>
#include <vector>

/// Captured files as other people's programs read them: FFmpeg's for videos, the Point Cloud Library's for
/// point clouds. What can't be read is empty.
namespace captures {

struct Video {
    QString codec;
    int width = 0;
    int height = 0;
    QString rate; ///< frames per second, as a fraction: "15/1"
    int frames = 0; ///< as decoded
    QString errors; ///< what the reader complained about
};

Video probe(const QString &path);

/// Every picture of a video, as grey or as B, G, R.
std::vector<cv::Mat> decode(const QString &path, bool isColor);

/// Metres.
std::vector<std::array<double, 3>> pointsOf(const QString &pcd);

/// One line of a pose file.
struct PoseLine {
    double hostTimestamp = 0;
    qint64 edgeTimestampUs = 0;
    std::array<double, 3> position{};
    std::array<double, 4> orientation{}; ///< x, y, z, w
    double confidence = 0;
};

/// Whether a pose file holds its line of names and no more.
bool isEmptyPoseFile(const QString &csv);

/// Empty where one line differs from the format.
std::vector<PoseLine> posesOf(const QString &csv);

/// The mean distance of two pictures of one size and kind, in levels; 255 for others.
double difference(const cv::Mat &a, const cv::Mat &b);

} // namespace captures
