// The hash of a name, under a key that is not known outside the process.
//
// Four units at a time are multiplied by the key to 128 bits, of which the upper half is folded onto the lower one: each
// bit of a name changes about half of the bits, in a way that depends on the key.
#ifndef MOX_XMLAPI_XML_NAME_HASH_H
#define MOX_XMLAPI_XML_NAME_HASH_H

#include <cstdint>
#include <cstring>

#include "mox_xmlApi/platform/multiply.h"
#include "mox_xmlApi/platform/random_key.h"
#include "mox_xmlApi/platform/wide_text.h"

namespace mox {

inline std::uint64_t HashName(const HashKey& key, WideView name) noexcept {
    constexpr std::size_t kAtOnce = 4;
    const auto load = [](const wchar16* units, std::size_t count) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, units, count * sizeof(wchar16));
        return bits;
    };
    const wchar16* units = name.data();
    std::uint64_t hash = key.start;
    if (name.size() >= kAtOnce) {
        const wchar16* const lastUnits = units + name.size() - kAtOnce;
        for (; units < lastUnits; units += kAtOnce)
            hash = MultiplyAndFold(hash ^ load(units, kAtOnce), key.multiplier);
        hash ^= load(lastUnits, kAtOnce);  // some of them for the second time, instead of one by one
    } else if (!name.empty()) {
        std::uint64_t bits = units[name.size() - 1];
        for (std::size_t i = 0; i + 1 < name.size(); ++i)
            bits = bits << 16 | units[i];
        hash ^= bits;
    }
    return MultiplyAndFold(hash, key.multiplier ^ (std::uint64_t{name.size()} << 1));
}

}  // namespace mox

#endif
