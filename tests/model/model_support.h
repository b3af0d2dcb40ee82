// What the tests of the model share: documents from ASCII, and back.
#ifndef MOX_XMLAPI_TESTS_MODEL_MODEL_SUPPORT_H
#define MOX_XMLAPI_TESTS_MODEL_MODEL_SUPPORT_H

#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "tests/model/dump.h"
#include "tests/model/text.h"

namespace model {

// The first top-level node of the text.
inline NodePtr First(std::string_view text) {
    const NodePtr document = Parse(Wide(text));
    EXPECT_NE(document, nullptr) << text;
    return document == nullptr ? NewElement("unreadable") : document->children.at(0);
}

// The written form of a node, with line feeds and tabs as \n and \t.
inline std::string WrittenText(const Node& node) {
    return Shown(Written(node));
}

}  // namespace model

#endif
