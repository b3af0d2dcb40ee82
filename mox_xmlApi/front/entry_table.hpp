// What tables and sections have in common in the C++ front: their entries.
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
#include "mox_xmlApi/front/replace_file.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox {

// The entries of a Table or a Section. An entry is known by its name alone; of several with one name the first is
// meant. No function takes an empty name, but for remove and removeAll. Where an entry is wanted, an element without a
// known type counts as none.
class EntryTable {
  public:
    using Entries = BasicEntryRange<std::string>;
    using Entries16 = BasicEntryRange<std::u16string>;

    EntryTable(const EntryTable&) = delete;
    EntryTable& operator=(const EntryTable&) = delete;

    // False for an object that was moved from. All its functions fail, or find nothing.
    explicit operator bool() const noexcept { return handle_ != nullptr; }

    // For calls of the exports themselves. It stays this object's, and must not be disposed.
    void* handle() const noexcept { return handle_.get(); }

    // ---- reading

    // for (const mox::Entry& entry : table.entries()). The loop may be left at any time. Entries may be added and
    // changed in it, but not removed: take list() for that.
    Entries entries() const { return Entries(handle_); }
    Entries16 entries16() const { return Entries16(handle_); }

    // The entries as values of their own.
    std::vector<Entry> list() const { return ListOf<std::string>(); }
    std::vector<Entry16> list16() const { return ListOf<std::u16string>(); }

    // The entry of that name; nothing when there is none.
    std::optional<Entry> find(const Text& name) const { return Find<std::string>(name); }
    std::optional<Entry16> find16(const Text& name) const { return Find<std::u16string>(name); }

    // Whether there is an element of that name, readable or not.
    bool contains(const Text& name) const {
        TableEntryBaseInfoStruct key;
        return front::PutKey(name, key) && xmlTableEntryIsExist(handle(), &key);
    }

    // How many elements there are that entries() passes over.
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

    // Adds an entry after the last one, or before the first one named `next`, which is looked for from the start.
    //
    // Returns false, with nothing added, when the name is taken already, when there is no `next`, and for what cannot
    // be stored: a name of more than 259 units, a type that is none, a value that is not well-formed, and a value of
    // the presentation data without a comment. Where `value` goes to the presentation data (see BasicEntry), theirs
    // needs no comment, but cannot be another one.
    bool add(const Entry& entry, Mark mark = Mark::No) { return front::AddEntry(handle(), 0, entry, mark); }
    bool add(const Entry16& entry, Mark mark = Mark::No) { return front::AddEntry(handle(), 0, entry, mark); }
    bool addBefore(const Text& next, const Entry& entry, Mark mark = Mark::No) {
        return AddBefore(next, entry, mark);
    }
    bool addBefore(const Text& next, const Entry16& entry, Mark mark = Mark::No) {
        return AddBefore(next, entry, mark);
    }

    // Changes the entry of that name, marked or not, or adds it when there is none. What is missing, zero or empty in
    // `entry` stays as it is in the table, but for the control of `ui`, for type, shape and an empty value.
    //
    // Returns false for what cannot be stored, as add does; an entry that existed may then have been changed in part.
    bool put(const Entry& entry, Mark mark = Mark::No) { return front::PutEntryInto(handle(), entry, mark); }
    bool put(const Entry16& entry, Mark mark = Mark::No) {
        return front::PutEntryInto(handle(), entry, mark);
    }

    // Changes the value of an entry and nothing else, marked or not. Unless `mark` says Set, a mark is taken away.
    // Returns false when there is no such entry, or its value cannot be stored, as in add; it then stays as it was.
    bool setValue(const Text& name, const Text& value, Mark mark = Mark::No) {
        return front::SetEntryValue(handle(), name, value, true, mark);
    }

    // The same, but a marked entry is left alone. Returns whether the entry has that value now. An entry without a
    // value of its own cannot be told to be marked or not; it is left alone, too.
    bool setValueUnlessMarked(const Text& name, const Text& value, Mark mark = Mark::No) {
        return front::SetEntryValue(handle(), name, value, false, mark);
    }

    // Removes one of the entries of that name, the first, second and so on, or all of them, marked or not. An empty
    // name means those whose name is empty. Returns whether something was removed.
    bool remove(const Text& name, std::int32_t occurrence = 0) { return Remove(name, occurrence, 0); }
    bool removeAll(const Text& name) { return Remove(name, -1, 1); }

    // Removes every entry. Comments and other elements stay.
    bool clear() { return xmlTableRemoveEntries(handle()); }

    // NOLINTEND(readability-make-member-function-const)

    // ---- saving

    // Writes the table's document, or a section's element alone, to a wide file, which is created or overwritten. A
    // failure may leave it incomplete.
    bool save(const Text& path) const { return path.isValid() && xmlTableSave(handle(), path.c_str(), 0, 0); }

    // The same, but at any time the file is the old or the new one, whole. See front/replace_file.hpp.
    bool saveReplacing(const Text& path) const {
        const auto write = [this](const wchar16* temporary) {
            return xmlTableSave(handle(), temporary, 0, 0);
        };
        return front::ReplaceWholeFile(path, write);
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
    bool AddBefore(const Text& next, const BasicEntry<String>& entry, Mark mark) {
        if (!next.isValid() || next.units().empty()) return false;
        for (auto at = entries16().begin(); at != Entries16::iterator(); ++at) {
            if (Text(at->name).units() == next.units())
                return front::AddEntry(handle(), at.position(), entry, mark);
        }
        return false;
    }

    bool Remove(const Text& name, std::int32_t occurrence, std::int32_t removeAll) const {
        TableEntryBaseInfoStruct key;
        return name.isValid() && front::PutName(name.units(), key) &&
               xmlTableRemoveEntry(handle(), &key, occurrence, removeAll);
    }

    front::TableHandle handle_;
};

}  // namespace mox

#endif
