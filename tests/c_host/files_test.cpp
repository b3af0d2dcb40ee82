// Files as they are: bytes, diagnostics and trees. The version and the names of statuses.
#include "tests/c_host/c_host_support.h"

namespace c_host {
namespace {

TEST(HostFiles, AreReadAsAWhole) {
    const ScratchPath path("host_read.bin");
    path.Write(std::string("a\0b", 3));
    void* bytes = nullptr;
    size_t size = 99;
    ASSERT_EQ(mox_read_file(path.data(), path.size(), &bytes, &size, nullptr), MOX_OK);
    EXPECT_EQ(std::string(static_cast<char*>(bytes), size + 1), std::string("a\0b\0", 4));
    mox_free(bytes);
    path.Write("");
    ASSERT_EQ(mox_read_file(path.data(), path.size(), &bytes, &size, nullptr), MOX_OK);
    EXPECT_EQ(size, 0U);
    mox_free(bytes);
    mox_free(nullptr);
    const Problem problem;
    EXPECT_EQ(mox_read_file(MOX_STR("no such file"), &bytes, &size, problem), MOX_NOT_FOUND);
    EXPECT_STREQ(problem.Info().file, "no such file");
}

std::vector<std::string> Diagnosed(std::string_view text, uint32_t form = MOX_FORM_DEFAULT,
                                   uint32_t flags = 0) {
    mox_list* list = nullptr;
    EXPECT_EQ(mox_diagnose(text.data(), text.size(), form, flags, &list, nullptr), MOX_OK);
    const List owned(list);
    std::vector<std::string> shown;
    for (size_t i = 0; i < mox_list_count(list); ++i) {
        auto diagnostic = Sized<mox_diagnostic>();
        EXPECT_EQ(mox_list_diagnostic(list, i, &diagnostic), MOX_OK);
        shown.push_back(std::to_string(diagnostic.severity) + " " + std::to_string(diagnostic.line) + ":" +
                        std::to_string(diagnostic.column) + " encoding " +
                        std::to_string(diagnostic.encoding) + " " +
                        std::string(diagnostic.message, diagnostic.message_size));
    }
    return shown;
}

TEST(HostFiles, AreDiagnosedWithLineAndColumn) {
    EXPECT_EQ(Diagnosed(SettingsText("")), std::vector<std::string>());
    const auto broken = Diagnosed("<Settings>\n  <Table></Tabel></Settings>");
    ASSERT_EQ(broken.size(), 1U);
    EXPECT_EQ(broken[0].substr(0, 39), "1 2:10 encoding 0 found \"</Tabel\", expe");
    const auto utf8 = Diagnosed("\xEF\xBB\xBF" + SettingsText(""));
    ASSERT_EQ(utf8.size(), 1U);
    EXPECT_EQ(utf8[0].substr(0, 16), "1 1:1 encoding 3");
    const auto warned = Diagnosed(SettingsText("\n<Var name=\"X\"/>"));
    ASSERT_EQ(warned.size(), 1U);
    EXPECT_EQ(warned[0].substr(0, 17), "2 2:2 encoding 0 ");
    const std::string value = SettingsText("<Var name=\"X\" type=\"long\"><Value>abc</Value></Var>");
    EXPECT_EQ(Diagnosed(value), std::vector<std::string>());
    EXPECT_EQ(Diagnosed(value, MOX_FORM_NARROW, MOX_DIAGNOSE_VALUES).size(), 1U);
    EXPECT_EQ(Diagnosed(value, MOX_FORM_WIDE).size(), 1U) << "it does not parse as a wide file";
    mox_list* list = nullptr;
    EXPECT_EQ(mox_diagnose("", 0, MOX_FORM_UTF8, 0, &list, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_diagnose("", 0, MOX_FORM_DEFAULT, 2, &list, nullptr), MOX_INVALID_ARGUMENT);
}

TEST(HostFiles, AListIsReadAsWhatItIs) {
    mox_list* list = nullptr;
    ASSERT_EQ(mox_diagnose("<", 1, MOX_FORM_DEFAULT, 0, &list, nullptr), MOX_OK);
    const List diagnostics(list);
    const Document document = Settings("<Var name=\"K\" type=\"long\"/>");
    ASSERT_EQ(mox_section_names(document.get(), &list, nullptr), MOX_OK);
    const List names(list);
    ASSERT_EQ(mox_entries(document.get(), MOX_STR("S"), &list, nullptr), MOX_OK);
    const List entries(list);
    auto entry = Sized<mox_entry>();
    auto diagnostic = Sized<mox_diagnostic>();
    const char* name = nullptr;
    EXPECT_EQ(mox_list_name(diagnostics.get(), 0, &name, nullptr), MOX_WRONG_KIND);
    EXPECT_EQ(mox_list_entry(diagnostics.get(), 0, &entry), MOX_WRONG_KIND);
    EXPECT_EQ(mox_list_entry(names.get(), 0, &entry), MOX_WRONG_KIND);
    EXPECT_EQ(mox_list_diagnostic(names.get(), 0, &diagnostic), MOX_WRONG_KIND);
    EXPECT_EQ(mox_list_diagnostic(entries.get(), 0, &diagnostic), MOX_WRONG_KIND);
    for (const size_t index : {size_t{1}, SIZE_MAX}) {
        EXPECT_EQ(mox_list_name(names.get(), index, &name, nullptr), MOX_OUT_OF_RANGE);
        EXPECT_EQ(mox_list_name(entries.get(), index, &name, nullptr), MOX_OUT_OF_RANGE);
        EXPECT_EQ(mox_list_entry(entries.get(), index, &entry), MOX_OUT_OF_RANGE);
        EXPECT_EQ(mox_list_diagnostic(diagnostics.get(), index, &diagnostic), MOX_OUT_OF_RANGE);
    }
    EXPECT_EQ(name, nullptr);
    EXPECT_EQ(mox_list_name(entries.get(), 0, &name, nullptr), MOX_OK);
    EXPECT_STREQ(name, "K");
}

// All nodes: number, kind, name, value, place, relatives, attributes.
std::vector<std::string> Nodes(const Tree& tree) {
    std::vector<std::string> shown;
    const auto number = [](size_t node) {
        return node == MOX_NO_NODE ? std::string("-") : std::to_string(node);
    };
    for (size_t i = 0; i < mox_tree_count(tree.get()); ++i) {
        auto node = Sized<mox_node>();
        EXPECT_EQ(mox_tree_node(tree.get(), i, &node), MOX_OK);
        std::string text = std::to_string(node.kind) + " " + std::string(node.name, node.name_size) + " '" +
                           std::string(node.value, node.value_size) + "' " + std::to_string(node.line) + ":" +
                           std::to_string(node.column) + " " + number(node.parent) + " " +
                           number(node.first_child) + " " + number(node.next);
        for (size_t k = 0; k < node.attribute_count; ++k) {
            auto attribute = Sized<mox_attribute>();
            EXPECT_EQ(mox_tree_attribute(tree.get(), i, k, &attribute), MOX_OK);
            text += " " + std::string(attribute.name, attribute.name_size) + "=" +
                    std::string(attribute.value, attribute.value_size);
        }
        shown.push_back(text);
    }
    return shown;
}

Tree ParseTree(std::string_view text) {
    mox_tree* tree = nullptr;
    EXPECT_EQ(mox_tree_parse(text.data(), text.size(), MOX_FORM_DEFAULT, &tree, nullptr), MOX_OK);
    return Tree(tree);
}

TEST(HostFiles, ATreeHasAllNodesInOrder) {
    const Tree tree = ParseTree(
        "<?xml version=\"1.0\"?>\n<A>\n<B x=\"1\" y=\"&lt;\">t&amp;<C/><D/></B><!-- c -->\n</A>\n<E/>\n");
    EXPECT_EQ(Nodes(tree),
              (std::vector<std::string>{"1 xml '' 1:3 - - 1 version=1.0", "3 A '' 2:2 - 2 6",
                                        "3 B 't&' 3:2 1 3 5 x=1 y=<", "3 C '' 3:26 2 - 4",
                                        "3 D '' 3:30 2 - -", "2  ' c ' 3:41 1 - -", "3 E '' 5:2 - - -"}));
    auto node = Sized<mox_node>();
    auto attribute = Sized<mox_attribute>();
    EXPECT_EQ(mox_tree_node(tree.get(), 7, &node), MOX_OUT_OF_RANGE);
    EXPECT_EQ(mox_tree_node(tree.get(), MOX_NO_NODE, &node), MOX_OUT_OF_RANGE);
    EXPECT_EQ(mox_tree_attribute(tree.get(), 2, 2, &attribute), MOX_OUT_OF_RANGE);
    EXPECT_EQ(mox_tree_attribute(tree.get(), 1, 0, &attribute), MOX_OUT_OF_RANGE) << "those of the next node";
    EXPECT_EQ(mox_tree_attribute(tree.get(), 7, 0, &attribute), MOX_OUT_OF_RANGE);
}

TEST(HostFiles, ATreeMayBeEmptyOrDeep) {
    EXPECT_EQ(mox_tree_count(ParseTree("").get()), 0U);
    std::string deep;
    for (int i = 0; i < 50'000; ++i)
        deep += "<a>";
    for (int i = 0; i < 50'000; ++i)
        deep += "</a>";
    const Tree tree = ParseTree(deep);
    EXPECT_EQ(mox_tree_count(tree.get()), 50'000U);
    auto node = Sized<mox_node>();
    ASSERT_EQ(mox_tree_node(tree.get(), 49'999, &node), MOX_OK);
    EXPECT_EQ(node.parent, 49'998U);
    mox_tree* none = nullptr;
    const Problem problem;
    EXPECT_EQ(mox_tree_parse("<a>", 3, MOX_FORM_DEFAULT, &none, problem), MOX_SYNTAX);
    EXPECT_EQ(problem.Info().line, 1U);
    EXPECT_EQ(mox_tree_parse("<a>", 3, MOX_FORM_UTF8, &none, problem), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(none, nullptr);
}

TEST(HostLibrary, StatusesHaveNamesAndTheLibraryAVersion) {
    EXPECT_STREQ(mox_status_name(MOX_OK), "MOX_OK");
    EXPECT_STREQ(mox_status_name(MOX_INTERNAL_ERROR), "MOX_INTERNAL_ERROR");
    EXPECT_STREQ(mox_status_name(10), "unknown status");
    EXPECT_STREQ(mox_status_name(-1), "unknown status");
    int named = 0;
    for (mox_status status = 0; status < 200; ++status)
        named += std::string(mox_status_name(status)) != "unknown status" ? 1 : 0;
    EXPECT_EQ(named, 29);
    EXPECT_EQ(mox_version(), MOX_TESTED_VERSION);
}

TEST(HostFiles, AreReadInTheFormThatIsSaid) {
    const std::string narrow = "<A/>";
    const std::string wide("<\0A\0/\0>\0", 8);
    mox_tree* tree = nullptr;
    const auto count = [&](const std::string& bytes, uint32_t form) {
        EXPECT_EQ(mox_tree_parse(bytes.data(), bytes.size(), form, &tree, nullptr), MOX_OK);
        return mox_tree_count(Tree(tree).get());
    };
    EXPECT_EQ(count(narrow, MOX_FORM_NARROW), 1U);
    EXPECT_EQ(count(wide, MOX_FORM_WIDE), 1U);
    EXPECT_EQ(count(wide, MOX_FORM_DEFAULT), 1U);
    EXPECT_EQ(mox_tree_parse(narrow.data(), narrow.size(), MOX_FORM_WIDE, &tree, nullptr), MOX_SYNTAX);
    EXPECT_EQ(mox_tree_parse(narrow.data(), narrow.size(), 4, &tree, nullptr), MOX_INVALID_ARGUMENT);
}

TEST(HostFiles, ATextOfATreeEndsWithAZeroByte) {
    const Tree tree = ParseTree("<A b=\"c\">text</A>");
    auto node = Sized<mox_node>();
    ASSERT_EQ(mox_tree_node(tree.get(), 0, &node), MOX_OK);
    EXPECT_STREQ(node.name, "A");
    EXPECT_STREQ(node.value, "text");
    auto attribute = Sized<mox_attribute>();
    ASSERT_EQ(mox_tree_attribute(tree.get(), 0, 0, &attribute), MOX_OK);
    EXPECT_STREQ(attribute.name, "b");
    EXPECT_STREQ(attribute.value, "c");
    EXPECT_EQ(attribute.reserved, 0U);
}

TEST(HostFiles, AListOfNamesHasTheirLengths) {
    const Document document = Settings("<Var name=\"K\" type=\"long\"/><Var name=\"Long\" type=\"long\"/>");
    mox_list* list = nullptr;
    ASSERT_EQ(mox_entry_names(document.get(), MOX_STR("S"), &list, nullptr), MOX_OK);
    const List names(list);
    const char* name = nullptr;
    size_t size = 0;
    EXPECT_EQ(mox_list_count(list), 2U);
    ASSERT_EQ(mox_list_name(list, 1, &name, &size), MOX_OK);
    EXPECT_EQ(size, 4U);
    EXPECT_STREQ(name, "Long");
    EXPECT_EQ(mox_list_name(list, 2, &name, &size), MOX_OUT_OF_RANGE);
    EXPECT_EQ(size, 4U);
}

TEST(HostFiles, ANoteHasItsSeverity) {
    const std::string wide = [] {
        std::string bytes;
        for (const char c : SettingsText("<Var name=\"K\" type=\"string\"><Value>?</Value></Var>"))
            bytes.append(c == '?' ? std::string("\xE4\0", 2) : std::string({c, '\0'}));
        return bytes;
    }();
    const auto notes = Diagnosed(wide);
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes[0].substr(0, 4), "3 1:") << notes[0];
}

}  // namespace
}  // namespace c_host
