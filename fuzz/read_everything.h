// Walks through a document by the exports alone and checks that they agree with each other.
#ifndef MOX_XMLAPI_FUZZ_READ_EVERYTHING_H
#define MOX_XMLAPI_FUZZ_READ_EVERYTHING_H

#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/xml/xml_node.h"

namespace mox::fuzz {

// Checks that records which were read say of the entry what a plain reading says. Each may be null.
void CheckRecords(const XmlNode& entry, const TableEntryValueInfoStruct* value,
                  const TableEntryUInfoStruct* ui);

// Every entry of a table or section, one after the other and by name.
void ReadTable(void* table);

// Every section of a profile, its entries as a table and as keys.
void ReadProfile(moxSettings* profile);

}  // namespace mox::fuzz

#endif
