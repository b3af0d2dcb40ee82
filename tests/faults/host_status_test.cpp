// How the failures of the C++ front, and exceptions, become statuses of mox_host. Most of them take a disk or a system
// that fails.
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <string>

#include "mox_host/call.h"

namespace faults {
namespace {

using mox::Reason;

TEST(HostStatus, EachReasonOfTheFrontHasOne) {
    const auto name = [](Reason reason) { return mox_status_name(mox::host::StatusOf(reason)); };
    EXPECT_STREQ(name(Reason::None), "MOX_INTERNAL_ERROR");
    EXPECT_STREQ(name(Reason::NotFound), "MOX_NOT_FOUND");
    EXPECT_STREQ(name(Reason::NoPermission), "MOX_NO_PERMISSION");
    EXPECT_STREQ(name(Reason::NotRegularFile), "MOX_NOT_REGULAR_FILE");
    EXPECT_STREQ(name(Reason::TooLarge), "MOX_TOO_LARGE");
    EXPECT_STREQ(name(Reason::ReadFailed), "MOX_READ_FAILED");
    EXPECT_STREQ(name(Reason::WriteFailed), "MOX_WRITE_FAILED");
    EXPECT_STREQ(name(Reason::Changed), "MOX_CHANGED");
    EXPECT_STREQ(name(Reason::Busy), "MOX_BUSY");
    EXPECT_STREQ(name(Reason::Unconfirmed), "MOX_UNCONFIRMED");
    EXPECT_STREQ(name(Reason::Syntax), "MOX_SYNTAX");
    EXPECT_STREQ(name(Reason::WrongKind), "MOX_WRONG_KIND");
    EXPECT_STREQ(name(Reason::Encoding), "MOX_WRONG_ENCODING");
    EXPECT_STREQ(name(Reason::TooDeep), "MOX_TOO_DEEP");
    EXPECT_STREQ(name(Reason::NoSuchSection), "MOX_NO_SUCH_SECTION");
    EXPECT_STREQ(name(Reason::NoSuchKey), "MOX_NO_SUCH_KEY");
    EXPECT_STREQ(name(Reason::NameTaken), "MOX_NAME_TAKEN");
    EXPECT_STREQ(name(Reason::Protected), "MOX_PROTECTED");
    EXPECT_STREQ(name(Reason::Unreadable), "MOX_UNREADABLE");
    EXPECT_STREQ(name(Reason::Ambiguous), "MOX_AMBIGUOUS");
    EXPECT_STREQ(name(Reason::InvalidText), "MOX_INVALID_TEXT");
    EXPECT_STREQ(name(Reason::NotKept), "MOX_NOT_KEPT");
    EXPECT_STREQ(name(Reason::WrongType), "MOX_WRONG_TYPE");
    EXPECT_STREQ(name(Reason::OutOfRange), "MOX_OUT_OF_RANGE");
    EXPECT_STREQ(name(Reason::NotStored), "MOX_NOT_STORED");
}

// Throws the exception in a call, and returns what the problem says; before, the problem is that of another failure.
template <class Exception>
std::string MessageOf(const Exception& exception, mox_status expected) {
    mox_problem problem;
    problem.Set(MOX_SYNTAX, mox::Problem{Reason::Syntax, "m", "file", 2, 3, "f", "e"});
    const auto fail = [&](mox::host::Outcome&) -> bool { throw exception; };
    EXPECT_EQ(mox::host::Run(&problem, fail), expected);
    EXPECT_EQ(mox::host::Run(nullptr, fail), expected);
    mox_problem_info info{};
    info.size = sizeof info;
    EXPECT_EQ(mox_problem_get(&problem, &info), MOX_OK);
    EXPECT_EQ(info.status, expected);
    EXPECT_EQ(info.line + info.column + info.file_size + info.found_size + info.expected_size, 0U);
    EXPECT_STREQ(info.text, info.message);
    return info.message;
}

TEST(HostStatus, NoExceptionLeavesACall) {
    EXPECT_EQ(MessageOf(std::bad_alloc(), MOX_OUT_OF_MEMORY), "there is not enough memory");
    EXPECT_EQ(MessageOf(std::length_error("?"), MOX_TOO_LARGE),
              "a text would be longer than the library can store");
    EXPECT_EQ(MessageOf(std::runtime_error("?"), MOX_INTERNAL_ERROR),
              "the library has failed in a way that it does not know");
    EXPECT_EQ(MessageOf(7, MOX_INTERNAL_ERROR), "the library has failed in a way that it does not know");
}

}  // namespace
}  // namespace faults
