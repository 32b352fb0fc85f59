#include "replay/ImuTrack.h"

#include "core/Log.h"
#include "replay/Table.h"
#include "replay/TimeOrder.h"
#include "replay/TimeStamp.h"

#include <optional>

namespace sim {

namespace {

std::optional<ImuRow> imuRow(const Table::Row &row)
{
    if (row.fields.size() < 7)
        return std::nullopt;
    const auto time = parseTimeStamp(row.fields[0]);
    if (!time)
        return std::nullopt;
    double numbers[6];
    for (std::size_t i = 0; i < 6; ++i) {
        const auto number = parseNumber(row.fields[i + 1]);
        if (!number)
            return std::nullopt;
        numbers[i] = *number;
    }
    return ImuRow{*time, {numbers[0], numbers[1], numbers[2]}, {numbers[3], numbers[4], numbers[5]}};
}

} // namespace

std::vector<ImuRow> readImuTrack(const std::filesystem::path &folder)
{
    std::vector<ImuRow> rows;
    if (!std::filesystem::is_directory(folder))
        return rows;
    const std::filesystem::path file = folder / "data.csv";
    Table table;
    if (!Table::read(file, table)) {
        complain(file.string() + " can't be read, so there are no inertial readings");
        return rows;
    }
    RowReport report(file);
    for (const Table::Row &row : table.rows) {
        if (const auto reading = imuRow(row))
            rows.push_back(*reading);
        else
            report.unreadable(row.line);
    }
    orderByTime(rows, report);
    return rows;
}

} // namespace sim
