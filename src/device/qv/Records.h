#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// The value records that the device library hands over. Fields stand in the library's order; fields
/// that the viewer only carries have names of our own.
namespace qv {

/// Three doubles; axes by name or by position.
struct Vector3 {
    double x = 0;
    double y = 0;
    double z = 0;

    double &operator[](std::size_t axis) { return axis == 0 ? x : axis == 1 ? y : z; }
    double operator[](std::size_t axis) const { return axis == 0 ? x : axis == 1 ? y : z; }
};

/// One inertial reading: angular velocity in rad/s, acceleration in m/s^2. A library's own record ends with
/// `magn`: the two times behind it are ours, only carried, and the viewer reads or copies neither.
struct Imu {
    Vector3 gyro;
    Vector3 accel;
    double temperature = 0;
    Vector3 magn;
    double hostTimestamp = 0;
    std::int64_t edgeTimestampUs = 0;
};

/// One camera's picture: 8-bit grey, rows packed, `width * height` bytes.
struct FisheyeImage {
    std::size_t width = 0;
    std::size_t height = 0;
    std::shared_ptr<const unsigned char> data;
};

/// The pictures that all fisheye cameras took at one time.
struct FisheyeImages {
    double hostTimestamp = 0;
    std::int64_t edgeTimestampUs = 0;
    std::vector<FisheyeImage> images;
};

/// Tracked points of N cameras, with S bytes of descriptor a point kept inside the library.
template <std::size_t N, std::size_t S>
struct FisheyeKeyPoints {
    /// One camera's points: `size` pairs of x and y, in image pixels.
    struct Descriptor {
        unsigned int size = 0;
        std::shared_ptr<float> data;
    };

    double hostTimestamp = 0;
    std::int64_t edgeTimestampUs = 0;
    std::array<std::uint64_t, 2> reserved{};
    std::array<Descriptor, N> descriptors{};
};

struct ColorImage {
    int codec = 0; ///< 0 YUYV, 1 YUV420p, 2 JPEG
    std::size_t width = 0;
    std::size_t height = 0;
    std::shared_ptr<const unsigned char> data;
    unsigned int dataSize = 0; ///< bytes
    double hostTimestamp = 0;
    std::int64_t edgeTimestampUs = 0;
};

struct DepthImage {
    int type = 0; ///< 0 16-bit depth in mm, signed; 1 float depth in m; 2 16-bit infrared, unsigned
    std::size_t width = 0;
    std::size_t height = 0;
    double confidence = 0;
    std::shared_ptr<const unsigned char> data;
    unsigned int dataSize = 0; ///< bytes
    double hostTimestamp = 0;
    std::int64_t edgeTimestampUs = 0;
};

/// Colour aligned to depth, 7 bytes a pixel: three colour bytes, then a float depth.
struct DepthColorImage {
    std::size_t width = 0;
    std::size_t height = 0;
    std::shared_ptr<const unsigned char> data;
};

struct SgbmImage {
    int type = 0; ///< 0 disparity frame, 1 depth frame
    std::size_t width = 0;
    std::size_t height = 0;
    double confidence = 0;
    std::shared_ptr<const unsigned char> data;
    unsigned int dataSize = 0; ///< bytes
    double hostTimestamp = 0;
    std::int64_t edgeTimestampUs = 0;
};

/// Six-degree-of-freedom pose: metres, row-major rotation, seconds, microseconds.
struct Pose {
    Vector3 translation;
    std::array<double, 9> rotation{1, 0, 0, 0, 1, 0, 0, 0, 1};
    double hostTimestamp = 0;
    std::int64_t edgeTimestampUs = 0;
    double qx = 0;
    double qy = 0;
    double qz = 0;
    double qw = 1;
    double confidence = 0; ///< 0.0 to 1.0
};

struct SlamMap {
    std::vector<Vector3> points; ///< metres
};

struct Plane {
    std::string id; ///< a decimal number
    std::vector<Vector3> points; ///< the outline, in order, metres
};

struct Object {
    int shape = 0; ///< 0 bounding box, 1 human
    std::string type;
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    double confidence = 0;
    std::vector<Vector3> keypoints; ///< pixels of the source picture in x and y
};

/// Opaque: comes from `TofCamera::depthImageToPointCloud`, goes to `savePointCloudToPcd`.
class PointCloud;

/// Unified (mirror) model of Mei and Rives, "Single view point omnidirectional camera calibration", 2007.
struct UnifiedCameraModel {
    int w = 0;
    int h = 0;
    double fx = 0;
    double fy = 0;
    double u0 = 0;
    double v0 = 0;
    double xi = 0;
};

/// Pinhole with radial and tangential distortion k1, k2, p1, p2, k3 (Brown, "Close-range camera
/// calibration", 1971).
struct PolynomialDistortionCameraModel {
    int w = 0;
    int h = 0;
    double fx = 0;
    double fy = 0;
    double u0 = 0;
    double v0 = 0;
    double distor[5] = {0, 0, 0, 0, 0};
};

/// Enhanced unified model of Khomutenko, Garcia and Martinet, "An enhanced unified camera model", 2016.
struct EnhancedUnifiedCameraModel {
    int w = 0;
    int h = 0;
    double fx = 0;
    double fy = 0;
    double u0 = 0;
    double v0 = 0;
    double alpha = 0;
    double beta = 0;
};

/// A camera model of any kind, as far as its picture size goes.
class CameraModel {
public:
    virtual ~CameraModel() = default;
    virtual int width() = 0;
    virtual int height() = 0;
};

/// Extrinsics and models of one camera: metres, row-major rotation.
struct Calibration {
    double translation[3] = {0, 0, 0};
    double rotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    std::vector<UnifiedCameraModel> ucm;
    std::vector<PolynomialDistortionCameraModel> pdcm;
    std::vector<std::shared_ptr<CameraModel>> cameraModels;
};

struct CalibrationEx : Calibration {
    std::vector<EnhancedUnifiedCameraModel> seucm;
};

/// What `Vsc::start` takes; a wire record, so its fields keep their order and width.
struct SgbmConfig {
    std::int32_t enableDewarp = 1;
    float dewarpZoomFactor = 1.0F;
    std::int32_t enableDisparity = 1;
    std::int32_t enableDepth = 1;
    std::int32_t enablePointCloud = 0;
    float baseline = 0.08F; ///< metres
    float fov = 96.0F; ///< degrees
    std::uint8_t maxDisparity = 255; ///< pixels
    float homography[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    std::int32_t enableGamma = 1;
    float gamma = 2.2F;
    std::int32_t enableGammaCorrection = 0;
    std::uint16_t mode = 0;
    std::uint16_t maxDistance = 8000; ///< millimetres
    std::uint16_t minDistance = 100; ///< millimetres
    std::int32_t source = 0;
};

// The library is built apart from the viewer, so both have to agree on where a field stands. The numbers hold
// where sizes and pointers have 8 bytes; the wire record's hold everywhere.
using PairKeyPoints = FisheyeKeyPoints<2, 32>;
using QuadKeyPoints = FisheyeKeyPoints<4, 32>;
constexpr bool wide = sizeof(std::size_t) == 8 && sizeof(void *) == 8;

static_assert(!wide || (offsetof(Imu, accel) == 24 && offsetof(Imu, magn) == 56));
static_assert(!wide || (offsetof(FisheyeImage, height) == 8 && offsetof(FisheyeImage, data) == 16));
static_assert(!wide || offsetof(FisheyeImages, images) == 16);
static_assert(offsetof(PairKeyPoints, descriptors) == 32);
static_assert(offsetof(QuadKeyPoints, descriptors) == 32);
static_assert(!wide || offsetof(PairKeyPoints::Descriptor, data) == 8);
static_assert(!wide
    || (offsetof(ColorImage, width) == 8 && offsetof(ColorImage, height) == 16
        && offsetof(ColorImage, data) == 24 && offsetof(ColorImage, dataSize) == 40
        && offsetof(ColorImage, hostTimestamp) == 48 && sizeof(ColorImage) == 64));
static_assert(!wide
    || (offsetof(DepthImage, width) == 8 && offsetof(DepthImage, height) == 16
        && offsetof(DepthImage, confidence) == 24 && offsetof(DepthImage, data) == 32
        && offsetof(DepthImage, dataSize) == 48 && offsetof(DepthImage, hostTimestamp) == 56
        && offsetof(DepthImage, edgeTimestampUs) == 64 && sizeof(DepthImage) == 72));
static_assert(!wide || (offsetof(DepthColorImage, height) == 8 && offsetof(DepthColorImage, data) == 16));
static_assert(!wide
    || (offsetof(SgbmImage, width) == 8 && offsetof(SgbmImage, height) == 16
        && offsetof(SgbmImage, confidence) == 24 && offsetof(SgbmImage, data) == 32
        && offsetof(SgbmImage, dataSize) == 48 && offsetof(SgbmImage, hostTimestamp) == 56
        && offsetof(SgbmImage, edgeTimestampUs) == 64 && sizeof(SgbmImage) == 72));
static_assert(offsetof(Pose, rotation) == 24 && offsetof(Pose, hostTimestamp) == 96
    && offsetof(Pose, edgeTimestampUs) == 104 && offsetof(Pose, qx) == 112 && offsetof(Pose, qw) == 136
    && offsetof(Pose, confidence) == 144 && sizeof(Pose) == 152);
static_assert(offsetof(SlamMap, points) == 0 && sizeof(Vector3) == 24);
static_assert(offsetof(Plane, id) == 0 && offsetof(Plane, points) == sizeof(std::string));
static_assert(!wide
    || (offsetof(Object, type) == 8 && offsetof(Object, x) == 8 + sizeof(std::string)
        && offsetof(Object, height) == 32 + sizeof(std::string)
        && offsetof(Object, confidence) == 40 + sizeof(std::string)
        && offsetof(Object, keypoints) == 48 + sizeof(std::string)));
static_assert(offsetof(UnifiedCameraModel, fx) == 8 && offsetof(UnifiedCameraModel, v0) == 32
    && offsetof(UnifiedCameraModel, xi) == 40 && sizeof(UnifiedCameraModel) == 48);
static_assert(offsetof(PolynomialDistortionCameraModel, v0) == 32
    && offsetof(PolynomialDistortionCameraModel, distor) == 40
    && sizeof(PolynomialDistortionCameraModel) == 80);
static_assert(offsetof(Calibration, rotation) == 24 && offsetof(Calibration, ucm) == 96);
static_assert(!wide || (offsetof(Calibration, pdcm) == 120 && offsetof(Calibration, cameraModels) == 144));
static_assert(offsetof(SgbmConfig, dewarpZoomFactor) == 4 && offsetof(SgbmConfig, enablePointCloud) == 16
    && offsetof(SgbmConfig, baseline) == 20 && offsetof(SgbmConfig, fov) == 24
    && offsetof(SgbmConfig, maxDisparity) == 28 && offsetof(SgbmConfig, homography) == 32
    && offsetof(SgbmConfig, enableGamma) == 68 && offsetof(SgbmConfig, gamma) == 72
    && offsetof(SgbmConfig, enableGammaCorrection) == 76 && offsetof(SgbmConfig, mode) == 80
    && offsetof(SgbmConfig, maxDistance) == 82 && offsetof(SgbmConfig, minDistance) == 84
    && offsetof(SgbmConfig, source) == 88 && sizeof(SgbmConfig) == 92);

} // namespace qv

// Also named without its namespace.
using qv::SgbmConfig;
