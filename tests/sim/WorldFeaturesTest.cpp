#include "world/CameraModels.h"
#include "world/Features.h"
#include "world/Trajectory.h"

#include <gtest/gtest.h>
#include <set>

using namespace sim;

namespace {

struct World {
    std::shared_ptr<const Scene> scene = std::make_shared<Scene>(1);
    Features features{scene};
    Trajectory trajectory;
    UnifiedModel model{qv::UnifiedCameraModel{640, 400, 300, 300, 319.5, 199.5, 1.0}};
};

const World &world()
{
    static const World shared;
    return shared;
}

} // namespace

TEST(WorldFeatures, thereAreManyOnAllSurfaces)
{
    const auto &all = world().features.all();
    EXPECT_GE(all.size(), 20000U);
    std::set<int> surfaces;
    for (std::size_t i = 0; i < all.size(); ++i) {
        ASSERT_EQ(all[i].id, static_cast<int>(i));
        const Surface &surface = world().scene->surfaces()[static_cast<std::size_t>(all[i].surface)];
        ASSERT_NEAR(surface.normal.dot(all[i].position - surface.corner), 0, 1e-9);
        surfaces.insert(all[i].surface);
    }
    EXPECT_EQ(surfaces.size(), world().scene->surfaces().size());
}

TEST(WorldFeatures, visibleOnesAreSeenAtTheirPixels)
{
    for (const double t : {0.0, 12.0, 33.0}) {
        const Pose pose = world().trajectory.pose(t);
        const auto seen = world().features.visible(world().model, pose, t, 300);
        EXPECT_EQ(seen.size(), 300U);
        for (const auto &[id, pixel] : seen) {
            const Feature &feature = world().features.all()[static_cast<std::size_t>(id)];
            const auto projected = world().model.project(pose.inverse() * feature.position);
            ASSERT_TRUE(projected);
            EXPECT_LT((projected->cast<float>() - pixel).norm(), 1e-3F);
            EXPECT_TRUE(pixel.x() >= 0 && pixel.y() >= 0 && pixel.x() <= 639 && pixel.y() <= 399);
            EXPECT_TRUE(world().scene->sees(pose.translation(), feature.position, t, 0.01));
        }
    }
}

TEST(WorldFeatures, mostStayFromFrameToFrame)
{
    for (double t = 5; t < 20; t += 1.5) {
        std::set<int> before;
        for (const auto &seen : world().features.visible(world().model, world().trajectory.pose(t), t, 200))
            before.insert(seen.first);
        const double next = t + 0.02;
        int kept = 0;
        for (const auto &seen :
            world().features.visible(world().model, world().trajectory.pose(next), next, 200))
            kept += static_cast<int>(before.count(seen.first));
        EXPECT_GE(kept, 180) << t;
    }
}

TEST(WorldFeatures, limitHoldsAndAllComeWithoutOne)
{
    const Pose pose = world().trajectory.pose(8);
    EXPECT_TRUE(world().features.visible(world().model, pose, 8, 0).empty());
    EXPECT_EQ(world().features.visible(world().model, pose, 8, 17).size(), 17U);
    EXPECT_GT(world().features.visible(world().model, pose, 8, 1000000).size(), 2000U);
}

TEST(WorldFeatures, sameSceneSharesItsFeatures)
{
    const auto first = Features::of(world().scene);
    EXPECT_EQ(Features::of(std::make_shared<Scene>(1)), first);
    const auto other = Features::of(std::make_shared<Scene>(2));
    EXPECT_NE(other, first);
    EXPECT_EQ(first->all().size(), world().features.all().size());
}
