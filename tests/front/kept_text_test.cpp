// Which texts survive saving and opening: an experiment with the exports, held against the rules of the front. Every
// unit takes its turn in every place of a file, alone and at the beginning, in the middle and at the end of a text.
#include "mox_xmlApi/front/kept_text.hpp"

#include <cstdint>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "tests/host/host_support.h"
#include "tests/sanitized_build.h"

namespace {

using host::WideText;
using host::operator""_w;
using mox::Form;
using mox::front::BrokenRule;
using mox::front::FindBrokenRule;
using mox::front::TextPlace;
using mox::front::TextRule;

constexpr std::uint16_t kUcString = 31;  // a record with this type takes every unit

WideText Wide(std::u16string_view text) {
    return {text.begin(), text.end()};
}

// No two of them have the same length, so that all texts of all units differ.
std::vector<WideText> TextsWith(char16_t unit) {
    const std::u16string one(1, unit);
    return {Wide(one), Wide(one + u"bc"), Wide(u"a" + one + u"bcd"), Wide(u"a" + one)};
}

// ---- The places of a file. Each of them writes a text to an entry, and tells whether it is still there.

// Of these records only the named fields are used.
TableEntryValueInfoStruct ValueRecord(const WideText& name) {
    TableEntryValueInfoStruct record;
    name.copy(record.name, name.size());
    record.type = kUcString;
    record.SetVal_w(u"v"_w);
    return record;
}

TableEntryUInfoStruct UiRecord(const WideText& name) {
    TableEntryUInfoStruct record;
    name.copy(record.name, name.size());
    record.type = kUcString;
    record.control = 2;
    return record;
}

void* SectionOf(moxSettings* profile) {
    return xmlWriteProfileSection(profile, u"S"_w, 0, 0, 0, nullptr);
}

void AddUi(moxSettings* profile, const WideText& name, TableEntryUInfoStruct& ui) {
    void* const handle = SectionOf(profile);
    const host::Section section(handle);
    TableEntryValueInfoStruct value = ValueRecord(name);
    EXPECT_TRUE(xmlTableEntryAdd(handle, nullptr, &value, nullptr, 0, 1));
    EXPECT_TRUE(xmlTableEntryAdd(handle, nullptr, &value, &ui, 0, 1));
}

bool GetUi(moxSettings* profile, const WideText& name, TableEntryUInfoStruct& ui) {
    void* const handle = xmlGetProfileSection(profile, u"S"_w, nullptr);
    const host::Section section(handle);
    TableEntryValueInfoStruct value = ValueRecord(name);
    return xmlTableEntryGet(handle, nullptr, &value, &ui);
}

bool IsText(const wchar16* read, const WideText& text) {
    return read != nullptr && text == read;
}

bool HasValue(moxSettings* profile, const wchar16* section, const wchar16* key, const WideText& text) {
    WideText read(text.size() + 16, 0);
    const auto size = static_cast<std::uint32_t>(read.size());
    read.resize(xmlGetProfileString(profile, section, key, read.data(), size, nullptr));
    return read == text;
}

struct Place {
    const char* what;
    TextPlace kind;
    void (*write)(moxSettings* profile, const WideText& name, const WideText& text);
    bool (*has)(moxSettings* profile, const WideText& name, const WideText& text);
};

const Place kValue = {"value", TextPlace::Element,
                      [](moxSettings* profile, const WideText& name, const WideText& text) {
                          EXPECT_EQ(xmlWriteProfileString(profile, u"S"_w, name.c_str(), text.c_str()), 1U);
                      },
                      [](moxSettings* profile, const WideText& name, const WideText& text) {
                          return HasValue(profile, u"S"_w, name.c_str(), text);
                      }};

const Place kKey = {"key", TextPlace::Attribute,
                    [](moxSettings* profile, const WideText& name, const WideText& text) {
                        EXPECT_EQ(xmlWriteProfileString(profile, u"S"_w, text.c_str(), name.c_str()), 1U);
                    },
                    [](moxSettings* profile, const WideText& name, const WideText& text) {
                        return HasValue(profile, u"S"_w, text.c_str(), name);
                    }};

const Place kSection = {"section", TextPlace::Attribute,
                        [](moxSettings* profile, const WideText& name, const WideText& text) {
                            EXPECT_EQ(xmlWriteProfileString(profile, text.c_str(), u"K"_w, name.c_str()), 1U);
                        },
                        [](moxSettings* profile, const WideText& name, const WideText& text) {
                            return HasValue(profile, text.c_str(), u"K"_w, name);
                        }};

const Place kComment = {"comment", TextPlace::Element,
                        [](moxSettings* profile, const WideText& name, const WideText& text) {
                            TableEntryUInfoStruct ui = UiRecord(name);
                            ui.SetComment_w(text.c_str());
                            AddUi(profile, name, ui);
                        },
                        [](moxSettings* profile, const WideText& name, const WideText& text) {
                            TableEntryUInfoStruct ui;
                            return GetUi(profile, name, ui) && IsText(ui.GetComment_w(), text);
                        }};

const Place kShownName = {"displayed name", TextPlace::Attribute,
                          [](moxSettings* profile, const WideText& name, const WideText& text) {
                              TableEntryUInfoStruct ui = UiRecord(name);
                              ui.SetUserName_w(text.c_str());
                              AddUi(profile, name, ui);
                          },
                          [](moxSettings* profile, const WideText& name, const WideText& text) {
                              TableEntryUInfoStruct ui;
                              return GetUi(profile, name, ui) && IsText(ui.GetUserName_w(), text);
                          }};

// A value of presentation data is stored where there is a comment.
const Place kUiValue = {"value of presentation data", TextPlace::Element,
                        [](moxSettings* profile, const WideText& name, const WideText& text) {
                            kComment.write(profile, name, Wide(u"c"));
                            TableEntryUInfoStruct ui = UiRecord(name);
                            ui.SetVal_w(text.c_str());
                            AddUi(profile, name, ui);
                        },
                        [](moxSettings* profile, const WideText& name, const WideText& text) {
                            TableEntryUInfoStruct ui;
                            return GetUi(profile, name, ui) && IsText(ui.GetVal_w(), text);
                        }};

// ---- The experiment

WideText NameOf(std::size_t number) {
    const std::string digits = "k" + std::to_string(number);
    return {digits.begin(), digits.end()};
}

std::string Shown(const Place& place, const WideText& text) {
    return std::string(place.what) + " " + host::Shown(text.c_str());
}

// What an XML program reads: the production Char of XML 1.0.
bool IsXmlUnit(char16_t unit) {
    return unit == 9 || unit == 10 || unit == 13 || (unit >= 0x20 && unit <= 0xD7FF) ||
           (unit >= 0xE000 && unit <= 0xFFFD);
}

void ExpectRule(const BrokenRule& broken, bool survives, bool isXml, const std::string& what) {
    switch (broken.rule) {
        case TextRule::None:
            EXPECT_TRUE(survives && isXml) << what;
            break;
        case TextRule::LeadingSpace:
        case TextRule::LineFeed:
            EXPECT_FALSE(survives) << what;
            break;
        case TextRule::ControlCharacter:
        case TextRule::Noncharacter:
        case TextRule::UnpairedSurrogate:
            EXPECT_FALSE(isXml) << what;
            break;
        case TextRule::NotAscii:
            // Bytes from 0x80 on are read as these units, but are not the UTF-8 that the file promises.
            EXPECT_EQ(survives, broken.unit >= 0xFF80) << what;
            break;
    }
}

// Saves the profile, opens the file, and checks which texts are still there.
void ExpectRulesOf(moxSettings* profile, const Place& place, const std::vector<WideText>& texts,
                   const std::vector<char16_t>& units, bool wide) {
    const host::ScratchFile file;
    ASSERT_EQ(xmlProfileSave(profile, file.Name(), 0, 0, wide ? 1 : 0), 1U);
    const host::Profile opened(xmlProfileNew(file.Name(), nullptr, 0, wide ? 1 : 0));
    const Form form = wide ? Form::Wide : Form::Narrow;
    bool areAllKept = true;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const bool survives = opened != nullptr && place.has(opened, NameOf(i), texts[i]);
        areAllKept = areAllKept && survives;
        ExpectRule(FindBrokenRule(texts[i], place.kind, form), survives, IsXmlUnit(units[i]),
                   Shown(place, texts[i]));
        if (testing::Test::HasFailure()) return;
    }
    if (!areAllKept) return;
    const host::ScratchFile again;
    ASSERT_EQ(xmlProfileSave(opened, again.Name(), 0, 0, wide ? 1 : 0), 1U);
    EXPECT_EQ(again.Bytes(), file.Bytes());
}

// All texts in one document, which a wide file always gives back.
void ExpectWideRules(const Place& place, const std::vector<char16_t>& units) {
    const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    std::vector<WideText> texts;
    std::vector<char16_t> unitOfText;
    for (const char16_t unit : units) {
        for (const WideText& text : TextsWith(unit)) {
            place.write(profile, NameOf(texts.size()), text);
            texts.push_back(text);
            unitOfText.push_back(unit);
        }
    }
    ExpectRulesOf(profile, place, texts, unitOfText, true);
}

// A narrow file can be damaged by one unit, so each text has a document of its own.
void ExpectNarrowRules(const Place& place, const std::vector<char16_t>& units) {
    for (const char16_t unit : units) {
        for (const WideText& text : TextsWith(unit)) {
            const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
            place.write(profile, NameOf(0), text);
            ExpectRulesOf(profile, place, {text}, {unit}, false);
            if (testing::Test::HasFailure()) return;
        }
    }
}

std::vector<char16_t> Units(unsigned first, unsigned last) {
    std::vector<char16_t> units;
    for (unsigned unit = first; unit <= last; ++unit)
        units.push_back(static_cast<char16_t>(unit));
    return units;
}

// Units of every kind: those with a meaning in a file, and the edges of what Unicode keeps for something.
std::vector<char16_t> UnitsOfEveryKind() {
    std::vector<char16_t> units = Units(1, 0x1FF);
    for (const unsigned edge : {0x2028U, 0xD800U, 0xDC00U, 0xE000U, 0xFEFFU, 0xFF80U, 0xFFF0U}) {
        for (const char16_t unit : Units(edge - 16, edge + 15))
            units.push_back(unit);
    }
    return units;
}

// Every unit; under the sanitizers, where that takes most of a minute, those of every kind and one in seven others.
std::vector<char16_t> EveryUnit() {
    if (!kIsSanitized) return Units(1, 0xFFFF);
    const std::vector<char16_t> ofEveryKind = UnitsOfEveryKind();
    std::set<char16_t> units(ofEveryKind.begin(), ofEveryKind.end());  // each once, because they become keys
    for (unsigned unit = 0x200; unit <= 0xFFFF; unit += 7)
        units.insert(static_cast<char16_t>(unit));
    return {units.begin(), units.end()};
}

TEST(FrontKeptText, EveryUnitOfAValueInAWideFile) {
    ExpectWideRules(kValue, EveryUnit());
}

TEST(FrontKeptText, EveryUnitOfAKeyInAWideFile) {
    ExpectWideRules(kKey, EveryUnit());
}

TEST(FrontKeptText, UnitsInTheOtherPlacesOfAWideFile) {
    for (const Place& place : {kSection, kComment, kShownName, kUiValue})
        ExpectWideRules(place, UnitsOfEveryKind());
}

TEST(FrontKeptText, UnitsOfAValueInANarrowFile) {
    ExpectNarrowRules(kValue, UnitsOfEveryKind());
}

TEST(FrontKeptText, UnitsOfAKeyInANarrowFile) {
    ExpectNarrowRules(kKey, UnitsOfEveryKind());
}

TEST(FrontKeptText, UnitsInTheOtherPlacesOfANarrowFile) {
    for (const Place& place : {kSection, kComment, kShownName, kUiValue})
        ExpectNarrowRules(place, Units(1, 0x9F));
}

// Texts in which more than one unit matters.
TEST(FrontKeptText, SequencesInAWideFile) {
    const std::u16string_view sequences[] = {
        u"]]>",        u"<![CDATA[x]]>", u"&amp;", u"&#10;",         u"<!-- x -->",     u"--",
        u"\U0001F600", u"a\U0010FFFFb",  u"a  ",   u"a \t\r \u00A0", u"\u00A0a",        u"\uFEFFa",
        u"a\r\rb",     u"<Value>x",      u"\"'\"", u"</Value>",      u"\u2028 \u0085b", u"true"};
    for (const Place& place : {kValue, kKey, kSection, kComment, kShownName, kUiValue}) {
        const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
        std::vector<WideText> texts;
        for (const std::u16string_view sequence : sequences) {
            place.write(profile, NameOf(texts.size()), Wide(sequence));
            texts.push_back(Wide(sequence));
        }
        for (const WideText& text : texts)
            EXPECT_EQ(FindBrokenRule(text, place.kind, Form::Wide).rule, TextRule::None)
                << Shown(place, text);
        ExpectRulesOf(profile, place, texts, std::vector<char16_t>(texts.size(), u'x'), true);
    }
}

// ---- The rules alone

BrokenRule RuleOf(std::u16string_view text, TextPlace place, Form form = Form::Wide) {
    return FindBrokenRule(Wide(text), place, form);
}

TEST(FrontKeptText, TheFirstBrokenRuleIsFoundWhereverItIs) {
    for (std::size_t before = 0; before < 20; ++before) {
        for (std::size_t after = 0; after < 9; ++after) {
            const std::u16string start(before, u'x');
            const std::u16string end(after, u'~');
            const auto rule = [&](std::u16string_view middle, Form form = Form::Wide) {
                return RuleOf(start + std::u16string(middle) + end, TextPlace::Attribute, form).rule;
            };
            EXPECT_EQ(rule(u""), TextRule::None);
            EXPECT_EQ(rule(u"\u00E4\U0001F600\u4E2D"), TextRule::None);
            EXPECT_EQ(rule(u"\x7F", Form::Narrow), TextRule::None);
            EXPECT_EQ(rule(u"\x80", Form::Narrow), TextRule::NotAscii);
            EXPECT_EQ(rule(u"\x1F"), TextRule::ControlCharacter);
            EXPECT_EQ(rule(u"\t\x1F"), TextRule::ControlCharacter);
            EXPECT_EQ(rule(u"\uFFFE"), TextRule::Noncharacter);
            EXPECT_EQ(rule(std::u16string{0xD800}), TextRule::UnpairedSurrogate);
            EXPECT_EQ(rule(std::u16string{0xDC00, 0xD800}), TextRule::UnpairedSurrogate);
            EXPECT_EQ(rule(std::u16string{0xD83D, 0xDE00, 0xDE00}), TextRule::UnpairedSurrogate);
        }
    }
}

TEST(FrontKeptText, ARuleIsDescribedWithItsUnit) {
    EXPECT_EQ(Describe(RuleOf(u" a", TextPlace::Element)),
              "begins with white space, which is dropped when the file is opened");
    EXPECT_EQ(Describe(RuleOf(u"a\nb", TextPlace::Element)),
              "contains a line feed, so the file would add white space to it");
    EXPECT_EQ(Describe(RuleOf(u"a\x07", TextPlace::Attribute)),
              "contains the control character U+0007, with which other XML programs cannot read the file");
    EXPECT_EQ(Describe(RuleOf(u"\uFFFF", TextPlace::Attribute)),
              "contains U+FFFF, with which other XML programs cannot read the file");
    EXPECT_EQ(
        Describe(RuleOf(std::u16string{0xDC00}, TextPlace::Element)),
        "contains half of a surrogate pair, U+DC00, with which other XML programs cannot read the file");
    EXPECT_EQ(Describe(RuleOf(u"\u00FC", TextPlace::Element, Form::Narrow)),
              "contains U+00FC, and a narrow file keeps 7-bit text only");
    EXPECT_FALSE(RuleOf(u" a\nb", TextPlace::Attribute));
}

}  // namespace
