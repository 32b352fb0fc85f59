#include "device/SgbmFrames.h"
#include "device/StereoMatcher.h"
#include "world/CameraModels.h"
#include "world/Features.h"
#include "world/Renderer.h"
#include "world/Trajectory.h"

#include <benchmark/benchmark.h>

// What the simulated world costs a picture, along its own trajectory, so that near and far, plain and crowded
// views all count.

using namespace sim;

namespace {

const std::shared_ptr<const Scene> &scene()
{
    static const auto shared = std::make_shared<const Scene>(1);
    return shared;
}

std::shared_ptr<CameraModel> fisheye()
{
    return std::make_shared<UnifiedModel>(qv::UnifiedCameraModel{640, 400, 300, 300, 319.5, 199.5, 1.0});
}

std::shared_ptr<CameraModel> pinhole(int width, int height)
{
    return PolynomialModel({960, 540, 700, 700, 479.5, 269.5, {0.08, -0.12, 0.0005, -0.0003, 0.03}})
        .scaled(width, height);
}

template <typename Draw>
void alongTrajectory(benchmark::State &state, const std::shared_ptr<CameraModel> &model, const Draw &draw)
{
    const Trajectory trajectory;
    Renderer renderer(scene(), model);
    draw(renderer, trajectory.pose(0), 0.0);
    double t = 0;
    for (auto _ : state) {
        t += 0.37;
        draw(renderer, trajectory.pose(t), t);
    }
    state.counters["pixels/s"] =
        benchmark::Counter(double(model->size().area()), benchmark::Counter::kIsIterationInvariantRate);
}

void greyFisheye(benchmark::State &state)
{
    cv::Mat out;
    alongTrajectory(state, fisheye(), [&](Renderer &r, const Pose &pose, double t) { r.grey(pose, t, out); });
}

void colorPinhole(benchmark::State &state)
{
    cv::Mat out;
    alongTrajectory(
        state, pinhole(960, 540), [&](Renderer &r, const Pose &pose, double t) { r.color(pose, t, out); });
}

/// All that a frame of the stereo depth unit takes.
void stereoDepth(benchmark::State &state)
{
    StereoMatcher matcher(SharedWorld::get(1), FisheyeRig::stereo(640, 400));
    const StereoMatcher::Setup setup{{int(state.range(0)), int(state.range(1))}, true, 1, false};
    const SgbmFrames frames({}, setup.size.width);
    cv::Mat z;
    cv::Mat depth;
    cv::Mat disparity;
    matcher.match(0, setup, z);
    double t = 0;
    for (auto _ : state) {
        t += 0.37;
        matcher.match(t, setup, z);
        frames.depth(z, depth);
        frames.disparity(z, disparity);
    }
}

void depthPinhole(benchmark::State &state)
{
    cv::Mat out;
    alongTrajectory(
        state, pinhole(640, 480), [&](Renderer &r, const Pose &pose, double t) { r.depth(pose, t, out); });
}

void visibleFeatures(benchmark::State &state)
{
    const auto features = Features::of(scene());
    const auto model = fisheye();
    const Trajectory trajectory;
    double t = 0;
    for (auto _ : state) {
        t += 0.37;
        benchmark::DoNotOptimize(features->visible(*model, trajectory.pose(t), t, 200));
    }
}

} // namespace

BENCHMARK(greyFisheye)->Unit(benchmark::kMillisecond);
BENCHMARK(colorPinhole)->Unit(benchmark::kMillisecond);
BENCHMARK(depthPinhole)->Unit(benchmark::kMillisecond);
BENCHMARK(stereoDepth)->Args({640, 400})->Args({1280, 720})->Unit(benchmark::kMillisecond);
BENCHMARK(visibleFeatures)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
