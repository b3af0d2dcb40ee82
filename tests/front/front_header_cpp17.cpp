// The C++ front in C++17, with nothing included before it. It declares the functions of Windows that it needs, in
// agreement with <windows.h>.
#include "mox_xmlApi/mox_xmlApi.hpp"

#if defined(min) || defined(max) || defined(CreateFile) || defined(_WINDOWS_)
#error "the front must not define the macros of <windows.h>"
#endif
#if defined(_WIN32)
#include <windows.h>
#endif

#include <type_traits>

static_assert(__cplusplus == 201703L, "this file is for C++17");

template <class Owner>
constexpr bool kIsMoveOnly =
    std::is_nothrow_move_constructible_v<Owner>&& std::is_nothrow_move_assignable_v<Owner> &&
    !std::is_copy_constructible_v<Owner> && !std::is_copy_assignable_v<Owner>;
static_assert(kIsMoveOnly<mox::Profile> && kIsMoveOnly<mox::Section> && kIsMoveOnly<mox::Table>,
              "owners of handles are moved, not copied");

// Templates are compiled when they are used.
bool UseEverything(mox::Profile& profile, mox::Table& table);
bool UseEverything(mox::Profile& profile, mox::Table& table) {
    std::size_t count = 0;
    for (const mox::Section& section : profile.sections()) {
        for (const mox::Entry& entry : section.entries())
            count += entry.effectiveValue().size();
        for (const mox::Entry16& entry : section.entries16())
            count += entry.effectiveValue().size();
    }
    const bool isAdded = table.add({"a", "1"}) && table.put({u"b", u"2"}) && table.addBefore("a", {"c", "3"});
    return isAdded && count != 0 && profile.saveReplacing("x") && table.saveReplacing(u"y");
}
