#include "tests/model/entries.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace model {
namespace {

struct Code {
    std::string_view name;
    std::uint16_t code;
};

constexpr std::array<Code, 10> kTypes = {{{"short", 2},
                                          {"long", 3},
                                          {"double", 5},
                                          {"string", 8},
                                          {"bool", 11},
                                          {"char", 16},
                                          {"byte", 17},
                                          {"ushort", 18},
                                          {"ulong", 19},
                                          {"ucstring", 31}}};

// Those after 20 are never read: their name comes earlier.
constexpr std::array<Code, 16> kControls = {{{"num", 1},
                                             {"text", 2},
                                             {"switch", 4},
                                             {"no_edit", 5},
                                             {"rgb", 7},
                                             {"button", 8},
                                             {"text_array", 12},
                                             {"named_array", 14},
                                             {"switch_array", 15},
                                             {"radio_array", 16},
                                             {"state", 17},
                                             {"named_list_array", 18},
                                             {"radio", 19},
                                             {"prop_array", 20},
                                             {"prop_array", 24},
                                             {"prop_array", 26}}};

constexpr std::array<Code, 3> kOwners = {{{"app", 1}, {"dwg", 2}, {"erg", 4}}};

struct Number {
    bool negative = false;
    std::uint32_t magnitude = 0;  // the largest there is for a larger one
};

constexpr std::int64_t kMostNegative = 0x80000000;

// The digits zero and the white space beyond ASCII that numbers know.
constexpr std::u16string_view kZeros =
    u"\u0660\u06F0\u0966\u09E6\u0A66\u0AE6\u0B66\u0C66\u0CE6\u0D66\u0E50\u0ED0\u0F20\u1040\u17E0\u1810\uFF10";
constexpr std::u16string_view kBlanks =
    u"\u00A0\u1680\u2000\u2001\u2002\u2003\u2004\u2005\u2006\u2007\u2008\u2009\u200A\u2028\u2029\u202F\u205F"
    u"\u3000";

// The character of ASCII that means the same in a number, or a question mark.
char InAscii(wchar16 unit) {
    const auto character = static_cast<char16_t>(unit);
    if (character < 0x80) return static_cast<char>(character);
    if (kBlanks.find(character) != std::u16string_view::npos) return ' ';
    for (const char16_t zero : kZeros) {
        if (character >= zero && character <= zero + 9) return static_cast<char>('0' + (character - zero));
    }
    return '?';
}

// White space, a sign, in base 16 a prefix, digits; what follows plays no part.
Number Read(const Text& text, unsigned base) {
    std::string ascii;
    for (const wchar16 unit : text)
        ascii += InAscii(unit);
    std::size_t at = std::min(ascii.find_first_not_of(" \t\n\v\f\r"), ascii.size());
    Number number{ascii.substr(at, 1) == "-"};
    if (number.negative || ascii.substr(at, 1) == "+") ++at;
    if (base == 16 && (ascii.substr(at, 2) == "0x" || ascii.substr(at, 2) == "0X")) at += 2;
    for (; at < ascii.size(); ++at) {
        const std::size_t found = std::string_view("0123456789ABCDEFabcdef").find(ascii[at]);
        const std::size_t digit = found > 15 ? found - 6 : found;
        if (found == std::string_view::npos || digit >= base) break;
        const std::uint64_t next = std::uint64_t{number.magnitude} * base + digit;
        number.magnitude = static_cast<std::uint32_t>(std::min<std::uint64_t>(next, 0xFFFFFFFF));
    }
    return number;
}

template <class Table>
std::uint16_t CodeOf(const Table& table, const Text& name, std::uint16_t otherwise) {
    for (const Code& row : table) {
        if (Wide(row.name) == name) return row.code;
    }
    return otherwise;
}

template <class Table>
std::string_view NameOf(const Table& table, unsigned code, std::string_view otherwise) {
    for (const Code& row : table) {
        if (row.code == code) return row.name;
    }
    return otherwise;
}

void ReadType(const Text& name, const Text& qualifier, std::uint16_t& type) {
    const std::uint16_t base = CodeOf(kTypes, name, 0);
    if (base == 0) return;
    const unsigned bit = qualifier == Wide("array") ? 0x2000U : qualifier == Wide("vector") ? 0x1000U : 0U;
    type = static_cast<std::uint16_t>(base | bit);
}

void ReadUi(const Node& element, EntryUi& ui) {
    Text text;
    for (const auto& [name, value] : element.attributes) {
        text = value;
        if (name == Wide("control")) ui.control = CodeOf(kControls, text, 2);
        if (name == Wide("Comment")) ui.comment = text;
        if (name == Wide("Value")) ui.value = text;
        if (name == Wide("name")) ui.name = text;
        if (name == Wide("prov_index")) ui.index = ReadUnsigned(text, 10);
        if (name == Wide("prov_owner")) {
            ui.owner = static_cast<std::uint8_t>(text.empty() ? 0 : CodeOf(kOwners, text, 1));
        }
        if (name == Wide("loc")) ui.loc = text == Wide("true");
    }
    for (const NodePtr& child : element.children) {
        if (IsElement(*child, "Comment")) ui.comment = child->value;
        if (!IsElement(*child, "Value")) continue;
        ui.value = child->value;
        if (const Text* loc = FindAttribute(*child, "loc"); loc != nullptr) text = *loc;
        if (!text.empty()) ui.loc = text == Wide("true");
    }
}

void WriteValueChild(Node& parent, const Text& text, bool loc, bool onlySet) {
    NodePtr child = FindElement(parent, "Value");
    if (child == nullptr) {
        child = NewElement("Value");
        parent.children.push_back(child);
    }
    child->value = text;
    if (!onlySet || loc) SetAttribute(*child, "loc", Wide(loc ? "true" : ""));
}

void WriteOptional(Node& element, std::string_view name, const Text& text, bool isSet, bool onlySet) {
    if (isSet) {
        SetAttribute(element, name, text);
    } else if (!onlySet) {
        RemoveAttribute(element, name);
    }
}

void WriteUi(Node& element, const EntryUi& ui, bool onlySet) {
    SetAttribute(element, "control", Wide(NameOf(kControls, ui.control, "text")));
    WriteOptional(element, "prov_index", UnsignedText(ui.index), ui.index != 0, onlySet);
    WriteOptional(element, "prov_owner", Wide(NameOf(kOwners, ui.owner, "")), ui.owner != 0, onlySet);
    WriteOptional(element, "name", ui.name, !ui.name.empty(), onlySet);

    const NodePtr comment = FindElement(element, "Comment");
    if (comment == nullptr) {
        if (ui.comment.empty()) return;
        const std::size_t index = IndexOf(element, FindElement(element, "Value").get());
        element.children.insert(element.children.begin() + static_cast<std::ptrdiff_t>(index),
                                NewElement("Comment", ui.comment));
        return;
    }
    if (!ui.comment.empty()) {
        comment->value = ui.comment;
        return;
    }
    WriteValueChild(element, ui.value, ui.loc, onlySet);
}

}  // namespace

std::uint32_t ReadUnsigned(const Text& text, unsigned base) {
    const Number number = Read(text, base);
    return number.negative ? 0U - number.magnitude : number.magnitude;
}

std::int32_t ReadSigned(const Text& text) {
    const Number number = Read(text, 10);
    if (number.negative)
        return static_cast<std::int32_t>(-std::min(std::int64_t{number.magnitude}, kMostNegative));
    return static_cast<std::int32_t>(std::min<std::uint32_t>(number.magnitude, INT32_MAX));
}

Text HexText(std::uint32_t number) {
    std::string digits;
    for (; number != 0 || digits.size() < 4; number /= 16)
        digits.insert(digits.begin(), "0123456789ABCDEF"[number % 16]);
    return Wide(digits);
}

Text SignedText(std::uint32_t number) {
    return Wide(std::to_string(static_cast<std::int32_t>(number)));
}

Text UnsignedText(std::uint32_t number) {
    return Wide(std::to_string(number));
}

bool ReadEntry(const Node& entry, EntryValue& record, EntryUi& ui) {
    const Text qualifier = AttributeOf(entry, "array");
    Text text;
    for (const auto& [name, value] : entry.attributes) {
        text = value;
        if (name == Wide("name")) record.name = text;
        if (name == Wide("id")) record.id = ReadUnsigned(text, 10);
        if (name == Wide("type")) ReadType(text, qualifier, record.type);
        if (name == Wide("Value")) record.value = text;
        if (name == Wide("loc")) record.loc = text == Wide("true");
        if (name == Wide("locval")) record.valueLoc = text == Wide("true");
    }
    if (record.type == 0) return false;
    for (const NodePtr& child : entry.children) {
        if (IsElement(*child, "UI")) ReadUi(*child, ui);
        if (!IsElement(*child, "Value")) continue;
        record.value = child->value;
        if (const Text* loc = FindAttribute(*child, "loc"); loc != nullptr) text = *loc;
        if (!text.empty()) record.valueLoc = text == Wide("true");
    }
    return true;
}

void WriteEntry(Node& entry, const EntryValue* value, const EntryUi* ui, bool onlySet) {
    const auto selected = [&](unsigned bit) { return value->mask == 0 || (value->mask & bit) != 0; };
    if (value != nullptr) {
        if (selected(1)) SetAttribute(entry, "name", value->name);
        if (selected(8) && (!onlySet || value->id != 0)) SetAttribute(entry, "id", SignedText(value->id));
        if (selected(4)) {
            const unsigned type = value->type;
            SetAttribute(entry, "type", Wide(NameOf(kTypes, type & ~0x3000U, "")));
            SetAttribute(entry, "array",
                         Wide((type & 0x1000U) != 0   ? "vector"
                              : (type & 0x2000U) != 0 ? "array"
                                                      : ""));
        }
        if (selected(16) && (!onlySet || value->loc))
            SetAttribute(entry, "loc", Wide(value->loc ? "true" : ""));
    }
    if (ui != nullptr) {
        if (FindElement(entry, "UI") == nullptr) entry.children.push_back(NewElement("UI"));
        WriteUi(*FindElement(entry, "UI"), *ui, onlySet);
    } else if (value != nullptr && selected(2)) {
        WriteValueChild(entry, value->value, value->valueLoc, onlySet);
    }
}

void WriteMovedText(Node& entry, const Text& text, bool onlySet) {
    const NodePtr ui = FindElement(entry, "UI");
    if (!text.empty() || FindElement(*ui, "Value") != nullptr) WriteValueChild(*ui, text, false, onlySet);
}

NodePtr FindEntry(const Node& table, const Text& name) {
    for (const NodePtr& child : table.children) {
        const Text* found = FindAttribute(*child, "name");
        if (found != nullptr && (name.empty() || *found == name)) return child;
    }
    return nullptr;
}

bool AddEntry(Node& table, const Node* before, const NewEntry& added) {
    NodePtr entry = added.update ? FindEntry(table, added.name) : nullptr;
    if (entry == nullptr) {
        const std::size_t index = IndexOf(table, before);
        if (before != nullptr && index == table.children.size()) return false;
        entry = NewElement("Var");
        table.children.insert(table.children.begin() + static_cast<std::ptrdiff_t>(index), entry);
    }
    WriteEntry(*entry, added.value, added.ui, true);
    if (added.movedText) WriteMovedText(*entry, *added.movedText, true);
    if (added.eud) SetEud(table, *entry);
    return true;
}

void SetEud(Node& table, Node& entry) {
    if (FindAttribute(table, "eud") == nullptr) SetAttribute(table, "eud", Wide("true"));
    SetAttribute(entry, "eud", Wide("true"));
}

bool RemoveEntries(Node& table, const Text& name, std::int32_t occurrence, bool all) {
    const auto number = occurrence == -1 ? kFirstMatch : static_cast<std::uint64_t>(std::int64_t{occurrence});
    bool any = false;
    while (RemoveChildWhere(table, Wide("name"), name, number, false)) {
        any = true;
        if (!all) break;
    }
    return any;
}

}  // namespace model
