#include "mox_xmlApi/document/syntax_error.h"

#include <algorithm>
#include <utility>

#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/document/text_units.h"
#include "mox_xmlApi/xml/xml_name_characters.h"

namespace mox {
namespace {

constexpr const char* kReferences = R"("&amp;", "&apos;", "&gt;", "&lt;" or "&quot;")";

// The text around the unit at which the parser gave up.
class FailureContext {
  public:
    FailureContext(WideView text, Form form, const ParseFailure& failure)
        : text_(text), form_(form), failure_(failure) {}

    std::size_t Offset() const noexcept { return failure_.offset; }

    // The unit at the offset; 0 from the end of the text on.
    wchar16 UnitAt(std::size_t offset) const noexcept {
        return offset < text_.size() ? text_[offset] : wchar16{0};
    }
    wchar16 Unit() const noexcept { return UnitAt(failure_.offset); }
    bool IsAtEnd() const noexcept { return failure_.offset >= text_.size(); }

    // The name of the element or attribute that the parser was reading; empty if it was reading neither.
    std::string Name() const { return Utf8(WideView(text_).substr(NameBegin(), NameLength())); }
    std::size_t NameLength() const noexcept {
        std::size_t end = NameBegin();
        while (end < text_.size() && IsNameCharacter(text_[end]))
            ++end;
        return end - NameBegin();
    }

    // "line 12", on which the element, attribute value or comment begins that the parser was reading.
    std::string BeginLine() const { return "line " + std::to_string(PositionIn(text_, NameBegin()).line); }

    // Whether the name at the offset is "xml".
    bool IsXmlAtOffset() const noexcept {
        return Utf8(text_.substr(std::min(Offset(), text_.size()), 3)) == "xml" &&
               !IsNameCharacter(UnitAt(Offset() + 3));
    }

    bool HasUtf8ByteOrderMarkAt(std::size_t offset) const noexcept {
        return form_ == Form::Narrow && offset == 0 && IsByte(0, 0xEF) && IsByte(1, 0xBB) && IsByte(2, 0xBF);
    }

    // Describes what is at the offset.
    std::string Found(std::size_t offset) const {
        if (offset >= text_.size()) return "the end of the file";
        const std::uint32_t unit = static_cast<std::uint32_t>(text_[offset]) & 0xFFFF;
        if (unit == '\n') return "a line break";
        if (unit == '\t') return "a tab";
        if (unit == ' ') return "a space";
        if (unit == 0xFEFF || HasUtf8ByteOrderMarkAt(offset)) return "a byte-order mark";
        if (form_ == Form::Narrow && unit >= 0x80) return "byte " + ByteText(unit);
        if (unit < 0x20 || unit == 0x7F || (unit >= 0xD800 && unit < 0xE000)) return UnitText(unit);
        return Quoted(Utf8(text_.substr(offset, TokenLength(offset))));
    }

  private:
    std::size_t NameBegin() const noexcept { return std::min(failure_.inside, text_.size()); }

    bool IsByte(std::size_t offset, std::uint32_t byte) const noexcept {
        return (static_cast<std::uint32_t>(UnitAt(offset)) & 0xFF) == byte;
    }

    // The length of a name with "<", "</", "<!", "<?" or "&" before it; 1 for any other unit.
    std::size_t TokenLength(std::size_t offset) const noexcept {
        constexpr std::size_t kMaxLength = 24;
        std::size_t end = offset;
        if (UnitAt(end) == '<') {
            ++end;
            if (UnitAt(end) == '/' || UnitAt(end) == '!' || UnitAt(end) == '?') ++end;
            if (UnitAt(end) == '[') ++end;
        } else if (UnitAt(end) == '&') {
            ++end;
            if (UnitAt(end) == '#') ++end;
        }
        while (end < text_.size() && end - offset < kMaxLength && IsNameCharacter(text_[end]))
            ++end;
        if (text_[offset] == '&' && UnitAt(end) == ';') ++end;
        return std::max<std::size_t>(end - offset, 1);
    }

    WideView text_;
    Form form_;
    const ParseFailure& failure_;
};

// XML allows these two in names.
std::string NameHint(wchar16 unit) {
    return unit == '-' || unit == '.' ? R"( (names cannot contain "-" or "."))" : "";
}

constexpr const char* kElementOrComment =
    R"(an element or a comment ("<?" is allowed only in the XML declaration, at the start of the file))";

std::string ExpectedAtTopLevel(const FailureContext& context) {
    if (context.Unit() == 0xFEFF || context.HasUtf8ByteOrderMarkAt(context.Offset()))
        return R"("<" (byte-order marks are not supported))";
    return R"("<" or the end of the file)";
}

std::string ExpectedElementName(const FailureContext& context) {
    if (context.Unit() == '?') return kElementOrComment;
    if (context.Unit() == '/') return "a start tag (no element is open here)";
    return R"(an element name after "<" (in text, write "<" as "&lt;"))";
}

std::string ExpectedEndOfValue(const FailureContext& context) {
    if (context.Unit() == '&') return kReferences;
    const std::string quote =
        R"(a double quote (") to close the value that begins on )" + context.BeginLine();
    return context.Unit() == '<' ? quote + R"( (in a value, write "<" as "&lt;"))" : quote;
}

std::string ExpectedEndOfComment(const FailureContext& context) {
    if (context.IsAtEnd()) return R"("-->" to close the comment that begins on )" + context.BeginLine();
    return R"("-->" (comments cannot contain ">" or "--"))";
}

std::string ExpectedEndTag(const FailureContext& context) {
    return Quoted("</" + context.Name() + ">") + " to close the element that begins on " +
           context.BeginLine();
}

std::string ExpectedQuote(const FailureContext& context) {
    const std::string quote = "a double quote (\") before the value of " + Quoted(context.Name());
    return context.Unit() == '\'' ? quote + " (single quotes are not supported)" : quote;
}

std::string Expected(const FailureContext& context, ParseExpectation expected) {
    switch (expected) {
        case ParseExpectation::TopLevelNode:
            return ExpectedAtTopLevel(context);
        case ParseExpectation::DeclarationFirst:
            return kElementOrComment;
        case ParseExpectation::DeclarationName:
            return context.IsXmlAtOffset() ? R"(white space after "<?xml")" : R"("xml" after "<?")";
        case ParseExpectation::DeclarationVersion:
            return R"(an attribute "version" in the XML declaration)";
        case ParseExpectation::DeclarationEnd:
            return R"(an attribute or "?>")" + NameHint(context.Unit());
        case ParseExpectation::CommentStart:
            return R"("<!--" (DOCTYPE and CDATA are not supported))";
        case ParseExpectation::CommentEnd:
            return ExpectedEndOfComment(context);
        case ParseExpectation::ElementName:
            return ExpectedElementName(context);
        case ParseExpectation::AttributeEquals:
            return R"("=" after )" + Quoted(context.Name()) + NameHint(context.Unit());
        case ParseExpectation::AttributeQuote:
            return ExpectedQuote(context);
        case ParseExpectation::AttributeEnd:
            return ExpectedEndOfValue(context);
        case ParseExpectation::TagEnd:
            return R"(an attribute, ">" or "/>" in the tag of )" + Quoted(context.Name()) +
                   NameHint(context.Unit());
        case ParseExpectation::EmptyTagEnd:
            return R"(">" after "/")";
        case ParseExpectation::Content:
            return context.Unit() == '&' ? kReferences : ExpectedEndTag(context);
        case ParseExpectation::EndTag:
            return ExpectedEndTag(context);
    }
    return "something else";
}

// The offset to report. It differs from that at which the parser stopped where the error begins earlier, or later.
std::size_t ReportedOffset(const FailureContext& context, ParseExpectation expected) {
    const std::size_t offset = context.Offset();
    if (expected == ParseExpectation::CommentStart) return offset - 2;
    if (expected == ParseExpectation::DeclarationFirst) return offset - 2;
    if (expected == ParseExpectation::DeclarationName && context.IsXmlAtOffset()) return offset + 3;
    // The "<" of "<?", or of an end tag without an element.
    if (expected == ParseExpectation::ElementName && (context.Unit() == '/' || context.Unit() == '?'))
        return offset - 1;
    if (expected == ParseExpectation::EndTag && IsNameCharacter(context.Unit())) {
        // The "</" of an end tag with another name; the parser may have accepted the start of that name.
        return context.UnitAt(offset - 1) == '/' ? offset - 2 : offset - context.NameLength() - 2;
    }
    return offset;
}

}  // namespace

SyntaxError DescribeSyntaxError(WideView text, Form form, const ParseFailure& failure) {
    const FailureContext context(text, form, failure);
    std::size_t offset = ReportedOffset(context, failure.expected);
    std::string expected = Expected(context, failure.expected);
    // The parser skips one unit after a top-level node. If that unit was the "<" of the next node, report that.
    if (failure.expected == ParseExpectation::TopLevelNode && offset > 0 &&
        context.UnitAt(offset - 1) == '<') {
        --offset;
        expected = "a line break before the next top-level element or comment";
    }
    return {PositionIn(text, offset), context.Found(offset), std::move(expected)};
}

std::string MessageOf(const SyntaxError& error) {
    return "found " + error.found + ", expected " + error.expected;
}

bool FailWithSyntaxError(const SyntaxError& error, const EncodingReport& encoding, Problem* problem) {
    if (problem == nullptr) return false;
    const bool isOtherEncoding = encoding.hasByteOrderMark || encoding.encoding == Encoding::Utf16Be;
    std::string message = MessageOf(error);
    if (isOtherEncoding) message += "; the text is " + describe(encoding);
    front::Fail(problem, isOtherEncoding ? Reason::Encoding : Reason::Syntax, message);
    problem->line = error.position.line;
    problem->column = error.position.column;
    problem->found = error.found;
    problem->expected = error.expected;
    return false;
}

}  // namespace mox
