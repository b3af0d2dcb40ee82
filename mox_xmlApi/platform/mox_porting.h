/// @file
/// What the library calls of the companion library mox_porting: text conversion and formatting with 16-bit
/// characters. Valid in C++17 and later. All functions may be called from any thread.
#ifndef MOX_XMLAPI_PLATFORM_MOX_PORTING_H
#define MOX_XMLAPI_PLATFORM_MOX_PORTING_H

#include <cstddef>
#include <string>

#include "mox_xmlApi/platform/wchar16.h"

/// @cond EXPORTING
#if !defined(_WIN32)
#define MOX_PORTING_API __attribute__((visibility("default")))
#elif defined(mox_porting_EXPORTS)
#define MOX_PORTING_API __declspec(dllexport)
#else
#define MOX_PORTING_API
#endif
/// @endcond

/// Converts 16-bit text (UTF-16) to 8-bit text (UTF-8). Zero units inside the text are carried like any other.
/// @param wide    The text; empty is fine.
/// @param narrow  Receives the result; what it held before is gone.
/// @return true, or false when the text has no such form (a surrogate without its partner); `narrow` is
///         untouched then. Throws std::bad_alloc or std::length_error, `narrow` being untouched again.
MOX_PORTING_API bool pdConvertString(const std::basic_string<wchar16>& wide, std::string& narrow);

/// Converts 8-bit text (UTF-8) to 16-bit text (UTF-16). Zero bytes inside the text are carried like any other.
/// @param narrow  The text; empty is fine.
/// @param wide    Receives the result; what it held before is gone.
/// @return true, or false when the text is not well-formed UTF-8 (a byte out of place, a sequence cut short or
///         longer than its character needs, an encoded surrogate, a value above U+10FFFF); `wide` is untouched
///         then. Throws std::bad_alloc or std::length_error, `wide` being untouched again.
MOX_PORTING_API bool pdConvertString(const std::string& narrow, std::basic_string<wchar16>& wide);

/// Formats into a buffer of 16-bit characters. The conversions:
///
///     %d       int (32 bits)           %u       unsigned int (32 bits)
///     %x %X    unsigned int, hexadecimal in lower or upper case
///     %s       zero-terminated const wchar16*; null gives "(null)"
///     %%       a percent sign
///
/// Between "%" and the letter may stand the flag "0" (fill numbers with zeros), a width, and "." with a
/// precision: the least number of digits, or the most units taken of a text, which then need not be
/// terminated.
/// @param buffer    Receives the text, always followed by a zero unit; may be null when `capacity` is 0.
/// @param capacity  How many units `buffer` has, the zero unit included; with 0 nothing is written.
/// @param format    The text with its conversions, not null.
/// @param ...       What the conversions take, in their order.
/// @return The number of units stored without the zero unit, or -1 when the text did not fit or the format has
///         a conversion that is not in the list. The buffer then holds the text as far as it fits, or up to
///         that conversion.
MOX_PORTING_API int pdSwprintf(wchar16* buffer, std::size_t capacity, const wchar16* format, ...);

#endif
