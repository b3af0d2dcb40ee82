// Every write of the C++ front, with every one of its allocations failing in turn. What adds something has added it or
// leaves nothing of it that anybody could find; a change of one export call has happened or not; every other change
// leaves each entry readable, with its old value or the new one.
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <new>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "mox_xmlApi/profile/settings.h"
#include "tests/faults/failing_memory_support.h"
#include "tests/faults/memory_script_support.h"
#include "tests/faults/pool_room_support.h"

namespace faults {
namespace {

using mox::Entry;
using mox::Profile;
using mox::Section;

// S keeps its values in the entries, U in the presentation data.
Profile NewProfile() {
    auto profile = Profile::parse(
        "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\"><Table name=\"S\">"
        "<Var name=\"A\" type=\"long\" id=\"4\"><Value>1</Value><UI control=\"num\" prov_index=\"7\" "
        "prov_owner=\"app\" name=\"shown\"><Comment>comment</Comment><Value>2</Value></UI></Var>"
        "<Var name=\"B\" type=\"long\"><Value>3</Value><UI control=\"num\" name=\"shown\"/></Var>"
        "<Var name=\"C\" type=\"long\"/>"
        "<Var name=\"D\" type=\"long\"><Value>4</Value><UI control=\"num\" prov_index=\"7\" "
        "prov_owner=\"app\" name=\"shown\"><Comment>comment</Comment></UI>"
        "</Var></Table><Table name=\"U\">"
        "<Var name=\"A\" type=\"long\"><UI control=\"num\" prov_index=\"7\" "
        "name=\"shown\"><Value>1</Value></UI></Var>"
        "<Var name=\"B\" type=\"long\"/></Table></Settings>\n");
    EXPECT_TRUE(profile.has_value());
    profile->setForm(mox::Form::Wide);
    return std::move(*profile);
}

mox::XmlPool& PoolOf(const Profile& profile) {
    return profile.handle()->document.Pool();
}

std::string Shown(const Entry& entry) {
    std::string text = entry.name + " #" + std::to_string(entry.id) + " " +
                       std::to_string(static_cast<int>(entry.type)) + " '" + entry.value.value_or("?") + "'";
    if (!entry.ui.has_value()) return text;
    return text + " " + std::to_string(static_cast<int>(entry.ui->control)) + " " +
           std::to_string(entry.ui->providerIndex) + "/" +
           std::to_string(static_cast<int>(entry.ui->providerOwner)) + " '" + entry.ui->shownName + "' '" +
           entry.ui->comment + "' '" + entry.ui->value.value_or("?") + "'";
}

// All that can be read of the document.
std::string Shown(const Profile& profile) {
    std::string text;
    for (const Section& section : profile.sections()) {
        text += "[" + section.name() + "]\n";
        for (const Entry& entry : section.entries())
            text += Shown(entry) + "\n";
    }
    return text;
}

// Section, name and effective value of each entry.
std::vector<std::string> Values(const Profile& profile) {
    std::vector<std::string> values;
    for (const Section& section : profile.sections()) {
        for (const Entry& entry : section.entries())
            values.push_back(section.name() + "/" + entry.name + "=" + entry.effectiveValue());
    }
    return values;
}

using Write = std::function<bool(Profile&)>;

struct States {
    std::string before;
    std::string after;
    std::vector<std::string> valuesBefore;
    std::vector<std::string> valuesAfter;
};

// Whether a failed call leaves nothing half done, or leaves each value old or new.
enum class Promise { AllOrNothing, ValuesOnly };

void ExpectPromise(const Profile& profile, const States& states, Promise promise) {
    std::size_t nameless = 0;
    for (const Section& section : profile.sections())
        nameless += section.countUnreadable();
    EXPECT_LE(nameless, 1U) << "an empty element that the export had added";
    if (promise == Promise::AllOrNothing) {
        const std::string now = Shown(profile);
        EXPECT_TRUE(now == states.before || now == states.after) << now << "which is neither\n"
                                                                 << states.before << "nor\n"
                                                                 << states.after;
        return;
    }
    const std::vector<std::string> values = Values(profile);
    ASSERT_EQ(values.size(), states.valuesBefore.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_TRUE(values[i] == states.valuesBefore[i] || values[i] == states.valuesAfter[i]) << values[i];
}

// Makes each allocation of the call fail in turn, in a pool with so much room. Returns how many failed.
std::uint64_t FailEachAllocation(const Write& write, const States& states, Promise promise,
                                 const PoolRoom& whole, std::size_t bytes) {
    for (std::uint64_t first = 1;; ++first) {
        Profile profile = NewProfile();
        TakeAllBut(PoolOf(profile), whole, bytes);
        bool isDone = false;
        bool hasThrown = false;
        {
            FailingMemory memory(first, Failing::Once);
            try {
                isDone = write(profile);
            } catch (const std::bad_alloc&) {
                hasThrown = true;
            }
        }
        if (FailingMemory::Injected() == 0) {
            EXPECT_TRUE(isDone);
            EXPECT_EQ(Shown(profile), states.after);
            return first - 1;
        }
        SCOPED_TRACE("failure " + std::to_string(first) + " with room for " + std::to_string(bytes));
        EXPECT_EQ(isDone, !hasThrown);
        ExpectPromise(profile, states, promise);
        if (isDone) {
            EXPECT_EQ(Shown(profile), states.after);
        }
        // The document is whole, and the call succeeds when there is memory again; what is there then is refused.
        EXPECT_TRUE(profile.set("S", "later", 1));
        EXPECT_EQ(profile.get<int>("S", "later"), 1);
        if (testing::Test::HasFailure()) return first;
    }
}

void FailMemoryInWrite(const char* what, Promise promise, const Write& write) {
    SCOPED_TRACE(what);
    Profile profile = NewProfile();
    States states;
    states.before = Shown(profile);
    states.valuesBefore = Values(profile);
    ASSERT_TRUE(write(profile));
    states.after = Shown(profile);
    states.valuesAfter = Values(profile);
    ASSERT_NE(states.before, states.after);

    constexpr std::size_t kMostRoom = 960;  // more than any of the calls needs
    constexpr std::size_t kRoomStep = kIsThorough ? mox::XmlPool::kAlignment : 16 * mox::XmlPool::kAlignment;
    Profile full = NewProfile();
    const PoolRoom whole = TakeAll(PoolOf(full));
    ASSERT_GE(whole.Bytes(), kMostRoom);
    std::uint64_t failures = 0;
    for (std::size_t bytes = 0; bytes <= kMostRoom && !testing::Test::HasFailure(); bytes += kRoomStep)
        failures += FailEachAllocation(write, states, promise, whole, bytes);
    EXPECT_GT(failures, 0U);
}

const std::string kLongText =
    "a value that needs some memory of its own, wherever it is stored, because it is so long";

Entry FullEntry(const std::string& name) {
    mox::Presentation ui;
    ui.control = mox::Control::Number;
    ui.providerIndex = 9;
    ui.providerOwner = mox::Owner::Erg;
    ui.shownName = "another displayed name";
    ui.comment = "another comment that takes its room";
    ui.value = kLongText;
    return {name, kLongText, mox::ValueType::String, mox::Shape::Single, 12, ui};
}

TEST(FailingMemoryInFrontWrites, WhatIsAddedIsThereOrNot) {
    FailMemoryInWrite("a key", Promise::AllOrNothing,
                      [](Profile& p) { return p.setString("S", "New", kLongText); });
    FailMemoryInWrite("a typed key", Promise::AllOrNothing,
                      [](Profile& p) { return p.set("S", "New", 2.5); });
    FailMemoryInWrite("a key in a new section", Promise::AllOrNothing,
                      [](Profile& p) { return p.setString("A new section", "New", kLongText); });
    FailMemoryInWrite("a typed key in a new section", Promise::AllOrNothing,
                      [](Profile& p) { return p.set("A new section", "New", true); });
    FailMemoryInWrite("a typed key in presentation data", Promise::AllOrNothing,
                      [](Profile& p) { return p.set("U", "New", 5); });
    FailMemoryInWrite("a section", Promise::AllOrNothing, [](Profile& p) {
        return p.makeSection("A new section", {true, 5, 6}).has_value();
    });
    FailMemoryInWrite("an entry", Promise::AllOrNothing,
                      [](Profile& p) { return p.findSection("S")->add(FullEntry("New")); });
    FailMemoryInWrite("an entry before another one", Promise::AllOrNothing,
                      [](Profile& p) { return p.findSection("S")->addBefore("A", FullEntry("New")); });
    FailMemoryInWrite("an entry by put", Promise::AllOrNothing,
                      [](Profile& p) { return p.findSection("S")->put(FullEntry("New")); });
    FailMemoryInWrite("an entry by set", Promise::AllOrNothing,
                      [](Profile& p) { return p.findSection("S")->set("New", kLongText); });
}

TEST(FailingMemoryInFrontWrites, AValueIsTheOldOrTheNewOne) {
    FailMemoryInWrite("of a key", Promise::AllOrNothing,
                      [](Profile& p) { return p.setString("S", "A", kLongText); });
    FailMemoryInWrite("of a key by its type", Promise::AllOrNothing,
                      [](Profile& p) { return p.set("S", "C", 7); });
    FailMemoryInWrite("of an entry", Promise::AllOrNothing,
                      [](Profile& p) { return p.findSection("S")->setValue("A", kLongText); });
    FailMemoryInWrite("of an entry without one", Promise::AllOrNothing,
                      [](Profile& p) { return p.findSection("S")->setValue("C", kLongText); });
    FailMemoryInWrite("in presentation data", Promise::ValuesOnly,
                      [](Profile& p) { return p.findSection("U")->setValue("A", kLongText); });
}

TEST(FailingMemoryInFrontWrites, AnEntryThatIsChangedKeepsItsValueOrHasTheNewOne) {
    FailMemoryInWrite("put", Promise::ValuesOnly,
                      [](Profile& p) { return p.findSection("S")->put(FullEntry("A")); });
    FailMemoryInWrite("comment", Promise::AllOrNothing,
                      [](Profile& p) { return p.findSection("S")->setComment("A", kLongText); });
    FailMemoryInWrite("provider", Promise::ValuesOnly,
                      [](Profile& p) { return p.findSection("S")->setProvider("B", mox::Owner::Erg, 12); });
    FailMemoryInWrite("displayed name cleared in place", Promise::AllOrNothing,
                      [](Profile& p) { return p.findSection("S")->setShownName("A", ""); });
    FailMemoryInWrite("displayed name cleared with a temporary value", Promise::AllOrNothing,
                      [](Profile& p) { return p.findSection("S")->setShownName("D", ""); });
    FailMemoryInWrite(
        "provider cleared and written with a temporary value", Promise::AllOrNothing,
        [](Profile& p) { return p.findSection("S")->setProvider("D", mox::Owner::None, 123456); });
}

TEST(FailingMemoryInFrontWrites, AnEntryIsReplacedOrStays) {
    FailMemoryInWrite("comment cleared", Promise::AllOrNothing,
                      [](Profile& p) { return p.findSection("S")->setComment("A", ""); });
    FailMemoryInWrite("displayed name cleared", Promise::AllOrNothing,
                      [](Profile& p) { return p.findSection("S")->setShownName("B", ""); });
}

TEST(FailingMemoryInFrontWrites, AnEntryIsRenamedOrNot) {
    FailMemoryInWrite("with a value", Promise::AllOrNothing,
                      [](Profile& p) { return p.rename("S", "A", "A name that needs memory of its own"); });
    FailMemoryInWrite("without a value", Promise::ValuesOnly,
                      [](Profile& p) { return p.rename("S", "C", "A name that needs memory of its own"); });
}

TEST(FailingMemoryInFrontWrites, ReadsChangeNothing) {
    FailMemoryInWrite("reads, then a write", Promise::AllOrNothing, [](Profile& p) {
        mox::Problem problem;
        const bool isRead = p.get<int>("S", "A", &problem).has_value() &&
                            !p.get<int>("S", "None", &problem) &&
                            p.findSection("S")->find("A", &problem).has_value() &&
                            p.keys("S", &problem).size() == 4 && p.sectionNames().size() == 2;
        return isRead && p.setString("S", "A", kLongText, &problem);
    });
}

}  // namespace
}  // namespace faults
