// EntryTable, the base class of Table and Section in the C++ front.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_ENTRY_TABLE_HPP
#define MOX_XMLAPI_FRONT_ENTRY_TABLE_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mox_xmlApi/front/entry_reading.hpp"
#include "mox_xmlApi/front/entry_writing.hpp"
#include "mox_xmlApi/front/replacing_save.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox {

// The entries of a Table or a Section. An entry is identified by its name alone; if several have the same name, the
// first is used. Only remove and removeAll accept an empty name. An element without a known type cannot be read as an
// entry.
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
    // left at any time. It may add and change entries, but not remove them; use list() for that.
    Entries entries() const { return Entries(handle_); }
    Entries16 entries16() const { return Entries16(handle_); }

    // The entries in document order, all read at once.
    std::vector<Entry> list() const { return ListOf<std::string>(); }
    std::vector<Entry16> list16() const { return ListOf<std::u16string>(); }

    // The entry of that name; nullopt if there is none, or it has no known type.
    std::optional<Entry> find(const Text& name) const { return Find<std::string>(name); }
    std::optional<Entry16> find16(const Text& name) const { return Find<std::u16string>(name); }

    // Whether there is an element of that name, with a known type or not.
    bool contains(const Text& name) const {
        TableEntryBaseInfoStruct key;
        return front::SetLookUpName(name, key) && xmlTableEntryIsExist(handle(), &key);
    }

    // The number of elements that entries() skips because they have no known type.
    std::size_t countUnreadable() const {
        std::size_t count = 0;
        std::uint64_t position = 0;
        Entry entry;
        for (front::Step step = front::Step::Entry; step != front::Step::End;) {
            step = front::ReadNext(handle(), position, entry);
            if (step == front::Step::Unreadable) ++count;
        }
        return count;
    }

    // ---- writing
    // NOLINTBEGIN(readability-make-member-function-const): they change the document

    // Adds an entry after the last one, or before the first one named `next`, which takes a scan from the start.
    //
    // Returns false, with nothing added, if the name exists already, if there is no `next`, or if the entry cannot be
    // stored: its name is empty or has more than 259 units, its type is unknown, a value contains an unpaired surrogate
    // and the type is not UcString, a text is invalid (see Text), or the presentation data have a value but no comment.
    // If `value` is written to the presentation data (see BasicEntry), their own value needs no comment, but has to be
    // the same.
    bool add(const Entry& entry, Eud eud = Eud::DoNotSet) { return front::AddEntry(handle(), 0, entry, eud); }
    bool add(const Entry16& entry, Eud eud = Eud::DoNotSet) {
        return front::AddEntry(handle(), 0, entry, eud);
    }
    bool addBefore(const Text& next, const Entry& entry, Eud eud = Eud::DoNotSet) {
        return AddBefore(next, entry, eud);
    }
    bool addBefore(const Text& next, const Entry16& entry, Eud eud = Eud::DoNotSet) {
        return AddBefore(next, entry, eud);
    }

    // Changes the entry of that name, whatever its "eud", or adds it if there is none. Fields of `entry` that are
    // nullopt, zero or empty leave the entry as it is; but type, shape, an empty `value` and the control of `ui` are
    // always written. An "eud" that the entry has stays.
    //
    // Returns false for what cannot be stored, see add; an existing entry may then have been changed in part.
    bool put(const Entry& entry, Eud eud = Eud::DoNotSet) { return front::PutEntry(handle(), entry, eud); }
    bool put(const Entry16& entry, Eud eud = Eud::DoNotSet) { return front::PutEntry(handle(), entry, eud); }

    // Changes the value of an entry, whatever its "eud", and nothing else. With Eud::DoNotSet, "eud" is removed; it may
    // stay if the value was empty and is empty again. Returns false if there is no such entry, or if the value cannot
    // be stored, see add; the entry is then unchanged.
    bool setValue(const Text& name, const Text& value, Eud eud = Eud::DoNotSet) {
        return front::SetEntryValue(handle(), name, value, true, eud);
    }

    // The same, but an entry with eud="true" is left alone, and so is one without a value of its own, of which the
    // exports do not tell whether it has "eud". Returns whether the entry has the value now.
    bool setValueUnlessEud(const Text& name, const Text& value, Eud eud = Eud::DoNotSet) {
        return front::SetEntryValue(handle(), name, value, false, eud);
    }

    // Removes one of the entries of that name (`occurrence` 0 is the first), or all of them, whatever their "eud". An
    // empty name means the entries whose name is empty. Returns whether an entry was removed.
    bool remove(const Text& name, std::int32_t occurrence = 0) { return Remove(name, occurrence, 0); }
    bool removeAll(const Text& name) { return Remove(name, -1, 1); }

    // Removes every entry. Comments and other elements stay.
    bool clear() { return xmlTableRemoveEntries(handle()); }

    // NOLINTEND(readability-make-member-function-const)

    // ---- saving

    // Writes the document of a table, or only the element of a section, to a wide file, which is created or overwritten
    // in place. Returns false on failure, which may leave the file incomplete.
    bool save(const Text& path) const { return path.isValid() && xmlTableSave(handle(), path.c_str(), 0, 0); }

    // The same, but replaces the file atomically: a failure leaves the old file. See disk/replace_file.hpp.
    bool saveReplacing(const Text& path) const {
        const auto write = [this](const wchar16* scratch) { return xmlTableSave(handle(), scratch, 0, 0); };
        return front::ReplaceBySave(path, write);
    }

  protected:
    explicit EntryTable(front::TableHandle handle) : handle_(std::move(handle)) {}
    EntryTable(EntryTable&&) noexcept = default;
    EntryTable& operator=(EntryTable&&) noexcept = default;
    ~EntryTable() = default;

  private:
    template <class String>
    std::optional<BasicEntry<String>> Find(const Text& name) const {
        BasicEntry<String> entry;
        return front::ReadByName(handle(), name, entry) ? std::optional(std::move(entry)) : std::nullopt;
    }

    template <class String>
    std::vector<BasicEntry<String>> ListOf() const {
        std::vector<BasicEntry<String>> list;
        for (const BasicEntry<String>& entry : BasicEntryRange<String>(handle_))
            list.push_back(entry);
        return list;
    }

    template <class String>
    bool AddBefore(const Text& next, const BasicEntry<String>& entry, Eud eud) {
        if (!next.isValid() || next.units().empty()) return false;
        for (auto at = entries16().begin(); at != Entries16::iterator(); ++at) {
            if (Text(at->name).units() == next.units())
                return front::AddEntry(handle(), at.position(), entry, eud);
        }
        return false;
    }

    bool Remove(const Text& name, std::int32_t occurrence, std::int32_t removeAll) const {
        TableEntryBaseInfoStruct key;
        return name.isValid() && front::SetRecordName(name.units(), key) &&
               xmlTableRemoveEntry(handle(), &key, occurrence, removeAll);
    }

    front::TableHandle handle_;
};

}  // namespace mox

#endif
