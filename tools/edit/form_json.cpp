#include "tools/edit/form_json.h"

#include <cstddef>
#include <string>
#include <utility>

#include "mox_xmlApi/document/entry_check.h"
#include "mox_xmlApi/document/text_format.h"

namespace mox::tool {
namespace {

constexpr std::size_t kLongestName = 258;       // units; the library cannot tell longer ones apart
constexpr std::size_t kMostOthers = 1000;       // comments and unknown elements of one place that are shown
constexpr std::size_t kMostOtherText = 100000;  // bytes of one of them

std::string Shortened(std::string text) {
    if (text.size() <= kMostOtherText) return text;
    std::size_t end = kMostOtherText;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end;  // in the middle of a character
    text.resize(end);
    return text + "...";
}

// "<Lease server="192.0.2.1"> text", without what is in it.
std::string ElementText(DocumentNode element) {
    std::string text = "<" + element.name();
    for (const DocumentAttribute& attribute : element.attributes())
        text.append(" ").append(attribute.name).append("=").append(Quoted(attribute.value));
    text += ">";
    const std::string inner = element.text();
    return inner.empty() ? text : text + " " + inner;
}

// Collects comments and unknown elements, with the elements in these one after the other: a file may be nested to any
// depth.
class OtherNodes {
  public:
    void Add(DocumentNode top) {
        for (DocumentNode node = top;;) {
            if (list_.size() == kMostOthers) {
                list_.push_back({{"comment", "and more"}});
                return;
            }
            if (list_.size() > kMostOthers) return;
            const bool isComment = node.kind() == NodeKind::Comment;
            list_.push_back({{isComment ? "comment" : "element",
                              Shortened(isComment ? node.text() : ElementText(node))}});
            if (const DocumentNode child = node.firstChild()) {
                node = child;
                continue;
            }
            while (node != top && !node.next())
                node = node.parent();
            if (node == top) return;
            node = node.next();
        }
    }

    void PutInto(Json& json) {
        if (!list_.empty()) json["others"] = std::move(list_);
    }

  private:
    Json list_ = Json::array();
};

// Why nobody can change the entry through its name; empty if somebody can.
std::string ProblemOf(const DocumentEntry& entry, bool isFirst) {
    if (!entry.isReadable)
        return entry.type.empty() ? "The entry has no type, so programs cannot read it."
                                  : "The type of the entry is unknown, so programs cannot read it.";
    if (!entry.hasName || entry.name.empty()) return "The entry has no name, so it cannot be changed.";
    if (!isFirst) return "Another entry before this one has the same name: programs read only the first.";
    if (Text(entry.name).units().size() > kLongestName)
        return "The name is too long for programs to change the entry.";
    if (HasLoneSurrogate(entry.name) || HasLoneSurrogate(entry.value))
        return "The entry contains half a character (a surrogate without its partner).";
    return "";
}

Json EntryFormJson(const DocumentEntry& entry, bool isFirst) {
    Json json = Json::object();
    json["name"] = entry.name;
    PutIfNotEmpty(json, "type", entry.type);
    PutIfNotEmpty(json, "problem", ProblemOf(entry, isFirst));
    PutIfTrue(json, "eud", entry.hasEud);
    Json notes = Json::array();
    const Warner note = [&notes](DocumentNode, const std::string& message) { notes.push_back(message); };
    CheckAttributes(entry.node, note);
    CheckParts(entry, "", note);
    if (!notes.empty()) json["notes"] = std::move(notes);
    OtherNodes others;
    if (entry.isReadable) {
        PutIfNotEmpty(json, "shape", entry.shape);
        if (entry.id != 0) json["id"] = entry.id;
        json["value"] = entry.effectiveValue();
        PutIfTrue(json, "own", !entry.value.empty());
        if (entry.ui != nullptr) json["ui"] = PresentationJson(*entry.ui);
        for (const DocumentNode child : entry.node.children()) {
            if (!child.isElement("Value") && !child.isElement("UI")) others.Add(child);
        }
    } else {
        others.Add(entry.node);
    }
    others.PutInto(json);
    return json;
}

// Whether the file says that the section is not editable. Many sections say nothing.
bool IsFrozen(const DocumentTable& table) {
    return !table.isEditable && !table.node.attribute("editable").value_or("").empty();
}

Json SectionFormJson(const DocumentTable& table, bool isFound) {
    Json json = Json::object();
    json["name"] = table.name;
    if (!table.isTable) json["element"] = table.node.name();
    PutIfTrue(json, "found", isFound);
    PutIfTrue(json, "frozen", IsFrozen(table));
    PutIfTrue(json, "eud", table.hasEud);
    Json& entries = json["entries"] = Json::array();
    for (const DocumentEntry& entry : table.entries)
        entries.push_back(EntryFormJson(entry, table.findElement(entry.name) == &entry));
    OtherNodes others;
    if (!table.isTable) others.Add(table.node);
    for (const DocumentNode child : table.node.children()) {
        if (child.kind() == NodeKind::Comment) others.Add(child);
    }
    others.PutInto(json);
    return json;
}

}  // namespace

bool HasLoneSurrogate(const std::string& text) noexcept {
    for (std::size_t at = 0; (at = text.find('\xED', at)) != std::string::npos; ++at) {
        // After the last byte, there is a zero.
        if (static_cast<unsigned char>(text[at + 1]) >= 0xA0) return true;
    }
    return false;
}

Json FormJson(const Document& document) {
    Json json = Json::object();
    const bool isTable = document.kind() == DocumentKind::Table;
    json["kind"] = isTable ? "table" : "settings";
    json["form"] = document.form() == Form::Wide ? "wide" : "narrow";
    Json& sections = json["sections"] = Json::array();
    OtherNodes others;
    for (const DocumentTable& table : document.tables()) {
        const bool isFound = isTable || (table.isTable && table.hasName && !HasLoneSurrogate(table.name) &&
                                         document.findTable(table.name) == &table);
        sections.push_back(SectionFormJson(table, isFound));
    }
    const auto addComments = [&others](NodeRange nodes) {
        for (const DocumentNode node : nodes) {
            if (node.kind() == NodeKind::Comment) others.Add(node);
        }
    };
    if (!isTable && document.root()) addComments(document.root().children());
    for (const DocumentNode node : document.nodes()) {
        if (node != document.root() && node.kind() != NodeKind::Declaration) others.Add(node);
    }
    others.PutInto(json);
    return json;
}

}  // namespace mox::tool
