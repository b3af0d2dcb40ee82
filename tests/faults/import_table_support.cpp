#include "tests/faults/import_table_support.h"

#if defined(_WIN32)

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <windows.h>
// Needs the types of the header above.
#include <psapi.h>

namespace faults {
namespace {

template <class Type>
Type* At(HMODULE module, std::size_t offset) {
    return reinterpret_cast<Type*>(reinterpret_cast<char*>(module) + offset);
}

// Calls `visit` with the place of each address that the module imports under the name.
template <class Visit>
void ForEachImport(HMODULE module, const char* name, Visit visit) {
    const auto* dos = At<IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = At<IMAGE_NT_HEADERS>(module, static_cast<std::size_t>(dos->e_lfanew));
    const DWORD table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    if (table == 0) return;
    for (auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(module, table); library->Name != 0; ++library) {
        if (library->OriginalFirstThunk == 0) continue;
        auto* names = At<IMAGE_THUNK_DATA>(module, library->OriginalFirstThunk);
        auto* addresses = At<IMAGE_THUNK_DATA>(module, library->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* import = At<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char*>(import->Name), name) == 0)
                visit(&addresses->u1.Function);
        }
    }
}

void StoreInModule(HMODULE module, const char* name, ULONGLONG original, ULONGLONG replacement) {
    ForEachImport(module, name, [&](ULONGLONG* address) {
        if (*address != original) return;
        DWORD protection = 0;
        VirtualProtect(address, sizeof *address, PAGE_READWRITE, &protection);
        *address = replacement;
        VirtualProtect(address, sizeof *address, protection, &protection);
    });
}

}  // namespace

void* FindImport(const char* name) {
    void* found = nullptr;
    ForEachImport(GetModuleHandleW(nullptr), name,
                  [&](const ULONGLONG* address) { found = reinterpret_cast<void*>(*address); });
    return found;
}

void StoreImports(Modules modules, const char* name, void* original, void* replacement) {
    const auto from = reinterpret_cast<ULONGLONG>(original);
    const auto to = reinterpret_cast<ULONGLONG>(replacement);
    if (modules == Modules::Program) return StoreInModule(GetModuleHandleW(nullptr), name, from, to);
    std::array<HMODULE, 1024> all{};
    DWORD size = 0;
    if (!K32EnumProcessModules(GetCurrentProcess(), all.data(), sizeof all, &size)) return;
    const std::size_t count = std::min<std::size_t>(size / sizeof(HMODULE), all.size());
    const HMODULE threads = GetModuleHandleW(L"libwinpthread-1.dll");
    std::for_each_n(all.begin(), count, [&](HMODULE module) {
        if (module != threads) StoreInModule(module, name, from, to);
    });
}

}  // namespace faults

#endif
