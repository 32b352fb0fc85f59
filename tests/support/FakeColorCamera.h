#pragma once

#include "device/qv/ColorCamera.h"
#include "support/FakeStream.h"

class FakeColorCamera : public FakeCamera<qv::ColorCamera, qv::ColorImage> {
public:
    void setResolution(const int &resolution) override { log->add("setResolution", resolution); }
    void setRgbMode(const int &mode) override { log->add("setRgbMode", mode); }
    void setRgbDistance(int distance) override { log->add("setRgbDistance", distance); }

    void startCamera(int index) override { log->add("startCamera", index); }

    bool stopCamera(int index) override
    {
        log->add("stopCamera", index);
        return stopCameraResult;
    }

    int registerCallback2(std::function<void(const qv::ColorImage &)> callback) override
    {
        log->add("registerCallback2");
        return callbacks2.add(std::move(callback));
    }

    void unregisterCallback2(int id) override
    {
        log->add("unregisterCallback2", id);
        callbacks2.remove(id);
    }

    FakeCallbacks<const qv::ColorImage &> callbacks2;
    bool stopCameraResult = true;
};
