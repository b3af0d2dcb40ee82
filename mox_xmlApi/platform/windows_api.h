// <windows.h>, without what nothing here uses and without the macros min and max.
#ifndef MOX_XMLAPI_PLATFORM_WINDOWS_API_H
#define MOX_XMLAPI_PLATFORM_WINDOWS_API_H

#if defined(_WIN32)

#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>

#endif

#endif
