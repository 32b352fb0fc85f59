#include "device/InformationMap.h"

#include <QJsonValue>

namespace {

using Entries = std::map<std::string, std::string>;

} // namespace

TEST(InformationMap, labelPutsABlankBeforeEveryCapital)
{
    EXPECT_EQ(InformationMap::label("downsampleAvailable"), QStringLiteral("downsample Available"));
    EXPECT_EQ(InformationMap::label("afRGBAvailable"), QStringLiteral("af R G B Available"));
    EXPECT_EQ(InformationMap::label("SerialNumber"), QStringLiteral(" Serial Number"));
    EXPECT_EQ(InformationMap::label("version"), QStringLiteral("version"));
    EXPECT_EQ(InformationMap::label(""), QString());
}

TEST(InformationMap, onlyAsciiCapitalsGetABlank)
{
    EXPECT_EQ(InformationMap::label("größeÄußere"), QStringLiteral("größeÄußere"));
}

TEST(InformationMap, sortsTextsAndFeatures)
{
    const InformationMap map({{"version", "1.2"}, {"modelName", "QX"}, {"edgeAvailable", "true"},
        {"eyeTracking", "false"}, {"a", "True"}, {"b", "1"}, {"c", ""}});
    EXPECT_EQ(map.texts(),
        (QJsonObject{
            {"Firmware Version", "1.2"}, {"model Name", "QX"}, {"a", "True"}, {"b", "1"}, {"c", ""}}));
    EXPECT_EQ(map.features(), (QJsonObject{{"edge Available", true}, {"eye Tracking", false}}));
}

TEST(InformationMap, versionThatIsAFeatureKeepsItsLabel)
{
    const InformationMap map(Entries{{"version", "true"}});
    EXPECT_EQ(map.texts(), QJsonObject());
    EXPECT_EQ(map.features(), (QJsonObject{{"version", true}}));
}

TEST(InformationMap, capitalisedVersionIsAnotherKey)
{
    EXPECT_EQ(InformationMap(Entries{{"Version", "2"}}).texts(), (QJsonObject{{" Version", "2"}}));
}
