// Long texts and long lists.
#include <vector>

#include "tests/host/host_support.h"
#include "tests/limits/long_texts_support.h"

namespace limits {
namespace {

using host::operator""_w;

// Characters that change all the time, so that no piece can be taken for another.
std::string Filler(std::size_t size) {
    std::string text(size, ' ');
    for (std::size_t i = 0; i < size; ++i)
        text[i] = static_cast<char>('a' + (i * i / 7 + i) % 26);
    return text;
}

host::WideText Widened(const std::string& text) {
    return {text.begin(), text.end()};
}

TEST(LongText, ValueOfEightMebibytesIsWrittenSavedAndReadBack) {
    const std::string value = Filler(std::size_t{8} << 20);
    const host::WideText wideValue = Widened(value);
    const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, wideValue.c_str()), 1U);
    EXPECT_TRUE(SameLongText(host::ReadText(profile, "S"_w, "k"_w), wideValue));
    const std::string line = "\t\t\t<Value>" + value + "</Value>";
    const std::string narrow = host::SaveBytes(profile);
    EXPECT_TRUE(SameLongText(
        narrow, host::SectionFile({"\t\t<Var name=\"k\" type=\"string\" array=\"\">", line, "\t\t</Var>"})));
    EXPECT_TRUE(SameLongText(host::ReadText(host::LoadBytes(narrow, 0), "S"_w, "k"_w), wideValue));
    const std::string wide = host::SaveBytes(profile, 2, 1);
    EXPECT_TRUE(SameLongText(host::ReadText(host::LoadBytes(wide, 1), "S"_w, "k"_w), wideValue));
}

TEST(LongText, FourMebibytesOfDataComeBack) {
    const std::string data = Filler(std::size_t{4} << 20);
    const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    const std::uint32_t size = static_cast<std::uint32_t>(data.size());
    ASSERT_EQ(xmlWriteProfileData(profile, "S"_w, "k"_w, data.data(), size), 1U);
    std::string back(data.size(), '?');
    EXPECT_EQ(xmlGetProfileData(profile, "S"_w, "k"_w, back.data(), size), size);
    EXPECT_TRUE(SameLongText(back, data));
}

TEST(LongText, EveryCharacterOfAMebibyteMayNeedAnEntity) {
    const host::WideText value(std::size_t{1} << 20, '<');
    const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, value.c_str()), 1U);
    const std::string bytes = host::SaveBytes(profile);
    EXPECT_EQ(bytes.size(), 4 * value.size() + 208);
    EXPECT_TRUE(SameLongText(host::ReadText(host::LoadBytes(bytes, 0), "S"_w, "k"_w), value));
}

TEST(LongText, NamesMayBeLong) {
    const std::string name = Filler(1000000);
    const host::WideText wideName = Widened(name);
    const host::Profile profile = host::LoadText("<" + name + " " + name + "=\"1\"></" + name + ">");
    ASSERT_NE(profile, nullptr);
    ASSERT_EQ(xmlWriteProfileInt(profile, wideName.c_str(), wideName.c_str(), 5), 1U);
    EXPECT_EQ(xmlGetProfileInt(profile, wideName.c_str(), wideName.c_str(), -1), 5);
    EXPECT_EQ(xmlGetProfileInt(profile, wideName.c_str(), wideName.c_str() + 1, -1), -1);
    EXPECT_TRUE(SameLongText(host::SaveBytes(profile),
                             host::NarrowFile(host::Lines({
                                 "<" + name + " " + name + "=\"1\"/>",
                                 host::kRootStart,
                                 "\t<Table name=\"" + name + "\">",
                                 "\t\t<Var name=\"" + name + "\" type=\"string\" array=\"\">",
                                 "\t\t\t<Value>5</Value>",
                                 "\t\t</Var>",
                                 "\t</Table>",
                                 host::kRootEnd,
                             }))));
}

TEST(LongText, EndTagThatDiffersAtTheVeryEndIsRefused) {
    const std::string name = Filler(1000000);
    EXPECT_EQ(host::LoadText("<" + name + "x></" + name + "y>"), nullptr);
}

TEST(LongText, UnfinishedEntityOfAMebibyteIsRefused) {
    EXPECT_EQ(host::LoadText("<a>&" + Filler(std::size_t{1} << 20) + "</a>"), nullptr);
    EXPECT_EQ(host::LoadText("<a>&" + Filler(std::size_t{1} << 20) + ";</a>"), nullptr);
}

TEST(LongText, CommentMayBeLong) {
    const std::string comment = "<!-- " + Filler(std::size_t{4} << 20) + " -->";
    EXPECT_TRUE(SameLongText(host::SaveBytes(host::LoadText(comment)),
                             host::NarrowFile(host::Lines({comment, host::kEmptyRoot}))));
}

TEST(LongText, TextOfAHundredThousandPiecesIsJoined) {
    std::string text = "<Var name=\"k\" type=\"string\"><Value>0";
    host::WideText expected(1, '0');
    for (int i = 1; i < 100000; ++i) {
        const char digit = static_cast<char>('0' + i % 10);
        text.append("<b/>").append(1, digit);
        expected.append(1, '\n').append(1, static_cast<wchar16>(digit));
    }
    const host::Profile profile = host::LoadEntries(text + "</Value></Var>");
    EXPECT_TRUE(SameLongText(host::ReadText(profile, "S"_w, "k"_w), expected));
}

TEST(LongList, HundredThousandAttributesAreKeptInOrder) {
    std::string element = "<a";
    for (int i = 0; i < 100000; ++i)
        element.append(" x").append(std::to_string(i)).append("=\"1\"");
    element.append("/>");
    EXPECT_TRUE(SameLongText(host::SaveBytes(host::LoadText(element)),
                             host::NarrowFile(host::Lines({element, host::kEmptyRoot}))));
}

// Keys k0, k1, ... in section "S", each with its number as its value, as they are laid out.
std::string KeyLines(int count) {
    std::string lines;
    for (int i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        lines.append("\t\t<Var name=\"k").append(number).append("\" type=\"long\" array=\"\">\n");
        lines.append("\t\t\t<Value>").append(number).append("</Value>\n\t\t</Var>\n");
    }
    return lines;
}

TEST(LongList, TwoHundredThousandKeysLoadReadAndSave) {
    const std::string text = host::Lines({host::kDeclaration, host::kRootStart, "\t<Table name=\"S\">"}) +
                             KeyLines(200000) + host::Lines({"\t</Table>", host::kRootEnd});
    const host::Profile profile = host::LoadText(text);
    ASSERT_NE(profile, nullptr);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k0"_w, -1), 0);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k100000"_w, -1), 100000);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k199999"_w, -1), 199999);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k200000"_w, -1), -1);
    for (const std::uint32_t mode : {0U, 2U}) {
        EXPECT_TRUE(SameLongText(host::SaveBytes(profile, mode), host::NarrowFile(text)));
    }
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k0"_w, nullptr), 1U);
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "k200000"_w, 7), 1U);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k0"_w, -1), -1);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k200000"_w, -1), 7);
}

TEST(LongList, HundredThousandEntriesOfOneNameAreRemovedAtOnce) {
    std::string entries;
    for (int i = 0; i < 100000; ++i)
        entries.append(i % 1000 == 0 ? "<Var name=\"k\"/><Var/>" : "<Var name=\"k\"/>");
    const host::Profile profile = host::LoadEntries(entries);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, nullptr), 1U);
    std::string lines;
    for (int i = 0; i < 100; ++i)
        lines.append("\t\t<Var/>\n");
    EXPECT_EQ(host::SaveBytes(profile),
              host::NarrowFile(host::Lines({host::kDeclaration, host::kRootStart, "\t<Table name=\"S\">"}) +
                               lines + host::Lines({"\t</Table>", host::kRootEnd})));
}

TEST(LongList, TwoHundredThousandSectionsAreEnumerated) {
    std::string sections;
    for (int i = 0; i < 200000; ++i)
        sections.append("<Table name=\"s").append(std::to_string(i)).append("\"/>");
    const host::Profile profile = host::LoadSections(sections);
    ASSERT_NE(profile, nullptr);
    std::uintptr_t position = 0;
    wchar16 name[16] = {};
    int count = 0;
    while (host::Section(xmlEnumProfileSections(profile, &position, name, 16, nullptr))) {
        if (++count == 200000) {
            EXPECT_EQ(host::WideText(name), "s199999"_w);
        }
    }
    EXPECT_EQ(count, 200000);
}

TEST(LongList, HundredThousandTopLevelNodesAreKept) {
    std::string text;
    for (int i = 0; i < 50000; ++i)
        text.append("<!--c-->\n<a/>\n");
    EXPECT_TRUE(SameLongText(host::SaveBytes(host::LoadText(text)),
                             host::NarrowFile(text + host::Lines({host::kEmptyRoot}))));
}

TEST(LongList, ManyProfilesMayBeOpenAtOnce) {
    std::vector<moxSettings*> profiles(2000);
    for (std::size_t i = 0; i < profiles.size(); ++i) {
        profiles[i] = xmlProfileNew(nullptr, nullptr, 0, 0);
        ASSERT_EQ(xmlWriteProfileInt(profiles[i], "S"_w, "k"_w, static_cast<std::int32_t>(i)), 1U);
    }
    for (std::size_t i = 0; i < profiles.size(); ++i) {
        EXPECT_EQ(xmlGetProfileInt(profiles[i], "S"_w, "k"_w, -1), static_cast<std::int32_t>(i));
        xmlProfileDispose(&profiles[i]);
    }
}

}  // namespace
}  // namespace limits
