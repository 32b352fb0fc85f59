#include "device/SlamMapper.h"

#include "device/Vectors.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace sim {

namespace {

/// Points that one camera looks at in one go; all of a view are taken in within seconds.
constexpr std::size_t pointBudget = 250;
constexpr double stereoRange = 6; // metres
constexpr double tofRange = 4; // metres
constexpr std::size_t lookedAt = 150; // points a camera, to recognise a place
constexpr std::size_t leastMatches = 12;
constexpr double largestError = 0.05; // metres, of matched points
constexpr double fullMap = 20000; // points, for a quality of 100

/// Where the map is, from points in the world and in the map: S. Umeyama, "Least-squares estimation of
/// transformation parameters between two point patterns", 1991.
std::optional<Pose> align(const std::vector<Eigen::Vector3d> &world, const std::vector<Eigen::Vector3d> &map)
{
    if (world.size() < leastMatches)
        return std::nullopt;
    const auto count = static_cast<Eigen::Index>(world.size());
    Eigen::Matrix3Xd from(3, count);
    Eigen::Matrix3Xd to(3, count);
    for (Eigen::Index i = 0; i < count; ++i) {
        from.col(i) = world[static_cast<std::size_t>(i)];
        to.col(i) = map[static_cast<std::size_t>(i)];
    }
    const Pose pose(Eigen::umeyama(from, to, false));
    const Eigen::Matrix3Xd error = ((pose.linear() * from).colwise() + pose.translation()) - to;
    const double rms = std::sqrt(error.squaredNorm() / static_cast<double>(count));
    if (!(rms < largestError))
        return std::nullopt;
    return pose;
}

} // namespace

SlamMapper::SlamMapper(std::shared_ptr<const SharedWorld> world, Cameras cameras)
    : m_world(std::move(world))
    , m_cameras(std::move(cameras))
    , m_appearance(0x5000U + m_world->scene()->seed())
    , m_stereoPlanes(m_world->scene())
    , m_tofPlanes(m_world->scene())
{
}

PointMap &SlamMapper::points()
{
    if (!m_points)
        m_points.emplace(std::shared_ptr<const Features>(m_world, &m_world->features()));
    return *m_points;
}

bool SlamMapper::observePoints(double t)
{
    const Pose body = m_world->trajectory().pose(t);
    const std::lock_guard lock(m_mutex);
    std::size_t found = 0;
    for (const View &view : m_cameras.stereo)
        found += points().explore(*view.lens, body * view.bodyFromCamera, t, pointBudget);
    return found > 0;
}

bool SlamMapper::observePlanes(double t, PlaneKind kind)
{
    const Pose body = m_world->trajectory().pose(t);
    const std::lock_guard lock(m_mutex);
    if (kind == PlaneKind::Tof)
        return m_cameras.tof
            && m_tofPlanes.observe(*m_cameras.tof->lens, body * m_cameras.tof->bodyFromCamera, t, tofRange);
    bool changed = false;
    for (const View &view : m_cameras.stereo)
        changed |= m_stereoPlanes.observe(*view.lens, body * view.bodyFromCamera, t, stereoRange);
    return changed;
}

void SlamMapper::reset()
{
    const std::lock_guard lock(m_mutex);
    if (m_points)
        m_points->reset();
    m_stereoPlanes.reset();
    m_tofPlanes.reset();
}

void SlamMapper::clearPlanes(PlaneKind kind)
{
    const std::lock_guard lock(m_mutex);
    planeMap(kind).reset();
}

std::size_t SlamMapper::pointCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_points ? m_points->ids().size() : 0;
}

std::shared_ptr<const qv::SlamMap> SlamMapper::map(const Pose &mapFromWorld) const
{
    auto map = std::make_shared<qv::SlamMap>();
    const std::lock_guard lock(m_mutex);
    if (!m_points)
        return map;
    map->points.reserve(m_points->ids().size());
    for (const Eigen::Vector3d &point : m_points->points())
        map->points.push_back(vector3(mapFromWorld * point));
    return map;
}

SlamMapper::Planes SlamMapper::planes(PlaneKind kind, const Pose &mapFromWorld) const
{
    auto planes = std::make_shared<std::vector<qv::Plane>>();
    const std::lock_guard lock(m_mutex);
    for (const SeenPlane &seen : (kind == PlaneKind::Stereo ? m_stereoPlanes : m_tofPlanes).planes()) {
        qv::Plane &plane = planes->emplace_back();
        plane.id = std::to_string(seen.id);
        for (const Eigen::Vector3d &point : seen.outline)
            plane.points.push_back(vector3(mapFromWorld * point));
    }
    return planes;
}

/// No two points of any two rooms look the same.
std::uint64_t SlamMapper::descriptor(int feature) const
{
    return m_appearance.bits(static_cast<std::uint64_t>(feature));
}

StoredMap SlamMapper::store(const Pose &mapFromWorld) const
{
    StoredMap map;
    const std::lock_guard lock(m_mutex);
    if (!m_points)
        return map;
    const std::vector<Eigen::Vector3d> positions = m_points->points();
    for (std::size_t i = 0; i < positions.size(); ++i)
        map.landmarks.push_back({descriptor(m_points->ids()[i]), mapFromWorld * positions[i]});
    map.quality = static_cast<int>(std::min(100.0, 100.0 * static_cast<double>(positions.size()) / fullMap));
    return map;
}

SlamMapper::Match SlamMapper::match(double t, const StoredMap &map) const
{
    const Features &features = m_world->features();
    const Pose body = m_world->trajectory().pose(t);
    std::unordered_map<std::uint64_t, const Feature *> sight;
    for (const View &view : m_cameras.stereo)
        for (const auto &seen : features.visible(*view.lens, body * view.bodyFromCamera, t, lookedAt))
            sight[descriptor(seen.first)] = &features.all()[static_cast<std::size_t>(seen.first)];
    std::vector<Eigen::Vector3d> inWorld;
    std::vector<Eigen::Vector3d> inMap;
    for (const StoredMap::Landmark &landmark : map.landmarks) {
        const auto found = sight.find(landmark.descriptor);
        if (found == sight.end())
            continue;
        inWorld.push_back(found->second->position);
        inMap.push_back(landmark.position);
    }
    Match match;
    match.share = sight.empty()
        ? 0
        : std::min(1.0, static_cast<double>(inWorld.size()) / static_cast<double>(sight.size()));
    match.mapFromWorld = align(inWorld, inMap);
    return match;
}

void SlamMapper::adopt(const StoredMap &map)
{
    std::unordered_set<std::uint64_t> known;
    for (const StoredMap::Landmark &landmark : map.landmarks)
        known.insert(landmark.descriptor);
    const std::lock_guard lock(m_mutex);
    points().reset();
    for (const Feature &feature : m_world->features().all())
        if (known.count(descriptor(feature.id)) > 0)
            points().add(feature.id);
    m_stereoPlanes.reset();
    m_tofPlanes.reset();
}

} // namespace sim
