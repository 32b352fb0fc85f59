#pragma once

#include "device/StoredMap.h"

#include <streambuf>
#include <string>

namespace sim {

/// The file format of maps. All numbers are little-endian:
///
/// | bytes | what |
/// | 8 | "QVSLAMAP" |
/// | 4 | version, 1 |
/// | 4 | quality, 0 to 100 |
/// | 8 | length of the landmarks in bytes |
/// | 32 each | landmarks: descriptor (8), x, y, z (8 each, IEEE 754), metres |
/// | 4 | CRC-32 (IEEE 802.3) of all before it |
class MapFile {
public:
    static std::string encode(const StoredMap &map);
    /// Reads to the end. Throws std::runtime_error with a text for people if it isn't a whole, sound map.
    static StoredMap read(std::streambuf &stream);
};

} // namespace sim
