#pragma once

#include "device/qv/Records.h"
#include "device/qv/Stream.h"

#include <streambuf>

namespace qv {

class Slam : public virtual Stream<Pose> {
public:
    using Planes = std::shared_ptr<const std::vector<Plane>>;

    virtual bool handleOverrate() = 0;
    virtual bool reset() = 0;
    virtual bool pause() = 0;
    virtual bool resume() = 0;
    virtual int registerLostCallback(std::function<void()> callback) = 0;
    virtual void unregisterLostCallback(int id) = 0;
    virtual int registerStereoPlanesCallback(std::function<void(Planes)> callback) = 0;
    virtual void unregisterStereoPlanesCallback(int id) = 0;
    virtual bool clearStereoPlanes() = 0;
    virtual int registerTofPlanesCallback(std::function<void(Planes)> callback) = 0;
    virtual void unregisterTofPlanesCallback(int id) = 0;
    virtual bool clearTofPlanes() = 0;
    virtual int registerMapCallback(std::function<void(std::shared_ptr<const SlamMap>)> callback) = 0;
    virtual void unregisterMapCallback(int id) = 0;
    /// `done` gets the map's quality, 0 to 100, and `progress` the localised share, 0.0 to 1.0. Both may
    /// run after the call has returned: `mapStream` has to live until `done` has run.
    virtual bool loadMapAndSwitchToCslam(std::streambuf &mapStream, std::function<void(int quality)> done,
        std::function<void(float localized)> progress) = 0;
    virtual bool saveMapAndSwitchToCslam(std::streambuf &mapStream,
        std::function<void(int status, int quality)> done, std::function<void(float)> progress) = 0;
};

} // namespace qv
