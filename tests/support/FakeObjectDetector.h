#pragma once

#include "device/qv/ObjectDetector.h"
#include "support/FakeStream.h"

class FakeObjectDetector : public FakeStream<qv::ObjectDetector, std::vector<qv::Object>> {
public:
    bool setDescriptor(const std::string &path) override
    {
        log->add("setDescriptor", path);
        return true;
    }
    bool setModel(const std::string &path) override
    {
        log->add("setModel", path);
        return modelResult;
    }
    bool setSource(const int &source) override
    {
        log->add("setSource", source);
        return true;
    }
    int source() override { return sourceResult; }

    bool modelResult = true;
    int sourceResult = 255;
};
