#include "tests/host/random_calls/calls_support.h"

#include <string_view>

#include "tests/host/host_support.h"
#include "tests/random_numbers.h"

namespace host::random_calls {
namespace {

// Start tags of tables and sections, each with its end tag.
struct Tags {
    std::string_view start;
    std::string_view end;
};
constexpr std::array<Tags, 9> kTables = {
    {{"<Table name=\"S\">", "</Table>"},
     {"<Table name=\"T\" first_id=\"5\" type=\"00ff\" editable=\"true\">", "</Table>"},
     {"<Table name=\"S\" eud=\"true\" editable=\"false\">", "</Table>"},
     {"<Table>", "</Table>"},
     {"<Table name=\"\" editable=\"True\" eud=\"x\">", "</Table>"},
     {"<Table name=\"T\" name=\"S\" first_id=\"-1\" eud=\"true\" eud=\"y\">", "</Table>"},
     {"<Group name=\"S\" type=\"0x1F\">", "</Group>"},
     {"<Table name=\"U\" first_id=\"4294967295\" type=\"1FFFF\" type=\"2\">", "</Table>"},
     {"<Table type=\"1g\" name=\"a\" first_id=\" 12abc\">words <!-- and -->more", "</Table>"}}};

constexpr std::array<std::string_view, 26> kEntries = {
    "<Var name=\"a\" id=\"1\" type=\"long\" array=\"\"><Value>12</Value></Var>",
    "<Var name=\"a\" type=\"string\"><Value loc=\"true\">x</Value><UI control=\"num\" prov_index=\"7\" "
    "prov_owner=\"erg\" name=\"n\"><Comment>c</Comment><Value>u</Value></UI></Var>",
    "<Var name=\"b\" type=\"ucstring\" eud=\"true\"><UI control=\"radio\" "
    "access=\"hidden\"><Value>w</Value></UI>"
    "</Var>",
    "<Var name=\"b\" type=\"float\"><Value>1</Value></Var>",
    "<Var name=\"a\"/>",
    "<Var type=\"bool\" loc=\"true\"><Value/></Var>",
    "<Item name=\"b\" type=\"byte\" array=\"vector\" eud=\"no\"><Value>0aFfzz</Value></Item>",
    "<!-- note -->",
    "<Var name=\"\" type=\"short\" array=\"list\" id=\"-3\"><Value>1</Value><Value loc=\"x\">2</Value></Var>",
    "<Var name=\"A\" type=\"long\" id=\"12abc\" eud=\"true\" eud=\"true\"><UI prov_owner=\"xyz\"><!-- k "
    "--><Comment/>"
    "<!-- l --><Value loc=\"true\"/></UI></Var>",
    "<Var name=\"a\" name=\"b\" type=\"float\" type=\"double\" Value=\"v\" loc=\"true\"><UI Comment=\"cc\" "
    "Value=\"vv\" "
    "loc=\"true\"/></Var>",
    "<Var name=\"b\" type=\"ushort\">text <Value>&lt;&amp;</Value> more<UI "
    "control=\"Text\"><Comment>one</Comment>"
    "<Comment>two</Comment><Value>p</Value><Value>q</Value></UI><UI name=\"second\"/></Var>",
    "<Var name=\"a\" type=\"string\"><UI "
    "control=\"switch\"><Value>v</Value><Comment>c</Comment></UI><Value/></Var>",
    "<Var name=\"b\" type=\"long\"><UI control=\"num\"><!-- 1 --><Comment>c</Comment><!-- 2 --><!-- 3 "
    "--></UI></Var>",
    "<Var name=\"A\" type=\"string\" eud=\"true\"/>",
    "<Var name=\"c\" type=\"char\" locval=\"true\" array=\"\"><Value>one\ntwo </Value></Var>",
    "<Var name=\"c\" type=\"ulong\" id=\"4294967296\"><Value>\xE9</Value></Var>",
    "<Var name=\"a\" type=\"ucstring\" array=\"array\"><Value></Value><UI><Value "
    "loc=\"\">ui</Value></UI></Var>",
    "<Var name=\"b\" type=\"long\" eud=\"true\"><Value>1</Value><UI name=\"b\" loc=\"true\" "
    "flags=\"ff\"><Comment>z"
    "</Comment><Value>0</Value></UI></Var>",
    "<Var name=\"nested\" type=\"long\"><Var name=\"a\" type=\"long\"/></Var>",
    "<Var name=\"c\" type=\"string\"><UI><Value>only</Value></UI></Var>",
    "<Var name=\"A\" type=\"double\" id=\"-2147483648\"><Value>-7 </Value></Var>",
    "<Var name=\"a\" type=\"string\" loc=\"true\"><Value>carried</Value><Value>again</Value></Var>",
    "<Var name=\"c\" type=\"long\"><UI><Comment>c</Comment></UI></Var>",
    "stray words",
    "<Var name=\"b\" type=\"bool\"><UI control=\"prop_array\" prov_index=\"4294967295\" prov_owner=\"\" "
    "name=\"\"/></Var>",
};

constexpr unsigned kTableCount = kTables.size();
constexpr unsigned kEntryCount = kEntries.size();

class Random {
  public:
    explicit Random(std::uint64_t seed) : numbers_(seed) {}
    unsigned Below(unsigned count) { return static_cast<unsigned>(numbers_.Below(count)); }

  private:
    mox::test::Random numbers_;
};

std::vector<unsigned> RandomParts(Random& random) {
    std::vector<unsigned> parts;
    for (unsigned tables = random.Below(4); tables-- > 0;) {
        parts.push_back(random.Below(random.Below(2) == 0 ? 2 : kTableCount));
        for (unsigned entries = random.Below(7); entries-- > 0;)
            parts.push_back(kTableCount + random.Below(kEntryCount));
    }
    return parts;
}

// How often each operation comes up.
constexpr std::array<unsigned, static_cast<std::size_t>(Op::Count)> kWeights = {
    6, 2, 3, 1, 2, 3, 2, 2, 4, 2, 2, 1, 2, 1, 1, 1, 2, 14, 3, 14, 14, 5, 1, 2};

Op RandomOp(Random& random) {
    unsigned sum = 0;
    for (const unsigned weight : kWeights)
        sum += weight;
    unsigned left = random.Below(sum);
    unsigned op = 0;
    while (left >= kWeights[op])
        left -= kWeights[op++];
    return static_cast<Op>(op);
}

// The parts in a row: each table reaches to the next one.
std::string Joined(const std::vector<unsigned>& parts, std::string_view between) {
    std::string text;
    std::string_view end;
    const auto close = [&] {
        text.append(end).append(end.empty() ? "" : between);
        end = {};
    };
    for (const unsigned part : parts) {
        if (part < kTableCount) {
            close();
            text.append(kTables[part].start);
            end = kTables[part].end;
        } else {
            text.append(kEntries[part - kTableCount]).append(end.empty() ? between : "");
        }
    }
    close();
    return text;
}

}  // namespace

Sequence RandomSequence(std::uint64_t seed) {
    Random random(seed);
    Sequence sequence;
    sequence.root = random.Below(4) == 0 ? random.Below(5) : 0;
    sequence.settings = RandomParts(random);
    sequence.table = RandomParts(random);
    // Some sections are open from the start, so that the table functions have both kinds of handles.
    for (unsigned slot = 0; slot < 3; ++slot)
        sequence.calls.push_back({Op::EnumSections, {slot, random.Below(3)}});
    for (unsigned count = 5 + random.Below(45); count-- > 0;) {
        Call call{RandomOp(random)};
        for (unsigned& pick : call.picks)
            pick = random.Below(5040);  // all small numbers divide it
        sequence.calls.push_back(call);
    }
    return sequence;
}

std::string SettingsText(unsigned root, const std::vector<unsigned>& parts) {
    const std::string inside = Joined(parts, "");
    std::string text(kDeclaration);
    text.append("\n");
    switch (root) {
        case 1:
            return "<Settings xsi:noNamespaceSchemaLocation=\"other\">" + inside +
                   "</Settings>\n<!-- end -->";
        case 2:  // without a schema location: it is not the root
            return text + "<Settings>" + inside + "</Settings>";
        case 3:
            return text + "<Settings/>\n" + std::string(kRootStart) + inside + std::string(kRootEnd) + "\n" +
                   std::string(kEmptyRoot);
        case 4:
            return text;
        default:
            return text + std::string(kRootStart) + inside + std::string(kRootEnd);
    }
}

std::string TableText(const std::vector<unsigned>& parts) {
    return Joined(parts, "\n");  // no document when words stand outside all elements
}

Sequence Shortest(Sequence sequence, const std::function<bool(const Sequence&)>& fails) {
    const std::function<bool()> stillFails = [&] { return fails(sequence); };
    bool shortened = true;
    while (shortened) {
        shortened = Shorten(sequence.calls, stillFails);
        shortened = Shorten(sequence.settings, stillFails) || shortened;
        shortened = Shorten(sequence.table, stillFails) || shortened;
        std::vector<unsigned*> picks{&sequence.root};
        for (Call& call : sequence.calls) {
            for (unsigned& pick : call.picks)
                picks.push_back(&pick);
        }
        for (unsigned* pick : picks) {
            const unsigned before = *pick;
            if (before == 0) continue;
            *pick = 0;
            if (stillFails()) {
                shortened = true;
            } else {
                *pick = before;
            }
        }
    }
    return sequence;
}

}  // namespace host::random_calls
