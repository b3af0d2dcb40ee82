#include "mox_host/call.h"

#include <limits>
#include <utility>

#include "mox_xmlApi/disk/read_file.hpp"

namespace {

constexpr const char* kNoMemory = "there is not enough memory";

}  // namespace

void mox_problem::Clear() noexcept {
    if (status == MOX_OK) return;
    SetFixed(MOX_OK, nullptr);
}

void mox_problem::SetFixed(mox_status newStatus, const char* message) noexcept {
    status = newStatus;
    fixed = message;
    problem = mox::Problem();
    text.clear();
}

void mox_problem::Set(mox_status newStatus, mox::Problem&& newProblem) {
    std::string newText = newProblem.toString();
    status = newStatus;
    fixed = nullptr;
    problem = std::move(newProblem);
    text = std::move(newText);
}

namespace mox::host {

mox_status StatusOf(Reason reason) noexcept {
    switch (reason) {
        case Reason::None:
            break;
        case Reason::NotFound:
            return MOX_NOT_FOUND;
        case Reason::NoPermission:
            return MOX_NO_PERMISSION;
        case Reason::NotRegularFile:
            return MOX_NOT_REGULAR_FILE;
        case Reason::TooLarge:
            return MOX_TOO_LARGE;
        case Reason::ReadFailed:
            return MOX_READ_FAILED;
        case Reason::WriteFailed:
            return MOX_WRITE_FAILED;
        case Reason::Changed:
            return MOX_CHANGED;
        case Reason::Busy:
            return MOX_BUSY;
        case Reason::Unconfirmed:
            return MOX_UNCONFIRMED;
        case Reason::Syntax:
            return MOX_SYNTAX;
        case Reason::WrongKind:
            return MOX_WRONG_KIND;
        case Reason::Encoding:
            return MOX_WRONG_ENCODING;
        case Reason::TooDeep:
            return MOX_TOO_DEEP;
        case Reason::NoSuchSection:
            return MOX_NO_SUCH_SECTION;
        case Reason::NoSuchKey:
            return MOX_NO_SUCH_KEY;
        case Reason::NameTaken:
            return MOX_NAME_TAKEN;
        case Reason::Protected:
            return MOX_PROTECTED;
        case Reason::Unreadable:
            return MOX_UNREADABLE;
        case Reason::Ambiguous:
            return MOX_AMBIGUOUS;
        case Reason::InvalidText:
            return MOX_INVALID_TEXT;
        case Reason::NotKept:
            return MOX_NOT_KEPT;
        case Reason::WrongType:
            return MOX_WRONG_TYPE;
        case Reason::OutOfRange:
            return MOX_OUT_OF_RANGE;
        case Reason::NotStored:
            return MOX_NOT_STORED;
    }
    return MOX_INTERNAL_ERROR;
}

mox_status Fail(Outcome& outcome, mox_problem* problem) noexcept {
    const bool isOwn = outcome.status != MOX_OK;
    const mox_status status = isOwn ? outcome.status : StatusOf(outcome.Why()->reason);
    if (problem == nullptr) return status;
    if (isOwn) {
        problem->SetFixed(status, outcome.message);
        return status;
    }
    try {
        problem->Set(status, std::move(*outcome.Why()));
        return status;
    } catch (...) {
        return FailByException(problem);
    }
}

mox_status FailByException(mox_problem* problem) noexcept {
    mox_status status = MOX_INTERNAL_ERROR;
    const char* message = "the library has failed in a way that it does not know";
    try {
        throw;
    } catch (const std::bad_alloc&) {
        status = MOX_OUT_OF_MEMORY;
        message = kNoMemory;
    } catch (const std::length_error&) {
        status = MOX_TOO_LARGE;
        message = "a text would be longer than the library can store";
    } catch (...) {
        // As it is.
    }
    if (problem != nullptr) problem->SetFixed(status, message);
    return status;
}

bool RequireTexts(Outcome& outcome, std::initializer_list<TextArgument> texts) noexcept {
    // Three bytes for each unit of the longest text.
    constexpr std::size_t kMostBytes = std::size_t{3} * (std::numeric_limits<std::int32_t>::max)();
    for (const TextArgument& text : texts) {
        if (text.data == nullptr && text.size != 0)
            return outcome.RefuseArgument("a text is a null pointer with a length");
        if (text.size > kMostBytes)
            return outcome.RefuseArgument("a text has a length that no text can have");
    }
    return true;
}

bool RequireBytes(Outcome& outcome, const void* bytes, std::size_t size) noexcept {
    if (bytes == nullptr && size != 0)
        return outcome.RefuseArgument("the content is a null pointer with a length");
    return size <= kLargestFile || outcome.Refuse(MOX_TOO_LARGE, "the content is larger than any document");
}

void* CopyForHost(const std::string& bytes) {
    const std::size_t size = bytes.size() + 1;
    return std::memcpy(::operator new(size), bytes.c_str(), size);
}

}  // namespace mox::host
