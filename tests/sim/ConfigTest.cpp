#include "core/ConfigParser.h"
#include "core/ConfigSource.h"

#include "sim/Stderr.h"
#include "support/Wait.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace sim;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

std::vector<DeviceConfig> parse(const std::string &json)
{
    std::vector<std::string> unknown;
    return parseConfig(json, unknown);
}

std::string problem(const std::string &json)
{
    try {
        parse(json);
    } catch (const std::runtime_error &error) {
        return error.what();
    }
    return "";
}

void write(const std::string &path, const std::string &text)
{
    std::ofstream(path, std::ios::trunc) << text;
}

} // namespace

TEST(ConfigParser, readsADeviceInFull)
{
    const auto devices = parse(R"({"devices": [{
        "profile": "quad", "uuid": "Q", "present": false, "version": "9.9", "info": {"owner": "lab"}, "seed": 7,
        "streams": {"fisheye": {"rate": 25, "size": [320, 200]}, "color": {"codec": "jpeg"}},
        "faults": {"refuse": ["hid", "fisheye.start"], "throwInfo": true, "hidDelayMs": 20, "vanishAfter": 3,
                   "returnAfter": 4, "streams": {"fisheye": {"dropEvery": 5, "stallAfter": 1.5}}}
    }]})");
    ASSERT_EQ(devices.size(), 1U);
    const DeviceConfig &device = devices[0];
    EXPECT_EQ(device.profile, Profile::Quad);
    EXPECT_EQ(device.uuid, "Q");
    EXPECT_FALSE(device.present);
    EXPECT_EQ(device.version, "9.9");
    EXPECT_EQ(device.info.at("owner"), "lab");
    EXPECT_EQ(device.seed, 7U);
    EXPECT_EQ(device.stream("fisheye").rate, 25);
    EXPECT_EQ(device.stream("fisheye").width, 320);
    EXPECT_EQ(device.stream("fisheye").height, 200);
    EXPECT_EQ(device.stream("color").codec, "jpeg");
    EXPECT_EQ(device.stream("imu").rate, 0);
    EXPECT_TRUE(device.faults.throwInfo);
    EXPECT_EQ(device.faults.hidDelayMs, 20);
    EXPECT_EQ(device.faults.vanishAfter, 3);
    EXPECT_EQ(device.faults.returnAfter, 4);
    EXPECT_TRUE(device.faults.refuses("device", "hid"));
    EXPECT_TRUE(device.faults.refuses("fisheye", "start"));
    EXPECT_FALSE(device.faults.refuses("imu", "start"));
    EXPECT_EQ(device.faults.stream("fisheye").dropEvery, 5);
    EXPECT_EQ(device.faults.stream("fisheye").stallAfter, 1.5);
    EXPECT_EQ(device.faults.stream("imu").dropEvery, 0);
}

TEST(ConfigParser, takesAPlainListAndComments)
{
    const auto devices = parse("[{}, /* the second */ {\"profile\": \"imu-only\"}]");
    ASSERT_EQ(devices.size(), 2U);
    EXPECT_EQ(devices[0].profile, Profile::Headset);
    EXPECT_EQ(devices[1].profile, Profile::ImuOnly);
}

TEST(ConfigParser, devicesWithoutUuidGetOneOfTheirKind)
{
    const auto devices = parse(R"([{}, {"profile": "module"}, {}, {"uuid": "mine"}])");
    EXPECT_EQ(devices[0].uuid, "QVH2-24A0001");
    EXPECT_EQ(devices[1].uuid, "QVM1-24A0001");
    EXPECT_EQ(devices[2].uuid, "QVH2-24A0002");
    EXPECT_EQ(devices[3].uuid, "mine");
}

TEST(ConfigParser, tellsWhatIsWrong)
{
    EXPECT_THAT(problem("{"), HasSubstr("parse error"));
    EXPECT_THAT(problem("{}"), HasSubstr("list of devices"));
    EXPECT_THAT(problem("[5]"), HasSubstr("device 1"));
    EXPECT_THAT(problem(R"([{"profile": "toaster"}])"), HasSubstr("toaster"));
    EXPECT_THAT(problem(R"([{}, {"seed": "x"}])"), HasSubstr("device 2: \"seed\""));
    EXPECT_THAT(problem(R"([{"uuid": "a"}, {"uuid": "a"}])"), HasSubstr("\"a\""));
    EXPECT_THAT(problem(R"([{"profile": "replay"}])"), HasSubstr("folder"));
    EXPECT_THAT(problem(R"([{"streams": {"fisheye": {"size": [640]}}}])"), HasSubstr("streams.fisheye"));
    EXPECT_THAT(problem(R"([{"streams": {"fisheye": {"rate": -1}}}])"), HasSubstr("rate"));
}

TEST(ConfigParser, namesKeysThatItDoesNotKnow)
{
    std::vector<std::string> unknown;
    parseConfig(R"([{"profil": "quad", "faults": {"streams": {"imu": {"dropevery": 1}}}}])", unknown);
    EXPECT_THAT(unknown,
        testing::UnorderedElementsAre(
            HasSubstr("device 1 has an unknown key \"profil\""), HasSubstr("dropevery")));
}

TEST(ConfigParser, shortFormWithNothingIsOneHeadset)
{
    const auto devices = parseShortForm("", "");
    ASSERT_EQ(devices.size(), 1U);
    EXPECT_EQ(devices[0].profile, Profile::Headset);
}

TEST(ConfigParser, shortFormListsProfilesAndFolders)
{
    const auto devices = parseShortForm("headset,module,headset", "/a:/b");
    ASSERT_EQ(devices.size(), 5U);
    EXPECT_EQ(devices[1].profile, Profile::Module);
    EXPECT_EQ(devices[2].uuid, "QVH2-24A0002");
    EXPECT_EQ(devices[3].profile, Profile::Replay);
    EXPECT_EQ(devices[3].folder, "/a");
    EXPECT_EQ(devices[4].folder, "/b");
    EXPECT_NE(devices[3].uuid, devices[4].uuid);
}

TEST(ConfigParser, recordingsAreNamedAfterTheirFolders)
{
    const auto devices = parseShortForm("",
        "/data/V1_01_easy:/other/V1_01_easy/:fr1 "
        "desk:/data/V2_01/.:/:/data/V2_02/mav0/:/a/fr1_gt.txt:/fr3/groundtruth.txt:/data:/c/groundtruth");
    ASSERT_EQ(devices.size(), 10U);
    EXPECT_EQ(devices[0].uuid, "QVREC-V1_01_easy");
    EXPECT_EQ(devices[1].uuid, "QVREC-V1_01_easy-2");
    EXPECT_EQ(devices[2].uuid, "QVREC-fr1_desk");
    EXPECT_EQ(devices[3].uuid, "QVREC-V2_01");
    EXPECT_EQ(devices[4].uuid, "QVREC-24A0005");
    EXPECT_EQ(devices[5].uuid, "QVREC-V2_02");
    EXPECT_EQ(devices[6].uuid, "QVREC-fr1_gt");
    EXPECT_EQ(devices[7].uuid, "QVREC-fr3");
    EXPECT_EQ(devices[8].uuid, "QVREC-data");
    EXPECT_EQ(devices[9].uuid, "QVREC-groundtruth");
}

TEST(ConfigParser, aNameThatIsTakenIsNotGivenAgain)
{
    const auto devices = parse(R"([{}, {"uuid": "QVH2-24A0001"}, {"uuid": "QVREC-a"}, {"folder": "/a"}])");
    EXPECT_EQ(devices[0].uuid, "QVH2-24A0002");
    EXPECT_EQ(devices[3].uuid, "QVREC-a-2");
}

TEST(ConfigParser, foldersAloneBringNoHeadset)
{
    EXPECT_EQ(parseShortForm("", "/a").size(), 1U);
}

TEST(ConfigParser, shortFormLeavesOutWhatItDoesNotKnow)
{
    Stderr output;
    EXPECT_EQ(parseShortForm("headset,toaster,replay", "").size(), 1U);
    EXPECT_THAT(output.lines(), ElementsAre(HasSubstr("toaster"), HasSubstr("QVSIM_REPLAY")));
}

TEST(ConfigSource, tellsOnceWhatIsThereFromTheBeginning)
{
    ConfigSource source(parseShortForm("module", ""));
    EXPECT_TRUE(source.poll());
    EXPECT_EQ(source.devices().size(), 1U);
    EXPECT_FALSE(source.poll());
}

TEST(ConfigSource, followsTheFile)
{
    write("follow.json", R"([{"uuid": "a"}])");
    ConfigSource source("follow.json");
    EXPECT_TRUE(source.poll());
    EXPECT_FALSE(source.poll());
    write("follow.json", R"([{"uuid": "b"}])");
    EXPECT_TRUE(source.poll());
    EXPECT_EQ(source.devices()[0].uuid, "b");
    write("follow.json", R"([ {"uuid": "b"} ])");
    EXPECT_FALSE(source.poll()) << "another spelling of the same devices is no change";
}

TEST(ConfigSource, keepsTheLastGoodStateAndComplainsOnce)
{
    Stderr output;
    write("broken.json", R"([{"uuid": "a"}])");
    ConfigSource source("broken.json");
    EXPECT_TRUE(source.poll());
    write("broken.json", R"([{"uuid": )");
    EXPECT_TRUE(waitFor([&] { return source.poll() || !output.lines().empty(); }));
    for (int i = 0; i < 5; ++i)
        EXPECT_FALSE(source.poll());
    EXPECT_EQ(source.devices()[0].uuid, "a");
    EXPECT_THAT(output.lines(), ElementsAre(HasSubstr("broken.json is left aside")));
    write("broken.json", R"([{"uuid": "c"}])");
    EXPECT_TRUE(source.poll());
    EXPECT_EQ(source.devices()[0].uuid, "c");
}

TEST(ConfigSource, aFileThatIsMetHalfWrittenIsNoComplaint)
{
    Stderr output;
    write("half.json", R"([{"uuid": "a"}])");
    ConfigSource source("half.json");
    source.poll();
    write("half.json", R"([{"uu)");
    EXPECT_FALSE(source.poll());
    write("half.json", R"([{"uuid": "b"}])");
    EXPECT_TRUE(source.poll());
    EXPECT_THAT(output.lines(), IsEmpty());
}

TEST(ConfigSource, aMissingFileIsComplainedAboutOnceAndMayComeLater)
{
    Stderr output;
    ConfigSource source("later.json");
    EXPECT_TRUE(source.poll());
    EXPECT_TRUE(waitFor([&] { return source.poll() || !output.lines().empty(); }));
    for (int i = 0; i < 5; ++i)
        EXPECT_FALSE(source.poll());
    EXPECT_TRUE(source.devices().empty());
    EXPECT_THAT(output.lines(), ElementsAre(HasSubstr("later.json")));
    write("later.json", "[{}]");
    EXPECT_TRUE(source.poll());
    EXPECT_EQ(source.devices().size(), 1U);
}

TEST(ConfigSource, recordingsAreAddedToTheFile)
{
    write("with.json", "[{}]");
    ConfigSource source("with.json", "/a");
    source.poll();
    ASSERT_EQ(source.devices().size(), 2U);
    EXPECT_EQ(source.devices()[1].folder, "/a");
}

TEST(ConfigSource, theEnvironmentChoosesFileThenProfiles)
{
    write("env.json", R"([{"uuid": "from file"}])");
    ASSERT_EQ(setenv("QVSIM", "module", 1), 0);
    ASSERT_EQ(setenv("QVSIM_CONFIG", "env.json", 1), 0);
    ConfigSource fromFile = ConfigSource::fromEnvironment();
    unsetenv("QVSIM_CONFIG");
    ConfigSource fromProfiles = ConfigSource::fromEnvironment();
    unsetenv("QVSIM");
    ConfigSource fromNothing = ConfigSource::fromEnvironment();
    fromFile.poll();
    EXPECT_EQ(fromFile.devices()[0].uuid, "from file");
    EXPECT_EQ(fromProfiles.devices()[0].profile, Profile::Module);
    EXPECT_EQ(fromNothing.devices()[0].profile, Profile::Headset);
}
