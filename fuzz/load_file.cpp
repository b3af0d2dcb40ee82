// Loading from a file. The first byte says how the others become the file:
//
//   'n'  a narrow file with these bytes          anything else: its lowest bits choose
//   'w'  a wide file with these bytes
//   'e'  a wide file: a byte is a unit, but of 0xF0 and above: the two bytes after it are one
#include "fuzz/read_everything.h"
#include "fuzz/tree_check.h"
#include "fuzz/work.h"
#include "mox_xmlApi/table/table_handle.h"
#include "tests/model/profile.h"
#include "tests/model/tables.h"
#include "tests/model/text.h"

namespace mox::fuzz {
namespace {

std::string Expand(std::string_view bytes) {
    std::string file;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte >= 0xF0) {
            file += bytes.substr(i + 1, 2);
            i += 2;
        } else {
            file += bytes[i];
            file += '\0';
        }
    }
    return file;
}

// `expected` is what the model reads from the file; null when that is not in the dialect.
void LoadProfile(const ScratchFile& file, bool wide, const model::NodePtr& expected) {
    moxSettings* profile = Measured([&] { return xmlProfileNew(file.Name(), nullptr, 0, wide ? 1 : 0); });
    Check((profile != nullptr) == (expected != nullptr),
          "a profile opens exactly when its file is in the dialect");
    if (profile == nullptr) return;
    const model::NodePtr document = model::Copy(*expected);
    model::OpenRoot(*document);
    Check(model::IsSame(*CopyTree(*profile->document.root), *document), "the tree agrees with the model");
    ReadProfile(profile);
    xmlProfileDispose(&profile);
}

void LoadTable(const ScratchFile& file, const model::NodePtr& expected) {
    void* table = Measured([&] { return xmlTableNew(file.Name(), nullptr, 0, nullptr, 0, 0, 0, 0); });
    Check((table != nullptr) == (expected != nullptr),
          "a table opens exactly when its file is in the dialect");
    if (table == nullptr) return;
    const model::NodePtr document = model::Copy(*expected);
    model::OpenTable(*document, model::Text());
    Check(model::IsSame(*CopyTree(*static_cast<TableHandle*>(table)->document.root), *document),
          "the tree agrees with the model");
    ReadTable(table);
    xmlTableDispose(&table);
}

}  // namespace
}  // namespace mox::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mox::fuzz;
    if (size == 0) return 0;
    static const ScratchFile file;
    const auto [letter, bit0, bit1, text] = TakeApart(data, size);
    const bool isRaw = letter == 'n' || letter == 'w' || bit1;
    const bool wide = letter == 'w' || letter == 'e' || (letter != 'n' && bit0);
    const std::string bytes = wide && !isRaw ? Expand(text) : std::string(text);

    file.Write(bytes);
    const model::NodePtr expected =
        ParseByModel(wide ? model::FromWideBytes(bytes) : model::FromNarrowBytes(bytes));

    MeasuredWork::Reset();
    LoadProfile(file, wide, expected);
    if (wide) LoadTable(file, expected);
    CheckWork(MeasuredWork::Sum(), bytes.size(), "loading and reading");
    return 0;
}
