// The exports over companion functions that return false, which the project's own never do for texts from a document or
// a record: the call fails, and the document stays as it was.
#include <algorithm>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <string_view>

#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "tests/companions/stand_ins_support.h"
#include "tests/host/host_support.h"

namespace companions {
namespace {

using host::operator""_w;

// A section with an entry of an 8-bit type, and one of type "ucstring".
class Document {
  public:
    Document()
        : profile_(
              host::LoadEntries("<Var name=\"k\" type=\"string\"><Value>0A</Value><UI control=\"num\"/></Var>"
                                "<Var name=\"w\" type=\"ucstring\"><Value>wide</Value></Var>")),
          section_(xmlGetProfileSection(profile_, "S"_w, nullptr)) {}
    ~Document() { xmlTableDispose(&section_); }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    moxSettings* Settings() const { return profile_; }
    void* Section() const { return section_; }

  private:
    host::Profile profile_;
    void* section_;
};

template <class Record>
Record Named(std::string_view name, std::uint16_t type) {
    Record record;
    std::copy(name.begin(), name.end(), record.name);
    record.type = type;
    return record;
}

bool WriteData(Document& document) {
    return xmlWriteProfileData(document.Settings(), "S"_w, "k"_w, "\x12", 1) == 1;
}
bool ReadData(Document& document) {
    unsigned char byte = 0;
    return xmlGetProfileData(document.Settings(), "S"_w, "k"_w, &byte, 1) == 1;
}
bool GetNarrow(Document& document) {
    auto value = Named<TableEntryValueInfoStruct>("k", 0);
    return xmlTableEntryGet(document.Section(), nullptr, &value, nullptr);
}
bool GetWide(Document& document) {
    auto value = Named<TableEntryValueInfoStruct>("w", 0);
    return xmlTableEntryGet(document.Section(), nullptr, &value, nullptr);
}
bool GetUi(Document& document) {
    auto value = Named<TableEntryValueInfoStruct>("k", 0);
    TableEntryUInfoStruct ui;
    return xmlTableEntryGet(document.Section(), nullptr, &value, &ui);
}
bool Add(Document& document) {
    auto value = Named<TableEntryValueInfoStruct>("added", 8);
    return xmlTableEntryAdd(document.Section(), nullptr, &value, nullptr, 0, 0);
}
bool AddUi(Document& document) {
    auto ui = Named<TableEntryUInfoStruct>("added", 8);
    auto value = Named<TableEntryValueInfoStruct>("added", 8);
    return xmlTableEntryAdd(document.Section(), nullptr, &value, &ui, 0, 0);
}
bool Set(Document& document) {
    auto value = Named<TableEntryValueInfoStruct>("k", 8);
    return xmlTableEntrySet(document.Section(), nullptr, &value, nullptr, 0, 0);
}
bool SetUi(Document& document) {
    auto ui = Named<TableEntryUInfoStruct>("k", 8);
    return xmlTableEntrySet(document.Section(), nullptr, nullptr, &ui, 0, 0);
}

struct Refusal {
    const char* function;
    const char* call;
    bool (*make)(Document& document);
    int count;  // how often the call calls the function
};

void PrintTo(const Refusal& refusal, std::ostream* out) {
    *out << refusal.function << " in " << refusal.call;
}

constexpr Refusal kRefusals[] = {
    {"pdConvertString to wide", "WriteData", WriteData, 1},
    {"pdConvertString to wide", "Add", Add, 1},
    {"pdConvertString to wide", "AddUi", AddUi, 2},
    {"pdConvertString to wide", "Set", Set, 1},
    {"pdConvertString to wide", "SetUi", SetUi, 1},
    {"pdConvertString to narrow", "ReadData", ReadData, 1},
    {"pdConvertString to narrow", "GetNarrow", GetNarrow, 1},
    {"SetVal", "GetNarrow", GetNarrow, 1},
    {"SetVal", "GetUi", GetUi, 2},
    {"SetVal_w", "GetWide", GetWide, 1},
};

class RefusingCompanion : public testing::TestWithParam<Refusal> {};

TEST_P(RefusingCompanion, FailsTheCallAndChangesNothing) {
    const Refusal& refusal = GetParam();
    for (int number = 1; number <= refusal.count; ++number) {
        Document document;
        const std::string before = host::SaveBytes(document.Settings());
        RefuseAt(number, refusal.function);
        EXPECT_FALSE(refusal.make(document)) << "at call " << number;
        FailNever();
        EXPECT_EQ(host::SaveBytes(document.Settings()), before) << "at call " << number;
        EXPECT_TRUE(refusal.make(document));
    }
}

INSTANTIATE_TEST_SUITE_P(, RefusingCompanion, testing::ValuesIn(kRefusals), [](const auto& tested) {
    std::string name = std::string(tested.param.function) + "_" + tested.param.call;
    std::erase(name, ' ');
    return name;
});

}  // namespace
}  // namespace companions
