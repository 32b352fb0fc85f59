#include "device/CameraDevice.h"

#include "device/FullDevice.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(CameraDeviceSpatial, predictionOfEitherSourceReachesTheDevice)
{
    const FullDevice full;
    const CameraDevice camera(full.device, nullptr);
    ASSERT_TRUE(camera.slam());
    ASSERT_TRUE(camera.edge());
    full.device->takeCalls();
    camera.slam()->setPrediction(400);
    camera.slam()->setPrediction(400);
    EXPECT_THAT(full.device->takeCalls(), ElementsAre("setEdgePrediction(400)"));
    camera.edge()->setPrediction(400);
    EXPECT_THAT(full.device->takeCalls(), ElementsAre("setEdgePrediction(400)"));
}

TEST(CameraDeviceSpatial, aPlainDeviceTakesNoPrediction)
{
    const auto device = std::make_shared<FakeDevice>();
    device->slamComponent = std::make_shared<FakeSlam>();
    const CameraDevice camera(device, nullptr);
    ASSERT_TRUE(camera.slam());
    EXPECT_EQ(camera.edge(), nullptr);
    device->takeCalls();
    camera.slam()->setPrediction(400);
    EXPECT_EQ(camera.slam()->prediction(), 400);
    EXPECT_THAT(device->takeCalls(), IsEmpty());
}
