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

// Made when the library is loaded: a host's own destructors, which may still read documents, then run before
// this one.
class UnicodeLocale {
  public:
    UnicodeLocale() noexcept : locale_(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {}
    ~UnicodeLocale() {
        if (locale_ != nullptr) freelocale(locale_);
    }
    UnicodeLocale(const UnicodeLocale&) = delete;
    UnicodeLocale& operator=(const UnicodeLocale&) = delete;

    bool IsLetter(wint_t unit) const { return locale_ != nullptr && iswalpha_l(unit, locale_) != 0; }
    bool IsLetterOrDigit(wint_t unit) const { return locale_ != nullptr && iswalnum_l(unit, locale_) != 0; }

  private:
    locale_t locale_;
};

const UnicodeLocale unicodeLocale;

#endif

}  // namespace

bool IsLetterBeyondAscii(wchar16 unit) noexcept {
    if (IsSurrogate(unit)) return false;
#if defined(_WIN32)
    return iswalpha(unit) != 0;
#else
    return unicodeLocale.IsLetter(unit);
#endif
}

bool IsLetterOrDigitBeyondAscii(wchar16 unit) noexcept {
    if (IsSurrogate(unit)) return false;
#if defined(_WIN32)
    return iswalnum(unit) != 0;
#else
    return unicodeLocale.IsLetterOrDigit(unit);
#endif
}

}  // namespace mox
