#include "mox_xmlApi/entries/entry_writer.h"

#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

bool SetFlag(XmlDocument& document, XmlNode* node, WideView name, bool flag) {
    return document.SetAttribute(node, name, flag ? names::kTrue : WideView());
}

bool SetField(XmlDocument& document, XmlNode* entry, const EntryValueRecord& value, WideView name) {
    FieldText text;
    WideView qualifier;
    GetValueField(value, name, text, qualifier);
    return document.SetAttribute(entry, name, text.View());
}

// Both attributes are always there: a scalar has an empty "array", an unknown code an empty "type".
bool WriteType(XmlDocument& document, XmlNode* entry, const EntryValueRecord& value) {
    FieldText type;
    WideView qualifier;
    GetValueField(value, names::kType, type, qualifier);
    return document.SetAttribute(entry, names::kType, type.View()) &&
           document.SetAttribute(entry, names::kArray, qualifier);
}

bool WriteAttributesOf(XmlDocument& document, XmlNode* entry, const EntryValueRecord& value, bool onlySet) {
    const auto selected = [&](std::uint16_t bit) {
        return value.writeMask == 0 || (value.writeMask & bit) != 0;
    };
    if (selected(kWriteName) && !SetField(document, entry, value, names::kName)) return false;
    if (selected(kWriteId) && (!onlySet || value.id != 0) && !SetField(document, entry, value, names::kId))
        return false;
    if (selected(kWriteType) && !WriteType(document, entry, value)) return false;
    if (selected(kWriteLoc) && (!onlySet || value.loc) && !SetField(document, entry, value, names::kLoc))
        return false;
    return true;
}

// The text of the "Value" child of an entry or of its "UI" child, made when there is none, and its "loc".
bool WriteValueChild(XmlDocument& document, XmlNode* parent, WideView text, bool loc, bool onlySet) {
    XmlNode* child = XmlDocument::FindChildElement(parent, names::kValue);
    if (child != nullptr) {
        if (!document.SetText(child, text)) return false;
    } else {
        child = document.InsertChild(parent, names::kValue, text, nullptr);
        if (child == nullptr) return false;
    }
    return (onlySet && !loc) || SetFlag(document, child, names::kLoc, loc);
}

// An attribute of the "UI" element that is there only while it says something.
bool WriteOptional(XmlDocument& document, XmlNode* uiElement, const EntryUiRecord& ui, WideView name,
                   bool isSet, bool onlySet) {
    if (isSet) {
        FieldText text;
        GetUiField(ui, name, text);
        return document.SetAttribute(uiElement, name, text.View());
    }
    if (!onlySet) document.RemoveAttribute(uiElement, name);
    return true;
}

}  // namespace

bool WriteEntry(const TableCursor& cursor, XmlNode* entry, const EntryValueRecord* value,
                const EntryUiRecord* ui, bool onlySet) {
    if (!cursor.IsReady()) return false;
    XmlDocument& document = *cursor.document;
    if (value != nullptr && !WriteAttributesOf(document, entry, *value, onlySet)) return false;
    if (ui != nullptr) {
        XmlNode* uiElement = XmlDocument::FindChildElement(entry, names::kUi);
        if (uiElement == nullptr) uiElement = document.InsertChild(entry, names::kUi, std::nullopt, nullptr);
        if (uiElement == nullptr) return false;
        WriteEntryUi(cursor, uiElement, *ui, onlySet);
        return true;
    }
    if (value == nullptr || (value->writeMask != 0 && (value->writeMask & kWriteValue) == 0)) return true;
    return WriteValueChild(document, entry, value->Value, value->locval, onlySet);
}

bool WriteEntryUi(const TableCursor& cursor, XmlNode* uiElement, const EntryUiRecord& ui, bool onlySet) {
    if (!cursor.IsReady()) return false;
    XmlDocument& document = *cursor.document;
    FieldText control;
    GetUiField(ui, names::kControl, control);
    if (!document.SetAttribute(uiElement, names::kControl, control.View())) return false;
    if (!WriteOptional(document, uiElement, ui, names::kProvIndex, ui.prov_index != 0, onlySet) ||
        !WriteOptional(document, uiElement, ui, names::kProvOwner, ui.prov_owner != 0, onlySet) ||
        !WriteOptional(document, uiElement, ui, names::kName, !ui.name.empty(), onlySet)) {
        return false;
    }

    XmlNode* comment = XmlDocument::FindChildElement(uiElement, names::kComment);
    if (comment == nullptr) {
        // A block without a comment keeps its value: what edits it next finds the text that was there.
        if (ui.Comment.empty()) return true;
        const XmlNode* before = XmlDocument::FindChildElement(uiElement, names::kValue);
        return document.InsertChild(uiElement, names::kComment, ui.Comment, before) != nullptr;
    }
    if (!ui.Comment.empty()) {
        if (!document.SetText(comment, ui.Comment)) return false;
        // A new comment ends the call here and the value stays, unless the block holds nameless nodes (XML
        // comments).
        const auto position = static_cast<std::uint64_t>(comment->index);
        if (!document.RemoveChildWhere(uiElement, WideView(), WideView(), position, true)) return false;
    }
    return WriteValueChild(document, uiElement, ui.Value, ui.loc, onlySet);
}

}  // namespace mox
