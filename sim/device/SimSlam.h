#pragma once

#include "core/RateSchedule.h"
#include "device/MapSwitch.h"
#include "device/PoseSource.h"
#include "device/SimFisheyeCameras.h"
#include "device/SlamMapper.h"
#include "device/StreamComponent.h"
#include "device/qv/Slam.h"

namespace sim {

/// Poses with a map and planes: of the host, or of the device itself ("edge").
///
/// The frame: where the device is at the first pose after a start or a reset is the origin, and it looks
/// along +z there; y points down as gravity does. Localised in a loaded map, poses are in that map's frame.
/// While it runs it keeps the fisheye cameras on.
class SimSlam : public virtual qv::Slam, public StreamComponent<qv::Pose> {
public:
    struct Setup {
        std::string name = "slam"; ///< "edge" for the one of the device
        bool onDevice = false;
        std::shared_ptr<PoseSource> poses;
        std::shared_ptr<SlamMapper> mapper; ///< null for poses only
        std::shared_ptr<SimFisheyeCameras> cameras; ///< may be null
        double mapRate = 2; ///< maps per second at most
        double turnLimit = 0.6; ///< rad/s at which the confidence is half
    };

    SimSlam(std::shared_ptr<DeviceState> device, Setup setup);
    ~SimSlam() override;

    /// Throttles the poses to what the viewer and others can take.
    bool handleOverrate() override;
    bool reset() override;
    bool pause() override;
    bool resume() override;
    int registerLostCallback(std::function<void()> callback) override;
    void unregisterLostCallback(int id) override;
    int registerStereoPlanesCallback(std::function<void(Planes)> callback) override;
    void unregisterStereoPlanesCallback(int id) override;
    bool clearStereoPlanes() override;
    int registerTofPlanesCallback(std::function<void(Planes)> callback) override;
    void unregisterTofPlanesCallback(int id) override;
    bool clearTofPlanes() override;
    int registerMapCallback(std::function<void(std::shared_ptr<const qv::SlamMap>)> callback) override;
    void unregisterMapCallback(int id) override;
    bool loadMapAndSwitchToCslam(std::streambuf &mapStream, std::function<void(int quality)> done,
        std::function<void(float localized)> progress) override;
    bool saveMapAndSwitchToCslam(std::streambuf &mapStream, std::function<void(int status, int quality)> done,
        std::function<void(float)> progress) override;

    /// Streams that are synchronous take their records at the same moments.
    void setSync(bool sync);

protected:
    void produce(double due, Defect defect) override;
    void aboutToStart() override;
    void stopped() override;

private:
    /// From a start or a reset to the next one.
    struct Session {
        std::optional<Pose> mapFromWorld; ///< none before the first pose
        double origin = 0; ///< when it was taken, seconds of the clock
        double recovered = 0; ///< when tracking was found again
        bool corrected = false; ///< localised in a map
        bool lost = false;
    };

    bool allows(const char *operation);
    bool accepts(const char *operation);
    void begin();
    bool sees();
    void lose();
    double confidence(double turnRate, double sinceRecovery) const;
    std::optional<qv::Pose> pose(double due);
    std::optional<Pose> frame() const;

    MapSwitch::Device mapDevice();
    void localized(const StoredMap &map, const Pose &mapFromWorld, bool loaded);
    void look(double due);
    void lookForPoints(double due, const Pose &mapFromWorld);
    void lookForPlanes(double due, const Pose &mapFromWorld);
    bool hasPictures() const;
    void publishMap(const Pose &mapFromWorld);
    void publishPlanes(SlamMapper::PlaneKind kind, const Pose &mapFromWorld);
    bool clearPlanes(SlamMapper::PlaneKind kind, const char *operation);

    const Setup m_setup;
    mutable std::mutex m_mutex;
    Session m_session;
    std::atomic<double> m_startTime{0};
    std::atomic<bool> m_paused{false};
    std::atomic<bool> m_holding{false}; ///< the cameras
    std::atomic<bool> m_cleared{false}; ///< and not yet told so
    std::atomic<bool> m_mapChanged{false};
    std::atomic<bool> m_stereoChanged{false};
    std::atomic<bool> m_tofChanged{false};
    std::atomic<bool> m_lookRestarted{false};
    double m_nextMap = 0; ///< of the map's thread, as the next two
    int m_looks = 0;
    FaultInjector m_mapFaults;
    FaultInjector m_planeFaults;
    Callbacks<> m_lostCallbacks;
    Callbacks<Planes> m_stereoCallbacks;
    Callbacks<Planes> m_tofCallbacks;
    Callbacks<std::shared_ptr<const qv::SlamMap>> m_mapCallbacks;
    MapSwitch m_switch;
    StreamThread m_mapThread; ///< last, so that it ends before what it uses
};

} // namespace sim
