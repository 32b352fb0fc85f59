#pragma once

#include "device/qv/ObjectDetector.h"
#include "support/FakeStream.h"

class FakeObjectDetector : public FakeStream<qv::ObjectDetector, std::vector<qv::Object>> {
public:
    bool setDescriptor(const std::string &path) override
    {
        log->add("setDescriptor", path);
        return descriptorResult;
    }
    bool setModel(const std::string &path) override
    {
        log->add("setModel", path);
        return modelResult;
    }
    bool setSource(const int &source) override
    {
        log->add("setSource", source);
        return setSourceResult;
    }
    int source() override
    {
        log->add("source");
        return sourceResult;
    }

    bool descriptorResult = true;
    bool modelResult = true;
    bool setSourceResult = true;
    int sourceResult = 255;
};
