// Exceptions that leave a library reach the catch of a host that was built apart from it.
#include <exception>
#include <new>

#include "tests/host/host_support.h"
#include "tests/host/memory_limit_support.h"
#include "tests/host/thrower/thrower.h"

namespace host {
namespace {

// Asks for more hexadecimal digits than the limit has room for; the bytes themselves are never read.
void WriteTooManyBytes(moxSettings* profile) {
    const unsigned char byte = 0;
    const MemoryLimit limit;
    xmlWriteProfileData(profile, "S"_w, "k"_w, &byte, 0xFFFFFFFFU);
}

TEST(Exceptions, StampReachesTheHost) {
    std::int32_t caught = 0;
    try {
        ThrowStamp();
    } catch (const std::int32_t value) {
        caught = value;
    }
    EXPECT_EQ(caught, -2147483640);
    EXPECT_EQ(static_cast<std::uint32_t>(caught), 0x80000008U);
}

TEST(Exceptions, StampIsNoOtherException) {
    bool other = false;
    try {
        try {
            ThrowStamp();
        } catch (const std::exception&) {
            other = true;
        } catch (const std::uint32_t) {
            other = true;
        } catch (const std::int64_t) {
            other = true;
        }
    } catch (...) {
    }
    EXPECT_FALSE(other);
}

TEST(Exceptions, AllocationFailureOfAnExportReachesTheHost) {
    if (!MemoryLimit::Available()) GTEST_SKIP() << "AddressSanitizer does not throw";
    const Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    EXPECT_THROW(WriteTooManyBytes(profile), std::bad_alloc);
    EXPECT_THROW(WriteTooManyBytes(profile), std::exception);
}

TEST(Exceptions, ProfileIsUsableAfterAnAllocationFailure) {
    if (!MemoryLimit::Available()) GTEST_SKIP() << "AddressSanitizer does not throw";
    const Profile profile = LoadEntries("<Var name=\"k\" type=\"long\"><Value>7</Value></Var>");
    EXPECT_THROW(WriteTooManyBytes(profile), std::bad_alloc);
    EXPECT_EQ(xmlGetProfileInt(profile, "S"_w, "k"_w, -1), 7);
    const unsigned char bytes[] = {0x12, 0x34};
    EXPECT_EQ(xmlWriteProfileData(profile, "S"_w, "k"_w, bytes, 2), 1U);
    EXPECT_EQ(ReadText(profile, "S"_w, "k"_w), "1234"_w);
}

}  // namespace
}  // namespace host
