#include "fuzz/tree_check.h"

#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/table/table_handle.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox::fuzz {
namespace {

bool IsSpace(wchar16 unit) {
    return unit == ' ' || unit == '\t' || unit == '\n' || unit == '\r';
}

void CheckPlace(const XmlNode& parent, const XmlNode& child) {
    const bool isFirst = parent.children.First() == &child;
    Check(child.parent == &parent, "a child knows its parent");
    Check(isFirst ? child.previous == parent.children.Last() : child.previous->next == &child,
          "siblings lead to each other");
    Check(child.kind == XmlNodeKind::Element || child.kind == XmlNodeKind::Comment ||
              child.kind == XmlNodeKind::ProcessingInstruction,
          "children are elements, comments and the declaration");
    const bool isDeclaration = child.kind == XmlNodeKind::ProcessingInstruction;
    Check(!isDeclaration || (parent.kind == XmlNodeKind::Document && isFirst),
          "the declaration comes first in the document");
    if (child.kind == XmlNodeKind::Element) {
        Check(!child.name.View().empty(), "an element has a name");
        return;
    }
    Check(child.children.Size() == 0, "only elements have children");
    if (isDeclaration) {
        Check(child.name.View() == names::kXml && child.value.View().empty(),
              "the declaration is called xml");
    } else {
        Check(child.name.View().empty() && child.attributes.Size() == 0, "a comment has only its text");
    }
}

// Calls `visit(node, depth)` for every node below `top`, whose children have depth 1.
template <class Visit>
void Walk(const XmlNode& top, Visit visit) {
    struct Level {
        const XmlNode* parent;
        const XmlNode* next;
        std::size_t count;
    };
    std::vector<Level> open{{&top, top.children.First(), 0}};
    while (!open.empty()) {
        Level& level = open.back();
        const XmlNode* child = level.next;
        if (child == nullptr) {
            Check(level.count == level.parent->children.Size(), "a list knows how many children it has");
            open.pop_back();
            continue;
        }
        level.next = child->next;
        ++level.count;
        CheckPlace(*level.parent, *child);
        for (const XmlAttribute& attribute : child->attributes)
            Check(!attribute.name.View().empty(), "an attribute has a name");
        visit(*child, open.size());
        open.push_back({child, child->children.First(), 0});
    }
}

PlainNode CopyNode(const XmlNode& node, std::size_t depth) {
    PlainNode copy{node.kind, depth, WideString(node.name.View()), WideString(node.value.View())};
    for (const XmlAttribute& attribute : node.attributes)
        copy.attributes.emplace_back(attribute.name.View(), attribute.value.View());
    return copy;
}

WideView NameOf(const XmlNode& node, bool& hasName) {
    for (const XmlAttribute& attribute : node.attributes) {
        hasName = attribute.name.View() == names::kName;
        if (hasName) return attribute.value.View();
    }
    hasName = false;
    return {};
}

void CheckSecondFile(const std::string& first, const std::string& second, unsigned reasons) {
    if (reasons == 0) Check(second == first, "a document that has to survive is saved as before");
    if (reasons == kTextGrows) Check(second.size() > first.size(), "indentation has become text");
}

}  // namespace

void CheckTree(const XmlNode& top) {
    Walk(top, [](const XmlNode&, std::size_t) {});
}

PlainDocument CopyTree(const XmlNode& top) {
    PlainDocument copy;
    const std::size_t outside = top.kind == XmlNodeKind::Document ? 1 : 0;
    if (outside == 0) copy.push_back(CopyNode(top, 0));
    Walk(top,
         [&](const XmlNode& node, std::size_t depth) { copy.push_back(CopyNode(node, depth - outside)); });
    return copy;
}

XmlNode* ScanForEntry(const XmlNode& parent, WideView name) {
    for (XmlNode* child : parent.children) {
        bool hasName = false;
        const WideView found = NameOf(*child, hasName);
        if (hasName && (name.empty() || found == name)) return child;
    }
    return nullptr;
}

XmlNode* ScanForTable(const XmlNode& parent, WideView name) {
    for (XmlNode* child : parent.children) {
        bool hasName = false;
        const WideView found = NameOf(*child, hasName);
        const bool isTable = child->kind == XmlNodeKind::Element && child->name.View() == names::kTable;
        if (isTable && hasName && found == name) return child;
    }
    return nullptr;
}

void CheckLookUps(const XmlDocument& document, XmlNode& parent) {
    constexpr std::size_t kMost = 32;
    const auto lookUp = [&](WideView name) {
        XmlNode* entry = nullptr;
        const bool found = document.FindChildByNameAttribute(&parent, name, entry);
        Check(found == (entry != nullptr) && entry == ScanForEntry(parent, name),
              "a look-up finds what a scan finds");
        Check(document.FindTableElement(&parent, name) == ScanForTable(parent, name),
              "a look-up of a section finds what a scan finds");
    };
    lookUp(WideView());
    lookUp(names::kName);
    const std::size_t step = parent.children.Size() / kMost + 1;
    std::size_t i = 0;
    for (const XmlNode* child : parent.children) {
        bool hasName = false;
        const WideView name = NameOf(*child, hasName);
        if (i++ % step == 0 && hasName) lookUp(name);
    }
}

// The format keeps a document as it is, except for what it says itself:
//  - a narrow file has the low byte of each unit, and a byte is read with its sign, so that only U+0000 to
//    U+007F and U+FF80 to U+FFFF come back; of any other unit something else does, perhaps markup;
//  - white space before a text is skipped, as is a text of white space alone;
//  - a text that has line feeds, or stands beside children, is written on lines of its own, and the line feed
//  and
//    the tabs before the next tag are read as a part of it. (Reading joins pieces of text by line feeds, so
//    these always are such texts.)
// Attribute values and comments are written and read verbatim. Control characters other than white space are
// units like any other; zero units cannot be in a tree.
unsigned WhyNotUnchanged(const PlainDocument& document, bool wide) {
    unsigned reasons = 0;
    const auto look = [&](WideView text) {
        for (const wchar16 unit : text) {
            if (!wide && unit >= 0x80 && unit < 0xFF80) reasons |= kUnitsAreCut;
        }
    };
    for (std::size_t i = 0; i < document.size(); ++i) {
        const PlainNode& node = document[i];
        look(node.name);
        look(node.value);
        for (const auto& [name, value] : node.attributes) {
            look(name);
            look(value);
        }
        if (node.kind != XmlNodeKind::Element || node.value.empty()) continue;
        if (IsSpace(node.value.front())) reasons |= kSpaceIsDropped;
        if (PlainHasChildren(document, i) || node.value.find('\n') != WideString::npos) reasons |= kTextGrows;
    }
    return reasons;
}

void CheckRoundTrip(moxSettings* profile, const ScratchFile& file, bool wide) {
    PlainDocument before = CopyTree(*profile->document.root);
    const bool marksAreLeft = PlainStripMarks(before);
    Check(xmlProfileSave(profile, file.Name(), 0, 0, wide ? 1 : 0) == 1, "the profile is saved");
    const std::string first = file.Read();
    Check(CopyTree(*profile->document.root) == before, "a save takes out the marks and nothing else");
    Check(first == PlainFile(PlainWrite(before, "\n"_w), wide), "a save writes the tree");

    PlainDocument expected;
    const bool isReadable = PlainRead(PlainUnits(first, wide), expected);
    const unsigned reasons = WhyNotUnchanged(before, wide);
    Check(isReadable || (reasons & kUnitsAreCut) != 0, "what was saved can be read");
    moxSettings* again = xmlProfileNew(file.Name(), nullptr, 0, wide ? 1 : 0);
    Check((again != nullptr) == isReadable, "loading agrees with a plain reading");
    if (again == nullptr) return;
    PlainOpenProfile(expected);
    Check(CopyTree(*again->document.root) == expected, "the tree agrees with a plain reading");
    Check(xmlProfileSave(again, file.Name(), 0, 0, wide ? 1 : 0) == 1, "what was loaded is saved");
    xmlProfileDispose(&again);

    const std::string second = file.Read();
    PlainStripMarks(expected);
    Check(second == PlainFile(PlainWrite(expected, "\n"_w), wide), "the second save writes the tree");
    if (!marksAreLeft) CheckSecondFile(first, second, reasons);
}

void CheckRoundTrip(void* table, const ScratchFile& file) {
    const XmlNode& root = *static_cast<TableHandle*>(table)->document.root;
    const PlainDocument before = CopyTree(root);
    Check(xmlTableSave(table, file.Name(), 0, 0), "the table is saved");
    const std::string first = file.Read();
    Check(CopyTree(root) == before, "a save does not change the table");
    const bool isSection = root.kind != XmlNodeKind::Document;
    Check(first == PlainFile(PlainWrite(before, isSection ? WideView() : "\n"_w), true),
          "a save writes the tree");

    PlainDocument expected;
    Check(PlainRead(PlainUnits(first, true), expected), "what was saved can be read");
    void* again = xmlTableNew(file.Name(), nullptr, 0, nullptr, 0, 0, 0, 0);
    Check(again != nullptr, "what was saved can be loaded");
    PlainOpenTable(expected, WideView());
    Check(CopyTree(*static_cast<TableHandle*>(again)->document.root) == expected,
          "the tree agrees with a plain reading");
    Check(xmlTableSave(again, file.Name(), 0, 0), "what was loaded is saved");
    xmlTableDispose(&again);

    const std::string second = file.Read();
    Check(second == PlainFile(PlainWrite(expected, "\n"_w), true), "the second save writes the tree");
    if (!isSection) CheckSecondFile(first, second, WhyNotUnchanged(before, true));
}

}  // namespace mox::fuzz
