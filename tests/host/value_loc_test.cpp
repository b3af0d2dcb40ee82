// The "loc" of values: a "Value" without its own takes over the text of the attribute that was read before it. An
// export of the values shows it.
#include "tests/host/table_support.h"

namespace host {
namespace {

// The "Value" line of the export of one entry with these attributes and children.
std::string ExportedValue(std::string_view attributes, std::string_view children) {
    const std::string bytes = SaveBytes(
        LoadEntries(
            std::string("<Var name=\"k\" ").append(attributes).append(">").append(children).append("</Var>")),
        2);
    const std::size_t start = bytes.find("<Value");
    return bytes.substr(start, bytes.find('\n', start) - start);
}

TEST(ValueLoc, OfItsOwnCounts) {
    EXPECT_EQ(ExportedValue("type=\"long\"", "<Value loc=\"true\">1</Value>"),
              "<Value loc=\"true\">1</Value>");
    EXPECT_EQ(ExportedValue("type=\"long\"", "<Value loc=\"True\">1</Value>"), "<Value>1</Value>");
    EXPECT_EQ(ExportedValue("type=\"long\"", "<Value loc=\"TRUE\">1</Value>"), "<Value>1</Value>");
    for (const std::string_view loc : {"no", "false", ""}) {
        const std::string value = std::string("<Value loc=\"").append(loc).append("\">1</Value>");
        EXPECT_EQ(ExportedValue("type=\"long\" loc=\"true\"", value), "<Value>1</Value>") << loc;
    }
}

TEST(ValueLoc, IsCarriedOverFromTheLastAttribute) {
    for (const std::string_view last : {"loc", "eud", "other", "array"}) {
        const std::string attributes = std::string("type=\"long\" ").append(last).append("=\"true\"");
        EXPECT_EQ(ExportedValue(attributes, "<Value>1</Value>"), "<Value loc=\"true\">1</Value>") << last;
    }
    const Profile profile = LoadEntries("<Var type=\"long\" name=\"true\"><Value>1</Value></Var>");
    EXPECT_EQ(SaveBytes(profile, 2), SectionFile({"\t\t<Var name=\"true\" type=\"long\" array=\"\">",
                                                  "\t\t\t<Value loc=\"true\">1</Value>", "\t\t</Var>"}));
}

TEST(ValueLoc, IsNotCarriedOverFromAnEarlierAttribute) {
    EXPECT_EQ(ExportedValue("loc=\"true\" type=\"long\"", "<Value>1</Value>"), "<Value>1</Value>");
}

TEST(ValueLoc, EmptyTextOfTheLastAttributeCarriesNothing) {
    EXPECT_EQ(ExportedValue("type=\"long\" loc=\"true\" array=\"\"", "<Value>1</Value>"), "<Value>1</Value>");
    EXPECT_EQ(ExportedValue("locval=\"true\" type=\"long\" array=\"\"", "<Value>1</Value>"),
              "<Value loc=\"true\">1</Value>");
}

TEST(ValueLoc, IsCarriedOverFromThePreviousValue) {
    EXPECT_EQ(ExportedValue("type=\"long\"", "<Value loc=\"true\">1</Value><Value>2</Value>"),
              "<Value loc=\"true\">2</Value>");
    EXPECT_EQ(ExportedValue("type=\"long\"", "<Value loc=\"no\">1</Value><Value>2</Value>"),
              "<Value>2</Value>");
    EXPECT_EQ(ExportedValue("type=\"long\" loc=\"true\"", "<Value loc=\"no\">1</Value><Value>2</Value>"),
              "<Value>2</Value>");
    EXPECT_EQ(ExportedValue("type=\"long\"", "<Value loc=\"true\">1</Value><Value loc=\"\">2</Value>"),
              "<Value loc=\"true\">2</Value>");
}

TEST(ValueLoc, OfTheUiPlaysNoPart) {
    EXPECT_EQ(
        ExportedValue("type=\"long\"", "<UI loc=\"true\"><Value loc=\"true\">2</Value></UI><Value>1</Value>"),
        "<Value>1</Value>");
    EXPECT_EQ(ExportedValue("type=\"long\" loc=\"true\"",
                            "<UI loc=\"no\"><Value loc=\"no\"/></UI><Value>1</Value>"),
              "<Value loc=\"true\">1</Value>");
}

}  // namespace
}  // namespace host
