#include "tools/json_output.h"

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/mox_xmlApi.hpp"

namespace mox::tool {
namespace {

// ---- values

// The value as a T if it is one, together with the text that the library would write for it.
template <class T>
std::optional<T> ValueAs(const std::string& text) {
    Entry entry;
    entry.value = text;
    return entry.valueAs<T>();
}

bool IsIntegerType(const std::string& type) {
    for (const char* const known : {"short", "long", "char", "byte", "ushort", "ulong"}) {
        if (type == known) return true;
    }
    return false;
}

// Sets `number` and `canonical`, the text that the number alone stands for. Returns whether the text is a number.
bool ReadNumber(const std::string& type, const std::string& text, Json& number, std::string& canonical) {
    if (type == "double") {
        const std::optional<double> value = ValueAs<double>(text);
        if (!value.has_value()) return false;
        number = *value;
        canonical = number.dump();
        return true;
    }
    const std::optional<std::int64_t> value =
        IsIntegerType(type) ? ValueAs<std::int64_t>(text) : std::nullopt;
    if (!value.has_value()) return false;
    number = *value;
    // Beyond this many programs read another number.
    constexpr std::int64_t kMostExact = std::int64_t{1} << 53;
    if (*value <= kMostExact && *value >= -kMostExact) canonical = number.dump();
    return true;
}

bool ReadBytesValue(const std::string& text, Json& numbers, std::string& canonical) {
    const std::optional<std::vector<std::uint8_t>> bytes = ValueAs<std::vector<std::uint8_t>>(text);
    if (!bytes.has_value()) return false;
    numbers = Json::array();
    for (const std::uint8_t byte : *bytes) {
        numbers.push_back(byte);
        canonical += Hex(byte, 2);
    }
    return true;
}

// Sets "value", typed, and "text" if that alone does not tell the text in the file.
void PutValue(Json& json, const DocumentEntry& entry) {
    const std::string& text = entry.value;
    Json value = text;
    std::string canonical = text;
    if (!text.empty() && entry.shape.empty() && entry.type == "bool") {
        if (const std::optional<bool> flag = ValueAs<bool>(text); flag.has_value()) {
            value = *flag;
            canonical = *flag ? "1" : "0";
        }
    } else if (!text.empty()) {
        Json typed;
        std::string typedText;
        const bool isByteArray = !entry.shape.empty() && entry.type == "byte";
        const bool isTyped = isByteArray
                                 ? ReadBytesValue(text, typed, typedText)
                                 : entry.shape.empty() && ReadNumber(entry.type, text, typed, typedText);
        if (isTyped) {
            value = std::move(typed);
            canonical = std::move(typedText);
        }
    }
    json["value"] = std::move(value);
    if (canonical != text) json["text"] = text;
}

// ---- comments and other elements

Json NodeJson(DocumentNode node) {
    Json json = Json::object();
    if (node.kind() == NodeKind::Comment) {
        json["comment"] = node.text();
        return json;
    }
    json["element"] = node.name();
    for (const DocumentAttribute& attribute : node.attributes())
        json["attributes"].push_back({{"name", attribute.name}, {"value", attribute.value}});
    PutIfNotEmpty(json, "text", node.text());
    return json;
}

// Adds the node and all nodes in it to `list`: one after the other, because a file may be nested to any depth.
void AddNodes(Json& list, DocumentNode top, std::size_t index) {
    std::size_t depth = 0;
    for (DocumentNode node = top;;) {
        Json json = Json::object();
        json["index"] = index;
        json["depth"] = depth;
        json.update(NodeJson(node));
        list.push_back(std::move(json));
        if (const DocumentNode child = node.firstChild()) {
            node = child;
            ++depth;
            continue;
        }
        while (node != top && !node.next()) {
            node = node.parent();
            --depth;
        }
        if (node == top) return;
        node = node.next();
    }
}

void PutOthers(Json& json, Json&& others) {
    if (!others.empty()) json["other"] = std::move(others);
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
    Json others = Json::array();
    std::size_t index = 0;
    for (const DocumentNode child : table.node.children()) {
        if (child.kind() == NodeKind::Comment) {
            AddNodes(others, child, index);
        } else {
            ++index;
        }
    }
    PutOthers(json, std::move(others));
    return json;
}

// What is beside the root, and what is in the root of a settings document beside its sections.
void PutOtherNodes(Json& json, const Document& document) {
    Json outside = Json::array();
    std::size_t index = 0;
    for (const DocumentNode node : document.nodes()) {
        if (node == document.root()) {
            ++index;
        } else if (node.kind() != NodeKind::Declaration) {
            AddNodes(outside, node, index);
        }
    }
    if (!outside.empty()) json["outside"] = std::move(outside);
    if (document.kind() != DocumentKind::Settings) return;
    Json others = Json::array();
    std::size_t sections = 0;
    auto table = document.tables().begin();
    for (const DocumentNode node : document.root().children()) {
        if (node.kind() == NodeKind::Element && table++->isTable) {
            ++sections;
        } else {
            AddNodes(others, node, sections);
        }
    }
    PutOthers(json, std::move(others));
}

}  // namespace

void PutIfNotEmpty(Json& json, const char* name, const std::string& text) {
    if (!text.empty()) json[name] = text;
}

void PutIfTrue(Json& json, const char* name, bool value) {
    if (value) json[name] = true;
}

std::string JsonText(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

Json EntryJson(const DocumentEntry& entry) {
    Json json = Json::object();
    json["name"] = entry.name;
    json["type"] = entry.type;
    if (!entry.isReadable) {
        json["readable"] = false;
        AddNodes(json["other"], entry.node, 0);
        return json;
    }
    PutIfNotEmpty(json, "shape", entry.shape);
    if (entry.id != 0) json["id"] = entry.id;
    PutIfTrue(json, "eud", entry.hasEud);
    PutValue(json, entry);
    if (entry.ui != nullptr) json["ui"] = PresentationJson(*entry.ui);
    Json others = Json::array();
    for (const DocumentNode child : entry.node.children()) {
        if (!child.isElement("Value") && !child.isElement("UI")) AddNodes(others, child, 0);
    }
    PutOthers(json, std::move(others));
    return json;
}

Json PresentationJson(const DocumentPresentation& ui) {
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
    PutOtherNodes(json, document);
    return json;
}

Json DifferenceJson(const Difference& difference) {
    constexpr const char* kChanges[] = {"added", "removed", "changed"};  // indexed by Change
    Json json = Json::object();
    json["change"] = kChanges[static_cast<int>(difference.change)];
    json["section"] = difference.table;
    if (difference.hasEntry) json["entry"] = difference.entry;
    if (difference.occurrence > 1) json["occurrence"] = difference.occurrence;
    if (difference.change == Change::Changed) json["field"] = difference.field;
    if (difference.hasEntry && difference.change != Change::Changed) json["type"] = difference.field;
    if (difference.change == Change::Changed || difference.hasEntry) {
        if (difference.change != Change::Added) json["before"] = difference.before;
        if (difference.change != Change::Removed) json["after"] = difference.after;
    }
    for (const auto& [name, text] : difference.fields)
        json["fields"][name] = text;
    return json;
}

}  // namespace mox::tool
