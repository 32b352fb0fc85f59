#pragma once

#include "world/Surface.h"

#include <opencv2/core.hpp>

namespace sim {

/// Paints the unshaded picture of one surface. The same surface and seed give the same picture.
class Painter {
public:
    Painter(const Surface &surface, unsigned seed);

    /// CV_8UC3, red, green, blue; `density()` texels to the metre.
    cv::Mat paint();
    double density() const { return m_density; }
    /// True for what shines by itself.
    static bool isLuminous(Paint paint);

private:
    cv::Mat plain(const cv::Scalar &color, double roughness, double grain = 0.004);
    cv::Mat wood(const cv::Scalar &color, bool alongX);
    cv::Mat boards();
    cv::Mat ceilingTiles();
    cv::Mat carpet();
    cv::Mat lamp();
    cv::Mat fabric(const cv::Scalar &color, bool striped);
    cv::Mat cardboard();
    cv::Mat spines(bool folders);
    cv::Mat panelled(const cv::Scalar &color, int columns, int rows, bool handles);
    cv::Mat door();
    cv::Mat radiator();
    cv::Mat keyboard();
    cv::Mat pot();
    void edge(cv::Mat &image, double strength) const;

    /// A field of smooth random values, -1 to 1, whose lumps are about `a` by `b` metres.
    cv::Mat noise(double a, double b);
    cv::Mat tinted(const cv::Scalar &color, const cv::Mat &factor) const;
    int px(double metres) const { return std::max(1, static_cast<int>(metres * m_density + 0.5)); }
    double unit();
    cv::Scalar vary(const cv::Scalar &color, double amount);

    const Surface &m_surface;
    cv::RNG m_random;
    double m_density;
    cv::Size m_size;
    bool m_level; ///< looks up or down
};

} // namespace sim
