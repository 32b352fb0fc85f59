#include "device/qv/Library.h"

namespace qv {

std::string Version::toString() const
{
    return std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(patch);
}

Version version()
{
    return {3, 2, 0};
}

} // namespace qv
