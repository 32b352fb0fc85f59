#include "device/TrajectoryPoses.h"

#include "core/Clock.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

/// A recording wants all of them, so a short delay loses none.
constexpr double poseBacklog = 0.5;
constexpr double driftTime = 10; // seconds, of its growth
constexpr double noiseTime = 0.1; // seconds
constexpr double keptDrift = 0.2; // of the drift, with a map
constexpr double farthestPrediction = 1; // seconds

constexpr std::uint64_t phaseChannel = 1'000'000'007;

} // namespace

TrajectoryPoses::Setup TrajectoryPoses::Setup::host(unsigned seed)
{
    Setup setup;
    setup.phase = 0.44;
    setup.seed = 0x3000U + seed;
    return setup;
}

TrajectoryPoses::Setup TrajectoryPoses::Setup::edge(unsigned seed)
{
    Setup setup;
    setup.rate = 500;
    setup.phase = 0.71;
    setup.drift = 0.025;
    setup.driftAngle = 0.006;
    setup.noise = 0.0006;
    setup.noiseAngle = 0.0006;
    setup.seed = 0x4000U + seed;
    return setup;
}

TrajectoryPoses::TrajectoryPoses(std::shared_ptr<const SharedWorld> world, const Setup &setup)
    : m_world(std::move(world))
    , m_setup(setup)
    , m_schedule(std::make_shared<RateSchedule>(setup.rate, setup.phase, poseBacklog))
    , m_noise(setup.seed)
{
}

std::optional<PoseSource::Estimate> TrajectoryPoses::estimate(const Request &request)
{
    const double t = request.due;
    const double ahead = std::clamp(request.ahead, -farthestPrediction, farthestPrediction);
    const Trajectory &trajectory = m_world->trajectory();
    const Eigen::Vector3d turn = trajectory.angularVelocity(t);
    const double since = std::max(0.0, request.since);
    const double driftAmount = (1 - std::exp(-since / driftTime)) * (request.corrected ? keptDrift : 1);

    Estimate out;
    out.turnRate = turn.norm();
    out.edgeTimestampUs = Clock::microseconds(t + ahead);
    Pose pose = drift(t, driftAmount) * trajectory.pose(t);
    if (ahead != 0) {
        pose.translation() += trajectory.velocity(t) * ahead;
        if (out.turnRate > 0)
            pose.rotate(Eigen::AngleAxisd(out.turnRate * ahead, turn / out.turnRate));
    }
    out.worldFromBody = pose * noise(t, std::min(1.0, since / noiseTime));
    return out;
}

/// Slow waves about the middle of the room, each axis with its own.
Pose TrajectoryPoses::drift(double t, double amount) const
{
    static constexpr double periods[] = {61, 83, 71, 97};
    double waves[4];
    for (unsigned i = 0; i < 4; ++i)
        waves[i] = amount * std::sin(2 * M_PI * (t / periods[i] + m_noise.uniform(phaseChannel + i)));
    Pose pose = Pose::Identity();
    pose.translation() = m_setup.drift * Eigen::Vector3d(waves[0], waves[1], waves[2]);
    pose.rotate(Eigen::AngleAxisd(m_setup.driftAngle * waves[3], Eigen::Vector3d::UnitY()));
    return pose;
}

Pose TrajectoryPoses::noise(double t, double amount) const
{
    const auto moment = static_cast<std::uint64_t>(Clock::microseconds(t)) * 8;
    Eigen::Vector3d shift;
    Eigen::Vector3d turn;
    for (unsigned i = 0; i < 3; ++i) {
        shift[i] = amount * m_setup.noise * m_noise.gaussian(moment + i);
        turn[i] = amount * m_setup.noiseAngle * m_noise.gaussian(moment + 3 + i);
    }
    Pose pose = Pose::Identity();
    pose.translation() = shift;
    if (const double angle = turn.norm(); angle > 0)
        pose.linear() = Eigen::AngleAxisd(angle, turn / angle).toRotationMatrix();
    return pose;
}

void TrajectoryPoses::setSync(bool sync)
{
    m_schedule->setPhase(sync ? 0 : m_setup.phase);
}

bool TrajectoryPoses::limitRate(double hz)
{
    if (m_schedule->rate() <= hz)
        return false;
    m_schedule->setRate(hz);
    return true;
}

} // namespace sim
