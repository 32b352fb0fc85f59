#include "device/SharedWorld.h"

#include <map>

namespace sim {

SharedWorld::SharedWorld(unsigned seed)
    : m_seed(seed)
    , m_trajectory(seed)
    , m_scene(std::make_shared<const Scene>(seed))
{
}

std::shared_ptr<const SharedWorld> SharedWorld::get(unsigned seed)
{
    static std::mutex mutex;
    static std::map<unsigned, std::weak_ptr<const SharedWorld>> worlds;
    const std::lock_guard lock(mutex);
    std::shared_ptr<const SharedWorld> world = worlds[seed].lock();
    if (!world) {
        world = std::make_shared<const SharedWorld>(seed);
        worlds[seed] = world;
    }
    return world;
}

const Features &SharedWorld::features() const
{
    std::call_once(
        m_featuresMade, [this] { m_features = std::make_unique<const Features>(m_scene, m_seed); });
    return *m_features;
}

} // namespace sim
