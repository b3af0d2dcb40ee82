// Writing entries where what is stored depends on presentation data.
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "tests/front/front_support.h"

namespace {

using front_tests::SavedBytes;
using front_tests::TableFile;
using front_tests::TableWith;
using mox::Control;
using mox::Presentation;
using mox::Shape;
using mox::Table;
using mox::ValueType;

Presentation WithValue(const std::string& value, const std::string& comment) {
    Presentation ui;
    ui.control = Control::Number;
    ui.value = value;
    ui.comment = comment;
    return ui;
}

TEST(FrontPresentationWrites, AFirstEntryWithoutAnyValueMovesNoValues) {
    Table table = TableWith("<Var name=\"A\" type=\"long\"><UI control=\"num\"/></Var>");
    EXPECT_TRUE(table.add({"B", "1", ValueType::Long}));
    EXPECT_EQ(table.find("B")->value, "1");
    EXPECT_EQ(table.list().size(), 2U);
}

TEST(FrontPresentationWrites, ATableWhoseFirstValueIsInThePresentationDataAcceptsEveryName) {
    std::string entries =
        "<Var name=\"A\" type=\"long\"><UI control=\"num\"><Value>1</Value></UI></Var>"
        "<Var name=\"C\" type=\"long\"/>";
    for (std::size_t length = 2; length <= 259; ++length)
        entries += "<Var name=\"" + std::string(length, '_') + "\" type=\"long\"/>";
    Table table = TableWith(entries);
    const std::size_t count = table.list().size();
    EXPECT_TRUE(table.add({"_", "1", ValueType::Long}));
    EXPECT_TRUE(table.put({"C", "2", ValueType::Long}));
    EXPECT_TRUE(table.setValue("___", "3"));
    EXPECT_TRUE(table.setValue(std::string(259, '_'), "4"));
    EXPECT_EQ(table.find("_")->effectiveValue(), "1");
    EXPECT_EQ(table.find("C")->effectiveValue(), "2");
    EXPECT_EQ(table.find("___")->effectiveValue(), "3");
    EXPECT_EQ(table.find(std::string(259, '_'))->effectiveValue(), "4");
    EXPECT_EQ(table.list().size(), count + 1);
}

TEST(FrontPresentationWrites, PresentationDataWithoutAControlGetOne) {
    Table table = TableWith("");
    Presentation ui = WithValue("", "");
    ui.control = Control::None;
    EXPECT_TRUE(table.add({"A", "1", ValueType::Long, Shape::Single, 0, ui}));
    ASSERT_TRUE(table.find("A")->ui.has_value());
    EXPECT_EQ(table.find("A")->ui->control, Control::Text);
    EXPECT_EQ(table.find("A")->ui->value, "");
}

TEST(FrontPresentationWrites, AValueWithoutACommentIsRefused) {
    Table table = TableWith("<Var name=\"A\" type=\"long\"><Value>1</Value></Var>");
    EXPECT_FALSE(table.put({"A", std::nullopt, ValueType::Long, Shape::Single, 0, WithValue("v", "")}));
    EXPECT_TRUE(table.put({"A", std::nullopt, ValueType::Long, Shape::Single, 0, WithValue("v", "c")}));
    EXPECT_EQ(table.find("A")->ui->value, "v");
    EXPECT_EQ(table.find("A")->value, "1");
}

TEST(FrontPresentationWrites, AValueThatARecordCannotHoldCannotBeKept) {
    Table table = TableWith("");
    table.setLossy(true);
    mox::Presentation16 unpaired;
    unpaired.comment = u"c";
    unpaired.value = std::u16string{0xD800};
    ASSERT_TRUE(table.add({u"A", u"1", ValueType::UcString, Shape::Single, 0, unpaired}));
    ASSERT_TRUE(table.put({"A", "1", ValueType::String}));
    ASSERT_EQ(table.find("A")->ui->value, std::nullopt);
    Presentation ui;
    ui.shownName = "n";
    EXPECT_FALSE(table.put({"A", std::nullopt, ValueType::String, Shape::Single, 0, ui}));
    ui.value = "new";
    EXPECT_TRUE(table.put({"A", std::nullopt, ValueType::String, Shape::Single, 0, ui}));
    EXPECT_EQ(table.find("A")->ui->value, "new");
}

// The two documents in the comment of mox::front::WriteEntry.
TEST(FrontPresentationWrites, PutWritesTheValueAndThenThePresentationData) {
    Table table = TableWith("<Var name=\"A\" type=\"long\"><Value>1</Value></Var>");
    EXPECT_TRUE(table.put({"A", "2", ValueType::Long, Shape::Single, 0, WithValue("9", "mm")}));
    EXPECT_EQ(SavedBytes(table),
              TableFile({"\t<Var name=\"A\" type=\"long\" array=\"\">", "\t\t<Value>2</Value>",
                         "\t\t<UI control=\"num\">", "\t\t\t<Comment>mm</Comment>", "\t\t\t<Value>9</Value>",
                         "\t\t</UI>", "\t</Var>"}));
}

TEST(FrontPresentationWrites, PutRestoresTheControlWhereTheValueIsInThePresentationData) {
    Table table = TableWith("<Var name=\"A\" type=\"long\"><UI control=\"num\"><Value>1</Value></UI></Var>");
    TableEntryValueInfoStruct record;
    ASSERT_TRUE(mox::front::SetRecordName(mox::Text("A").units(), record));
    ASSERT_TRUE(record.SetVal("2"));
    record.type = 3;
    const auto withControl = [](const std::string& control) {
        return TableFile({"\t<Var name=\"A\" type=\"long\" array=\"\">",
                          "\t\t<UI control=\"" + control + "\">", "\t\t\t<Value>2</Value>", "\t\t</UI>",
                          "\t</Var>"});
    };
    ASSERT_TRUE(xmlTableEntryAdd(table.handle(), nullptr, &record, nullptr, 0, 1));
    EXPECT_EQ(SavedBytes(table), withControl("text")) << "after step 3";

    Table other = TableWith("<Var name=\"A\" type=\"long\"><UI control=\"num\"><Value>1</Value></UI></Var>");
    EXPECT_TRUE(other.put({"A", "2", ValueType::Long}));
    EXPECT_EQ(SavedBytes(other), withControl("num"));
}

}  // namespace
