// What differs between two documents in meaning.
#ifndef MOX_XMLAPI_TOOLS_DOCUMENT_DIFF_H
#define MOX_XMLAPI_TOOLS_DOCUMENT_DIFF_H

#include <string>
#include <vector>

#include "tools/document_model.h"

namespace mox::tool {

enum class Change { Added, Removed, Changed };

// One difference: a document's kind, a section or table, an entry, or one field of those.
struct Difference {
    Change change = Change::Changed;
    std::string table{};
    std::string entry{};         // empty when hasEntry is false
    bool hasEntry = false;       // false: it is about the table itself
    std::size_t occurrence = 1;  // of several entries, or tables, with one name
    std::string field{};         // of Changed: what; of the others: the type of an entry
    std::string before{};
    std::string after{};
};

// The differences in the order of the first document, then what only the second one has. Neither the order of sections
// and entries counts, nor comments, marks and elements that are no sections and no entries.
std::vector<Difference> CompareDocuments(const DocumentModel& before, const DocumentModel& after);

}  // namespace mox::tool

#endif
