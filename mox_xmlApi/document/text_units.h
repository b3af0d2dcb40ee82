// The bytes of a file as 16-bit units, and places in them.
#ifndef MOX_XMLAPI_DOCUMENT_TEXT_UNITS_H
#define MOX_XMLAPI_DOCUMENT_TEXT_UNITS_H

#include <cstddef>
#include <string_view>
#include <vector>

#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/platform/wide_text.h"

namespace mox {

// The bytes per unit.
inline std::size_t UnitSize(Form form) noexcept {
    return form == Form::Wide ? 2 : 1;
}

// The units of a text as the library reads them: wide, low byte first; narrow, each byte as a signed number. An odd byte
// at the end of a wide text is dropped. `zeros` zero units follow them.
WideString UnitsOfBytes(std::string_view bytes, Form form, std::size_t zeros = 0);

// The position of a unit, given by its offset, which is at most the size of the text. Counts the lines before it.
Position PositionIn(WideView text, std::size_t offset) noexcept;

// The beginnings of the lines of a text.
class LineIndex {
  public:
    explicit LineIndex(WideView text);

    // The position of a unit of the text, given by its offset. Takes logarithmic time.
    Position PositionAt(std::size_t offset) const noexcept;

  private:
    std::vector<std::size_t> starts_;  // offsets, ascending; the first is 0
};

}  // namespace mox

#endif
