// The text of the model's documents, read and written.
#ifndef MOX_XMLAPI_TESTS_HOST_MODEL_TEXT_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_MODEL_TEXT_SUPPORT_H

#include <string>
#include <string_view>

#include "tests/host/model/tree_support.h"

namespace host::model {

// A document node over the text, or null when the text is not in the dialect.
NodePtr Parse(const Text& text);

// The text of a document, or of one element without a line feed after it.
Text Written(const Node& node);

// The bytes of files with this text, the closing zero included, and back.
std::string WideBytes(const Text& text);
std::string NarrowBytes(const Text& text);
Text FromWideBytes(const std::string& bytes);
Text FromNarrowBytes(std::string_view bytes);

}  // namespace host::model

#endif
