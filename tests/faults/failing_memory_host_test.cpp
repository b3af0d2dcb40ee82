// mox_host when memory runs out: each allocation under each of its functions fails in turn, alone and with all that
// follow. Each failure comes back as a status; nothing is left of the call, and nothing of the document is lost.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "mox_host/mox_host.h"
#include "tests/c_host/sized.h"
#include "tests/faults/failing_memory_support.h"

namespace faults {
namespace {

// Long enough for memory of its own wherever it is copied to.
#define LONG "a text that takes some memory of its own, wherever it is copied"

constexpr std::string_view kSettings =
    "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\"><Table name=\"S\">"
    "<Var name=\"K\" type=\"long\" id=\"4\"><Value>1</Value><UI control=\"num\" name=\"" LONG
    "\"><Comment>c</Comment></UI></Var><Var name=\"L\" type=\"string\"><Value>00FF</Value></Var>"
    "<Var name=\"Twice\" type=\"long\"><Value>1</Value><Value>2</Value></Var></Table></Settings>\n";

// The host: a document, a problem, and one variable for each output.
struct Host {
    mox_document* document = nullptr;
    mox_problem* problem = nullptr;
    std::string path;

    mox_document* made = nullptr;
    mox_list* list = nullptr;
    mox_tree* tree = nullptr;
    void* bytes = nullptr;
    size_t size = 0;
    int64_t integer = 0;
    double number = 0;
    int32_t truth = 0;
    char buffer[100] = "";

    // Gives back what a call has given.
    void FreeOutputs() {
        mox_document_free(made);
        mox_list_free(list);
        mox_tree_free(tree);
        mox_free(bytes);
        made = nullptr;
        list = nullptr;
        tree = nullptr;
        bytes = nullptr;
        size = 0;
        integer = 0;
        number = 0;
        truth = 0;
        buffer[0] = '\0';
    }
    bool HasNoOutputs() const {
        return made == nullptr && list == nullptr && tree == nullptr && bytes == nullptr && size == 0 &&
               integer == 0 && number == 0 && truth == 0 && buffer[0] == '\0';
    }
};

struct HostCall {
    const char* name;
    mox_status expected;
    std::function<mox_status(Host&)> call;
};

using c_host::Sized;

mox_entry NewEntry(const char* name, size_t size) {
    auto entry = Sized<mox_entry>();
    entry.type = MOX_TYPE_STRING;
    entry.name = name;
    entry.name_size = size;
    entry.value = LONG;
    entry.value_size = sizeof LONG - 1;
    entry.has_ui = 1;
    entry.control = MOX_CONTROL_TEXT;
    entry.comment = LONG;
    entry.comment_size = sizeof LONG - 1;
    return entry;
}

// Each function that can fail for want of memory, in the ways that differ.
const std::vector<HostCall>& Calls() {
    static const std::vector<HostCall> calls = {
        {"problem_new", MOX_OK,
         [](Host&) {
             mox_problem* problem = nullptr;
             const mox_status status = mox_problem_new(&problem);
             mox_problem_free(problem);
             return status;
         }},
        {"new_settings", MOX_OK, [](Host& h) { return mox_new_settings(&h.made, h.problem); }},
        {"new_table", MOX_OK,
         [](Host& h) { return mox_new_table(MOX_STR(LONG), nullptr, &h.made, h.problem); }},
        {"new_table refused", MOX_INVALID_TEXT,
         [](Host& h) { return mox_new_table(MOX_STR(LONG "\xFF"), nullptr, &h.made, h.problem); }},
        {"open", MOX_OK,
         [](Host& h) {
             return mox_open(h.path.data(), h.path.size(), MOX_SETTINGS, nullptr, &h.made, h.problem);
         }},
        {"open refused", MOX_WRONG_KIND,
         [](Host& h) {
             return mox_open(h.path.data(), h.path.size(), MOX_TABLE, nullptr, &h.made, h.problem);
         }},
        {"import", MOX_OK,
         [](Host& h) {
             auto options = Sized<mox_open_options>();
             options.encoding = MOX_ENCODING_LATIN1;
             return mox_open(h.path.data(), h.path.size(), MOX_SETTINGS, &options, &h.made, h.problem);
         }},
        {"parse", MOX_OK,
         [](Host& h) {
             return mox_parse(kSettings.data(), kSettings.size(), MOX_SETTINGS, nullptr, &h.made, h.problem);
         }},
        {"parse refused", MOX_SYNTAX,
         [](Host& h) { return mox_parse("<" LONG, 40, MOX_SETTINGS, nullptr, &h.made, h.problem); }},
        {"parse table", MOX_OK,
         [](Host& h) {
             return mox_parse(MOX_STR("<Table name=\"T\"/>\n"), MOX_TABLE, nullptr, &h.made, h.problem);
         }},
        {"save", MOX_OK,
         [](Host& h) {
             auto options = Sized<mox_save_options>();
             options.flags = MOX_SAVE_OVERWRITE;
             return mox_save(h.document, h.path.data(), h.path.size(), &options, h.problem);
         }},
        {"save refused", MOX_CHANGED,
         [](Host& h) { return mox_save(h.document, h.path.data(), h.path.size(), nullptr, h.problem); }},
        {"to_bytes", MOX_OK,
         [](Host& h) { return mox_to_bytes(h.document, nullptr, &h.bytes, &h.size, h.problem); }},
        {"to_bytes UTF-8", MOX_OK,
         [](Host& h) {
             auto options = Sized<mox_save_options>();
             options.form = MOX_FORM_UTF8;
             return mox_to_bytes(h.document, &options, &h.bytes, &h.size, h.problem);
         }},
        {"section_names", MOX_OK, [](Host& h) { return mox_section_names(h.document, &h.list, h.problem); }},
        {"section_get_info", MOX_OK,
         [](Host& h) {
             auto info = Sized<mox_section_info>();
             return mox_section_get_info(h.document, MOX_STR("S"), &info, h.problem);
         }},
        {"make_section", MOX_OK,
         [](Host& h) { return mox_make_section(h.document, MOX_STR(LONG), nullptr, h.problem); }},
        {"remove_section", MOX_NO_SUCH_SECTION,
         [](Host& h) { return mox_remove_section(h.document, MOX_STR(LONG LONG), h.problem); }},
        {"entry_names", MOX_OK,
         [](Host& h) { return mox_entry_names(h.document, MOX_STR("S"), &h.list, h.problem); }},
        {"contains", MOX_OK,
         [](Host& h) {
             return mox_contains(h.document, MOX_STR("S"), MOX_STR(LONG LONG), &h.truth, h.problem);
         }},
        {"get_text", MOX_OK,
         [](Host& h) {
             return mox_get_text(h.document, MOX_STR("S"), MOX_STR("L"), h.buffer, sizeof h.buffer, nullptr,
                                 h.problem);
         }},
        {"get_text refused", MOX_NO_SUCH_KEY,
         [](Host& h) {
             return mox_get_text(h.document, MOX_STR("S"), MOX_STR(LONG LONG), h.buffer, 9, nullptr,
                                 h.problem);
         }},
        {"get_int", MOX_WRONG_TYPE,
         [](Host& h) { return mox_get_int(h.document, MOX_STR("S"), MOX_STR(LONG), &h.integer, h.problem); }},
        {"get_double", MOX_WRONG_TYPE,
         [](Host& h) {
             return mox_get_double(h.document, MOX_STR("S"), MOX_STR(LONG), &h.number, h.problem);
         }},
        {"get_bool", MOX_WRONG_TYPE,
         [](Host& h) { return mox_get_bool(h.document, MOX_STR("S"), MOX_STR(LONG), &h.truth, h.problem); }},
        {"get_bytes", MOX_OK,
         [](Host& h) {
             return mox_get_bytes(h.document, MOX_STR("S"), MOX_STR("L"), h.buffer, sizeof h.buffer, nullptr,
                                  h.problem);
         }},
        {"set_text", MOX_OK,
         [](Host& h) {
             return mox_set_text(h.document, MOX_STR("S"), MOX_STR("L"), MOX_STR(LONG LONG), h.problem);
         }},
        {"set_text new", MOX_OK,
         [](Host& h) {
             return mox_set_text(h.document, MOX_STR("N"), MOX_STR("N"), MOX_STR(LONG), h.problem);
         }},
        {"set_int", MOX_OK,
         [](Host& h) {
             return mox_set_int(h.document, MOX_STR("S"), MOX_STR("I"), 5, MOX_TYPE_LONG, h.problem);
         }},
        {"set_int refused", MOX_AMBIGUOUS,
         [](Host& h) {
             return mox_set_int(h.document, MOX_STR("S"), MOX_STR("Twice"), 5, MOX_TYPE_LONG, h.problem);
         }},
        {"set_double", MOX_OK,
         [](Host& h) { return mox_set_double(h.document, MOX_STR("S"), MOX_STR("D"), 0.1, h.problem); }},
        {"set_bool", MOX_OK,
         [](Host& h) { return mox_set_bool(h.document, MOX_STR("S"), MOX_STR("B"), 1, h.problem); }},
        {"set_bytes", MOX_OK,
         [](Host& h) { return mox_set_bytes(h.document, MOX_STR("S"), MOX_STR("H"), LONG, 40, h.problem); }},
        {"remove", MOX_NO_SUCH_KEY,
         [](Host& h) { return mox_remove(h.document, MOX_STR("S"), MOX_STR(LONG LONG), 0, h.problem); }},
        {"rename", MOX_OK,
         [](Host& h) {
             return mox_rename(h.document, MOX_STR("S"), MOX_STR("L"), MOX_STR(LONG "L"), h.problem);
         }},
        {"rename refused", MOX_NAME_TAKEN,
         [](Host& h) { return mox_rename(h.document, MOX_STR("S"), MOX_STR("L"), MOX_STR("K"), h.problem); }},
        {"clear", MOX_OK, [](Host& h) { return mox_clear(h.document, MOX_STR("S"), h.problem); }},
        {"entries", MOX_OK,
         [](Host& h) { return mox_entries(h.document, MOX_STR("S"), &h.list, h.problem); }},
        {"find_entry", MOX_OK,
         [](Host& h) { return mox_find_entry(h.document, MOX_STR("S"), MOX_STR("K"), &h.list, h.problem); }},
        {"count_unreadable", MOX_OK,
         [](Host& h) {
             size_t count = 0;
             return mox_count_unreadable(h.document, MOX_STR("S"), &count, h.problem);
         }},
        {"add_entry", MOX_OK,
         [](Host& h) {
             const mox_entry entry = NewEntry(LONG "E", sizeof LONG);
             return mox_add_entry(h.document, MOX_STR("S"), nullptr, 0, &entry, 0, h.problem);
         }},
        {"add_entry before", MOX_OK,
         [](Host& h) {
             const mox_entry entry = NewEntry("E", 1);
             return mox_add_entry(h.document, MOX_STR("S"), MOX_STR("L"), &entry, 0, h.problem);
         }},
        {"put_entry", MOX_OK,
         [](Host& h) {
             const mox_entry entry = NewEntry("L", 1);
             return mox_put_entry(h.document, MOX_STR("S"), &entry, 0, h.problem);
         }},
        {"set_value", MOX_OK,
         [](Host& h) {
             return mox_set_value(h.document, MOX_STR("S"), MOX_STR("L"), MOX_STR(LONG), 0, h.problem);
         }},
        {"set_eud", MOX_OK,
         [](Host& h) { return mox_set_eud(h.document, MOX_STR("S"), MOX_STR("L"), 1, h.problem); }},
        {"set_comment", MOX_OK,
         [](Host& h) {
             return mox_set_comment(h.document, MOX_STR("S"), MOX_STR("K"), MOX_STR(LONG), h.problem);
         }},
        {"set_shown_name", MOX_OK,
         [](Host& h) {
             return mox_set_shown_name(h.document, MOX_STR("S"), MOX_STR("K"), MOX_STR("s"), h.problem);
         }},
        {"set_provider", MOX_OK,
         [](Host& h) {
             return mox_set_provider(h.document, MOX_STR("S"), MOX_STR("K"), MOX_OWNER_APP, 7, h.problem);
         }},
        {"read_file", MOX_OK,
         [](Host& h) { return mox_read_file(h.path.data(), h.path.size(), &h.bytes, &h.size, h.problem); }},
        {"diagnose", MOX_OK,
         [](Host& h) {
             return mox_diagnose(kSettings.data(), kSettings.size(), 0, MOX_DIAGNOSE_VALUES, &h.list,
                                 h.problem);
         }},
        {"tree_parse", MOX_OK,
         [](Host& h) { return mox_tree_parse(kSettings.data(), kSettings.size(), 0, &h.tree, h.problem); }},
    };
    return calls;
}

// The names of the entries and their values, in the order of the document.
std::vector<std::string> Shown(const mox_document* document) {
    mox_list* list = nullptr;
    EXPECT_EQ(mox_entries(document, MOX_STR("S"), &list, nullptr), MOX_OK);
    std::vector<std::string> shown;
    for (size_t i = 0; i < mox_list_count(list); ++i) {
        auto entry = Sized<mox_entry>();
        EXPECT_EQ(mox_list_entry(list, i, &entry), MOX_OK);
        shown.push_back(std::string(entry.name) + "=" + entry.value + "/" +
                        (entry.has_ui != 0 ? entry.comment : "-"));
    }
    mox_list_free(list);
    return shown;
}

class FailingMemoryUnderHost : public testing::Test {
  protected:
    void SetUp() override {
        const char* const folder = std::getenv("MOX_TEST_TMP");
        host_.path = (std::filesystem::path(folder == nullptr ? "." : folder) / "host_faults.xml").string();
        ASSERT_EQ(mox_problem_new(&host_.problem), MOX_OK);
    }
    void TearDown() override {
        FreeAll();
        std::filesystem::remove(host_.path);
    }

    void FreeAll() {
        host_.FreeOutputs();
        mox_document_free(host_.document);
        mox_problem_free(host_.problem);
        host_.document = nullptr;
        host_.problem = nullptr;
    }

    // A new document and a new file, and a problem that has memory of its own.
    void Prepare(const HostCall& call) {
        const std::string_view name = call.name;
        const bool needsFile =
            name.find("open") == 0 || name.find("save") == 0 || name == "import" || name == "read_file";
        host_.FreeOutputs();
        mox_document_free(host_.document);
        host_.document = nullptr;
        if (needsFile) std::ofstream(host_.path, std::ios::binary) << kSettings;
        ASSERT_EQ(
            mox_parse(kSettings.data(), kSettings.size(), MOX_SETTINGS, nullptr, &host_.document, nullptr),
            MOX_OK);
        // Some functions fail only for a text that is no number.
        ASSERT_EQ(mox_set_text(host_.document, MOX_STR("S"), MOX_STR(LONG), MOX_STR(LONG), nullptr), MOX_OK);
    }

    // Returns how many failures were injected.
    std::uint64_t FailEach(const HostCall& call, Failing how) {
        std::uint64_t failures = 0;
        Prepare(call);
        EXPECT_EQ(call.call(host_), call.expected);
        const std::vector<std::string> done = Shown(host_.document);
        for (std::uint64_t first = 1; !HasFailure(); ++first) {
            Prepare(call);
            const std::vector<std::string> before = Shown(host_.document);
            mox_status status = MOX_OK;
            {
                FailingMemory memory(first, how);
                status = call.call(host_);
                memory.Stop();
            }
            const bool isInjected = FailingMemory::Injected() != 0;
            auto info = Sized<mox_problem_info>();
            EXPECT_EQ(mox_problem_get(host_.problem, &info), MOX_OK);
            const bool hasProblem = std::string_view(call.name) != "problem_new";
            EXPECT_EQ(info.status, hasProblem ? status : MOX_OK);
            EXPECT_EQ(info.status == MOX_OK, info.message_size == 0);
            if (!isInjected) {
                EXPECT_EQ(status, call.expected) << info.text;
                return failures;
            }
            ++failures;
            // What an index of names or a cache is for does without it.
            if (status == MOX_OUT_OF_MEMORY) {
                if (hasProblem) {
                    EXPECT_STREQ(info.message, "there is not enough memory");
                }
                ExpectNothingLost(before, done);
            } else {
                EXPECT_EQ(status, call.expected) << first << ": " << info.text;
            }
        }
        return failures;
    }

    // After a call without memory: it has given nothing, and each entry has its old value or the new one.
    void ExpectNothingLost(const std::vector<std::string>& before, const std::vector<std::string>& done) {
        EXPECT_TRUE(host_.HasNoOutputs());
        const std::vector<std::string> after = Shown(host_.document);
        ASSERT_EQ(after.size(), before.size()) << "an entry was lost or is left behind";
        for (size_t i = 0; i < after.size(); ++i) {
            if (after[i] != before[i]) {
                EXPECT_THAT(done, testing::Contains(after[i]));
            }
        }
    }

    Host host_;
};

TEST_F(FailingMemoryUnderHost, EachAllocationOfEachFunction) {
    std::uint64_t failures = 0;
    for (const HostCall& call : Calls()) {
        SCOPED_TRACE(call.name);
        for (const Failing how : {Failing::Once, Failing::FromThenOn})
            failures += FailEach(call, how);
    }
    EXPECT_GT(failures, 500U);
    RecordProperty("failures", static_cast<int>(failures));
}

TEST_F(FailingMemoryUnderHost, ReadingTextLeavesTheBufferAsItWas) {
    ASSERT_EQ(mox_new_settings(&host_.document, nullptr), MOX_OK);
    ASSERT_EQ(mox_set_text(host_.document, MOX_STR("S"), MOX_STR("K"),
                           MOX_STR("twenty plain letters and more \xC3\xA4"), nullptr),
              MOX_OK);
    std::uint64_t failures = 0;
    for (std::uint64_t first = 1;; ++first) {
        std::snprintf(host_.buffer, sizeof host_.buffer, "default");
        mox_status status = MOX_OK;
        {
            FailingMemory memory(first, Failing::Once);
            status = mox_get_text(host_.document, MOX_STR("S"), MOX_STR("K"), host_.buffer,
                                  sizeof host_.buffer, nullptr, nullptr);
            memory.Stop();
        }
        if (FailingMemory::Injected() == 0) break;
        if (status == MOX_OK) continue;
        ++failures;
        EXPECT_EQ(status, MOX_OUT_OF_MEMORY);
        ASSERT_STREQ(host_.buffer, "default");
    }
    EXPECT_GT(failures, 0U);
    EXPECT_STREQ(host_.buffer, "twenty plain letters and more \xC3\xA4");
}

TEST_F(FailingMemoryUnderHost, NothingOfACallStaysAllocated) {
    for (const HostCall& call : Calls()) {
        SCOPED_TRACE(call.name);
        bool isInjected = true;
        for (std::uint64_t first = 1; isInjected && !HasFailure(); ++first) {
            FreeAll();
            const std::int64_t blocks = LiveBlocks();
            ASSERT_EQ(mox_problem_new(&host_.problem), MOX_OK);
            Prepare(call);
            {
                FailingMemory memory(first, Failing::FromThenOn);
                call.call(host_);
                memory.Stop();
            }
            isInjected = FailingMemory::Injected() != 0;
            FreeAll();
            EXPECT_EQ(LiveBlocks(), blocks) << first;
        }
    }
}

}  // namespace
}  // namespace faults
