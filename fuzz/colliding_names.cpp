#include <array>
#include <cstdint>
#include <cstring>

#include "fuzz/fixed_key.h"
#include "mox_xmlApi/platform/multiply.h"
#include "mox_xmlApi/xml/name_hash.h"

namespace mox::fuzz {
namespace {

template <class Name>
using Names = std::array<Name, kCollidingNames>;

Names<std::string> MakeNamesOfSameSlot() {
    constexpr std::uint64_t kSlots = 2048;
    Names<std::string> names;
    std::size_t count = 0;
    for (unsigned i = 0; count < names.size(); ++i) {
        const std::string name = "k" + std::to_string(i);
        const WideString wide(name.begin(), name.end());
        if (HashName(kFixedKey, wide) >> 33 & (kSlots - 1)) continue;
        names[count++] = name;
    }
    return names;
}

// Two halves of four units: whatever the first makes of the hash, the second takes back.
Names<WideString> MakeNamesOfSameHash() {
    Names<WideString> names;
    std::size_t count = 0;
    for (std::uint64_t i = 0; count < names.size(); ++i) {
        const std::uint64_t first = 0x0061006200630064 + i * 0x10001;
        const std::uint64_t halves[] = {
            first, MultiplyAndFold(kFixedKey.start ^ first, kFixedKey.multiplier) ^ 0x0123456789ABCDEF};
        WideString name(8, wchar16{' '});
        std::memcpy(name.data(), halves, sizeof halves);
        if (name.find(wchar16{0}) == WideString::npos) names[count++] = name;
    }
    return names;
}

}  // namespace

const std::string& NameOfSameSlot(std::size_t number) {
    static const Names<std::string> names = MakeNamesOfSameSlot();
    return names[number % kCollidingNames];
}

const WideString& NameOfSameHash(std::size_t number) {
    static const Names<WideString> names = MakeNamesOfSameHash();
    return names[number % kCollidingNames];
}

}  // namespace mox::fuzz
