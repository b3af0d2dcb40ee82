// Sections and keys of a profile when memory runs out.
#include <string>

#include "tests/faults/failing_memory_profile_support.h"
#include "tests/faults/failing_memory_support.h"
#include "tests/faults/memory_script_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

using host::operator""_w;

const host::WideText& LongText() {
    static const host::WideText text(3000, 'v');
    return text;
}

TEST(FailingMemory, SectionIsHandedOutOrNot) {
    FailMemoryIn("xmlGetProfileSection", {"section", &LoadDocument, [](World& world) {
                                              xmlTableDispose(&world.section);
                                              world.section =
                                                  xmlGetProfileSection(world.profile, "A"_w, nullptr);
                                              return world.section != nullptr;
                                          }});
}

TEST(FailingMemory, EnumerationStaysWhereItIs) {
    std::uintptr_t before = 0;
    const auto step = [&](World& world) {
        before = world.enumeration;
        wchar16 name[8];
        world.section = xmlEnumProfileSections(world.profile, &world.enumeration, name, 8, nullptr);
        return world.section != nullptr;
    };
    const auto failed = [&](World& world) { EXPECT_EQ(world.enumeration, before); };
    FailMemoryIn("xmlEnumProfileSections", {"first step", &LoadDocument, step, {}, failed});
    const auto start = [](World& world) {
        LoadDocument(world);
        world.section = xmlEnumProfileSections(world.profile, &world.enumeration, nullptr, 0, nullptr);
    };
    // The first handle stays in use: a released one would serve again, without memory.
    const auto secondStep = [&](World& world) {
        before = world.enumeration;
        void* second = xmlEnumProfileSections(world.profile, &world.enumeration, nullptr, 0, nullptr);
        const bool isFound = second != nullptr;
        xmlTableDispose(&second);
        return isFound;
    };
    FailMemoryIn("xmlEnumProfileSections", {"second step", start, secondStep, {}, failed});
    ExpectNoMemoryUse(
        "xmlEnumProfileSections",
        {"last step", [](World& world) { world.profile = xmlProfileNew(nullptr, nullptr, 0, 0); },
         [&](World& world) { return !step(world) && world.enumeration == 0; }});
}

Call WriteSection(const char* what, const wchar16* name) {
    return {what, &LoadDocument,
            [=](World& world) {
                world.section = xmlWriteProfileSection(world.profile, name, 1, 4000000000U, 0xABCD, nullptr);
                return world.section != nullptr;
            },
            [=](World& world) {
                void* found = xmlGetProfileSection(world.profile, name, nullptr);
                EXPECT_NE(found, nullptr);
                xmlTableDispose(&found);
            }};
}

TEST(FailingMemory, SectionIsWrittenOrLeftUsable) {
    FailMemoryIn("xmlWriteProfileSection", WriteSection("existing section", "A"_w));
    FailMemoryIn("xmlWriteProfileSection", WriteSection("section without attributes", "B"_w));
    FailMemoryIn("xmlWriteProfileSection", WriteSection("new section", "New"_w));
    FailMemoryIn("xmlWriteProfileSection", WriteSection("new section, long name", LongText().c_str()));
}

TEST(FailingMemory, SectionThatCannotBeMadeIsNotThere) {
    Call call = WriteSection("new section", "New"_w);
    call.checkFailed = [](World& world) {
        void* found = xmlGetProfileSection(world.profile, "New"_w, nullptr);
        void* half = xmlGetProfileSection(world.profile, ""_w, nullptr);
        // All but the handle may have been done when memory ran out: then it is there with all that was asked
        // for.
        if (found != nullptr) {
            const std::string bytes = host::SaveBytes(world.profile);
            EXPECT_NE(bytes.find("name=\"New\" first_id=\"4000000000\" type=\"ABCD\" editable=\"true\"/>"),
                      std::string::npos);
        }
        EXPECT_EQ(half, nullptr);
        xmlTableDispose(&found);
        xmlTableDispose(&half);
    };
    FailMemoryIn("xmlWriteProfileSection", call);
}

TEST(FailingMemory, NumbersAndTextsAreReadWithoutAny) {
    ExpectNoMemoryUse("xmlGetProfileInt", {"number", &LoadDocument, [](World& world) {
                                               return xmlGetProfileInt(world.profile, "A"_w, "ui"_w, -1) ==
                                                      12;
                                           }});
    ExpectNoMemoryUse("xmlGetProfileString", {"text", &LoadDocument, [](World& world) {
                                                  wchar16 text[32];
                                                  return xmlGetProfileString(world.profile, "A"_w, "k"_w,
                                                                             text, 32, "default"_w) == 9;
                                              }});
}

TEST(FailingMemory, BytesAreReadOrNot) {
    FailMemoryIn("xmlGetProfileData", {"bytes", &LoadDocument, [](World& world) {
                                           unsigned char bytes[32];
                                           return xmlGetProfileData(world.profile, "A"_w, "hex"_w, bytes,
                                                                    32) == 16;
                                       }});
}

Call WriteText(const char* what, const wchar16* section, const wchar16* key, host::WideText value) {
    return {
        what, &LoadDocument,
        [=](World& world) { return xmlWriteProfileString(world.profile, section, key, value.c_str()) == 1; },
        [=](World& world) { EXPECT_EQ(host::ReadText(world.profile, section, key), value); }};
}

TEST(FailingMemory, TextIsWrittenOrLeftUsable) {
    FailMemoryIn("xmlWriteProfileString", WriteText("new section", "New"_w, "k"_w, "value"_w));
    FailMemoryIn("xmlWriteProfileString", WriteText("new key", "A"_w, "new"_w, "value"_w));
    FailMemoryIn("xmlWriteProfileString", WriteText("first key", "B"_w, "new"_w, "value"_w));
    FailMemoryIn("xmlWriteProfileString", WriteText("longer text", "A"_w, "k"_w, "a text that is longer"_w));
    FailMemoryIn("xmlWriteProfileString", WriteText("very long text", "A"_w, "k"_w, LongText()));
    FailMemoryIn("xmlWriteProfileString", WriteText("key without a value", "A"_w, "ui"_w, "13"_w));
    Call shrink = WriteText("much shorter text", "A"_w, "k"_w, "short"_w);
    shrink.prepare = [](World& world) {
        LoadDocument(world);
        xmlWriteProfileString(world.profile, "A"_w, "k"_w, host::WideText(9000, 'v').c_str());
    };
    FailMemoryIn("xmlWriteProfileString", shrink);
}

TEST(FailingMemory, ValueThatCannotBeChangedStays) {
    for (const host::WideText& value : {host::WideText("a text that is longer"_w), LongText()}) {
        Call call = WriteText("existing key", "A"_w, "k"_w, value);
        call.checkFailed = [value](World& world) {
            const host::WideText found = host::ReadText(world.profile, "A"_w, "k"_w);
            // The value is there before the last thing that a write does, which is to empty "loc".
            EXPECT_TRUE(found == "one & two"_w || found == value) << host::Shown(found.c_str());
        };
        FailMemoryIn("xmlWriteProfileString", call);
    }
}

TEST(FailingMemory, NumberIsWrittenOrLeftUsable) {
    const auto write = [](const char* what, const wchar16* section, const wchar16* key) {
        return Call{
            what, &LoadDocument,
            [=](World& world) { return xmlWriteProfileInt(world.profile, section, key, -123456) == 1; },
            [=](World& world) { EXPECT_EQ(xmlGetProfileInt(world.profile, section, key, 0), -123456); }};
    };
    FailMemoryIn("xmlWriteProfileInt", write("new section", "New"_w, "n"_w));
    FailMemoryIn("xmlWriteProfileInt", write("new key", "A"_w, "n"_w));
    FailMemoryIn("xmlWriteProfileInt", write("existing key", "A"_w, "ui"_w));
}

TEST(FailingMemory, BytesAreWrittenOrLeftUsable) {
    const std::string bytes(1500, 'b');
    for (const std::uint32_t size : {4U, 40U, 1500U}) {
        FailMemoryIn(
            "xmlWriteProfileData",
            {"bytes", &LoadDocument,
             [&](World& world) {
                 return xmlWriteProfileData(world.profile, "A"_w, "bytes"_w, bytes.data(), size) == 1;
             },
             [&](World& world) {
                 std::string back(size, '\0');
                 EXPECT_EQ(xmlGetProfileData(world.profile, "A"_w, "bytes"_w, back.data(), size), size);
                 EXPECT_EQ(back, bytes.substr(0, size));
             }});
    }
}

TEST(FailingMemory, KeysAndSectionsAreDeletedWithoutAny) {
    const auto erase = [](const char* exported, auto call) {
        ExpectNoMemoryUse(exported,
                          {"delete", &LoadDocument, [call](World& world) { return call(world) == 1U; }});
    };
    erase("xmlWriteProfileString",
          [](World& world) { return xmlWriteProfileString(world.profile, "A"_w, "k"_w, nullptr); });
    erase("xmlWriteProfileString",
          [](World& world) { return xmlWriteProfileString(world.profile, "A"_w, nullptr, nullptr); });
    erase("xmlWriteProfileInt",
          [](World& world) { return xmlWriteProfileInt(world.profile, "A"_w, nullptr, 0); });
    erase("xmlWriteProfileData",
          [](World& world) { return xmlWriteProfileData(world.profile, "A"_w, "k"_w, nullptr, 0); });
}

}  // namespace
}  // namespace faults
