#include "tests/host/model/text_support.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace host::model {
namespace {

constexpr std::array<std::pair<char, std::string_view>, 5> kEntities = {
    {{'&', "&amp;"}, {'\'', "&apos;"}, {'>', "&gt;"}, {'<', "&lt;"}, {'"', "&quot;"}}};

// What ends a parse that fails.
struct Malformed {};

bool IsSpace(wchar16 unit) {
    return unit == ' ' || unit == '\t' || unit == '\n' || unit == '\r';
}

// The documents of these tests have ASCII names.
bool IsNameStart(wchar16 unit) {
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') || unit == '_' || unit == ':';
}

class Parser {
  public:
    explicit Parser(const Text& text) : text_(text) {}

    NodePtr Document() {
        auto document = std::make_shared<Node>();
        document->kind = Kind::Document;
        for (;;) {
            while (at_ < text_.size() && IsSpace(text_[at_]))
                ++at_;
            if (at_ >= text_.size()) return document;
            Take('<');
            AnyNode(*document);
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
        if (!IsNameStart(Peek())) throw Malformed();
        Text name;
        while (IsNameStart(Peek()) || (Peek() >= '0' && Peek() <= '9'))
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
            if (!IsNameStart(Peek())) return;
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
        const bool hasVersion =
            std::any_of(node.attributes.begin(), node.attributes.end(),
                        [](const auto& attribute) { return attribute.first == Wide("version"); });
        if (!hasVersion) throw Malformed();
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

Text WrittenNode(const Node& node, std::size_t depth) {
    const Text indent(depth, '\t');
    if (node.kind == Kind::Comment) return indent + Wide("<!--") + node.value + Wide("-->");
    Text text = indent + Wide(node.kind == Kind::Declaration ? "<?" : "<") + node.name;
    for (const auto& [name, value] : node.attributes)
        text += Wide(" ") + name + Wide("=\"") + Escaped(value) + Wide("\"");
    if (node.kind == Kind::Declaration) return text + Wide("?>");
    if (node.children.empty() && node.value.empty()) return text + Wide("/>");

    const Text end = Wide("</") + node.name + Wide(">");
    const Text value = Escaped(node.value);
    if (node.children.empty() && value.find('\n') == Text::npos) return text + Wide(">") + value + end;
    text += Wide(">\n");
    if (!value.empty()) text += indent + Wide("\t") + value + Wide("\n");
    for (const NodePtr& child : node.children)
        text += WrittenNode(*child, depth + 1) + Wide("\n");
    return text + indent + end;
}

}  // namespace

NodePtr Parse(const Text& text) {
    try {
        return Parser(text).Document();
    } catch (const Malformed&) {
        return nullptr;
    }
}

Text Written(const Node& node) {
    if (node.kind != Kind::Document) return WrittenNode(node, 0);
    Text text;
    for (const NodePtr& child : node.children)
        text += WrittenNode(*child, 0) + Wide("\n");
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

Text FromWideBytes(const std::string& bytes) {
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

}  // namespace host::model
