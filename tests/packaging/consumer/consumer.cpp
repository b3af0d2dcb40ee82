// Adds an entry to a table by a record of mox_dbtInfo, saves, loads and reads it, and then a key of a profile by the C++
// front. The exit code is 0 when both were the same.
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/mox_xmlApi.hpp"
#include "mox_xmlApi/platform/mox_dbtInfo.h"

#if defined(_WIN32)
#define W(text) L##text
#else
#define W(text) u##text
#endif

int main() {
    void* table = xmlTableNew(nullptr, nullptr, 0, W("Tools"), 0, 0, 0, 1);
    if (table == nullptr) return 1;
    TableEntryValueInfoStruct added;
    added.type = 3;
    std::basic_string_view<wchar16>(W("Speed")).copy(added.name, 5);
    if (!added.SetVal("900")) return 2;
    if (!xmlTableEntryAdd(table, nullptr, &added, nullptr, 0, 0)) return 3;
    if (!xmlTableSave(table, W("consumer_cpp.xml"), 0, 0)) return 4;
    xmlTableDispose(&table);

    table = xmlTableNew(W("consumer_cpp.xml"), nullptr, 0, W("Tools"), 0, 0, 0, 0);
    if (table == nullptr) return 5;
    std::uint64_t position = 0;
    TableEntryValueInfoStruct read;
    if (!xmlTableEntryGet(table, &position, &read, nullptr)) return 6;
    xmlTableDispose(&table);
    std::printf("speed %s\n", read.GetVal());
    if (std::string_view(read.GetVal()) != "900") return 7;

    mox::Profile written;
    mox::SaveOptions overwriting;
    overwriting.overwrite = true;
    if (!written.setString("Tool", "Name", "Fr\xC3\xA4ser") ||
        !written.saveReplacing("consumer_cpp.xml", overwriting))
        return 8;
    const auto profile = mox::Profile::open("consumer_cpp.xml");
    return profile && profile->getString("Tool", "Name") == "Fr\xC3\xA4ser" ? 0 : 9;
}
