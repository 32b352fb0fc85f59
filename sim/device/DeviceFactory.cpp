#include "device/DeviceFactory.h"

#include "core/Log.h"
#include "device/DeviceInfo.h"
#include "device/ObjectViews.h"
#include "device/RenderedFisheye.h"
#include "device/SimDeviceEx.h"
#include "device/SimFisheyeCamerasEx.h"
#include "device/TrajectoryImu.h"
#include "replay/ReplayDevice.h"

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

std::shared_ptr<FisheyeSource> makeFisheyeSource(const DeviceConfig &config)
{
    const StreamConfig stream = config.stream("fisheye");
    const int width = stream.width > 0 ? stream.width : 640;
    const int height = stream.height > 0 ? stream.height : 400;
    const double rate = stream.rate > 0 ? stream.rate : 50;
    const FisheyeRig rig =
        config.profile == Profile::Quad ? FisheyeRig::quad(width, height) : FisheyeRig::stereo(width, height);
    return std::make_shared<RenderedFisheye>(SharedWorld::get(config.seed), rig, rate, config.seed);
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

std::shared_ptr<SimObjectDetector> makeObjects(
    const std::shared_ptr<DeviceState> &state, const std::shared_ptr<const FisheyeSource> &fisheye)
{
    const DeviceConfig &config = state->config();
    const double asked = config.stream("objects").rate;
    SimObjectDetector::Views views = fisheyeViews(fisheye);
    views[SimObjectDetector::Color] = [] { return defaultColorView(); };
    views[SimObjectDetector::Tof] = [] { return defaultTofView(); };
    return std::make_shared<SimObjectDetector>(
        state, SharedWorld::get(config.seed), std::move(views), asked > 0 ? asked : 10);
}

bool isSmart(Profile profile)
{
    return profile == Profile::Headset || profile == Profile::Module;
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
    if (isSmart(config.profile)) {
        components.vsc = makeVsc(state);
        components.objects = makeObjects(state, fisheye);
    }
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
