// The code tables of an entry: value types, control kinds, owners, access levels, and the texts they have in
// a file. Texts are compared exactly. No function here throws.
#ifndef MOX_XMLAPI_ENTRIES_ENTRY_CODES_H
#define MOX_XMLAPI_ENTRIES_ENTRY_CODES_H

#include <cstdint>

#include "mox_xmlApi/platform/wide_text.h"

namespace mox {

inline constexpr std::uint16_t kTypeString = 8;
inline constexpr std::uint16_t kTypeWideString = 31;
inline constexpr std::uint16_t kTypeVector = 0x1000;
inline constexpr std::uint16_t kTypeArray = 0x2000;

// The code of a value type without a qualifier; 0 for an unknown name.
std::uint16_t BaseTypeFromName(WideView typeName) noexcept;

// The bit of a qualifier, "array" or "vector"; 0 for every other text.
std::uint16_t QualifierFromName(WideView qualifier) noexcept;

// The code of a value type with its qualifier, "array", "vector" or empty. An unknown type name gives false
// and leaves `code` alone; an unknown qualifier gives false with the code of the type stored.
bool ValueTypeFromName(WideView typeName, WideView qualifier, std::uint16_t& code) noexcept;

// The texts of a value type code; "vector" wins over "array" when both bits are set. An unknown code gives
// false and leaves `typeName` alone; `qualifier` is set in any case.
bool ValueTypeToName(std::uint16_t code, WideView& typeName, WideView& qualifier) noexcept;

// The code of a control kind; an unknown name is that of "text".
std::uint16_t ControlKindFromName(WideView name) noexcept;
// The name of a control kind; an unknown code is called "text".
WideView ControlKindToName(std::uint16_t code) noexcept;

// The code of an owner; any unknown text counts as "app", the empty text as none.
std::uint8_t OwnerFromName(WideView name) noexcept;
// The name of an owner; empty for every other code.
WideView OwnerToName(std::uint8_t code) noexcept;

// The code of an access level; an unknown text counts as "editable".
std::uint8_t AccessFromName(WideView name) noexcept;
// The name of an access level; an unknown code is called "editable".
WideView AccessToName(std::uint8_t code) noexcept;

}  // namespace mox

#endif
