// What calls are made of: arguments from numbers, entry records on both sides, and how they are logged.
#ifndef MOX_XMLAPI_TESTS_HOST_RANDOM_CALLS_ARGUMENTS_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_RANDOM_CALLS_ARGUMENTS_SUPPORT_H

#include <array>
#include <cstddef>
#include <sstream>
#include <string>

#include "tests/host/random_calls/calls_support.h"
#include "tests/host/table_support.h"
#include "tests/model/tables.h"

namespace host::random_calls {

using model::Text;

// Turns the numbers of a call into arguments, one after the other.
class Arguments {
  public:
    explicit Arguments(const Call& call) : call_(call) {}

    unsigned Below(unsigned count) { return call_.picks.at(next_++) % count; }
    bool Flag() { return Below(2) == 1; }
    template <class Item, std::size_t Count>
    const Item& Pick(const std::array<Item, Count>& items) {
        return items[Below(Count)];
    }

  private:
    const Call& call_;
    std::size_t next_ = 0;
};

// What the arguments are picked from, the plainest first.
inline const std::array<Text, 6> kSections = {"S"_w, "T"_w, "U"_w, ""_w, "s"_w, "N"_w};
inline const std::array<Text, 7> kNames = {"a"_w, "b"_w, "A"_w, ""_w, "c"_w, Text(259, 'n'), u"\u00fc"_w};
inline const std::array<Text, 9> kKeys = {"a"_w,          "b"_w,       "A"_w,      ""_w,       "c"_w,
                                          Text(300, 'n'), u"\u00fc"_w, "nested"_w, u"\xDC00"_w};
inline const std::array<Text, 12> kTexts = {
    "12"_w,    ""_w,         "x<&>\"'"_w, "0aFfxx"_w,      "true"_w,
    " lead"_w, "one\ntwo"_w, "trail "_w,  "-2147483649"_w, u"\u00e9\u0101\U0001F600"_w,
    "  "_w,    "0x10"_w};
inline const Text kUnpaired = u"\xD800x"_w;
inline constexpr std::array<std::int32_t, 6> kFlags = {0, 1, 2, -1, 256, 1};
inline constexpr std::array<std::uint16_t, 14> kTypes = {3,      8, 31,     5,      0,      0x1003, 0x2008,
                                                         0x3005, 7, 0x201F, 0x1000, 0x4003, 17,     11};
inline constexpr std::array<std::uint16_t, 10> kMasks = {0, 2, 1, 4, 8, 6, 0x10, 0x12, 0xFFF0, 0xFFFF};
inline constexpr std::array<std::uint16_t, 9> kControls = {1, 0xFFFF, 2, 26, 3, 20, 0, 0xFFFE, 24};
inline constexpr std::array<std::uint8_t, 7> kOwners = {0, 1, 2, 4, 3, 255, 5};
inline constexpr std::array<std::uint32_t, 5> kNumbers = {0, 7, 0x80000000, 0xFFFFFFFF, 0x7FFFFFFF};
inline constexpr std::array<std::int32_t, 6> kOccurrences = {-1, 0, 1, 2, 5, -2};

// Both records of a call, as the model has them and as the library gets them; either may be absent.
struct Records {
    bool hasValue;
    bool hasUi;
    PlainValue plainValue;
    PlainUi plainUi;
    TableEntryValueInfoStruct realValue;
    TableEntryUInfoStruct realUi;

    explicit Records(Arguments& arguments);
    // The library's side from the model's.
    void Make();

    PlainValue* Value() { return hasValue ? &plainValue : nullptr; }
    PlainUi* Ui() { return hasUi ? &plainUi : nullptr; }
    TableEntryValueInfoStruct* RealValue() { return hasValue ? &realValue : nullptr; }
    TableEntryUInfoStruct* RealUi() { return hasUi ? &realUi : nullptr; }

    std::string Expected() const;
    std::string Actual() const;
};

// A text in quotes.
std::string Quote(const Text& text);

template <class... Parts>
std::string Concat(const Parts&... parts) {
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

}  // namespace host::random_calls

#endif
