// From bytes to a tree: files and memory images, wide and narrow.
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
std::string LoadedNarrow(std::string_view bytes) {
    return LoadedFile(bytes, false);
}
std::string LoadedWide(std::string_view bytes) {
    return LoadedFile(bytes, true);
}

// A text with all bytes from `first` on that can stand in an attribute value, and how the tree shows them.
struct ByteTexts {
    std::string bytes;
    std::string shown;
};
ByteTexts BytesFrom80() {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    ByteTexts texts;
    for (unsigned byte = 0x80; byte <= 0xFF; ++byte) {
        texts.bytes += static_cast<char>(static_cast<unsigned char>(byte));
        texts.shown.append("\\uFF").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 0xF]);
    }
    return texts;
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
}

TEST(XmlLoadBuffer, TakesNoMoreThanTheSize) {
    XmlDocument document;
    EXPECT_TRUE(document.LoadBuffer("<a/>\n<b/>", 4));
    EXPECT_EQ(DumpChildren(document.root), "a");
    XmlDocument cut;
    EXPECT_FALSE(cut.LoadBuffer("<a/>\n<b/>", 3));
    XmlDocument none;
    EXPECT_TRUE(none.LoadBuffer("not looked at", 0));
}

TEST(XmlLoadBuffer, StopsAtTheFirstZero) {
    EXPECT_EQ(LoadedBuffer(std::string_view("<a/>\0<b", 7)), "a");
    EXPECT_EQ(LoadedBuffer(std::string_view("<a>\0</a>", 8)), "failed");
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

TEST(XmlLoadBuffer, BytesFrom80OnGetTheirSign) {
    const ByteTexts texts = BytesFrom80();
    EXPECT_EQ(LoadedBuffer(Join({"<a k=\"", texts.bytes, "\">", texts.bytes, "</a>"})),
              Join({"a{k='", texts.shown, "'}'", texts.shown, "'"}));
}

TEST(XmlLoadBuffer, MultiByteCharactersAreNotDecoded) {
    EXPECT_EQ(LoadedBuffer("<a>\xC3\xA9</a>"), "a'\\uFFC3\\uFFA9'");
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

TEST(XmlLoadNarrowFile, BuildsTheTree) {
    EXPECT_EQ(LoadedNarrow("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>t</a>\n"),
              "?xml{version='1.0' encoding='UTF-8'} a't'");
}

TEST(XmlLoadNarrowFile, EmptyOrBlankFileIsAnEmptyDocument) {
    EXPECT_EQ(LoadedNarrow(""), "");
    EXPECT_EQ(LoadedNarrow(" \r\n\t"), "");
    EXPECT_EQ(LoadedNarrow(std::string_view("\0", 1)), "");
}

TEST(XmlLoadNarrowFile, StopsAtTheFirstZero) {
    EXPECT_EQ(LoadedNarrow(std::string_view("<a/>\n\0<b", 8)), "a");
    EXPECT_EQ(LoadedNarrow(std::string_view("<a>t\0</a>", 9)), "failed");
}

TEST(XmlLoadNarrowFile, BytesFrom80OnGetTheirSign) {
    const ByteTexts texts = BytesFrom80();
    EXPECT_EQ(LoadedNarrow(Join({"<a k=\"", texts.bytes, "\"/>"})), Join({"a{k='", texts.shown, "'}"}));
}

TEST(XmlLoadNarrowFile, ByteOrderMarkOfUtf8Fails) {
    EXPECT_EQ(LoadedNarrow("\xEF\xBB\xBF<a/>"), "failed");
}

TEST(XmlLoadNarrowFile, WideFileFails) {
    EXPECT_EQ(LoadedNarrow(WideBytes(u"<a/>")), "failed");
}

TEST(XmlLoadNarrowFile, FilesAroundTheBlockSizeAreReadWhole) {
    for (const std::size_t size : {4095U, 4096U, 4097U, 8191U, 8192U, 8193U, 100000U, 300001U}) {
        const std::string text(size - 7, 'x');
        ASSERT_EQ(LoadedNarrow(Join({"<a>", text, "</a>"})), Join({"a'", text, "'"})) << size;
    }
}

// ---- Wide files

TEST(XmlLoadWideFile, BuildsTheTree) {
    EXPECT_EQ(LoadedWide(WideBytes(u"<?xml version=\"1.0\"?>\n<a k=\"\u0101\">\u20AC</a>\n")),
              "?xml{version='1.0'} a{k='\\u0101'}'\\u20AC'");
}

TEST(XmlLoadWideFile, EmptyOrBlankFileIsAnEmptyDocument) {
    EXPECT_EQ(LoadedWide(""), "");
    EXPECT_EQ(LoadedWide(WideBytes(u" \n")), "");
    EXPECT_EQ(LoadedWide(std::string_view("\0\0", 2)), "");
}

TEST(XmlLoadWideFile, StopsAtTheFirstZeroUnit) {
    EXPECT_EQ(LoadedWide(WideBytes(std::u16string_view(u"<a/>\n\0<b", 8))), "a");
    EXPECT_EQ(LoadedWide(WideBytes(std::u16string_view(u"<a>t\0</a>", 9))), "failed");
}

TEST(XmlLoadWideFile, ZeroBytesInsideUnitsAreNoEnd) {
    EXPECT_EQ(LoadedWide(WideBytes(u"<a>\u0100\u4E00</a>")), "a'\\u0100\\u4E00'");
}

TEST(XmlLoadWideFile, OddByteAtTheEndIsDropped) {
    EXPECT_EQ(LoadedWide(WideBytes(u"<a/>") + "x"), "a");
    EXPECT_EQ(LoadedWide("x"), "");
    EXPECT_EQ(LoadedWide(WideBytes(u"<a></a") + ">"), "failed");
}

TEST(XmlLoadWideFile, ByteOrderMarkFailsAndTheSameFileWithoutItLoads) {
    EXPECT_EQ(LoadedWide(WideBytes(u"\uFEFF<a/>\n")), "failed");
    EXPECT_EQ(LoadedWide(WideBytes(u"<a/>\n")), "a");
}

TEST(XmlLoadWideFile, BigEndianFileFails) {
    EXPECT_EQ(LoadedWide(std::string_view("\0<\0a\0/\0>", 8)), "failed");
}

TEST(XmlLoadWideFile, NarrowFileFails) {
    EXPECT_EQ(LoadedWide("<a/>"), "failed");
}

TEST(XmlLoadWideFile, LoneSurrogatesAreKept) {
    EXPECT_EQ(LoadedWide(WideBytes(u"<a k=\"\xDC00\xD800\">\xD83D\xDE00\xD800</a>")),
              "a{k='\\uDC00\\uD800'}'\\uD83D\\uDE00\\uD800'");
}

TEST(XmlLoadWideFile, FilesAroundTheBlockSizeAreReadWhole) {
    for (const std::size_t units : {2047U, 2048U, 2049U, 4095U, 4096U, 4097U, 100001U}) {
        const std::u16string text(units - 7, u'x');
        const std::string bytes = WideBytes(std::u16string(u"<a>").append(text).append(u"</a>"));
        ASSERT_EQ(LoadedWide(bytes), Join({"a'", std::string(units - 7, 'x'), "'"})) << units;
        ASSERT_EQ(LoadedWide(bytes + "?"), Join({"a'", std::string(units - 7, 'x'), "'"})) << units;
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

TEST(XmlLoadFile, FolderOrEmptyPathFails) {
    XmlDocument document;
    const WideString folder = test::WidePath(test::ScratchFolder());
    const WideString empty;
    for (const bool wide : {false, true}) {
        EXPECT_FALSE(document.LoadFile(folder.c_str(), wide));
        EXPECT_FALSE(document.LoadFile(empty.c_str(), wide));
    }
    EXPECT_FALSE(document.loaded);
}

TEST(XmlLoadFile, PathWithALoneSurrogateFails) {
    XmlDocument document;
    const WideString path = test::WidePath(test::ScratchFolder()) + test::Wide(u"/lone\xD800.xml");
    EXPECT_FALSE(document.LoadFile(path.c_str(), false));
}

TEST(XmlLoadFile, PathMayHaveCharactersOfEveryScript) {
    const ScratchFile file(u"na\u00EFve \u0416\u4E2D \xD83D\xDE00.xml");
    file.Write("<a/>");
    XmlDocument document;
    EXPECT_TRUE(document.LoadFile(file.Name(), false));
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

TEST(XmlLoadFile, FileCanBeRemovedAfterLoadingAndTheTreeStays) {
    XmlDocument document;
    {
        const ScratchFile file;
        file.Write("<a k=\"v\">text</a>");
        EXPECT_TRUE(document.LoadFile(file.Name(), false));
    }
    EXPECT_EQ(DumpChildren(document.root), "a{k='v'}'text'");
}

}  // namespace
}  // namespace mox
