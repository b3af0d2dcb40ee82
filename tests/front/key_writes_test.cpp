// Every write of a value, to every kind of key, with every kind of text, in both forms: what succeeds is read back by the
// same object and from the saved file, and what fails changes nothing.
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "tests/front/front_support.h"

namespace {

using front_tests::First;
using front_tests::FirstEntry;
using front_tests::kFirsts;
using front_tests::ProfileWith;
using front_tests::SavedBytes;
using mox::Form;
using mox::Problem;
using mox::Profile;
using mox::Reason;
using mox::Section;

// The key K of the section S.
const char* const kKeys[] = {
    "",
    "<Var name=\"K\"/>",
    "<Var name=\"K\" type=\"float\"><Value>1</Value></Var>",
    "<Var name=\"K\" type=\"long\"/>",
    "<Var name=\"K\" type=\"string\" eud=\"true\"><Value>1</Value></Var>",
    "<Var name=\"K\" type=\"string\" Value=\"1\"/>",
    "<Var name=\"K\" type=\"string\"><Value>1</Value><UI control=\"num\"/></Var>",
    "<Var name=\"K\" type=\"string\"><Value>1</Value><UI control=\"num\"><Value>2</Value></UI></Var>",
    "<Var name=\"K\" type=\"string\"><Value/><UI control=\"num\"><Value>2</Value></UI></Var>",
    "<Var name=\"K\" type=\"ucstring\"><UI control=\"num\"><Comment>c</Comment><Value>2</Value></UI></Var>",
    "<Var name=\"K\" type=\"bool\"><UI control=\"num\" Value=\"2\"/></Var>",
    "<Var name=\"K\" type=\"string\"/><Var name=\"K\" type=\"string\"><Value>1</Value></Var>",
};

const char* const kTexts[] = {
    "", "x", "12", " x", "x\n", "x ", "\x07", "a\tb\r", "]]>&", "\xC3\xA4<'\">", "\xF0\x9F\x98\x80"};

struct Call {
    const char* what;
    bool (*write)(Profile& profile, const std::string& text, Problem* problem);
    bool isEffective;  // reads of the key return it, not only those of the entry
};

std::optional<Section> SectionOf(Profile& profile) {
    return profile.findSection("S");
}

const Call kCalls[] = {
    {"setString",
     [](Profile& profile, const std::string& text, Problem* problem) {
         return profile.setString("S", "K", text, problem);
     },
     true},
    {"set",
     [](Profile& profile, const std::string& text, Problem* problem) {
         return profile.set("S", "K", text, problem);
     },
     true},
    {"set of a section",
     [](Profile& profile, const std::string& text, Problem* problem) {
         return SectionOf(profile)->set("K", text, problem);
     },
     true},
    {"setValue",
     [](Profile& profile, const std::string& text, Problem* problem) {
         return SectionOf(profile)->setValue("K", text, mox::Eud::DoNotSet, problem);
     },
     false},
    {"setValueUnlessEud",
     [](Profile& profile, const std::string& text, Problem* problem) {
         return SectionOf(profile)->setValueUnlessEud("K", text, mox::Eud::Set, problem);
     },
     false},
    {"put",
     [](Profile& profile, const std::string& text, Problem* problem) {
         return SectionOf(profile)->put({"K", text}, mox::Eud::DoNotSet, problem);
     },
     false},
    {"add",
     [](Profile& profile, const std::string& text, Problem* problem) {
         return SectionOf(profile)->add({"K", text}, mox::Eud::DoNotSet, problem);
     },
     false},
};

// Whether the object reads the text that was written.
bool Holds(const Profile& profile, const Call& call, const std::string& text) {
    if (call.isEffective) return profile.getString("S", "K") == text;
    const auto entry = profile.findSection("S")->find("K");
    return entry.has_value() &&
           (entry->value == text || (entry->value == "" && entry->effectiveValue() == text));
}

// Whether the file keeps the text as a value.
bool IsKept(const std::string& text, Form form) {
    const bool isAscii = text.find_first_of("\xC3\xF0") == std::string::npos;
    return text != " x" && text != "x\n" && text != "\x07" && (isAscii || form == Form::Wide);
}

TEST(FrontKeyWrites, WhatSucceedsIsReadBackAndWhatFailsChangesNothing) {
    std::size_t written = 0;
    std::size_t refused = 0;
    for (const Form form : {Form::Wide, Form::Narrow}) {
        for (const Call& call : kCalls) {
            for (const First first : kFirsts) {
                for (const char* key : kKeys) {
                    for (const std::string text : kTexts) {
                        SCOPED_TRACE(std::string(call.what) + " '" + text + "': " + FirstEntry(first) + key);
                        Profile profile = ProfileWith(FirstEntry(first) + key);
                        profile.setForm(form);
                        const std::string before = SavedBytes(profile);
                        Problem problem;
                        const bool isWritten = call.write(profile, text, &problem);
                        EXPECT_EQ(isWritten, !problem) << problem.message;
                        if (!isWritten) {
                            ++refused;
                            EXPECT_EQ(SavedBytes(profile), before);
                            EXPECT_EQ(problem.reason == Reason::NotKept,
                                      !IsKept(text, form) && problem.reason != Reason::NameTaken)
                                << problem.message;
                            continue;
                        }
                        ++written;
                        EXPECT_TRUE(IsKept(text, form));
                        EXPECT_TRUE(Holds(profile, call, text));
                        const auto bytes = profile.toBytes(form);
                        ASSERT_TRUE(bytes.has_value());
                        mox::OpenOptions options;
                        options.form = form;
                        const auto opened = Profile::parse(*bytes, options);
                        ASSERT_TRUE(opened.has_value());
                        EXPECT_TRUE(Holds(*opened, call, text));
                        if (testing::Test::HasFailure()) return;
                    }
                }
            }
        }
    }
    EXPECT_EQ(written, 2210U);
    EXPECT_EQ(refused, 3334U);
}

}  // namespace
