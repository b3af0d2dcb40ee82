#include "tools/expectations.h"

#include "mox_xmlApi/document/text_format.h"
#include "tools/document_diff.h"

namespace mox::tool {
namespace {

const DocumentTable* TableIn(const Document& document, const std::string& section) {
    return document.kind() == DocumentKind::Table ? &document.tables().front() : document.findTable(section);
}

// "Camera/Exposure"; in a table document "Exposure".
std::string PlaceIn(const Document& document, const std::string& section, const std::string& entry) {
    return (document.kind() == DocumentKind::Table ? "" : QuotedIfNeeded(section) + "/") +
           QuotedIfNeeded(entry);
}

std::string FieldIn(const Fields& fields, const std::string& field) {
    for (const auto& [name, text] : fields) {
        if (name == field) return text;
    }
    return "";
}

}  // namespace

void Expectations::Set(const std::string& section, const std::string& entry, const std::string& field,
                       const std::string& text) {
    gone_.erase({section, std::nullopt});
    gone_.erase({section, entry});
    fields_[{section, entry, field}] = text;
}

void Expectations::SetSection(const std::string& section, const std::string& field, const std::string& text) {
    gone_.erase({section, std::nullopt});
    sectionFields_[{section, field}] = text;
}

void Expectations::SetGone(const std::string& section) {
    Forget(section);
    gone_.insert({section, std::nullopt});
}

void Expectations::SetGone(const std::string& section, const std::string& entry) {
    Forget(section, entry);
    gone_.insert({section, entry});
}

void Expectations::Forget(const std::string& section) {
    gone_.erase({section, std::nullopt});
    sectionFields_.erase(sectionFields_.lower_bound({section, ""}),
                         sectionFields_.lower_bound({section + '\0', ""}));
    fields_.erase(fields_.lower_bound({section, "", ""}), fields_.lower_bound({section + '\0', "", ""}));
}

void Expectations::Forget(const std::string& section, const std::string& entry) {
    fields_.erase(fields_.lower_bound({section, entry, ""}),
                  fields_.lower_bound({section, entry + '\0', ""}));
}

std::string Expectations::FindBroken(const Document& document) const {
    for (const auto& [section, entry] : gone_) {
        const DocumentTable* const table = TableIn(document, section);
        if (entry.has_value() ? table != nullptr && table->findElement(*entry) != nullptr : table != nullptr)
            return "that " +
                   (entry.has_value() ? PlaceIn(document, section, *entry) : QuotedIfNeeded(section)) +
                   " is removed";
    }
    for (const auto& [place, text] : sectionFields_) {
        const DocumentTable* const table = TableIn(document, place.first);
        if (table == nullptr || FieldIn(FieldsOf(*table), place.second) != text)
            return QuotedIfNeeded(place.first) + " " + place.second;
    }
    for (const auto& [place, text] : fields_) {
        const auto& [section, entryName, field] = place;
        const DocumentTable* const table = TableIn(document, section);
        const DocumentEntry* const entry = table == nullptr ? nullptr : table->find(entryName);
        if (entry == nullptr ||
            (field == kEffective ? entry->effectiveValue() : FieldIn(FieldsOf(*entry), field)) != text)
            return PlaceIn(document, section, entryName) + " " + field;
    }
    return "";
}

}  // namespace mox::tool
