#include "world/Painter.h"

#include "world/Artwork.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace sim {
namespace {

/// Texels a metre: as much as the nearest look at it can show, with all textures together some tens of
/// megabytes.
double densityOf(Paint paint, double area)
{
    switch (paint) {
    case Paint::Wall:
    case Paint::AccentWall:
        return 150;
    case Paint::Tiles:
        return 110;
    case Paint::Boards:
        return 200;
    case Paint::Lamp:
        return 60;
    case Paint::Landscape:
    case Paint::Abstract:
    case Paint::Portrait:
    case Paint::Poster:
    case Paint::Noticeboard:
    case Paint::Monitor:
    case Paint::Books:
    case Paint::Folders:
    case Paint::Keyboard:
        return 420;
    case Paint::Television:
    case Paint::Whiteboard:
    case Paint::Window:
        return 340;
    default:
        return area > 0.6 ? 220 : 300;
    }
}

const cv::Scalar spineColors[] = {{150, 46, 40}, {38, 72, 112}, {196, 160, 74}, {52, 96, 70}, {226, 220, 204},
    {92, 58, 92}, {40, 44, 52}, {188, 104, 52}, {116, 136, 146}, {214, 196, 150}};

} // namespace

Painter::Painter(const Surface &surface, unsigned seed)
    : m_surface(surface)
    , m_random((std::uint64_t(seed) << 32) + 7919 * surface.variant + 17)
    , m_density(densityOf(surface.paint, surface.width * surface.height))
    , m_size(std::max(4, px(surface.width)), std::max(4, px(surface.height)))
    , m_level(std::abs(surface.normal.y()) > 0.5)
{
    m_random.next();
}

bool Painter::isLuminous(Paint paint)
{
    return paint == Paint::Lamp || paint == Paint::Window || paint == Paint::Monitor
        || paint == Paint::Television;
}

double Painter::unit()
{
    return m_random.uniform(0.0, 1.0);
}

cv::Scalar Painter::vary(const cv::Scalar &color, double amount)
{
    const double factor = 1 + amount * (2 * unit() - 1);
    return {color[0] * factor, color[1] * factor, color[2] * factor};
}

cv::Mat Painter::noise(double a, double b)
{
    const cv::Size coarse(std::max(2, static_cast<int>(m_surface.width / a) + 2),
        std::max(2, static_cast<int>(m_surface.height / b) + 2));
    cv::Mat small(std::min(coarse.height, m_size.height), std::min(coarse.width, m_size.width), CV_32FC1);
    m_random.fill(small, cv::RNG::UNIFORM, -1.0, 1.0);
    cv::Mat out;
    cv::resize(small, out, m_size, 0, 0, cv::INTER_LINEAR);
    return out;
}

cv::Mat Painter::tinted(const cv::Scalar &color, const cv::Mat &factor) const
{
    cv::Mat channels[3];
    for (int c = 0; c < 3; ++c)
        factor.convertTo(channels[c], CV_8U, color[c]);
    cv::Mat out;
    cv::merge(channels, 3, out);
    return out;
}

cv::Mat Painter::plain(const cv::Scalar &color, double roughness, double grain)
{
    cv::Mat factor = 1 + roughness * noise(grain, grain) + 0.35 * roughness * noise(0.5, 0.5);
    return tinted(color, factor);
}

/// A darker rim, as worn or rounded edges have.
void Painter::edge(cv::Mat &image, double strength) const
{
    const int thickness = std::max(1, px(0.004));
    cv::Mat rim = image.clone();
    rim *= 1 - strength;
    rim(cv::Rect(cv::Point(), image.size())).copyTo(rim);
    const cv::Rect inner(thickness, thickness, image.cols - 2 * thickness, image.rows - 2 * thickness);
    if (inner.width > 0 && inner.height > 0) {
        image(inner).copyTo(rim(inner));
        image = rim;
    }
}

cv::Mat Painter::wood(const cv::Scalar &color, bool alongX)
{
    cv::Mat fine = alongX ? noise(0.25, 0.004) : noise(0.004, 0.25);
    cv::Mat broad = alongX ? noise(0.6, 0.03) : noise(0.03, 0.6);
    cv::Mat out = tinted(color, 1 + 0.09 * fine + 0.12 * broad);
    edge(out, 0.25);
    return out;
}

cv::Mat Painter::boards()
{
    cv::Mat tone(m_size, CV_32FC1, cv::Scalar(1));
    const double width = 0.145;
    for (int column = 0; column * width < m_surface.width; ++column) {
        const cv::Range x(std::min(m_size.width, px(column * width + 1e-6)),
            std::min(m_size.width, px((column + 1) * width)));
        double start = -1.1 * unit();
        while (start < m_surface.height && x.start < x.end) {
            const double end = start + 0.9 + 0.5 * unit();
            const int y0 = std::clamp(static_cast<int>(start * m_density), 0, m_size.height);
            const int y1 = std::clamp(static_cast<int>(end * m_density), 0, m_size.height);
            if (y1 > y0) {
                cv::Mat board = tone(cv::Range(y0, y1), x);
                board = cv::Scalar(0.78 + 0.36 * unit());
                board.row(0) *= 0.45;
                board.col(0) *= 0.45;
            }
            start = end;
        }
    }
    cv::Mat grain = 1 + 0.10 * noise(0.005, 0.22) + 0.10 * noise(0.02, 0.5) + 0.05 * noise(0.006, 0.03);
    return tinted({164, 118, 76}, tone.mul(grain));
}

cv::Mat Painter::ceilingTiles()
{
    cv::Mat out = plain({226, 226, 222}, 0.015, 0.012);
    const int tile = px(0.6);
    for (int y = tile / 3; y < m_size.height; y += tile)
        cv::line(out, {0, y}, {m_size.width, y}, {172, 172, 168}, 2);
    for (int x = tile / 2; x < m_size.width; x += tile)
        cv::line(out, {x, 0}, {x, m_size.height}, {172, 172, 168}, 2);
    for (int i = 0; i < 4200; ++i)
        cv::circle(out, {static_cast<int>(unit() * m_size.width), static_cast<int>(unit() * m_size.height)},
            0, cv::Scalar::all(176 + 30 * unit()), cv::FILLED);
    return out;
}

cv::Mat Painter::carpet()
{
    const cv::Scalar ground(128, 44, 46);
    const cv::Scalar light(206, 178, 128);
    const cv::Scalar dark(42, 48, 78);
    cv::Mat out(m_size, CV_8UC3, ground);
    const cv::Rect all(cv::Point(), m_size);
    int inset = px(0.05);
    for (const cv::Scalar &color : {light, dark, light}) {
        if (2 * inset < std::min(m_size.width, m_size.height))
            cv::rectangle(out, all.tl() + cv::Point(inset, inset), all.br() - cv::Point(inset, inset), color,
                px(0.025));
        inset += px(0.06);
    }
    const int step = px(0.30);
    for (int row = 0; row * step < m_size.height - 2 * inset; ++row) {
        for (int column = 0; column * step < m_size.width - 2 * inset; ++column) {
            const cv::Point c(inset + column * step + step / 2, inset + row * step + step / 2);
            const int r = step * 2 / 5;
            const cv::Point diamond[] = {
                c + cv::Point(r, 0), c + cv::Point(0, r), c - cv::Point(r, 0), c - cv::Point(0, r)};
            cv::fillConvexPoly(out, diamond, 4, (row + column) % 2 ? dark : light, cv::LINE_AA);
            cv::circle(out, c, r / 2, (row + column) % 2 ? light : ground, px(0.015), cv::LINE_AA);
        }
    }
    cv::Mat pile = 1 + 0.16 * noise(0.008, 0.008) + 0.08 * noise(0.06, 0.06);
    cv::Mat wide;
    cv::merge(std::vector<cv::Mat>(3, pile), wide);
    cv::multiply(out, wide, out, 1, CV_8U);
    return out;
}

cv::Mat Painter::lamp()
{
    cv::Mat out(m_size, CV_8UC3, cv::Scalar(252, 252, 244));
    cv::rectangle(out, {0, 0}, {m_size.width - 1, m_size.height - 1}, {196, 198, 196}, 2);
    return out;
}

cv::Mat Painter::fabric(const cv::Scalar &color, bool striped)
{
    cv::Mat factor = 1 + 0.13 * noise(0.004, 0.004) + 0.07 * noise(0.008, 0.05) + 0.07 * noise(0.12, 0.12);
    cv::Mat out = tinted(color, factor);
    if (striped) {
        const int step = px(0.06);
        for (int x = step / 2; x < m_size.width; x += step)
            cv::line(out, {x, 0}, {x, m_size.height}, {236, 226, 200}, std::max(1, step / 5), cv::LINE_AA);
        for (int y = step / 2; y < m_size.height; y += 2 * step)
            cv::line(out, {0, y}, {m_size.width, y}, {60, 58, 70}, 2, cv::LINE_AA);
    } else {
        edge(out, 0.35);
    }
    return out;
}

cv::Mat Painter::cardboard()
{
    const cv::Scalar brown = vary({178, 136, 92}, 0.12);
    cv::Mat out = tinted(brown, 1 + 0.04 * noise(0.004, 0.06) + 0.06 * noise(0.15, 0.15));
    edge(out, 0.3);
    const int w = m_size.width;
    const int h = m_size.height;
    if (m_level) {
        cv::rectangle(out, {0, h / 2 - px(0.025)}, {w, h / 2 + px(0.025)}, {206, 178, 128}, cv::FILLED);
        cv::line(out, {0, h / 2}, {w, h / 2}, {96, 72, 48}, 2);
    } else if (std::min(m_surface.width, m_surface.height) > 0.1 && unit() < 0.8) {
        const cv::Rect label(w / 8, h / 4, w * 2 / 5, h * 2 / 5);
        cv::rectangle(out, label, {238, 236, 228}, cv::FILLED);
        for (int x = label.x + 4; x < label.br().x - 4; x += 2 + static_cast<int>(4 * unit()))
            cv::line(out, {x, label.y + label.height / 2}, {x, label.br().y - 4}, {30, 30, 30},
                1 + static_cast<int>(2 * unit()));
        for (int y = label.y + 5; y < label.y + label.height / 2 - 3; y += 6)
            cv::line(out, {label.x + 4, y},
                {label.x + 4 + static_cast<int>((0.3 + 0.6 * unit()) * (label.width - 8)), y}, {60, 60, 66},
                2);
        cv::arrowedLine(
            out, {w * 4 / 5, h * 4 / 5}, {w * 4 / 5, h / 3}, {60, 44, 34}, 3, cv::LINE_AA, 0, 0.35);
    }
    return out;
}

/// The backs of books or folders in a row; pages from above.
cv::Mat Painter::spines(bool folders)
{
    if (m_level)
        return tinted({226, 218, 200}, 1 + 0.12 * noise(0.004, 0.3));
    cv::Mat out(m_size, CV_8UC3, cv::Scalar(30, 26, 24));
    int x = 0;
    while (x < m_size.width) {
        const int width = folders ? px(0.06 + 0.02 * unit()) : px(0.018 + 0.03 * unit());
        const int top = folders ? 0 : static_cast<int>(unit() * unit() * 0.25 * m_size.height);
        const cv::Scalar color = vary(spineColors[m_random.uniform(0, 10)], 0.2);
        const cv::Scalar ink =
            color[0] + color[1] + color[2] > 330 ? cv::Scalar(40, 36, 36) : cv::Scalar(224, 208, 160);
        const cv::Rect spine =
            cv::Rect(x, top, width - 1, m_size.height - top) & cv::Rect(cv::Point(), m_size);
        if (spine.width > 1) {
            cv::rectangle(out, spine, color, cv::FILLED);
            const cv::Rect label(spine.x + spine.width / 5, spine.y + spine.height / 6,
                std::max(1, spine.width * 3 / 5), spine.height / 3);
            if (folders) {
                cv::rectangle(out, label, {236, 234, 226}, cv::FILLED);
                for (int y = label.y + 4; y < label.br().y - 2; y += 7)
                    cv::line(out, {label.x + 2, y},
                        {label.x + 2 + static_cast<int>(unit() * (label.width - 4)), y}, {50, 50, 60}, 2);
                cv::circle(out, {spine.x + spine.width / 2, spine.y + spine.height * 4 / 5}, spine.width / 5,
                    {24, 24, 26}, 3, cv::LINE_AA);
            } else {
                for (const double part : {0.08, 0.12, 0.86})
                    cv::line(out, {spine.x, spine.y + static_cast<int>(part * spine.height)},
                        {spine.br().x - 1, spine.y + static_cast<int>(part * spine.height)}, ink, 1);
                for (int y = label.y; y < label.br().y; y += 3 + static_cast<int>(3 * unit()))
                    cv::line(out, {label.x, y},
                        {label.x + static_cast<int>((0.4 + 0.6 * unit()) * label.width), y}, ink, 1);
            }
            cv::line(out, spine.tl(), {spine.x, spine.br().y}, color * 0.6, 1);
        }
        x += width;
    }
    return out;
}

cv::Mat Painter::panelled(const cv::Scalar &color, int columns, int rows, bool handles)
{
    cv::Mat out = plain(color, 0.02, 0.01);
    if (m_level || m_surface.width < 0.38 || m_surface.height < 0.3) {
        edge(out, 0.2);
        return out;
    }
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const cv::Rect panel(m_size.width * column / columns, m_size.height * row / rows,
                m_size.width / columns, m_size.height / rows);
            cv::rectangle(out, panel, color * 0.35, std::max(2, px(0.006)));
            if (!handles)
                continue;
            const cv::Scalar steel(70, 72, 76);
            if (panel.width > panel.height * 3 / 2 || rows > 1)
                cv::line(out, {panel.x + panel.width * 2 / 5, panel.y + panel.height / 4},
                    {panel.x + panel.width * 3 / 5, panel.y + panel.height / 4}, steel, px(0.014),
                    cv::LINE_AA);
            else
                cv::line(out,
                    {panel.x + panel.width * (column % 2 ? 1 : 9) / 10, panel.y + panel.height * 2 / 5},
                    {panel.x + panel.width * (column % 2 ? 1 : 9) / 10, panel.y + panel.height * 3 / 5},
                    steel, px(0.014), cv::LINE_AA);
        }
    }
    return out;
}

cv::Mat Painter::door()
{
    cv::Mat out = wood({188, 152, 108}, false);
    if (m_surface.width < 0.5)
        return out;
    for (const double top : {0.10, 0.55}) {
        const cv::Rect panel(m_size.width / 6, static_cast<int>(top * m_size.height), m_size.width * 2 / 3,
            static_cast<int>(0.36 * m_size.height));
        cv::rectangle(out, panel, {120, 92, 60}, px(0.012));
        cv::rectangle(out, panel - cv::Point(3, 3), {214, 182, 140}, 2);
    }
    return out;
}

cv::Mat Painter::radiator()
{
    cv::Mat out = plain({222, 222, 216}, 0.01);
    const int step = px(0.06);
    for (int x = step / 2; x < m_size.width; x += step) {
        cv::line(out, {x, px(0.03)}, {x, m_size.height - px(0.03)}, {150, 150, 146}, std::max(1, step / 5));
        cv::line(out, {x + step / 4, px(0.03)}, {x + step / 4, m_size.height - px(0.03)}, {240, 240, 236}, 2);
    }
    return out;
}

cv::Mat Painter::keyboard()
{
    cv::Mat out(m_size, CV_8UC3, cv::Scalar(44, 45, 48));
    if (!m_level)
        return out;
    const double pitch = 0.024;
    for (int row = 0; row < 5; ++row) {
        for (int column = 0; column < 17; ++column) {
            const cv::Rect key(px(0.012 + column * pitch + 0.006 * (row % 3)), px(0.014 + row * pitch),
                px(0.019), px(0.019));
            cv::rectangle(out, key & cv::Rect(cv::Point(), m_size), vary({196, 198, 200}, 0.08), cv::FILLED);
            cv::circle(out, (key.tl() + key.br()) / 2, 1, {60, 60, 64}, cv::FILLED);
        }
    }
    return out;
}

cv::Mat Painter::pot()
{
    cv::Mat out = plain({190, 96, 62}, 0.05, 0.01);
    if (m_level)
        return plain({66, 48, 36}, 0.3, 0.015);
    cv::line(out, {0, m_size.height / 6}, {m_size.width, m_size.height / 6}, {232, 210, 180}, px(0.012));
    const int step = std::max(6, px(0.05));
    for (int x = 0; x < m_size.width; x += step) {
        cv::line(out, {x, m_size.height / 3}, {x + step / 2, m_size.height / 2}, {232, 210, 180}, px(0.006),
            cv::LINE_AA);
        cv::line(out, {x + step / 2, m_size.height / 2}, {x + step, m_size.height / 3}, {232, 210, 180},
            px(0.006), cv::LINE_AA);
    }
    return out;
}

cv::Mat Painter::paint()
{
    switch (m_surface.paint) {
    case Paint::Wall:
        return plain({216, 210, 198}, 0.018, 0.009);
    case Paint::AccentWall:
        return plain({104, 138, 150}, 0.03, 0.009);
    case Paint::Boards:
        return boards();
    case Paint::Tiles:
        return ceilingTiles();
    case Paint::Carpet:
        return carpet();
    case Paint::Lamp:
        return lamp();
    case Paint::Wood:
        return wood({196, 158, 112}, m_surface.width >= m_surface.height);
    case Paint::DarkWood:
        return wood({96, 66, 46}, m_surface.width >= m_surface.height);
    case Paint::White: {
        cv::Mat out = plain({228, 227, 222}, 0.01, 0.01);
        edge(out, 0.14);
        return out;
    }
    case Paint::Metal:
        return plain({150, 153, 158}, 0.05, 0.006);
    case Paint::Plastic: {
        cv::Mat out = plain({48, 49, 53}, 0.08, 0.006);
        edge(out, -0.5);
        return out;
    }
    case Paint::Fabric:
        return fabric({82, 98, 122}, false);
    case Paint::Cushion:
        return fabric({204, 150, 58}, true);
    case Paint::Cardboard:
        return cardboard();
    case Paint::Books:
        return spines(false);
    case Paint::Folders:
        return spines(true);
    case Paint::Cupboard:
        return panelled({206, 202, 192}, m_surface.width > 1.5 ? 4 : 2, 1, true);
    case Paint::Drawers:
        return panelled({192, 194, 196}, 1, 3, true);
    case Paint::Door:
        return door();
    case Paint::Radiator:
        return radiator();
    case Paint::Keyboard:
        return keyboard();
    case Paint::Pot:
        return pot();
    default:
        return Artwork(m_size, m_random).paint(m_surface.paint);
    }
}

} // namespace sim
