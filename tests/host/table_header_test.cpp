// What a table says of itself, as it is read: seen in the sections of an export, which are made anew from it.
#include "tests/host/table_support.h"

namespace host {
namespace {

// The start tag that an export gives a section with these attributes.
std::string Exported(std::string_view attributes) {
    const std::string section = std::string("<Table ").append(attributes).append("/>");
    const std::string bytes = SaveBytes(LoadSections(section), 2);
    const std::size_t start = bytes.find("<Table");
    return bytes.substr(start, bytes.find('\n', start) - start);
}

TEST(TableHeader, TypeIsReadAsHexadecimal) {
    EXPECT_EQ(Exported("name=\"S\" type=\"00ff\""), "<Table name=\"S\" type=\"00FF\"/>");
    EXPECT_EQ(Exported("name=\"S\" type=\"0x1f\""), "<Table name=\"S\" type=\"001F\"/>");
    EXPECT_EQ(Exported("name=\"S\" type=\"1g\""), "<Table name=\"S\" type=\"0001\"/>");
    EXPECT_EQ(Exported("name=\"S\" type=\"g\""), "<Table name=\"S\"/>");
    EXPECT_EQ(Exported("name=\"S\" type=\"xyz\""), "<Table name=\"S\"/>");
}

TEST(TableHeader, TypeKeepsItsLow16Bits) {
    EXPECT_EQ(Exported("name=\"S\" type=\"1FFFF\""), "<Table name=\"S\" type=\"FFFF\"/>");
    EXPECT_EQ(Exported("name=\"S\" type=\"1fabC\""), "<Table name=\"S\" type=\"FABC\"/>");
    EXPECT_EQ(Exported("name=\"S\" type=\"10000\""), "<Table name=\"S\"/>");
}

TEST(TableHeader, FirstIdIsReadSignedAndWrittenUnsigned) {
    EXPECT_EQ(Exported("name=\"S\" first_id=\"7\""), "<Table name=\"S\" first_id=\"7\"/>");
    EXPECT_EQ(Exported("name=\"S\" first_id=\"12abc\""), "<Table name=\"S\" first_id=\"12\"/>");
    EXPECT_EQ(Exported("name=\"S\" first_id=\" +12\""), "<Table name=\"S\" first_id=\"12\"/>");
    EXPECT_EQ(Exported("name=\"S\" first_id=\"-1\""), "<Table name=\"S\" first_id=\"4294967295\"/>");
    EXPECT_EQ(Exported("name=\"S\" first_id=\"4294967295\""), "<Table name=\"S\" first_id=\"2147483647\"/>");
    EXPECT_EQ(Exported("name=\"S\" first_id=\"-9999999999\""), "<Table name=\"S\" first_id=\"2147483648\"/>");
    EXPECT_EQ(Exported("name=\"S\" first_id=\"x\""), "<Table name=\"S\"/>");
    EXPECT_EQ(Exported("name=\"S\" first_id=\"0x10\""), "<Table name=\"S\"/>");
}

TEST(TableHeader, EditableIsTrueAlone) {
    EXPECT_EQ(Exported("name=\"S\" editable=\"true\""), "<Table name=\"S\" editable=\"true\"/>");
    for (const std::string_view text : {"false", "True", "1", "", "true "}) {
        EXPECT_EQ(Exported(std::string("name=\"S\" editable=\"").append(text).append("\"")),
                  "<Table name=\"S\"/>");
    }
}

TEST(TableHeader, FirstOfEachAttributeCounts) {
    EXPECT_EQ(Exported("name=\"A\" first_id=\"1\" type=\"2\" editable=\"true\" "
                       "editable=\"no\" type=\"3\" first_id=\"4\" name=\"B\""),
              "<Table name=\"A\" first_id=\"1\" type=\"0002\" editable=\"true\"/>");
    EXPECT_EQ(Exported("name=\"a\" editable=\"no\" editable=\"true\""), "<Table name=\"a\"/>");
}

TEST(TableHeader, MissingAttributesAreZeroFalseAndEmpty) {
    EXPECT_EQ(Exported("x=\"1\""), "<Table name=\"\"/>");
}

TEST(TableHeader, OrderInTheFilePlaysNoPart) {
    EXPECT_EQ(Exported("editable=\"true\" type=\"a\" first_id=\"5\" name=\"S\""),
              "<Table name=\"S\" first_id=\"5\" type=\"000A\" editable=\"true\"/>");
}

}  // namespace
}  // namespace host
