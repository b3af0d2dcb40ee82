// From a tree to the bytes of a file, as far as the exports do not show it: see profile_save_test.cpp, table_save_test.cpp
// and document_layout_test.cpp in tests/host/.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "mox_xmlApi/xml/xml_document.h"
#include "tests/unit/scratch_file.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Build;
using test::Element;
using test::ScratchFile;
using test::Wide;

class XmlSave : public testing::Test {
  protected:
    std::string SavedBytes(bool wide) const {
        const ScratchFile file;
        EXPECT_TRUE(document_.Save(file.Name(), false, wide));
        return file.Bytes();
    }

    XmlDocument document_;
};

TEST_F(XmlSave, EmptyDocumentIsOneZeroUnitOrByte) {
    EXPECT_EQ(SavedBytes(true), std::string(2, '\0'));
    EXPECT_EQ(SavedBytes(false), std::string(1, '\0'));
}

TEST_F(XmlSave, NarrowFilesOfEveryLengthAreWhole) {
    XmlNode* e = Build(document_, document_.root, Element("a"));
    std::string text;
    for (std::size_t length = 1; length < 150; ++length) {
        text += static_cast<char>('A' + length % 26);
        document_.SetText(*e, Wide(text));
        ASSERT_EQ(SavedBytes(false), test::Join({"<a>", text, "</a>\n", std::string(1, '\0')}));
    }
}

// Each unit of the tags is once the last one of a chunk: the sanitizer sees a write beyond it.
TEST_F(XmlSave, TagsAtTheEndOfAChunkAreWhole) {
    constexpr std::size_t kChunk = 8 * 1024;
    XmlNode* e = Build(document_, document_.root, Element("a"));
    std::string inner;
    while (inner.size() < kChunk + 100) {
        Build(document_, e, Element("longername", {{"c", "1"}}, "d"));
        inner += "\t<longername c=\"1\">d</longername>\n";
    }
    for (std::size_t length = 1; length <= 40; ++length) {
        const std::string name(length, 'k');
        const auto wide = Wide(name);  // the document keeps a view of it
        document_.SetAttribute(*e, wide, Wide("v"));
        const std::string whole = test::Join({"<a ", name, "=\"v\">\n", inner, "</a>\n"});
        ASSERT_EQ(SavedBytes(false), whole + '\0');
        document_.RemoveAttribute(e, wide);
    }
}

// Its text fills several chunks of memory.
TEST_F(XmlSave, LargeDocumentIsWholeInBothForms) {
    constexpr int kElements = 40000;
    constexpr std::size_t kLevels = 300;
    std::string xml = "<a>\n";
    for (int i = 0; i < kElements; ++i) {
        const std::string number = std::to_string(i);
        xml.append("\t<e k=\"v &amp; ").append(number).append("\">&lt;").append(number).append("</e>\n");
        if (i % 100 == 0) xml.append("\t<!--").append(number).append("-->\n");
    }
    for (std::size_t level = 1; level <= kLevels; ++level)
        xml.append(level, '\t').append(level < kLevels ? "<l>\n" : "<l/>\n");
    for (std::size_t level = kLevels - 1; level >= 1; --level)
        xml.append(level, '\t').append("</l>\n");
    xml.append("</a>\n<b/>\n");

    ASSERT_TRUE(document_.LoadBuffer(xml.data(), xml.size()));
    ASSERT_GT(document_.Pool().BytesHeld(), std::size_t{5} << 20);
    xml += '\0';
    EXPECT_TRUE(SavedBytes(false) == xml);
    std::string wide(xml.size() * 2, '\0');
    for (std::size_t i = 0; i < xml.size(); ++i)
        wide[2 * i] = xml[i];
    EXPECT_TRUE(SavedBytes(true) == wide);
}

TEST_F(XmlSave, DocumentThatIsNotWritableSavesAnEmptyText) {
    Build(document_, document_.root, Element("a"));
    document_.writable = false;
    EXPECT_EQ(SavedBytes(true), std::string(2, '\0'));
    EXPECT_EQ(SavedBytes(false), std::string(1, '\0'));
}

TEST_F(XmlSave, AttachedElementIsSavedWithoutALineFeed) {
    XmlNode* e = Build(document_, document_.root, Element("e", {}, "", {Element("c")}));
    const XmlDocument borrower(document_.Pool(), e);
    const ScratchFile file;
    EXPECT_TRUE(borrower.Save(file.Name(), false, false));
    EXPECT_EQ(file.Bytes(), std::string("<e>\n\t<c/>\n</e>\0", 15));
}

}  // namespace
}  // namespace mox
