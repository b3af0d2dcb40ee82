// entry set|add --no-ui: entries without presentation data.
#include "tests/tool/tool_support.h"

namespace tool {
namespace {

using NoUi = ToolTest;

const std::string kEntries = Settings(
    "\t<Table name=\"S\">\n\t\t<Var name=\"k\" type=\"long\" array=\"\">\n\t\t\t<Value>1</Value>\n"
    "\t\t\t<UI control=\"num\" minVal=\"0\">\n\t\t\t\t<Comment>c</Comment>\n\t\t\t</UI>\n\t\t</Var>\n"
    "\t\t<Var name=\"m\" type=\"long\" array=\"\">\n\t\t\t<UI control=\"num\">\n"
    "\t\t\t\t<Value>2</Value>\n\t\t\t</UI>\n\t\t</Var>\n\t</Table>\n");

TEST_F(NoUi, SetRemovesThePresentationDataAndKeepsTheValue) {
    WriteBytes("a.xml", Narrow(kEntries));
    EXPECT_EQ(Succeeds({"entry", "set", "a.xml", "k", "--no-ui", "--section", "S"}), "");
    EXPECT_EQ(Succeeds({"entry", "set", "a.xml", "m", "--no-ui", "--section", "S"}), "");
    EXPECT_EQ(Succeeds({"show", "a.xml"}),
              "settings document, narrow\nsection S\n  k = \"1\"  [long]\n  m = \"2\"  [long]\n");
    EXPECT_EQ(Succeeds({"entry", "set", "a.xml", "k", "--no-ui", "--section", "S"}), "");  // there is none
}

TEST_F(NoUi, SetChangesOtherFieldsToo) {
    WriteBytes("a.xml", Wide(kEntries));
    EXPECT_EQ(Succeeds({"entry", "set", "a.xml", "m", "5", "--id", "7", "--no-ui", "--section", "S"}), "");
    EXPECT_EQ(Succeeds({"entry", "get", "a.xml", "m", "--section", "S", "--json"}),
              "{\n  \"name\": \"m\",\n  \"type\": \"long\",\n  \"id\": 7,\n  \"value\": 5\n}\n");
}

TEST_F(NoUi, AddWritesNoneWhereTheTableKeepsItsValuesInThem) {
    const std::string table = Wide(
        TableDocument("<Var name=\"a\" type=\"long\"><UI control=\"num\"><Value>1</Value></UI></Var>\n"));
    WriteBytes("t.xml", table);
    EXPECT_EQ(Succeeds({"entry", "add", "t.xml", "b", "2"}), "");
    EXPECT_NE(Succeeds({"entry", "get", "t.xml", "b", "--json"}).find("\"ui\""), std::string::npos);
    WriteBytes("t.xml", table);
    EXPECT_EQ(Succeeds({"entry", "add", "t.xml", "b", "2", "--no-ui"}), "");
    EXPECT_EQ(Succeeds({"entry", "get", "t.xml", "b", "--json"}),
              "{\n  \"name\": \"b\",\n  \"type\": \"string\",\n  \"value\": \"2\"\n}\n");
}

TEST_F(NoUi, ExcludesPresentationData) {
    WriteBytes("a.xml", Narrow(kEntries));
    for (const std::string option : {"--comment=", "--shown-name=x", "--control=num", "--provider=app",
                                     "--provider-index=0", "--ui-value=1"}) {
        Fails(2, {"entry", "set", "a.xml", "k", "--section", "S", "--no-ui", option},
              "--no-ui excludes the options for presentation data");
        Fails(2, {"entry", "add", "a.xml", "n", "--section", "S", "--no-ui", option},
              "--no-ui excludes the options for presentation data");
    }
    EXPECT_EQ(ReadBytes("a.xml"), Narrow(kEntries));
}

}  // namespace
}  // namespace tool
