#include "streams/HoleFiller.h"
#include "streams/RgbData.h"
#include "streams/RgbdData.h"
#include "streams/SgbmPictures.h"
#include "streams/TofData.h"
#include "streams/TofIrData.h"
#include "support/FakeColorCamera.h"
#include "support/FakeTofCamera.h"
#include "support/Pictures.h"

#include <QCoreApplication>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <functional>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <random>

/// Times what the stream models do with a frame beside the bare library call or the copy of the input, turn
/// by turn in one run, and prints the ratios.

namespace {

using Work = std::function<void()>;

struct Job {
    std::string name;
    std::string bareName;
    Work model;
    Work bare;
    std::vector<double> modelTimes{};
    std::vector<double> bareTimes{};
};

std::vector<unsigned char> randomBytes(std::size_t count)
{
    std::mt19937 generator(1);
    std::vector<unsigned char> bytes(count);
    for (unsigned char &byte : bytes)
        byte = static_cast<unsigned char>(generator());
    return bytes;
}

/// A room seen by a depth camera: slopes and steps, with a tenth of the samples missing.
std::vector<unsigned short> room(int width, int height)
{
    std::mt19937 generator(2);
    std::vector<unsigned short> samples;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int depth = 1500 + 3 * x + 2 * y + (x / 80 + y / 80) % 2 * 700 + int(generator() % 20);
            samples.push_back(static_cast<unsigned short>(generator() % 10 == 0 ? 0 : depth));
        }
    }
    return samples;
}

template <class Record>
Record record(std::size_t width, std::size_t height, const std::vector<unsigned char> &bytes)
{
    Record image;
    image.width = width;
    image.height = height;
    image.data = pictures::bufferOf(bytes);
    image.dataSize = static_cast<unsigned int>(bytes.size());
    return image;
}

/// A copy of `source` into memory that has been touched before.
Work copyOf(pictures::Buffer source, std::size_t size)
{
    const auto target = std::make_shared<std::vector<unsigned char>>(size);
    return [=] {
        std::memcpy(target->data(), source.get(), size);
        benchmark::DoNotOptimize(target->data());
    };
}

Job tofJob(const char *name, int type)
{
    const auto camera = std::make_shared<FakeTofCamera>();
    camera->manufacturerResult = 1;
    auto frame = record<qv::DepthImage>(640, 480, randomBytes(640 * 480 * 2));
    frame.type = type;
    std::shared_ptr<QObject> model;
    if (type == 0) {
        const auto tof = std::make_shared<TofData>(camera, nullptr);
        tof->control(true);
        model = tof;
    } else {
        const auto infrared = std::make_shared<TofIrData>(camera, nullptr);
        infrared->control(true);
        model = infrared;
    }
    return {name, "memcpy", [camera, model, frame] { camera->deliver(frame); },
        copyOf(frame.data, frame.dataSize)};
}

Job rgbdJob()
{
    const auto camera = std::make_shared<FakeTofCamera>();
    const auto model = std::make_shared<RgbdData>(camera, nullptr);
    model->control(true);
    qv::DepthColorImage frame;
    frame.width = 640;
    frame.height = 480;
    frame.data = pictures::bufferOf(randomBytes(640 * 480 * 7));
    return {"7-byte colour 640x480", "memcpy", [camera, model, frame] { camera->colorDepth.deliver(frame); },
        copyOf(frame.data, 640 * 480 * 7)};
}

Job holesJob()
{
    const auto samples = std::make_shared<std::vector<unsigned short>>(room(640, 400));
    qv::SgbmImage frame;
    frame.width = 640;
    frame.height = 400;
    frame.data = pictures::bufferOf(*samples);
    const auto filler = std::make_shared<HoleFiller>();
    const auto closing = [samples] {
        const cv::Mat kernel = cv::getStructuringElement(cv::MORPH_ELLIPSE, cv::Size(7, 7));
        cv::Mat valid, closed;
        cv::inRange(cv::Mat(400, 640, CV_16UC1, samples->data()), 200, 10000, valid);
        cv::morphologyEx(valid, closed, cv::MORPH_CLOSE, kernel, cv::Point(-1, -1), 2, cv::BORDER_CONSTANT);
    };
    return {
        "hole filling 640x400, size 5", "closing alone", [=] { filler->fillHoles(frame, {}, 5); }, closing};
}

Job coloursJob(const char *name, std::optional<int> colorMap)
{
    const auto samples = std::make_shared<std::vector<unsigned short>>(room(640, 400));
    const auto colors = std::make_shared<SgbmColors>();
    const auto rgb = std::make_shared<std::vector<unsigned char>>(640 * 400 * 3);
    const auto paint = [=] {
        colors->depthToPixels(reinterpret_cast<const unsigned char *>(samples->data()), samples->size(),
            {0.1, 8.0}, colorMap, rgb->data());
    };
    const auto bare = [=] {
        cv::Mat grey, colored;
        cv::Mat(400, 640, CV_16UC1, samples->data())
            .convertTo(grey, CV_8U, 255 / 7900.0, -100 * 255 / 7900.0);
        cv::applyColorMap(grey, colored, colorMap.value_or(cv::COLORMAP_JET));
        cv::cvtColor(colored, colored, cv::COLOR_BGR2RGB);
    };
    return {name, "convertTo, applyColorMap", paint, bare};
}

Job colorJob(
    const char *name, int codec, const std::vector<unsigned char> &bytes, Work bare, const char *bareName)
{
    const auto camera = std::make_shared<FakeColorCamera>();
    const auto model = std::make_shared<RgbData>(camera, nullptr);
    model->control(true);
    auto frame = record<qv::ColorImage>(1920, 1080, bytes);
    frame.codec = codec;
    camera->deliver(frame);
    return {name, bareName, [camera, model] { model->toMat(); }, std::move(bare)};
}

Job yuvJob(const char *name, int codec, int rows, int type, int conversion)
{
    const auto bytes = std::make_shared<std::vector<unsigned char>>(
        randomBytes(std::size_t(rows) * 1920 * std::size_t(CV_MAT_CN(type))));
    const auto bare = [=] {
        cv::Mat bgr;
        cv::cvtColor(cv::Mat(rows, 1920, type, bytes->data()), bgr, conversion);
    };
    return colorJob(name, codec, *bytes, bare, "cvtColor");
}

Job jpegJob()
{
    // A camera's picture has structure; noise would time the entropy decoder alone.
    cv::Mat picture(1080, 1920, CV_8UC3);
    for (int y = 0; y < picture.rows; ++y) {
        for (int x = 0; x < picture.cols; ++x)
            picture.at<cv::Vec3b>(y, x) =
                cv::Vec3b(static_cast<unsigned char>(x / 8 + y / 16), static_cast<unsigned char>((x ^ y) / 8),
                    static_cast<unsigned char>((x / 40 + y / 30) % 2 * 200));
    }
    const auto bytes = std::make_shared<std::vector<unsigned char>>();
    cv::imencode(".jpg", picture, *bytes, {cv::IMWRITE_JPEG_QUALITY, 85});
    const auto bare = [bytes] { cv::imdecode(*bytes, cv::IMREAD_ANYCOLOR); };
    return colorJob("JPEG 1920x1080", 2, *bytes, bare, "imdecode");
}

std::vector<Job> makeJobs()
{
    return {tofJob("16-bit mm to metres 640x480", 0), tofJob("infrared 640x480", 2), rgbdJob(), holesJob(),
        coloursJob("depth colours 640x400", SgbmColors::plainColors), coloursJob("depth in a map 640x400", 1),
        yuvJob("YUYV 1920x1080", 0, 1080, CV_8UC2, cv::COLOR_YUV2BGR_YUYV),
        yuvJob("I420 1920x1080", 1, 1620, CV_8UC1, cv::COLOR_YUV2BGR_I420), jpegJob()};
}

double milliseconds(const Work &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> times)
{
    if (times.empty())
        return 0;
    std::nth_element(times.begin(), times.begin() + std::ptrdiff_t(times.size() / 2), times.end());
    return times[times.size() / 2];
}

void run(benchmark::State &state, Job &job)
{
    job.model();
    job.bare();
    for ([[maybe_unused]] auto _ : state) {
        job.bareTimes.push_back(milliseconds(job.bare));
        job.modelTimes.push_back(milliseconds(job.model));
        state.SetIterationTime(job.modelTimes.back() / 1000);
    }
    state.counters["ratio"] = median(job.modelTimes) / median(job.bareTimes);
}

void printTable(const std::vector<Job> &jobs)
{
    std::printf("\n%-30s %10s %10s %7s  %s\n", "frame", "model_ms", "bare_ms", "ratio", "beside");
    for (const Job &job : jobs) {
        const double model = median(job.modelTimes), bare = median(job.bareTimes);
        if (bare > 0)
            std::printf("%-30s %10.3f %10.3f %7.2f  %s\n", job.name.c_str(), model, bare, model / bare,
                job.bareName.c_str());
    }
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    cv::setNumThreads(1); // the models use one thread; so must what they are measured against
    std::vector<Job> jobs = makeJobs();
    for (Job &job : jobs)
        benchmark::RegisterBenchmark(job.name.c_str(), [&job](benchmark::State &state) { run(state, job); })
            ->UseManualTime()
            ->Iterations(150);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    printTable(jobs);
    return 0;
}
