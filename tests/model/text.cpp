#include "tests/model/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace model {
namespace {

constexpr std::array<std::pair<char, std::string_view>, 5> kEntities = {
    {{'&', "&amp;"}, {'\'', "&apos;"}, {'>', "&gt;"}, {'<', "&lt;"}, {'"', "&quot;"}}};

// What ends a parse that fails.
struct Malformed {};

bool IsSpace(wchar16 unit) {
    return unit == ' ' || unit == '\t' || unit == '\n' || unit == '\r';
}

class Parser {
  public:
    Parser(const Text& text, const NameRules& names) : text_(text), names_(names) {}

    void Document(Node& document) {
        for (;;) {
            while (at_ < text_.size() && IsSpace(text_[at_]))
                ++at_;
            if (at_ >= text_.size()) return;
            Take('<');
            AnyNode(document);
            ++at_;  // whatever it is
        }
    }

  private:
    wchar16 Peek() const {
        if (at_ >= text_.size()) throw Malformed();
        return text_[at_];
    }
    wchar16 Next() {
        const wchar16 unit = Peek();
        ++at_;
        return unit;
    }
    void Take(char expected) {
        if (Next() != static_cast<wchar16>(expected)) throw Malformed();
    }
    void SkipSpace() {
        while (IsSpace(Peek()))
            ++at_;
    }

    Text Name() {
        if (!names_.begins(Peek())) throw Malformed();
        Text name(1, Next());
        while (names_.goesOn(Peek()))
            name += Next();
        return name;
    }

    wchar16 Entity() {
        Text entity;
        do {
            entity += Next();
        } while (entity.back() != ';');
        for (const auto& [unit, escaped] : kEntities) {
            if (entity == Wide(escaped)) return static_cast<wchar16>(unit);
        }
        throw Malformed();
    }

    void Attributes(Node& node) {
        for (;;) {
            SkipSpace();
            if (!names_.begins(Peek())) return;
            const Text name = Name();
            SkipSpace();
            Take('=');
            SkipSpace();
            Take('"');
            Text value;
            while (Peek() != '"') {
                if (Peek() == '<') throw Malformed();
                value += Peek() == '&' ? Entity() : Next();
            }
            Take('"');
            node.attributes.emplace_back(name, value);
        }
    }

    // What follows a "<". The node goes into the tree when it is complete.
    void AnyNode(Node& parent) {
        const auto node = std::make_shared<Node>();
        if (Peek() == '?') {
            Declaration(parent, *node);
        } else if (Peek() == '!') {
            Comment(*node);
        } else {
            Element(*node);
        }
        parent.children.push_back(node);
    }

    void Declaration(const Node& parent, Node& node) {
        if (parent.kind != Kind::Document || !parent.children.empty()) throw Malformed();
        Take('?');
        node.kind = Kind::Declaration;
        node.name = Name();
        if (node.name != Wide("xml") || !IsSpace(Peek())) throw Malformed();
        Attributes(node);
        if (FindAttribute(node, "version") == nullptr) throw Malformed();
        Take('?');
        Take('>');
    }

    void Comment(Node& node) {
        node.kind = Kind::Comment;
        Take('!');
        Take('-');
        Take('-');
        // No "--" and no ">" but at the end.
        for (int dashes = 0;;) {
            const wchar16 unit = Next();
            if (unit == '>' && dashes == 2) break;
            if (unit == '>' || dashes == 2) throw Malformed();
            dashes = unit == '-' ? dashes + 1 : std::max(0, dashes - 1);
            node.value += unit;
        }
        node.value.resize(node.value.size() - 2);
    }

    void Element(Node& node) {
        node.name = Name();
        Attributes(node);
        if (Peek() == '/') {
            Take('/');
            Take('>');
            return;
        }
        Take('>');
        SkipSpace();
        Text pending;
        for (;;) {
            if (Peek() != '<') {
                pending += Peek() == '&' ? Entity() : Next();
                continue;
            }
            Take('<');
            if (!pending.empty()) node.value += node.value.empty() ? pending : Wide("\n") + pending;
            pending.clear();
            if (Peek() == '/') break;
            AnyNode(node);
            SkipSpace();
        }
        Take('/');
        if (Name() != node.name) throw Malformed();
        Take('>');
    }

    const Text& text_;
    const NameRules& names_;
    std::size_t at_ = 0;
};

Text Escaped(const Text& text) {
    Text escaped;
    for (const wchar16 unit : text) {
        const auto* const found = std::find_if(kEntities.begin(), kEntities.end(), [&](const auto& entity) {
            return static_cast<wchar16>(entity.first) == unit;
        });
        escaped += found == kEntities.end() ? Text(1, unit) : Wide(found->second);
    }
    return escaped;
}

Text Attributes(const Node& node) {
    Text text;
    for (const auto& [name, value] : node.attributes)
        text += Wide(" ") + name + Wide("=\"") + Escaped(value) + Wide("\"");
    return text;
}

// A comment, the declaration or an empty element as a whole; of any other element the start tag.
Text Tag(const Node& node, bool isEmpty) {
    if (node.kind == Kind::Comment) return Wide("<!--") + node.value + Wide("-->");
    if (node.kind == Kind::Declaration) return Wide("<?") + node.name + Attributes(node) + Wide("?>");
    return Wide("<") + node.name + Attributes(node) + Wide(isEmpty ? "/>" : ">");
}

Text Line(std::size_t depth, const Text& text) {
    return Text(depth, '\t') + text + Wide("\n");
}

void Write(const Node& node, std::size_t depth, Text& out) {
    const bool isEmpty = node.children.empty() && node.value.empty();
    out += Text(depth, '\t') + Tag(node, isEmpty);
    if (isEmpty || node.kind == Kind::Comment || node.kind == Kind::Declaration) return;

    if (node.children.empty() && node.value.find('\n') == Text::npos) {
        out += Escaped(node.value);
    } else {
        out += '\n';
        if (!node.value.empty()) out += Line(depth + 1, Escaped(node.value));
        for (const NodePtr& child : node.children) {
            Write(*child, depth + 1, out);
            out += '\n';
        }
        out += Text(depth, '\t');
    }
    out += Wide("</") + node.name + Wide(">");
}

}  // namespace

bool BeginsAsciiName(wchar16 unit) {
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') || unit == '_' || unit == ':';
}

bool GoesOnWithAsciiName(wchar16 unit) {
    return BeginsAsciiName(unit) || (unit >= '0' && unit <= '9');
}

bool ParseInto(Node& document, const Text& text, const NameRules& names) {
    try {
        Parser(text, names).Document(document);
        return true;
    } catch (const Malformed&) {
        return false;
    }
}

NodePtr Parse(const Text& text, const NameRules& names) {
    auto document = std::make_shared<Node>();
    document->kind = Kind::Document;
    return ParseInto(*document, text, names) ? document : nullptr;
}

Text WrittenAt(std::size_t depth, const Node& node) {
    Text text;
    Write(node, depth, text);
    return text;
}

Text Written(const Node& node) {
    if (node.kind != Kind::Document) return WrittenAt(0, node);
    Text text;
    for (const NodePtr& child : node.children) {
        Write(*child, 0, text);
        text += '\n';
    }
    return text;
}

std::string WideBytes(const Text& text) {
    std::string bytes;
    for (const wchar16 unit : text + Text(1, 0))
        bytes.append(1, static_cast<char>(unit & 0xFF)).append(1, static_cast<char>(unit >> 8));
    return bytes;
}

std::string NarrowBytes(const Text& text) {
    std::string bytes;
    for (const wchar16 unit : text + Text(1, 0))
        bytes.append(1, static_cast<char>(unit & 0xFF));
    return bytes;
}

Text FromWideBytes(std::string_view bytes) {
    Text text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        text += static_cast<wchar16>(high * 256 + low);
    }
    return text.substr(0, text.find(wchar16{0}));
}

Text FromNarrowBytes(std::string_view bytes) {
    Text text;
    for (const char byte : bytes.substr(0, bytes.find('\0'))) {
        const auto unit = static_cast<unsigned char>(byte);
        text += static_cast<wchar16>(unit < 0x80 ? unit : 0xFF00 + unit);
    }
    return text;
}

}  // namespace model
