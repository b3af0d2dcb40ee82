// Problem, which says why a call of the C++ front failed.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_PROBLEM_HPP
#define MOX_XMLAPI_FRONT_PROBLEM_HPP

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace mox {

// Why a call failed, for programs. People read Problem::message.
enum class Reason : std::uint8_t {
    None,

    // Files
    NotFound,        // there is no such file or folder
    NoPermission,    // the process may not read, replace or create the file
    NotRegularFile,  // a folder or a device, for example
    TooLarge,        // more bytes than a document can have
    ReadFailed,      // the system reported an error
    WriteFailed,     // the system reported an error; the old file is unchanged
    Changed,         // the file is no longer the one that was read
    Busy,            // another process is replacing the file and does not finish
    Unconfirmed,     // the file was replaced, but the system does not tell whether the new one is in place

    // Documents
    Syntax,     // the document does not parse
    WrongKind,  // it parses, but is a different kind of document
    Encoding,   // it is stored in another way than documents are, such as UTF-8 with a byte-order mark
    TooDeep,    // its elements are nested so deeply that saving it would take too much memory

    // Sections, keys and entries
    NoSuchSection,
    NoSuchKey,   // there is no key or entry of that name
    NameTaken,   // there is one already
    Protected,   // the entry has eud="true"
    Unreadable,  // the entry has no known type, so that nobody could read the value
    Ambiguous,   // the entry has two elements where one is expected: one is written, another one read

    // Values
    InvalidText,  // an argument is not UTF-8, contains a zero, or is empty or longer than it may be
    NotKept,      // the text would be another one after the document has been saved and opened
    WrongType,    // the value is not of the type that was asked for
    OutOfRange,   // the number does not fit the type that was asked for
    NotStored     // the library cannot store this combination of values
};

// Why a call failed. A function that can say so takes a pointer to a Problem as its last argument. On failure it fills
// the Problem in; on success it resets it. A null pointer means that the caller does not ask, which costs nothing.
struct Problem {
    Reason reason = Reason::None;
    std::string message{};   // one sentence in plain English, without the file; empty for None
    std::string file{};      // the path as it was given, in UTF-8; empty if no file was involved
    std::size_t line = 0;    // of the place in the file, from 1 on; 0 if there is none
    std::size_t column = 0;  // in units of the file, from 1 on; 0 if there is none
    std::string found{};     // for Syntax: what is at that place, `"</Tabel"` for example
    std::string expected{};  // for Syntax: what was expected there

    // True if there is a problem.
    explicit operator bool() const noexcept { return reason != Reason::None; }

    // "camera.xml:3:17: found "</Tabel", expected ...": the message, after the place that it is about.
    std::string toString() const {
        std::string text(file);
        if (line != 0) {
            if (!text.empty()) text.append(":");
            text.append(std::to_string(line)).append(":").append(std::to_string(column));
        }
        if (!text.empty()) text.append(": ");
        return text.append(message);
    }
};

namespace front {

// Fills in the problem, if there is one to fill in. Returns false, as the functions that fail do.
inline bool Fail(Problem* problem, Reason reason, std::string_view message) {
    if (problem == nullptr) return false;
    *problem = Problem();
    problem->reason = reason;
    problem->message = message;
    return false;
}

// Resets the problem, if there is one. Returns true, as the functions that succeed do.
inline bool Succeed(Problem* problem) noexcept {
    if (problem != nullptr) *problem = Problem();
    return true;
}

}  // namespace front
}  // namespace mox

#endif
