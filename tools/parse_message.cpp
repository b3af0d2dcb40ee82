#include "tools/parse_message.h"

#include <algorithm>

#include "mox_xmlApi/xml/xml_name_characters.h"
#include "tools/shown_text.h"

namespace mox::tool {
namespace {

constexpr const char* kReferences = R"("&amp;", "&apos;", "&gt;", "&lt;" or "&quot;")";

// The text around a failure.
class ParsePlace {
  public:
    explicit ParsePlace(const SourceFile& file) : file_(file), text_(file.Text()), failure_(file.Failure()) {}

    std::size_t Offset() const noexcept { return failure_.offset; }

    // The unit at the offset, or a zero behind the text.
    wchar16 UnitAt(std::size_t offset) const noexcept {
        return offset < text_.size() ? text_[offset] : wchar16{0};
    }
    wchar16 Unit() const noexcept { return UnitAt(failure_.offset); }
    bool IsAtEnd() const noexcept { return failure_.offset >= text_.size(); }

    // The name in which the parse was; empty when it was in none.
    std::string Name() const { return Utf8(WideView(text_).substr(NameBegin(), NameLength())); }
    std::size_t NameLength() const noexcept {
        std::size_t end = NameBegin();
        while (end < text_.size() && IsNameCharacter(text_[end]))
            ++end;
        return end - NameBegin();
    }

    // "line 12", where the construct begins in which the parse was.
    std::string BeginLine() const { return "line " + std::to_string(file_.PositionAt(NameBegin()).line); }

    // What stands at the offset: a word, a character, or the end of the file.
    std::string Found(std::size_t offset) const {
        if (offset >= text_.size()) return "the end of the file";
        const std::uint32_t unit = static_cast<std::uint32_t>(text_[offset]) & 0xFFFF;
        if (unit == '\n') return "a line end";
        if (unit == '\t') return "a tab";
        if (unit == ' ') return "a space";
        if (unit == 0xFEFF) return "a byte-order mark";
        if (file_.GetForm() == Form::Narrow && unit >= 0x80)
            return "byte 0x" + UnitNumber(unit & 0xFF).substr(4);
        if (unit < 0x20 || unit == 0x7F || (unit >= 0xD800 && unit < 0xE000)) return UnitNumber(unit);
        return Quoted(Utf8(text_.substr(offset, WordLength(offset))));
    }

  private:
    std::size_t NameBegin() const noexcept { return std::min(failure_.inside, text_.size()); }

    // A name with the "<", "</", "<!" or "&" before it, or a single unit.
    std::size_t WordLength(std::size_t offset) const noexcept {
        constexpr std::size_t kMost = 24;
        std::size_t end = offset;
        if (UnitAt(end) == '<') {
            ++end;
            if (UnitAt(end) == '/' || UnitAt(end) == '!' || UnitAt(end) == '?') ++end;
            if (UnitAt(end) == '[') ++end;
        } else if (UnitAt(end) == '&') {
            ++end;
            if (UnitAt(end) == '#') ++end;
        }
        while (end < text_.size() && end - offset < kMost && IsNameCharacter(text_[end]))
            ++end;
        if (text_[offset] == '&' && UnitAt(end) == ';') ++end;
        return std::max<std::size_t>(end - offset, 1);
    }

    const SourceFile& file_;
    WideView text_;
    const ParseFailure& failure_;
};

// A hint for units that other dialects allow in names.
std::string NameHint(wchar16 unit) {
    return unit == '-' || unit == '.' ? R"( (a name has no "-" and no "."))" : "";
}

std::string WantedAtTopLevel(const ParsePlace& place) {
    constexpr wchar16 kUtf8Mark = 0xFFEF;  // byte EF, as it is read from a narrow file
    if (place.Unit() == 0xFEFF || (place.Unit() == kUtf8Mark && place.Offset() == 0))
        return R"(no mark: the text begins with "<")";
    return R"("<" or the end of the file)";
}

std::string WantedElementName(const ParsePlace& place) {
    if (place.Unit() == '?') return R"(an element: "<?" stands only at the very beginning)";
    if (place.Unit() == '/') return "an element name: no element is open here";
    return R"(an element name behind "<" (in a text it is written "&lt;"))";
}

std::string WantedEndOfValue(const ParsePlace& place) {
    if (place.Unit() == '&') return kReferences;
    std::string wanted = R"(the closing quote (") of the value that begins in )" + place.BeginLine();
    if (place.Unit() == '<') wanted += R"( (in a value it is written "&lt;"))";
    return wanted;
}

std::string WantedEndOfComment(const ParsePlace& place) {
    if (place.IsAtEnd()) return R"("-->" for the comment that begins in )" + place.BeginLine();
    return R"("-->" (a comment has no ">" and no "--" inside))";
}

std::string WantedInContent(const ParsePlace& place) {
    if (place.Unit() == '&') return kReferences;
    return Quoted("</" + place.Name() + ">") + " for the element that begins in " + place.BeginLine();
}

std::string WantedQuote(const ParsePlace& place) {
    const std::string wanted = "a double quote (\") before the value of " + Quoted(place.Name());
    return place.Unit() == '\'' ? wanted + " (single quotes are not known)" : wanted;
}

std::string Wanted(const ParsePlace& place, ParseWant want) {
    switch (want) {
        case ParseWant::TopLevelNode:
            return WantedAtTopLevel(place);
        case ParseWant::DeclarationFirst:
            return R"(no "<?" here: the declaration is the first thing in a file)";
        case ParseWant::DeclarationName:
            return R"("xml" and a space behind "<?")";
        case ParseWant::DeclarationVersion:
            return R"(an attribute "version" in the declaration)";
        case ParseWant::DeclarationEnd:
            return R"(an attribute or "?>")" + NameHint(place.Unit());
        case ParseWant::CommentStart:
            return R"(a comment, "<!--" (there is no DOCTYPE and no CDATA))";
        case ParseWant::CommentEnd:
            return WantedEndOfComment(place);
        case ParseWant::ElementName:
            return WantedElementName(place);
        case ParseWant::AttributeEquals:
            return R"("=" behind )" + Quoted(place.Name()) + NameHint(place.Unit());
        case ParseWant::AttributeQuote:
            return WantedQuote(place);
        case ParseWant::AttributeEnd:
            return WantedEndOfValue(place);
        case ParseWant::TagEnd:
            return R"(an attribute, ">" or "/>" in the tag of )" + Quoted(place.Name()) +
                   NameHint(place.Unit());
        case ParseWant::EmptyTagEnd:
            return R"(">" behind "/")";
        case ParseWant::Content:
            return WantedInContent(place);
        case ParseWant::EndTag:
            return Quoted("</" + place.Name() + ">") + " for the element that begins in " + place.BeginLine();
    }
    return "something else";
}

// Where to point at: the parser stops behind what it has taken, which may be the first part of what is wrong.
std::size_t BlamedOffset(const ParsePlace& place, ParseWant want) {
    const std::size_t offset = place.Offset();
    if (want == ParseWant::CommentStart) return offset - 2;
    if (want == ParseWant::DeclarationFirst) return offset - 2;
    // "<" behind the "<" that an element begins with, or "/" of an end tag too many.
    if (want == ParseWant::ElementName && (place.Unit() == '/' || place.Unit() == '?')) return offset - 1;
    if (want == ParseWant::EndTag && IsNameCharacter(place.Unit())) {
        // Another name, of which the first part may be the one that was wanted.
        return place.UnitAt(offset - 1) == '/' ? offset - 2 : offset - place.NameLength() - 2;
    }
    return offset;
}

}  // namespace

ParseProblem DescribeFailure(const SourceFile& file) {
    const ParsePlace place(file);
    const ParseWant want = file.Failure().wanted;
    std::size_t offset = BlamedOffset(place, want);
    std::string wanted = Wanted(place, want);
    // Of two nodes without anything between them the second one has lost its "<".
    if (want == ParseWant::TopLevelNode && offset > 0 && place.UnitAt(offset - 1) == '<') {
        --offset;
        wanted = "a line end before the next element or comment at the top level";
    }
    return {file.PositionAt(offset), place.Found(offset), wanted};
}

std::string ParseMessage(const SourceFile& file) {
    const ParseProblem problem = DescribeFailure(file);
    return AtPosition(file, problem.position, "found " + problem.found + ", wanted " + problem.wanted);
}

}  // namespace mox::tool
