#include "tests/model/profile.h"

#include <algorithm>
#include <utility>

#include "tests/model/text.h"

namespace model {

NodePtr FindRoot(const Node& document) {
    for (const NodePtr& child : document.children) {
        const bool hasSchema = FindAttribute(*child, "xmlns:noNamespaceSchemaLocation") != nullptr ||
                               FindAttribute(*child, "xsi:noNamespaceSchemaLocation") != nullptr;
        if (IsElement(*child, "Settings") && hasSchema) return child;
    }
    return nullptr;
}

NodePtr OpenRoot(Node& document) {
    if (const NodePtr found = FindRoot(document); found != nullptr) return found;
    const NodePtr root = NewElement("Settings");
    SetAttribute(*root, "xmlns:noNamespaceSchemaLocation", Wide("MXSettings.xsd"));
    document.children.push_back(root);
    return root;
}

void StripEud(Node& root) {
    for (const NodePtr& section : root.children) {
        if (section->kind != Kind::Element) continue;
        if (HasAttribute(*section, "eud", "true")) {
            for (const NodePtr& entry : section->children)
                RemoveAttribute(*entry, "eud");
        }
        RemoveAttribute(*section, "eud");
    }
}

Profile::Profile() : Profile(Parse(Wide("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"))) {}

Profile::Profile(NodePtr document) : document_(std::move(document)), root_(OpenRoot(*document_)) {}

NodePtr Profile::Section(const Text& name) const {
    for (const NodePtr& child : root_->children) {
        const Text* found = FindAttribute(*child, "name");
        if (IsElement(*child, "Table") && found != nullptr && *found == name) return child;
    }
    return nullptr;
}

NodePtr Profile::WriteSection(const Text& name, bool editable, std::uint32_t firstId, std::uint16_t type,
                              bool& hasEud) {
    hasEud = false;
    NodePtr section = Section(name);
    if (section != nullptr) {
        const bool wasEditable = HasAttribute(*section, "editable", "true");
        SetAttribute(*section, "name", name);
        SetAttribute(*section, "editable", Wide(wasEditable ? "true" : "false"));
        SetAttribute(*section, "first_id", UnsignedText(firstId));
        SetAttribute(*section, "type", HexText(type));
        hasEud = HasAttribute(*section, "eud", "true");
        return section;
    }
    section = NewElement("Table");
    SetAttribute(*section, "name", name);
    if (firstId != 0) SetAttribute(*section, "first_id", UnsignedText(firstId));
    if (type != 0) SetAttribute(*section, "type", HexText(type));
    if (editable) SetAttribute(*section, "editable", Wide("true"));
    root_->children.push_back(section);
    return section;
}

bool Profile::DeleteSection(const Text& name) {
    const std::size_t index = IndexOf(*root_, Section(name).get());
    if (index == root_->children.size()) return false;
    root_->children.erase(root_->children.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

std::optional<Text> Profile::Read(const Text& section, const Text& key) const {
    const NodePtr table = Section(section);
    const NodePtr entry = table == nullptr ? nullptr : FindEntry(*table, key);
    EntryValue value;
    EntryUi ui;
    if (entry == nullptr || !ReadEntry(*entry, value, ui)) return std::nullopt;
    return value.value.empty() ? ui.value : value.value;
}

bool Profile::Write(const Text& section, const Text& key, const Text& value) {
    NodePtr table = Section(section);
    bool hasEud = false;
    if (table == nullptr) table = WriteSection(section, false, 0, 0, hasEud);
    EntryValue record;
    record.name = key;
    record.value = value;
    record.type = 8;
    const NodePtr entry = FindEntry(*table, key);
    if (entry == nullptr) return AddEntry(*table, nullptr, {key, &record});
    record.mask = 2;
    WriteEntry(*entry, &record, nullptr, false);
    RemoveAttribute(*entry, "eud");
    return true;
}

bool Profile::DeleteKey(const Text& section, const Text& key) {
    const NodePtr table = Section(section);
    return table != nullptr && RemoveEntries(*table, key, -1, true);
}

Text Profile::DocumentText() const {
    return Written(*document_);
}

Text Profile::Export(std::uint32_t mode) const {
    Profile target;
    for (const NodePtr& section : root_->children) {
        if (section->kind != Kind::Element) continue;
        bool hasEud = false;
        const NodePtr copy = target.WriteSection(
            AttributeOf(*section, "name"), HasAttribute(*section, "editable", "true"),
            static_cast<std::uint32_t>(ReadSigned(AttributeOf(*section, "first_id"))),
            static_cast<std::uint16_t>(ReadUnsigned(AttributeOf(*section, "type"), 16)), hasEud);
        for (NodePtr entry = NextElement(*section, nullptr); entry != nullptr;
             entry = NextElement(*section, entry.get())) {
            EntryValue value;
            EntryUi ui;
            if (!ReadEntry(*entry, value, ui)) break;
            if (value.value.empty()) value.value = ui.value;
            AddEntry(*copy, nullptr, {{}, mode == 2 ? &value : nullptr, mode == 1 ? &ui : nullptr});
        }
    }
    target.StripEud();
    return target.DocumentText();
}

std::string BytesOf(const Text& hex, std::size_t size) {
    constexpr std::string_view digits = "0123456789ABCDEFabcdef";
    const auto valueOf = [&](wchar16 unit) {
        const std::size_t found = unit < 0x80 ? digits.find(static_cast<char>(unit)) : std::string_view::npos;
        return found == std::string_view::npos || found < 16 ? found : found - 6;
    };
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size() && bytes.size() < size; i += 2) {
        const std::size_t high = valueOf(hex[i]);
        const std::size_t low = valueOf(hex[i + 1]);
        if (high > 15 || low > 15) break;
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

}  // namespace model
