// Where the front stores values, for every combination of table, entry and request: a call that succeeds has stored
// what it was given and kept the rest, and a call that cannot do so fails.
#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/front/front_support.h"

namespace {

using front_tests::First;
using front_tests::FirstEntry;
using front_tests::kFirsts;
using front_tests::SavedBytes;
using front_tests::TableWith;
using mox::Control;
using mox::Entry;
using mox::Owner;
using mox::Presentation;
using mox::Shape;
using mox::Table;
using mox::ValueType;
using OptionalText = std::optional<std::string>;

// The entry A that is there before the call.
struct Before {
    bool hasOwnValue;
    bool hasUi;
    bool hasUiValue;
    bool hasComment;

    std::string Element() const {
        std::string text("<Var name=\"A\" id=\"5\" type=\"long\" eud=\"true\">");
        if (hasOwnValue) text += "<Value>own</Value>";
        if (hasUi) text += "<UI control=\"num\" prov_index=\"7\" prov_owner=\"app\" name=\"shown\">";
        if (hasComment) text += "<Comment>old comment</Comment>";
        if (hasUiValue) text += "<Value>old ui</Value>";
        return text + (hasUi ? "</UI></Var>" : "</Var>");
    }
};

std::vector<Before> AllBefore() {
    std::vector<Before> all;
    for (const bool own : {false, true}) {
        all.push_back({own, false, false, false});
        for (const bool uiValue : {false, true}) {
            for (const bool comment : {false, true})
                all.push_back({own, true, uiValue, comment});
        }
    }
    return all;
}

// What a call asks for.
struct Request {
    OptionalText value;
    bool hasUi;
    OptionalText uiValue;
    std::string comment;

    Entry AsEntry() const {
        Entry entry{"A", value, ValueType::Long, Shape::Single, 0, std::nullopt};
        if (!hasUi) return entry;
        entry.ui.emplace();
        entry.ui->control = Control::Rgb;
        entry.ui->value = uiValue;
        entry.ui->comment = comment;
        return entry;
    }
};

std::vector<Request> AllRequests() {
    const OptionalText texts[] = {std::nullopt, "", "new", "other"};
    std::vector<Request> all;
    for (const OptionalText& value : {OptionalText(), OptionalText(""), OptionalText("new")}) {
        all.push_back({value, false, std::nullopt, ""});
        for (const OptionalText& uiValue : texts) {
            for (const char* comment : {"", "new comment"})
                all.push_back({value, true, uiValue, comment});
        }
    }
    return all;
}

std::string Shown(const OptionalText& text) {
    return text.has_value() ? "'" + *text + "'" : "none";
}

std::string Shown(const std::optional<Entry>& entry) {
    if (!entry.has_value()) return "no entry";
    std::string text = "own " + Shown(entry->value) + " id " + std::to_string(entry->id);
    if (!entry->ui.has_value()) return text;
    const Presentation& ui = *entry->ui;
    text += " control " + std::to_string(static_cast<int>(ui.control));
    text += " provider " + std::to_string(ui.providerIndex) + "/" +
            std::to_string(static_cast<int>(ui.providerOwner)) + " '" + ui.shownName + "'";
    return text + " comment '" + ui.comment + "' value " + Shown(ui.value);
}

// The value is written to the presentation data if the first entry has its value there and this entry has none.
bool GoesToUi(First first, bool hasOwnValue) {
    return first == First::UiValue && !hasOwnValue;
}

// `before` is null when there is no entry.
bool CanBeStored(First first, const Before* before, const Request& request) {
    const bool toUi = GoesToUi(first, before != nullptr && before->hasOwnValue);
    if (!request.uiValue.has_value()) return true;
    // The same element cannot hold two values.
    if (toUi) return request.value.value_or("").empty() || request.value == request.uiValue;
    const bool hasComment = !request.comment.empty() || (before != nullptr && before->hasComment);
    const bool hasUiValue = before != nullptr && before->hasUiValue;
    return hasComment || (request.uiValue->empty() && !hasUiValue);
}

// The entry after a call that succeeded.
Entry Expected(First first, const Before* before, const Request& request) {
    const bool hadOwnValue = before != nullptr && before->hasOwnValue;
    const bool toUi = GoesToUi(first, hadOwnValue);
    const bool hadUi = before != nullptr && before->hasUi;
    Entry entry{"A", hadOwnValue ? "own" : "", ValueType::Long, Shape::Single, before != nullptr ? 5U : 0U};
    if (request.value.has_value() && !toUi) entry.value = request.value;
    if (!hadUi && !request.hasUi && !toUi) return entry;
    Presentation ui;
    ui.control = request.hasUi ? Control::Rgb : hadUi ? Control::Number : Control::Text;
    if (hadUi) {
        ui.providerIndex = 7;
        ui.providerOwner = Owner::App;
        ui.shownName = "shown";
    }
    ui.comment = hadUi && before->hasComment ? "old comment" : "";
    if (!request.comment.empty()) ui.comment = request.comment;
    ui.value = hadUi && before->hasUiValue ? "old ui" : "";
    if (toUi && request.value.has_value()) ui.value = request.value;
    if (request.uiValue.has_value()) ui.value = request.uiValue;
    entry.ui = ui;
    return entry;
}

std::string Description(First first, const std::string& entry, const Request& request) {
    return FirstEntry(first) + entry + " value " + Shown(request.value) +
           (request.hasUi ? " ui value " + Shown(request.uiValue) + " comment '" + request.comment + "'"
                          : "");
}

TEST(FrontValuePlaces, AddStoresTheRequestOrAddsNothing) {
    std::size_t stored = 0;
    std::size_t refused = 0;
    for (const First first : kFirsts) {
        for (const Request& request : AllRequests()) {
            SCOPED_TRACE(Description(first, "", request));
            Table table = TableWith(FirstEntry(first));
            const std::string before = SavedBytes(table);
            const std::string firstBefore = Shown(table.find("F"));
            const bool isStored = table.add(request.AsEntry());
            EXPECT_EQ(isStored, CanBeStored(first, nullptr, request));
            if (isStored) {
                ++stored;
                EXPECT_EQ(Shown(table.find("A")), Shown(Expected(first, nullptr, request)));
                EXPECT_EQ(Shown(table.find("F")), firstBefore);
            } else {
                ++refused;
                EXPECT_EQ(SavedBytes(table), before);
            }
        }
    }
    EXPECT_EQ(stored, 65U);
    EXPECT_EQ(refused, 16U);
}

// Whether A, the only entry that had "eud", still has it.
bool HasEud(const Table& table) {
    std::string text = SavedBytes(table);
    text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
    return text.find("eud=\"true\"") != std::string::npos;
}

// What counts as the first entry: without another one, A itself does.
First RuleFor(First first, const Before& before) {
    if (first != First::None) return first;
    return !before.hasOwnValue && before.hasUiValue ? First::UiValue : First::OwnValue;
}

TEST(FrontValuePlaces, PutStoresTheRequestOrChangesNothing) {
    std::size_t stored = 0;
    std::size_t refused = 0;
    for (const First first : kFirsts) {
        for (const Before& before : AllBefore()) {
            for (const Request& request : AllRequests()) {
                SCOPED_TRACE(Description(first, before.Element(), request));
                const First rule = RuleFor(first, before);
                Table table = TableWith(FirstEntry(first) + before.Element());
                const std::string unchanged = SavedBytes(table);
                const std::string firstBefore = Shown(table.find("F"));
                const bool isStored = table.put(request.AsEntry());
                EXPECT_EQ(isStored, CanBeStored(rule, &before, request));
                EXPECT_EQ(table.list().size(), first == First::None ? 1U : 2U);
                EXPECT_EQ(Shown(table.find("F")), firstBefore);
                EXPECT_TRUE(HasEud(table));
                if (isStored) {
                    ++stored;
                    EXPECT_EQ(Shown(table.find("A")), Shown(Expected(rule, &before, request)));
                } else {
                    ++refused;
                    EXPECT_EQ(SavedBytes(table), unchanged);
                }
            }
        }
    }
    EXPECT_EQ(stored, 686U);
    EXPECT_EQ(refused, 124U);
}

TEST(FrontValuePlaces, SetValueStoresTheValueAndKeepsTheRest) {
    for (const First first : kFirsts) {
        for (const Before& before : AllBefore()) {
            for (const char* value : {"", "new"}) {
                const Request request{value, false, std::nullopt, ""};
                SCOPED_TRACE(Description(first, before.Element(), request));
                Table table = TableWith(FirstEntry(first) + before.Element());
                const std::string firstBefore = Shown(table.find("F"));
                EXPECT_TRUE(table.setValue("A", value));
                EXPECT_EQ(Shown(table.find("A")), Shown(Expected(RuleFor(first, before), &before, request)));
                EXPECT_EQ(Shown(table.find("F")), firstBefore);
                if (!request.value->empty()) {
                    EXPECT_FALSE(HasEud(table));
                }
            }
        }
    }
}

TEST(FrontValuePlaces, SetValueUnlessEudLeavesAnEntryWithEud) {
    for (const First first : kFirsts) {
        for (const Before& before : AllBefore()) {
            SCOPED_TRACE(FirstEntry(first) + before.Element());
            Table table = TableWith(FirstEntry(first) + before.Element());
            const std::string unchanged = SavedBytes(table);
            EXPECT_FALSE(table.setValueUnlessEud("A", "new"));
            EXPECT_EQ(SavedBytes(table), unchanged);
        }
    }
}

// An entry with a longer name is read with that name as well, so the two cannot be told apart by name.
TEST(FrontValuePlaces, PutRefusesANameOf259UnitsWhereItNeedsThePosition) {
    const std::string name(259, 'n');
    Table table = TableWith(FirstEntry(First::UiValue) + "<Var name=\"" + name +
                            "n\" type=\"long\"><Value>1</Value></Var>" + "<Var name=\"" + name +
                            "\" type=\"long\"><Value>2</Value></Var>");
    const std::string unchanged = SavedBytes(table);
    EXPECT_FALSE(table.put({name, "3", ValueType::Long}));
    EXPECT_EQ(SavedBytes(table), unchanged);
    EXPECT_TRUE(table.setValue(name, "3"));
    EXPECT_EQ(table.find(name)->value, "3");
    EXPECT_EQ(table.list().at(1).value, "1");
}

}  // namespace
