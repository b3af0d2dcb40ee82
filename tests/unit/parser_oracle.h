// A second parser, as slow and as plain as the rules allow: one position, one character at a time, one
// function for each rule, and recursion. It shares no code with the library; what both must agree on is the
// tree and the result.
#ifndef MOX_XMLAPI_TESTS_UNIT_PARSER_ORACLE_H
#define MOX_XMLAPI_TESTS_UNIT_PARSER_ORACLE_H

#include <cstddef>
#include <string>
#include <string_view>

#include "tests/unit/xml_support.h"

namespace mox::test {

class ParserOracle {
  public:
    explicit ParserOracle(WideString text) : text_(std::move(text)) {}

    // Parses the whole text; what is complete goes into `document` even when the result is false.
    bool Parse(PlainNode& document) {
        for (;;) {
            SkipWhitespace();
            if (End()) return true;
            if (Here() != '<') return false;
            position_ += 1;
            if (!ParseNode(document)) return false;
            position_ += 1;
        }
    }

    // The letters beyond ASCII that the tests put into documents; every other unit they use is none.
    static bool IsLetter(wchar16 unit) {
        if (unit >= 'A' && unit <= 'Z') return true;
        if (unit >= 'a' && unit <= 'z') return true;
        return unit == 0x00E9 || unit == 0x0416 || unit == 0x4E2D || unit == 0xFF80;
    }
    static bool IsDigit(wchar16 unit) { return unit >= '0' && unit <= '9'; }

  private:
    bool End() const { return position_ >= text_.size(); }
    wchar16 Here() const { return text_.at(position_); }
    bool At(char unit) const { return !End() && Here() == static_cast<wchar16>(unit); }
    bool IsLast() const { return position_ + 1 == text_.size(); }

    bool AtWhitespace() const { return At(' ') || At('\t') || At('\n') || At('\r'); }
    void SkipWhitespace() {
        while (AtWhitespace())
            position_ += 1;
    }
    // False when the text is over.
    bool SkipWhitespaceInside() {
        SkipWhitespace();
        return !End();
    }

    bool Take(char unit) {
        if (!At(unit)) return false;
        position_ += 1;
        return true;
    }

    bool AtNameStart() const { return !End() && (IsLetter(Here()) || Here() == '_' || Here() == ':'); }
    bool TakeName(WideString& name) {
        name.clear();
        if (!AtNameStart()) return false;
        while (AtNameStart() || (!End() && IsDigit(Here()))) {
            name += Here();
            position_ += 1;
        }
        return true;
    }

    bool ParseNode(PlainNode& parent) {
        if (Take('?')) return ParseDeclaration(parent);
        if (Take('!')) return ParseComment(parent);
        return ParseElement(parent);
    }

    bool ParseDeclaration(PlainNode& parent) {
        if (parent.kind != XmlNodeKind::Document || !parent.children.empty()) return false;
        PlainNode node;
        node.kind = XmlNodeKind::ProcessingInstruction;
        if (!TakeName(node.name)) return false;
        if (node.name != Wide("xml")) return false;
        if (!AtWhitespace()) return false;
        if (!ParseAttributes(node)) return false;
        bool hasVersion = false;
        for (const auto& attribute : node.attributes)
            hasVersion = hasVersion || attribute.first == Wide("version");
        if (!hasVersion) return false;
        SkipWhitespace();
        if (!Take('?')) return false;
        if (!Take('>')) return false;
        parent.children.push_back(node);
        return true;
    }

    bool ParseComment(PlainNode& parent) {
        if (!Take('-')) return false;
        if (!Take('-')) return false;
        PlainNode node;
        node.kind = XmlNodeKind::Comment;
        int dashes = 0;
        while (!End()) {
            const wchar16 unit = Here();
            position_ += 1;
            if (unit == '>' && dashes == 2) {
                node.value.pop_back();
                node.value.pop_back();
                parent.children.push_back(node);
                return true;
            }
            if (unit == '>') return false;
            if (dashes == 2) return false;
            if (unit == '-')
                dashes += 1;
            else if (dashes > 0)
                dashes -= 1;
            node.value += unit;
        }
        return false;
    }

    bool ParseElement(PlainNode& parent) {
        PlainNode node;
        if (!TakeName(node.name)) return false;
        if (!SkipWhitespaceInside()) return false;
        if (!ParseAttributes(node)) return false;
        if (!SkipWhitespaceInside()) return false;
        if (Take('/')) {
            if (!Take('>')) return false;
            parent.children.push_back(node);
            return true;
        }
        if (!Take('>')) return false;
        if (!SkipWhitespaceInside()) return false;
        if (!ParseContent(node)) return false;
        parent.children.push_back(node);
        return true;
    }

    // Up to and with the end tag.
    bool ParseContent(PlainNode& node) {
        WideString pending;
        while (!End()) {
            if (At('&')) {
                if (!TakeEntity(pending)) return false;
                if (End()) return false;
            } else if (At('<') && !IsLast()) {
                position_ += 1;
                if (!pending.empty() && !node.value.empty()) node.value += wchar16{'\n'};
                node.value += pending;
                pending.clear();
                if (Take('/')) {
                    WideString name;
                    return TakeName(name) && name == node.name && Take('>');
                }
                if (!ParseNode(node)) return false;
                if (!SkipWhitespaceInside()) return false;
            } else {
                pending += Here();
                position_ += 1;
            }
        }
        return false;
    }

    bool ParseAttributes(PlainNode& node) {
        for (;;) {
            if (!SkipWhitespaceInside()) return false;
            WideString name;
            if (!TakeName(name)) return true;
            if (!SkipWhitespaceInside()) return false;
            if (!Take('=')) return false;
            if (!SkipWhitespaceInside()) return false;
            if (!Take('"')) return false;
            WideString value;
            while (!At('"')) {
                if (End()) return false;
                if (At('<')) return false;
                if (At('&')) {
                    if (!TakeEntity(value)) return false;
                } else {
                    value += Here();
                    position_ += 1;
                }
            }
            position_ += 1;
            node.attributes.emplace_back(name, value);
        }
    }

    bool TakeEntity(WideString& to) {
        WideString entity;
        do {
            if (End()) return false;
            entity += Here();
            position_ += 1;
        } while (entity.back() != ';');
        if (entity == Wide("&amp;"))
            to += wchar16{'&'};
        else if (entity == Wide("&apos;"))
            to += wchar16{'\''};
        else if (entity == Wide("&gt;"))
            to += wchar16{'>'};
        else if (entity == Wide("&lt;"))
            to += wchar16{'<'};
        else if (entity == Wide("&quot;"))
            to += wchar16{'"'};
        else
            return false;
        return true;
    }

    WideString text_;
    std::size_t position_ = 0;
};

// What the rules give for a text, in the form of Parsed.
inline std::string OracleParsed(WideString text) {
    PlainNode document;
    document.kind = XmlNodeKind::Document;
    const bool parsed = ParserOracle(std::move(text)).Parse(document);
    return Outcome(parsed, DumpChildren(document));
}

}  // namespace mox::test

#endif
