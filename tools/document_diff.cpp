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

// Entries with and without presentation data have the same fields.
Fields FieldsOf(const EntryModel& entry) {
    const UiModel ui = entry.ui.value_or(UiModel());
    return {{"type", TypeText(entry)},
            {"id", Number(entry.id)},
            {"value", entry.value},
            {"ui.control", ui.control},
            {"ui.name", ui.shownName},
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

// Items with the number that tells those of one name apart, from 1 on.
template <class Item>
class ByName {
  public:
    explicit ByName(const std::vector<const Item*>& items) {
        std::map<std::string, std::size_t> seen;
        for (const Item* item : items) {
            const std::size_t occurrence = ++seen[item->name];
            list_.push_back({item, occurrence});
            found_[{item->name, occurrence}] = item;
        }
    }

    struct Numbered {
        const Item* item;
        std::size_t occurrence;
    };
    const std::vector<Numbered>& List() const noexcept { return list_; }

    const Item* Find(const std::string& name, std::size_t occurrence) const {
        const auto found = found_.find({name, occurrence});
        return found == found_.end() ? nullptr : found->second;
    }

  private:
    std::vector<Numbered> list_;
    std::map<std::pair<std::string, std::size_t>, const Item*> found_;
};

class Comparison {
  public:
    std::vector<Difference> Take() { return std::move(differences_); }

    void CompareKinds(const DocumentModel& before, const DocumentModel& after) {
        if (before.kind == after.kind) return;
        Difference difference;
        difference.field = "kind";
        difference.before = KindName(before.kind);
        difference.after = KindName(after.kind);
        differences_.push_back(difference);
    }

    void CompareTables(const DocumentModel& before, const DocumentModel& after) {
        const ByName<TableModel> olds(TablesOf(before));
        const ByName<TableModel> news(TablesOf(after));
        for (const auto& old : olds.List()) {
            const TableModel* const now = news.Find(old.item->name, old.occurrence);
            if (now == nullptr) {
                AddTable(Change::Removed, *old.item, old.occurrence);
            } else {
                CompareTable(*old.item, *now, old.occurrence);
            }
        }
        for (const auto& now : news.List()) {
            if (olds.Find(now.item->name, now.occurrence) == nullptr)
                AddTable(Change::Added, *now.item, now.occurrence);
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

    // An element without a name and a known type is nothing that a host would see.
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
        const ByName<EntryModel> entries(EntriesOf(table));
        for (const auto& entry : entries.List())
            AddEntry(change, table, *entry.item, entry.occurrence);
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
        Difference place;
        place.table = before.name;
        place.occurrence = occurrence;
        CompareFields(place, FieldsOf(before), FieldsOf(after));
        const ByName<EntryModel> olds(EntriesOf(before));
        const ByName<EntryModel> news(EntriesOf(after));
        place.hasEntry = true;
        for (const auto& old : olds.List()) {
            const EntryModel* const now = news.Find(old.item->name, old.occurrence);
            if (now == nullptr) {
                AddEntry(Change::Removed, before, *old.item, old.occurrence);
                continue;
            }
            place.entry = old.item->name;
            place.occurrence = old.occurrence;
            CompareFields(place, FieldsOf(*old.item), FieldsOf(*now));
        }
        for (const auto& now : news.List()) {
            if (olds.Find(now.item->name, now.occurrence) == nullptr)
                AddEntry(Change::Added, after, *now.item, now.occurrence);
        }
    }

    void CompareFields(const Difference& place, const Fields& before, const Fields& after) {
        for (std::size_t i = 0; i < before.size(); ++i) {
            if (before[i].second == after[i].second) continue;
            Difference difference = place;
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
    return comparison.Take();
}

}  // namespace mox::tool
