// A Document finds what hosts find through the exports.
#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/document/document_support.h"

namespace document_tests {
namespace {

// The value of the key, as the document and as a profile read it, which must be the same; "none" for no such key.
std::string Value(const std::string& text, const std::string& section, const std::string& key) {
    const mox::Document document = Parsed(text);
    const mox::DocumentEntry* const entry = document.findEntry(section, key);
    const auto profile = mox::Profile::parse(text);
    EXPECT_TRUE(profile.has_value());
    EXPECT_EQ(profile->contains(section, key), entry != nullptr);
    if (entry == nullptr) return "none";
    EXPECT_EQ(profile->getString(section, key), entry->effectiveValue());
    return entry->effectiveValue();
}

TEST(DocumentLookUp, OfSeveralEntriesTheFirstCounts) {
    const std::string text = Section(
        "<Var name=\"a\" type=\"long\"><Value>1</Value></Var><Var name=\"a\" "
        "type=\"long\"><Value>2</Value></Var>");
    EXPECT_EQ(Value(text, "S", "a"), "1");
}

TEST(DocumentLookUp, AFirstEntryThatIsNotReadableHidesTheOthers) {
    const std::string text = Section(
        "<Var name=\"a\"/><Var name=\"a\" type=\"long\"><Value>2</Value></Var>"
        "<Other name=\"b\"/><Var name=\"b\" type=\"long\"/><Other name=\"c\" "
        "type=\"long\"><Value>3</Value></Other>");
    EXPECT_EQ(Value(text, "S", "a"), "none");
    EXPECT_EQ(Value(text, "S", "b"), "none");
    EXPECT_EQ(Value(text, "S", "c"), "3");
    const mox::Document document = Parsed(text);
    const mox::DocumentTable* const section = document.findTable("S");
    ASSERT_NE(section, nullptr);
    EXPECT_EQ(section->find("a"), nullptr);
    EXPECT_EQ(section->findElement("a"), &section->entries[0]);
    EXPECT_EQ(section->findElement("b"), &section->entries[2]);
    EXPECT_EQ(section->findElement("c"), &section->entries[4]);
    EXPECT_EQ(section->findElement("d"), nullptr);
}

TEST(DocumentLookUp, OnlyTablesAreFoundAsSectionsAndOfSeveralTheFirst) {
    const std::string text = Settings(
        "<Other name=\"S\"/><Table/><Table name=\"S\"><Var name=\"a\" "
        "type=\"long\"><Value>1</Value></Var></Table>"
        "<Table name=\"S\"><Var name=\"b\" type=\"long\"/></Table><Table name=\"\"/>");
    EXPECT_EQ(Value(text, "S", "a"), "1");
    EXPECT_EQ(Value(text, "S", "b"), "none");
    EXPECT_EQ(Value(text, "T", "a"), "none");
    const mox::Document document = Parsed(text);
    EXPECT_EQ(document.findTable("S"), &document.tables()[2]);
    EXPECT_EQ(document.findTable(""), &document.tables()[4]);
    EXPECT_EQ(document.findTable("s"), nullptr);
    EXPECT_EQ(document.findTable("\xFF"), nullptr);
    EXPECT_EQ(document.tables()[2].find("\xFF"), nullptr);
}

TEST(DocumentLookUp, AnEmptyNameFindsTheFirstThatHasAName) {
    const mox::Document document =
        Parsed(Section("<Var type=\"long\"/><Var name=\"a\" type=\"long\"/><Var name=\"\" type=\"long\"/>"));
    EXPECT_EQ(document.tables()[0].find(""), &document.tables()[0].entries[1]);
}

TEST(DocumentLookUp, OfTwoAttributesTheFirstNamesAnEntry) {
    const std::string text = Section("<Var name=\"a\" name=\"b\" type=\"long\"><Value>1</Value></Var>");
    EXPECT_EQ(Value(text, "S", "a"), "1");
    EXPECT_EQ(Value(text, "S", "b"), "none");
    EXPECT_EQ(Parsed(text).tables()[0].entries[0].name, "a");
}

TEST(DocumentLookUp, OfSeveralValuesTheLastIsRead) {
    EXPECT_EQ(
        Value(Section("<Var name=\"a\" type=\"long\"><Value>1</Value><Value>2</Value></Var>"), "S", "a"),
        "2");
    EXPECT_EQ(Value(Section("<Var name=\"a\" type=\"long\"><UI><Value>1</Value></UI><UI Value=\"2\"/></Var>"),
                    "S", "a"),
              "2");
    EXPECT_EQ(Value(Section("<Var name=\"a\" type=\"long\" Value=\"3\"/>"), "S", "a"), "3");
}

TEST(DocumentLookUp, TheTableOfATableDocumentIsFoundByItsName) {
    const mox::Document document =
        Parsed("<Table name=\"T\"><Var name=\"a\" type=\"long\"/></Table>\n<Table name=\"U\"/>");
    ASSERT_EQ(document.tables().size(), 1U);
    EXPECT_EQ(document.findTable("T"), &document.tables()[0]);
    EXPECT_EQ(document.findTable("U"), nullptr);
    EXPECT_EQ(document.findEntry("T", "a"), &document.tables()[0].entries[0]);
    const mox::Document unnamed = Parsed("<Table/>");
    EXPECT_EQ(unnamed.findTable(""), nullptr);
    EXPECT_EQ(unnamed.tables().size(), 1U);
}

TEST(DocumentLookUp, ManyLookUpsFindEachOfManyEntries) {
    std::string entries;
    for (int i = 0; i < 3000; ++i)
        entries += "<!--c--><Var name=\"k" + std::to_string(i) + "\" type=\"long\"><Value>" +
                   std::to_string(i) + "</Value></Var>";
    const mox::Document document = Parsed(Section(entries));
    for (int i = 2999; i >= 0; --i) {
        const mox::DocumentEntry* const entry = document.findEntry("S", "k" + std::to_string(i));
        ASSERT_NE(entry, nullptr);
        ASSERT_EQ(entry->value, std::to_string(i));
    }
}

}  // namespace
}  // namespace document_tests
