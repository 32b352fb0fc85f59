#pragma once

#include "spatial/SlamData.h"
#include "support/FakeSlam.h"

#include <gtest/gtest.h>
#include <memory>

/// A SLAM model on a fake of its component.
class Slam : public ::testing::Test {
protected:
    std::shared_ptr<FakeSlam> slam = std::make_shared<FakeSlam>();
    std::unique_ptr<SlamData> data = std::make_unique<SlamData>(slam, nullptr);
};
