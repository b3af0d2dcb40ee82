#include "mox_xmlApi/entries/entry_reader.h"

#include <utility>

#include "mox_xmlApi/entries/entry_codes.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

bool IsElementNamed(const XmlNode& node, WideView name) noexcept {
    return node.kind == XmlNodeKind::Element && SameText(node.name.View(), name);
}

// The value text of a "UI" element, `text` when it has none. As everywhere, the last one counts.
WideView UiValueOf(const XmlNode& uiElement, WideView text) noexcept {
    for (const XmlAttribute& attribute : uiElement.attributes) {
        if (SameText(attribute.name.View(), names::kValue)) text = attribute.value.View();
    }
    for (const XmlNode* child : uiElement.children) {
        if (IsElementNamed(*child, names::kValue)) text = child->value.View();
    }
    return text;
}

}  // namespace

bool ReadEntry(const TableCursor& cursor, const XmlNode& entry, EntryValueRecord* value,
               EntryUiRecord* ui) noexcept {
    if (!cursor.IsReady()) return false;
    EntryValueRecord unused;
    EntryValueRecord& record = value != nullptr ? *value : unused;

    WideView qualifier;
    bool hasQualifier = false;
    std::uint16_t type = 0;
    WideView text;
    for (const XmlAttribute& attribute : entry.attributes) {
        const WideView name = attribute.name.View();
        text = attribute.value.View();
        if (SameText(name, names::kType)) {
            const std::uint16_t known = BaseTypeFromName(text);
            if (known != 0) type = known;
        } else if (!SameText(name, names::kArray)) {
            SetValueField(record, name, text);
        } else if (!std::exchange(hasQualifier, true)) {
            qualifier = text;
        }
    }
    if (type != 0) record.type = static_cast<std::uint16_t>(type | QualifierFromName(qualifier));
    if (record.type == 0) return false;

    for (const XmlNode* child : entry.children) {
        if (IsElementNamed(*child, names::kValue)) {
            record.Value = child->value.View();
            // A value without "loc" takes the text of the attribute read last: files rely on it.
            XmlDocument::GetAttribute(child, names::kLoc, text);
            if (!text.empty()) SetValueField(record, names::kLocval, text);
        } else if (ui != nullptr && IsElementNamed(*child, names::kUi)) {
            ReadEntryUi(cursor, *child, *ui);
        }
    }
    return true;
}

bool ReadEntryUi(const TableCursor& cursor, const XmlNode& uiElement, EntryUiRecord& ui) noexcept {
    if (!cursor.IsReady()) return false;
    WideView text;
    for (const XmlAttribute& attribute : uiElement.attributes) {
        text = attribute.value.View();
        SetUiField(ui, attribute.name.View(), text);
    }
    for (const XmlNode* child : uiElement.children) {
        if (IsElementNamed(*child, names::kComment)) {
            ui.Comment = child->value.View();
        } else if (IsElementNamed(*child, names::kValue)) {
            ui.Value = child->value.View();
            // The same carry-over as in ReadEntry.
            XmlDocument::GetAttribute(child, names::kLoc, text);
            if (!text.empty()) SetUiField(ui, names::kLoc, text);
        }
    }
    return true;
}

bool ReadEntryText(const XmlNode& entry, WideView& text) noexcept {
    bool hasType = false;
    WideView value;
    for (const XmlAttribute& attribute : entry.attributes) {
        const WideView name = attribute.name.View();
        if (SameText(name, names::kType)) {
            hasType = hasType || BaseTypeFromName(attribute.value.View()) != 0;
        } else if (SameText(name, names::kValue)) {
            value = attribute.value.View();
        }
    }
    if (!hasType) return false;
    for (const XmlNode* child : entry.children) {
        if (IsElementNamed(*child, names::kValue)) value = child->value.View();
    }
    text = value;
    if (!value.empty()) return true;
    for (const XmlNode* child : entry.children) {
        if (IsElementNamed(*child, names::kUi)) text = UiValueOf(*child, text);
    }
    return true;
}

}  // namespace mox
