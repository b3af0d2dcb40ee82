#include "mox_xmlApi/entries/entry_codes.h"

#include <algorithm>
#include <array>

#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

template <class Code>
struct NamedCode {
    WideView name;
    Code code;
};

constexpr std::array<NamedCode<std::uint16_t>, 10> kValueTypes = {{
    {"string"_w, kTypeString},
    {"ucstring"_w, kTypeWideString},
    {"char"_w, 16},
    {"byte"_w, 17},
    {"short"_w, 2},
    {"ushort"_w, 18},
    {"bool"_w, 11},
    {"double"_w, 5},
    {"long"_w, 3},
    {"ulong"_w, 19},
}};

constexpr std::array<NamedCode<std::uint16_t>, 14> kControlKinds = {{
    {"no_edit"_w, 5},
    {"num"_w, 1},
    {"text"_w, 2},
    {"switch"_w, 4},
    {"radio"_w, 19},
    {"rgb"_w, 7},
    {"button"_w, 8},
    {"state"_w, 17},
    {"text_array"_w, 12},
    {"named_array"_w, 14},
    {"named_list_array"_w, 18},
    {"switch_array"_w, 15},
    {"radio_array"_w, 16},
    {"prop_array"_w, 20},
}};
constexpr std::uint16_t kControlText = 2;
constexpr std::uint16_t kControlPropArray = 20;

constexpr std::array<NamedCode<std::uint8_t>, 3> kOwners = {{{"app"_w, 1}, {"dwg"_w, 2}, {"erg"_w, 4}}};
constexpr std::uint8_t kOwnerApp = 1;

constexpr std::array<NamedCode<std::uint8_t>, 3> kAccessLevels = {
    {{"editable"_w, 0}, {"visible"_w, 1}, {"hidden"_w, 2}}};

// Value types by their names: a name is in the slot that its length and first two letters choose.
constexpr std::size_t kTypeSlots = 16;

constexpr std::size_t TypeSlot(WideView name) noexcept {
    return (name[0] + 3U * name[1] + name.size()) % kTypeSlots;
}

constexpr auto kValueTypesBySlot = [] {
    std::array<NamedCode<std::uint16_t>, kTypeSlots> slots{};
    for (const auto& type : kValueTypes)
        slots[TypeSlot(type.name)] = type;
    return slots;
}();

static_assert(std::all_of(kValueTypes.begin(), kValueTypes.end(),
                          [](const auto& type) {
                              return kValueTypesBySlot[TypeSlot(type.name)].code == type.code;
                          }),
              "no two names share a slot");

template <class Table>
auto FindName(const Table& table, WideView name) noexcept {
    const auto* found =
        std::find_if(table.begin(), table.end(), [&](const auto& row) { return SameText(row.name, name); });
    return found == table.end() ? nullptr : found;
}

template <class Table, class Code>
auto FindCode(const Table& table, Code code) noexcept {
    const auto* found =
        std::find_if(table.begin(), table.end(), [&](const auto& row) { return row.code == code; });
    return found == table.end() ? nullptr : found;
}

}  // namespace

std::uint16_t BaseTypeFromName(WideView typeName) noexcept {
    if (typeName.size() < 2) return 0;
    const auto& type = kValueTypesBySlot[TypeSlot(typeName)];
    return SameText(type.name, typeName) ? type.code : std::uint16_t{0};
}

std::uint16_t QualifierFromName(WideView qualifier) noexcept {
    if (qualifier.empty()) return 0;
    if (SameText(qualifier, names::kArray)) return kTypeArray;
    return SameText(qualifier, names::kVector) ? kTypeVector : std::uint16_t{0};
}

bool ValueTypeFromName(WideView typeName, WideView qualifier, std::uint16_t& code) noexcept {
    const std::uint16_t type = BaseTypeFromName(typeName);
    if (type == 0) return false;
    const std::uint16_t bits = QualifierFromName(qualifier);
    code = static_cast<std::uint16_t>(type | bits);
    return bits != 0 || qualifier.empty();
}

bool ValueTypeToName(std::uint16_t code, WideView& typeName, WideView& qualifier) noexcept {
    qualifier = (code & kTypeVector) != 0  ? names::kVector
                : (code & kTypeArray) != 0 ? names::kArray
                                           : WideView();
    const auto base = static_cast<std::uint16_t>(code & ~(kTypeVector | kTypeArray));
    const auto* type = FindCode(kValueTypes, base);
    if (type == nullptr) return false;
    typeName = type->name;
    return true;
}

std::uint16_t ControlKindFromName(WideView name) noexcept {
    const auto* kind = FindName(kControlKinds, name);
    return kind == nullptr ? kControlText : kind->code;
}

WideView ControlKindToName(std::uint16_t code) noexcept {
    if (code == 24 || code == 26) code = kControlPropArray;  // hosts' own kinds of property lists
    const auto* kind = FindCode(kControlKinds, code);
    return kind == nullptr ? "text"_w : kind->name;
}

std::uint8_t OwnerFromName(WideView name) noexcept {
    if (name.empty()) return 0;
    const auto* owner = FindName(kOwners, name);
    return owner == nullptr ? kOwnerApp : owner->code;
}

WideView OwnerToName(std::uint8_t code) noexcept {
    const auto* owner = FindCode(kOwners, code);
    return owner == nullptr ? WideView() : owner->name;
}

std::uint8_t AccessFromName(WideView name) noexcept {
    const auto* access = FindName(kAccessLevels, name);
    return access == nullptr ? std::uint8_t{0} : access->code;
}

WideView AccessToName(std::uint8_t code) noexcept {
    const auto* access = FindCode(kAccessLevels, code);
    return access == nullptr ? kAccessLevels[0].name : access->name;
}

}  // namespace mox
