#include "support/FakeLibrary.h"

namespace fake {

void Library::reset()
{
    const std::lock_guard lock(m_mutex);
    m_devices.clear();
    ++m_revision;
    m_answers = 0;
    m_wait = std::chrono::milliseconds(5);
    m_onGetDevices = nullptr;
    m_onVersionText = nullptr;
    m_versionText = "1.2.3";
    m_pcdResult = true;
    m_getDevicesCalls.clear();
    m_logLevels.clear();
    m_pcdSaves.clear();
}

void Library::setDevices(Devices devices)
{
    {
        const std::lock_guard lock(m_mutex);
        m_devices.swap(devices);
        ++m_revision;
    }
    m_news.notify_all();
}

void Library::setWait(std::chrono::milliseconds wait)
{
    const std::lock_guard lock(m_mutex);
    m_wait = wait;
}

void Library::setOnGetDevices(std::function<void()> hook)
{
    const std::lock_guard lock(m_mutex);
    m_onGetDevices = std::move(hook);
}

void Library::setOnVersionText(std::function<void()> hook)
{
    const std::lock_guard lock(m_mutex);
    m_onVersionText = std::move(hook);
}

void Library::setVersionText(std::string text)
{
    const std::lock_guard lock(m_mutex);
    m_versionText = std::move(text);
}

void Library::setPcdResult(bool result)
{
    const std::lock_guard lock(m_mutex);
    m_pcdResult = result;
}

std::vector<GetDevicesCall> Library::getDevicesCalls() const
{
    const std::lock_guard lock(m_mutex);
    return m_getDevicesCalls;
}

int Library::answers() const
{
    const std::lock_guard lock(m_mutex);
    return m_answers;
}

std::vector<int> Library::logLevels() const
{
    const std::lock_guard lock(m_mutex);
    return m_logLevels;
}

std::vector<PcdSave> Library::pcdSaves() const
{
    const std::lock_guard lock(m_mutex);
    return m_pcdSaves;
}

Devices Library::getDevices(const GetDevicesCall &call)
{
    std::unique_lock lock(m_mutex);
    m_getDevicesCalls.push_back(call);
    if (const auto hook = m_onGetDevices) {
        lock.unlock();
        hook();
        lock.lock();
    }
    m_news.wait_for(lock, m_wait, [this] { return m_revision != m_answeredRevision; });
    m_answeredRevision = m_revision;
    ++m_answers;
    return m_devices;
}

std::string Library::versionText() const
{
    std::unique_lock lock(m_mutex);
    const auto hook = m_onVersionText;
    const std::string text = m_versionText;
    lock.unlock();
    if (hook)
        hook();
    return text;
}

void Library::setLogLevel(int level)
{
    const std::lock_guard lock(m_mutex);
    m_logLevels.push_back(level);
}

bool Library::savePcd(PcdSave save)
{
    const std::lock_guard lock(m_mutex);
    m_pcdSaves.push_back(std::move(save));
    return m_pcdResult;
}

Library &library()
{
    // Never destroyed: a thread that asks for devices may outlast the destruction of what is static.
    static auto *const instance = new Library;
    return *instance;
}

} // namespace fake

std::map<std::string, std::shared_ptr<qv::Device>> qv::getDevices(
    double timeout, const std::string &desc, bool *stopWaiting, SlamStartMode mode, DeviceSupport support)
{
    return fake::library().getDevices({timeout, desc, stopWaiting, int(mode), int(support)});
}

qv::Version qv::version()
{
    return {1, 2, 3};
}

std::string qv::Version::toString() const
{
    return fake::library().versionText();
}

void qv::setLogLevel(LogLevel level)
{
    fake::library().setLogLevel(int(level));
}

bool qv::savePointCloudToPcd(
    const std::string &path, const std::shared_ptr<PointCloud> &cloud, int precision, bool binary)
{
    return fake::library().savePcd({path, cloud, precision, binary});
}
