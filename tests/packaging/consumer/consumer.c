/* Opens a settings document, sets a value, saves, loads and reads it. The exit code is 0 when it was the same. */
#include <stdio.h>

#include "mox_xmlApi/mox_xmlApi.h"

#if defined(_WIN32)
#define W(text) L##text
#else
#define W(text) u##text
#endif

int main(void) {
    moxSettings* settings = xmlProfileNew(NULL, NULL, 0, 0);
    if (settings == NULL) return 1;
    if (xmlWriteProfileInt(settings, W("Camera"), W("Exposure"), 2400) != 1) return 2;
    if (xmlProfileSave(settings, W("consumer_c.xml"), 0, 0, 0) != 1) return 3;
    xmlProfileDispose(&settings);

    settings = xmlProfileNew(W("consumer_c.xml"), NULL, 0, 0);
    if (settings == NULL) return 4;
    const int32_t exposure = xmlGetProfileInt(settings, W("Camera"), W("Exposure"), 0);
    xmlProfileDispose(&settings);
    printf("exposure %d\n", (int)exposure);
    return exposure == 2400 ? 0 : 5;
}
