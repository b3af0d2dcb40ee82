// growth_counts
//
// Runs operations of a host on documents of two sizes under callgrind, which writes one file per operation: the
// instructions that it took, named as "<operation>|<how often it was done>". What prepares an operation is not counted.
// growth.sh compares the two sizes. Without callgrind it does the same and counts nothing. Ends with 1 when an operation
// gives a wrong result.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <valgrind/callgrind.h>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"

namespace {

using WideText = std::u16string;
using Names = std::vector<WideText>;

constexpr const char16_t* kSection = u"S";

bool failed = false;

void Expect(bool isTrue, const std::string& operation) {
    if (isTrue) return;
    std::fprintf(stderr, "growth_counts: %s went wrong\n", operation.c_str());
    failed = true;
}

// ---- Documents

std::string Settings(const std::string& sections) {
    return "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">" + sections + "</Settings>";
}

// Keys "k0", "k1", ...; all of them, then all once more, `times` times.
std::string Keys(std::size_t count, std::size_t times = 1) {
    std::string keys;
    for (std::size_t i = 0; i < count * times; ++i)
        keys += "<Var name=\"k" + std::to_string(i % count) + "\" type=\"string\"><Value>v</Value></Var>";
    return Settings("<Table name=\"S\">" + keys + "</Table>");
}

std::string Sections(std::size_t count) {
    std::string sections;
    for (std::size_t i = 0; i < count; ++i)
        sections += "<Table name=\"k" + std::to_string(i) + "\"/>";
    return sections;
}

Names KeyNames(std::size_t count) {
    Names names;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = "k" + std::to_string(i);
        names.emplace_back(name.begin(), name.end());
    }
    return names;
}

Names Reversed(Names names) {
    std::reverse(names.begin(), names.end());
    return names;
}

// An order that is always the same, and far from that of the document.
Names Mixed(const Names& names) {
    Names mixed;
    for (std::size_t i = 0; i < names.size(); ++i)
        mixed.push_back(names[i * 7919 % names.size()]);
    return mixed;
}

// Names that all have one hash under a multiplication that has no key: whatever the first half of a name makes of the
// hash, the second half takes it back.
Names CollidingNames(std::size_t count) {
    constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15;
    const auto take = [](std::uint64_t hash, std::uint64_t units) {
        const std::uint64_t product = (hash ^ units) * kMultiplier;
        return product << 29 | product >> 35;
    };
    const auto isText = [](const WideText& name) { return name.find(u'\0') == WideText::npos; };
    Names names;
    for (std::uint64_t i = 0; names.size() < count; ++i) {
        const std::uint64_t halves[] = {0x0061006200630064 + i * 0x10001,
                                        take(8, 0x0061006200630064 + i * 0x10001) ^ 0x0123456789ABCDEF};
        WideText name(8, u' ');
        std::memcpy(name.data(), halves, sizeof halves);
        if (isText(name)) names.push_back(name);
    }
    return names;
}

// ---- Counting

class Profile {
  public:
    explicit Profile(const std::string& xml)
        : handle_(xmlProfileNew(nullptr, xml.data(), static_cast<std::int32_t>(xml.size()), 0)),
          section_(xmlGetProfileSection(handle_, kSection, nullptr)) {}
    ~Profile() {
        xmlTableDispose(&section_);
        xmlProfileDispose(&handle_);
    }
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;

    moxSettings* Handle() const { return handle_; }
    void* Section() const { return section_; }

  private:
    moxSettings* handle_;
    void* section_;
};

void Count(const std::string& operation, std::size_t times, const std::function<bool()>& work) {
    const std::string label = operation + '|' + std::to_string(times);
    CALLGRIND_ZERO_STATS;
    const bool done = work();
    CALLGRIND_DUMP_STATS_AT(label.c_str());
    std::printf("%s\n", label.c_str());
    Expect(done, label);
}

bool All(const Names& names, const std::function<bool(const WideText&)>& call) {
    return std::all_of(names.begin(), names.end(), call);
}

// ---- Operations

void NameEntry(TableEntryValueInfoStruct& entry, const std::string& name) {
    constexpr std::uint16_t kLong = 3;
    std::copy_n(name.c_str(), name.size() + 1, entry.name);
    entry.type = kLong;
    entry.SetVal("5");
}

bool DeleteKeys(const Profile& profile, const Names& names) {
    return All(names, [&](const WideText& name) {
        return xmlWriteProfileString(profile.Handle(), kSection, name.c_str(), nullptr) == 1;
    });
}

void CountDeletions(std::size_t size) {
    const Names names = KeyNames(size);
    const auto count = [&](const char* operation, const std::string& xml, const Names& order) {
        const Profile profile(xml);
        Count(operation, size, [&] { return DeleteKeys(profile, order); });
        TableEntryValueInfoStruct entry;
        std::uint64_t position = 0;
        Expect(!xmlTableEntryGet(profile.Section(), &position, &entry, nullptr), operation);
    };
    count("delete keys, document order", Keys(size), names);
    count("delete keys, reverse order", Keys(size), Reversed(names));
    count("delete keys, mixed order", Keys(size), Mixed(names));
    count("delete keys that occur twice", Keys(size, 2), Mixed(names));
}

void CountRemovals(std::size_t size, std::int32_t occurrence) {
    const Profile profile(Keys(size, 2));
    Count("remove entries, occurrence " + std::to_string(occurrence), size, [&] {
        return All(Mixed(KeyNames(size)), [&](const WideText& name) {
            TableEntryBaseInfoStruct record;
            name.copy(record.name, name.size());
            return xmlTableRemoveEntry(profile.Section(), &record, occurrence, 0);
        });
    });
}

void CountSectionDeletions(std::size_t size) {
    const Profile profile(Settings(Sections(size)));
    Count("delete sections", size, [&] {
        return All(Mixed(KeyNames(size)), [&](const WideText& name) {
            return xmlWriteProfileString(profile.Handle(), name.c_str(), nullptr, nullptr) == 1;
        });
    });
}

// Adds entries that are looked up by name first, each before the one that was added last, or before one in the middle.
void CountInsertions(std::size_t size, bool beforeFirst) {
    const Profile profile(Keys(size));
    TableEntryValueInfoStruct entry;
    std::uint64_t middle = 0;
    for (std::size_t i = 0; i < size / 2; ++i)
        Expect(xmlTableEntryGet(profile.Section(), &middle, &entry, nullptr), "the middle");
    Count(beforeFirst ? "insert before the first" : "insert before the middle", size, [&] {
        for (std::size_t i = 0; i < size; ++i) {
            std::uint64_t before = middle;
            if (beforeFirst) {
                before = 0;
                if (!xmlTableEntryGet(profile.Section(), &before, &entry, nullptr)) return false;
            }
            NameEntry(entry, "new" + std::to_string(i));
            if (!xmlTableEntryAdd(profile.Section(), &before, &entry, nullptr, 0, 1)) return false;
        }
        return true;
    });
    std::uint64_t first = 0;
    Expect(xmlTableEntryGet(profile.Section(), &first, &entry, nullptr) &&
               WideText(entry.name) ==
                   (beforeFirst ? WideText(u"new") + KeyNames(size).back().substr(1) : u"k0"),
           "an insertion");
}

// Every entry gets another name by its position, and is looked up by it.
void CountRenames(std::size_t size) {
    const Profile profile(Keys(size));
    Count("rename and look up", size, [&] {
        TableEntryValueInfoStruct entry;
        std::uint64_t position = 0;
        for (std::size_t i = 0; i < size; ++i) {
            NameEntry(entry, "new" + std::to_string(i));
            if (!xmlTableEntrySet(profile.Section(), &position, &entry, nullptr, 0, 0)) return false;
            if (!xmlTableEntryIsExist(profile.Section(), &entry)) return false;
        }
        return true;
    });
}

void CountNames(const char* kind, std::size_t size, const Names& names) {
    const Profile profile(Settings("<Table name=\"S\"/>"));
    const std::string of = std::string(" ") + kind;
    Count("write keys with" + of, size, [&] {
        return All(names, [&](const WideText& name) {
            return xmlWriteProfileInt(profile.Handle(), kSection, name.c_str(), 5) == 1;
        });
    });
    Count("read keys with" + of, size, [&] {
        return All(names, [&](const WideText& name) {
            return xmlGetProfileInt(profile.Handle(), kSection, name.c_str(), 0) == 5;
        });
    });
    Count("write sections with" + of, size, [&] {
        return All(names, [&](const WideText& name) {
            return xmlWriteProfileInt(profile.Handle(), name.c_str(), u"k", 5) == 1;
        });
    });
}

// As many sections with a name as without: the latter all end up in one section, which comes after all the others.
void CountExport(std::size_t size, const std::string& path) {
    std::string nameless;
    for (std::size_t i = 0; i < size; ++i)
        nameless += "<Table/>";
    const Profile profile(Settings(Sections(size) + nameless));
    const WideText widePath(path.begin(), path.end());
    Count("export sections without a name", size,
          [&] { return xmlProfileSave(profile.Handle(), widePath.c_str(), 2, 0, 0) == 1; });
}

void CountAll(std::size_t size, const std::string& path) {
    CountDeletions(size);
    CountRemovals(size, -1);
    CountRemovals(size, 0);
    CountRemovals(size, 1);
    CountSectionDeletions(size);
    CountInsertions(size, true);
    CountInsertions(size, false);
    CountRenames(size);
    CountNames("names of any kind", size, KeyNames(size));
    CountNames("names of one hash", size, CollidingNames(size));
    CountExport(size, path);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    for (const std::size_t size : {500U, 8000U})
        CountAll(size, argv[1]);
    return failed ? 1 : 0;
}
