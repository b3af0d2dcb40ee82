// Document, all that is in a file, to read. Unlike the exports, which Profile and Table stand on, it has what no export
// returns: limits, access levels and flags of entries, the header of a table, comments, elements and attributes that the
// library does not know, and where each of them is.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
//     mox::Problem problem;
//     const auto document = mox::Document::read("camera.xml", std::nullopt, &problem);
//     if (!document) std::cerr << problem.toString() << "\n";
//     else if (const mox::DocumentEntry* gain = document->findEntry("Camera", "Gain"); gain != nullptr && gain->ui)
//         std::cout << gain->ui->minimum << " to " << gain->ui->maximum << ", line " << gain->node.position().line;
//
// A Document does not change, and changes nothing: it knows neither a Profile that is open nor the file after it was
// read. A Document and its nodes may be used by one thread at a time, even only to read: look-ups and positions build
// indexes on first use. A Document that was moved from can only be assigned to or destroyed. Texts are UTF-8; every
// 16-bit text has a UTF-8 form, see front/text.hpp. What is not in the file is what the library reads then: an empty
// text, 0 or false.
//
// Which element is meant, if several have the same name, is the library's own rule everywhere: the first one. What an
// element holds, if it has a part twice, is what the library reads: the last one.
//
// Reading takes time and memory in proportion to the size of the file, whatever is in it and however deeply it is nested.
#ifndef MOX_XMLAPI_DOCUMENT_DOCUMENT_HPP
#define MOX_XMLAPI_DOCUMENT_DOCUMENT_HPP

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mox_xmlApi/document/encoding.hpp"
#include "mox_xmlApi/front/form.hpp"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox {

namespace front {
struct DocumentContent;
}  // namespace front

// A place in a file. Lines end with a line feed. A column counts units: 16-bit units of a wide file, bytes of a narrow
// one. Both numbers begin with 1.
struct Position {
    std::size_t line = 1;
    std::size_t column = 1;
};

// What a document is to hosts. Settings: it has a "Settings" element with a schema attribute at the top level. Table: it
// has none, but a "Table" element. Other: it has neither, and hosts see an empty document.
enum class DocumentKind : std::uint8_t { Settings, Table, Other };

// Returns "settings document", "table document" or "document without settings or a table".
std::string describe(DocumentKind kind);

enum class NodeKind : std::uint8_t { None, Declaration, Comment, Element };

// An attribute as it is in the file, references decoded.
struct DocumentAttribute {
    std::string name{};
    std::string value{};
};

class NodeRange;

// One node of the tree: an element, a comment, or the XML declaration. It is two pointers: copy it freely, and use it as
// long as the Document exists; moving the Document does not matter. A default-constructed node is null, and so is what
// the functions return if there is no such node; of a null node, kind() is None and all else is empty.
class DocumentNode {
  public:
    DocumentNode() = default;

    // False for a null node.
    explicit operator bool() const noexcept { return node_ != nullptr; }
    friend bool operator==(DocumentNode a, DocumentNode b) noexcept { return a.node_ == b.node_; }
    friend bool operator!=(DocumentNode a, DocumentNode b) noexcept { return a.node_ != b.node_; }

    NodeKind kind() const noexcept;
    // The name of an element; "xml" of the declaration; empty for a comment.
    std::string name() const;
    // Whether it is an element of that name (ASCII).
    bool isElement(std::string_view name) const noexcept;
    // The text of an element without that of its children, in one piece, without the white space before each run of text;
    // the text of a comment.
    std::string text() const;

    // All attributes in their order, also those that have the same name.
    std::vector<DocumentAttribute> attributes() const;
    // The value of the first attribute of that name (UTF-8); nullopt if there is none.
    std::optional<std::string> attribute(std::string_view name) const;

    // The neighbours in the tree; null at its ends. A top-level node has no parent.
    DocumentNode parent() const noexcept;
    DocumentNode firstChild() const noexcept;
    DocumentNode next() const noexcept;
    // for (const mox::DocumentNode child : node.children())
    NodeRange children() const noexcept;

    // Where the name of the element or declaration is, or the text of the comment. The first call of this function or of
    // positionOfAttribute for a document finds its lines, which takes linear time; then it takes logarithmic time.
    // Throws std::bad_alloc.
    Position position() const;
    // Where the name of the attribute with this index is; 1:1 if there is none.
    Position positionOfAttribute(std::size_t index) const;

  private:
    friend class Document;
    friend struct front::DocumentContent;
    DocumentNode(const front::DocumentContent* content, const void* node) noexcept
        : content_(content), node_(node) {}

    const front::DocumentContent* content_ = nullptr;
    const void* node_ = nullptr;
};

// The children of a node, or the top level of a document, in their order.
class NodeRange {
  public:
    class Iterator {
      public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = DocumentNode;
        using difference_type = std::ptrdiff_t;
        using pointer = const DocumentNode*;
        using reference = const DocumentNode&;

        Iterator() = default;
        explicit Iterator(DocumentNode node) noexcept : node_(node) {}
        reference operator*() const noexcept { return node_; }
        pointer operator->() const noexcept { return &node_; }
        Iterator& operator++() noexcept {
            node_ = node_.next();
            return *this;
        }
        Iterator operator++(int) noexcept {
            const Iterator old = *this;
            ++*this;
            return old;
        }
        friend bool operator==(const Iterator& a, const Iterator& b) noexcept { return a.node_ == b.node_; }
        friend bool operator!=(const Iterator& a, const Iterator& b) noexcept { return a.node_ != b.node_; }

      private:
        DocumentNode node_;
    };

    explicit NodeRange(DocumentNode first) noexcept : first_(first) {}
    Iterator begin() const noexcept { return Iterator(first_); }
    Iterator end() const noexcept { return Iterator(); }
    bool empty() const noexcept { return !first_; }

  private:
    DocumentNode first_;
};

inline NodeRange DocumentNode::children() const noexcept {
    return NodeRange(firstChild());
}

// The presentation data of an entry: what its "UI" elements say.
struct DocumentPresentation {
    std::string control{};  // "text" if none is given
    std::string access{};   // "visible", "hidden", or empty: editable
    std::uint16_t flags = 0;
    std::string provider{};           // "app", "dwg", "erg" or empty
    std::uint32_t providerIndex = 0;  // 0: none
    std::string regen{};
    std::string minimum{};
    std::string maximum{};
    std::string shownName{};
    std::string comment{};
    std::string value{};
    bool isLocalised = false;  // "loc" of its value is "true"
};

// A child element of a table: an entry or, in a section, a key.
struct DocumentEntry {
    DocumentNode node{};
    // Whether its type is known. If not, hosts cannot read it: `type` is the text in the file, and the fields after it are
    // not set except hasEud.
    bool isReadable = false;
    bool hasName = false;
    std::string name{};   // by which it is found
    std::string type{};   // "long", for example
    std::string shape{};  // "array", "vector" or empty
    std::uint32_t id = 0;
    bool hasEud = false;            // the attribute "eud" is "true"
    bool isLocalised = false;       // the attribute "loc" is "true"
    bool isValueLocalised = false;  // "loc" of the value is "true"
    std::string value{};
    std::shared_ptr<const DocumentPresentation>
        ui{};  // null if there is no "UI" element; copies of the entry share it

    // The value that hosts read from the key: that of the entry or, if it is empty, that of the presentation data.
    const std::string& effectiveValue() const noexcept {
        // NOLINTNEXTLINE(clang-analyzer-core.uninitialized.UndefReturn): "ui" is not null there
        return value.empty() && ui != nullptr ? ui->value : value;
    }
    // The type with its shape: "string", "long array", "unknown type complex" or "no type".
    std::string describeType() const;
};

// A section, or the table of a table document, or an element of another name in the place of a section: enumerations and
// exports treat it as a section, but nobody finds it by name.
struct DocumentTable {
    DocumentNode node{};
    bool isTable = false;  // false for an element of another name
    bool hasName = false;
    std::string name{};
    std::uint32_t firstId = 0;
    std::uint16_t type = 0;
    bool isEditable = false;
    bool hasEud = false;                   // the attribute "eud" is "true"
    std::vector<DocumentEntry> entries{};  // all child elements

    // Returns the entry of that name (UTF-8) as hosts find it: the first element that has the name or, if the name is
    // empty, the first that has any name. Null if there is none, and if that element is not readable: hosts then find
    // nothing. It belongs to this table. Many calls together take linear time, however many entries there are.
    const DocumentEntry* find(std::string_view wanted) const;
    // The same, but also returns an element that is not readable. Such an element hides every later entry of that name.
    const DocumentEntry* findElement(std::string_view wanted) const;
};

class Document {
  public:
    // Reads a file. Returns nullopt, and sets `problem` if it is not null, if the file cannot be read or does not parse.
    // Without a form, it is that of detectEncoding. Throws std::bad_alloc, and std::length_error for a text of more than
    // 2^31 - 1 units.
    static std::optional<Document> read(const Text& path, std::optional<Form> form = std::nullopt,
                                        Problem* problem = nullptr);

    // The same for bytes in memory, the whole content of a file. They are copied.
    //
    // The bytes are read as the library reads them. A document that is encoded in another way therefore fails, has other
    // texts, or is empty; encoding() tells.
    static std::optional<Document> parse(std::string_view bytes, std::optional<Form> form = std::nullopt,
                                         Problem* problem = nullptr);

    Document(Document&&) noexcept;
    Document& operator=(Document&&) noexcept;
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    ~Document();

    DocumentKind kind() const noexcept;
    Form form() const noexcept;
    const EncodingReport& encoding() const noexcept;

    // All top-level nodes in their order.
    NodeRange nodes() const noexcept;
    // The "Settings" or "Table" element that hosts use; null if the kind is Other.
    DocumentNode root() const noexcept;

    // Of a settings document, all child elements of the root in their order; of a table document, its table. They belong
    // to the document.
    const std::vector<DocumentTable>& tables() const noexcept;
    // The section, or the table of a table document, of that name (UTF-8) as hosts find it: the first "Table" with this
    // name. Null if there is none. It belongs to the document.
    const DocumentTable* findTable(std::string_view name) const;
    // The entry of a section as hosts find it, see DocumentTable::find; null if there is none.
    const DocumentEntry* findEntry(std::string_view table, std::string_view name) const;

    // The text of the file as it is stored, in 16-bit units, up to the first zero unit.
    front::UnitsView units() const noexcept;
    // The position of a unit of that text, given by its offset; at most its size. See DocumentNode::position.
    Position positionAt(std::size_t offset) const;

  private:
    explicit Document(std::unique_ptr<front::DocumentContent> content) noexcept;

    std::unique_ptr<front::DocumentContent> content_;
};

}  // namespace mox

#endif
