// Texts and trees in one line of ASCII, for expectations and messages.
#ifndef MOX_XMLAPI_TESTS_MODEL_DUMP_H
#define MOX_XMLAPI_TESTS_MODEL_DUMP_H

#include <string>

#include "tests/model/tree.h"

namespace model {

// The text in printable ASCII; what is not printable, a single quote and a backslash come with a backslash.
std::string Shown(View text);
std::string Quoted(View text);

// A tree: name{attribute='text' ...}'value'(child child ...), where parts that are empty are left out; a comment is
// !'text', the declaration ?xml{...}, a document #(...).
std::string Dump(const Node& node);
// The nodes below a document; "" for none.
std::string DumpChildren(const Node& node);

}  // namespace model

#endif
