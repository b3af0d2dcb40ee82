// What no host should pass, passed to every function.
#include <limits>

#include "tests/c_host/c_host_support.h"

namespace c_host {
namespace {

// What a call is given: a document, and a text as one of its texts.
struct Given {
    mox_document* document;
    const char* text;
    size_t size;
    mox_problem* problem;
};
struct Call {
    const char* name;
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

mox_entry EntryNamed(const char* t, size_t n) {
    auto entry = Sized<mox_entry>();
    entry.type = MOX_TYPE_STRING;
    entry.name = t;
    entry.name_size = n;
    return entry;
}

// Each text of each function once; the other arguments are good.
const std::vector<Call>& TextCalls() {
    static const std::vector<Call> calls = {
        {"new_table",
         [](const Given& g) { return mox_new_table(g.text, g.size, nullptr, &made, g.problem); }},
        {"open",
         [](const Given& g) { return mox_open(g.text, g.size, MOX_SETTINGS, nullptr, &made, g.problem); }},
        {"open_name",
         [](const Given& g) {
             auto options = Sized<mox_open_options>();
             options.table_name = g.text;
             options.table_name_size = g.size;
             return mox_parse(MOX_STR("<Table name=\"T\"/>"), MOX_TABLE, &options, &made, g.problem);
         }},
        {"save", [](const Given& g) { return mox_save(g.document, g.text, g.size, nullptr, g.problem); }},
        {"save_backup",
         [](const Given& g) {
             const ScratchPath path("host_arguments.xml");
             path.Write("old");
             auto options = Sized<mox_save_options>();
             options.flags = MOX_SAVE_OVERWRITE;
             options.backup = g.text;
             options.backup_size = g.size;
             return mox_save(g.document, path.data(), path.size(), &options, g.problem);
         }},
        {"to_bytes",
         [](const Given& g) {
             auto options = Sized<mox_save_options>();
             options.section = g.text;
             options.section_size = g.size;
             return mox_to_bytes(g.document, &options, &bytes, &size, g.problem);
         }},
        {"section_get_info",
         [](const Given& g) {
             return mox_section_get_info(g.document, g.text, g.size, &section, g.problem);
         }},
        {"make_section",
         [](const Given& g) { return mox_make_section(g.document, g.text, g.size, nullptr, g.problem); }},
        {"remove_section",
         [](const Given& g) { return mox_remove_section(g.document, g.text, g.size, g.problem); }},
        {"entry_names",
         [](const Given& g) { return mox_entry_names(g.document, g.text, g.size, &list, g.problem); }},
        {"contains_section",
         [](const Given& g) {
             return mox_contains(g.document, g.text, g.size, MOX_STR("K"), &truth, g.problem);
         }},
        {"contains",
         [](const Given& g) {
             return mox_contains(g.document, MOX_STR("S"), g.text, g.size, &truth, g.problem);
         }},
        {"get_text",
         [](const Given& g) {
             return mox_get_text(g.document, MOX_STR("S"), g.text, g.size, buffer, 16, &size, g.problem);
         }},
        {"get_int",
         [](const Given& g) {
             return mox_get_int(g.document, g.text, g.size, MOX_STR("K"), &integer, g.problem);
         }},
        {"get_double",
         [](const Given& g) {
             return mox_get_double(g.document, MOX_STR("S"), g.text, g.size, &number, g.problem);
         }},
        {"get_bool",
         [](const Given& g) {
             return mox_get_bool(g.document, g.text, g.size, MOX_STR("K"), &truth, g.problem);
         }},
        {"get_bytes",
         [](const Given& g) {
             return mox_get_bytes(g.document, MOX_STR("S"), g.text, g.size, buffer, 16, &size, g.problem);
         }},
        {"set_text_section",
         [](const Given& g) {
             return mox_set_text(g.document, g.text, g.size, MOX_STR("N"), MOX_STR("1"), g.problem);
         }},
        {"set_text_name",
         [](const Given& g) {
             return mox_set_text(g.document, MOX_STR("S"), g.text, g.size, MOX_STR("1"), g.problem);
         }},
        {"set_text_value",
         [](const Given& g) {
             return mox_set_text(g.document, MOX_STR("S"), MOX_STR("N"), g.text, g.size, g.problem);
         }},
        {"set_int",
         [](const Given& g) {
             return mox_set_int(g.document, MOX_STR("S"), g.text, g.size, 1, MOX_TYPE_LONG, g.problem);
         }},
        {"set_int_range",
         [](const Given& g) {
             return mox_set_int(g.document, MOX_STR("S"), g.text, g.size, 1, MOX_TYPE_STRING, g.problem);
         }},
        {"set_double",
         [](const Given& g) {
             return mox_set_double(g.document, g.text, g.size, MOX_STR("N"), 1.0, g.problem);
         }},
        {"set_bool",
         [](const Given& g) { return mox_set_bool(g.document, MOX_STR("S"), g.text, g.size, 1, g.problem); }},
        {"set_bytes",
         [](const Given& g) {
             return mox_set_bytes(g.document, MOX_STR("S"), g.text, g.size, "1", 1, g.problem);
         }},
        {"remove",
         [](const Given& g) { return mox_remove(g.document, MOX_STR("S"), g.text, g.size, 0, g.problem); }},
        {"remove_all",
         [](const Given& g) {
             return mox_remove(g.document, g.text, g.size, MOX_STR("Z"), MOX_ALL, g.problem);
         }},
        {"rename",
         [](const Given& g) {
             return mox_rename(g.document, MOX_STR("S"), g.text, g.size, MOX_STR("N"), g.problem);
         }},
        {"rename_new",
         [](const Given& g) {
             return mox_rename(g.document, MOX_STR("S"), MOX_STR("K"), g.text, g.size, g.problem);
         }},
        {"clear", [](const Given& g) { return mox_clear(g.document, g.text, g.size, g.problem); }},
        {"entries", [](const Given& g) { return mox_entries(g.document, g.text, g.size, &list, g.problem); }},
        {"find_entry",
         [](const Given& g) {
             return mox_find_entry(g.document, MOX_STR("S"), g.text, g.size, &list, g.problem);
         }},
        {"count_unreadable",
         [](const Given& g) { return mox_count_unreadable(g.document, g.text, g.size, &size, g.problem); }},
        {"add_entry",
         [](const Given& g) {
             const mox_entry entry = EntryNamed(g.text, g.size);
             return mox_add_entry(g.document, MOX_STR("S"), nullptr, 0, &entry, 0, g.problem);
         }},
        {"add_entry_before",
         [](const Given& g) {
             const mox_entry entry = EntryNamed("N", 1);
             return mox_add_entry(g.document, MOX_STR("S"), g.text, g.size, &entry, 0, g.problem);
         }},
        {"add_entry_value",
         [](const Given& g) {
             mox_entry entry = EntryNamed("N", 1);
             entry.value = g.text;
             entry.value_size = g.size;
             return mox_add_entry(g.document, MOX_STR("S"), nullptr, 0, &entry, 0, g.problem);
         }},
        {"put_entry_comment",
         [](const Given& g) {
             mox_entry entry = EntryNamed("N", 1);
             entry.has_ui = 1;
             entry.comment = g.text;
             entry.comment_size = g.size;
             return mox_put_entry(g.document, MOX_STR("S"), &entry, 0, g.problem);
         }},
        {"put_entry_shown",
         [](const Given& g) {
             mox_entry entry = EntryNamed("N", 1);
             entry.has_ui = 1;
             entry.shown_name = g.text;
             entry.shown_name_size = g.size;
             return mox_put_entry(g.document, MOX_STR("S"), &entry, 0, g.problem);
         }},
        {"put_entry_ui_value",
         [](const Given& g) {
             mox_entry entry = EntryNamed("N", 1);
             entry.has_ui = 1;
             entry.comment = "c";
             entry.comment_size = 1;
             entry.ui_value = g.text;
             entry.ui_value_size = g.size;
             return mox_put_entry(g.document, MOX_STR("S"), &entry, 0, g.problem);
         }},
        {"set_value",
         [](const Given& g) {
             return mox_set_value(g.document, MOX_STR("S"), MOX_STR("K"), g.text, g.size, 0, g.problem);
         }},
        {"set_eud",
         [](const Given& g) { return mox_set_eud(g.document, MOX_STR("S"), g.text, g.size, 1, g.problem); }},
        {"set_comment",
         [](const Given& g) {
             return mox_set_comment(g.document, MOX_STR("S"), MOX_STR("K"), g.text, g.size, g.problem);
         }},
        {"set_shown_name",
         [](const Given& g) {
             return mox_set_shown_name(g.document, MOX_STR("S"), MOX_STR("K"), g.text, g.size, g.problem);
         }},
        {"set_provider",
         [](const Given& g) {
             return mox_set_provider(g.document, MOX_STR("S"), g.text, g.size, 1, 1, g.problem);
         }},
        {"read_file", [](const Given& g) { return mox_read_file(g.text, g.size, &bytes, &size, g.problem); }},
    };
    return calls;
}

constexpr std::string_view kEntry =
    "<Var name=\"K\" type=\"string\"><Value>1</Value><UI control=\"text\"><Comment>c</Comment></UI></Var>";

// The document as it is before and must be after a call that fails.
std::string Element(const Document& document) {
    auto options = Sized<mox_save_options>();
    options.form = MOX_FORM_UTF8;
    options.section = "S";
    options.section_size = 1;
    void* text = nullptr;
    size_t length = 0;
    EXPECT_EQ(mox_to_bytes(document.get(), &options, &text, &length, nullptr), MOX_OK);
    std::string result(static_cast<char*>(text), length);
    mox_free(text);
    return result;
}

void ExpectEachTextRefused(const char* text, size_t length, mox_status expected) {
    const Document document = Settings(kEntry);
    const std::string before = Element(document);
    const Problem problem;
    for (const Call& call : TextCalls()) {
        integer = 1000, number = 2.5, truth = 7, size = 77;
        EXPECT_EQ(mox_status_name(call.call({document.get(), text, length, problem})),
                  std::string(mox_status_name(expected)))
            << call.name;
        EXPECT_EQ(problem.Status(), expected) << call.name;
        EXPECT_NE(problem.Text(), "") << call.name;
        EXPECT_EQ(call.call({document.get(), text, length, nullptr}), expected) << call.name;
        EXPECT_TRUE(integer == 1000 && number == 2.5 && truth == 7 && size == 77) << call.name;
        EXPECT_TRUE(bytes == nullptr && list == nullptr && made == nullptr) << call.name;
        EXPECT_EQ(Element(document), before) << call.name;
    }
}

TEST(HostArguments, BytesThatAreNotUtf8AreRefusedEverywhere) {
    for (const std::string_view text :
         {"\xFF", "a\x80", "\xC3", "\xC0\x80", "\xF8\x88\x80\x80\x80", "\xF4\x90\x80\x80"})
        ExpectEachTextRefused(text.data(), text.size(), MOX_INVALID_TEXT);
}

TEST(HostArguments, ZerosInTextsAreRefusedEverywhere) {
    ExpectEachTextRefused("K\0", 2, MOX_INVALID_TEXT);
    ExpectEachTextRefused("\0", 1, MOX_INVALID_TEXT);
}

TEST(HostArguments, LengthsThatNoTextHasAreRefusedBeforeAnythingIsRead) {
    for (const size_t length : {SIZE_MAX, SIZE_MAX / 2, SIZE_MAX / 2 + 1, size_t{1} << 33})
        ExpectEachTextRefused("K", length, MOX_INVALID_ARGUMENT);
    // Of the two texts that may be missing, a null pointer says so.
    const Document document = Settings(kEntry);
    for (const Call& call : TextCalls()) {
        const std::string_view name = call.name;
        if (name == "add_entry_before" || name == "save_backup" || name == "to_bytes") continue;
        for (const size_t length : {size_t{1}, SIZE_MAX})
            EXPECT_EQ(call.call({document.get(), nullptr, length, nullptr}), MOX_INVALID_ARGUMENT) << name;
    }
}

TEST(HostArguments, ANullDocumentIsRefusedEverywhere) {
    const Problem problem;
    for (const Call& call : TextCalls()) {
        const std::string_view name = call.name;
        if (name == "new_table" || name == "open" || name == "open_name" || name == "read_file") continue;
        EXPECT_EQ(call.call({nullptr, "K", 1, problem}), MOX_INVALID_ARGUMENT) << name;
        EXPECT_EQ(problem.Text(), "a handle or an output is null") << name;
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
    EXPECT_EQ(mox_parse("", SIZE_MAX, MOX_SETTINGS, nullptr, &made, nullptr), MOX_TOO_LARGE);
    EXPECT_EQ(mox_parse(nullptr, 0, MOX_SETTINGS, nullptr, &made, nullptr), MOX_WRONG_KIND);
    EXPECT_EQ(mox_diagnose(nullptr, 1, 0, 0, &list, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_diagnose("", SIZE_MAX, 0, 0, &list, nullptr), MOX_TOO_LARGE);
    EXPECT_EQ(mox_tree_parse(nullptr, 1, 0, &tree, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_tree_parse("", SIZE_MAX, 0, &tree, nullptr), MOX_TOO_LARGE);
    const Document document = Settings(kEntry);
    EXPECT_EQ(mox_set_bytes(document.get(), MOX_STR("S"), MOX_STR("N"), nullptr, 1, nullptr),
              MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_set_bytes(document.get(), MOX_STR("S"), MOX_STR("N"), "", SIZE_MAX, nullptr),
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
    section.size = 7;
    EXPECT_EQ(mox_section_get_info(document.get(), MOX_STR("S"), &section, nullptr), MOX_INVALID_ARGUMENT);
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
