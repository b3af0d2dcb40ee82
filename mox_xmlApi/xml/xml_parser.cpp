// The grammar. S is any run, also an empty one, of space, tab, line feed and carriage return.
//
//   document    := S ( node ANY S )*            ANY is one unit, whatever it is; the last node needs none
//   node        := declaration | comment | element
//   declaration := "<?" "xml" S1 attributes S "?>"
//                                               first in the document; S1 is not empty; has a "version"
//   comment     := "<!--" text "-->"            no ">" and no "--" inside
//   element     := "<" name attributes S ( "/>" | ">" S content "</" name ">" )
//   attributes  := ( S name S "=" S '"' text '"' )*
//                                               no "<" inside; entities are decoded
//   content     := ( text | ( comment | element ) S )*
//                                               entities are decoded
//   name        := ( letter | "_" | ":" ) ( letter | digit | "_" | ":" )*
//
// The stack. Nothing here calls itself, and there is no stack: `open_` is the innermost element whose end tag has not
// come, and the elements around it are its parents. A node is linked to its parent as soon as it is made, so that the
// links are whole at any time; a top-level node is added to the document when it is complete.
//
// The place. Each function that parses a rule gets the place where the rule begins, and returns the place after it or
// null when the text does not fit. So the place stays in a register.
//
// The end. The unit after the text is set to "<", which ends every name, run of space, value and text. Only the rules
// that could take it for markup, or that pass over any unit, ask whether it is the end.
#include "mox_xmlApi/xml/xml_parser.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "mox_xmlApi/platform/scan.h"
#include "mox_xmlApi/xml/xml_entities.h"
#include "mox_xmlApi/xml/xml_name_characters.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

bool IsSpace(wchar16 unit) noexcept {
    constexpr std::uint64_t kSpaces = (std::uint64_t{1} << ' ') | (std::uint64_t{1} << '\n') |
                                      (std::uint64_t{1} << '\t') | (std::uint64_t{1} << '\r');
    return unit <= ' ' && ((kSpaces >> unit) & 1) != 0;
}

// What a text in an attribute and one in an element cannot hold as they are.
constexpr std::array<UnitPattern, 2> kEndsOfValue = {
    {{wchar16{'"' ^ '&'}, wchar16{'"' | '&'}}, {0, wchar16{'<'}}}};
constexpr std::array<UnitPattern, 2> kEndsOfContent = {{{0, wchar16{'&'}}, {0, wchar16{'<'}}}};

class Parser {
  public:
    Parser(XmlDocument& document, wchar16* text, std::size_t length, XmlNode* parent, ParseFailure* failure)
        : document_(document),
          pool_(document.Pool()),
          begin_(text),
          end_(text + length),
          parent_(parent),
          failure_(failure) {
        *end_ = '<';
    }
    ~Parser() { document_.DestroyNode(top_); }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    bool ParseDocument() {
        wchar16* next = EndOfSpace(begin_);
        while (next != end_) {
            next = *next == '<' ? ParseTopLevelNode(next + 1)
                                : Fail(ParseExpectation::TopLevelNode, next, nullptr);
            if (next == nullptr) return false;
            if (next != end_) next = EndOfSpace(next + 1);
        }
        return true;
    }

  private:
    static constexpr std::size_t kFewAttributes = XmlPool::kScratchSize / sizeof(XmlAttribute);
    static_assert(std::has_single_bit(kFewAttributes), "room for more is made at powers of two");

    // Always null. `inside` is null at the top level.
    wchar16* Fail(ParseExpectation expected, const wchar16* at, const wchar16* inside) const noexcept {
        if (failure_ == nullptr) return nullptr;
        failure_->expected = expected;
        failure_->offset = static_cast<std::size_t>(at - begin_);
        failure_->inside =
            inside == nullptr ? ParseFailure::kNowhere : static_cast<std::size_t>(inside - begin_);
        return nullptr;
    }

    wchar16* FailInElement(ParseExpectation expected, const wchar16* at) noexcept {
        return Fail(expected, at, open_ == nullptr ? nullptr : open_->name.View().data());
    }

    wchar16* FailInTag(ParseExpectation expected, const wchar16* at) const noexcept {
        return Fail(expected, at, unfinished_->name.View().data());
    }

    // Runs of space and names are short, and mostly as long as those before: the processor guesses where they end and
    // goes on. For the result of a search of several units at a time it would have to wait.
    static wchar16* EndOfSpace(wchar16* next) noexcept {
        while (IsSpace(*next))
            ++next;
        return next;
    }

    // `begin` itself when there is no name.
    static wchar16* EndOfName(wchar16* begin) noexcept {
        if (!IsNameStart(*begin)) return begin;
        wchar16* next = begin + 1;
        while (IsNameCharacter(*next))
            ++next;
        return next;
    }

    static WideView Between(const wchar16* begin, const wchar16* end) noexcept {
        return {begin, static_cast<std::size_t>(end - begin)};
    }

    bool HasAt(const wchar16* place, WideView text) const noexcept {
        return static_cast<std::size_t>(end_ - place) >= text.size() &&
               SameText(WideView(place, text.size()), text);
    }

    // What follows the "<" of a node.
    wchar16* ParseTopLevelNode(wchar16* next) {
        if (*next == '?') return ParseDeclaration(next + 1);
        for (;;) {
            next = ParseMarkup(next);
            if (next == nullptr || open_ == nullptr) return next;
            next = ParseContent(EndOfSpace(next));
            if (next == nullptr) return nullptr;
        }
    }

    // A comment, a start tag or an end tag, from what follows the "<" on.
    wchar16* ParseMarkup(wchar16* next) {
        if (*next == '/' && open_ != nullptr) return ParseEndTag(next + 1);
        if (*next == '!') return ParseComment(next + 1);
        return ParseStartTag(next);
    }

    wchar16* ParseDeclaration(wchar16* begin) {
        if (parent_->kind != XmlNodeKind::Document || !parent_->children.IsEmpty()) {
            return Fail(ParseExpectation::DeclarationFirst, begin, nullptr);
        }
        wchar16* next = EndOfName(begin);
        const WideView name = Between(begin, next);
        if (name != names::kXml || !IsSpace(*next)) {
            return Fail(ParseExpectation::DeclarationName, begin, nullptr);
        }
        StartNode(XmlNodeKind::ProcessingInstruction, name);
        next = ParseAttributes(next);
        if (next == nullptr) return nullptr;
        const auto& attributes = unfinished_->attributes;
        const bool hasVersion = std::any_of(
            attributes.begin(), attributes.end(),
            [](const XmlAttribute& attribute) { return attribute.name.View() == names::kVersion; });
        if (!hasVersion) return FailInTag(ParseExpectation::DeclarationVersion, next);
        if (*next != '?' || *++next != '>') return FailInTag(ParseExpectation::DeclarationEnd, next);
        FinishNode();
        return next + 1;
    }

    // `dashes` counts as the format wants it: two in a row must be followed by ">".
    wchar16* ParseComment(wchar16* next) {
        if (!HasAt(next, "--"_w)) return FailInElement(ParseExpectation::CommentStart, next);
        next += 2;
        const wchar16* begin = next;
        for (int dashes = 0;; ++next) {
            if (next == end_) return Fail(ParseExpectation::CommentEnd, next, begin);
            if (*next == '>' || dashes == 2) {
                if (*next != '>' || dashes != 2) return Fail(ParseExpectation::CommentEnd, next, begin);
                break;
            }
            dashes = *next == '-' ? dashes + 1 : std::max(dashes - 1, 0);
        }
        StartNode(XmlNodeKind::Comment, Between(begin, begin));
        unfinished_->value = XmlText::Slice(Between(begin, next - 2));
        FinishNode();
        return next + 1;
    }

    wchar16* ParseStartTag(wchar16* begin) {
        wchar16* next = EndOfName(begin);
        if (next == begin) return FailInElement(ParseExpectation::ElementName, begin);
        StartNode(XmlNodeKind::Element, Between(begin, next));
        if (*next != '>') {
            next = ParseAttributes(next);
            if (next == nullptr) return nullptr;
        }
        if (*next == '/') {
            ++next;
            if (*next != '>') return FailInTag(ParseExpectation::EmptyTagEnd, next);
            FinishNode();
            return next + 1;
        }
        if (*next != '>') return FailInTag(ParseExpectation::TagEnd, next);
        open_ = unfinished_;
        return next + 1;
    }

    // Returns the place after the space that follows the last attribute. Attributes are written where they will stay,
    // as long as they are few.
    wchar16* ParseAttributes(wchar16* next) {
        auto* const few = static_cast<XmlAttribute*>(pool_.ReserveScratch());
        std::size_t count = 0;
        wchar16* name = EndOfSpace(next);
        for (wchar16* nameEnd = EndOfName(name); nameEnd != name; nameEnd = EndOfName(name)) {
            next = nameEnd + 1;
            if (*nameEnd != '=' || *next != '"') {
                next = EndOfSpace(nameEnd);
                if (*next != '=') return Fail(ParseExpectation::AttributeEquals, next, name);
                next = EndOfSpace(next + 1);
                if (*next != '"') return Fail(ParseExpectation::AttributeQuote, next, name);
            }
            const wchar16* const valueBegin = ++next;
            const WideView value = ParseText<kEndsOfValue>(next);
            if (*next != '"') return Fail(ParseExpectation::AttributeEnd, next, valueBegin);
            const XmlAttribute attribute{XmlText::Slice(Between(name, nameEnd)), XmlText::Slice(value)};
            if (count < kFewAttributes) {
                few[count] = attribute;
            } else {
                if (count == kFewAttributes) KeepFew(few, count);
                AppendAttribute(attribute);
            }
            ++count;
            name = EndOfSpace(next + 1);
        }
        if (count != 0 && count <= kFewAttributes) KeepFew(few, count);
        return name;
    }

    void KeepFew(XmlAttribute* few, std::size_t count) noexcept {
        void* kept = pool_.CommitScratch(count * sizeof *few);
        unfinished_->attributes.Adopt(static_cast<XmlAttribute*>(kept), count);
    }

    void AppendAttribute(const XmlAttribute& attribute) {
        auto& attributes = unfinished_->attributes;
        if (std::has_single_bit(attributes.Size())) attributes.Reserve(pool_, attributes.Size());
        attributes.Append(attribute);
    }

    // The text of the innermost open element up to the next markup, and the "<" of that.
    wchar16* ParseContent(wchar16* next) {
        if (*next != '<') {
            const WideView text = ParseText<kEndsOfContent>(next);
            if (*next != '<') return FailInElement(ParseExpectation::Content, next);
            AddText(text);
        }
        if (next == end_) return FailInElement(ParseExpectation::Content, next);
        return next + 1;
    }

    wchar16* ParseEndTag(wchar16* next) {
        const WideView name = open_->name.View();
        if (!HasAt(next, name)) return FailInElement(ParseExpectation::EndTag, next);
        next += name.size();
        if (*next != '>') return FailInElement(ParseExpectation::EndTag, next);
        unfinished_ = std::exchange(open_, open_->parent);
        FinishNode();
        return next + 1;
    }

    // The text from `next` on up to one of `kEnds`, entities decoded in place. Moves `next` to the first unit that does
    // not belong to it: the caller looks whether that is the one it wants.
    template <auto kEnds>
    WideView ParseText(wchar16*& next) noexcept {
        wchar16* const begin = next;
        next = FindAnyOf<kEnds>(begin);
        if (*next != '&') return Between(begin, next);  // the common case
        wchar16* decoded = next;
        while (*next == '&' && DecodeEntity(next, decoded)) {
            wchar16* plain = std::exchange(next, FindAnyOf<kEnds>(next));
            decoded = std::copy(plain, next, decoded + 1);
        }
        return Between(begin, decoded);
    }

    // Writes the character of the entity at `next` to `to` and moves `next` past it. False when there is none.
    bool DecodeEntity(wchar16*& next, wchar16* to) const noexcept {
        for (const XmlEntity& entity : kXmlEntities) {
            if (!HasAt(next, entity.text)) continue;
            next += entity.text.size();
            *to = entity.character;
            return true;
        }
        return false;
    }

    // Pieces with children between them are joined by line feeds. A single piece stays a slice.
    void AddText(WideView piece) {
        XmlText& value = open_->value;
        if (value.IsEmpty()) {
            value = XmlText::Slice(piece);
            return;
        }
        value.Append(pool_, "\n"_w);
        value.Append(pool_, piece);
    }

    void StartNode(XmlNodeKind kind, WideView name) {
        if (open_ != nullptr) open_->children.CheckRoom();
        unfinished_ = pool_.New<XmlNode>(kind);
        if (open_ != nullptr) {
            AppendChild(*open_, *unfinished_);
        } else {
            top_ = unfinished_;
        }
        unfinished_->name = XmlText::Slice(name);
    }

    // Adds a top-level node that was just read to the document.
    void FinishNode() {
        if (open_ != nullptr) return;
        document_.AppendNode(parent_, top_);
        top_ = nullptr;
    }

    XmlDocument& document_;
    XmlPool& pool_;
    wchar16* const begin_;
    wchar16* const end_;
    XmlNode* const parent_;
    ParseFailure* const failure_;
    XmlNode* top_ = nullptr;         // the top-level node that is being read
    XmlNode* open_ = nullptr;        // the innermost open element, null at the top level
    XmlNode* unfinished_ = nullptr;  // the node whose markup is being read
};

}  // namespace

bool ParseInPlace(XmlDocument& document, wchar16* text, std::size_t length, XmlNode* parent,
                  ParseFailure* failure) {
    return Parser(document, text, length, parent, failure).ParseDocument();
}

}  // namespace mox
