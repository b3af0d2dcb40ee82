// Entries: their records, and how they are read from and written to elements.
#ifndef MOX_XMLAPI_TESTS_MODEL_ENTRIES_H
#define MOX_XMLAPI_TESTS_MODEL_ENTRIES_H

#include <cstdint>
#include <optional>

#include "tests/model/tree.h"

namespace model {

struct EntryValue {
    std::uint16_t mask = 0;
    Text name{};
    Text value{};
    std::uint16_t type = 0;
    std::uint32_t id = 0;
    bool loc = false;
    bool valueLoc = false;
};

// Without the fields that no function gives or takes.
struct EntryUi {
    std::uint16_t control = 0xFFFF;
    std::uint32_t index = 0;
    std::uint8_t owner = 0;
    Text comment{};
    Text name{};
    Text value{};
    bool loc = false;
};

// Numbers as the runtime of 64-bit Windows reads them.
std::int32_t ReadSigned(const Text& text);
std::uint32_t ReadUnsigned(const Text& text, unsigned base);
// At least four upper-case hexadecimal digits.
Text HexText(std::uint32_t number);
Text SignedText(std::uint32_t number);
Text UnsignedText(std::uint32_t number);

// Into records as they stand. False for an entry without a known type.
bool ReadEntry(const Node& entry, EntryValue& value, EntryUi& ui);
// Each record may be null. `onlySet` leaves out what is zero, false or empty.
void WriteEntry(Node& entry, const EntryValue* value, const EntryUi* ui, bool onlySet);
// The value of the "UI" that is there; a new one unless it would be empty.
void WriteMovedText(Node& entry, const Text& text, bool onlySet);

// The first child that has this name; with an empty one the first that has any.
NodePtr FindEntry(const Node& table, const Text& name);

struct NewEntry {
    Text name{};  // for an update
    const EntryValue* value = nullptr;
    const EntryUi* ui = nullptr;
    bool eud = false;
    bool update = false;
    std::optional<Text> movedText{};  // to the presentation data
};

// Before that child, or at the end when it is null. False when it is not a child of the table.
bool AddEntry(Node& table, const Node* before, const NewEntry& added);
// Sets "eud" on the entry, and on the table when it has none.
void SetEud(Node& table, Node& entry);
// Whether any went.
bool RemoveEntries(Node& table, const Text& name, std::int32_t occurrence, bool all);

}  // namespace model

#endif
