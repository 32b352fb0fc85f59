#pragma once

#include "core/Callbacks.h"
#include "core/Clock.h"
#include "core/FaultInjector.h"
#include "core/StreamThread.h"
#include "device/DeviceState.h"
#include "device/qv/Stream.h"

#include <atomic>

namespace sim {

/// The stream face of every simulated component: start, stop, callbacks, faults and the end of the hardware.
/// A component derives from this and from its class of the contract, and makes its records in `produce`.
/// Components are held by std::shared_ptr.
template <class Record>
class StreamComponent : public virtual qv::Stream<Record>,
                        public std::enable_shared_from_this<StreamComponent<Record>> {
public:
    bool start() override
    {
        if (m_device->refuses(m_name, "start"))
            return false;
        if (m_thread.running())
            return true;
        m_startedAt = Clock::now();
        m_restarted = true;
        m_device->noteStart();
        m_device->log().add(m_name + ": stream on");
        aboutToStart();
        return m_thread.start(this->weak_from_this());
    }

    bool stop() override
    {
        const bool refused = m_device->refuses(m_name, "stop");
        if (refused && !m_device->gone())
            return false;
        const bool wasRunning = m_thread.stop();
        stopped();
        if (wasRunning)
            m_device->log().add(m_name + ": stream off");
        return wasRunning && !refused;
    }

    int registerCallback(std::function<void(const Record &)> callback) override
    {
        return m_callbacks.add(std::move(callback));
    }

    void unregisterCallback(int id) override { m_callbacks.remove(id); }

protected:
    StreamComponent(
        std::string name, std::shared_ptr<DeviceState> device, std::shared_ptr<const Schedule> schedule)
        : m_name(std::move(name))
        , m_device(std::move(device))
        , m_thread(m_name, std::move(schedule), [this](double due) { tick(due); })
    {
    }

    /// Makes and delivers the record of that time, with that defect. On the stream's thread.
    virtual void produce(double due, Defect defect) = 0;
    virtual void aboutToStart() { }
    virtual void stopped() { }

    void deliver(const Record &record) const { m_callbacks.call(record); }
    bool refuses(const char *operation) const { return m_device->refuses(m_name, operation); }
    const std::string &name() const { return m_name; }
    DeviceState &device() const { return *m_device; }
    StreamThread &thread() { return m_thread; }
    const Callbacks<const Record &> &callbacks() const { return m_callbacks; }

private:
    void tick(double due)
    {
        if (m_device->gone()) {
            m_thread.halt();
            return;
        }
        if (m_restarted.exchange(false))
            m_injector.restart();
        const StreamFaults faults = m_device->faults()->stream(m_name);
        const Defect defect = m_injector.next(faults, Clock::now() - m_startedAt);
        if (defect == Defect::Drop)
            return;
        if (const double delay = m_injector.delay(faults); delay > 0)
            m_thread.sleep(delay);
        produce(due, defect);
    }

    const std::string m_name;
    const std::shared_ptr<DeviceState> m_device;
    Callbacks<const Record &> m_callbacks;
    FaultInjector m_injector;
    std::atomic<double> m_startedAt{0};
    std::atomic<bool> m_restarted{false};
    StreamThread m_thread; ///< last, so that it ends before what it uses
};

} // namespace sim
