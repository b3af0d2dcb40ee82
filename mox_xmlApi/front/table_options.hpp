// What a new section or table is given.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_TABLE_OPTIONS_HPP
#define MOX_XMLAPI_FRONT_TABLE_OPTIONS_HPP

#include <cstdint>

namespace mox {

// The attributes of a new section or table besides its name. No function acts on them.
struct TableOptions {
    bool editable = false;
    std::uint32_t firstId = 0;
    std::uint16_t type = 0;
};

}  // namespace mox

#endif
