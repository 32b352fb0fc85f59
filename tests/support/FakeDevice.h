#pragma once

#include "device/qv/DeviceEx.h"
#include "support/CallLog.h"

/// A device whose components and answers a test sets; `Interface` is `qv::Device` or `qv::DeviceEx`.
template <class Interface>
class BasicFakeDevice : public Interface {
public:
    std::map<std::string, std::string> info() override
    {
        log->add("info");
        if (infoThrows)
            throw std::runtime_error("no information");
        return infoMap;
    }

    std::shared_ptr<qv::Slam> slam() override { return asked("slam", slamComponent); }
    std::shared_ptr<qv::ImuSensor> imuSensor() override { return asked("imuSensor", imuComponent); }
    std::shared_ptr<qv::FisheyeCameras> fisheyeCameras() override
    {
        return asked("fisheyeCameras", fisheyeComponent);
    }
    std::shared_ptr<qv::ColorCamera> colorCamera() override { return asked("colorCamera", colorComponent); }
    std::shared_ptr<qv::TofCamera> tofCamera() override { return asked("tofCamera", tofComponent); }
    std::shared_ptr<qv::Vsc> vsc() override { return asked("vsc", vscComponent); }
    std::shared_ptr<qv::ObjectDetector> objectDetector() override
    {
        return asked("objectDetector", detectorComponent);
    }

    bool hidWriteAndRead(
        const std::vector<unsigned char> &command, std::vector<unsigned char> &result) override
    {
        hidCommands.push_back(command);
        hidResult = result;
        // What lies behind a short answer is no zero that a reader might take for an end.
        result.assign(result.size(), 0xEE);
        result = hidAnswer;
        return hidSucceeds;
    }

    bool enableSync(bool isSync) override
    {
        log->add("enableSync", isSync);
        return syncSucceeds;
    }

    std::string id() override { return uuid; }

    std::vector<std::string> calls() const { return log->calls(); }
    std::vector<std::string> takeCalls() const { return log->take(); }

    std::shared_ptr<CallLog> log = std::make_shared<CallLog>();
    CallLog asks; ///< for components, by the name of the accessor
    std::string uuid = "fake";
    std::map<std::string, std::string> infoMap;
    bool infoThrows = false;
    std::shared_ptr<qv::Slam> slamComponent;
    std::shared_ptr<qv::ImuSensor> imuComponent;
    std::shared_ptr<qv::FisheyeCameras> fisheyeComponent;
    std::shared_ptr<qv::ColorCamera> colorComponent;
    std::shared_ptr<qv::TofCamera> tofComponent;
    std::shared_ptr<qv::Vsc> vscComponent;
    std::shared_ptr<qv::ObjectDetector> detectorComponent;
    std::vector<std::vector<unsigned char>> hidCommands; ///< what each exchange sent
    std::vector<unsigned char> hidResult; ///< the last exchange's result vector as it came in
    std::vector<unsigned char> hidAnswer = std::vector<unsigned char>(63, 0);
    bool hidSucceeds = true;
    bool syncSucceeds = true;

protected:
    template <class Component>
    Component asked(const char *name, const Component &component)
    {
        asks.add(name);
        return component;
    }
};

class FakeDevice : public BasicFakeDevice<qv::Device> { };

class FakeDeviceEx : public BasicFakeDevice<qv::DeviceEx> {
public:
    std::shared_ptr<qv::Slam> edge() override { return asked("edge", edgeComponent); }
    void setImuOffset(int offset) override { log->add("setImuOffset", offset); }
    void setImuMode(int mode) override { log->add("setImuMode", mode); }
    void setUvcMode(int mode) override { log->add("setUvcMode", mode); }
    void setEdgePrediction(int prediction) override { log->add("setEdgePrediction", prediction); }

    std::shared_ptr<qv::Slam> edgeComponent;
};
