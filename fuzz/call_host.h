// A host that makes whatever calls its input asks for, but none that the contract in mox_xmlApi.h forbids. It
// keeps what a careful host would: section handles are released before their profile, handles of deleted
// sections are only released, positions of removed entries are forgotten, an enumeration is ended before the
// section is deleted on which it stands.
#ifndef MOX_XMLAPI_FUZZ_CALL_HOST_H
#define MOX_XMLAPI_FUZZ_CALL_HOST_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "fuzz/scratch_file.h"
#include "fuzz/work.h"
#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/xml/xml_node.h"
#include "tests/model/tree.h"

#if !defined(_WIN32)
#include "tests/faults/failing_memory_support.h"
#endif

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

    // What a call may have changed in the documents when it runs out of memory.
    enum class Changes {
        Nothing,
        OneEntry,  // of one table, which may be new
        Eud,       // attributes alone
    };
    using Documents = std::vector<model::NodePtr>;

    static constexpr std::size_t kMostSections = 6;
    static constexpr std::size_t kMostPositions = 16;

    // Makes a call of an export. If an allocation is to fail in it, and the call fails, the documents must be as
    // they were but for `changes`, and the call is made once more. Its work must be in proportion to the documents,
    // and to `more`, the bytes that it was given or has written.
    template <class Call>
    auto Make(Changes changes, const Call& call, std::uint64_t more = 0);
    template <class Call>
    auto MakeWithFailingMemory(Changes changes, const Call& call) -> std::optional<decltype(call())>;
    // Of all documents, in pieces of 16 bytes of memory.
    std::uint64_t SizeOfDocuments() const;
    Documents CopyDocuments() const;
    void CheckDocuments(const Documents& before, Changes changes) const;

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
    std::string ChooseDocument();
    void FailMemory();

    // profile_calls.cpp
    void OpenProfile();
    void OpenFromPipe();
    void SaveProfile();
    bool Save(const Profile& profile, const wchar16* name, std::uint32_t mode, std::uint32_t refuse,
              std::int32_t wide);
    void FailSave();
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
    bool SaveTable(const Table& table, const wchar16* name, std::int32_t reserved, std::int32_t refuse);
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
    std::uint64_t failingAllocation_ = 0;  // 1: the next one; 0: none
    bool failsFromThenOn_ = false;
    std::array<Profile, 2> profiles_{};
    std::array<void*, 2> tables_{};
    std::vector<Section> sections_;
    std::vector<Position> positions_;
};

template <class Call>
auto CallHost::MakeWithFailingMemory(Changes changes, const Call& call) -> std::optional<decltype(call())> {
    std::optional<decltype(call())> result;
#if !defined(_WIN32)
    if (failingAllocation_ == 0) return result;
    const Documents before = CopyDocuments();
    faults::FailingMemory memory(failingAllocation_,
                                 failsFromThenOn_ ? faults::Failing::FromThenOn : faults::Failing::Once);
    try {
        result = call();
    } catch (const std::bad_alloc&) {
        Check(faults::FailingMemory::Injected() != 0, "there is memory");
    }
    memory.Stop();
    if (faults::FailingMemory::Injected() == 0) {
        failingAllocation_ -= faults::FailingMemory::Asked();
        return result;
    }
    failingAllocation_ = 0;
    // A success in spite of the failure: an index, for instance, is not needed.
    if (result.has_value() && *result != decltype(call())()) return result;
    CheckDocuments(before, changes);
    result.reset();
#else
    static_cast<void>(changes);
#endif
    return result;
}

template <class Call>
auto CallHost::Make(Changes changes, const Call& call, std::uint64_t more) {
    const auto made = MakeWithFailingMemory(changes, call);
    if (made.has_value()) return *made;
    const std::uint64_t size = SizeOfDocuments();
    const std::uint64_t before = WorkDone();
    const auto result = call();
    CheckWork(WorkDone() - before, size + SizeOfDocuments() + more, "a call");
    return result;
}

}  // namespace mox::fuzz

#endif
