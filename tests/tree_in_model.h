// Trees of the library in the form that the model gives them.
#ifndef MOX_XMLAPI_TESTS_TREE_IN_MODEL_H
#define MOX_XMLAPI_TESTS_TREE_IN_MODEL_H

#include <cstddef>
#include <memory>
#include <string>

#include "mox_xmlApi/xml/xml_node.h"
#include "tests/model/dump.h"
#include "tests/model/tree.h"

namespace mox::test {

inline model::Kind KindInModel(XmlNodeKind kind) {
    switch (kind) {
        case XmlNodeKind::Element:
            return model::Kind::Element;
        case XmlNodeKind::Comment:
            return model::Kind::Comment;
        case XmlNodeKind::ProcessingInstruction:
            return model::Kind::Declaration;
        default:
            return model::Kind::Document;
    }
}

inline XmlNodeKind KindInLibrary(model::Kind kind) {
    switch (kind) {
        case model::Kind::Element:
            return XmlNodeKind::Element;
        case model::Kind::Comment:
            return XmlNodeKind::Comment;
        case model::Kind::Declaration:
            return XmlNodeKind::ProcessingInstruction;
        default:
            return XmlNodeKind::Document;
    }
}

inline model::NodePtr CopyToModel(const XmlNode& node) {
    auto copy = std::make_shared<model::Node>(
        model::Node{KindInModel(node.kind), model::Text(node.name.View()), model::Text(node.value.View())});
    for (const XmlAttribute& attribute : node.attributes)
        copy->attributes.emplace_back(attribute.name.View(), attribute.value.View());
    for (const XmlNode* child : node.children)
        copy->children.push_back(CopyToModel(*child));
    return copy;
}

// The first node below `node` with a link that leads elsewhere than it must, in words; empty when there is none.
inline std::string WrongLink(const XmlNode& node) {
    const XmlNode* previous = node.children.Last();
    std::size_t count = 0;
    for (const XmlNode* child : node.children) {
        const std::string place =
            "child " + std::to_string(count++) + " of '" + model::Shown(node.name.View()) + "'";
        if (child->parent != &node) return place + " has another parent";
        if (child->previous != previous) return place + " comes after another one";
        if (std::string deeper = WrongLink(*child); !deeper.empty()) return deeper;
        previous = child;
    }
    if (count == node.children.Size() && previous == node.children.Last()) return {};
    return "'" + model::Shown(node.name.View()) + "' has other children than it says";
}

}  // namespace mox::test

#endif
