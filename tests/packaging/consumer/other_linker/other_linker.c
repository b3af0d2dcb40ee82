/* A C host made by a compiler and a linker of the MSVC family, without any runtime library of its own. The exit code is
 * 0 when a value came back as it was set. */
#include "mox_xmlApi/mox_xmlApi.h"

int Start(void) {
    moxSettings* settings = xmlProfileNew(NULL, NULL, 0, 0);
    if (settings == NULL) return 1;
    if (xmlWriteProfileInt(settings, L"Camera", L"Exposure", 2400) != 1) return 2;
    const int32_t exposure = xmlGetProfileInt(settings, L"Camera", L"Exposure", 0);
    xmlProfileDispose(&settings);
    return exposure == 2400 && settings == NULL ? 0 : 3;
}
