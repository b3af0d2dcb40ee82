// A second, obvious reading of one entry element, for its texts.
#ifndef MOX_XMLAPI_FUZZ_PLAIN_ENTRY_H
#define MOX_XMLAPI_FUZZ_PLAIN_ENTRY_H

#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/xml_node.h"

namespace mox::fuzz {

struct PlainEntry {
    bool isReadable = false;  // it has a known type
    WideView value{};         // its own
    WideView uiValue{};       // that of its presentation data
    WideView comment{};
    WideView userName{};

    // What a key read gives.
    WideView KeyValue() const { return value.empty() ? uiValue : value; }
};

PlainEntry ReadPlainEntry(const XmlNode& entry);

}  // namespace mox::fuzz

#endif
