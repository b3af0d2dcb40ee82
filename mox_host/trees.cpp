// Trees: all nodes of a file, copied into rows with their texts in one block.
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mox_host/call.h"
#include "mox_host/list_handle.h"
#include "mox_host/mox_host.h"
#include "mox_host/option_values.h"
#include "mox_xmlApi/document/document.hpp"

namespace mox::host {
namespace {

struct AttributeRow {
    TextSlice name;
    TextSlice value;
};

struct NodeRow {
    NodeKind kind = NodeKind::None;
    TextSlice name{};
    TextSlice value{};
    Position position{};
    std::size_t parent = MOX_NO_NODE;
    std::size_t firstChild = MOX_NO_NODE;
    std::size_t next = MOX_NO_NODE;
    std::size_t firstAttribute = 0;
    std::size_t attributeCount = 0;
};

}  // namespace
}  // namespace mox::host

struct mox_tree {
    std::vector<mox::host::NodeRow> nodes;
    std::vector<mox::host::AttributeRow> attributes;
    mox::host::TextBlock texts;
};

namespace mox::host {
namespace {

std::size_t AddNode(DocumentNode node, std::size_t parent, mox_tree& tree) {
    NodeRow row;
    row.kind = node.kind();
    row.name = tree.texts.Add(node.name());
    row.value = tree.texts.Add(node.text());
    row.position = node.position();
    row.parent = parent;
    row.firstAttribute = tree.attributes.size();
    for (const DocumentAttribute& attribute : node.attributes())
        tree.attributes.push_back({tree.texts.Add(attribute.name), tree.texts.Add(attribute.value)});
    row.attributeCount = tree.attributes.size() - row.firstAttribute;
    tree.nodes.push_back(row);
    return tree.nodes.size() - 1;
}

// Adds the nodes in document order. `number` is that of `node`, which was added last.
void AddNodes(const Document& document, mox_tree& tree) {
    const NodeRange top = document.nodes();
    DocumentNode node = top.empty() ? DocumentNode() : *top.begin();
    if (!node) return;
    std::size_t number = AddNode(node, MOX_NO_NODE, tree);
    while (true) {
        if (const DocumentNode child = node.firstChild()) {
            node = child;
            const std::size_t added = AddNode(node, number, tree);
            tree.nodes[number].firstChild = added;
            number = added;
            continue;
        }
        DocumentNode next = node.next();
        while (!next) {
            number = tree.nodes[number].parent;
            if (number == MOX_NO_NODE) return;
            node = node.parent();
            next = node.next();
        }
        node = next;
        const std::size_t added = AddNode(node, tree.nodes[number].parent, tree);
        tree.nodes[number].next = added;
        number = added;
    }
}

}  // namespace
}  // namespace mox::host

using namespace mox::host;  // NOLINT(google-build-using-namespace): what is defined here are functions of C

mox_status mox_tree_parse(const void* bytes, size_t size, uint32_t form, mox_tree** tree,
                          mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        std::optional<mox::Form> asForm;
        if (!RequirePointers(outcome, tree) || !RequireBytes(outcome, bytes, size) ||
            !FormOf(form, asForm, outcome))
            return false;
        const std::optional<mox::Document> document =
            mox::Document::parse({static_cast<const char*>(bytes), size}, asForm, outcome.Why());
        if (!document.has_value()) return false;
        auto made = std::make_unique<mox_tree>();
        AddNodes(*document, *made);
        *tree = made.release();
        return true;
    });
}

size_t mox_tree_count(const mox_tree* tree) {
    return tree == nullptr ? 0 : tree->nodes.size();
}

mox_status mox_tree_node(const mox_tree* tree, size_t number, mox_node* node) {
    if (tree == nullptr || node == nullptr) return MOX_INVALID_ARGUMENT;
    if (number >= tree->nodes.size()) return MOX_OUT_OF_RANGE;
    const NodeRow& row = tree->nodes[number];
    mox_node filled{};
    filled.kind = static_cast<std::uint32_t>(row.kind);
    filled.name = tree->texts.TextOf(row.name);
    filled.name_size = row.name.size;
    filled.value = tree->texts.TextOf(row.value);
    filled.value_size = row.value.size;
    filled.line = row.position.line;
    filled.column = row.position.column;
    filled.parent = row.parent;
    filled.first_child = row.firstChild;
    filled.next = row.next;
    filled.attribute_count = row.attributeCount;
    return GiveStructure(filled, node);
}

mox_status mox_tree_attribute(const mox_tree* tree, size_t number, size_t index, mox_attribute* attribute) {
    if (tree == nullptr || attribute == nullptr) return MOX_INVALID_ARGUMENT;
    if (number >= tree->nodes.size() || index >= tree->nodes[number].attributeCount) return MOX_OUT_OF_RANGE;
    const AttributeRow& row = tree->attributes[tree->nodes[number].firstAttribute + index];
    mox_attribute filled{};
    filled.name = tree->texts.TextOf(row.name);
    filled.name_size = row.name.size;
    filled.value = tree->texts.TextOf(row.value);
    filled.value_size = row.value.size;
    return GiveStructure(filled, attribute);
}

void mox_tree_free(mox_tree* tree) {
    delete tree;
}
