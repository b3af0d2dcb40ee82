#include "mox_xmlApi/document/text_edit.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <utility>
#include <vector>

#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/document/document_content.h"
#include "mox_xmlApi/document/inspect.hpp"
#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/document/text_units.h"
#include "mox_xmlApi/front/kept_text.hpp"
#include "mox_xmlApi/xml/xml_entities.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

using front::DocumentContent;
using front::Fail;

constexpr std::size_t kNowhere = WideView::npos;

bool IsSpace(wchar16 unit) noexcept {
    return unit == ' ' || unit == '\t' || unit == '\n' || unit == '\r';
}

// The text as it is written in values and attributes.
WideString Escaped(WideView text) {
    WideString escaped;
    for (const wchar16 unit : text) {
        const auto* const entity =
            std::find_if(kXmlEntities.begin(), kXmlEntities.end(),
                         [unit](const XmlEntity& candidate) { return candidate.character == unit; });
        if (entity == kXmlEntities.end()) {
            escaped += unit;
        } else {
            escaped += entity->text;
        }
    }
    return escaped;
}

// ---- places in a text that parses

// Where an attribute is: its name, and its value without the quotes.
struct AttributePlace {
    std::size_t name = 0;
    std::size_t nameEnd = 0;
    std::size_t value = 0;
    std::size_t valueEnd = 0;
};

std::size_t SkipSpace(WideView text, std::size_t at) noexcept {
    while (at < text.size() && IsSpace(text[at]))
        ++at;
    return at;
}

std::size_t EndOfName(WideView text, std::size_t at) noexcept {
    const auto isEnd = [](wchar16 unit) {
        return IsSpace(unit) || unit == '=' || unit == '/' || unit == '>' || unit == '"';
    };
    while (at < text.size() && !isEnd(text[at]))
        ++at;
    return at;
}

// The place after the ">" of the tag that begins at `at`. Quotes may contain others.
std::size_t EndOfTag(WideView text, std::size_t at) noexcept {
    for (bool isQuoted = false; at < text.size(); ++at) {
        if (text[at] == '"') isQuoted = !isQuoted;
        if (text[at] == '>' && !isQuoted) return at + 1;
    }
    return at;
}

// Whether the tag that ends before `end` is that of an element without an end tag.
bool IsEmptyTag(WideView text, std::size_t end) noexcept {
    return text[end - 2] == '/';
}

// The attributes of the start tag that begins at `at`.
std::vector<AttributePlace> AttributesAt(WideView text, std::size_t at) {
    std::vector<AttributePlace> places;
    at = EndOfName(text, at + 1);
    for (;;) {
        AttributePlace place;
        place.name = SkipSpace(text, at);
        place.nameEnd = EndOfName(text, place.name);
        if (place.nameEnd == place.name) return places;
        const std::size_t quote = text.find(wchar16{'"'}, place.nameEnd);
        if (quote == kNowhere) return places;
        place.value = quote + 1;
        place.valueEnd = std::min(text.find(wchar16{'"'}, place.value), text.size());
        at = std::min(place.valueEnd + 1, text.size());
        places.push_back(place);
    }
}

// The place after the end tag of the element that begins at `at`.
std::size_t EndOfElement(WideView text, std::size_t at) noexcept {
    std::size_t depth = 0;
    while (at < text.size()) {
        const wchar16 kind = at + 1 < text.size() ? text[at + 1] : wchar16{0};
        if (kind == '!') {  // a comment has no ">" inside
            at = std::min(text.find(wchar16{'>'}, at), text.size());
        } else if (kind == '/') {
            at = std::min(text.find(wchar16{'>'}, at), text.size() - 1) + 1;
            --depth;
        } else {
            at = EndOfTag(text, at);
            if (!IsEmptyTag(text, at)) ++depth;
        }
        if (depth == 0) return at;
        at = text.find(wchar16{'<'}, at);
    }
    return text.size();
}

// ---- changes

// Puts `text` in the place of the units from `begin` to `end`.
struct Change {
    std::size_t begin = 0;
    std::size_t end = 0;
    WideString text{};
};

struct NewAttribute {
    WideView name;
    WideString value;
};

// The changes, in ascending order, that give the start tag at `begin` these attributes. Of several with the same name the
// first one counts; a missing one is added after the others.
std::vector<Change> ChangesOfAttributes(WideView text, std::size_t begin,
                                        const std::vector<NewAttribute>& wanted) {
    const std::vector<AttributePlace> places = AttributesAt(text, begin);
    std::vector<Change> changes;
    WideString added;
    for (const NewAttribute& attribute : wanted) {
        const auto place = std::find_if(places.begin(), places.end(), [&](const AttributePlace& candidate) {
            return text.substr(candidate.name, candidate.nameEnd - candidate.name) == attribute.name;
        });
        if (place != places.end()) {
            changes.push_back({place->value, place->valueEnd, Escaped(attribute.value)});
        } else {
            added.append(" "_w).append(attribute.name).append("=\""_w);
            added.append(Escaped(attribute.value)).append("\""_w);
        }
    }
    std::sort(changes.begin(), changes.end(),
              [](const Change& one, const Change& other) { return one.begin < other.begin; });
    const std::size_t end = places.empty() ? EndOfName(text, begin + 1) : places.back().valueEnd + 1;
    if (!added.empty()) changes.push_back({end, end, std::move(added)});
    return changes;
}

// The units from `begin` to `end` with the changes, which lie in between.
WideString Changed(WideView text, std::size_t begin, std::size_t end, const std::vector<Change>& changes) {
    WideString changed;
    for (const Change& change : changes) {
        changed.append(text.substr(begin, change.begin - begin)).append(change.text);
        begin = change.end;
    }
    return changed.append(text.substr(begin, end - begin));
}

// The line break and the indentation before a place; empty if something else stands before it on its line.
WideString LineBreakBefore(WideView text, std::size_t at) {
    std::size_t begin = at;
    while (begin > 0 && (text[begin - 1] == ' ' || text[begin - 1] == '\t'))
        --begin;
    if (begin == 0 || text[begin - 1] != '\n') return {};
    begin -= begin > 1 && text[begin - 2] == '\r' ? 2 : 1;
    return WideString(text.substr(begin, at - begin));
}

// ---- a document whose text is changed

class EditedText {
  public:
    // Reads the document. Returns false on failure, with the problem set.
    bool Open(std::string_view bytes, std::optional<Form> form, DocumentKind kind, Problem* problem) {
        front::DocumentFindings findings;
        if (!front::Inspect(bytes, form, findings, problem)) return false;
        if (findings.kind != kind)
            return Fail(problem, Reason::WrongKind,
                        "found a " + describe(findings.kind) + ", expected a " + describe(kind));
        bytes_ = bytes;
        document_ = Document::parse(bytes, findings.encoding.form, problem);
        return document_.has_value();
    }

    const Document& Content() const noexcept { return *document_; }
    WideView Units() const noexcept { return document_->units(); }

    // Where the element begins.
    static std::size_t BeginOf(DocumentNode node) noexcept {
        const WideView name = DocumentContent::NodeOf(node)->name.View();
        return DocumentContent::ContentOf(node)->parsed.OffsetOf(name) - 1;
    }

    // The bytes of the file with the changes, which are in ascending order.
    std::string BytesWith(const std::vector<Change>& changes) const {
        const std::size_t unitSize = UnitSize(document_->form());
        std::string bytes;
        std::size_t at = 0;
        for (const Change& change : changes) {
            bytes.append(bytes_.substr(at * unitSize, (change.begin - at) * unitSize));
            for (const wchar16 unit : change.text) {
                bytes += static_cast<char>(static_cast<unsigned char>(unit & 0xFF));
                if (unitSize == 2) bytes += static_cast<char>(static_cast<unsigned char>((unit >> 8) & 0xFF));
            }
            at = change.end;
        }
        return bytes.append(bytes_.substr(at * unitSize));
    }

  private:
    std::string_view bytes_{};
    std::optional<Document> document_{};
};

bool FailFor(Problem* problem, Reason reason, const std::string& name, const std::string& message) {
    return Fail(problem, reason, name + ": " + message);
}

bool RequireValid(const Text& text, const char* what, Problem* problem) {
    return text.isValid() || Fail(problem, Reason::InvalidText,
                                  std::string(what) + " is not UTF-8, contains a zero, or is null");
}

// The section of that name; null, with the problem set, if there is none.
const DocumentTable* FindSection(const Document& document, const Text& name, Problem* problem) {
    if (!RequireValid(name, "the section", problem)) return nullptr;
    const std::string wanted = Utf8(name.units());
    const DocumentTable* const table = document.findTable(wanted);
    if (table == nullptr) FailFor(problem, Reason::NoSuchSection, wanted, "there is no such section");
    return table;
}

// Whether a section can get the new name.
bool RequireNewName(const Document& document, const Text& newName, Problem* problem) {
    if (!RequireValid(newName, "the new name", problem)) return false;
    const std::string wanted = Utf8(newName.units());
    if (wanted.empty()) return Fail(problem, Reason::InvalidText, "the new name is empty");
    const front::BrokenRule broken =
        front::FindBrokenRule(newName.units(), front::TextPlace::Attribute, document.form());
    if (broken) return FailFor(problem, Reason::NotKept, wanted, "the new name " + front::Describe(broken));
    return document.findTable(wanted) == nullptr ||
           FailFor(problem, Reason::NameTaken, wanted, "there is a section of that name");
}

// The entry in a document that has the table; null, with the problem set, if there is none.
const DocumentEntry* FindEntry(const Document& document, const std::optional<Text>& section, const Text& name,
                               Problem* problem) {
    const DocumentTable* const table =
        section.has_value() ? FindSection(document, *section, problem) : &document.tables().front();
    if (table == nullptr || !RequireValid(name, "the name", problem)) return nullptr;
    const std::string wanted = Utf8(name.units());
    const DocumentEntry* const entry = wanted.empty() ? nullptr : table->findElement(wanted);
    if (entry == nullptr) {
        FailFor(problem, Reason::NoSuchKey, wanted, "there is no such entry");
    } else if (!entry->isReadable) {
        FailFor(problem, Reason::Unreadable, wanted, "the entry has no known type");
    } else {
        return entry;
    }
    return nullptr;
}

// Replaces the element by the text or, if that is empty, removes it with the white space before it.
Change ReplacementOf(WideView text, DocumentNode node, WideString replacement) {
    std::size_t begin = EditedText::BeginOf(node);
    const std::size_t end = EndOfElement(text, begin);
    while (replacement.empty() && begin > 0 && IsSpace(text[begin - 1]))
        --begin;
    return {begin, end, std::move(replacement)};
}

WideString UnitsOfAscii(std::string_view text) {
    return WideString(text.begin(), text.end());
}

std::vector<NewAttribute> AttributesOf(const HeaderChange& change) {
    std::vector<NewAttribute> attributes;
    if (change.firstId.has_value())
        attributes.push_back({names::kFirstId, UnitsOfAscii(std::to_string(*change.firstId))});
    if (change.type.has_value()) attributes.push_back({names::kType, UnitsOfAscii(Hex(*change.type, 4))});
    if (change.editable.has_value())
        attributes.push_back({names::kEditable, WideString(*change.editable ? names::kTrue : names::kFalse)});
    return attributes;
}

}  // namespace

std::optional<std::string> renameSection(std::string_view bytes, std::optional<Form> form, const Text& name,
                                         const Text& newName, Problem* problem) {
    EditedText edit;
    if (!edit.Open(bytes, form, DocumentKind::Settings, problem)) return std::nullopt;
    const DocumentTable* const table = FindSection(edit.Content(), name, problem);
    if (table == nullptr) return std::nullopt;
    const bool isSame = newName.isValid() && name.units() == newName.units();
    if (!isSame && !RequireNewName(edit.Content(), newName, problem)) return std::nullopt;
    front::Succeed(problem);
    if (isSame) return std::string(bytes);
    return edit.BytesWith(ChangesOfAttributes(edit.Units(), EditedText::BeginOf(table->node),
                                              {{names::kName, WideString(newName.units())}}));
}

std::optional<std::string> copySection(std::string_view bytes, std::optional<Form> form, const Text& name,
                                       const Text& newName, Problem* problem) {
    EditedText edit;
    if (!edit.Open(bytes, form, DocumentKind::Settings, problem)) return std::nullopt;
    const DocumentTable* const table = FindSection(edit.Content(), name, problem);
    if (table == nullptr || !RequireNewName(edit.Content(), newName, problem)) return std::nullopt;
    const WideView text = edit.Units();
    const std::size_t begin = EditedText::BeginOf(table->node);
    const std::size_t end = EndOfElement(text, begin);
    const std::vector<Change> renaming =
        ChangesOfAttributes(text, begin, {{names::kName, WideString(newName.units())}});
    front::Succeed(problem);
    return edit.BytesWith({{end, end, LineBreakBefore(text, begin) + Changed(text, begin, end, renaming)}});
}

std::optional<std::string> changeSection(std::string_view bytes, std::optional<Form> form, const Text& name,
                                         const HeaderChange& change, Problem* problem) {
    return changeSections(bytes, form, {{name, change}}, problem);
}

std::optional<std::string> changeSections(std::string_view bytes, std::optional<Form> form,
                                          const std::vector<SectionChange>& changes, Problem* problem) {
    EditedText edit;
    if (!edit.Open(bytes, form, DocumentKind::Settings, problem)) return std::nullopt;
    std::map<const DocumentTable*, HeaderChange> headers;  // in document order: the tables are in one vector
    for (const SectionChange& change : changes) {
        const DocumentTable* const table = FindSection(edit.Content(), change.name, problem);
        if (table == nullptr) return std::nullopt;
        HeaderChange& header = headers[table];
        if (change.header.editable.has_value()) header.editable = change.header.editable;
        if (change.header.firstId.has_value()) header.firstId = change.header.firstId;
        if (change.header.type.has_value()) header.type = change.header.type;
    }
    std::vector<Change> all;
    for (const auto& [table, header] : headers) {
        std::vector<Change> ofTable =
            ChangesOfAttributes(edit.Units(), EditedText::BeginOf(table->node), AttributesOf(header));
        std::move(ofTable.begin(), ofTable.end(), std::back_inserter(all));
    }
    front::Succeed(problem);
    return edit.BytesWith(all);
}

std::optional<std::string> removePresentation(std::string_view bytes, std::optional<Form> form,
                                              const std::optional<Text>& section, const Text& name,
                                              Problem* problem) {
    EditedText edit;
    const DocumentKind kind = section.has_value() ? DocumentKind::Settings : DocumentKind::Table;
    if (!edit.Open(bytes, form, kind, problem)) return std::nullopt;
    const DocumentEntry* const entry = FindEntry(edit.Content(), section, name, problem);
    if (entry == nullptr) return std::nullopt;
    WideString moved;
    if (entry->value.empty() && entry->ui != nullptr && !entry->ui->value.empty()) {
        const Text value(entry->ui->value);
        if (IsSpace(value.units().front())) {
            FailFor(
                problem, Reason::NotKept, entry->name,
                "the value of the presentation data begins with white space, which the entry would not keep");
            return std::nullopt;
        }
        // Without "loc" the value would count as localised if the last attribute of the entry were "true".
        moved.append(entry->ui->isLocalised ? "<Value loc=\"true\">"_w : "<Value loc=\"\">"_w);
        moved.append(Escaped(value.units())).append("</Value>"_w);
    }
    const bool isMoving = !moved.empty();
    std::vector<Change> changes;
    for (const DocumentNode child : entry->node.children()) {
        const bool isUi = child.isElement("UI");
        if (isMoving && child.isElement("Value") && child.children().begin() != child.children().end()) {
            FailFor(problem, Reason::NotKept, entry->name,
                    "the value of the presentation data would replace an empty value that holds a comment or "
                    "an element");
            return std::nullopt;
        }
        if (isUi || (isMoving && child.isElement("Value")))
            changes.push_back(
                ReplacementOf(edit.Units(), child, isUi ? std::exchange(moved, {}) : WideString()));
    }
    front::Succeed(problem);
    return edit.BytesWith(changes);
}

}  // namespace mox
