#include "mox_xmlApi/document/entry_check.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/entries/entry_codes.h"
#include "mox_xmlApi/front/entry.hpp"

namespace mox {
namespace {

template <class T>
bool Is(const std::string& text, Problem& problem) {
    Entry entry;
    entry.value = text;
    return entry.valueAs<T>(&problem).has_value();
}

bool IsByte(const std::string& text, Problem& problem) {
    if (!Is<std::uint16_t>(text, problem)) return false;
    Entry entry;
    entry.value = text;
    if (entry.valueAs<std::uint16_t>().value_or(0) <= 0xFF) return true;
    problem.reason = Reason::OutOfRange;
    return false;
}

// Whether the text is a value of the type; true for types that any text suits.
bool SuitsType(const std::string& type, const std::string& text, Problem& problem) {
    if (type == "short") return Is<std::int16_t>(text, problem);
    if (type == "long") return Is<std::int32_t>(text, problem);
    if (type == "ushort") return Is<std::uint16_t>(text, problem);
    if (type == "ulong") return Is<std::uint32_t>(text, problem);
    if (type == "byte") return IsByte(text, problem);
    if (type == "double") return Is<double>(text, problem);
    if (type == "bool") return Is<bool>(text, problem);
    return true;
}

std::optional<double> NumberIn(const std::string& text) {
    Entry entry;
    entry.value = text;
    return entry.valueAs<double>();
}

void CheckControl(const DocumentEntry& entry, const std::string& name, const Warner& warn) {
    const std::string& text = entry.effectiveValue();
    Problem problem;
    if (entry.ui->control == "num" && !Is<double>(text, problem)) {
        warn(entry.node, "the value of entry" + name + ", " + Quoted(text) +
                             R"(, is not a number, which the control "num" shows)");
    } else if (entry.ui->control == "switch" && !Is<bool>(text, problem)) {
        warn(entry.node, "the value of entry" + name + ", " + Quoted(text) +
                             R"(, is not a truth value, which the control "switch" shows)");
    }
}

void CheckLimits(const DocumentEntry& entry, const std::string& name, const Warner& warn) {
    const std::string& text = entry.effectiveValue();
    const std::optional<double> number = NumberIn(text);
    if (!number.has_value()) return;
    const std::optional<double> minimum = NumberIn(entry.ui->minimum);
    const std::optional<double> maximum = NumberIn(entry.ui->maximum);
    if (minimum.has_value() && *number < *minimum) {
        warn(entry.node,
             "the value of entry" + name + ", " + text + ", is below its minimum " + entry.ui->minimum);
    }
    if (maximum.has_value() && *number > *maximum) {
        warn(entry.node,
             "the value of entry" + name + ", " + text + ", is above its maximum " + entry.ui->maximum);
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
    if (attributes.size() < 2) return;
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
    if (!entry.isReadable || !entry.shape.empty() || text.empty()) return;
    Problem problem;
    if (!SuitsType(entry.type, text, problem)) {
        const bool isOut = problem.reason == Reason::OutOfRange;
        warn(entry.node, "the value of entry" + name + ", " + Quoted(text) + ", is " +
                             (isOut ? "out of the range" : "not a value") + " of its type " + entry.type);
        return;
    }
    if (entry.ui == nullptr) return;
    CheckControl(entry, name, warn);
    CheckLimits(entry, name, warn);
}

}  // namespace mox
