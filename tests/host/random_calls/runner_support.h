// Both sides of a random test, step by step: the library through its exports, and the model.
#ifndef MOX_XMLAPI_TESTS_HOST_RANDOM_CALLS_RUNNER_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_RANDOM_CALLS_RUNNER_SUPPORT_H

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "tests/host/random_calls/arguments_support.h"
#include "tests/host/random_calls/run_support.h"
#include "tests/model/profile.h"
#include "tests/model/text.h"

namespace host::random_calls {

using model::Node;
using model::NodePtr;
using model::Wide;

// One table handle on both sides, and a position in it.
struct Slot {
    void* handle = nullptr;
    std::weak_ptr<Node> table{};
    std::uint64_t position = 0;
    std::weak_ptr<Node> entry{};

    // Before the first entry, also when the entry is gone.
    void ForgetLostPosition() {
        if (position != 0 && entry.expired()) position = 0;
        if (position == 0) entry.reset();
    }
};

class Runner {
  public:
    explicit Runner(const Sequence& sequence) { Begin(sequence); }
    ~Runner() {
        for (Slot& slot : slots_)
            xmlTableDispose(&slot.handle);
        xmlProfileDispose(&profile_);
    }
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;

    void Do(const Call& call);
    void End();
    // Notes the first disagreement.
    void Compare(const std::string& actual, const std::string& expected);
    const Outcome& Result() const { return outcome_; }

  private:
    static constexpr unsigned kOwnTable = 0;

    void Begin(const Sequence& sequence);
    void Log(const std::string& line);

    // The slot of a table function: an open section, or the table.
    Slot& PickSlot(Arguments& arguments, std::string& name);
    void Fill(Slot& slot, void* handle, const NodePtr& table);
    void DropLostSections();
    void LoadTableDocument(const Text& text, std::int32_t size, const Text* name);
    void MakeTable(NodePtr document, const Text& name, bool withSchema);

    void OpenSection(Arguments arguments);
    void EnumSections(Arguments arguments);
    void WriteSection(Arguments arguments);
    void CloseSection(Arguments arguments);
    void GetInt(Arguments arguments);
    void GetString(Arguments arguments);
    void GetData(Arguments arguments);
    void WriteInt(Arguments arguments);
    void WriteString(Arguments arguments);
    void WriteData(Arguments arguments);
    void DeleteKey(Arguments arguments);
    void DeleteSection(Arguments arguments);
    void SaveProfile(Arguments arguments);
    void ReloadProfile(Arguments arguments);
    void NewTable(Arguments arguments);
    void ReloadTable(Arguments arguments);
    void SaveTable(Arguments arguments);
    void Get(Arguments arguments);
    void Exists(Arguments arguments);
    void Set(Arguments arguments);
    void Add(Arguments arguments);
    void Remove(Arguments arguments);
    void RemoveAll(Arguments arguments);
    void RestartPosition(Arguments arguments);

    moxSettings* profile_ = nullptr;
    std::optional<model::Profile> model_{};
    NodePtr tableDocument_{};
    std::array<Slot, 4> slots_{};
    Outcome outcome_{};
};

// The bytes of a file that a call may have written; "no file" when it did not.
std::string FileBytes(const ScratchFile& file);

}  // namespace host::random_calls

#endif
