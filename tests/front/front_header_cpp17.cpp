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
    mox::Problem problem;
    const bool isSet = profile.set("a", "b", 4000000000U, &problem) && table.set("a", 0.5, &problem) &&
                       table.set("a", "text") && profile.set("a", "c", std::vector<std::uint8_t>{1}) &&
                       table.setComment("a", "c", &problem) && table.rename("a", "d") &&
                       table.setEud("d", true);
    const bool isRead = profile.get<bool>("a", "b", false) && profile.get<std::int64_t>("a", "b", 0) != 0 &&
                        table.get<double>("a", &problem).has_value() && table.getOr<int>("a", 0) == 0 &&
                        profile.get<std::u16string>("a", "b").has_value() &&
                        profile.get<std::vector<std::uint8_t>>("a", "c").has_value() &&
                        !profile.keys("a").empty();
    return isAdded && isSet && isRead && count != 0 && profile.saveReplacing("x") &&
           table.saveReplacing(u"y");
}
