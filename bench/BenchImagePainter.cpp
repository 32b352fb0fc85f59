#include "../tests/imaging/Frames.h"
#include "../tests/imaging/PlainChain.h"
#include "imaging/ImagePainter.h"
#include <QGuiApplication>
#include <QPainter>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>

/// Times `ImagePainter::paint` beside the bare library calls that make the same picture, turn by turn in one
/// run, and prints their ratio. A new frame before every turn; the last column is a repaint without one.

namespace {

struct Job {
    const char *name;
    int type;
    QSize frame;
};

const Job jobs[] = {
    {"Gray 640x400", ImageData::Gray, {640, 400}},
    {"Color 1920x1080", ImageData::Color, {1920, 1080}},
    {"Color 640x480", ImageData::Color, {640, 480}},
    {"YUYV 1920x1080", ImageData::YUYV, {1920, 1080}},
    {"YUV420p 1920x1080", ImageData::YUV420p, {1920, 1080}},
    {"JPEG 1920x1080", ImageData::JPEG, {1920, 1080}},
    {"Float 640x480", ImageData::Float, {640, 480}},
    {"Short 640x480", ImageData::Short, {640, 480}},
    {"IR 640x480", ImageData::IR, {640, 480}},
};
const QSize items[] = {{512, 400}, {1024, 768}};

/// A camera's JPEG has structure; noise would time the entropy decoder alone.
frames::Bytes cameraJpeg(const QSize &size)
{
    QImage image(size, QImage::Format_RGB888);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x / 8 + y / 16, (x ^ y) / 8 & 255, (x / 40 + y / 30) % 2 * 200));
    }
    QByteArray file;
    QBuffer device(&file);
    device.open(QIODevice::WriteOnly);
    image.save(&device, "JPG", 85);
    return frames::bytes(std::vector<char>(file.begin(), file.end()));
}

frames::Bytes bytesOf(const Job &job)
{
    return job.type == ImageData::JPEG ? cameraJpeg(job.frame) : frames::random(job.type, job.frame, 1);
}

class Bench {
public:
    Bench(const Job &job, const QSize &item)
        : m_job(job)
        , m_bytes(bytesOf(job))
        , m_target(item, QImage::Format_ARGB32_Premultiplied)
        , m_copy(static_cast<std::size_t>(m_bytes.size))
    {
        m_painter.setSource(&m_source);
        m_painter.setSize(item);
        m_look.range = {m_painter.minDistance(), m_painter.maxDistance()};
        newFrame();
    }

    void newFrame() { frames::set(m_source, m_job.type, m_job.frame, m_bytes); }

    void straight()
    {
        QPainter painter(&m_target);
        plain::paint(painter, m_target.size(), m_source.frame(), m_look);
    }

    void paint()
    {
        QPainter painter(&m_target);
        m_painter.paint(&painter);
    }

    void copy()
    {
        std::memcpy(m_copy.data(), m_bytes.data.get(), m_copy.size());
        benchmark::DoNotOptimize(m_copy.data());
    }

private:
    Job m_job;
    frames::Bytes m_bytes;
    ImageData m_source;
    ImagePainter m_painter;
    FrameLook m_look;
    QImage m_target;
    std::vector<unsigned char> m_copy;
};

template <class Work>
double milliseconds(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> &times)
{
    std::nth_element(
        times.begin(), times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2), times.end());
    return times[times.size() / 2];
}

struct Times {
    std::vector<double> straight;
    std::vector<double> paint;
    std::vector<double> repaint;
    std::vector<double> copy;
};

std::map<std::pair<int, int>, Times> allTimes;

void turn(Bench &bench, Times &times)
{
    bench.newFrame();
    times.straight.push_back(milliseconds([&] { bench.straight(); }));
    times.paint.push_back(milliseconds([&] { bench.paint(); }));
    times.repaint.push_back(milliseconds([&] { bench.paint(); }));
    times.copy.push_back(milliseconds([&] { bench.copy(); }));
}

void run(benchmark::State &state)
{
    const auto key = std::pair(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    Bench bench(jobs[key.first], items[key.second]);
    Times &times = allTimes[key];
    Times warmUp;
    turn(bench, warmUp);
    for ([[maybe_unused]] auto _ : state) {
        turn(bench, times);
        state.SetIterationTime(times.paint.back() / 1000);
    }
    state.SetLabel(jobs[key.first].name);
    state.counters["straight_ms"] = median(times.straight);
    state.counters["paint_ms"] = median(times.paint);
}

void printTable()
{
    std::printf("\n%-18s %-9s %12s %10s %6s %10s %10s\n", "type", "size", "straight_ms", "paint_ms", "ratio",
        "x memcpy", "repaint_ms");
    for (auto &[key, times] : allTimes) {
        const double straight = median(times.straight);
        const double paint = median(times.paint);
        const QSize item = items[key.second];
        std::printf("%-18s %4dx%-4d %12.3f %10.3f %6.2f %10.1f %10.3f\n", jobs[key.first].name, item.width(),
            item.height(), straight, paint, paint / straight, paint / median(times.copy),
            median(times.repaint));
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    cv::setNumThreads(1); // the painter uses one thread; so must what it is measured against
    auto *painting = benchmark::RegisterBenchmark("ImagePainter", run)->UseManualTime()->Iterations(150);
    for (int item = 0; item < static_cast<int>(std::size(items)); ++item) {
        for (int job = 0; job < static_cast<int>(std::size(jobs)); ++job)
            painting->Args({job, item});
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    printTable();
    return 0;
}
