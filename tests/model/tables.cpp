#include "tests/model/tables.h"

#include <algorithm>

namespace model {
namespace {

constexpr std::uint16_t kWideText = 31;

bool IsOwner(unsigned owner) {
    return owner == 0 || owner == 1 || owner == 2 || owner == 4;
}

// What a host's record takes of a text: anything as wide text, otherwise what has a narrow form.
bool Store(const Text& text, PlainValue& record) {
    if (record.type != kWideText && !HasNarrowForm(text)) return false;
    record.value = text;
    return true;
}

void StoreName(const Text& name, PlainValue& record) {
    if (!name.empty()) record.name = name.substr(0, 259);
}

bool FillValue(const EntryValue& entry, const EntryUi& entryUi, bool isAlone, PlainValue& record) {
    record.id = entry.id;
    record.type = entry.type;
    const bool fallsBack = isAlone && entry.value.empty() && entry.type != kWideText;
    if (!Store(fallsBack ? entryUi.value : entry.value, record)) return false;
    StoreName(entry.name, record);
    return true;
}

bool FillUi(const EntryValue& entry, const EntryUi& entryUi, PlainUi& record) {
    record.id = entry.id;
    record.type = entry.type;
    record.control = entryUi.control;
    record.index = entryUi.index;
    record.owner = entryUi.owner;
    if (!entryUi.comment.empty()) record.comment = entryUi.comment;
    StoreName(entry.name, record);
    if (!entryUi.name.empty()) record.userName = entryUi.name;
    return Store(entryUi.value, record);
}

// Which values an entry has. One that cannot be read counts as one without.
struct Values {
    bool own = false;
    bool ui = false;
};

Values ValuesOf(const NodePtr& entry) {
    EntryValue value;
    EntryUi ui;
    if (entry == nullptr || !ReadEntry(*entry, value, ui)) return {};
    return {!value.value.empty(), !ui.value.empty()};
}

EntryValue FromHost(const PlainValue& record) {
    EntryValue value;
    value.mask = record.mask & 0x000F;
    value.name = record.name;
    value.type = record.type;
    value.id = record.id;
    value.value = record.value.value_or(Text());
    return value;
}

// All but the value.
EntryUi FromHost(const PlainUi& record) {
    EntryUi ui;
    ui.control = record.control;
    ui.index = record.index;
    ui.owner = record.owner;
    ui.comment = record.comment.value_or(Text());
    ui.name = record.userName.value_or(Text());
    return ui;
}

Text KeyOf(const PlainValue* value, const PlainUi* ui) {
    return value != nullptr ? value->name : ui != nullptr ? ui->name : Text();
}

NodePtr EntryAt(const Node& table, const Position& position, const Text& key) {
    return position.byName ? FindEntry(table, key) : NextElement(table, position.entry.get());
}

}  // namespace

bool HasNarrowForm(const Text& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned unit = text[i];
        if (unit < 0xD800 || unit > 0xDFFF) continue;
        const unsigned next = i + 1 < text.size() ? text[i + 1] : 0;
        if (unit > 0xDBFF || next < 0xDC00 || next > 0xDFFF) return false;
        ++i;
    }
    return true;
}

NodePtr OpenTable(Node& document, const Text& name) {
    NodePtr table = FindElement(document, "Table");
    if (table != nullptr) return name.empty() || AttributeOf(*table, "name") == name ? table : nullptr;
    table = NewElement("Table");
    SetAttribute(*table, "xmlns:noNamespaceSchemaLocation", Wide("MXTable.xsd"));
    SetAttribute(*table, "name", name);
    document.children.push_back(table);
    return table;
}

bool Get(const Node& table, Position& position, PlainValue* value, PlainUi* ui) {
    EntryValue entryValue;
    EntryUi entryUi;
    if (value != nullptr && position.byName) {
        entryValue.id = value->id;
        entryValue.name = value->name;
    } else if (value != nullptr) {
        *value = PlainValue{{}, 0, 0, 0, value->value};
    }
    if (ui != nullptr) *ui = PlainUi();

    const NodePtr entry = EntryAt(table, position, entryValue.name);
    if (entry == nullptr) return false;
    if (!position.byName) position.entry = entry;
    if (!ReadEntry(*entry, entryValue, entryUi)) return false;
    if (value != nullptr && !FillValue(entryValue, entryUi, ui == nullptr, *value)) return false;
    return ui == nullptr || FillUi(entryValue, entryUi, *ui);
}

bool Set(Node& table, Position& position, PlainValue* value, PlainUi* ui, bool force, bool eud) {
    if (ui != nullptr && !IsOwner(ui->owner)) ui->owner = 0;
    const NodePtr entry = EntryAt(table, position, KeyOf(value, ui));
    if (entry == nullptr) return false;
    if (!position.byName) position.entry = entry;
    if (!force && HasAttribute(*entry, "eud", "true")) return true;

    // Each record is written where the entry has such a value. Where neither is, the value record is written all the
    // same, and its value is moved to the presentation data.
    const Values values = ValuesOf(entry);
    EntryValue newValue = value != nullptr ? FromHost(*value) : EntryValue();
    EntryUi newUi = ui != nullptr ? FromHost(*ui) : EntryUi();
    if (ui != nullptr) newUi.value = ui->value.value_or(Text());
    bool writesValue = value != nullptr && values.own;
    bool writesUi = ui != nullptr && values.ui;
    std::optional<Text> movedText;
    if (!writesValue && !writesUi && value != nullptr) {
        movedText = value->value;
        if (movedText) newUi.value = *movedText;
        writesValue = true;
        writesUi = true;
    }
    WriteEntry(*entry, writesValue ? &newValue : nullptr, writesUi ? &newUi : nullptr, false);
    if (movedText) WriteMovedText(*entry, *movedText, false);

    if (eud) {
        SetEud(table, *entry);
    } else if (position.byName) {
        RemoveAttribute(*entry, "eud");
    }
    return true;
}

bool Add(Node& table, const Position& position, const PlainValue* value, const PlainUi* ui, bool eud,
         bool update) {
    if (ui != nullptr && ui->control == 0xFFFF) ui = nullptr;
    NewEntry added{KeyOf(value, ui)};
    added.eud = eud;
    added.update = update;
    EntryValue newValue = value != nullptr ? FromHost(*value) : EntryValue();
    if (value != nullptr) added.value = &newValue;

    // The value of the presentation data comes from the value record, unless their record holds wide text.
    EntryUi newUi = ui != nullptr ? FromHost(*ui) : EntryUi();
    if (ui != nullptr && ui->type == kWideText) newUi.value = ui->value.value_or(Text());
    if (ui != nullptr && ui->type != kWideText && value != nullptr)
        newUi.value = value->value.value_or(Text());
    if (ui != nullptr) added.ui = &newUi;

    // The first entry shows where this table keeps its values.
    const Values first = ValuesOf(NextElement(table, nullptr));
    if (value != nullptr && ui == nullptr && !first.own && first.ui) {
        added.movedText = value->value;
        newUi.value = newValue.value;
        added.ui = &newUi;
    }
    if (position.byName && (!update || FindEntry(table, added.name) == nullptr)) return false;
    return AddEntry(table, position.entry.get(), added);
}

void RemoveVars(Node& table) {
    const auto isVar = [](const NodePtr& child) { return child->name == Wide("Var"); };
    table.children.erase(std::remove_if(table.children.begin(), table.children.end(), isVar),
                         table.children.end());
}

}  // namespace model
