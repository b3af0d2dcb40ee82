#include "fuzz/plain_document.h"

#include <algorithm>

#include "mox_xmlApi/xml/xml_names.h"

namespace mox::fuzz {
namespace {

void AppendEscaped(WideString& text, WideView value) {
    for (const wchar16 unit : value) {
        switch (unit) {
            case '&':
                text += "&amp;"_w;
                break;
            case '\'':
                text += "&apos;"_w;
                break;
            case '>':
                text += "&gt;"_w;
                break;
            case '<':
                text += "&lt;"_w;
                break;
            case '"':
                text += "&quot;"_w;
                break;
            default:
                text += unit;
        }
    }
}

void AppendIndented(WideString& text, std::size_t depth, WideView what) {
    text.append(depth, '\t');
    text += what;
}

// The tags and the text of an element; its end tag only when it has no children.
void AppendElement(WideString& text, const PlainNode& element, bool hasChildren) {
    text += '>';
    const bool hasLines = element.value.find('\n') != WideString::npos;
    const bool inLine = !hasChildren && !hasLines;
    if (!element.value.empty()) {
        if (!inLine) {
            text += '\n';
            text.append(element.depth + 1, '\t');
        }
        AppendEscaped(text, element.value);
    }
    if (!inLine) text += '\n';
    if (hasChildren) return;
    if (!inLine) text.append(element.depth, '\t');
    text += "</"_w;
    text += element.name;
    text += '>';
}

std::size_t FindTopLevel(const PlainDocument& document, bool (*isWanted)(const PlainNode&)) {
    const auto found = std::find_if(document.begin(), document.end(), [&](const PlainNode& node) {
        return node.depth == 0 && node.kind == XmlNodeKind::Element && isWanted(node);
    });
    return static_cast<std::size_t>(found - document.begin());
}

bool EraseAttribute(PlainNode& node, WideView name) {
    const auto found = std::find_if(node.attributes.begin(), node.attributes.end(),
                                    [&](const PlainAttribute& attribute) { return attribute.first == name; });
    if (found == node.attributes.end()) return false;
    node.attributes.erase(found);
    return true;
}

}  // namespace

WideString PlainWrite(const PlainDocument& document, WideView topLevelEnd) {
    WideString text;
    std::vector<const PlainNode*> open;
    const auto endNode = [&] { text += open.empty() ? topLevelEnd : "\n"_w; };
    const auto closeTo = [&](std::size_t depth) {
        while (open.size() > depth) {
            const PlainNode& element = *open.back();
            open.pop_back();
            AppendIndented(text, element.depth, "</"_w);
            text += element.name;
            text += '>';
            endNode();
        }
    };
    for (std::size_t i = 0; i < document.size(); ++i) {
        const PlainNode& node = document[i];
        closeTo(node.depth);
        AppendIndented(text, node.depth, "<"_w);
        if (node.kind == XmlNodeKind::Comment) {
            text += "!--"_w;
            text += node.value;
            text += "-->"_w;
            endNode();
            continue;
        }
        const bool isDeclaration = node.kind == XmlNodeKind::ProcessingInstruction;
        if (isDeclaration) text += '?';
        text += node.name;
        for (const auto& [name, value] : node.attributes) {
            text += ' ';
            text += name;
            text += "=\""_w;
            AppendEscaped(text, value);
            text += '"';
        }
        const bool hasChildren = PlainHasChildren(document, i);
        if (isDeclaration) {
            text += "?>"_w;
        } else if (!hasChildren && node.value.empty()) {
            text += "/>"_w;
        } else {
            AppendElement(text, node, hasChildren);
        }
        if (hasChildren) {
            open.push_back(&node);
        } else {
            endNode();
        }
    }
    closeTo(0);
    return text;
}

std::size_t PlainRoot(const PlainDocument& document) {
    return FindTopLevel(document, [](const PlainNode& node) {
        return node.name == names::kSettings &&
               (PlainAttributeOf(node, names::kSchemaLocation) != nullptr ||
                PlainAttributeOf(node, names::kSchemaLocationXsi) != nullptr);
    });
}

std::size_t PlainTable(const PlainDocument& document) {
    return FindTopLevel(document, [](const PlainNode& node) { return node.name == names::kTable; });
}

void PlainOpenProfile(PlainDocument& document) {
    if (PlainRoot(document) != document.size()) return;
    document.push_back({XmlNodeKind::Element, 0, WideString(names::kSettings)});
    document.back().attributes.emplace_back(names::kSchemaLocation, names::kSettingsSchema);
}

void PlainOpenTable(PlainDocument& document, WideView name) {
    if (PlainTable(document) != document.size()) return;
    document.push_back({XmlNodeKind::Element, 0, WideString(names::kTable)});
    document.back().attributes.emplace_back(names::kSchemaLocation, names::kTableSchema);
    document.back().attributes.emplace_back(names::kName, name);
}

bool PlainStripMarks(PlainDocument& document) {
    bool marksAreLeft = false;
    bool stripsEntries = false;
    for (std::size_t i = PlainRoot(document) + 1; i < document.size() && document[i].depth > 0; ++i) {
        PlainNode& node = document[i];
        if (node.kind != XmlNodeKind::Element) continue;
        if (node.depth == 1) {
            const WideString* mark = PlainAttributeOf(node, names::kEud);
            stripsEntries = mark != nullptr && *mark == names::kTrue;
            EraseAttribute(node, names::kEud);
            marksAreLeft = marksAreLeft || PlainAttributeOf(node, names::kEud) != nullptr;
        } else if (node.depth == 2 && stripsEntries) {
            EraseAttribute(node, names::kEud);
        }
    }
    return marksAreLeft;
}

bool PlainHasChildren(const PlainDocument& document, std::size_t node) {
    return node + 1 < document.size() && document[node + 1].depth > document[node].depth;
}

const WideString* PlainAttributeOf(const PlainNode& node, WideView name) {
    const auto found = std::find_if(node.attributes.begin(), node.attributes.end(),
                                    [&](const PlainAttribute& attribute) { return attribute.first == name; });
    return found == node.attributes.end() ? nullptr : &found->second;
}

std::string PlainFile(WideView text, bool wide) {
    std::string bytes;
    for (const wchar16 unit : text) {
        bytes += static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
        if (wide) bytes += static_cast<char>(static_cast<unsigned char>(unit >> 8));
    }
    bytes.append(wide ? 2 : 1, '\0');
    return bytes;
}

}  // namespace mox::fuzz
