// Opening and releasing profiles: where the document comes from and which element becomes its root.
#include <climits>
#include <thread>

#include "tests/host/host_support.h"

namespace host {
namespace {

// Which of several roots answers shows in the value of k in section S.
std::string RootWithValue(std::string_view attribute, std::string_view value) {
    std::string text = "<Settings";
    if (!attribute.empty()) text.append(" ").append(attribute).append("=\"any.xsd\"");
    text.append("><Table name=\"S\"><Var name=\"k\" type=\"long\"><Value>").append(value);
    return text.append("</Value></Var></Table></Settings>");
}

std::int32_t ValueOfK(moxSettings* profile) {
    return xmlGetProfileInt(profile, "S"_w, "k"_w, -1);
}

constexpr std::string_view kXmlns = "xmlns:noNamespaceSchemaLocation";
constexpr std::string_view kXsi = "xsi:noNamespaceSchemaLocation";

TEST(ProfileNew, EmptyDocumentIsTheseBytes) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 1));
    const std::string narrow(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\"/>\n\0",
        101);
    EXPECT_EQ(SaveBytes(profile), narrow);
}

TEST(ProfileNew, BufferOfSizeZeroIsNoSource) {
    const Profile profile(xmlProfileNew(nullptr, "<not loaded", 0, 0));
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(SaveBytes(profile), EmptySettingsFile());
}

TEST(ProfileNew, MissingFileGivesNull) {
    const ScratchFile file;
    for (const std::int32_t wide : {0, 1}) {
        const Profile profile(xmlProfileNew(file.Name(), nullptr, 0, wide));
        EXPECT_EQ(profile, nullptr);
    }
    EXPECT_FALSE(file.Exists());
}

TEST(ProfileNew, EmptyPathGivesNull) {
    const Profile profile(xmlProfileNew(""_w, nullptr, 0, 0));
    EXPECT_EQ(profile, nullptr);
}

TEST(ProfileNew, FolderInsteadOfFileGivesNull) {
    const WideText folder = WidePath(ScratchFolder());
    for (const std::int32_t wide : {0, 1}) {
        const Profile profile(xmlProfileNew(folder.c_str(), nullptr, 0, wide));
        EXPECT_EQ(profile, nullptr);
    }
}

TEST(ProfileNew, PathWithUnpairedSurrogateGivesNull) {
    for (const wchar16* path : {u"\xD800.xml"_w, u"a\xDC00"_w, u"\xDC00\xD800/b"_w}) {
        const Profile profile(xmlProfileNew(path, nullptr, 0, 0));
        EXPECT_EQ(profile, nullptr);
    }
}

TEST(ProfileNew, FileNameMayHoldAnyUnicodeText) {
    const ScratchFile file(u"host_\u00e4\u0416\u4e2d\U0001F600.xml");
    WriteBytes(file.Path(), RootWithValue(kXmlns, "7"));
    const Profile profile(xmlProfileNew(file.Name(), nullptr, 0, 0));
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(ValueOfK(profile), 7);
}

TEST(ProfileNew, FileIsLoadedAndBufferIgnored) {
    const ScratchFile file;
    WriteBytes(file.Path(), RootWithValue(kXmlns, "1"));
    const std::string buffer = RootWithValue(kXmlns, "2");
    const Profile profile(
        xmlProfileNew(file.Name(), buffer.data(), static_cast<std::int32_t>(buffer.size()), 0));
    EXPECT_EQ(ValueOfK(profile), 1);
}

TEST(ProfileNew, MissingFileIsNotReplacedByBuffer) {
    const ScratchFile file;
    const std::string buffer = RootWithValue(kXmlns, "2");
    const Profile profile(
        xmlProfileNew(file.Name(), buffer.data(), static_cast<std::int32_t>(buffer.size()), 0));
    EXPECT_EQ(profile, nullptr);
}

TEST(ProfileNew, OnlyWideOfOneReadsAWideFile) {
    const std::string narrowFile = RootWithValue(kXmlns, "7");
    std::string wideFile = WideFile(narrowFile);
    wideFile.resize(wideFile.size() - 2);
    EXPECT_EQ(ValueOfK(LoadBytes(wideFile, 1)), 7);
    EXPECT_EQ(LoadBytes(narrowFile, 1), nullptr);
    for (const std::int32_t wide : {0, 2, -1, 256, 0x10001, INT_MAX, INT_MIN}) {
        EXPECT_EQ(ValueOfK(LoadBytes(narrowFile, wide)), 7) << wide;
        EXPECT_EQ(LoadBytes(wideFile, wide), nullptr) << wide;
    }
}

TEST(ProfileNew, WideDoesNotMatterForABuffer) {
    const std::string text = RootWithValue(kXmlns, "7");
    const Profile profile(xmlProfileNew(nullptr, text.data(), static_cast<std::int32_t>(text.size()), 1));
    EXPECT_EQ(ValueOfK(profile), 7);
}

TEST(ProfileNew, BufferIsReadUpToSize) {
    const std::string text = "<a/>\n<b/>\n<broken";
    const Profile profile(xmlProfileNew(nullptr, text.data(), 9, 0));
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(SaveBytes(profile), NarrowFile(Lines({"<a/>", "<b/>", kEmptyRoot})));
}

TEST(ProfileNew, BufferIsReadUpToItsZeroByte) {
    const std::string text("<a/>\n\0<broken", 13);
    const Profile profile(xmlProfileNew(nullptr, text.data(), 13, 0));
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(SaveBytes(profile), NarrowFile(Lines({"<a/>", kEmptyRoot})));
}

TEST(ProfileNew, SizeMayGoBeyondTheZeroByte) {
    const Profile profile(xmlProfileNew(nullptr, "<a/>\n<b/>", 1000, 0));
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(SaveBytes(profile), NarrowFile(Lines({"<a/>", "<b/>", kEmptyRoot})));
}

TEST(ProfileNew, NegativeSizeReadsUpToTheZeroByte) {
    for (const std::int32_t size : {-1, INT_MIN}) {
        const Profile profile(xmlProfileNew(nullptr, "<a/>\n<b/>", size, 0));
        ASSERT_NE(profile, nullptr);
        EXPECT_EQ(SaveBytes(profile), NarrowFile(Lines({"<a/>", "<b/>", kEmptyRoot})));
    }
}

TEST(ProfileNew, BufferMayGoAfterTheCall) {
    std::string text = RootWithValue(kXmlns, "7");
    const Profile profile = LoadText(text);
    text.assign(text.size(), '<');
    EXPECT_EQ(ValueOfK(profile), 7);
}

TEST(ProfileNew, UnreadableBufferGivesNull) {
    EXPECT_EQ(LoadText("<a>"), nullptr);
}

TEST(ProfileNew, UnreadableFileGivesNull) {
    EXPECT_EQ(LoadBytes("<a/>\n<", 0), nullptr);
}

TEST(ProfileRoot, EitherSchemaAttributeMarksTheRoot) {
    const Profile xsi = LoadText(RootWithValue(kXsi, "7"));
    EXPECT_EQ(ValueOfK(xsi), 7);
    EXPECT_EQ(SaveBytes(xsi), NarrowFile(Lines({
                                  "<Settings xsi:noNamespaceSchemaLocation=\"any.xsd\">",
                                  "\t<Table name=\"S\">",
                                  "\t\t<Var name=\"k\" type=\"long\">",
                                  "\t\t\t<Value>7</Value>",
                                  "\t\t</Var>",
                                  "\t</Table>",
                                  "</Settings>",
                              })));
    EXPECT_EQ(ValueOfK(LoadText(RootWithValue(kXmlns, "8"))), 8);
}

TEST(ProfileRoot, MarkMayBeEmptyAndComeLate) {
    const Profile profile = LoadText("<Settings a=\"1\" xsi:noNamespaceSchemaLocation=\"\"/>");
    EXPECT_EQ(SaveBytes(profile), NarrowFile("<Settings a=\"1\" xsi:noNamespaceSchemaLocation=\"\"/>\n"));
}

TEST(ProfileRoot, FirstOfTwoMarkedElementsIsUsed) {
    const Profile profile = LoadText(RootWithValue(kXsi, "1") + "\n" + RootWithValue(kXmlns, "2"));
    EXPECT_EQ(ValueOfK(profile), 1);
}

TEST(ProfileRoot, UnmarkedElementBeforeAMarkedOneIsPassedOver) {
    const Profile profile = LoadText(RootWithValue("", "1") + "\n" + RootWithValue(kXmlns, "2"));
    EXPECT_EQ(ValueOfK(profile), 2);
}

TEST(ProfileRoot, OtherTopElementStaysAndANewRootFollows) {
    const Profile profile = LoadText("<Config a=\"1\"><b/></Config>");
    ASSERT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 5), 1U);
    EXPECT_EQ(SaveBytes(profile), NarrowFile(Lines({
                                      "<Config a=\"1\">",
                                      "\t<b/>",
                                      "</Config>",
                                      kRootStart,
                                      "\t<Table name=\"S\">",
                                      "\t\t<Var name=\"k\" type=\"string\" array=\"\">",
                                      "\t\t\t<Value>5</Value>",
                                      "\t\t</Var>",
                                      "\t</Table>",
                                      kRootEnd,
                                  })));
}

TEST(ProfileRoot, UnmarkedSettingsStaysAndANewRootFollows) {
    const Profile profile = LoadText(RootWithValue("", "1"));
    EXPECT_EQ(ValueOfK(profile), -1);
    EXPECT_EQ(SaveBytes(profile), NarrowFile(Lines({
                                      "<Settings>",
                                      "\t<Table name=\"S\">",
                                      "\t\t<Var name=\"k\" type=\"long\">",
                                      "\t\t\t<Value>1</Value>",
                                      "\t\t</Var>",
                                      "\t</Table>",
                                      "</Settings>",
                                      kEmptyRoot,
                                  })));
}

TEST(ProfileRoot, NamesAreMatchedExactly) {
    for (const std::string_view text :
         {"<settings xmlns:noNamespaceSchemaLocation=\"x\"/>", "<Settings noNamespaceSchemaLocation=\"x\"/>",
          "<Settings xmlns:noNamespaceSchemaLocations=\"x\"/>",
          "<Settings XMLNS:noNamespaceSchemaLocation=\"x\"/>",
          "<a:Settings xmlns:noNamespaceSchemaLocation=\"x\"/>"}) {
        EXPECT_EQ(SaveBytes(LoadText(text)), NarrowFile(Lines({text, kEmptyRoot})));
    }
}

TEST(ProfileRoot, NestedSettingsIsNoRoot) {
    const Profile profile = LoadText("<a>" + RootWithValue(kXmlns, "1") + "</a>");
    EXPECT_EQ(ValueOfK(profile), -1);
}

TEST(ProfileDispose, ClearsTheVariableAndMayBeRepeated) {
    moxSettings* handle = xmlProfileNew(nullptr, nullptr, 0, 0);
    ASSERT_NE(handle, nullptr);
    xmlProfileDispose(&handle);
    EXPECT_EQ(handle, nullptr);
    xmlProfileDispose(&handle);
    EXPECT_EQ(handle, nullptr);
}

TEST(ProfileDispose, ProfilesShareNothing) {
    const Profile first(xmlProfileNew(nullptr, nullptr, 0, 0));
    {
        const Profile second(xmlProfileNew(nullptr, nullptr, 0, 0));
        ASSERT_EQ(xmlWriteProfileInt(first, "S"_w, "k"_w, 1), 1U);
        ASSERT_EQ(xmlWriteProfileInt(second, "S"_w, "k"_w, 2), 1U);
        EXPECT_EQ(ValueOfK(second), 2);
    }
    EXPECT_EQ(ValueOfK(first), 1);
}

TEST(ProfileDispose, ProfilesMayBeUsedByThreadsOfTheirOwn) {
    std::int32_t sums[2] = {0, 0};
    auto work = [&sums](std::int32_t number) {
        const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
        for (std::int32_t i = 0; i < 500; ++i) {
            const wchar16 key[] = {static_cast<wchar16>('a' + i % 20), 0};
            xmlWriteProfileInt(profile, "S"_w, key, i * (number + 1));
        }
        for (wchar16 unit = 'a'; unit < 'a' + 20; ++unit) {
            const wchar16 key[] = {unit, 0};
            sums[number] += xmlGetProfileInt(profile, "S"_w, key, 0);
        }
    };
    std::thread first(work, 0);
    std::thread second(work, 1);
    first.join();
    second.join();
    EXPECT_EQ(sums[0], 9790);
    EXPECT_EQ(sums[1], 19580);
}

}  // namespace
}  // namespace host
