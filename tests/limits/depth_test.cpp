// Documents of any depth need memory, but no stack: all of this runs on a thread with 256 KiB of it.
#include "tests/host/host_support.h"
#include "tests/limits/small_stack_support.h"

namespace limits {
namespace {

using host::operator""_w;

constexpr int kDeep = 1000000;
constexpr int kSavedDepth = 5000;

std::string Repeat(std::string_view text, int count) {
    std::string repeated;
    repeated.reserve(text.size() * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        repeated.append(text);
    return repeated;
}

// Elements nested to this depth, without any space between them.
std::string Nested(int depth, std::string_view innermost) {
    return Repeat("<a>", depth - 1).append(innermost).append(Repeat("</a>", depth - 1));
}

// The same as the library lays it out, with this many tabs before the outermost.
std::string NestedLines(int depth, std::string_view innermost, int tabs) {
    std::string lines;
    auto add = [&lines](int indent, std::string_view tag) {
        lines.append(static_cast<std::size_t>(indent), '\t').append(tag).append("\n");
    };
    for (int i = 0; i < depth - 1; ++i)
        add(tabs + i, "<a>");
    add(tabs + depth - 1, innermost);
    for (int i = depth - 2; i >= 0; --i)
        add(tabs + i, "</a>");
    return lines;
}

// Whether two long texts are the same; they are not shown when they differ.
testing::AssertionResult Same(const std::string& actual, const std::string& expected) {
    if (actual == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure() << actual.size() << " bytes, " << expected.size() << " expected";
}

TEST(DeepDocument, MillionElementsLoadAndAreReleased) {
    const std::string text = Nested(kDeep, "<a/>");
    bool loaded = false;
    std::int32_t written = 0;
    ASSERT_TRUE(RunOnSmallStack([&] {
        const host::Profile profile = host::LoadText(text);
        loaded = profile != nullptr;
        xmlWriteProfileInt(profile, "S"_w, "k"_w, 5);
        written = xmlGetProfileInt(profile, "S"_w, "k"_w, -1);
    }));
    EXPECT_TRUE(loaded);
    EXPECT_EQ(written, 5);
}

TEST(DeepDocument, MillionElementsLoadFromAWideFile) {
    const std::string bytes = host::WideFile(Nested(kDeep, "<a/>"));
    bool loaded = false;
    ASSERT_TRUE(RunOnSmallStack([&] { loaded = host::LoadBytes(bytes, 1) != nullptr; }));
    EXPECT_TRUE(loaded);
}

TEST(DeepDocument, MillionUnclosedElementsAreRefused) {
    const std::string unclosed = Repeat("<a>", kDeep);
    const std::string wrongEnd = Nested(kDeep, "<a/>").append("<");
    bool refused = false;
    ASSERT_TRUE(RunOnSmallStack([&] {
        refused = host::LoadText(unclosed) == nullptr && host::LoadText(unclosed + "</b>") == nullptr;
        refused = refused && host::LoadText(wrongEnd + "\n<") == nullptr;
    }));
    EXPECT_TRUE(refused);
}

TEST(DeepDocument, MillionElementsInASectionAreDeletedWithIt) {
    const std::string text = "<Table name=\"S\">" + Nested(kDeep, "<a/>") + "</Table>";
    std::uint32_t deleted = 0;
    std::string bytes;
    ASSERT_TRUE(RunOnSmallStack([&] {
        const host::Profile profile = host::LoadSections(text);
        deleted = xmlWriteProfileString(profile, "S"_w, nullptr, nullptr);
        bytes = host::SaveBytes(profile);
    }));
    EXPECT_EQ(deleted, 1U);
    EXPECT_EQ(bytes, host::EmptySettingsFile());
}

TEST(DeepDocument, MillionElementsInAnEntryAreDeletedWithIt) {
    const std::string text = "<Var name=\"k\" type=\"long\">" + Nested(kDeep, "<a/>") + "</Var>";
    std::uint32_t deleted = 0;
    std::string bytes;
    ASSERT_TRUE(RunOnSmallStack([&] {
        const host::Profile profile = host::LoadEntries(text);
        deleted = xmlWriteProfileString(profile, "S"_w, "k"_w, nullptr);
        bytes = host::SaveBytes(profile);
    }));
    EXPECT_EQ(deleted, 1U);
    EXPECT_EQ(bytes, host::SettingsFile({"\t<Table name=\"S\"/>"}));
}

TEST(DeepDocument, MillionElementsInAnEntryAreNotExported) {
    const std::string text = "<Var name=\"k\" type=\"long\">" + Nested(kDeep, "<a/>") + "<Value>" +
                             Nested(kDeep, "<a/>") + "5</Value></Var>";
    std::string bytes;
    ASSERT_TRUE(RunOnSmallStack([&] { bytes = host::SaveBytes(host::LoadEntries(text), 2); }));
    EXPECT_EQ(bytes, host::SectionFile({
                         "\t\t<Var name=\"k\" type=\"long\" array=\"\">",
                         "\t\t\t<Value>5</Value>",
                         "\t\t</Var>",
                     }));
}

TEST(DeepDocument, FiveThousandElementsSaveAndReload) {
    const std::string text = Nested(kSavedDepth, "<a x=\"1\">v</a>");
    const std::string lines =
        NestedLines(kSavedDepth, "<a x=\"1\">v</a>", 0) + host::Lines({host::kEmptyRoot});
    std::string narrow;
    std::string wide;
    std::string narrowAgain;
    std::string wideAgain;
    ASSERT_TRUE(RunOnSmallStack([&] {
        const host::Profile profile = host::LoadText(text);
        narrow = host::SaveBytes(profile, 0, 0);
        wide = host::SaveBytes(profile, 0, 1);
        narrowAgain = host::SaveBytes(host::LoadBytes(narrow, 0), 0, 0);
        wideAgain = host::SaveBytes(host::LoadBytes(wide, 1), 0, 1);
    }));
    EXPECT_TRUE(Same(narrow, host::NarrowFile(lines)));
    EXPECT_TRUE(Same(wide, host::WideFile(lines)));
    EXPECT_TRUE(Same(narrowAgain, narrow));
    EXPECT_TRUE(Same(wideAgain, wide));
}

TEST(DeepDocument, MarksAreRemovedBesideDeepElements) {
    const std::string text = "<Table name=\"S\" eud=\"true\"><Var eud=\"true\"/>" +
                             Nested(kSavedDepth, "<a eud=\"true\"/>") + "</Table>";
    std::string bytes;
    ASSERT_TRUE(RunOnSmallStack([&] { bytes = host::SaveBytes(host::LoadSections(text)); }));
    EXPECT_TRUE(Same(bytes, host::NarrowFile(host::Lines({host::kDeclaration, host::kRootStart,
                                                          "\t<Table name=\"S\">", "\t\t<Var/>"}) +
                                             NestedLines(kSavedDepth, "<a eud=\"true\"/>", 2) +
                                             host::Lines({"\t</Table>", host::kRootEnd}))));
}

}  // namespace
}  // namespace limits
