#include "world/PointMap.h"

namespace sim {

PointMap::PointMap(std::shared_ptr<const Features> features)
    : m_features(std::move(features))
    , m_known(m_features->all().size(), false)
{
}

std::size_t PointMap::observe(
    const CameraModel &model, const Pose &worldFromCamera, double t, std::size_t limit)
{
    const std::size_t before = m_ids.size();
    for (const auto &seen : m_features->visible(model, worldFromCamera, t, limit))
        add(seen.first);
    return m_ids.size() - before;
}

std::size_t PointMap::explore(
    const CameraModel &model, const Pose &worldFromCamera, double t, std::size_t budget)
{
    const std::size_t before = m_ids.size();
    for (const int id : m_features->explore(model, worldFromCamera, t, m_known, m_cursor, budget))
        add(id);
    return m_ids.size() - before;
}

void PointMap::add(int id)
{
    const auto index = static_cast<std::size_t>(id);
    if (!m_known[index])
        m_ids.push_back(id);
    m_known[index] = true;
}

std::vector<Eigen::Vector3d> PointMap::points() const
{
    std::vector<Eigen::Vector3d> out;
    out.reserve(m_ids.size());
    for (const int id : m_ids)
        out.push_back(m_features->all()[static_cast<std::size_t>(id)].position);
    return out;
}

void PointMap::reset()
{
    m_ids.clear();
    m_known.assign(m_known.size(), false);
}

} // namespace sim
