#pragma once

#include "replay/RowReport.h"

#include <algorithm>
#include <vector>

namespace sim {

/// Puts rows in order of their `time` and keeps the first of those that share one; reports both.
template <class Row>
void orderByTime(std::vector<Row> &rows, RowReport &report)
{
    for (std::size_t i = 1; i < rows.size(); ++i) {
        if (rows[i].time < rows[i - 1].time)
            report.disordered();
    }
    const auto earlier = [](const Row &a, const Row &b) { return a.time < b.time; };
    std::stable_sort(rows.begin(), rows.end(), earlier);
    const auto same = [&report](const Row &a, const Row &b) {
        if (a.time != b.time)
            return false;
        report.repeated();
        return true;
    };
    rows.erase(std::unique(rows.begin(), rows.end(), same), rows.end());
}

} // namespace sim
