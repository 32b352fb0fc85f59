#pragma once

#include "core/Noise.h"
#include "core/RateSchedule.h"
#include "device/ObjectFilter.h"
#include "device/SharedWorld.h"
#include "device/StreamComponent.h"
#include "device/qv/ObjectDetector.h"
#include "world/ObjectFinder.h"

namespace sim {

/// Names what is in the source camera's view: things as boxes, the person as a skeleton of 18 points, of
/// which the hidden ones are (-1, -1, 0). With the source 255 there is nothing to see, and the records are
/// empty.
///
/// A start is refused without a model, and if the files of the model or the descriptor have gone. It is made
/// up for as soon as a file that it lacked is set, unless a stop has taken it back.
class SimObjectDetector : public virtual qv::ObjectDetector, public StreamComponent<std::vector<qv::Object>> {
public:
    enum Source : int { Left = 0, Right = 1, Color = 2, Tof = 3, None = 255 };

    /// A camera as it is set at the moment: what the coordinates of its pictures mean.
    struct View {
        std::shared_ptr<const CameraModel> lens;
        Pose bodyFromCamera;
    };
    /// By source; the functions are called on the stream's thread.
    using Views = std::map<int, std::function<View()>>;

    SimObjectDetector(std::shared_ptr<DeviceState> device, std::shared_ptr<const SharedWorld> world,
        Views views, double rate);

    bool start() override;
    /// False if the file can't be read or understood; the descriptor of before then stays.
    bool setDescriptor(const std::string &path) override;
    /// False if the file can't be read or is empty; the model of before then stays.
    bool setModel(const std::string &path) override;
    /// False for cameras that the device lacks.
    bool setSource(const int &source) override;
    int source() override { return m_source; }
    /// Streams that are synchronous take their records at the same moments.
    void setSync(bool sync);

protected:
    void produce(double due, Defect defect) override;
    void stopped() override { m_waiting = false; }

private:
    SimObjectDetector(std::shared_ptr<DeviceState> device, std::shared_ptr<const SharedWorld> world,
        Views views, std::shared_ptr<RateSchedule> schedule);
    bool isReady() const;
    void startIfAwaited();
    std::vector<qv::Object> detect(double due) const;
    qv::Object describe(const SeenObject &seen, double due) const;

    const std::shared_ptr<const SharedWorld> m_world;
    const Views m_views;
    const std::shared_ptr<RateSchedule> m_schedule;
    const ObjectFinder m_finder;
    const Noise m_noise;
    std::atomic<int> m_source{None};
    std::atomic<bool> m_waiting{false}; ///< for a file, since a start

    mutable std::mutex m_mutex;
    std::string m_model;
    std::string m_descriptor; ///< empty for none
    ObjectFilter m_filter;
};

} // namespace sim
