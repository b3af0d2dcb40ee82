#include "tests/second_opinion/kinds_support.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <libxml/xmlerror.h>

#include "tests/second_opinion/readings_support.h"

namespace opinion {
namespace {

constexpr std::string_view kWhitespace = " \t\n\r";

// XML's line ends: what a reader of XML never sees.
std::string WithLineFeeds(std::string_view text) {
    std::string changed;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        changed += text[i] == '\r' ? '\n' : text[i];
    }
    return changed;
}

// What XML makes of white space in attributes.
void PutSpacesIntoAttributes(Node& node, Kinds& kinds) {
    for (auto& [name, value] : node.attributes) {
        for (char& character : value) {
            if (character == '\t' || character == '\n') {
                character = ' ';
                kinds.insert("attribute-white-space");
            }
        }
    }
    for (Node& child : node.children)
        PutSpacesIntoAttributes(child, kinds);
}

// What the library makes of the pieces of a text.
void JoinTexts(Node& node, Kinds& kinds) {
    if (!node.comment) {
        std::string joined;
        for (std::string& text : node.texts) {
            const std::size_t start = std::min(text.find_first_not_of(kWhitespace), text.size());
            if (start > 0) kinds.insert("leading-white-space");
            text.erase(0, start);
            if (text.empty()) continue;
            if (!joined.empty()) {
                joined += '\n';
                kinds.insert("joined-pieces");
            }
            joined += text;
        }
        node.texts.clear();
        if (!joined.empty()) node.texts.push_back(joined);
    }
    for (Node& child : node.children)
        JoinTexts(child, kinds);
}

// What the library makes of bytes beyond 7-bit text. (Names have none where both sides accept a document.)
void TakeBytesForUnits(std::string& text, Kinds& kinds) {
    std::string changed = WithBytesAsUnits(text);
    if (changed != text) kinds.insert("bytes-beyond-ascii");
    text = std::move(changed);
}
void TakeBytesForUnits(Node& node, Kinds& kinds) {
    for (auto& [name, value] : node.attributes)
        TakeBytesForUnits(value, kinds);
    for (std::string& text : node.texts)
        TakeBytesForUnits(text, kinds);
    for (Node& child : node.children)
        TakeBytesForUnits(child, kinds);
}

// The kind of what the library alone accepts. libxml2 has one error for all that stands where no element or a further
// one may begin.
std::string KindOfError(const Reading& library, int error) {
    const auto& nodes = library.document.children;
    const auto elements =
        std::count_if(nodes.begin(), nodes.end(), [](const Node& node) { return !node.comment; });
    switch (error) {
        case XML_ERR_DOCUMENT_EMPTY:
        case XML_ERR_DOCUMENT_END:
            return elements == 0 ? "no-element" : elements == 1 ? "unseen-character" : "several-elements";
        case XML_ERR_NAME_REQUIRED:
            return "unseen-character";
        case XML_ERR_INVALID_CHAR:
            return "control-character";
        case XML_ERR_ATTRIBUTE_REDEFINED:
            return "attribute-twice";
        case XML_ERR_MISPLACED_CDATA_END:
            return "cdata-end-in-text";
        case XML_ERR_RESERVED_XML_NAME:
            return "space-before-declaration";
        case XML_ERR_SPACE_REQUIRED:
            return "no-space-between-attributes";
        case XML_ERR_UNSUPPORTED_ENCODING:
        case XML_ERR_STRING_NOT_CLOSED:
        case XML_ERR_XMLDECL_NOT_FINISHED:
        case XML_ERR_EQUAL_REQUIRED:
        case XML_ERR_STANDALONE_VALUE:
        case XML_ERR_ENCODING_NAME:
        case XML_ERR_VERSION_MISSING:
        case XML_ERR_UNKNOWN_VERSION:
            return "declaration-content";
        default:
            return "error-" + std::to_string(error);
    }
}

void CompareTexts(std::string_view bytes, Reading& library, Reading& libxml2, Comparison& comparison) {
    const std::string changed = WithLineFeeds(bytes);
    Reading withLineFeeds = ReadByLibrary(changed);
    if (!withLineFeeds.accepted) comparison.unexplained = "the library refuses it with line feeds alone";
    if (!(withLineFeeds.document == library.document)) comparison.kinds.insert("carriage-return");
    PutSpacesIntoAttributes(withLineFeeds.document, comparison.kinds);
    JoinTexts(libxml2.document, comparison.kinds);
    TakeBytesForUnits(libxml2.document, comparison.kinds);
    if (!(withLineFeeds.document == libxml2.document)) {
        comparison.unexplained = "the library has " + Shown(withLineFeeds) + ", libxml2 " + Shown(libxml2);
    }
}

std::vector<Difference> ReadList() {
    std::ifstream file("second_opinion/differences.txt", std::ios::binary);
    EXPECT_TRUE(file.is_open());
    std::vector<Difference> list;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.front() == '#') continue;
        std::vector<std::string> columns(1);
        for (const char character : line) {
            if (character == '\t') {
                columns.emplace_back();
            } else {
                columns.back() += character;
            }
        }
        EXPECT_EQ(columns.size(), 5U) << line;
        columns.resize(5);
        EXPECT_TRUE(columns[1] == "read" || columns[1] == "written") << line;
        list.push_back({columns[0], columns[1], Unescaped(columns[2]), columns[3], columns[4]});
    }
    return list;
}

}  // namespace

Comparison Compare(std::string_view bytes) {
    Reading library = ReadByLibrary(bytes);
    Reading libxml2 = ReadByLibxml2(bytes);
    Comparison comparison{library.accepted, libxml2.accepted, {}, {}};
    if (libxml2.accepted) {
        const Kinds refused = RefusedParts(bytes);
        if (library.accepted != refused.empty()) {
            comparison.unexplained = library.accepted ? "the library accepts it all the same"
                                                      : "nothing in it should be refused by the library";
        }
        comparison.kinds = refused;
        if (library.accepted) CompareTexts(bytes, library, libxml2, comparison);
    } else if (library.accepted) {
        comparison.kinds.insert(KindOfError(library, libxml2.error));
    }
    return comparison;
}

const std::vector<Difference>& ListedDifferences() {
    static const std::vector<Difference> list = ReadList();
    return list;
}

const Kinds& ListedKinds() {
    static const Kinds kinds = [] {
        Kinds found;
        for (const Difference& difference : ListedDifferences())
            found.insert(difference.kind);
        return found;
    }();
    return kinds;
}

Comparison ExpectListed(std::string_view bytes) {
    Comparison comparison = Compare(bytes);
    EXPECT_EQ(comparison.unexplained, "") << Escaped(bytes);
    for (const std::string& kind : comparison.kinds)
        EXPECT_EQ(ListedKinds().count(kind), 1U) << kind << " is not on the list: " << Escaped(bytes);
    return comparison;
}

}  // namespace opinion
