// In which ways a document means something else to the library than to XML.
#ifndef MOX_XMLAPI_TESTS_SECOND_OPINION_KINDS_SUPPORT_H
#define MOX_XMLAPI_TESTS_SECOND_OPINION_KINDS_SUPPORT_H

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace opinion {

using Kinds = std::set<std::string>;

// What a document in well-formed XML has that the library refuses. The document is one that libxml2 accepts.
Kinds RefusedParts(std::string_view xml);

struct Comparison {
    bool byLibrary = false;  // accepted by the library
    bool byLibxml2 = false;  // accepted by libxml2
    Kinds kinds{};           // how the two differ; empty when they read the same
    // What no kind explains; empty when all is explained.
    std::string unexplained{};
};

// Reads the document both ways and explains each difference by a kind:
// - libxml2 alone accepts it: exactly when it has parts that the library refuses;
// - the library alone accepts it: libxml2's first error is the kind;
// - both accept it: the texts are equal once XML's line ends and spaces in attributes are put into what the library
//   read, and the library's way with the pieces of a text into what libxml2 read; each step that changed something
//   is a kind.
Comparison Compare(std::string_view bytes);

// One line of the list: a kind, who can come to have such a document ("read": only who was given it; "written": who
// saves with the library), a sample, and what each side makes of it.
struct Difference {
    std::string kind{};
    std::string who{};
    std::string sample{};
    std::string library{};
    std::string xml{};
};

// The list in differences.txt, in its order. A line that is none is a failure of the running test.
const std::vector<Difference>& ListedDifferences();
const Kinds& ListedKinds();

// Fails the running test unless every difference in the document is explained and of a listed kind. Returns the
// comparison.
Comparison ExpectListed(std::string_view bytes);

}  // namespace opinion

#endif
