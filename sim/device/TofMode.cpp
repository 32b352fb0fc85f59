#include "device/TofMode.h"

namespace sim {

namespace {

TofMode workModeOf(int number)
{
    TofMode mode;
    mode.mix = static_cast<TofMode::Mix>(number / 2);
    mode.dualFrequency = number % 2 == 0;
    return mode;
}

void finishNoise(TofMode &mode, float base)
{
    mode.noise = base * (mode.dualFrequency ? 0.5F : 1.0F) * (mode.mix == TofMode::M2mix ? 0.5F : 1.0F);
}

} // namespace

TofMode TofMode::ofFirstFamily(int workMode, int distanceMode)
{
    static constexpr struct {
        float nearest;
        float farthest;
        float noise;
    } ranges[distanceModes] = {{0.10F, 2.0F, 0.0006F}, {0.15F, 4.0F, 0.0012F}, {0.30F, 7.5F, 0.0020F}};
    TofMode mode = workModeOf(workMode);
    mode.nearest = ranges[distanceMode].nearest;
    mode.farthest = ranges[distanceMode].farthest;
    finishNoise(mode, ranges[distanceMode].noise);
    return mode;
}

TofMode TofMode::ofSecondFamily(int workMode)
{
    TofMode mode = workModeOf(workMode);
    mode.nearest = 0.15F;
    mode.farthest = mode.dualFrequency ? 10.0F : 5.0F;
    finishNoise(mode, 0.0015F);
    return mode;
}

} // namespace sim
