// exit_host at-exit | unload
//
// A host that loads the library while it runs, as programs load plug-ins.
//   at-exit  loads it in main, and reads a document in the destructor of an object that was made before main
//   unload   loads it, reads a document and unloads it, several times
// Prints the value it reads, "7", each time. Ends with 1 when the library cannot be loaded.
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include "mox_xmlApi/mox_xmlApi.h"

namespace {

#if defined(_WIN32)
using Module = HMODULE;
Module Load(const std::string& path) {
    return LoadLibraryA(path.c_str());
}
void Unload(Module library) {
    FreeLibrary(library);
}
void* Symbol(Module library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(library, name));
}
#else
using Module = void*;
Module Load(const std::string& path) {
    return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
}
void Unload(Module library) {
    dlclose(library);
}
void* Symbol(Module library, const char* name) {
    return dlsym(library, name);
}
#endif

template <class Function>
Function* Find(Module library, const char* name) {
    return reinterpret_cast<Function*>(Symbol(library, name));
}

// Prints the value of a key in a document with an element whose name is a letter beyond ASCII (U+FFB1).
void PrintValue(Module library) {
    constexpr std::string_view kDocument =
        "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\"><\xB1/>"
        "<Table name=\"S\"><Var name=\"k\" type=\"long\"><Value>7</Value></Var></Table></Settings>";
    constexpr wchar16 kSection[] = {'S', 0};
    constexpr wchar16 kKey[] = {'k', 0};
    const auto open = Find<decltype(xmlProfileNew)>(library, "xmlProfileNew");
    const auto read = Find<decltype(xmlGetProfileInt)>(library, "xmlGetProfileInt");
    const auto dispose = Find<decltype(xmlProfileDispose)>(library, "xmlProfileDispose");
    moxSettings* profile = open(nullptr, kDocument.data(), static_cast<std::int32_t>(kDocument.size()), 0);
    std::printf("%d\n", static_cast<int>(read(profile, kSection, kKey, -1)));
    std::fflush(stdout);
    dispose(&profile);
}

struct AtExit {
    Module library = nullptr;
    ~AtExit() {
        if (library != nullptr) PrintValue(library);
    }
};

// Made before the library is loaded, so destroyed after everything that the library destroys at exit.
AtExit atExit;

}  // namespace

int main(int count, char** arguments) {
    const std::string program = arguments[0];
    const std::string path = program.substr(0, program.find_last_of("/\\") + 1) + MOX_LIBRARY_BESIDE;
    if (count == 2 && std::string_view(arguments[1]) == "at-exit") {
        atExit.library = Load(path);
        return atExit.library == nullptr ? 1 : 0;
    }
    for (int round = 0; round < 3; ++round) {
        const Module library = Load(path);
        if (library == nullptr) return 1;
        PrintValue(library);
        Unload(library);
    }
    return 0;
}
