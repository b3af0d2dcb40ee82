#include "tools/document_diff.h"

#include <map>
#include <utility>

namespace mox::tool {
namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

std::string Number(std::uint32_t number) {
    return std::to_string(number);
}

Fields FieldsOf(const TableModel& table) {
    return {{"first_id", Number(table.firstId)},
            {"type", table.type},
            {"editable", table.isEditable ? "true" : "false"}};
}

// The same fields with and without presentation data, so that CompareFields can compare them by index.
Fields FieldsOf(const EntryModel& entry) {
    const UiModel ui = entry.ui.value_or(UiModel());
    return {{"type", TypeText(entry)},
            {"id", Number(entry.id)},
            {"value", entry.value},
            {"ui.control", ui.control},
            {"ui.shown_name", ui.shownName},
            {"ui.comment", ui.comment},
            {"ui.value", ui.value},
            {"ui.provider", ui.provider},
            {"ui.provider_index", Number(ui.providerIndex)},
            {"ui.access", ui.access},
            {"ui.flags", ui.flags},
            {"ui.regen", ui.regen},
            {"ui.minimum", ui.minimum},
            {"ui.maximum", ui.maximum}};
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

class Comparison {
  public:
    std::vector<Difference> TakeDifferences() { return std::move(differences_); }

    void CompareKinds(const DocumentModel& before, const DocumentModel& after) {
        if (before.kind == after.kind) return;
        Difference difference;
        difference.field = "kind";
        difference.before = KindName(before.kind);
        difference.after = KindName(after.kind);
        differences_.push_back(difference);
    }

    void CompareTables(const DocumentModel& before, const DocumentModel& after) {
        const Occurrences<TableModel> oldTables(TablesOf(before));
        const Occurrences<TableModel> newTables(TablesOf(after));
        for (const auto& [table, occurrence] : oldTables.List()) {
            const TableModel* const newTable = newTables.Find(table->name, occurrence);
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
    static std::vector<const TableModel*> TablesOf(const DocumentModel& document) {
        std::vector<const TableModel*> tables;
        for (const TableModel& table : document.tables) {
            if (table.isTable) tables.push_back(&table);
        }
        return tables;
    }

    // Leaves out elements that have neither a name nor a known type: no host can name or read them.
    static std::vector<const EntryModel*> EntriesOf(const TableModel& table) {
        std::vector<const EntryModel*> entries;
        for (const EntryModel& entry : table.entries) {
            if (entry.isReadable || entry.hasName) entries.push_back(&entry);
        }
        return entries;
    }

    void AddTable(Change change, const TableModel& table, std::size_t occurrence) {
        Difference difference;
        difference.change = change;
        difference.table = table.name;
        difference.occurrence = occurrence;
        differences_.push_back(difference);
        const Occurrences<EntryModel> entries(EntriesOf(table));
        for (const auto& [entry, entryOccurrence] : entries.List())
            AddEntry(change, table, *entry, entryOccurrence);
    }

    void AddEntry(Change change, const TableModel& table, const EntryModel& entry, std::size_t occurrence) {
        Difference difference;
        difference.change = change;
        difference.table = table.name;
        difference.entry = entry.name;
        difference.hasEntry = true;
        difference.occurrence = occurrence;
        difference.field = TypeText(entry);
        (change == Change::Added ? difference.after : difference.before) = EffectiveValue(entry);
        differences_.push_back(difference);
    }

    void CompareTable(const TableModel& before, const TableModel& after, std::size_t occurrence) {
        Difference changed;
        changed.table = before.name;
        changed.occurrence = occurrence;
        CompareFields(changed, FieldsOf(before), FieldsOf(after));
        const Occurrences<EntryModel> oldEntries(EntriesOf(before));
        const Occurrences<EntryModel> newEntries(EntriesOf(after));
        changed.hasEntry = true;
        for (const auto& [entry, entryOccurrence] : oldEntries.List()) {
            const EntryModel* const newEntry = newEntries.Find(entry->name, entryOccurrence);
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

    // Adds a difference for each field that differs: a copy of `changed` with the field and its values.
    void CompareFields(const Difference& changed, const Fields& before, const Fields& after) {
        for (std::size_t i = 0; i < before.size(); ++i) {
            if (before[i].second == after[i].second) continue;
            Difference difference = changed;
            difference.field = before[i].first;
            difference.before = before[i].second;
            difference.after = after[i].second;
            differences_.push_back(difference);
        }
    }

    std::vector<Difference> differences_;
};

}  // namespace

std::vector<Difference> CompareDocuments(const DocumentModel& before, const DocumentModel& after) {
    Comparison comparison;
    comparison.CompareKinds(before, after);
    comparison.CompareTables(before, after);
    return comparison.TakeDifferences();
}

}  // namespace mox::tool
