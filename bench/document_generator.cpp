#include "bench/document_generator.h"

#include <algorithm>
#include <array>
#include <random>
#include <string_view>

namespace bench {
namespace {

constexpr std::array<std::string_view, 16> kWords = {
    "axis",  "gain",   "offset", "pump",   "valve",  "limit", "speed", "window",
    "frame", "sensor", "press",  "filter", "motion", "tool",  "batch", "camera"};

// The same numbers on every system, unlike the distributions of the standard library.
std::uint64_t Mix(std::uint64_t value) {
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31U);
}

class Dice {
  public:
    explicit Dice(std::uint64_t seed) : state_(seed) {}
    std::size_t Below(std::size_t limit) {
        state_ = Mix(state_);
        return static_cast<std::size_t>(state_ % limit);
    }
    std::string_view Word() { return kWords[Below(kWords.size())]; }

  private:
    std::uint64_t state_;
};

std::string Padded(std::size_t number, std::size_t digits) {
    std::string text = std::to_string(number);
    return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

std::string Sentence(Dice& dice, std::size_t words) {
    std::string text;
    for (std::size_t i = 0; i < words; ++i) {
        if (i != 0) text += ' ';
        text += dice.Word();
    }
    return text;
}

std::string MakeValue(const DocumentShape& shape, Dice& dice, std::size_t key) {
    if (IsNumber(key)) return std::to_string(dice.Below(2000000));
    if (key % 4 == 1) return std::to_string(dice.Below(1000)) + "." + Padded(dice.Below(10000), 4);
    std::string text = Sentence(dice, shape.irregular ? 1 + dice.Below(12) : 3);
    if (shape.irregular && dice.Below(3) == 0) text += " <" + Sentence(dice, 1) + "> & 'more'";
    return text;
}

std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            case '\'':
                escaped += "&apos;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

void AppendVarTag(const DocumentShape& shape, const Entry& entry, Dice& dice, std::string& xml) {
    std::array<std::string, 4> attributes = {" name=\"" + Escaped(entry.name) + '"',
                                             " id=\"" + std::to_string(entry.id) + '"',
                                             " type=\"" + entry.type + '"', std::string(" array=\"\"")};
    if (shape.irregular) std::swap(attributes[dice.Below(4)], attributes[dice.Below(4)]);
    xml += "\t\t<Var";
    for (const std::string& attribute : attributes)
        xml += attribute;
    xml += ">\n";
}

void AppendUi(const Entry& entry, std::string& xml) {
    xml += "\t\t\t<UI control=\"" + entry.control + "\" prov_index=\"" + std::to_string(entry.provIndex) +
           "\" prov_owner=\"app\" name=\"" + Escaped(entry.shownName) + "\">\n\t\t\t\t<Comment>" +
           Escaped(entry.comment) + "</Comment>\n\t\t\t\t<Value>" + Escaped(entry.value) +
           "</Value>\n\t\t\t</UI>\n";
}

void AppendEntry(const DocumentShape& shape, std::size_t section, std::size_t key, std::string& xml) {
    const Entry entry = MakeEntry(shape, section, key);
    Dice dice(Mix(section) ^ Mix(key + 77));
    if (shape.irregular && dice.Below(5) == 0) xml += "\t\t<!-- " + Sentence(dice, 4) + " -->\n";
    AppendVarTag(shape, entry, dice, xml);
    xml += "\t\t\t<Value>" + Escaped(entry.value) + "</Value>\n";
    if (entry.hasUi) AppendUi(entry, xml);
    xml += "\t\t</Var>\n";
}

// Fisher and Yates, with numbers of our own so that every system shuffles alike.
void Shuffle(std::vector<Query>& queries) {
    Dice dice(4711);
    for (std::size_t i = queries.size(); i > 1; --i)
        std::swap(queries[i - 1], queries[dice.Below(i)]);
}

}  // namespace

std::string ShapeName(const DocumentShape& shape) {
    return std::to_string(shape.sections) + " x " + std::to_string(shape.keys) +
           (shape.irregular ? " irregular" : "");
}

bool IsNumber(std::size_t key) {
    return key % 2 == 0;
}

std::string SectionName(const DocumentShape& shape, std::size_t section) {
    std::string name = "Station" + Padded(section, 3);
    if (shape.irregular) name += std::string(kWords[section % kWords.size()]);
    return name;
}

Entry MakeEntry(const DocumentShape& shape, std::size_t section, std::size_t key) {
    Dice dice(Mix(section * 1000003 + key));
    Entry entry;
    entry.name = std::string(dice.Word()) + Padded(key, 5);
    if (shape.irregular) entry.name += Sentence(dice, dice.Below(4));
    entry.type = IsNumber(key) ? "long" : key % 4 == 1 ? "double" : "string";
    entry.value = MakeValue(shape, dice, key);
    entry.id = static_cast<std::uint32_t>(100 + key);
    entry.hasUi = key % 3 == 0;
    if (!entry.hasUi) return entry;
    entry.control = IsNumber(key) ? "num" : "text";
    entry.provIndex = static_cast<std::uint32_t>(1 + dice.Below(500));
    entry.shownName = Sentence(dice, 2);
    entry.comment = Sentence(dice, shape.irregular ? dice.Below(10) + 1 : 5);
    return entry;
}

std::string MakeXml(const DocumentShape& shape) {
    std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">\n";
    for (std::size_t section = 0; section < shape.sections; ++section) {
        xml += "\t<Table name=\"" + SectionName(shape, section) + "\" editable=\"true\">\n";
        for (std::size_t key = 0; key < shape.keys; ++key)
            AppendEntry(shape, section, key, xml);
        xml += "\t</Table>\n";
    }
    return xml + "</Settings>\n";
}

std::string MakeIni(const DocumentShape& shape) {
    std::string ini;
    for (std::size_t section = 0; section < shape.sections; ++section) {
        ini += '[' + SectionName(shape, section) + "]\n";
        for (std::size_t key = 0; key < shape.keys; ++key) {
            const Entry entry = MakeEntry(shape, section, key);
            if (entry.hasUi)
                ini += "# " + entry.control + ' ' + std::to_string(entry.provIndex) + ' ' + entry.shownName +
                       "\n# " + entry.comment + '\n';
            ini += entry.name + '=' + entry.value + '\n';
        }
    }
    return ini;
}

std::string Widen(const std::string& narrow) {
    std::string wide(narrow.size() * 2, '\0');
    for (std::size_t i = 0; i < narrow.size(); ++i)
        wide[2 * i] = narrow[i];
    return wide;
}

std::u16string ToUtf16(const std::string& narrow) {
    return {narrow.begin(), narrow.end()};  // 7-bit text
}

Query MakeQuery(const std::string& section, const std::string& key, const std::string& value) {
    return {section, key, value, ToUtf16(section), ToUtf16(key), ToUtf16(value)};
}

namespace {

std::vector<Query> Sample(const DocumentShape& shape, std::size_t count, bool numbers) {
    const std::size_t total = shape.sections * shape.keys;
    count = std::min(count, total);
    std::vector<Query> queries;
    queries.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        // The middle of the i-th of `count` equal stretches: a scan over such keys costs what the mean costs.
        const std::size_t position = (2 * i + 1) * total / (2 * count);
        const std::size_t section = position / shape.keys;
        std::size_t key = position % shape.keys;
        if (numbers && !IsNumber(key)) --key;
        const Entry entry = MakeEntry(shape, section, key);
        queries.push_back(MakeQuery(SectionName(shape, section), entry.name, entry.value));
    }
    return queries;
}

}  // namespace

std::vector<Query> SampleQueries(const DocumentShape& shape, std::size_t count, bool shuffled) {
    std::vector<Query> queries = Sample(shape, count, false);
    if (shuffled) Shuffle(queries);
    return queries;
}

std::vector<Query> SampleNumbers(const DocumentShape& shape, std::size_t count) {
    std::vector<Query> queries = Sample(shape, count, true);
    Shuffle(queries);
    return queries;
}

std::vector<Query> NewQueries(const std::string& section, std::size_t count) {
    std::vector<Query> queries;
    queries.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        std::string name(kWords[i % kWords.size()]);
        name += "New";
        name += Padded(i, 5);
        queries.push_back(MakeQuery(section, name, std::to_string(Mix(i) % 1000000)));
    }
    return queries;
}

}  // namespace bench
