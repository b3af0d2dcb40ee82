// Keys and entries by their names: values, and what removes and renames them.
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "mox_host/call.h"
#include "mox_host/document_handle.h"
#include "mox_host/list_handle.h"
#include "mox_host/mox_host.h"

namespace mox::host {
namespace {

// Which key or entry is meant.
struct Key {
    Key(TextArgument ofSection, TextArgument ofName) : section(ofSection.View()), name(ofName.View()) {}

    // Where a read reports why it fails. (Reads have no rules.)
    front::Target TargetOf(Outcome& outcome) const noexcept {
        return {section.units(), name.units(), nullptr, outcome.Why()};
    }

    Text section;
    Text name;
};

// ---- reading

template <class T>
std::optional<T> Get(const mox_document& document, const Key& key, Outcome& outcome) {
    if (const auto* const profile = std::get_if<Profile>(&document.content))
        return front::GetKey<T>(profile->handle(), key.section, key.name,
                                [&] { return key.TargetOf(outcome); });
    if (!RequireNoSection(outcome, key.section)) return std::nullopt;
    return std::get<Table>(document.content).get<T>(key.name, outcome.Why());
}

// Reads a value that is a number.
template <class T, class Given>
mox_status GetNumber(const mox_document* document, TextArgument section, TextArgument name, Given* given,
                     mox_problem* problem) noexcept {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, document, given) || !RequireTexts(outcome, {section, name}))
            return false;
        const std::optional<T> value = Get<T>(*document, Key(section, name), outcome);
        if (!value.has_value()) return false;
        *given = static_cast<Given>(*value);
        return true;
    });
}

// The memory of the host for a text or bytes.
struct Buffer {
    Buffer(void* toData, std::size_t ofCapacity, std::size_t* toSize) noexcept
        : data(toData), capacity(ofCapacity), size(toSize) {}

    void* data;
    std::size_t capacity;
    std::size_t* size;  // null: not asked for
};

// Copies what was read to the host's memory, a text with a zero byte after it.
bool CopyToHost(std::string_view bytes, bool isText, const Buffer& buffer, Outcome& outcome) noexcept {
    if (buffer.size != nullptr) *buffer.size = bytes.size();
    if (buffer.capacity < bytes.size() + (isText ? 1 : 0))
        return outcome.Refuse(MOX_BUFFER_TOO_SMALL, "the buffer is too small");
    if (!bytes.empty()) std::memcpy(buffer.data, bytes.data(), bytes.size());
    if (isText) static_cast<char*>(buffer.data)[bytes.size()] = '\0';
    return true;
}

// Copies the value of a key. Most are short and 7-bit: no string is made of these.
bool CopyKey(const Profile& profile, const Key& key, const Buffer& buffer, Outcome& outcome) {
    wchar16 units[front::kReadSize];
    const std::optional<std::uint32_t> length =
        front::ReadStart(profile.handle(), key.section, key.name, units);
    if (!length.has_value())
        return front::ExplainMissing(profile.handle(), key.TargetOf(outcome), key.section, key.name);
    const front::UnitsView start(units, *length);
    char bytes[front::kReadSize];
    if (*length + 1 < front::kReadSize && front::NarrowAscii(start, bytes) == *length)
        return CopyToHost({bytes, *length}, true, buffer, outcome);
    const auto text = front::WholeText<std::string>(profile.handle(), key.section, key.name, start);
    return CopyToHost(text, true, buffer, outcome);
}

bool RequireBuffer(Outcome& outcome, const Buffer& buffer) noexcept {
    return buffer.data != nullptr || buffer.capacity == 0 ||
           outcome.RefuseArgument("a buffer is a null pointer with a capacity");
}

// Checks the arguments of a read into memory of the host, and calls read(key, outcome).
template <class Read>
mox_status ReadToHost(const mox_document* document, TextArgument section, TextArgument name,
                      const Buffer& buffer, mox_problem* problem, Read read) noexcept {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, document) || !RequireTexts(outcome, {section, name}) ||
            !RequireBuffer(outcome, buffer))
            return false;
        return read(Key(section, name), outcome);
    });
}

// ---- writing

// Only a call that fails needs a problem. It has changed nothing, so it fails again.
template <class T>
bool Set(mox_document& document, const Key& key, const T& value, Outcome& outcome) {
    if (auto* const profile = std::get_if<Profile>(&document.content)) {
        if constexpr (std::is_same_v<T, std::string_view>) {
            const Text text(value);
            return profile->setString(key.section, key.name, text) ||
                   profile->setString(key.section, key.name, text, outcome.Why());
        }
        return profile->set(key.section, key.name, value) ||
               profile->set(key.section, key.name, value, outcome.Why());
    }
    auto& table = std::get<Table>(document.content);
    return RequireNoSection(outcome, key.section) &&
           (table.set(key.name, value) || table.set(key.name, value, outcome.Why()));
}

template <class T>
mox_status SetValue(mox_document* document, TextArgument section, TextArgument name, const T& value,
                    mox_problem* problem) noexcept {
    return Run(problem, [&](Outcome& outcome) {
        return RequirePointers(outcome, document) && RequireTexts(outcome, {section, name}) &&
               Set(*document, Key(section, name), value, outcome);
    });
}

template <class Integer>
mox_status SetInteger(mox_document* document, TextArgument section, TextArgument name, std::int64_t value,
                      mox_problem* problem) noexcept {
    const bool isInRange = value >= static_cast<std::int64_t>((std::numeric_limits<Integer>::min)()) &&
                           value <= static_cast<std::int64_t>((std::numeric_limits<Integer>::max)());
    if (isInRange) return SetValue(document, section, name, static_cast<Integer>(value), problem);
    return Run(problem, [&](Outcome& outcome) {
        return RequirePointers(outcome, document) && RequireTexts(outcome, {section, name}) &&
               outcome.Refuse(MOX_OUT_OF_RANGE, "the number does not fit the type");
    });
}

}  // namespace
}  // namespace mox::host

using namespace mox::host;  // NOLINT(google-build-using-namespace): what is defined here are functions of C

// ---- reading

mox_status mox_entry_names(const mox_document* document, const char* section, size_t section_size,
                           mox_list** names, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, document, names) || !RequireTexts(outcome, {{section, section_size}}))
            return false;
        auto list = std::make_unique<mox_list>(mox_list::Kind::Names);
        const auto add = [&](const mox::EntryTable& entries) {
            for (const std::string& name : entries.names())
                list->AddName(name);
            return true;
        };
        if (!WithEntries(*document, std::string_view(section, section_size), outcome, add)) return false;
        *names = list.release();
        return true;
    });
}

mox_status mox_contains(const mox_document* document, const char* section, size_t section_size,
                        const char* name, size_t name_size, int32_t* found, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        const TextArgument sectionText{section, section_size};
        const TextArgument nameText{name, name_size};
        if (!RequirePointers(outcome, document, found) || !RequireTexts(outcome, {sectionText, nameText}))
            return false;
        const Key key(sectionText, nameText);
        if (!key.section.isValid() || !key.name.isValid())
            return outcome.Refuse(MOX_INVALID_TEXT, "a name is not UTF-8, or contains a zero");
        if (const auto* const profile = std::get_if<mox::Profile>(&document->content)) {
            *found = profile->contains(key.section, key.name) ? 1 : 0;
        } else {
            const auto& table = std::get<mox::Table>(document->content);
            *found = key.section.units().empty() && table.contains(key.name) ? 1 : 0;
        }
        return true;
    });
}

mox_status mox_get_text(const mox_document* document, const char* section, size_t section_size,
                        const char* name, size_t name_size, char* buffer, size_t capacity, size_t* size,
                        mox_problem* problem) {
    const Buffer given(buffer, capacity, size);
    const auto read = [&](const Key& key, Outcome& outcome) {
        if (const auto* const profile = std::get_if<mox::Profile>(&document->content))
            return CopyKey(*profile, key, given, outcome);
        const std::optional<std::string> text = Get<std::string>(*document, key, outcome);
        return text.has_value() && CopyToHost(*text, true, given, outcome);
    };
    return ReadToHost(document, {section, section_size}, {name, name_size}, given, problem, read);
}

mox_status mox_get_int(const mox_document* document, const char* section, size_t section_size,
                       const char* name, size_t name_size, int64_t* value, mox_problem* problem) {
    return GetNumber<std::int64_t>(document, {section, section_size}, {name, name_size}, value, problem);
}

mox_status mox_get_double(const mox_document* document, const char* section, size_t section_size,
                          const char* name, size_t name_size, double* value, mox_problem* problem) {
    return GetNumber<double>(document, {section, section_size}, {name, name_size}, value, problem);
}

mox_status mox_get_bool(const mox_document* document, const char* section, size_t section_size,
                        const char* name, size_t name_size, int32_t* value, mox_problem* problem) {
    return GetNumber<bool>(document, {section, section_size}, {name, name_size}, value, problem);
}

mox_status mox_get_bytes(const mox_document* document, const char* section, size_t section_size,
                         const char* name, size_t name_size, void* buffer, size_t capacity, size_t* size,
                         mox_problem* problem) {
    const Buffer given(buffer, capacity, size);
    const auto read = [&](const Key& key, Outcome& outcome) {
        const auto bytes = Get<mox::front::Bytes>(*document, key, outcome);
        if (!bytes.has_value()) return false;
        const std::string_view view(reinterpret_cast<const char*>(bytes->data()), bytes->size());
        return CopyToHost(view, false, given, outcome);
    };
    return ReadToHost(document, {section, section_size}, {name, name_size}, given, problem, read);
}

// ---- writing

mox_status mox_set_text(mox_document* document, const char* section, size_t section_size, const char* name,
                        size_t name_size, const char* value, size_t value_size, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        const TextArgument sectionText{section, section_size};
        const TextArgument nameText{name, name_size};
        return RequirePointers(outcome, document) &&
               RequireTexts(outcome, {sectionText, nameText, {value, value_size}}) &&
               Set(*document, Key(sectionText, nameText), std::string_view(value, value_size), outcome);
    });
}

mox_status mox_set_int(mox_document* document, const char* section, size_t section_size, const char* name,
                       size_t name_size, int64_t value, uint32_t type, mox_problem* problem) {
    const TextArgument sectionText{section, section_size};
    const TextArgument nameText{name, name_size};
    switch (type) {
        case MOX_TYPE_SHORT:
            return SetInteger<std::int16_t>(document, sectionText, nameText, value, problem);
        case MOX_TYPE_USHORT:
            return SetInteger<std::uint16_t>(document, sectionText, nameText, value, problem);
        case MOX_TYPE_LONG:
            return SetInteger<std::int32_t>(document, sectionText, nameText, value, problem);
        case MOX_TYPE_ULONG:
            return SetInteger<std::uint32_t>(document, sectionText, nameText, value, problem);
        case MOX_TYPE_STRING:
            return SetValue(document, sectionText, nameText, value, problem);
        default:
            return Run(problem, [](Outcome& outcome) {
                return outcome.RefuseArgument("the type is not one of whole numbers");
            });
    }
}

mox_status mox_set_double(mox_document* document, const char* section, size_t section_size, const char* name,
                          size_t name_size, double value, mox_problem* problem) {
    return SetValue(document, {section, section_size}, {name, name_size}, value, problem);
}

mox_status mox_set_bool(mox_document* document, const char* section, size_t section_size, const char* name,
                        size_t name_size, int32_t value, mox_problem* problem) {
    if (value == 0 || value == 1)
        return SetValue(document, {section, section_size}, {name, name_size}, value == 1, problem);
    return Run(problem,
               [](Outcome& outcome) { return outcome.RefuseArgument("a truth value is neither 0 nor 1"); });
}

mox_status mox_set_bytes(mox_document* document, const char* section, size_t section_size, const char* name,
                         size_t name_size, const void* bytes, size_t size, mox_problem* problem) {
    // The type of the front's argument: bytes of which nothing is copied.
    struct BytesView {
        const std::uint8_t* data() const noexcept { return first; }
        std::size_t size() const noexcept { return count; }
        const std::uint8_t* first;
        std::size_t count;
    };
    return Run(problem, [&](Outcome& outcome) {
        const TextArgument sectionText{section, section_size};
        const TextArgument nameText{name, name_size};
        if (!RequirePointers(outcome, document) || !RequireTexts(outcome, {sectionText, nameText}))
            return false;
        if (bytes == nullptr && size != 0)
            return outcome.RefuseArgument("the bytes are a null pointer with a length");
        if (size > static_cast<std::size_t>((std::numeric_limits<std::int32_t>::max)()) / 2)
            return outcome.Refuse(MOX_TOO_LARGE, "a text would be longer than the library can store");
        return Set(*document, Key(sectionText, nameText),
                   BytesView{static_cast<const std::uint8_t*>(bytes), size}, outcome);
    });
}

mox_status mox_remove(mox_document* document, const char* section, size_t section_size, const char* name,
                      size_t name_size, int32_t occurrence, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        const TextArgument sectionText{section, section_size};
        const TextArgument nameText{name, name_size};
        if (!RequirePointers(outcome, document) || !RequireTexts(outcome, {sectionText, nameText}))
            return false;
        if (occurrence < MOX_ALL) return outcome.RefuseArgument("the occurrence is negative");
        const Key key(sectionText, nameText);
        // Of a profile, this also removes keys with names that are too long for an entry.
        auto* const profile = std::get_if<mox::Profile>(&document->content);
        if (profile != nullptr && occurrence == MOX_ALL)
            return profile->remove(key.section, key.name, outcome.Why());
        return WithEntries(*document, key.section, outcome, [&](mox::EntryTable& entries) {
            return occurrence == MOX_ALL ? entries.removeAll(key.name, outcome.Why())
                                         : entries.remove(key.name, occurrence, outcome.Why());
        });
    });
}

mox_status mox_rename(mox_document* document, const char* section, size_t section_size, const char* name,
                      size_t name_size, const char* new_name, size_t new_name_size, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, document) ||
            !RequireTexts(outcome, {{section, section_size}, {name, name_size}, {new_name, new_name_size}}))
            return false;
        const auto rename = [&](mox::EntryTable& entries) {
            return entries.rename(std::string_view(name, name_size),
                                  std::string_view(new_name, new_name_size), outcome.Why());
        };
        return WithEntries(*document, std::string_view(section, section_size), outcome, rename);
    });
}

mox_status mox_clear(mox_document* document, const char* section, size_t section_size, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, document) || !RequireTexts(outcome, {{section, section_size}}))
            return false;
        return WithEntries(*document, std::string_view(section, section_size), outcome,
                           [&](mox::EntryTable& entries) { return entries.clear(outcome.Why()); });
    });
}
