#pragma once

#include "sim/SlamFixture.h"

#include "world/Scene.h"

#include <cmath>

using Planes = qv::Slam::Planes;
using Map = std::shared_ptr<const qv::SlamMap>;

/// A running SLAM of a room, and all that it tells.
struct Mapping {
    explicit Mapping(const sim::DeviceConfig &config = slamConfig(), bool onEdge = false)
        : device(sim::makeDevice(config))
        , slam(onEdge ? edgeOf(device) : device->slam())
        , poses(slam)
    {
        slam->registerMapCallback([this](Map map) { maps.set(std::move(map)); });
        slam->registerStereoPlanesCallback([this](Planes planes) { stereo.set(std::move(planes)); });
        slam->registerTofPlanesCallback([this](Planes planes) { tof.set(std::move(planes)); });
        EXPECT_TRUE(slam->start());
        EXPECT_TRUE(poses.waitForMore(1));
    }
    ~Mapping() { slam->stop(); }

    std::size_t size() const
    {
        const Map map = maps.get();
        return map ? map->points.size() : 0;
    }
    bool waitForPoints(std::size_t count)
    {
        return waitFor([&] { return size() >= count; }, 90'000);
    }

    Latest<Map> maps;
    Latest<Planes> stereo;
    Latest<Planes> tof;
    std::shared_ptr<sim::SimDevice> device;
    std::shared_ptr<qv::Slam> slam;
    PoseTap poses;
};

/// Whether a point of the world lies within one of the room's rectangles, to half a centimetre.
inline bool liesOnASurface(const sim::Scene &scene, const Eigen::Vector3d &point)
{
    return std::any_of(scene.surfaces().begin(), scene.surfaces().end(), [&](const sim::Surface &surface) {
        const Eigen::Vector3d away = point - surface.corner;
        const double a = surface.right.dot(away);
        const double b = surface.down.dot(away);
        return std::abs(surface.normal.dot(away)) < 0.005 && a > -0.005 && b > -0.005
            && a < surface.width + 0.005 && b < surface.height + 0.005;
    });
}
