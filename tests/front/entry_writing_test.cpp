// add and put: a call that succeeds has stored what it was given.
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "tests/front/front_support.h"

namespace {

using front_tests::FullUi;
using front_tests::kUnpaired;
using front_tests::SavedBytes;
using front_tests::TableFile;
using front_tests::TableWith;
using mox::Control;
using mox::Entry;
using mox::Entry16;
using mox::Owner;
using mox::Presentation;
using mox::Shape;
using mox::Table;
using mox::ValueType;

const std::string kNoType = "<Var name=\"A\"><Value>1</Value></Var>";
// The first entry has a value in its presentation data alone.
const std::string kValuesInUi =
    "<Var name=\"A\" type=\"long\"><UI control=\"num\"><Value>1</Value></UI></Var>"
    "<Var name=\"B\" type=\"long\"><Value>2</Value></Var>";
std::string NamesOf(const mox::EntryTable& table) {
    std::string names;
    for (const Entry& entry : table.entries())
        names += entry.name;
    return names;
}

TEST(FrontEntryWrites, AddStoresEveryField) {
    Table table = TableWith("");
    ASSERT_TRUE(table.add({"A", "1", ValueType::Long, Shape::Array, 12, FullUi()}));
    EXPECT_EQ(SavedBytes(table),
              TableFile({"\t<Var name=\"A\" id=\"12\" type=\"long\" array=\"array\">", "\t\t<Value>1</Value>",
                         "\t\t<UI control=\"num\" prov_index=\"7\" prov_owner=\"app\" name=\"shown\">",
                         "\t\t\t<Comment>comment</Comment>", "\t\t\t<Value>ui value</Value>", "\t\t</UI>",
                         "\t</Var>"}));
}

TEST(FrontEntryWrites, AddStoresTextsOfBothEncodings) {
    for (const ValueType type : {ValueType::String, ValueType::UcString}) {
        Table table = TableWith("");
        table.setLossy(true);  // for the unpaired surrogates
        mox::Presentation16 ui;
        ui.control = Control::Text;
        ui.shownName = u"\u00E4" + kUnpaired;
        ui.comment = u"\U0001F600" + kUnpaired;
        ui.value = u"\u03B1";
        const Entry16 entry{u"\u00FC" + kUnpaired, u"\u4E2D\U0001F600", type, Shape::Single, 0, ui};
        ASSERT_TRUE(table.add(entry));
        const Entry16 read = table.list16().at(0);
        EXPECT_EQ(read.name, entry.name);
        EXPECT_EQ(read.value, entry.value);
        EXPECT_EQ(read.type, type);
        EXPECT_EQ(read.ui->shownName, ui.shownName);
        EXPECT_EQ(read.ui->comment, ui.comment);
        EXPECT_EQ(read.ui->value, ui.value);
        Table copy = TableWith("");
        copy.setLossy(true);
        ASSERT_TRUE(copy.add(table.list().at(0)));
        EXPECT_EQ(SavedBytes(copy), SavedBytes(table));
    }
}

TEST(FrontEntryWrites, AddAppendsAndAddBeforeInserts) {
    Table table = TableWith("");
    EXPECT_TRUE(table.add({"A", "1"}));
    EXPECT_TRUE(table.add({u"B", u"1"}));
    EXPECT_TRUE(table.addBefore("B", {"C", "1", ValueType::Long, Shape::Single, 0, FullUi()}));
    EXPECT_TRUE(table.addBefore(u"A", {u"D", u"1"}));
    EXPECT_EQ(NamesOf(table), "DACB");
    EXPECT_FALSE(table.addBefore("X", {"E", "1"}));
    EXPECT_FALSE(table.addBefore("", {"E", "1"}));
    EXPECT_FALSE(table.addBefore("\xFF", {"E", "1"}));
    EXPECT_FALSE(table.addBefore("A", {"B", "1"}));
    EXPECT_EQ(NamesOf(table), "DACB");
    EXPECT_EQ(table.find("C")->ui->value, "ui value");
}

TEST(FrontEntryWrites, AddAcceptsAnEntryWithoutAValue) {
    Table table = TableWith("");
    EXPECT_TRUE(table.add({"A"}));
    Presentation ui;
    ui.control = Control::Rgb;
    EXPECT_TRUE(table.add({"B", std::nullopt, ValueType::Byte, Shape::Single, 0, ui}));
    EXPECT_EQ(SavedBytes(table), TableFile({"\t<Var name=\"A\" type=\"string\" array=\"\"/>",
                                            "\t<Var name=\"B\" type=\"byte\" array=\"\">",
                                            "\t\t<UI control=\"rgb\"/>", "\t</Var>"}));
}

TEST(FrontEntryWrites, AddRefusesWhatCannotBeStoredAndAddsNothing) {
    Table table = TableWith("<Var name=\"A\" type=\"long\"><Value>1</Value></Var>");
    const std::string before = SavedBytes(table);
    EXPECT_FALSE(table.add({"A", "2"})) << "exists already";
    EXPECT_FALSE(table.add({"", "2"}));
    EXPECT_FALSE(table.add({std::string(260, 'n'), "2"}));
    EXPECT_FALSE(table.add({"B\xFF", "2"}));
    EXPECT_FALSE(table.add({"B", "\xFF"}));
    EXPECT_FALSE(table.add({"B", std::string("a\0b", 3)}));
    EXPECT_FALSE(table.add({u"B", kUnpaired}));
    EXPECT_FALSE(table.add({"B", "1", static_cast<ValueType>(99)})) << "an unknown type could not be read";
    Presentation ui = FullUi();
    ui.comment = "\xFF";
    EXPECT_FALSE(table.add({"B", "1", ValueType::Long, Shape::Single, 0, ui}));
    ui = FullUi();
    ui.shownName = "\xFF";
    EXPECT_FALSE(table.add({"B", "1", ValueType::Long, Shape::Single, 0, ui}));
    ui = FullUi();
    ui.value = "\xED\xA0\x80";
    EXPECT_FALSE(table.add({"B", "1", ValueType::Long, Shape::Single, 0, ui}));
    ui = FullUi();
    ui.comment.clear();
    EXPECT_FALSE(table.add({"B", "1", ValueType::Long, Shape::Single, 0, ui}))
        << "a ui value without a comment";
    ui = FullUi();
    ui.control = static_cast<Control>(0xFFFF);
    EXPECT_FALSE(table.add({"B", "1", ValueType::Long, Shape::Single, 0, ui}));
    EXPECT_EQ(SavedBytes(table), before);
    EXPECT_TRUE(table.add({std::string(259, 'n'), "2"}));
    EXPECT_FALSE(table.add({u"B", kUnpaired, ValueType::UcString})) << "no other program could read the file";
    table.setLossy(true);
    EXPECT_TRUE(table.add({u"B", kUnpaired, ValueType::UcString}));
    EXPECT_FALSE(table.add({u"C", kUnpaired}));
    EXPECT_EQ(table.find16("B")->value, kUnpaired);
}

// In such a table the value of an entry without one of its own is stored in its presentation data.
TEST(FrontEntryWrites, ATableWhoseFirstValueIsInThePresentationDataStoresValuesThere) {
    Table table = TableWith(kValuesInUi + "<Var name=\"_\" type=\"long\"/>");
    EXPECT_TRUE(table.add({"C", "3", ValueType::Long}));
    EXPECT_TRUE(table.put({"B", "4", ValueType::Double}));
    EXPECT_TRUE(table.setValue("_", "5"));
    EXPECT_TRUE(table.setValue("A", "6"));
    EXPECT_EQ(SavedBytes(table),
              TableFile({"\t<Var name=\"A\" type=\"long\">", "\t\t<UI control=\"num\">",
                         "\t\t\t<Value loc=\"\">6</Value>", "\t\t</UI>", "\t</Var>",
                         "\t<Var name=\"B\" type=\"double\" array=\"\">", "\t\t<Value loc=\"\">4</Value>",
                         "\t</Var>", "\t<Var name=\"_\" type=\"long\">", "\t\t<UI control=\"text\">",
                         "\t\t\t<Value loc=\"\">5</Value>", "\t\t</UI>", "\t</Var>",
                         "\t<Var name=\"C\" type=\"long\" array=\"\">", "\t\t<UI control=\"text\">",
                         "\t\t\t<Value>3</Value>", "\t\t</UI>", "\t</Var>"}));
    EXPECT_EQ(table.find("C")->effectiveValue(), "3");
    EXPECT_EQ(NamesOf(table), "AB_C");
}

TEST(FrontEntryWrites, AnEntryWithoutAValueIsAddedBeforeOneWithPresentationData) {
    Table table = TableWith(kValuesInUi);
    EXPECT_TRUE(table.addBefore("A", {"D"}));
    EXPECT_EQ(NamesOf(table), "DAB");
    EXPECT_EQ(table.find("D")->effectiveValue(), "");
    EXPECT_EQ(table.find("A")->effectiveValue(), "1");
}

TEST(FrontEntryWrites, PutAddsOrChanges) {
    Table table = TableWith("");
    EXPECT_TRUE(table.put({"A", "1", ValueType::Long, Shape::Single, 5, FullUi()}));
    EXPECT_TRUE(table.put({u"B", u"2"}));
    EXPECT_EQ(NamesOf(table), "AB");
    EXPECT_TRUE(table.put({"A", "9", ValueType::Double}));
    const Entry read = *table.find("A");
    EXPECT_EQ(read.value, "9");
    EXPECT_EQ(read.type, ValueType::Double);
    EXPECT_EQ(read.id, 5U);
    EXPECT_EQ(read.ui->comment, "comment");
    EXPECT_EQ(read.ui->value, "ui value");
    EXPECT_EQ(NamesOf(table), "AB");
}

TEST(FrontEntryWrites, PutKeepsFieldsThatAreEmptyInTheRequest) {
    for (const ValueType type : {ValueType::Long, ValueType::UcString}) {
        Table table = TableWith("");
        ASSERT_TRUE(table.add({"A", "1", type, Shape::Single, 5, FullUi()}));
        Presentation ui;
        ui.control = Control::Rgb;
        EXPECT_TRUE(table.put({"A", std::nullopt, type, Shape::Single, 0, ui}));
        const Entry read = *table.find("A");
        EXPECT_EQ(read.value, "1");
        EXPECT_EQ(read.id, 5U);
        EXPECT_EQ(read.ui->control, Control::Rgb);
        EXPECT_EQ(read.ui->providerIndex, 7U);
        EXPECT_EQ(read.ui->providerOwner, Owner::App);
        EXPECT_EQ(read.ui->shownName, "shown");
        EXPECT_EQ(read.ui->comment, "comment");
        EXPECT_EQ(read.ui->value, "ui value");
    }
}

TEST(FrontEntryWrites, PutChangesThePresentationData) {
    for (const ValueType type : {ValueType::Long, ValueType::UcString}) {
        Table table = TableWith("");
        ASSERT_TRUE(table.add({"A", "1", type, Shape::Single, 5, FullUi()}));
        Presentation ui;
        ui.value = "other";
        EXPECT_TRUE(table.put({"A", std::nullopt, type, Shape::Single, 0, ui}));
        EXPECT_EQ(table.find("A")->ui->value, "other");
        EXPECT_EQ(table.find("A")->ui->comment, "comment");
        EXPECT_EQ(table.find("A")->ui->control, Control::Text);
        ui.comment = "new";
        ui.value = "third";
        ui.providerOwner = Owner::Erg;
        EXPECT_TRUE(table.put({"A", "2", type, Shape::Single, 0, ui}));
        EXPECT_EQ(table.find("A")->value, "2");
        EXPECT_EQ(table.find("A")->ui->value, "third");
        EXPECT_EQ(table.find("A")->ui->comment, "new");
        EXPECT_EQ(table.find("A")->ui->providerOwner, Owner::Erg);
    }
}

TEST(FrontEntryWrites, PutRepairsAnEntryWithoutAType) {
    Table table = TableWith(kNoType);
    EXPECT_TRUE(table.put({"A", "2", ValueType::Long}));
    EXPECT_EQ(table.find("A")->value, "2");
    EXPECT_EQ(NamesOf(table), "A");
    EXPECT_FALSE(table.put({"", "2"}));
    EXPECT_FALSE(table.put({"A", "\xFF"}));
    EXPECT_FALSE(table.put({"A", "3", static_cast<ValueType>(0)}));
    EXPECT_FALSE(table.put({"A", "3", ValueType::Long, static_cast<Shape>(0x4000)}));
    EXPECT_EQ(table.find("A")->value, "2");
}

}  // namespace
