// The table family when memory runs out.
#include <string>

#include "tests/faults/failing_memory_support.h"
#include "tests/faults/memory_script_support.h"
#include "tests/host/host_support.h"

namespace faults {
namespace {

using host::operator""_w;

constexpr std::string_view kTable =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<Table xmlns:noNamespaceSchemaLocation=\"MXTable.xsd\" name=\"T\" first_id=\"1\" type=\"001F\">"
    "<Var name=\"own\" id=\"1\" type=\"string\" array=\"\"><Value>a value that is long enough</Value></Var>"
    "<Var name=\"ui\" id=\"2\" type=\"long\"><UI control=\"num\" prov_index=\"7\" prov_owner=\"app\" "
    "name=\"Shown name\"><Value>12</Value></UI></Var>"
    "<Var name=\"both\" id=\"3\" type=\"ucstring\"><Value>a wide value of its own</Value>"
    "<UI control=\"text\" name=\"Shown name, a long one\"><Comment>a comment for people</Comment>"
    "<Value>a presented value</Value></UI></Var>"
    "<Var name=\"none\" id=\"4\" type=\"long\"/>"
    "</Table>\n";

// A table whose first entry keeps its value in the presentation data.
constexpr std::string_view kUiTable =
    "<Table name=\"T\"><Var name=\"ui\" type=\"long\"><UI "
    "control=\"num\"><Value>12</Value></UI></Var></Table>\n";

constexpr std::uint16_t kLong = 3;
constexpr std::uint16_t kString = 8;
constexpr std::uint16_t kWideString = 31;

void LoadTable(World& world) {
    world.LoadTable(kTable);
}

// Makes a table with records that ask for all that can be asked for.
std::function<void(World&)> TableWithRecords(const wchar16* name, std::uint16_t type) {
    return [=](World& world) {
        LoadTable(world);
        world.NameRecords(name, type);
        world.value.id = 77;
        world.value.SetVal("a value that was not there before");
        world.ui.id = 77;
        world.ui.control = 1;
        world.ui.prov_index = 9;
        world.ui.prov_owner = 4;
        world.ui.SetComment_w("a comment that was not there before"_w);
        world.ui.SetUserName_w("a name that was not there before"_w);
        world.ui.SetVal("a presented value that was not there before");
    };
}

TEST(FailingMemory, NewTableIsMadeOrNot) {
    for (const std::int32_t newDocument : {0, 1}) {
        for (std::size_t length = 0; length < 1900; length += kStep) {
            // The longer the name, the earlier the first block of memory is full.
            const host::WideText name(length, 'n');
            FailMemoryIn("xmlTableNew", {"new", [](World&) {},
                                         [&](World& world) {
                                             world.table = xmlTableNew(nullptr, nullptr, 0, name.c_str(), 1,
                                                                       4000000000U, 0xABCD, newDocument);
                                             return world.table != nullptr;
                                         }});
        }
    }
}

TEST(FailingMemory, TableIsLoadedWholeOrNotAtAll) {
    const host::ScratchFile file;
    host::WriteBytes(file.Path(), host::WideFile(kTable));
    for (const std::string_view text : {kTable, std::string_view("<a/>\n<!--no table-->\n")}) {
        host::WriteBytes(file.Path(), host::WideFile(text));
        FailMemoryIn("xmlTableNew", {"file", [](World&) {},
                                     [&](World& world) {
                                         world.table =
                                             xmlTableNew(file.Name(), nullptr, 0, "T"_w, 0, 0, 0, 0);
                                         return world.table != nullptr;
                                     }});
        FailMemoryIn("xmlTableNew", {"memory", [](World&) {},
                                     [&](World& world) {
                                         const auto size = static_cast<std::int32_t>(text.size());
                                         world.table =
                                             xmlTableNew(nullptr, text.data(), size, nullptr, 0, 0, 0, 0);
                                         return world.table != nullptr;
                                     }});
    }
}

TEST(FailingMemory, TableThatIsSavedLeavesTheOldFileWhole) {
    const host::ScratchFile file;
    const std::string old = "what was saved before";
    const auto save = [&](const char* what, auto prepare) {
        FailMemoryIn(
            "xmlTableSave",
            {what,
             [&, prepare](World& world) {
                 prepare(world);
                 std::filesystem::remove(file.Path());
                 host::WriteBytes(file.Path(), old);
             },
             [&](World& world) { return xmlTableSave(world.Handle(), file.Name(), 0, 0); },
             [&](World&) { EXPECT_NE(file.Bytes(), old); }, [&](World&) { EXPECT_EQ(file.Bytes(), old); }});
    };
    save("table", &LoadTable);
    save("section", [](World& world) {
        world.LoadProfile(std::string("<Settings xsi:noNamespaceSchemaLocation=\"\">")
                              .append(kTable.substr(kTable.find("<Table")))
                              .append("</Settings>"));
        world.OpenSection("T"_w);
    });
}

TEST(FailingMemory, TableIsDisposedWithoutAny) {
    ExpectNoMemoryUse("xmlTableDispose", {"table", &LoadTable, [](World& world) {
                                              xmlTableDispose(&world.table);
                                              return world.table == nullptr;
                                          }});
    ExpectNoMemoryUse(
        "xmlTableDispose",
        {"section",
         [](World& world) {
             world.LoadProfile("<Settings xsi:noNamespaceSchemaLocation=\"\"><Table name=\"T\"/></Settings>");
             world.OpenSection("T"_w);
         },
         [](World& world) {
             xmlTableDispose(&world.section);
             return world.section == nullptr;
         }});
}

TEST(FailingMemory, EntryIsReadOrNot) {
    for (const wchar16* name : {"own"_w, "ui"_w, "both"_w, "none"_w}) {
        for (const int records : {1, 2, 3}) {
            const auto get = [=](World& world, std::uint64_t* position) {
                world.NameRecords(name, 0);
                return xmlTableEntryGet(world.table, position, (records & 1) != 0 ? &world.value : nullptr,
                                        (records & 2) != 0 ? &world.ui : nullptr);
            };
            FailMemoryIn("xmlTableEntryGet",
                         {"by name", &LoadTable, [=](World& world) { return get(world, nullptr); }});
        }
    }
}

TEST(FailingMemory, EnumerationOfEntriesGoesOn) {
    FailMemoryIn("xmlTableEntryGet",
                 {"by position", &LoadTable, [](World& world) {
                      world.position = 0;
                      int count = 0;
                      while (xmlTableEntryGet(world.table, &world.position, &world.value, &world.ui))
                          ++count;
                      return count == 4;
                  }});
}

TEST(FailingMemory, ExistenceIsAskedWithoutAny) {
    ExpectNoMemoryUse("xmlTableEntryIsExist", {"entry", TableWithRecords("both"_w, kLong), [](World& world) {
                                                   return xmlTableEntryIsExist(world.table, &world.value);
                                               }});
}

// Each entry, by each type that is copied in its own way, with each choice of records.
TEST(FailingMemory, EntryIsSetOrLeftUsable) {
    for (const wchar16* name : {"own"_w, "ui"_w, "both"_w, "none"_w}) {
        for (const std::uint16_t type : {kString, kWideString}) {
            for (const int records : {1, 2, 3}) {
                FailMemoryIn("xmlTableEntrySet", {"by name", TableWithRecords(name, type), [=](World& world) {
                                                      return xmlTableEntrySet(
                                                          world.table, nullptr,
                                                          (records & 1) != 0 ? &world.value : nullptr,
                                                          (records & 2) != 0 ? &world.ui : nullptr, 1, 1);
                                                  }});
            }
        }
    }
}

TEST(FailingMemory, EntryIsSetAtAPositionOrLeftUsable) {
    FailMemoryIn("xmlTableEntrySet",
                 {"by position", TableWithRecords("renamed entry"_w, kString), [](World& world) {
                      world.position = 0;
                      return xmlTableEntrySet(world.table, &world.position, &world.value, nullptr, 1, 1);
                  }});
}

TEST(FailingMemory, EntryIsAddedOrLeftUsable) {
    for (const std::uint16_t type : {kString, kWideString}) {
        for (const int records : {1, 2, 3}) {
            for (const std::int32_t update : {0, 1}) {
                for (const wchar16* name : {"a new entry"_w, "both"_w}) {
                    if (records == 2 && type == kString)
                        continue;  // such a record needs a value record beside it
                    FailMemoryIn("xmlTableEntryAdd",
                                 {"last", TableWithRecords(name, type), [=](World& world) {
                                      return xmlTableEntryAdd(
                                          world.table, nullptr, (records & 1) != 0 ? &world.value : nullptr,
                                          (records & 2) != 0 ? &world.ui : nullptr, 1, update);
                                  }});
                }
            }
        }
    }
}

TEST(FailingMemory, EntryIsAddedBeforeAnotherOrLeftUsable) {
    const auto prepare = TableWithRecords("a new entry"_w, kLong);
    FailMemoryIn("xmlTableEntryAdd",
                 {"before the first",
                  [=](World& world) {
                      prepare(world);
                      TableEntryUInfoStruct first;
                      ASSERT_TRUE(xmlTableEntryGet(world.table, &world.position, nullptr, &first));
                  },
                  [](World& world) {
                      return xmlTableEntryAdd(world.table, &world.position, &world.value, nullptr, 0, 0);
                  }});
}

TEST(FailingMemory, EntryWhoseValueIsPresentedIsAddedOrLeftUsable) {
    FailMemoryIn(
        "xmlTableEntryAdd",
        {"value to the presentation data",
         [](World& world) {
             world.LoadTable(kUiTable);
             world.NameRecords("a new entry"_w, kLong);
             world.value.SetVal("12345");
         },
         [](World& world) { return xmlTableEntryAdd(world.table, nullptr, &world.value, nullptr, 1, 0); }});
}

TEST(FailingMemory, EntryWhoseValueIsPresentedIsUpdatedOrLeftUsable) {
    FailMemoryIn("xmlTableEntryAdd",
                 {"value to the presentation data, by name",
                  [](World& world) {
                      world.LoadTable(kUiTable);
                      world.NameRecords("ui"_w, kString);
                      world.value.SetVal("a value that needs more memory than the old one");
                      world.position = ~std::uint64_t{0};
                  },
                  [](World& world) {
                      return xmlTableEntryAdd(world.table, &world.position, &world.value, nullptr, 1, 1);
                  }});
}

// The first entry has no value at all, so that it is moved to presentation data, which are new.
TEST(FailingMemory, EntryGetsItsValueInNewPresentationDataOrIsLeftUsable) {
    for (const bool withComment : {false, true}) {
        FailMemoryIn("xmlTableEntrySet",
                     {"value to the presentation data, by position",
                      [](World& world) {
                          world.LoadTable("<Table name=\"T\"><Var name=\"none\" type=\"long\"/></Table>\n");
                          world.NameRecords("none"_w, kString);
                          world.value.SetVal("a value that was not there before");
                          world.ui.SetComment_w("a comment that was not there before"_w);
                      },
                      [=](World& world) {
                          world.position = 0;
                          return xmlTableEntrySet(world.table, &world.position, &world.value,
                                                  withComment ? &world.ui : nullptr, 0, 1);
                      }});
    }
}

TEST(FailingMemory, EntriesAreRemovedWithoutAny) {
    ExpectNoMemoryUse("xmlTableRemoveEntry", {"one", TableWithRecords("both"_w, kLong), [](World& world) {
                                                  return xmlTableRemoveEntry(world.table, &world.value, 0, 0);
                                              }});
    ExpectNoMemoryUse("xmlTableRemoveEntry",
                      {"all", TableWithRecords("both"_w, kLong),
                       [](World& world) { return xmlTableRemoveEntry(world.table, &world.value, -1, 1); }});
    ExpectNoMemoryUse("xmlTableRemoveEntries", {"entries", &LoadTable, [](World& world) {
                                                    return xmlTableRemoveEntries(world.table);
                                                }});
}

}  // namespace
}  // namespace faults
