#pragma once

#include "device/qv/Records.h"
#include "device/qv/Stream.h"

namespace qv {

class ObjectDetector : public virtual Stream<std::vector<Object>> {
public:
    /// The word "empty" means none.
    virtual bool setDescriptor(const std::string &path) = 0;
    virtual bool setModel(const std::string &path) = 0;
    /// 0 left, 1 right, 2 colour, 3 ToF, 255 none.
    virtual bool setSource(const int &source) = 0;
    virtual int source() = 0;
};

} // namespace qv
