#include "fuzz/tree_check.h"

#include <vector>

#include "fuzz/work.h"
#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/table/table_handle.h"
#include "mox_xmlApi/xml/xml_name_characters.h"
#include "mox_xmlApi/xml/xml_names.h"
#include "tests/model/profile.h"
#include "tests/model/tables.h"
#include "tests/model/text.h"
#include "tests/tree_in_model.h"

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

bool HasSectionWithEud(const model::Node& root) {
    return std::any_of(root.children.begin(), root.children.end(), [](const model::NodePtr& section) {
        return model::FindAttribute(*section, "eud") != nullptr;
    });
}

// The bytes of a file with this document.
std::string FileOf(const model::Node& document, bool wide) {
    const model::Text text = model::Written(document);
    return wide ? model::WideBytes(text) : model::NarrowBytes(text);
}

// The model's document of a file.
model::NodePtr ParseFile(const std::string& bytes, bool wide) {
    return ParseByModel(wide ? model::FromWideBytes(bytes) : model::FromNarrowBytes(bytes));
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
    std::vector<const XmlNode*> parents{&top};
    while (!parents.empty()) {
        const XmlNode& parent = *parents.back();
        parents.pop_back();
        std::size_t count = 0;
        for (const XmlNode* child : parent.children) {
            ++count;
            CheckPlace(parent, *child);
            for (const XmlAttribute& attribute : child->attributes)
                Check(!attribute.name.View().empty(), "an attribute has a name");
            parents.push_back(child);
        }
        Check(count == parent.children.Size(), "a list knows how many children it has");
    }
}

model::NodePtr CopyTree(const XmlNode& top) {
    CheckTree(top);
    return test::CopyToModel(top);
}

model::NodePtr ParseByModel(const model::Text& text) {
    return model::Parse(text, {IsNameStart, IsNameCharacter});
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
//  - a text that has line feeds, or stands beside children, is written on lines of its own, and the line feed and the
//    tabs before the next tag are read as a part of it. (Reading joins pieces of text by line feeds, so these always
//    are such texts.)
// Attribute values and comments are written and read verbatim. Control characters other than white space are
// units like any other; zero units cannot be in a tree.
unsigned WhyNotUnchanged(const model::Node& node, bool wide) {
    unsigned reasons = 0;
    const auto look = [&](WideView text) {
        for (const wchar16 unit : text) {
            if (!wide && unit >= 0x80 && unit < 0xFF80) reasons |= kUnitsAreCut;
        }
    };
    look(node.name);
    look(node.value);
    for (const auto& [name, value] : node.attributes) {
        look(name);
        look(value);
    }
    if (node.kind == model::Kind::Element && !node.value.empty()) {
        if (IsSpace(node.value.front())) reasons |= kSpaceIsDropped;
        if (!node.children.empty() || node.value.find('\n') != WideString::npos) reasons |= kTextGrows;
    }
    for (const model::NodePtr& child : node.children)
        reasons |= WhyNotUnchanged(*child, wide);
    return reasons;
}

void CheckRoundTrip(moxSettings* profile, const ScratchFile& file, bool wide) {
    const model::NodePtr before = CopyTree(*profile->document.root);
    const model::NodePtr root = model::FindRoot(*before);
    model::StripEud(*root);
    const bool eudIsLeft = HasSectionWithEud(*root);

    std::uint64_t work = WorkDone();
    Check(xmlProfileSave(profile, file.Name(), 0, 0, wide ? 1 : 0) == 1, "the profile is saved");
    work = WorkDone() - work;
    const std::string first = file.Read();
    CheckWork(work, first.size(), "a save");
    Check(model::IsSame(*CopyTree(*profile->document.root), *before), "a save removes eud and nothing else");
    Check(first == FileOf(*before, wide), "a save writes the tree");

    const model::NodePtr expected = ParseFile(first, wide);
    const unsigned reasons = WhyNotUnchanged(*before, wide);
    Check(expected != nullptr || (reasons & kUnitsAreCut) != 0, "what was saved can be read");

    work = WorkDone();
    moxSettings* again = xmlProfileNew(file.Name(), nullptr, 0, wide ? 1 : 0);
    CheckWork(WorkDone() - work, first.size(), "loading what was saved");
    Check((again != nullptr) == (expected != nullptr), "loading agrees with the model");
    if (again == nullptr) return;
    const model::NodePtr expectedRoot = model::OpenRoot(*expected);
    Check(model::IsSame(*CopyTree(*again->document.root), *expected), "the tree agrees with the model");
    Check(xmlProfileSave(again, file.Name(), 0, 0, wide ? 1 : 0) == 1, "what was loaded is saved");
    xmlProfileDispose(&again);

    const std::string second = file.Read();
    model::StripEud(*expectedRoot);
    Check(second == FileOf(*expected, wide), "the second save writes the tree");
    if (!eudIsLeft) CheckSecondFile(first, second, reasons);
}

void CheckRoundTrip(void* table, const ScratchFile& file) {
    const XmlNode& top = *static_cast<TableHandle*>(table)->document.root;
    const model::NodePtr before = CopyTree(top);
    Check(xmlTableSave(table, file.Name(), 0, 0), "the table is saved");
    const std::string first = file.Read();
    Check(model::IsSame(*CopyTree(top), *before), "a save does not change the table");
    Check(first == FileOf(*before, true), "a save writes the tree");

    const model::NodePtr expected = ParseFile(first, true);
    Check(expected != nullptr, "what was saved can be read");
    void* again = xmlTableNew(file.Name(), nullptr, 0, nullptr, 0, 0, 0, 0);
    Check(again != nullptr, "what was saved can be loaded");
    model::OpenTable(*expected, model::Text());
    Check(model::IsSame(*CopyTree(*static_cast<TableHandle*>(again)->document.root), *expected),
          "the tree agrees with the model");
    Check(xmlTableSave(again, file.Name(), 0, 0), "what was loaded is saved");
    xmlTableDispose(&again);

    const std::string second = file.Read();
    Check(second == FileOf(*expected, true), "the second save writes the tree");
    const bool isSection = top.kind != XmlNodeKind::Document;
    if (!isSection) CheckSecondFile(first, second, WhyNotUnchanged(*before, true));
}

}  // namespace mox::fuzz
