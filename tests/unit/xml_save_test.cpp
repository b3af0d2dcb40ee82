// From a tree to the bytes of a file.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "mox_xmlApi/xml/xml_document.h"
#include "tests/unit/scratch_file.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Build;
using test::Comment;
using test::Declaration;
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

TEST_F(XmlSave, WideFileHasUnitsLowByteFirstAndAZeroUnit) {
    Build(document_, document_.root, Element("a", {}, "b"));
    document_.SetAttribute(document_.root->children.At(0), "k"_w, Wide(u"\u0101\xD800"));
    EXPECT_EQ(SavedBytes(true),
              std::string("<\0a\0 \0k\0=\0\"\0\x01\x01\x00\xD8\"\0>\0b\0<\0/\0a\0>\0\n\0\0\0", 34));
}

TEST_F(XmlSave, NarrowFileHasTheLowBytesAndAZeroByte) {
    XmlNode* e = Build(document_, document_.root, Element("a"));
    document_.SetText(e, Wide(u"b\u00E9\u0101\u0100\uFFC3"));
    EXPECT_EQ(SavedBytes(false), std::string("<a>b\xE9\x01\x00\xC3</a>\n\0", 14));
}

TEST_F(XmlSave, NarrowFilesOfEveryLengthAreWhole) {
    XmlNode* e = Build(document_, document_.root, Element("a"));
    std::string text;
    for (std::size_t length = 1; length < 150; ++length) {
        text += static_cast<char>('A' + length % 26);
        document_.SetText(e, Wide(text));
        ASSERT_EQ(SavedBytes(false), test::Join({"<a>", text, "</a>\n", std::string(1, '\0')}));
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

TEST_F(XmlSave, RefusedSaveTouchesNoFile) {
    Build(document_, document_.root, Element("a"));
    const ScratchFile file;
    EXPECT_FALSE(document_.Save(file.Name(), true, false));
    EXPECT_FALSE(document_.Save(file.Name(), true, true));
    EXPECT_FALSE(file.Exists());
    file.Write("old");
    EXPECT_FALSE(document_.Save(file.Name(), true, false));
    EXPECT_EQ(file.Bytes(), "old");
}

TEST_F(XmlSave, LongerFileIsReplacedWhole) {
    Build(document_, document_.root, Element("a"));
    const ScratchFile file;
    file.Write(std::string(10000, 'x'));
    EXPECT_TRUE(document_.Save(file.Name(), false, false));
    EXPECT_EQ(file.Bytes(), std::string("<a/>\n\0", 6));
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

TEST_F(XmlSave, FileThatCannotBeOpenedGivesFalse) {
    const WideString folder = test::WidePath(test::ScratchFolder());
    const WideString missing = folder + Wide(u"/no such folder/file.xml");
    const WideString empty;
    for (const bool wide : {false, true}) {
        EXPECT_FALSE(document_.Save(folder.c_str(), false, wide));
        EXPECT_FALSE(document_.Save(missing.c_str(), false, wide));
        EXPECT_FALSE(document_.Save(empty.c_str(), false, wide));
        EXPECT_FALSE(document_.Save(nullptr, false, wide));
    }
}

#if !defined(_WIN32)
TEST_F(XmlSave, PathWithALoneSurrogateGivesFalse) {
    const WideString path = test::WidePath(test::ScratchFolder()) + Wide(u"/lone\xDC00.xml");
    EXPECT_FALSE(document_.Save(path.c_str(), false, false));
}

TEST_F(XmlSave, FullDiskGivesFalse) {
    if (!std::filesystem::exists("/dev/full"))
        GTEST_SKIP() << "this system has no device that is always full";
    EXPECT_FALSE(document_.Save(Wide("/dev/full").c_str(), false, false));
    EXPECT_FALSE(document_.Save(Wide("/dev/full").c_str(), false, true));
}
#endif

TEST_F(XmlSave, PathMayHaveCharactersOfEveryScript) {
    const ScratchFile file(u"na\u00EFve \u0416\u4E2D \xD83D\xDE00.xml");
    EXPECT_TRUE(document_.Save(file.Name(), false, false));
    EXPECT_EQ(file.Bytes(), std::string(1, '\0'));
}

TEST_F(XmlSave, WhatWasSavedLoadsAndSavesAsTheSameBytes) {
    Build(document_, document_.root, Declaration({{"version", "1.0"}, {"encoding", "UTF-8"}}));
    Build(
        document_, document_.root,
        Element("Settings", {{"k", "<\"'&>"}}, "",
                {Comment(" note "), Element("Table", {{"name", "S"}}, "", {Element("Value", {}, "a & b")})}));
    for (const bool wide : {false, true}) {
        const ScratchFile file;
        ASSERT_TRUE(document_.Save(file.Name(), false, wide));
        const std::string bytes = file.Bytes();
        XmlDocument again;
        ASSERT_TRUE(again.LoadFile(file.Name(), wide));
        EXPECT_TRUE(model::IsSame(*test::Plain(*again.root), *test::Plain(*document_.root)));
        ASSERT_TRUE(again.Save(file.Name(), false, wide));
        EXPECT_EQ(file.Bytes(), bytes);
    }
}

}  // namespace
}  // namespace mox
