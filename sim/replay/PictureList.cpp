#include "replay/PictureList.h"

#include "core/Log.h"
#include "replay/TimeOrder.h"
#include "replay/TimeStamp.h"
#include "replay/Timeline.h"

#include <cmath>

namespace sim {

namespace {

std::optional<PictureRow> pictureRow(const Table::Row &row, const std::filesystem::path &folder)
{
    const auto time = parseTimeStamp(row.fields[0]);
    if (!time)
        return std::nullopt;
    const std::string name = row.fields.size() > 1 ? row.fields[1] : row.fields[0] + ".png";
    if (name.empty())
        return std::nullopt;
    return PictureRow{*time, folder / name};
}

} // namespace

std::vector<PictureRow> readPictureList(
    const std::filesystem::path &list, const std::filesystem::path &folder)
{
    std::vector<PictureRow> pictures;
    Table table;
    if (!Table::read(list, table)) {
        complain(list.string() + " can't be read, the camera is left out");
        return pictures;
    }
    RowReport report(list);
    for (const Table::Row &row : table.rows) {
        if (const auto read = pictureRow(row, folder))
            pictures.push_back(*read);
        else
            report.unreadable(row.line);
    }
    orderByTime(pictures, report);
    return pictures;
}

std::int64_t togetherLimit(const std::vector<PictureRow> &pictures)
{
    std::vector<std::int64_t> times;
    times.reserve(pictures.size());
    for (const PictureRow &picture : pictures)
        times.push_back(picture.time);
    return std::llround(Timeline::usualPeriod(times, 0.05) * 1e9 / 2);
}

const PictureRow *nearestPicture(
    const std::vector<PictureRow> &pictures, std::int64_t time, std::int64_t limit)
{
    const auto earlier = [](const PictureRow &a, std::int64_t b) { return a.time < b; };
    auto found = std::lower_bound(pictures.begin(), pictures.end(), time, earlier);
    if (found == pictures.end()
        || (found != pictures.begin() && time - (found - 1)->time < found->time - time))
        --found;
    return std::abs(found->time - time) < limit ? &*found : nullptr;
}

} // namespace sim
