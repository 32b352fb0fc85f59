#include "device/SimTofCamera.h"

#include "device/DepthPacking.h"
#include "world/PolynomialModel.h"

#include <algorithm>

namespace sim {

namespace {

constexpr float slowestTofRate = 1;
constexpr float fastestTofRate = 60;
constexpr int infraredType = 2;
constexpr int unknownType = 9;
constexpr double rates[] = {5, 10, 15, 20, 25, 30};
constexpr int largestSide = 8192;

std::shared_ptr<const CameraModel> lensOf(const TofSource &source)
{
    const qv::Calibration &record = source.calibration().at(0);
    return std::make_shared<PolynomialModel>(record.pdcm.at(0));
}

std::shared_ptr<const unsigned char> plainData(std::size_t size)
{
    return {new unsigned char[size](), std::default_delete<unsigned char[]>()};
}

/// Half the bytes, and no byte of memory behind them.
template <class Picture>
void cut(Picture &record, std::size_t size)
{
    const std::shared_ptr<unsigned char> data(
        new unsigned char[size], std::default_delete<unsigned char[]>());
    std::copy_n(record.data.get(), size, data.get());
    record.data = data;
}

/// What both kinds of picture can suffer; `pixel` is in bytes.
template <class Picture>
void damage(Picture &record, Defect defect, std::size_t pixel)
{
    if (defect == Defect::NullData || defect == Defect::Empty)
        record.data = nullptr;
    if (defect == Defect::ZeroSize || defect == Defect::Empty)
        record.width = record.height = 0;
    if (defect == Defect::Resize) {
        record.width = record.width / 2 + 1;
        record.height = record.height / 2 + 1;
        record.data = plainData(record.width * record.height * pixel);
    }
}

} // namespace

SimTofCamera::SimTofCamera(
    std::shared_ptr<DeviceState> device, std::shared_ptr<TofSource> source, Setup setup)
    : StreamComponent("tof", std::move(device), source->schedule())
    , m_source(std::move(source))
    , m_setup(std::move(setup))
    , m_rays(lensOf(*m_source))
    , m_infrared(m_setup.family == Second && m_source->hasInfrared())
{
}

const std::vector<qv::Calibration> &SimTofCamera::calibration()
{
    return m_source->calibration();
}

bool SimTofCamera::setFramerate(float fps)
{
    if (refuses("setFramerate") || !(fps >= slowestTofRate && fps <= fastestTofRate)
        || !m_source->setRate(fps))
        return false;
    thread().reschedule();
    return true;
}

bool SimTofCamera::setExposure(int aecMode, int gain, float exposureMs)
{
    return !refuses("setExposure") && m_source->setExposure(aecMode == 0, gain, exposureMs);
}

int SimTofCamera::registerColorDepthImageCallback(std::function<void(const qv::DepthColorImage &)> callback)
{
    return m_colorCallbacks.add(std::move(callback));
}

bool SimTofCamera::unregisterColorDepthImageCallback(int id)
{
    return m_colorCallbacks.remove(id);
}

std::shared_ptr<qv::PointCloud> SimTofCamera::depthImageToPointCloud(const qv::DepthImage &image)
{
    const std::size_t pixel = image.type == static_cast<int>(Depth::Millimetres) ? 2 : 4;
    const bool sized =
        image.width > 0 && image.height > 0 && image.width <= largestSide && image.height <= largestSide;
    if ((image.type != 0 && image.type != 1) || !sized || !image.data
        || image.dataSize < image.width * image.height * pixel)
        return nullptr;
    const cv::Size size(static_cast<int>(image.width), static_cast<int>(image.height));
    return m_rays.cloud(pixel == 2 ? metresOf(image.data.get(), size) : floatsOf(image.data.get(), size));
}

bool SimTofCamera::setStreamMode(int mode)
{
    if (refuses("setStreamMode") || mode < DepthAndInfrared || mode > InfraredOnly)
        return false;
    m_streamMode = mode;
    return true;
}

bool SimTofCamera::setDistanceMode(int mode)
{
    return !refuses("setDistanceMode") && m_source->setDistanceMode(mode);
}

bool SimTofCamera::setLibWorkMode(int mode)
{
    return !refuses("setLibWorkMode") && m_source->setWorkMode(mode);
}

bool SimTofCamera::enableIr(bool enable)
{
    if (refuses("enableIr") || !m_source->hasInfrared())
        return false;
    m_infrared = enable;
    return true;
}

bool SimTofCamera::setSonyTofSetting(int workMode, int resolution, int fps)
{
    const bool known = workMode >= 0 && workMode <= 5 && (resolution == 0 || resolution == 1) && fps >= 0
        && fps < static_cast<int>(std::size(rates));
    if (m_setup.family != Second || refuses("setSonyTofSetting") || !known || !m_source->setRate(rates[fps]))
        return false;
    m_source->setWorkMode(workMode);
    m_source->setResolution(resolution);
    thread().reschedule();
    return true;
}

bool SimTofCamera::setTofIrGamma(double gamma)
{
    return !refuses("setTofIrGamma") && m_source->setGamma(gamma);
}

void SimTofCamera::setSync(bool sync)
{
    m_source->setSync(sync);
    thread().reschedule();
}

TofSource::Wanted SimTofCamera::wanted() const
{
    const bool colorStreams = m_setup.colorStreams && m_setup.colorStreams();
    return {m_infrared && m_streamMode != DepthOnly, colorStreams && !m_colorCallbacks.empty()};
}

void SimTofCamera::produce(double due, Defect defect)
{
    if ((callbacks().empty() && m_colorCallbacks.empty()) || !m_source->expose(due, wanted(), m_frames))
        return;
    if (m_streamMode != InfraredOnly)
        deliverDepth(defect);
    if (!m_frames.infrared.empty())
        deliverPicture(infraredType, m_frames.infrared, defect);
    if (!m_frames.color.empty())
        deliverColor(defect);
}

void SimTofCamera::deliverDepth(Defect defect)
{
    if (m_setup.depth == Depth::Millimetres) {
        toMillimetres(m_frames.depth, m_millimetres);
        deliverPicture(static_cast<int>(Depth::Millimetres), m_millimetres, defect);
    } else {
        deliverPicture(static_cast<int>(Depth::Metres), m_frames.depth, defect);
    }
}

void SimTofCamera::deliverPicture(int type, const cv::Mat &picture, Defect defect)
{
    const std::size_t pixel = picture.elemSize();
    const std::size_t bytes = picture.total() * pixel;
    BufferPool &pool = type == infraredType ? m_infraredPool : m_depthPool;
    const std::shared_ptr<unsigned char> data = pool.take(bytes);
    std::copy_n(picture.data, bytes, data.get());
    qv::DepthImage record;
    record.type = type;
    record.width = static_cast<std::size_t>(picture.cols);
    record.height = static_cast<std::size_t>(picture.rows);
    record.confidence = shareOfReadings(m_frames.depth);
    record.data = data;
    record.hostTimestamp = Clock::now();
    record.edgeTimestampUs = m_frames.edgeTimestampUs;
    record.dataSize = static_cast<unsigned int>(bytes);
    if (defect == Defect::Short) {
        record.dataSize /= 2;
        cut(record, record.dataSize);
    }
    damage(record, defect, pixel);
    if (defect == Defect::Resize)
        record.dataSize = static_cast<unsigned int>(record.width * record.height * pixel);
    if (defect == Defect::Empty)
        record.dataSize = 0;
    if (defect == Defect::Unknown)
        record.type = unknownType;
    deliver(record);
}

/// The record tells no number of bytes, so a short picture is one with fewer rows.
void SimTofCamera::deliverColor(Defect defect)
{
    const std::shared_ptr<unsigned char> data = m_colorPool.take(m_frames.depth.total() * alignedPixel);
    packAligned(m_frames.color, m_frames.depth, data.get());
    qv::DepthColorImage record;
    record.width = static_cast<std::size_t>(m_frames.depth.cols);
    record.height = static_cast<std::size_t>(m_frames.depth.rows);
    record.data = data;
    if (defect == Defect::Short) {
        record.height /= 2;
        cut(record, record.width * record.height * alignedPixel);
    }
    damage(record, defect, alignedPixel);
    m_colorCallbacks.call(record);
}

} // namespace sim
