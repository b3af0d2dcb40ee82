#include "mox_xmlApi/document/entry_check.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/entries/entry_codes.h"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/value_text.hpp"

namespace mox {
namespace {

front::Misfit Parse(std::string_view text, bool& value) {
    return front::ParseBool(text, value);
}
front::Misfit Parse(std::string_view text, double& value) {
    return front::ParseDouble(text, value);
}
template <class Integer>
front::Misfit Parse(std::string_view text, Integer& value) {
    return front::ParseInteger(text, value);
}

// Whether the text is a T, which then is in `value`; if not, `reason` says why.
template <class T>
bool Is(const std::string& text, T& value, Reason& reason) {
    reason = Parse(front::WithoutSpace(text), value).reason;
    return reason == Reason::None;
}
template <class T>
bool Is(const std::string& text, Reason& reason) {
    T value{};
    return Is(text, value, reason);
}

bool IsNumberFrom(const std::string& text, std::int32_t least, std::int32_t most, Reason& reason) {
    std::int32_t value = 0;
    if (!Is(text, value, reason)) return false;
    if (value >= least && value <= most) return true;
    reason = Reason::OutOfRange;
    return false;
}

// One character, or its number: hosts write either, and take the number as signed or not.
bool IsChar(const std::string& text, Reason& reason) {
    std::string_view rest = text;
    char32_t character = 0;
    if (front::DecodeUtf8(rest, character) && rest.empty()) return true;
    return IsNumberFrom(text, -128, 255, reason);
}

// Whether the text is a value of the type; true for types that any text suits.
bool SuitsType(const std::string& type, const std::string& text, Reason& reason) {
    if (type == "short") return Is<std::int16_t>(text, reason);
    if (type == "long") return Is<std::int32_t>(text, reason);
    if (type == "ushort") return Is<std::uint16_t>(text, reason);
    if (type == "ulong") return Is<std::uint32_t>(text, reason);
    if (type == "byte") return IsNumberFrom(text, 0, 255, reason);
    if (type == "char") return IsChar(text, reason);
    if (type == "double") return Is<double>(text, reason);
    if (type == "bool") return Is<bool>(text, reason);
    return true;
}

std::optional<double> NumberIn(const std::string& text) {
    double value = 0;
    Reason reason = Reason::None;
    return Is(text, value, reason) ? std::optional(value) : std::nullopt;
}

void CheckControl(const DocumentEntry& entry, const std::string& name, const Warner& warn) {
    const std::string& text = entry.effectiveValue();
    Reason reason = Reason::None;
    if (entry.ui->control == "num" && !Is<double>(text, reason)) {
        warn(entry.node, "the value of entry" + name + ", " + Quoted(text) +
                             R"(, is not a number, which the control "num" shows)");
    } else if (entry.ui->control == "switch" && !Is<bool>(text, reason)) {
        warn(entry.node, "the value of entry" + name + ", " + Quoted(text) +
                             R"(, is not a truth value, which the control "switch" shows)");
    }
}

// A value or one of its items, which is named by the beginning of a sentence.
void CheckLimits(const DocumentEntry& entry, const std::string& text, const std::string& what,
                 const Warner& warn) {
    const std::optional<double> number = NumberIn(text);
    if (!number.has_value()) return;
    const std::optional<double> minimum = NumberIn(entry.ui->minimum);
    const std::optional<double> maximum = NumberIn(entry.ui->maximum);
    if (minimum.has_value() && *number < *minimum)
        warn(entry.node, what + ", " + text + ", is below its minimum " + entry.ui->minimum);
    if (maximum.has_value() && *number > *maximum)
        warn(entry.node, what + ", " + text + ", is above its maximum " + entry.ui->maximum);
}

// Warns if the text, a value or one of its items, does not suit the type. Returns whether it does.
bool CheckType(const DocumentEntry& entry, const std::string& text, const std::string& what,
               const Warner& warn) {
    Reason reason = Reason::None;
    if (SuitsType(entry.type, text, reason)) return true;
    const bool isOut = reason == Reason::OutOfRange;
    warn(entry.node, what + ", " + Quoted(text) + ", is " + (isOut ? "out of the range" : "not a value") +
                         " of its type " + entry.type);
    return false;
}

bool AreHexadecimalPairs(const std::string& text) noexcept {
    const auto isDigit = [](char character) {
        return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F') ||
               (character >= 'a' && character <= 'f');
    };
    return text.size() % 2 == 0 && std::all_of(text.begin(), text.end(), isDigit);
}

// An array or vector: of bytes, pairs of hexadecimal digits; of other numbers and truth values, items with white space,
// commas or semicolons between them. Only the first item that does not suit is reported.
void CheckItems(const DocumentEntry& entry, const std::string& name, const Warner& warn) {
    const std::string& text = entry.effectiveValue();
    if (entry.type == "string" || entry.type == "ucstring" || entry.type == "char") return;
    if (entry.type == "byte") {
        if (!AreHexadecimalPairs(text))
            warn(entry.node, "the value of entry" + name + ", " + Quoted(text) +
                                 ", is not pairs of hexadecimal digits, as which hosts read the bytes");
        return;
    }
    constexpr const char* kSeparators = " \t\r\n,;";
    bool isReported = false;
    const Warner once = [&](DocumentNode node, const std::string& message) {
        if (!std::exchange(isReported, true)) warn(node, message);
    };
    std::size_t number = 0;
    std::size_t end = 0;
    for (std::size_t begin = 0; !isReported; begin = end) {
        begin = text.find_first_not_of(kSeparators, begin);
        if (begin == std::string::npos) return;
        end = std::min(text.find_first_of(kSeparators, begin), text.size());
        const std::string item = text.substr(begin, end - begin);
        const std::string what = "item " + std::to_string(++number) + " of the value of entry" + name;
        if (CheckType(entry, item, what, once) && entry.ui != nullptr) CheckLimits(entry, item, what, once);
    }
}

// Warns if the attribute is there and `known` does not give its text back. `readAs` is what it is read as.
template <class Known>
void CheckName(DocumentNode ui, const char* attribute, Known known, const char* readAs, const Warner& warn) {
    const std::string text = ui.attribute(attribute).value_or("");
    if (text.empty() || known(Text(text).units()) == text) return;
    warn(ui, std::string(attribute) + "=" + Quoted(text) + " is unknown: hosts read " + Quoted(readAs));
}

void CheckUi(DocumentNode ui, const DocumentEntry& entry, const Warner& warn) {
    const auto control = [](WideView name) { return Utf8(ControlKindToName(ControlKindFromName(name))); };
    const auto owner = [](WideView name) { return Utf8(OwnerToName(OwnerFromName(name))); };
    const auto access = [](WideView name) { return Utf8(AccessToName(AccessFromName(name))); };
    CheckName(ui, "control", control, "text", warn);
    CheckName(ui, "prov_owner", owner, "app", warn);
    CheckName(ui, "access", access, "editable", warn);
    if (entry.ui != nullptr) CheckNumber(ui, "prov_index", entry.ui->providerIndex, warn);
}

}  // namespace

void CheckAttributes(DocumentNode element, const Warner& warn) {
    const std::vector<DocumentAttribute> attributes = element.attributes();
    std::set<std::string> seen;
    std::set<std::string> reported;
    for (const DocumentAttribute& attribute : attributes) {
        if (seen.insert(attribute.name).second || !reported.insert(attribute.name).second) continue;
        warn(element, "<" + element.name() + "> has several attributes " + Quoted(attribute.name) +
                          ": which one counts depends on who reads it");
    }
}

void CheckNumber(DocumentNode element, const char* attribute, std::uint32_t read, const Warner& warn) {
    const std::string text = element.attribute(attribute).value_or("");
    const std::size_t begin = text.find_first_not_of('0');
    const std::size_t digits = begin == std::string::npos ? 0 : text.size() - begin;
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    constexpr const char* kMost = "4294967295";
    const bool isBeyond = digits > 10 || (digits == 10 && text.compare(begin, digits, kMost) > 0);
    if (!isBeyond || !std::all_of(text.begin(), text.end(), isDigit)) return;
    warn(element, std::string(attribute) + "=" + Quoted(text) + " has more than 32 bits: hosts read " +
                      std::to_string(read));
}

void CheckParts(const DocumentEntry& entry, const std::string& name, const Warner& warn) {
    std::size_t values = 0;
    std::size_t presentations = 0;
    for (const DocumentNode child : entry.node.children()) {
        if (child.isElement("Value")) {
            if (++values == 2)
                warn(child, "entry" + name +
                                R"( has several "Value" elements: writes change another one than reads)");
        } else if (child.isElement("UI")) {
            if (++presentations == 2)
                warn(child,
                     "entry" + name + R"( has several "UI" elements: writes change another one than reads)");
            CheckUi(child, entry, warn);
        }
    }
    if (!entry.isReadable) return;
    CheckNumber(entry.node, "id", entry.id, warn);
    if (values > 0 && entry.value.empty() && entry.ui != nullptr && !entry.ui->value.empty())
        warn(entry.node, "the value of entry" + name +
                             " is empty: hosts read that of its presentation data, " +
                             Quoted(entry.ui->value));
}

void CheckValue(const DocumentEntry& entry, const std::string& name, const Warner& warn) {
    const std::string& text = entry.effectiveValue();
    if (!entry.isReadable || text.empty()) return;
    if (!entry.shape.empty()) return CheckItems(entry, name, warn);
    const std::string what = "the value of entry" + name;
    if (!CheckType(entry, text, what, warn) || entry.ui == nullptr) return;
    CheckControl(entry, name, warn);
    CheckLimits(entry, text, what, warn);
}

}  // namespace mox
