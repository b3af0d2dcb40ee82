// The writer against that of the model, and round trips, over random trees.
#include <gtest/gtest.h>

#include "mox_xmlApi/xml/xml_writer.h"
#include "tests/model/text.h"
#include "tests/unit/random_documents.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Shown;

// Puts the children of a plain document under the root.
void BuildDocument(XmlDocument& document, const model::Node& plain) {
    for (const model::NodePtr& child : plain.children)
        test::Build(document, document.root, child);
}

TEST(XmlWriterOracle, AgreesOverRandomTrees) {
    for (std::uint64_t seed = 1; seed <= 5000; ++seed) {
        const model::NodePtr tree = test::RandomDocuments(seed).NextTree();
        XmlDocument document;
        BuildDocument(document, *tree);
        ASSERT_EQ(Shown(test::WrittenUnits(*document.root)), Shown(model::Written(*tree))) << "seed " << seed;
    }
}

TEST(XmlWriterOracle, AgreesOverSubtreesAtAnyDepth) {
    for (std::uint64_t seed = 1; seed <= 1000; ++seed) {
        const model::NodePtr tree = test::RandomDocuments(seed).NextTree();
        XmlDocument document;
        BuildDocument(document, *tree);
        for (std::size_t i = 0; i < tree->children.size(); ++i) {
            XmlOutput out;
            WriteNode(*document.root->children.At(i), out, seed % 5);
            ASSERT_EQ(Shown(out.Text()), Shown(model::WrittenAt(seed % 5, *tree->children[i])))
                << "seed " << seed;
        }
    }
}

TEST(XmlWriterOracle, DocumentNodeGivenAsANodeIsWrittenAsAnElementWithoutAName) {
    XmlDocument document;
    const model::Node full = {model::Kind::Document, {}, {}, {}, {test::Element("a")}};
    XmlOutput empty;
    WriteNode(*document.root, empty, 0);
    EXPECT_EQ(Shown(empty.Text()), "</>");
    BuildDocument(document, full);
    XmlOutput out;
    WriteNode(*document.root, out, 1);
    EXPECT_EQ(Shown(out.Text()), "\\t<>\\n\\t\\t<a/>\\n\\t</>");
    EXPECT_EQ(Shown(model::WrittenAt(1, full)), "\\t<>\\n\\t\\t<a/>\\n\\t</>");
}

TEST(XmlRoundTrip, TreesOfPlainLinesComeBackAsTheyWere) {
    for (std::uint64_t seed = 1; seed <= 3000; ++seed) {
        const model::NodePtr tree = test::RandomDocuments(seed).NextStableTree();
        XmlDocument document;
        BuildDocument(document, *tree);
        const WideString text = test::WrittenUnits(*document.root);
        XmlDocument again;
        ASSERT_TRUE(again.Parse(text, again.root)) << "seed " << seed << " " << Shown(text);
        ASSERT_EQ(test::DumpChildren(again.root), model::DumpChildren(*tree)) << "seed " << seed;
        ASSERT_EQ(Shown(test::WrittenUnits(*again.root)), Shown(text)) << "seed " << seed;
    }
}

}  // namespace
}  // namespace mox
