#include "tests/host/memory_limit_support.h"

#include <cstdlib>

#ifdef _WIN32
#include <algorithm>
#include <cstring>
#include <vector>
#include <windows.h>
// Needs the types of the header above.
#include <psapi.h>
#else
#include <sys/resource.h>
#endif

namespace host {

bool MemoryLimit::Available() {
#if defined(__SANITIZE_ADDRESS__)
    return false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
    return false;
#else
    return true;
#endif
#else
    return true;
#endif
}

#ifdef _WIN32
namespace {

using Malloc = void*(__cdecl*)(std::size_t);

Malloc realMalloc = nullptr;

void* __cdecl LimitedMalloc(std::size_t size) {
    return size >= MemoryLimit::kRefused ? nullptr : realMalloc(size);
}

template <typename Type>
Type* At(HMODULE module, std::size_t offset) {
    return reinterpret_cast<Type*>(reinterpret_cast<char*>(module) + offset);
}

// One function that a module imports by name: where its name stands, and where its address.
struct Import {
    const char* name;
    ULONGLONG* address;
};

std::vector<Import> ImportsOf(HMODULE module) {
    std::vector<Import> imports;
    const auto* dos = At<IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = At<IMAGE_NT_HEADERS>(module, static_cast<std::size_t>(dos->e_lfanew));
    const DWORD table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    if (table == 0) return imports;
    for (auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(module, table); library->Name != 0; ++library) {
        if (library->OriginalFirstThunk == 0) continue;
        auto* names = At<IMAGE_THUNK_DATA>(module, library->OriginalFirstThunk);
        auto* addresses = At<IMAGE_THUNK_DATA>(module, library->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++addresses) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* name = At<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
            imports.push_back({reinterpret_cast<const char*>(name->Name), &addresses->u1.Function});
        }
    }
    return imports;
}

std::vector<HMODULE> Modules() {
    std::vector<HMODULE> modules(1024);
    const DWORD room = static_cast<DWORD>(modules.size() * sizeof(HMODULE));
    DWORD size = 0;
    if (!K32EnumProcessModules(GetCurrentProcess(), modules.data(), room, &size)) size = 0;
    modules.resize(std::min(size, room) / sizeof(HMODULE));
    return modules;
}

void Store(ULONGLONG* address, Malloc function) {
    DWORD protection = 0;
    VirtualProtect(address, sizeof *address, PAGE_READWRITE, &protection);
    *address = reinterpret_cast<ULONGLONG>(function);
    VirtualProtect(address, sizeof *address, protection, &protection);
}

// The import table entries that hold the real malloc: those of the host's own and all of the same address.
std::vector<ULONGLONG*> MallocEntries() {
    std::vector<ULONGLONG*> entries;
    for (HMODULE module : Modules()) {
        for (const Import& import : ImportsOf(module)) {
            if (std::strcmp(import.name, "malloc") != 0) continue;
            if (realMalloc == nullptr) realMalloc = reinterpret_cast<Malloc>(*import.address);
            if (*import.address == reinterpret_cast<ULONGLONG>(realMalloc)) entries.push_back(import.address);
        }
    }
    return entries;
}

// Found once, before any of them is exchanged.
const std::vector<ULONGLONG*>& Entries() {
    static const std::vector<ULONGLONG*> entries = MallocEntries();
    return entries;
}

}  // namespace

MemoryLimit::MemoryLimit() {
    for (ULONGLONG* entry : Entries())
        Store(entry, &LimitedMalloc);
}

MemoryLimit::~MemoryLimit() {
    for (ULONGLONG* entry : Entries())
        Store(entry, realMalloc);
}

#else
namespace {

void SetAddressSpace(rlim_t size) {
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = size;
    setrlimit(RLIMIT_AS, &limit);
}

rlim_t SoftLimit() {
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    return limit.rlim_cur;
}

rlim_t limitBefore = RLIM_INFINITY;

}  // namespace

MemoryLimit::MemoryLimit() {
    limitBefore = SoftLimit();
    SetAddressSpace(kRefused);
}

MemoryLimit::~MemoryLimit() {
    SetAddressSpace(limitBefore);
}

#endif

}  // namespace host
