#pragma once

#include "device/qv/Vsc.h"
#include "support/FakeStream.h"

class FakeVsc : public FakeStream<qv::Vsc, qv::SgbmImage> {
public:
    using FakeStream<qv::Vsc, qv::SgbmImage>::start;

    bool start(const qv::SgbmConfig &config) override
    {
        log->add("start(config)");
        configs.push_back(config);
        return startResult;
    }

    bool setResolution(const int &resolution) override
    {
        log->add("setResolution", resolution);
        return resolutionResult;
    }

    int resolution() override
    {
        log->add("resolution");
        return currentResolution;
    }

    std::vector<qv::SgbmConfig> configs; ///< what each `start` was given
    bool resolutionResult = true;
    int currentResolution = 0;
};
