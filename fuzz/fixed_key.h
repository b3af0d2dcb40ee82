// Names that collide in an index of names. The fuzz targets have one key for all runs (fixed_key.cpp), so that an input
// does the same every time, and so that such names can be made. In the programs that replay inputs the key is random,
// and these are names like any others.
#ifndef MOX_XMLAPI_FUZZ_FIXED_KEY_H
#define MOX_XMLAPI_FUZZ_FIXED_KEY_H

#include <cstddef>
#include <string>

#include "mox_xmlApi/platform/random_key.h"
#include "mox_xmlApi/platform/wide_text.h"

namespace mox::fuzz {

inline constexpr HashKey kFixedKey{0x6A09E667F3BCC908, 0xBB67AE8584CAA73B};

inline constexpr std::size_t kCollidingNames = 48;

// One of kCollidingNames names of 7-bit text whose searches begin at the same slot in every index of up to 2048 slots.
const std::string& NameOfSameSlot(std::size_t number);

// One of kCollidingNames names with the same hash, of any units but zero.
const WideString& NameOfSameHash(std::size_t number);

}  // namespace mox::fuzz

#endif
