// The five entities of the format, in the order in which both the parser and the writer try them.
#ifndef MOX_XMLAPI_XML_XML_ENTITIES_H
#define MOX_XMLAPI_XML_XML_ENTITIES_H

#include <array>

#include "mox_xmlApi/platform/wide_text.h"

namespace mox {

struct XmlEntity {
    WideView text;  // with "&" and ";"
    wchar16 character;
};

inline constexpr std::array<XmlEntity, 5> kXmlEntities = {{
    {"&amp;"_w, wchar16{'&'}},
    {"&apos;"_w, wchar16{'\''}},
    {"&gt;"_w, wchar16{'>'}},
    {"&lt;"_w, wchar16{'<'}},
    {"&quot;"_w, wchar16{'"'}},
}};

}  // namespace mox

#endif
