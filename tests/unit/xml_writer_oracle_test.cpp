// The writer against its slow double, and round trips, over trees by chance.
#include <gtest/gtest.h>

#include "mox_xmlApi/xml/xml_writer.h"
#include "tests/unit/parser_oracle.h"
#include "tests/unit/random_documents.h"
#include "tests/unit/writer_oracle.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Shown;

// Puts the children of a plain document under the root.
void BuildDocument(XmlDocument& document, const test::PlainNode& plain) {
    for (const test::PlainNode& child : plain.children)
        test::Build(document, document.root, child);
}

TEST(XmlWriterOracle, AgreesOverRandomTrees) {
    for (std::uint64_t seed = 1; seed <= 5000; ++seed) {
        const test::PlainNode tree = test::RandomDocuments(seed).NextTree();
        XmlDocument document;
        BuildDocument(document, tree);
        ASSERT_EQ(Shown(test::WrittenUnits(*document.root)), Shown(OracleDocument(tree))) << "seed " << seed;
    }
}

TEST(XmlWriterOracle, AgreesOverSubtreesAtAnyDepth) {
    for (std::uint64_t seed = 1; seed <= 1000; ++seed) {
        const test::PlainNode tree = test::RandomDocuments(seed).NextTree();
        XmlDocument document;
        BuildDocument(document, tree);
        for (std::size_t i = 0; i < tree.children.size(); ++i) {
            XmlOutput out;
            WriteNode(*document.root->children.At(i), out, seed % 5);
            ASSERT_EQ(Shown(out.Text()), Shown(OracleNode(tree.children[i], seed % 5))) << "seed " << seed;
        }
    }
}

TEST(XmlWriterOracle, DocumentNodeGivenAsANodeIsWrittenAsAnElementWithoutAName) {
    XmlDocument document;
    const test::PlainNode full = {XmlNodeKind::Document, {}, {}, {}, {test::Element("a")}};
    XmlOutput empty;
    WriteNode(*document.root, empty, 0);
    EXPECT_EQ(Shown(empty.Text()), "</>");
    BuildDocument(document, full);
    XmlOutput out;
    WriteNode(*document.root, out, 1);
    EXPECT_EQ(Shown(out.Text()), "\\t<>\\n\\t\\t<a/>\\n\\t</>");
    EXPECT_EQ(Shown(OracleNode(full, 1)), "\\t<>\\n\\t\\t<a/>\\n\\t</>");
}

TEST(XmlRoundTrip, TreesOfPlainLinesComeBackAsTheyWere) {
    for (std::uint64_t seed = 1; seed <= 3000; ++seed) {
        const test::PlainNode tree = test::RandomDocuments(seed).NextStableTree();
        XmlDocument document;
        BuildDocument(document, tree);
        const WideString text = test::WrittenUnits(*document.root);
        XmlDocument again;
        ASSERT_TRUE(again.Parse(text, again.root)) << "seed " << seed << " " << Shown(text);
        ASSERT_EQ(test::DumpChildren(again.root), test::DumpChildren(tree)) << "seed " << seed;
        ASSERT_EQ(Shown(test::WrittenUnits(*again.root)), Shown(text)) << "seed " << seed;
    }
}

// Also where values do not come back as they were, reading what was written gives what the rules say.
TEST(XmlRoundTrip, TreesWithAnyTextsComeBackAsTheRulesSay) {
    for (std::uint64_t seed = 5001; seed <= 8000; ++seed) {
        const test::PlainNode tree = test::RandomDocuments(seed).NextTree();
        const WideString text = OracleDocument(tree);
        ASSERT_EQ(test::Parsed(WideView(text)), test::OracleParsed(text)) << "seed " << seed;
    }
}

}  // namespace
}  // namespace mox
