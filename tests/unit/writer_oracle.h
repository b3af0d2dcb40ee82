// A second writer: plain concatenation, step by step, with recursion.
#ifndef MOX_XMLAPI_TESTS_UNIT_WRITER_ORACLE_H
#define MOX_XMLAPI_TESTS_UNIT_WRITER_ORACLE_H

#include <cstddef>

#include "tests/unit/xml_support.h"

namespace mox::test {

inline WideString OracleEscape(const WideString& text) {
    WideString escaped;
    for (const wchar16 unit : text) {
        if (unit == '&')
            escaped += Wide("&amp;");
        else if (unit == '\'')
            escaped += Wide("&apos;");
        else if (unit == '>')
            escaped += Wide("&gt;");
        else if (unit == '<')
            escaped += Wide("&lt;");
        else if (unit == '"')
            escaped += Wide("&quot;");
        else
            escaped += unit;
    }
    return escaped;
}

inline WideString OracleAttributes(const PlainNode& node) {
    WideString text;
    for (const auto& [name, value] : node.attributes)
        text += Wide(" ") + name + Wide("=\"") + OracleEscape(value) + Wide("\"");
    return text;
}

inline WideString OracleNode(const PlainNode& node, std::size_t depth) {
    const WideString tabs(depth, wchar16{'\t'});
    WideString text = tabs + Wide("<");
    if (node.kind == XmlNodeKind::Comment) return text + Wide("!--") + node.value + Wide("--") + Wide(">");
    if (node.kind == XmlNodeKind::ProcessingInstruction)
        return text + Wide("?") + node.name + OracleAttributes(node) + Wide("?>");
    text += node.name + OracleAttributes(node);
    if (node.children.empty() && node.value.empty()) return text + Wide("/>");
    text += Wide(">");
    const WideString value = OracleEscape(node.value);
    const bool isInline = node.children.empty() && value.find(wchar16{'\n'}) == WideString::npos;
    if (value.empty()) {
        text += Wide("\n");
    } else {
        if (!isInline) text += Wide("\n") + tabs + Wide("\t");
        text += value;
        if (!isInline) text += Wide("\n");
    }
    for (const PlainNode& child : node.children)
        text += OracleNode(child, depth + 1) + Wide("\n");
    if (!isInline) text += tabs;
    return text + Wide("</") + node.name + Wide(">");
}

inline WideString OracleDocument(const PlainNode& node) {
    if (node.kind != XmlNodeKind::Document) return OracleNode(node, 0);
    WideString text;
    for (const PlainNode& child : node.children)
        text += OracleNode(child, 0) + Wide("\n");
    return text;
}

}  // namespace mox::test

#endif
