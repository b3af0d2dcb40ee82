// One XML document: the holder of a tree, and every operation on it.
//
//   <Var name="Speed">            XmlNode  kind Element, name "Var", value ""
//     <Value>12</Value>             attributes -> [ XmlAttribute name "name", value "Speed" ]
//   </Var>                          children   -> XmlNode  kind Element, name "Value", value "12"
//
// Nodes, attributes and texts live in the XmlPool of the document that made them. A document attached to an
// element of another tree, and a scratch document whose nodes are to move into another tree, are constructed
// over that tree's pool, so that all they create lives and dies with it.
//
// Names and values are compared whole, unit by unit; where several nodes match, the first in document order
// wins. Operations refuse what they cannot do by their result and leave the tree as it was. Those that create
// or assign throw std::bad_alloc, or std::length_error with "string too long"; the tree is then unchanged as
// well. A document and all that shares its pool belong to one thread at a time.
#ifndef MOX_XMLAPI_XML_XML_DOCUMENT_H
#define MOX_XMLAPI_XML_XML_DOCUMENT_H

#include <cstddef>
#include <cstdint>
#include <optional>

#include "mox_xmlApi/platform/wide_text.h"
#include "mox_xmlApi/xml/xml_node.h"
#include "mox_xmlApi/xml/xml_pool.h"

namespace mox {

class XmlDocument {
  public:
    // For `RemoveChildWhere`: the first match, whichever it is.
    static constexpr std::uint64_t kFirstMatch = ~std::uint64_t{0};

    // A new document: a document node without children, in a pool of its own.
    XmlDocument();
    // A new document node in `shared`, which must outlive the holder. The node goes back to the pool with the
    // holder.
    explicit XmlDocument(XmlPool& shared);
    // A holder attached to `node`, as Attach makes it; `node` must lie in `shared`. It never frees `node`.
    XmlDocument(XmlPool& shared, XmlNode* node);
    // Frees the tree if the holder owns it.
    ~XmlDocument();
    XmlDocument(const XmlDocument&) = delete;
    XmlDocument& operator=(const XmlDocument&) = delete;

    // Makes `node` the root without owning it; the document then counts as loaded. With null: a new document
    // node, owned, not loaded. The previous root is not released: who owns it destroys it first.
    void Attach(XmlNode* node);

    // ---- Creating and destroying -----------------------------------------------------------------------------

    // A node that is in no list yet. `value` is taken for elements and comments alone. The caller
    // owns it until it is in a list.
    XmlNode* CreateNode(WideView name, std::optional<WideView> value, XmlNodeKind kind);
    // Frees `node` with its whole subtree and sets the caller's pointer to null. Null is accepted.
    void DestroyNode(XmlNode*& node) noexcept;

    // ---- Changing the structure ------------------------------------------------------------------------------

    // Inserts a new element under an element or the document, before the child `before`, or as the last one
    // when `before` is null; or a declaration (kind ProcessingInstruction) without value into a document that
    // has no children. Returns the new node, or null when refused: another parent or kind, `before` not a
    // child of `parent`.
    XmlNode* InsertChild(XmlNode* parent, WideView name, std::optional<WideView> value, const XmlNode* before,
                         XmlNodeKind kind = XmlNodeKind::Element);
    // Appends a new element under an element or the document, which is never refused. The tree keeps `name` itself,
    // which lives as long as it, as literals do.
    XmlNode& AppendElement(XmlNode& parent, WideView name, WideView value = WideView());
    // Appends the declaration <?xml version="1.0" encoding="UTF-8"?> to a document that has no children yet.
    // False, and nothing changed, for any other.
    bool AddDeclaration();
    // Appends an element, declaration or comment to the children of `parent` and takes it over. False for
    // null arguments and for a document node; the caller then keeps it, as it does when the call throws.
    bool AppendNode(XmlNode* parent, XmlNode* node);
    // Takes the last child out of `parent` without freeing it and returns it; null when there is none.
    XmlNode* DetachLastChild(XmlNode* parent) noexcept;
    // Frees the element `node` of `parent` with its subtree. Returns 1, or 0 for null, for another kind
    // (comments and the declaration stay) and for what is not among its children.
    int RemoveNode(XmlNode* parent, XmlNode* node) noexcept;
    // Frees one child of `parent` chosen by content: by the value of its attribute `attributeName`, or by its
    // node name when `attributeName` is empty, or, with `matchElementName`, when it lacks that attribute.
    // Earlier matches are counted; the one with the number `occurrence` goes. False when none was removed,
    // and when `attributeName` is empty without `matchElementName`.
    bool RemoveChildWhere(XmlNode* parent, WideView attributeName, WideView value, std::uint64_t occurrence,
                          bool matchElementName) noexcept;
    // The same choice, but frees every match from the number `firstOccurrence` on, in one pass (kFirstMatch:
    // all). Returns how many went.
    std::size_t RemoveChildrenWhere(XmlNode* parent, WideView attributeName, WideView value,
                                    std::uint64_t firstOccurrence, bool matchElementName) noexcept;
    // Frees the first attribute called `name`. False when `node` is null or has none.
    bool RemoveAttribute(XmlNode* node, WideView name) noexcept;

    // ---- Attributes and text ---------------------------------------------------------------------------------

    // The first attribute of an element called `name`, or null; null too for nodes of other kinds.
    static const XmlAttribute* FindAttribute(const XmlNode* node, WideView name) noexcept {
        const bool isElement = node != nullptr && node->kind == XmlNodeKind::Element;
        return isElement ? FindInAttributes(*node, name) : nullptr;
    }
    // Views the value of that attribute. False and `out` untouched when there is none. The view lasts until
    // the value changes.
    static bool GetAttribute(const XmlNode* node, WideView name, WideView& out) noexcept {
        const XmlAttribute* attribute = FindAttribute(node, name);
        if (attribute == nullptr) return false;
        out = attribute->value.View();
        return true;
    }
    // Replaces the value of the first attribute called `name`, or appends a new attribute. The declaration takes
    // attributes too. The tree keeps `name` itself, which must live as long as the tree, as literals do.
    void SetAttribute(XmlNode& node, WideView name, WideView value);
    // Replaces the character data of an element.
    void SetText(XmlNode& element, WideView text) { element.value.Assign(*pool_, text); }

    // ---- Look-ups --------------------------------------------------------------------------------------------

    // The next child element after `cursor`, a child of `parent`, or the first when `cursor` is null; moves
    // `cursor` onto it. Null at the end, `cursor` unchanged.
    static XmlNode* NextChildElement(const XmlNode* parent, XmlNode*& cursor) noexcept;
    // The same, for elements called "Settings" alone.
    static XmlNode* NextSettingsElement(const XmlNode* parent, XmlNode*& cursor) noexcept;
    // The first child element called `name` from `position` on, which is walked to; `position` becomes the one after
    // it. Null and `position` unchanged when there is none.
    static XmlNode* FindChildElement(const XmlNode* parent, WideView name, std::uint64_t& position) noexcept;
    // The first child element called `name`, or null.
    static XmlNode* FindChildElement(const XmlNode* parent, WideView name) noexcept;
    // The first "Table" element of `parent` whose "name" is `tableName`, or null. `parent` may be null.
    XmlNode* FindTableElement(XmlNode* parent, WideView tableName) const noexcept;
    // The first child of any kind whose "name" is `value`; with an empty `value` the first that has a "name"
    // at all. False and `out` untouched when there is none.
    bool FindChildByNameAttribute(XmlNode* parent, WideView value, XmlNode*& out) const noexcept;

    // ---- Loading (once) --------------------------------------------------------------------------------------

    // Reads and parses a file of 16-bit units (`wide`) or of bytes. False when the document is loaded already
    // or not writable, when the file cannot be read, or does not parse; it can be tried again then.
    bool LoadFile(const wchar16* path, bool wide);
    // Parses the bytes up to the first zero byte, at most `size` of them.
    bool LoadBuffer(const char* bytes, std::uint64_t size);
    // Loads the file at `path` or, if that is null, the bytes; a negative `size` sets no limit.
    bool Load(const wchar16* path, bool wide, const char* bytes, std::int32_t size);
    // Parses `text` into `parent`. Top-level nodes that were complete before a failure stay.
    bool Parse(WideView text, XmlNode* parent);

    // ---- Saving ----------------------------------------------------------------------------------------------

    // Writes the document to a file, as 16-bit units (`wide`) or as the low byte of each, followed by one
    // zero unit or byte. False when `refuse` is set (the file stays untouched), and when anything went wrong
    // with the file.
    bool Save(const wchar16* path, bool refuse, bool wide) const;

    XmlPool& Pool() const noexcept { return *pool_; }

    bool ownsRoot = false;
    bool writable = false;
    bool loaded = false;
    XmlNode* root = nullptr;

  private:
    struct ContentMatch;
    static constexpr std::uint64_t kEveryMatch = ~std::uint64_t{0};

    void RemoveChild(XmlNode* child) noexcept;
    std::size_t RemoveMatches(XmlNode* parent, const ContentMatch& matches, std::uint64_t first,
                              std::uint64_t most) noexcept;
    bool CanLoad() const noexcept { return writable && !loaded; }
    XmlNode* NewDocumentNode();
    bool ReplaceAttribute(XmlNode& node, WideView name, WideView value);
    void AppendAttribute(XmlNode& node, WideView name, WideView value);
    void FreeNode(XmlNode* node) noexcept;

    XmlPool* pool_;
    bool ownsPool_;
};

}  // namespace mox

#endif
