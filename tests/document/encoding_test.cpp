// What the bytes of a file are, and what is said about them.
#include "mox_xmlApi/document/encoding.hpp"

#include "tests/document/document_support.h"

namespace document_tests {
namespace {

using mox::Encoding;
using mox::Form;

struct Expected {
    Encoding encoding;
    Form form;
    std::size_t textSize;
    std::size_t unreadBytes;
    bool hasByteOrderMark;
    std::string description;
};

void Expect(const std::string& bytes, const Expected& expected, std::optional<Form> form = std::nullopt) {
    const mox::EncodingReport report = mox::detectEncoding(bytes, form);
    SCOPED_TRACE(testing::PrintToString(bytes));
    EXPECT_EQ(report.encoding, expected.encoding);
    EXPECT_EQ(report.form, expected.form);
    EXPECT_EQ(report.textSize, expected.textSize);
    EXPECT_EQ(report.unreadBytes, expected.unreadBytes);
    EXPECT_EQ(report.hasByteOrderMark, expected.hasByteOrderMark);
    EXPECT_EQ(mox::describe(report), expected.description);
}

TEST(Encoding, TextsThatDocumentsHave) {
    Expect("<a/>", {Encoding::Narrow, Form::Narrow, 4, 0, false, "7-bit text"});
    Expect("<a/>\0"s, {Encoding::Narrow, Form::Narrow, 4, 0, false, "7-bit text"});
    Expect("<a/>\0\0\0"s, {Encoding::Narrow, Form::Narrow, 4, 0, false, "7-bit text"});
    Expect(Utf16Le("<a/>"), {Encoding::Wide, Form::Wide, 8, 0, false, "UTF-16 with the low byte first"});
    Expect(Utf16Le("\n<a>\xC3\xA4\xE2\x82\xAC</a>\n") + "\0\0"s,
           {Encoding::Wide, Form::Wide, 22, 0, false, "UTF-16 with the low byte first"});
    Expect("", {Encoding::Wide, Form::Wide, 0, 0, false, "UTF-16 with the low byte first"});
    Expect("\n", {Encoding::Narrow, Form::Narrow, 1, 0, false, "7-bit text"});
    for (const std::string& bytes : {"<a/>"s, "<a/>\0"s, Utf16Le("<a/>"), ""s})
        EXPECT_TRUE(mox::detectEncoding(bytes).isDocument());
}

TEST(Encoding, BytesBeyondAsciiInANarrowText) {
    Expect("<a>\xC3\xA4\xE2\x82\xAC</a>", {Encoding::Utf8, Form::Narrow, 12, 0, false, "UTF-8"});
    Expect("<a>\xF0\x9F\x95\x92</a>", {Encoding::Utf8, Form::Narrow, 11, 0, false, "UTF-8"});
    // Surrogates have a UTF-8 form here, as everywhere in the front.
    Expect("<a>\xED\xA0\x80</a>", {Encoding::Utf8, Form::Narrow, 10, 0, false, "UTF-8"});
    const std::string other = "8-bit text other than UTF-8";
    Expect("<a>\xE4</a>", {Encoding::Latin1, Form::Narrow, 8, 0, false, other});
    Expect("<a>\xC0\x80</a>", {Encoding::Latin1, Form::Narrow, 9, 0, false, other});
    Expect("<a>\xC3", {Encoding::Latin1, Form::Narrow, 4, 0, false, other});
    Expect("<a>\xC3\xA4\xFF</a>", {Encoding::Latin1, Form::Narrow, 10, 0, false, other});
    EXPECT_FALSE(mox::detectEncoding("\xC3\xA4").isDocument());
    EXPECT_FALSE(mox::detectEncoding("\xE4").isDocument());
}

TEST(Encoding, ByteOrderMarks) {
    Expect("\xEF\xBB\xBF<a/>", {Encoding::Utf8, Form::Narrow, 7, 0, true, "UTF-8 with a byte-order mark"});
    Expect("\xFF\xFE" + Utf16Le("<a/>"),
           {Encoding::Wide, Form::Wide, 10, 0, true, "UTF-16 with the low byte first and a byte-order mark"});
    Expect("\xFE\xFF" + Utf16Be("<a/>"), {Encoding::Utf16Be, Form::Wide, 10, 0, true,
                                          "UTF-16 with the high byte first and a byte-order mark"});
    Expect("\xEF\xBB", {Encoding::Latin1, Form::Narrow, 2, 0, false, "8-bit text other than UTF-8"});
    EXPECT_FALSE(mox::detectEncoding("\xEF\xBB\xBF<a/>").isDocument());
    EXPECT_FALSE(mox::detectEncoding("\xFF\xFE" + Utf16Le("<a/>")).isDocument());
}

TEST(Encoding, HighByteFirstWithoutAMark) {
    const std::string description = "UTF-16 with the high byte first";
    Expect(Utf16Be("<a/>"), {Encoding::Utf16Be, Form::Narrow, 0, 4, false, description});
    Expect(Utf16Be("\r\n\t <a/>"), {Encoding::Utf16Be, Form::Narrow, 0, 8, false, description});
    Expect(Utf16Be("\n"), {Encoding::Utf16Be, Form::Narrow, 0, 1, false, description});
    Expect(Utf16Be("<a/>"), {Encoding::Utf16Be, Form::Wide, 8, 0, false, description}, Form::Wide);
    // A zero before narrow text is none of it.
    Expect("\0<a/>"s, {Encoding::Narrow, Form::Narrow, 0, 4, false,
                       "7-bit text that ends after 0 bytes, before 4 bytes other than zero"});
    Expect("\0a\0b"s, {Encoding::Narrow, Form::Narrow, 0, 2, false,
                       "7-bit text that ends after 0 bytes, before 2 bytes other than zero"});
}

TEST(Encoding, Zeros) {
    Expect("\0"s, {Encoding::Zeros, Form::Narrow, 0, 0, false, "nothing but zeros"});
    Expect("\0\0"s, {Encoding::Zeros, Form::Wide, 0, 0, false, "nothing but zeros"});
    Expect(std::string(1001, '\0'), {Encoding::Zeros, Form::Wide, 0, 0, false, "nothing but zeros"});
    Expect("\0\0"s, {Encoding::Zeros, Form::Narrow, 0, 0, false, "nothing but zeros"}, Form::Narrow);
    EXPECT_FALSE(mox::detectEncoding("\0"s).isDocument());
}

TEST(Encoding, TextAfterTheFirstZero) {
    Expect("<a/>\0<b/>\0"s, {Encoding::Narrow, Form::Narrow, 4, 4, false,
                             "7-bit text that ends after 4 bytes, before 4 bytes other than zero"});
    Expect(Utf16Le("<a/>") + "\0\0"s + Utf16Le("\xE2\x82\xAC"),
           {Encoding::Wide, Form::Wide, 8, 2, false,
            "UTF-16 with the low byte first that ends after 8 bytes, before 2 bytes other than zero"});
    // An odd byte at the end belongs to no unit.
    Expect(Utf16Le("<a/>") + "x",
           {Encoding::Wide, Form::Wide, 8, 1, false,
            "UTF-16 with the low byte first that ends after 8 bytes, before 1 byte other than zero"});
    Expect(Utf16Le("<a/>") + "\0"s,
           {Encoding::Wide, Form::Wide, 8, 0, false, "UTF-16 with the low byte first"});
    EXPECT_FALSE(mox::detectEncoding("<a/>\0x"s).isDocument());
}

TEST(Encoding, AGivenFormIsNotDetected) {
    Expect("<a/>", {Encoding::Wide, Form::Wide, 4, 0, false, "UTF-16 with the low byte first"}, Form::Wide);
    Expect(Utf16Le("<a/>"),
           {Encoding::Narrow, Form::Narrow, 1, 3, false,
            "7-bit text that ends after 1 byte, before 3 bytes other than zero"},
           Form::Narrow);
    Expect("\xFF\xFE" + Utf16Le("<a/>"),
           {Encoding::Wide, Form::Narrow, 3, 3, true,
            "UTF-16 with the low byte first and a byte-order mark that ends after 3 bytes, before 3 bytes "
            "other than zero"},
           Form::Narrow);
}

TEST(Encoding, AShortTextWithAZeroFirstIsNotTakenForTheHighByteFirst) {
    Expect("\0<ab"s, {Encoding::Narrow, Form::Narrow, 0, 3, false,
                      "7-bit text that ends after 0 bytes, before 3 bytes other than zero"});
    Expect("\0<\0a"s, {Encoding::Utf16Be, Form::Narrow, 0, 2, false, "UTF-16 with the high byte first"});
}

}  // namespace
}  // namespace document_tests
