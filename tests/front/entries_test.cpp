// Reading entries.
#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/front/front_support.h"

namespace {

using front_tests::ProfileWith;
using front_tests::TableWith;
using mox::Control;
using mox::Entry;
using mox::Entry16;
using mox::Owner;
using mox::Shape;
using mox::Table;
using mox::ValueType;

// A table over 16-bit text, which only a file can hold.
Table WideTableWith(std::u16string_view entries) {
    std::u16string text = u"<Table name=\"T\">";
    text.append(entries).append(u"</Table>\n");
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    const host::ScratchFile file;
    host::WriteBytes(file.Path(), bytes);
    auto table = Table::open(file.Path().u16string());
    EXPECT_TRUE(table.has_value());
    return std::move(*table);
}

constexpr const char* kFull =
    "<Var name=\"Drill\" id=\"12\" type=\"double\" array=\"vector\"><Value>3.0</Value>"
    "<UI control=\"num\" prov_index=\"7\" prov_owner=\"dwg\" name=\"Drill, 3 mm\"><Comment>in mm</Comment>"
    "<Value>3</Value></UI></Var>";

template <class String>
void ExpectFull(const mox::BasicEntry<String>& entry, const std::string& own = "3.0") {
    const auto text = [](const char* ascii) { return String(ascii, ascii + std::string_view(ascii).size()); };
    EXPECT_EQ(entry.name, text("Drill"));
    EXPECT_EQ(entry.value, text(own.c_str()));
    EXPECT_EQ(entry.type, ValueType::Double);
    EXPECT_EQ(entry.shape, Shape::Vector);
    EXPECT_EQ(entry.id, 12U);
    ASSERT_TRUE(entry.ui.has_value());
    EXPECT_EQ(entry.ui->control, Control::Number);
    EXPECT_EQ(entry.ui->providerIndex, 7U);
    EXPECT_EQ(entry.ui->providerOwner, Owner::Dwg);
    EXPECT_EQ(entry.ui->shownName, text("Drill, 3 mm"));
    EXPECT_EQ(entry.ui->comment, text("in mm"));
    EXPECT_EQ(entry.ui->value, text("3"));
}

TEST(FrontEntries, EveryFieldIsRead) {
    const Table table = TableWith(kFull);
    ASSERT_TRUE(table.find("Drill").has_value());
    ExpectFull(*table.find("Drill"));
    ExpectFull(*table.find16(u"Drill"));
    ASSERT_EQ(table.list().size(), 1U);
    ExpectFull(table.list()[0]);
    ExpectFull(table.list16()[0]);
    const mox::Profile profile = ProfileWith(kFull);
    ExpectFull(*profile.findSection("S")->find("Drill"));
}

TEST(FrontEntries, MissingFieldsAreEmpty) {
    const Table table = TableWith("<Var name=\"A\" type=\"ucstring\"/><Var type=\"byte\" array=\"array\"/>");
    const std::vector<Entry> entries = table.list();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].value, "");
    EXPECT_EQ(entries[0].type, ValueType::UcString);
    EXPECT_EQ(entries[0].shape, Shape::Single);
    EXPECT_EQ(entries[0].id, 0U);
    EXPECT_FALSE(entries[0].ui.has_value());
    EXPECT_EQ(entries[1].name, "");
    EXPECT_EQ(entries[1].shape, Shape::Array);
}

TEST(FrontEntries, AnyPresentationFieldAunpairedCounts) {
    for (const char* ui :
         {"<UI control=\"rgb\"/>", "<UI prov_index=\"1\"/>", "<UI prov_owner=\"erg\"/>", "<UI name=\"n\"/>",
          "<UI><Comment>c</Comment></UI>", "<UI><Value>v</Value></UI>"}) {
        const Table table =
            TableWith(std::string("<Var name=\"A\" type=\"long\"><Value>1</Value>") + ui + "</Var>");
        EXPECT_TRUE(table.find("A")->ui.has_value()) << ui;
    }
    EXPECT_FALSE(TableWith("<Var name=\"A\" type=\"long\"><UI/></Var>").find("A")->ui.has_value());
    EXPECT_EQ(TableWith("<Var name=\"A\" type=\"long\"><UI name=\"n\"/></Var>").find("A")->ui->control,
              Control::None);
}

TEST(FrontEntries, TheEffectiveValueFallsBackToThePresentationData) {
    const Table table = TableWith(
        "<Var name=\"A\" type=\"long\"><UI><Value>1</Value></UI></Var>"
        "<Var name=\"B\" type=\"long\"><Value>2</Value><UI><Value>1</Value></UI></Var>"
        "<Var name=\"C\" type=\"long\"/>");
    EXPECT_EQ(table.find("A")->effectiveValue(), "1");
    EXPECT_EQ(table.find("A")->value, "");
    EXPECT_EQ(table.find("B")->effectiveValue(), "2");
    EXPECT_EQ(table.find16("C")->effectiveValue(), u"");
}

TEST(FrontEntries, ALoopSkipsElementsThatAreNotEntries) {
    const Table table = TableWith(
        "<Var name=\"X\"/><Var name=\"A\" type=\"long\"/><!--c--><Var name=\"Y\" type=\"what\"/>"
        "<Var name=\"Z\"/><Other name=\"B\" type=\"long\"/><Var name=\"W\"/>");
    std::string names;
    for (const Entry& entry : table.entries())
        names += entry.name;
    EXPECT_EQ(names, "AB");
    EXPECT_EQ(table.countUnreadable(), 4U);
    EXPECT_FALSE(table.find("X").has_value());
    EXPECT_TRUE(table.contains("X"));
    EXPECT_TRUE(table.contains(u"A"));
    EXPECT_FALSE(table.contains("none"));
    EXPECT_EQ(TableWith("").countUnreadable(), 0U);
    EXPECT_EQ(TableWith("").entries().begin(), TableWith("").entries().end());
}

TEST(FrontEntries, AnEmptyOrImpossibleNameFindsNothing) {
    const Table table = TableWith("<Var name=\"A\" type=\"long\"/>");
    for (const std::string& name :
         {std::string(), std::string("A\0", 2), std::string("\xFF"), std::string(260, 'A')}) {
        EXPECT_FALSE(table.find(name).has_value());
        EXPECT_FALSE(table.contains(name));
    }
}

TEST(FrontEntries, ALoopCanBeLeftAndIteratorsCopied) {
    const Table table = TableWith(
        "<Var name=\"A\" type=\"long\"/><Var name=\"B\" type=\"long\"/><Var name=\"C\" type=\"long\"/>");
    for (const Entry16& entry : table.entries16()) {
        if (entry.name == u"B") break;
    }
    auto at = table.entries().begin();
    const auto kept = at++;
    EXPECT_EQ(kept->name, "A");
    EXPECT_EQ(at->name, "B");
    EXPECT_NE(at, kept);
    EXPECT_NE(at.position(), 0U);
    auto copy = at;
    ++copy;
    EXPECT_EQ(at->name, "B");
    EXPECT_EQ(copy->name, "C");
    EXPECT_EQ(++copy, table.entries().end());
    EXPECT_EQ(copy.position(), 0U);
    const auto range = table.entries();
    EXPECT_EQ(std::count_if(range.begin(), range.end(), [](const Entry& entry) { return entry.name > "A"; }),
              2);
}

TEST(FrontEntries, ARangeKeepsATemporaryTableAlive) {
    std::string names;
    for (const Entry& entry :
         TableWith("<Var name=\"A\" type=\"long\"/><Var name=\"B\" type=\"long\"/>").entries())
        names += entry.name;
    EXPECT_EQ(names, "AB");
}

TEST(FrontEntries, ALoopMayAddAndChange) {
    Table table = TableWith("<Var name=\"A\" type=\"long\"/><Var name=\"B\" type=\"long\"/>");
    std::string names;
    for (const Entry& entry : table.entries()) {
        names += entry.name;
        EXPECT_TRUE(table.setValue(entry.name, "1"));
        if (entry.name == "A") {
            EXPECT_TRUE(table.add({"C"}));
        }
    }
    EXPECT_EQ(names, "ABC");
}

TEST(FrontEntries, TextsBeyondAsciiAreReadInBothEncodings) {
    const Table table = WideTableWith(
        u"<Var name=\"\u00FC\" type=\"string\"><Value>\u4E2D</Value><UI name=\"\u00E4\"><Comment>\U0001F600"
        u"</Comment><Value>\u03B1</Value></UI></Var>"
        u"<Var name=\"w\" type=\"ucstring\"><Value>\u4E2D</Value></Var>");
    const Entry entry = *table.find("\xC3\xBC");
    EXPECT_EQ(entry.value, "\xE4\xB8\xAD");
    EXPECT_EQ(entry.ui->shownName, "\xC3\xA4");
    EXPECT_EQ(entry.ui->comment, "\xF0\x9F\x98\x80");
    EXPECT_EQ(entry.ui->value, "\xCE\xB1");
    const Entry16 entry16 = *table.find16(u"\u00FC");
    EXPECT_EQ(entry16.name, u"\u00FC");
    EXPECT_EQ(entry16.value, u"\u4E2D");
    EXPECT_EQ(entry16.ui->comment, u"\U0001F600");
    EXPECT_EQ(entry16.ui->value, u"\u03B1");
    EXPECT_EQ(table.find("w")->value, "\xE4\xB8\xAD");
    EXPECT_EQ(table.find16("w")->value, u"\u4E2D");
}

// Names, shown names, comments and 16-bit values are read unit by unit; other values need an 8-bit form.
TEST(FrontEntries, ValuesThatARecordCannotHoldAreNullopt) {
    const std::u16string unpaired{0xD800};
    struct Case {
        const char16_t* type;
        std::optional<std::u16string> held;
    };
    for (const auto& [type, held] : {Case{u"string", std::nullopt}, Case{u"ucstring", unpaired}}) {
        std::u16string text =
            u"<Var name=\"0\" type=\"long\"/><Var name=\"" + unpaired + u"\" id=\"5\" type=\"" + type;
        text += u"\"><Value>" + unpaired + u"</Value><UI control=\"num\" name=\"" + unpaired +
                u"\"><Comment>" + unpaired;
        text += u"</Comment><Value>ok</Value></UI></Var><Var name=\"B\" type=\"" + std::u16string(type);
        text += u"\"><Value>ok</Value><UI control=\"num\"><Value>" + unpaired + u"</Value></UI></Var>";
        text +=
            u"<Var name=\"C\" type=\"" + std::u16string(type) + u"\"><Value>" + unpaired + u"</Value></Var>";
        const Table table = WideTableWith(text);

        const std::vector<Entry16> list = table.list16();
        ASSERT_EQ(list.size(), 4U);
        for (const Entry16& entry : {list[1], *table.find16(unpaired)}) {
            EXPECT_EQ(entry.name, unpaired);
            EXPECT_EQ(entry.value, held);
            EXPECT_EQ(entry.id, 5U);
            ASSERT_TRUE(entry.ui.has_value());
            EXPECT_EQ(entry.ui->control, Control::Number);
            EXPECT_EQ(entry.ui->shownName, unpaired);
            EXPECT_EQ(entry.ui->comment, unpaired);
            EXPECT_EQ(entry.ui->value, u"ok");
            EXPECT_EQ(entry.effectiveValue(), held.value_or(u""));
        }
        EXPECT_EQ(table.find("\xED\xA0\x80")->name, "\xED\xA0\x80");
        for (const Entry16& entry : {list[2], *table.find16("B")}) {
            EXPECT_EQ(entry.name, u"B");
            EXPECT_EQ(entry.value, u"ok");
            ASSERT_TRUE(entry.ui.has_value());
            EXPECT_EQ(entry.ui->control, Control::Number);
            EXPECT_EQ(entry.ui->value, held);
        }
        EXPECT_EQ(list[3].name, u"C");
        EXPECT_EQ(list[3].value, held);
        EXPECT_FALSE(list[3].ui.has_value());
        EXPECT_EQ(table.countUnreadable(), 0U);
    }
}

TEST(FrontEntries, APresentationValueThatARecordCannotHoldMakesPresentationData) {
    const Table table = WideTableWith(u"<Var name=\"A\" type=\"string\"><Value>ok</Value><UI><Value>" +
                                      std::u16string{0xD800} + u"</Value></UI></Var>");
    const Entry entry = *table.find("A");
    EXPECT_EQ(entry.value, "ok");
    ASSERT_TRUE(entry.ui.has_value());
    EXPECT_EQ(entry.ui->value, std::nullopt);
}

TEST(FrontEntries, ARecordWhoseTextWasNeverSetHasNoValue) {
    const TableEntryValueInfoStruct record;
    EXPECT_EQ(mox::front::ValueOf<std::string>(record, mox::front::kWideType), std::nullopt);
    EXPECT_EQ(mox::front::ValueOf<std::u16string>(record, mox::front::kWideType), std::nullopt);
    EXPECT_EQ(mox::front::ValueOf<std::string>(record, 3), std::nullopt);
}

TEST(FrontEntries, LongNamesAreCutAndLongTextsAreNot) {
    const std::string name(300, 'n');
    const std::string text(100000, 'x');
    const Table table =
        TableWith("<Var name=\"" + name + "\" type=\"string\"><Value>" + text + "</Value><UI name=\"" + text +
                  "\"><Comment>" + text + "</Comment></UI></Var>" + "<Var name=\"" + name.substr(0, 259) +
                  "m\" type=\"long\"/>" + "<Var name=\"" + name.substr(0, 258) + "m\" type=\"long\"/>");
    const std::vector<Entry> list = table.list();
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0].name, name.substr(0, 259));
    EXPECT_EQ(list[0].value, text);
    EXPECT_EQ(list[0].ui->shownName, text);
    EXPECT_EQ(list[0].ui->comment, text);
    EXPECT_EQ(list[1].name, name.substr(0, 259));
    EXPECT_EQ(table.find(name.substr(0, 258) + "m")->type, ValueType::Long);
}

// A record shows only 259 units of a name.
TEST(FrontEntries, NothingIsAddedBeforeANameThatMayBeTheStartOfALongerOne) {
    auto table =
        front_tests::TableWith("<Var name=\"" + std::string(300, 'n') + "\" type=\"long\"/><Var name=\"" +
                               std::string(259, 'n') + "\" type=\"long\"/>");
    mox::Problem problem;
    EXPECT_FALSE(table.addBefore(std::string(259, 'n'), {"K", "1"}, mox::Eud::DoNotSet, &problem));
    EXPECT_EQ(problem.reason, mox::Reason::NotStored);
    EXPECT_FALSE(table.contains("K"));
}

}  // namespace
