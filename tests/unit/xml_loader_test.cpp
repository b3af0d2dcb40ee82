// From bytes to a tree, as far as the exports do not show it: see profile_new_test.cpp, profile_text_forms_test.cpp and
// high_bytes_test.cpp in tests/host/.
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "mox_xmlApi/xml/xml_document.h"
#include "tests/unit/scratch_file.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::DumpChildren;
using test::Join;
using test::Outcome;
using test::ScratchFile;
using test::WideBytes;

std::string LoadedBuffer(std::string_view bytes) {
    XmlDocument document;
    const bool loaded = document.LoadBuffer(bytes.data(), bytes.size());
    EXPECT_EQ(document.loaded, loaded);
    return Outcome(loaded, document.root);
}

std::string LoadedFile(std::string_view bytes, bool wide) {
    const ScratchFile file;
    file.Write(bytes);
    XmlDocument document;
    const bool loaded = document.LoadFile(file.Name(), wide);
    EXPECT_EQ(document.loaded, loaded);
    return Outcome(loaded, document.root);
}
// ---- Memory images

TEST(XmlLoadBuffer, BuildsTheTreeAndMarksTheDocumentLoaded) {
    XmlDocument document;
    const std::string_view text = "<?xml version=\"1.0\"?>\n<a k=\"v\">t</a>\n";
    EXPECT_TRUE(document.LoadBuffer(text.data(), text.size()));
    EXPECT_TRUE(document.loaded);
    EXPECT_EQ(DumpChildren(document.root), "?xml{version='1.0'} a{k='v'}'t'");
}

TEST(XmlLoadBuffer, NoBytesAreAnEmptyDocument) {
    EXPECT_EQ(LoadedBuffer(""), "");
    EXPECT_EQ(LoadedBuffer(" \n"), "");
    EXPECT_EQ(LoadedBuffer(std::string_view("\0<a", 3)), "");
    XmlDocument document;
    EXPECT_TRUE(document.LoadBuffer("not read", 0));
}

TEST(XmlLoadBuffer, HugeSizeReadsUpToTheZero) {
    const std::uint64_t sizes[] = {std::numeric_limits<std::uint64_t>::max(),
                                   static_cast<std::uint64_t>(std::int64_t{-5}), std::uint64_t{1} << 63,
                                   std::uint64_t{0x7FFFFFFF}};
    for (const std::uint64_t size : sizes) {
        XmlDocument document;
        EXPECT_TRUE(document.LoadBuffer("<a>text</a>", size)) << size;
        EXPECT_EQ(DumpChildren(document.root), "a'text'") << size;
    }
}

TEST(XmlLoadBuffer, ImageNeedNoTerminatorAndIsLeftAlone) {
    const std::string original = "<a k=\"&lt;\">&amp;</a>";
    std::vector<char> image(original.begin(), original.end());
    XmlDocument document;
    EXPECT_TRUE(document.LoadBuffer(image.data(), image.size()));
    EXPECT_EQ(std::string(image.begin(), image.end()), original);
    image.assign(image.size(), '#');
    EXPECT_EQ(DumpChildren(document.root), "a{k='<'}'&'");
}

TEST(XmlLoadBuffer, FailedParseLeavesTheDocumentToBeLoadedLater) {
    XmlDocument document;
    EXPECT_FALSE(document.LoadBuffer("<a/>\n<b>", 8));
    EXPECT_FALSE(document.loaded);
    EXPECT_EQ(DumpChildren(document.root), "a");
    EXPECT_TRUE(document.LoadBuffer("<c/>", 4));
    EXPECT_TRUE(document.loaded);
    EXPECT_EQ(DumpChildren(document.root), "a c");
}

TEST(XmlLoadBuffer, DeclarationFailsOnTopOfWhatAFailedParseLeft) {
    XmlDocument document;
    const std::string_view text = "<?xml version=\"1.0\"?>\n<a/>";
    EXPECT_FALSE(document.LoadBuffer("<x/>y<", 6));
    EXPECT_FALSE(document.LoadBuffer(text.data(), text.size()));
    EXPECT_EQ(DumpChildren(document.root), "x");
}

TEST(XmlLoadBuffer, SecondLoadIsRefusedAndLeavesTheTree) {
    XmlDocument document;
    EXPECT_TRUE(document.LoadBuffer("<a/>", 4));
    EXPECT_FALSE(document.LoadBuffer("<b/>", 4));
    EXPECT_FALSE(document.LoadBuffer("", 0));
    EXPECT_TRUE(document.loaded);
    EXPECT_EQ(DumpChildren(document.root), "a");
}

TEST(XmlLoadBuffer, DocumentThatIsNotWritableIsRefused) {
    XmlDocument document;
    document.writable = false;
    EXPECT_FALSE(document.LoadBuffer("<a/>", 4));
    EXPECT_FALSE(document.loaded);
    EXPECT_EQ(DumpChildren(document.root), "");
}

TEST(XmlLoadBuffer, EveryLengthIsWidenedWhole) {
    for (std::size_t length = 1; length < 200; ++length) {
        std::string text(length, 'x');
        text.back() = '\x80';
        ASSERT_EQ(LoadedBuffer(Join({"<a>", text, "</a>"})),
                  Join({"a'", std::string(length - 1, 'x'), "\\uFF80'"}))
            << length;
    }
}

// ---- Narrow files

TEST(XmlLoadNarrowFile, FilesAroundTheBlockSizeAreReadWhole) {
    for (const std::size_t size : {4095U, 4096U, 4097U, 8191U, 8192U, 8193U, 100000U, 300001U}) {
        const std::string text(size - 7, 'x');
        ASSERT_EQ(LoadedFile(Join({"<a>", text, "</a>"}), false), Join({"a'", text, "'"})) << size;
    }
}

// ---- Wide files

TEST(XmlLoadWideFile, FilesAroundTheBlockSizeAreReadWhole) {
    for (const std::size_t units : {2047U, 2048U, 2049U, 4095U, 4096U, 4097U, 100001U}) {
        const std::u16string text(units - 7, u'x');
        const std::string bytes = WideBytes(std::u16string(u"<a>").append(text).append(u"</a>"));
        ASSERT_EQ(LoadedFile(bytes, true), Join({"a'", std::string(units - 7, 'x'), "'"})) << units;
        ASSERT_EQ(LoadedFile(bytes + "?", true), Join({"a'", std::string(units - 7, 'x'), "'"})) << units;
    }
}

// ---- Files that cannot be had

TEST(XmlLoadFile, MissingFileLeavesTheDocumentToBeLoadedLater) {
    const ScratchFile file;
    XmlDocument document;
    EXPECT_FALSE(document.LoadFile(file.Name(), false));
    EXPECT_FALSE(document.LoadFile(file.Name(), true));
    EXPECT_FALSE(document.loaded);
    EXPECT_FALSE(file.Exists());
    file.Write("<a/>");
    EXPECT_TRUE(document.LoadFile(file.Name(), false));
    EXPECT_EQ(DumpChildren(document.root), "a");
}

TEST(XmlLoadFile, SecondLoadIsRefusedAndLeavesTheTree) {
    const ScratchFile file;
    file.Write("<b/>");
    XmlDocument document;
    EXPECT_TRUE(document.LoadBuffer("<a/>", 4));
    EXPECT_FALSE(document.LoadFile(file.Name(), false));
    EXPECT_EQ(DumpChildren(document.root), "a");
    XmlDocument attached;
    attached.Attach(document.root);
    EXPECT_FALSE(attached.LoadFile(file.Name(), false));
}

TEST(XmlLoadFile, DocumentThatIsNotWritableIsRefused) {
    const ScratchFile file;
    file.Write("<a/>");
    XmlDocument document;
    document.writable = false;
    EXPECT_FALSE(document.LoadFile(file.Name(), false));
    EXPECT_FALSE(document.loaded);
    EXPECT_EQ(DumpChildren(document.root), "");
}

// ---- Memory

TEST(XmlLoadFile, TakesMemoryForTheTextBeforeAZeroAlone) {
    for (const bool wide : {false, true}) {
        for (const std::size_t rest : {std::size_t{12000}, std::size_t{1} << 20}) {
            const ScratchFile file;
            const std::string text = Join({"<a>text</a>", std::string(1, '\0'), std::string(rest, 'x')});
            file.Write(wide ? WideBytes(std::u16string(text.begin(), text.end())) : text);
            XmlDocument document;
            EXPECT_TRUE(document.LoadFile(file.Name(), wide));
            EXPECT_EQ(DumpChildren(document.root), "a'text'");
            EXPECT_EQ(document.Pool().BytesHeld(), XmlPool::kFirstSlab) << wide << ' ' << rest;
        }
    }
}

}  // namespace
}  // namespace mox
