// How the C++ front reads entries through the exports, one by one and as a range.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_ENTRY_READING_HPP
#define MOX_XMLAPI_FRONT_ENTRY_READING_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mox_xmlApi/front/entry.hpp"
#include "mox_xmlApi/front/write_rules.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox {
namespace front {

// A handle for the table functions. It keeps what it depends on alive, and is released with its last copy.
using TableHandle = std::shared_ptr<void>;

// The result of a step of an enumeration: the end, an element without a known type, or an entry.
enum class Step { End, Unreadable, Entry };

template <class String>
void FillEntry(UnitsView name, const TableEntryValueInfoStruct& value, const TableEntryUInfoStruct& ui,
               BasicEntry<String>& entry) {
    entry.name = StringOf<String>(name);
    entry.value = ValueOf<String>(value, value.type);
    entry.id = value.id;
    const int code = value.type;
    entry.type = static_cast<ValueType>(code & ~kShapeBits);
    entry.shape = static_cast<Shape>(code & kShapeBits);
    entry.ui = PresentationOf<String>(ui);
}

// Reads the entry after the position, 0 for the first one, and moves the position to it.
//
// The export also fails for an entry whose value has no 8-bit form. It has filled part of the records then: a type
// shows that there is an entry, and a second read with the presentation record alone supplies the rest.
template <class String>
Step ReadNext(void* handle, std::uint64_t& position, BasicEntry<String>& entry) {
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    std::uint64_t before = position;
    const bool isRead = xmlTableEntryGet(handle, &position, &value, &ui);
    if (!isRead && position == before) return Step::End;
    if (!isRead && value.type == 0) return Step::Unreadable;
    if (!isRead && ui.type == 0) xmlTableEntryGet(handle, &before, nullptr, &ui);
    FillEntry(NameOf(ui), value, ui, entry);
    return Step::Entry;
}

// Reads the first entry of that name. Returns false if there is none, or it has no known type.
template <class String>
bool ReadByName(void* handle, const Text& name, BasicEntry<String>& entry) {
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    if (!SetLookUpName(name, value)) return false;
    const bool isRead = xmlTableEntryGet(handle, nullptr, &value, &ui);
    if (!isRead && value.type == 0) return false;
    if (isRead || ui.type != 0) {
        FillEntry(name.units(), value, ui, entry);
        return true;
    }
    // The value has no 8-bit form. Only an enumeration can read the presentation data of such an entry.
    std::uint64_t position = 0;
    for (Step step = Step::Unreadable; step != Step::End; step = ReadNext(handle, position, entry)) {
        if (step != Step::Entry) continue;
        if (Text(entry.name).units() == name.units()) return true;
    }
    return false;
}

// Returns the number of elements without a known type.
inline std::size_t CountUnreadable(void* handle) {
    TableEntryUInfoStruct ui;
    std::size_t count = 0;
    std::uint64_t position = 0;
    for (std::uint64_t before = 0;; before = position) {
        const bool isRead = xmlTableEntryGet(handle, &position, nullptr, &ui);
        if (!isRead && position == before) return count;
        if (!isRead && ui.type == 0) ++count;
    }
}

// Returns the names of the entries that can be read, in document order.
inline std::vector<std::string> NamesOf(void* handle) {
    std::vector<std::string> names;
    TableEntryUInfoStruct ui;
    std::uint64_t position = 0;
    for (std::uint64_t before = 0;; before = position) {
        const bool isRead = xmlTableEntryGet(handle, &position, nullptr, &ui);
        if (!isRead && position == before) return names;
        if (isRead || ui.type != 0) names.push_back(Utf8Of(NameOf(ui)));
    }
}

// Whether a name can be looked up, which takes a record.
inline bool RequireLookUpName(const Target& target, const Text& name) {
    if (!target.RequireValid(name, "the name")) return false;
    if (name.units().empty()) return target.Refuse(Reason::InvalidText, "the name is empty");
    return name.units().size() <= kMostNameUnits ||
           target.Refuse(Reason::InvalidText, "the name has more than 259 units");
}

// Reports why there is no entry of that name to read. Returns false.
inline bool ExplainMissing(void* handle, const Target& target, const Text& name) {
    if (target.problem == nullptr || !RequireLookUpName(target, name)) return false;
    TableEntryBaseInfoStruct key;
    SetLookUpName(name, key);
    if (xmlTableEntryIsExist(handle, &key))
        return target.Refuse(Reason::Unreadable, "the entry has no known type, so that it cannot be read");
    return target.Refuse(Reason::NoSuchKey, "there is no such entry");
}

}  // namespace front

// An iterator over the entries of a table, from BasicEntryRange::begin. Each step reads one entry, none is read ahead.
// It can be copied and destroyed at any time, and keeps its table alive. Its current entry must not be removed or
// replaced before the next step.
template <class String>
class BasicEntryIterator {
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = BasicEntry<String>;
    using difference_type = std::ptrdiff_t;
    using pointer = const value_type*;
    using reference = const value_type&;

    BasicEntryIterator() = default;  // the end
    explicit BasicEntryIterator(front::TableHandle table) : table_(std::move(table)) { ++*this; }

    reference operator*() const { return entry_; }
    pointer operator->() const { return &entry_; }

    BasicEntryIterator& operator++() {
        front::Step step = front::Step::Unreadable;
        while (step == front::Step::Unreadable)
            step = front::ReadNext(table_.get(), position_, entry_);
        if (step == front::Step::End) *this = BasicEntryIterator();
        return *this;
    }
    BasicEntryIterator operator++(int) {
        BasicEntryIterator old = *this;
        ++*this;
        return old;
    }

    // A position variable for the table functions of mox_xmlApi.h that refers to the current entry; 0 at the end.
    std::uint64_t position() const noexcept { return position_; }

    friend bool operator==(const BasicEntryIterator& a, const BasicEntryIterator& b) noexcept {
        return a.position_ == b.position_;
    }
    friend bool operator!=(const BasicEntryIterator& a, const BasicEntryIterator& b) noexcept {
        return !(a == b);
    }

  private:
    front::TableHandle table_;
    std::uint64_t position_ = 0;
    BasicEntry<String> entry_;
};

// The entries of a table in document order. Elements without a known type cannot be read as entries and are skipped. A
// range keeps its table alive, also a temporary one.
template <class String>
class BasicEntryRange {
  public:
    using iterator = BasicEntryIterator<String>;
    using const_iterator = iterator;

    explicit BasicEntryRange(front::TableHandle table) : table_(std::move(table)) {}

    iterator begin() const { return iterator(table_); }
    iterator end() const { return iterator(); }

  private:
    front::TableHandle table_;
};

}  // namespace mox

#endif
