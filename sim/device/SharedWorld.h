#pragma once

#include "world/Features.h"
#include "world/Scene.h"
#include "world/Trajectory.h"

#include <memory>
#include <mutex>

namespace sim {

/// The world that all devices of one seed stand in: one room, one road through it. Thread-safe.
class SharedWorld {
public:
    explicit SharedWorld(unsigned seed);
    /// The world of that seed, made when first asked for and kept while anyone holds it.
    static std::shared_ptr<const SharedWorld> get(unsigned seed);

    const Trajectory &trajectory() const { return m_trajectory; }
    const std::shared_ptr<const Scene> &scene() const { return m_scene; }
    /// Takes a moment when called for the first time.
    const Features &features() const;

private:
    const unsigned m_seed;
    const Trajectory m_trajectory;
    const std::shared_ptr<const Scene> m_scene;
    mutable std::once_flag m_featuresMade;
    mutable std::unique_ptr<const Features> m_features;
};

} // namespace sim
