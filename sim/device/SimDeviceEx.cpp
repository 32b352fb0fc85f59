#include "device/SimDeviceEx.h"

namespace sim {

void SimDeviceEx::setImuOffset(int offset)
{
    if (accepts("setImuOffset", offset))
        state().imuOffset = offset;
}

void SimDeviceEx::setImuMode(int mode)
{
    const bool known = mode == VSlamOnly || mode == VSlamAndImu || mode == ImuOnly || mode == FusionOnHost;
    if (known && accepts("setImuMode", mode))
        state().imuMode = mode;
}

void SimDeviceEx::setUvcMode(int mode)
{
    if (mode >= NoStream && mode <= DemoWithPoints && accepts("setUvcMode", mode))
        state().uvcMode = mode;
}

void SimDeviceEx::setEdgePrediction(int prediction)
{
    if (accepts("setEdgePrediction", prediction))
        state().edgePrediction = prediction;
}

} // namespace sim
