// Compares the contents of two documents.
#ifndef MOX_XMLAPI_TOOLS_DOCUMENT_DIFF_H
#define MOX_XMLAPI_TOOLS_DOCUMENT_DIFF_H

#include <string>
#include <utility>
#include <vector>

#include "mox_xmlApi/document/document.hpp"

namespace mox::tool {

enum class Change { Added, Removed, Changed };

// The names and texts of the fields that are compared.
using Fields = std::vector<std::pair<std::string, std::string>>;

// All fields of a table or an entry, always the same ones in the same order.
Fields FieldsOf(const DocumentTable& table);
Fields FieldsOf(const DocumentEntry& entry);

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
    Fields fields{};             // Added: the other fields of the table or entry that it has
};

// The differences, in the order of the first document, each part followed by what only the second one has. Not compared
// are the order of sections and entries, comments, elements that are neither section nor entry and, unless `withEud`,
// the attribute "eud".
std::vector<Difference> CompareDocuments(const Document& before, const Document& after, bool withEud = false);

// The difference as one line for people.
std::string LineOf(const Difference& difference);

}  // namespace mox::tool

#endif
