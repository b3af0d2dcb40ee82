// The profile family when memory runs out.
#include <string>
#include <vector>

#include "tests/faults/failing_memory_support.h"
#include "tests/faults/filled_pipe_support.h"
#include "tests/faults/memory_script_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

using host::operator""_w;

constexpr std::string_view kDocument =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">\n"
    "<!-- note -->"
    "<Table name=\"A\" first_id=\"7\" type=\"000A\" editable=\"true\" eud=\"true\">"
    "<Var name=\"k\" type=\"string\" array=\"\" eud=\"true\"><Value>one &amp; two</Value></Var>"
    "<Var name=\"hex\" type=\"byte\" array=\"array\"><Value>00102030405060708090A0B0C0D0E0F0</Value></Var>"
    "<Var name=\"ui\" type=\"long\"><UI control=\"num\" prov_index=\"3\" prov_owner=\"dwg\" name=\"Shown\">"
    "<Comment>for people</Comment><Value>12</Value></UI></Var>"
    "</Table>"
    "<Table name=\"B\"/>"
    "<Table name=\"A\" type=\"000B\"><Var name=\"k2\" type=\"long\"><Value>5</Value></Var></Table>"
    "</Settings>\n";

void LoadDocument(World& world) {
    world.LoadProfile(kDocument);
}

const host::WideText& LongText() {
    static const host::WideText text(3000, 'v');
    return text;
}

// A document that asks for everything: deeper, longer and with more attributes than fits beside it at once.
std::string LargeDocument() {
    std::string text(kDocument);
    text.append("<a");
    for (int i = 0; i < 40; ++i)
        text.append(" x").append(std::to_string(i)).append("=\"&lt;\"");
    text.append(">");
    for (int i = 0; i < 40; ++i)
        text.append("<b>t");
    for (int i = 0; i < 150; ++i)
        text.append("<c/>u");
    for (int i = 0; i < 40; ++i)
        text.append("</b>");
    return text.append("</a>\n").append(std::string(5000, ' '));
}

Call New(const char* what, const wchar16* path, std::string_view buffer, std::int32_t wide) {
    return {what, [](World&) {},
            [=](World& world) {
                const char* text = buffer.empty() ? nullptr : buffer.data();
                world.profile = xmlProfileNew(path, text, static_cast<std::int32_t>(buffer.size()), wide);
                return world.profile != nullptr;
            }};
}

TEST(FailingMemory, ProfileIsMadeWholeOrNotAtAll) {
    FailMemoryIn("xmlProfileNew", New("new", nullptr, "", 0));
    FailMemoryIn("xmlProfileNew", New("memory", nullptr, kDocument, 0));
    FailMemoryIn("xmlProfileNew", New("memory without a root", nullptr, "<a/>", 0));
    const std::string large = LargeDocument();
    FailMemoryIn("xmlProfileNew", New("large memory", nullptr, large, 0));
}

TEST(FailingMemory, ProfileIsLoadedFromAFileWholeOrNotAtAll) {
    const host::ScratchFile file;
    for (const std::string& text : {std::string(kDocument), LargeDocument()}) {
        host::WriteBytes(file.Path(), text);
        FailMemoryIn("xmlProfileNew", New("narrow file", file.Name(), "", 0));
        host::WriteBytes(file.Path(), host::WideFile(text));
        FailMemoryIn("xmlProfileNew", New("wide file", file.Name(), "", 1));
    }
}

TEST(FailingMemory, LoadSurvivesAtEveryPlaceOfTheFirstBlockOfMemory) {
    // Each two units of white space move what follows by one place; small elements need more than was
    // reserved.
    std::string text(kDocument);
    for (int i = 0; i < 30; ++i)
        text.append("<a/>\n");
    for (std::size_t pad = 0; pad < 2400; pad += kStep) {
        const std::string padded = text + std::string(pad, ' ');
        FailMemoryIn("xmlProfileNew", New("padded memory", nullptr, padded, 0));
    }
}

TEST(FailingMemory, TextThatIsNoDocumentGivesNullOrBadAlloc) {
    const std::string broken = LargeDocument() + "<a><b/></a ";
    for (std::uint64_t first = 1;; ++first) {
        const std::int64_t before = LiveBlocks();
        moxSettings* profile = nullptr;
        FailingMemory memory(first, Failing::Once);
        try {
            profile = xmlProfileNew(nullptr, broken.data(), static_cast<std::int32_t>(broken.size()), 0);
        } catch (const std::bad_alloc&) {
        }
        memory.Stop();
        ASSERT_EQ(profile, nullptr);
        ASSERT_EQ(LiveBlocks(), before) << first;
        if (FailingMemory::Injected() == 0) break;
    }
}

#if !defined(_WIN32)

TEST(FailingMemory, ProfileIsLoadedFromAPipeOfUnknownLengthWholeOrNotAtAll) {
    for (const bool wide : {false, true}) {
        const std::string text = LargeDocument() + std::string(12000, ' ');
        const std::string bytes = wide ? host::WideFile(text) : text;
        FilledPipe pipe;
        FailMemoryIn("xmlProfileNew", {wide ? "wide pipe" : "narrow pipe", [&](World&) { pipe.Fill(bytes); },
                                       [&](World& world) {
                                           world.profile =
                                               xmlProfileNew(pipe.Path(), nullptr, 0, wide ? 1 : 0);
                                           return world.profile != nullptr;
                                       }});
    }
}

#endif

TEST(FailingMemory, DisposeNeedsNone) {
    ExpectNoMemoryUse("xmlProfileDispose", {"dispose", &LoadDocument, [](World& world) {
                                                xmlProfileDispose(&world.profile);
                                                return world.profile == nullptr;
                                            }});
}

// `old` is what the file holds before; without it there is none, and none may be made by a call that fails.
void FailMemoryInSave(const char* what, std::string_view text, std::uint32_t mode, std::int32_t wide,
                      std::string_view old) {
    const host::ScratchFile file;
    const auto prepare = [&](World& world) {
        world.LoadProfile(text);
        std::filesystem::remove(file.Path());
        if (!old.empty()) host::WriteBytes(file.Path(), old);
    };
    const auto save = [&](World& world) {
        return xmlProfileSave(world.profile, file.Name(), mode, 0, wide) == 1;
    };
    const auto isWritten = [&](World&) { EXPECT_NE(file.Bytes(), old); };
    const auto isOld = [&](World&) {
        EXPECT_EQ(file.Exists(), !old.empty());
        if (file.Exists()) {
            EXPECT_EQ(file.Bytes(), old);
        }
    };
    FailMemoryIn("xmlProfileSave", {what, prepare, save, isWritten, isOld});
}

TEST(FailingMemory, SaveLeavesTheOldFileWhole) {
    std::string escaped = LargeDocument() + "<d>";
    for (int i = 0; i < 20000; ++i)
        escaped.append("&amp;");
    escaped.append("</d>");
    for (const std::int32_t wide : {0, 1}) {
        FailMemoryInSave("save", kDocument, 0, wide, "what was saved before");
        FailMemoryInSave("large save", escaped, 0, wide, "what was saved before");
        FailMemoryInSave("first save", kDocument, 0, wide, "");
    }
}

TEST(FailingMemory, ExportLeavesTheOldFileWhole) {
    for (const std::uint32_t mode : {1U, 2U, 3U})
        FailMemoryInSave("export", kDocument, mode, 0, "what was saved before");
}

TEST(FailingMemory, ExportSurvivesAtEveryPlaceOfItsFirstBlockOfMemory) {
    // The longer the first section's name, the earlier the block is full.
    for (std::size_t length = 1; length < 1900; length += kStep) {
        std::string text(kDocument);
        text.insert(text.find("<Table"), "<Table name=\"" + std::string(length, 'n') + "\"/>");
        FailMemoryInSave("export of values", text, 2, 0, "");
        FailMemoryInSave("export of presentation data", text, 1, 0, "");
    }
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
        void* first = xmlEnumProfileSections(world.profile, &world.enumeration, nullptr, 0, nullptr);
        xmlTableDispose(&first);
    };
    FailMemoryIn("xmlEnumProfileSections", {"second step", start, step, {}, failed});
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

TEST(FailingMemory, IsMetByTheLibraryAndItsCompanions) {
    for (const bool companion : {false, true}) {
        TableEntryValueInfoStruct record;
        bool met = false;
        FailingMemory memory(1, Failing::FromThenOn);
        try {
            if (companion) {
                record.SetVal("a text that fits into no string object by itself");
            } else {
                xmlProfileNew(nullptr, nullptr, 0, 0);
            }
        } catch (const std::bad_alloc&) {
            met = true;
        }
        memory.Stop();
        EXPECT_TRUE(met);
    }
}

}  // namespace
}  // namespace faults
