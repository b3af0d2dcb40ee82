/**
 * @file
 * The 16-bit character of every text that crosses the library's interface. Valid in C11 and C++17.
 */
#ifndef MOX_XMLAPI_PLATFORM_WCHAR16_H
#define MOX_XMLAPI_PLATFORM_WCHAR16_H

#if defined(_WIN32)
#include <stddef.h>
typedef wchar_t wchar16;
#else
#include <uchar.h>
/** One 16-bit unit of text: wchar_t on Windows, char16_t elsewhere. */
typedef char16_t wchar16;
#endif

#endif
