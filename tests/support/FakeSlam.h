#pragma once

#include "device/qv/Slam.h"
#include "support/FakeStream.h"

class FakeSlam : public FakeStream<qv::Slam, qv::Pose> {
public:
    bool handleOverrate() override { return answer(true, "handleOverrate"); }
    bool reset() override { return answer(true, "reset"); }
    bool pause() override { return answer(pauseResult, "pause"); }
    bool resume() override { return answer(resumeResult, "resume"); }
    int registerLostCallback(std::function<void()> callback) override
    {
        log->add("registerLostCallback");
        return lost.add(std::move(callback));
    }
    void unregisterLostCallback(int id) override
    {
        log->add("unregisterLostCallback", id);
        lost.remove(id);
    }
    int registerStereoPlanesCallback(std::function<void(Planes)> callback) override
    {
        log->add("registerStereoPlanesCallback");
        return stereoPlanes.add(std::move(callback));
    }
    void unregisterStereoPlanesCallback(int id) override
    {
        log->add("unregisterStereoPlanesCallback", id);
        stereoPlanes.remove(id);
    }
    bool clearStereoPlanes() override { return answer(clearResult, "clearStereoPlanes"); }
    int registerTofPlanesCallback(std::function<void(Planes)> callback) override
    {
        log->add("registerTofPlanesCallback");
        return tofPlanes.add(std::move(callback));
    }
    void unregisterTofPlanesCallback(int id) override
    {
        log->add("unregisterTofPlanesCallback", id);
        tofPlanes.remove(id);
    }
    bool clearTofPlanes() override { return answer(clearResult, "clearTofPlanes"); }
    int registerMapCallback(std::function<void(std::shared_ptr<const qv::SlamMap>)> callback) override
    {
        log->add("registerMapCallback");
        return maps.add(std::move(callback));
    }
    void unregisterMapCallback(int id) override
    {
        log->add("unregisterMapCallback", id);
        maps.remove(id);
    }
    bool loadMapAndSwitchToCslam(std::streambuf &mapStream, std::function<void(int)> done,
        std::function<void(float)> progress) override
    {
        loadStream = &mapStream;
        loadDone = std::move(done);
        loadProgress = std::move(progress);
        return answer(loadResult, "loadMapAndSwitchToCslam");
    }
    bool saveMapAndSwitchToCslam(std::streambuf &mapStream, std::function<void(int, int)> done,
        std::function<void(float)> progress) override
    {
        saveStream = &mapStream;
        saveDone = std::move(done);
        saveProgress = std::move(progress);
        return answer(true, "saveMapAndSwitchToCslam");
    }

    FakeCallbacks<> lost{11};
    FakeCallbacks<Planes> stereoPlanes{21};
    FakeCallbacks<Planes> tofPlanes{31};
    FakeCallbacks<std::shared_ptr<const qv::SlamMap>> maps{41};
    bool pauseResult = true;
    bool resumeResult = true;
    bool clearResult = true;
    bool loadResult = true;
    std::streambuf *loadStream = nullptr;
    std::function<void(int)> loadDone;
    std::function<void(float)> loadProgress;
    std::streambuf *saveStream = nullptr;
    std::function<void(int, int)> saveDone;
    std::function<void(float)> saveProgress;

private:
    bool answer(bool result, const char *name) const
    {
        log->add(name);
        return result;
    }
};
