#pragma once

#include "world/Surface.h"

#include <opencv2/core.hpp>

namespace sim {

/// Draws what hangs on the walls or shows on screens.
class Artwork {
public:
    Artwork(const cv::Size &size, cv::RNG &random);

    /// CV_8UC3, red, green, blue.
    cv::Mat paint(Paint paint);

private:
    void window();
    void monitor();
    void television();
    void whiteboard();
    void landscape();
    void abstractArt();
    void portrait();
    void poster();
    void chessboard();
    void noticeboard();

    void gradient(const cv::Scalar &top, const cv::Scalar &bottom);
    void hills(double height, double roughness, const cv::Scalar &color);
    void tree(const cv::Point &foot, int height, const cv::Scalar &leaves);
    void textLines(const cv::Rect &area, const cv::Scalar &ink, int pitch);
    void text(const char *words, double x, double y, double height, const cv::Scalar &ink, int thickness = 2);
    cv::Point at(double x, double y) const;
    double unit() { return m_random.uniform(0.0, 1.0); }

    cv::RNG &m_random;
    cv::Mat m_image;
};

} // namespace sim
