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
// The end. The text is followed by a zero unit, which no rule accepts, so that only those loops that pass over
// any unit have to ask whether a zero is the end.
#include "mox_xmlApi/xml/xml_parser.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "mox_xmlApi/platform/prefetch.h"
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

class Parser {
  public:
    Parser(XmlDocument& document, wchar16* text, std::size_t length, XmlNode* parent, ParseFailure* failure)
        : document_(document),
          pool_(document.Pool()),
          next_(text),
          end_(text + length),
          parent_(parent),
          begin_(text),
          failure_(failure) {}
    ~Parser() { document_.DestroyNode(top_); }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    bool ParseDocument() {
        for (;;) {
            SkipSpace();
            if (AtEnd()) return true;
            if (*next_ != '<') return Fail(ParseExpectation::TopLevelNode, next_, nullptr);
            ++next_;
            if (!ParseTopLevelNode()) return false;
            if (!AtEnd()) ++next_;
        }
    }

  private:
    static constexpr std::size_t kFewAttributes = XmlPool::kScratchSize / sizeof(XmlAttribute);
    static_assert(std::has_single_bit(kFewAttributes), "room for more is made at powers of two");

    // Always false. `inside` is null at the top level.
    bool Fail(ParseExpectation expected, const wchar16* at, const wchar16* inside) const noexcept {
        if (failure_ == nullptr) return false;
        failure_->expected = expected;
        failure_->offset = static_cast<std::size_t>(at - begin_);
        failure_->inside =
            inside == nullptr ? ParseFailure::kNowhere : static_cast<std::size_t>(inside - begin_);
        return false;
    }

    bool FailInElement(ParseExpectation expected, const wchar16* at) noexcept {
        return Fail(expected, at, open_ == nullptr ? nullptr : open_->name.View().data());
    }

    bool FailInTag(ParseExpectation expected, const wchar16* at) const noexcept {
        return Fail(expected, at, unfinished_->name.View().data());
    }

    bool AtEnd() const noexcept { return next_ == end_; }
    std::size_t Left() const noexcept { return static_cast<std::size_t>(end_ - next_); }

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

    // The first unit that a text up to `stop` cannot hold as it is. A zero unit that is not the end is one
    // like others.
    wchar16* EndOfPlain(wchar16* next, wchar16 stop) const noexcept {
        next = FindAnyOf(next, stop, '<', '&');
        while (*next == 0 && next != end_)
            next = FindAnyOf(next + 1, stop, '<', '&');
        return next;
    }

    static WideView Between(const wchar16* begin, const wchar16* end) noexcept {
        return {begin, static_cast<std::size_t>(end - begin)};
    }

    void SkipSpace() noexcept { next_ = EndOfSpace(next_); }

    bool Accept(char unit) noexcept {
        if (*next_ != static_cast<wchar16>(unit)) return false;
        ++next_;
        return true;
    }

    bool Accept(WideView text) noexcept {
        if (Left() < text.size() || !SameText(WideView(next_, text.size()), text)) return false;
        next_ += text.size();
        return true;
    }

    // Empty when there is none.
    WideView ParseName() noexcept {
        wchar16* begin = std::exchange(next_, EndOfName(next_));
        return Between(begin, next_);
    }

    bool ParseTopLevelNode() {
        if (Accept('?')) return ParseDeclaration();
        if (Accept('!')) return ParseComment();
        if (!ParseStartTag()) return false;
        while (open_ != nullptr) {
            if (!ParseContent()) return false;
        }
        return true;
    }

    bool ParseDeclaration() {
        if (parent_->kind != XmlNodeKind::Document || !parent_->children.IsEmpty()) {
            return Fail(ParseExpectation::DeclarationFirst, next_, nullptr);
        }
        const WideView name = ParseName();
        if (name != names::kXml || !IsSpace(*next_)) {
            return Fail(ParseExpectation::DeclarationName, name.data(), nullptr);
        }
        StartNode(XmlNodeKind::ProcessingInstruction, name);
        if (!ParseAttributes()) return false;
        const auto& attributes = unfinished_->attributes;
        const bool hasVersion = std::any_of(
            attributes.begin(), attributes.end(),
            [](const XmlAttribute& attribute) { return attribute.name.View() == names::kVersion; });
        if (!hasVersion) return FailInTag(ParseExpectation::DeclarationVersion, next_);
        if (!Accept('?') || !Accept('>')) return FailInTag(ParseExpectation::DeclarationEnd, next_);
        FinishNode();
        return true;
    }

    // `dashes` counts as the format wants it: two in a row must be followed by ">".
    bool ParseComment() {
        if (!Accept("--"_w)) return FailInElement(ParseExpectation::CommentStart, next_);
        const wchar16* begin = next_;
        for (int dashes = 0;; ++next_) {
            if (*next_ == 0 && AtEnd()) return Fail(ParseExpectation::CommentEnd, next_, begin);
            if (*next_ == '>' || dashes == 2) {
                if (*next_ != '>' || dashes != 2) return Fail(ParseExpectation::CommentEnd, next_, begin);
                break;
            }
            dashes = *next_ == '-' ? dashes + 1 : std::max(dashes - 1, 0);
        }
        const WideView text(begin, static_cast<std::size_t>(next_ - begin) - 2);
        ++next_;
        StartNode(XmlNodeKind::Comment, WideView());
        unfinished_->value = XmlText::Slice(text);
        FinishNode();
        return true;
    }

    bool ParseStartTag() {
        const WideView name = ParseName();
        if (name.empty()) return FailInElement(ParseExpectation::ElementName, next_);
        StartNode(XmlNodeKind::Element, name);
        if (*next_ != '>' && !ParseAttributes()) return false;
        if (Accept('/')) {
            if (!Accept('>')) return FailInTag(ParseExpectation::EmptyTagEnd, next_);
            FinishNode();
            return true;
        }
        if (!Accept('>')) return FailInTag(ParseExpectation::TagEnd, next_);
        open_ = unfinished_;
        SkipSpace();
        return true;
    }

    // Skips the space after the last attribute as well. Attributes are written where they will stay, as long as
    // they are few.
    bool ParseAttributes() {
        auto* const few = static_cast<XmlAttribute*>(pool_.ReserveScratch());
        std::size_t count = 0;
        wchar16* name = EndOfSpace(next_);
        for (wchar16* nameEnd = EndOfName(name); nameEnd != name; nameEnd = EndOfName(name)) {
            wchar16* next = nameEnd + 1;
            if (*nameEnd != '=' || *next != '"') {
                next = EndOfSpace(nameEnd);
                if (*next != '=') return Fail(ParseExpectation::AttributeEquals, next, name);
                next = EndOfSpace(next + 1);
                if (*next != '"') return Fail(ParseExpectation::AttributeQuote, next, name);
            }
            next_ = next + 1;
            const WideView value = ParseText('"');
            if (*next_ != '"') return Fail(ParseExpectation::AttributeEnd, next_, next + 1);
            const XmlAttribute attribute{XmlText::Slice(Between(name, nameEnd)), XmlText::Slice(value)};
            if (count < kFewAttributes) {
                few[count] = attribute;
            } else {
                if (count == kFewAttributes) KeepFew(few, count);
                AppendAttribute(attribute);
            }
            ++count;
            name = EndOfSpace(next_ + 1);
        }
        next_ = name;
        if (count != 0 && count <= kFewAttributes) KeepFew(few, count);
        return true;
    }

    void KeepFew(XmlAttribute* few, std::size_t count) noexcept {
        void* kept = pool_.CommitScratch(count * sizeof *few);
        unfinished_->attributes.Adopt(static_cast<XmlAttribute*>(kept), count);
    }

    void AppendAttribute(const XmlAttribute& attribute) {
        auto& attributes = unfinished_->attributes;
        if (std::has_single_bit(attributes.Size())) attributes.Reserve(pool_, attributes.Size());
        attributes.Append(attribute);
        PrefetchAhead(next_);
        PrefetchAhead(attributes.end());
    }

    // One run of text of the innermost open element, and the markup after it.
    bool ParseContent() {
        if (*next_ != '<') {
            const WideView text = ParseText('<');
            if (*next_ != '<') return FailInElement(ParseExpectation::Content, next_);
            AddText(text);
        }
        ++next_;
        if (Accept('/')) return ParseEndTag();
        if (Accept('!')) return ParseComment();
        return ParseStartTag();
    }

    bool ParseEndTag() {
        if (!Accept(open_->name.View()) || !Accept('>')) {
            return FailInElement(ParseExpectation::EndTag, next_);
        }
        unfinished_ = std::exchange(open_, open_->parent);
        FinishNode();
        return true;
    }

    // The text up to `stop` or "<", entities decoded in place. Stops at the first unit that does not belong
    // to it: the caller looks whether that is the one it wants. The end of the text never is.
    WideView ParseText(wchar16 stop) noexcept {
        wchar16* begin = next_;
        next_ = FindAnyOf(begin, stop, '<', '&');
        if (*next_ == stop) return Between(begin, next_);  // the common case
        next_ = EndOfPlain(next_, stop);
        return Between(begin, *next_ == '&' ? DecodeRest(next_, stop) : next_);
    }

    // Goes on with a text in which an entity was found at `decoded`. Returns where the decoded text ends.
    wchar16* DecodeRest(wchar16* decoded, wchar16 stop) noexcept {
        while (*next_ == '&' && DecodeEntity(decoded)) {
            wchar16* plain = std::exchange(next_, EndOfPlain(next_, stop));
            decoded = std::copy(plain, next_, decoded + 1);
        }
        return decoded;
    }

    bool DecodeEntity(wchar16* to) noexcept {
        for (const XmlEntity& entity : kXmlEntities) {
            if (!Accept(entity.text)) continue;
            *to = entity.character;
            return true;
        }
        return false;
    }

    // Pieces that children part are joined by line feeds. A single piece stays a slice.
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
        PrefetchAhead(next_);
        PrefetchAhead(unfinished_);
        if (open_ != nullptr) {
            AppendChild(*open_, *unfinished_);
        } else {
            top_ = unfinished_;
        }
        unfinished_->name = XmlText::Slice(name);
    }

    // Goes on after a node that was just read.
    void FinishNode() {
        if (open_ != nullptr) return SkipSpace();
        document_.AppendNode(parent_, top_);
        top_ = nullptr;
    }

    XmlDocument& document_;
    XmlPool& pool_;
    wchar16* next_;
    wchar16* const end_;
    XmlNode* const parent_;
    const wchar16* const begin_;
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
