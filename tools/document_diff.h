// Compares the contents of two documents.
#ifndef MOX_XMLAPI_TOOLS_DOCUMENT_DIFF_H
#define MOX_XMLAPI_TOOLS_DOCUMENT_DIFF_H

#include <string>
#include <vector>

#include "mox_xmlApi/document/document.hpp"

namespace mox::tool {

enum class Change { Added, Removed, Changed };

// One difference: the kind of the document, a section or table, an entry, or one field of a table or an entry.
struct Difference {
    Change change = Change::Changed;
    std::string table{};
    std::string entry{};
    bool hasEntry = false;       // false: the difference concerns the table itself, and `entry` is empty
    std::size_t occurrence = 1;  // counts the entries, or tables, of the same name
    std::string field{};         // Changed: the name of the field. Added or Removed: the type of the entry
    std::string before{};        // the value; empty if Added
    std::string after{};         // the value; empty if Removed
};

// The differences, in the order of the first document, each part followed by what only the second one has. Not compared
// are the order of sections and entries, comments, the attribute "eud", and elements that are neither section nor entry.
std::vector<Difference> CompareDocuments(const Document& before, const Document& after);

}  // namespace mox::tool

#endif
