// How the C++ front reads and writes the keys of a profile through the exports.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_KEY_ACCESS_HPP
#define MOX_XMLAPI_FRONT_KEY_ACCESS_HPP

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "mox_xmlApi/front/entry_reading.hpp"
#include "mox_xmlApi/front/entry_writing.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/typed_value.hpp"
#include "mox_xmlApi/front/write_rules.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox::front {

// The size of the buffer for the first look-up, in units or bytes. Only a value that fills it takes another one.
inline constexpr std::uint32_t kReadSize = 128;

// ---- reading

// Whether the exports find the key that is meant: they would use the first key of the section for an empty one.
inline bool IsKey(const Text& section, const Text& key) noexcept {
    return section.isValid() && key.isValid() && !key.units().empty();
}

// Reads the start of a value, as much as fits into the buffer with a zero unit after it. Returns the length of what was
// read, which is 0 for an empty value; nullopt if there is no such key.
template <std::uint32_t Size>
std::optional<std::uint32_t> ReadStart(moxSettings* profile, const Text& section, const Text& key,
                                       wchar16 (&buffer)[Size]) {
    static_assert(Size >= 2, "room for a unit and the zero unit");
    if (!IsKey(section, key)) return std::nullopt;
    const std::uint32_t length =
        xmlGetProfileString(profile, section.c_str(), key.c_str(), buffer, Size, nullptr);
    if (length != 0) return length;
    // The value is empty or missing. Of a missing one the export returns the length of the default.
    constexpr wchar16 kDefault[] = {'?', 0};
    const bool isMissing =
        xmlGetProfileString(profile, section.c_str(), key.c_str(), buffer, Size, kDefault) != 0;
    return isMissing ? std::nullopt : std::optional(length);
}

// Returns the number of units in the value; 0 if there is no such key.
inline std::uint32_t LengthOf(moxSettings* profile, const Text& section, const Text& key) {
    return xmlGetProfileString(profile, section.c_str(), key.c_str(), nullptr, 0, nullptr);
}

// Returns the whole value of a key. `start` is what ReadStart has read of it, into a buffer of kReadSize units.
template <class String>
String WholeText(moxSettings* profile, const Text& section, const Text& key, UnitsView start) {
    if (start.size() + 1 < kReadSize) return StringOf<String>(start);
    const std::uint32_t wholeLength =
        LengthOf(profile, section, key);  // less than 2^31, like that of every text
    Units text(std::size_t{wholeLength} + 1, wchar16{0});
    xmlGetProfileString(profile, section.c_str(), key.c_str(), text.data(), wholeLength + 1, nullptr);
    text.resize(wholeLength);
    return StringOf<String>(text);
}

// The same; nullopt if there is no such key.
template <class String>
std::optional<String> ReadKey(moxSettings* profile, const Text& section, const Text& key) {
    wchar16 start[kReadSize];
    const std::optional<std::uint32_t> length = ReadStart(profile, section, key, start);
    if (!length.has_value()) return std::nullopt;
    return WholeText<String>(profile, section, key, UnitsView(start, *length));
}

// ---- what there is

// A section handle that is released at the end of the scope; may be null.
class ScopedSection {
  public:
    explicit ScopedSection(void* handle) noexcept : handle_(handle) {}
    ScopedSection(const ScopedSection&) = delete;
    ScopedSection& operator=(const ScopedSection&) = delete;
    ~ScopedSection() { xmlTableDispose(&handle_); }
    void* get() const noexcept { return handle_; }

  private:
    void* handle_;
};

enum class KeyState { NoSection, NoKey, Unreadable, Readable };

// Whether the table has an element of that name, which may have more units than a record holds. No entry that can be
// read has it: so a longer name may belong to any element that cannot be read.
inline bool HasUnreadable(void* table, const Text& name) {
    TableEntryBaseInfoStruct record;
    if (SetRecordName(name.units(), record)) return xmlTableEntryIsExist(table, &record);
    return CountUnreadable(table) != 0;
}

// Of valid names, of which ReadStart has found nothing.
inline KeyState StateOfMissing(moxSettings* profile, const Text& section, const Text& key) {
    const ScopedSection table(xmlGetProfileSection(profile, section.c_str(), nullptr));
    if (table.get() == nullptr) return KeyState::NoSection;
    return HasUnreadable(table.get(), key) ? KeyState::Unreadable : KeyState::NoKey;
}

// Of valid names.
inline KeyState StateOf(moxSettings* profile, const Text& section, const Text& key) {
    wchar16 start[2];
    return ReadStart(profile, section, key, start).has_value() ? KeyState::Readable
                                                               : StateOfMissing(profile, section, key);
}

// Reports why a key cannot be read. Returns false.
inline bool RefuseState(const Target& target, KeyState state) {
    switch (state) {
        case KeyState::NoSection:
            return target.Refuse(Reason::NoSuchSection, "there is no such section");
        case KeyState::NoKey:
            return target.Refuse(Reason::NoSuchKey, "there is no such key");
        case KeyState::Unreadable:
            return target.Refuse(Reason::Unreadable, "the key has no known type, so that it cannot be read");
        case KeyState::Readable:
            break;
    }
    return false;
}

// Whether section and key can be looked up.
inline bool RequireKey(const Target& target, const Text& section, const Text& key) {
    if (!target.RequireValid(section, "the section") || !target.RequireValid(key, "the key")) return false;
    return !key.units().empty() || target.Refuse(Reason::InvalidText, "the key is empty");
}

// Reports why a key that ReadStart has not found cannot be read. Returns false.
inline bool ExplainMissing(moxSettings* profile, const Target& target, const Text& section, const Text& key) {
    return target.problem != nullptr && RequireKey(target, section, key) &&
           RequireHandle(profile, target.problem) &&
           RefuseState(target, StateOfMissing(profile, section, key));
}

// Reads a key as a T; nullopt if there is none, or if its value is no T. Only then targetOf() is called, which returns
// where to report why.
template <class T, class TargetOf>
std::optional<T> GetKey(moxSettings* profile, const Text& section, const Text& key, TargetOf targetOf) {
    constexpr bool kIsString = kIsOneOf<T, std::string, std::u16string>;
    using String = std::conditional_t<kIsString, T, std::string>;
    std::optional<String> text = ReadKey<String>(profile, section, key);
    if (!text.has_value()) {
        ExplainMissing(profile, targetOf(), section, key);
        return std::nullopt;
    }
    if constexpr (kIsString) {
        return text;
    } else {
        std::optional<T> value = ValueOfText<T>(*text, Target());
        if (!value.has_value()) ValueOfText<T>(*text, targetOf());
        return value;
    }
}

// ---- writing

// Takes a new key back, and its section if that is new as well, unless Keep is called. Needs no memory.
class NewKey {
  public:
    NewKey(moxSettings* profile, const Text& section, const Text& key, KeyState before) noexcept
        : profile_(profile), section_(section), key_(key), before_(before) {}
    NewKey(const NewKey&) = delete;
    NewKey& operator=(const NewKey&) = delete;
    ~NewKey() {
        if (before_ == KeyState::NoSection) {
            xmlWriteProfileString(profile_, section_.c_str(), nullptr, nullptr);
        } else if (before_ == KeyState::NoKey) {
            xmlWriteProfileString(profile_, section_.c_str(), key_.c_str(), nullptr);
        }
    }
    void Keep() noexcept { before_ = KeyState::Readable; }

  private:
    moxSettings* profile_;
    const Text& section_;
    const Text& key_;
    KeyState before_;
};

// Whether an empty text can be the value of a key: reads would return the one of its presentation data instead. A key
// that a record cannot name counts as one with presentation data if any entry with the start of its name has them.
inline bool CanBeEmpty(moxSettings* profile, const Text& section, const Text& key) {
    const ScopedSection table(xmlGetProfileSection(profile, section.c_str(), nullptr));
    Entry16 entry;
    TableEntryBaseInfoStruct record;
    if (SetRecordName(key.units(), record)) return !ReadByName(table.get(), key, entry) || !HasUiValue(entry);
    const UnitsView start = key.units().substr(0, std::size(record.name) - 1);
    std::uint64_t position = 0;
    for (Step step = Step::Unreadable; step != Step::End;) {
        step = ReadNext(table.get(), position, entry);
        if (step == Step::Entry && Text(entry.name).units() == start && HasUiValue(entry)) return false;
    }
    return true;
}

// Decides whether a text can be written to a key, and finds out what there is. Changes nothing.
inline bool RequireWritable(moxSettings* profile, const Target& target, const Text& section, const Text& key,
                            UnitsView value, KeyState& state) {
    if (!RequireKey(target, section, key)) return false;
    if (!target.RequireKept(value, TextPlace::Element, "the value")) return false;
    state = StateOf(profile, section, key);
    if (target.IsLossy()) return true;
    switch (state) {
        case KeyState::NoSection:
            if (!target.RequireKept(section.units(), TextPlace::Attribute, "the section")) return false;
            [[fallthrough]];
        case KeyState::NoKey:
            return target.RequireKept(key.units(), TextPlace::Attribute, "the key");
        case KeyState::Unreadable:
            return RefuseState(target, state);
        case KeyState::Readable:
            break;
    }
    if (!target.RequireUntroubled(Troubled::kValue)) return false;
    return !value.empty() || CanBeEmpty(profile, section, key) ||
           target.Refuse(Reason::NotStored,
                         "an empty value would be read as the value that the presentation data have");
}

// Writes a text as the export does: to a new key of the type "string", or to the one that there is.
inline bool WriteKey(moxSettings* profile, const Target& target, const Text& section, const Text& key,
                     const Text& value) {
    KeyState state = KeyState::Readable;
    if (!target.RequireValid(value, "the value") ||
        !RequireWritable(profile, target, section, key, value.units(), state))
        return false;
    NewKey added(profile, section, key, state);
    if (xmlWriteProfileString(profile, section.c_str(), key.c_str(), value.c_str()) != 1)
        return target.Refuse(Reason::NotStored, "the library refused the value");
    added.Keep();
    return target.Succeed();
}

// Adds a key of that type to a section, which may have to be created.
inline bool AddTypedKey(moxSettings* profile, const Text& section, const Text& key, const TypedText& value,
                        KeyState state) {
    const ScopedSection table(state == KeyState::NoSection
                                  ? xmlWriteProfileSection(profile, section.c_str(), 0, 0, 0, nullptr)
                                  : xmlGetProfileSection(profile, section.c_str(), nullptr));
    TableEntryValueInfoStruct record;
    record.type = static_cast<std::uint16_t>(value.type);
    record.writeMask = kMaskName | kMaskType | kMaskValue;
    return SetRecordName(key.units(), record) && SetRecordValue(value.text, record.type, record) &&
           xmlTableEntryAdd(table.get(), nullptr, &record, nullptr, 0, 0);
}

// The same, but a new key has the type of the value. Only a key that no record can name has the type "string".
inline bool WriteTypedKey(moxSettings* profile, const Target& target, const Text& section, const Text& key,
                          const TypedText& value) {
    if (value.type == ValueType::String || key.units().size() > kMostNameUnits)
        return WriteKey(profile, target, section, key, value.text);
    KeyState state = KeyState::Readable;
    if (!RequireWritable(profile, target, section, key, value.text.units(), state)) return false;
    NewKey added(profile, section, key, state);
    const bool isNew = state == KeyState::NoSection || state == KeyState::NoKey;
    const bool isWritten =
        isNew ? AddTypedKey(profile, section, key, value, state)
              : xmlWriteProfileString(profile, section.c_str(), key.c_str(), value.text.c_str()) == 1;
    if (!isWritten) return target.Refuse(Reason::NotStored, "the library refused the value");
    added.Keep();
    return target.Succeed();
}

}  // namespace mox::front

#endif
