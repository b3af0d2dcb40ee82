// The five entities of the format, in the order in which both the parser and the writer try them.
#ifndef MOX_XMLAPI_XML_XML_ENTITIES_H
#define MOX_XMLAPI_XML_XML_ENTITIES_H

#include <array>
#include <cstdint>

#include "mox_xmlApi/platform/copy_units.h"
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

// The same five characters as the patterns that end a plain copy: & and ' differ in one bit, and so do < and >.
inline constexpr std::array<UnitPattern, 3> kMarkup = {{
    {0, wchar16{'"'}},
    {wchar16{'&' ^ '\''}, wchar16{'&' | '\''}},
    {wchar16{'<' ^ '>'}, wchar16{'<' | '>'}},
}};

// The writer copies up to the next markup character and puts an entity there: the two tables have to agree.
static_assert(
    detail::kStopBits<kMarkup> ==
        [] {
            std::uint64_t bits = 0;
            for (const XmlEntity& entity : kXmlEntities)
                bits |= std::uint64_t{1} << entity.character;
            return bits;
        }(),
    "every markup character has an entity, and no other one has");

}  // namespace mox

#endif
