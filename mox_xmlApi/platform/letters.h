// The system's classification of letters and digits beyond ASCII.
//
// On Windows the runtime's iswalpha and iswalnum decide. Elsewhere a fixed Unicode locale does, whatever locale the
// process has chosen; where the system lacks that locale, nothing beyond ASCII is a letter. A surrogate never is.
#ifndef MOX_XMLAPI_PLATFORM_LETTERS_H
#define MOX_XMLAPI_PLATFORM_LETTERS_H

#include "mox_xmlApi/platform/wchar16.h"

namespace mox {

// For units from 0x80 on; the answer for others is not specified.
bool IsLetterBeyondAscii(wchar16 unit) noexcept;
bool IsLetterOrDigitBeyondAscii(wchar16 unit) noexcept;

}  // namespace mox

#endif
