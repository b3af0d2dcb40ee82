// Sequences of calls for the random tests: made from a seed, and shortened while something about them stays
// true.
#ifndef MOX_XMLAPI_TESTS_HOST_RANDOM_CALLS_CALLS_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_RANDOM_CALLS_CALLS_SUPPORT_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace host::random_calls {

// What a call does; a call that has nothing to work on does nothing.
enum class Op : unsigned {
    OpenSection,
    EnumSections,
    WriteSection,
    CloseSection,
    GetInt,
    GetString,
    GetData,
    WriteInt,
    WriteString,
    WriteData,
    DeleteKey,
    DeleteSection,
    SaveProfile,
    ReloadProfile,
    NewTable,
    ReloadTable,
    SaveTable,
    Get,
    Exists,
    Set,
    Add,
    Remove,
    RemoveAll,
    RestartPosition,
    Count
};

// A call and the raw numbers that its arguments are picked by; 0 picks the plainest.
struct Call {
    Op op = Op::Get;
    std::array<unsigned, 18> picks{};
};

struct Sequence {
    // What the documents are made of at the start, by number; see SettingsText and TableText.
    unsigned root = 0;
    std::vector<unsigned> settings{};
    std::vector<unsigned> table{};
    std::vector<Call> calls{};
};

// The same sequence for the same seed, on every system.
Sequence RandomSequence(std::uint64_t seed);

// 8-bit documents of sections or tables and entries, oddities included.
std::string SettingsText(unsigned root, const std::vector<unsigned>& parts);
std::string TableText(const std::vector<unsigned>& parts);

// A sequence for which `fails` stays true and from which no call, no part of a document and no pick other
// than 0 can be taken without it becoming false.
Sequence Shortest(Sequence sequence, const std::function<bool(const Sequence&)>& fails);

// Removes items as long as `fails` stays true, large groups first.
template <class Item>
bool Shorten(std::vector<Item>& items, const std::function<bool()>& fails) {
    bool shortened = false;
    for (std::size_t size = items.size(); size > 0; size /= 2) {
        for (std::size_t at = 0; at < items.size();) {
            const std::vector<Item> before = items;
            const auto first = items.begin() + static_cast<std::ptrdiff_t>(at);
            items.erase(first, first + static_cast<std::ptrdiff_t>(std::min(size, items.size() - at)));
            if (fails()) {
                shortened = true;
            } else {
                items = before;
                at += size;
            }
        }
    }
    return shortened;
}

}  // namespace host::random_calls

#endif
