// How presentation data are written, with their fixed order and early ends, the same over both kinds of table
// handles.
#include "tests/host/table_support.h"

namespace host {
namespace {

// An entry named a, of type long, whose "UI" has a value (so that Set writes it), with these further
// attributes and children.
std::string Entry(std::string_view attributes, std::string_view children) {
    return std::string("<Var name=\"a\" type=\"long\"><UI ")
        .append(attributes)
        .append(">")
        .append(children)
        .append("</UI></Var>");
}

template <class Kind>
class TableUi : public testing::Test {
  protected:
    // What a Set, or an Add with update, of this record makes of the "UI".
    static std::string Set(std::string_view attributes, std::string_view children, TableEntryUInfoStruct ui) {
        const Kind table(Entry(attributes, children));
        EXPECT_TRUE(xmlTableEntrySet(table, nullptr, nullptr, &ui, 0, 0));
        return UiOf(table.Text());
    }
    static std::string Add(std::string_view attributes, std::string_view children, TableEntryUInfoStruct ui) {
        const Kind table(Entry(attributes, children));
        EXPECT_TRUE(xmlTableEntryAdd(table, nullptr, nullptr, &ui, 0, 1));
        return UiOf(table.Text());
    }
    static std::string UiOf(const std::string& text) {
        const std::string before = Lines({"<Table name=\"T\">", "\t<Var name=\"a\" type=\"long\">"});
        const std::string after = Lines({"\t</Var>", "</Table>"});
        EXPECT_TRUE(text.starts_with(before) && text.ends_with(after)) << text;
        return text.substr(before.size(), text.size() - before.size() - after.size());
    }
    // The lines of a "UI" with these attributes.
    static std::string Ui(std::string_view attributes, std::initializer_list<std::string_view> lines) {
        return Lines({std::string("\t\t<UI ").append(attributes).append(">")}) + Lines(lines) +
               Lines({"\t\t</UI>"});
    }
};
TYPED_TEST_SUITE(TableUi, TableKinds, TableKindNames);

TableEntryUInfoStruct Record(std::uint16_t control, const wchar16* comment, const wchar16* value) {
    TableEntryUInfoStruct ui = UiRecord("a"_w, control, 31);
    EXPECT_TRUE(ui.SetComment_w(comment) && ui.SetVal_w(value));
    return ui;
}

TYPED_TEST(TableUi, FirstCommentGoesBeforeTheValueWhichStays) {
    EXPECT_EQ(this->Set("control=\"num\"", "<Value>1</Value>", Record(1, "note"_w, "2"_w)),
              this->Ui("control=\"num\"", {"\t\t\t<Comment>note</Comment>", "\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, FirstCommentGoesBeforeTheFirstOfSeveralValues) {
    EXPECT_EQ(this->Set("control=\"num\"", "<!-- c --><X/><Value>1</Value><Value>2</Value>",
                        Record(1, "note"_w, "3"_w)),
              this->Ui("control=\"num\"", {"\t\t\t<!-- c -->", "\t\t\t<X/>", "\t\t\t<Comment>note</Comment>",
                                           "\t\t\t<Value>1</Value>", "\t\t\t<Value>2</Value>"}));
}

TYPED_TEST(TableUi, FirstCommentIsAppendedWhenThereIsNoValue) {
    EXPECT_EQ(this->Add("control=\"num\"", "<X/>", Record(1, "note"_w, "2"_w)),
              this->Ui("control=\"num\"", {"\t\t\t<X/>", "\t\t\t<Comment>note</Comment>"}));
}

TYPED_TEST(TableUi, WithoutAnyCommentTheValueStays) {
    EXPECT_EQ(this->Set("control=\"num\"", "<Value>1</Value>", Record(1, nullptr, "2"_w)),
              this->Ui("control=\"num\"", {"\t\t\t<Value>1</Value>"}));
    EXPECT_EQ(this->Set("control=\"num\"", "<Value>1</Value>", Record(1, ""_w, "2"_w)),
              this->Ui("control=\"num\"", {"\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, CommentThatExistsStaysWhenTheRecordHasNoneAndTheValueIsWritten) {
    EXPECT_EQ(this->Set("control=\"num\"", "<Comment>c</Comment><Value loc=\"true\">1</Value>",
                        Record(1, nullptr, "2"_w)),
              this->Ui("control=\"num\"", {"\t\t\t<Comment>c</Comment>", "\t\t\t<Value loc=\"\">2</Value>"}));
}

TYPED_TEST(TableUi, AddLeavesTheLocOfAValueAlone) {
    EXPECT_EQ(
        this->Add("control=\"num\"", "<Comment>c</Comment><Value loc=\"true\">1</Value>",
                  Record(1, nullptr, "2"_w)),
        this->Ui("control=\"num\"", {"\t\t\t<Comment>c</Comment>", "\t\t\t<Value loc=\"true\">2</Value>"}));
}

TYPED_TEST(TableUi, ValueIsAppendedWhenThereIsACommentAndNoValue) {
    EXPECT_EQ(
        this->Add("control=\"num\"", "<Comment>c</Comment><X/>", Record(1, nullptr, "2"_w)),
        this->Ui("control=\"num\"", {"\t\t\t<Comment>c</Comment>", "\t\t\t<X/>", "\t\t\t<Value>2</Value>"}));
    EXPECT_EQ(this->Add("control=\"num\"", "<Comment>c</Comment>", Record(1, nullptr, nullptr)),
              this->Ui("control=\"num\"", {"\t\t\t<Comment>c</Comment>", "\t\t\t<Value/>"}));
}

TYPED_TEST(TableUi, NewCommentReplacesTheOldOneAndTheValueStays) {
    EXPECT_EQ(this->Set("control=\"num\"", "<Comment>c</Comment><Value>1</Value>", Record(1, "new"_w, "2"_w)),
              this->Ui("control=\"num\"", {"\t\t\t<Comment>new</Comment>", "\t\t\t<Value>1</Value>"}));
    EXPECT_EQ(this->Add("control=\"num\"", "<Comment>c</Comment><Value>1</Value>", Record(1, "new"_w, "2"_w)),
              this->Ui("control=\"num\"", {"\t\t\t<Comment>new</Comment>", "\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, NewCommentEndsTheWritingAlsoBeforeAMissingValue) {
    EXPECT_EQ(this->Add("control=\"num\"", "<Comment>c</Comment>", Record(1, "new"_w, "2"_w)),
              this->Ui("control=\"num\"", {"\t\t\t<Comment>new</Comment>"}));
}

TYPED_TEST(TableUi, FirstOfSeveralCommentsIsReplaced) {
    EXPECT_EQ(this->Set("control=\"num\"", "<Comment>c</Comment><Comment>d</Comment><Value>1</Value>",
                        Record(1, "new"_w, "2"_w)),
              this->Ui("control=\"num\"", {"\t\t\t<Comment>new</Comment>", "\t\t\t<Comment>d</Comment>",
                                           "\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, NewCommentLeavesAnXmlCommentAndTheValue) {
    EXPECT_EQ(this->Set("control=\"num\"", "<Comment>old</Comment><!-- note --><Value>9</Value>",
                        Record(1, "new"_w, "2"_w)),
              this->Ui("control=\"num\"",
                       {"\t\t\t<Comment>new</Comment>", "\t\t\t<!-- note -->", "\t\t\t<Value>9</Value>"}));
    EXPECT_EQ(this->Add("control=\"num\"", "<Comment>old</Comment><!-- note --><Value>9</Value>",
                        Record(1, "new"_w, "2"_w)),
              this->Ui("control=\"num\"",
                       {"\t\t\t<Comment>new</Comment>", "\t\t\t<!-- note -->", "\t\t\t<Value>9</Value>"}));
}

TYPED_TEST(TableUi, NewCommentLeavesTheXmlCommentOfItsOwnNumber) {
    EXPECT_EQ(
        this->Set("control=\"num\"", "<!-- x --><Comment>c</Comment><!-- y --><!-- z --><Value>1</Value>",
                  Record(1, "new"_w, "2"_w)),
        this->Ui("control=\"num\"", {"\t\t\t<!-- x -->", "\t\t\t<Comment>new</Comment>", "\t\t\t<!-- y -->",
                                     "\t\t\t<!-- z -->", "\t\t\t<Value>1</Value>"}));
    EXPECT_EQ(
        this->Set("control=\"num\"", "<Value>1</Value><X/><Comment>c</Comment><!-- x --><!-- y --><!-- z -->",
                  Record(1, "new"_w, "2"_w)),
        this->Ui("control=\"num\"", {"\t\t\t<Value>1</Value>", "\t\t\t<X/>", "\t\t\t<Comment>new</Comment>",
                                     "\t\t\t<!-- x -->", "\t\t\t<!-- y -->", "\t\t\t<!-- z -->"}));
}

TYPED_TEST(TableUi, NewCommentAfterAnXmlCommentLeavesItAndTheValue) {
    EXPECT_EQ(this->Set("control=\"num\"", "<!-- x --><Comment>c</Comment><Value>1</Value>",
                        Record(1, "new"_w, "2"_w)),
              this->Ui("control=\"num\"",
                       {"\t\t\t<!-- x -->", "\t\t\t<Comment>new</Comment>", "\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, CommentIsLookedForAmongElementsOfExactlyThatName) {
    EXPECT_EQ(this->Set("control=\"num\"", "<comment>c</comment><Value>1</Value>", Record(1, nullptr, "2"_w)),
              this->Ui("control=\"num\"", {"\t\t\t<comment>c</comment>", "\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, EveryControlCodeHasItsName) {
    for (const auto& [code, name] :
         {std::pair{1, "num"},  {2, "text"},         {4, "switch"},      {5, "no_edit"},
          {7, "rgb"},           {8, "button"},       {12, "text_array"}, {14, "named_array"},
          {15, "switch_array"}, {16, "radio_array"}, {17, "state"},      {18, "named_list_array"},
          {19, "radio"},        {20, "prop_array"},  {24, "prop_array"}, {26, "prop_array"},
          {0, "text"},          {3, "text"},         {25, "text"},       {0xFFFF, "text"}}) {
        const auto control = static_cast<std::uint16_t>(code);
        EXPECT_EQ(this->Set("", "<Value>1</Value>", Record(control, nullptr, nullptr)),
                  this->Ui(std::string("control=\"") + name + "\"", {"\t\t\t<Value>1</Value>"}));
    }
}

// A record with an index, an owner and a displayed name.
TableEntryUInfoStruct Provider(std::uint32_t index, std::uint8_t owner, const wchar16* userName) {
    TableEntryUInfoStruct ui = Record(1, nullptr, nullptr);
    ui.prov_index = index;
    ui.prov_owner = owner;
    ui.SetUserName_w(userName);
    return ui;
}

constexpr std::string_view kOld = "control=\"num\" prov_index=\"7\" prov_owner=\"dwg\" name=\"n\"";

TYPED_TEST(TableUi, ProviderAndNameAreAddedInTheirOrder) {
    EXPECT_EQ(this->Set("", "<Value>1</Value>", Provider(0x80000000, 4, "m"_w)),
              this->Ui("control=\"num\" prov_index=\"2147483648\" prov_owner=\"erg\" name=\"m\"",
                       {"\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, ProviderAndNameAreReplaced) {
    EXPECT_EQ(this->Set(kOld, "<Value>1</Value>", Provider(8, 1, "m"_w)),
              this->Ui("control=\"num\" prov_index=\"8\" prov_owner=\"app\" name=\"m\"",
                       {"\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, SetRemovesProviderAndNameThatTheRecordLacks) {
    EXPECT_EQ(this->Set(kOld, "<Value>1</Value>", Provider(0, 0, nullptr)),
              this->Ui("control=\"num\"", {"\t\t\t<Value>1</Value>"}));
    EXPECT_EQ(this->Set(kOld, "<Value>1</Value>", Provider(0, 0, ""_w)),
              this->Ui("control=\"num\"", {"\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, AddKeepsProviderAndNameThatTheRecordLacks) {
    EXPECT_EQ(this->Add(kOld, "<Value>1</Value>", Provider(0, 0, nullptr)),
              this->Ui(kOld, {"\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, SetRemovesTheFirstOfTwoAttributesOfAName) {
    EXPECT_EQ(this->Set("name=\"1\" name=\"2\"", "<Value>1</Value>", Provider(0, 0, nullptr)),
              this->Ui("name=\"2\" control=\"num\"", {"\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, AddWritesAnUnknownOwnerAsEmptyAndLeavesTheCallersRecord) {
    const TypeParam table(Entry("", "<Value>1</Value>"));
    TableEntryUInfoStruct ui = Provider(0, 3, nullptr);
    EXPECT_TRUE(xmlTableEntryAdd(table, nullptr, nullptr, &ui, 0, 1));
    EXPECT_EQ(this->UiOf(table.Text()),
              this->Ui("control=\"num\" prov_owner=\"\"", {"\t\t\t<Value>1</Value>"}));
    EXPECT_EQ(ui.prov_owner, 3);
}

TYPED_TEST(TableUi, UnknownOwnerOfAFileComesBackAsApp) {
    const TypeParam table(Entry("prov_owner=\"xyz\"", "<Value>1</Value>"));
    std::uint64_t position = 0;
    TableEntryUInfoStruct ui;
    ASSERT_TRUE(xmlTableEntryGet(table, &position, nullptr, &ui));
    ASSERT_TRUE(xmlTableEntrySet(table, nullptr, nullptr, &ui, 0, 0));
    EXPECT_EQ(this->UiOf(table.Text()),
              this->Ui("prov_owner=\"app\" control=\"text\"", {"\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, AccessFlagsRegenAndBoundsAreLeftAlone) {
    constexpr std::string_view kept =
        "access=\"odd\" flags=\"1FFFF\" regen=\"r\" minVal=\"0\" maxVal=\"9\" Comment=\"x\" Value=\"y\" "
        "loc=\"z\"";
    EXPECT_EQ(this->Set(kept, "<Value>1</Value>", Record(1, nullptr, "2"_w)),
              this->Ui(std::string(kept) + " control=\"num\"", {"\t\t\t<Value>1</Value>"}));
}

TYPED_TEST(TableUi, FirstOfSeveralUisIsWritten) {
    const TypeParam table("<Var name=\"a\" type=\"long\"><UI/><UI><Value>1</Value></UI></Var>");
    TableEntryUInfoStruct ui = Record(1, nullptr, "2"_w);
    EXPECT_TRUE(xmlTableEntrySet(table, nullptr, nullptr, &ui, 0, 0));
    EXPECT_EQ(table.Text(), TableText({"\t<Var name=\"a\" type=\"long\">", "\t\t<UI control=\"num\"/>",
                                       "\t\t<UI>", "\t\t\t<Value>1</Value>", "\t\t</UI>", "\t</Var>"}));
}

}  // namespace
}  // namespace host
