// What a host or a file could do to make one call depend on the size of the document: keys that occur twice, names that
// were chosen to share a hash, sections without a name, insertions at the front. A hundred times as many may cost each
// little more.
#include <cstring>

#include "bench/suite.h"
#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"

namespace bench {
namespace {

constexpr const char16_t* kSection = u"S";

// A loaded profile, and the handle of its section "S" if it has one.
class LoadedProfile {
  public:
    explicit LoadedProfile(const std::string& sections) {
        const std::string xml =
            "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">" + sections + "</Settings>";
        settings_ = xmlProfileNew(nullptr, xml.data(), static_cast<std::int32_t>(xml.size()), 0);
        Check(settings_ != nullptr, "a profile of unusual names does not load");
        section_ = xmlGetProfileSection(settings_, kSection, nullptr);
    }
    ~LoadedProfile() {
        xmlTableDispose(&section_);
        xmlProfileDispose(&settings_);
    }
    LoadedProfile(const LoadedProfile&) = delete;
    LoadedProfile& operator=(const LoadedProfile&) = delete;

    moxSettings* Settings() const { return settings_; }
    void* Section() const { return section_; }

  private:
    moxSettings* settings_ = nullptr;
    void* section_ = nullptr;
};

// Loads the sections and then does `work`, which is all that is measured; it returns whether all went well.
template <class Work>
Participant Does(std::size_t count, std::string sections, Work work) {
    const auto batch = [sections = std::move(sections), work] {
        const LoadedProfile profile(sections);
        Stopwatch watch;
        watch.Start();
        const bool done = work(profile);
        watch.Stop();
        Check(done, "a call of a measurement with unusual names failed");
        return watch.Seconds();
    };
    return {std::to_string(count), batch, static_cast<double>(count)};
}

std::string KeyName(std::size_t number) {
    return "key" + std::to_string(number);
}

std::vector<std::u16string> KeyNames(std::size_t count) {
    std::vector<std::u16string> names;
    for (std::size_t i = 0; i < count; ++i)
        names.push_back(ToUtf16(KeyName(i)));
    return names;
}

// All keys, and then all once more.
std::string KeysTwice(std::size_t count) {
    std::string keys;
    for (std::size_t i = 0; i < 2 * count; ++i)
        keys += "<Var name=\"" + KeyName(i % count) + "\" type=\"long\"><Value>1</Value></Var>";
    return "<Table name=\"S\">" + keys + "</Table>";
}

Participant DeletesTwice(std::size_t count) {
    return Does(count, KeysTwice(count), [names = KeyNames(count)](const LoadedProfile& profile) {
        for (const std::u16string& name : names) {
            if (xmlWriteProfileString(profile.Settings(), kSection, name.c_str(), nullptr) != 1) return false;
        }
        return true;
    });
}

// Names of 8 units that share a hash which is a plain multiplication: the second half of a name takes back what the
// first half has made of the hash.
std::vector<std::u16string> CollidingNames(std::size_t count) {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;
    std::vector<std::u16string> names;
    for (std::uint64_t first = 0x0061006200630064; names.size() < count; first += 0x10001) {
        const std::uint64_t product = (8 ^ first) * kMultiplier;
        const std::uint64_t second = (product << 29 | product >> 35) ^ 0x0123456789ABCDEF;
        std::u16string name(8, u' ');
        std::memcpy(name.data(), &first, sizeof first);
        std::memcpy(name.data() + 4, &second, sizeof second);
        if (name.find(u'\0') == std::u16string::npos) names.push_back(name);
    }
    return names;
}

Participant WritesAndReads(std::size_t count, bool sections) {
    return Does(count, "<Table name=\"S\"/>",
                [names = CollidingNames(count), sections](const LoadedProfile& profile) {
                    const auto section = [&](const std::u16string& name) {
                        return sections ? name.c_str() : kSection;
                    };
                    for (const std::u16string& name : names) {
                        if (xmlWriteProfileInt(profile.Settings(), section(name), name.c_str(), 5) != 1)
                            return false;
                    }
                    for (const std::u16string& name : names) {
                        if (xmlGetProfileInt(profile.Settings(), section(name), name.c_str(), 0) != 5)
                            return false;
                    }
                    return true;
                });
}

// As many sections with a name as without: an export collects the latter in one, which comes after all the others.
Participant Exports(std::size_t count) {
    std::string named;
    std::string nameless;
    for (std::size_t i = 0; i < count; ++i) {
        named += "<Table name=\"" + KeyName(i) + "\"/>";
        nameless += "<Table/>";
    }
    const auto folder = std::make_shared<MemoryFolder>();
    return Does(count, named + nameless, [folder](const LoadedProfile& profile) {
        const std::u16string path = ToUtf16(folder->File("exported.xml"));
        return xmlProfileSave(profile.Settings(), path.c_str(), 2, 0, 0) == 1;
    });
}

Participant InsertsBeforeFirst(std::size_t count) {
    return Does(count, "<Table name=\"S\"><Var name=\"last\" type=\"long\"/></Table>",
                [names = KeyNames(count)](const LoadedProfile& profile) {
                    TableEntryValueInfoStruct entry;
                    entry.SetVal("5");
                    for (const std::u16string& name : names) {
                        TableEntryValueInfoStruct first;
                        std::uint64_t position = 0;
                        xmlTableEntryGet(profile.Section(), &position, &first, nullptr);
                        std::copy_n(name.c_str(), name.size() + 1, entry.name);
                        entry.type = 3;
                        if (!xmlTableEntryAdd(profile.Section(), &position, &entry, nullptr, 0, 0))
                            return false;
                    }
                    return true;
                });
}

}  // namespace

void RunHostile(Suite& suite) {
    constexpr double kMaxGrowth = 4;
    const std::string subject = "per call, large : small";
    if (!suite.Wants(subject)) return;
    const std::size_t small = suite.Quick() ? 200 : 1000;
    const auto large = [&](std::size_t count) { return suite.Quick() ? 1000 : count; };
    suite.AddGrowth(subject, "delete keys that occur twice",
                    {DeletesTwice(small), DeletesTwice(large(20000))}, kMaxGrowth);
    suite.AddGrowth(subject, "write and read keys of one hash",
                    {WritesAndReads(small, false), WritesAndReads(large(100000), false)}, kMaxGrowth);
    suite.AddGrowth(subject, "write and read sections of one hash",
                    {WritesAndReads(small, true), WritesAndReads(large(100000), true)}, kMaxGrowth);
    suite.AddGrowth(subject, "export sections without a name", {Exports(small), Exports(large(50000))},
                    kMaxGrowth);
    suite.AddGrowth(subject, "insert before the first entry",
                    {InsertsBeforeFirst(small), InsertsBeforeFirst(large(100000))}, kMaxGrowth);
}

}  // namespace bench
