// Profiles that are made, loaded, saved and exported when memory runs out.
#include <string>
#include <vector>

#include "tests/faults/failing_memory_profile_support.h"
#include "tests/faults/failing_memory_support.h"
#include "tests/faults/filled_pipe_support.h"
#include "tests/faults/memory_script_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

using host::operator""_w;

// A document that uses every kind of storage: deeper, longer and with more attributes than the inline buffers hold.
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
