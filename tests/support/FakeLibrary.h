#pragma once

#include "device/qv/Library.h"
#include "support/FakePointCloud.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

/// The free functions of the device library as the unit tests link them: what they answer, and what they were
/// called with. One object for the whole process; a test that uses it calls `reset` first. Thread-safe.
namespace fake {

using Devices = std::map<std::string, std::shared_ptr<qv::Device>>;

struct GetDevicesCall {
    double timeout = 0;
    std::string desc;
    bool *stopWaiting = nullptr;
    int mode = 0;
    int support = 0;
};

struct PcdSave {
    std::string path;
    std::shared_ptr<qv::PointCloud> cloud;
    int precision = 0;
    bool binary = false;
};

class Library {
public:
    /// No devices, no records of calls, default answers.
    void reset();

    /// What `qv::getDevices` answers from now on; a call that waits answers at once.
    void setDevices(Devices devices);
    /// How long a `qv::getDevices` without news waits; short, unlike the real one.
    void setWait(std::chrono::milliseconds wait);
    /// Run at the begin of each `qv::getDevices`, on its thread.
    void setOnGetDevices(std::function<void()> hook);
    /// Called whenever the version's text is asked for, on the thread that asks.
    void setOnVersionText(std::function<void()> hook);
    void setVersionText(std::string text);
    void setPcdResult(bool result);

    std::vector<GetDevicesCall> getDevicesCalls() const;
    /// How often `qv::getDevices` has returned.
    int answers() const;
    std::vector<int> logLevels() const;
    std::vector<PcdSave> pcdSaves() const;

    // What the library's functions do.
    Devices getDevices(const GetDevicesCall &call);
    std::string versionText() const;
    void setLogLevel(int level);
    bool savePcd(PcdSave save);

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_news;
    Devices m_devices;
    int m_revision = 0;
    int m_answeredRevision = 0;
    int m_answers = 0;
    std::chrono::milliseconds m_wait{5};
    std::function<void()> m_onGetDevices;
    std::function<void()> m_onVersionText;
    std::string m_versionText = "1.2.3";
    bool m_pcdResult = true;
    std::vector<GetDevicesCall> m_getDevicesCalls;
    std::vector<int> m_logLevels;
    std::vector<PcdSave> m_pcdSaves;
};

Library &library();

} // namespace fake
