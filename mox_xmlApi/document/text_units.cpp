#include "mox_xmlApi/document/text_units.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "mox_xmlApi/platform/scan.h"

namespace mox {

WideString UnitsOfBytes(std::string_view bytes, Form form, std::size_t zeros) {
    const std::size_t count = bytes.size() / UnitSize(form);
    WideString units(count + zeros, wchar16{0});
    if (form == Form::Wide) {
        if (count != 0) std::memcpy(units.data(), bytes.data(), count * sizeof(wchar16));
    } else {
        std::transform(bytes.begin(), bytes.end(), units.begin(), [](char byte) {
            return static_cast<wchar16>(static_cast<std::int16_t>(static_cast<signed char>(byte)));
        });
    }
    return units;
}

Position PositionIn(WideView text, std::size_t offset) noexcept {
    Position position;
    std::size_t start = 0;
    for (;;) {
        const std::size_t length = CountBefore('\n', text.data() + start, offset - start);
        if (start + length == offset) break;
        start += length + 1;
        ++position.line;
    }
    position.column = offset - start + 1;
    return position;
}

LineIndex::LineIndex(WideView text) : starts_{0} {
    std::size_t next = CountBefore('\n', text.data(), text.size());
    while (next != text.size()) {
        starts_.push_back(++next);
        next += CountBefore('\n', text.data() + next, text.size() - next);
    }
}

Position LineIndex::PositionAt(std::size_t offset) const noexcept {
    const auto next = std::upper_bound(starts_.begin(), starts_.end(), offset);
    Position position;
    position.line = static_cast<std::size_t>(next - starts_.begin());
    position.column = offset - *(next - 1) + 1;
    return position;
}

}  // namespace mox
