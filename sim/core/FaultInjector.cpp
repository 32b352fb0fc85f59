#include "core/FaultInjector.h"

#include <utility>

namespace sim {

namespace {

bool stalled(const StreamFaults &faults, double sinceStart)
{
    if (faults.stallAfter < 0 || sinceStart < faults.stallAfter)
        return false;
    return faults.stallFor <= 0 || sinceStart < faults.stallAfter + faults.stallFor;
}

} // namespace

void FaultInjector::restart()
{
    m_count = 0;
}

Defect FaultInjector::next(const StreamFaults &faults, double sinceStart)
{
    if (stalled(faults, sinceStart))
        return Defect::Drop;
    ++m_count;
    const std::pair<int, Defect> rules[] = {{faults.dropEvery, Defect::Drop},
        {faults.shortEvery, Defect::Short}, {faults.nullEvery, Defect::NullData},
        {faults.zeroEvery, Defect::ZeroSize}, {faults.emptyEvery, Defect::Empty},
        {faults.resizeEvery, Defect::Resize}, {faults.unknownEvery, Defect::Unknown}};
    for (const auto &[every, defect] : rules) {
        if (due(every))
            return defect;
    }
    return Defect::None;
}

double FaultInjector::delay(const StreamFaults &faults) const
{
    return due(faults.lateEvery) ? faults.lateMs / 1000 : 0;
}

} // namespace sim
