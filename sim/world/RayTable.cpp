#include "world/RayTable.h"

#include <algorithm>
#include <cmath>

namespace sim {
namespace {

bool isRay(const cv::Vec3f &ray)
{
    return ray[0] != 0 || ray[1] != 0 || ray[2] != 0;
}

} // namespace

RayTable::RayTable(const CameraModel &model)
    : m_size(model.size())
{
    m_pixels.reserve(static_cast<std::size_t>(m_size.area()));
    for (int y = 0; y < m_size.height; ++y) {
        for (int x = 0; x < m_size.width; ++x) {
            const Eigen::Vector3f ray = model.unproject({x, y}).cast<float>();
            m_pixels.emplace_back(ray.x(), ray.y(), ray.z());
        }
    }
    const cv::Rect picture(cv::Point(0, 0), m_size);
    const int step = side * side;
    for (int top = 0; top < m_size.height; top += step)
        for (int left = 0; left < m_size.width; left += step)
            addTile(cv::Rect(left, top, step, step) & picture);
    m_pixels = {};
}

void RayTable::BundleSet::add(const Bundle &bundle)
{
    axisX[count] = bundle.axis[0];
    axisY[count] = bundle.axis[1];
    axisZ[count] = bundle.axis[2];
    reach[count] = bundle.reach;
    cosine[count] = bundle.cosine;
    sine[count] = bundle.sine;
    ++count;
}

void RayTable::addTile(const cv::Rect &pixels)
{
    Tile tile;
    tile.first = m_blocks.size();
    tile.bundle = bundleOf(pixels);
    for (int y = pixels.y; y < pixels.br().y; y += side) {
        for (int x = pixels.x; x < pixels.br().x; x += side) {
            addBlock(x, y);
            tile.set.add(m_blocks.back().bundle);
        }
    }
    m_tiles.push_back(tile);
    if (m_tileSets.empty() || m_tileSets.back().count == lanes)
        m_tileSets.emplace_back();
    m_tileSets.back().add(tile.bundle);
}

void RayTable::addBlock(int left, int top)
{
    Block block;
    block.left = left;
    block.top = top;
    for (int i = 0; i < static_cast<int>(lanes); ++i) {
        const cv::Vec3f &pixel =
            ray(std::min(left + i % side, m_size.width - 1), std::min(top + i / side, m_size.height - 1));
        block.x[i] = pixel[0];
        block.y[i] = pixel[1];
        block.z[i] = pixel[2];
    }
    const cv::Rect pixels = cv::Rect(left, top, side, side) & cv::Rect(cv::Point(0, 0), m_size);
    block.bundle = bundleOf(pixels);
    const double halfDiagonal = std::hypot(pixels.width - 1, pixels.height - 1) / 2;
    block.pixelAngle = block.bundle.reach / static_cast<float>(std::max(halfDiagonal, 0.5));
    m_blocks.push_back(block);
}

RayTable::Bundle RayTable::bundleOf(const cv::Rect &pixels) const
{
    Bundle out;
    cv::Vec3d sum;
    out.empty = true;
    for (int y = pixels.y; y < pixels.br().y; ++y) {
        for (int x = pixels.x; x < pixels.br().x; ++x) {
            sum += cv::Vec3d(ray(x, y));
            out.whole = out.whole && isRay(ray(x, y));
            out.empty = out.empty && !isRay(ray(x, y));
        }
    }
    if (out.empty)
        return out;
    const double norm = cv::norm(sum);
    for (int k = 0; k < 3; ++k)
        out.axis[k] = norm > 1e-9 ? static_cast<float>(sum[k] / norm) : out.axis[k];
    const cv::Vec3f axis(out.axis);
    double widest = 0;
    for (int y = pixels.y; y < pixels.br().y; ++y)
        for (int x = pixels.x; x < pixels.br().x; ++x)
            if (isRay(ray(x, y)))
                widest = std::max(widest, cv::norm(ray(x, y) - axis));
    const double angle = 2 * std::asin(std::min(1.0, widest / 2)) + 1e-5;
    out.reach = static_cast<float>(widest + 1e-5);
    out.cosine = static_cast<float>(std::cos(angle));
    out.sine = static_cast<float>(std::sin(angle));
    if (out.whole)
        addCorners(pixels, out);
    return out;
}

void RayTable::addCorners(const cv::Rect &pixels, Bundle &bundle) const
{
    const int right = pixels.br().x - 1;
    const int bottom = pixels.br().y - 1;
    const cv::Vec3f corners[4] = {
        ray(pixels.x, pixels.y), ray(right, pixels.y), ray(right, bottom), ray(pixels.x, bottom)};
    double slack = 0;
    for (int y = pixels.y; y <= bottom; ++y) {
        for (int x = pixels.x; x <= right; ++x) {
            const float a =
                static_cast<float>(x - pixels.x) / static_cast<float>(std::max(1, right - pixels.x));
            const float b =
                static_cast<float>(y - pixels.y) / static_cast<float>(std::max(1, bottom - pixels.y));
            const cv::Vec3f patch = (corners[0] * (1 - a) + corners[1] * a) * (1 - b)
                + (corners[3] * (1 - a) + corners[2] * a) * b;
            slack = std::max(slack, cv::norm(ray(x, y) - patch));
        }
    }
    bundle.slack = static_cast<float>(slack + 2e-6);
    for (int k = 0; k < 4; ++k) {
        bundle.cornerX[k] = corners[k][0];
        bundle.cornerY[k] = corners[k][1];
        bundle.cornerZ[k] = corners[k][2];
        const cv::Vec3f across = corners[k].cross(corners[(k + 1) % 4]);
        const double length = cv::norm(across);
        const cv::Vec3f normal = length > 1e-9 ? across * (1 / length) : cv::Vec3f();
        bundle.sideX[k] = normal[0];
        bundle.sideY[k] = normal[1];
        bundle.sideZ[k] = normal[2];
    }
}

} // namespace sim
