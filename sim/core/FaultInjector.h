#pragma once

#include "core/Faults.h"

namespace sim {

/// What is to be done to one record.
enum class Defect { None, Drop, Short, NullData, ZeroSize, Empty, Resize, Unknown };

/// Goes through the faults of one stream, record by record. Used by the stream's thread only.
class FaultInjector {
public:
    void restart();

    /// The defect of the next record; where several meet, the one named first in `Defect` holds.
    /// `sinceStart` is the stream's age in seconds.
    Defect next(const StreamFaults &faults, double sinceStart);
    /// How long the record of the last `next` is held back, in seconds.
    double delay(const StreamFaults &faults) const;

private:
    bool due(int every) const { return every > 0 && m_count % every == 0; }

    long m_count = 0;
};

} // namespace sim
