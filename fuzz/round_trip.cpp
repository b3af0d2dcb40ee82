// Load, save, load again, save again. What has to come back unchanged stands at WhyNotUnchanged.
//
// The first byte says in which form the document is loaded and saved; the others are its text, a byte from
// 0xF0 on followed by the two bytes of a unit, as in load_file.
//
//   'n'  a narrow profile    'w'  a wide profile    't'  a table    anything else: its lowest bits choose
//
// The file that is loaded is wide in any case: so a narrow save meets units that it has to cut.
#include "fuzz/tree_check.h"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox::fuzz {
namespace {

WideString TextOf(std::string_view bytes) {
    WideString text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        unsigned unit = static_cast<unsigned char>(bytes[i]);
        if (unit >= 0xF0 && i + 2 < bytes.size()) {
            const unsigned low = static_cast<unsigned char>(bytes[i + 1]);
            const unsigned high = static_cast<unsigned char>(bytes[i + 2]);
            unit = low | high << 8;
            i += 2;
        }
        text += static_cast<wchar16>(unit);
    }
    return text;
}

}  // namespace
}  // namespace mox::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mox::fuzz;
    if (size == 0) return 0;
    static const ScratchFile file;
    const auto [letter, bit0, bit1, text] = TakeApart(data, size);
    file.Write(model::WideBytes(TextOf(text)));
    if (letter == 't' || (letter != 'n' && letter != 'w' && bit1)) {
        void* table = xmlTableNew(file.Name(), nullptr, 0, nullptr, 0, 0, 0, 0);
        if (table == nullptr) return 0;
        CheckRoundTrip(table, file);
        xmlTableDispose(&table);
        return 0;
    }
    moxSettings* profile = xmlProfileNew(file.Name(), nullptr, 0, 1);
    if (profile == nullptr) return 0;
    CheckRoundTrip(profile, file, letter == 'w' || (letter != 'n' && bit0));
    xmlProfileDispose(&profile);
    return 0;
}
