// Removing many entries at once: the time per entry must not grow with how many there are. Entries that no
// cache holds cost several times as much as those that one does; work that grew with the square would cost a
// hundred times as much.
#include <array>

#include "bench/suite.h"
#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"

namespace bench {
namespace {

constexpr const char16_t* kSection = u"Section";

// A section of `count` entries of which every other one, or each, is named "many".
std::string MakeDocument(std::size_t count, bool everyOther) {
    std::string xml =
        "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">\n\t<Table name=\"Section\">\n";
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = everyOther && i % 2 != 0 ? "other" + std::to_string(i) : "many";
        xml += "\t\t<Var name=\"" + name + "\" type=\"string\" array=\"\">\n\t\t\t<Value>" +
               std::to_string(i) + "</Value>\n\t\t</Var>\n";
    }
    return xml + "\t</Table>\n</Settings>\n";
}

bool RemoveAll(moxSettings* /*settings*/, void* section) {
    return xmlTableRemoveEntries(section);
}

bool RemoveByName(moxSettings* /*settings*/, void* section) {
    TableEntryBaseInfoStruct record;
    std::u16string_view(u"many").copy(record.name, 4);
    return xmlTableRemoveEntry(section, &record, 0, 1);
}

bool DeleteKey(moxSettings* settings, void* /*section*/) {
    return xmlWriteProfileString(settings, kSection, u"many", nullptr) == 1;
}

std::size_t CountEntries(void* section) {
    TableEntryValueInfoStruct value;
    std::uint64_t position = 0;
    std::size_t count = 0;
    while (xmlTableEntryGet(section, &position, &value, nullptr))
        ++count;
    return count;
}

using Remove = bool (*)(moxSettings*, void*);

Participant Removes(Remove remove, std::size_t count, bool everyOther) {
    const auto batch = [remove, xml = MakeDocument(count, everyOther), count, everyOther] {
        moxSettings* settings = xmlProfileNew(nullptr, xml.data(), static_cast<std::int32_t>(xml.size()), 0);
        void* section = xmlGetProfileSection(settings, kSection, nullptr);
        Check(section != nullptr, "the section of the removals does not load");
        Stopwatch watch;
        watch.Start();
        const bool removed = remove(settings, section);
        watch.Stop();
        const std::size_t left = CountEntries(section);
        xmlTableDispose(&section);
        xmlProfileDispose(&settings);
        Check(removed && left == (everyOther ? count / 2 : 0),
              "a removal left " + std::to_string(left) + " entries");
        return watch.Seconds();
    };
    return {std::to_string(count), batch, static_cast<double>(count)};
}

struct Case {
    const char* name;
    Remove remove;
    bool everyOther;
};

constexpr std::array<Case, 5> kCases = {
    {{"xmlTableRemoveEntries", RemoveAll, false},
     {"xmlTableRemoveEntry removeAll", RemoveByName, false},
     {"xmlTableRemoveEntry removeAll, every other entry", RemoveByName, true},
     {"deleting a key that occurs many times", DeleteKey, false},
     {"deleting a key that is every other entry", DeleteKey, true}}};

}  // namespace

void RunRemoval(Suite& suite) {
    if (!suite.Wants("removal per entry")) return;
    for (const Case& removal : kCases) {
        std::vector<Participant> participants;
        for (const std::size_t count : {1000U, 10000U, 100000U}) {
            if (!suite.Quick() || count < 100000)
                participants.push_back(Removes(removal.remove, count, removal.everyOther));
        }
        suite.AddGrowth("removal per entry, 100,000 : 1,000", removal.name, std::move(participants), 10);
    }
}

}  // namespace bench
