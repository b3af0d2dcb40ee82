// What no host should pass, passed to every function.
#include <algorithm>

#include "tests/c_host/c_host_support.h"

namespace c_host {
namespace {

// A text of a call, as its two arguments.
struct Text {
    const char* data;
    size_t size;
};
#define BYTES_OF(text) (text).data, (text).size

// What a call is given. Only one of the texts is wrong.
struct Given {
    mox_document* document;
    mox_problem* problem;
    Text section{"S", 1};
    Text name{"K", 1};
    Text text{"1", 1};
};
struct Call {
    const char* name;
    std::vector<Text Given::*> texts;  // that it takes
    mox_status (*call)(const Given& given);
};

int64_t integer = 0;
double number = 0;
int32_t truth = 0;
size_t size = 0;
char buffer[16];
void* bytes = nullptr;
mox_list* list = nullptr;
mox_tree* tree = nullptr;
mox_document* made = nullptr;
mox_section_info section = Sized<mox_section_info>();

mox_entry EntryNamed(Text name) {
    auto entry = Sized<mox_entry>();
    entry.type = MOX_TYPE_STRING;
    entry.name = name.data;
    entry.name_size = name.size;
    return entry;
}

// Calls that need no document.
const std::vector<Call>& FileCalls() {
    constexpr auto kText = &Given::text;
    static const std::vector<Call> calls = {
        {"new_table",
         {kText},
         [](const Given& g) { return mox_new_table(BYTES_OF(g.text), nullptr, &made, g.problem); }},
        {"open",
         {kText},
         [](const Given& g) { return mox_open(BYTES_OF(g.text), MOX_SETTINGS, nullptr, &made, g.problem); }},
        {"open as another encoding",
         {kText},
         [](const Given& g) {
             auto options = Sized<mox_open_options>();
             options.encoding = MOX_ENCODING_LATIN1;
             return mox_open(BYTES_OF(g.text), MOX_SETTINGS, &options, &made, g.problem);
         }},
        {"name of a table",
         {kText},
         [](const Given& g) {
             auto options = Sized<mox_open_options>();
             options.table_name = g.text.data;
             options.table_name_size = g.text.size;
             return mox_parse(MOX_STR("<Table name=\"T\"/>"), MOX_TABLE, &options, &made, g.problem);
         }},
        {"read_file",
         {kText},
         [](const Given& g) { return mox_read_file(BYTES_OF(g.text), &bytes, &size, g.problem); }},
    };
    return calls;
}

// Calls with a document and a section of it.
const std::vector<Call>& SectionCalls() {
    constexpr auto kSection = &Given::section;
    constexpr auto kText = &Given::text;
    static const std::vector<Call> calls = {
        {"save",
         {kText},
         [](const Given& g) { return mox_save(g.document, BYTES_OF(g.text), nullptr, g.problem); }},
        {"save with a backup",
         {kText},
         [](const Given& g) {
             const ScratchPath path("host_arguments.xml");
             path.Write("old");
             auto options = Sized<mox_save_options>();
             options.flags = MOX_SAVE_OVERWRITE;
             options.backup = g.text.data;
             options.backup_size = g.text.size;
             return mox_save(g.document, path.data(), path.size(), &options, g.problem);
         }},
        {"to_bytes",
         {kSection},
         [](const Given& g) {
             auto options = Sized<mox_save_options>();
             options.section = g.section.data;
             options.section_size = g.section.size;
             return mox_to_bytes(g.document, &options, &bytes, &size, g.problem);
         }},
        {"section_get_info",
         {kSection},
         [](const Given& g) {
             return mox_section_get_info(g.document, BYTES_OF(g.section), &section, g.problem);
         }},
        {"make_section",
         {kSection},
         [](const Given& g) {
             return mox_make_section(g.document, BYTES_OF(g.section), nullptr, g.problem);
         }},
        {"remove_section",
         {kSection},
         [](const Given& g) { return mox_remove_section(g.document, BYTES_OF(g.section), g.problem); }},
        {"entry_names",
         {kSection},
         [](const Given& g) { return mox_entry_names(g.document, BYTES_OF(g.section), &list, g.problem); }},
        {"clear",
         {kSection},
         [](const Given& g) { return mox_clear(g.document, BYTES_OF(g.section), g.problem); }},
        {"entries",
         {kSection},
         [](const Given& g) { return mox_entries(g.document, BYTES_OF(g.section), &list, g.problem); }},
        {"count_unreadable",
         {kSection},
         [](const Given& g) {
             return mox_count_unreadable(g.document, BYTES_OF(g.section), &size, g.problem);
         }},
        {"add_entry",
         {kSection, kText},
         [](const Given& g) {
             const mox_entry entry = EntryNamed(g.text);
             return mox_add_entry(g.document, BYTES_OF(g.section), nullptr, 0, &entry, 0, g.problem);
         }},
        {"add_entry before another",
         {kSection, kText},
         [](const Given& g) {
             const mox_entry entry = EntryNamed({"N", 1});
             return mox_add_entry(g.document, BYTES_OF(g.section), BYTES_OF(g.text), &entry, 0, g.problem);
         }},
        {"add_entry with a value",
         {kText},
         [](const Given& g) {
             mox_entry entry = EntryNamed({"N", 1});
             entry.value = g.text.data;
             entry.value_size = g.text.size;
             return mox_add_entry(g.document, MOX_STR("S"), nullptr, 0, &entry, 0, g.problem);
         }},
        {"put_entry",
         {kSection, kText},
         [](const Given& g) {
             const mox_entry entry = EntryNamed(g.text);
             return mox_put_entry(g.document, BYTES_OF(g.section), &entry, 0, g.problem);
         }},
        {"put_entry with a comment",
         {kText},
         [](const Given& g) {
             mox_entry entry = EntryNamed({"N", 1});
             entry.has_ui = 1;
             entry.comment = g.text.data;
             entry.comment_size = g.text.size;
             return mox_put_entry(g.document, MOX_STR("S"), &entry, 0, g.problem);
         }},
        {"put_entry with a displayed name",
         {kText},
         [](const Given& g) {
             mox_entry entry = EntryNamed({"N", 1});
             entry.has_ui = 1;
             entry.shown_name = g.text.data;
             entry.shown_name_size = g.text.size;
             return mox_put_entry(g.document, MOX_STR("S"), &entry, 0, g.problem);
         }},
        {"put_entry with a value in its presentation data",
         {kText},
         [](const Given& g) {
             mox_entry entry = EntryNamed({"N", 1});
             entry.has_ui = 1;
             entry.comment = "c";
             entry.comment_size = 1;
             entry.ui_value = g.text.data;
             entry.ui_value_size = g.text.size;
             return mox_put_entry(g.document, MOX_STR("S"), &entry, 0, g.problem);
         }},
    };
    return calls;
}

// Calls with a document, a section and the name of a key.
const std::vector<Call>& KeyCalls() {
    static const std::vector<Text Given::*> names{&Given::section, &Given::name};
    static const std::vector<Text Given::*> namesAndText{&Given::section, &Given::name, &Given::text};
#define KEY_OF(given) (given).document, BYTES_OF((given).section), BYTES_OF((given).name)
    static const std::vector<Call> calls = {
        {"contains", names, [](const Given& g) { return mox_contains(KEY_OF(g), &truth, g.problem); }},
        {"get_text", names,
         [](const Given& g) { return mox_get_text(KEY_OF(g), buffer, 16, &size, g.problem); }},
        {"get_int", names, [](const Given& g) { return mox_get_int(KEY_OF(g), &integer, g.problem); }},
        {"get_double", names, [](const Given& g) { return mox_get_double(KEY_OF(g), &number, g.problem); }},
        {"get_bool", names, [](const Given& g) { return mox_get_bool(KEY_OF(g), &truth, g.problem); }},
        {"get_bytes", names,
         [](const Given& g) { return mox_get_bytes(KEY_OF(g), buffer, 16, &size, g.problem); }},
        {"set_text", namesAndText,
         [](const Given& g) { return mox_set_text(KEY_OF(g), BYTES_OF(g.text), g.problem); }},
        {"set_int", names,
         [](const Given& g) { return mox_set_int(KEY_OF(g), 1, MOX_TYPE_LONG, g.problem); }},
        {"set_int of 64 bits", names,
         [](const Given& g) { return mox_set_int(KEY_OF(g), 1, MOX_TYPE_STRING, g.problem); }},
        {"set_double", names, [](const Given& g) { return mox_set_double(KEY_OF(g), 1.0, g.problem); }},
        {"set_bool", names, [](const Given& g) { return mox_set_bool(KEY_OF(g), 1, g.problem); }},
        {"set_bytes", names, [](const Given& g) { return mox_set_bytes(KEY_OF(g), "1", 1, g.problem); }},
        {"remove", names, [](const Given& g) { return mox_remove(KEY_OF(g), 0, g.problem); }},
        {"remove all", names, [](const Given& g) { return mox_remove(KEY_OF(g), MOX_ALL, g.problem); }},
        {"rename", namesAndText,
         [](const Given& g) { return mox_rename(KEY_OF(g), BYTES_OF(g.text), g.problem); }},
        {"find_entry", names, [](const Given& g) { return mox_find_entry(KEY_OF(g), &list, g.problem); }},
        {"set_value", namesAndText,
         [](const Given& g) { return mox_set_value(KEY_OF(g), BYTES_OF(g.text), 0, g.problem); }},
        {"set_eud", names, [](const Given& g) { return mox_set_eud(KEY_OF(g), 1, g.problem); }},
        {"set_comment", namesAndText,
         [](const Given& g) { return mox_set_comment(KEY_OF(g), BYTES_OF(g.text), g.problem); }},
        {"set_shown_name", namesAndText,
         [](const Given& g) { return mox_set_shown_name(KEY_OF(g), BYTES_OF(g.text), g.problem); }},
        {"set_provider", names,
         [](const Given& g) { return mox_set_provider(KEY_OF(g), MOX_OWNER_APP, 1, g.problem); }},
    };
    return calls;
}

constexpr std::string_view kEntry =
    "<Var name=\"K\" type=\"string\"><Value>1</Value><UI control=\"text\"><Comment>c</Comment></UI></Var>";

// Each text of each function once; the other arguments are good.
void ExpectEachTextRefused(Text wrong, mox_status expected) {
    const Document document = Settings(kEntry);
    const std::string before = SectionText(document, "S");
    ASSERT_EQ(before.substr(0, 6), "<Table");
    const Problem problem;
    const auto expectRefused = [&](const Call& call, Text Given::*text) {
        Given given{document.get(), problem};
        given.*text = wrong;
        integer = 1000, number = 2.5, truth = 7, size = 77;
        section.editable = 9;
        std::fill(std::begin(buffer), std::end(buffer), '?');
        EXPECT_STREQ(mox_status_name(call.call(given)), mox_status_name(expected)) << call.name;
        EXPECT_EQ(problem.Status(), expected) << call.name;
        EXPECT_NE(problem.Text(), "") << call.name;
        given.problem = nullptr;
        EXPECT_EQ(call.call(given), expected) << call.name;
        EXPECT_TRUE(integer == 1000 && number == 2.5 && truth == 7 && size == 77) << call.name;
        EXPECT_EQ(std::string_view(buffer, sizeof buffer), "????????????????") << call.name;
        EXPECT_EQ(section.editable, 9U) << call.name;
        EXPECT_TRUE(bytes == nullptr && list == nullptr && made == nullptr) << call.name;
    };
    for (const auto* const calls : {&FileCalls(), &SectionCalls(), &KeyCalls()}) {
        for (const Call& call : *calls) {
            for (Text Given::*const text : call.texts)
                expectRefused(call, text);
        }
    }
    EXPECT_EQ(SectionText(document, "S"), before);
}

TEST(HostArguments, BytesThatAreNotUtf8AreRefusedEverywhere) {
    for (const std::string_view text :
         {"\xFF", "a\x80", "\xC3", "\xC0\x80", "\xF8\x88\x80\x80\x80", "\xF4\x90\x80\x80"})
        ExpectEachTextRefused({text.data(), text.size()}, MOX_INVALID_TEXT);
}

TEST(HostArguments, ZerosInTextsAreRefusedEverywhere) {
    ExpectEachTextRefused({"K\0", 2}, MOX_INVALID_TEXT);
    ExpectEachTextRefused({"\0", 1}, MOX_INVALID_TEXT);
}

TEST(HostArguments, LengthsThatNoTextHasAreRefusedBeforeAnythingIsRead) {
    // Three bytes for each of the 2^31 - 1 units that a text can have.
    for (const size_t length : {SIZE_MAX, SIZE_MAX / 2, SIZE_MAX / 2 + 1, size_t{6442450942}})
        ExpectEachTextRefused({"K", length}, MOX_INVALID_ARGUMENT);
    for (const size_t length : {size_t{1}, SIZE_MAX})
        ExpectEachTextRefused({nullptr, length}, MOX_INVALID_ARGUMENT);
}

TEST(HostArguments, ANullDocumentIsRefusedEverywhere) {
    const Problem problem;
    for (const auto* const calls : {&SectionCalls(), &KeyCalls()}) {
        for (const Call& call : *calls) {
            EXPECT_EQ(call.call({nullptr, problem}), MOX_INVALID_ARGUMENT) << call.name;
            EXPECT_EQ(problem.Text(), "a handle or an output is null") << call.name;
        }
    }
    EXPECT_EQ(mox_section_names(nullptr, &list, problem), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_set_form(nullptr, MOX_FORM_WIDE, problem), MOX_INVALID_ARGUMENT);
    auto info = Sized<mox_document_info>();
    EXPECT_EQ(mox_document_get_info(nullptr, &info), MOX_INVALID_ARGUMENT);
    mox_document_free(nullptr);
    mox_list_free(nullptr);
    mox_tree_free(nullptr);
    mox_problem_free(nullptr);
    EXPECT_EQ(mox_list_count(nullptr), 0U);
    EXPECT_EQ(mox_tree_count(nullptr), 0U);
    const char* name = nullptr;
    auto entry = Sized<mox_entry>();
    auto diagnostic = Sized<mox_diagnostic>();
    auto node = Sized<mox_node>();
    auto attribute = Sized<mox_attribute>();
    auto problemInfo = Sized<mox_problem_info>();
    EXPECT_EQ(mox_list_name(nullptr, 0, &name, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_list_entry(nullptr, 0, &entry), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_list_diagnostic(nullptr, 0, &diagnostic), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_tree_node(nullptr, 0, &node), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_tree_attribute(nullptr, 0, 0, &attribute), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_problem_get(nullptr, &problemInfo), MOX_INVALID_ARGUMENT);
}

TEST(HostArguments, ANullOutputIsRefusedEverywhere) {
    const Document document = Settings(kEntry);
    mox_document* const d = document.get();
    const Problem problem;
    mox_problem* const p = problem;
    EXPECT_EQ(mox_problem_new(nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_problem_get(p, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_new_settings(nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_new_table(MOX_STR("T"), nullptr, nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_open(MOX_STR("f"), MOX_SETTINGS, nullptr, nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_parse("", 0, MOX_SETTINGS, nullptr, nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_document_get_info(d, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_to_bytes(d, nullptr, nullptr, &size, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_to_bytes(d, nullptr, &bytes, nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_section_names(d, nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_section_get_info(d, MOX_STR("S"), nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_entry_names(d, MOX_STR("S"), nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_contains(d, MOX_STR("S"), MOX_STR("K"), nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_get_text(d, MOX_STR("S"), MOX_STR("K"), nullptr, 5, &size, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_get_bytes(d, MOX_STR("S"), MOX_STR("K"), nullptr, 5, &size, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_get_int(d, MOX_STR("S"), MOX_STR("K"), nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_get_double(d, MOX_STR("S"), MOX_STR("K"), nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_get_bool(d, MOX_STR("S"), MOX_STR("K"), nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_entries(d, MOX_STR("S"), nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_find_entry(d, MOX_STR("S"), MOX_STR("K"), nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_count_unreadable(d, MOX_STR("S"), nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_add_entry(d, MOX_STR("S"), nullptr, 0, nullptr, 0, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_put_entry(d, MOX_STR("S"), nullptr, 0, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_read_file(MOX_STR("f"), nullptr, &size, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_read_file(MOX_STR("f"), &bytes, nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_diagnose("", 0, 0, 0, nullptr, p), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_tree_parse("", 0, 0, nullptr, p), MOX_INVALID_ARGUMENT);
    ASSERT_EQ(mox_entries(d, MOX_STR("S"), &list, nullptr), MOX_OK);
    EXPECT_EQ(mox_list_name(list, 0, nullptr, &size), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_list_entry(list, 0, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_list_diagnostic(list, 0, nullptr), MOX_INVALID_ARGUMENT);
    mox_list_free(std::exchange(list, nullptr));
    ASSERT_EQ(mox_tree_parse("<a b=\"\"/>", 9, 0, &tree, nullptr), MOX_OK);
    EXPECT_EQ(mox_tree_node(tree, 0, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_tree_attribute(tree, 0, 0, nullptr), MOX_INVALID_ARGUMENT);
    mox_tree_free(std::exchange(tree, nullptr));
}

TEST(HostArguments, ContentThatNoFileHasIsRefused) {
    EXPECT_EQ(mox_parse(nullptr, 1, MOX_SETTINGS, nullptr, &made, nullptr), MOX_INVALID_ARGUMENT);
    for (const size_t length : {SIZE_MAX, size_t{4294967297}})
        EXPECT_EQ(mox_parse("", length, MOX_SETTINGS, nullptr, &made, nullptr), MOX_TOO_LARGE);
    EXPECT_EQ(mox_parse(nullptr, 0, MOX_SETTINGS, nullptr, &made, nullptr), MOX_WRONG_KIND);
    EXPECT_EQ(mox_diagnose(nullptr, 1, 0, 0, &list, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_diagnose("", SIZE_MAX, 0, 0, &list, nullptr), MOX_TOO_LARGE);
    EXPECT_EQ(mox_tree_parse(nullptr, 1, 0, &tree, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_tree_parse("", SIZE_MAX, 0, &tree, nullptr), MOX_TOO_LARGE);
    const Document document = Settings(kEntry);
    EXPECT_EQ(mox_set_bytes(document.get(), MOX_STR("S"), MOX_STR("N"), nullptr, 1, nullptr),
              MOX_INVALID_ARGUMENT);
    for (const size_t length : {SIZE_MAX, size_t{1073741824}})
        EXPECT_EQ(mox_set_bytes(document.get(), MOX_STR("S"), MOX_STR("N"), "", length, nullptr),
                  MOX_TOO_LARGE);
    EXPECT_EQ(mox_set_bytes(document.get(), MOX_STR("S"), MOX_STR("N"), nullptr, 0, nullptr), MOX_OK);
    EXPECT_EQ(TextOf(document, "S", "N"), "");
}

// A later release adds fields at the end: a host that was built with it works with this one, and the other way round.
TEST(HostArguments, StructuresOfOtherReleasesAreFilledAsFarAsTheyGo) {
    const Document document = Settings(kEntry);
    ASSERT_EQ(mox_entries(document.get(), MOX_STR("S"), &list, nullptr), MOX_OK);
    struct Later {
        mox_entry entry;
        unsigned char more[8];
        unsigned char beyond;
    } later{};
    std::fill(std::begin(later.more), std::end(later.more), static_cast<unsigned char>(0xEE));
    later.beyond = 0xEE;
    later.entry.size = sizeof(mox_entry) + sizeof later.more;
    EXPECT_EQ(mox_list_entry(list, 0, &later.entry), MOX_OK);
    EXPECT_EQ(later.entry.size, sizeof(mox_entry) + sizeof later.more);
    EXPECT_STREQ(later.entry.name, "K");
    EXPECT_EQ(std::vector<int>(std::begin(later.more), std::end(later.more)), std::vector<int>(8, 0));
    EXPECT_EQ(later.beyond, 0xEE);
    for (const uint32_t wrong : {0U, 1U, 111U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        later.entry.size = wrong;
        EXPECT_EQ(mox_list_entry(list, 0, &later.entry), MOX_INVALID_ARGUMENT) << wrong;
    }
    mox_list_free(std::exchange(list, nullptr));
    for (const uint32_t wrong : {7U, 4097U}) {
        section.size = wrong;
        EXPECT_EQ(mox_section_get_info(document.get(), MOX_STR("S"), &section, nullptr),
                  MOX_INVALID_ARGUMENT);
    }
    struct Largest {
        mox_section_info info;
        unsigned char more[4096 - sizeof(mox_section_info)];
    } largest{};
    largest.info.size = sizeof largest;
    EXPECT_EQ(mox_section_get_info(document.get(), MOX_STR("S"), &largest.info, nullptr), MOX_OK);
    section.size = sizeof section;
    for (const uint32_t wrong : {0U, 31U, 33U, 0xFFFFFFFFU}) {
        auto options = Sized<mox_open_options>();
        options.size = wrong;
        EXPECT_EQ(mox_parse("", 0, MOX_SETTINGS, &options, &made, nullptr), MOX_INVALID_ARGUMENT) << wrong;
        auto saving = Sized<mox_save_options>();
        saving.size = wrong;
        EXPECT_EQ(mox_to_bytes(document.get(), &saving, &bytes, &size, nullptr), MOX_INVALID_ARGUMENT)
            << wrong;
        auto table = Sized<mox_table_options>();
        table.size = wrong;
        EXPECT_EQ(mox_make_section(document.get(), MOX_STR("N"), &table, nullptr), MOX_INVALID_ARGUMENT)
            << wrong;
    }
}

}  // namespace
}  // namespace c_host
