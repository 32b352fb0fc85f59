// A call of the library that is on its way while its model goes. The library is asked to stop when the
// callbacks are closed and the model can still signal: what it lets through then is heard here.
#include "spatial/ObjectsData.h"
#include "spatial/PlanesData.h"
#include "support/FakeObjectDetector.h"
#include "support/FakeSlam.h"

#include <functional>

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

template <class Fake>
class LateFake : public Fake {
public:
    bool stop() override
    {
        if (onStop)
            onStop();
        return Fake::stop();
    }

    std::function<void()> onStop;
};

std::vector<qv::Object> detected(const char *type)
{
    return {{1, type, 10, 20, 30, 40, 0.5, {}}};
}

qv::Slam::Planes planeCalled(const char *id)
{
    return std::make_shared<const std::vector<qv::Plane>>(std::vector<qv::Plane>{{id, {}}});
}

} // namespace

TEST(LateCallbacks, objectsOfADetectorThatStopsReachNobody)
{
    const auto detector = std::make_shared<LateFake<FakeObjectDetector>>();
    auto data = std::make_unique<ObjectsData>(detector, nullptr);
    int told = 0, late = 0;
    QObject::connect(data.get(), &ObjectsData::objectsChanged, [&] { ++told; });
    const auto held = detector->callbacks.held();
    ASSERT_EQ(held.size(), 1U);
    held.front()(detected("person"));
    ASSERT_EQ(told, 1);

    detector->onStop = [&] {
        held.front()(detected("chair"));
        ++late;
    };
    detector->takeCalls();
    data.reset();
    EXPECT_EQ(late, 1);
    EXPECT_EQ(told, 1);
    EXPECT_THAT(detector->takeCalls(), ElementsAre("unregisterCallback(1)", "stop"));

    // And when nothing is left of the model, nobody is told and the detector is left alone.
    held.front()(detected("table"));
    EXPECT_EQ(told, 1);
    EXPECT_THAT(detector->takeCalls(), IsEmpty());
}

TEST(LateCallbacks, planesOfASlamThatStopsReachNobody)
{
    const auto slam = std::make_shared<LateFake<FakeSlam>>();
    auto data = std::make_unique<PlanesData>(slam, nullptr);
    int told = 0, late = 0;
    QObject::connect(data.get(), &PlanesData::stereoPlanesChanged, [&] { ++told; });
    QObject::connect(data.get(), &PlanesData::tofPlanesChanged, [&] { ++told; });
    const auto stereo = slam->stereoPlanes.held(), tof = slam->tofPlanes.held();
    ASSERT_EQ(stereo.size(), 1U);
    ASSERT_EQ(tof.size(), 1U);
    stereo.front()(planeCalled("1"));
    tof.front()(planeCalled("1"));
    ASSERT_EQ(told, 2);

    slam->onStop = [&] {
        stereo.front()(planeCalled("2"));
        tof.front()(planeCalled("2"));
        ++late;
    };
    slam->takeCalls();
    data.reset();
    EXPECT_EQ(late, 1);
    EXPECT_EQ(told, 2);
    EXPECT_THAT(slam->takeCalls(),
        ElementsAre("unregisterStereoPlanesCallback(21)", "unregisterTofPlanesCallback(31)", "stop"));

    stereo.front()(planeCalled("3"));
    tof.front()(planeCalled("3"));
    EXPECT_EQ(told, 2);
    EXPECT_THAT(slam->takeCalls(), IsEmpty());
}
