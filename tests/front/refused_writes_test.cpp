// Writes that the front refuses: each says why and changes nothing. And what Profile::setLossy lets through.
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "tests/front/front_support.h"

namespace {

using front_tests::FullUi;
using front_tests::ProfileWith;
using front_tests::SavedBytes;
using front_tests::TableWith;
using mox::Entry;
using mox::Form;
using mox::Problem;
using mox::Profile;
using mox::Reason;
using mox::Section;
using mox::Shape;
using mox::Table;
using mox::ValueType;

// Of a refused write: the reason, then the message.
std::string Shown(const Problem& problem) {
    return std::to_string(static_cast<int>(problem.reason)) + " " + problem.message;
}

std::string Expected(Reason reason, const std::string& message) {
    return std::to_string(static_cast<int>(reason)) + " " + message;
}

// Whether the write fails for this reason and changes nothing.
template <class Document, class Write>
void ExpectRefused(Document& document, Reason reason, const std::string& message, Write write) {
    const std::string before = SavedBytes(document);
    Problem problem;
    EXPECT_FALSE(write(&problem));
    EXPECT_EQ(Shown(problem), Expected(reason, message));
    EXPECT_FALSE(write(nullptr));
    EXPECT_EQ(SavedBytes(document), before);
}

TEST(FrontRefusedWrites, ASuccessResetsTheProblem) {
    Profile profile;
    Problem problem;
    EXPECT_FALSE(profile.setString("S", "K", " 1", &problem));
    EXPECT_TRUE(problem);
    EXPECT_TRUE(profile.setString("S", "K", "1", &problem));
    EXPECT_FALSE(problem);
    EXPECT_EQ(problem.message, "");
}

TEST(FrontRefusedWrites, TextsThatAFileDoesNotKeep) {
    Profile profile = ProfileWith("<Var name=\"K\" type=\"string\"><Value>old</Value></Var>");
    profile.setForm(Form::Wide);
    const auto expect = [&](const char* key, const mox::Text& value, const std::string& message) {
        ExpectRefused(profile, Reason::NotKept, "S/" + std::string(key) + ": the value " + message,
                      [&](Problem* problem) { return profile.setString("S", key, value, problem); });
        ExpectRefused(profile, Reason::NotKept, "S/" + std::string(key) + ": the value " + message,
                      [&](Problem* problem) { return profile.set("S", key, value, problem); });
    };
    for (const char* key : {"K", "New"}) {
        expect(key, " 1", "begins with white space, which is dropped when the file is opened");
        expect(key, "\t", "begins with white space, which is dropped when the file is opened");
        expect(key, "1\n2", "contains a line feed, so the file would add white space to it");
        expect(key, "1\x1B",
               "contains the control character U+001B, with which other XML programs cannot read the file");
        expect(key, u"\uFFFE", "contains U+FFFE, with which other XML programs cannot read the file");
        expect(
            key, std::u16string{0xDC00},
            "contains half of a surrogate pair, U+DC00, with which other XML programs cannot read the file");
    }
    EXPECT_TRUE(profile.setString("S", "K", "tr\xC3\xA4g "));
    profile.setForm(Form::Narrow);
    EXPECT_EQ(profile.form(), Form::Narrow);
    EXPECT_TRUE(profile.setString("S", "K", "1"));
    expect("K", "\xC3\xA4", "contains U+00E4, and a narrow file keeps 7-bit text only");
}

TEST(FrontRefusedWrites, NamesThatAFileDoesNotKeep) {
    Profile profile = ProfileWith("");
    ExpectRefused(profile, Reason::NotKept,
                  "S/\xC3\xA4: the key contains U+00E4, and a narrow file keeps 7-bit text only",
                  [&](Problem* problem) { return profile.setInt("S", "\xC3\xA4", 1, problem); });
    ExpectRefused(profile, Reason::NotKept,
                  "\xC3\xA4/K: the section contains U+00E4, and a narrow file keeps 7-bit text only",
                  [&](Problem* problem) { return profile.set("\xC3\xA4", "K", 1, problem); });
    ExpectRefused(profile, Reason::NotKept,
                  "\xC3\xA4: the section contains U+00E4, and a narrow file keeps 7-bit text only",
                  [&](Problem* problem) { return profile.makeSection("\xC3\xA4", {}, problem).has_value(); });
    Section section = *profile.findSection("S");
    ExpectRefused(
        profile, Reason::NotKept,
        "S/\x01: the name contains the control character U+0001, with which other XML programs cannot read "
        "the file",
        [&](Problem* problem) {
            return section.add({"\x01", "1"}, mox::Eud::DoNotSet, problem);
        });
    // In a name, blanks and line feeds are kept.
    EXPECT_TRUE(profile.setInt("S", " a\nb\t", 1));
}

TEST(FrontRefusedWrites, ASectionKeepsToTheFormOfItsProfile) {
    Profile profile = ProfileWith("");
    Section section = *profile.findSection("S");
    EXPECT_FALSE(section.set("K", "\xC3\xA4"));
    profile.setForm(Form::Wide);
    EXPECT_TRUE(section.set("K", "\xC3\xA4"));
    EXPECT_EQ(profile.sections().at(0).get<std::string>("K"), "\xC3\xA4");
}

TEST(FrontRefusedWrites, InvalidArguments) {
    Profile profile = ProfileWith("");
    const char* const null = nullptr;
    ExpectRefused(profile, Reason::InvalidText, "S/K: the value is not UTF-8, contains a zero, or is null",
                  [&](Problem* problem) { return profile.setString("S", "K", "\xFF", problem); });
    ExpectRefused(profile, Reason::InvalidText, "K: the section is not UTF-8, contains a zero, or is null",
                  [&](Problem* problem) { return profile.setInt(null, "K", 1, problem); });
    ExpectRefused(profile, Reason::InvalidText, "S: the key is not UTF-8, contains a zero, or is null",
                  [&](Problem* problem) { return profile.remove("S", null, problem); });
    ExpectRefused(profile, Reason::InvalidText, "S: the key is empty",
                  [&](Problem* problem) { return profile.set("S", "", true, problem); });
    ExpectRefused(profile, Reason::OutOfRange, "S/K: there are too many bytes", [&](Problem* problem) {
        return profile.setData("S", "K", "x", std::size_t{1} << 32, problem);
    });
    Section section = *profile.findSection("S");
    ExpectRefused(profile, Reason::InvalidText, "S: the name is empty", [&](Problem* problem) {
        return section.put({"", "1"}, mox::Eud::DoNotSet, problem);
    });
    ExpectRefused(profile, Reason::InvalidText,
                  "S/" + std::string(260, 'n') + ": the name has more than 259 units",
                  [&](Problem* problem) { return section.set(std::string(260, 'n'), 1, problem); });
}

TEST(FrontRefusedWrites, AnEntryWithoutAKnownType) {
    const std::string longName(300, 'n');
    Profile profile =
        ProfileWith("<Var name=\"K\"><Value>1</Value></Var><Var name=\"L\" type=\"float\"/><Var name=\"" +
                    longName + "\"/>");
    const std::string message = ": the key has no known type, so that it cannot be read";
    for (const std::string& key : {std::string("K"), std::string("L"), longName}) {
        ExpectRefused(profile, Reason::Unreadable, "S/" + key + message,
                      [&](Problem* problem) { return profile.setString("S", key, "2", problem); });
        ExpectRefused(profile, Reason::Unreadable, "S/" + key + message,
                      [&](Problem* problem) { return profile.set("S", key, 2, problem); });
        ExpectRefused(profile, Reason::Unreadable, "S/" + key + message,
                      [&](Problem* problem) { return profile.getString("S", key, problem).has_value(); });
    }
    Section section = *profile.findSection("S");
    ExpectRefused(profile, Reason::Unreadable, "S/K: the entry has no known type, so that it cannot be read",
                  [&](Problem* problem) { return section.set("K", 2, problem); });
    ExpectRefused(profile, Reason::Unreadable, "S/K: the entry has no known type, so that it cannot be read",
                  [&](Problem* problem) { return section.setValue("K", "2", mox::Eud::DoNotSet, problem); });
    ExpectRefused(profile, Reason::NameTaken, "S/K: there is an entry of that name", [&](Problem* problem) {
        return section.add({"K", "2"}, mox::Eud::DoNotSet, problem);
    });
    ExpectRefused(profile, Reason::Unreadable,
                  "S/K: the entry has no known type; give it one before its presentation data are written",
                  [&](Problem* problem) {
                      return section.put({"K", "2", ValueType::Long, Shape::Single, 0, FullUi()},
                                         mox::Eud::DoNotSet, problem);
                  });
    EXPECT_TRUE(section.put({"K", "2", ValueType::Long}));
    EXPECT_TRUE(section.put({"K", "2", ValueType::Long, Shape::Single, 0, FullUi()}));
    EXPECT_EQ(profile.get<int>("S", "K"), 2);
    EXPECT_TRUE(profile.remove("S", "L"));
    EXPECT_TRUE(profile.remove("S", longName));
    EXPECT_TRUE(profile.set("S", longName, 5)) << "there is no unreadable element any more";
    EXPECT_EQ(profile.get<int>("S", longName), 5);
}

TEST(FrontRefusedWrites, AnEmptyTextOverAValueOfPresentationData) {
    const std::string longName(270, 'n');
    Profile profile = ProfileWith(
        "<Var name=\"Own\" type=\"long\"><Value>1</Value></Var>"
        "<Var name=\"K\" type=\"string\"><Value>1</Value><UI control=\"num\"><Value>2</Value></UI></Var>"
        "<Var name=\"L\" type=\"string\"><UI control=\"num\"><Value>2</Value></UI></Var>"
        "<Var name=\"" +
        longName + "\" type=\"string\"><UI control=\"num\"><Value>2</Value></UI></Var>");
    const std::string message = ": an empty value would be read as the value that the presentation data have";
    for (const std::string& key : {std::string("K"), std::string("L"), longName}) {
        ExpectRefused(profile, Reason::NotStored, "S/" + key + message,
                      [&](Problem* problem) { return profile.setString("S", key, "", problem); });
        ExpectRefused(profile, Reason::NotStored, "S/" + key + message, [&](Problem* problem) {
            return profile.setData("S", key, std::vector<std::uint8_t>(), problem);
        });
    }
    Section section = *profile.findSection("S");
    ExpectRefused(profile, Reason::NotStored, "S/K" + message,
                  [&](Problem* problem) { return section.set("K", "", problem); });
    EXPECT_TRUE(profile.setString("S", "Own", ""));
    EXPECT_TRUE(section.set("Own", ""));
    EXPECT_TRUE(profile.setString("S", "L", "3"));
    EXPECT_EQ(profile.getString("S", "L"), "3");
}

// The exports do not show such entries. Profile::open finds them.
TEST(FrontRefusedWrites, APartThatIsThereTwice) {
    mox::front::Troubled troubled;
    const auto units = [](const char* text) { return mox::front::Units(mox::Text(text).units()); };
    troubled.Add(units("S"), units("A"), mox::front::Troubled::kValue);
    troubled.Add(units("S"), units("B"), mox::front::Troubled::kOther);
    troubled.Add(units("T"), units("A"), mox::front::Troubled::kOther);
    EXPECT_EQ(troubled.PartsOf(units("S"), units("A")), mox::front::Troubled::kValue);
    EXPECT_EQ(troubled.PartsOf(units("S"), units("C")), 0U);
    EXPECT_EQ(troubled.PartsOf(units("U"), units("A")), 0U);
    mox::front::WriteRules rules;
    rules.troubled = troubled;
    const mox::front::Units section = units("S");
    const mox::front::Units name = units("A");
    Problem problem;
    const mox::front::Target target{section, name, &rules, &problem};
    EXPECT_TRUE(target.RequireUntroubled(mox::front::Troubled::kOther));
    EXPECT_FALSE(target.RequireUntroubled(mox::front::Troubled::kValue | mox::front::Troubled::kOther));
    EXPECT_EQ(Shown(problem),
              Expected(Reason::Ambiguous,
                       "S/A: the entry has a part twice, and a write changes another one than is "
                       "read"));
    rules.troubled.Remove(units("S"), units("A"));
    rules.troubled.RemoveUnless(units("S"), [](mox::front::UnitsView) { return false; });
    EXPECT_EQ(rules.troubled.PartsOf(units("S"), units("A")), 0U);
    EXPECT_EQ(rules.troubled.PartsOf(units("S"), units("B")), 0U);
    rules.troubled.RemoveSection(units("T"));
    EXPECT_EQ(rules.troubled.PartsOf(units("T"), units("A")), 0U);
}

TEST(FrontRefusedWrites, EntriesThatCannotBeStored) {
    Table table = TableWith("<Var name=\"A\" type=\"long\"><Value>1</Value></Var>");
    const auto expect = [&](Reason reason, const std::string& message, const Entry& entry) {
        ExpectRefused(table, reason, message,
                      [&](Problem* problem) { return table.put(entry, mox::Eud::DoNotSet, problem); });
    };
    Entry entry{"A", "2", ValueType::Long};
    entry.type = static_cast<ValueType>(99);
    expect(Reason::NotStored, "A: the type has no name in files, so that nobody could read the entry", entry);
    entry = {"A", "2", ValueType::Long, Shape::Single, 0, FullUi()};
    entry.ui->control = static_cast<mox::Control>(3);
    expect(Reason::NotStored, "A: the control has no name in files", entry);
    entry.ui = FullUi();
    entry.ui->providerOwner = static_cast<mox::Owner>(3);
    expect(Reason::NotStored, "A: the provider's owner has no name in files", entry);
    entry.ui = FullUi();
    entry.ui->comment.clear();
    expect(Reason::NotStored, "A: presentation data without a comment cannot be given a value", entry);
    entry.ui = FullUi();
    entry.ui->comment = "\n";
    expect(Reason::NotKept,
           "A: the comment begins with white space, which is dropped when the file is opened", entry);
    entry.ui = FullUi();
    entry.ui->shownName = "\xFF";
    expect(Reason::InvalidText, "A: the displayed name is not UTF-8, contains a zero, or is null", entry);
    entry.ui = FullUi();
    entry.ui->value = "a\nb";
    expect(
        Reason::NotKept,
        "A: the value of the presentation data contains a line feed, so the file would add white space to it",
        entry);
    ExpectRefused(table, Reason::NoSuchKey, "B: there is no such entry",
                  [&](Problem* problem) { return table.setValue("B", "1", mox::Eud::DoNotSet, problem); });
    ExpectRefused(table, Reason::NoSuchKey, "B: there is no such entry", [&](Problem* problem) {
        return table.addBefore("B", {"C", "1"}, mox::Eud::DoNotSet, problem);
    });
    ExpectRefused(table, Reason::NoSuchKey, "B: there is no such entry",
                  [&](Problem* problem) { return table.remove("B", 0, problem); });
    ExpectRefused(table, Reason::NameTaken, "A: there is an entry of that name", [&](Problem* problem) {
        return table.add({"A", "1"}, mox::Eud::DoNotSet, problem);
    });
}

TEST(FrontRefusedWrites, ProtectedEntries) {
    Table table = TableWith(
        "<Var name=\"A\" type=\"long\" eud=\"true\"><Value>1</Value></Var><Var name=\"B\" type=\"long\"/>");
    ExpectRefused(table, Reason::Protected, "A: the entry has eud=\"true\"", [&](Problem* problem) {
        return table.setValueUnlessEud("A", "2", mox::Eud::DoNotSet, problem);
    });
    ExpectRefused(
        table, Reason::NotStored,
        "B: the entry has no value of its own, so that nobody can tell whether it has eud",
        [&](Problem* problem) { return table.setValueUnlessEud("B", "2", mox::Eud::DoNotSet, problem); });
}

TEST(FrontRefusedWrites, ReadsSayWhatIsMissing) {
    const Profile profile = ProfileWith("<Var name=\"K\" type=\"string\"/><Var name=\"NoType\"/>");
    Problem problem;
    EXPECT_EQ(profile.getString("T", "K", &problem), std::nullopt);
    EXPECT_EQ(Shown(problem), Expected(Reason::NoSuchSection, "T/K: there is no such section"));
    EXPECT_EQ(profile.getString16("S", "L", &problem), std::nullopt);
    EXPECT_EQ(Shown(problem), Expected(Reason::NoSuchKey, "S/L: there is no such key"));
    EXPECT_EQ(profile.getData("S", "L", &problem), std::nullopt);
    EXPECT_EQ(problem.reason, Reason::NoSuchKey);
    EXPECT_EQ(profile.getInt("S", "NoType", &problem), std::nullopt);
    EXPECT_EQ(problem.reason, Reason::Unreadable);
    EXPECT_EQ(profile.getInt("S", "K", &problem), std::nullopt);
    EXPECT_EQ(Shown(problem), Expected(Reason::WrongType, "S/K: the value is empty"));
    EXPECT_EQ(profile.getString("S", "", &problem), std::nullopt);
    EXPECT_EQ(problem.reason, Reason::InvalidText);
    EXPECT_EQ(profile.getString("S", "K", &problem), "");
    EXPECT_FALSE(problem);
    EXPECT_FALSE(profile.findSection("T", &problem).has_value());
    EXPECT_EQ(Shown(problem), Expected(Reason::NoSuchSection, "T: there is no such section"));
    EXPECT_TRUE(profile.keys("T", &problem).empty());
    EXPECT_EQ(problem.reason, Reason::NoSuchSection);
    const Section section = *profile.findSection("S", &problem);
    EXPECT_FALSE(problem);
    EXPECT_FALSE(section.find("L", &problem).has_value());
    EXPECT_EQ(Shown(problem), Expected(Reason::NoSuchKey, "S/L: there is no such entry"));
    EXPECT_FALSE(section.find16("NoType", &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::Unreadable);
    EXPECT_FALSE(section.find("", &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::InvalidText);
    EXPECT_TRUE(section.find("K", &problem).has_value());
    EXPECT_FALSE(problem);
}

TEST(FrontRefusedWrites, RemovalsSayWhatIsMissing) {
    Profile profile = ProfileWith("<Var name=\"K\" type=\"string\"/>");
    Problem problem;
    EXPECT_FALSE(profile.remove("T", "K", &problem));
    EXPECT_EQ(Shown(problem), Expected(Reason::NoSuchSection, "T/K: there is no such section"));
    EXPECT_FALSE(profile.remove("S", "L", &problem));
    EXPECT_EQ(Shown(problem), Expected(Reason::NoSuchKey, "S/L: there is no such key"));
    EXPECT_TRUE(profile.remove("S", "K", &problem));
    EXPECT_FALSE(problem);
    EXPECT_TRUE(profile.removeSection("S", &problem));
    EXPECT_FALSE(profile.removeSection("S", &problem));
    EXPECT_EQ(Shown(problem), Expected(Reason::NoSuchSection, "S: there is no such section"));
}

TEST(FrontRefusedWrites, AnObjectThatWasMovedFromSaysSo) {
    Profile profile;
    const Profile other = std::move(profile);
    Problem problem;
    const std::string message = "the object has no document, because it was moved from";
    // NOLINTBEGIN(bugprone-use-after-move): the state after the move is tested
    EXPECT_FALSE(profile.set("S", "K", 1, &problem));
    EXPECT_EQ(Shown(problem), Expected(Reason::NotStored, message));
    EXPECT_EQ(profile.get<int>("S", "K", &problem), std::nullopt);
    EXPECT_EQ(Shown(problem), Expected(Reason::NotStored, message));
    EXPECT_FALSE(profile.remove("S", "K", &problem));
    EXPECT_FALSE(profile.makeSection("S", {}, &problem).has_value());
    EXPECT_FALSE(profile.isLossy());
    profile.setLossy(true);
    profile.setForm(Form::Narrow);
    EXPECT_EQ(profile.form(), Form::Wide);
    EXPECT_TRUE(profile.sectionNames().empty());
    EXPECT_TRUE(profile.keys("S").empty());
    Table table = Table::create("T");
    const Table otherTable = std::move(table);
    EXPECT_FALSE(table.set("K", 1, &problem));
    EXPECT_FALSE(table.add({"K", "1"}));
    EXPECT_FALSE(table.put({"K", "1"}));
    EXPECT_FALSE(table.addBefore("K", {"L", "1"}));
    EXPECT_FALSE(table.setValue("K", "1"));
    EXPECT_FALSE(table.remove("K"));
    EXPECT_FALSE(table.clear(&problem));
    EXPECT_EQ(Shown(problem), Expected(Reason::NotStored, message));
    EXPECT_FALSE(table.isLossy());
    table.setLossy(true);
    EXPECT_EQ(table.get<int>("K"), std::nullopt);
    EXPECT_TRUE(table.names().empty());
    // NOLINTEND(bugprone-use-after-move)
}

TEST(FrontRefusedWrites, ALossyDocumentDoesWhatTheExportsDo) {
    Profile profile = ProfileWith(
        "<Var name=\"0\" type=\"long\"><Value>1</Value></Var>"
        "<Var name=\"K\" type=\"string\"><Value>1</Value><UI control=\"num\"><Value>2</Value></UI></Var>"
        "<Var name=\"NoType\"/>");
    EXPECT_FALSE(profile.isLossy());
    profile.setLossy(true);
    EXPECT_TRUE(profile.isLossy());
    EXPECT_TRUE(profile.setString("S", "L", " \n\x01\xC3\xA4"));
    EXPECT_EQ(profile.getString("S", "L"), " \n\x01\xC3\xA4");
    EXPECT_TRUE(profile.setString("\xC3\xA4", "\x02", "1"));
    EXPECT_TRUE(profile.setString("S", "K", ""));
    EXPECT_EQ(profile.getString("S", "K"), "2");
    EXPECT_TRUE(profile.setString("S", "NoType", "3"));
    EXPECT_EQ(profile.getString("S", "NoType"), std::nullopt);
    Section section = *profile.findSection("S");
    EXPECT_TRUE(section.add({"M", " ", ValueType::Long, Shape::Single, 0, FullUi()}));
    EXPECT_TRUE(section.setValue("M", "\n"));
    EXPECT_TRUE(section.set("K", ""));
    EXPECT_FALSE(profile.setString("S", "K", "\xFF")) << "the exports cannot take it";
    EXPECT_FALSE(profile.setString("S", "", "x")) << "it would be another key";
    profile.setLossy(false);
    EXPECT_FALSE(section.setValue("M", "\n"));
}

TEST(FrontRefusedWrites, ClearKeepsWhatIsNoEntry) {
    Table table = TableWith("<Var name=\"A\" type=\"long\"/><Other name=\"B\" type=\"long\"/>");
    Problem problem;
    EXPECT_TRUE(table.clear(&problem));
    EXPECT_FALSE(problem);
    EXPECT_EQ(table.names(), std::vector<std::string>{"B"});
}

TEST(FrontRefusedWrites, NamesAreListedWithoutValues) {
    Profile profile = ProfileWith(
        "<Var name=\"A\" type=\"long\"/><Var name=\"NoType\"/><!-- x --><Var type=\"long\"/>"
        "<Var name=\"B\" type=\"ucstring\"><Value>1</Value></Var><Var name=\"A\" type=\"long\"/>");
    const std::string longName(300, 's');
    ASSERT_TRUE(profile.makeSection(longName).has_value());
    EXPECT_EQ(profile.keys("S"), (std::vector<std::string>{"A", "", "B", "A"}));
    EXPECT_EQ(profile.sectionNames(), (std::vector<std::string>{"S", longName}));
    EXPECT_TRUE(profile.keys("\xFF").empty());
    profile.setLossy(true);
    ASSERT_TRUE(profile.setString("T", "K", std::u16string{0xD800}));
    EXPECT_EQ(profile.keys("T"), std::vector<std::string>{"K"}) << "a record cannot hold the value";
}

}  // namespace
