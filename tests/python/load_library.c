/* load_library <path of mox_host.dll>: loads the library as ctypes does, by its full path and with the DLLs beside it, and
 * uses it. */
#include <stdint.h>
#include <stdio.h>
#include <windows.h>

typedef struct mox_document mox_document;

int main(int argc, char** argv) {
    char path[MAX_PATH];
    if (argc != 2) return 2;
    if (GetFullPathNameA(argv[1], MAX_PATH, path, NULL) == 0) return 3;
    const HMODULE library =
        LoadLibraryExA(path, NULL, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS | LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR);
    if (library == NULL) {
        fprintf(stderr, "error %lu\n", GetLastError());
        return 4;
    }
    union {
        FARPROC address;
        uint32_t (*version)(void);
        int32_t (*newSettings)(mox_document**, void*);
        int32_t (*toBytes)(mox_document*, const void*, void**, size_t*, void*);
    } version, newSettings, toBytes;
    version.address = GetProcAddress(library, "mox_version");
    newSettings.address = GetProcAddress(library, "mox_new_settings");
    toBytes.address = GetProcAddress(library, "mox_to_bytes");
    if (version.address == NULL || newSettings.address == NULL || toBytes.address == NULL) return 5;
    const uint32_t number = version.version();
    mox_document* document = NULL;
    void* bytes = NULL;
    size_t size = 0;
    if (newSettings.newSettings(&document, NULL) != 0) return 6;
    if (toBytes.toBytes(document, NULL, &bytes, &size, NULL) != 0 || size == 0) return 7;
    printf("version %u.%u.%u, opened and saved\n", number / 10000, number / 100 % 100, number % 100);
    return 0;
}
