// The exports over companion libraries of another make, whose functions throw or leave more undone than the project's
// own.
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "tests/companions/stand_ins_support.h"
#include "tests/host/host_support.h"

namespace companions {
namespace {

using host::operator""_w;
using host::Profile;

// One document for all calls: a section with an entry that has everything, and one of type "ucstring".
class Documents {
  public:
    Documents()
        : profile_(host::LoadEntries("<Var name=\"k\" id=\"5\" type=\"string\"><Value>0A</Value>"
                                     "<UI control=\"num\" name=\"shown\"><Comment>c</Comment></UI></Var>"
                                     "<Var name=\"w\" type=\"ucstring\"><Value>wide</Value></Var>")),
          section_(xmlGetProfileSection(profile_, "S"_w, nullptr)) {}
    ~Documents() { xmlTableDispose(&section_); }
    Documents(const Documents&) = delete;
    Documents& operator=(const Documents&) = delete;

    moxSettings* Settings() const { return profile_; }
    void* Section() const { return section_; }

  private:
    Profile profile_;
    void* section_;
};

void Name(TableEntryBaseInfoStruct& record, std::string_view name, std::uint16_t type) {
    std::copy(name.begin(), name.end(), record.name);
    record.type = type;
}

// Each of these calls reaches the functions of its name.
bool WriteInt(Documents& documents) {
    return xmlWriteProfileInt(documents.Settings(), "S"_w, "k"_w, 12) == 1;
}
bool WriteData(Documents& documents) {
    const unsigned char bytes[] = {0x12, 0xAB};
    return xmlWriteProfileData(documents.Settings(), "S"_w, "k"_w, bytes, 2) == 1;
}
bool ReadData(Documents& documents) {
    unsigned char byte = 0;
    return xmlGetProfileData(documents.Settings(), "S"_w, "k"_w, &byte, 1) == 1 && byte == 0x0A;
}
bool WriteSection(Documents& documents, const wchar16* name) {
    const host::Section section(xmlWriteProfileSection(documents.Settings(), name, 1, 7, 31, nullptr));
    return static_cast<bool>(section);
}
bool WriteOldSection(Documents& documents) {
    return WriteSection(documents, "S"_w);
}
bool WriteNewSection(Documents& documents) {
    return WriteSection(documents, "new"_w);
}
bool Save(Documents& documents, std::uint32_t mode) {
    const host::ScratchFile file;
    return xmlProfileSave(documents.Settings(), file.Name(), mode, 0, 0) == 1;
}
bool ExportUi(Documents& documents) {
    return Save(documents, 1);
}
bool ExportValues(Documents& documents) {
    return Save(documents, 2);
}
bool NewTable(Documents& /*documents*/) {
    const host::Section table(xmlTableNew(nullptr, nullptr, 0, "T"_w, 1, 7, 31, 1));
    return static_cast<bool>(table);
}
bool Get(Documents& documents, bool second, TableEntryValueInfoStruct* value, TableEntryUInfoStruct* ui) {
    std::uint64_t position = 0;
    return xmlTableEntryGet(documents.Section(), &position, value, ui) &&
           (!second || xmlTableEntryGet(documents.Section(), &position, value, ui));
}
bool GetValue(Documents& documents) {
    TableEntryValueInfoStruct value;
    return Get(documents, false, &value, nullptr);
}
bool GetWideValue(Documents& documents) {
    TableEntryValueInfoStruct value;
    return Get(documents, true, &value, nullptr);
}
bool GetUi(Documents& documents) {
    TableEntryUInfoStruct ui;
    return Get(documents, false, nullptr, &ui);
}
bool Add(Documents& documents, std::uint16_t type, bool withUi) {
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    Name(value, "added", type);
    value.id = 0xFFFFFFFE;
    ui.control = 1;
    ui.prov_index = 9;
    return xmlTableEntryAdd(documents.Section(), nullptr, &value, withUi ? &ui : nullptr, 0, 0);
}
bool AddNarrow(Documents& documents) {
    return Add(documents, 8, false);
}
bool AddWide(Documents& documents) {
    return Add(documents, 31, false);
}
bool AddUi(Documents& documents) {
    return Add(documents, 8, true);
}
bool SetBoth(Documents& documents) {
    TableEntryValueInfoStruct value;
    TableEntryUInfoStruct ui;
    Name(value, "k", 8);
    value.id = 6;
    ui.prov_index = 9;
    return xmlTableEntrySet(documents.Section(), nullptr, &value, &ui, 0, 0);
}

struct Reach {
    const char* function;
    const char* call;
    bool (*make)(Documents& documents);
};

void PrintTo(const Reach& reach, std::ostream* out) {
    *out << reach.function << " in " << reach.call;
}

constexpr Reach kReaches[] = {
    {"pdSwprintf", "WriteInt", WriteInt},
    {"pdSwprintf", "WriteOldSection", WriteOldSection},
    {"pdSwprintf", "WriteNewSection", WriteNewSection},
    {"pdSwprintf", "ExportValues", ExportValues},
    {"pdSwprintf", "NewTable", NewTable},
    {"pdSwprintf", "AddNarrow", AddNarrow},
    {"pdSwprintf", "AddUi", AddUi},
    {"pdSwprintf", "SetBoth", SetBoth},
    {"pdConvertString to wide", "WriteData", WriteData},
    {"pdConvertString to wide", "AddNarrow", AddNarrow},
    {"pdConvertString to narrow", "ReadData", ReadData},
    {"pdConvertString to narrow", "GetValue", GetValue},
    {"DataToHex", "WriteData", WriteData},
    {"HexToData", "ReadData", ReadData},
    {"TableEntryBaseInfoStruct::Clear", "GetValue", GetValue},
    {"TableEntryUInfoStruct::Clear", "GetUi", GetUi},
    {"GetVal", "AddNarrow", AddNarrow},
    {"GetVal", "SetBoth", SetBoth},
    {"GetVal_w", "AddWide", AddWide},
    {"SetVal", "GetValue", GetValue},
    {"SetVal_w", "GetWideValue", GetWideValue},
    {"GetComment_w", "AddUi", AddUi},
    {"GetComment_w", "SetBoth", SetBoth},
    {"GetUserName_w", "AddUi", AddUi},
    {"GetUserName_w", "SetBoth", SetBoth},
    {"SetComment_w", "GetUi", GetUi},
    {"SetUserName_w", "GetUi", GetUi},
};

class ThrowingCompanion : public testing::TestWithParam<Reach> {};

// Each call of the function that the export makes throws once, on a document of its own.
TEST_P(ThrowingCompanion, ThrowsThroughTheExportAndLeavesTheDocumentUsable) {
    const Reach& reach = GetParam();
    bool isThrown = true;
    int number = 0;
    while (isThrown) {
        Documents documents;
        FailAt(++number, reach.function);
        try {
            EXPECT_TRUE(reach.make(documents));
            isThrown = false;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.function, reach.function);
        }
        FailNever();
        EXPECT_TRUE(reach.make(documents)) << "after call " << number << " threw";
        EXPECT_TRUE(ExportUi(documents));
    }
    EXPECT_GT(number, 1) << "no call was made";
}

INSTANTIATE_TEST_SUITE_P(, ThrowingCompanion, testing::ValuesIn(kReaches), [](const auto& tested) {
    std::string name = std::string(tested.param.function) + "_" + tested.param.call;
    std::erase_if(name, [](char unit) { return unit == ' ' || unit == ':'; });
    return name;
});

// ---- What is asked of pdSwprintf

std::vector<std::string> FormatsOf(bool (*make)(Documents& documents)) {
    Documents documents;
    TakeCalls();
    EXPECT_TRUE(make(documents));
    std::vector<std::string> calls = TakeCalls();
    std::erase_if(calls, [](const std::string& call) { return call.rfind("pdSwprintf", 0) != 0; });
    return calls;
}

TEST(OtherCompanions, NumbersAreFormattedByPdSwprintf) {
    using testing::ElementsAre;
    EXPECT_THAT(FormatsOf(WriteInt), ElementsAre("pdSwprintf %d"));
    EXPECT_THAT(FormatsOf(WriteOldSection), ElementsAre("pdSwprintf %u", "pdSwprintf %04X"));
    EXPECT_THAT(FormatsOf(WriteNewSection), ElementsAre("pdSwprintf %u", "pdSwprintf %04X"));
    EXPECT_THAT(FormatsOf(NewTable), ElementsAre("pdSwprintf %u", "pdSwprintf %04X"));
    EXPECT_THAT(FormatsOf(AddNarrow), ElementsAre("pdSwprintf %d"));
    EXPECT_THAT(FormatsOf(AddUi), ElementsAre("pdSwprintf %d", "pdSwprintf %u"));
}

// ---- Names in records that another Clear leaves full

template <class Record>
void FillName(Record& record) {
    std::fill(std::begin(record.name), std::end(record.name), wchar16{'x'});
}

void ExpectNameAlone(const TableEntryBaseInfoStruct& record, std::size_t length) {
    for (std::size_t i = 0; i < std::size(record.name); ++i)
        ASSERT_EQ(record.name[i], i < length ? wchar16{'n'} : wchar16{0}) << "unit " << i;
}

TEST(OtherCompanions, NamesInRecordsAreFilledWithZerosWhateverClearLeaves) {
    for (const std::size_t length : {1U, 258U, 259U, 260U, 300U}) {
        const std::string name(length, 'n');
        const Profile profile =
            host::LoadEntries("<Var name=\"" + name + "\" type=\"long\"><Value>1</Value></Var>");
        void* section = xmlGetProfileSection(profile, "S"_w, nullptr);
        TableEntryValueInfoStruct value;
        TableEntryUInfoStruct ui;
        FillName(value);
        FillName(ui);
        std::uint64_t position = 0;
        EXPECT_TRUE(xmlTableEntryGet(section, &position, &value, &ui));
        ExpectNameAlone(value, std::min<std::size_t>(length, 259));
        ExpectNameAlone(ui, std::min<std::size_t>(length, 259));
        xmlTableDispose(&section);
    }
}

}  // namespace
}  // namespace companions
