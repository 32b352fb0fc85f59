#ifdef QV_SDK_FILE

#include "device/qv/DeviceEx.h"
#include "device/qv/FisheyeCamerasEx.h"
#include "device/qv/Library.h"
#include "support/Wait.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

std::string run(const std::string &command)
{
    std::string output;
    std::array<char, 4096> buffer{};
    FILE *pipe = popen(command.c_str(), "r");
    while (pipe && fgets(buffer.data(), buffer.size(), pipe))
        output += buffer.data();
    if (pipe)
        pclose(pipe);
    return output;
}

/// The library as the viewer meets it, not the objects that this test is linked with.
class Library {
public:
    Library()
        : m_handle(dlopen(QV_SDK_FILE, RTLD_NOW | RTLD_LOCAL))
    {
    }

    template <class Function>
    Function *find(const char *prefix) const
    {
        // The mangled name as the library has it.
        const std::string name =
            run(std::string("nm -D --defined-only " QV_SDK_FILE " | awk '{print $3}' | grep ^") + prefix);
        return m_handle
            ? reinterpret_cast<Function *>(dlsym(m_handle, name.substr(0, name.find('\n')).c_str()))
            : nullptr;
    }

private:
    void *m_handle; ///< stays loaded: devices may outlive the test
};

} // namespace

TEST(SharedLibrary, exportsItsInterfaceAndNothingElse)
{
    const std::string symbols = run("nm -DC --defined-only " QV_SDK_FILE " | cut -c20-");
    std::stringstream lines(symbols);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        // Its records may be made of the standard library's types.
        const std::string name = line.substr(0, line.find_first_of("(<"));
        EXPECT_EQ(name.find(" std::"), std::string::npos) << "a template of the standard library: " << line;
        EXPECT_TRUE(line.rfind("qv::", 0) == 0 || line.find(" for qv::") != std::string::npos) << line;
    }
    EXPECT_GT(count, 5);
    EXPECT_THAT(symbols, testing::HasSubstr("qv::getDevices("));
}

TEST(SharedLibrary, castsWorkAcrossItsBoundary)
{
    ASSERT_EQ(setenv("QVSIM", "headset,plain", 1), 0);
    const Library library;
    auto *getDevices = library.find<decltype(qv::getDevices)>("_ZN2qv10getDevices");
    ASSERT_NE(getDevices, nullptr) << dlerror();
    const auto devices = getDevices(15.0, "", nullptr, qv::SlamStartMode{0}, qv::DeviceSupport{0});
    unsetenv("QVSIM");
    ASSERT_EQ(devices.size(), 2U);
    const auto headset = devices.at("QVH2-24A0001");
    const auto plain = devices.at("QVP1-24A0001");
    EXPECT_NE(std::dynamic_pointer_cast<qv::DeviceEx>(headset), nullptr);
    EXPECT_EQ(std::dynamic_pointer_cast<qv::DeviceEx>(plain), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<qv::FisheyeCamerasEx>(headset->fisheyeCameras()), nullptr);
    EXPECT_EQ(std::dynamic_pointer_cast<qv::FisheyeCamerasEx>(plain->fisheyeCameras()), nullptr);

    std::atomic<int> readings{0};
    const int id = headset->imuSensor()->registerCallback([&readings](const qv::Imu &) { ++readings; });
    EXPECT_TRUE(headset->imuSensor()->start());
    EXPECT_TRUE(waitFor([&] { return readings > 10; }));
    headset->imuSensor()->unregisterCallback(id);
    EXPECT_TRUE(headset->imuSensor()->stop());
}

#endif
