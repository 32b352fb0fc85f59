#include "device/SimSlam.h"

#include "core/Log.h"
#include "device/MapFile.h"
#include "device/SlamDefects.h"

#include <cmath>

namespace sim {

namespace {

constexpr double lookRate = 10; // per second
constexpr int looksPerPlanes = 5;
constexpr double usualRate = 500; // poses per second
constexpr double bestConfidence = 0.98;
constexpr double recoveryTime = 1; // seconds until poses are trusted again

/// Place and heading of a pose, without its tilt.
Pose level(const Pose &worldFromBody)
{
    Eigen::Vector3d ahead = worldFromBody.linear().col(2);
    if (std::abs(ahead.y()) > 0.98) // straight up or down: the heading is that of the right hand
        ahead = worldFromBody.linear().col(0).cross(Eigen::Vector3d::UnitY());
    Pose pose = Pose::Identity();
    pose.translation() = worldFromBody.translation();
    pose.rotate(Eigen::AngleAxisd(std::atan2(ahead.x(), ahead.z()), Eigen::Vector3d::UnitY()));
    return pose;
}

qv::Pose record(const Pose &pose)
{
    qv::Pose out;
    out.translation = {pose.translation().x(), pose.translation().y(), pose.translation().z()};
    for (std::size_t i = 0; i < 9; ++i)
        out.rotation[i] = pose.linear()(static_cast<Eigen::Index>(i / 3), static_cast<Eigen::Index>(i % 3));
    const Eigen::Quaterniond q(pose.linear());
    const double sign = q.w() < 0 ? -1 : 1;
    out.qx = sign * q.x();
    out.qy = sign * q.y();
    out.qz = sign * q.z();
    out.qw = sign * q.w();
    return out;
}

} // namespace

SimSlam::SimSlam(std::shared_ptr<DeviceState> device, Setup setup)
    : StreamComponent(setup.name, std::move(device), setup.poses->schedule())
    , m_setup(std::move(setup))
    , m_switch(mapDevice())
    , m_mapThread(
          m_setup.name + " map", std::make_shared<RateSchedule>(lookRate), [this](double due) { look(due); })
{
}

SimSlam::~SimSlam()
{
    m_mapThread.stop();
    m_switch.cancel();
    if (m_holding)
        m_setup.cameras->release();
}

/// Whether a running stream does it.
bool SimSlam::allows(const char *operation)
{
    return thread().running() && !refuses(operation);
}

/// The same, written to the device's log.
bool SimSlam::accepts(const char *operation)
{
    if (!allows(operation))
        return false;
    device().log().add(name() + ": " + operation);
    return true;
}

void SimSlam::setSync(bool sync)
{
    m_setup.poses->setSync(sync);
    thread().reschedule();
}

void SimSlam::begin()
{
    if (m_setup.mapper)
        m_setup.mapper->reset();
    const std::lock_guard lock(m_mutex);
    m_session = Session();
    m_session.recovered = Clock::now();
    m_cleared = true;
}

void SimSlam::aboutToStart()
{
    begin();
    m_startTime = Clock::now();
    m_paused = false;
    m_lookRestarted = true;
    if (m_setup.cameras && !m_holding.exchange(true))
        m_setup.cameras->hold();
    if (m_setup.mapper)
        m_mapThread.start(weak_from_this());
}

void SimSlam::stopped()
{
    m_mapThread.stop();
    m_switch.cancel();
    if (m_holding.exchange(false))
        m_setup.cameras->release();
}

bool SimSlam::handleOverrate()
{
    // Asked with each pose while the measured rate is high: all these lines would push out what else is in
    // the log.
    if (!allows("handleOverrate") || !m_setup.poses->limitRate(usualRate))
        return false;
    device().log().add(name() + ": handleOverrate");
    thread().reschedule();
    return true;
}

bool SimSlam::reset()
{
    if (!accepts("reset"))
        return false;
    m_switch.cancel();
    begin();
    return true;
}

bool SimSlam::pause()
{
    if (!accepts("pause"))
        return false;
    m_paused = true;
    return true;
}

bool SimSlam::resume()
{
    if (!accepts("resume"))
        return false;
    m_paused = false;
    return true;
}

/// Whether there is anything to track by.
bool SimSlam::sees()
{
    if (device().imuMode == ImuOnly)
        return false;
    const StreamFaults faults = device().faults()->stream(name());
    const double age = Clock::now() - m_startTime;
    if (faults.loseAfter < 0 || age < faults.loseAfter)
        return true;
    return faults.loseFor > 0 && age >= faults.loseAfter + faults.loseFor;
}

void SimSlam::lose()
{
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_session.lost, true))
            return;
    }
    device().log().add(name() + ": tracking lost");
    m_lostCallbacks.call();
}

/// Falls as the picture begins to smear, and after tracking was lost.
double SimSlam::confidence(double turnRate, double sinceRecovery) const
{
    const double ratio = turnRate / m_setup.turnLimit;
    const double trust = std::min(1.0, 0.3 + 0.7 * sinceRecovery / recoveryTime);
    return trust * bestConfidence / (1 + ratio * ratio * ratio * ratio);
}

std::optional<Pose> SimSlam::frame() const
{
    const std::lock_guard lock(m_mutex);
    return m_session.mapFromWorld;
}

std::optional<qv::Pose> SimSlam::pose(double due)
{
    PoseSource::Request request;
    request.due = due;
    request.ahead = m_setup.onDevice ? device().edgePrediction * 1e-6 : 0;
    const std::lock_guard lock(m_mutex);
    const bool first = !m_session.mapFromWorld;
    if (first)
        m_session.origin = due;
    request.since = due - m_session.origin;
    request.corrected = m_session.corrected;
    if (first) {
        // The origin is where the device is, not where it will be.
        PoseSource::Request here = request;
        here.ahead = 0;
        const auto estimate = m_setup.poses->estimate(here);
        if (!estimate)
            return std::nullopt;
        m_session.mapFromWorld = level(estimate->worldFromBody).inverse();
    }
    const auto estimate = m_setup.poses->estimate(request);
    if (!estimate)
        return std::nullopt;
    const double now = Clock::now();
    if (std::exchange(m_session.lost, false))
        m_session.recovered = now;
    qv::Pose out = record(*m_session.mapFromWorld * estimate->worldFromBody);
    out.edgeTimestampUs = estimate->edgeTimestampUs;
    out.hostTimestamp = now;
    out.confidence = confidence(estimate->turnRate, now - m_session.recovered);
    return out;
}

void SimSlam::produce(double due, Defect defect)
{
    if (m_paused)
        return;
    std::optional<qv::Pose> record = sees() ? pose(due) : std::nullopt;
    if (!record) {
        lose();
        return;
    }
    if (defect == Defect::Unknown)
        makeUnreadable(*record);
    deliver(*record);
}

void SimSlam::look(double due)
{
    if (device().gone()) {
        m_mapThread.halt();
        return;
    }
    if (m_lookRestarted.exchange(false)) {
        m_mapFaults.restart();
        m_planeFaults.restart();
        m_nextMap = 0;
    }
    if (m_cleared.exchange(false)) {
        m_nextMap = 0;
        publishMap(Pose::Identity());
        publishPlanes(SlamMapper::PlaneKind::Stereo, Pose::Identity());
        publishPlanes(SlamMapper::PlaneKind::Tof, Pose::Identity());
    }
    const std::optional<Pose> mapFromWorld = frame();
    if (!mapFromWorld)
        return;
    lookForPoints(due, *mapFromWorld);
    if (++m_looks % looksPerPlanes == 0)
        lookForPlanes(due, *mapFromWorld);
}

/// Pictures that don't leave the device are of no use to the host.
bool SimSlam::hasPictures() const
{
    return m_setup.onDevice || device().uvcMode != NoStream;
}

void SimSlam::lookForPoints(double due, const Pose &mapFromWorld)
{
    if (!m_paused && sees() && hasPictures() && m_setup.mapper->observePoints(due))
        m_mapChanged = true;
    if (due < m_nextMap || !m_mapChanged.exchange(false))
        return;
    m_nextMap = due + 1 / m_setup.mapRate;
    publishMap(mapFromWorld);
}

void SimSlam::lookForPlanes(double due, const Pose &mapFromWorld)
{
    const bool looks = !m_paused && sees();
    if (looks && hasPictures() && m_setup.mapper->observePlanes(due, SlamMapper::PlaneKind::Stereo))
        m_stereoChanged = true;
    if (looks && m_setup.mapper->observePlanes(due, SlamMapper::PlaneKind::Tof))
        m_tofChanged = true;
    if (m_stereoChanged.exchange(false))
        publishPlanes(SlamMapper::PlaneKind::Stereo, mapFromWorld);
    if (m_tofChanged.exchange(false))
        publishPlanes(SlamMapper::PlaneKind::Tof, mapFromWorld);
}

void SimSlam::publishMap(const Pose &mapFromWorld)
{
    const Defect defect = m_mapFaults.next(device().faults()->stream("map"), Clock::now() - m_startTime);
    if (defect != Defect::Drop)
        m_mapCallbacks.call(damaged(m_setup.mapper->map(mapFromWorld), defect));
}

void SimSlam::publishPlanes(SlamMapper::PlaneKind kind, const Pose &mapFromWorld)
{
    if (kind == SlamMapper::PlaneKind::Tof && !m_setup.mapper->hasTof())
        return;
    const Defect defect = m_planeFaults.next(device().faults()->stream("planes"), Clock::now() - m_startTime);
    if (defect == Defect::Drop)
        return;
    const Planes planes = damaged(m_setup.mapper->planes(kind, mapFromWorld), defect);
    (kind == SlamMapper::PlaneKind::Stereo ? m_stereoCallbacks : m_tofCallbacks).call(planes);
}

int SimSlam::registerLostCallback(std::function<void()> callback)
{
    return m_lostCallbacks.add(std::move(callback));
}

void SimSlam::unregisterLostCallback(int id)
{
    m_lostCallbacks.remove(id);
}

int SimSlam::registerStereoPlanesCallback(std::function<void(Planes)> callback)
{
    return m_stereoCallbacks.add(std::move(callback));
}

void SimSlam::unregisterStereoPlanesCallback(int id)
{
    m_stereoCallbacks.remove(id);
}

int SimSlam::registerTofPlanesCallback(std::function<void(Planes)> callback)
{
    return m_tofCallbacks.add(std::move(callback));
}

void SimSlam::unregisterTofPlanesCallback(int id)
{
    m_tofCallbacks.remove(id);
}

int SimSlam::registerMapCallback(std::function<void(std::shared_ptr<const qv::SlamMap>)> callback)
{
    return m_mapCallbacks.add(std::move(callback));
}

void SimSlam::unregisterMapCallback(int id)
{
    m_mapCallbacks.remove(id);
}

bool SimSlam::clearStereoPlanes()
{
    return clearPlanes(SlamMapper::PlaneKind::Stereo, "clearStereoPlanes");
}

bool SimSlam::clearTofPlanes()
{
    return clearPlanes(SlamMapper::PlaneKind::Tof, "clearTofPlanes");
}

bool SimSlam::clearPlanes(SlamMapper::PlaneKind kind, const char *operation)
{
    if (!accepts(operation))
        return false;
    if (m_setup.mapper)
        m_setup.mapper->clearPlanes(kind);
    return true;
}

MapSwitch::Device SimSlam::mapDevice()
{
    MapSwitch::Device device;
    device.present = [this] { return !this->device().gone(); };
    device.store = [this] {
        const std::optional<Pose> mapFromWorld = frame();
        return mapFromWorld ? m_setup.mapper->store(*mapFromWorld) : StoredMap();
    };
    device.look = [this](const StoredMap &map) -> std::optional<SlamMapper::Match> {
        if (m_paused || !sees() || !frame())
            return std::nullopt;
        return m_setup.mapper->match(Clock::now(), map);
    };
    device.localized = [this](const StoredMap &map, const Pose &mapFromWorld, bool loaded) {
        localized(map, mapFromWorld, loaded);
    };
    device.damages = [this] { return this->device().faults()->damageMap; };
    return device;
}

void SimSlam::localized(const StoredMap &map, const Pose &mapFromWorld, bool loaded)
{
    device().log().add(name() + ": localised in a map");
    if (loaded)
        m_setup.mapper->adopt(map);
    const std::lock_guard lock(m_mutex);
    m_session.corrected = true;
    if (loaded)
        m_session.mapFromWorld = mapFromWorld;
    m_mapChanged = true;
    m_stereoChanged = true;
    m_tofChanged = true;
}

bool SimSlam::loadMapAndSwitchToCslam(std::streambuf &mapStream, std::function<void(int quality)> done,
    std::function<void(float localized)> progress)
{
    if (!m_setup.mapper || !accepts("loadMap"))
        return false;
    StoredMap map;
    try {
        map = MapFile::read(mapStream);
    } catch (const std::exception &error) {
        log(LogLevel::Error, std::string("the map can't be loaded: ") + error.what());
        return false;
    } catch (...) {
        return false;
    }
    MapSwitch::Done end;
    if (done)
        end = [done = std::move(done)](int, int quality) { done(quality); };
    return m_switch.load(std::move(map), std::move(end), std::move(progress), weak_from_this());
}

bool SimSlam::saveMapAndSwitchToCslam(std::streambuf &mapStream,
    std::function<void(int status, int quality)> done, std::function<void(float)> progress)
{
    if (!m_setup.mapper || !accepts("saveMap")) {
        MapSwitch::report(done, MapSwitch::Refused, 0);
        return false;
    }
    return m_switch.save(mapStream, std::move(done), std::move(progress), weak_from_this());
}

} // namespace sim
