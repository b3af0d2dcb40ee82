// The "loc" of values: a "Value" without its own takes over the text of the attribute that was read before
// it. It shows in an export of the values.
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
    EXPECT_EQ(ExportedValue("type=\"long\" loc=\"true\"", "<Value loc=\"no\">1</Value>"), "<Value>1</Value>");
}

TEST(ValueLoc, IsCarriedOverFromTheLastAttribute) {
    EXPECT_EQ(ExportedValue("type=\"long\" loc=\"true\"", "<Value>1</Value>"),
              "<Value loc=\"true\">1</Value>");
    EXPECT_EQ(ExportedValue("type=\"long\" eud=\"true\"", "<Value>1</Value>"),
              "<Value loc=\"true\">1</Value>");
    EXPECT_EQ(ExportedValue("type=\"long\" other=\"true\"", "<Value>1</Value>"),
              "<Value loc=\"true\">1</Value>");
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
    EXPECT_EQ(ExportedValue("type=\"long\" loc=\"true\"", "<Value loc=\"no\">1</Value><Value>2</Value>"),
              "<Value>2</Value>");
}

TEST(ValueLoc, EmptyOneOfTheValueItselfTakesNothingOver) {
    EXPECT_EQ(ExportedValue("type=\"long\" loc=\"true\"", "<Value loc=\"\">1</Value>"), "<Value>1</Value>");
}

TEST(ValueLoc, OfTheUiDoesNotReachTheEntrysValue) {
    EXPECT_EQ(
        ExportedValue("type=\"long\"", "<UI loc=\"true\"><Value loc=\"true\">2</Value></UI><Value>1</Value>"),
        "<Value>1</Value>");
}

TEST(ValueLoc, KeyWriteEmptiesIt) {
    const Profile profile = LoadEntries("<Var name=\"k\" type=\"long\"><Value loc=\"true\">1</Value></Var>");
    ASSERT_EQ(xmlWriteProfileInt(profile, "S"_w, "k"_w, 2), 1U);
    EXPECT_EQ(SaveBytes(profile), SectionFile({"\t\t<Var name=\"k\" type=\"long\">",
                                               "\t\t\t<Value loc=\"\">2</Value>", "\t\t</Var>"}));
}

}  // namespace
}  // namespace host
