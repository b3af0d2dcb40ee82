#include "mox_xmlApi/entries/entry_writer.h"

#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

void WriteFlag(XmlDocument& document, XmlNode& node, WideView name, bool flag) {
    document.SetAttribute(node, name, flag ? names::kTrue : WideView());
}

void WriteField(XmlDocument& document, XmlNode& entry, const EntryValueRecord& value, WideView name) {
    FieldText text;
    WideView qualifier;
    GetValueField(value, name, text, qualifier);
    document.SetAttribute(entry, name, text.View());
}

// Both attributes are always there: a scalar has an empty "array", an unknown code an empty "type".
void WriteType(XmlDocument& document, XmlNode& entry, const EntryValueRecord& value) {
    FieldText type;
    WideView qualifier;
    GetValueField(value, names::kType, type, qualifier);
    document.SetAttribute(entry, names::kType, type.View());
    document.SetAttribute(entry, names::kArray, qualifier);
}

bool IsSelected(const EntryValueRecord& value, std::uint16_t bit) noexcept {
    return value.writeMask == 0 || (value.writeMask & bit) != 0;
}

void WriteAttributesOf(XmlDocument& document, XmlNode& entry, const EntryValueRecord& value, bool onlySet) {
    if (IsSelected(value, kWriteName)) WriteField(document, entry, value, names::kName);
    if (IsSelected(value, kWriteId) && (!onlySet || value.id != 0))
        WriteField(document, entry, value, names::kId);
    if (IsSelected(value, kWriteType)) WriteType(document, entry, value);
    if (IsSelected(value, kWriteLoc) && (!onlySet || value.loc))
        WriteField(document, entry, value, names::kLoc);
}

// The text of the "Value" child of an entry or of its "UI" child, made when there is none, and its "loc".
void WriteValueChild(XmlDocument& document, XmlNode& parent, WideView text, bool loc, bool onlySet) {
    XmlNode* child = XmlDocument::FindChildElement(&parent, names::kValue);
    if (child != nullptr) {
        document.SetText(*child, text);
    } else {
        child = &document.AppendElement(parent, names::kValue, text);
    }
    if (!onlySet || loc) WriteFlag(document, *child, names::kLoc, loc);
}

// An attribute of the "UI" element that is there only while it says something.
void WriteOptional(XmlDocument& document, XmlNode& uiElement, const EntryUiRecord& ui, WideView name,
                   bool isSet, bool onlySet) {
    if (isSet) {
        FieldText text;
        GetUiField(ui, name, text);
        document.SetAttribute(uiElement, name, text.View());
    } else if (!onlySet) {
        document.RemoveAttribute(&uiElement, name);
    }
}

void WriteUiAttributes(XmlDocument& document, XmlNode& uiElement, const EntryUiRecord& ui, bool onlySet) {
    FieldText control;
    GetUiField(ui, names::kControl, control);
    document.SetAttribute(uiElement, names::kControl, control.View());
    WriteOptional(document, uiElement, ui, names::kProvIndex, ui.prov_index != 0, onlySet);
    WriteOptional(document, uiElement, ui, names::kProvOwner, ui.prov_owner != 0, onlySet);
    WriteOptional(document, uiElement, ui, names::kName, !ui.name.empty(), onlySet);
}

// The children of the "UI" element, in the three cases that there are.

// No comment in the block: it gets the one of the record, before its value, which stays.
bool AddCommentAndEnd(XmlDocument& document, XmlNode& uiElement, const EntryUiRecord& ui) {
    if (ui.Comment.empty()) return true;
    const XmlNode* value = XmlDocument::FindChildElement(&uiElement, names::kValue);
    document.InsertChild(&uiElement, names::kComment, ui.Comment, value);
    return true;
}

// No comment in the record: the one of the block stays, and the value is written.
bool KeepCommentAndWriteValue(XmlDocument& document, XmlNode& uiElement, const EntryUiRecord& ui,
                              bool onlySet) {
    WriteValueChild(document, uiElement, ui.Value, ui.loc, onlySet);
    return true;
}

// A comment in both: its text is replaced, and all other children stay, XML comments and the value among them.
bool ReplaceCommentAndEnd(XmlDocument& document, XmlNode& comment, const EntryUiRecord& ui) {
    document.SetText(comment, ui.Comment);
    return false;  // by contract; WriteEntry takes it for done
}

}  // namespace

bool WriteEntry(const TableCursor& cursor, XmlNode* entry, const EntryValueRecord* value,
                const EntryUiRecord* ui, bool onlySet) {
    if (!cursor.IsReady()) return false;
    XmlDocument& document = *cursor.document;
    if (value != nullptr) WriteAttributesOf(document, *entry, *value, onlySet);
    if (ui != nullptr) {
        XmlNode* uiElement = XmlDocument::FindChildElement(entry, names::kUi);
        if (uiElement == nullptr) uiElement = &document.AppendElement(*entry, names::kUi);
        WriteEntryUi(cursor, uiElement, *ui, onlySet);
    } else if (value != nullptr && IsSelected(*value, kWriteValue)) {
        WriteValueChild(document, *entry, value->Value, value->locval, onlySet);
    }
    return true;
}

bool WriteEntryUi(const TableCursor& cursor, XmlNode* uiElement, const EntryUiRecord& ui, bool onlySet) {
    if (!cursor.IsReady()) return false;
    XmlDocument& document = *cursor.document;
    WriteUiAttributes(document, *uiElement, ui, onlySet);
    XmlNode* comment = XmlDocument::FindChildElement(uiElement, names::kComment);
    if (comment == nullptr) return AddCommentAndEnd(document, *uiElement, ui);
    if (ui.Comment.empty()) return KeepCommentAndWriteValue(document, *uiElement, ui, onlySet);
    return ReplaceCommentAndEnd(document, *comment, ui);
}

void WriteUiValue(const TableCursor& cursor, XmlNode* entry, const EntryUiRecord& ui, bool onlySet) {
    XmlNode* uiElement = XmlDocument::FindChildElement(entry, names::kUi);
    if (uiElement == nullptr) return;
    const bool isThere = XmlDocument::FindChildElement(uiElement, names::kValue) != nullptr;
    if (isThere || !ui.Value.empty())
        WriteValueChild(*cursor.document, *uiElement, ui.Value, ui.loc, onlySet);
}

}  // namespace mox
