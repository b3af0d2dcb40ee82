// The text of documents, read and written, and the bytes of their files.
#ifndef MOX_XMLAPI_TESTS_MODEL_TEXT_H
#define MOX_XMLAPI_TESTS_MODEL_TEXT_H

#include <string>
#include <string_view>

#include "tests/model/tree.h"

namespace model {

// Which characters begin a name, and which go on with it. Beyond ASCII that depends on the system, so tests that go
// there bring their own.
struct NameRules {
    bool (*begins)(wchar16);
    bool (*goesOn)(wchar16);
};
bool BeginsAsciiName(wchar16 unit);
bool GoesOnWithAsciiName(wchar16 unit);
inline constexpr NameRules kAsciiNames = {BeginsAsciiName, GoesOnWithAsciiName};

// The document that the text is, or null when it is not in the dialect.
NodePtr Parse(const Text& text, const NameRules& names = kAsciiNames);
// The same below a document node that may have children. After a failure, which gives false, it has those of the top
// level that were complete by then.
bool ParseInto(Node& document, const Text& text, const NameRules& names = kAsciiNames);

// The text of a document, or of one node without a line feed after it.
Text Written(const Node& node);
// The text of one node in a document's lines, `depth` levels down.
Text WrittenAt(std::size_t depth, const Node& node);

// The bytes of files with this text, the closing zero included, and back.
std::string WideBytes(const Text& text);
std::string NarrowBytes(const Text& text);
Text FromWideBytes(std::string_view bytes);
Text FromNarrowBytes(std::string_view bytes);

}  // namespace model

#endif
