// Walks through a document by the exports alone and checks that they agree with each other and with the model.
#ifndef MOX_XMLAPI_FUZZ_READ_EVERYTHING_H
#define MOX_XMLAPI_FUZZ_READ_EVERYTHING_H

#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/xml_node.h"
#include "tests/model/entries.h"

namespace mox::fuzz {

// An entry as the model reads it.
struct EntryInModel {
    bool isReadable = false;  // it has a known type
    model::EntryValue value{};
    model::EntryUi ui{};

    // What a key read gives.
    const WideString& KeyValue() const { return value.value.empty() ? ui.value : value.value; }
};
EntryInModel ReadByModel(const XmlNode& entry);

// Checks that records which were read say of the entry what the model says. Each may be null. `id` is what a record had
// that an entry was looked up by: an entry without an id leaves it.
void CheckRecords(const XmlNode& entry, const TableEntryValueInfoStruct* value,
                  const TableEntryUInfoStruct* ui, std::uint32_t id = 0);

// Every entry of a table or section, one after the other and by name.
void ReadTable(void* table);

// Every section of a profile, its entries as a table and as keys.
void ReadProfile(moxSettings* profile);

}  // namespace mox::fuzz

#endif
