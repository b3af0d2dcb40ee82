// Loading from memory. The input is the memory image, for a profile and for a table.
#include <memory>

#include "fuzz/read_everything.h"
#include "fuzz/tree_check.h"
#include "fuzz/work.h"
#include "mox_xmlApi/table/table_handle.h"
#include "tests/model/profile.h"
#include "tests/model/tables.h"
#include "tests/model/text.h"

namespace mox::fuzz {
namespace {

// The image in a block of just its size, and the size that is passed to the export: the number of bytes, or a
// negative one with a zero after the image.
struct Image {
    Image(std::string_view bytes, bool limited)
        : memory(std::make_unique<char[]>(bytes.size() + (limited ? 0 : 1))),
          size(limited ? static_cast<std::int32_t>(bytes.size()) : -1) {
        bytes.copy(memory.get(), bytes.size());
    }

    std::unique_ptr<char[]> memory;
    std::int32_t size;
};

// `expected` is what the model reads from the image; null when that is not in the dialect.
void LoadProfile(const Image& image, const model::NodePtr& expected) {
    moxSettings* profile =
        Measured([&] { return xmlProfileNew(nullptr, image.memory.get(), image.size, 0); });
    Check((profile != nullptr) == (expected != nullptr),
          "a profile opens exactly when its text is in the dialect");
    if (profile == nullptr) return;
    const model::NodePtr document = model::Copy(*expected);
    model::OpenRoot(*document);
    Check(model::IsSame(*CopyTree(*profile->document.root), *document), "the tree agrees with the model");
    ReadProfile(profile);
    Check(model::IsSame(*CopyTree(*profile->document.root), *document), "reading does not change the tree");
    xmlProfileDispose(&profile);
    Check(profile == nullptr, "a disposed profile is null");
}

void LoadTable(const Image& image, const model::NodePtr& expected) {
    void* table =
        Measured([&] { return xmlTableNew(nullptr, image.memory.get(), image.size, nullptr, 0, 0, 0, 0); });
    Check((table != nullptr) == (expected != nullptr),
          "a table opens exactly when its text is in the dialect");
    if (table != nullptr) {
        ReadTable(table);
        xmlTableDispose(&table);
        Check(table == nullptr, "a disposed table is null");
    }

    table = xmlTableNew(nullptr, image.memory.get(), image.size, "T"_w.data(), 1, 1, 1, 1);
    const model::NodePtr document = expected == nullptr ? nullptr : model::Copy(*expected);
    const bool hasName = document != nullptr && model::OpenTable(*document, model::Wide("T")) != nullptr;
    Check((table != nullptr) == hasName, "a table opens by its own name");
    if (table == nullptr) return;
    Check(model::IsSame(*CopyTree(*static_cast<TableHandle*>(table)->document.root), *document),
          "the tree agrees with the model");
    xmlTableDispose(&table);
}

}  // namespace
}  // namespace mox::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mox::fuzz;
    if (size == 0) return 0;  // no image, but a new document
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const model::NodePtr expected = ParseByModel(model::FromNarrowBytes(bytes));

    const Image image(bytes, size % 2 == 0);
    MeasuredWork::Reset();

    LoadProfile(image, expected);

    LoadTable(image, expected);
    CheckWork(MeasuredWork::Sum(), size, "loading and reading");
    return 0;
}
