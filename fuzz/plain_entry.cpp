#include "fuzz/plain_entry.h"

namespace mox::fuzz {
namespace {

bool IsKnownType(WideView name) {
    return name == "string"_w || name == "ucstring"_w || name == "char"_w || name == "byte"_w ||
           name == "short"_w || name == "ushort"_w || name == "bool"_w || name == "double"_w ||
           name == "long"_w || name == "ulong"_w;
}

// What stands later wins; children come after attributes.
void ReadUi(const XmlNode& ui, PlainEntry& entry) {
    for (const XmlAttribute& attribute : ui.attributes) {
        if (attribute.name.View() == "Value"_w) entry.uiValue = attribute.value.View();
        if (attribute.name.View() == "Comment"_w) entry.comment = attribute.value.View();
        if (attribute.name.View() == "name"_w) entry.userName = attribute.value.View();
    }
    for (const XmlNode* child : ui.children) {
        if (child->name.View() == "Value"_w) entry.uiValue = child->value.View();
        if (child->name.View() == "Comment"_w) entry.comment = child->value.View();
    }
}

}  // namespace

PlainEntry ReadPlainEntry(const XmlNode& node) {
    PlainEntry entry;
    for (const XmlAttribute& attribute : node.attributes) {
        const WideView text = attribute.value.View();
        if (attribute.name.View() == "Value"_w) entry.value = text;
        if (attribute.name.View() == "type"_w && IsKnownType(text)) entry.isReadable = true;
    }
    for (const XmlNode* child : node.children) {
        if (child->name.View() == "Value"_w) entry.value = child->value.View();
        if (child->name.View() == "UI"_w) ReadUi(*child, entry);
    }
    return entry;
}

}  // namespace mox::fuzz
