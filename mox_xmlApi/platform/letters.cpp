#include "mox_xmlApi/platform/letters.h"

#include <wctype.h>

#if !defined(_WIN32)
#include <locale.h>
#endif

namespace mox {
namespace {

bool IsSurrogate(wchar16 unit) {
    return unit >= 0xD800 && unit <= 0xDFFF;
}

#if !defined(_WIN32)

// Made when the library is loaded and never freed: a host may read documents until its process ends, in destructors
// that run at exit. The library itself is never unloaded either (CMakeLists.txt), so a process makes it once.
const locale_t unicodeLocale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);

#endif

}  // namespace

bool IsLetterBeyondAscii(wchar16 unit) noexcept {
    if (IsSurrogate(unit)) return false;
#if defined(_WIN32)
    return iswalpha(unit) != 0;
#else
    return unicodeLocale != nullptr && iswalpha_l(unit, unicodeLocale) != 0;
#endif
}

bool IsLetterOrDigitBeyondAscii(wchar16 unit) noexcept {
    if (IsSurrogate(unit)) return false;
#if defined(_WIN32)
    return iswalnum(unit) != 0;
#else
    return unicodeLocale != nullptr && iswalnum_l(unit, unicodeLocale) != 0;
#endif
}

}  // namespace mox
