#include "device/ObjectFilter.h"

#include "core/Log.h"

#include <array>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace sim {

namespace {

int sourceByName(const std::string &name)
{
    static constexpr std::array<const char *, 4> names = {"left", "right", "rgb", "tof"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (name == names[i])
            return static_cast<int>(i);
    }
    throw std::runtime_error("there is no source \"" + name + '"');
}

ObjectFilter parse(std::istream &file)
{
    const nlohmann::json document = nlohmann::json::parse(file);
    if (!document.is_object())
        throw std::runtime_error("a descriptor has to be an object");
    ObjectFilter filter;
    filter.classes = document.value("classes", filter.classes);
    filter.minConfidence = document.value("minConfidence", filter.minConfidence);
    if (document.contains("source"))
        filter.source = sourceByName(document.at("source").get<std::string>());
    return filter;
}

} // namespace

bool ObjectFilter::lets(const qv::Object &object) const
{
    return object.confidence >= minConfidence && (classes.empty() || classes.count(object.type) > 0);
}

std::optional<ObjectFilter> ObjectFilter::fromFile(const std::string &path)
{
    std::ifstream file(path);
    try {
        return parse(file);
    } catch (const std::exception &error) {
        log(LogLevel::Warning, path + ": " + error.what());
        return std::nullopt;
    }
}

} // namespace sim
