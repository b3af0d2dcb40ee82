#include "mox_xmlApi/document/inspect.hpp"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "mox_xmlApi/document/parsed_text.h"
#include "mox_xmlApi/document/syntax_error.h"
#include "mox_xmlApi/document/text_units.h"
#include "mox_xmlApi/entries/entry_codes.h"
#include "mox_xmlApi/platform/scan.h"
#include "mox_xmlApi/xml/settings_root.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox::front {
namespace {

struct NamedOddity {
    WideView name;
    EntryOddity oddity;
};

// The attributes of which a write changes the first, while the last one is read.
constexpr NamedOddity kEntryAttributes[] = {
    {names::kName, kTwoNames}, {names::kId, kTwoIds}, {names::kEud, kTwoEuds}};
constexpr NamedOddity kUiAttributes[] = {{names::kControl, kTwoControls},
                                         {names::kProvIndex, kTwoProviderIndexes},
                                         {names::kProvOwner, kTwoProviderOwners},
                                         {names::kName, kTwoShownNames}};
// The elements, and attributes that are read where the element is missing.
constexpr NamedOddity kUiElements[] = {{names::kComment, kTwoComments}, {names::kValue, kTwoUiValues}};

constexpr std::uint32_t kAllUiOddities =
    kTwoControls | kTwoProviderIndexes | kTwoProviderOwners | kTwoShownNames | kTwoComments | kTwoUiValues;

// The oddity that is named so; 0 if there is none.
template <std::size_t Size>
std::uint32_t OddityOf(WideView name, const NamedOddity (&oddities)[Size]) noexcept {
    for (const NamedOddity& named : oddities) {
        if (SameText(name, named.name)) return named.oddity;
    }
    return 0;
}

// Looks for what an entry has twice.
class EntryInspection {
  public:
    explicit EntryInspection(const XmlNode& entry) noexcept {
        InspectAttributes(entry);
        for (const XmlNode* child : entry.children) {
            if (child->kind != XmlNodeKind::Element) continue;
            if (SameText(child->name.View(), names::kValue)) {
                See(kTwoValues);
                if (!child->children.IsEmpty()) oddities_ |= kValueHasChildren;
            } else if (SameText(child->name.View(), names::kUi)) {
                InspectUi(*child);
            }
        }
    }

    std::uint32_t Oddities() const noexcept { return oddities_; }

  private:
    void See(std::uint32_t field) noexcept {
        oddities_ |= seen_ & field;
        seen_ |= field;
    }

    void InspectAttributes(const XmlNode& entry) noexcept {
        bool isReadable = false;
        bool hasType = false;
        for (const XmlAttribute& attribute : entry.attributes) {
            const WideView name = attribute.name.View();
            if (!SameText(name, names::kType)) {
                See(OddityOf(name, kEntryAttributes));
                continue;
            }
            // Of several types, the last one that is known is read. The first one is written, known or not.
            const bool isKnown = BaseTypeFromName(attribute.value.View()) != 0;
            if (hasType && isKnown) oddities_ |= kTwoTypes;
            hasType = true;
            isReadable = isReadable || isKnown;
        }
        if (!isReadable) oddities_ |= kUnreadable;
    }

    // The first "UI" element is written. What a later one has is read instead.
    void InspectUi(const XmlNode& uiElement) noexcept {
        for (const XmlAttribute& attribute : uiElement.attributes) {
            const WideView name = attribute.name.View();
            See(OddityOf(name, kUiAttributes));
            if (hasUi_) See(OddityOf(name, kUiElements));
        }
        for (const XmlNode* child : uiElement.children) {
            if (child->kind != XmlNodeKind::Element) continue;
            const std::uint32_t oddity = OddityOf(child->name.View(), kUiElements);
            See(oddity);
            if (oddity != 0 && !child->children.IsEmpty())
                oddities_ |= oddity == kTwoComments ? kCommentHasChildren : kUiValueHasChildren;
        }
        hasUi_ = true;
        seen_ |= kAllUiOddities;
    }

    std::uint32_t seen_ = 0;
    std::uint32_t oddities_ = 0;
    bool hasUi_ = false;
};

class Inspection {
  public:
    Inspection(const ParsedText& text, DocumentFindings& findings) : text_(text), findings_(findings) {}

    void Run() {
        Measure();
        XmlNode& tree = text_.Tree();
        if (XmlNode* const root = FindSettingsRoot(tree); root != nullptr) {
            findings_.kind = DocumentKind::Settings;
            InspectSections(*root);
        } else if (XmlNode* const table = XmlDocument::FindChildElement(&tree, names::kTable);
                   table != nullptr) {
            findings_.kind = DocumentKind::Table;
            InspectTable(*table, 0, true);
        }
    }

  private:
    // Adds the tabs that the writer puts before the node and inside it, but not those of its children.
    void MeasureNode(const XmlNode& node, std::size_t depth) noexcept {
        findings_.depth = std::max(findings_.depth, depth + 1);
        findings_.indentationUnits += depth;
        if (node.kind != XmlNodeKind::Element) return;
        const WideView value = node.value.View();
        const bool hasChildren = !node.children.IsEmpty();
        const bool hasLines =
            hasChildren ? !value.empty() : CountBefore('\n', value.data(), value.size()) != value.size();
        if (hasLines) findings_.indentationUnits += depth + 1;
        if (hasLines || hasChildren) findings_.indentationUnits += depth;
    }

    void Measure() noexcept {
        const XmlNode* const tree = &text_.Tree();
        std::size_t depth = 0;
        for (const XmlNode* node = tree->children.First(); node != nullptr;) {
            MeasureNode(*node, depth);
            if (const XmlNode* const child = node->children.First(); child != nullptr) {
                node = child;
                ++depth;
                continue;
            }
            while (node != tree && node->next == nullptr) {
                node = node->parent;
                --depth;
            }
            node = node == tree ? nullptr : node->next;
        }
    }

    void InspectSections(XmlNode& root) {
        std::size_t index = 0;
        for (XmlNode* section : root.children) {
            if (section->kind == XmlNodeKind::Element) InspectTable(*section, index++, false);
        }
        if (!findings_.tables.empty()) FindOnlyTables(root);
    }

    void FindOnlyTables(const XmlNode& root) {
        std::map<WideView, std::size_t> counts;  // no hash table: a file could hold names with equal hashes
        for (const XmlNode* section : root.children) {
            if (section->kind == XmlNodeKind::Element) ++counts[NameOf(*section)];
        }
        for (OddTable& table : findings_.tables)
            table.isOnly = counts[table.name] == 1;
    }

    // The value of the attribute "name"; empty if there is none.
    static WideView NameOf(const XmlNode& element) noexcept {
        WideView name;
        XmlDocument::GetAttribute(&element, names::kName, name);
        return name;
    }

    void InspectTable(XmlNode& table, std::size_t index, bool isFound) {
        std::vector<OddEntry> entries;
        std::size_t entryIndex = 0;
        for (const XmlNode* entry : table.children) {
            if (entry->kind != XmlNodeKind::Element) continue;
            const std::uint32_t oddities = EntryInspection(*entry).Oddities();
            if (oddities != 0) entries.push_back(DescribeEntry(table, *entry, entryIndex, oddities));
            ++entryIndex;
        }
        if (entries.empty()) return;
        WideView name;
        const bool hasName = XmlDocument::GetAttribute(&table, names::kName, name);
        if (hasName && !isFound) isFound = text_.Document().FindTableElement(table.parent, name) == &table;
        findings_.tables.push_back({index, isFound, true, Units(name), std::move(entries)});
    }

    OddEntry DescribeEntry(XmlNode& table, const XmlNode& entry, std::size_t index, std::uint32_t oddities) {
        OddEntry odd;
        odd.index = index;
        odd.oddities = oddities;
        WideView name;
        odd.hasName = XmlDocument::GetAttribute(&entry, names::kName, name);
        odd.name = name;
        XmlNode* found = nullptr;
        if (odd.hasName) text_.Document().FindChildByNameAttribute(&table, name, found);
        odd.isFirst = found == &entry;
        return odd;
    }

    const ParsedText& text_;
    DocumentFindings& findings_;
};

bool IsSevenBit(WideView units) noexcept {
    return std::all_of(units.begin(), units.end(), [](wchar16 unit) { return (unit & 0xFFFF) < 0x80; });
}

// Whether the library reads the text as another one than it is.
bool IsOtherEncoding(const EncodingReport& encoding) noexcept {
    return encoding.hasByteOrderMark || encoding.encoding == Encoding::Utf16Be ||
           encoding.encoding == Encoding::Zeros;
}

// Reports that the library would not read all of the text, or not as what it is. `text` is what it would read.
bool FailToOpen(const EncodingReport& encoding, WideView text, Problem* problem) {
    Fail(problem, Reason::Encoding, "the text is " + describe(encoding) + "; documents are not");
    const Position position = IsOtherEncoding(encoding) ? Position() : PositionIn(text, text.size());
    problem->line = position.line;
    problem->column = position.column;
    return false;
}

}  // namespace

bool Inspect(std::string_view bytes, std::optional<Form> form, DocumentFindings& findings, Problem* problem) {
    findings = DocumentFindings();
    findings.encoding = detectEncoding(bytes, form);
    const Form readAs = findings.encoding.form;
    const std::string_view textBytes = bytes.substr(0, findings.encoding.textSize);
    WideString units = UnitsOfBytes(textBytes, readAs, ParsedText::kZeros);
    findings.isSevenBit = IsSevenBit(units);
    const ParsedText text(std::move(units));
    findings.isParsed = text.IsParsed();
    if (findings.isParsed) {
        Inspection(text, findings).Run();
        if (!IsOtherEncoding(findings.encoding) && findings.encoding.unreadBytes == 0)
            return Succeed(problem);
    }
    if (problem == nullptr) return false;
    // Look-ups and the parser have changed the text: what is reported is that of the file.
    const WideString original = UnitsOfBytes(textBytes, readAs);
    if (findings.isParsed) return FailToOpen(findings.encoding, original, problem);
    return FailWithSyntaxError(DescribeSyntaxError(original, readAs, text.Failure()), findings.encoding,
                               problem);
}

}  // namespace mox::front
