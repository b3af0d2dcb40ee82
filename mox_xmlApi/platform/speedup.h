// Parts of the library that can be left out without any other change: it then does the same, only slower. To measure
// what each is worth, the benchmark compiles the library without one of them at a time: with MOX_WITHOUT defined as its
// name. Any other build has all.
#ifndef MOX_XMLAPI_PLATFORM_SPEEDUP_H
#define MOX_XMLAPI_PLATFORM_SPEEDUP_H

#include <cstdint>

namespace mox {

enum class Speedup : std::uint8_t {
    None,
    TextPrefetch,      // by the index of names, of the text of the node that it is about to compare
    VectorSearch,      // for the end of a text, by the parser
    VectorZeroSearch,  // for the end of a wide file
    VectorCopy,        // of texts that may need references, by the writer
    LargePages,
};

#if defined(MOX_WITHOUT)
inline constexpr Speedup kLeftOut = Speedup::MOX_WITHOUT;
#else
inline constexpr Speedup kLeftOut = Speedup::None;
#endif

constexpr bool Has(Speedup speedup) noexcept {
    return speedup != kLeftOut;
}

}  // namespace mox

#endif
