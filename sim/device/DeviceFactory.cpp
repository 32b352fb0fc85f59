#include "device/DeviceFactory.h"

#include "core/Log.h"
#include "device/DeviceInfo.h"
#include "device/ObjectViews.h"
#include "device/RenderedColor.h"
#include "device/RenderedFisheye.h"
#include "device/RenderedTof.h"
#include "device/SimDeviceEx.h"
#include "device/SimFisheyeCamerasEx.h"
#include "device/TrajectoryImu.h"
#include "device/TrajectoryPoses.h"
#include "replay/ReplayDevice.h"
#include "world/UnifiedModel.h"

namespace sim {

namespace {

double imuRate(const DeviceConfig &config)
{
    const double asked = config.stream("imu").rate;
    if (asked > 0)
        return asked;
    return config.profile == Profile::Headset || config.profile == Profile::Quad ? 500 : 200;
}

std::shared_ptr<SimImuSensor> makeImu(const std::shared_ptr<DeviceState> &state)
{
    const DeviceConfig &config = state->config();
    return std::make_shared<SimImuSensor>(
        state, std::make_unique<TrajectoryImu>(SharedWorld::get(config.seed), imuRate(config), config.seed));
}

FisheyeRig fisheyeRig(const DeviceConfig &config, int width, int height)
{
    return config.profile == Profile::Quad ? FisheyeRig::quad(width, height)
                                           : FisheyeRig::stereo(width, height);
}

std::shared_ptr<FisheyeSource> makeFisheyeSource(const DeviceConfig &config)
{
    const StreamConfig stream = config.stream("fisheye");
    const int width = stream.width > 0 ? stream.width : 640;
    const int height = stream.height > 0 ? stream.height : 400;
    const double rate = stream.rate > 0 ? stream.rate : 50;
    return std::make_shared<RenderedFisheye>(
        SharedWorld::get(config.seed), fisheyeRig(config, width, height), rate, config.seed);
}

cv::Size sizeOf(const StreamConfig &stream, cv::Size usual)
{
    // Even, since colour pictures share their colours between neighbours.
    return stream.width > 0 ? cv::Size(stream.width / 2 * 2, stream.height / 2 * 2) : usual;
}

RenderedColor::Setup colorSetup(const DeviceConfig &config)
{
    const StreamConfig stream = config.stream("color");
    const bool headset = config.profile == Profile::Headset;
    RenderedColor::Setup setup;
    setup.mount = PinholeMount::color();
    setup.size = sizeOf(stream, {1920, 1080});
    setup.rate = stream.rate > 0 ? stream.rate : 30;
    setup.phase = 0.31;
    setup.codec = colorCodecByName(stream.codec, headset ? ColorCodec::Yuv420p : ColorCodec::Yuyv);
    setup.focuses = headset;
    setup.seed = config.seed;
    return setup;
}

RenderedColor::Setup secondColorSetup(const DeviceConfig &config)
{
    const StreamConfig stream = config.stream("color2");
    RenderedColor::Setup setup;
    setup.mount = PinholeMount::secondColor();
    setup.size = sizeOf(stream, {1280, 720});
    setup.rate = stream.rate > 0 ? stream.rate : 15;
    setup.phase = 0.83;
    setup.codec = colorCodecByName(stream.codec, ColorCodec::Yuv420p);
    setup.seed = config.seed + 1000;
    return setup;
}

RenderedTof::Setup tofSetup(const DeviceConfig &config)
{
    const StreamConfig stream = config.stream("tof");
    RenderedTof::Setup setup;
    setup.mount = PinholeMount::tof();
    setup.size = sizeOf(stream, {640, 480});
    setup.secondFamily = config.profile == Profile::Headset;
    setup.rate = stream.rate > 0 ? stream.rate : setup.secondFamily ? 30 : 15;
    setup.phase = 0.13;
    setup.seed = config.seed;
    return setup;
}

/// Which kind of depth pictures a ToF camera makes.
SimTofCamera::Depth depthKind(const StreamConfig &stream, SimTofCamera::Depth usual)
{
    if (stream.codec == "millimetres")
        return SimTofCamera::Depth::Millimetres;
    if (stream.codec == "metres")
        return SimTofCamera::Depth::Metres;
    if (!stream.codec.empty())
        complain("there is no codec \"" + stream.codec + "\" for depth pictures");
    return usual;
}

/// The colour cameras, and the ToF camera that aligns the first one's colours to its depth.
void addColorAndTof(const std::shared_ptr<DeviceState> &state, SimDevice::Components &components)
{
    const DeviceConfig &config = state->config();
    const auto world = SharedWorld::get(config.seed);
    std::shared_ptr<ColorStream> second;
    std::vector<qv::Calibration> others;
    if (config.profile == Profile::Headset) {
        const auto source = std::make_shared<RenderedColor>(world, secondColorSetup(config));
        others = source->calibration();
        second = std::make_shared<ColorStream>("color2", state, source);
    }
    const auto color = std::make_shared<RenderedColor>(world, colorSetup(config), others);
    components.color = std::make_shared<SimColorCamera>(state, color, second);

    const RenderedTof::Setup setup = tofSetup(config);
    SimTofCamera::Setup camera;
    camera.family = setup.secondFamily ? SimTofCamera::Second : SimTofCamera::First;
    camera.depth = depthKind(config.stream("tof"),
        setup.secondFamily ? SimTofCamera::Depth::Metres : SimTofCamera::Depth::Millimetres);
    camera.colorStreams = [weak = std::weak_ptr<SimColorCamera>(components.color)] {
        const auto alive = weak.lock();
        return alive && alive->streaming();
    };
    components.tof = std::make_shared<SimTofCamera>(
        state, std::make_shared<RenderedTof>(world, setup, color->exposure()), camera);
}

std::shared_ptr<SlamMapper> makeMapper(const DeviceConfig &config, bool tof)
{
    SlamMapper::Cameras cameras;
    for (const FisheyeRig::Mount &mount : fisheyeRig(config, 640, 400).mounts)
        cameras.stereo.push_back({mount.bodyFromCamera, std::make_shared<UnifiedModel>(mount.lens)});
    if (tof) {
        const PinholeMount mount = PinholeMount::tof();
        cameras.tof = {mount.bodyFromCamera, mount.model({640, 480})};
    }
    return std::make_shared<SlamMapper>(SharedWorld::get(config.seed), std::move(cameras));
}

std::shared_ptr<SimSlam> makeSlam(const std::shared_ptr<DeviceState> &state,
    const SimDevice::Components &components, TrajectoryPoses::Setup poses, bool onDevice)
{
    const DeviceConfig &config = state->config();
    SimSlam::Setup setup;
    setup.name = onDevice ? "edge" : "slam";
    setup.onDevice = onDevice;
    setup.turnLimit = onDevice ? 0.5 : 0.6;
    setup.cameras = components.fisheye;
    setup.mapper = makeMapper(config, components.tof != nullptr);
    if (const double rate = config.stream("map").rate; rate > 0)
        setup.mapRate = rate;
    if (const double rate = config.stream(setup.name).rate; rate > 0)
        poses.rate = rate;
    setup.poses = std::make_shared<TrajectoryPoses>(SharedWorld::get(config.seed), poses);
    return std::make_shared<SimSlam>(state, std::move(setup));
}

/// The poses, which need cameras.
void addSlam(const std::shared_ptr<DeviceState> &state, SimDevice::Components &components)
{
    const DeviceConfig &config = state->config();
    components.slam = makeSlam(state, components, TrajectoryPoses::Setup::host(config.seed), false);
    if (config.profile != Profile::Plain)
        components.edge = makeSlam(state, components, TrajectoryPoses::Setup::edge(config.seed), true);
}

std::shared_ptr<SimVsc> makeVsc(const std::shared_ptr<DeviceState> &state)
{
    const DeviceConfig &config = state->config();
    const StreamConfig stream = config.stream("vsc");
    const cv::Size vga = stream.width > 0 ? cv::Size(stream.width, stream.height) : cv::Size(640, 400);
    const double rate = stream.rate > 0 ? stream.rate : 30;
    return std::make_shared<SimVsc>(
        state, SharedWorld::get(config.seed), FisheyeRig::stereo(640, 400), vga, rate);
}

std::shared_ptr<SimObjectDetector> makeObjects(const std::shared_ptr<DeviceState> &state,
    const std::shared_ptr<const FisheyeSource> &fisheye, const SimDevice::Components &components)
{
    const DeviceConfig &config = state->config();
    const double asked = config.stream("objects").rate;
    SimObjectDetector::Views views = fisheyeViews(fisheye);
    views[SimObjectDetector::Color] = polynomialView(components.color);
    views[SimObjectDetector::Tof] = polynomialView(components.tof);
    return std::make_shared<SimObjectDetector>(
        state, SharedWorld::get(config.seed), std::move(views), asked > 0 ? asked : 10);
}

SimDevice::Components makeComponents(const std::shared_ptr<DeviceState> &state)
{
    const DeviceConfig &config = state->config();
    if (config.profile == Profile::Replay)
        return replayComponents(state);
    SimDevice::Components components;
    components.imu = makeImu(state);
    if (config.profile == Profile::ImuOnly)
        return components;
    const std::shared_ptr<FisheyeSource> fisheye = makeFisheyeSource(config);
    if (config.profile == Profile::Plain)
        components.fisheye = std::make_shared<SimFisheyeCameras>(state, fisheye);
    else
        components.fisheye = std::make_shared<SimFisheyeCamerasEx>(state, fisheye);
    if (config.profile == Profile::Headset || config.profile == Profile::Module) {
        addColorAndTof(state, components);
        components.vsc = makeVsc(state);
        components.objects = makeObjects(state, fisheye, components);
    }
    addSlam(state, components);
    return components;
}

} // namespace

std::shared_ptr<SimDevice> makeDevice(const DeviceConfig &config)
{
    try {
        const auto state = std::make_shared<DeviceState>(config);
        SimDevice::Components components = makeComponents(state);
        std::map<std::string, std::string> info = makeInfo(config, components);
        if (config.profile == Profile::Plain)
            return std::make_shared<SimDevice>(state, std::move(info), std::move(components));
        return std::make_shared<SimDeviceEx>(state, std::move(info), std::move(components));
    } catch (const std::exception &error) {
        const std::string what = config.folder.empty() ? config.uuid : config.folder;
        complain(what + " can't be used as a device: " + error.what());
        return nullptr;
    }
}

} // namespace sim
