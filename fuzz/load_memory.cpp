// Loading from memory. The input is the memory image, for a profile and for a table.
#include <memory>

#include "fuzz/read_everything.h"
#include "fuzz/tree_check.h"
#include "mox_xmlApi/table/table_handle.h"

namespace mox::fuzz {
namespace {

// The image in a block of just its size, and the size that the export is told: the number of bytes, or a
// negative one with a zero behind the image.
struct Image {
    Image(std::string_view bytes, bool limited)
        : memory(std::make_unique<char[]>(bytes.size() + (limited ? 0 : 1))),
          size(limited ? static_cast<std::int32_t>(bytes.size()) : -1) {
        bytes.copy(memory.get(), bytes.size());
    }

    std::unique_ptr<char[]> memory;
    std::int32_t size;
};

void LoadProfile(const Image& image, bool parses, PlainDocument expected) {
    moxSettings* profile = xmlProfileNew(nullptr, image.memory.get(), image.size, 0);
    Check((profile != nullptr) == parses, "a profile opens exactly when its text is in the dialect");
    if (profile == nullptr) return;
    PlainOpenProfile(expected);
    Check(CopyTree(*profile->document.root) == expected, "the tree agrees with a plain reading");
    ReadProfile(profile);
    Check(CopyTree(*profile->document.root) == expected, "reading does not change the tree");
    xmlProfileDispose(&profile);
    Check(profile == nullptr, "a disposed profile is null");
}

void LoadTable(const Image& image, bool parses, PlainDocument expected) {
    const WideView wanted = "T"_w;
    void* table = xmlTableNew(nullptr, image.memory.get(), image.size, nullptr, 0, 0, 0, 0);
    Check((table != nullptr) == parses, "a table opens exactly when its text is in the dialect");
    if (table != nullptr) {
        ReadTable(table);
        xmlTableDispose(&table);
        Check(table == nullptr, "a disposed table is null");
    }

    const std::size_t found = PlainTable(expected);
    const WideString* name = found == expected.size() ? nullptr : PlainAttributeOf(expected[found], "name"_w);
    const bool hasName = found == expected.size() || (name != nullptr && *name == wanted);
    table = xmlTableNew(nullptr, image.memory.get(), image.size, wanted.data(), 1, 1, 1, 1);
    Check((table != nullptr) == (parses && hasName), "a table opens by its own name");
    if (table == nullptr) return;
    PlainOpenTable(expected, wanted);
    Check(CopyTree(*static_cast<TableHandle*>(table)->document.root) == expected,
          "the tree agrees with a plain reading");
    xmlTableDispose(&table);
}

}  // namespace
}  // namespace mox::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mox::fuzz;
    if (size == 0) return 0;  // no image, but a new document
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    PlainDocument expected;
    const bool parses = PlainRead(WidenBytes(bytes), expected);
    if (!parses) expected.clear();
    const Image image(bytes, size % 2 == 0);
    LoadProfile(image, parses, expected);
    LoadTable(image, parses, expected);
    return 0;
}
