#include "world/Artwork.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace sim {

Artwork::Artwork(const cv::Size &size, cv::RNG &random)
    : m_random(random)
    , m_image(size, CV_8UC3, cv::Scalar(235, 233, 228))
{
}

cv::Mat Artwork::paint(Paint paint)
{
    switch (paint) {
    case Paint::Window:
        window();
        break;
    case Paint::Monitor:
        monitor();
        break;
    case Paint::Television:
        television();
        break;
    case Paint::Whiteboard:
        whiteboard();
        break;
    case Paint::Landscape:
        landscape();
        break;
    case Paint::Abstract:
        abstractArt();
        break;
    case Paint::Portrait:
        portrait();
        break;
    case Paint::Poster:
        poster();
        break;
    case Paint::Chessboard:
        chessboard();
        break;
    default:
        noticeboard();
        break;
    }
    return m_image;
}

cv::Point Artwork::at(double x, double y) const
{
    return {static_cast<int>(x * m_image.cols), static_cast<int>(y * m_image.rows)};
}

void Artwork::gradient(const cv::Scalar &top, const cv::Scalar &bottom)
{
    for (int y = 0; y < m_image.rows; ++y) {
        const double part = double(y) / m_image.rows;
        m_image.row(y) = cv::Scalar(top * (1 - part) + bottom * part);
    }
}

/// A ridge across the whole picture, about `height` from the top (parts of it), filled down to the bottom.
void Artwork::hills(double height, double roughness, const cv::Scalar &color)
{
    const double a = 6.3 * unit();
    const double b = 6.3 * unit();
    std::vector<cv::Point> ridge{at(1, 1.1), at(0, 1.1)};
    for (int i = 0; i <= 60; ++i) {
        const double x = i / 60.0;
        const double y = height
            + roughness * (std::sin(4.1 * x + a) + 0.5 * std::sin(11.3 * x + b) + 0.3 * (unit() - 0.5));
        ridge.push_back(at(x, y));
    }
    cv::fillPoly(m_image, std::vector<std::vector<cv::Point>>{ridge}, color, cv::LINE_AA);
}

void Artwork::tree(const cv::Point &foot, int height, const cv::Scalar &leaves)
{
    cv::line(
        m_image, foot, foot - cv::Point(0, height / 2), {78, 58, 42}, std::max(1, height / 14), cv::LINE_AA);
    for (int i = 0; i < 26; ++i) {
        const cv::Point at(foot.x + static_cast<int>((unit() - 0.5) * height * 0.55),
            foot.y - height / 2 - static_cast<int>(unit() * height * 0.5));
        cv::circle(m_image, at, std::max(2, static_cast<int>(height * (0.05 + 0.07 * unit()))),
            leaves * (0.7 + 0.5 * unit()), cv::FILLED, cv::LINE_AA);
    }
}

void Artwork::textLines(const cv::Rect &area, const cv::Scalar &ink, int pitch)
{
    for (int y = area.y; y + pitch / 2 < area.br().y; y += pitch) {
        int x = area.x;
        const int end = area.x + static_cast<int>(area.width * (0.55 + 0.45 * unit()));
        while (x < end) {
            const int word = pitch + static_cast<int>(3 * pitch * unit());
            cv::line(m_image, {x, y}, {std::min(x + word, end), y}, ink, std::max(1, pitch / 3));
            x += word + pitch;
        }
    }
}

void Artwork::text(const char *words, double x, double y, double height, const cv::Scalar &ink, int thickness)
{
    cv::putText(m_image, words, at(x, y), cv::FONT_HERSHEY_DUPLEX, height * m_image.rows / 22.0, ink,
        thickness, cv::LINE_AA);
}

void Artwork::window()
{
    gradient({150, 190, 232}, {236, 240, 242});
    for (int i = 0; i < 26; ++i)
        cv::ellipse(m_image, at(unit(), 0.08 + 0.3 * unit()),
            cv::Size(20 + static_cast<int>(60 * unit()), 6 + static_cast<int>(12 * unit())), 0, 0, 360,
            {250, 250, 250}, cv::FILLED, cv::LINE_AA);
    cv::GaussianBlur(m_image, m_image, {0, 0}, 4);
    hills(0.58, 0.03, {138, 160, 168});
    for (int i = 0; i < 9; ++i) {
        const cv::Rect house(at(0.04 + 0.105 * i, 0.46 + 0.14 * unit()), at(0.12 + 0.105 * i, 1));
        const double shade = 0.75 + 0.3 * unit();
        cv::rectangle(m_image, house, cv::Scalar(204, 186, 168) * shade, cv::FILLED);
        for (int y = house.y + 8; y < m_image.rows; y += 17)
            for (int x = house.x + 6; x + 7 < house.br().x; x += 14)
                cv::rectangle(m_image, cv::Rect(x, y, 7, 10),
                    unit() < 0.3 ? cv::Scalar(236, 214, 150) : cv::Scalar(92, 108, 124), cv::FILLED);
    }
    hills(0.87, 0.02, {104, 138, 84});
    for (int i = 0; i < 8; ++i)
        tree(at(0.03 + 0.13 * i + 0.05 * unit(), 0.97), static_cast<int>(m_image.rows * (0.3 + 0.2 * unit())),
            {84, 128, 62});
}

void Artwork::monitor()
{
    m_image = cv::Scalar(28, 32, 40);
    cv::rectangle(m_image, at(0, 0), at(1, 0.06), {58, 64, 76}, cv::FILLED);
    cv::rectangle(m_image, at(0, 0.06), at(0.17, 1), {38, 43, 53}, cv::FILLED);
    textLines({at(0.02, 0.12), at(0.15, 0.92)}, {128, 140, 156}, 9);
    const cv::Scalar inks[] = {
        {204, 120, 132}, {152, 195, 121}, {97, 175, 239}, {209, 154, 102}, {171, 178, 191}};
    for (int y = m_image.rows / 10; y < m_image.rows * 2 / 3; y += 8) {
        int x = m_image.cols / 5 + 12 * static_cast<int>(4 * unit());
        const int words = 1 + static_cast<int>(5 * unit());
        for (int i = 0; i < words && x < m_image.cols * 3 / 5; ++i) {
            const int length = 8 + static_cast<int>(34 * unit());
            cv::line(m_image, {x, y}, {x + length, y}, inks[m_random.uniform(0, 5)], 2);
            x += length + 7;
        }
    }
    const cv::Rect plot(at(0.66, 0.12), at(0.97, 0.60));
    cv::rectangle(m_image, plot, {18, 21, 27}, cv::FILLED);
    for (int curve = 0; curve < 3; ++curve) {
        cv::Point last;
        for (int i = 0; i <= 40; ++i) {
            const double y = 0.5 + 0.3 * std::sin(0.3 * i + 2 * curve) * std::cos(0.11 * i * (curve + 1));
            const cv::Point next(plot.x + plot.width * i / 40, plot.y + static_cast<int>(plot.height * y));
            if (i > 0)
                cv::line(m_image, last, next, inks[curve], 2, cv::LINE_AA);
            last = next;
        }
    }
    cv::rectangle(m_image, at(0.18, 0.70), at(0.98, 0.97), {16, 18, 23}, cv::FILLED);
    textLines({at(0.2, 0.73), at(0.9, 0.96)}, {142, 200, 140}, 9);
}

void Artwork::television()
{
    gradient({16, 40, 74}, {30, 104, 132});
    for (int i = 0; i < 14; ++i) {
        const double x = 0.5 + 0.42 * std::cos(0.9 * i);
        const double y = 0.5 + 0.36 * std::sin(1.7 * i);
        cv::line(m_image, at(0.5, 0.5), at(x, y), {60, 140, 166}, 1, cv::LINE_AA);
        cv::circle(m_image, at(x, y), 5 + i % 5, {110, 206, 216}, cv::FILLED, cv::LINE_AA);
    }
    for (int ring = 1; ring < 5; ++ring)
        cv::ellipse(m_image, at(0.5, 0.5), cv::Size(m_image.cols * ring / 11, m_image.rows * ring / 10), 0, 0,
            360, {54, 128, 156}, 1, cv::LINE_AA);
    cv::rectangle(m_image, at(0.22, 0.36), at(0.78, 0.64), {18, 44, 78}, cv::FILLED);
    text("Quivra", 0.27, 0.57, 0.17, {244, 248, 250}, 4);
    text("spatial sensing", 0.42, 0.622, 0.035, {150, 214, 222}, 1);
    cv::rectangle(m_image, at(0.06, 0.76), at(0.40, 0.94), {12, 30, 54}, cv::FILLED);
    for (int i = 0; i < 12; ++i)
        cv::rectangle(m_image, at(0.08 + 0.026 * i, 0.92 - 0.14 * unit()), at(0.098 + 0.026 * i, 0.925),
            {240, 170, 70}, cv::FILLED);
    textLines({at(0.5, 0.78), at(0.94, 0.95)}, {196, 222, 228}, 11);
}

void Artwork::whiteboard()
{
    m_image = cv::Scalar(240, 241, 240);
    const cv::Scalar blue(34, 62, 150);
    const cv::Scalar red(186, 40, 38);
    const cv::Scalar green(30, 118, 66);
    const cv::Scalar black(36, 36, 40);
    const char *labels[] = {"IMU", "stereo", "depth", "pose"};
    for (int i = 0; i < 4; ++i) {
        const double x = 0.05 + 0.24 * i;
        cv::rectangle(m_image, at(x, 0.14), at(x + 0.17, 0.30), blue, 3, cv::LINE_AA);
        text(labels[i], x + 0.02, 0.245, 0.05, black, 2);
        if (i < 3)
            cv::arrowedLine(m_image, at(x + 0.175, 0.22), at(x + 0.235, 0.22), red, 3, cv::LINE_AA, 0, 0.3);
    }
    cv::arrowedLine(m_image, at(0.08, 0.88), at(0.08, 0.45), black, 2, cv::LINE_AA, 0, 0.05);
    cv::arrowedLine(m_image, at(0.06, 0.86), at(0.46, 0.86), black, 2, cv::LINE_AA, 0, 0.05);
    cv::Point last = at(0.08, 0.8);
    for (int i = 1; i <= 50; ++i) {
        const cv::Point next =
            at(0.08 + 0.0072 * i, 0.8 - 0.3 * (1 - std::exp(-i / 14.0)) + 0.03 * std::sin(0.7 * i));
        cv::line(m_image, last, next, green, 3, cv::LINE_AA);
        last = next;
    }
    text("z = f b / d", 0.55, 0.48, 0.06, red, 2);
    text("T_wb = exp(x)", 0.55, 0.60, 0.055, blue, 2);
    const char *list[] = {"- calibrate", "- demo Friday!", "- order cables"};
    for (int i = 0; i < 3; ++i)
        text(list[i], 0.56, 0.72 + 0.085 * i, 0.042, black, 2);
    cv::circle(m_image, at(0.90, 0.56), m_image.rows / 12, green, 2, cv::LINE_AA);
}

void Artwork::landscape()
{
    gradient({92, 120, 176}, {250, 196, 128});
    cv::circle(m_image, at(0.66, 0.42), m_image.rows / 11, {255, 236, 190}, cv::FILLED, cv::LINE_AA);
    hills(0.50, 0.07, {126, 122, 158});
    hills(0.62, 0.05, {88, 104, 118});
    cv::rectangle(m_image, at(0, 0.72), at(1, 0.86), {140, 150, 160}, cv::FILLED);
    for (int i = 0; i < 60; ++i) {
        const cv::Point from = at(unit(), 0.73 + 0.12 * unit());
        cv::line(m_image, from, from + cv::Point(8 + static_cast<int>(20 * unit()), 0), {236, 200, 160}, 1);
    }
    hills(0.87, 0.015, {58, 76, 52});
    for (int i = 0; i < 7; ++i)
        tree(
            at(0.04 + 0.07 * i, 0.98), static_cast<int>(m_image.rows * (0.22 + 0.25 * unit())), {50, 84, 50});
}

void Artwork::abstractArt()
{
    m_image = cv::Scalar(238, 230, 212);
    const cv::Scalar colors[] = {{198, 62, 44}, {36, 78, 120}, {234, 178, 62}, {44, 44, 50}, {92, 148, 128}};
    for (int i = 0; i < 14; ++i) {
        const cv::Scalar &color = colors[m_random.uniform(0, 5)];
        const cv::Point c = at(0.1 + 0.8 * unit(), 0.1 + 0.8 * unit());
        const int r = static_cast<int>(m_image.rows * (0.04 + 0.15 * unit()));
        if (i % 3 == 0)
            cv::circle(m_image, c, r, color, cv::FILLED, cv::LINE_AA);
        else if (i % 3 == 1)
            cv::rectangle(m_image, c - cv::Point(r, r / 2), c + cv::Point(r, r / 2), color, cv::FILLED);
        else
            cv::fillConvexPoly(m_image,
                std::vector<cv::Point>{c - cv::Point(r, 0), c + cv::Point(r / 2, r), c + cv::Point(r, -r)},
                color, cv::LINE_AA);
    }
    for (int i = 0; i < 6; ++i)
        cv::line(m_image, at(unit(), 0), at(unit(), 1), {30, 30, 34}, 3, cv::LINE_AA);
}

void Artwork::portrait()
{
    gradient({96, 110, 96}, {52, 60, 58});
    const cv::Scalar coat = unit() < 0.5 ? cv::Scalar(58, 66, 104) : cv::Scalar(120, 52, 48);
    cv::ellipse(m_image, at(0.5, 1.02), cv::Size(m_image.cols * 2 / 5, m_image.rows * 2 / 5), 0, 180, 360,
        coat, cv::FILLED, cv::LINE_AA);
    cv::rectangle(m_image, at(0.43, 0.5), at(0.57, 0.68), {196, 152, 124}, cv::FILLED);
    cv::ellipse(m_image, at(0.5, 0.38), cv::Size(m_image.cols / 4, m_image.rows / 5), 0, 0, 360, {58, 40, 28},
        cv::FILLED, cv::LINE_AA);
    cv::ellipse(m_image, at(0.5, 0.42), cv::Size(m_image.cols / 5, m_image.rows / 6), 0, 0, 360,
        {220, 178, 148}, cv::FILLED, cv::LINE_AA);
    for (const double x : {0.42, 0.58})
        cv::circle(
            m_image, at(x, 0.41), std::max(2, m_image.cols / 40), {40, 34, 34}, cv::FILLED, cv::LINE_AA);
    cv::ellipse(m_image, at(0.5, 0.49), cv::Size(m_image.cols / 14, m_image.rows / 60), 0, 0, 180,
        {150, 70, 66}, 3, cv::LINE_AA);
    cv::line(m_image, at(0.5, 0.42), at(0.48, 0.46), {178, 132, 108}, 2, cv::LINE_AA);
}

void Artwork::poster()
{
    gradient({246, 238, 220}, {240, 200, 150});
    cv::rectangle(m_image, at(0, 0), at(1, 0.16), {190, 60, 44}, cv::FILLED);
    text("SEE", 0.08, 0.125, 0.09, {250, 244, 232}, 3);
    for (int i = 0; i < 6; ++i)
        cv::circle(m_image, at(0.5, 0.46), m_image.cols * (6 - i) / 15,
            i % 2 ? cv::Scalar(244, 226, 190) : cv::Scalar(32, 84, 112), cv::FILLED, cv::LINE_AA);
    cv::circle(m_image, at(0.46, 0.44), m_image.cols / 40, {255, 255, 255}, cv::FILLED, cv::LINE_AA);
    textLines({at(0.1, 0.74), at(0.9, 0.95)}, {70, 54, 48}, std::max(6, m_image.rows / 34));
}

void Artwork::chessboard()
{
    m_image = cv::Scalar(244, 244, 242);
    const int square = std::min(m_image.cols / 8, m_image.rows / 9);
    const cv::Point origin((m_image.cols - 7 * square) / 2, (m_image.rows - 8 * square) / 2);
    for (int row = 0; row < 8; ++row)
        for (int column = 0; column < 7; ++column)
            if ((row + column) % 2 == 0)
                cv::rectangle(m_image,
                    cv::Rect(origin.x + column * square, origin.y + row * square, square, square),
                    {22, 22, 24}, cv::FILLED);
}

void Artwork::noticeboard()
{
    m_image = cv::Scalar(186, 146, 100);
    for (int i = 0; i < 5200; ++i)
        cv::circle(
            m_image, at(unit(), unit()), 1, cv::Scalar(170, 128, 84) * (0.8 + 0.4 * unit()), cv::FILLED);
    const cv::Scalar papers[] = {
        {246, 244, 236}, {250, 232, 140}, {176, 220, 236}, {244, 184, 190}, {200, 232, 176}};
    for (int i = 0; i < 15; ++i) {
        const int row = i / 5;
        const cv::Point corner = at(0.03 + 0.19 * (i % 5) + 0.02 * unit(), 0.06 + 0.31 * row + 0.03 * unit());
        const cv::Rect note(corner,
            cv::Size(static_cast<int>(m_image.cols * (0.11 + 0.05 * unit())),
                static_cast<int>(m_image.rows * (0.17 + 0.09 * unit()))));
        cv::rectangle(m_image, note + cv::Point(3, 3), {128, 96, 62}, cv::FILLED);
        cv::rectangle(m_image, note, papers[m_random.uniform(0, 5)], cv::FILLED);
        textLines({note.tl() + cv::Point(6, 14), note.br() - cv::Point(6, 4)}, {70, 70, 84}, 7);
        cv::circle(
            m_image, note.tl() + cv::Point(note.width / 2, 5), 4, {196, 40, 40}, cv::FILLED, cv::LINE_AA);
    }
}

} // namespace sim
