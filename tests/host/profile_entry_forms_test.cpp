// The XML form of entries, seen through exports: how values, types and presentation data are read and
// written.
#include "tests/host/host_support.h"

namespace host {
namespace {

// The lines between the tags of section "S" in an export of these entries.
std::string Exported(std::string_view entries, std::uint32_t mode) {
    const std::string bytes = SaveBytes(LoadEntries(entries), mode);
    const std::string before = Lines({kDeclaration, kRootStart, "\t<Table name=\"S\">"});
    const std::string after = NarrowFile(Lines({"\t</Table>", kRootEnd}));
    EXPECT_TRUE(bytes.starts_with(before)) << bytes;
    EXPECT_TRUE(bytes.ends_with(after)) << bytes;
    return bytes.substr(before.size(), bytes.size() - before.size() - after.size());
}

// The export of one entry's value: a "Var" with these attributes and a "Value" with these attributes and
// text.
std::string ValueEntry(std::string_view attributes, std::string_view value) {
    return Lines({std::string("\t\t<Var ").append(attributes).append(">"),
                  std::string("\t\t\t").append(value), "\t\t</Var>"});
}

// The attributes of the exported "Var" of an entry with these attributes.
std::string Attributes(std::string_view attributes) {
    const std::string lines = Exported(std::string("<Var ").append(attributes).append("/>"), 2);
    return lines.substr(7, lines.find('>') - 7);
}

// The exported "UI" of an entry whose "UI" has these attributes and nothing else.
std::string Ui(std::string_view attributes) {
    const std::string lines =
        Exported(std::string("<Var type=\"long\"><UI ").append(attributes).append("/></Var>"), 1);
    const std::size_t start = lines.find("<UI");
    return lines.substr(start, lines.find('\n', start) - start);
}

bool Readable(std::string_view attributes) {
    const Profile profile =
        LoadEntries(std::string("<Var name=\"k\" ").append(attributes).append("><Value>1</Value></Var>"));
    return xmlGetProfileInt(profile, "S"_w, "k"_w, -1) == 1;
}

TEST(EntryTypes, EveryTypeNameIsKnown) {
    for (const std::string_view type :
         {"string", "ucstring", "char", "byte", "short", "ushort", "bool", "double", "long", "ulong"}) {
        const std::string attributes = std::string("type=\"").append(type).append("\"");
        EXPECT_EQ(Attributes(attributes), "name=\"\" " + attributes + " array=\"\"");
    }
}

TEST(EntryTypes, QualifiersComeBack) {
    EXPECT_EQ(Attributes("type=\"long\" array=\"vector\""), "name=\"\" type=\"long\" array=\"vector\"");
    EXPECT_EQ(Attributes("type=\"long\" array=\"array\""), "name=\"\" type=\"long\" array=\"array\"");
    EXPECT_EQ(Attributes("array=\"array\" type=\"byte\""), "name=\"\" type=\"byte\" array=\"array\"");
    EXPECT_EQ(Attributes("type=\"long\" array=\"\""), "name=\"\" type=\"long\" array=\"\"");
}

TEST(EntryTypes, UnknownQualifierKeepsThePlainType) {
    EXPECT_EQ(Attributes("type=\"long\" array=\"list\""), "name=\"\" type=\"long\" array=\"\"");
    EXPECT_EQ(Attributes("type=\"long\" array=\"Vector\""), "name=\"\" type=\"long\" array=\"\"");
}

TEST(EntryTypes, FirstOfTwoQualifiersCounts) {
    EXPECT_EQ(Attributes("array=\"vector\" type=\"long\" array=\"array\""),
              "name=\"\" type=\"long\" array=\"vector\"");
}

TEST(EntryTypes, UnknownOrMissingTypeCannotBeRead) {
    EXPECT_TRUE(Readable("type=\"long\""));
    for (const std::string_view attributes :
         {"", "type=\"\"", "type=\"float\"", "type=\"Long\"", "type=\"long \"", "type=\"3\"", "Type=\"long\"",
          "type=\"float\" array=\"array\""}) {
        EXPECT_FALSE(Readable(attributes)) << attributes;
    }
}

TEST(EntryTypes, LastKnownOfSeveralTypesCounts) {
    EXPECT_EQ(Attributes("type=\"float\" type=\"long\""), "name=\"\" type=\"long\" array=\"\"");
    EXPECT_EQ(Attributes("type=\"long\" type=\"float\""), "name=\"\" type=\"long\" array=\"\"");
    EXPECT_EQ(Attributes("type=\"long\" type=\"bool\""), "name=\"\" type=\"bool\" array=\"\"");
}

TEST(EntryValues, IdIsReadUnsignedAndWrittenSigned) {
    EXPECT_EQ(Attributes("type=\"long\" id=\"7\""), "name=\"\" id=\"7\" type=\"long\" array=\"\"");
    EXPECT_EQ(Attributes("type=\"long\" id=\"12abc\""), "name=\"\" id=\"12\" type=\"long\" array=\"\"");
    EXPECT_EQ(Attributes("type=\"long\" id=\"4294967295\""), "name=\"\" id=\"-1\" type=\"long\" array=\"\"");
    EXPECT_EQ(Attributes("type=\"long\" id=\"99999999999\""), "name=\"\" id=\"-1\" type=\"long\" array=\"\"");
    EXPECT_EQ(Attributes("type=\"long\" id=\"2147483648\""),
              "name=\"\" id=\"-2147483648\" type=\"long\" array=\"\"");
    EXPECT_EQ(Attributes("type=\"long\" id=\"-2147483648\""),
              "name=\"\" id=\"-2147483648\" type=\"long\" array=\"\"");
    EXPECT_EQ(Attributes("type=\"long\" id=\"-1\""), "name=\"\" id=\"-1\" type=\"long\" array=\"\"");
}

TEST(EntryValues, IdOfZeroIsLeftOut) {
    for (const std::string_view id : {"0", "", "x", "0x10"}) {
        EXPECT_EQ(Attributes(std::string("type=\"long\" id=\"").append(id).append("\"")),
                  "name=\"\" type=\"long\" array=\"\"");
    }
}

TEST(EntryValues, LocIsSetByTrueAlone) {
    EXPECT_EQ(Attributes("loc=\"true\" type=\"long\""), "name=\"\" type=\"long\" array=\"\" loc=\"true\"");
    EXPECT_EQ(Attributes("loc=\"True\" type=\"long\""), "name=\"\" type=\"long\" array=\"\"");
    EXPECT_EQ(Attributes("loc=\"1\" type=\"long\""), "name=\"\" type=\"long\" array=\"\"");
}

TEST(EntryValues, LastOfTwoNamesIsExportedAndTheFirstIsFound) {
    constexpr std::string_view entry = "<Var name=\"a\" name=\"b\" type=\"long\"><Value>1</Value></Var>";
    EXPECT_EQ(Exported(entry, 2), ValueEntry("name=\"b\" type=\"long\" array=\"\"", "<Value>1</Value>"));
    const Profile profile = LoadEntries(entry);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "a"_w, -1), 1);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "b"_w, -1), -1);
}

TEST(EntryValues, ValueAttributeIsReadAndNeverWritten) {
    EXPECT_EQ(Exported("<Var type=\"long\" Value=\"5\" x=\"\"/>", 2),
              ValueEntry("name=\"\" type=\"long\" array=\"\"", "<Value>5</Value>"));
    EXPECT_EQ(Exported("<Var type=\"long\" Value=\"5\" x=\"\"><Value/></Var>", 2),
              ValueEntry("name=\"\" type=\"long\" array=\"\"", "<Value/>"));
}

TEST(EntryValues, LastOfSeveralValueChildrenCounts) {
    EXPECT_EQ(Exported("<Var type=\"long\"><Value>1</Value><x/><Value>2</Value></Var>", 2),
              ValueEntry("name=\"\" type=\"long\" array=\"\"", "<Value>2</Value>"));
    EXPECT_EQ(Exported("<Var type=\"long\"><Value>1</Value><Value/></Var>", 2),
              ValueEntry("name=\"\" type=\"long\" array=\"\"", "<Value/>"));
}

TEST(EntryValues, OtherChildrenAreSkipped) {
    EXPECT_EQ(Exported("<Var type=\"long\">text<!--Value--><value>1</value><x><Value>2</Value></x></Var>", 2),
              ValueEntry("name=\"\" type=\"long\" array=\"\"", "<Value/>"));
}

TEST(EntryUi, EveryControlNameIsKnown) {
    for (const std::string_view name :
         {"num", "text", "switch", "no_edit", "rgb", "button", "text_array", "named_array", "switch_array",
          "radio_array", "state", "named_list_array", "radio", "prop_array"}) {
        const std::string attribute = std::string("control=\"").append(name).append("\"");
        EXPECT_EQ(Ui(attribute), "<UI " + attribute + "/>");
    }
}

TEST(EntryUi, OtherControlsAreText) {
    for (const std::string_view attribute :
         {"control=\"Text\"", "control=\"list\"", "control=\"\"", "x=\"1\""}) {
        EXPECT_EQ(Ui(attribute), "<UI control=\"text\"/>");
    }
}

TEST(EntryUi, EntryWithoutUiIsExportedWithTextControl) {
    EXPECT_EQ(Exported("<Var type=\"long\"/>", 1),
              Lines({"\t\t<Var>", "\t\t\t<UI control=\"text\"/>", "\t\t</Var>"}));
}

TEST(EntryUi, ProviderOwners) {
    EXPECT_EQ(Ui("prov_owner=\"app\""), "<UI control=\"text\" prov_owner=\"app\"/>");
    EXPECT_EQ(Ui("prov_owner=\"dwg\""), "<UI control=\"text\" prov_owner=\"dwg\"/>");
    EXPECT_EQ(Ui("prov_owner=\"erg\""), "<UI control=\"text\" prov_owner=\"erg\"/>");
    EXPECT_EQ(Ui("prov_owner=\"xyz\""), "<UI control=\"text\" prov_owner=\"app\"/>");
    EXPECT_EQ(Ui("prov_owner=\"\""), "<UI control=\"text\"/>");
}

TEST(EntryUi, ProviderIndexIsUnsigned) {
    EXPECT_EQ(Ui("prov_index=\"12abc\""), "<UI control=\"text\" prov_index=\"12\"/>");
    EXPECT_EQ(Ui("prov_index=\"4294967295\""), "<UI control=\"text\" prov_index=\"4294967295\"/>");
    EXPECT_EQ(Ui("prov_index=\"4294967296\""), "<UI control=\"text\" prov_index=\"4294967295\"/>");
    EXPECT_EQ(Ui("prov_index=\"-1\""), "<UI control=\"text\" prov_index=\"4294967295\"/>");
    EXPECT_EQ(Ui("prov_index=\"0\""), "<UI control=\"text\"/>");
    EXPECT_EQ(Ui("prov_index=\"x1\""), "<UI control=\"text\"/>");
}

TEST(EntryUi, AttributesAreWrittenInAFixedOrder) {
    EXPECT_EQ(Ui("name=\"n\" prov_owner=\"app\" prov_index=\"1\" control=\"num\""),
              "<UI control=\"num\" prov_index=\"1\" prov_owner=\"app\" name=\"n\"/>");
}

TEST(EntryUi, AccessFlagsRegenAndBoundsAreNotExported) {
    EXPECT_EQ(
        Ui("access=\"hidden\" flags=\"FFFF\" regen=\"x\" minVal=\"1\" maxVal=\"2\" Value=\"3\" loc=\"true\""),
        "<UI control=\"text\"/>");
}

TEST(EntryUi, CommentComesFromTheChildOrTheAttribute) {
    const std::string expected = Lines({"\t\t<Var>", "\t\t\t<UI control=\"text\">",
                                        "\t\t\t\t<Comment>a &amp; b</Comment>", "\t\t\t</UI>", "\t\t</Var>"});
    EXPECT_EQ(Exported("<Var type=\"long\"><UI><Comment>a &amp; b</Comment></UI></Var>", 1), expected);
    EXPECT_EQ(Exported("<Var type=\"long\"><UI Comment=\"a &amp; b\"/></Var>", 1), expected);
    EXPECT_EQ(Exported("<Var type=\"long\"><UI Comment=\"x\"><Comment>y</Comment><Comment>a &amp; b</Comment>"
                       "</UI></Var>",
                       1),
              expected);
    EXPECT_EQ(Exported("<Var type=\"long\"><UI Comment=\"x\"><Comment/></UI></Var>", 1),
              Lines({"\t\t<Var>", "\t\t\t<UI control=\"text\"/>", "\t\t</Var>"}));
}

TEST(EntryUi, SecondUiAddsToTheFirst) {
    EXPECT_EQ(Exported("<Var type=\"long\"><UI control=\"num\" name=\"a\" prov_index=\"1\"/>"
                       "<UI name=\"b\"><Comment>c</Comment></UI></Var>",
                       1),
              Lines({"\t\t<Var>", "\t\t\t<UI control=\"num\" prov_index=\"1\" name=\"b\">",
                     "\t\t\t\t<Comment>c</Comment>", "\t\t\t</UI>", "\t\t</Var>"}));
}

TEST(EntryUi, ValueAttributeOfTheUiStandsInForAnEmptyValue) {
    const Profile profile = LoadEntries("<Var name=\"k\" type=\"long\"><UI Value=\"5\"/></Var>");
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), 5);
    EXPECT_EQ(SaveBytes(profile, 2), SectionFile({
                                         "\t\t<Var name=\"k\" type=\"long\" array=\"\">",
                                         "\t\t\t<Value>5</Value>",
                                         "\t\t</Var>",
                                     }));
}

TEST(EntryUi, EntriesDoNotPassTheirDataOn) {
    EXPECT_EQ(
        Exported("<Var type=\"long\"><UI control=\"num\" prov_index=\"1\" name=\"a\"><Comment>c</Comment>"
                 "</UI></Var><Var type=\"long\"/>",
                 1),
        Lines({"\t\t<Var>", "\t\t\t<UI control=\"num\" prov_index=\"1\" name=\"a\">",
               "\t\t\t\t<Comment>c</Comment>", "\t\t\t</UI>", "\t\t</Var>", "\t\t<Var>",
               "\t\t\t<UI control=\"text\"/>", "\t\t</Var>"}));
    EXPECT_EQ(
        Exported("<Var name=\"a\" id=\"1\" type=\"long\" array=\"array\" loc=\"true\"><Value>1</Value></Var>"
                 "<Var type=\"bool\"/>",
                 2),
        ValueEntry("name=\"a\" id=\"1\" type=\"long\" array=\"array\" loc=\"true\"",
                   "<Value loc=\"true\">1</Value>") +
            ValueEntry("name=\"\" type=\"bool\" array=\"\"", "<Value/>"));
}

}  // namespace
}  // namespace host
