// Entries as plain values, and their conversion to the records of mox_dbtInfo and back.
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
#include <type_traits>

#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/typed_value.hpp"
#include "mox_xmlApi/front/value_type.hpp"
#include "mox_xmlApi/platform/mox_dbtInfo.h"

namespace mox {

template <class String>
struct BasicEntry;

namespace front {
template <class T, class String>
std::optional<T> ValueOfEntry(const BasicEntry<String>& entry, const Target& target);
}  // namespace front

// The control that shows a value and edits it. None is written as Text.
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

// The owner of an entry's provider.
enum class Owner : std::uint8_t { None = 0, App = 1, Dwg = 2, Erg = 4 };

// The presentation data of an entry: what an editor needs to display it. They rarely have a `value` of their own. When
// read, it is nullopt if a record cannot hold it (see BasicEntry); as an argument, nullopt leaves it as it is.
template <class String>
struct BasicPresentation {
    Control control = Control::None;
    std::uint32_t providerIndex = 0;
    Owner providerOwner = Owner::None;
    String shownName{};
    String comment{};
    std::optional<String> value{};
};

// One entry of a table, or one key of a section. It is a copy: changing it does not change the document.
//
//   name   At most 259 units, which is what a record holds. A longer name is cut when read, and refused as an argument.
//          Empty if the entry has none.
//   value  The entry's own value, empty if it has none. When read, it is nullopt if a record cannot hold it: the value
//          contains an unpaired surrogate and the type is not UcString. (Profile::getString reads such a value of a
//          section.) As an argument, nullopt writes no value. In a table whose first entry has a value in its
//          presentation data and none of its own, the value of an entry without one of its own is written to its
//          presentation data; effectiveValue() of the entry that is read returns it.
//   id     0 means none.
//   ui     nullopt if the entry has no presentation data, or if all their fields are empty.
template <class String>
struct BasicEntry {
    String name{};
    std::optional<String> value{};
    ValueType type = ValueType::String;
    Shape shape = Shape::Single;
    std::uint32_t id = 0;
    std::optional<BasicPresentation<String>> ui{};

    // The value that Profile::getString returns for the key: the entry's own or, if that is empty, the one of the
    // presentation data. Empty if a record cannot hold it.
    String effectiveValue() const {
        if (!value.has_value() || !value->empty() || !ui.has_value()) return value.value_or(String());
        return ui->value.value_or(String());
    }

    // That value as a T: bool, an integer of 16, 32 or 64 bits, double, std::string, std::u16string or
    // std::vector<std::uint8_t>. Returns nullopt, and says why, if it is none (Reason::WrongType, OutOfRange), or if a
    // record cannot hold it (Reason::InvalidText). front/typed_value.hpp has the texts that are accepted.
    template <class T>
    std::optional<T> valueAs(Problem* problem = nullptr) const {
        return front::ValueOfEntry<T>(*this, {{}, {}, nullptr, problem});
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

inline UnitsView NameOf(const TableEntryBaseInfoStruct& record) noexcept {
    const wchar16* const end = std::find(std::begin(record.name), std::end(record.name), wchar16{0});
    return {record.name, static_cast<std::size_t>(end - record.name)};
}

// The value of a record, which is 16-bit text for the type UcString and 8-bit text for any other; nullopt if none was
// set.
template <class String>
std::optional<String> ValueOf(const TableEntryValueInfoStruct& record, std::uint16_t type) {
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
std::optional<BasicPresentation<String>> PresentationOf(const TableEntryUInfoStruct& record) {
    BasicPresentation<String> ui;
    const std::uint16_t control = record.control;
    ui.control = control == kNoControl ? Control::None : static_cast<Control>(control);
    ui.providerIndex = record.prov_index;
    ui.providerOwner = static_cast<Owner>(record.prov_owner);
    ui.shownName = StringOf<String>(ViewOf(record.GetUserName_w()));
    ui.comment = StringOf<String>(ViewOf(record.GetComment_w()));
    ui.value = ValueOf<String>(record, record.type);
    const bool hasContent = ui.control != Control::None || ui.providerIndex != 0 ||
                            ui.providerOwner != Owner::None || !ui.shownName.empty() || !ui.comment.empty() ||
                            !ui.value.has_value() || !ui.value->empty();
    return hasContent ? std::optional(ui) : std::nullopt;
}

// The effective value of an entry that was read as a T, see BasicEntry::valueAs.
template <class T, class String>
std::optional<T> ValueOfEntry(const BasicEntry<String>& entry, const Target& target) {
    RequireGettable<T>();
    if (!entry.value.has_value() ||
        (entry.value->empty() && entry.ui.has_value() && !entry.ui->value.has_value())) {
        target.Refuse(Reason::InvalidText,
                      "the value contains half of a surrogate pair, which a record cannot hold");
        return std::nullopt;
    }
    if constexpr (std::is_same_v<T, String>) {
        target.Succeed();
        return entry.effectiveValue();
    } else {
        const Text text(entry.effectiveValue());
        if constexpr (kIsOneOf<T, std::string, std::u16string>) {
            target.Succeed();
            return StringOf<T>(text.units());
        } else {
            return ValueOfText<T>(Utf8Of(text.units()), target);
        }
    }
}

// ---- to records. Each function returns false for what a record cannot hold; the record is then unspecified.

// The most units of a name that a record can hold.
inline constexpr std::size_t kMostNameUnits = std::size(TableEntryBaseInfoStruct().name) - 1;

inline bool SetRecordName(UnitsView name, TableEntryBaseInfoStruct& record) noexcept {
    if (name.size() >= std::size(record.name)) return false;
    const auto end = std::copy(name.begin(), name.end(), std::begin(record.name));
    std::fill(end, std::end(record.name), wchar16{0});
    return true;
}

inline bool SetRecordValue(const Text& value, std::uint16_t type, TableEntryValueInfoStruct& record) {
    if (!value.isValid()) return false;
    if (type == kWideType) return record.SetVal_w(value.c_str());
    return record.SetVal(Utf8Of(value.units()).c_str());
}

// Sets the name to look up. An empty one is refused: it would find the first entry that has a name.
inline bool SetLookUpName(const Text& name, TableEntryBaseInfoStruct& record) noexcept {
    return name.isValid() && !name.units().empty() && SetRecordName(name.units(), record);
}

// Whether the control has a name in files. Another one would be written as Text.
inline bool IsKnownControl(Control control) noexcept {
    switch (control) {
        case Control::None:
        case Control::Number:
        case Control::Text:
        case Control::Switch:
        case Control::NoEdit:
        case Control::Rgb:
        case Control::Button:
        case Control::TextArray:
        case Control::NamedArray:
        case Control::SwitchArray:
        case Control::RadioArray:
        case Control::State:
        case Control::NamedListArray:
        case Control::Radio:
        case Control::PropertyArray:
            return true;
    }
    return false;
}

// Whether the owner has a name in files. Another one would be written as None.
inline bool IsKnownOwner(Owner owner) noexcept {
    return owner == Owner::None || owner == Owner::App || owner == Owner::Dwg || owner == Owner::Erg;
}

// Type and shape as a record has them.
template <class String>
std::uint16_t TypeCodeOf(const BasicEntry<String>& entry) noexcept {
    return static_cast<std::uint16_t>(static_cast<std::uint16_t>(entry.type) |
                                      static_cast<std::uint16_t>(entry.shape));
}

template <class String>
bool FillValueRecord(const BasicEntry<String>& entry, TableEntryValueInfoStruct& record) {
    record.type = TypeCodeOf(entry);
    record.id = entry.id;
    int mask = kMaskName | kMaskType;
    if (entry.id != 0) mask |= kMaskId;
    if (entry.value.has_value()) mask |= kMaskValue;
    record.writeMask = static_cast<std::uint16_t>(mask);
    if (!SetLookUpName(entry.name, record)) return false;
    if (!entry.value.has_value()) return true;
    return SetRecordValue(*entry.value, record.type, record);
}

// Sets every field but the value, which WritePresentation sets.
template <class String>
bool FillUiRecord(const BasicPresentation<String>& ui, TableEntryUInfoStruct& record) {
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
