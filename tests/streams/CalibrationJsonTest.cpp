#include "streams/CalibrationJson.h"

#include "support/FakeFisheyeCameras.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace {

QJsonArray parsed(const char *json)
{
    return QJsonDocument::fromJson(json).array();
}

qv::Calibration extrinsics()
{
    qv::Calibration calibration;
    const double translation[3] = {0.5, -0.25, 2};
    const double rotation[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    std::copy(translation, translation + 3, calibration.translation);
    std::copy(rotation, rotation + 9, calibration.rotation);
    return calibration;
}

} // namespace

TEST(CalibrationJson, aNullCameraGivesAnEmptyArray)
{
    EXPECT_EQ(calibrationJsonOf(nullptr), QJsonValue(QJsonArray()));
}

TEST(CalibrationJson, anEmptyListGivesAnEmptyArray)
{
    FakeFisheyeCameras cameras;
    EXPECT_EQ(calibrationJsonOf(&cameras), QJsonValue(QJsonArray()));
}

TEST(CalibrationJson, aRecordWithoutModelsHasEmptyLists)
{
    FakeFisheyeCameras cameras;
    cameras.calibrations = {extrinsics()};
    EXPECT_EQ(calibrationJsonOf(&cameras).toArray(), parsed(R"([{
        "translation": [0.5, -0.25, 2], "rotation": [1, 2, 3, 4, 5, 6, 7, 8, 9], "ucms": [], "pdcms": [] }])"));
}

TEST(CalibrationJson, everyFieldOfBothModelsIsANumberUnderItsName)
{
    FakeFisheyeCameras cameras;
    qv::Calibration calibration = extrinsics();
    calibration.ucm = {{640, 400, 271.5, 272.5, 320.25, 200.75, 1.5}, {1280, 720, 1, 2, 3, 4, 5}};
    calibration.pdcm = {{1920, 1080, 1000.5, 1001.5, 960.5, 540.5, {0.1, -0.2, 0.3, -0.4, 0.5}}};
    cameras.calibrations = {calibration};
    EXPECT_EQ(calibrationJsonOf(&cameras).toArray(), parsed(R"([{
        "translation": [0.5, -0.25, 2], "rotation": [1, 2, 3, 4, 5, 6, 7, 8, 9],
        "ucms": [{"w": 640, "h": 400, "fx": 271.5, "fy": 272.5, "u0": 320.25, "v0": 200.75, "xi": 1.5},
                 {"w": 1280, "h": 720, "fx": 1, "fy": 2, "u0": 3, "v0": 4, "xi": 5}],
        "pdcms": [{"w": 1920, "h": 1080, "fx": 1000.5, "fy": 1001.5, "u0": 960.5, "v0": 540.5,
                   "distor": [0.1, -0.2, 0.3, -0.4, 0.5]}] }])"));
}

TEST(CalibrationJson, recordsKeepTheirOrder)
{
    FakeFisheyeCameras cameras;
    for (int i = 0; i < 4; ++i) {
        cameras.calibrations.emplace_back();
        cameras.calibrations.back().translation[0] = i;
    }
    const QJsonArray array = calibrationJsonOf(&cameras).toArray();
    ASSERT_EQ(array.size(), 4);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(array[i].toObject()["translation"].toArray()[0].toInt(), i);
}
