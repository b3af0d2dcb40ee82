// Inspect: what the front has to know about a file before it opens it.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_DOCUMENT_INSPECT_HPP
#define MOX_XMLAPI_DOCUMENT_INSPECT_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/document/encoding.hpp"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox::front {

// What is unusual about an entry. For each field that the library writes: it is there more than once, and a write changes
// another one than is read, so that the new value is not read back. Or it is an element with children, which a save puts
// on lines of their own, so that the next open finds white space in the text.
enum EntryOddity : std::uint32_t {
    kUnreadable = 1U << 0,  // has no known type: hosts find nothing, and exports of the section stop here
    kTwoNames = 1U << 1,    // found by the first, read with the last
    kTwoIds = 1U << 2,
    kTwoTypes = 1U << 3,
    kTwoValues = 1U << 4,    // several "Value" elements
    kTwoEuds = 1U << 5,      // removing the first leaves another one
    kTwoControls = 1U << 6,  // these and all below: in one "UI" element, or in several
    kTwoProviderIndexes = 1U << 7,
    kTwoProviderOwners = 1U << 8,
    kTwoShownNames = 1U << 9,
    kTwoComments = 1U << 10,
    kTwoUiValues = 1U << 11,
    kValueHasChildren = 1U << 12,
    kCommentHasChildren = 1U << 13,
    kUiValueHasChildren = 1U << 14,
};

struct OddEntry {
    std::size_t index = 0;  // among the child elements of the table
    bool hasName = false;
    bool isFirst =
        false;  // no element before it in the table has the same name: it is the one that is found by name
    Units name{};
    std::uint32_t oddities = 0;  // of EntryOddity
};

// A table that has odd entries.
struct OddTable {
    std::size_t index = 0;  // among the child elements of the root; 0 in a table document
    bool isFound = false;   // it is the section that is found by its name, or the table of a table document
    bool isOnly = true;     // no other section has the same name
    Units name{};
    std::vector<OddEntry> entries{};
};

struct DocumentFindings {
    EncodingReport encoding{};
    bool isParsed = false;  // if not, the fields below are not set
    DocumentKind kind = DocumentKind::Other;
    bool isSevenBit = false;             // every unit of the text is below 0x80
    std::size_t depth = 0;               // of the most deeply nested node; a top-level node has depth 1
    std::uint64_t indentationUnits = 0;  // tabs that a save of the document, as it was read, would write
    std::vector<OddTable> tables{};      // in their order
};

// Inspects the content of a file as the library would read it; without a form, in that of detectEncoding. Takes linear
// time; makes texts only for what is odd. Returns false, and sets `problem` if it is not null, if opening the file would
// give another document than it contains:
//
//   Reason::Encoding  it has a byte-order mark, has the high byte first, is nothing but zeros, or goes on after its first
//                     zero. It may parse all the same, see `isParsed`.
//   Reason::Syntax    it does not parse, for another reason
//
// UTF-8 and Latin-1 without a byte-order mark are no problem here: such documents open, and saving keeps their bytes.
// `findings.encoding` tells. The problem has line and column and, if the text does not parse, found and expected.
// `findings` are set in any case. Throws std::bad_alloc, and std::length_error for a text of more than 2^31 - 1 units.
bool Inspect(std::string_view bytes, std::optional<Form> form, DocumentFindings& findings,
             Problem* problem = nullptr);

}  // namespace mox::front

#endif
