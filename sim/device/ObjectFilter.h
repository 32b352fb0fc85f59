#pragma once

#include "device/qv/Records.h"

#include <optional>
#include <set>
#include <string>

namespace sim {

/// What a model's descriptor asks for. The file is a JSON object, all keys of which may be left out:
/// `{"classes": ["person", "chair"], "minConfidence": 0.5, "source": "rgb"}`.
struct ObjectFilter {
    std::set<std::string> classes; ///< empty for all
    double minConfidence = 0;
    std::optional<int> source; ///< the camera that the model was made for: "left", "right", "rgb", "tof"

    bool lets(const qv::Object &object) const;

    /// Nothing if the file can't be read or isn't a descriptor.
    static std::optional<ObjectFilter> fromFile(const std::string &path);
};

} // namespace sim
