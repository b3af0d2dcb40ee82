// The entries of the C++ front as plain values, and their way into the records of mox_dbtInfo and back.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_ENTRY_HPP
#define MOX_XMLAPI_FRONT_ENTRY_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/platform/mox_dbtInfo.h"

namespace mox {

// What the text of a value means. The library keeps any text with any type.
enum class ValueType : std::uint16_t {
    Short = 2,
    Long = 3,
    Double = 5,
    String = 8,
    Bool = 11,
    Char = 16,
    Byte = 17,
    UShort = 18,
    ULong = 19,
    UcString = 31
};

// How many of that type a value holds.
enum class Shape : std::uint16_t { Single = 0, Vector = 0x1000, Array = 0x2000 };

// The control by which a value is shown and edited. None is written as Text.
enum class Control : std::uint16_t {
    None = 0,
    Number = 1,
    Text = 2,
    Switch = 4,
    NoEdit = 5,
    Rgb = 7,
    Button = 8,
    TextArray = 12,
    NamedArray = 14,
    SwitchArray = 15,
    RadioArray = 16,
    State = 17,
    NamedListArray = 18,
    Radio = 19,
    PropertyArray = 20
};

// Whose provider it is.
enum class Owner : std::uint8_t { None = 0, App = 1, Dwg = 2, Erg = 4 };

// How an entry is presented. `value` is a value that the presentation data have of their own, rarely used; it is
// nothing when a record cannot hold it (see BasicEntry), and as an argument when it is to stay as it is.
template <class String>
struct BasicPresentation {
    Control control = Control::None;
    std::uint32_t providerIndex = 0;
    Owner providerOwner = Owner::None;
    String shownName{};
    String comment{};
    std::optional<String> value{};
};

// One entry of a table, or one key of a section. It is the host's: changing it changes no document.
//
//   name   at most 259 units, since more do not fit a record: a longer name is given cut, and not taken as an argument.
//          An entry that has none is given with an empty one.
//   value  the entry's own value, empty when it has none. Nothing when a record cannot hold it: that is, when it has a
//          surrogate without its partner and another type than UcString (Profile::getString reads such a value in a
//          section). As an argument nothing means: no value is written. In a table whose first entry has a value in its
//          presentation data and none of its own, the value of an entry that has none of its own is written to its
//          presentation data; effectiveValue() of what is read then gives it.
//   id     0 means none.
//   ui     nothing when the entry has no presentation data, or such that say nothing.
template <class String>
struct BasicEntry {
    String name{};
    std::optional<String> value{};
    ValueType type = ValueType::String;
    Shape shape = Shape::Single;
    std::uint32_t id = 0;
    std::optional<BasicPresentation<String>> ui{};

    // What a read of the key gives: the own value or, when that is empty, the one of the presentation data.
    String effectiveValue() const {
        if (!value.has_value() || !value->empty() || !ui.has_value()) return value.value_or(String());
        return ui->value.value_or(String());
    }
};

using Presentation = BasicPresentation<std::string>;
using Presentation16 = BasicPresentation<std::u16string>;
using Entry = BasicEntry<std::string>;
using Entry16 = BasicEntry<std::u16string>;

namespace front {

inline constexpr std::uint16_t kShapeBits = 0x3000;
inline constexpr std::uint16_t kWideType = static_cast<std::uint16_t>(ValueType::UcString);
inline constexpr std::uint16_t kNoControl = 0xFFFF;

// The bits of a record's write mask.
inline constexpr std::uint16_t kMaskName = 1;
inline constexpr std::uint16_t kMaskValue = 2;
inline constexpr std::uint16_t kMaskType = 4;
inline constexpr std::uint16_t kMaskId = 8;

// ---- from records

inline UnitsView ViewOf(const wchar16* text) noexcept {
    return text == nullptr ? UnitsView() : UnitsView(text);
}

inline UnitsView NameIn(const TableEntryBaseInfoStruct& record) noexcept {
    const wchar16* const end = std::find(std::begin(record.name), std::end(record.name), wchar16{0});
    return {record.name, static_cast<std::size_t>(end - record.name)};
}

// The value in the form that the library gives for the type; nothing when the record has none.
template <class String>
std::optional<String> ValueIn(const TableEntryValueInfoStruct& record, std::uint16_t type) {
    if (type == kWideType) {
        if (record.GetVal_w() == nullptr) return std::nullopt;
        return StringOf<String>(record.GetVal_w());
    }
    if (record.GetVal() == nullptr) return std::nullopt;
    if constexpr (sizeof(typename String::value_type) == 1) {
        return String(record.GetVal());
    } else {
        return UnitsOf<typename String::value_type>(record.GetVal());
    }
}

template <class String>
std::optional<BasicPresentation<String>> PresentationIn(const TableEntryUInfoStruct& record) {
    BasicPresentation<String> ui;
    const std::uint16_t control = record.control;
    ui.control = control == kNoControl ? Control::None : static_cast<Control>(control);
    ui.providerIndex = record.prov_index;
    ui.providerOwner = static_cast<Owner>(record.prov_owner);
    ui.shownName = StringOf<String>(ViewOf(record.GetUserName_w()));
    ui.comment = StringOf<String>(ViewOf(record.GetComment_w()));
    ui.value = ValueIn<String>(record, record.type);
    const bool saysSomething = ui.control != Control::None || ui.providerIndex != 0 ||
                               ui.providerOwner != Owner::None || !ui.shownName.empty() ||
                               !ui.comment.empty() || !ui.value.has_value() || !ui.value->empty();
    return saysSomething ? std::optional(ui) : std::nullopt;
}

// ---- to records; each returns false for what a record cannot hold

inline bool PutName(UnitsView name, TableEntryBaseInfoStruct& record) noexcept {
    if (name.size() >= std::size(record.name)) return false;
    const auto end = std::copy(name.begin(), name.end(), std::begin(record.name));
    std::fill(end, std::end(record.name), wchar16{0});
    return true;
}

inline bool PutValue(const Text& value, std::uint16_t type, TableEntryValueInfoStruct& record) {
    if (!value.isValid()) return false;
    if (type == kWideType) return record.SetVal_w(value.c_str());
    return record.SetVal(Utf8Of(value.units()).c_str());
}

// Whether an entry of this name can be looked for: an empty name would find another entry.
inline bool PutKey(const Text& name, TableEntryBaseInfoStruct& record) noexcept {
    return name.isValid() && !name.units().empty() && PutName(name.units(), record);
}

// Whether files have a name for the type. An entry with another one could not be read again.
inline bool IsKnownType(ValueType type, Shape shape) noexcept {
    switch (type) {
        case ValueType::Short:
        case ValueType::Long:
        case ValueType::Double:
        case ValueType::String:
        case ValueType::Bool:
        case ValueType::Char:
        case ValueType::Byte:
        case ValueType::UShort:
        case ValueType::ULong:
        case ValueType::UcString:
            return shape == Shape::Single || shape == Shape::Vector || shape == Shape::Array;
    }
    return false;
}

template <class String>
bool PutEntry(const BasicEntry<String>& entry, TableEntryValueInfoStruct& record) {
    if (!IsKnownType(entry.type, entry.shape)) return false;
    record.type = static_cast<std::uint16_t>(static_cast<std::uint16_t>(entry.type) |
                                             static_cast<std::uint16_t>(entry.shape));
    record.id = entry.id;
    int mask = kMaskName | kMaskType;
    if (entry.id != 0) mask |= kMaskId;
    if (entry.value.has_value()) mask |= kMaskValue;
    record.writeMask = static_cast<std::uint16_t>(mask);
    if (!PutKey(entry.name, record)) return false;
    if (!entry.value.has_value()) return true;
    return PutValue(*entry.value, record.type, record);
}

// Everything but the value, which takes a write of its own.
template <class String>
bool PutPresentation(const BasicPresentation<String>& ui, TableEntryUInfoStruct& record) {
    const Text comment(ui.comment);
    const Text shownName(ui.shownName);
    record.control = static_cast<std::uint16_t>(ui.control);
    record.prov_index = ui.providerIndex;
    record.prov_owner = static_cast<std::uint8_t>(ui.providerOwner);
    if (!comment.isValid() || !shownName.isValid() || record.control == kNoControl) return false;
    return record.SetComment_w(comment.c_str()) && record.SetUserName_w(shownName.c_str());
}

}  // namespace front
}  // namespace mox

#endif
