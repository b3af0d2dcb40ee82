// Problems that the system reports, with the system's own text.
#ifndef MOX_XMLAPI_DISK_SYSTEM_PROBLEM_H
#define MOX_XMLAPI_DISK_SYSTEM_PROBLEM_H

#include <cstdint>
#include <string>
#include <string_view>

#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox::disk {

// An error number of the system: errno, or GetLastError() on Windows.
using SystemError = std::uint32_t;

// The number of the error that the last failed call of this thread reported.
SystemError LastSystemError() noexcept;

// What the system says about the error, in UTF-8 and without a line feed or a full stop at the end.
std::string TextOf(SystemError error);

// The reason that a program is given for the error: NotFound, NoPermission or NotRegularFile where the error says so,
// or else `other`.
Reason ReasonOf(SystemError error, Reason other) noexcept;

// Fills in the problem, if there is one to fill in, with the path and the message. Returns false.
bool FailFor(Problem* problem, const Text& path, Reason reason, std::string_view message);

// The same for an error of the system: the message is "<what>: <text of the error>", the reason that of the error.
bool FailBySystem(Problem* problem, const Text& path, Reason other, std::string_view what, SystemError error);

}  // namespace mox::disk

#endif
