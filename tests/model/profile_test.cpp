#include "tests/model/profile.h"

#include "tests/model/model_support.h"

namespace model {
namespace {

const std::string kNewRoot = "Settings{xmlns:noNamespaceSchemaLocation='MXSettings.xsd'}";

Profile Load(std::string_view sections) {
    return Profile(
        Parse(Wide("<Settings xsi:noNamespaceSchemaLocation=\"\">" + std::string(sections) + "</Settings>")));
}

TEST(ModelProfile, RootIsTheFirstSettingsWithASchemaOrANewOne) {
    const NodePtr document =
        Parse(Wide("<a/>\n<Settings/>\n<Settings xsi:noNamespaceSchemaLocation=\"\"/>\n"
                   "<Settings xmlns:noNamespaceSchemaLocation=\"x\"/>"));
    EXPECT_EQ(FindRoot(*document), document->children[2]);
    EXPECT_EQ(OpenRoot(*document), document->children[2]);
    const NodePtr without = Parse(Wide("<Settings/>"));
    EXPECT_EQ(FindRoot(*without), nullptr);
    OpenRoot(*without);
    EXPECT_EQ(DumpChildren(*without), "Settings " + kNewRoot);
}

TEST(ModelProfile, NewOneHasADeclarationAndARoot) {
    EXPECT_EQ(Shown(Profile().DocumentText()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\\n"
              "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\"/>\\n");
}

TEST(ModelProfile, SectionsAreMadeOrGetNewNumbers) {
    Profile profile = Load("<Other name=\"S\"/><Table name=\"S\" editable=\"true\" eud=\"true\"/>");
    bool hasEud = false;
    profile.WriteSection(Wide("S"), false, 0, 0x1F, hasEud);
    EXPECT_TRUE(hasEud);
    profile.WriteSection(Wide("T"), true, 7, 0, hasEud);
    EXPECT_FALSE(hasEud);
    EXPECT_EQ(DumpChildren(profile.Root()),
              "Other{name='S'} Table{name='S' editable='true' eud='true' first_id='0' type='001F'} "
              "Table{name='T' first_id='7' editable='true'}");
    EXPECT_TRUE(profile.DeleteSection(Wide("S")));
    EXPECT_FALSE(profile.DeleteSection(Wide("S")));
    EXPECT_EQ(DumpChildren(profile.Root()), "Other{name='S'} Table{name='T' first_id='7' editable='true'}");
}

TEST(ModelProfile, KeysAreReadWithTheUiValueInPlaceOfAnEmptyOne) {
    const Profile profile = Load(
        "<Table name=\"S\"><Var name=\"a\" type=\"long\"><Value>1</Value></Var>"
        "<Var name=\"b\" type=\"long\"><UI Value=\"2\"/></Var><Var "
        "name=\"c\"><Value>3</Value></Var></Table>");
    EXPECT_EQ(profile.Read(Wide("S"), Wide("a")), Wide("1"));
    EXPECT_EQ(profile.Read(Wide("S"), Wide("b")), Wide("2"));
    EXPECT_EQ(profile.Read(Wide("S"), Wide("c")), std::nullopt);
    EXPECT_EQ(profile.Read(Wide("S"), Wide("d")), std::nullopt);
    EXPECT_EQ(profile.Read(Wide("T"), Wide("a")), std::nullopt);
}

TEST(ModelProfile, KeysAreWrittenAndDeleted) {
    Profile profile = Load("<Table name=\"S\"><Var name=\"a\" eud=\"true\"/></Table>");
    EXPECT_TRUE(profile.Write(Wide("S"), Wide("a"), Wide("1")));
    EXPECT_TRUE(profile.Write(Wide("T"), Wide("b"), Wide("2")));
    EXPECT_EQ(DumpChildren(profile.Root()),
              "Table{name='S'}(Var{name='a'}(Value{loc=''}'1')) "
              "Table{name='T'}(Var{name='b' type='string' array=''}(Value'2'))");
    EXPECT_TRUE(profile.DeleteKey(Wide("S"), Wide("a")));
    EXPECT_FALSE(profile.DeleteKey(Wide("S"), Wide("a")));
    EXPECT_FALSE(profile.DeleteKey(Wide("U"), Wide("a")));
    EXPECT_EQ(DumpChildren(profile.Root()),
              "Table{name='S'} Table{name='T'}(Var{name='b' type='string' array=''}(Value'2'))");
}

TEST(ModelProfile, SaveRemovesTheEudOfSectionsAndThatOfEntriesWhereItIsTrue) {
    Profile profile = Load(
        "<Table eud=\"true\" eud=\"x\"><Var eud=\"1\"/></Table><Table eud=\"no\"><Var eud=\"1\"/></Table>");
    profile.StripEud();
    EXPECT_EQ(DumpChildren(profile.Root()), "Table{eud='x'}(Var) Table(Var{eud='1'})");
}

// The lines of an export between the tags of its root.
std::string Exported(std::uint32_t mode, std::string_view sections) {
    const std::string text = Shown(Load(sections).Export(mode));
    const std::size_t start = text.find("\\n\\t") + 2;
    return text.substr(start, text.rfind("</Settings>") - start);
}

constexpr std::string_view kSections =
    "<Table name=\"S\" first_id=\"-1\" type=\"1f\" x=\"1\"><!--c--><Item name=\"a\" id=\"7\" type=\"long\" "
    "eud=\"true\">"
    "<UI control=\"num\" access=\"hidden\"><Comment>c</Comment><Value>4</Value></UI></Item><Var/>"
    "<Var type=\"long\"/></Table>";

TEST(ModelProfile, ExportsKeepWhatTheirModeAsksFor) {
    EXPECT_EQ(Exported(2, kSections),
              "\\t<Table name=\"S\" first_id=\"4294967295\" type=\"001F\">\\n"
              "\\t\\t<Var name=\"a\" id=\"7\" type=\"long\" "
              "array=\"\">\\n\\t\\t\\t<Value>4</Value>\\n\\t\\t</Var>\\n"
              "\\t</Table>\\n");
    EXPECT_EQ(
        Exported(1, kSections),
        "\\t<Table name=\"S\" first_id=\"4294967295\" type=\"001F\">\\n"
        "\\t\\t<Var>\\n\\t\\t\\t<UI control=\"num\">\\n\\t\\t\\t\\t<Comment>c</Comment>\\n\\t\\t\\t</UI>\\n"
        "\\t\\t</Var>\\n\\t</Table>\\n");
    EXPECT_EQ(Exported(3, kSections),
              "\\t<Table name=\"S\" first_id=\"4294967295\" type=\"001F\">\\n\\t\\t<Var/>\\n\\t</Table>\\n");
}

TEST(ModelData, PairsOfDigitsBecomeBytesUpToTheFirstThatIsNone) {
    EXPECT_EQ(BytesOf(Wide("01aBff"), 9), "\x01\xAB\xFF");
    EXPECT_EQ(BytesOf(Wide("01aBff"), 2), "\x01\xAB");
    EXPECT_EQ(BytesOf(Wide("011"), 9), "\x01");
    EXPECT_EQ(BytesOf(Wide("01x2"), 9), "\x01");
}

}  // namespace
}  // namespace model
