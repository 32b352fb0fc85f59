#pragma once

#include "device/qv/FisheyeCamerasEx.h"
#include "support/FakeStream.h"

class FakeFisheyeCameras : public FakeCamera<qv::FisheyeCameras, qv::FisheyeImages> { };

class FakeFisheyeCamerasEx : public FakeCamera<qv::FisheyeCamerasEx, qv::FisheyeImages> {
public:
    using KeyPoints2 = qv::FisheyeKeyPoints<2, 32>;
    using KeyPoints4 = qv::FisheyeKeyPoints<4, 32>;

    int registerKeyPoints4Callback(std::function<void(const KeyPoints4 &)> callback) override
    {
        log->add("registerKeyPoints4Callback");
        return keyPoints4.add(std::move(callback));
    }

    int registerKeyPoints2Callback(std::function<void(const KeyPoints2 &)> callback) override
    {
        log->add("registerKeyPoints2Callback");
        return keyPoints2.add(std::move(callback));
    }

    void unregisterKeyPoints2Callback(int id) override
    {
        log->add("unregisterKeyPoints2Callback", id);
        keyPoints2.remove(id);
    }

    void unregisterKeyPoints4Callback(int id) override
    {
        log->add("unregisterKeyPoints4Callback", id);
        keyPoints4.remove(id);
    }

    const std::vector<qv::CalibrationEx> &calibrationsAtCurrentResolution() override
    {
        log->add("calibrationsAtCurrentResolution");
        return currentCalibrations;
    }

    const std::vector<qv::CalibrationEx> &calibrationsAtCalibrationResolution() override
    {
        log->add("calibrationsAtCalibrationResolution");
        return calibrationCalibrations;
    }

    bool setResolution(int resolutionMode) override
    {
        log->add("setResolution", resolutionMode);
        return resolutionResult;
    }

    FakeCallbacks<const KeyPoints2 &> keyPoints2;
    FakeCallbacks<const KeyPoints4 &> keyPoints4;
    std::vector<qv::CalibrationEx> currentCalibrations;
    std::vector<qv::CalibrationEx> calibrationCalibrations;
    bool resolutionResult = true;
};
