#include "replay/LoopSchedule.h"
#include "replay/PictureReader.h"
#include "replay/Recording.h"
#include "replay/ReplayCalibration.h"
#include "replay/SensorYaml.h"
#include "replay/Table.h"
#include "replay/TimeStamp.h"
#include "replay/Timeline.h"

#include "replay/RecordingFolder.h"
#include "sim/Stderr.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sim;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(TimeStamp, wholeNumbersAreNanoseconds)
{
    EXPECT_EQ(parseTimeStamp("1403715276512143104"), 1403715276512143104);
    EXPECT_EQ(parseTimeStamp("0"), 0);
}

TEST(TimeStamp, numbersWithAPointAreSeconds)
{
    EXPECT_EQ(parseTimeStamp("1305031102.175304"), 1305031102175304000);
    EXPECT_EQ(parseTimeStamp("0.5"), 500'000'000);
    EXPECT_EQ(parseTimeStamp("1."), 1'000'000'000);
    EXPECT_EQ(parseTimeStamp("1305031102.1753041234567"), 1305031102175304123);
}

TEST(TimeStamp, largeNumbersWithAnExponentAreNanoseconds)
{
    EXPECT_EQ(parseTimeStamp("1.5e+18"), 1'500'000'000'000'000'000);
    EXPECT_EQ(parseTimeStamp("2e0"), 2'000'000'000);
}

TEST(TimeStamp, anythingElseIsNone)
{
    for (const char *text :
        {"", "abc", "12x", "-5", "-5.5", "1.2.3", "nan", "1e400", "99999999999999999999", " 1", "1.5x", "."})
        EXPECT_EQ(parseTimeStamp(text), std::nullopt) << text;
}

TEST(Table, skipsMarkCommentsBlanksAndCarriageReturns)
{
    const Table table = Table::parse("\xef\xbb\xbf# head\r\n\r\n1 , a.png \r\n  # more\n2,b.png");
    ASSERT_EQ(table.rows.size(), 2U);
    EXPECT_EQ(table.rows[0].line, 3);
    EXPECT_THAT(table.rows[0].fields, ElementsAre("1", "a.png"));
    EXPECT_EQ(table.rows[1].line, 5);
    EXPECT_THAT(table.rows[1].fields, ElementsAre("2", "b.png"));
}

TEST(Table, emptyFieldsStay)
{
    EXPECT_THAT(Table::parse("1,,3,").rows[0].fields, ElementsAre("1", "", "3", ""));
}

TEST(SensorYaml, readsWithAndWithoutOpenCvsFirstLine)
{
    const std::string text = RecordingFolder::pinhole();
    for (const std::string &variant : {text, text.substr(text.find('\n') + 1), "\xef\xbb\xbf" + text}) {
        const SensorYaml sensor = SensorYaml::parse(variant);
        EXPECT_EQ(sensor.rate, 50);
        EXPECT_EQ(sensor.width, 32);
        EXPECT_EQ(sensor.height, 20);
        EXPECT_EQ(sensor.cameraModel, "pinhole");
        EXPECT_THAT(sensor.intrinsics, ElementsAre(25.5, 26.5, 15.5, 9.5));
        EXPECT_EQ(sensor.bodyFromSensor.translation(), Eigen::Vector3d(0.1, 0.2, 0.3));
    }
}

TEST(SensorYaml, readsCarriageReturns)
{
    EXPECT_EQ(SensorYaml::parse("%YAML:1.0\r\nrate_hz: 20\r\nresolution: [3, 4]\r\n").height, 4);
}

TEST(SensorYaml, tellsWhatCanNotBeUsed)
{
    EXPECT_THROW(SensorYaml::parse("["), std::runtime_error);
    EXPECT_THROW(SensorYaml::parse("just words"), std::runtime_error);
    EXPECT_THROW(SensorYaml::parse("rate_hz: fast"), std::runtime_error);
    EXPECT_THROW(SensorYaml::parse("T_BS: {data: [1, 2]}"), std::runtime_error);
    EXPECT_THROW(SensorYaml::read("no/such/file"), std::runtime_error);
}

TEST(ReplayCalibration, radialTangentialIsAPolynomialModel)
{
    const qv::CalibrationEx record = calibrationFrom(SensorYaml::parse(RecordingFolder::pinhole()));
    EXPECT_THAT(record.translation, ElementsAre(0.1, 0.2, 0.3));
    EXPECT_THAT(record.rotation, ElementsAre(0, -1, 0, 1, 0, 0, 0, 0, 1));
    ASSERT_EQ(record.pdcm.size(), 1U);
    EXPECT_EQ(record.pdcm[0].w, 32);
    EXPECT_EQ(record.pdcm[0].fy, 26.5);
    EXPECT_EQ(record.pdcm[0].u0, 15.5);
    EXPECT_THAT(record.pdcm[0].distor, ElementsAre(-0.1, 0.02, 0.003, -0.0004, 0));
    EXPECT_TRUE(record.ucm.empty());
    ASSERT_EQ(record.cameraModels.size(), 1U);
    EXPECT_EQ(record.cameraModels[0]->width(), 32);
}

TEST(ReplayCalibration, omnidirectionalIsAUnifiedModel)
{
    const qv::CalibrationEx record =
        calibrationFrom(SensorYaml::parse("camera_model: omni\nresolution: [10, 8]\nintrinsics: [1.5, 2, 3, "
                                          "4, 5]\ndistortion_coefficients: [0, 0, 0, 0]"));
    ASSERT_EQ(record.ucm.size(), 1U);
    EXPECT_EQ(record.ucm[0].xi, 1.5);
    EXPECT_EQ(record.ucm[0].fx, 2);
    EXPECT_EQ(record.ucm[0].v0, 5);
    EXPECT_TRUE(record.pdcm.empty());
}

TEST(ReplayCalibration, enhancedUnifiedStaysWhatItIs)
{
    const qv::CalibrationEx record = calibrationFrom(
        SensorYaml::parse("camera_model: eucm\nresolution: [10, 8]\nintrinsics: [0.6, 1.1, 2, 3, 4, 5]"));
    ASSERT_EQ(record.seucm.size(), 1U);
    EXPECT_EQ(record.seucm[0].alpha, 0.6);
    EXPECT_EQ(record.seucm[0].fy, 3);
}

TEST(ReplayCalibration, whatNoRecordCanHoldIsLeftOut)
{
    for (const char *text :
        {"camera_model: pinhole\nintrinsics: [1, 2, 3, 4]\ndistortion_model: equidistant\n"
         "distortion_coefficients: [0.1, 0.1, 0.1, 0.1]",
            "camera_model: omni\nintrinsics: [1, 2, 3, 4, 5]\ndistortion_coefficients: [0.1, 0, 0, 0]",
            "camera_model: pinhole\nintrinsics: [1, 2]", "camera_model: ds\nintrinsics: [1, 2, 3, 4, 5, 6]",
            "a: b"}) {
        const qv::CalibrationEx record = calibrationFrom(SensorYaml::parse(text));
        EXPECT_TRUE(record.ucm.empty() && record.pdcm.empty() && record.seucm.empty()) << text;
        EXPECT_EQ(record.cameraModels.size(), 1U);
    }
}

TEST(Timeline, keepsDistancesAndAddsOnePeriod)
{
    const Timeline timeline({1'000'000'000, 1'050'000'000, 1'150'000'000}, 0.05, 7);
    EXPECT_THAT(timeline.playTimes(),
        ElementsAre(0, testing::DoubleNear(0.05, 1e-12), testing::DoubleNear(0.15, 1e-12)));
    EXPECT_NEAR(timeline.duration(), 0.2, 1e-12);
    EXPECT_NEAR(timeline.playTime(1'060'000'000), 0.06, 1e-12);
    EXPECT_LT(timeline.playTime(900'000'000), 0);
    EXPECT_GE(timeline.playTime(1'200'000'000), timeline.duration());
}

TEST(Timeline, shortensGapsOfMoreThanFiveSeconds)
{
    const Timeline timeline({0, 100'000'000, 3'600'000'000'000}, 0.1, 0);
    EXPECT_NEAR(timeline.playTimes()[2], 0.2, 1e-12);
    EXPECT_NEAR(timeline.playTime(1'000'000'000'000), 0.2, 1e-12) << "what falls into the gap has no room";
}

TEST(Timeline, theUsualPeriodIsTheMedian)
{
    EXPECT_DOUBLE_EQ(Timeline::usualPeriod({0, 50'000'000, 100'000'000, 4'000'000'000}, 9), 0.05);
    EXPECT_EQ(Timeline::usualPeriod({5}, 0.04), 0.04);
}

TEST(LoopSchedule, goesRoundWithoutEnd)
{
    const LoopSchedule schedule({0, 0.1, 0.25}, 0.5, 10, 1);
    double due = schedule.first(3);
    std::vector<double> times;
    for (int i = 0; i < 7; ++i) {
        times.push_back(due);
        EXPECT_EQ(schedule.at(due).index, static_cast<std::size_t>(i % 3));
        EXPECT_EQ(schedule.at(due).loop, i / 3);
        due = schedule.next(due, due);
    }
    using testing::DoubleNear;
    EXPECT_THAT(times,
        ElementsAre(DoubleNear(10, 1e-9), DoubleNear(10.1, 1e-9), DoubleNear(10.25, 1e-9),
            DoubleNear(10.5, 1e-9), DoubleNear(10.6, 1e-9), DoubleNear(10.75, 1e-9), DoubleNear(11, 1e-9)));
}

TEST(LoopSchedule, leavesOutWhatIsTooFarBehind)
{
    const LoopSchedule schedule({0, 0.1, 0.25}, 0.5, 0, 0.2);
    EXPECT_NEAR(schedule.next(0.1, 0.4), 0.25, 1e-9);
    EXPECT_NEAR(schedule.next(0.1, 7.3), 7.5, 1e-9);
}

TEST(LoopSchedule, staysExactAfterDays)
{
    const LoopSchedule schedule({0, 0.05, 0.1}, 0.15, 0, 0.2);
    const double days = 3 * 86400;
    double due = schedule.first(days);
    for (int i = 0; i < 30; ++i) {
        const auto place = schedule.at(due);
        EXPECT_NEAR(
            due, static_cast<double>(place.loop) * 0.15 + static_cast<double>(place.index) * 0.05, 1e-6);
        const double next = schedule.next(due, due);
        EXPECT_NEAR(next - due, 0.05, 1e-6);
        due = next;
    }
}

TEST(PictureReader, readsEightBitsPixelForPixel)
{
    cv::Mat picture(7, 13, CV_8UC1);
    cv::randu(picture, 0, 256);
    cv::imwrite("eight.png", picture);
    const qv::FisheyeImage image = readPicture("eight.png");
    ASSERT_EQ(image.width, 13U);
    ASSERT_EQ(image.height, 7U);
    EXPECT_EQ(std::memcmp(image.data.get(), picture.data, 7 * 13), 0);
}

TEST(PictureReader, keepsTheUpperHalfOfSixteenBits)
{
    cv::Mat picture(1, 4, CV_16UC1);
    picture.at<std::uint16_t>(0) = 0x0000;
    picture.at<std::uint16_t>(1) = 0x12ff;
    picture.at<std::uint16_t>(2) = 0x80f0;
    picture.at<std::uint16_t>(3) = 0xffff;
    cv::imwrite("sixteen.png", picture);
    const qv::FisheyeImage image = readPicture("sixteen.png");
    EXPECT_THAT(std::vector<int>(image.data.get(), image.data.get() + 4), ElementsAre(0, 0x12, 0x80, 0xff));
}

TEST(PictureReader, makesColourGrey)
{
    cv::imwrite("colour.png", cv::Mat(4, 4, CV_8UC3, cv::Scalar(90, 90, 90)));
    EXPECT_EQ(readPicture("colour.png").data.get()[5], 90);
}

TEST(PictureReader, throwsOnWhatIsNoPicture)
{
    const auto problem = [](const char *file) -> std::string {
        try {
            readPicture(file);
        } catch (const std::runtime_error &error) {
            return error.what();
        }
        return "";
    };
    cv::imwrite("whole.png", cv::Mat(40, 40, CV_8UC1, cv::Scalar(5)));
    std::ifstream whole("whole.png", std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(whole), {}};
    RecordingFolder::write("./half.png", bytes.substr(0, bytes.size() / 2));
    std::string flipped = bytes;
    flipped[flipped.size() / 2] ^= 0x10;
    RecordingFolder::write("./flipped.png", flipped);
    RecordingFolder::write("./text.png", "this is no picture");
    RecordingFolder::write("./text.bin", "this is no picture");
    RecordingFolder::write("./empty.png", "");
    EXPECT_THAT(problem("none.png"), HasSubstr("missing"));
    EXPECT_THAT(problem("half.png"), HasSubstr("broken"));
    EXPECT_THAT(problem("flipped.png"), HasSubstr("broken"));
    EXPECT_THAT(problem("text.png"), HasSubstr("broken"));
    EXPECT_THAT(problem("empty.png"), HasSubstr("broken"));
    EXPECT_THAT(problem("text.bin"), HasSubstr("no picture"));
    EXPECT_EQ(problem("whole.png"), "");
}

TEST(Recording, joinsWhatTheCamerasTookTogether)
{
    RecordingFolder folder;
    folder.addCamera(0, 5);
    folder.addCamera(1, 5);
    folder.addImu(20);
    const Recording recording = Recording::open(folder.path());
    ASSERT_EQ(recording.frames.size(), 5U);
    EXPECT_EQ(recording.cameras.size(), 2U);
    EXPECT_EQ(recording.imu.size(), 20U);
    EXPECT_EQ(recording.frames[3].time, RecordingFolder::time(3));
    EXPECT_THAT(recording.frames[3].files,
        ElementsAre(
            folder.picture(0, RecordingFolder::time(3)), folder.picture(1, RecordingFolder::time(3))));
    EXPECT_EQ(Recording::open(folder.root()).frames.size(), 5U) << "mav0 itself will do";
}

TEST(Recording, aTimeThatOneCameraLacksIsLeftOut)
{
    Stderr output;
    RecordingFolder folder;
    folder.addCamera(0, 5);
    folder.addCamera(1, 3);
    EXPECT_EQ(Recording::open(folder.path()).frames.size(), 3U);
    EXPECT_THAT(output.lines(), ElementsAre(HasSubstr("2 times are left out")));
}

TEST(Recording, oneCameraIsEnough)
{
    RecordingFolder folder;
    folder.addCamera(0, 2);
    const Recording recording = Recording::open(folder.path());
    EXPECT_EQ(recording.cameras.size(), 1U);
    EXPECT_TRUE(recording.imu.empty());
}

TEST(Recording, putsTimesInOrderAndDropsRepeats)
{
    Stderr output;
    RecordingFolder folder;
    folder.addCamera(0, 4);
    const auto row = [](int i) {
        return std::to_string(RecordingFolder::time(i)) + ',' + std::to_string(RecordingFolder::time(i))
            + ".png\n";
    };
    RecordingFolder::write(folder.camera(0) / "data.csv", row(0) + row(2) + row(1) + row(1) + row(3));
    const Recording recording = Recording::open(folder.path());
    ASSERT_EQ(recording.frames.size(), 4U);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(recording.frames[static_cast<std::size_t>(i)].time, RecordingFolder::time(i));
    EXPECT_THAT(output.lines(),
        ElementsAre(
            testing::AllOf(HasSubstr("1 row left out for repeating"), HasSubstr("1 row put in order"))));
}

TEST(Recording, readsDecimalSecondsMarkAndCarriageReturns)
{
    RecordingFolder folder;
    folder.addCamera(0, 2);
    const std::string a = std::to_string(RecordingFolder::time(0)) + ".png";
    const std::string b = std::to_string(RecordingFolder::time(1)) + ".png";
    RecordingFolder::write(folder.camera(0) / "data.csv",
        "\xef\xbb\xbf#timestamp,filename\r\n1500000000.00," + a + "\r\n1500000000.02," + b + "\r\n");
    const Recording recording = Recording::open(folder.path());
    ASSERT_EQ(recording.frames.size(), 2U);
    EXPECT_EQ(recording.frames[1].time, RecordingFolder::time(1));
    EXPECT_EQ(recording.frames[1].files[0], folder.picture(0, RecordingFolder::time(1)));
}

TEST(Recording, unreadableRowsAreOneMessageAFile)
{
    Stderr output;
    RecordingFolder folder;
    folder.addCamera(0, 3);
    folder.addImu(4);
    std::ofstream(folder.camera(0) / "data.csv", std::ios::app) << "what is this,x.png\nnor this\n";
    std::ofstream(folder.root() / "imu0" / "data.csv", std::ios::app)
        << "1500000000500000000,1,2,oops,4,5,6\n";
    const Recording recording = Recording::open(folder.path());
    EXPECT_EQ(recording.frames.size(), 3U);
    EXPECT_EQ(recording.imu.size(), 4U);
    EXPECT_THAT(output.lines(),
        ElementsAre(testing::AllOf(HasSubstr("cam0"), HasSubstr("2 rows can't be read"), HasSubstr("line 5")),
            testing::AllOf(HasSubstr("imu0"), HasSubstr("1 row can't be read"))));
}

TEST(Recording, withoutSensorYamlItPlaysWithoutCalibration)
{
    Stderr output;
    RecordingFolder folder;
    folder.addCamera(0, 2);
    std::filesystem::remove(folder.camera(0) / "sensor.yaml");
    EXPECT_EQ(Recording::open(folder.path()).cameras[0].width, 0);
    EXPECT_THAT(output.lines(), ElementsAre(HasSubstr("sensor.yaml is left aside")));
}

TEST(Recording, unusableFoldersThrow)
{
    Stderr output;
    const auto problemOf = [](const std::filesystem::path &folder) -> std::string {
        try {
            Recording::open(folder);
        } catch (const std::runtime_error &error) {
            return error.what();
        }
        return "none";
    };
    EXPECT_EQ(problemOf("no/such/folder"), "there is nothing of this name");
    RecordingFolder empty;
    EXPECT_EQ(problemOf(empty.path()),
        "there are no pictures (mav0/cam0/data.csv, rgb.txt, depth.txt), readings or poses in it");
    RecordingFolder noRows;
    RecordingFolder::write(noRows.camera(0) / "data.csv", "#timestamp,filename\n");
    EXPECT_THROW(Recording::open(noRows.path()), std::runtime_error);
    RecordingFolder noTable;
    std::filesystem::create_directories(noTable.camera(0) / "data");
    EXPECT_THROW(Recording::open(noTable.path()), std::runtime_error);
}
