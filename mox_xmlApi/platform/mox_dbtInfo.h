/// @file
/// The entry records of the companion library mox_dbtInfo, as far as the library uses them: how a table entry
/// travels between a host and a table. Valid in C++17 and later.
///
///     TableEntryBaseInfoStruct        what identifies an entry
///      +- TableEntryValueInfoStruct   ... and its value
///          +- TableEntryUInfoStruct   ... and how it is presented
///
/// A record is used by one thread at a time. Copying is deep; a record that was moved from keeps its plain
/// fields and has lost its texts. What throws std::bad_alloc leaves the record as it was.
#ifndef MOX_XMLAPI_PLATFORM_MOX_DBTINFO_H
#define MOX_XMLAPI_PLATFORM_MOX_DBTINFO_H

#include <cstddef>
#include <cstdint>

#include "mox_xmlApi/platform/wchar16.h"

/// @cond EXPORTING
#if !defined(_WIN32)
#define MOX_DBTINFO_API __attribute__((visibility("default")))
#elif defined(mox_dbtInfo_EXPORTS)
#define MOX_DBTINFO_API __declspec(dllexport)
#else
#define MOX_DBTINFO_API
#endif
/// @endcond

/// What identifies an entry.
struct TableEntryBaseInfoStruct {
    std::uint16_t type = 0;       ///< value type code
    std::uint16_t writeMask = 0;  ///< which fields are to be written; 0 means all
    wchar16 name[260] = {};       ///< zero-terminated
    std::uint32_t id = 0;         ///< the entry's number

    /// Sets every field to zero, all 260 units of the name included. In a derived record the value and what
    /// else it has stay.
    MOX_DBTINFO_API void Clear();
};

/// What identifies an entry, and its value.
struct TableEntryValueInfoStruct : TableEntryBaseInfoStruct {
    /// @cond COPYING
    MOX_DBTINFO_API TableEntryValueInfoStruct() noexcept;
    MOX_DBTINFO_API TableEntryValueInfoStruct(const TableEntryValueInfoStruct& other);
    MOX_DBTINFO_API TableEntryValueInfoStruct(TableEntryValueInfoStruct&& other) noexcept;
    MOX_DBTINFO_API TableEntryValueInfoStruct& operator=(const TableEntryValueInfoStruct& other);
    MOX_DBTINFO_API TableEntryValueInfoStruct& operator=(TableEntryValueInfoStruct&& other) noexcept;
    MOX_DBTINFO_API ~TableEntryValueInfoStruct();
    /// @endcond

    /// The value as zero-terminated 8-bit text (UTF-8). A value has this form and that of GetVal_w, whichever
    /// way it was set, but for a 16-bit text with an unpaired surrogate: that one has no 8-bit form. The form
    /// in which the value was not set is made when it is first asked for.
    /// @return The text; null for a form that the value does not have, or when it was never set. The record
    ///         owns it; it lives until the next SetVal, SetVal_w or Clear of a TableEntryUInfoStruct, or until
    ///         the record is assigned to, moved from or destroyed.
    /// @throws std::bad_alloc  The value then stays as it was.
    MOX_DBTINFO_API const char* GetVal() const;
    /// The value as zero-terminated 16-bit text.
    /// @return As GetVal.
    /// @throws std::bad_alloc  The value then stays as it was.
    MOX_DBTINFO_API const wchar16* GetVal_w() const;

    /// Stores a copy of an 8-bit text (UTF-8) as the value.
    /// @param text  Zero-terminated; it may be the text that the record itself gave out. Null makes the value
    ///              one that was never set.
    /// @return true; false when the text is not well-formed UTF-8, and the value stays as it was.
    /// @throws std::bad_alloc  The value then stays as it was.
    MOX_DBTINFO_API bool SetVal(const char* text);
    /// Stores a copy of a 16-bit text, whatever its units, as the value.
    /// @param text  As for SetVal.
    /// @return true.
    /// @throws std::bad_alloc  The value then stays as it was.
    MOX_DBTINFO_API bool SetVal_w(const wchar16* text);

    /// Writes bytes as hexadecimal text: two upper-case digits each, in byte order, then a NUL.
    /// @param data  `size` bytes; null counts as no bytes.
    /// @param hex   Room for 2 * size + 1 characters; null writes nothing.
    /// @param size  How many bytes.
    MOX_DBTINFO_API static void DataToHex(const void* data, char* hex, std::size_t size);

    /// Reads bytes from hexadecimal text, digits of either case. Stops at the first two characters that are
    /// not both digits, so an odd last digit is ignored.
    /// @param hex   Zero-terminated; null counts as empty.
    /// @param data  Receives the bytes; null receives none.
    /// @param size  The most bytes that are stored.
    /// @return How many bytes were stored.
    MOX_DBTINFO_API static std::size_t HexToData(const char* hex, void* data, std::size_t size);

  private:
    struct Texts;
    Texts* texts_ = nullptr;
};

#pragma pack(push, 1)
/// What identifies an entry, its value, and how it is presented.
///
/// Packed, so that prov_index directly follows control. The record as a whole keeps the alignment of its base:
/// in an array of records, too, all but prov_index lies where it can be read at once. No pointer or reference
/// may be made to prov_index: copy it.
struct alignas(TableEntryValueInfoStruct) TableEntryUInfoStruct : TableEntryValueInfoStruct {
    std::uint16_t control = 0;     ///< control kind code
    std::uint32_t prov_index = 0;  ///< provider index; 0 is none
    std::uint8_t prov_owner = 0;   ///< 0, 1, 2 or 4

    /// @cond COPYING
    MOX_DBTINFO_API TableEntryUInfoStruct() noexcept;
    MOX_DBTINFO_API TableEntryUInfoStruct(const TableEntryUInfoStruct& other);
    MOX_DBTINFO_API TableEntryUInfoStruct(TableEntryUInfoStruct&& other) noexcept;
    MOX_DBTINFO_API TableEntryUInfoStruct& operator=(const TableEntryUInfoStruct& other);
    MOX_DBTINFO_API TableEntryUInfoStruct& operator=(TableEntryUInfoStruct&& other) noexcept;
    MOX_DBTINFO_API ~TableEntryUInfoStruct();
    /// @endcond

    /// Sets every field to zero, those of the base records included, and makes the value, the comment and the
    /// user name ones that were never set.
    MOX_DBTINFO_API void Clear();

    /// The comment.
    /// @return The text; null when never set. The record owns it; it lives until the same text is set again,
    ///         or until the record is cleared, assigned to, moved from or destroyed.
    MOX_DBTINFO_API const wchar16* GetComment_w() const;
    /// The name shown to users.
    /// @return As GetComment_w.
    MOX_DBTINFO_API const wchar16* GetUserName_w() const;

    /// Stores a copy of the text, whatever its units, as the comment.
    /// @param text  Zero-terminated; null makes it one that was never set.
    /// @return true.
    MOX_DBTINFO_API bool SetComment_w(const wchar16* text);
    /// Stores a copy of the text, whatever its units, as the name shown to users.
    /// @param text  As for SetComment_w.
    /// @return true.
    MOX_DBTINFO_API bool SetUserName_w(const wchar16* text);

  private:
    struct ShownTexts;
    [[maybe_unused]] std::uint8_t unused_ = 0;  // brings the pointer to its alignment
    ShownTexts* shown_ = nullptr;
};
#pragma pack(pop)

static_assert(offsetof(TableEntryBaseInfoStruct, writeMask) == 2 &&
                  offsetof(TableEntryBaseInfoStruct, name) == 4 &&
                  offsetof(TableEntryBaseInfoStruct, id) == 524 && sizeof(TableEntryBaseInfoStruct) == 528,
              "the fields of the base record lie without gaps");
static_assert(sizeof(TableEntryUInfoStruct) ==
                  sizeof(TableEntryValueInfoStruct) + 2 + 4 + 1 + 1 + sizeof(void*),
              "the fields of the presentation record lie without gaps");
static_assert(sizeof(TableEntryUInfoStruct) % alignof(TableEntryValueInfoStruct) == 0,
              "records in an array are aligned");

#endif
