#include "tests/faults/memory_script_support.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <new>
#include <string>
#include <vector>

#include "mox_xmlApi/profile/settings.h"
#include "mox_xmlApi/table/table_handle.h"
#include "tests/faults/failing_memory_support.h"
#include "tests/faults/pool_room_support.h"
#include "tests/faults/tree_check_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

// How many failures each export has met.
std::map<std::string, std::uint64_t>& Tally() {
    static std::map<std::string, std::uint64_t> tally;
    return tally;
}

class TallyPrinter : public testing::Environment {
  public:
    void TearDown() override {
        std::uint64_t sum = 0;
        for (const auto& [exported, count] : Tally()) {
            std::printf("%-24s %8llu failed allocations\n", exported.c_str(),
                        static_cast<unsigned long long>(count));
            sum += count;
        }
        if (!Tally().empty())
            std::printf("%zu exports, %llu failed allocations\n", Tally().size(),
                        static_cast<unsigned long long>(sum));
    }
};

// GoogleTest owns it.
[[maybe_unused]] const testing::Environment* const printer =
    testing::AddGlobalTestEnvironment(new TallyPrinter);

const host::ScratchFile& Scratch() {
    static const host::ScratchFile file(u"failing_memory_scratch.xml");
    return file;
}

// The name of the scratch file, which is not there: some file systems wait for the disk when a file is
// replaced.
const wchar16* FreshName() {
    std::filesystem::remove(Scratch().Path());
    return Scratch().Name();
}

mox::TableHandle* TableOf(void* handle) {
    return static_cast<mox::TableHandle*>(handle);
}

// Reads every entry; false when an enumeration does not come to its end.
bool ReadEntries(void* table) {
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    for (std::uint64_t last = 1; last != position;) {
        last = position;
        xmlTableEntryGet(table, &position, &value, &ui);
        xmlTableEntryIsExist(table, &value);
    }
    return xmlTableEntryGet(table, &position, &value, nullptr) == false;
}

bool ReadSections(moxSettings* profile) {
    std::uintptr_t position = 0;
    wchar16 name[64];
    wchar16 text[64];
    for (;;) {
        void* section = xmlEnumProfileSections(profile, &position, name, 64, nullptr);
        if (section == nullptr) return position == 0;
        const bool read = ReadEntries(section);
        xmlTableDispose(&section);
        if (!read || xmlGetProfileString(profile, name, host::WideText().c_str(), text, 64, name) >= 64)
            return false;
    }
}

bool SaveAndLoad(moxSettings* profile) {
    for (const std::int32_t wide : {0, 1}) {
        if (xmlProfileSave(profile, FreshName(), 0, 0, wide) != 1) return false;
        if (host::Profile(xmlProfileNew(Scratch().Name(), nullptr, 0, wide)) == nullptr) return false;
    }
    return true;
}

bool SaveAndLoadTable(void* table) {
    if (!xmlTableSave(table, FreshName(), 0, 0)) return false;
    void* loaded = xmlTableNew(Scratch().Name(), nullptr, 0, nullptr, 0, 0, 0, 0);
    const bool isLoaded = loaded != nullptr;
    xmlTableDispose(&loaded);
    return isLoaded;
}

enum class Outcome { Done, Neutral, BadAlloc, Other };

Outcome Attempt(const Call& call, World& world, std::uint64_t first, Failing how) {
    FailingMemory memory(first, how);
    try {
        const bool done = call.call(world);
        memory.Stop();
        return done ? Outcome::Done : Outcome::Neutral;
    } catch (const std::bad_alloc&) {
        memory.Stop();
        return Outcome::BadAlloc;
    } catch (...) {
        memory.Stop();
        return Outcome::Other;
    }
}

// How much of its pool a call is given.
struct Room {
    bool isLimited = false;
    PoolRoom whole = {};
    std::size_t bytes = 0;

    void Apply(const World& world) const {
        if (isLimited) TakeAllBut(*world.Pool(), whole, bytes);
    }
};

void CheckOutcome(const Call& call, World& world, Outcome outcome, bool hasFailed) {
    EXPECT_TRUE(world.IsUsable());
    if (outcome == Outcome::Done) {
        // What can be done without, as an index for look-ups, may fail without harm: then all has to be done.
        EXPECT_TRUE(!hasFailed || call.check) << "a success without memory";
        if (call.check) call.check(world);
        return;
    }
    EXPECT_TRUE(hasFailed) << "the call failed by itself";
    EXPECT_NE(outcome, Outcome::Other) << "another exception";
    if (call.checkFailed) call.checkFailed(world);
    EXPECT_TRUE(call.call(world)) << "the second call";
    EXPECT_TRUE(world.IsUsable()) << "after the second call";
}

// Fails the allocations of the call one after the other, until there is none left to fail.
std::uint64_t FailEachAllocation(const Call& call, const Room& room, Failing how) {
    std::uint64_t failures = 0;
    for (bool isDone = false; !isDone && !testing::Test::HasFailure();) {
        const std::int64_t before = LiveBlocks();
        {
            World world;
            call.prepare(world);
            room.Apply(world);
            const Outcome outcome = Attempt(call, world, failures + 1, how);
            isDone = FailingMemory::Injected() == 0;
            if (!isDone) ++failures;
            CheckOutcome(call, world, outcome, !isDone);
        }
        EXPECT_EQ(LiveBlocks(), before) << "blocks of memory are lost";
    }
    if (testing::Test::HasFailure())
        ADD_FAILURE() << call.what << ": allocation " << failures << " failed"
                      << (how == Failing::Once ? " once" : " with all after it")
                      << (room.isLimited ? ", bytes left in the pool: " + std::to_string(room.bytes) : "");
    return failures;
}

// The first run of an operation may allocate memory that later runs use again.
void RunOnce(const Call& call) {
    World world;
    call.prepare(world);
    Attempt(call, world, 1, Failing::Once);
    EXPECT_TRUE(world.IsUsable());
    if (call.checkFailed) call.checkFailed(world);
    call.call(world);
    EXPECT_TRUE(world.IsUsable());
}

PoolRoom RoomBefore(const Call& call) {
    World world;
    call.prepare(world);
    return world.Pool() == nullptr ? PoolRoom() : TakeAll(*world.Pool());
}

// How much room in the pool makes a difference to the call.
std::size_t RoomNeeded(const Call& call, const PoolRoom& before) {
    World world;
    call.prepare(world);
    if (world.Pool() == nullptr) return 0;
    const std::size_t held = world.Pool()->BytesHeld();
    call.call(world);
    if (world.Pool() == nullptr) return 0;
    constexpr std::size_t kMost = 4096;
    if (world.Pool()->BytesHeld() != held) return std::min(before.Bytes(), kMost);
    const std::size_t after = TakeAll(*world.Pool()).Bytes();
    return before.Bytes() > after ? before.Bytes() - after : 0;
}

// How much of the room a call leaves that meets no memory beyond it.
std::size_t RoomLeft(const Call& call, const Room& room) {
    World world;
    call.prepare(world);
    room.Apply(world);
    Attempt(call, world, 1, Failing::FromThenOn);
    return world.Pool() == nullptr ? 0 : TakeAll(*world.Pool()).Bytes();
}

// The rooms that a call is given. Under the sanitizer only the largest of those with which it comes equally
// far.
std::vector<Room> RoomsFor(const Call& call) {
    const PoolRoom whole = RoomBefore(call);
    const std::size_t needed = RoomNeeded(call, whole);
    std::vector<Room> rooms{Room()};
    std::size_t lastUsed = 0;
    for (std::size_t bytes = 0; bytes < needed; bytes += mox::XmlPool::kAlignment) {
        const Room room{true, whole, bytes};
        if (!kIsThorough) {
            const std::size_t used = bytes - RoomLeft(call, room);
            if (used == lastUsed && rooms.size() > 1) rooms.pop_back();
            lastUsed = used;
        }
        rooms.push_back(room);
    }
    return rooms;
}

}  // namespace

World::~World() {
    while (enumeration != 0) {
        void* last = xmlEnumProfileSections(profile, &enumeration, nullptr, 0, nullptr);
        xmlTableDispose(&last);
    }
    xmlTableDispose(&section);
    xmlTableDispose(&table);
    xmlProfileDispose(&profile);
}

void World::LoadProfile(std::string_view text) {
    profile = xmlProfileNew(nullptr, text.data(), static_cast<std::int32_t>(text.size()), 0);
    ASSERT_NE(profile, nullptr);
}

void World::OpenSection(const wchar16* name) {
    section = xmlGetProfileSection(profile, name, nullptr);
    ASSERT_NE(section, nullptr);
}

void World::LoadTable(std::string_view text) {
    table = xmlTableNew(nullptr, text.data(), static_cast<std::int32_t>(text.size()), nullptr, 0, 0, 0, 0);
    ASSERT_NE(table, nullptr);
}

void World::NameRecords(const wchar16* name, std::uint16_t type) {
    const host::WideText text(name);
    for (TableEntryValueInfoStruct* record : {&value, static_cast<TableEntryValueInfoStruct*>(&ui)}) {
        std::copy_n(text.c_str(), text.size() + 1, record->name);
        record->type = type;
    }
}

mox::XmlPool* World::Pool() const {
    if (profile != nullptr) return &profile->document.Pool();
    return table == nullptr ? nullptr : &TableOf(table)->document.Pool();
}

testing::AssertionResult World::IsUsable() const {
    for (void* handle : {section, table}) {
        if (handle == nullptr) continue;
        if (const auto sound = IsSound(TableOf(handle)->document); !sound) return sound;
        if (!ReadEntries(handle)) return testing::AssertionFailure() << "entries cannot be read";
        if (!SaveAndLoadTable(handle)) return testing::AssertionFailure() << "a table cannot be saved";
    }
    if (profile == nullptr) return testing::AssertionSuccess();
    if (const auto sound = IsSound(profile->document); !sound) return sound;
    if (!ReadSections(profile)) return testing::AssertionFailure() << "sections cannot be read";
    if (!SaveAndLoad(profile)) return testing::AssertionFailure() << "the profile cannot be saved";
    return testing::AssertionSuccess();
}

void FailMemoryIn(const char* exported, const Call& call) {
    SCOPED_TRACE(call.what);
    RunOnce(call);
    const std::vector<Room> rooms = RoomsFor(call);
    std::uint64_t failures = 0;
    for (const Failing how : {Failing::Once, Failing::FromThenOn}) {
        for (const Room& room : rooms) {
            if (!testing::Test::HasFailure()) failures += FailEachAllocation(call, room, how);
        }
    }
    Tally()[exported] += failures;
    EXPECT_GT(failures, 0U) << "the call never asked for memory";
}

void ExpectNoMemoryUse(const char* exported, const Call& call) {
    SCOPED_TRACE(call.what);
    const PoolRoom whole = RoomBefore(call);
    for (const bool isLimited : {false, true}) {
        World world;
        call.prepare(world);
        if (isLimited && world.Pool() != nullptr) TakeAllBut(*world.Pool(), whole, 0);
        EXPECT_EQ(Attempt(call, world, 1, Failing::FromThenOn), Outcome::Done);
        EXPECT_EQ(FailingMemory::Asked(), 0U);
        if (call.check) call.check(world);
        EXPECT_TRUE(world.IsUsable());
    }
    Tally()[exported] += 0;
}

}  // namespace faults
