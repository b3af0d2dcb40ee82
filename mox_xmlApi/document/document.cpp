#include "mox_xmlApi/document/document.hpp"

#include <algorithm>
#include <utility>

#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/document/document_content.h"
#include "mox_xmlApi/document/syntax_error.h"
#include "mox_xmlApi/document/text_format.h"

namespace mox {
namespace {

using front::DocumentContent;

const XmlNode* NodeOf(DocumentNode node) noexcept {
    return DocumentContent::NodeOf(node);
}

// The item of the node, of items in document order: the names of their nodes are views of one text, in its order. Null
// if there is none.
template <class Item>
const Item* FindItem(const std::vector<Item>& items, const XmlNode* node) noexcept {
    if (node == nullptr) return nullptr;
    const auto addressOf = [](const XmlNode& of) { return of.name.View().data(); };
    const auto found = std::lower_bound(items.begin(), items.end(), addressOf(*node),
                                        [addressOf](const Item& item, const wchar16* address) {
                                            return addressOf(*NodeOf(item.node)) < address;
                                        });
    return found != items.end() && NodeOf(found->node) == node ? &*found : nullptr;
}

}  // namespace

std::string describe(DocumentKind kind) {
    if (kind == DocumentKind::Settings) return "settings document";
    return kind == DocumentKind::Table ? "table document" : "document without settings or a table";
}

// ---- DocumentNode

NodeKind DocumentNode::kind() const noexcept {
    const XmlNode* const node = NodeOf(*this);
    if (node == nullptr) return NodeKind::None;
    if (node->kind == XmlNodeKind::Element) return NodeKind::Element;
    return node->kind == XmlNodeKind::Comment ? NodeKind::Comment : NodeKind::Declaration;
}

std::string DocumentNode::name() const {
    const XmlNode* const node = NodeOf(*this);
    return node == nullptr ? std::string() : Utf8(node->name.View());
}

bool DocumentNode::isElement(std::string_view name) const noexcept {
    if (kind() != NodeKind::Element) return false;
    const WideView units = NodeOf(*this)->name.View();
    return std::equal(units.begin(), units.end(), name.begin(), name.end(), [](wchar16 unit, char character) {
        return unit == static_cast<unsigned char>(character);
    });
}

std::string DocumentNode::text() const {
    const XmlNode* const node = NodeOf(*this);
    return node == nullptr ? std::string() : Utf8(node->value.View());
}

std::vector<DocumentAttribute> DocumentNode::attributes() const {
    std::vector<DocumentAttribute> attributes;
    const XmlNode* const node = NodeOf(*this);
    if (node == nullptr) return attributes;
    attributes.reserve(node->attributes.Size());
    for (const XmlAttribute& attribute : node->attributes)
        attributes.push_back({Utf8(attribute.name.View()), Utf8(attribute.value.View())});
    return attributes;
}

std::optional<std::string> DocumentNode::attribute(std::string_view name) const {
    const XmlNode* const node = NodeOf(*this);
    const std::optional<WideString> wanted = front::UnitsOf<wchar16>(name);
    if (node == nullptr || !wanted.has_value()) return std::nullopt;
    for (const XmlAttribute& attribute : node->attributes) {
        if (attribute.name.View() == *wanted) return Utf8(attribute.value.View());
    }
    return std::nullopt;
}

DocumentNode DocumentNode::parent() const noexcept {
    const XmlNode* const parent = node_ == nullptr ? nullptr : NodeOf(*this)->parent;
    if (parent == nullptr || parent->kind == XmlNodeKind::Document) return {};
    return content_->HandleOf(parent);
}

DocumentNode DocumentNode::firstChild() const noexcept {
    return node_ == nullptr ? DocumentNode() : content_->HandleOf(NodeOf(*this)->children.First());
}

DocumentNode DocumentNode::next() const noexcept {
    return node_ == nullptr ? DocumentNode() : content_->HandleOf(NodeOf(*this)->next);
}

Position DocumentNode::position() const {
    return node_ == nullptr ? Position() : content_->PositionOf(*NodeOf(*this));
}

Position DocumentNode::positionOfAttribute(std::size_t index) const {
    if (node_ == nullptr || index >= NodeOf(*this)->attributes.Size()) return {};
    const XmlAttribute& attribute = NodeOf(*this)->attributes.begin()[index];
    return content_->PositionAt(content_->parsed.OffsetOf(attribute.name.View()));
}

// ---- DocumentEntry and DocumentTable

std::string DocumentEntry::describeType() const {
    if (!isReadable) return type.empty() ? "no type" : "unknown type " + type;
    return shape.empty() ? type : type + " " + shape;
}

const DocumentEntry* DocumentTable::find(std::string_view wanted) const {
    const DocumentEntry* const entry = findElement(wanted);
    return entry != nullptr && entry->isReadable ? entry : nullptr;
}

const DocumentEntry* DocumentTable::findElement(std::string_view wanted) const {
    const DocumentContent* const content = DocumentContent::ContentOf(node);
    const std::optional<WideString> units = front::UnitsOf<wchar16>(wanted);
    if (content == nullptr || !units.has_value()) return nullptr;
    // The library's own look-up takes a node that can be changed, because it remembers what look-ups have cost.
    auto* const table = const_cast<XmlNode*>(NodeOf(node));
    XmlNode* found = nullptr;
    content->parsed.Document().FindChildByNameAttribute(table, *units, found);
    return FindItem(entries, found);
}

// ---- Document

Document::Document(std::unique_ptr<DocumentContent> content) noexcept : content_(std::move(content)) {}
Document::Document(Document&&) noexcept = default;
Document& Document::operator=(Document&&) noexcept = default;
Document::~Document() = default;

std::optional<Document> Document::read(const Text& path, std::optional<Form> form, Problem* problem) {
    const std::optional<std::string> bytes = readFile(path, nullptr, problem);
    if (!bytes.has_value()) return std::nullopt;
    std::optional<Document> document = parse(*bytes, form, problem);
    if (!document.has_value() && problem != nullptr) problem->file = front::Utf8Of(path.units());
    return document;
}

std::optional<Document> Document::parse(std::string_view bytes, std::optional<Form> form, Problem* problem) {
    auto content = std::make_unique<DocumentContent>(bytes, detectEncoding(bytes, form));
    if (!content->parsed.IsParsed()) {
        FailWithSyntaxError(
            DescribeSyntaxError(content->text, content->encoding.form, content->parsed.Failure()),
            content->encoding, problem);
        return std::nullopt;
    }
    content->ReadTables();
    front::Succeed(problem);
    return Document(std::move(content));
}

DocumentKind Document::kind() const noexcept {
    return content_->kind;
}

Form Document::form() const noexcept {
    return content_->encoding.form;
}

const EncodingReport& Document::encoding() const noexcept {
    return content_->encoding;
}

NodeRange Document::nodes() const noexcept {
    return NodeRange(content_->HandleOf(content_->parsed.Tree().children.First()));
}

DocumentNode Document::root() const noexcept {
    return content_->HandleOf(content_->root);
}

const std::vector<DocumentTable>& Document::tables() const noexcept {
    return content_->tables;
}

const DocumentTable* Document::findTable(std::string_view name) const {
    const std::vector<DocumentTable>& tables = content_->tables;
    if (content_->kind == DocumentKind::Table)
        return tables.front().hasName && tables.front().name == name ? &tables.front() : nullptr;
    const std::optional<WideString> units = front::UnitsOf<wchar16>(name);
    if (!units.has_value()) return nullptr;
    return FindItem(tables, content_->parsed.Document().FindTableElement(content_->root, *units));
}

const DocumentEntry* Document::findEntry(std::string_view table, std::string_view name) const {
    const DocumentTable* const found = findTable(table);
    return found == nullptr ? nullptr : found->find(name);
}

front::UnitsView Document::units() const noexcept {
    return content_->text;
}

Position Document::positionAt(std::size_t offset) const {
    return content_->PositionAt(offset);
}

}  // namespace mox
