// Table handles: made from a file, from memory or new, saved and disposed.
#include "tests/host/table_support.h"

namespace host {
namespace {

// A new table, saved.
std::string NewTable(const wchar16* name, std::int32_t editable, std::uint32_t firstId, std::uint16_t type,
                     std::int32_t newDocument) {
    return SavedText(Table(xmlTableNew(nullptr, nullptr, 0, name, editable, firstId, type, newDocument)));
}

// A table over a wide file with this text.
Table LoadFile(std::string_view text, const wchar16* name = nullptr) {
    const ScratchFile file;
    WriteBytes(file.Path(), WideFile(text));
    return Table(xmlTableNew(file.Name(), nullptr, 0, name, 0, 0, 0, 0));
}

TEST(TableNew, WithoutArgumentsHasDeclarationSchemaAndDefaultName) {
    EXPECT_EQ(NewTable(nullptr, 0, 0, 0, 1),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<Table xmlns:noNamespaceSchemaLocation=\"MXTable.xsd\" name=\"_MXTable_\"/>\n");
}

TEST(TableNew, HeaderIsWrittenInOrder) {
    EXPECT_EQ(
        NewTable("N"_w, 1, 100, 0x1F, 1),
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<Table xmlns:noNamespaceSchemaLocation=\"MXTable.xsd\" name=\"N\" first_id=\"100\" type=\"001F\""
        " editable=\"true\"/>\n");
}

TEST(TableNew, ZeroHeaderWritesTheNameAlone) {
    EXPECT_EQ(NewTable("N"_w, 0, 0, 0, 0), "<Table name=\"N\"/>\n");
}

TEST(TableNew, TypeIsWrittenAsFourUpperCaseDigits) {
    EXPECT_EQ(NewTable("N"_w, 0, 0, 255, 0), "<Table name=\"N\" type=\"00FF\"/>\n");
    EXPECT_EQ(NewTable("N"_w, 0, 0, 0xABCD, 0), "<Table name=\"N\" type=\"ABCD\"/>\n");
}

TEST(TableNew, FirstIdIsWrittenUnsigned) {
    EXPECT_EQ(NewTable("N"_w, 0, 0xFFFFFFFF, 0, 0), "<Table name=\"N\" first_id=\"4294967295\"/>\n");
}

TEST(TableNew, EditableIsExactlyOne) {
    EXPECT_EQ(NewTable("N"_w, 1, 0, 0, 0), "<Table name=\"N\" editable=\"true\"/>\n");
    for (const std::int32_t editable : {0, 2, -1, 256, 257})
        EXPECT_EQ(NewTable("N"_w, editable, 0, 0, 0), "<Table name=\"N\"/>\n") << editable;
}

TEST(TableNew, OnlyANewDocumentOfOneHasDeclarationAndSchema) {
    for (const std::int32_t newDocument : {0, 2, -1, 256, 257})
        EXPECT_EQ(NewTable(nullptr, 0, 0, 0, newDocument), "<Table name=\"_MXTable_\"/>\n") << newDocument;
}

TEST(TableNew, EmptyNameIsNotTheDefaultName) {
    EXPECT_EQ(NewTable(""_w, 0, 0, 0, 0), "<Table name=\"\"/>\n");
}

TEST(TableNew, FileGoesBeforeBuffer) {
    const ScratchFile file;
    WriteBytes(file.Path(), WideFile(kTableA));
    constexpr std::string_view other = "<Table name=\"B\"/>";
    const Table table(
        xmlTableNew(file.Name(), other.data(), static_cast<std::int32_t>(other.size()), nullptr, 0, 0, 0, 0));
    EXPECT_EQ(SavedText(table), "<Table name=\"A\"/>\n");
}

TEST(TableNew, MissingFileFailsEvenWithABuffer) {
    const ScratchFile file;
    const auto size = static_cast<std::int32_t>(kTableA.size());
    EXPECT_EQ(Table(xmlTableNew(file.Name(), kTableA.data(), size, nullptr, 0, 0, 0, 0)), nullptr);
    EXPECT_EQ(Table(xmlTableNew(file.Name(), nullptr, 0, nullptr, 0, 0, 0, 1)), nullptr);
    EXPECT_FALSE(file.Exists());
}

TEST(TableNew, BufferOfSizeZeroIsANewTable) {
    EXPECT_EQ(SavedText(Table(xmlTableNew(nullptr, kTableA.data(), 0, nullptr, 0, 0, 0, 0))),
              "<Table name=\"_MXTable_\"/>\n");
}

TEST(TableNew, SizeWithoutBufferIsANewTable) {
    EXPECT_EQ(SavedText(Table(xmlTableNew(nullptr, nullptr, 17, nullptr, 0, 0, 0, 0))),
              "<Table name=\"_MXTable_\"/>\n");
}

TEST(TableNew, NegativeSizeReadsUpToTheZeroByte) {
    EXPECT_EQ(SavedText(Table(xmlTableNew(nullptr, "<Table name=\"A\"/>", -1, nullptr, 0, 0, 0, 0))),
              "<Table name=\"A\"/>\n");
}

TEST(TableNew, BufferEndsAtItsFirstZeroByte) {
    EXPECT_EQ(SavedText(LoadTable(std::string_view("<Table name=\"A\"/>\0<broken", 25))),
              "<Table name=\"A\"/>\n");
}

TEST(TableNew, HeaderArgumentsPlayNoPartInLoading) {
    const auto size = static_cast<std::int32_t>(kTableA.size());
    EXPECT_EQ(SavedText(Table(xmlTableNew(nullptr, kTableA.data(), size, nullptr, 1, 9, 9, 1))),
              "<Table name=\"A\"/>\n");
}

TEST(TableNew, FileIsReadAsWideText) {
    EXPECT_EQ(SavedText(LoadFile(kTableA)), "<Table name=\"A\"/>\n");
    const ScratchFile narrow;
    WriteBytes(narrow.Path(), NarrowFile(kTableA));
    EXPECT_EQ(Table(xmlTableNew(narrow.Name(), nullptr, 0, nullptr, 0, 0, 0, 0)), nullptr);
}

TEST(TableNew, TextThatDoesNotParseFails) {
    EXPECT_EQ(LoadTable("<Table name=\"A\">"), nullptr);
    EXPECT_EQ(LoadFile("<Table name=\"A\"></table>"), nullptr);
    EXPECT_EQ(LoadTable("<Table name=\"A\"/><Table/>"), nullptr);
}

TEST(TableNew, OtherNameThanTheFirstTablesFails) {
    EXPECT_EQ(LoadTable(kTableA, "B"_w), nullptr);
    EXPECT_EQ(LoadTable(kTableA, "a"_w), nullptr);
    EXPECT_EQ(LoadFile(kTableA, "B"_w), nullptr);
    EXPECT_NE(LoadTable(kTableA, "A"_w), nullptr);
    EXPECT_NE(LoadFile(kTableA, "A"_w), nullptr);
}

TEST(TableNew, TableWithoutNameHasTheEmptyOne) {
    EXPECT_EQ(LoadTable("<Table/>", "B"_w), nullptr);
    EXPECT_EQ(SavedText(LoadTable("<Table/>")), "<Table/>\n");
}

TEST(TableNew, NoNameOrAnEmptyOneAcceptsAnyTable) {
    EXPECT_EQ(SavedText(LoadTable(kTableA, nullptr)), "<Table name=\"A\"/>\n");
    EXPECT_EQ(SavedText(LoadTable(kTableA, ""_w)), "<Table name=\"A\"/>\n");
    EXPECT_EQ(SavedText(LoadFile(kTableA, ""_w)), "<Table name=\"A\"/>\n");
}

TEST(TableNew, SecondTableIsNeverLookedAt) {
    constexpr std::string_view two =
        "<Table name=\"A\"><Var name=\"a\" type=\"long\"/></Table>\n"
        "<Table name=\"B\"><Var name=\"b\" type=\"long\"/></Table>";
    EXPECT_EQ(LoadTable(two, "B"_w), nullptr);
    const Table table = LoadTable(two);
    EXPECT_EQ(GetValue(table, "a"_w), "a #0 0003 ''");
    EXPECT_EQ(GetValue(table, "b"_w), "none");
}

TEST(TableNew, FirstOfTwoNamesCounts) {
    EXPECT_NE(LoadTable("<Table name=\"A\" name=\"B\"/>", "A"_w), nullptr);
    EXPECT_EQ(LoadTable("<Table name=\"A\" name=\"B\"/>", "B"_w), nullptr);
}

TEST(TableNew, OtherTopLevelElementsAreKeptAndNotLookedInto) {
    const Table table =
        LoadTable("<Other><Table name=\"X\"/></Other>\n<!-- c -->\n<Table name=\"A\"/>", "A"_w);
    EXPECT_EQ(SavedText(table),
              Lines({"<Other>", "\t<Table name=\"X\"/>", "</Other>", "<!-- c -->", kTableA}));
}

TEST(TableNew, DocumentWithoutTableGetsOneWithSchema) {
    EXPECT_EQ(SavedText(LoadTable("<Other/>", "N"_w)),
              Lines({"<Other/>", "<Table xmlns:noNamespaceSchemaLocation=\"MXTable.xsd\" name=\"N\"/>"}));
    EXPECT_EQ(SavedText(LoadFile("<table/>")),
              Lines({"<table/>", "<Table xmlns:noNamespaceSchemaLocation=\"MXTable.xsd\" name=\"\"/>"}));
}

TEST(TableNew, EmptyTextIsADocumentWithoutTable) {
    EXPECT_EQ(SavedText(LoadTable(" \n", "N"_w)),
              "<Table xmlns:noNamespaceSchemaLocation=\"MXTable.xsd\" name=\"N\"/>\n");
    EXPECT_EQ(SavedText(LoadFile("")),
              "<Table xmlns:noNamespaceSchemaLocation=\"MXTable.xsd\" name=\"\"/>\n");
}

TEST(TableNew, NameWithSpecialCharactersIsEscaped) {
    EXPECT_EQ(NewTable("a<b>&\"'"_w, 0, 0, 0, 0), "<Table name=\"a&lt;b&gt;&amp;&quot;&apos;\"/>\n");
}

TEST(TableNew, AddedTableWorksLikeAnyOther) {
    const Table table = LoadTable("<Other/>", "N"_w);
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "1");
    ASSERT_TRUE(xmlTableEntryAdd(table, nullptr, &value, nullptr, 0, 0));
    EXPECT_EQ(GetValue(table, "a"_w), "a #0 0003 '1'");
}

TEST(TableDispose, SetsTheSlotToNullAndMayBeRepeated) {
    void* table = xmlTableNew(nullptr, nullptr, 0, nullptr, 0, 0, 0, 0);
    ASSERT_NE(table, nullptr);
    xmlTableDispose(&table);
    EXPECT_EQ(table, nullptr);
    xmlTableDispose(&table);
    EXPECT_EQ(table, nullptr);
}

TEST(TableDispose, OfASectionKeepsTheSectionInItsProfile) {
    const Profile profile = LoadEntries("<Var name=\"a\" type=\"long\"><Value>7</Value></Var>");
    void* section = xmlGetProfileSection(profile, "S"_w, nullptr);
    xmlTableDispose(&section);
    EXPECT_EQ(section, nullptr);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "a"_w, 0), 7);
}

TEST(TableDispose, OfADeletedSectionIsAllowed) {
    const Profile profile = LoadEntries("<Var name=\"a\" type=\"long\"/>");
    void* section = xmlGetProfileSection(profile, "S"_w, nullptr);
    ASSERT_EQ(xmlWriteProfileInt(profile, "S"_w, nullptr, 0), 1U);
    xmlTableDispose(&section);
    EXPECT_EQ(section, nullptr);
}

TEST(TableHandles, ShareNothing) {
    const Table one = LoadTable(kTableA);
    const Table two = LoadTable(kTableA);
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "1");
    ASSERT_TRUE(xmlTableEntryAdd(one, nullptr, &value, nullptr, 0, 0));
    EXPECT_EQ(SavedText(two), "<Table name=\"A\"/>\n");
}

TEST(SectionHandles, WorkOnTheProfilesOwnDocument) {
    const Profile profile = LoadEntries("");
    const Table one(xmlGetProfileSection(profile, "S"_w, nullptr));
    const Table two(xmlWriteProfileSection(profile, "S"_w, 0, 0, 0, nullptr));
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "41");
    ASSERT_TRUE(xmlTableEntryAdd(one, nullptr, &value, nullptr, 0, 0));
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "a"_w, 0), 41);
    ASSERT_EQ(xmlWriteProfileInt(profile, "S"_w, "a"_w, 42), 1U);
    EXPECT_EQ(GetValue(two, "a"_w), "a #0 0003 '42'");
    EXPECT_TRUE(xmlTableRemoveEntries(two));
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "a"_w, 0), 0);
}

TEST(SectionHandles, NeverMakeATableInsideTheSection) {
    const Profile profile = LoadSections("<Table name=\"S\"/>");
    EXPECT_EQ(SavedText(Table(xmlGetProfileSection(profile, "S"_w, nullptr))), "<Table name=\"S\"/>");
    EXPECT_EQ(SaveBytes(profile), SettingsFile({"\t<Table name=\"S\"/>"}));
}

}  // namespace
}  // namespace host
