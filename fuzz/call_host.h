// A host that makes whatever calls its input asks for, but none that the contract in mox_xmlApi.h forbids. It
// keeps what a careful host would: section handles are released before their profile, handles of deleted
// sections are only released, positions of removed entries are forgotten, an enumeration is ended before the
// section is deleted on which it stands.
#ifndef MOX_XMLAPI_FUZZ_CALL_HOST_H
#define MOX_XMLAPI_FUZZ_CALL_HOST_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "fuzz/scratch_file.h"
#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/xml/xml_node.h"

namespace mox::fuzz {

class CallHost {
  public:
    CallHost(FuzzInput& input, const ScratchFile& file) : input_(input), file_(file) {}
    ~CallHost();
    CallHost(const CallHost&) = delete;
    CallHost& operator=(const CallHost&) = delete;

    // Takes the next call from the input and makes it.
    void Step();

  private:
    // A profile with its one enumeration.
    struct Profile {
        moxSettings* handle = nullptr;
        std::uintptr_t enumeration = 0;
        const XmlNode* enumerated = nullptr;  // the section that it returned last
    };
    // A handle over a section. Once its element was removed, it can only be released.
    struct Section {
        void* handle;
        const Profile* profile;
        const XmlNode* element;  // null when it was deleted
    };
    // A position inside the table with this element.
    struct Position {
        const XmlNode* table;
        std::uint64_t value;
    };
    // The handle of one call, perhaps null, and the element that it works on.
    struct Table {
        void* handle = nullptr;
        XmlNode* element = nullptr;
    };

    static constexpr std::size_t kMostSections = 6;
    static constexpr std::size_t kMostPositions = 16;

    // call_host.cpp: which handles there are, and their ends.
    Profile& ChooseProfile() { return profiles_[input_.Below(profiles_.size())]; }
    Table ChooseTable();
    std::uint64_t ChoosePosition(const Table& table);
    void KeepSection(Profile& profile, void* handle);
    void KeepPosition(const Table& table, std::uint64_t position);
    void ForgetRemoved(const XmlNode* table);
    void ForgetSection(const XmlNode* element);
    void EndEnumeration(Profile& profile);
    void DisposeProfile();
    void DisposeProfile(Profile& profile);
    void DisposeTable();
    void DisposeTable(void*& table);
    std::string_view ChooseDocument();

    // profile_calls.cpp
    void OpenProfile();
    void SaveProfile();
    void GetSection();
    void EnumerateSections();
    void WriteSection();
    void ReadInt();
    void ReadString();
    void ReadData();
    void WriteInt();
    void WriteString();
    void WriteData();
    void DeleteSection(Profile& profile, const WideString& section, char how);
    void DeleteKey(Profile& profile, const WideString& section, const WideString& key, bool asData);
    void CheckWritten(Profile& profile, const WideString& section, const WideString& key,
                      const WideString& value, bool wasReadable);
    bool IsReadable(Profile& profile, const WideString& section, const WideString& key);

    // table_calls.cpp
    void OpenTable();
    void SaveTable();
    void GetEntry();
    void IsExist();
    void SetEntry();
    void AddEntry();
    void RemoveEntry();
    void RemoveEntries();
    void FillRecord(TableEntryValueInfoStruct& record);
    void FillRecord(TableEntryUInfoStruct& record);

    FuzzInput& input_;
    const ScratchFile& file_;
    std::array<Profile, 2> profiles_{};
    std::array<void*, 2> tables_{};
    std::vector<Section> sections_;
    std::vector<Position> positions_;
};

}  // namespace mox::fuzz

#endif
