#include "mox_xmlApi/xml/xml_writer.h"

#include <array>

#include "mox_xmlApi/platform/copy_units.h"
#include "mox_xmlApi/platform/files.h"
#include "mox_xmlApi/platform/scan.h"
#include "mox_xmlApi/xml/xml_document.h"
#include "mox_xmlApi/xml/xml_entities.h"

namespace mox {
namespace {

constexpr std::array<unsigned char, 128> NumberEntities() noexcept {
    std::array<unsigned char, 128> table{};
    for (std::size_t i = 0; i < kXmlEntities.size(); ++i) {
        table[kXmlEntities[i].character] = static_cast<unsigned char>(i + 1);
    }
    return table;
}

// For each ASCII character 1 + the index of its entity in kXmlEntities, or 0.
constexpr auto kEntityOf = NumberEntities();

constexpr std::size_t kLongestEntity = 6;

// Texts up to this length are written together with what surrounds them after one check for space.
constexpr std::size_t kShortText = 128;

template <class Unit>
Unit* CopyEscaped(Unit* to, WideView text) noexcept {
    for (;;) {
        const std::size_t plain = CopyUntil<kMarkup>(to, text);
        to += plain;
        if (plain == text.size()) return to;
        to = CopyUnits(to, kXmlEntities[kEntityOf[text[plain]] - 1U].text);
        text.remove_prefix(plain + 1);
    }
}

template <class Output>
void WriteComment(const XmlNode& node, Output& out) {
    out.Append("!--"_w);
    out.Append(node.value.View());
    out.Append("-->"_w);
}

template <class Output>
void WriteDeclaration(const XmlNode& node, Output& out) {
    out.Append(wchar16{'?'});
    out.Append(node.name.View());
    WriteAttributes(node, out);
    out.Append("?>"_w);
}

template <class Output>
void WriteEndTag(const XmlNode& node, Output& out) {
    const WideView name = node.name.View();
    if (name.size() > kShortText) {
        out.Append("</"_w);
        out.Append(name);
        out.Append(wchar16{'>'});
        return;
    }
    auto* to = out.Reserve(name.size() + 3);
    *to++ = '<';
    *to++ = '/';
    to = CopyUnits(to, name);
    *to++ = '>';
    out.Commit(to);
}

template <class Output>
void WriteAttribute(const XmlAttribute& attribute, Output& out) {
    const WideView name = attribute.name.View();
    const WideView value = attribute.value.View();
    if (name.size() > kShortText || value.size() > kShortText) {
        out.Append(wchar16{' '});
        out.Append(name);
        out.Append("=\""_w);
        XmlEscape(value, out);
        out.Append(wchar16{'"'});
        return;
    }
    auto* to = out.Reserve(name.size() + value.size() * kLongestEntity + 4);
    *to++ = ' ';
    to = CopyUnits(to, name);
    *to++ = '=';
    *to++ = '"';
    to = CopyEscaped(to, value);
    *to++ = '"';
    out.Commit(to);
}

// A text that stands on lines of its own; only its first line is indented.
template <class Output>
void WriteTextLines(WideView text, Output& out, std::size_t depth) {
    out.Append(wchar16{'\n'});
    out.Append(depth + 1, wchar16{'\t'});
    XmlEscape(text, out);
    out.Append(wchar16{'\n'});
}

template <class Output>
void WriteChildlessElement(const XmlNode& node, Output& out, std::size_t depth) {
    const WideView text = node.value.View();
    if (text.empty()) {
        out.Append("/>"_w);
        return;
    }
    out.Append(wchar16{'>'});
    if (CountBefore('\n', text.data(), text.size()) == text.size()) {
        XmlEscape(text, out);
    } else {
        WriteTextLines(text, out, depth);
        out.Append(depth, wchar16{'\t'});
    }
    WriteEndTag(node, out);
}

// Writes a node up to its children. Returns whether it has any; its end tag is then still to be written.
template <class Output>
bool BeginNode(const XmlNode& node, Output& out, std::size_t depth) {
    out.Append(depth, wchar16{'\t'});
    out.Append(wchar16{'<'});
    if (node.kind == XmlNodeKind::Comment) {
        WriteComment(node, out);
        return false;
    }
    if (node.kind == XmlNodeKind::ProcessingInstruction) {
        WriteDeclaration(node, out);
        return false;
    }
    out.Append(node.name.View());
    WriteAttributes(node, out);
    if (node.children.IsEmpty()) {
        WriteChildlessElement(node, out, depth);
        return false;
    }
    out.Append(wchar16{'>'});
    if (node.value.IsEmpty()) {
        out.Append(wchar16{'\n'});
    } else {
        WriteTextLines(node.value.View(), out, depth);
    }
    return true;
}

template <class Output>
bool WriteToFile(const wchar16* path, const XmlNode* root, Output& out) {
    if (root != nullptr) WriteDocument(*root, out);
    out.Append(wchar16{0});  // readers of the format stop at a zero
    OutputFile file(path);
    out.ForEachChunk(
        [&](const auto* units, std::size_t count) { return file.Write(units, count * sizeof(*units)); });
    return file.Close();
}

}  // namespace

template <class Output>
void XmlEscape(WideView text, Output& out) {
    constexpr std::size_t kPiece = Output::kMaxReserve / kLongestEntity;
    for (; text.size() > kPiece; text.remove_prefix(kPiece)) {
        out.Commit(CopyEscaped(out.Reserve(kPiece * kLongestEntity), text.substr(0, kPiece)));
    }
    out.Commit(CopyEscaped(out.Reserve(text.size() * kLongestEntity), text));
}

template <class Output>
void WriteAttributes(const XmlNode& node, Output& out) {
    for (const XmlAttribute& attribute : node.attributes) {
        WriteAttribute(attribute, out);
    }
}

template <class Output>
void WriteNode(const XmlNode& node, Output& out, std::size_t depth) {
    if (!BeginNode(node, out, depth)) return;
    const XmlNode* parent = &node;  // the innermost element whose end tag has not come, indented by `depth`
    const XmlNode* child = node.children.First();
    for (;;) {
        if (child != nullptr) {
            if (BeginNode(*child, out, depth + 1)) {
                parent = child;
                child = parent->children.First();
                ++depth;
            } else {
                out.Append(wchar16{'\n'});
                child = child->next;
            }
            continue;
        }
        out.Append(depth, wchar16{'\t'});
        WriteEndTag(*parent, out);
        if (parent == &node) return;
        out.Append(wchar16{'\n'});
        child = parent->next;
        parent = parent->parent;
        --depth;
    }
}

template <class Output>
void WriteDocument(const XmlNode& node, Output& out) {
    if (node.kind != XmlNodeKind::Document) return WriteNode(node, out, 0);
    for (const XmlNode* child : node.children) {
        WriteNode(*child, out, 0);
        out.Append(wchar16{'\n'});
    }
}

template void XmlEscape(WideView, XmlOutput&);
template void XmlEscape(WideView, NarrowXmlOutput&);
template void WriteAttributes(const XmlNode&, XmlOutput&);
template void WriteAttributes(const XmlNode&, NarrowXmlOutput&);
template void WriteNode(const XmlNode&, XmlOutput&, std::size_t);
template void WriteNode(const XmlNode&, NarrowXmlOutput&, std::size_t);
template void WriteDocument(const XmlNode&, XmlOutput&);
template void WriteDocument(const XmlNode&, NarrowXmlOutput&);

// The whole text is built before the file is opened: a failed allocation never costs the user the old file.
bool XmlDocument::Save(const wchar16* path, bool refuse, bool wide) const {
    if (refuse) return false;
    const XmlNode* content = writable ? root : nullptr;
    if (wide) {
        XmlOutput out;
        return WriteToFile(path, content, out);
    }
    NarrowXmlOutput out;
    return WriteToFile(path, content, out);
}

}  // namespace mox
