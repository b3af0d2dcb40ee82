// What a Document holds of a file.
#include "mox_xmlApi/document/document.hpp"

#include <vector>

#include "tests/document/document_support.h"
#include "tests/host/host_support.h"

namespace document_tests {
namespace {

using mox::DocumentKind;
using mox::Form;
using mox::NodeKind;
using mox::Position;
using mox::Reason;

TEST(Document, KindIsThatOfTheElementHostsUse) {
    const auto kind = [](const std::string& bytes) { return Parsed(bytes).kind(); };
    EXPECT_EQ(kind(Settings("")), DocumentKind::Settings);
    EXPECT_EQ(kind("<Settings xsi:noNamespaceSchemaLocation=\"\"/>"), DocumentKind::Settings);
    EXPECT_EQ(kind("<Settings/>"), DocumentKind::Other);
    EXPECT_EQ(kind("<Table/>"), DocumentKind::Table);
    EXPECT_EQ(kind("<Table/>\n" + Settings("")), DocumentKind::Settings);
    EXPECT_EQ(kind("<Settings/>\n<Table/>"), DocumentKind::Table);
    EXPECT_EQ(kind("<svg/>"), DocumentKind::Other);
    EXPECT_EQ(kind(""), DocumentKind::Other);
    EXPECT_EQ(mox::describe(DocumentKind::Settings), "settings document");
    EXPECT_EQ(mox::describe(DocumentKind::Table), "table document");
    EXPECT_EQ(mox::describe(DocumentKind::Other), "document without settings or a table");
}

TEST(Document, OtherDocumentsHaveNoRootAndNoTables) {
    const mox::Document document = Parsed("<svg><Table name=\"T\"/></svg>");
    EXPECT_FALSE(document.root());
    EXPECT_TRUE(document.tables().empty());
    EXPECT_EQ(document.findTable("T"), nullptr);
    EXPECT_EQ(document.findEntry("T", "a"), nullptr);
    EXPECT_EQ((*document.nodes().begin()).name(), "svg");
}

TEST(Document, FormIsDetectedUnlessGiven) {
    EXPECT_EQ(Parsed("<a/>").form(), Form::Narrow);
    EXPECT_EQ(Parsed(Utf16Le("<a/>")).form(), Form::Wide);
    EXPECT_EQ(Parsed("").form(), Form::Wide);
    EXPECT_EQ(Parsed("", Form::Narrow).form(), Form::Narrow);
    EXPECT_EQ(Parsed("<a/>").encoding().encoding, mox::Encoding::Narrow);
    EXPECT_EQ(Parsed("<a>\xC3\xA4</a>").encoding().encoding, mox::Encoding::Utf8);
    EXPECT_FALSE(mox::Document::parse("<a/>", Form::Wide).has_value());
}

TEST(Document, TheHeaderOfASectionIsRead) {
    const mox::Document document =
        Parsed(Settings("<Table name=\"Camera\" first_id=\"4000000000\" type=\"00fe\" editable=\"true\" "
                        "eud=\"true\"/><Table/><Other name=\"O\" type=\"1FFFF\" editable=\"yes\"/>"));
    ASSERT_EQ(document.tables().size(), 3U);
    const mox::DocumentTable& camera = document.tables()[0];
    EXPECT_TRUE(camera.isTable);
    EXPECT_TRUE(camera.hasName);
    EXPECT_EQ(camera.name, "Camera");
    EXPECT_EQ(camera.firstId, 2147483647U);  // as hosts have always seen it
    EXPECT_EQ(camera.type, 0xFE);
    EXPECT_TRUE(camera.isEditable);
    EXPECT_TRUE(camera.hasEud);
    const mox::DocumentTable& unnamed = document.tables()[1];
    EXPECT_TRUE(unnamed.isTable);
    EXPECT_FALSE(unnamed.hasName);
    EXPECT_FALSE(unnamed.isEditable);
    const mox::DocumentTable& other = document.tables()[2];
    EXPECT_FALSE(other.isTable);
    EXPECT_EQ(other.name, "O");
    EXPECT_EQ(other.type, 0xFFFF);
    EXPECT_FALSE(other.isEditable);
}

TEST(Document, AnEntryHasAllThatIsInTheFile) {
    const mox::Document document = Parsed(
        Section("<Var name=\"Gain\" id=\"103\" type=\"double\" array=\"vector\" loc=\"true\" eud=\"true\">"
                "<Value loc=\"true\">1.25</Value>"
                "<UI control=\"num\" access=\"hidden\" flags=\"00ff\" prov_index=\"4\" prov_owner=\"erg\" "
                "regen=\"r\" name=\"Shown\" minVal=\"1.0\" maxVal=\"8.0\">"
                "<Comment>c &amp; d</Comment><Value loc=\"true\">2</Value></UI></Var>"));
    const mox::DocumentEntry* const gain = document.findEntry("S", "Gain");
    ASSERT_NE(gain, nullptr);
    EXPECT_TRUE(gain->isReadable);
    EXPECT_EQ(gain->name, "Gain");
    EXPECT_EQ(gain->type, "double");
    EXPECT_EQ(gain->shape, "vector");
    EXPECT_EQ(gain->describeType(), "double vector");
    EXPECT_EQ(gain->id, 103U);
    EXPECT_TRUE(gain->hasEud);
    EXPECT_TRUE(gain->isLocalised);
    EXPECT_TRUE(gain->isValueLocalised);
    EXPECT_EQ(gain->value, "1.25");
    EXPECT_EQ(gain->effectiveValue(), "1.25");
    ASSERT_NE(gain->ui, nullptr);
    EXPECT_EQ(gain->ui->control, "num");
    EXPECT_EQ(gain->ui->access, "hidden");
    EXPECT_EQ(gain->ui->flags, 0xFF);
    EXPECT_EQ(gain->ui->providerIndex, 4U);
    EXPECT_EQ(gain->ui->provider, "erg");
    EXPECT_EQ(gain->ui->regen, "r");
    EXPECT_EQ(gain->ui->shownName, "Shown");
    EXPECT_EQ(gain->ui->minimum, "1.0");
    EXPECT_EQ(gain->ui->maximum, "8.0");
    EXPECT_EQ(gain->ui->comment, "c & d");
    EXPECT_EQ(gain->ui->value, "2");
    EXPECT_TRUE(gain->ui->isLocalised);
}

TEST(Document, WhatIsMissingIsWhatTheLibraryReadsThen) {
    const mox::Document document =
        Parsed(Section("<Var type=\"long\"/><Var name=\"\" type=\"bool\"><UI/></Var>"));
    const std::vector<mox::DocumentEntry>& entries = document.tables()[0].entries;
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_TRUE(entries[0].isReadable);
    EXPECT_FALSE(entries[0].hasName);
    EXPECT_EQ(entries[0].id, 0U);
    EXPECT_EQ(entries[0].shape, "");
    EXPECT_EQ(entries[0].value, "");
    EXPECT_EQ(entries[0].ui, nullptr);
    EXPECT_EQ(entries[0].effectiveValue(), "");
    EXPECT_TRUE(entries[1].hasName);
    ASSERT_NE(entries[1].ui, nullptr);
    EXPECT_EQ(entries[1].ui->control, "text");
    EXPECT_EQ(entries[1].ui->access, "");
    EXPECT_EQ(entries[1].ui->flags, 0);
    EXPECT_EQ(entries[1].ui->provider, "");
}

TEST(Document, AnEmptyValueIsReplacedByThatOfThePresentationData) {
    const mox::Document document =
        Parsed(Section("<Var name=\"a\" type=\"long\"><Value/><UI><Value>7</Value></UI></Var>"));
    EXPECT_EQ(document.findEntry("S", "a")->value, "");
    EXPECT_EQ(document.findEntry("S", "a")->effectiveValue(), "7");
}

TEST(Document, AnEntryWithoutAKnownTypeIsNotReadable) {
    const mox::Document document = Parsed(
        Section("<Var name=\"a\" type=\"complex\" eud=\"true\"><Value>1</Value></Var><Foreign name=\"b\"/>"));
    const std::vector<mox::DocumentEntry>& entries = document.tables()[0].entries;
    EXPECT_FALSE(entries[0].isReadable);
    EXPECT_EQ(entries[0].name, "a");
    EXPECT_EQ(entries[0].type, "complex");
    EXPECT_EQ(entries[0].describeType(), "unknown type complex");
    EXPECT_TRUE(entries[0].hasEud);
    EXPECT_FALSE(entries[1].isReadable);
    EXPECT_EQ(entries[1].name, "b");
    EXPECT_EQ(entries[1].describeType(), "no type");
    EXPECT_EQ(entries[1].node.name(), "Foreign");
    EXPECT_EQ(document.findEntry("S", "a"), nullptr);
}

TEST(Document, TextsAreUtf8) {
    const mox::Document wide = Parsed(
        Utf16Le(Section("<Var name=\"\xC3\xA4\" type=\"ucstring\"><Value>\xF0\x9F\x95\x92</Value></Var>")));
    ASSERT_NE(wide.findEntry("S", "\xC3\xA4"), nullptr);
    EXPECT_EQ(wide.findEntry("S", "\xC3\xA4")->value, "\xF0\x9F\x95\x92");
    // Narrow bytes beyond ASCII are what the library makes of them, here U+FFE4.
    const mox::Document narrow = Parsed(Section("<Var name=\"\xE4\" type=\"bool\"/>"));
    EXPECT_EQ(narrow.tables()[0].entries[0].name, "\xEF\xBF\xA4");
}

TEST(Document, ATextThatEndsAtAZeroIsReadUpToThere) {
    const mox::Document document = Parsed(Settings("") + "\0<more/>"s);
    EXPECT_EQ(document.kind(), DocumentKind::Settings);
    EXPECT_EQ(document.encoding().unreadBytes, 7U);
    EXPECT_EQ(document.units().size(), Settings("").size());
}

TEST(Document, HighByteFirstIsEmptyAsForHosts) {
    const mox::Document document = Parsed(Utf16Be(Settings("")));
    EXPECT_EQ(document.kind(), DocumentKind::Other);
    EXPECT_TRUE(document.nodes().empty());
    EXPECT_EQ(document.encoding().encoding, mox::Encoding::Utf16Be);
}

TEST(Document, MovingKeepsNodesAndEntries) {
    mox::Document first = Parsed(Section("<Var name=\"a\" type=\"bool\"/>"));
    const mox::DocumentEntry* const entry = first.findEntry("S", "a");
    const mox::DocumentNode root = first.root();
    mox::Document second = std::move(first);
    EXPECT_EQ(second.findEntry("S", "a"), entry);
    EXPECT_EQ(second.root(), root);
    EXPECT_EQ(entry->node.name(), "Var");
    second = Parsed("<a/>");
    EXPECT_EQ(second.kind(), DocumentKind::Other);
}

// ---- nodes

TEST(DocumentNode, CommentsAndForeignElementsAreInTheirPlaces) {
    const mox::Document document =
        Parsed("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- top -->\n" +
               Settings("<!--one-->\n<Table name=\"S\"><!--two--><Var name=\"a\" type=\"bool\" unit=\"mm\">"
                        "<Value>1</Value><Extra k=\"v\" k=\"w\"> x <deep/> y</Extra></Var></Table><svg/>"));
    std::vector<std::string> names;
    for (const mox::DocumentNode node : document.nodes())
        names.push_back(node.name() + "|" + node.text());
    EXPECT_EQ(names, (std::vector<std::string>{"xml|", "| top ", "Settings|"}));
    const mox::DocumentNode declaration = *document.nodes().begin();
    EXPECT_EQ(declaration.kind(), NodeKind::Declaration);
    EXPECT_EQ(declaration.attribute("encoding"), "UTF-8");
    EXPECT_EQ(declaration.next().kind(), NodeKind::Comment);
    EXPECT_EQ(declaration.next().attribute("encoding"), std::nullopt);

    const mox::DocumentNode root = document.root();
    EXPECT_FALSE(root.parent());
    EXPECT_EQ(root.firstChild().text(), "one");
    const mox::DocumentNode section = root.firstChild().next();
    EXPECT_TRUE(section.isElement("Table"));
    EXPECT_FALSE(section.isElement("Tabl"));
    EXPECT_FALSE(section.isElement("Tables"));
    EXPECT_EQ(section, document.tables()[0].node);
    EXPECT_EQ(section.next().name(), "svg");
    EXPECT_FALSE(section.next().next());
    EXPECT_EQ(section.firstChild().text(), "two");

    const mox::DocumentEntry& entry = document.tables()[0].entries[0];
    EXPECT_EQ(entry.node.attribute("unit"), "mm");
    EXPECT_EQ(entry.node.attribute("none"), std::nullopt);
    const mox::DocumentNode extra = entry.node.firstChild().next();
    EXPECT_EQ(extra.text(), "x \ny");
    EXPECT_EQ(extra.parent(), entry.node);
    EXPECT_EQ(extra.firstChild().name(), "deep");
    const std::vector<mox::DocumentAttribute> attributes = extra.attributes();
    ASSERT_EQ(attributes.size(), 2U);
    EXPECT_EQ(attributes[0].name + "=" + attributes[0].value, "k=v");
    EXPECT_EQ(attributes[1].name + "=" + attributes[1].value, "k=w");
    EXPECT_EQ(extra.attribute("k"), "v");
}

TEST(DocumentNode, ANullNodeIsEmpty) {
    const mox::DocumentNode node;
    EXPECT_FALSE(node);
    EXPECT_EQ(node.kind(), NodeKind::None);
    EXPECT_EQ(node.name(), "");
    EXPECT_EQ(node.text(), "");
    EXPECT_FALSE(node.isElement(""));
    EXPECT_TRUE(node.attributes().empty());
    EXPECT_EQ(node.attribute("a"), std::nullopt);
    EXPECT_FALSE(node.parent());
    EXPECT_FALSE(node.firstChild());
    EXPECT_FALSE(node.next());
    EXPECT_TRUE(node.children().empty());
    EXPECT_EQ(node.position(), (Position{1, 1}));
    EXPECT_EQ(mox::DocumentTable().find("a"), nullptr);
}

// ---- positions

TEST(DocumentPosition, IsThatOfTheName) {
    for (const bool isWide : {false, true}) {
        const std::string text =
            "<?xml version=\"1.0\"?>\n<!---->\r\n\n <a>&lt;&amp;\n\t<b  c=\"&lt;\"\n d=\"\"/></a>";
        const mox::Document document = Parsed(isWide ? Utf16Le(text) : text);
        const mox::DocumentNode declaration = *document.nodes().begin();
        EXPECT_EQ(declaration.position(), (Position{1, 3}));
        EXPECT_EQ(declaration.positionOfAttribute(0), (Position{1, 7}));
        EXPECT_EQ(declaration.next().position(), (Position{2, 5}));
        const mox::DocumentNode a = declaration.next().next();
        EXPECT_EQ(a.position(), (Position{4, 3}));
        const mox::DocumentNode b = a.firstChild();
        EXPECT_EQ(b.position(), (Position{5, 3}));
        EXPECT_EQ(b.positionOfAttribute(0), (Position{5, 6}));
        EXPECT_EQ(b.positionOfAttribute(1), (Position{6, 2}));
        EXPECT_EQ(b.positionOfAttribute(2), (Position{1, 1}));
        EXPECT_EQ(document.positionAt(0), (Position{1, 1}));
        EXPECT_EQ(document.positionAt(21), (Position{1, 22}));
        EXPECT_EQ(document.positionAt(22), (Position{2, 1}));
        EXPECT_EQ(document.positionAt(text.size()), (Position{6, 12}));
    }
}

TEST(DocumentPosition, ColumnsCountUnits) {
    EXPECT_EQ((*Parsed(Utf16Le("<a>\xF0\x9F\x95\x92<b/></a>")).nodes().begin()).firstChild().position(),
              (Position{1, 7}));
    EXPECT_EQ((*Parsed("<a>\xF0\x9F\x95\x92<b/></a>").nodes().begin()).firstChild().position(),
              (Position{1, 9}));
}

TEST(Document, SyntaxErrorsHaveTheirPlaceAndWhatWasExpected) {
    mox::Problem problem;
    EXPECT_FALSE(mox::Document::parse("<Table>\n &lt;\n</Tabel>", std::nullopt, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::Syntax);
    EXPECT_EQ(problem.line, 3U);
    EXPECT_EQ(problem.column, 1U);
    EXPECT_EQ(problem.found, "\"</Tabel\"");
    EXPECT_EQ(problem.expected, "\"</Table>\" to close the element that begins on line 1");
    EXPECT_EQ(problem.toString(),
              "3:1: found \"</Tabel\", expected \"</Table>\" to close the element that begins on line 1");
    EXPECT_FALSE(mox::Document::parse("<").has_value());
}

TEST(Document, AByteOrderMarkIsAProblemOfTheEncoding) {
    mox::Problem problem;
    EXPECT_FALSE(mox::Document::parse("\xEF\xBB\xBF<a/>", std::nullopt, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::Encoding);
    EXPECT_EQ(
        problem.toString(),
        "1:1: found a byte-order mark, expected \"<\" (byte-order marks are not supported); the text is "
        "UTF-8 with a byte-order mark");
    EXPECT_EQ(problem.found, "a byte-order mark");
    EXPECT_FALSE(mox::Document::parse("\xFE\xFF" + Utf16Be("<a/>"), std::nullopt, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::Encoding);
    EXPECT_EQ(problem.line, 1U);
    EXPECT_EQ(problem.column, 1U);
}

// ---- files

TEST(DocumentFile, IsReadFromItsPath) {
    const host::ScratchFile file(u"document_\u00E4.xml");
    const std::string path = mox::toUtf8(file.Path().u16string());
    host::WriteBytes(file.Path(), Section("<Var name=\"a\" type=\"long\"><Value>1</Value></Var>") + "\0"s);
    mox::Problem problem;
    const std::optional<mox::Document> document = mox::Document::read(path, std::nullopt, &problem);
    ASSERT_TRUE(document.has_value()) << problem.toString();
    EXPECT_EQ(problem.reason, Reason::None);
    EXPECT_EQ(document->findEntry("S", "a")->value, "1");
    EXPECT_EQ(document->form(), Form::Narrow);
    EXPECT_FALSE(mox::Document::read(path, Form::Wide).has_value());
}

TEST(DocumentFile, AProblemNamesTheFile) {
    const host::ScratchFile file(u"document_bad.xml");
    const std::string path = mox::toUtf8(file.Path().u16string());
    mox::Problem problem;
    EXPECT_FALSE(mox::Document::read(path, std::nullopt, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::NotFound);
    EXPECT_EQ(problem.file, path);
    host::WriteBytes(file.Path(), "<a>\n</b>");
    EXPECT_FALSE(mox::Document::read(path, std::nullopt, &problem).has_value());
    EXPECT_EQ(problem.reason, Reason::Syntax);
    EXPECT_EQ(problem.toString(),
              path +
                  ":2:1: found \"</b\", expected \"</a>\" to close the element that begins "
                  "on line 1");
}

}  // namespace
}  // namespace document_tests
