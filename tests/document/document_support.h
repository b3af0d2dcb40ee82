// Support for the tests of documents: texts in both forms, and short documents.
#ifndef MOX_XMLAPI_TESTS_DOCUMENT_DOCUMENT_SUPPORT_H
#define MOX_XMLAPI_TESTS_DOCUMENT_DOCUMENT_SUPPORT_H

#include <gtest/gtest.h>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include "mox_xmlApi/document/document.hpp"

namespace mox {

inline bool operator==(const Position& a, const Position& b) {
    return a.line == b.line && a.column == b.column;
}
inline std::ostream& operator<<(std::ostream& stream, const Position& position) {
    return stream << position.line << ":" << position.column;
}

}  // namespace mox

namespace document_tests {

using namespace std::string_literals;

// The text (UTF-8) as UTF-16 without a mark.
inline std::string Utf16Le(std::string_view utf8) {
    std::string bytes;
    const std::u16string units = mox::toUtf16(utf8).value();
    for (const char16_t unit : units) {
        bytes += static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
        bytes += static_cast<char>(static_cast<unsigned char>(unit >> 8));
    }
    return bytes;
}
inline std::string Utf16Be(std::string_view utf8) {
    std::string bytes = Utf16Le(utf8);
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

// A document that must parse. Without a form it is detected.
inline mox::Document Parsed(std::string_view bytes, std::optional<mox::Form> form = std::nullopt) {
    mox::Problem problem;
    std::optional<mox::Document> document = mox::Document::parse(bytes, form, &problem);
    EXPECT_TRUE(document.has_value()) << problem.toString();
    EXPECT_EQ(problem.reason, mox::Reason::None);
    return document.has_value() ? std::move(*document) : std::move(*mox::Document::parse(""));
}

// Settings with these elements in the root; the section "S" with these entries.
inline std::string Settings(std::string_view sections) {
    return std::string("<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">")
        .append(sections)
        .append("</Settings>");
}
inline std::string Section(std::string_view entries) {
    return Settings(std::string("<Table name=\"S\">").append(entries).append("</Table>"));
}

inline std::string Repeat(std::string_view text, std::size_t count) {
    std::string repeated;
    repeated.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        repeated.append(text);
    return repeated;
}

}  // namespace document_tests

#endif
