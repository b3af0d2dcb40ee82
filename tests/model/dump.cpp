#include "tests/model/dump.h"

namespace model {
namespace {

char Digit(unsigned number) {
    return "0123456789ABCDEF"[number & 0xF];
}

}  // namespace

std::string Shown(View text) {
    std::string shown;
    for (const wchar16 wide : text) {
        const auto unit = static_cast<unsigned>(wide);
        if (unit == '\n' || unit == '\t' || unit == '\r') {
            shown += unit == '\n' ? "\\n" : unit == '\t' ? "\\t" : "\\r";
        } else if (unit == '\'' || unit == '\\') {
            shown.append(1, '\\').append(1, static_cast<char>(unit));
        } else if (unit >= 0x20 && unit < 0x7F) {
            shown += static_cast<char>(unit);
        } else {
            shown += "\\u";
            for (int shift = 12; shift >= 0; shift -= 4)
                shown += Digit(unit >> shift);
        }
    }
    return shown;
}

std::string Quoted(View text) {
    return "'" + Shown(text) + "'";
}

std::string Dump(const Node& node) {
    std::string dump;
    if (node.kind == Kind::Comment) dump += "!";
    if (node.kind == Kind::Declaration) dump += "?";
    if (node.kind == Kind::Document) dump += "#";
    dump += Shown(node.name);
    for (std::size_t i = 0; i < node.attributes.size(); ++i) {
        const auto& [name, value] = node.attributes[i];
        dump.append(i == 0 ? "{" : " ").append(Shown(name)).append("=").append(Quoted(value));
    }
    if (!node.attributes.empty()) dump += "}";
    if (!node.value.empty() || node.kind == Kind::Comment) dump += Quoted(node.value);
    if (!node.children.empty()) dump.append("(").append(DumpChildren(node)).append(")");
    return dump;
}

std::string DumpChildren(const Node& node) {
    std::string dump;
    for (const NodePtr& child : node.children)
        dump.append(dump.empty() ? "" : " ").append(Dump(*child));
    return dump;
}

}  // namespace model
