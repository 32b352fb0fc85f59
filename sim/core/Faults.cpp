#include "core/Faults.h"

#include <tuple>

namespace sim {

namespace {

auto fields(const StreamFaults &f)
{
    return std::tie(f.dropEvery, f.lateEvery, f.lateMs, f.shortEvery, f.nullEvery, f.zeroEvery, f.emptyEvery,
        f.resizeEvery, f.unknownEvery, f.stallAfter, f.stallFor, f.loseAfter, f.loseFor);
}

auto fields(const Faults &f)
{
    return std::tie(
        f.refuse, f.streams, f.throwInfo, f.hidDelayMs, f.vanishAfter, f.returnAfter, f.damageMap);
}

} // namespace

bool StreamFaults::operator==(const StreamFaults &other) const
{
    return fields(*this) == fields(other);
}

bool Faults::operator==(const Faults &other) const
{
    return fields(*this) == fields(other);
}

bool Faults::refuses(const std::string &component, const std::string &operation) const
{
    if (refuse.empty())
        return false;
    return refuse.count(operation) > 0 || refuse.count(component + '.' + operation) > 0;
}

StreamFaults Faults::stream(const std::string &component) const
{
    const auto found = streams.find(component);
    return found == streams.end() ? StreamFaults() : found->second;
}

} // namespace sim
