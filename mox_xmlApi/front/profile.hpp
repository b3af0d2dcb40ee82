// Profile, a settings document.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_PROFILE_HPP
#define MOX_XMLAPI_FRONT_PROFILE_HPP

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/document/encoding.hpp"
#include "mox_xmlApi/document/inspect.hpp"
#include "mox_xmlApi/front/document_file.hpp"
#include "mox_xmlApi/front/file_options.hpp"
#include "mox_xmlApi/front/form.hpp"
#include "mox_xmlApi/front/key_access.hpp"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/section.hpp"
#include "mox_xmlApi/front/section_list.hpp"
#include "mox_xmlApi/front/table_options.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/typed_value.hpp"
#include "mox_xmlApi/front/write_rules.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox {

// A settings document. A key is identified by its section's name and its own; if several have the same name, the first
// is used. An empty key is refused, because the exports would use the first key of the section for it; only remove accepts
// one, which means the entries without a name.
//
// A function that takes a Problem and fails says there why. mox_xmlApi.hpp has what holds for all writes.
class Profile {
  public:
    // A new document without sections. Its form is wide.
    Profile() : Profile(xmlProfileNew(nullptr, nullptr, 0, 0), Form::Wide) {}

    Profile(Profile&&) noexcept = default;
    Profile& operator=(Profile&&) noexcept = default;
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;
    ~Profile() = default;

    // Opens a file. nullopt if it cannot be read (NotFound, NoPermission, NotRegularFile, TooLarge, ReadFailed), does not
    // parse (Syntax, with the place and what was expected there), or is no settings document (WrongKind, Encoding); see
    // OpenOptions for opening such a file all the same. Pipes can be opened, too.
    static std::optional<Profile> open(const Text& path, const OpenOptions& options,
                                       Problem* problem = nullptr) {
        FileStamp stamp;
        const std::optional<std::string> bytes = readFile(path, &stamp, problem);
        if (!bytes.has_value()) return std::nullopt;
        std::optional<Profile> profile = parse(*bytes, options, problem);
        if (profile.has_value()) {
            profile->rules_->file = {front::Units(path.units()), stamp};
        } else {
            front::FailInFile(problem, path);
        }
        return profile;
    }
    static std::optional<Profile> open(const Text& path, Problem* problem = nullptr) {
        return open(path, OpenOptions(), problem);
    }
    static std::optional<Profile> open(const Text& path, Form form, Problem* problem = nullptr) {
        OpenOptions options;
        options.form = form;
        return open(path, options, problem);
    }

    // The same for bytes in memory, the whole content of a file.
    static std::optional<Profile> parse(std::string_view bytes, const OpenOptions& options,
                                        Problem* problem = nullptr) {
        front::DocumentFindings findings;
        if (!front::RequireDocument(bytes, DocumentKind::Settings, options, findings, problem))
            return std::nullopt;
        const auto open = [](const wchar16* path, const char* buffer, std::int32_t size, std::int32_t wide) {
            return xmlProfileNew(path, buffer, size, wide);
        };
        moxSettings* const handle = front::OpenBytes(bytes, findings, open, problem);
        if (handle == nullptr) return std::nullopt;
        Profile profile(handle, findings.encoding.form);
        front::TakeFindings(findings, *profile.rules_);
        front::Succeed(problem);
        return profile;
    }
    static std::optional<Profile> parse(std::string_view bytes, Problem* problem = nullptr) {
        return parse(bytes, OpenOptions(), problem);
    }

    // Opens a settings document that is stored in another encoding; see importText. Its form is wide.
    static std::optional<Profile> import(std::string_view bytes, Encoding from, Problem* problem = nullptr) {
        const std::optional<std::string> wide = importText(bytes, from, Form::Wide, problem);
        if (!wide.has_value()) return std::nullopt;
        return parse(*wide, problem);
    }

    // False if the object was moved from.
    explicit operator bool() const noexcept { return handle_ != nullptr; }

    // The handle, for calling the exports directly. This object keeps it: it must not be disposed.
    moxSettings* handle() const noexcept { return handle_.get(); }

    // The form of the next save: at first the one that the document was opened with. save and saveReplacing use it if
    // they are given none, and writes keep to it. Changing it does not change what was written before.
    Form form() const noexcept { return rules_ == nullptr ? Form::Wide : rules_->form; }
    void setForm(Form form) noexcept {
        if (rules_ != nullptr) rules_->form = form;
    }

    // Whether writes skip the checks for texts that a file does not keep (NotKept), for parts that are there twice
    // (Ambiguous) and for empty values (NotStored). Keys without a known type are then written, too; entries without one
    // are still refused. Off by default. It also applies to the sections of the profile.
    void setLossy(bool isLossy) noexcept {
        if (rules_ != nullptr) rules_->isLossy = isLossy;
    }
    bool isLossy() const noexcept { return rules_ != nullptr && rules_->isLossy; }

    // ---- reading keys. A key that cannot be read is missing (NoSuchSection, NoSuchKey) or has no known type
    // (Unreadable). As in every read, an empty value is replaced by that of the presentation data.

    // Returns the value as a T: bool, an integer of 16, 32 or 64 bits, double, std::string, std::u16string or
    // std::vector<std::uint8_t>. nullopt if there is no such key, or if its value is none, such as "abc" or "3.7" for an
    // integer (WrongType), or "5000000000" for one of 32 bits (OutOfRange). front/typed_value.hpp has the texts.
    //
    //     std::optional<int> exposure = profile.get<int>("Camera", "Exposure");
    //     bool isArmed = profile.get<bool>("Trigger", "Armed", false);
    template <class T>
    std::optional<T> get(const Text& section, const Text& key) const {
        return Get<T>(section, key, nullptr);
    }
    template <class T, class ProblemPointer, class = std::enable_if_t<front::kIsProblem<ProblemPointer>>>
    std::optional<T> get(const Text& section, const Text& key, ProblemPointer problem) const {
        return Get<T>(section, key, problem);
    }

    // Like get, but returns `fallback` where get returns nullopt.
    template <class T>
    T get(const Text& section, const Text& key, front::Same<T> fallback) const {
        return getOr<T>(section, key, std::move(fallback));
    }
    template <class T>
    T getOr(const Text& section, const Text& key, front::Same<T> fallback, Problem* problem = nullptr) const {
        std::optional<T> value = Get<T>(section, key, problem);
        return value.has_value() ? std::move(*value) : std::move(fallback);
    }

    // Returns the value as text, which may be empty.
    std::optional<std::string> getString(const Text& section, const Text& key,
                                         Problem* problem = nullptr) const {
        return Get<std::string>(section, key, problem);
    }
    std::optional<std::u16string> getString16(const Text& section, const Text& key,
                                              Problem* problem = nullptr) const {
        return Get<std::u16string>(section, key, problem);
    }

    // Returns the leading decimal digits of the value, after white space and an optional sign, limited to the range of
    // 32 bits; 0 if there are none. nullopt if there is no such key or its value is empty (WrongType). get<int> is
    // strict.
    std::optional<std::int32_t> getInt(const Text& section, const Text& key,
                                       Problem* problem = nullptr) const {
        front::Succeed(problem);
        if (front::IsKey(section, key)) {
            // The default is an unlikely value. If it is returned, another default tells the two apart.
            constexpr std::int32_t kRareNumber = -2147480809;
            const std::int32_t value = xmlGetProfileInt(handle(), section.c_str(), key.c_str(), kRareNumber);
            if (value != kRareNumber) return value;
            if (xmlGetProfileInt(handle(), section.c_str(), key.c_str(), 0) != 0) return value;
        }
        const front::Target target = TargetOf(section, key, problem);
        if (problem != nullptr && contains(section, key))
            target.Refuse(Reason::WrongType, "the value is empty");
        else
            front::ExplainMissing(handle(), target, section, key);
        return std::nullopt;
    }

    // Returns one byte for every two hexadecimal digits of the value, up to the first pair that is not hexadecimal;
    // nullopt if there is no such key. get<std::vector<std::uint8_t>> is strict.
    std::optional<std::vector<std::uint8_t>> getData(const Text& section, const Text& key,
                                                     Problem* problem = nullptr) const {
        std::uint8_t buffer[front::kReadSize];
        const std::uint32_t size =
            front::IsKey(section, key)
                ? xmlGetProfileData(handle(), section.c_str(), key.c_str(), buffer, front::kReadSize)
                : 0;
        if (size == 0 && !contains(section, key)) {
            front::ExplainMissing(handle(), TargetOf(section, key, problem), section, key);
            return std::nullopt;
        }
        front::Succeed(problem);
        if (size < front::kReadSize) return std::vector<std::uint8_t>(buffer, buffer + size);
        std::vector<std::uint8_t> bytes(front::LengthOf(handle(), section, key) / 2);
        bytes.resize(xmlGetProfileData(handle(), section.c_str(), key.c_str(), bytes.data(),
                                       static_cast<std::uint32_t>(bytes.size())));
        return bytes;
    }

    // Whether there is such a key.
    bool contains(const Text& section, const Text& key) const {
        wchar16 start[2];
        return front::ReadStart(handle(), section, key, start).has_value();
    }

    // ---- writing keys. A missing section is created; a missing key is added as the section's last entry. Of an existing
    // key only the value changes, and its "eud" is removed. Each function returns whether the value was written; if not,
    // nothing was: an argument is invalid (InvalidText), the file does not keep a text (NotKept), the key has no known
    // type (Unreadable), it has two values (Ambiguous), or an empty value would be read as the one of the presentation
    // data (NotStored).

    // Writes a bool, an integer of 16, 32 or 64 bits, a double, a text, or a container of bytes, which get reads back. A
    // new key has the type that fits; front/typed_value.hpp has the list. A double has to be finite (OutOfRange).
    template <class T>
    bool set(const Text& section, const Text& key, const T& value, Problem* problem = nullptr) {
        if (!front::RequireHandle(handle(), problem)) return false;
        const front::Target target = TargetOf(section, key, problem);
        const std::optional<front::TypedText> text = front::TypedTextOf(value, target);
        return text.has_value() && front::WriteTypedKey(handle(), target, section, key, *text);
    }

    // NOLINTBEGIN(readability-make-member-function-const): they change the document

    // These three do what the exports do: a new key has the type "string".
    bool setString(const Text& section, const Text& key, const Text& value, Problem* problem = nullptr) {
        return front::RequireHandle(handle(), problem) &&
               front::WriteKey(handle(), TargetOf(section, key, problem), section, key, value);
    }

    // Takes the integers that fit into 32 bits with a sign; set takes others, too.
    template <class Integer>
    bool setInt(const Text& section, const Text& key, Integer value, Problem* problem = nullptr) {
        static_assert(front::kFitsInt32<Integer>,
                      "setInt takes integers that fit into 32 bits with a sign; use set for others");
        return setString(section, key, front::FormatInteger(value), problem);
    }

    // Writes two upper-case hexadecimal digits per byte. `data` may be null if size is 0; `bytes` is a container of
    // std::uint8_t or std::byte, such as std::vector, std::array or std::span.
    bool setData(const Text& section, const Text& key, const void* data, std::size_t size,
                 Problem* problem = nullptr) {
        if (size > (std::numeric_limits<std::uint32_t>::max)())  // what an export can take
            return TargetOf(section, key, problem).Refuse(Reason::OutOfRange, "there are too many bytes");
        return setString(section, key, front::HexOf(data, size), problem);
    }
    template <class Bytes, class = std::enable_if_t<front::kIsBytes<Bytes>>>
    bool setData(const Text& section, const Text& key, const Bytes& bytes, Problem* problem = nullptr) {
        return setData(section, key, bytes.data(), bytes.size(), problem);
    }

    // Removes every entry of that name from the section. Returns whether an entry was removed (NoSuchSection, NoSuchKey
    // if not).
    bool remove(const Text& section, const Text& key, Problem* problem = nullptr) {
        const front::Target target = TargetOf(section, key, problem);
        if (!front::RequireHandle(handle(), problem) || !target.RequireValid(section, "the section") ||
            !target.RequireValid(key, "the key"))
            return false;
        if (xmlWriteProfileString(handle(), section.c_str(), key.c_str(), nullptr) == 1) {
            rules_->troubled.Remove(section.units(), key.units());
            return front::Succeed(problem);
        }
        const bool hasSection = problem != nullptr && findSection(section).has_value();
        return front::RefuseState(target, hasSection ? front::KeyState::NoKey : front::KeyState::NoSection);
    }

    // Gives a key another name, in its place; see EntryTable::rename.
    bool rename(const Text& section, const Text& key, const Text& newKey, Problem* problem = nullptr) {
        if (!front::RequireHandle(handle(), problem)) return false;
        std::optional<Section> found = findSection(section, problem);
        return found.has_value() && found->rename(key, newKey, problem);
    }

    // NOLINTEND(readability-make-member-function-const)

    // ---- sections

    // The section of that name; nullopt if there is none (NoSuchSection).
    std::optional<Section> findSection(const Text& name, Problem* problem = nullptr) const {
        const front::Target target = TargetOf(name, problem);
        if (!target.RequireValid(name, "the section")) return std::nullopt;
        std::uint32_t editable = 0;
        void* const found = xmlGetProfileSection(handle(), name.c_str(), &editable);
        if (found == nullptr) {
            front::RefuseState(target, front::KeyState::NoSection);
        } else {
            front::Succeed(problem);
        }
        return SectionOf(found, name, editable != 0);
    }

    // Creates a section, or gives an existing one the first id and the type of `options`; whether that one is editable
    // does not change. nullopt if the section cannot be created.
    std::optional<Section> makeSection(const Text& name, const TableOptions& options = {},
                                       Problem* problem = nullptr) {
        const front::Target target = TargetOf(name, problem);
        if (!front::RequireHandle(handle(), problem) || !target.RequireValid(name, "the section"))
            return std::nullopt;
        const bool isNew =
            front::ScopedSection(xmlGetProfileSection(handle(), name.c_str(), nullptr)).get() == nullptr;
        if (isNew && !target.RequireKept(name.units(), front::TextPlace::Attribute, "the section"))
            return std::nullopt;
        front::NewKey added(handle(), name, name,
                            isNew ? front::KeyState::NoSection : front::KeyState::Readable);
        const front::ScopedSection made(xmlWriteProfileSection(
            handle(), name.c_str(), options.editable ? 1 : 0, options.firstId, options.type, nullptr));
        std::optional<Section> section = findSection(name, problem);
        added.Keep();
        return section;
    }

    // NOLINTBEGIN(readability-make-member-function-const): it changes the document

    // Removes the section with everything in it. Returns whether there was one.
    bool removeSection(const Text& name, Problem* problem = nullptr) {
        const front::Target target = TargetOf(name, problem);
        if (!front::RequireHandle(handle(), problem) || !target.RequireValid(name, "the section"))
            return false;
        if (xmlWriteProfileString(handle(), name.c_str(), nullptr, nullptr) != 1)
            return front::RefuseState(target, front::KeyState::NoSection);
        if (!front::ScopedSection(xmlGetProfileSection(handle(), name.c_str(), nullptr)).get())
            rules_->troubled.RemoveSection(name.units());
        return front::Succeed(problem);
    }

    // NOLINTEND(readability-make-member-function-const)

    // The sections in document order: for (const mox::Section& section : profile.sections()). Every element under the
    // root counts, even one that is not a section and that findSection would never find. The list is complete before it
    // is returned: the loop can be left at any time, and may add and remove sections.
    std::vector<Section> sections() const {
        std::vector<Section> sections;
        for (front::FoundSection& found : front::FindSections(handle_))
            sections.push_back(Section(std::move(found), rules_));
        return sections;
    }

    // Their names, and the names of the keys of a section that can be read, in document order. No value is read. A name
    // of a key with more than 259 units is cut.
    std::vector<std::string> sectionNames() const {
        std::vector<std::string> names;
        for (const front::Units& name : front::FindSectionNames(handle()))
            names.push_back(front::Utf8Of(front::UnitsView(name)));
        return names;
    }
    std::vector<std::string> keys(const Text& section, Problem* problem = nullptr) const {
        const std::optional<Section> found = findSection(section, problem);
        return found.has_value() ? found->names() : std::vector<std::string>();
    }

    // ---- saving. Saving with Content::Document removes "eud" from all sections and entries, in memory as well; see
    // xmlProfileSave. A narrow file keeps 7-bit text only: if the document has other text, it is not saved as a narrow
    // file (NotKept), unless isLossy().

    // Replaces a file atomically, or creates it: a failure leaves the old file, except for Unconfirmed, after which the
    // next save goes on from the new one. disk/replace_file.hpp has the details.
    // A file that is not the one that was read or saved last is not replaced (Changed); see SaveOptions::overwrite.
    bool saveReplacing(const Text& path, const SaveOptions& options, Problem* problem = nullptr) const {
        const std::optional<std::string> bytes =
            toBytes(options.form.value_or(form()), options.content, problem);
        if (!bytes.has_value()) return front::FailInFile(problem, path);
        const bool isDocument = options.content == Content::Document;
        return front::ReplaceKnownFile(path, *bytes, options, isDocument ? &rules_->file : nullptr, problem);
    }
    bool saveReplacing(const Text& path, Problem* problem = nullptr) const {
        return saveReplacing(path, SaveOptions(), problem);
    }
    bool saveReplacing(const Text& path, Form form, Problem* problem = nullptr) const {
        SaveOptions options;
        options.form = form;
        return saveReplacing(path, options, problem);
    }

    // What saveReplacing would write: the content of a file in that form.
    std::optional<std::string> toBytes(Form form, Content content = Content::Document,
                                       Problem* problem = nullptr) const {
        if (!front::RequireHandle(handle(), problem)) return std::nullopt;
        if (content == Content::Document && !front::RequireShallow(*rules_, problem)) return std::nullopt;
        // A narrow file has the low byte of each unit.
        const bool isChecked = form == Form::Narrow && !isLossy();
        std::optional<std::string> bytes = Save(isChecked ? Form::Wide : form, content, problem);
        if (!bytes.has_value() || (isChecked && !front::RequireNarrow(*bytes, problem))) return std::nullopt;
        front::Succeed(problem);
        return isChecked ? front::LowBytesOf(*bytes) : std::move(bytes);
    }

    // The same as UTF-8, for other programs; see exportUtf8. import reads it.
    std::optional<std::string> toUtf8(Problem* problem = nullptr) const {
        const std::optional<std::string> bytes = toBytes(Form::Wide, Content::Document, problem);
        if (!bytes.has_value()) return std::nullopt;
        return exportUtf8(*bytes, Form::Wide);
    }

  private:
    static void Dispose(moxSettings* handle) { xmlProfileDispose(&handle); }

    Profile(moxSettings* handle, Form form)
        : handle_(handle, Dispose), rules_(std::make_shared<front::WriteRules>()) {
        rules_->form = form;
    }

    front::Target TargetOf(const Text& section, const Text& key, Problem* problem) const noexcept {
        return {section.units(), key.units(), rules_.get(), problem};
    }

    front::Target TargetOf(const Text& section, Problem* problem) const noexcept {
        return {section.units(), {}, rules_.get(), problem};
    }

    template <class T>
    std::optional<T> Get(const Text& section, const Text& key, Problem* problem) const {
        front::RequireGettable<T>();
        std::optional<T> value =
            front::GetKey<T>(handle(), section, key, [&] { return TargetOf(section, key, problem); });
        if (value.has_value()) front::Succeed(problem);
        return value;
    }

    std::optional<Section> SectionOf(void* handle, const Text& name, bool isEditable) const {
        if (handle == nullptr) return std::nullopt;
        front::FoundSection section = front::AdoptSection(handle_, handle);
        section.name = name.units();
        section.isEditable = isEditable;
        return Section(std::move(section), rules_);
    }

    std::optional<std::string> Save(Form form, Content content, Problem* problem) const {
        const auto write = [&](const wchar16* path) {
            return xmlProfileSave(handle(), path, static_cast<std::uint32_t>(content), 0,
                                  form == Form::Wide ? 1 : 0) == 1;
        };
        return front::BytesWrittenBy(write, problem);
    }

    std::shared_ptr<moxSettings> handle_;       // shared with the sections, which must be released before it
    std::shared_ptr<front::WriteRules> rules_;  // shared with them, too
};

}  // namespace mox

#endif
