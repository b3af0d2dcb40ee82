// Renaming entries, their "eud", and single fields of their presentation data: for every combination of table and entry
// the call has changed what was asked and kept everything else that is in the file, or has changed nothing.
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mox_xmlApi/document/document.hpp"
#include "tests/front/front_support.h"

namespace {

using front_tests::First;
using front_tests::FirstEntry;
using front_tests::ProfileWith;
using front_tests::SavedBytes;
using front_tests::TableFile;
using front_tests::TableWith;
using mox::DocumentEntry;
using mox::Owner;
using mox::Problem;
using mox::Profile;
using mox::Reason;
using mox::Table;

// The entry A.
struct Before {
    bool hasOwnValue;
    bool hasUi;
    bool hasUiValue;
    bool hasComment;
    bool hasEud;
    bool hasMinimum;

    std::string Element() const {
        std::string text("<Var name=\"A\" id=\"5\" type=\"long\" array=\"vector\"");
        text += hasEud ? " eud=\"true\">" : ">";
        if (hasOwnValue) text += "<Value>own</Value>";
        if (hasUi) text += "<UI control=\"num\" prov_index=\"7\" prov_owner=\"dwg\" name=\"shown\"";
        if (hasUi) text += hasMinimum ? " minVal=\"3\">" : ">";
        if (hasComment) text += "<Comment>old comment</Comment>";
        if (hasUiValue) text += "<Value>old ui</Value>";
        return text + (hasUi ? "</UI></Var>" : "</Var>");
    }
};

struct State {
    First first;
    Before entry;
    std::string Entries() const {
        return FirstEntry(first) + "<!-- about A -->" + entry.Element() +
               "<!-- about B --><Var name=\"B\" type=\"double\"><Value>2</Value></Var>";
    }
    Table Make() const {
        auto table = Table::parse("<Table name=\"T\" eud=\"false\">" + Entries() + "</Table>\n");
        EXPECT_TRUE(table.has_value());
        return std::move(*table);
    }
    // Whether the exports would move the value of A to its presentation data.
    bool KeepsValuesInUi() const {
        if (first != First::None) return first == First::UiValue;
        return !entry.hasOwnValue && entry.hasUiValue;
    }
};

std::vector<State> AllStates() {
    std::vector<State> all;
    for (const First first : front_tests::kFirsts) {
        for (int bits = 0; bits < 64; ++bits) {
            const auto has = [bits](int bit) { return (bits >> bit & 1) != 0; };
            const Before entry{has(0), has(1), has(2), has(3), has(4), has(5)};
            if (!entry.hasUi && (entry.hasUiValue || entry.hasComment || entry.hasMinimum)) continue;
            all.push_back({first, entry});
        }
    }
    return all;
}

// An entry in a file, to be changed as a call should change it.
struct FileEntry {
    explicit FileEntry(const DocumentEntry& read) : entry(read) {
        if (entry.ui != nullptr) ui = *entry.ui;
    }
    DocumentEntry entry;
    std::optional<mox::DocumentPresentation> ui{};
};

// Everything that the file has of an entry. An empty text and no text are the same.
std::string Shown(const FileEntry& fileEntry) {
    const DocumentEntry& entry = fileEntry.entry;
    std::string text = entry.name + " #" + std::to_string(entry.id) + " " + entry.describeType();
    text += entry.hasEud ? " eud" : "";
    text += " own '" + entry.value + "'";
    if (!fileEntry.ui.has_value()) return text;
    const mox::DocumentPresentation& ui = *fileEntry.ui;
    text += " control " + ui.control + " provider " + ui.provider + "/" + std::to_string(ui.providerIndex) +
            " '" + ui.shownName + "' comment '" + ui.comment + "' value '" + ui.value + "'";
    return text + " from '" + ui.minimum + "'";
}

std::string Shown(const Table& table) {
    const auto document = mox::Document::parse(SavedBytes(table), mox::Form::Wide);
    if (!document.has_value() || document->tables().size() != 1) return "no table";
    std::string text;
    for (const mox::DocumentNode node : document->tables()[0].node.children()) {
        if (node.kind() == mox::NodeKind::Comment) text += "<!--" + node.text() + "-->\n";
        for (const DocumentEntry& entry : document->tables()[0].entries)
            if (entry.node == node) text += Shown(FileEntry(entry)) + "\n";
    }
    return text;
}

std::string ShownWith(const State& state, void (*change)(FileEntry& entry)) {
    const Table table = state.Make();
    const auto document = mox::Document::parse(SavedBytes(table), mox::Form::Wide);
    std::string text;
    for (const mox::DocumentNode node : document->tables()[0].node.children()) {
        if (node.kind() == mox::NodeKind::Comment) text += "<!--" + node.text() + "-->\n";
        for (const DocumentEntry& read : document->tables()[0].entries) {
            if (read.node != node) continue;
            FileEntry entry(read);
            if (read.name == "A") change(entry);
            text += Shown(entry) + "\n";
        }
    }
    return text;
}

struct Call {
    const char* what;
    bool (*call)(Table& table, Problem* problem);
    void (*change)(FileEntry& entry);
    // Whether the front may refuse it, because the exports cannot do it without losing something.
    bool (*mayBeRefused)(const State& state);
};

void RequireUi(FileEntry& entry) {
    if (entry.ui.has_value()) return;
    entry.ui.emplace();
    entry.ui->control = "text";
}

bool Never(const State& /*state*/) {
    return false;
}

// The presentation data can only be written as a whole.
bool HasOwnValueAlone(const State& state) {
    return state.entry.hasOwnValue && !state.entry.hasUiValue && !state.entry.hasComment;
}

bool IsReplaced(const State& state) {
    return state.entry.hasMinimum || (state.KeepsValuesInUi() && state.entry.hasOwnValue);
}

const Call kCalls[] = {
    {"rename", [](Table& table, Problem* problem) { return table.rename("A", "N", problem); },
     [](FileEntry& entry) { entry.entry.name = "N"; },
     [](const State& state) {
         return !state.entry.hasOwnValue && !state.entry.hasUi && state.KeepsValuesInUi();
     }},
    {"set eud", [](Table& table, Problem* problem) { return table.setEud("A", true, problem); },
     [](FileEntry& entry) { entry.entry.hasEud = true; }, Never},
    {"remove eud", [](Table& table, Problem* problem) { return table.setEud("A", false, problem); },
     [](FileEntry& entry) { entry.entry.hasEud = false; }, Never},
    {"set comment", [](Table& table, Problem* problem) { return table.setComment("A", "new", problem); },
     [](FileEntry& entry) {
         RequireUi(entry);
         entry.ui->comment = "new";
     },
     Never},
    {"clear comment", [](Table& table, Problem* problem) { return table.setComment("A", "", problem); },
     [](FileEntry& entry) {
         if (entry.ui.has_value()) entry.ui->comment.clear();
     },
     [](const State& state) { return state.entry.hasComment && IsReplaced(state); }},
    {"set displayed name",
     [](Table& table, Problem* problem) { return table.setShownName("A", "\xC3\xA4", problem); },
     [](FileEntry& entry) {
         RequireUi(entry);
         entry.ui->shownName = "\xC3\xA4";
     },
     Never},
    {"clear displayed name",
     [](Table& table, Problem* problem) { return table.setShownName("A", "", problem); },
     [](FileEntry& entry) {
         if (entry.ui.has_value()) entry.ui->shownName.clear();
     },
     [](const State& state) { return state.entry.hasUi && HasOwnValueAlone(state) && IsReplaced(state); }},
    {"set provider",
     [](Table& table, Problem* problem) { return table.setProvider("A", Owner::Erg, 9, problem); },
     [](FileEntry& entry) {
         RequireUi(entry);
         entry.ui->provider = "erg";
         entry.ui->providerIndex = 9;
     },
     Never},
    {"clear provider",
     [](Table& table, Problem* problem) { return table.setProvider("A", Owner::None, 0, problem); },
     [](FileEntry& entry) {
         if (!entry.ui.has_value()) return;
         entry.ui->provider.clear();
         entry.ui->providerIndex = 0;
     },
     [](const State& state) { return state.entry.hasUi && HasOwnValueAlone(state) && IsReplaced(state); }},
    {"change provider's owner alone",
     [](Table& table, Problem* problem) { return table.setProvider("A", Owner::App, 0, problem); },
     [](FileEntry& entry) {
         RequireUi(entry);
         entry.ui->provider = "app";
         entry.ui->providerIndex = 0;
     },
     [](const State& state) { return state.entry.hasUi && HasOwnValueAlone(state) && IsReplaced(state); }},
};

TEST(FrontEntryFields, ACallChangesWhatWasAskedAndKeepsTheRest) {
    std::size_t done = 0;
    std::size_t refused = 0;
    for (const Call& call : kCalls) {
        for (const State& state : AllStates()) {
            SCOPED_TRACE(std::string(call.what) + ": " + state.Entries());
            Table table = state.Make();
            const std::string before = SavedBytes(table);
            Problem problem;
            const bool isDone = call.call(table, &problem);
            EXPECT_EQ(isDone, !problem) << problem.message;
            EXPECT_EQ(isDone, !call.mayBeRefused(state)) << problem.message;
            if (isDone) {
                ++done;
                EXPECT_EQ(Shown(table), ShownWith(state, call.change));
            } else {
                ++refused;
                EXPECT_EQ(problem.reason, Reason::NotStored) << problem.message;
                EXPECT_EQ(SavedBytes(table), before);
            }
            if (testing::Test::HasFailure()) return;
        }
    }
    EXPECT_GT(refused, 50U);
    EXPECT_GT(done, 800U);
}

TEST(FrontEntryFields, WhatOnlyTheFileHasIsNamed) {
    const auto messageOf = [](const std::string& element) {
        Table table = TableWith("<Var name=\"F\" type=\"long\"><Value>0</Value></Var>" + element);
        const std::string before = SavedBytes(table);
        Problem problem;
        EXPECT_FALSE(table.setComment("A", "", &problem)) << element;
        EXPECT_EQ(SavedBytes(table), before);
        EXPECT_EQ(problem.reason, Reason::NotStored);
        return problem.message;
    };
    const auto expected = [](const std::string& other) {
        return "A: the exports can only replace the entry to do this, and it has " + other +
               ", which would be lost";
    };
    const std::string start = "<Var name=\"A\" type=\"long\"><Value>1</Value>";
    const std::string end = "<Comment>c</Comment></UI></Var>";
    for (const char* name : {"minVal", "maxVal", "access", "flags", "regen", "other", "Value"})
        EXPECT_EQ(messageOf(start + "<UI " + name + "=\"1\">" + end), expected(name));
    EXPECT_EQ(messageOf(start + "<UI><!--x-->" + end), expected("<!-- -->"));
    EXPECT_EQ(messageOf(start + "<UI><Other/>" + end), expected("<Other>"));
    EXPECT_EQ(messageOf(start + "<Other/><UI>" + end), expected("<Other>"));
    EXPECT_EQ(messageOf(start + "<UI><Value loc=\"true\">1</Value>" + end), expected("loc"));
    EXPECT_EQ(messageOf("<Var name=\"A\" type=\"long\" loc=\"true\"><Value>1</Value><UI>" + end),
              expected("loc"));
    EXPECT_EQ(messageOf("<Var name=\"A\" type=\"long\" x=\"1\"><Value>1</Value><UI>" + end), expected("x"));
    EXPECT_EQ(messageOf("<Key name=\"A\" type=\"long\"><Value>1</Value><UI><Comment>c</Comment></UI></Key>"),
              expected("<Key>"));
    EXPECT_EQ(messageOf("<Var name=\"A\" type=\"long\" eud=\"true\"><Value>1</Value><UI>" + end),
              expected("eud"))
        << "the table has none, and would get one";
}

TEST(FrontEntryFields, AReplacedEntryStaysInItsPlace) {
    Table table = TableWith(
        "<!-- A --><Var name=\"A\" type=\"long\" id=\"4\"><Value>1</Value><UI "
        "control=\"num\"><Comment>c</Comment>"
        "<Value>2</Value></UI></Var><!-- B --><Var name=\"A\" type=\"long\"/>");
    EXPECT_TRUE(table.setComment("A", ""));
    EXPECT_EQ(
        SavedBytes(table),
        TableFile({"\t<!-- A -->", "\t<Var name=\"A\" id=\"4\" type=\"long\" array=\"\">",
                   "\t\t<UI control=\"num\">", "\t\t\t<Value loc=\"\">2</Value>", "\t\t</UI>",
                   "\t\t<Value>1</Value>", "\t</Var>", "\t<!-- B -->", "\t<Var name=\"A\" type=\"long\"/>"}));
}

TEST(FrontEntryFields, EntriesOfASectionAreChangedToo) {
    Profile profile = ProfileWith(
        "<Var name=\"A\" type=\"long\"><Value>1</Value><UI control=\"num\" "
        "name=\"n\"><Comment>c</Comment></UI></Var>");
    auto section = *profile.findSection("S");
    EXPECT_TRUE(section.setComment("A", ""));
    EXPECT_TRUE(section.setShownName("A", ""));
    EXPECT_EQ(section.find("A")->ui->comment, "");
    EXPECT_EQ(section.find("A")->ui->shownName, "");
    EXPECT_EQ(profile.get<int>("S", "A"), 1);
    EXPECT_TRUE(profile.rename("S", "A", "B"));
    EXPECT_EQ(profile.keys("S"), std::vector<std::string>{"B"});
    Problem problem;
    EXPECT_FALSE(profile.rename("T", "A", "B", &problem));
    EXPECT_EQ(problem.reason, Reason::NoSuchSection);
    EXPECT_FALSE(profile.rename("S", "A", "B", &problem));
    EXPECT_EQ(problem.reason, Reason::NoSuchKey);
}

TEST(FrontEntryFields, RenamingIsRefusedForNamesThatCannotBe) {
    Table table =
        TableWith("<Var name=\"A\" type=\"long\"><Value>1</Value></Var><Var name=\"B\"/><Var name=\"" +
                  std::string(259, 'n') + "\" type=\"long\"><Value>1</Value></Var>");
    const std::string before = SavedBytes(table);
    const auto reasonOf = [&](const mox::Text& name, const mox::Text& newName) {
        Problem problem;
        EXPECT_FALSE(table.rename(name, newName, &problem));
        EXPECT_EQ(SavedBytes(table), before);
        return problem.reason;
    };
    EXPECT_EQ(reasonOf("A", "B"), Reason::NameTaken);
    EXPECT_EQ(reasonOf("A", ""), Reason::InvalidText);
    EXPECT_EQ(reasonOf("A", std::string(260, 'x')), Reason::InvalidText);
    EXPECT_EQ(reasonOf("A", "\x01"), Reason::NotKept);
    EXPECT_EQ(reasonOf("B", "C"), Reason::Unreadable);
    EXPECT_EQ(reasonOf("C", "D"), Reason::NoSuchKey);
    EXPECT_EQ(reasonOf(std::string(259, 'n'), "D"), Reason::NotStored);
    EXPECT_TRUE(table.rename("A", "A"));
    EXPECT_TRUE(table.rename("A", std::string(259, 'm')));
    EXPECT_EQ(table.find(std::string(259, 'm'))->value, "1");
}

TEST(FrontEntryFields, EudOfAnEntryWithoutATypeIsSetAndRemoved) {
    Table table = TableWith("<Var name=\"A\"/>");
    const std::string before = SavedBytes(table);
    EXPECT_TRUE(table.setEud("A", true));
    EXPECT_EQ(SavedBytes(table),
              TableFile({"\t<Var name=\"A\" eud=\"true\"/>"}, "<Table name=\"T\" eud=\"true\">"));
    EXPECT_TRUE(table.setEud("A", false));
    EXPECT_EQ(SavedBytes(table), TableFile({"\t<Var name=\"A\"/>"}, "<Table name=\"T\" eud=\"true\">"));
    Problem problem;
    EXPECT_FALSE(table.setEud("B", true, &problem));
    EXPECT_EQ(problem.reason, Reason::NoSuchKey);
}

TEST(FrontEntryFields, TextsThatAFileDoesNotKeepAreRefused) {
    Table table = TableWith("<Var name=\"A\" type=\"long\"><Value>1</Value></Var>");
    const std::string before = SavedBytes(table);
    Problem problem;
    EXPECT_FALSE(table.setComment("A", " c", &problem));
    EXPECT_EQ(problem.message,
              "A: the comment begins with white space, which is dropped when the file is opened");
    EXPECT_FALSE(table.setShownName("A", "\x02", &problem));
    EXPECT_EQ(problem.reason, Reason::NotKept);
    EXPECT_FALSE(table.setShownName("A", "\xFF", &problem));
    EXPECT_EQ(problem.reason, Reason::InvalidText);
    EXPECT_FALSE(table.setProvider("A", static_cast<Owner>(3), 1, &problem));
    EXPECT_EQ(problem.reason, Reason::NotStored);
    EXPECT_FALSE(table.setComment("B", "c", &problem));
    EXPECT_EQ(problem.reason, Reason::NoSuchKey);
    EXPECT_EQ(SavedBytes(table), before);
    EXPECT_TRUE(table.setComment("A", "")) << "there is none";
    EXPECT_TRUE(table.setProvider("A", Owner::None, 0));
    EXPECT_EQ(SavedBytes(table), before);
}

}  // namespace
