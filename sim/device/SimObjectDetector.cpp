#include "device/SimObjectDetector.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace sim {

namespace {

constexpr double detectorPhase = 0.43;
constexpr int humanShape = 1;
constexpr int unknownShape = 2;
/// Narrower or lower things are told with less confidence.
constexpr double goodSide = 60; ///< pixels
constexpr double confidenceWobble = 0.02;

bool isReadableFile(const std::string &path)
{
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) && std::ifstream(path).good();
}

bool isFilledFile(const std::string &path)
{
    std::error_code error;
    return isReadableFile(path) && std::filesystem::file_size(path, error) > 0 && !error;
}

void damage(std::vector<qv::Object> &objects, Defect defect)
{
    if (defect == Defect::Empty || defect == Defect::NullData)
        objects.clear();
    for (qv::Object &object : objects) {
        if (defect == Defect::ZeroSize)
            object.width = object.height = 0;
        else if (defect == Defect::Short)
            object.keypoints.resize(object.keypoints.size() / 2);
        else if (defect == Defect::Resize)
            object = {object.shape, object.type, object.x * 4, object.y * 4, object.width * 4,
                object.height * 4, object.confidence, object.keypoints};
        else if (defect == Defect::Unknown)
            object.shape = unknownShape;
    }
}

} // namespace

SimObjectDetector::SimObjectDetector(
    std::shared_ptr<DeviceState> device, std::shared_ptr<const SharedWorld> world, Views views, double rate)
    : SimObjectDetector(std::move(device), std::move(world), std::move(views),
        std::make_shared<RateSchedule>(rate, detectorPhase))
{
}

SimObjectDetector::SimObjectDetector(std::shared_ptr<DeviceState> device,
    std::shared_ptr<const SharedWorld> world, Views views, std::shared_ptr<RateSchedule> schedule)
    : StreamComponent("objects", std::move(device), schedule)
    , m_world(std::move(world))
    , m_views(std::move(views))
    , m_schedule(std::move(schedule))
    , m_finder(m_world->scene())
    , m_noise(m_world->scene()->seed() + 77)
{
    // The camera that people look at, if there is one.
    for (const int source : {Tof, Right, Left, Color}) {
        if (m_views.count(source) > 0)
            m_source = source;
    }
}

bool SimObjectDetector::isReady() const
{
    const std::lock_guard lock(m_mutex);
    return isFilledFile(m_model) && (m_descriptor.empty() || isReadableFile(m_descriptor));
}

bool SimObjectDetector::start()
{
    m_waiting = true;
    if (!isReady())
        return false;
    m_waiting = false;
    return StreamComponent::start();
}

void SimObjectDetector::startIfAwaited()
{
    if (m_waiting)
        start();
}

bool SimObjectDetector::setModel(const std::string &path)
{
    if (refuses("setModel") || !isFilledFile(path))
        return false;
    {
        const std::lock_guard lock(m_mutex);
        m_model = path;
    }
    startIfAwaited();
    return true;
}

bool SimObjectDetector::setDescriptor(const std::string &path)
{
    if (refuses("setDescriptor"))
        return false;
    const bool none = path == "empty";
    const std::optional<ObjectFilter> filter = none ? ObjectFilter() : ObjectFilter::fromFile(path);
    if (!filter || (filter->source && m_views.count(*filter->source) == 0))
        return false;
    {
        const std::lock_guard lock(m_mutex);
        m_descriptor = none ? "" : path;
        m_filter = *filter;
        if (filter->source)
            m_source = *filter->source;
    }
    startIfAwaited();
    return true;
}

bool SimObjectDetector::setSource(const int &source)
{
    if (refuses("setSource") || (source != None && m_views.count(source) == 0))
        return false;
    m_source = source;
    return true;
}

void SimObjectDetector::setSync(bool sync)
{
    m_schedule->setPhase(sync ? 0 : detectorPhase);
    thread().reschedule();
}

void SimObjectDetector::produce(double due, Defect defect)
{
    if (callbacks().empty())
        return;
    std::vector<qv::Object> objects = detect(due);
    damage(objects, defect);
    deliver(objects);
}

std::vector<qv::Object> SimObjectDetector::detect(double due) const
{
    const auto found = m_views.find(m_source);
    if (found == m_views.end())
        return {};
    const View view = found->second();
    const Pose worldFromCamera = m_world->trajectory().pose(due) * view.bodyFromCamera;
    const ObjectFilter filter = [this] {
        const std::lock_guard lock(m_mutex);
        return m_filter;
    }();
    std::vector<qv::Object> objects;
    for (const SeenObject &seen : m_finder.find(*view.lens, worldFromCamera, due)) {
        qv::Object object = describe(seen, due);
        if (filter.lets(object))
            objects.push_back(std::move(object));
    }
    return objects;
}

qv::Object SimObjectDetector::describe(const SeenObject &seen, double due) const
{
    qv::Object object;
    object.shape = seen.isPerson ? humanShape : 0;
    object.type = seen.type;
    object.x = seen.box.x;
    object.y = seen.box.y;
    object.width = seen.box.width;
    object.height = seen.box.height;
    const double size = std::min(1.0, std::min(seen.box.width, seen.box.height) / goodSide);
    const auto moment = static_cast<std::uint64_t>(Clock::microseconds(due)) * 64 + seen.type.size();
    const double sure = 0.4 + 0.3 * seen.visible + 0.25 * size;
    object.confidence = sure + confidenceWobble * (2 * m_noise.uniform(moment) - 1);
    if (!seen.isPerson)
        return object;
    for (const Eigen::Vector3d &point : seen.keyPoints)
        object.keypoints.push_back({point.x(), point.y(), point.z()});
    return object;
}

} // namespace sim
