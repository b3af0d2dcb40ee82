// Lists: what is in them, and the functions that read them.
#include <memory>

#include "mox_host/call.h"
#include "mox_host/list_handle.h"
#include "mox_host/mox_host.h"

using mox::host::DiagnosticRow;
using mox::host::EntryRow;
using mox::host::GiveStructure;
using mox::host::TextSlice;

void mox_list::AddEntry(const mox::Entry& entry) {
    EntryRow row{};
    row.name = texts.Add(entry.name);
    row.type = entry.type;
    row.shape = entry.shape;
    row.id = entry.id;
    row.hasValue = entry.value.has_value();
    if (row.hasValue) row.value = texts.Add(*entry.value);
    row.hasUi = entry.ui.has_value();
    if (row.hasUi) {
        const mox::Presentation& ui = *entry.ui;
        row.control = ui.control;
        row.owner = ui.providerOwner;
        row.providerIndex = ui.providerIndex;
        row.shownName = texts.Add(ui.shownName);
        row.comment = texts.Add(ui.comment);
        row.hasUiValue = ui.value.has_value();
        if (row.hasUiValue) row.uiValue = texts.Add(*ui.value);
    }
    entries.push_back(row);
}

void mox_list::AddDiagnostic(const mox::Diagnostic& diagnostic) {
    DiagnosticRow row{};
    row.severity = diagnostic.severity;
    row.encoding = diagnostic.encoding.has_value() ? static_cast<std::uint32_t>(*diagnostic.encoding) + 1 : 0;
    row.position = diagnostic.position;
    row.message = texts.Add(diagnostic.message);
    diagnostics.push_back(row);
}

size_t mox_list_count(const mox_list* list) {
    if (list == nullptr) return 0;
    return list->names.size() + list->entries.size() + list->diagnostics.size();
}

mox_status mox_list_name(const mox_list* list, size_t index, const char** name, size_t* size) {
    if (list == nullptr || name == nullptr) return MOX_INVALID_ARGUMENT;
    if (list->kind == mox_list::Kind::Diagnostics) return MOX_WRONG_KIND;
    if (index >= mox_list_count(list)) return MOX_OUT_OF_RANGE;
    const TextSlice slice =
        list->kind == mox_list::Kind::Names ? list->names[index] : list->entries[index].name;
    *name = list->texts.TextOf(slice);
    if (size != nullptr) *size = slice.size;
    return MOX_OK;
}

mox_status mox_list_entry(const mox_list* list, size_t index, mox_entry* entry) {
    if (list == nullptr || entry == nullptr) return MOX_INVALID_ARGUMENT;
    if (list->kind != mox_list::Kind::Entries) return MOX_WRONG_KIND;
    if (index >= list->entries.size()) return MOX_OUT_OF_RANGE;
    const EntryRow& row = list->entries[index];
    mox_entry filled{};
    filled.type = static_cast<std::uint32_t>(row.type);
    filled.shape = static_cast<std::uint32_t>(row.shape);
    filled.id = row.id;
    filled.name = list->texts.TextOf(row.name);
    filled.name_size = row.name.size;
    if (row.hasValue) {
        filled.value = list->texts.TextOf(row.value);
        filled.value_size = row.value.size;
    }
    if (row.hasUi) {
        filled.has_ui = 1;
        filled.control = static_cast<std::uint32_t>(row.control);
        filled.provider_owner = static_cast<std::uint32_t>(row.owner);
        filled.provider_index = row.providerIndex;
        filled.shown_name = list->texts.TextOf(row.shownName);
        filled.shown_name_size = row.shownName.size;
        filled.comment = list->texts.TextOf(row.comment);
        filled.comment_size = row.comment.size;
    }
    if (row.hasUiValue) {
        filled.ui_value = list->texts.TextOf(row.uiValue);
        filled.ui_value_size = row.uiValue.size;
    }
    return GiveStructure(filled, entry);
}

mox_status mox_list_diagnostic(const mox_list* list, size_t index, mox_diagnostic* diagnostic) {
    if (list == nullptr || diagnostic == nullptr) return MOX_INVALID_ARGUMENT;
    if (list->kind != mox_list::Kind::Diagnostics) return MOX_WRONG_KIND;
    if (index >= list->diagnostics.size()) return MOX_OUT_OF_RANGE;
    const DiagnosticRow& row = list->diagnostics[index];
    mox_diagnostic filled{};
    filled.severity = static_cast<std::uint32_t>(row.severity) + 1;
    filled.encoding = row.encoding;
    filled.line = row.position.line;
    filled.column = row.position.column;
    filled.message = list->texts.TextOf(row.message);
    filled.message_size = row.message.size;
    return GiveStructure(filled, diagnostic);
}

void mox_list_free(mox_list* list) {
    delete list;
}
