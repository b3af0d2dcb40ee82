// Numbers as the runtime library of 64-bit Windows reads them, where `long` has 32 bits; the same on every
// system.
//
//   number:  [white space] ["+" | "-"] [digits]         base 16 also "0x" or "0X" before the digits
//
// White space is what that runtime's iswspace accepts, and a digit may be one of seventeen scripts. Reading
// stops at the first character that does not fit (a zero unit never does); without digits the result is 0.
#ifndef MOX_XMLAPI_PLATFORM_NUMBERS_H
#define MOX_XMLAPI_PLATFORM_NUMBERS_H

#include <cstdint>

#include "mox_xmlApi/platform/wide_text.h"

namespace mox {

// Like wcstol in base 10. Out of range: -2147483648 or 2147483647.
std::int32_t ReadDecimal(WideView text) noexcept;

// Like wcstoul in base 10. Out of range: 4294967295. A minus negates the result modulo 2^32; a
// negative number out of range reads as 1.
std::uint32_t ReadUnsignedDecimal(WideView text) noexcept;

// Like wcstoul in base 16, otherwise as ReadUnsignedDecimal.
std::uint32_t ReadUnsignedHex(WideView text) noexcept;

}  // namespace mox

#endif
