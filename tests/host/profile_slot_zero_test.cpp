// A profile handle begins with the address of its virtual table, as every object of C++ with virtual operations does.
// Slot 0 destroys the object, and frees it when bit 0 of its argument is set.
#include <cstdint>
#include <new>
#include <set>

#include "tests/host/host_support.h"
#include "tests/sanitized_build.h"

namespace host {
namespace {

// How a virtual operation is called on 64-bit systems: the object is the first argument.
using Destroy = void* (*)(void* object, unsigned flags);

constexpr unsigned kFree = 1;

void* CallSlotZero(moxSettings* handle, unsigned flags) {
    void** const slots = *reinterpret_cast<void***>(handle);
    return reinterpret_cast<Destroy>(slots[0])(handle, flags);
}

moxSettings* OpenWithKey() {
    constexpr std::string_view kDocument =
        "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\"><Table name=\"S\">"
        "<Var name=\"k\" type=\"long\"><Value>7</Value></Var></Table></Settings>";
    return xmlProfileNew(nullptr, kDocument.data(), static_cast<std::int32_t>(kDocument.size()), 0);
}

TEST(ProfileSlotZero, DestroysAndFreesWhenAskedTo) {
    for (const unsigned flags : {kFree, 0xFFFFFFFFU}) {
        moxSettings* const handle = OpenWithKey();
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(CallSlotZero(handle, flags), static_cast<void*>(handle));
    }
}

// Storage that is not freed is never handed out again. The number of rounds fills what the sanitizers and memcheck keep
// of freed memory.
TEST(ProfileSlotZero, FreedStorageServesAgain) {
    constexpr std::size_t kRounds = kIsSanitized ? 160000 : 20000;
    std::set<std::uintptr_t> addresses;
    for (std::size_t round = 0; round < kRounds; ++round) {
        moxSettings* const handle = OpenWithKey();
        addresses.insert(reinterpret_cast<std::uintptr_t>(handle));
        CallSlotZero(handle, kFree);
    }
    EXPECT_LT(addresses.size(), kRounds);
}

TEST(ProfileSlotZero, LeavesTheStorageToTheCallerWhenNotAskedToFree) {
    for (const unsigned flags : {0U, 2U, 0xFFFFFFFEU}) {
        moxSettings* const handle = OpenWithKey();
        ASSERT_NE(handle, nullptr);
        void* const storage = CallSlotZero(handle, flags);
        ASSERT_EQ(storage, static_cast<void*>(handle));
        for (int i = 0; i < 100; ++i) {
            const Profile other(OpenWithKey());
            EXPECT_NE(static_cast<void*>(static_cast<moxSettings*>(other)), storage);
        }
        *static_cast<unsigned char*>(storage) = 0xFF;
        ::operator delete(storage);
    }
}

// The handle that the replaced operation below was called for, and how.
void* destroyedObject = nullptr;
unsigned destroyFlags = 0;

void* NoteDestroy(void* object, unsigned flags) {
    destroyedObject = object;
    destroyFlags = flags;
    return object;
}

TEST(ProfileSlotZero, IsWhatDisposeCalls) {
    if (kIsSanitized) GTEST_SKIP() << "UndefinedBehaviorSanitizer knows the virtual table that belongs here";
    moxSettings* handle = OpenWithKey();
    moxSettings* const same = handle;
    void** const slots = *reinterpret_cast<void***>(same);
    void* replaced[] = {reinterpret_cast<void*>(&NoteDestroy), nullptr};
    *reinterpret_cast<void***>(same) = replaced;
    xmlProfileDispose(&handle);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(destroyedObject, static_cast<void*>(same));
    EXPECT_EQ(destroyFlags, 1U);
    *reinterpret_cast<void***>(same) = slots;
    CallSlotZero(same, kFree);
}

}  // namespace
}  // namespace host
