#include "tests/model/tables.h"

#include "tests/model/model_support.h"

namespace model {
namespace {

std::string ShownOr(const std::optional<Text>& text) {
    return text ? Quoted(*text) : "none";
}

std::string Show(const PlainValue& record) {
    return Shown(record.name) + " #" + std::to_string(record.id) + " type " + std::to_string(record.type) +
           " " + ShownOr(record.value);
}

std::string Show(const PlainUi& record) {
    return Show(static_cast<const PlainValue&>(record)) + " control " + std::to_string(record.control) +
           " comment " + ShownOr(record.comment) + " user " + ShownOr(record.userName);
}

PlainValue Value(std::string_view name, std::uint16_t type, const char* value) {
    PlainValue record{Wide(name), 0, type, 0};
    if (value != nullptr) record.value = Wide(value);
    return record;
}

PlainUi Ui(std::string_view name, std::uint16_t control, std::uint16_t type, const char* value) {
    PlainUi record{Value(name, type, value)};
    record.control = control;
    return record;
}

TEST(ModelTableNew, FirstTableIsOpenedOrOneIsMade) {
    const NodePtr document = Parse(Wide("<x/>\n<Table name=\"A\"/>\n<Table name=\"B\"/>"));
    EXPECT_EQ(OpenTable(*document, Wide("A")), document->children[1]);
    EXPECT_EQ(OpenTable(*document, Text()), document->children[1]);
    EXPECT_EQ(OpenTable(*document, Wide("B")), nullptr);
    const NodePtr empty = Parse(Wide("<x/>"));
    OpenTable(*empty, Wide("N"));
    EXPECT_EQ(DumpChildren(*empty), "x Table{xmlns:noNamespaceSchemaLocation='MXTable.xsd' name='N'}");
}

constexpr std::string_view kTable =
    "<T><Var name=\"a\" id=\"1\" type=\"long\"><Value>1</Value></Var><!--c-->"
    "<Var name=\"b\" type=\"string\"><UI control=\"num\" "
    "name=\"n\"><Comment>c</Comment><Value>u</Value></UI></Var></T>";

TEST(ModelTableGet, ByPositionGoesFromElementToElement) {
    const NodePtr table = First(kTable);
    Position position{false};
    PlainValue value = Value("old", 8, "old");
    EXPECT_TRUE(Get(*table, position, &value, nullptr));
    EXPECT_EQ(Show(value), "a #1 type 3 '1'");
    PlainUi ui;
    EXPECT_TRUE(Get(*table, position, &value, &ui));
    EXPECT_EQ(Show(value), "b #0 type 8 ''");
    EXPECT_EQ(Show(ui), "b #0 type 8 'u' control 1 comment 'c' user 'n'");
    EXPECT_EQ(position.entry, table->children[2]);
    EXPECT_FALSE(Get(*table, position, &value, nullptr));
    EXPECT_EQ(position.entry, table->children[2]);
}

TEST(ModelTableGet, ByNameWithTheValueRecordAloneFallsBackToTheUiValue) {
    Position position;
    PlainValue value = Value("b", 0, nullptr);
    value.id = 77;
    EXPECT_TRUE(Get(*First(kTable), position, &value, nullptr));
    EXPECT_EQ(Show(value), "b #77 type 8 'u'");
    value = Value("x", 3, "old");
    EXPECT_FALSE(Get(*First(kTable), position, &value, nullptr));
    EXPECT_EQ(Show(value), "x #0 type 3 'old'");
}

// The entry "a" with these children after a Set by name with these records.
std::string AfterSet(std::string_view children, PlainValue* value, PlainUi* ui) {
    const NodePtr table = First("<T><Var name=\"a\" type=\"long\">" + std::string(children) + "</Var></T>");
    Position position;
    EXPECT_TRUE(Set(*table, position, value, ui, false, false));
    return DumpChildren(*table->children[0]);
}

constexpr std::string_view kOwnAlone = "<Value>1</Value>";
constexpr std::string_view kUiAlone = "<UI><Comment>c</Comment><Value>1</Value></UI>";
constexpr std::string_view kBoth = "<Value>1</Value><UI><Comment>c</Comment><Value>1</Value></UI>";
constexpr std::string_view kNone = "<UI><Comment>c</Comment></UI>";

TEST(ModelTableSet, ValueRecordAlone) {
    PlainValue value = Value("a", 3, "2");
    EXPECT_EQ(AfterSet(kOwnAlone, &value, nullptr), "Value{loc=''}'2'");
    EXPECT_EQ(AfterSet(kBoth, &value, nullptr), "Value{loc=''}'2' UI(Comment'c' Value'1')");
    EXPECT_EQ(AfterSet(kUiAlone, &value, nullptr), "UI{control='text'}(Comment'c' Value{loc=''}'2')");
    EXPECT_EQ(AfterSet(kNone, &value, nullptr), "UI{control='text'}(Comment'c' Value{loc=''}'2')");
    EXPECT_EQ(AfterSet("", &value, nullptr), "UI{control='text'}(Value{loc=''}'2')");
}

TEST(ModelTableSet, PresentationRecordAlone) {
    PlainUi ui = Ui("a", 1, 3, "3");
    EXPECT_EQ(AfterSet(kOwnAlone, nullptr, &ui), "Value'1'");
    EXPECT_EQ(AfterSet(kBoth, nullptr, &ui), "Value'1' UI{control='num'}(Comment'c' Value{loc=''}'3')");
    EXPECT_EQ(AfterSet(kUiAlone, nullptr, &ui), "UI{control='num'}(Comment'c' Value{loc=''}'3')");
    EXPECT_EQ(AfterSet(kNone, nullptr, &ui), "UI(Comment'c')");
}

TEST(ModelTableSet, BothRecords) {
    PlainValue value = Value("a", 3, "2");
    PlainUi ui = Ui("a", 1, 3, "3");
    EXPECT_EQ(AfterSet(kOwnAlone, &value, &ui), "Value{loc=''}'2'");
    EXPECT_EQ(AfterSet(kBoth, &value, &ui), "Value'1' UI{control='num'}(Comment'c' Value{loc=''}'3')");
    EXPECT_EQ(AfterSet(kUiAlone, &value, &ui), "UI{control='num'}(Comment'c' Value{loc=''}'3')");
    EXPECT_EQ(AfterSet(kNone, &value, &ui), "UI{control='num'}(Comment'c' Value{loc=''}'2')");
}

TEST(ModelTableSet, EudProtectsUnlessForced) {
    const NodePtr table = First("<T><Var name=\"a\" type=\"long\" eud=\"true\"><Value>1</Value></Var></T>");
    PlainValue value = Value("a", 3, "2");
    value.mask = 2;
    Position byName;
    EXPECT_TRUE(Set(*table, byName, &value, nullptr, false, true));
    EXPECT_EQ(Dump(*table), "T(Var{name='a' type='long' eud='true'}(Value'1'))");
    EXPECT_TRUE(Set(*table, byName, &value, nullptr, true, false));
    EXPECT_EQ(Dump(*table), "T(Var{name='a' type='long'}(Value{loc=''}'2'))");
    Position byPosition{false};
    EXPECT_TRUE(Set(*table, byPosition, &value, nullptr, false, true));
    EXPECT_EQ(Dump(*table), "T{eud='true'}(Var{name='a' type='long' eud='true'}(Value{loc=''}'2'))");
    EXPECT_EQ(byPosition.entry, table->children[0]);
}

// The table with these entries after an Add of these records at its end.
std::string AfterAdd(std::string_view entries, const PlainValue* value, const PlainUi* ui, bool update) {
    const NodePtr table = First("<T>" + std::string(entries) + "</T>");
    EXPECT_TRUE(Add(*table, Position{false}, value, ui, false, update));
    return DumpChildren(*table);
}

TEST(ModelTableAdd, PresentationRecordTakesThePlaceOfTheValue) {
    const PlainValue value = Value("a", 3, "1");
    PlainUi ui = Ui("z", 1, 3, "2");
    EXPECT_EQ(AfterAdd("", &value, nullptr, false), "Var{name='a' type='long' array=''}(Value'1')");
    EXPECT_EQ(AfterAdd("", &value, &ui, false), "Var{name='a' type='long' array=''}(UI{control='num'})");
    ui.control = 0xFFFF;
    EXPECT_EQ(AfterAdd("", &value, &ui, false), "Var{name='a' type='long' array=''}(Value'1')");
}

TEST(ModelTableAdd, UpdateGivesAUiWithCommentTheValueOfOneRecord) {
    constexpr std::string_view entry = "<Var name=\"a\"><UI><Comment>c</Comment></UI></Var>";
    const PlainValue value = Value("a", 3, "1");
    PlainUi ui = Ui("z", 1, 3, "2");
    EXPECT_EQ(AfterAdd(entry, &value, &ui, true),
              "Var{name='a' type='long' array=''}(UI{control='num'}(Comment'c' Value'1'))");
    ui.type = 31;
    EXPECT_EQ(AfterAdd(entry, &value, &ui, true),
              "Var{name='a' type='long' array=''}(UI{control='num'}(Comment'c' Value'2'))");
}

TEST(ModelTableAdd, FirstEntryWithAUiValueAloneIsFollowed) {
    const PlainValue value = Value("b", 3, "2");
    EXPECT_EQ(
        AfterAdd("<Var type=\"long\"><UI><Value>1</Value></UI></Var>", &value, nullptr, false),
        "Var{type='long'}(UI(Value'1')) Var{name='b' type='long' array=''}(UI{control='text'}(Value'2'))");
}

TEST(ModelTableAdd, ByNameItUpdatesAndInsertsNothing) {
    const NodePtr table = First("<T><Var name=\"a\"/></T>");
    PlainValue value = Value("a", 3, "1");
    EXPECT_FALSE(Add(*table, Position{true}, &value, nullptr, false, false));
    EXPECT_TRUE(Add(*table, Position{true}, &value, nullptr, false, true));
    value.name = Wide("b");
    EXPECT_FALSE(Add(*table, Position{true}, &value, nullptr, false, true));
    EXPECT_EQ(DumpChildren(*table), "Var{name='a' type='long' array=''}(Value'1')");
}

TEST(ModelTableAdd, PositionInsertsBeforeItsEntry) {
    const NodePtr table = First("<T><Var name=\"a\"/><Var name=\"b\"/></T>");
    PlainValue value = Value("n", 3, "1");
    value.mask = 1;
    EXPECT_TRUE(Add(*table, Position{false, table->children[1]}, &value, nullptr, false, false));
    EXPECT_FALSE(Add(*table, Position{false, NewElement("Var")}, &value, nullptr, false, false));
    EXPECT_EQ(DumpChildren(*table), "Var{name='a'} Var{name='n'} Var{name='b'}");
}

TEST(ModelTables, OnlyVarsAreRemovedTogether) {
    const NodePtr table = First("<T><Var name=\"a\"/><!--c--><Item/><Var/></T>");
    RemoveVars(*table);
    EXPECT_EQ(Dump(*table), "T(!'c' Item)");
}

TEST(ModelTables, LoneSurrogateHasNoNarrowForm) {
    EXPECT_TRUE(HasNarrowForm({'a', 0xD83D, 0xDE00}));
    EXPECT_FALSE(HasNarrowForm({0xD83D}));
    EXPECT_FALSE(HasNarrowForm({0xDE00, 0xD83D}));
}

}  // namespace
}  // namespace model
