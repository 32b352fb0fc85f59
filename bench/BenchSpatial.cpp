#include "spatial/MapData.h"
#include "spatial/ObjectsData.h"
#include "spatial/PlanesData.h"
#include "spatial/PointCloudGeometry.h"
#include "spatial/SlamData.h"
#include "support/FakeObjectDetector.h"
#include "support/FakeSlam.h"
#include <QGuiApplication>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

/// Times the spatial models from the library's callback to what the scenes read, each beside a copy of the
/// bytes that it delivers, turn by turn in one run, and prints their ratio.

namespace {

struct Row {
    std::string name;
    double time;
    double copy;
};

std::vector<Row> rows;

double median(std::vector<double> &times)
{
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

template <class Work>
double microseconds(Work work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

/// Runs `work` `repeats` times a turn, next to a `memcpy` of `bytes`.
template <class Work>
void measure(benchmark::State &state, const std::string &name, std::size_t bytes, int repeats, Work work)
{
    std::vector<char> from(bytes, 1);
    std::vector<char> to(bytes);
    const auto copy = [&] {
        std::memcpy(to.data(), from.data(), bytes);
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    };
    const auto many = [repeats](auto job) {
        return microseconds([&] {
            for (int i = 0; i < repeats; ++i)
                job();
        }) / repeats;
    };
    std::vector<double> times;
    std::vector<double> copies;
    many(work);
    many(copy);
    for ([[maybe_unused]] auto _ : state) {
        copies.push_back(many(copy));
        times.push_back(many(work));
        state.SetIterationTime(times.back() * repeats / 1e6);
    }
    const Row row{name, median(times), median(copies)};
    state.SetLabel(name);
    state.counters["x_memcpy"] = row.time / row.copy;
    // The library tries shorter runs first; the last one counts.
    if (!rows.empty() && rows.back().name == name)
        rows.pop_back();
    rows.push_back(row);
}

qv::Pose poseAt(double t)
{
    qv::Pose pose;
    pose.translation = {std::sin(t), 0.2 * std::cos(3 * t), std::cos(t)};
    pose.rotation = {std::cos(t), 0, std::sin(t), 0, 1, 0, -std::sin(t), 0, std::cos(t)};
    pose.confidence = 0.5 + 0.4 * std::sin(t);
    return pose;
}

/// A pose to all properties, without a recording and with nobody listening. Each differs from the last.
void pose(benchmark::State &state)
{
    const auto slam = std::make_shared<FakeSlam>();
    SlamData data(slam, nullptr);
    data.control(true);
    std::vector<qv::Pose> poses;
    poses.reserve(1000);
    for (int i = 0; i < 1000; ++i)
        poses.push_back(poseAt(0.001 * i));
    std::size_t next = 0;
    const auto callback = slam->callbacks.held().front();
    measure(state, "pose", sizeof(qv::Pose), 1000, [&] { callback(poses[next++ % poses.size()]); });
}

/// A map to the vertex buffer of the scene.
void map(benchmark::State &state)
{
    const auto slam = std::make_shared<FakeSlam>();
    MapData data(slam, nullptr);
    PointCloudGeometry geometry;
    geometry.setPointCloud(data.pointCloud());
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<std::shared_ptr<qv::SlamMap>> maps;
    for (int version = 0; version < 2; ++version) {
        maps.push_back(std::make_shared<qv::SlamMap>());
        for (std::size_t i = 0; i < count; ++i)
            maps.back()->points.push_back({0.001 * double(i), 0.5 * version, 2});
    }
    std::size_t next = 0;
    measure(state, "map of " + std::to_string(count), 12 * count, 1,
        [&] { slam->maps.deliver(maps[next++ % maps.size()]); });
}

std::shared_ptr<std::vector<qv::Plane>> planesOf(int count, int points, double shift)
{
    auto planes = std::make_shared<std::vector<qv::Plane>>();
    for (int i = 0; i < count; ++i) {
        qv::Plane plane;
        plane.id = std::to_string(i);
        for (int j = 0; j < points; ++j)
            plane.points.push_back({std::cos(0.3 * j) + shift, std::sin(0.3 * j), double(i)});
        planes->push_back(plane);
    }
    return planes;
}

void planes(benchmark::State &state)
{
    const auto slam = std::make_shared<FakeSlam>();
    PlanesData data(slam, nullptr);
    const int count = static_cast<int>(state.range(0));
    const int points = static_cast<int>(state.range(1));
    const std::vector<qv::Slam::Planes> versions{planesOf(count, points, 0), planesOf(count, points, 0.1)};
    std::size_t next = 0;
    measure(state, std::to_string(count) + " planes of " + std::to_string(points),
        static_cast<std::size_t>(count * points) * sizeof(qv::Vector3), 10,
        [&] { slam->tofPlanes.deliver(versions[next++ % versions.size()]); });
}

std::vector<qv::Object> objectsOf(int count, double shift)
{
    std::vector<qv::Object> objects(static_cast<std::size_t>(count));
    for (qv::Object &object : objects) {
        object.shape = 1;
        object.type = "person";
        object.x = 100 + shift;
        object.keypoints.assign(18, {120 + shift, 80, 0});
    }
    return objects;
}

void objects(benchmark::State &state)
{
    const auto detector = std::make_shared<FakeObjectDetector>();
    ObjectsData data(detector, nullptr);
    const int count = static_cast<int>(state.range(0));
    const std::vector<std::vector<qv::Object>> versions{objectsOf(count, 0), objectsOf(count, 1)};
    std::size_t next = 0;
    measure(state, std::to_string(count) + " humans",
        static_cast<std::size_t>(count) * 18 * sizeof(qv::Vector3), 10,
        [&] { detector->deliver(versions[next++ % versions.size()]); });
}

BENCHMARK(pose)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(map)->Arg(1000)->Arg(20000)->Arg(1000000)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(planes)->Args({10, 8})->Args({30, 20})->Args({10, 200})->UseManualTime()->Unit(
    benchmark::kMicrosecond);
BENCHMARK(objects)->Arg(1)->Arg(10)->UseManualTime()->Unit(benchmark::kMicrosecond);

void printTable()
{
    std::printf("\n%-20s %12s %12s %10s\n", "job", "us", "memcpy us", "x memcpy");
    for (const Row &row : rows)
        std::printf(
            "%-20s %12.3f %12.3f %10.2f\n", row.name.c_str(), row.time, row.copy, row.time / row.copy);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    printTable();
    return 0;
}
