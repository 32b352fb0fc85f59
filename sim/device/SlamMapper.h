#pragma once

#include "core/Noise.h"
#include "device/SharedWorld.h"
#include "device/StoredMap.h"
#include "device/qv/Records.h"
#include "world/PlaneMap.h"
#include "world/PointMap.h"

#include <mutex>
#include <optional>

namespace sim {

/// What a device has understood of the room: points, and planes from stereo and from ToF depth. It knows no
/// frame but the world's; whoever asks brings his own. Thread-safe.
class SlamMapper {
public:
    struct View {
        Pose bodyFromCamera = Pose::Identity();
        std::shared_ptr<const CameraModel> lens;
    };
    struct Cameras {
        std::vector<View> stereo;
        std::optional<View> tof;
    };
    enum class PlaneKind { Stereo, Tof };
    /// How a map looks from where the device is.
    struct Match {
        double share = 0; ///< of the points in sight, 0 to 1, that the map has
        std::optional<Pose> mapFromWorld; ///< where the map is, if enough of them agree
    };
    using Planes = std::shared_ptr<const std::vector<qv::Plane>>;

    SlamMapper(std::shared_ptr<const SharedWorld> world, Cameras cameras);

    bool hasTof() const { return m_cameras.tof.has_value(); }

    /// Looks about at time t and takes in what is new. True if points came.
    bool observePoints(double t);
    /// True if a plane has grown.
    bool observePlanes(double t, PlaneKind kind);
    void reset();
    void clearPlanes(PlaneKind kind);

    std::size_t pointCount() const;
    std::shared_ptr<const qv::SlamMap> map(const Pose &mapFromWorld) const;
    Planes planes(PlaneKind kind, const Pose &mapFromWorld) const;

    StoredMap store(const Pose &mapFromWorld) const;
    Match match(double t, const StoredMap &map) const;
    /// Goes on with the points of a map that was stored.
    void adopt(const StoredMap &map);

private:
    PointMap &points();
    PlaneMap &planeMap(PlaneKind kind) { return kind == PlaneKind::Stereo ? m_stereoPlanes : m_tofPlanes; }
    std::uint64_t descriptor(int feature) const;

    const std::shared_ptr<const SharedWorld> m_world;
    const Cameras m_cameras;
    const Noise m_appearance;
    mutable std::mutex m_mutex;
    std::optional<PointMap> m_points; ///< made late, since finding the room's points takes a moment
    PlaneMap m_stereoPlanes;
    PlaneMap m_tofPlanes;
};

} // namespace sim
