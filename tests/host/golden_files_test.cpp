// Whole documents from tests/data: every kind of save against the bytes that it has to give.
#include <tuple>

#include "tests/host/host_support.h"

namespace host {
namespace {

constexpr unsigned char kKey[] = {0x01, 0xAB, 0x00, 0xFF};

std::filesystem::path Data(const std::string& name) {
    return std::filesystem::path("data") / name;
}

std::string Golden(const std::string& name) {
    return ReadBytes(Data("golden") / name);
}

Profile Open(const std::string& name, std::int32_t wide) {
    return Profile(xmlProfileNew(WidePath(Data(name + ".xml")).c_str(), nullptr, 0, wide));
}

// A document's stem, whether it is wide, the mode of the save, and whether that is wide.
class GoldenFiles
    : public testing::TestWithParam<std::tuple<std::pair<const char*, int>, std::uint32_t, int>> {
  protected:
    std::string Stem() const { return std::get<0>(GetParam()).first; }
    std::int32_t FileFlag() const { return std::get<0>(GetParam()).second; }
    std::uint32_t Mode() const { return std::get<1>(GetParam()); }
    std::int32_t Wide() const { return std::get<2>(GetParam()); }
    std::string Expected() const {
        return Golden(Stem() + ".mode" + std::to_string(Mode()) +
                      (Wide() == 1 ? ".wide.xml" : ".narrow.xml"));
    }
};

TEST_P(GoldenFiles, SaveGivesTheseBytes) {
    const Profile profile = Open(Stem(), FileFlag());
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(SaveBytes(profile, Mode(), Wide()), Expected());
}

const std::pair<const char*, int> kSiteOffice{"site_office", 0};
const std::pair<const char*, int> kProductionLine{"production_line_wide", 1};

std::string CaseName(const testing::TestParamInfo<GoldenFiles::ParamType>& info) {
    return std::string(std::get<0>(info.param).first) + "_mode" + std::to_string(std::get<1>(info.param)) +
           (std::get<2>(info.param) == 1 ? "_wide" : "_narrow");
}

INSTANTIATE_TEST_SUITE_P(Documents, GoldenFiles,
                         testing::Combine(testing::Values(kSiteOffice, kProductionLine),
                                          testing::Values(0U, 1U, 2U), testing::Values(0, 1)),
                         CaseName);

// Of a document whose texts have no line feeds.
using ReloadedFiles = GoldenFiles;

TEST_P(ReloadedFiles, SavedFileGivesTheSameBytesWhenSavedAgain) {
    const std::string expected = Expected();
    const Profile profile = LoadBytes(expected, Wide());
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(SaveBytes(profile, 0, Wide()), expected);
}

INSTANTIATE_TEST_SUITE_P(Documents, ReloadedFiles,
                         testing::Combine(testing::Values(kProductionLine), testing::Values(0U, 1U, 2U),
                                          testing::Values(0, 1)),
                         CaseName);

TEST(GoldenFile, WritesAndDeletesChangeTheirPlacesOnly) {
    const Profile profile = Open("site_office", 0);
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(xmlWriteProfileString(profile, "Display"_w, "Theme"_w, "light"_w), 1U);
    EXPECT_EQ(xmlWriteProfileInt(profile, "Display"_w, "Brightness"_w, -5), 1U);
    EXPECT_EQ(xmlWriteProfileInt(profile, "Display"_w, "Background"_w, 255), 1U);
    EXPECT_EQ(xmlWriteProfileInt(profile, "Display"_w, "Depth"_w, 24), 1U);
    EXPECT_EQ(xmlWriteProfileData(profile, "Sensors"_w, "Calibration"_w, kKey, 4), 1U);
    EXPECT_EQ(xmlWriteProfileString(profile, "Sensors"_w, "Serial"_w, "B-<12> & 'x'"_w), 1U);
    EXPECT_EQ(xmlWriteProfileString(profile, "Network"_w, "Host"_w, "example"_w), 1U);
    EXPECT_EQ(xmlWriteProfileString(profile, "Limits"_w, "Low"_w, nullptr), 1U);
    EXPECT_EQ(xmlWriteProfileString(profile, "Limits"_w, "Code"_w, "y"_w), 1U);
    EXPECT_EQ(xmlWriteProfileString(profile, "Display"_w, nullptr, nullptr), 1U);
    EXPECT_EQ(xmlWriteProfileString(profile, "Display"_w, "Zoom"_w, "2.5"_w), 1U);
    EXPECT_EQ(SaveBytes(profile), Golden("site_office.edited.narrow.xml"));
}

TEST(GoldenFile, NarrowDocumentIsReadWithAllItsOddities) {
    const Profile profile = Open("site_office", 0);
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(ReadText(profile, "Display"_w, "Theme"_w), "dark"_w);
    EXPECT_EQ(xmlGetProfileInt(profile, "Display"_w, "Background"_w, -1), 16711680);
    EXPECT_EQ(ReadText(profile, "Display"_w, "Title"_w), u"R&D <plan> \"west\" 'B' 25\xFFB0 \xFFC4\xFFE9"_w);
    EXPECT_EQ(xmlGetProfileInt(profile, "Display"_w, "Zoom"_w, -1), -1);
    unsigned char bytes[4] = {};
    EXPECT_EQ(xmlGetProfileData(profile, "Sensors"_w, "Calibration"_w, bytes, 4), 4U);
    EXPECT_EQ(std::string(bytes, bytes + 4), std::string("\x00\xFF\xA0\x7E", 4));
    EXPECT_EQ(ReadText(profile, "Sensors"_w, "Notes"_w),
              "first line\nsecond line\n\tthird, with a tab\n\t\t\t"_w);
    EXPECT_EQ(xmlGetProfileInt(profile, "Limits"_w, "Low"_w, 0), -2147483647 - 1);
    EXPECT_EQ(xmlGetProfileInt(profile, "Limits"_w, "Count"_w, 77), 77);
    EXPECT_EQ(xmlGetProfileInt(profile, "Limits"_w, "After"_w, 77), 9);
}

TEST(GoldenFile, WideDocumentIsReadInFull) {
    const Profile profile = Open("production_line_wide", 1);
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(ReadText(profile, "Maschine"_w, u"Gr\u00f6\u00dfe"_w), "12.5"_w);
    EXPECT_EQ(ReadText(profile, "Maschine"_w, u"\u041d\u0430\u0437\u0432\u0430\u043d\u0438\u0435"_w),
              u"\u041b\u0438\u043d\u0438\u044f \u21163 & \u56db\u53f7\u7ebf \U0001F680"_w);
    EXPECT_EQ(xmlGetProfileInt(profile, "Maschine"_w, "Modus"_w, -1), 2);
    unsigned char bytes[8] = {};
    EXPECT_EQ(xmlGetProfileData(profile, u"Ger\u00e4te"_w, u"Schl\u00fcssel"_w, bytes, 8), 5U);
    EXPECT_EQ(std::string(bytes, bytes + 5), "\xDE\xAD\xBE\xEF\x01");
}

}  // namespace
}  // namespace host
