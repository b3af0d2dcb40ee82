// Whole entries, with their presentation data.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "mox_host/call.h"
#include "mox_host/document_handle.h"
#include "mox_host/list_handle.h"
#include "mox_host/mox_host.h"

namespace mox::host {
namespace {

constexpr const char* kTooLargeNumber = "a type, shape, control or owner is larger than any that there is";

std::optional<std::string> OptionalText(TextArgument text) {
    if (text.data == nullptr) return std::nullopt;
    return std::string(text.View());
}

// Whether the fields of the presentation data are at their defaults.
bool HasNoUi(const mox_entry& given) noexcept {
    return given.control == 0 && given.provider_owner == 0 && given.provider_index == 0 &&
           given.shown_name_size == 0 && given.comment_size == 0 && given.ui_value == nullptr;
}

// The entry of the host as one of the front, which decides whether the library can store it.
bool TakeEntry(Outcome& outcome, const mox_entry* host, Entry& entry) {
    mox_entry given{};
    if (!TakeStructure(outcome, host, given) ||
        !RequireTexts(outcome, {{given.name, given.name_size},
                                {given.value, given.value_size},
                                {given.shown_name, given.shown_name_size},
                                {given.comment, given.comment_size},
                                {given.ui_value, given.ui_value_size}}))
        return false;
    if (given.type > 0xFFFF || given.shape > 0xFFFF || given.control > 0xFFFF || given.provider_owner > 0xFF)
        return outcome.RefuseArgument(kTooLargeNumber);
    if (given.has_ui > 1) return outcome.RefuseArgument("\"has_ui\" is neither 0 nor 1");
    if (given.has_ui == 0 && !HasNoUi(given))
        return outcome.RefuseArgument("\"has_ui\" is 0, but there are presentation data");
    entry.name = TextArgument{given.name, given.name_size}.View();
    entry.value = OptionalText({given.value, given.value_size});
    entry.type = static_cast<ValueType>(given.type);
    entry.shape = static_cast<Shape>(given.shape);
    entry.id = given.id;
    if (given.has_ui == 0) return true;
    Presentation& ui = entry.ui.emplace();
    ui.control = static_cast<Control>(given.control);
    ui.providerOwner = static_cast<Owner>(given.provider_owner);
    ui.providerIndex = given.provider_index;
    ui.shownName = TextArgument{given.shown_name, given.shown_name_size}.View();
    ui.comment = TextArgument{given.comment, given.comment_size}.View();
    ui.value = OptionalText({given.ui_value, given.ui_value_size});
    return true;
}

Eud EudOf(std::uint32_t flags) noexcept {
    return (flags & MOX_EUD_SET) != 0 ? Eud::Set : Eud::DoNotSet;
}

// Checks the arguments of a call that changes one entry, and calls change(entries, name).
template <class Change>
bool ChangeEntry(mox_document* document, TextArgument section, TextArgument name, Outcome& outcome,
                 Change change) {
    if (!RequirePointers(outcome, document) || !RequireTexts(outcome, {section, name})) return false;
    return WithEntries(*document, section.View(), outcome,
                       [&](EntryTable& entries) { return change(entries, Text(name.View())); });
}

}  // namespace
}  // namespace mox::host

using namespace mox::host;  // NOLINT(google-build-using-namespace): what is defined here are functions of C

// ---- reading

mox_status mox_entries(const mox_document* document, const char* section, size_t section_size,
                       mox_list** entries, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, document, entries) || !RequireTexts(outcome, {{section, section_size}}))
            return false;
        auto list = std::make_unique<mox_list>(mox_list::Kind::Entries);
        const auto add = [&](const mox::EntryTable& table) {
            list->ReserveEntries();
            for (const mox::Entry& entry : table.entries())
                list->AddEntry(entry);
            return true;
        };
        if (!WithEntries(*document, std::string_view(section, section_size), outcome, add)) return false;
        *entries = list.release();
        return true;
    });
}

mox_status mox_find_entry(const mox_document* document, const char* section, size_t section_size,
                          const char* name, size_t name_size, mox_list** entries, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, document, entries) ||
            !RequireTexts(outcome, {{section, section_size}, {name, name_size}}))
            return false;
        auto list = std::make_unique<mox_list>(mox_list::Kind::Entries);
        const auto add = [&](const mox::EntryTable& table) {
            const auto entry = table.find(std::string_view(name, name_size), outcome.Why());
            if (entry.has_value()) list->AddEntry(*entry);
            return entry.has_value();
        };
        if (!WithEntries(*document, std::string_view(section, section_size), outcome, add)) return false;
        *entries = list.release();
        return true;
    });
}

mox_status mox_count_unreadable(const mox_document* document, const char* section, size_t section_size,
                                size_t* count, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, document, count) || !RequireTexts(outcome, {{section, section_size}}))
            return false;
        return WithEntries(*document, std::string_view(section, section_size), outcome,
                           [&](const mox::EntryTable& table) {
                               *count = table.countUnreadable();
                               return true;
                           });
    });
}

// ---- writing

mox_status mox_add_entry(mox_document* document, const char* section, size_t section_size, const char* before,
                         size_t before_size, const mox_entry* entry, uint32_t flags, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        mox::Entry added;
        if (!RequirePointers(outcome, document, entry) ||
            !RequireTexts(outcome, {{section, section_size}, {before, before_size}}) ||
            !RequireFlags(outcome, flags, MOX_EUD_SET) || !TakeEntry(outcome, entry, added))
            return false;
        const auto add = [&](mox::EntryTable& table) {
            if (before == nullptr) return table.add(added, EudOf(flags), outcome.Why());
            return table.addBefore(std::string_view(before, before_size), added, EudOf(flags), outcome.Why());
        };
        return WithEntries(*document, std::string_view(section, section_size), outcome, add);
    });
}

mox_status mox_put_entry(mox_document* document, const char* section, size_t section_size,
                         const mox_entry* entry, uint32_t flags, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        mox::Entry changed;
        if (!RequirePointers(outcome, document, entry) || !RequireTexts(outcome, {{section, section_size}}) ||
            !RequireFlags(outcome, flags, MOX_EUD_SET) || !TakeEntry(outcome, entry, changed))
            return false;
        return WithEntries(
            *document, std::string_view(section, section_size), outcome,
            [&](mox::EntryTable& table) { return table.put(changed, EudOf(flags), outcome.Why()); });
    });
}

mox_status mox_set_value(mox_document* document, const char* section, size_t section_size, const char* name,
                         size_t name_size, const char* value, size_t value_size, uint32_t flags,
                         mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequireTexts(outcome, {{value, value_size}}) ||
            !RequireFlags(outcome, flags, MOX_EUD_SET | MOX_EUD_RESPECT))
            return false;
        const auto change = [&](mox::EntryTable& table, const mox::Text& entry) {
            const mox::Text text(std::string_view(value, value_size));
            if ((flags & MOX_EUD_RESPECT) != 0)
                return table.setValueUnlessEud(entry, text, EudOf(flags), outcome.Why());
            return table.setValue(entry, text, EudOf(flags), outcome.Why());
        };
        return ChangeEntry(document, {section, section_size}, {name, name_size}, outcome, change);
    });
}

mox_status mox_set_eud(mox_document* document, const char* section, size_t section_size, const char* name,
                       size_t name_size, int32_t eud, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (eud != 0 && eud != 1) return outcome.RefuseArgument("\"eud\" is neither 0 nor 1");
        return ChangeEntry(document, {section, section_size}, {name, name_size}, outcome,
                           [&](mox::EntryTable& table, const mox::Text& entry) {
                               return table.setEud(entry, eud == 1, outcome.Why());
                           });
    });
}

mox_status mox_set_comment(mox_document* document, const char* section, size_t section_size, const char* name,
                           size_t name_size, const char* comment, size_t comment_size, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequireTexts(outcome, {{comment, comment_size}})) return false;
        return ChangeEntry(document, {section, section_size}, {name, name_size}, outcome,
                           [&](mox::EntryTable& table, const mox::Text& entry) {
                               return table.setComment(entry, std::string_view(comment, comment_size),
                                                       outcome.Why());
                           });
    });
}

mox_status mox_set_shown_name(mox_document* document, const char* section, size_t section_size,
                              const char* name, size_t name_size, const char* shown_name,
                              size_t shown_name_size, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequireTexts(outcome, {{shown_name, shown_name_size}})) return false;
        return ChangeEntry(document, {section, section_size}, {name, name_size}, outcome,
                           [&](mox::EntryTable& table, const mox::Text& entry) {
                               return table.setShownName(entry, std::string_view(shown_name, shown_name_size),
                                                         outcome.Why());
                           });
    });
}

mox_status mox_set_provider(mox_document* document, const char* section, size_t section_size,
                            const char* name, size_t name_size, uint32_t owner, uint32_t index,
                            mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (owner > 0xFF) return outcome.RefuseArgument(kTooLargeNumber);
        return ChangeEntry(document, {section, section_size}, {name, name_size}, outcome,
                           [&](mox::EntryTable& table, const mox::Text& entry) {
                               return table.setProvider(entry, static_cast<mox::Owner>(owner), index,
                                                        outcome.Why());
                           });
    });
}
