#pragma once

#include "support/CallLog.h"
#include "support/FakeCallbacks.h"

/// The stream face of a component: `class FakeImuSensor : public FakeStream<qv::ImuSensor, qv::Imu>`.
template <class Component, class Record>
class FakeStream : public Component {
public:
    using Component::start;

    bool start() override
    {
        log->add("start");
        return startResult;
    }

    bool stop() override
    {
        log->add("stop");
        return stopResult;
    }

    int registerCallback(std::function<void(const Record &)> callback) override
    {
        log->add("registerCallback");
        return callbacks.add(std::move(callback));
    }

    void unregisterCallback(int id) override
    {
        log->add("unregisterCallback", id);
        callbacks.remove(id);
    }

    void deliver(const Record &record) const { callbacks.deliver(record); }
    std::vector<std::string> calls() const { return log->calls(); }
    std::vector<std::string> takeCalls() const { return log->take(); }

    std::shared_ptr<CallLog> log = std::make_shared<CallLog>();
    FakeCallbacks<const Record &> callbacks;
    bool startResult = true;
    bool stopResult = true;
};

/// The stream face and the camera face.
template <class Component, class Record>
class FakeCamera : public FakeStream<Component, Record> {
public:
    const std::vector<qv::Calibration> &calibration() override { return calibrations; }

    bool setFramerate(float fps) override
    {
        this->log->add("setFramerate", fps);
        return framerateResult;
    }

    bool setExposure(int aecMode, int gain, float exposureMs) override
    {
        this->log->add("setExposure", aecMode, gain, exposureMs);
        return exposureResult;
    }

    std::vector<qv::Calibration> calibrations;
    bool framerateResult = true;
    bool exposureResult = true;
};
