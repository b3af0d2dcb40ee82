// What is behind a mox_document, and how functions get at a section of it.
#ifndef MOX_HOST_DOCUMENT_HANDLE_H
#define MOX_HOST_DOCUMENT_HANDLE_H

#include <cstdint>
#include <optional>
#include <variant>

#include "mox_host/call.h"
#include "mox_xmlApi/mox_xmlApi.hpp"

struct mox_document {
    std::variant<mox::Profile, mox::Table> content;
};

namespace mox::host {

// A table document has no sections but the empty name.
inline bool RequireNoSection(Outcome& outcome, const Text& section) {
    return (section.isValid() && section.units().empty()) ||
           outcome.Refuse(section.isValid() ? MOX_NO_SUCH_SECTION : MOX_INVALID_TEXT,
                          section.isValid() ? "a table document has no sections"
                                            : "the section is not UTF-8, or contains a zero");
}

// Calls use(entries) with the entries of a section, or of the table of a table document.
template <class Use>
bool WithEntries(const mox_document& document, const Text& section, Outcome& outcome, Use use) {
    if (const auto* const profile = std::get_if<Profile>(&document.content)) {
        std::optional<Section> found = profile->findSection(section, outcome.Why());
        return found.has_value() && use(static_cast<const EntryTable&>(*found));
    }
    return RequireNoSection(outcome, section) &&
           use(static_cast<const EntryTable&>(std::get<Table>(document.content)));
}

// The same for writes.
template <class Use>
bool WithEntries(mox_document& document, const Text& section, Outcome& outcome, Use use) {
    if (const auto* const profile = std::get_if<Profile>(&document.content)) {
        std::optional<Section> found = profile->findSection(section, outcome.Why());
        return found.has_value() && use(static_cast<EntryTable&>(*found));
    }
    return RequireNoSection(outcome, section) &&
           use(static_cast<EntryTable&>(std::get<Table>(document.content)));
}

}  // namespace mox::host

#endif
