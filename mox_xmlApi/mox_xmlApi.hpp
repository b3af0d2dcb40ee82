// The C++ front of mox_xmlApi: the exports of mox_xmlApi.h as classes. Header-only, C++17 and later.
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
// A program links mox_xmlApi and mox_dbtInfo. The classes:
//
//   mox::Profile   a settings document: sections with keys
//   mox::Section   one section of a profile        } both are mox::EntryTable: front/entry_table.hpp has what
//   mox::Table     a table document: one table     } can be done with entries
//   mox::Entry     an entry, or a key, as a plain value with its presentation data: front/entry.hpp
//   mox::Text      an argument that is a text, made by itself from any kind of string: front/text.hpp
//
// Texts
//   Arguments are UTF-8 (std::string, std::string_view, "...") or UTF-16 (std::u16string, std::u16string_view, u"...",
//   on Windows L"..." as well). Paths are such texts, too: UTF-8 on every system, path.u16string() of a
//   std::filesystem::path. Results are UTF-8; a function or type whose name ends with 16 gives std::u16string. Every
//   16-bit text survives the way through UTF-8 and back, lone surrogates included; a call with bytes that are no UTF-8,
//   or with a zero unit, fails and does nothing (front/text.hpp has the details). Texts of any length are read whole.
//
// Failure
//   What may be missing comes as a std::optional, what may fail returns a bool, and nothing of this front throws an
//   exception of its own. Those of the library pass through, std::bad_alloc above all (see mox_xmlApi.h).
//
// Ownership
//   Profile, Section and Table own their handles and can be moved, not copied. A Section keeps the document of its
//   profile alive, and a range its table, so that any order of destruction is good. What a function returns as a value
//   is the program's own. An object that was moved from is empty: it converts to false, finds nothing and writes
//   nothing.
//
// Threads
//   A profile with all its sections and their ranges belongs to one thread at a time; so does a table.
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

#include "mox_xmlApi/front/entry.hpp"
#include "mox_xmlApi/front/entry_table.hpp"
#include "mox_xmlApi/front/replace_file.hpp"
#include "mox_xmlApi/front/section_list.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox {

// How the file of a profile is stored: narrow, one byte per unit, which keeps 7-bit text only and damages other text
// without a word; or wide, two bytes per unit, which keeps everything.
enum class Form { Narrow, Wide };

// What a save of a profile writes: the document, or an export of the entries' presentation data or of their values.
// See xmlProfileSave.
enum class Content : std::uint32_t { Document = 0, Ui = 1, Values = 2 };

// What a new section or table is to carry besides its name. The library acts on none of it.
struct TableOptions {
    bool editable = false;
    std::uint32_t firstId = 0;
    std::uint16_t type = 0;
};

// One section of a profile, as the table of its keys. Once the section was removed from the profile, its Section may
// only be destroyed or assigned to.
class Section : public EntryTable {
  public:
    // The name that it had when it was found; empty for an element that has none.
    std::string name() const { return front::StringOf<std::string>(name_); }
    std::u16string name16() const { return front::StringOf<std::u16string>(name_); }

    // Whether it was marked editable when it was found.
    bool isEditable() const noexcept { return isEditable_; }

  private:
    friend class Profile;

    explicit Section(front::FoundSection&& found)
        : EntryTable(std::move(found.handle)), name_(std::move(found.name)), isEditable_(found.isEditable) {}

    front::Units name_;
    bool isEditable_;
};

// A settings document. A key is known by its section's name and its own, of several with one name the first is meant;
// an empty key is not taken (the exports would take another one for it).
class Profile {
  public:
    // A new document without sections. It is wide.
    Profile() : Profile(xmlProfileNew(nullptr, nullptr, 0, 0), Form::Wide) {}

    Profile(Profile&&) noexcept = default;
    Profile& operator=(Profile&&) noexcept = default;
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;
    ~Profile() = default;

    // Opens a file. Nothing when it cannot be read or does not parse. Without a form, the one that it has is found out.
    static std::optional<Profile> open(const Text& path) {
        // Narrow text makes no sense as a wide one, but the start of a wide one could pass as an empty narrow one.
        auto profile = open(path, Form::Wide);
        return profile.has_value() ? std::move(profile) : open(path, Form::Narrow);
    }
    static std::optional<Profile> open(const Text& path, Form form) {
        if (!path.isValid()) return std::nullopt;
        return Opened(xmlProfileNew(path.c_str(), nullptr, 0, form == Form::Wide ? 1 : 0), form);
    }

    // Opens a document from 7-bit text, up to its first zero byte. Nothing when it does not parse. It is narrow.
    static std::optional<Profile> parse(std::string_view text) {
        const std::string copy(text);
        if (copy.c_str()[0] == '\0') return Opened(xmlProfileNew(nullptr, "\n", 1, 0), Form::Narrow);
        return Opened(xmlProfileNew(nullptr, copy.c_str(), -1, 0), Form::Narrow);
    }

    // False for an object that was moved from.
    explicit operator bool() const noexcept { return handle_ != nullptr; }

    // For calls of the exports themselves. It stays this object's, and must not be disposed.
    moxSettings* handle() const noexcept { return handle_.get(); }

    // The form of the file that it was opened from, in which save writes unless told otherwise.
    Form form() const noexcept { return form_; }

    // ---- reading keys

    // The value as text; nothing when there is no such key. An empty value is given as the empty text. As in every
    // read, a value that is empty is taken from the presentation data, and an entry without a known type is no key.
    std::optional<std::string> getString(const Text& section, const Text& key) const {
        return Read<std::string>(section, key);
    }
    std::optional<std::u16string> getString16(const Text& section, const Text& key) const {
        return Read<std::u16string>(section, key);
    }

    // The leading decimal digits of the value, after white space and one sign, cut to the range of 32 bits; 0 when
    // there are none. Nothing when there is no such key or its value is empty.
    std::optional<std::int32_t> getInt(const Text& section, const Text& key) const {
        if (!IsKey(section, key)) return std::nullopt;
        // Only for a value that is the default itself does a second default have to tell the two apart.
        constexpr std::int32_t kRareNumber = -2147480809;
        const std::int32_t value = xmlGetProfileInt(handle(), section.c_str(), key.c_str(), kRareNumber);
        if (value != kRareNumber) return value;
        const bool isDefault = xmlGetProfileInt(handle(), section.c_str(), key.c_str(), 0) == 0;
        return isDefault ? std::nullopt : std::optional(value);
    }

    // The bytes that the value gives in pairs of hexadecimal digits, up to the first pair that is none. Nothing when
    // there is no such key.
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

    // ---- writing keys. A missing section is made, a missing key added to its end with the type "string"; of an
    // existing key the value alone changes, and a mark is taken away. Each returns whether the document has the value
    // now.

    // NOLINTBEGIN(readability-make-member-function-const): they change the document
    bool setString(const Text& section, const Text& key, const Text& value) {
        return IsKey(section, key) && value.isValid() &&
               xmlWriteProfileString(handle(), section.c_str(), key.c_str(), value.c_str()) == 1;
    }

    bool setInt(const Text& section, const Text& key, std::int32_t value) {
        return IsKey(section, key) && xmlWriteProfileInt(handle(), section.c_str(), key.c_str(), value) == 1;
    }

    // Two upper-case hexadecimal digits per byte. `data` may be null when size is 0.
    bool setData(const Text& section, const Text& key, const void* data, std::size_t size) {
        if (!IsKey(section, key) || size > (std::numeric_limits<std::uint32_t>::max)()) return false;
        const void* const bytes = size == 0 ? "" : data;  // null would mean to remove the key
        return xmlWriteProfileData(handle(), section.c_str(), key.c_str(), bytes,
                                   static_cast<std::uint32_t>(size)) == 1;
    }
    bool setData(const Text& section, const Text& key, const std::vector<std::uint8_t>& bytes) {
        return setData(section, key, bytes.data(), bytes.size());
    }

    // Removes every entry of that name from the section. Returns whether there was one.
    bool remove(const Text& section, const Text& key) {
        return section.isValid() && key.isValid() &&
               xmlWriteProfileString(handle(), section.c_str(), key.c_str(), nullptr) == 1;
    }

    // NOLINTEND(readability-make-member-function-const)

    // ---- sections

    // The section of that name; nothing when there is none.
    std::optional<Section> findSection(const Text& name) const {
        if (!name.isValid()) return std::nullopt;
        std::uint32_t editable = 0;
        void* const found = xmlGetProfileSection(handle(), name.c_str(), &editable);
        return Found(found, name, editable != 0);
    }

    // Makes a section, or gives an existing one the first id and the type; that one stays editable or not as it is.
    // Nothing when it cannot be made.
    std::optional<Section> makeSection(const Text& name, const TableOptions& options = {}) {
        if (!name.isValid()) return std::nullopt;
        void* const made = xmlWriteProfileSection(handle(), name.c_str(), options.editable ? 1 : 0,
                                                  options.firstId, options.type, nullptr);
        return Found(made, name, false).has_value() ? findSection(name) : std::nullopt;
    }

    // NOLINTBEGIN(readability-make-member-function-const): it changes the document

    // Removes the section with all that it holds. Returns whether there was one.
    bool removeSection(const Text& name) {
        return name.isValid() && xmlWriteProfileString(handle(), name.c_str(), nullptr, nullptr) == 1;
    }

    // NOLINTEND(readability-make-member-function-const)

    // for (const mox::Section& section : profile.sections()). The sections in document order; every element under the
    // root counts, also one that is no section and that findSection does not find. All are found before the first is
    // given: the loop may be left at any time, and may add and remove sections.
    std::vector<Section> sections() const {
        std::vector<Section> sections;
        for (front::FoundSection& found : front::FindSections(handle_))
            sections.push_back(Section(std::move(found)));
        return sections;
    }

    // ---- saving. A plain save of the document takes the marks of its sections and entries away, in memory, too; see
    // xmlProfileSave.

    // Writes to a file, which is created or overwritten. A failure may leave it incomplete.
    bool save(const Text& path) const { return save(path, form_); }
    bool save(const Text& path, Form form, Content content = Content::Document) const {
        return path.isValid() && Write(path.c_str(), form, content);
    }

    // The same, but at any time the file is the old or the new one, whole. See front/replace_file.hpp.
    bool saveReplacing(const Text& path) const { return saveReplacing(path, form_); }
    bool saveReplacing(const Text& path, Form form, Content content = Content::Document) const {
        return front::ReplaceWholeFile(
            path, [&](const wchar16* temporary) { return Write(temporary, form, content); });
    }

  private:
    // Values that are shorter than this, in units or bytes, are read with one look-up.
    static constexpr std::uint32_t kReadSize = 256;

    static void Dispose(moxSettings* handle) { xmlProfileDispose(&handle); }

    Profile(moxSettings* handle, Form form) : handle_(handle, Dispose), form_(form) {}

    static std::optional<Profile> Opened(moxSettings* handle, Form form) {
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
    // was read, which is 0 for an empty value; nothing if there is no such key.
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
        const std::uint32_t wholeLength = Length(section, key);  // less than 2^31, as of every text
        front::Units text(std::size_t{wholeLength} + 1, wchar16{0});
        xmlGetProfileString(handle(), section.c_str(), key.c_str(), text.data(), wholeLength + 1, nullptr);
        text.resize(wholeLength);
        return front::StringOf<String>(text);
    }

    std::optional<Section> Found(void* handle, const Text& name, bool isEditable) const {
        if (handle == nullptr) return std::nullopt;
        front::FoundSection section = front::OwnSection(handle_, handle);
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

    // Opens a file. Nothing when it cannot be read, does not parse, or has a table of another name; the empty name
    // accepts any. A document without a table gets an empty one of that name.
    static std::optional<Table> open(const Text& path, const Text& name = "") {
        if (!path.isValid() || !name.isValid()) return std::nullopt;
        return Opened(xmlTableNew(path.c_str(), nullptr, 0, name.c_str(), 0, 0, 0, 0));
    }

    // Opens a document from 7-bit text, up to its first zero byte. Otherwise as open.
    static std::optional<Table> parse(std::string_view text, const Text& name = "") {
        if (!name.isValid()) return std::nullopt;
        const std::string copy(text);
        const char* const source =
            copy.c_str()[0] == '\0' ? "\n" : copy.c_str();  // no text would mean a new document
        return Opened(xmlTableNew(nullptr, source, -1, name.c_str(), 0, 0, 0, 0));
    }

  private:
    static void Dispose(void* handle) { xmlTableDispose(&handle); }

    explicit Table(void* handle) : EntryTable(front::TableHandle(handle, Dispose)) {}

    static std::optional<Table> Opened(void* handle) {
        if (handle == nullptr) return std::nullopt;
        return Table(handle);
    }
};

}  // namespace mox

#endif
