// Bytes from 0x80 on in narrow files and images, and what ends a file: a zero unit or byte, and nothing that only
// looks like one.
#include "tests/host/memory_limit_support.h"
#include "tests/host/table_support.h"

namespace host {
namespace {

WideText Ascii(std::string_view text) {
    return {text.begin(), text.end()};
}

// Bytes of a wide file, without a closing zero unit.
std::string Bytes(const WideText& units) {
    std::string bytes;
    for (const wchar16 unit : units)
        bytes.append(1, static_cast<char>(unit & 0xFF)).append(1, static_cast<char>(unit >> 8));
    return bytes;
}

// ---- Bytes from 0x80 on

std::string HighBytes() {
    std::string bytes;
    for (int byte = 0x80; byte <= 0xFF; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

TEST(HighBytes, AreFoundUnderTheUnitsThatTheyBecome) {
    const Profile profile = LoadEntries("<Var name=\"\xE9\" type=\"long\"><Value>7</Value></Var>");
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, u"\uFFE9"_w, -1), 7);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, u"\u00E9"_w, -1), -1);
}

TEST(HighBytes, ComeBackFromANarrowFileAsAttributeAndComment) {
    const std::string entry = "\t\t<Var name=\"" + HighBytes() + "\"/>";
    const std::string comment = "\t\t<!--" + HighBytes() + "-->";
    EXPECT_EQ(SaveBytes(LoadEntries(comment + entry)), SectionFile({comment, entry}));
    EXPECT_EQ(SaveBytes(LoadBytes(SectionFile({comment, entry}), 0)), SectionFile({comment, entry}));
}

TEST(HighBytes, BecomeTheirUnitsInAWideFile) {
    const Profile profile = LoadEntries("<Var name=\"k\" type=\"string\"><Value>\x80\xFF</Value></Var>");
    const WideText expected = Ascii("<Value>") + WideText{0xFF80, 0xFFFF} + Ascii("</Value>");
    EXPECT_NE(SaveBytes(profile, 0, 1).find(Bytes(expected)), std::string::npos);
}

TEST(HighBytes, ComeBackAsAValueFromFileAndImage) {
    const std::string entry =
        "\t\t<Var name=\"k\" type=\"string\">\n\t\t\t<Value>" + HighBytes() + "</Value>\n\t\t</Var>";
    WideText expected;
    for (unsigned unit = 0xFF80; unit <= 0xFFFF; ++unit)
        expected += static_cast<wchar16>(unit);
    const std::string file = SectionFile({entry});
    EXPECT_EQ(ReadText(LoadBytes(file, 0), "S"_w, "k"_w), expected);
    EXPECT_EQ(ReadText(LoadText(file), "S"_w, "k"_w), expected);
    EXPECT_EQ(SaveBytes(LoadBytes(file, 0)), file);
    EXPECT_EQ(SaveBytes(LoadText(file)), file);
}

TEST(HighBytes, AreOneUnitEachInATableImageToo) {
    const Table table =
        LoadTable(TableElement("<Var name=\"k\" type=\"ucstring\"><Value>\xC3\xA4</Value></Var>"));
    EXPECT_EQ(GetValue(table, "k"_w), "k #0 001F '\\uFFC3\\uFFA4'");
    const ScratchFile file;
    ASSERT_TRUE(xmlTableSave(table, file.Name(), 0, 0));
    EXPECT_NE(file.Bytes().find(Bytes(Ascii("<Value>") + WideText{0xFFC3, 0xFFA4} + Ascii("</Value>"))),
              std::string::npos);
}

TEST(HighBytes, AreNoWhiteSpaceAndNoMarkAtTheBeginning) {
    for (const std::string_view bytes : {"\xEF\xBB\xBF<a/>", "\xFF\xFE<a/>", "\xA0<a/>", "\x85<a/>"}) {
        EXPECT_EQ(LoadBytes(bytes, 0), nullptr);
        EXPECT_EQ(LoadText(bytes), nullptr);
    }
}

// ---- The end of a file

constexpr std::string_view kEntryStart = "<Var name=\"k\" type=\"string\"><Value>";
constexpr std::string_view kEntryEnd = "</Value></Var>";

std::string DocumentWithValue(std::string_view value) {
    return SettingsFile(
        {"<Table name=\"S\">", std::string(kEntryStart).append(value).append(kEntryEnd), "</Table>"});
}

TEST(ZeroByte, EndsANarrowFileAndAnImage) {
    const std::string document = DocumentWithValue("v");
    for (const std::string_view rest : {"<", "<a/>", "\xFF\xFF", ""}) {
        const std::string bytes = document + std::string(rest);
        EXPECT_EQ(ReadText(LoadBytes(bytes, 0), "S"_w, "k"_w), Ascii("v"));
        EXPECT_EQ(SaveBytes(LoadBytes(bytes, 0)), SaveBytes(LoadBytes(document, 0)));
        EXPECT_EQ(ReadText(LoadText(bytes), "S"_w, "k"_w), Ascii("v"));
    }
}

TEST(ZeroByte, InsideAValueCutsTheDocument) {
    const std::string document = DocumentWithValue(std::string_view("v\0w", 3));
    EXPECT_EQ(LoadBytes(document, 0), nullptr);
    EXPECT_EQ(LoadText(document), nullptr);
}

TEST(ZeroUnit, EndsAWideFile) {
    const std::string document = WideFile(DocumentWithValue("v"));
    for (const std::string_view rest :
         {std::string_view("<\0", 2), std::string_view("\0<", 2), std::string_view("x")}) {
        const std::string bytes = document + std::string(rest);
        EXPECT_EQ(ReadText(LoadBytes(bytes, 1), "S"_w, "k"_w), Ascii("v"));
    }
    EXPECT_EQ(LoadBytes(WideFile(DocumentWithValue(std::string_view("v\0w", 3))), 1), nullptr);
}

TEST(ZeroUnit, IsNotSeenInZeroBytesOfTwoUnits) {
    // 41 00 00 41: four bytes of two units, whose two zeros are no unit of their own.
    const WideText value = {0x0041, 0x4100, 0x0100, 0x0001, 0xFF00, 0x00FF};
    const WideText document = Ascii(kRootStart) + Ascii("<Table name=\"S\">") + Ascii(kEntryStart) + value +
                              Ascii(kEntryEnd) + Ascii("</Table>") + Ascii(kRootEnd);
    const Profile profile = LoadBytes(Bytes(document), 1);
    EXPECT_EQ(ReadText(profile, "S"_w, "k"_w), value);
    EXPECT_EQ(ReadText(LoadBytes(SaveBytes(profile, 0, 1), 1), "S"_w, "k"_w), value);
}

TEST(ZeroUnit, OfANameIsWhereItsTextEnds) {
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    const wchar16 key[] = {'k', 0, 'x', 0};
    ASSERT_EQ(xmlWriteProfileString(profile, "S"_w, key, "v"_w), 1U);
    EXPECT_EQ(ReadText(profile, "S"_w, "k"_w), Ascii("v"));
}

#if !defined(_WIN32)
// The file is 3 GiB large, none of which is on the disk but its text. On other systems making it larger writes zeros.
TEST(ZeroUnit, LeavesTheRestOfAHugeFileWithoutMemory) {
    if (!MemoryLimit::Available()) GTEST_SKIP() << "AddressSanitizer needs the address space";
    for (const std::int32_t wide : {0, 1}) {
        const std::string document = DocumentWithValue("v");
        const ScratchFile file;
        WriteBytes(file.Path(), wide == 1 ? WideFile(document) : document);
        std::filesystem::resize_file(file.Path(), std::uintmax_t{3} << 30);
        const MemoryLimit limit;
        const Profile profile(xmlProfileNew(file.Name(), nullptr, 0, wide));
        EXPECT_EQ(ReadText(profile, "S"_w, "k"_w), Ascii("v")) << wide;
    }
}
#endif

}  // namespace
}  // namespace host
