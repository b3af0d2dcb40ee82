// Random changes, in any order: the tree must agree with the model, and all links between its nodes must be whole, after
// each of them.
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "mox_xmlApi/xml/xml_document.h"
#include "tests/model/tree.h"
#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Wide;

constexpr std::uint64_t kFirst = XmlDocument::kFirstMatch;
static_assert(kFirst == model::kFirstMatch);

// The attribute of an element, or null.
const WideString* GetAttribute(const model::Node& node, WideView name) {
    return node.kind == model::Kind::Element ? model::FindAttribute(node, name) : nullptr;
}

// Whether both are the same tree, and the links between its nodes are whole.
bool IsSame(const XmlNode& node, const model::Node& plain) {
    if (node.kind != test::KindInLibrary(plain.kind)) return false;
    if (node.name.View() != plain.name || node.value.View() != plain.value) return false;
    if (node.attributes.Size() != plain.attributes.size() || node.children.Size() != plain.children.size())
        return false;
    for (std::size_t i = 0; i < plain.attributes.size(); ++i) {
        const XmlAttribute& attribute = node.attributes.At(i);
        if (attribute.name.View() != plain.attributes[i].first) return false;
        if (attribute.value.View() != plain.attributes[i].second) return false;
    }
    const XmlNode* previous = node.children.Last();
    auto expected = plain.children.begin();
    for (const XmlNode* child : node.children) {
        if (child->parent != &node || child->previous != previous || !IsSame(*child, **expected++))
            return false;
        previous = child;
    }
    return previous == node.children.Last();
}

// One document and its model under the same changes.
class Editor {
  public:
    explicit Editor(std::uint64_t seed, std::size_t mostChildren)
        : random_(seed), mostChildren_(mostChildren) {
        model_.kind = model::Kind::Document;
    }

    // One change. False when its result differs from the model's, or the trees do; Log says what was done.
    bool Step() {
        const Place place = AnyPlace();
        bool agreed = false;
        switch (random_.Below(14)) {
            case 0:
            case 1:
            case 2:
                agreed = Insert(place);
                break;
            case 3:
                agreed = AppendNode(place);
                break;
            case 4:
                agreed = AddAttribute(place);
                break;
            case 5:
                agreed = RemoveChild(place);
                break;
            case 6:
                agreed = RemoveForeign(place);
                break;
            case 7:
                agreed = RemoveWhere(place);
                break;
            case 8:
                agreed = RemoveAllWhere(place);
                break;
            case 9:
            case 10:
                agreed = SetAttribute(place);
                break;
            case 11:
                agreed = RemoveAttribute(place);
                break;
            case 12:
                agreed = SetText(place);
                break;
            default:
                agreed = MoveLastChild(place);
        }
        return agreed && IsSame(*document_.root, model_) && LookUp(AnyPlace());
    }

    // What the last step did.
    const std::string& Log() const { return log_; }
    std::string Tree() const { return test::DumpChildren(document_.root); }
    std::string Model() const { return model::DumpChildren(model_); }
    std::size_t BytesHeld() const { return document_.Pool().BytesHeld(); }

  private:
    // The same node in both trees.
    struct Place {
        XmlNode* node;
        model::Node* plain;
    };

    Place AnyPlace() {
        Place place{document_.root, &model_};
        for (int depth = 0; depth < 4 && !place.plain->children.empty() && !random_.OneIn(3); ++depth) {
            const std::size_t i = random_.Below(place.plain->children.size());
            place = {place.node->children.At(i), place.plain->children[i].get()};
        }
        return place;
    }

    WideString Name() {
        static constexpr std::string_view kNames[] = {"a", "b", "Table", "Settings", "Var", "xml", ""};
        return Wide(random_.Pick(kNames));
    }
    WideString Key() {
        static constexpr std::string_view kKeys[] = {"name", "name", "k", "id", "NAME"};
        return Wide(random_.Pick(kKeys));
    }
    WideString Value() {
        static constexpr std::string_view kValues[] = {
            "",  "a",     "b", "S",
            "T", "Table", "x", "a value that is longer than all the others and moves the text"};
        return Wide(random_.Pick(kValues));
    }
    XmlNodeKind Kind() {
        static constexpr XmlNodeKind kKinds[] = {XmlNodeKind::Element, XmlNodeKind::Element,
                                                 XmlNodeKind::Comment, XmlNodeKind::ProcessingInstruction,
                                                 XmlNodeKind::Document};
        return random_.Pick(kKinds);
    }
    std::uint64_t Occurrence() { return random_.OneIn(3) ? kFirst : random_.Below(4); }

    bool IsFull(const Place& place) const { return place.plain->children.size() >= mostChildren_; }

    bool Insert(const Place& place) {
        log_ = "InsertChild";
        const XmlNodeKind kind = random_.OneIn(4) ? Kind() : XmlNodeKind::Element;
        const WideString name = Name();
        std::optional<WideString> value;
        if (random_.OneIn(2)) value = Value();
        const std::size_t count = place.plain->children.size();
        const std::size_t position = random_.OneIn(2) ? count : random_.Below(count + 1);
        const XmlNode* before = position < count ? place.node->children.At(position) : nullptr;
        const bool foreign = random_.OneIn(10) && place.node != document_.root;
        if (foreign) before = place.node;
        if (IsFull(place)) return true;

        const bool isDocument = place.plain->kind == model::Kind::Document;
        bool allowed = isDocument || place.plain->kind == model::Kind::Element;
        if (kind == XmlNodeKind::ProcessingInstruction)
            allowed = isDocument && count == 0 && value.value_or(WideString()).empty();
        else
            allowed = allowed && kind == XmlNodeKind::Element && !foreign;
        const XmlNode* inserted = document_.InsertChild(place.node, name, View(value), before, kind);
        if ((inserted != nullptr) != allowed) return false;
        if (!allowed) return true;
        const model::Node plain{test::KindInModel(kind), name,
                                kind == XmlNodeKind::Element ? value.value_or(WideString()) : WideString()};
        place.plain->children.insert(place.plain->children.begin() + static_cast<std::ptrdiff_t>(position),
                                     model::Copy(plain));
        return inserted == place.node->children.At(position);
    }

    bool AppendNode(const Place& place) {
        log_ = "AppendNode";
        if (IsFull(place)) return true;
        const XmlNodeKind kind = Kind();
        model::Node plain{test::KindInModel(kind), Name()};
        const WideString value = Value();
        XmlNode* node = document_.CreateNode(plain.name, value, kind);
        if (kind == XmlNodeKind::Element || kind == XmlNodeKind::Comment) plain.value = value;
        const bool appended = document_.AppendNode(place.node, node);
        if (kind == XmlNodeKind::Document) {
            document_.DestroyNode(node);
            return !appended;
        }
        place.plain->children.push_back(model::Copy(plain));
        return appended;
    }

    bool RemoveChild(const Place& place) {
        log_ = "RemoveNode";
        if (place.plain->children.empty()) return document_.RemoveNode(place.node, place.node) == 0;
        const std::size_t i = random_.Below(place.plain->children.size());
        const bool allowed = place.plain->children[i]->kind == model::Kind::Element;
        if (document_.RemoveNode(place.node, place.node->children.At(i)) != (allowed ? 1 : 0)) return false;
        if (allowed)
            place.plain->children.erase(place.plain->children.begin() + static_cast<std::ptrdiff_t>(i));
        return true;
    }

    // A second one of a name comes from a parser alone.
    bool AddAttribute(const Place& place) {
        log_ = "another attribute";
        if (place.plain->attributes.size() >= mostChildren_) return true;
        const WideString name = Key();
        const WideString value = Value();
        place.plain->attributes.emplace_back(name, value);
        test::AddAttribute(document_, place.node, name, value);
        return true;
    }

    // A child of another parent is left where it is.
    bool RemoveForeign(const Place& place) {
        log_ = "RemoveNode of another parent's child";
        const Place other = AnyPlace();
        if (other.node == place.node || other.plain->children.empty()) return true;
        return document_.RemoveNode(place.node, other.node->children.At(0)) == 0;
    }

    bool RemoveWhere(const Place& place) {
        log_ = "RemoveChildWhere";
        const WideString attribute = random_.OneIn(3) ? WideString() : Key();
        const WideString value = random_.OneIn(2) ? Name() : Value();
        const std::uint64_t occurrence = Occurrence();
        const bool matchName = random_.OneIn(2);
        return document_.RemoveChildWhere(place.node, attribute, value, occurrence, matchName) ==
               model::RemoveChildWhere(*place.plain, attribute, value, occurrence, matchName);
    }

    bool RemoveAllWhere(const Place& place) {
        log_ = "RemoveChildrenWhere";
        const WideString attribute = random_.OneIn(3) ? WideString() : Key();
        const WideString value = random_.OneIn(2) ? Name() : Value();
        const std::uint64_t first = random_.OneIn(6) ? Occurrence() : 1 + random_.Below(4);
        const bool matchName = random_.OneIn(2);
        std::size_t removed = 0;
        while (
            model::RemoveChildWhere(*place.plain, attribute, value, first == kFirst ? 0 : first, matchName))
            ++removed;
        return document_.RemoveChildrenWhere(place.node, attribute, value, first, matchName) == removed;
    }

    bool SetAttribute(const Place& place) {
        log_ = "SetAttribute";
        const WideString name = Key();
        const WideString value = random_.OneIn(8) ? WideString() : Value();
        model::SetAttribute(*place.plain, WideView(name), value);
        document_.SetAttribute(*place.node, XmlText::Copy(document_.Pool(), name).View(), value);
        return true;
    }

    bool RemoveAttribute(const Place& place) {
        log_ = "RemoveAttribute";
        const WideString name = Key();
        return document_.RemoveAttribute(place.node, name) ==
               model::RemoveAttribute(*place.plain, WideView(name));
    }

    bool SetText(const Place& place) {
        log_ = "SetText";
        const WideString text = Value();
        if (place.plain->kind != model::Kind::Element) return true;
        place.plain->value = text;
        document_.SetText(*place.node, text);
        return true;
    }

    bool MoveLastChild(const Place& from) {
        log_ = "DetachLastChild";
        XmlNode* node = document_.DetachLastChild(from.node);
        if (from.plain->children.empty()) return node == nullptr;
        const model::NodePtr plain = from.plain->children.back();
        from.plain->children.pop_back();
        if (node == nullptr || node->parent != nullptr || !IsSame(*node, *plain)) return false;
        const Place to = AnyPlace();
        to.plain->children.push_back(plain);
        return document_.AppendNode(to.node, node);
    }

    // All look-ups below one node agree with a plain walk over the model.
    bool LookUp(const Place& place) {
        log_ += ", then look-ups";
        const WideString name = Name();
        const WideString value = Value();
        return LookUpAttribute(place, Key()) && WalkElements(place) && FindByTag(place, name) &&
               FindTable(place, value) && FindByName(place, value);
    }

    static bool LookUpAttribute(const Place& place, const WideString& key) {
        WideView found;
        const WideString* expected = GetAttribute(*place.plain, key);
        const bool has = XmlDocument::GetAttribute(place.node, key, found);
        return has == (expected != nullptr) && (!has || found == *expected);
    }

    static bool WalkElements(const Place& place) {
        XmlNode* cursor = nullptr;
        XmlNode* settings = nullptr;
        for (std::size_t i = 0; i < place.plain->children.size(); ++i) {
            const model::Node& child = *place.plain->children[i];
            if (child.kind != model::Kind::Element) continue;
            const XmlNode* expected = place.node->children.At(i);
            if (XmlDocument::NextChildElement(place.node, cursor) != expected) return false;
            if (child.name == "Settings"_w &&
                XmlDocument::NextSettingsElement(place.node, settings) != expected)
                return false;
        }
        return XmlDocument::NextChildElement(place.node, cursor) == nullptr &&
               XmlDocument::NextSettingsElement(place.node, settings) == nullptr;
    }

    static bool FindByTag(const Place& place, const WideString& name) {
        std::uint64_t position = 0;
        for (std::size_t i = 0; i < place.plain->children.size(); ++i) {
            const model::Node& child = *place.plain->children[i];
            if (child.kind != model::Kind::Element || child.name != name) continue;
            if (XmlDocument::FindChildElement(place.node, name, position) != place.node->children.At(i))
                return false;
            if (position != i + 1) return false;
        }
        return XmlDocument::FindChildElement(place.node, name, position) == nullptr;
    }

    bool FindTable(const Place& place, const WideString& value) {
        const XmlNode* expected = nullptr;
        for (std::size_t i = 0; i < place.plain->children.size() && expected == nullptr; ++i) {
            const model::Node& child = *place.plain->children[i];
            if (child.kind != model::Kind::Element || child.name != "Table"_w) continue;
            const WideString* name = model::FindAttribute(child, "name");
            if (name != nullptr && *name == value) expected = place.node->children.At(i);
        }
        return document_.FindTableElement(place.node, value) == expected;
    }

    bool FindByName(const Place& place, const WideString& value) {
        XmlNode* const untouched = place.node;
        const XmlNode* expected = untouched;
        for (std::size_t i = 0; i < place.plain->children.size() && expected == untouched; ++i) {
            const WideString* name = model::FindAttribute(*place.plain->children[i], "name");
            if (name != nullptr && (value.empty() || *name == value)) expected = place.node->children.At(i);
        }
        XmlNode* found = untouched;
        const bool has = document_.FindChildByNameAttribute(place.node, value, found);
        return found == expected && has == (expected != untouched);
    }

    static std::optional<WideView> View(const std::optional<WideString>& text) {
        if (!text.has_value()) return std::nullopt;
        return WideView(*text);
    }

    test::Random random_;
    std::size_t mostChildren_;
    XmlDocument document_;
    model::Node model_;
    std::string log_;
};

void RunSequences(std::uint64_t firstSeed, std::uint64_t lastSeed, int steps, std::size_t mostChildren) {
    for (std::uint64_t seed = firstSeed; seed <= lastSeed; ++seed) {
        Editor editor(seed, mostChildren);
        for (int step = 0; step < steps; ++step) {
            ASSERT_TRUE(editor.Step()) << "seed " << seed << " step " << step << ": " << editor.Log()
                                       << "\n  tree:  " << editor.Tree() << "\n  model: " << editor.Model();
        }
    }
}

TEST(XmlDocumentModel, ManyShortSequencesAgree) {
    RunSequences(1, 300, 100, 12);
}

TEST(XmlDocumentModel, LongSequencesOverWideTreesAgree) {
    RunSequences(1001, 1010, 1500, 400);
}

TEST(XmlDocumentModel, EditingWithoutEndDoesNotGrowThePool) {
    Editor editor(7, 6);
    for (int step = 0; step < 20000; ++step)
        ASSERT_TRUE(editor.Step()) << step << ": " << editor.Log();
    EXPECT_LT(editor.BytesHeld(), 1U << 20);
}

}  // namespace
}  // namespace mox
