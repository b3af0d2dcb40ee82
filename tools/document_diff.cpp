#include "tools/document_diff.h"

#include <map>
#include <utility>

#include "mox_xmlApi/document/text_format.h"

namespace mox::tool {
namespace {

constexpr const char* kEud = "eud";

std::string LocationOf(const Difference& difference) {
    std::string location = QuotedIfNeeded(difference.table);
    if (difference.hasEntry) location += "/" + QuotedIfNeeded(difference.entry);
    if (difference.occurrence > 1) location += "#" + std::to_string(difference.occurrence);
    return location;
}

std::string Number(std::uint32_t number) {
    return std::to_string(number);
}

// Numbers the items of the same name, from 1 on. The n-th item of a name in one document is compared with the n-th in
// the other.
template <class Item>
class Occurrences {
  public:
    explicit Occurrences(const std::vector<const Item*>& items) {
        std::map<std::string, std::size_t> counts;
        for (const Item* item : items) {
            const std::size_t occurrence = ++counts[item->name];
            list_.push_back({item, occurrence});
            index_[{item->name, occurrence}] = item;
        }
    }

    struct Numbered {
        const Item* item;
        std::size_t occurrence;
    };
    const std::vector<Numbered>& List() const noexcept { return list_; }

    const Item* Find(const std::string& name, std::size_t occurrence) const {
        const auto found = index_.find({name, occurrence});
        return found == index_.end() ? nullptr : found->second;
    }

  private:
    std::vector<Numbered> list_;
    std::map<std::pair<std::string, std::size_t>, const Item*> index_;
};

// The fields of something new that differ from the defaults, without the one that is printed separately.
Fields FieldsToAdd(Fields all, const Fields& defaults, const char* separate) {
    Fields fields;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i].second != defaults[i].second && all[i].first != separate)
            fields.push_back(std::move(all[i]));
    }
    return fields;
}

class Comparison {
  public:
    explicit Comparison(bool withEud) : withEud_(withEud) {}

    std::vector<Difference> TakeDifferences() { return std::move(differences_); }

    void CompareKinds(const Document& before, const Document& after) {
        if (before.kind() == after.kind()) return;
        Difference difference;
        difference.field = "kind";
        difference.before = describe(before.kind());
        difference.after = describe(after.kind());
        differences_.push_back(difference);
    }

    void CompareTables(const Document& before, const Document& after) {
        const Occurrences<DocumentTable> oldTables(TablesOf(before));
        const Occurrences<DocumentTable> newTables(TablesOf(after));
        for (const auto& [table, occurrence] : oldTables.List()) {
            const DocumentTable* const newTable = newTables.Find(table->name, occurrence);
            if (newTable == nullptr) {
                AddTable(Change::Removed, *table, occurrence);
            } else {
                CompareTable(*table, *newTable, occurrence);
            }
        }
        for (const auto& [table, occurrence] : newTables.List()) {
            if (oldTables.Find(table->name, occurrence) == nullptr)
                AddTable(Change::Added, *table, occurrence);
        }
    }

  private:
    static std::vector<const DocumentTable*> TablesOf(const Document& document) {
        std::vector<const DocumentTable*> tables;
        for (const DocumentTable& table : document.tables()) {
            if (table.isTable) tables.push_back(&table);
        }
        return tables;
    }

    // Leaves out elements that have neither a name nor a known type: no host can name or read them.
    static std::vector<const DocumentEntry*> EntriesOf(const DocumentTable& table) {
        std::vector<const DocumentEntry*> entries;
        for (const DocumentEntry& entry : table.entries) {
            if (entry.isReadable || entry.hasName) entries.push_back(&entry);
        }
        return entries;
    }

    void AddTable(Change change, const DocumentTable& table, std::size_t occurrence) {
        Difference difference;
        difference.change = change;
        difference.table = table.name;
        difference.occurrence = occurrence;
        if (change == Change::Added)
            difference.fields = FieldsToAdd(Compared(FieldsOf(table)), FieldsOf(DocumentTable()), "");
        differences_.push_back(difference);
        const Occurrences<DocumentEntry> entries(EntriesOf(table));
        for (const auto& [entry, entryOccurrence] : entries.List())
            AddEntry(change, table, *entry, entryOccurrence);
    }

    void AddEntry(Change change, const DocumentTable& table, const DocumentEntry& entry,
                  std::size_t occurrence) {
        Difference difference;
        difference.change = change;
        difference.table = table.name;
        difference.entry = entry.name;
        difference.hasEntry = true;
        difference.occurrence = occurrence;
        difference.field = entry.describeType();
        (change == Change::Added ? difference.after : difference.before) = entry.effectiveValue();
        if (change == Change::Added)
            difference.fields = FieldsToAdd(Compared(FieldsOf(entry)), FieldsOf(DocumentEntry()), "type");
        differences_.push_back(difference);
    }

    void CompareTable(const DocumentTable& before, const DocumentTable& after, std::size_t occurrence) {
        Difference changed;
        changed.table = before.name;
        changed.occurrence = occurrence;
        CompareFields(changed, FieldsOf(before), FieldsOf(after));
        const Occurrences<DocumentEntry> oldEntries(EntriesOf(before));
        const Occurrences<DocumentEntry> newEntries(EntriesOf(after));
        changed.hasEntry = true;
        for (const auto& [entry, entryOccurrence] : oldEntries.List()) {
            const DocumentEntry* const newEntry = newEntries.Find(entry->name, entryOccurrence);
            if (newEntry == nullptr) {
                AddEntry(Change::Removed, before, *entry, entryOccurrence);
                continue;
            }
            changed.entry = entry->name;
            changed.occurrence = entryOccurrence;
            CompareFields(changed, FieldsOf(*entry), FieldsOf(*newEntry));
        }
        for (const auto& [entry, entryOccurrence] : newEntries.List()) {
            if (oldEntries.Find(entry->name, entryOccurrence) == nullptr)
                AddEntry(Change::Added, after, *entry, entryOccurrence);
        }
    }

    Fields Compared(Fields fields) const {
        if (!withEud_) fields.pop_back();  // the last one
        return fields;
    }

    // Adds a difference for each field that differs: a copy of `changed` with the field and its values.
    void CompareFields(const Difference& changed, const Fields& before, const Fields& after) {
        for (std::size_t i = 0; i < before.size(); ++i) {
            if (before[i].second == after[i].second || (!withEud_ && before[i].first == kEud)) continue;
            Difference difference = changed;
            difference.field = before[i].first;
            difference.before = before[i].second;
            difference.after = after[i].second;
            differences_.push_back(difference);
        }
    }

    bool withEud_;
    std::vector<Difference> differences_;
};

}  // namespace

std::string LineOf(const Difference& difference) {
    if (difference.field == "kind") return "~ a " + difference.before + " -> a " + difference.after;
    const std::string location = LocationOf(difference);
    if (difference.change == Change::Changed) {
        return "~ " + location + " " + difference.field + ": " + Quoted(difference.before) + " -> " +
               Quoted(difference.after);
    }
    const bool isAdded = difference.change == Change::Added;
    const std::string sign = isAdded ? "+ " : "- ";
    if (!difference.hasEntry) return sign + location;
    return sign + location + " " + difference.field + ": " +
           Quoted(isAdded ? difference.after : difference.before);
}

Fields FieldsOf(const DocumentTable& table) {
    return {{"first_id", Number(table.firstId)},
            {"type", Hex(table.type, 4)},
            {"editable", table.isEditable ? "true" : "false"},
            {kEud, table.hasEud ? "true" : "false"}};
}

// The same fields with and without presentation data, so that CompareFields can compare them by index.
Fields FieldsOf(const DocumentEntry& entry) {
    const DocumentPresentation ui = entry.ui != nullptr ? *entry.ui : DocumentPresentation();
    return {{"type", entry.describeType()},
            {"id", Number(entry.id)},
            {"value", entry.value},
            {"ui.control", ui.control},
            {"ui.shown_name", ui.shownName},
            {"ui.comment", ui.comment},
            {"ui.value", ui.value},
            {"ui.provider", ui.provider},
            {"ui.provider_index", Number(ui.providerIndex)},
            {"ui.access", ui.access},
            {"ui.flags", ui.flags == 0 ? "" : Hex(ui.flags, 4)},
            {"ui.regen", ui.regen},
            {"ui.minimum", ui.minimum},
            {"ui.maximum", ui.maximum},
            {kEud, entry.hasEud ? "true" : "false"}};
}

std::vector<Difference> CompareDocuments(const Document& before, const Document& after, bool withEud) {
    Comparison comparison(withEud);
    comparison.CompareKinds(before, after);
    comparison.CompareTables(before, after);
    return comparison.TakeDifferences();
}

}  // namespace mox::tool
