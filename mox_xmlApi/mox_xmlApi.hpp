// The C++ front of mox_xmlApi: the exports of mox_xmlApi.h as classes. C++17 and later.
//
//     #include <iostream>
//     #include "mox_xmlApi/mox_xmlApi.hpp"
//
//     int main() {
//         auto settings = mox::Profile::open("camera.xml");
//         if (!settings) return 1;
//         std::cout << settings->getInt("Camera", "Exposure").value_or(0) << "\n";
//         settings->setString("Camera", "Owner", "Jürgen");
//         for (const mox::Section& section : settings->sections())
//             for (const mox::Entry& entry : section.entries())
//                 std::cout << section.name() << "/" << entry.name << " = " << entry.effectiveValue() << "\n";
//         return settings->saveReplacing("camera.xml", mox::Form::Wide) ? 0 : 1;
//     }
//
// A program links mox_front, a static library, and with it mox_xmlApi and mox_dbtInfo. The classes:
//
//   mox::Profile   a settings document: sections with keys
//   mox::Section   one section of a profile        } both derive from mox::EntryTable, which has the
//   mox::Table     a table document: one table     } functions for entries: front/entry_table.hpp
//   mox::Entry     an entry, or a key, as a plain value with its presentation data: front/entry.hpp
//   mox::Document  a whole file to read, with what no export returns: document/document.hpp
//   mox::Text      a text argument, converted implicitly from any kind of string: front/text.hpp
//
// mox::readFile and mox::replaceFile read and replace files as a whole: disk/read_file.hpp, disk/replace_file.hpp.
//
// Texts
//   Arguments are UTF-8 (std::string, std::string_view, "...") or UTF-16 (std::u16string, std::u16string_view, u"...",
//   on Windows L"..." as well). So are paths: UTF-8 on every system; of a std::filesystem::path, pass path.u16string().
//   Results are UTF-8; a function or type whose name ends in 16 has std::u16string. Every 16-bit text can be converted
//   to UTF-8 and back without loss, also one with unpaired surrogates. A call with bytes that are not UTF-8, or with a
//   text that contains a zero unit, fails and does nothing (front/text.hpp has the details). Texts of any length are
//   read whole.
//
// Failure
//   A function returns std::optional if its result may be missing, and bool if it may fail. The front throws no
//   exceptions of its own. Those of the library, such as std::bad_alloc, pass through (see mox_xmlApi.h).
//
// Ownership
//   Profile, Section and Table own their handles and can be moved but not copied. A Section keeps the document of its
//   profile alive, and a range keeps its table alive, so they can be destroyed in any order. What a function returns by
//   value is a copy. An object that was moved from is empty: it converts to false, finds nothing and writes nothing.
//
// Threads
//   A profile with all its sections and their ranges may be used by one thread at a time; so may a table with its
//   ranges.
#ifndef MOX_XMLAPI_MOX_XMLAPI_HPP
#define MOX_XMLAPI_MOX_XMLAPI_HPP

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/disk/replace_file.hpp"
#include "mox_xmlApi/document/diagnose.hpp"
#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/document/encoding.hpp"
#include "mox_xmlApi/front/entry.hpp"
#include "mox_xmlApi/front/entry_table.hpp"
#include "mox_xmlApi/front/form.hpp"
#include "mox_xmlApi/front/replacing_save.hpp"
#include "mox_xmlApi/front/section_list.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox {

// What a save of a profile writes: the document, or an export of the entries' presentation data or of their values.
// See xmlProfileSave.
enum class Content : std::uint32_t { Document = 0, Ui = 1, Values = 2 };

// The attributes of a new section or table besides its name. No function acts on them.
struct TableOptions {
    bool editable = false;
    std::uint32_t firstId = 0;
    std::uint16_t type = 0;
};

// One section of a profile, as the table of its keys. After the section has been removed from the profile, a Section
// can only be destroyed or assigned to.
class Section : public EntryTable {
  public:
    // The name that the section had when this object was made; empty for an element without a name.
    std::string name() const { return front::StringOf<std::string>(name_); }
    std::u16string name16() const { return front::StringOf<std::u16string>(name_); }

    // Whether the section was editable when this object was made.
    bool isEditable() const noexcept { return isEditable_; }

  private:
    friend class Profile;

    explicit Section(front::FoundSection&& found)
        : EntryTable(std::move(found.handle)), name_(std::move(found.name)), isEditable_(found.isEditable) {}

    front::Units name_;
    bool isEditable_;
};

// A settings document. A key is identified by its section's name and its own; if several have the same name, the first
// is used. An empty key is refused, because the exports would use the first key of the section for it.
class Profile {
  public:
    // A new document without sections. Its form is wide.
    Profile() : Profile(xmlProfileNew(nullptr, nullptr, 0, 0), Form::Wide) {}

    Profile(Profile&&) noexcept = default;
    Profile& operator=(Profile&&) noexcept = default;
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;
    ~Profile() = default;

    // Opens a file; nullopt if it cannot be read or does not parse. Without a form, the form is detected.
    static std::optional<Profile> open(const Text& path) {
        // Wide is tried first: narrow markup does not parse as wide, but the start of a wide file may parse as narrow.
        auto profile = open(path, Form::Wide);
        return profile.has_value() ? std::move(profile) : open(path, Form::Narrow);
    }
    static std::optional<Profile> open(const Text& path, Form form) {
        if (!path.isValid()) return std::nullopt;
        return FromHandle(xmlProfileNew(path.c_str(), nullptr, 0, form == Form::Wide ? 1 : 0), form);
    }

    // Opens a document from 7-bit text, up to its first zero byte; nullopt if it does not parse. Its form is narrow.
    static std::optional<Profile> parse(std::string_view text) {
        const std::string copy(text);
        if (copy.c_str()[0] == '\0') return FromHandle(xmlProfileNew(nullptr, "\n", 1, 0), Form::Narrow);
        return FromHandle(xmlProfileNew(nullptr, copy.c_str(), -1, 0), Form::Narrow);
    }

    // False if the object was moved from.
    explicit operator bool() const noexcept { return handle_ != nullptr; }

    // The handle, for calling the exports directly. This object keeps it: it must not be disposed.
    moxSettings* handle() const noexcept { return handle_.get(); }

    // The form that the document was opened with. save and saveReplacing use it if they are given none.
    Form form() const noexcept { return form_; }

    // ---- reading keys

    // Returns the value as text, which may be empty; nullopt if there is no such key. As in every read, an empty value
    // is replaced by that of the presentation data, and an entry without a known type counts as missing.
    std::optional<std::string> getString(const Text& section, const Text& key) const {
        return Read<std::string>(section, key);
    }
    std::optional<std::u16string> getString16(const Text& section, const Text& key) const {
        return Read<std::u16string>(section, key);
    }

    // Returns the leading decimal digits of the value, after white space and an optional sign, limited to the range of
    // 32 bits; 0 if there are none. nullopt if there is no such key or its value is empty.
    std::optional<std::int32_t> getInt(const Text& section, const Text& key) const {
        if (!IsKey(section, key)) return std::nullopt;
        // The default is an unlikely value. If it is returned, a second call with another default tells the two apart.
        constexpr std::int32_t kRareNumber = -2147480809;
        const std::int32_t value = xmlGetProfileInt(handle(), section.c_str(), key.c_str(), kRareNumber);
        if (value != kRareNumber) return value;
        const bool isDefault = xmlGetProfileInt(handle(), section.c_str(), key.c_str(), 0) == 0;
        return isDefault ? std::nullopt : std::optional(value);
    }

    // Returns one byte for every two hexadecimal digits of the value, up to the first pair that is not hexadecimal;
    // nullopt if there is no such key.
    std::optional<std::vector<std::uint8_t>> getData(const Text& section, const Text& key) const {
        if (!IsKey(section, key)) return std::nullopt;
        std::uint8_t buffer[kReadSize];
        const std::uint32_t size =
            xmlGetProfileData(handle(), section.c_str(), key.c_str(), buffer, kReadSize);
        if (size == 0 && !contains(section, key)) return std::nullopt;
        if (size < kReadSize) return std::vector<std::uint8_t>(buffer, buffer + size);
        std::vector<std::uint8_t> bytes(Length(section, key) / 2);
        bytes.resize(xmlGetProfileData(handle(), section.c_str(), key.c_str(), bytes.data(),
                                       static_cast<std::uint32_t>(bytes.size())));
        return bytes;
    }

    // Whether there is such a key.
    bool contains(const Text& section, const Text& key) const {
        wchar16 start[2];
        return ReadStart(section, key, start).has_value();
    }

    // ---- writing keys. A missing section is created; a missing key is added as the section's last entry, with the
    // type "string". Of an existing key only the value changes, and its "eud" is removed. Each function returns whether
    // the value was written.

    // NOLINTBEGIN(readability-make-member-function-const): they change the document
    bool setString(const Text& section, const Text& key, const Text& value) {
        return IsKey(section, key) && value.isValid() &&
               xmlWriteProfileString(handle(), section.c_str(), key.c_str(), value.c_str()) == 1;
    }

    bool setInt(const Text& section, const Text& key, std::int32_t value) {
        return IsKey(section, key) && xmlWriteProfileInt(handle(), section.c_str(), key.c_str(), value) == 1;
    }

    // Writes two upper-case hexadecimal digits per byte. `data` may be null if size is 0.
    bool setData(const Text& section, const Text& key, const void* data, std::size_t size) {
        if (!IsKey(section, key) || size > (std::numeric_limits<std::uint32_t>::max)()) return false;
        const void* const bytes = size == 0 ? "" : data;  // null would remove the key
        return xmlWriteProfileData(handle(), section.c_str(), key.c_str(), bytes,
                                   static_cast<std::uint32_t>(size)) == 1;
    }
    bool setData(const Text& section, const Text& key, const std::vector<std::uint8_t>& bytes) {
        return setData(section, key, bytes.data(), bytes.size());
    }

    // Removes every entry of that name from the section. Returns whether an entry was removed.
    bool remove(const Text& section, const Text& key) {
        return section.isValid() && key.isValid() &&
               xmlWriteProfileString(handle(), section.c_str(), key.c_str(), nullptr) == 1;
    }

    // NOLINTEND(readability-make-member-function-const)

    // ---- sections

    // The section of that name; nullopt if there is none.
    std::optional<Section> findSection(const Text& name) const {
        if (!name.isValid()) return std::nullopt;
        std::uint32_t editable = 0;
        void* const found = xmlGetProfileSection(handle(), name.c_str(), &editable);
        return SectionOf(found, name, editable != 0);
    }

    // Creates a section, or gives an existing one the first id and the type of `options`; whether that one is editable
    // does not change. nullopt if the section cannot be created.
    std::optional<Section> makeSection(const Text& name, const TableOptions& options = {}) {
        if (!name.isValid()) return std::nullopt;
        void* const made = xmlWriteProfileSection(handle(), name.c_str(), options.editable ? 1 : 0,
                                                  options.firstId, options.type, nullptr);
        return SectionOf(made, name, false).has_value() ? findSection(name) : std::nullopt;
    }

    // NOLINTBEGIN(readability-make-member-function-const): it changes the document

    // Removes the section with everything in it. Returns whether there was one.
    bool removeSection(const Text& name) {
        return name.isValid() && xmlWriteProfileString(handle(), name.c_str(), nullptr, nullptr) == 1;
    }

    // NOLINTEND(readability-make-member-function-const)

    // The sections in document order: for (const mox::Section& section : profile.sections()). Every element under the
    // root counts, even one that is not a section and that findSection would never find. The list is complete before it
    // is returned: the loop can be left at any time, and may add and remove sections.
    std::vector<Section> sections() const {
        std::vector<Section> sections;
        for (front::FoundSection& found : front::FindSections(handle_))
            sections.push_back(Section(std::move(found)));
        return sections;
    }

    // ---- saving. Saving with Content::Document removes "eud" from all sections and entries, in memory as well; see
    // xmlProfileSave.

    // Writes to a file, which is created or overwritten in place. Returns false on failure, which may leave the file
    // incomplete.
    bool save(const Text& path) const { return save(path, form_); }
    bool save(const Text& path, Form form, Content content = Content::Document) const {
        return path.isValid() && Write(path.c_str(), form, content);
    }

    // The same, but replaces the file atomically: a failure leaves the old file. See disk/replace_file.hpp.
    bool saveReplacing(const Text& path) const { return saveReplacing(path, form_); }
    bool saveReplacing(const Text& path, Form form, Content content = Content::Document) const {
        return front::ReplaceBySave(
            path, [&](const wchar16* scratch) { return Write(scratch, form, content); });
    }

  private:
    // The size of the buffer for the first look-up, in units or bytes. Only a value that fills it takes another one.
    static constexpr std::uint32_t kReadSize = 256;

    static void Dispose(moxSettings* handle) { xmlProfileDispose(&handle); }

    Profile(moxSettings* handle, Form form) : handle_(handle, Dispose), form_(form) {}

    static std::optional<Profile> FromHandle(moxSettings* handle, Form form) {
        if (handle == nullptr) return std::nullopt;
        return Profile(handle, form);
    }

    static bool IsKey(const Text& section, const Text& key) noexcept {
        return section.isValid() && key.isValid() && !key.units().empty();
    }

    std::uint32_t Length(const Text& section, const Text& key) const {
        return xmlGetProfileString(handle(), section.c_str(), key.c_str(), nullptr, 0, nullptr);
    }

    // Reads the start of a value, as much as fits into the buffer with a zero unit after it. Returns the length of what
    // was read, which is 0 for an empty value; nullopt if there is no such key.
    template <std::uint32_t Size>
    std::optional<std::uint32_t> ReadStart(const Text& section, const Text& key,
                                           wchar16 (&buffer)[Size]) const {
        static_assert(Size >= 2, "room for a unit and the zero unit");
        if (!IsKey(section, key)) return std::nullopt;
        const std::uint32_t length =
            xmlGetProfileString(handle(), section.c_str(), key.c_str(), buffer, Size, nullptr);
        if (length != 0) return length;
        // The value is empty or missing. Of a missing one the export returns the length of the default.
        constexpr wchar16 kDefault[] = {'?', 0};
        const bool isMissing =
            xmlGetProfileString(handle(), section.c_str(), key.c_str(), buffer, Size, kDefault) != 0;
        return isMissing ? std::nullopt : std::optional(length);
    }

    template <class String>
    std::optional<String> Read(const Text& section, const Text& key) const {
        wchar16 start[kReadSize];
        const std::optional<std::uint32_t> length = ReadStart(section, key, start);
        if (!length.has_value()) return std::nullopt;
        if (*length + 1 < kReadSize) return front::StringOf<String>(front::UnitsView(start, *length));
        const std::uint32_t wholeLength = Length(section, key);  // less than 2^31, like that of every text
        front::Units text(std::size_t{wholeLength} + 1, wchar16{0});
        xmlGetProfileString(handle(), section.c_str(), key.c_str(), text.data(), wholeLength + 1, nullptr);
        text.resize(wholeLength);
        return front::StringOf<String>(text);
    }

    std::optional<Section> SectionOf(void* handle, const Text& name, bool isEditable) const {
        if (handle == nullptr) return std::nullopt;
        front::FoundSection section = front::AdoptSection(handle_, handle);
        section.name = name.units();
        section.isEditable = isEditable;
        return Section(std::move(section));
    }

    bool Write(const wchar16* path, Form form, Content content) const {
        return xmlProfileSave(handle(), path, static_cast<std::uint32_t>(content), 0,
                              form == Form::Wide ? 1 : 0) == 1;
    }

    std::shared_ptr<moxSettings> handle_;  // shared with the sections, which must be released before it
    Form form_;
};

// A table document. Its file is always wide.
class Table : public EntryTable {
  public:
    // A new document with an empty table.
    static Table create(const Text& name, const TableOptions& options = {}) {
        return Table(xmlTableNew(nullptr, nullptr, 0, name.c_str(), options.editable ? 1 : 0, options.firstId,
                                 options.type, 1));
    }

    // Opens a file; nullopt if it cannot be read, does not parse, or has a table of another name. The empty name
    // accepts any. A document without a table gets an empty one of that name in memory.
    static std::optional<Table> open(const Text& path, const Text& name = "") {
        if (!path.isValid() || !name.isValid()) return std::nullopt;
        return FromHandle(xmlTableNew(path.c_str(), nullptr, 0, name.c_str(), 0, 0, 0, 0));
    }

    // Opens a document from 7-bit text, up to its first zero byte; otherwise like open.
    static std::optional<Table> parse(std::string_view text, const Text& name = "") {
        if (!name.isValid()) return std::nullopt;
        const std::string copy(text);
        const char* const source =
            copy.c_str()[0] == '\0' ? "\n" : copy.c_str();  // an empty text would mean a new document
        return FromHandle(xmlTableNew(nullptr, source, -1, name.c_str(), 0, 0, 0, 0));
    }

  private:
    static void Dispose(void* handle) { xmlTableDispose(&handle); }

    explicit Table(void* handle) : EntryTable(front::TableHandle(handle, Dispose)) {}

    static std::optional<Table> FromHandle(void* handle) {
        if (handle == nullptr) return std::nullopt;
        return Table(handle);
    }
};

}  // namespace mox

#endif
