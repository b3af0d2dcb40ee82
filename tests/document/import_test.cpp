// Import of other encodings, and export to UTF-8.
#include "mox_xmlApi/document/encoding.hpp"
#include "tests/document/document_support.h"

namespace document_tests {
namespace {

using mox::Encoding;
using mox::Form;
using mox::Reason;

constexpr const char* kText = "<a>\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x95\x92</a>\r\n";
// The same in units, low byte first, with the zero that ends a file.
const std::string kWideFile = "<\0a\0>\0\xE4\0 \0\xAC\x20 \0\x3D\xD8\x52\xDD<\0/\0a\0>\0\r\0\n\0\0\0"s;

void ExpectWide(const std::string& bytes, Encoding from, const std::string& expected) {
    SCOPED_TRACE(testing::PrintToString(bytes));
    mox::Problem problem;
    problem.reason = Reason::Syntax;
    EXPECT_EQ(mox::importText(bytes, from, Form::Wide, &problem), expected);
    EXPECT_EQ(problem.reason, Reason::None);
}

void ExpectFailure(const std::string& bytes, Encoding from, Form to, Reason reason,
                   const std::string& message) {
    SCOPED_TRACE(testing::PrintToString(bytes));
    mox::Problem problem;
    EXPECT_EQ(mox::importText(bytes, from, to, &problem), std::nullopt);
    EXPECT_EQ(mox::importText(bytes, from, to), std::nullopt);
    EXPECT_EQ(problem.reason, reason);
    EXPECT_EQ(std::to_string(problem.line) + ":" + std::to_string(problem.column) + ": " + problem.message,
              message);
}

TEST(Import, EveryEncodingBecomesAWideFile) {
    ExpectWide(kText, Encoding::Utf8, kWideFile);
    ExpectWide(Utf16Le(kText), Encoding::Wide, kWideFile);
    ExpectWide(Utf16Be(kText), Encoding::Utf16Be, kWideFile);
    ExpectWide("<a>\xE4\xFF\x80</a>", Encoding::Latin1, "<\0a\0>\0\xE4\0\xFF\0\x80\0<\0/\0a\0>\0\0\0"s);
    ExpectWide("<a/>", Encoding::Narrow, "<\0a\0/\0>\0\0\0"s);
    ExpectWide("", Encoding::Utf8, "\0\0"s);
}

TEST(Import, MarksAndZerosAtTheEndAreLeftOut) {
    ExpectWide("\xEF\xBB\xBF"s + kText + "\0"s, Encoding::Utf8, kWideFile);
    ExpectWide("\xFF\xFE" + Utf16Le(kText) + "\0\0\0\0"s, Encoding::Wide, kWideFile);
    ExpectWide("\xFE\xFF" + Utf16Be(kText) + "\0\0\0"s, Encoding::Utf16Be, kWideFile);
    ExpectWide("\xEF\xBB\xBF", Encoding::Utf8, "\0\0"s);
    // The mark of another encoding is text.
    ExpectWide("\xFF\xFE", Encoding::Latin1, "\xFF\0\xFE\0\0\0"s);
    // Only one mark is left out.
    ExpectWide("\xEF\xBB\xBF\xEF\xBB\xBF", Encoding::Utf8, "\xFF\xFE\0\0"s);
}

TEST(Import, SevenBitTextMayBecomeNarrow) {
    EXPECT_EQ(mox::importText("\xEF\xBB\xBF<a>b</a>\n", Encoding::Utf8, Form::Narrow), "<a>b</a>\n\0"s);
    EXPECT_EQ(mox::importText(Utf16Be("<a/>"), Encoding::Utf16Be, Form::Narrow), "<a/>\0"s);
    EXPECT_EQ(mox::importText(Utf16Le("<a/>"), Encoding::Wide, Form::Narrow), "<a/>\0"s);
    const std::string message = "a narrow document keeps 7-bit text only; another character is at offset ";
    ExpectFailure("<a>\n\xC3\xA4</a>", Encoding::Utf8, Form::Narrow, Reason::NotKept,
                  "2:1: " + message + "4");
    ExpectFailure("<a>\n \xE4</a>", Encoding::Latin1, Form::Narrow, Reason::NotKept, "2:2: " + message + "5");
    ExpectFailure("\xFE\xFF" + Utf16Be("<a>\xC3\xA4</a>"), Encoding::Utf16Be, Form::Narrow, Reason::NotKept,
                  "1:4: " + message + "8");
}

TEST(Import, BytesOfAnotherEncodingFailWithTheirOffset) {
    ExpectFailure("<a>\n\xE4</a>", Encoding::Utf8, Form::Wide, Reason::Encoding,
                  "2:1: byte 0xE4 at offset 4 is not UTF-8");
    ExpectFailure("\xEF\xBB\xBF<a>\xC3\xA4\xFF", Encoding::Utf8, Form::Wide, Reason::Encoding,
                  "1:6: byte 0xFF at offset 8 is not UTF-8");
    ExpectFailure("a\xC3", Encoding::Utf8, Form::Wide, Reason::Encoding,
                  "1:2: byte 0xC3 at offset 1 is not UTF-8");
    ExpectFailure("\xC0\x80", Encoding::Utf8, Form::Wide, Reason::Encoding,
                  "1:1: byte 0xC0 at offset 0 is not UTF-8");
    ExpectFailure("\xF4\x90\x80\x80", Encoding::Utf8, Form::Wide, Reason::Encoding,
                  "1:1: byte 0xF4 at offset 0 is not UTF-8");
    ExpectFailure("a\n\nb\xE4", Encoding::Narrow, Form::Wide, Reason::Encoding,
                  "3:2: byte 0xE4 at offset 4 is not 7-bit text");
    ExpectFailure(Utf16Le("<a/>") + "x", Encoding::Wide, Form::Wide, Reason::Encoding,
                  "1:5: an odd number of bytes is not UTF-16");
    ExpectFailure("\xFE\xFF" + Utf16Be("a\nb") + "x", Encoding::Utf16Be, Form::Wide, Reason::Encoding,
                  "2:2: an odd number of bytes is not UTF-16");
}

TEST(Import, AZeroBetweenOtherTextFails) {
    ExpectFailure("<a/>\n\0<b/>"s, Encoding::Utf8, Form::Wide, Reason::Encoding,
                  "2:1: the zero at offset 5 would end the text");
    ExpectFailure("\0<a/>"s, Encoding::Latin1, Form::Wide, Reason::Encoding,
                  "1:1: the zero at offset 0 would end the text");
    ExpectFailure(Utf16Be("<a/>") + "\0\0"s + Utf16Be("b"), Encoding::Utf16Be, Form::Wide, Reason::Encoding,
                  "1:5: the zero at offset 8 would end the text");
    ExpectFailure("\0\0"s, Encoding::Zeros, Form::Wide, Reason::Encoding, "1:1: there is nothing but zeros");
}

TEST(Import, UnpairedSurrogatesAreKept) {
    const std::string units = "\x00\xD8<\0\x00\xDC"s;
    ExpectWide(units, Encoding::Wide, units + "\0\0"s);
    ExpectWide("\xED\xA0\x80<\xED\xB0\x80", Encoding::Utf8, units + "\0\0"s);
}

TEST(Export, Utf8HasTheTextUpToTheFirstZeroWithoutAMark) {
    EXPECT_EQ(mox::exportUtf8(kWideFile), kText);
    EXPECT_EQ(mox::exportUtf8(kWideFile + Utf16Le("more")), kText);
    EXPECT_EQ(mox::exportUtf8("<a/>\0more"s), "<a/>");
    EXPECT_EQ(mox::exportUtf8(""), "");
    EXPECT_EQ(mox::exportUtf8("\n", Form::Narrow), "\n");
    // As the library reads narrow bytes beyond ASCII: as U+FFE4.
    EXPECT_EQ(mox::exportUtf8("<a>\xE4</a>"), "<a>\xEF\xBF\xA4</a>");
    EXPECT_EQ(mox::exportUtf8("AB", Form::Wide), "\xE4\x89\x81");
}

TEST(Export, UnpairedSurrogatesBecomeThreeBytesThatImportReadsBack) {
    const std::string file = "<\0a\0>\0\x00\xD8<\0/\0a\0>\0\0\0"s;
    const std::string utf8 = mox::exportUtf8(file);
    EXPECT_EQ(utf8, "<a>\xED\xA0\x80</a>");
    EXPECT_EQ(mox::importText(utf8, Encoding::Utf8), file);
}

TEST(Import, WhatWasImportedParses) {
    for (const auto& [bytes, from] : {std::pair(kText + ""s, Encoding::Utf8),
                                      std::pair("\xFE\xFF" + Utf16Be(kText), Encoding::Utf16Be)}) {
        const mox::Document document = Parsed(mox::importText(bytes, from).value());
        EXPECT_EQ(document.form(), Form::Wide);
        EXPECT_EQ((*document.nodes().begin()).text(), "\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x95\x92");
    }
}

}  // namespace
}  // namespace document_tests
