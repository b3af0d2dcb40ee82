#include "tests/model/entries.h"

#include "tests/model/model_support.h"

namespace model {
namespace {

std::string Show(const EntryValue& record) {
    return Shown(record.name) + " #" + std::to_string(record.id) + " type " + std::to_string(record.type) +
           (record.loc ? " loc " : " ") + Quoted(record.value) + (record.valueLoc ? " loc" : "");
}

std::string Show(const EntryUi& record) {
    return "control " + std::to_string(record.control) + " provider " + std::to_string(record.index) +
           " of " + std::to_string(record.owner) + " comment " + Quoted(record.comment) + " name " +
           Quoted(record.name) + " " + Quoted(record.value) + (record.loc ? " loc" : "");
}

// Both records of an entry; "unreadable" and the value record when it has no known type.
std::string Read(std::string_view entry) {
    EntryValue value;
    EntryUi ui;
    const bool isReadable = ReadEntry(*First(entry), value, ui);
    return isReadable ? Show(value) + "; " + Show(ui) : "unreadable " + Show(value);
}

const std::string kNoUi = "; control 65535 provider 0 of 0 comment '' name '' ''";

TEST(ModelNumbers, ReadUpToTheFirstThatIsNoDigitAndSaturate) {
    EXPECT_EQ(ReadSigned(Wide(" -12abc")), -12);
    EXPECT_EQ(ReadSigned(Wide("4294967295")), 2147483647);
    EXPECT_EQ(ReadSigned(Wide("-99999999999")), -2147483647 - 1);
    EXPECT_EQ(ReadSigned(Wide("- 1")), 0);
    const auto wide = [](std::u16string_view text) { return Text(text.begin(), text.end()); };
    EXPECT_EQ(ReadSigned(wide(u"\u2003\u00A0-\u09E9\uFF17\u0669\u0E5A1")), -379);
    EXPECT_EQ(ReadUnsigned(wide(u"\u06F0x\u18191F"), 16), 0x91FU);
    EXPECT_EQ(ReadUnsigned(Wide("-2147483648"), 10), 0x80000000U);
    EXPECT_EQ(ReadUnsigned(Wide("4294967296"), 10), 0xFFFFFFFFU);
    EXPECT_EQ(ReadUnsigned(Wide("0x10"), 10), 0U);
    EXPECT_EQ(ReadUnsigned(Wide("0x1fG"), 16), 0x1FU);
    EXPECT_EQ(ReadUnsigned(Wide("1FFFF"), 16), 0x1FFFFU);
}

TEST(ModelNumbers, AreWrittenSignedUnsignedAndInFourHexadecimalDigits) {
    EXPECT_EQ(SignedText(0x80000000), Wide("-2147483648"));
    EXPECT_EQ(UnsignedText(0xFFFFFFFF), Wide("4294967295"));
    EXPECT_EQ(HexText(0x1F), Wide("001F"));
    EXPECT_EQ(HexText(0xABCD), Wide("ABCD"));
}

TEST(ModelReadEntry, AttributesAndTheLastValueChild) {
    EXPECT_EQ(Read("<Var name=\"n\" id=\"-1\" type=\"long\" array=\"vector\" x=\"1\"><Value>1</Value><x/>"
                   "<Value>2</Value></Var>"),
              "n #4294967295 type 4099 '2'" + kNoUi);
    EXPECT_EQ(Read("<Var type=\"ucstring\" array=\"array\" Value=\"v\"/>"), " #0 type 8223 'v'" + kNoUi);
    EXPECT_EQ(Read("<Var name=\"a\" name=\"b\" type=\"bool\" type=\"float\" array=\"list\"/>"),
              "b #0 type 11 ''" + kNoUi);
}

TEST(ModelReadEntry, NeedsAKnownType) {
    EXPECT_EQ(Read("<Var name=\"n\" type=\"float\"><Value>1</Value></Var>"), "unreadable n #0 type 0 ''");
    EXPECT_EQ(Read("<Var/>"), "unreadable  #0 type 0 ''");
}

TEST(ModelReadEntry, ValueWithoutLocTakesTheTextThatWasReadLast) {
    EXPECT_EQ(Read("<Var type=\"long\" loc=\"true\"><Value>1</Value></Var>"),
              " #0 type 3 loc '1' loc" + kNoUi);
    EXPECT_EQ(Read("<Var loc=\"true\" type=\"long\"><Value>1</Value></Var>"), " #0 type 3 loc '1'" + kNoUi);
    EXPECT_EQ(Read("<Var type=\"long\" x=\"true\"><Value loc=\"\">1</Value></Var>"),
              " #0 type 3 '1'" + kNoUi);
    EXPECT_EQ(Read("<Var type=\"long\"><Value loc=\"true\">1</Value><Value>2</Value></Var>"),
              " #0 type 3 '2' loc" + kNoUi);
}

TEST(ModelReadEntry, PresentationData) {
    EXPECT_EQ(
        Read("<Var type=\"long\"><UI control=\"radio\" prov_index=\"12abc\" prov_owner=\"xyz\" name=\"n\">"
             "<Comment>c</Comment><Value loc=\"true\">v</Value></UI></Var>"),
        " #0 type 3 ''; control 19 provider 12 of 1 comment 'c' name 'n' 'v' loc");
    EXPECT_EQ(Read("<Var type=\"long\"><UI control=\"Text\" Comment=\"c\" Value=\"v\"/><UI "
                   "prov_owner=\"erg\"/></Var>"),
              " #0 type 3 ''; control 2 provider 0 of 4 comment 'c' name '' 'v'");
}

// The entry after this value was written into it.
std::string WithValue(std::string_view entry, const EntryValue& value, bool onlySet) {
    const NodePtr node = First(entry);
    WriteEntry(*node, &value, nullptr, onlySet);
    return Dump(*node);
}

TEST(ModelWriteEntry, FieldsInTheirOrder) {
    EXPECT_EQ(WithValue("<Var/>", {0, Wide("n"), Wide("v"), 0x2003, 7}, false),
              "Var{name='n' id='7' type='long' array='array' loc=''}(Value{loc=''}'v')");
    EXPECT_EQ(WithValue("<Var/>", {0, Wide("n"), Wide("v"), 4, 0}, true),
              "Var{name='n' type='' array=''}(Value'v')");
}

TEST(ModelWriteEntry, MaskChoosesFields) {
    constexpr std::string_view entry = "<Var id=\"5\"><Value loc=\"true\">1</Value></Var>";
    EXPECT_EQ(WithValue(entry, {1, Wide("n"), Wide("v"), 3, 7}, false),
              "Var{id='5' name='n'}(Value{loc='true'}'1')");
    EXPECT_EQ(WithValue(entry, {2, Wide("n"), Wide("v"), 3, 7}, false), "Var{id='5'}(Value{loc=''}'v')");
    EXPECT_EQ(WithValue(entry, {4, Wide("n"), Wide("v"), 0x1003, 7}, false),
              "Var{id='5' type='long' array='vector'}(Value{loc='true'}'1')");
    EXPECT_EQ(WithValue(entry, {8, Wide("n"), Wide("v"), 3, 0x80000000}, false),
              "Var{id='-2147483648'}(Value{loc='true'}'1')");
}

// The "UI" after a record with control 1 was written into it.
std::string WithUi(std::string_view block, std::string_view comment, std::string_view value, bool onlySet) {
    const NodePtr entry = First("<Var>" + std::string(block) + "</Var>");
    const EntryUi ui{1, 0, 0, Wide(comment), {}, Wide(value)};
    WriteEntry(*entry, nullptr, &ui, onlySet);
    return DumpChildren(*entry);
}

TEST(ModelWriteUi, WithoutACommentElementItEndsBeforeTheValue) {
    EXPECT_EQ(WithUi("", "", "v", false), "UI{control='num'}");
    EXPECT_EQ(WithUi("<UI><x/><Value>1</Value></UI>", "c", "v", false),
              "UI{control='num'}(x Comment'c' Value'1')");
}

TEST(ModelWriteUi, ValueIsWrittenWhenThereIsACommentAndNoNewOne) {
    EXPECT_EQ(WithUi("<UI><Comment>c</Comment><Value>1</Value></UI>", "", "v", false),
              "UI{control='num'}(Comment'c' Value{loc=''}'v')");
    EXPECT_EQ(WithUi("<UI><Comment/></UI>", "", "v", true), "UI{control='num'}(Comment Value'v')");
}

TEST(ModelWriteUi, NewCommentEndsItBeforeTheValue) {
    EXPECT_EQ(WithUi("<UI><Comment>c</Comment><Value>1</Value></UI>", "new", "v", false),
              "UI{control='num'}(Comment'new' Value'1')");
    EXPECT_EQ(WithUi("<UI><!--x--><Comment>c</Comment><!--y--></UI>", "new", "v", true),
              "UI{control='num'}(!'x' Comment'new' !'y')");
}

TEST(ModelWriteUi, ProviderAndNameThatAreNotSetGoUnlessOnlySet) {
    constexpr std::string_view block = "<UI prov_index=\"7\" prov_owner=\"app\" name=\"n\"/>";
    EXPECT_EQ(WithUi(block, "", "", false), "UI{control='num'}");
    EXPECT_EQ(WithUi(block, "", "", true), "UI{prov_index='7' prov_owner='app' name='n' control='num'}");
    const NodePtr entry = First("<Var/>");
    const EntryUi ui{26, 0xFFFFFFFF, 3, {}, Wide("n")};
    WriteEntry(*entry, nullptr, &ui, true);
    EXPECT_EQ(DumpChildren(*entry),
              "UI{control='prop_array' prov_index='4294967295' prov_owner='' name='n'}");
}

TEST(ModelEntries, AreFoundByTheirFirstNameAndAnEmptyNameFindsAnyNamedOne) {
    const NodePtr table =
        First("<T><!--a--><Var/><Var name=\"b\" name=\"a\"/><Item name=\"a\"/><Var name=\"\"/></T>");
    EXPECT_EQ(FindEntry(*table, Wide("a")), table->children[3]);
    EXPECT_EQ(FindEntry(*table, Wide("")), table->children[2]);
    EXPECT_EQ(FindEntry(*table, Wide("c")), nullptr);
}

TEST(ModelEntries, AreAddedBeforeAChildOrUpdatedByName) {
    const NodePtr table = First("<T><Var name=\"a\"/></T>");
    const EntryValue value{1, Wide("n")};
    EXPECT_TRUE(AddEntry(*table, table->children[0].get(), {Wide("n"), &value}));
    EXPECT_TRUE(AddEntry(*table, nullptr, {Wide("a"), &value, nullptr, true, true}));
    EXPECT_FALSE(AddEntry(*table, table.get(), {Wide("n"), &value}));
    EXPECT_EQ(Dump(*table), "T{eud='true'}(Var{name='n'} Var{name='n' eud='true'})");
}

TEST(ModelEntries, AreRemovedByNameFromAnOccurrenceOn) {
    const auto left = [](std::int32_t occurrence, bool all) {
        const NodePtr table = First("<T><a name=\"n\"/><b/><c name=\"n\"/><d name=\"n\"/></T>");
        const bool any = RemoveEntries(*table, Wide("n"), occurrence, all);
        return (any ? "" : "none ") + DumpChildren(*table);
    };
    EXPECT_EQ(left(1, false), "a{name='n'} b d{name='n'}");
    EXPECT_EQ(left(1, true), "a{name='n'} b");
    EXPECT_EQ(left(-1, true), "b");
    EXPECT_EQ(left(3, true), "none a{name='n'} b c{name='n'} d{name='n'}");
    EXPECT_EQ(left(-2, true), "none a{name='n'} b c{name='n'} d{name='n'}");
}

}  // namespace
}  // namespace model
