#include "tools/json_output.h"

#include "mox_xmlApi/document/text_format.h"

namespace mox::tool {
namespace {

void PutIfNotEmpty(Json& json, const char* name, const std::string& text) {
    if (!text.empty()) json[name] = text;
}

void PutIfTrue(Json& json, const char* name, bool value) {
    if (value) json[name] = true;
}

Json UiJson(const DocumentPresentation& ui) {
    Json json = Json::object();
    json["control"] = ui.control;
    PutIfNotEmpty(json, "access", ui.access);
    if (ui.flags != 0) json["flags"] = Hex(ui.flags, 4);
    PutIfNotEmpty(json, "provider", ui.provider);
    if (ui.providerIndex != 0) json["provider_index"] = ui.providerIndex;
    PutIfNotEmpty(json, "regen", ui.regen);
    PutIfNotEmpty(json, "minimum", ui.minimum);
    PutIfNotEmpty(json, "maximum", ui.maximum);
    PutIfNotEmpty(json, "shown_name", ui.shownName);
    PutIfNotEmpty(json, "comment", ui.comment);
    PutIfNotEmpty(json, "value", ui.value);
    return json;
}

Json TableJson(const DocumentTable& table) {
    Json json = Json::object();
    json["name"] = table.name;
    json["first_id"] = table.firstId;
    json["type"] = Hex(table.type, 4);
    json["editable"] = table.isEditable;
    PutIfTrue(json, "eud", table.hasEud);
    json["entries"] = Json::array();
    for (const DocumentEntry& entry : table.entries)
        json["entries"].push_back(EntryJson(entry));
    return json;
}

}  // namespace

std::string JsonText(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

Json EntryJson(const DocumentEntry& entry) {
    Json json = Json::object();
    json["name"] = entry.name;
    json["type"] = entry.type;
    if (!entry.isReadable) {
        json["readable"] = false;
        return json;
    }
    PutIfNotEmpty(json, "shape", entry.shape);
    if (entry.id != 0) json["id"] = entry.id;
    PutIfTrue(json, "eud", entry.hasEud);
    json["value"] = entry.value;
    if (entry.ui != nullptr) json["ui"] = UiJson(*entry.ui);
    return json;
}

Json DocumentJson(const Document& document) {
    Json json = Json::object();
    json["kind"] = document.kind() == DocumentKind::Settings ? "settings"
                   : document.kind() == DocumentKind::Table  ? "table"
                                                             : "other";
    json["form"] = document.form() == Form::Wide ? "wide" : "narrow";
    const bool isTable = document.kind() == DocumentKind::Table;
    if (!isTable) json["sections"] = Json::array();
    for (const DocumentTable& table : document.tables()) {
        if (isTable) {
            json["table"] = TableJson(table);
        } else if (table.isTable) {
            json["sections"].push_back(TableJson(table));
        }
    }
    return json;
}

}  // namespace mox::tool
