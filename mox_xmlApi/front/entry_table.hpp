// EntryTable, the base class of Table and Section in the C++ front.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_ENTRY_TABLE_HPP
#define MOX_XMLAPI_FRONT_ENTRY_TABLE_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "mox_xmlApi/document/encoding.hpp"
#include "mox_xmlApi/front/document_file.hpp"
#include "mox_xmlApi/front/entry_fields.hpp"
#include "mox_xmlApi/front/entry_reading.hpp"
#include "mox_xmlApi/front/entry_writing.hpp"
#include "mox_xmlApi/front/file_options.hpp"
#include "mox_xmlApi/front/form.hpp"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/typed_value.hpp"
#include "mox_xmlApi/front/write_rules.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox {

// The entries of a Table or a Section. An entry is identified by its name alone; if several have the same name, the
// first is used. Only remove and removeAll accept an empty name. An element without a known type cannot be read as an
// entry.
//
// A function that takes a Problem and fails says there why. mox_xmlApi.hpp has what holds for all writes.
class EntryTable {
  public:
    using Entries = BasicEntryRange<std::string>;
    using Entries16 = BasicEntryRange<std::u16string>;

    EntryTable(const EntryTable&) = delete;
    EntryTable& operator=(const EntryTable&) = delete;

    // False if the object was moved from. All its functions then fail, or find nothing.
    explicit operator bool() const noexcept { return handle_ != nullptr; }

    // The handle, for calling the exports directly. This object keeps it: it must not be disposed.
    void* handle() const noexcept { return handle_.get(); }

    // ---- reading

    // The entries in document order, read one by one: for (const mox::Entry& entry : table.entries()). The loop can be
    // left at any time. It may add entries and change them, but must neither remove them nor call setComment, setShownName
    // or setProvider, which may replace the entry by a new one; use list() for that.
    Entries entries() const { return Entries(handle_); }
    Entries16 entries16() const { return Entries16(handle_); }

    // The entries in document order, all read at once.
    std::vector<Entry> list() const { return ListOf<std::string>(); }
    std::vector<Entry16> list16() const { return ListOf<std::u16string>(); }

    // The names of the entries in document order.
    std::vector<std::string> names() const { return front::NamesOf(handle()); }

    // The entry of that name; nullopt if there is none (NoSuchKey), or it has no known type (Unreadable).
    std::optional<Entry> find(const Text& name, Problem* problem = nullptr) const {
        return Find<std::string>(name, problem);
    }
    std::optional<Entry16> find16(const Text& name, Problem* problem = nullptr) const {
        return Find<std::u16string>(name, problem);
    }

    // The effective value of the entry as a T, see Entry::valueAs; nullopt if it has none, or if there is no such entry.
    template <class T>
    std::optional<T> get(const Text& name) const {
        return Get<T>(name, nullptr);
    }
    template <class T, class ProblemPointer, class = std::enable_if_t<front::kIsProblem<ProblemPointer>>>
    std::optional<T> get(const Text& name, ProblemPointer problem) const {
        return Get<T>(name, problem);
    }

    // Like get, but returns `fallback` where get returns nullopt.
    template <class T>
    T get(const Text& name, front::Same<T> fallback) const {
        return getOr<T>(name, std::move(fallback));
    }
    template <class T>
    T getOr(const Text& name, front::Same<T> fallback, Problem* problem = nullptr) const {
        std::optional<T> value = Get<T>(name, problem);
        return value.has_value() ? std::move(*value) : std::move(fallback);
    }

    // Whether there is an element of that name, with a known type or not.
    bool contains(const Text& name) const {
        TableEntryBaseInfoStruct key;
        return front::SetLookUpName(name, key) && xmlTableEntryIsExist(handle(), &key);
    }

    // The number of elements that entries() skips because they have no known type.
    std::size_t countUnreadable() const { return front::CountUnreadable(handle()); }

    // ---- writing
    // NOLINTBEGIN(readability-make-member-function-const): they change the document

    // Writes the value of the entry of that name, which keeps its type, or adds one at the end, with the type that fits
    // (front/typed_value.hpp has the list). `value` is a bool, an integer of 16, 32 or 64 bits, a double, a text, or a
    // container of bytes. get reads it back; so an empty text is refused where the presentation data have a value.
    template <class T>
    bool set(const Text& name, const T& value, Problem* problem = nullptr) {
        if (!front::RequireHandle(handle(), problem)) return false;
        const front::Target target = TargetOf(name, problem);
        const std::optional<front::TypedText> text = front::TypedTextOf(value, target);
        return text.has_value() && front::SetTypedValue(handle(), target, name, *text);
    }

    // Adds an entry after the last one, or before the first one named `next`, which takes a scan from the start.
    //
    // Fails, with nothing added, if the name exists already (NameTaken), if there is no `next` (NoSuchKey), if a text is
    // invalid or the name is empty or has more than 259 units (InvalidText), if the file does not keep a text (NotKept),
    // or if the entry cannot be stored (NotStored): its type, control or owner has no name in files, or the presentation
    // data have a value but no comment. If `value` is written to the presentation data (see BasicEntry), their own value
    // needs no comment, but has to be the same.
    bool add(const Entry& entry, Eud eud = Eud::DoNotSet, Problem* problem = nullptr) {
        return Add(0, entry, eud, problem);
    }
    bool add(const Entry16& entry, Eud eud = Eud::DoNotSet, Problem* problem = nullptr) {
        return Add(0, entry, eud, problem);
    }
    bool addBefore(const Text& next, const Entry& entry, Eud eud = Eud::DoNotSet,
                   Problem* problem = nullptr) {
        return AddBefore(next, entry, eud, problem);
    }
    bool addBefore(const Text& next, const Entry16& entry, Eud eud = Eud::DoNotSet,
                   Problem* problem = nullptr) {
        return AddBefore(next, entry, eud, problem);
    }

    // Changes the entry of that name, whatever its "eud", or adds it if there is none. Fields of `entry` that are
    // nullopt, zero or empty leave the entry as it is; but type, shape, an empty `value` and the control of `ui` are
    // always written. An "eud" that the entry has stays. An entry without a known type gets one.
    //
    // Fails for what cannot be stored, see add. Also: an entry without a known type cannot be given presentation data in
    // the same call (Unreadable).
    bool put(const Entry& entry, Eud eud = Eud::DoNotSet, Problem* problem = nullptr) {
        return Put(entry, eud, problem);
    }
    bool put(const Entry16& entry, Eud eud = Eud::DoNotSet, Problem* problem = nullptr) {
        return Put(entry, eud, problem);
    }

    // Changes the value of an entry, whatever its "eud", and nothing else. With Eud::DoNotSet, "eud" is removed; it may
    // stay if the value was empty and is empty again. Fails if there is no such entry (NoSuchKey, Unreadable), or if the
    // value cannot be stored, see add.
    bool setValue(const Text& name, const Text& value, Eud eud = Eud::DoNotSet, Problem* problem = nullptr) {
        return SetValue(name, value, true, eud, problem);
    }

    // The same, but an entry with eud="true" is left alone (Protected), and so is one without a value of its own, of which
    // the exports do not tell whether it has "eud" (NotStored). Returns whether the entry has the value now.
    bool setValueUnlessEud(const Text& name, const Text& value, Eud eud = Eud::DoNotSet,
                           Problem* problem = nullptr) {
        return SetValue(name, value, false, eud, problem);
    }

    // Gives an entry another name, in its place, and changes nothing else. Fails if there is an entry of the new name
    // (NameTaken), for names that add refuses, and for an entry without any value in a table that keeps its values in the
    // presentation data (NotStored).
    bool rename(const Text& name, const Text& newName, Problem* problem = nullptr) {
        return front::RequireHandle(handle(), problem) &&
               front::RenameEntry(handle(), TargetOf(name, problem), name, newName);
    }

    // Sets or removes "eud" of an entry, and changes nothing else of it. Setting it sets it on the table as well, if that
    // has none.
    bool setEud(const Text& name, bool isSet, Problem* problem = nullptr) {
        return front::RequireHandle(handle(), problem) &&
               front::SetEud(handle(), TargetOf(name, problem), name, isSet);
    }

    // Change parts of the presentation data of an entry; an empty text, Owner::None and 0 clear them. Presentation data
    // without a control get Control::Text.
    //
    // The exports cannot remove a comment, and cannot clear the others where the entry has a value of its own, but the
    // presentation data have neither value nor comment. There the entry is replaced by a new one in its place. If that
    // would lose what only the file has (minimum and maximum, access, flags, regen, comments of XML, other elements),
    // the call fails (NotStored) and says what. An iterator at an entry that was replaced is no longer valid. (The
    // attribute "loc" of a value that is written again is emptied, as the exports do.)
    bool setComment(const Text& name, const Text& comment, Problem* problem = nullptr) {
        return SetUiText(name, comment, "the comment", &Presentation16::comment, problem);
    }
    bool setShownName(const Text& name, const Text& shownName, Problem* problem = nullptr) {
        return SetUiText(name, shownName, "the displayed name", &Presentation16::shownName, problem);
    }
    bool setProvider(const Text& name, Owner owner, std::uint32_t index, Problem* problem = nullptr) {
        return front::RequireHandle(handle(), problem) &&
               front::ChangeUi(handle(), TargetOf(name, problem), name, [&](Presentation16& ui) {
                   ui.providerOwner = owner;
                   ui.providerIndex = index;
               });
    }

    // Removes one of the entries of that name (`occurrence` 0 is the first), or all of them, whatever their "eud". An
    // empty name means the entries whose name is empty. Returns whether an entry was removed; if not, there is none
    // (NoSuchKey), or the name is invalid or has more than 259 units (InvalidText).
    bool remove(const Text& name, std::int32_t occurrence = 0, Problem* problem = nullptr) {
        return Remove(name, occurrence, 0, problem);
    }
    bool removeAll(const Text& name, Problem* problem = nullptr) { return Remove(name, -1, 1, problem); }

    // Removes every entry ("Var" element). Comments and other elements stay.
    bool clear(Problem* problem = nullptr) {
        if (!front::RequireHandle(handle(), problem)) return false;
        if (!xmlTableRemoveEntries(handle()))
            return front::Fail(problem, Reason::NotStored, "the library refused to remove the entries");
        rules_->troubled.RemoveUnless(scope_, [this](front::UnitsView name) { return IsTaken(name); });
        return front::Succeed(problem);
    }

    // NOLINTEND(readability-make-member-function-const)

    // ---- saving

    // Writes the document of a table, or only the element of a section, to a wide file. It replaces the file atomically,
    // or creates it: a failure leaves the old file, except for Unconfirmed, after which the next save of a table goes on
    // from the new one. disk/replace_file.hpp has the details. A file that is not the one that the table was read from or
    // saved to last is not replaced (Changed), nor is any by a section; see SaveOptions::overwrite.
    bool saveReplacing(const Text& path, const SaveOptions& options, Problem* problem = nullptr) const {
        const std::optional<std::string> bytes = toBytes(problem);
        if (!bytes.has_value()) return front::FailInFile(problem, path);
        return front::ReplaceKnownFile(path, *bytes, options,
                                       rules_->isTableDocument ? &rules_->file : nullptr, problem);
    }
    bool saveReplacing(const Text& path, Problem* problem = nullptr) const {
        return saveReplacing(path, SaveOptions(), problem);
    }

    // What saveReplacing would write.
    std::optional<std::string> toBytes(Problem* problem = nullptr) const {
        if (!front::RequireHandle(handle(), problem) || !front::RequireShallow(*rules_, problem))
            return std::nullopt;
        const auto write = [this](const wchar16* scratch) { return xmlTableSave(handle(), scratch, 0, 0); };
        return front::BytesWrittenBy(write, problem);
    }

    // The same as UTF-8, for other programs; see exportUtf8.
    std::optional<std::string> toUtf8(Problem* problem = nullptr) const {
        const std::optional<std::string> bytes = toBytes(problem);
        if (!bytes.has_value()) return std::nullopt;
        return exportUtf8(*bytes, Form::Wide);
    }

  protected:
    // The scope is the section's name; empty for a table document.
    EntryTable(front::TableHandle handle, std::shared_ptr<front::WriteRules> rules, front::Units scope)
        : handle_(std::move(handle)), rules_(std::move(rules)), scope_(std::move(scope)) {}
    EntryTable(EntryTable&&) noexcept = default;
    EntryTable& operator=(EntryTable&&) noexcept = default;
    ~EntryTable() = default;

    front::WriteRules* Rules() const noexcept { return rules_.get(); }
    const front::Units& Scope() const noexcept { return scope_; }

  private:
    front::Target TargetOf(const Text& name, Problem* problem) const noexcept {
        return {scope_, name.units(), rules_.get(), problem};
    }

    template <class String>
    std::optional<BasicEntry<String>> Find(const Text& name, Problem* problem) const {
        BasicEntry<String> entry;
        if (front::ReadByName(handle(), name, entry)) {
            front::Succeed(problem);
            return std::optional(std::move(entry));
        }
        front::ExplainMissing(handle(), TargetOf(name, problem), name);
        return std::nullopt;
    }

    template <class T>
    std::optional<T> Get(const Text& name, Problem* problem) const {
        front::RequireGettable<T>();
        Entry entry;
        if (front::ReadByName(handle(), name, entry))
            return front::ValueOfEntry<T>(entry, TargetOf(name, problem));
        front::ExplainMissing(handle(), TargetOf(name, problem), name);
        return std::nullopt;
    }

    template <class String>
    std::vector<BasicEntry<String>> ListOf() const {
        std::vector<BasicEntry<String>> list;
        for (const BasicEntry<String>& entry : BasicEntryRange<String>(handle_))
            list.push_back(entry);
        return list;
    }

    template <class String>
    bool Add(std::uint64_t before, const BasicEntry<String>& entry, Eud eud, Problem* problem) const {
        if (!front::RequireHandle(handle(), problem)) return false;
        const Text name(entry.name);
        return front::AddEntry(handle(), TargetOf(name, problem), before, entry, eud);
    }

    template <class String>
    bool AddBefore(const Text& next, const BasicEntry<String>& entry, Eud eud, Problem* problem) const {
        const front::Target target = TargetOf(next, problem);
        if (!front::RequireLookUpName(target, next) || !front::RequirePosition(target)) return false;
        for (auto at = entries16().begin(); at != Entries16::iterator(); ++at) {
            if (Text(at->name).units() == next.units()) return Add(at.position(), entry, eud, problem);
        }
        return front::ExplainMissing(handle(), target, next);
    }

    template <class String>
    bool Put(const BasicEntry<String>& entry, Eud eud, Problem* problem) const {
        if (!front::RequireHandle(handle(), problem)) return false;
        const Text name(entry.name);
        return front::PutEntry(handle(), TargetOf(name, problem), entry, eud);
    }

    bool SetValue(const Text& name, const Text& value, bool force, Eud eud, Problem* problem) const {
        return front::RequireHandle(handle(), problem) &&
               front::SetEntryValue(handle(), TargetOf(name, problem), name, value, force, eud);
    }

    bool SetUiText(const Text& name, const Text& text, const char* what,
                   std::u16string Presentation16::*field, Problem* problem) const {
        if (!front::RequireHandle(handle(), problem)) return false;
        const front::Target target = TargetOf(name, problem);
        return target.RequireValid(text, what) &&
               front::ChangeUi(handle(), target, name, [&](Presentation16& ui) {
                   ui.*field = front::StringOf<std::u16string>(text.units());
               });
    }

    // Whether there is an element of that name. One that no record can name counts as there.
    bool IsTaken(front::UnitsView name) const noexcept {
        TableEntryBaseInfoStruct key;
        return !front::SetRecordName(name, key) || xmlTableEntryIsExist(handle(), &key);
    }

    bool Remove(const Text& name, std::int32_t occurrence, std::int32_t removeAll, Problem* problem) const {
        const front::Target target = TargetOf(name, problem);
        TableEntryBaseInfoStruct key;
        if (!front::RequireHandle(handle(), problem) || !target.RequireValid(name, "the name")) return false;
        if (!front::SetRecordName(name.units(), key))
            return target.Refuse(Reason::InvalidText, "the name has more than 259 units");
        if (!xmlTableRemoveEntry(handle(), &key, occurrence, removeAll))
            return target.Refuse(Reason::NoSuchKey, "there is no such entry");
        if (!xmlTableEntryIsExist(handle(), &key)) rules_->troubled.Remove(scope_, name.units());
        return front::Succeed(problem);
    }

    front::TableHandle handle_;
    std::shared_ptr<front::WriteRules> rules_;
    front::Units scope_;
};

}  // namespace mox

#endif
