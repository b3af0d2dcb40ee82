// Documents that are large in one way each. Under the sanitizer they are an eighth of the size.
#include "tests/host/table_support.h"
#include "tests/limits/long_texts_support.h"
#include "tests/sanitized_build.h"

namespace limits {
namespace {

using host::operator""_w;

constexpr std::size_t Sized(std::size_t size) {
    return kIsSanitized ? size / 8 : size;
}

TEST(LargeDocument, FourHundredThousandAttributesOfOneElementAreKept) {
    std::string entry = "<Var name=\"k\" type=\"long\"";
    for (std::size_t i = 0; i < Sized(400000); ++i)
        entry.append(" a").append(std::to_string(i)).append("=\"1\"");
    entry.append(" Value=\"5\"/>");
    const host::Profile profile = host::LoadEntries(entry);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), 5);
    EXPECT_TRUE(SameLongText(host::SaveBytes(profile), host::SectionFile({"\t\t" + entry})));
    EXPECT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 6), 1U);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), 6);
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, nullptr), 1U);
}

TEST(LargeDocument, MillionEntriesOfATableAreLoadedEnumeratedAndRemoved) {
    const std::size_t count = Sized(1000000);
    std::string entries;
    for (std::size_t i = 0; i < count; ++i)
        entries.append("<Var name=\"k").append(std::to_string(i)).append("\" type=\"long\"/>");
    const host::Table table = host::LoadTable(host::TableElement(entries));
    TableEntryBaseInfoStruct last =
        host::NameRecord(("k"_w + host::WidePath(std::to_string(count - 1))).c_str());
    EXPECT_TRUE(xmlTableEntryIsExist(table, &last));
    std::size_t found = 0;
    std::uint64_t position = 0;
    TableEntryUInfoStruct record;
    while (xmlTableEntryGet(table, &position, nullptr, &record))
        ++found;
    EXPECT_EQ(found, count);
    EXPECT_TRUE(xmlTableRemoveEntry(table, &last, 0, 0));
    EXPECT_FALSE(xmlTableEntryIsExist(table, &last));
    EXPECT_TRUE(xmlTableRemoveEntries(table));
    position = 0;
    EXPECT_FALSE(xmlTableEntryGet(table, &position, nullptr, &record));
}

TEST(LargeDocument, MillionEntriesAreAddedToATable) {
    const std::size_t count = Sized(1000000);
    const host::Table table(xmlTableNew(nullptr, nullptr, 0, nullptr, 0, 0, 0, 1));
    TableEntryValueInfoStruct record = host::ValueRecord("k"_w, 3, "5");
    for (std::size_t i = 0; i < count; ++i) {
        record.id = static_cast<std::uint32_t>(i + 1);
        ASSERT_TRUE(xmlTableEntryAdd(table, nullptr, &record, nullptr, 0, 0));
    }
    std::uint64_t position = 0;
    std::uint64_t sum = 0;
    std::size_t found = 0;
    for (; xmlTableEntryGet(table, &position, &record, nullptr); ++found)
        sum += record.id;
    EXPECT_EQ(found, count);
    EXPECT_EQ(sum, std::uint64_t{count} * (count + 1) / 2);
    const TableEntryBaseInfoStruct name = host::NameRecord("k"_w);
    EXPECT_TRUE(xmlTableRemoveEntry(table, &name, -1, 1));
    EXPECT_FALSE(xmlTableEntryIsExist(table, &name));
}

TEST(LargeDocument, ValueOf64MebibytesIsWrittenSavedAndReadBack) {
    const std::size_t size = Sized(std::size_t{64} << 20);
    host::WideText value(size, 'v');
    for (std::size_t i = 0; i < size; i += 1000)
        value[i] = static_cast<wchar16>('a' + i / 1000 % 26);
    const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, value.c_str()), 1U);
    EXPECT_EQ(xmlGetProfileString(profile, "S"_w, "k"_w, nullptr, 0, nullptr), size);
    const host::ScratchFile file;
    ASSERT_EQ(xmlProfileSave(profile, file.Name(), 0, 0, 0), 1U);
    const host::Profile again(xmlProfileNew(file.Name(), nullptr, 0, 0));
    EXPECT_TRUE(SameLongText(host::ReadText(again, "S"_w, "k"_w), value));
    // Short again, it gives its memory back.
    EXPECT_EQ(xmlWriteProfileInt(again, "S"_w, "k"_w, 5), 1U);
    EXPECT_EQ(xmlGetProfileInt(again, "S"_w, "k"_w, -1), 5);
}

TEST(LargeDocument, EntityWithoutAnEndOver64MebibytesIsRefused) {
    const std::string endless(Sized(std::size_t{64} << 20), 'x');
    for (const std::string_view before : {"<a>&", "<a>&l", "<a x=\"&", "<a x=\"&quot"})
        EXPECT_EQ(host::LoadText(std::string(before) + endless), nullptr) << before;
    EXPECT_EQ(host::LoadText("<a>&" + endless + ";</a>"), nullptr);
}

TEST(LargeDocument, TextOf64MebibytesOfEntitiesIsDecoded) {
    const std::size_t count = Sized(std::size_t{16} << 20);
    std::string text = "<Var name=\"k\" type=\"string\"><Value>";
    text.reserve(count * 4 + 100);
    for (std::size_t i = 0; i < count; ++i)
        text.append("&lt;");
    const host::Profile profile = host::LoadEntries(text.append("</Value></Var>"));
    EXPECT_TRUE(SameLongText(host::ReadText(profile, "S"_w, "k"_w), host::WideText(count, '<')));
}

}  // namespace
}  // namespace limits
