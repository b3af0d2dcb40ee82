// Look-ups among many children when there is no memory for an index of their names: they take longer, and that is all.
#include <string>

#include "tests/faults/memory_script_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

using host::operator""_w;

constexpr int kMany = 40;

std::string Keys(int from, int count) {
    std::string text;
    for (int i = from; i < from + count; ++i) {
        const std::string number = std::to_string(i);
        text.append("<Var name=\"k").append(number).append("\" type=\"long\"><Value>").append(number);
        text.append("</Value></Var>");
    }
    return text;
}

// Look-ups that an index would have made unnecessary, until one is due.
template <class LookUp>
void WearOut(LookUp lookUp) {
    for (int i = 0; i < 4; ++i)
        EXPECT_FALSE(lookUp());
}

void LoadManyKeys(World& world) {
    world.LoadProfile("<Settings xsi:noNamespaceSchemaLocation=\"\"><Table name=\"S\">" + Keys(0, kMany) +
                      "</Table></Settings>");
    world.OpenSection("S"_w);
    world.NameRecords("k39"_w, 3);
    world.value.SetVal("new");
    WearOut([&] { return xmlGetProfileInt(world.profile, "S"_w, "k"_w, 0) != 0; });
}

void LoadManySections(World& world) {
    std::string text = "<Settings xsi:noNamespaceSchemaLocation=\"\">";
    for (int i = 0; i < kMany; ++i)
        text.append("<Table name=\"k").append(std::to_string(i)).append("\"/>");
    world.LoadProfile(text.append("</Settings>"));
    WearOut([&] { return xmlWriteProfileString(world.profile, "none"_w, nullptr, nullptr) == 1; });
}

void FailAmongKeys(const char* exported, std::function<bool(World&)> call,
                   std::function<void(World&)> check) {
    FailMemoryIn(exported, {"many keys", &LoadManyKeys, std::move(call), std::move(check)});
}

void ExpectValue(World& world, const wchar16* key, const wchar16* value) {
    EXPECT_EQ(host::ReadText(world.profile, "S"_w, key), value);
}

const auto kNothingElse = [](World&) {};

TEST(FailingMemory, KeysAreReadWithoutAnIndex) {
    FailAmongKeys(
        "xmlGetProfileInt",
        [](World& world) { return xmlGetProfileInt(world.profile, "S"_w, "k39"_w, -1) == 39; }, kNothingElse);
    FailAmongKeys(
        "xmlGetProfileString",
        [](World& world) {
            return xmlGetProfileString(world.profile, "S"_w, "k39"_w, nullptr, 0, nullptr) == 2;
        },
        kNothingElse);
    FailAmongKeys(
        "xmlGetProfileData",
        [](World& world) {
            unsigned char byte = 0;
            return xmlGetProfileData(world.profile, "S"_w, "k39"_w, &byte, 1) == 1 && byte == 0x39;
        },
        kNothingElse);
}

TEST(FailingMemory, KeysAreWrittenAndDeletedWithoutAnIndex) {
    FailAmongKeys(
        "xmlWriteProfileString",
        [](World& world) { return xmlWriteProfileString(world.profile, "S"_w, "k39"_w, "new"_w) == 1; },
        [](World& world) { ExpectValue(world, "k39"_w, "new"_w); });
    FailAmongKeys(
        "xmlWriteProfileInt",
        [](World& world) { return xmlWriteProfileInt(world.profile, "S"_w, "k40"_w, 40) == 1; },
        [](World& world) { ExpectValue(world, "k40"_w, "40"_w); });
    FailAmongKeys(
        "xmlWriteProfileString",
        [](World& world) { return xmlWriteProfileString(world.profile, "S"_w, "k20"_w, nullptr) == 1; },
        [](World& world) {
            ExpectValue(world, "k20"_w, ""_w);
            ExpectValue(world, "k21"_w, "21"_w);
        });
}

TEST(FailingMemory, EntriesAreReadWithoutAnIndex) {
    FailAmongKeys(
        "xmlTableEntryIsExist",
        [](World& world) { return xmlTableEntryIsExist(world.section, &world.value); }, kNothingElse);
    FailAmongKeys(
        "xmlTableEntryGet",
        [](World& world) { return xmlTableEntryGet(world.section, nullptr, &world.value, nullptr); },
        [](World& world) { EXPECT_STREQ(world.value.GetVal(), "39"); });
}

TEST(FailingMemory, EntriesAreWrittenAndRemovedWithoutAnIndex) {
    FailAmongKeys(
        "xmlTableEntrySet",
        [](World& world) { return xmlTableEntrySet(world.section, nullptr, &world.value, nullptr, 0, 0); },
        [](World& world) { ExpectValue(world, "k39"_w, "new"_w); });
    FailAmongKeys(
        "xmlTableEntryAdd",
        [](World& world) { return xmlTableEntryAdd(world.section, nullptr, &world.value, nullptr, 0, 1); },
        [](World& world) { ExpectValue(world, "k39"_w, "new"_w); });
    FailAmongKeys(
        "xmlTableRemoveEntry",
        [](World& world) { return xmlTableRemoveEntry(world.section, &world.value, -1, 1); },
        [](World& world) {
            ExpectValue(world, "k39"_w, ""_w);
            ExpectValue(world, "k38"_w, "38"_w);
        });
}

// Adds an entry, also beside others of its name.
bool AddEntry(World& world, const std::string& name, long number) {
    world.NameRecords(host::WideText(name.begin(), name.end()).c_str(), 3);
    world.value.SetVal(std::to_string(number).c_str());
    return xmlTableEntryAdd(world.section, nullptr, &world.value, nullptr, 0, 0);
}

void LoadIndexedKeys(World& world) {
    LoadManyKeys(world);
    EXPECT_EQ(xmlGetProfileInt(world.profile, "S"_w, "k39"_w, -1), 39);
}

// An index of so many keys grows when it has 86 of them.
TEST(FailingMemory, KeysAreAddedWhenTheIndexCannotGrow) {
    for (const int more : {0, 45, 46, 47}) {
        const auto prepare = [more](World& world) {
            LoadIndexedKeys(world);
            for (int i = 0; i < more; ++i)
                EXPECT_TRUE(AddEntry(world, "more" + std::to_string(i), i));
        };
        FailMemoryIn(
            "xmlWriteProfileInt",
            {"one more key", prepare,
             [](World& world) { return xmlWriteProfileInt(world.profile, "S"_w, "last"_w, 77) == 1; },
             [](World& world) {
                 ExpectValue(world, "last"_w, "77"_w);
                 ExpectValue(world, "k39"_w, "39"_w);
             }});
    }
}

TEST(FailingMemory, EntriesOfOneNameAreAddedWithoutAnIndex) {
    for (int more = 0; more < 12; ++more) {
        const auto prepare = [more](World& world) {
            LoadIndexedKeys(world);
            for (int i = 0; i < more; ++i)
                EXPECT_TRUE(AddEntry(world, "k20", 100 + i));
            world.NameRecords("k20"_w, 3);
            world.value.SetVal("200");
        };
        FailMemoryIn("xmlTableEntryAdd",
                     {"one more entry of a name", prepare,
                      [](World& world) {
                          return xmlTableEntryAdd(world.section, nullptr, &world.value, nullptr, 0, 0);
                      },
                      [](World& world) {
                          ExpectValue(world, "k20"_w, "20"_w);
                          EXPECT_TRUE(xmlTableRemoveEntry(world.section, &world.value, 1, 1));
                          ExpectValue(world, "k20"_w, "20"_w);
                          EXPECT_TRUE(xmlTableRemoveEntry(world.section, &world.value, 0, 0));
                          ExpectValue(world, "k20"_w, ""_w);
                          ExpectValue(world, "k39"_w, "39"_w);
                      }});
    }
}

TEST(FailingMemory, EntriesOfOneNameAreFoundWithoutAnIndex) {
    const auto prepare = [](World& world) {
        std::string keys = Keys(0, kMany) + Keys(5, 20);
        world.LoadProfile("<Settings xsi:noNamespaceSchemaLocation=\"\"><Table name=\"S\">" + keys +
                          "</Table></Settings>");
        world.OpenSection("S"_w);
        WearOut([&] { return xmlGetProfileInt(world.profile, "S"_w, "k"_w, 0) != 0; });
    };
    FailMemoryIn(
        "xmlWriteProfileString",
        {"keys that occur twice", prepare,
         [](World& world) { return xmlWriteProfileString(world.profile, "S"_w, "k7"_w, nullptr) == 1; },
         [](World& world) {
             ExpectValue(world, "k7"_w, ""_w);
             ExpectValue(world, "k8"_w, "8"_w);
         }});
}

TEST(FailingMemory, SectionsAreFoundWithoutAnIndex) {
    FailMemoryIn("xmlGetProfileSection", {"many sections", &LoadManySections,
                                          [](World& world) {
                                              xmlTableDispose(&world.section);
                                              world.section =
                                                  xmlGetProfileSection(world.profile, "k39"_w, nullptr);
                                              return world.section != nullptr;
                                          },
                                          kNothingElse});
    FailMemoryIn("xmlWriteProfileSection",
                 {"many sections", &LoadManySections,
                  [](World& world) {
                      xmlTableDispose(&world.section);
                      world.section = xmlWriteProfileSection(world.profile, "k39"_w, 0, 5, 5, nullptr);
                      return world.section != nullptr;
                  },
                  [](World& world) {
                      EXPECT_NE(
                          host::SaveBytes(world.profile)
                              .find("<Table name=\"k39\" editable=\"false\" first_id=\"5\" type=\"0005\"/>"),
                          std::string::npos);
                  }});
    FailMemoryIn(
        "xmlWriteProfileString",
        {"many sections", &LoadManySections,
         [](World& world) { return xmlWriteProfileString(world.profile, "k39"_w, nullptr, nullptr) == 1; },
         [](World& world) {
             EXPECT_EQ(xmlGetProfileSection(world.profile, "k39"_w, nullptr), nullptr);
             void* other = xmlGetProfileSection(world.profile, "k38"_w, nullptr);
             EXPECT_NE(other, nullptr);
             xmlTableDispose(&other);
         }});
}

}  // namespace
}  // namespace faults
