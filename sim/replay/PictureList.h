#pragma once

#include "replay/Table.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace sim {

/// A picture of a recording and when it was taken.
struct PictureRow {
    std::int64_t time = 0; ///< ns
    std::filesystem::path file;
};

/// The rows of a list of times and file names, in order of time, no time twice. Rows without a file name name
/// it by their time. Empty, with a complaint, if the list can't be read; rows that can't be are told once.
std::vector<PictureRow> readPictureList(
    const std::filesystem::path &list, const std::filesystem::path &folder);

/// Half the usual distance of two pictures, in ns: what is farther apart was not taken together.
std::int64_t togetherLimit(const std::vector<PictureRow> &pictures);

/// The picture nearest to a time, null if none is nearer than `limit` ns. `pictures` isn't empty.
const PictureRow *nearestPicture(
    const std::vector<PictureRow> &pictures, std::int64_t time, std::int64_t limit);

} // namespace sim
