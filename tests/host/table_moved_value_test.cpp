// A value that Set or Add moves to the presentation data is stored there whenever the call returns true, the same over
// both kinds of table handles.
#include <string>
#include <string_view>

#include "tests/host/table_support.h"

namespace host {
namespace {

template <class Kind>
class TableMovedValue : public testing::Test {};
TYPED_TEST_SUITE(TableMovedValue, TableKinds, TableKindNames);

// Chooses the value alone, so that the attributes of the entry stay as they are.
constexpr std::uint16_t kValueAlone = 2;

TableEntryValueInfoStruct Value(const char* text) {
    return ValueRecord("a"_w, 3, text, 0, kValueAlone);
}

std::string Entry(std::string_view children, std::string_view attributes = {}) {
    return std::string("<Var name=\"a\" type=\"long\"").append(attributes) + ">" + std::string(children) +
           "</Var>";
}

// The lines of the table with the entry of Entry and these lines in it.
std::string EntryText(std::initializer_list<std::string_view> lines, std::string_view attributes = {}) {
    return Lines({"<Table name=\"T\">",
                  std::string("\t<Var name=\"a\" type=\"long\"").append(attributes) + ">"}) +
           Lines(lines) + Lines({"\t</Var>", "</Table>"});
}

// The table after a Set of the value record, by name and by position, which give the same.
template <class Kind>
std::string AfterSet(std::string_view children, TableEntryValueInfoStruct value) {
    const Kind byName(Entry(children));
    EXPECT_TRUE(xmlTableEntrySet(byName, nullptr, &value, nullptr, 0, 0));
    const Kind byPosition(Entry(children));
    std::uint64_t position = 0;
    EXPECT_TRUE(xmlTableEntrySet(byPosition, &position, &value, nullptr, 0, 0));
    EXPECT_EQ(byPosition.Text(), byName.Text());
    return byName.Text();
}

template <class Kind>
std::string AfterSet(std::string_view children, TableEntryValueInfoStruct value, TableEntryUInfoStruct ui) {
    const Kind byName(Entry(children));
    EXPECT_TRUE(xmlTableEntrySet(byName, nullptr, &value, &ui, 0, 0));
    const Kind byPosition(Entry(children));
    std::uint64_t position = 0;
    EXPECT_TRUE(xmlTableEntrySet(byPosition, &position, &value, &ui, 0, 0));
    EXPECT_EQ(byPosition.Text(), byName.Text());
    return byName.Text();
}

TableEntryUInfoStruct Ui(const wchar16* comment, const char* value = nullptr) {
    TableEntryUInfoStruct ui = UiRecord("a"_w, 1, 3, value);
    EXPECT_TRUE(ui.SetComment_w(comment));
    return ui;
}

// ---- Set

TYPED_TEST(TableMovedValue, SetStoresTheFirstValueOfAnEntry) {
    const TypeParam table("<Var name=\"a\" type=\"long\"/>");
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "8");
    EXPECT_TRUE(xmlTableEntrySet(table, nullptr, &value, nullptr, 0, 0));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"long\" id=\"0\" array=\"\" loc=\"\">",
                                       "\t\t<UI control=\"text\">", "\t\t\t<Value loc=\"\">8</Value>",
                                       "\t\t</UI>", "\t</Var>"}));
    EXPECT_EQ(GetValue(table, "a"_w), "a #0 0003 '8'");
}

TYPED_TEST(TableMovedValue, SetStoresTheValueInAUiWithoutComment) {
    const std::string stored =
        EntryText({"\t\t<UI control=\"text\">", "\t\t\t<Value loc=\"\">8</Value>", "\t\t</UI>"});
    EXPECT_EQ(AfterSet<TypeParam>("", Value("8")), stored);
    EXPECT_EQ(AfterSet<TypeParam>("<UI/>", Value("8")), stored);
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Value/></UI>", Value("8")), stored);
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Value>1</Value></UI>", Value("8")), stored);
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Value loc=\"true\">1</Value></UI>", Value("8")), stored);
    EXPECT_EQ(AfterSet<TypeParam>("<UI control=\"num\" prov_index=\"1\" name=\"n\"/>", Value("8")), stored);
}

TYPED_TEST(TableMovedValue, SetStoresTheValueInAUiWithComment) {
    const std::string stored = EntryText({"\t\t<UI control=\"text\">", "\t\t\t<Comment>c</Comment>",
                                          "\t\t\t<Value loc=\"\">8</Value>", "\t\t</UI>"});
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Comment>c</Comment></UI>", Value("8")), stored);
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Comment>c</Comment><Value>1</Value></UI>", Value("8")), stored);
}

TYPED_TEST(TableMovedValue, SetStoresTheValueBesideANewComment) {
    const std::string stored = EntryText({"\t\t<UI control=\"num\">", "\t\t\t<Comment>new</Comment>",
                                          "\t\t\t<Value loc=\"\">8</Value>", "\t\t</UI>"});
    EXPECT_EQ(AfterSet<TypeParam>("", Value("8"), Ui("new"_w, "9")), stored);
    EXPECT_EQ(AfterSet<TypeParam>("<UI/>", Value("8"), Ui("new"_w, "9")), stored);
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Value/></UI>", Value("8"), Ui("new"_w)), stored);
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Comment>old</Comment></UI>", Value("8"), Ui("new"_w)), stored);
    EXPECT_EQ(
        AfterSet<TypeParam>("<UI><Comment>old</Comment><Value loc=\"true\"/></UI>", Value("8"), Ui("new"_w)),
        stored);
}

TYPED_TEST(TableMovedValue, SetStoresTheValueOfBothRecordsInAUiWithoutComment) {
    const std::string stored =
        EntryText({"\t\t<UI control=\"num\">", "\t\t\t<Value loc=\"\">8</Value>", "\t\t</UI>"});
    EXPECT_EQ(AfterSet<TypeParam>("", Value("8"), Ui(nullptr, "9")), stored);
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Value loc=\"x\"/></UI>", Value("8"), Ui(nullptr, "9")), stored);
}

TYPED_TEST(TableMovedValue, SetAppendsAMissingValueAsTheLastChild) {
    EXPECT_EQ(AfterSet<TypeParam>("<UI><!-- x --><X/></UI>", Value("8")),
              EntryText({"\t\t<UI control=\"text\">", "\t\t\t<!-- x -->", "\t\t\t<X/>",
                         "\t\t\t<Value loc=\"\">8</Value>", "\t\t</UI>"}));
}

TYPED_TEST(TableMovedValue, SetWritesTheFirstOfSeveral) {
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Value>1</Value><Value>2</Value></UI>", Value("8")),
              EntryText({"\t\t<UI control=\"text\">", "\t\t\t<Value loc=\"\">8</Value>",
                         "\t\t\t<Value>2</Value>", "\t\t</UI>"}));
    EXPECT_EQ(AfterSet<TypeParam>("<UI/><UI><Value>2</Value></UI>", Value("8")),
              EntryText({"\t\t<UI control=\"text\">", "\t\t\t<Value loc=\"\">8</Value>", "\t\t</UI>",
                         "\t\t<UI>", "\t\t\t<Value>2</Value>", "\t\t</UI>"}));
}

TYPED_TEST(TableMovedValue, SetLeavesAValueThatIsAnAttribute) {
    EXPECT_EQ(AfterSet<TypeParam>("<UI Value=\"1\" loc=\"true\"/>", Value("8")),
              EntryText({"\t\t<UI Value=\"1\" loc=\"true\" control=\"text\">",
                         "\t\t\t<Value loc=\"\">8</Value>", "\t\t</UI>"}));
}

TYPED_TEST(TableMovedValue, SetOfAnEmptyTextEmptiesTheValueAndAddsNone) {
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Value loc=\"true\">1</Value></UI>", Value("")),
              EntryText({"\t\t<UI control=\"text\">", "\t\t\t<Value loc=\"\"/>", "\t\t</UI>"}));
    EXPECT_EQ(AfterSet<TypeParam>("<UI/>", Value("")), EntryText({"\t\t<UI control=\"text\"/>"}));
    EXPECT_EQ(AfterSet<TypeParam>("", Value("")), EntryText({"\t\t<UI control=\"text\"/>"}));
    EXPECT_EQ(AfterSet<TypeParam>("", Value(""), Ui("new"_w)),
              EntryText({"\t\t<UI control=\"num\">", "\t\t\t<Comment>new</Comment>", "\t\t</UI>"}));
}

TYPED_TEST(TableMovedValue, SetOfATextThatWasNeverSetMovesNone) {
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Value loc=\"true\">1</Value></UI>", Value(nullptr)),
              EntryText({"\t\t<UI control=\"text\">", "\t\t\t<Value loc=\"true\">1</Value>", "\t\t</UI>"}));
    EXPECT_EQ(AfterSet<TypeParam>("", Value(nullptr), Ui(nullptr, "9")),
              EntryText({"\t\t<UI control=\"num\"/>"}));
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Comment>old</Comment></UI>", Value(nullptr), Ui("new"_w, "9")),
              EntryText({"\t\t<UI control=\"num\">", "\t\t\t<Comment>new</Comment>", "\t\t</UI>"}));
}

TYPED_TEST(TableMovedValue, SetMovesTheValueWhateverTheMaskChooses) {
    const std::string stored =
        EntryText({"\t\t<UI control=\"text\">", "\t\t\t<Value loc=\"\">8</Value>", "\t\t</UI>"});
    EXPECT_EQ(AfterSet<TypeParam>("", ValueRecord("a"_w, 3, "8", 5, 1)), stored);
    EXPECT_EQ(AfterSet<TypeParam>("<UI><Value>1</Value></UI>", ValueRecord("a"_w, 3, "8", 5, 1)), stored);
}

TYPED_TEST(TableMovedValue, SetMovesWideText) {
    const TypeParam table("<Var name=\"a\" type=\"ucstring\"><UI><Value>1</Value></UI></Var>");
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 31, nullptr, 0, kValueAlone);
    ASSERT_TRUE(value.SetVal_w(u"\u20ac\xD800"_w));
    EXPECT_TRUE(xmlTableEntrySet(table, nullptr, &value, nullptr, 0, 0));
    EXPECT_EQ(GetUi(table, "a"_w), "a #0 001F '\\u20AC\\uD800' control 2");
}

TYPED_TEST(TableMovedValue, SetTwiceGivesTheSameTree) {
    const TypeParam table(Entry("<UI><X/></UI>"));
    TableEntryValueInfoStruct value = Value("8");
    ASSERT_TRUE(xmlTableEntrySet(table, nullptr, &value, nullptr, 0, 0));
    const std::string once = table.Text();
    ASSERT_TRUE(xmlTableEntrySet(table, nullptr, &value, nullptr, 0, 0));
    EXPECT_EQ(table.Text(), once);
}

TYPED_TEST(TableMovedValue, SetOfAProtectedEntryWritesNothing) {
    const std::string entry = Entry("<UI control=\"num\"><Value>1</Value></UI>", " eud=\"true\"");
    const TypeParam table(entry);
    const std::string before = table.Text();
    TableEntryValueInfoStruct value = Value("8");
    std::uint64_t position = 0;
    EXPECT_TRUE(xmlTableEntrySet(table, nullptr, &value, nullptr, 0, 1));
    EXPECT_TRUE(xmlTableEntrySet(table, &position, &value, nullptr, 0, 1));
    EXPECT_EQ(table.Text(), before);

    position = 0;
    EXPECT_TRUE(xmlTableEntrySet(table, &position, &value, nullptr, 1, 0));
    EXPECT_EQ(table.Text(),
              EntryText({"\t\t<UI control=\"text\">", "\t\t\t<Value loc=\"\">8</Value>", "\t\t</UI>"},
                        " eud=\"true\""));
    value = Value("9");
    EXPECT_TRUE(xmlTableEntrySet(table, nullptr, &value, nullptr, 1, 0));
    EXPECT_EQ(table.Text(),
              EntryText({"\t\t<UI control=\"text\">", "\t\t\t<Value loc=\"\">9</Value>", "\t\t</UI>"}));
}

TYPED_TEST(TableMovedValue, SetOfPresentationDataMovesNothing) {
    // Each entry keeps its value there already, so that the presentation record is written as it is.
    for (const std::string_view before :
         {"<UI><Value>1</Value></UI>", "<UI><Comment>old</Comment><Value>1</Value></UI>"}) {
        const std::string stays = EntryText({"\t\t<UI control=\"num\">", "\t\t\t<Comment>new</Comment>",
                                             "\t\t\t<Value>1</Value>", "\t\t</UI>"});
        EXPECT_EQ(AfterSet<TypeParam>(before, Value("8"), Ui("new"_w, "9")), stays);
        const TypeParam table(Entry(before));
        TableEntryUInfoStruct ui = Ui("new"_w, "9");
        EXPECT_TRUE(xmlTableEntrySet(table, nullptr, nullptr, &ui, 0, 0));
        EXPECT_EQ(table.Text(), stays);
    }
}

TYPED_TEST(TableMovedValue, SetThatIsFalseMovesNothing) {
    const TypeParam table(Entry("<UI><Value>1</Value></UI>"));
    const std::string before = table.Text();
    TableEntryValueInfoStruct unknown = ValueRecord("b"_w, 3, "8");
    EXPECT_FALSE(xmlTableEntrySet(table, nullptr, &unknown, nullptr, 1, 1));
    TableEntryValueInfoStruct value = Value("8");
    std::uint64_t position = PositionOn(table, 0);
    EXPECT_FALSE(xmlTableEntrySet(table, &position, &value, nullptr, 1, 1));
    EXPECT_EQ(table.Text(), before);
}

// ---- Add

// The table's first entry, which keeps its value in the presentation data, and the entry of Entry.
std::string WithFirst(std::string_view children, std::string_view attributes = {}) {
    return "<Var type=\"long\"><UI><Value>1</Value></UI></Var>" + Entry(children, attributes);
}

// The same as lines.
std::string WithFirstText(std::initializer_list<std::string_view> lines, std::string_view attributes = {}) {
    const std::string first =
        Lines({"\t<Var type=\"long\">", "\t\t<UI>", "\t\t\t<Value>1</Value>", "\t\t</UI>", "\t</Var>"});
    std::string text = EntryText(lines, attributes);
    return text.insert(text.find('\n') + 1, first);
}

template <class Kind>
std::string AfterUpdate(std::string_view children, TableEntryValueInfoStruct value) {
    const Kind table(WithFirst(children));
    EXPECT_TRUE(xmlTableEntryAdd(table, nullptr, &value, nullptr, 0, 1));
    return table.Text();
}

TYPED_TEST(TableMovedValue, AddStoresTheValueOfANewEntry) {
    const TypeParam table("<Var type=\"long\"><UI><Value>1</Value></UI></Var>");
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "8", 0, 5);
    EXPECT_TRUE(xmlTableEntryAdd(table, nullptr, &value, nullptr, 0, 0));
    EXPECT_EQ(
        table.Text(),
        WithFirstText({"\t\t<UI control=\"text\">", "\t\t\t<Value>8</Value>", "\t\t</UI>"}, " array=\"\""));
    EXPECT_EQ(GetValue(table, "a"_w), "a #0 0003 '8'");
}

TYPED_TEST(TableMovedValue, AddStoresTheValueOfAnEntryBeforeAnother) {
    const TypeParam table("<Var type=\"long\"><UI><Value>1</Value></UI></Var>");
    std::uint64_t position = PositionOn(table, 0);
    TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "8", 0, 1);
    EXPECT_TRUE(xmlTableEntryAdd(table, &position, &value, nullptr, 1, 0));
    EXPECT_EQ(
        table.Text(),
        TableText("eud=\"true\"", {"\t<Var name=\"a\" eud=\"true\">", "\t\t<UI control=\"text\">",
                                   "\t\t\t<Value>8</Value>", "\t\t</UI>", "\t</Var>", "\t<Var type=\"long\">",
                                   "\t\t<UI>", "\t\t\t<Value>1</Value>", "\t\t</UI>", "\t</Var>"}));
}

TYPED_TEST(TableMovedValue, UpdateStoresTheValue) {
    const std::string stored =
        WithFirstText({"\t\t<UI control=\"text\">", "\t\t\t<Value>8</Value>", "\t\t</UI>"});
    EXPECT_EQ(AfterUpdate<TypeParam>("", Value("8")), stored);
    EXPECT_EQ(AfterUpdate<TypeParam>("<UI/>", Value("8")), stored);
    EXPECT_EQ(AfterUpdate<TypeParam>("<UI><Value>1</Value></UI>", Value("8")), stored);
    EXPECT_EQ(
        AfterUpdate<TypeParam>("<UI><X/></UI>", Value("8")),
        WithFirstText({"\t\t<UI control=\"text\">", "\t\t\t<X/>", "\t\t\t<Value>8</Value>", "\t\t</UI>"}));
    EXPECT_EQ(AfterUpdate<TypeParam>("<UI><Comment>c</Comment></UI>", Value("8")),
              WithFirstText({"\t\t<UI control=\"text\">", "\t\t\t<Comment>c</Comment>",
                             "\t\t\t<Value>8</Value>", "\t\t</UI>"}));
}

TYPED_TEST(TableMovedValue, UpdateLeavesTheLocOfTheValueAndWhatElseIsThere) {
    EXPECT_EQ(AfterUpdate<TypeParam>("<UI prov_index=\"7\" name=\"n\"><Value loc=\"true\">1</Value></UI>",
                                     Value("8")),
              WithFirstText({"\t\t<UI prov_index=\"7\" name=\"n\" control=\"text\">",
                             "\t\t\t<Value loc=\"true\">8</Value>", "\t\t</UI>"}));
    EXPECT_EQ(AfterUpdate<TypeParam>("<Value>1</Value>", Value("8")),
              WithFirstText({"\t\t<Value>1</Value>", "\t\t<UI control=\"text\">", "\t\t\t<Value>8</Value>",
                             "\t\t</UI>"}));
}

TYPED_TEST(TableMovedValue, UpdateWithAnEmptyTextEmptiesTheValueAndAddsNone) {
    EXPECT_EQ(AfterUpdate<TypeParam>("<UI><Value>1</Value></UI>", Value("")),
              WithFirstText({"\t\t<UI control=\"text\">", "\t\t\t<Value/>", "\t\t</UI>"}));
    EXPECT_EQ(AfterUpdate<TypeParam>("", Value("")), WithFirstText({"\t\t<UI control=\"text\"/>"}));
}

TYPED_TEST(TableMovedValue, UpdateWithATextThatWasNeverSetMovesNone) {
    EXPECT_EQ(AfterUpdate<TypeParam>("<UI><Value>1</Value></UI>", Value(nullptr)),
              WithFirstText({"\t\t<UI control=\"text\">", "\t\t\t<Value>1</Value>", "\t\t</UI>"}));
}

TYPED_TEST(TableMovedValue, UpdateMovesTheValueWhateverTheMaskChooses) {
    EXPECT_EQ(AfterUpdate<TypeParam>("<UI><Value>1</Value></UI>", ValueRecord("a"_w, 3, "8", 5, 1)),
              WithFirstText({"\t\t<UI control=\"text\">", "\t\t\t<Value>8</Value>", "\t\t</UI>"}));
}

TYPED_TEST(TableMovedValue, UpdateWithBothRecordsMovesNothing) {
    const TypeParam table(WithFirst("<UI><Value>1</Value></UI>"));
    TableEntryValueInfoStruct value = Value("8");
    TableEntryUInfoStruct ui = Ui("new"_w);
    EXPECT_TRUE(xmlTableEntryAdd(table, nullptr, &value, &ui, 0, 1));
    EXPECT_EQ(table.Text(), WithFirstText({"\t\t<UI control=\"num\">", "\t\t\t<Comment>new</Comment>",
                                           "\t\t\t<Value>1</Value>", "\t\t</UI>"}));
}

// ---- What a host does with it

TYPED_TEST(TableMovedValue, EntryWithBothRecordsTakesTwoCallsInEveryTable) {
    for (const std::string_view first : {"", "<Var type=\"long\"><Value>1</Value></Var>",
                                         "<Var type=\"long\"><UI><Value>1</Value></UI></Var>"}) {
        const TypeParam table(first);
        TableEntryValueInfoStruct value = ValueRecord("a"_w, 3, "8");
        TableEntryUInfoStruct ui = Ui("c"_w);
        ui.SetUserName_w("shown"_w);
        EXPECT_TRUE(xmlTableEntryAdd(table, nullptr, &value, nullptr, 0, 0));
        EXPECT_TRUE(xmlTableEntryAdd(table, nullptr, &value, &ui, 0, 1));
        EXPECT_EQ(GetValue(table, "a"_w), "a #0 0003 '8'") << first;
        const bool isInUi = first.find("UI") != std::string_view::npos;
        EXPECT_EQ(GetUi(table, "a"_w), isInUi ? "a #0 0003 '8' control 1 comment 'c' user 'shown'"
                                              : "a #0 0003 '' control 1 comment 'c' user 'shown'");
    }
}

TEST(TableMovedValueOfASection, IsWhatAKeyReadGives) {
    const Profile profile(
        LoadSections(TableElement("<Var name=\"a\" type=\"long\"/>"
                                  "<Var name=\"b\" type=\"string\"><UI><Value>old</Value></UI></Var>")));
    const Table section(xmlGetProfileSection(profile, "T"_w, nullptr));
    TableEntryValueInfoStruct number = ValueRecord("a"_w, 3, "8");
    TableEntryValueInfoStruct text = ValueRecord("b"_w, 8, "new");
    EXPECT_TRUE(xmlTableEntrySet(section, nullptr, &number, nullptr, 0, 0));
    EXPECT_TRUE(xmlTableEntrySet(section, nullptr, &text, nullptr, 0, 0));
    EXPECT_EQ(xmlGetProfileInt(profile, "T"_w, "a"_w, -1), 8);
    EXPECT_EQ(ReadText(profile, "T"_w, "b"_w), "new"_w);
}

}  // namespace
}  // namespace host
