// Opening and saving documents, sections, imports, and what a problem says.
#include "tests/c_host/c_host_support.h"

namespace c_host {
namespace {

const std::string kSettings = SettingsText("<Var name=\"K\" type=\"long\"><Value>1</Value></Var>");

std::string Wide(std::string_view ascii) {
    std::string bytes;
    for (const char c : ascii)
        bytes.append(1, c).append(1, '\0');
    return bytes.append(2, '\0');
}

mox_status Open(const ScratchPath& path, uint32_t kind, Document& document,
                const mox_open_options* options = nullptr, mox_problem* problem = nullptr) {
    mox_document* opened = nullptr;
    const mox_status status = mox_open(path.data(), path.size(), kind, options, &opened, problem);
    document.reset(opened);
    return status;
}

mox_status Save(const Document& document, const ScratchPath& path, const mox_save_options* options = nullptr,
                mox_problem* problem = nullptr) {
    return mox_save(document.get(), path.data(), path.size(), options, problem);
}

uint32_t FormOf(const Document& document) {
    auto info = Sized<mox_document_info>();
    EXPECT_EQ(mox_document_get_info(document.get(), &info), MOX_OK);
    return info.form;
}

std::vector<std::string> Sections(const Document& document) {
    mox_list* names = nullptr;
    EXPECT_EQ(mox_section_names(document.get(), &names, nullptr), MOX_OK);
    return Names(List(names).get());
}

TEST(HostDocuments, AFileWithAnyNameIsOpenedChangedAndSaved) {
    const ScratchPath path("host_\xC3\xA4\xE2\x82\xAC.xml");
    path.Write(kSettings);
    Document document;
    ASSERT_EQ(Open(path, MOX_SETTINGS, document), MOX_OK);
    EXPECT_EQ(FormOf(document), static_cast<uint32_t>(MOX_FORM_NARROW));
    ASSERT_EQ(SetText(document, "S", "K", "2"), MOX_OK);
    ASSERT_EQ(Save(document, path), MOX_OK);
    ASSERT_EQ(SetText(document, "S", "K", "3"), MOX_OK);
    ASSERT_EQ(Save(document, path), MOX_OK) << "what was saved is what was read";
    ASSERT_EQ(Open(path, MOX_SETTINGS, document), MOX_OK);
    EXPECT_EQ(TextOf(document, "S", "K"), "3");
}

TEST(HostDocuments, AFileThatSomebodyHasChangedIsNotReplaced) {
    const ScratchPath path("host_changed.xml");
    const ScratchPath backup("host_changed.bak");
    path.Write(kSettings);
    Document document;
    const Problem problem;
    ASSERT_EQ(Open(path, MOX_SETTINGS, document), MOX_OK);
    path.Write("somebody else's");
    EXPECT_EQ(Save(document, path, nullptr, problem), MOX_CHANGED);
    EXPECT_EQ(std::string(problem.Info().file), std::string(path.data(), path.size()));
    EXPECT_EQ(path.Bytes(), "somebody else's");
    auto options = Sized<mox_save_options>();
    options.flags = MOX_SAVE_OVERWRITE;
    options.backup = backup.data();
    options.backup_size = backup.size();
    EXPECT_EQ(Save(document, path, &options), MOX_OK);
    EXPECT_EQ(backup.Bytes(), "somebody else's");
    EXPECT_NE(path.Bytes().find("<Value>1</Value>"), std::string::npos);
}

TEST(HostDocuments, AFileThatDoesNotParseSaysWhere) {
    const ScratchPath path("host_broken.xml");
    path.Write("<Settings>\n  <Table></Tabel></Settings>");
    Document document;
    const Problem problem;
    EXPECT_EQ(Open(path, MOX_SETTINGS, document, nullptr, problem), MOX_SYNTAX);
    EXPECT_EQ(document, nullptr);
    const mox_problem_info info = problem.Info();
    EXPECT_EQ(info.status, MOX_SYNTAX);
    EXPECT_EQ(info.line, 2U);
    EXPECT_EQ(info.column, 10U);
    EXPECT_EQ(std::string(info.file), path.data());
    EXPECT_STREQ(info.found, "\"</Tabel\"");
    EXPECT_NE(std::string(info.text).find(":2:10: found \"</Tabel\", expected"), std::string::npos)
        << info.text;
    EXPECT_EQ(std::string(info.message).find("host_broken"), std::string::npos);
    EXPECT_EQ(mox_open(MOX_STR("no such file"), MOX_SETTINGS, nullptr, nullptr, problem),
              MOX_INVALID_ARGUMENT);
    EXPECT_EQ(problem.Text(), "a handle or an output is null");
    EXPECT_EQ(problem.Info().line, 0U);
    mox_document* none = nullptr;
    EXPECT_EQ(mox_open(MOX_STR("no such file"), MOX_SETTINGS, nullptr, &none, problem), MOX_NOT_FOUND);
}

TEST(HostDocuments, AreOfTheKindThatIsAskedFor) {
    const ScratchPath path("host_kind.xml");
    path.Write(Wide("<Table name=\"T\"/>"));
    Document document;
    EXPECT_EQ(Open(path, MOX_SETTINGS, document), MOX_WRONG_KIND);
    EXPECT_EQ(Open(path, 3, document), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(Open(path, MOX_TABLE, document), MOX_OK);
    auto info = Sized<mox_document_info>();
    EXPECT_EQ(mox_document_get_info(document.get(), &info), MOX_OK);
    EXPECT_EQ(info.kind, static_cast<uint32_t>(MOX_TABLE));
    EXPECT_EQ(info.form, static_cast<uint32_t>(MOX_FORM_WIDE));
    auto options = Sized<mox_open_options>();
    options.table_name = "Other";
    options.table_name_size = 5;
    EXPECT_EQ(Open(path, MOX_TABLE, document, &options), MOX_WRONG_KIND);
    EXPECT_EQ(Open(path, MOX_SETTINGS, document, &options), MOX_INVALID_ARGUMENT);
    options.table_name = "T";
    options.table_name_size = 1;
    EXPECT_EQ(Open(path, MOX_TABLE, document, &options), MOX_OK);
    options = Sized<mox_open_options>();
    options.flags = MOX_OPEN_ANY;
    EXPECT_EQ(Open(path, MOX_SETTINGS, document, &options), MOX_OK);
    EXPECT_EQ(Sections(document), std::vector<std::string>());
    options.flags = 2;
    EXPECT_EQ(Open(path, MOX_SETTINGS, document, &options), MOX_INVALID_ARGUMENT);
    options.flags = 0;
    options.form = MOX_FORM_NARROW;
    EXPECT_EQ(Open(path, MOX_TABLE, document, &options), MOX_SYNTAX);
    options.form = MOX_FORM_UTF8;
    EXPECT_EQ(Open(path, MOX_TABLE, document, &options), MOX_INVALID_ARGUMENT);
}

TEST(HostDocuments, ANarrowTableCanOnlyComeFromMemory) {
    const ScratchPath path("host_narrow_table.xml");
    path.Write("<Table name=\"T\"/>\n");
    Document document;
    EXPECT_EQ(Open(path, MOX_TABLE, document), MOX_WRONG_ENCODING);
    EXPECT_EQ(FormOf(Parse(path.Bytes(), MOX_TABLE)), static_cast<uint32_t>(MOX_FORM_WIDE));
}

TEST(HostDocuments, OtherEncodingsAreImported) {
    const std::string utf8 =
        "\xEF\xBB\xBF" + SettingsText("<Var name=\"K\" type=\"string\"><Value>\xC3\xA4</Value></Var>");
    const std::string latin1 = SettingsText("<Var name=\"K\" type=\"string\"><Value>\xE4</Value></Var>");
    const ScratchPath path("host_utf8.xml");
    path.Write(utf8);
    Document document;
    EXPECT_EQ(Open(path, MOX_SETTINGS, document), MOX_WRONG_ENCODING);
    auto options = Sized<mox_open_options>();
    options.encoding = MOX_ENCODING_UTF8;
    ASSERT_EQ(Open(path, MOX_SETTINGS, document, &options), MOX_OK);
    EXPECT_EQ(TextOf(document, "S", "K"), "\xC3\xA4");
    EXPECT_EQ(Save(document, path), MOX_CHANGED) << "it is in another encoding than the file";
    mox_document* parsed = nullptr;
    EXPECT_EQ(mox_parse(latin1.data(), latin1.size(), MOX_SETTINGS, &options, &parsed, nullptr),
              MOX_WRONG_ENCODING);
    options.encoding = MOX_ENCODING_LATIN1;
    ASSERT_EQ(mox_parse(latin1.data(), latin1.size(), MOX_SETTINGS, &options, &parsed, nullptr), MOX_OK);
    document.reset(parsed);
    EXPECT_EQ(TextOf(document, "S", "K"), "\xC3\xA4");
    const std::string table = "\xEF\xBB\xBF<Table name=\"T\"/>";
    options.encoding = MOX_ENCODING_UTF8;
    EXPECT_EQ(mox_parse(table.data(), table.size(), MOX_TABLE, &options, &parsed, nullptr), MOX_OK);
    document.reset(parsed);
    for (const uint32_t encoding : {6U, 7U, 0xFFFFFFFFU}) {
        options.encoding = encoding;
        EXPECT_EQ(Open(path, MOX_SETTINGS, document, &options), MOX_INVALID_ARGUMENT);
    }
    options.encoding = MOX_ENCODING_UTF8;
    options.form = MOX_FORM_WIDE;
    EXPECT_EQ(Open(path, MOX_SETTINGS, document, &options), MOX_INVALID_ARGUMENT);
}

TEST(HostDocuments, BytesAreThoseOfTheFile) {
    const ScratchPath path("host_bytes.xml");
    const Document document = Parse(kSettings, MOX_SETTINGS);
    for (const uint32_t form : {MOX_FORM_DEFAULT, MOX_FORM_NARROW, MOX_FORM_WIDE}) {
        auto options = Sized<mox_save_options>();
        options.form = form;
        void* bytes = nullptr;
        size_t size = 0;
        ASSERT_EQ(mox_to_bytes(document.get(), &options, &bytes, &size, nullptr), MOX_OK);
        const std::string text(static_cast<char*>(bytes), size);
        EXPECT_EQ(static_cast<char*>(bytes)[size], '\0');
        mox_free(bytes);
        options.flags = MOX_SAVE_OVERWRITE;
        ASSERT_EQ(Save(document, path, &options), MOX_OK);
        EXPECT_EQ(path.Bytes(), text);
        EXPECT_EQ(mox_to_bytes(document.get(), &options, &bytes, &size, nullptr), MOX_INVALID_ARGUMENT)
            << "no overwrite";
    }
    EXPECT_EQ(SavedText(document),
              "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">\n\t<Table name=\"S\">\n"
              "\t\t<Var name=\"K\" type=\"long\">\n\t\t\t<Value>1</Value>\n\t\t</Var>\n\t</Table>\n"
              "</Settings>\n");
    auto options = Sized<mox_save_options>();
    options.form = MOX_FORM_UTF8;
    EXPECT_EQ(Save(document, path, &options), MOX_INVALID_ARGUMENT);
}

TEST(HostDocuments, PartsAreSavedAlone) {
    const Document document = Settings(
        "<Var name=\"K\" type=\"long\"><Value>1</Value><UI control=\"num\" name=\"shown\"/></Var><!-- c -->");
    const auto text = [&](uint32_t content) {
        auto options = Sized<mox_save_options>();
        options.content = content;
        return SavedText(document, options);
    };
    EXPECT_EQ(text(MOX_CONTENT_VALUES).find("shown"), std::string::npos);
    EXPECT_EQ(text(MOX_CONTENT_UI).find("<Value>"), std::string::npos);
    EXPECT_EQ(text(3), "MOX_INVALID_ARGUMENT");
    EXPECT_EQ(SectionText(document, "S").substr(0, 16), "<Table name=\"S\">");
    EXPECT_EQ(SectionText(document, "R"), "MOX_NO_SUCH_SECTION");
    auto part = Sized<mox_save_options>();
    part.content = MOX_CONTENT_UI;
    EXPECT_EQ(SavedText(Table(""), part), "MOX_INVALID_ARGUMENT") << "a table is saved as it is";
    part.section = "S";
    part.section_size = 1;
    EXPECT_EQ(SavedText(document, part), "MOX_INVALID_ARGUMENT");
    auto options = Sized<mox_save_options>();
    options.form = MOX_FORM_NARROW;
    const Document table = Table("");
    void* bytes = nullptr;
    size_t size = 0;
    EXPECT_EQ(mox_to_bytes(table.get(), &options, &bytes, &size, nullptr), MOX_INVALID_ARGUMENT);
    options.form = MOX_FORM_WIDE;
    EXPECT_EQ(mox_to_bytes(table.get(), &options, &bytes, &size, nullptr), MOX_OK);
    mox_free(bytes);
    options.backup = "b";
    options.backup_size = 1;
    EXPECT_EQ(mox_to_bytes(table.get(), &options, &bytes, &size, nullptr), MOX_INVALID_ARGUMENT);
}

TEST(HostDocuments, TextThatANarrowFileLosesIsNotSavedInOne) {
    mox_document* made = nullptr;
    ASSERT_EQ(mox_new_settings(&made, nullptr), MOX_OK);
    const Document document(made);
    EXPECT_EQ(FormOf(document), static_cast<uint32_t>(MOX_FORM_WIDE));
    ASSERT_EQ(SetText(document, "S", "K", "\xC3\xA4"), MOX_OK);
    ASSERT_EQ(mox_set_form(document.get(), MOX_FORM_NARROW, nullptr), MOX_OK);
    const ScratchPath path("host_lossy.xml");
    EXPECT_EQ(Save(document, path), MOX_NOT_KEPT);
    EXPECT_EQ(SetText(document, "S", "L", "\xC3\xA4"), MOX_NOT_KEPT);
    EXPECT_EQ(mox_set_form(document.get(), MOX_FORM_DEFAULT, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_set_form(document.get(), MOX_FORM_UTF8, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_set_form(Table("").get(), MOX_FORM_NARROW, nullptr), MOX_INVALID_ARGUMENT);
}

TEST(HostDocuments, ANewTableHasItsNameAndOptions) {
    auto options = Sized<mox_table_options>();
    options.editable = 1;
    options.first_id = 100;
    options.type = 7;
    mox_document* made = nullptr;
    ASSERT_EQ(mox_new_table(MOX_STR("Tools"), &options, &made, nullptr), MOX_OK);
    const Document table(made);
    EXPECT_NE(SavedText(table).find("name=\"Tools\" first_id=\"100\" type=\"0007\" editable=\"true\"/>"),
              std::string::npos)
        << SavedText(table);
    options.type = 0x10000;
    EXPECT_EQ(mox_new_table(MOX_STR("Tools"), &options, &made, nullptr), MOX_INVALID_ARGUMENT);
    options.type = 0;
    options.editable = 2;
    EXPECT_EQ(mox_new_table(MOX_STR("Tools"), &options, &made, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_new_table("a\0b", 3, nullptr, &made, nullptr), MOX_INVALID_TEXT);
    EXPECT_EQ(made, table.get());
}

TEST(HostDocuments, SectionsAreMadeListedAndRemoved) {
    const Document document = Settings("");
    mox_document* const d = document.get();
    auto options = Sized<mox_table_options>();
    options.editable = 1;
    EXPECT_EQ(mox_make_section(d, MOX_STR("Made"), &options, nullptr), MOX_OK);
    EXPECT_EQ(Sections(document), (std::vector<std::string>{"S", "Made"}));
    auto info = Sized<mox_section_info>();
    EXPECT_EQ(mox_section_get_info(d, MOX_STR("Made"), &info, nullptr), MOX_OK);
    EXPECT_EQ(info.editable, 1U);
    EXPECT_EQ(mox_section_get_info(d, MOX_STR("S"), &info, nullptr), MOX_OK);
    EXPECT_EQ(info.editable, 0U);
    EXPECT_EQ(mox_section_get_info(d, MOX_STR("R"), &info, nullptr), MOX_NO_SUCH_SECTION);
    EXPECT_EQ(mox_remove_section(d, MOX_STR("S"), nullptr), MOX_OK);
    EXPECT_EQ(mox_remove_section(d, MOX_STR("S"), nullptr), MOX_NO_SUCH_SECTION);
    EXPECT_EQ(Sections(document), (std::vector<std::string>{"Made"}));
    mox_list* names = nullptr;
    const Document table = Table("");
    EXPECT_EQ(mox_section_names(table.get(), &names, nullptr), MOX_WRONG_KIND);
    EXPECT_EQ(mox_make_section(table.get(), MOX_STR("S"), nullptr, nullptr), MOX_WRONG_KIND);
    EXPECT_EQ(mox_remove_section(table.get(), MOX_STR("S"), nullptr), MOX_WRONG_KIND);
    EXPECT_EQ(mox_section_get_info(table.get(), MOX_STR("S"), &info, nullptr), MOX_WRONG_KIND);
}

TEST(HostDocuments, AnImportIsRefusedLikeAFile) {
    const ScratchPath path("host_import.xml");
    Document document;
    const Problem problem;
    auto options = Sized<mox_open_options>();
    options.encoding = MOX_ENCODING_LATIN1;
    EXPECT_EQ(Open(path, MOX_SETTINGS, document, &options, problem), MOX_NOT_FOUND);
    path.Write("<Table name=\"\xE4\"/>");
    EXPECT_EQ(Open(path, MOX_SETTINGS, document, &options, problem), MOX_WRONG_KIND);
    EXPECT_EQ(std::string(problem.Info().file), path.data());
    ASSERT_EQ(Open(path, MOX_TABLE, document, &options), MOX_OK);
    EXPECT_NE(SavedText(document).find("name=\"\xC3\xA4\""), std::string::npos);
    options.table_name = "\xC3\xA4";
    options.table_name_size = 2;
    EXPECT_EQ(Open(path, MOX_TABLE, document, &options), MOX_OK);
    options.table_name_size = 0;
    options.table_name = "T";
    options.table_name_size = 1;
    EXPECT_EQ(Open(path, MOX_TABLE, document, &options), MOX_WRONG_KIND);
    options = Sized<mox_open_options>();
    options.encoding = MOX_ENCODING_LATIN1;
    options.flags = MOX_OPEN_ANY;
    EXPECT_EQ(Open(path, MOX_TABLE, document, &options), MOX_INVALID_ARGUMENT);
}

TEST(HostDocuments, EachEncodingIsImported) {
    const std::string ascii = SettingsText("<Var name=\"K\" type=\"long\"><Value>5</Value></Var>");
    std::string wide;
    std::string bigEndian;
    for (const char c : ascii) {
        wide.append({c, '\0'});
        bigEndian.append({'\0', c});
    }
    const auto read = [](const std::string& bytes, uint32_t encoding) {
        auto options = Sized<mox_open_options>();
        options.encoding = encoding;
        mox_document* made = nullptr;
        const mox_status status =
            mox_parse(bytes.data(), bytes.size(), MOX_SETTINGS, &options, &made, nullptr);
        const Document document(made);
        return status == MOX_OK ? TextOf(document, "S", "K") : mox_status_name(status);
    };
    for (const uint32_t encoding : {MOX_ENCODING_NARROW, MOX_ENCODING_UTF8, MOX_ENCODING_LATIN1}) {
        EXPECT_EQ(read(ascii, encoding), "5") << encoding;
        EXPECT_NE(read(bigEndian, encoding), "5") << encoding;
    }
    EXPECT_EQ(read(wide, MOX_ENCODING_WIDE), "5");
    EXPECT_NE(read(bigEndian, MOX_ENCODING_WIDE), "5");
    EXPECT_EQ(read(bigEndian, MOX_ENCODING_UTF16BE), "5");
    EXPECT_NE(read(wide, MOX_ENCODING_UTF16BE), "5");
    EXPECT_EQ(read(ascii, MOX_ENCODING_ZEROS), "MOX_INVALID_ARGUMENT");
}

TEST(HostDocuments, AFileHasWhatTheOptionsSay) {
    const ScratchPath path("host_options.xml");
    const Document document =
        Settings("<Var name=\"K\" type=\"long\"><Value>1</Value><UI control=\"num\" name=\"shown\"/></Var>");
    auto options = Sized<mox_save_options>();
    for (const uint32_t content : {MOX_CONTENT_DOCUMENT, MOX_CONTENT_UI, MOX_CONTENT_VALUES}) {
        options.flags = MOX_SAVE_OVERWRITE;
        options.content = content;
        ASSERT_EQ(Save(document, path, &options), MOX_OK);
        EXPECT_EQ(path.Bytes().find("shown") != std::string::npos, content != MOX_CONTENT_VALUES) << content;
        EXPECT_EQ(path.Bytes().find("<Value>1") != std::string::npos, content != MOX_CONTENT_UI) << content;
    }
    options.content = MOX_CONTENT_DOCUMENT;
    options.section = "S";
    options.section_size = 1;
    ASSERT_EQ(Save(document, path, &options), MOX_OK);
    EXPECT_EQ(path.Bytes().substr(0, 14), std::string("<\0T\0a\0b\0l\0e\0 \0", 14)) << "wide";
    options.flags = 0;
    EXPECT_EQ(Save(document, path, &options), MOX_CHANGED) << "a section is no file that was read";
    options.section = "R";
    EXPECT_EQ(Save(document, path, &options), MOX_NO_SUCH_SECTION);
    options.section = nullptr;
    options.section_size = 0;
    options.flags = 2;
    EXPECT_EQ(Save(document, path, &options), MOX_INVALID_ARGUMENT);
    options.flags = 0;
    for (const uint32_t form : {4U, 0xFFFFFFFFU}) {
        options.form = form;
        EXPECT_EQ(Save(document, path, &options), MOX_INVALID_ARGUMENT);
        EXPECT_EQ(mox_set_form(document.get(), form, nullptr), MOX_INVALID_ARGUMENT);
    }
    EXPECT_EQ(Save(Table(""), path, &options), MOX_INVALID_ARGUMENT);
}

TEST(HostDocuments, AnEmptyNameOfASectionIsAName) {
    const Document document = Settings("<Var name=\"K\" type=\"long\"/>");
    auto options = Sized<mox_save_options>();
    options.section = "";
    EXPECT_EQ(SavedText(document, options), "MOX_NO_SUCH_SECTION");
    EXPECT_EQ(SavedText(Table("")).find("<Table name=\"T\""),
              SavedText(Table(""), options).find("<Table name=\"T\""))
        << "it is that of the table of a table document";
}

TEST(HostDocuments, AProblemIsThatOfTheLastCall) {
    const Problem problem;
    EXPECT_EQ(problem.Status(), MOX_OK);
    EXPECT_STREQ(problem.Info().text, "");
    mox_document* none = nullptr;
    const auto parse = [&](std::string_view text, uint32_t kind) {
        return mox_parse(text.data(), text.size(), kind, nullptr, &none, problem);
    };
    EXPECT_EQ(parse("<Settings>\n<a b=c/>", MOX_SETTINGS), MOX_SYNTAX);
    const mox_problem_info info = problem.Info();
    EXPECT_EQ(info.line, 2U);
    EXPECT_EQ(info.column, 6U);
    EXPECT_STREQ(info.found, "\"c\"");
    EXPECT_EQ(info.found_size, 3U);
    EXPECT_NE(info.expected_size, 0U);
    EXPECT_EQ(std::string(info.expected).size(), info.expected_size);
    EXPECT_EQ(std::string(info.message), "found \"c\", expected " + std::string(info.expected));
    EXPECT_EQ(std::string(info.message).size(), info.message_size);
    EXPECT_EQ(std::string(info.text), "2:6: " + std::string(info.message));
    EXPECT_EQ(info.file_size, 0U);
    EXPECT_STREQ(info.file, "");

    EXPECT_EQ(parse("", 9), MOX_INVALID_ARGUMENT);
    EXPECT_STREQ(problem.Info().text, "the kind of document is unknown");
    EXPECT_STREQ(problem.Info().message, "the kind of document is unknown");
    EXPECT_EQ(problem.Info().found_size + problem.Info().expected_size, 0U);
    EXPECT_EQ(problem.Info().line + problem.Info().column, 0U);

    EXPECT_EQ(parse("<a/>", MOX_SETTINGS), MOX_WRONG_KIND);
    EXPECT_NE(problem.Text(), "the kind of document is unknown");
    EXPECT_EQ(problem.Text(), problem.Info().message);

    EXPECT_EQ(mox_new_settings(&none, problem), MOX_OK);
    mox_document_free(none);
    EXPECT_EQ(problem.Status(), MOX_OK);
    EXPECT_STREQ(problem.Info().text, "");
    EXPECT_EQ(problem.Info().message_size, 0U);
}

TEST(HostDocuments, SectionsAndTablesHaveTheirOptions) {
    const Document document = Settings("");
    auto options = Sized<mox_table_options>();
    options.first_id = 4000000000;
    options.type = 0xFFFF;
    EXPECT_EQ(mox_make_section(document.get(), MOX_STR("Made"), &options, nullptr), MOX_OK);
    EXPECT_NE(SectionText(document, "Made").find("name=\"Made\" first_id=\"4000000000\" type=\"FFFF\""),
              std::string::npos)
        << SectionText(document, "Made");
    options.type = 0x10000;
    EXPECT_EQ(mox_make_section(document.get(), MOX_STR("Other"), &options, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_make_section(document.get(), MOX_STR("\xC3\xA4"), nullptr, nullptr), MOX_NOT_KEPT);
    EXPECT_EQ(Sections(document), (std::vector<std::string>{"S", "Made"}));
    mox_document* made = nullptr;
    const Problem problem;
    EXPECT_EQ(mox_new_table(MOX_STR("a\x01z"), nullptr, &made, problem), MOX_NOT_KEPT);
    EXPECT_EQ(
        problem.Text(),
        "the name contains the control character U+0001, with which other XML programs cannot read the file");
    EXPECT_EQ(mox_new_table(MOX_STR("\xFF"), nullptr, &made, problem), MOX_INVALID_TEXT);
    EXPECT_EQ(problem.Text(), "the name is not UTF-8, contains a zero, or is null");
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(mox_new_table(nullptr, 0, nullptr, &made, problem), MOX_OK) << "a name may be empty";
    EXPECT_EQ(problem.Status(), MOX_OK);
    mox_document_free(made);
}

}  // namespace
}  // namespace c_host
