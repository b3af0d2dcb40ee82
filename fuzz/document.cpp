// The read-only model of documents, held against the model of the parser and against the exports. The first byte says how
// the others become a file:
//
//   'n'  a narrow file with these bytes
//   'w'  a wide file with these bytes
//   'e'  a wide file in which each byte becomes one unit, except that a byte from 0xF0 on and the two bytes after it
//        become one: the unit in these two bytes
//
// For any other first byte the form is detected; its lowest bit says whether the other bytes become a file as they are or
// as after 'e'.
#include "mox_xmlApi/document/document.hpp"

#include <algorithm>
#include <iterator>

#include "fuzz/read_everything.h"
#include "fuzz/tree_check.h"
#include "fuzz/work.h"
#include "mox_xmlApi/document/diagnose.hpp"
#include "mox_xmlApi/document/inspect.hpp"
#include "mox_xmlApi/entries/entry_codes.h"

namespace mox::fuzz {
namespace {

constexpr std::size_t kMostByName = 20;

// The units of an input in which a byte is a unit, but of 0xF0 and above: the two bytes after it are one.
WideString UnitsOfInput(std::string_view bytes) {
    WideString units;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        unsigned unit = static_cast<unsigned char>(bytes[i]);
        if (unit >= 0xF0 && i + 2 < bytes.size()) {
            unit = static_cast<unsigned char>(bytes[i + 1]) |
                   static_cast<unsigned>(static_cast<unsigned char>(bytes[i + 2])) << 8;
            i += 2;
        }
        units += static_cast<wchar16>(unit);
    }
    return units;
}

WideString UnitsOf(const std::string& utf8) {
    return front::UnitsOf<wchar16>(utf8).value();
}

// The value of a key as hosts read it; nullopt if there is no such key.
std::optional<WideString> ReadKey(moxSettings* profile, const WideString& section, const WideString& key) {
    const wchar16 missing[] = {'?', 0};
    wchar16 start[2] = {};
    const std::uint32_t length =
        xmlGetProfileString(profile, section.c_str(), key.c_str(), nullptr, 0, nullptr);
    if (length == 0) {
        const bool isMissing =
            xmlGetProfileString(profile, section.c_str(), key.c_str(), start, 2, missing) != 0;
        return isMissing ? std::nullopt : std::optional<WideString>(WideString());
    }
    WideString text(std::size_t{length} + 1, wchar16{0});
    xmlGetProfileString(profile, section.c_str(), key.c_str(), text.data(), length + 1, nullptr);
    text.resize(length);
    return text;
}

// Whether the text has an unpaired surrogate: its UTF-8 form begins with this byte and one from 0xA0 on.
bool HasUnpaired(const std::string& utf8) {
    for (std::size_t at = utf8.find('\xED'); at != std::string::npos; at = utf8.find('\xED', at + 1)) {
        if (static_cast<unsigned char>(utf8[at + 1]) >= 0xA0) return true;
    }
    return false;
}

void CompareEntries(const DocumentTable& table, void* handle) {
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    for (const DocumentEntry& entry : table.entries) {
        const bool isRead = xmlTableEntryGet(handle, &position, &value, &ui);
        // Records of most types have no form for a value with an unpaired surrogate.
        if (entry.isReadable &&
            (HasUnpaired(entry.value) || (entry.ui != nullptr && HasUnpaired(entry.ui->value))))
            continue;
        Check(isRead == entry.isReadable, "hosts read exactly the entries that are readable");
        if (!isRead) continue;
        WideView type;
        WideView shape;
        ValueTypeToName(value.type, type, shape);
        Check(UnitsOf(entry.type) == type && UnitsOf(entry.shape) == shape, "an entry has its type");
        Check(value.id == entry.id, "an entry has its id");
        Check(ViewOf(value.GetVal_w()) == UnitsOf(entry.value), "an entry has its value");
        if (entry.ui == nullptr) continue;
        Check(ViewOf(ui.GetVal_w()) == UnitsOf(entry.ui->value), "presentation data have their value");
        Check(ViewOf(ui.GetComment_w()) == UnitsOf(entry.ui->comment),
              "presentation data have their comment");
        Check(ui.prov_index == entry.ui->providerIndex, "presentation data have their provider");
    }
    Check(!xmlTableEntryGet(handle, &position, &value, &ui), "there are no other entries");
}

void CompareKeys(const Document& document, moxSettings* profile) {
    std::size_t count = 0;
    for (const DocumentTable& table : document.tables()) {
        for (const DocumentEntry& entry : table.entries) {
            if (++count > kMostByName) return;
            const std::optional<WideString> value =
                ReadKey(profile, UnitsOf(table.name), UnitsOf(entry.name));
            const DocumentEntry* const found = document.findEntry(table.name, entry.name);
            Check(value.has_value() == (found != nullptr), "a document finds the keys that hosts find");
            if (found != nullptr)
                Check(*value == UnitsOf(found->effectiveValue()), "a document reads what hosts read");
        }
    }
}

void CompareProfile(const Document& document, moxSettings* profile) {
    const bool isSettings = document.kind() == DocumentKind::Settings;
    std::uintptr_t position = 0;
    std::uint32_t isEditable = 0;
    std::size_t index = 0;
    for (;; ++index) {
        void* section = xmlEnumProfileSections(profile, &position, nullptr, 0, &isEditable);
        if (section == nullptr) break;
        Check(isSettings && index < document.tables().size(), "a document has every section");
        const DocumentTable& table = document.tables()[index];
        Check(table.isEditable == (isEditable != 0), "a section is as editable as hosts see it");
        CompareEntries(table, section);
        xmlTableDispose(&section);
    }
    Check(index == (isSettings ? document.tables().size() : 0), "a document has no other section");
    if (isSettings) CompareKeys(document, profile);
}

const front::OddEntry* FindOdd(const front::DocumentFindings& findings, std::size_t table,
                               std::size_t entry) {
    for (const front::OddTable& odd : findings.tables) {
        if (odd.index != table) continue;
        for (const front::OddEntry& oddEntry : odd.entries) {
            if (oddEntry.index == entry) return &oddEntry;
        }
    }
    return nullptr;
}

// Writes keys: what is written is read back unless Inspect has said that it is not.
void CheckWrites(const Document& document, const front::DocumentFindings& findings, moxSettings* profile) {
    const WideString value = UnitsOf("written by the check");
    std::size_t count = 0;
    for (const DocumentTable& table : document.tables()) {
        const auto tableIndex = static_cast<std::size_t>(&table - document.tables().data());
        for (const DocumentEntry& entry : table.entries) {
            if (++count > kMostByName) return;
            const bool isFound = document.findTable(table.name) == &table && !entry.name.empty() &&
                                 table.findElement(entry.name) == &entry;
            const front::OddEntry* const odd =
                FindOdd(findings, tableIndex, static_cast<std::size_t>(&entry - table.entries.data()));
            const std::uint32_t oddities = odd == nullptr ? 0 : odd->oddities;
            Check((oddities & front::kUnreadable) == (entry.isReadable ? 0U : front::kUnreadable),
                  "what is not readable is odd");
            if (odd != nullptr && !entry.name.empty())
                Check(odd->isFirst == (table.findElement(entry.name) == &entry), "the first one is found");
            if (!isFound) continue;
            const WideString section = UnitsOf(table.name);
            const WideString key = UnitsOf(entry.name);
            Check(xmlWriteProfileString(profile, section.c_str(), key.c_str(), value.c_str()) == 1,
                  "a key can be written");
            const std::optional<WideString> read = ReadKey(profile, section, key);
            const bool isReadBack = read == value || UnitsOf(entry.value) == value;
            Check(isReadBack == ((oddities & (front::kUnreadable | front::kTwoValues)) == 0),
                  "a value is read back unless there are two");
        }
    }
}

std::uint64_t Tabs(std::string_view text) {
    return static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\t'));
}

// The tabs in the texts of a document.
std::uint64_t TabsInTexts(const Document& document) {
    std::uint64_t tabs = 0;
    DocumentNode node = *document.nodes().begin();
    while (node) {
        tabs += Tabs(node.text());
        for (const DocumentAttribute& attribute : node.attributes())
            tabs += Tabs(attribute.value);
        if (const DocumentNode child = node.firstChild()) {
            node = child;
            continue;
        }
        while (node && !node.next())
            node = node.parent();
        node = node.next();
    }
    return tabs;
}

void CheckIndentation(const Document& document, const front::DocumentFindings& findings, moxSettings* profile,
                      const ScratchFile& file) {
    constexpr std::uint64_t kMost = 100000;
    const WideView text = document.units();
    // A save removes attributes "eud", and with them the tabs in their values.
    if (findings.indentationUnits > kMost || text.find("eud"_w) != WideView::npos) return;
    Check(xmlProfileSave(profile, file.Name(), 0, 0, 1) == 1, "a profile can be saved");
    const WideString saved = model::FromWideBytes(file.Read());
    const auto tabs = static_cast<std::uint64_t>(std::count(saved.begin(), saved.end(), wchar16{'\t'}));
    Check(tabs == findings.indentationUnits + TabsInTexts(document), "Inspect counts the indentation");
}

void CheckEncodings(std::string_view bytes, const Document& document, std::optional<Form> form) {
    constexpr Encoding kAll[] = {Encoding::Narrow, Encoding::Wide,    Encoding::Utf8,
                                 Encoding::Latin1, Encoding::Utf16Be, Encoding::Zeros};
    for (const Encoding encoding : kAll) {
        Problem problem;
        const std::optional<std::string> imported =
            importText(bytes, encoding, bytes.size() % 2 == 0 ? Form::Wide : Form::Narrow, &problem);
        Check(imported.has_value() == !problem, "an import says why it fails");
    }
    const std::string utf8 = exportUtf8(bytes, form);
    Check(UnitsOf(utf8) == document.units(), "an export has the whole text");
    const std::optional<std::string> back = importText(utf8, Encoding::Utf8);
    Check(back.has_value(), "an export can be imported");
    if (document.units().empty() || document.units()[0] != static_cast<wchar16>(0xFEFF))
        Check(model::FromWideBytes(*back) == document.units(), "an import has the text of the export");
}

void CheckFailure(const Problem& problem, std::string_view bytes) {
    Check(problem.reason == Reason::Syntax || problem.reason == Reason::Encoding,
          "a failed parse has a reason");
    Check(problem.line >= 1 && problem.column >= 1 && problem.line <= bytes.size() + 1 &&
              problem.column <= bytes.size() + 1,
          "a failed parse has a position in the file");
    Check(!problem.found.empty() && !problem.expected.empty(), "a failed parse says what was expected");
}

}  // namespace
}  // namespace mox::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mox::fuzz;
    if (size == 0) return 0;
    static const ScratchFile file;
    const auto [letter, bit0, bit1, text] = TakeApart(data, size);
    std::string bytes(text);
    if (letter == 'e' || (letter != 'n' && letter != 'w' && bit0))
        bytes = model::WideBytes(UnitsOfInput(text));
    std::optional<mox::Form> form;
    if (letter == 'n') form = mox::Form::Narrow;
    if (letter == 'w') form = mox::Form::Wide;

    const mox::EncodingReport report = mox::detectEncoding(bytes, form);
    const bool isWide = report.form == mox::Form::Wide;
    const model::NodePtr expected =
        ParseByModel(isWide ? model::FromWideBytes(bytes) : model::FromNarrowBytes(bytes));
    mox::Problem problem;

    std::uint64_t work = WorkDone();
    const std::optional<mox::Document> document = mox::Document::parse(bytes, form, &problem);
    CheckWork(WorkDone() - work, bytes.size(), "parsing");
    work = WorkDone();

    mox::front::DocumentFindings findings;
    mox::Problem inspected;
    const bool isGood = mox::front::Inspect(bytes, form, findings, &inspected);
    Check(isGood == !inspected, "Inspect says why it fails");
    Check(document.has_value() == (expected != nullptr),
          "a document parses exactly when it is in the dialect");
    Check(findings.isParsed == document.has_value(), "Inspect knows what parses");

    Check(!mox::diagnose(bytes, form).empty() || document.has_value(),
          "what does not parse has a diagnostic");
    CheckWork(WorkDone() - work, bytes.size(), "examining");
    if (!document.has_value()) {
        CheckFailure(problem, bytes);
        return 0;
    }
    Check(findings.kind == document->kind(), "Inspect knows the kind");
    CheckEncodings(bytes, *document, form);

    file.Write(bytes);
    moxSettings* profile = xmlProfileNew(file.Name(), nullptr, 0, isWide ? 1 : 0);
    Check(profile != nullptr, "hosts open what parses");
    CompareProfile(*document, profile);
    CheckIndentation(*document, findings, profile, file);
    if (document->kind() == mox::DocumentKind::Settings) CheckWrites(*document, findings, profile);
    xmlProfileDispose(&profile);
    if (isWide && document->kind() == mox::DocumentKind::Table) {
        file.Write(bytes);
        void* table = xmlTableNew(file.Name(), nullptr, 0, nullptr, 0, 0, 0, 0);
        Check(table != nullptr, "hosts open a table document");
        CompareEntries(document->tables().front(), table);
        xmlTableDispose(&table);
    }
    return 0;
}
