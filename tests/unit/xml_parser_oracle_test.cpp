// The parser against that of the model, over random documents.
#include <gtest/gtest.h>
#include <string>

#include "tests/model/text.h"
#include "tests/unit/random_documents.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Parsed;
using test::Wide;

bool IsLetter(wchar16 unit) {
    // The letters beyond ASCII that the random documents have; every other unit in them is none.
    return model::BeginsAsciiName(unit) || unit == 0x00E9 || unit == 0x0416 || unit == 0x4E2D ||
           unit == 0xFF80;
}

bool IsLetterOrDigit(wchar16 unit) {
    return IsLetter(unit) || model::GoesOnWithAsciiName(unit);
}

// What the model makes of a text, in the form of Parsed.
std::string OracleParsed(const WideString& text) {
    model::Node document{model::Kind::Document};
    const bool parsed = model::ParseInto(document, text, {IsLetter, IsLetterOrDigit});
    return test::Outcome(parsed, model::DumpChildren(document));
}

bool Agree(const WideString& text) {
    return Parsed(WideView(text)) == OracleParsed(text);
}

// The shortest text on which both still differ, by leaving parts out.
WideString Shortened(WideString text) {
    for (std::size_t part = text.size(); part > 0; part /= 2) {
        for (std::size_t at = 0; at < text.size();) {
            WideString shorter = text;
            shorter.erase(at, part);
            if (Agree(shorter))
                at += 1;
            else
                text = shorter;
        }
    }
    return text;
}

void ExpectAgreement(const WideString& text, const std::string& where) {
    if (Agree(text)) return;
    const WideString shortest = Shortened(text);
    ADD_FAILURE() << where << "\n  text:   " << test::Shown(shortest)
                  << "\n  parser: " << Parsed(WideView(shortest)) << "\n  oracle: " << OracleParsed(shortest);
}

TEST(XmlParserOracle, AgreesOverRandomDocuments) {
    int parsed = 0;
    int failed = 0;
    int partly = 0;
    for (std::uint64_t seed = 1; seed <= 20000 && !HasFailure(); ++seed) {
        const WideString text = test::RandomDocuments(seed).NextText();
        ExpectAgreement(text, test::Join({"seed ", std::to_string(seed)}));
        const std::string outcome = OracleParsed(text);
        if (outcome.substr(0, 8) == "failed [")
            ++partly;
        else
            ++(outcome == "failed" ? failed : parsed);
    }
    // Random documents test enough only if none of the three outcomes is rare.
    EXPECT_GT(parsed, 4000);
    EXPECT_GT(failed, 4000);
    EXPECT_GT(partly, 1000);
}

TEST(XmlParserOracle, AgreesOverEveryCutOfADocument) {
    for (std::uint64_t seed = 1; seed <= 60 && !HasFailure(); ++seed) {
        const WideString text = test::RandomDocuments(seed).NextText();
        for (std::size_t length = 0; length < text.size(); ++length)
            ExpectAgreement(text.substr(0, length),
                            test::Join({"seed ", std::to_string(seed), " cut to ", std::to_string(length)}));
    }
}

TEST(XmlParserOracle, AgreesOverEveryTextOfAFewUnits) {
    const WideString units = Wide("<>/a!-?\"= &");
    for (std::size_t length = 0; length <= 4; ++length) {
        std::size_t texts = 1;
        for (std::size_t i = 0; i < length; ++i)
            texts *= units.size();
        for (std::size_t number = 0; number < texts && !HasFailure(); ++number) {
            WideString text = Wide("<a/");
            for (std::size_t i = 0, rest = number; i < length; ++i, rest /= units.size())
                text += units[rest % units.size()];
            ExpectAgreement(text, "after <a/");
            ExpectAgreement(text.substr(3), "alone");
        }
    }
}

// Something special at every place of a run of every length: a parser may examine several units together.
TEST(XmlParserOracle, AgreesWhereverARunIsInterrupted) {
    const WideString specials[] = {
        Wide("&lt;"),          Wide("&amp;&gt;"), Wide("<b/>"), Wide("\""),      WideString(1, wchar16{0}),
        Wide(u"\u00E9\u4E2D"), Wide("&bad;"),     Wide("> \n"), Wide("<!--c-->")};
    for (std::size_t length = 0; length <= 36 && !HasFailure(); ++length) {
        for (std::size_t at = 0; at <= length; ++at) {
            for (const WideString& special : specials) {
                const WideString run = WideString(length, wchar16{'x'}).insert(at, special);
                ExpectAgreement(Wide("<a>") + run + Wide("</a>"), "text");
                ExpectAgreement(Wide("<a k=\"") + run + Wide("\"/>"), "attribute");
                ExpectAgreement(Wide("<!--") + run + Wide("-->"), "comment");
                ExpectAgreement(Wide("<a") + run + Wide("/>"), "name");
                ExpectAgreement(Wide("<a>") + run, "end");
            }
        }
    }
}

// Also where values do not come back as they were, reading what was written gives what the model says.
TEST(XmlParserOracle, AgreesOverTheTextOfRandomTrees) {
    for (std::uint64_t seed = 5001; seed <= 8000; ++seed) {
        const WideString text = model::Written(*test::RandomDocuments(seed).NextTree());
        ASSERT_EQ(Parsed(WideView(text)), OracleParsed(text)) << "seed " << seed;
    }
}

// Memory images: each unit cut to its low byte, as a narrow file holds it.
TEST(XmlParserOracle, AgreesOverMemoryImages) {
    for (std::uint64_t seed = 30001; seed <= 33000 && !HasFailure(); ++seed) {
        std::string bytes;
        WideString widened;
        bool ended = false;
        for (const wchar16 unit : test::RandomDocuments(seed).NextText()) {
            // 0x80 gives U+FF80, a letter to every system; of other bytes the systems think differently.
            const auto byte = static_cast<unsigned char>(unit < 0x80 ? unit : 0x80);
            bytes += static_cast<char>(byte);
            ended = ended || byte == 0;
            if (!ended) widened += static_cast<wchar16>(byte < 0x80 ? byte : 0xFF00 + byte);
        }
        XmlDocument document;
        const bool loaded = document.LoadBuffer(bytes.data(), bytes.size());
        ASSERT_EQ(test::Outcome(loaded, document.root), OracleParsed(widened)) << "seed " << seed;
    }
}

}  // namespace
}  // namespace mox
