// What the tests of the table functions share: the two kinds of table handles under one face, entry records
// in one line, and records made in one line. Of the library it uses the exports alone.
#ifndef MOX_XMLAPI_TESTS_HOST_TABLE_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_TABLE_SUPPORT_H

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "tests/host/host_support.h"
#include "tests/model/tables.h"

namespace host {

// ---- Records
// -------------------------------------------------------------------------------------------------

using model::PlainUi;
using model::PlainValue;

inline std::optional<WideText> OptionalText(const wchar16* text) {
    return text == nullptr ? std::nullopt : std::optional<WideText>(text);
}

inline PlainValue Plain(const TableEntryValueInfoStruct& record) {
    return {WideText(record.name), record.id, record.type, record.writeMask, OptionalText(record.GetVal_w())};
}

inline PlainUi Plain(const TableEntryUInfoStruct& record) {
    PlainUi plain{Plain(static_cast<const TableEntryValueInfoStruct&>(record))};
    plain.control = record.control;
    plain.index = record.prov_index;
    plain.owner = record.prov_owner;
    plain.comment = OptionalText(record.GetComment_w());
    plain.userName = OptionalText(record.GetUserName_w());
    return plain;
}

inline std::string Hex(unsigned number) {
    std::string digits;
    for (int shift = 12; shift >= 0; shift -= 4)
        digits += "0123456789ABCDEF"[(number >> shift) & 0xF];
    return digits;
}

// The text in printable ASCII.
inline std::string Printable(const WideText& text) {
    std::string shown;
    for (const wchar16 unit : text) {
        if (unit >= 0x20 && unit < 0x7F) {
            shown += static_cast<char>(unit);
        } else {
            shown += "\\u" + Hex(unit);
        }
    }
    return shown;
}

inline std::string Quoted(const std::optional<WideText>& text) {
    return text ? "'" + Printable(*text) + "'" : "none";
}

// A record in one line: name, #id, type in four hexadecimal digits, value in quotes or "none"; then, where it
// says something, the write mask; for presentation data their fields, each where it says something.
inline std::string Show(const PlainValue& record) {
    std::string shown = Printable(record.name) + " #" + std::to_string(record.id) + " " + Hex(record.type) +
                        " " + Quoted(record.value);
    if (record.mask != 0) shown += " mask " + Hex(record.mask);
    return shown;
}

inline std::string Show(const PlainUi& record) {
    std::string shown =
        Show(static_cast<const PlainValue&>(record)) + " control " + std::to_string(record.control);
    if (record.index != 0) shown += " index " + std::to_string(record.index);
    if (record.owner != 0) shown += " owner " + std::to_string(record.owner);
    if (record.comment) shown += " comment " + Quoted(record.comment);
    if (record.userName) shown += " user " + Quoted(record.userName);
    return shown;
}

inline std::string Show(const TableEntryValueInfoStruct& record) {
    return Show(Plain(record));
}
inline std::string Show(const TableEntryUInfoStruct& record) {
    return Show(Plain(record));
}

// At most 259 units of the text, and zeros.
inline void SetName(TableEntryBaseInfoStruct& record, const WideText& name) {
    std::fill(std::begin(record.name), std::end(record.name), wchar16{0});
    std::copy_n(name.begin(), std::min<std::size_t>(name.size(), 259), std::begin(record.name));
}

inline TableEntryBaseInfoStruct NameRecord(const wchar16* name) {
    TableEntryBaseInfoStruct record;
    SetName(record, name);
    return record;
}

// A null value is one that was never set.
inline TableEntryValueInfoStruct ValueRecord(const wchar16* name, std::uint16_t type = 0,
                                             const char* value = nullptr, std::uint32_t id = 0,
                                             std::uint16_t mask = 0) {
    TableEntryValueInfoStruct record;
    SetName(record, name);
    record.type = type;
    record.id = id;
    record.writeMask = mask;
    EXPECT_TRUE(record.SetVal(value));
    return record;
}

inline TableEntryUInfoStruct UiRecord(const wchar16* name, std::uint16_t control, std::uint16_t type = 0,
                                      const char* value = nullptr) {
    TableEntryUInfoStruct record;
    SetName(record, name);
    record.control = control;
    record.type = type;
    EXPECT_TRUE(record.SetVal(value));
    return record;
}

// ---- Handles
// -------------------------------------------------------------------------------------------------

// A table handle of either kind that is disposed at the end of its scope; may hold null.
class Table {
  public:
    explicit Table(void* handle) : handle_(handle) {}
    ~Table() { xmlTableDispose(&handle_); }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    operator void*() const { return handle_; }

  private:
    void* handle_;
};

// The 7-bit text of a wide file, without its closing zero unit.
inline std::string WideFileText(std::string_view bytes) {
    std::string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        EXPECT_EQ(bytes[i + 1], '\0');
        text += bytes[i];
    }
    EXPECT_TRUE(bytes.size() % 2 == 0 && text.ends_with('\0'));
    return text.substr(0, text.size() - 1);
}

// The text that a save of the handle puts into its file.
inline std::string SavedText(void* handle) {
    const ScratchFile file;
    EXPECT_TRUE(xmlTableSave(handle, file.Name(), 0, 0));
    return WideFileText(file.Bytes());
}

inline Table LoadTable(std::string_view text, const wchar16* name = nullptr) {
    return Table(xmlTableNew(nullptr, text.data(), static_cast<std::int32_t>(text.size()), name, 0, 0, 0, 0));
}

// An element "Table" with the name T, these further attributes and these elements in it.
inline std::string TableElement(std::string_view entries, std::string_view attributes = {}) {
    std::string text("<Table name=\"T\"");
    if (!attributes.empty()) text.append(" ").append(attributes);
    return text.append(">").append(entries).append("</Table>");
}

// The two kinds of handles, each over a table named T: of a table document, and of a section.
class OwnTable {
  public:
    explicit OwnTable(std::string_view entries, std::string_view attributes = {})
        : handle_(LoadTable(TableElement(entries, attributes))) {
        EXPECT_NE(static_cast<void*>(handle_), nullptr);
    }

    operator void*() const { return handle_; }
    // The written form of the "Table" element, with a line feed after it.
    std::string Text() const { return SavedText(handle_); }

  private:
    Table handle_;
};

class SectionTable {
  public:
    explicit SectionTable(std::string_view entries, std::string_view attributes = {})
        : profile_(LoadSections(TableElement(entries, attributes))),
          handle_(xmlGetProfileSection(profile_, "T"_w, nullptr)) {
        EXPECT_NE(static_cast<void*>(handle_), nullptr);
    }

    operator void*() const { return handle_; }
    std::string Text() const { return SavedText(handle_) + "\n"; }

  private:
    Profile profile_;
    Table handle_;
};

using TableKinds = testing::Types<OwnTable, SectionTable>;

struct TableKindNames {
    template <class Kind>
    static std::string GetName(int) {
        return std::is_same_v<Kind, OwnTable> ? "Table" : "Section";
    }
};

// The written form of a "Table" element with these further attributes and these lines between its tags.
inline std::string TableText(std::string_view attributes, std::initializer_list<std::string_view> lines) {
    const std::string start(TableElement({}, attributes), 0, TableElement({}, attributes).size() - 8);
    return Lines({start}) + Lines(lines) + Lines({"</Table>"});
}
inline std::string TableText(std::initializer_list<std::string_view> lines) {
    return TableText({}, lines);
}

// ---- Reading in one line
// -------------------------------------------------------------------------------------

inline constexpr std::uint64_t kByName = ~std::uint64_t{0};

// The first entry of that name through the value record alone, through the presentation record of a read of
// both, or "none".
inline std::string GetValue(void* handle, const wchar16* name) {
    TableEntryValueInfoStruct value = ValueRecord(name);
    return xmlTableEntryGet(handle, nullptr, &value, nullptr) ? Show(value) : "none";
}
inline std::string GetUi(void* handle, const wchar16* name) {
    TableEntryValueInfoStruct value = ValueRecord(name);
    TableEntryUInfoStruct ui;
    return xmlTableEntryGet(handle, nullptr, &value, &ui) ? Show(ui) : "none";
}

// The entries of an enumeration, each in the one line of its value record; ends at the first result of false.
inline std::vector<std::string> Enumerated(void* handle) {
    std::vector<std::string> entries;
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    while (xmlTableEntryGet(handle, &position, &value, nullptr))
        entries.push_back(Show(value));
    return entries;
}

// A position on the entry with this number in document order, counted from 0.
inline std::uint64_t PositionOn(void* handle, int number) {
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    for (int i = 0; i <= number; ++i)
        xmlTableEntryGet(handle, &position, &value, nullptr);
    EXPECT_NE(position, 0U);
    return position;
}

// ---- Documents and calls of several tests

inline constexpr std::string_view kTableA = "<Table name=\"A\"/>";
inline constexpr std::string_view kOwnValue =
    "<Var name=\"a\" id=\"1\" type=\"long\" array=\"\"><Value>1</Value></Var>";
inline constexpr std::string_view kUiValue =
    "<Var name=\"a\" type=\"long\" array=\"\"><UI control=\"num\" prov_index=\"7\" prov_owner=\"dwg\" "
    "name=\"n\" access=\"hidden\" flags=\"00FF\" regen=\"r\" minVal=\"0\" maxVal=\"9\">"
    "<Comment>c</Comment><Value>1</Value></UI></Var>";

inline bool Add(void* handle, TableEntryValueInfoStruct value, std::int32_t mark = 0,
                std::int32_t update = 0) {
    return xmlTableEntryAdd(handle, nullptr, &value, nullptr, mark, update);
}

inline bool SetByName(void* handle, TableEntryValueInfoStruct value, std::int32_t force = 0,
                      std::int32_t mark = 0) {
    return xmlTableEntrySet(handle, nullptr, &value, nullptr, force, mark);
}

}  // namespace host

#endif
