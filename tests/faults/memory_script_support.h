// One call of an export after the other with every one of its allocations failing in turn.
#ifndef MOX_XMLAPI_TESTS_FAULTS_MEMORY_SCRIPT_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_MEMORY_SCRIPT_SUPPORT_H

#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <string_view>

#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/xml/xml_pool.h"
#include "tests/sanitized_build.h"

namespace faults {

// What a call works on: the handles and variables of a host. All of it is released in the end.
struct World {
    World() = default;
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    void LoadProfile(std::string_view text);
    // Of the profile.
    void OpenSection(const wchar16* name);
    void LoadTable(std::string_view text);
    void NameRecords(const wchar16* name, std::uint16_t type);

    // What table functions work on.
    void* Handle() const { return table != nullptr ? table : section; }
    // Where the document lives; null without one.
    mox::XmlPool* Pool() const;
    // Whether the trees are sound, and the handles can be read, saved and loaded again.
    testing::AssertionResult IsUsable() const;

    moxSettings* profile = nullptr;
    void* section = nullptr;
    void* table = nullptr;
    std::uintptr_t enumeration = 0;
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
};

struct Call {
    const char* what;
    std::function<void(World&)> prepare;
    // The call itself. Returns whether its result is that of a success.
    std::function<bool(World&)> call;
    // What must hold after a call that was left in peace; may be empty.
    std::function<void(World&)> check = {};
    // What must hold after one that failed, beside World::IsUsable; may be empty.
    std::function<void(World&)> checkFailed = {};
};

// Every amount of room in a pool is tried where that is quick: not under the sanitizer, and not under Wine,
// where files take their time.
#if defined(_WIN32)
inline constexpr bool kIsThorough = false;
#else
inline constexpr bool kIsThorough = !kIsSanitized;
#endif

// By how many units a text grows from one run of a call to the next, where its length decides which block of
// memory does not fit any more.
inline constexpr std::size_t kStep = kIsThorough ? 4 : 52;

// Fails each allocation of the call, alone and together with all that follow, first with the document's pool
// as it is, then with less room in it than the call needs: every amount, or else the largest with which the
// call comes just as far. Each time std::bad_alloc has to come out, or the result of a failure, and the same call
// has to succeed then; or what failed was not needed, and the check of the call has to hold. Nothing may be lost,
// and everything has to stay usable.
void FailMemoryIn(const char* exported, const Call& call);

// The same for a call that needs no memory: none of its calls may ask for any.
void ExpectNoMemoryUse(const char* exported, const Call& call);

}  // namespace faults

#endif
