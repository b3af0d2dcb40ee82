// Changing values and "eud", and removing entries.
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "tests/front/front_support.h"

namespace {

using front_tests::FullUi;
using front_tests::kUnpaired;
using front_tests::ProfileWith;
using front_tests::SavedBytes;
using front_tests::TableFile;
using front_tests::TableWith;
using mox::Control;
using mox::Entry;
using mox::Eud;
using mox::Shape;
using mox::Table;
using mox::ValueType;

const std::string kWithEud = "<Var name=\"A\" type=\"long\" eud=\"true\"><Value>1</Value></Var>";
TEST(FrontEntryChanges, SetValueChangesTheValueAlone) {
    Table table = TableWith("");
    ASSERT_TRUE(table.add({"A", "1", ValueType::Long, Shape::Vector, 12, FullUi()}));
    EXPECT_TRUE(table.setValue("A", "22"));
    Entry read = *table.find("A");
    EXPECT_EQ(read.value, "22");
    EXPECT_EQ(read.shape, Shape::Vector);
    EXPECT_EQ(read.id, 12U);
    EXPECT_EQ(read.ui->control, Control::Number);
    EXPECT_EQ(read.ui->value, "ui value");
    EXPECT_TRUE(table.setValue(u"A", u""));
    EXPECT_EQ(table.find("A")->value, "");
    EXPECT_TRUE(table.setValue("A", ""));
    EXPECT_TRUE(table.setValue("A", "3"));
    read = *table.find("A");
    EXPECT_EQ(read.value, "3");
    EXPECT_EQ(read.ui->shownName, "shown") << "an empty value in between loses nothing";
    EXPECT_FALSE(table.setValue("B", "1"));
    EXPECT_FALSE(table.setValue("", "1"));
    EXPECT_FALSE(table.setValue("A", "\xFF"));
    EXPECT_FALSE(table.setValue("A", kUnpaired));
    EXPECT_EQ(table.find("A")->value, "3");
}

TEST(FrontEntryChanges, SetValueGivesAnEntryItsOwnValue) {
    Table table = TableWith(
        "<Var name=\"0\" type=\"long\"><Value>1</Value></Var>"
        "<Var name=\"A\" type=\"long\"><UI control=\"num\" name=\"n\"><Value>1</Value></UI></Var>");
    EXPECT_TRUE(table.setValue("A", "2"));
    EXPECT_EQ(table.find("A")->value, "2");
    EXPECT_EQ(table.find("A")->ui->value, "1");
    EXPECT_EQ(table.find("A")->ui->control, Control::Number);
}

TEST(FrontEntryChanges, SetValueReplacesAValueThatARecordCannotHold) {
    mox::Profile profile;
    profile.setLossy(true);
    ASSERT_TRUE(profile.setString("S", "K", kUnpaired));
    auto section = profile.findSection("S");
    ASSERT_EQ(section->find("K")->value, std::nullopt);
    EXPECT_TRUE(section->setValue("K", "1"));
    EXPECT_EQ(profile.getString("S", "K"), "1");
}

TEST(FrontEntryChanges, EudIsSetKeptAndRemoved) {
    const std::string withoutEud =
        TableFile({"\t<Var name=\"A\" type=\"long\" array=\"\">", "\t\t<Value>1</Value>", "\t</Var>"});
    Table table = TableWith("");
    ASSERT_TRUE(table.add({"A", "1", ValueType::Long}));
    EXPECT_EQ(SavedBytes(table), withoutEud);
    Table other = TableWith("");
    ASSERT_TRUE(other.add({"A", "1", ValueType::Long}, Eud::Set));
    const std::string withEud = TableFile(
        {"\t<Var name=\"A\" type=\"long\" array=\"\" eud=\"true\">", "\t\t<Value>1</Value>", "\t</Var>"},
        "<Table name=\"T\" eud=\"true\">");
    EXPECT_EQ(SavedBytes(other), withEud);
    ASSERT_TRUE(table.put({"A", "1", ValueType::Long}, Eud::Set));
    EXPECT_EQ(SavedBytes(table), withEud);
    ASSERT_TRUE(table.put({"A", "2", ValueType::Long}));
    ASSERT_TRUE(table.put({"A", "1", ValueType::Long}));
    EXPECT_EQ(SavedBytes(table), withEud);
    EXPECT_FALSE(table.setValueUnlessEud("A", "2"));
    EXPECT_TRUE(table.setValueUnlessEud("A", "1")) << "that is its value";
    EXPECT_EQ(SavedBytes(table), withEud);
    EXPECT_TRUE(table.setValue("A", "2"));
    EXPECT_TRUE(table.setValueUnlessEud("A", "3"));
    EXPECT_TRUE(table.setValueUnlessEud("A", "4", Eud::Set));
    EXPECT_FALSE(table.setValueUnlessEud("A", "5"));
    EXPECT_EQ(table.find("A")->value, "4");
    EXPECT_TRUE(table.setValue("A", "6", Eud::Set));
    EXPECT_FALSE(table.setValueUnlessEud("A", "7"));
}

TEST(FrontEntryChanges, SetValueUnlessEudLeavesAnEntryWithoutAValue) {
    Table table = TableWith("<Var name=\"A\" type=\"long\"/>");
    const std::string before = SavedBytes(table);
    EXPECT_FALSE(table.setValueUnlessEud("A", "1"));
    EXPECT_EQ(SavedBytes(table), before);
}

TEST(FrontEntryChanges, RemoveRemovesOneEntryOfANameAndRemoveAllEvery) {
    Table table = TableWith(
        "<Var name=\"A\" type=\"long\" id=\"1\"/><Var name=\"B\" type=\"long\"/><Var name=\"A\" "
        "type=\"long\" id=\"2\"/>"
        "<Var name=\"A\" type=\"long\" id=\"3\" eud=\"true\"/><Var name=\"\" type=\"long\"/><Var "
        "type=\"long\"/>");
    EXPECT_TRUE(table.remove("A", 1));
    EXPECT_EQ(table.list().at(2).id, 3U);
    EXPECT_TRUE(table.remove(u"A"));
    EXPECT_EQ(table.find("A")->id, 3U);
    EXPECT_FALSE(table.remove("A", 1));
    EXPECT_FALSE(table.remove("X"));
    EXPECT_FALSE(table.remove(std::string(260, 'A')));
    EXPECT_FALSE(table.remove("\xFF"));
    EXPECT_TRUE(table.removeAll("A"));
    EXPECT_FALSE(table.removeAll("A"));
    EXPECT_TRUE(table.remove(""));
    EXPECT_EQ(table.list().size(), 2U);
    EXPECT_TRUE(table.clear());
    EXPECT_TRUE(table.list().empty());
}

TEST(FrontEntryChanges, ASectionIsATable) {
    mox::Profile profile = ProfileWith(kWithEud);
    auto section = profile.findSection("S");
    EXPECT_FALSE(section->setValueUnlessEud("A", "2"));
    EXPECT_TRUE(section->setValue("A", "2"));
    EXPECT_TRUE(section->add({"B", "3", ValueType::String, Shape::Single, 0, FullUi()}));
    EXPECT_EQ(profile.getInt("S", "A"), 2);
    EXPECT_EQ(profile.getInt("S", "B"), 3);
    EXPECT_TRUE(section->remove("A"));
    EXPECT_FALSE(profile.contains("S", "A"));
}

}  // namespace
