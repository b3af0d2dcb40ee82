// How every function of mox_host runs: it checks its arguments, calls the C++ front, and turns whatever happens into a
// status and a problem.
#ifndef MOX_HOST_CALL_H
#define MOX_HOST_CALL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <initializer_list>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

#include "mox_host/mox_host.h"
#include "mox_xmlApi/front/problem.hpp"

struct mox_problem {
    mox_status status = MOX_OK;
    mox::Problem problem;
    std::string text;  // problem.toString()
    // The message of a failure for which no memory was needed; the two above are empty then.
    const char* fixed = nullptr;

    void Clear() noexcept;
    void SetFixed(mox_status newStatus, const char* message) noexcept;
    // Throws std::bad_alloc.
    void Set(mox_status newStatus, mox::Problem&& newProblem);
};

namespace mox::host {

mox_status StatusOf(Reason reason) noexcept;

// How a call ends. The front fills in what Why() points to; Refuse is for what this library refuses itself.
struct Outcome {
    std::optional<Problem> problem{};  // made when it is needed: most calls succeed
    mox_status status = MOX_OK;        // MOX_OK: that of `problem`
    const char* message = nullptr;

    Problem* Why() noexcept { return problem.has_value() ? &*problem : &problem.emplace(); }

    // Returns false, as a call that fails does.
    bool Refuse(mox_status newStatus, const char* newMessage) noexcept {
        status = newStatus;
        message = newMessage;
        return false;
    }
    bool RefuseArgument(const char* newMessage) noexcept { return Refuse(MOX_INVALID_ARGUMENT, newMessage); }
};

// The status of a call that has failed; stores why to `problem`, unless that is null.
mox_status Fail(Outcome& outcome, mox_problem* problem) noexcept;
// The same for the exception that is being handled.
mox_status FailByException(mox_problem* problem) noexcept;

// Runs body(outcome), which returns whether it has succeeded, and sets outputs only then.
template <class Body>
mox_status Run(mox_problem* problem, Body body) noexcept {
    try {
        Outcome outcome;
        if (!body(outcome)) return Fail(outcome, problem);
        if (problem != nullptr) problem->Clear();
        return MOX_OK;
    } catch (...) {
        return FailByException(problem);
    }
}

// ---- arguments

// Whether no pointer is null.
template <class... Pointers>
bool RequirePointers(Outcome& outcome, const Pointers*... pointers) noexcept {
    return ((pointers != nullptr) && ...) || outcome.RefuseArgument("a handle or an output is null");
}

// A text of the host.
struct TextArgument {
    const char* data;
    std::size_t size;

    std::string_view View() const noexcept { return {data, size}; }
};

// Whether the texts can be read: a wrong length would make the call read what is not there.
bool RequireTexts(Outcome& outcome, std::initializer_list<TextArgument> texts) noexcept;

// The same for the content of a file.
bool RequireBytes(Outcome& outcome, const void* bytes, std::size_t size) noexcept;

inline bool RequireFlags(Outcome& outcome, std::uint32_t flags, std::uint32_t known) noexcept {
    return (flags & ~known) == 0 || outcome.RefuseArgument("a flag is unknown");
}

// ---- structures

// The size that a structure had in its first release; 0 for what is no structure of the interface.
template <class Structure>
inline constexpr std::size_t kFirstSize = std::is_same_v<Structure, mox_problem_info>    ? 104
                                          : std::is_same_v<Structure, mox_open_options>  ? 32
                                          : std::is_same_v<Structure, mox_save_options>  ? 48
                                          : std::is_same_v<Structure, mox_document_info> ? 12
                                          : std::is_same_v<Structure, mox_table_options> ? 16
                                          : std::is_same_v<Structure, mox_section_info>  ? 8
                                          : std::is_same_v<Structure, mox_entry>         ? 112
                                          : std::is_same_v<Structure, mox_diagnostic>    ? 48
                                          : std::is_same_v<Structure, mox_node>          ? 88
                                          : std::is_same_v<Structure, mox_attribute>     ? 40
                                                                                         : 0;

template <class Structure>
constexpr bool HasFirstSize() noexcept {
    return kFirstSize<Structure> >= sizeof(Structure::size) && kFirstSize<Structure> <= sizeof(Structure);
}

// No structure is larger than this in any release: a larger size is a mistake of the host.
inline constexpr std::size_t kMostStructureBytes = 4096;

inline constexpr const char* kUnknownSize =
    "a structure has a size that this version of the library does not know";

// Copies a structure of the host, which may be smaller than the present one. Null gives the defaults.
template <class Structure>
bool TakeStructure(Outcome& outcome, const Structure* given, Structure& copy) noexcept {
    static_assert(HasFirstSize<Structure>());
    copy = Structure{};
    if (given == nullptr) return true;
    if (given->size < kFirstSize<Structure> || given->size > sizeof(Structure))
        return outcome.RefuseArgument(kUnknownSize);
    std::memcpy(&copy, given, given->size);
    return true;
}

// Copies a structure to the host, as much as that has room for.
template <class Structure>
mox_status GiveStructure(const Structure& filled, Structure* given) noexcept {
    static_assert(HasFirstSize<Structure>());
    const std::size_t size = given->size;
    if (size < kFirstSize<Structure> || size > kMostStructureBytes) return MOX_INVALID_ARGUMENT;
    constexpr std::size_t kHead = sizeof given->size;
    auto* const bytes = reinterpret_cast<unsigned char*>(given);
    const std::size_t known = std::min(size, sizeof(Structure));
    std::memcpy(bytes + kHead, reinterpret_cast<const unsigned char*>(&filled) + kHead, known - kHead);
    std::memset(bytes + known, 0, size - known);
    return MOX_OK;
}

// ---- memory that the host frees

// A copy of the bytes with a zero byte after it, to be freed with mox_free. Throws std::bad_alloc.
void* CopyForHost(const std::string& bytes);

}  // namespace mox::host

#endif
