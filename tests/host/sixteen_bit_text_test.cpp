// Units that are no characters by themselves: kept by wide files wherever text may stand, cut by narrow ones, refused
// in the names of elements and attributes.
#include "tests/host/table_support.h"

namespace host {
namespace {

// Every unit but zero, in one row.
WideText AllUnits() {
    WideText units;
    for (unsigned unit = 1; unit <= 0xFFFF; ++unit)
        units += static_cast<wchar16>(unit);
    return units;
}

WideText Without(WideText units, const WideText& these) {
    std::erase_if(units, [&](wchar16 unit) { return these.find(unit) != WideText::npos; });
    return units;
}

// Bytes of a wide file, without a closing zero unit.
std::string Bytes(const WideText& units) {
    std::string bytes;
    for (const wchar16 unit : units)
        bytes.append(1, static_cast<char>(unit & 0xFF)).append(1, static_cast<char>(unit >> 8));
    return bytes;
}

WideText Ascii(std::string_view text) {
    return {text.begin(), text.end()};
}

// ---- The forms, one by one

struct Form {
    const char* name;
    WideText units;
};

void PrintTo(const Form& form, std::ostream* out) {
    *out << form.name;
}

const Form kForms[] = {
    {"LoneLead", {0xD83D}},
    {"LoneTrail", {0xDE00}},
    {"LeadAtTheEnd", {'a', 0xDBFF}},
    {"TrailAtTheBeginning", {0xDC00, 'a'}},
    {"TwoLeads", {0xD800, 0xD800}},
    {"Reversed", {0xDE00, 0xD83D}},
    {"PartedByALetter", {0xD83D, 'x', 0xDE00}},
    {"Pair", {0xD83D, 0xDE00}},
    {"LastPair", {0xDBFF, 0xDFFF}},
    {"ByteOrderMark", {0xFEFF}},
    {"SwappedByteOrderMark", {0xFFFE}},
    {"LastUnit", {0xFFFF}},
    {"FirstUnit", {0x0001}},
    {"HighByteAlone", {0x0100, 0xFF00}},
    {"BeyondAscii", {0x0080, 0x00FF, 0xFF80, 0xFFFF}},
};

class UnitForms : public testing::TestWithParam<Form> {
  protected:
    const WideText& Units() const { return GetParam().units; }
    const wchar16* Text() const { return GetParam().units.c_str(); }
};

std::string NameOfForm(const testing::TestParamInfo<Form>& form) {
    return form.param.name;
}

INSTANTIATE_TEST_SUITE_P(, UnitForms, testing::ValuesIn(kForms), NameOfForm);

TEST_P(UnitForms, ComeBackAsValueKeyAndSectionFromAWideFile) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, Text(), Text(), Text()), 1U);
    EXPECT_EQ(ReadText(profile, Text(), Text()), Units());
    const std::string bytes = SaveBytes(profile, 0, 1);
    EXPECT_NE(bytes.find(Bytes(Ascii("<Value>") + Units() + Ascii("</Value>"))), std::string::npos);
    const Profile again = LoadBytes(bytes, 1);
    EXPECT_EQ(ReadText(again, Text(), Text()), Units());
    EXPECT_EQ(SaveBytes(again, 0, 1), bytes);
    EXPECT_EQ(SaveBytes(again, 2, 1), bytes);
}

TEST_P(UnitForms, ComeBackAsEntryNameCommentAndShownName) {
    const Table table(xmlTableNew(nullptr, nullptr, 0, Text(), 0, 0, 0, 1));
    TableEntryValueInfoStruct value = ValueRecord(Text(), 8, "v");
    TableEntryUInfoStruct ui = UiRecord(Text(), 1);
    ui.SetComment_w(Text());
    ui.SetUserName_w(Text());
    ASSERT_TRUE(xmlTableEntryAdd(table, nullptr, &value, nullptr, 0, 0));
    ASSERT_TRUE(xmlTableEntryAdd(table, nullptr, &value, &ui, 0, 1));
    const ScratchFile file;
    ASSERT_TRUE(xmlTableSave(table, file.Name(), 0, 0));
    const Table again(xmlTableNew(file.Name(), nullptr, 0, Text(), 0, 0, 0, 0));
    ASSERT_NE(static_cast<void*>(again), nullptr);
    TableEntryValueInfoStruct key = ValueRecord(Text());
    TableEntryUInfoStruct read;
    ASSERT_TRUE(xmlTableEntryGet(again, nullptr, &key, &read));
    EXPECT_EQ(WideText(read.name), Units());
    EXPECT_EQ(WideText(read.GetComment_w()), Units());
    EXPECT_EQ(WideText(read.GetUserName_w()), Units());
}

TEST_P(UnitForms, AreNotMistakenForOneAnother) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    for (const Form& form : kForms)
        ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, form.units.c_str(), Ascii(form.name).c_str()), 1U);
    EXPECT_EQ(ReadText(profile, "S"_w, Text()), Ascii(GetParam().name));
    EXPECT_EQ(xmlWriteProfileString(profile, "S"_w, Text(), nullptr), 1U);
    EXPECT_EQ(ReadText(profile, "S"_w, Text()), WideText());
}

// A narrow file has the low byte of each unit, and a byte from 0x80 on is read with its sign.
WideText ThroughBytes(const WideText& units) {
    WideText read;
    for (const wchar16 unit : units) {
        const unsigned low = unit & 0xFFU;
        read += static_cast<wchar16>(low < 0x80 ? low : 0xFF00U | low);
    }
    return read;
}

TEST_P(UnitForms, AreCutByANarrowFile) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    const WideText value = Ascii("v") + Units() + Ascii("w");
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, value.c_str()), 1U);
    const std::string bytes = SaveBytes(profile);
    const Profile again = LoadBytes(bytes, 0);
    const Profile image = LoadText(bytes);
    const WideText read = ThroughBytes(value);
    if (read.find(wchar16{0}) != WideText::npos) {
        EXPECT_EQ(again, nullptr);  // the file ends at a unit without a low byte
        EXPECT_EQ(image, nullptr);
    } else {
        EXPECT_EQ(ReadText(again, "S"_w, "k"_w), read);
        EXPECT_EQ(ReadText(image, "S"_w, "k"_w), read);
        EXPECT_EQ(SaveBytes(again), bytes);
        EXPECT_EQ(SaveBytes(image), bytes);
    }
}

// ---- All units in one text

TEST(AllUnits, ComeBackAsAValueFromAWideFile) {
    // White space at the beginning and line feeds anywhere are what the format does not keep.
    const WideText value = Ascii("v") + Without(AllUnits(), "\n"_w);
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, value.c_str()), 1U);
    const std::string bytes = SaveBytes(profile, 0, 1);
    EXPECT_TRUE(ReadText(LoadBytes(bytes, 1), "S"_w, "k"_w) == value);
    EXPECT_TRUE(SaveBytes(LoadBytes(bytes, 1), 0, 1) == bytes);
}

TEST(AllUnits, ComeBackAsAnAttributeFromAWideFile) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileInt(profile, "S"_w, AllUnits().c_str(), 7), 1U);
    const std::string bytes = SaveBytes(profile, 0, 1);
    EXPECT_EQ(xmlGetProfileInt(LoadBytes(bytes, 1), "S"_w, AllUnits().c_str(), -1), 7);
    EXPECT_TRUE(SaveBytes(LoadBytes(bytes, 1), 0, 1) == bytes);
}

TEST(AllUnits, ComeBackInACommentFromAWideFile) {
    const WideText comment = Ascii("<!--") + Without(AllUnits(), ">-"_w) + Ascii("-->\n");
    const std::string bytes = SaveBytes(LoadBytes(Bytes(comment), 1), 0, 1);
    EXPECT_TRUE(bytes.starts_with(Bytes(comment)));
}

// "v" and every unit, but for line feeds and for those beyond one byte whose low byte is one of these.
WideText UnitsWithoutLowBytes(std::string_view lows) {
    WideText units = AllUnits();
    std::erase_if(units, [&](wchar16 unit) {
        const char low = static_cast<char>(unit & 0xFF);
        return unit == '\n' || (unit > 0xFF && lows.find(low) != std::string_view::npos);
    });
    return Ascii("v") + units;
}

TEST(AllUnits, AreCutToTheirLowBytesByANarrowFile) {
    const WideText value = UnitsWithoutLowBytes({"\0<&", 3});
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, value.c_str()), 1U);
    const Profile again = LoadBytes(SaveBytes(profile), 0);
    EXPECT_TRUE(ReadText(again, "S"_w, "k"_w) == ThroughBytes(value));
}

// Once cut, a text stays as it is, unless a low byte is one that the writer spells out or breaks the line at.
TEST(AllUnits, AreCutByANarrowFileOnce) {
    const WideText value = UnitsWithoutLowBytes({"\0<&>\"'\n", 7});
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, value.c_str()), 1U);
    const std::string bytes = SaveBytes(profile);
    EXPECT_TRUE(SaveBytes(LoadBytes(bytes, 0)) == bytes);
}

TEST(AllUnits, WhoseLowByteIsSpelledOutAreSpelledOutByTheSecondSave) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, u"v\u013E\u0122\u0127"_w), 1U);
    const std::string bytes = SaveBytes(profile);
    EXPECT_NE(bytes.find("<Value>v>\"'</Value>"), std::string::npos);
    EXPECT_NE(SaveBytes(LoadBytes(bytes, 0)).find("<Value>v&gt;&quot;&apos;</Value>"), std::string::npos);
}

TEST(AllUnits, WhoseLowByteIsALineFeedBreakTheLineByTheSecondSave) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, u"v\u010Aw"_w), 1U);
    const std::string bytes = SaveBytes(profile);
    EXPECT_NE(bytes.find("<Value>v\nw</Value>"), std::string::npos);
    EXPECT_NE(SaveBytes(LoadBytes(bytes, 0)).find("<Value>\n\t\t\t\tv\nw\n\t\t\t</Value>"),
              std::string::npos);
}

// U+xx00, U+xx3C and U+xx26: the low byte ends the file, or is markup where none was meant.
TEST(AllUnits, WhoseLowByteIsMarkupBreakANarrowFile) {
    for (const unsigned low : {0x00U, 0x3CU, 0x26U}) {
        for (unsigned high = 1; high <= 0xFF; ++high) {
            const wchar16 value[] = {'v', static_cast<wchar16>(high << 8 | low), 'w', 0};
            const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
            ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, "k"_w, value), 1U);
            EXPECT_EQ(LoadBytes(SaveBytes(profile), 0), nullptr) << Hex(value[1]);
        }
    }
}

// ---- Surrogates that markup parts

TEST(PartedPair, IsJoinedByALineFeed) {
    const WideText text = Ascii("<Var name=\"k\" type=\"string\"><Value>") + WideText(1, 0xD83D) +
                          Ascii("<b/>") + WideText(1, 0xDE00) + Ascii("</Value></Var>");
    const WideText document =
        Ascii(kRootStart) + Ascii("<Table name=\"S\">") + text + Ascii("</Table></Settings>");
    EXPECT_EQ(ReadText(LoadBytes(Bytes(document), 1), "S"_w, "k"_w), (WideText{0xD83D, '\n', 0xDE00}));
}

TEST(PartedPair, StaysTwoUnitsBesideAnEntity) {
    const WideText text = Ascii("<Var name=\"k\" type=\"string\"><Value>") + WideText(1, 0xD83D) +
                          Ascii("&lt;") + WideText(1, 0xDE00) + Ascii("</Value></Var>");
    const WideText document =
        Ascii(kRootStart) + Ascii("<Table name=\"S\">") + text + Ascii("</Table></Settings>");
    EXPECT_EQ(ReadText(LoadBytes(Bytes(document), 1), "S"_w, "k"_w), (WideText{0xD83D, '<', 0xDE00}));
}

// ---- Where such units may not stand

TEST(NamesOfElementsAndAttributes, HoldNoSurrogatesMarksOrNonCharacters) {
    for (const wchar16 unit :
         WideText{0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xFEFF, 0xFFFE, 0xFFFF, 0x0001, 0x0080}) {
        const WideText bad(1, unit);
        EXPECT_EQ(LoadBytes(Bytes(Ascii("<") + bad + Ascii("/>")), 1), nullptr) << Hex(unit);
        EXPECT_EQ(LoadBytes(Bytes(Ascii("<a") + bad + Ascii("/>")), 1), nullptr) << Hex(unit);
        EXPECT_EQ(LoadBytes(Bytes(Ascii("<a ") + bad + Ascii("=\"\"/>")), 1), nullptr) << Hex(unit);
        EXPECT_EQ(LoadBytes(Bytes(Ascii("<a b") + bad + Ascii("=\"\"/>")), 1), nullptr) << Hex(unit);
    }
    // A pair is one letter to people, and two units of none here.
    EXPECT_EQ(LoadBytes(Bytes(Ascii("<") + WideText{0xD801, 0xDC00} + Ascii("/>")), 1), nullptr);
}

TEST(BetweenTopLevelNodes, OneUnitOfAnyKindIsPassedOverAndNoMore) {
    for (const wchar16 unit : WideText{0xD83D, 0xDE00, 0xFEFF, 0xFFFF, 0x0001, 0x00E9}) {
        const WideText one(1, unit);
        EXPECT_NE(LoadBytes(Bytes(Ascii("<a/>") + one + Ascii("<b/>")), 1), nullptr) << Hex(unit);
        EXPECT_NE(LoadBytes(Bytes(Ascii("<a/>") + one), 1), nullptr) << Hex(unit);
        EXPECT_EQ(LoadBytes(Bytes(Ascii("<a/>") + one + one + Ascii("<b/>")), 1), nullptr) << Hex(unit);
        EXPECT_EQ(LoadBytes(Bytes(one + Ascii("<a/>")), 1), nullptr) << Hex(unit);
    }
}

TEST(ByteOrderMark, InsideATextIsNoWhiteSpace) {
    const WideText text = Ascii("<Table name=\"T\"><Var name=\"k\" type=\"string\"><Value> ") +
                          WideText{0xFEFF, ' '} + Ascii("v</Value></Var></Table>");
    const ScratchFile file;
    WriteBytes(file.Path(), Bytes(text));
    const Table table(xmlTableNew(file.Name(), nullptr, 0, nullptr, 0, 0, 0, 0));
    TableEntryValueInfoStruct record = ValueRecord("k"_w);
    ASSERT_TRUE(xmlTableEntryGet(table, nullptr, &record, nullptr));
    EXPECT_EQ(WideText(record.GetVal_w()), (WideText{0xFEFF, ' ', 'v'}));
}

}  // namespace
}  // namespace host
