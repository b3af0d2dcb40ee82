// One entry on its way between the tree and the exports, and each of its fields from and to the text it has
// in a file.
//
// The texts of a record are views: into the tree when the entry was read, into the host's or the caller's
// memory when it is to be written. A record is filled and used within one call, while neither changes; so
// reading copies nothing.
#ifndef MOX_XMLAPI_ENTRIES_ENTRY_RECORDS_H
#define MOX_XMLAPI_ENTRIES_ENTRY_RECORDS_H

#include <array>
#include <cstdint>

#include "mox_xmlApi/platform/wide_text.h"

namespace mox {

// Which fields of an EntryValueRecord are written; a mask of 0 means all of them.
inline constexpr std::uint16_t kWriteName = 0x0001;
inline constexpr std::uint16_t kWriteValue = 0x0002;  // with `locval`
inline constexpr std::uint16_t kWriteType = 0x0004;   // with the array qualifier
inline constexpr std::uint16_t kWriteId = 0x0008;
inline constexpr std::uint16_t kWriteLoc = 0x0010;

// What identifies an entry, and its value.
struct EntryValueRecord {
    std::uint16_t writeMask = 0;
    WideView name{};
    WideView Value{};
    std::uint16_t type = 0;  // 0: none
    std::uint32_t id = 0;
    bool loc = false;
    bool locval = false;  // "loc" of the "Value" child
};

// How an entry is presented and edited: its "UI" child.
struct EntryUiRecord {
    // Not defaulted: GCC would clear the whole record first, by "rep stos".
    EntryUiRecord() noexcept {}  // NOLINT(modernize-use-equals-default)

    std::uint16_t control = 0xFFFF;
    std::uint8_t access = 0;  // 0 "editable", 1 "visible", 2 "hidden"
    std::uint16_t flags = 0;
    std::uint32_t prov_index = 0;  // 0: none
    std::uint8_t prov_owner = 0;   // 0 none, 1 "app", 2 "dwg", 4 "erg"
    WideView regen{};
    WideView Comment{};
    WideView name{};  // the name that is displayed
    WideView minVal{};
    WideView maxVal{};
    WideView Value{};
    bool loc = false;  // "loc" of the "Value" child
};

// The state of a record that nothing was read into. None throws.
void ClearValueRecord(EntryValueRecord& record) noexcept;
void ClearUiRecord(EntryUiRecord& record) noexcept;

// The text of one field: a view, or a number in a buffer of its own.
class FieldText {
  public:
    FieldText() = default;
    FieldText(const FieldText&) = delete;
    FieldText& operator=(const FieldText&) = delete;

    WideView View() const noexcept { return text_; }
    void SetView(WideView text) noexcept { text_ = text; }
    // `format` is one of "%d", "%u" and "%04X", terminated by a zero as literals are. May throw what pdSwprintf throws.
    void Format(WideView format, std::uint32_t number);

  private:
    std::array<wchar16, 16> number_{};
    WideView text_{};
};

// Sets the field called `attribute` from its text, any but the type, which takes two attributes. False for another
// name; the record is unchanged then. A malformed number reads as its leading digits. Does not throw.
bool SetValueField(EntryValueRecord& record, WideView attribute, WideView text) noexcept;
// The text of the field called `attribute`; `qualifier` is set for "type" alone. False for an unknown field
// or type, `text` untouched. May throw what pdSwprintf throws.
bool GetValueField(const EntryValueRecord& record, WideView attribute, FieldText& text, WideView& qualifier);

// The same for the fields of the presentation record.
bool SetUiField(EntryUiRecord& record, WideView attribute, WideView text) noexcept;
bool GetUiField(const EntryUiRecord& record, WideView attribute, FieldText& text);

}  // namespace mox

#endif
