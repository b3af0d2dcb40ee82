// Typed values of keys and entries, by their names.
#include <cmath>
#include <limits>

#include "tests/c_host/c_host_support.h"

namespace c_host {
namespace {

constexpr std::string_view kValues =
    "<Var name=\"I\" type=\"long\"><Value> -12 </Value></Var><Var name=\"D\" "
    "type=\"double\"><Value>2.5</Value></Var>"
    "<Var name=\"B\" type=\"bool\"><Value>true</Value></Var><Var name=\"H\" "
    "type=\"string\"><Value>00FF</Value></Var>"
    "<Var name=\"T\" type=\"string\"><Value>a b</Value></Var>"
    "<Var name=\"U\" type=\"long\"><UI control=\"num\"><Value>7</Value></UI></Var><Var name=\"X\"/>";

int64_t Int(const Document& document, std::string_view section, std::string_view name) {
    int64_t value = -99;
    mox_get_int(document.get(), section.data(), section.size(), name.data(), name.size(), &value, nullptr);
    return value;
}

TEST(HostValues, AreReadWithTheirTypes) {
    for (const bool isTable : {false, true}) {
        const Document document = isTable ? Table(kValues) : Settings(kValues);
        const std::string_view section = isTable ? "" : "S";
        double number = 0;
        int32_t truth = -1;
        unsigned char bytes[4] = {9, 9, 9, 9};
        size_t size = 0;
        EXPECT_EQ(Int(document, section, "I"), -12);
        EXPECT_EQ(Int(document, section, "U"), 7) << "that of the presentation data";
        EXPECT_EQ(
            mox_get_double(document.get(), section.data(), section.size(), MOX_STR("D"), &number, nullptr),
            MOX_OK);
        EXPECT_EQ(number, 2.5);
        EXPECT_EQ(mox_get_bool(document.get(), section.data(), section.size(), MOX_STR("B"), &truth, nullptr),
                  MOX_OK);
        EXPECT_EQ(truth, 1);
        EXPECT_EQ(mox_get_bytes(document.get(), section.data(), section.size(), MOX_STR("H"), bytes,
                                sizeof bytes, &size, nullptr),
                  MOX_OK);
        EXPECT_EQ(size, 2U);
        EXPECT_EQ(std::vector<int>(bytes, bytes + 4), (std::vector<int>{0, 255, 9, 9}));
        EXPECT_EQ(TextOf(document, section, "T"), "a b");
    }
}

TEST(HostValues, AFailureLeavesTheDefaultAndSaysWhy) {
    const Document document = Settings(kValues);
    const Problem problem;
    int64_t value = 1000;
    EXPECT_EQ(mox_get_int(document.get(), MOX_STR("S"), MOX_STR("T"), &value, problem), MOX_WRONG_TYPE);
    EXPECT_EQ(problem.Status(), MOX_WRONG_TYPE);
    EXPECT_EQ(problem.Text(), "S/T: the value \"a b\" is not a whole number");
    EXPECT_EQ(mox_get_int(document.get(), MOX_STR("S"), MOX_STR("None"), &value, problem), MOX_NO_SUCH_KEY);
    EXPECT_EQ(problem.Text(), "S/None: there is no such key");
    EXPECT_EQ(mox_get_int(document.get(), MOX_STR("R"), MOX_STR("I"), &value, problem), MOX_NO_SUCH_SECTION);
    EXPECT_EQ(mox_get_int(document.get(), MOX_STR("S"), MOX_STR("X"), &value, problem), MOX_UNREADABLE);
    EXPECT_EQ(mox_get_int(document.get(), MOX_STR("S"), MOX_STR("D"), &value, problem), MOX_WRONG_TYPE);
    EXPECT_EQ(value, 1000);
    EXPECT_EQ(mox_get_int(document.get(), MOX_STR("S"), MOX_STR("I"), &value, problem), MOX_OK);
    EXPECT_EQ(problem.Status(), MOX_OK);
    EXPECT_EQ(problem.Text(), "");
}

TEST(HostValues, TextNeedsRoomForItsZeroByte) {
    const Document document = Settings(kValues);
    char buffer[5] = "????";
    size_t size = 99;
    EXPECT_EQ(mox_get_text(document.get(), MOX_STR("S"), MOX_STR("T"), buffer, 3, &size, nullptr),
              MOX_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 3U);
    EXPECT_STREQ(buffer, "????");
    EXPECT_EQ(mox_get_text(document.get(), MOX_STR("S"), MOX_STR("T"), nullptr, 0, &size, nullptr),
              MOX_BUFFER_TOO_SMALL);
    EXPECT_EQ(mox_get_text(document.get(), MOX_STR("S"), MOX_STR("T"), buffer, 4, nullptr, nullptr), MOX_OK);
    EXPECT_STREQ(buffer, "a b");
    EXPECT_EQ(mox_get_bytes(document.get(), MOX_STR("S"), MOX_STR("H"), buffer, 1, &size, nullptr),
              MOX_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 2U);
    EXPECT_EQ(mox_get_bytes(document.get(), MOX_STR("S"), MOX_STR("H"), buffer, 2, nullptr, nullptr), MOX_OK);
    EXPECT_EQ(std::string(buffer, 3), std::string("\0\xFF"
                                                  "b",
                                                  3));
}

TEST(HostValues, AreWrittenWithTheTypeThatIsSaid) {
    for (const bool isTable : {false, true}) {
        const Document document = isTable ? Table("") : Settings("");
        const std::string_view section = isTable ? "" : "S";
        const char* const s = section.data();
        const size_t n = section.size();
        mox_document* const d = document.get();
        const mox_status formed = isTable ? MOX_OK : mox_set_form(d, MOX_FORM_WIDE, nullptr);
        EXPECT_EQ(formed, MOX_OK);
        EXPECT_EQ(mox_set_int(d, s, n, MOX_STR("Short"), -32768, MOX_TYPE_SHORT, nullptr), MOX_OK);
        EXPECT_EQ(mox_set_int(d, s, n, MOX_STR("UShort"), 65535, MOX_TYPE_USHORT, nullptr), MOX_OK);
        EXPECT_EQ(mox_set_int(d, s, n, MOX_STR("Long"), -2147483648LL, MOX_TYPE_LONG, nullptr), MOX_OK);
        EXPECT_EQ(mox_set_int(d, s, n, MOX_STR("ULong"), 4294967295, MOX_TYPE_ULONG, nullptr), MOX_OK);
        EXPECT_EQ(mox_set_int(d, s, n, MOX_STR("Text"), (std::numeric_limits<int64_t>::min)(),
                              MOX_TYPE_STRING, nullptr),
                  MOX_OK);
        EXPECT_EQ(mox_set_double(d, s, n, MOX_STR("Double"), 0.1, nullptr), MOX_OK);
        EXPECT_EQ(mox_set_bool(d, s, n, MOX_STR("Bool"), 1, nullptr), MOX_OK);
        EXPECT_EQ(mox_set_bytes(d, s, n, MOX_STR("Bytes"), "\x00\xAB", 2, nullptr), MOX_OK);
        EXPECT_EQ(mox_set_text(d, s, n, MOX_STR("String"), MOX_STR("\xC3\xA4"), nullptr), MOX_OK);
        const std::string saved = SavedText(document);
        for (const std::string_view part :
             {"name=\"Short\" type=\"short\"", "name=\"UShort\" type=\"ushort\"",
              "name=\"Long\" type=\"long\"", "name=\"ULong\" type=\"ulong\"", "name=\"Text\" type=\"string\"",
              "name=\"Double\" type=\"double\"", "name=\"Bool\" type=\"bool\"",
              "name=\"Bytes\" type=\"string\"", "name=\"String\" type=\"string\"", "<Value>-32768</Value>",
              "<Value>65535</Value>", "<Value>-2147483648</Value>", "<Value>4294967295</Value>",
              "<Value>-9223372036854775808</Value>", "<Value>0.1</Value>", "<Value>1</Value>",
              "<Value>00AB</Value>", "<Value>\xC3\xA4</Value>"})
            EXPECT_NE(saved.find(part), std::string::npos) << part << " in\n" << saved;
        EXPECT_EQ(Int(document, section, "Text"), (std::numeric_limits<int64_t>::min)());
    }
}

TEST(HostValues, ANumberThatDoesNotFitIsRefused) {
    const Document document = Settings("");
    mox_document* const d = document.get();
    const Problem problem;
    EXPECT_EQ(mox_set_int(d, MOX_STR("S"), MOX_STR("N"), 32768, MOX_TYPE_SHORT, problem), MOX_OUT_OF_RANGE);
    EXPECT_EQ(problem.Text(), "the number does not fit the type");
    EXPECT_EQ(mox_set_int(d, MOX_STR("S"), MOX_STR("N"), -1, MOX_TYPE_USHORT, problem), MOX_OUT_OF_RANGE);
    EXPECT_EQ(mox_set_int(d, MOX_STR("S"), MOX_STR("N"), 2147483648LL, MOX_TYPE_LONG, problem),
              MOX_OUT_OF_RANGE);
    EXPECT_EQ(mox_set_int(d, MOX_STR("S"), MOX_STR("N"), 4294967296LL, MOX_TYPE_ULONG, problem),
              MOX_OUT_OF_RANGE);
    EXPECT_EQ(mox_set_int(d, MOX_STR("S"), MOX_STR("N"), 1, MOX_TYPE_DOUBLE, problem), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_set_bool(d, MOX_STR("S"), MOX_STR("N"), 2, problem), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_set_double(d, MOX_STR("S"), MOX_STR("N"), std::nan(""), problem), MOX_OUT_OF_RANGE);
    EXPECT_EQ(EntryNames(document, "S"), std::vector<std::string>());
}

TEST(HostValues, AWriteMakesTheSectionAndKeepsTheTypeOfAKey) {
    const Document document = Settings("<Var name=\"K\" type=\"double\" eud=\"true\"><Value>1</Value></Var>");
    EXPECT_EQ(mox_set_int(document.get(), MOX_STR("New"), MOX_STR("K"), 5, MOX_TYPE_LONG, nullptr), MOX_OK);
    EXPECT_EQ(Int(document, "New", "K"), 5);
    EXPECT_TRUE(HasEud(document, "S"));
    EXPECT_EQ(mox_set_int(document.get(), MOX_STR("S"), MOX_STR("K"), 5, MOX_TYPE_LONG, nullptr), MOX_OK);
    EXPECT_FALSE(HasEud(document, "S"));
    EXPECT_NE(SavedText(document).find("name=\"K\" type=\"double\""), std::string::npos);
}

TEST(HostValues, WhatTheFileWouldNotKeepIsRefused) {
    const Document document =
        Settings("<Var name=\"U\" type=\"long\"><UI control=\"num\"><Value>7</Value></UI></Var>");
    const Problem problem;
    EXPECT_EQ(SetText(document, "S", "K", " leading space", problem), MOX_NOT_KEPT);
    EXPECT_EQ(problem.Text().substr(0, 5), "S/K: ");
    EXPECT_EQ(SetText(document, "S", "U", "", problem), MOX_NOT_STORED);
    EXPECT_EQ(SetText(document, "S", "K", "\xC3\xA4", problem), MOX_NOT_KEPT)
        << "it was opened from a narrow file";
    EXPECT_EQ(mox_set_form(document.get(), MOX_FORM_WIDE, problem), MOX_OK);
    EXPECT_EQ(SetText(document, "S", "K", "\xC3\xA4", problem), MOX_OK);
    EXPECT_EQ(EntryNames(document, "S"), (std::vector<std::string>{"U", "K"}));
}

TEST(HostValues, ContainsTellsKeysApart) {
    const Document document = Settings(kValues);
    const Document table = Table(kValues);
    const auto contains = [](const Document& in, std::string_view section, std::string_view name) {
        int32_t found = -1;
        EXPECT_EQ(
            mox_contains(in.get(), section.data(), section.size(), name.data(), name.size(), &found, nullptr),
            MOX_OK);
        return found;
    };
    EXPECT_EQ(contains(document, "S", "I"), 1);
    EXPECT_EQ(contains(document, "S", "J"), 0);
    EXPECT_EQ(contains(document, "R", "I"), 0);
    EXPECT_EQ(contains(document, "S", "X"), 0);
    EXPECT_EQ(contains(table, "", "I"), 1);
    EXPECT_EQ(contains(table, "", "X"), 1);
    EXPECT_EQ(contains(table, "S", "I"), 0);
}

TEST(HostValues, ATableDocumentHasNoSections) {
    const Document table = Table(kValues);
    const Problem problem;
    int64_t value = 3;
    EXPECT_EQ(mox_get_int(table.get(), MOX_STR("S"), MOX_STR("I"), &value, problem), MOX_NO_SUCH_SECTION);
    EXPECT_EQ(problem.Text(), "a table document has no sections");
    EXPECT_EQ(SetText(table, "S", "I", "1"), MOX_NO_SUCH_SECTION);
    EXPECT_EQ(mox_clear(table.get(), MOX_STR("S"), nullptr), MOX_NO_SUCH_SECTION);
    EXPECT_EQ(value, 3);
}

TEST(HostValues, AreRemovedByNameAndOccurrence) {
    constexpr std::string_view kThree =
        "<Var name=\"A\" type=\"long\"><Value>1</Value></Var><Var name=\"A\" "
        "type=\"long\"><Value>2</Value></Var>"
        "<Var name=\"A\" type=\"long\"><Value>3</Value></Var><Var name=\"B\" "
        "type=\"long\"><Value>4</Value></Var>";
    for (const bool isTable : {false, true}) {
        const Document document = isTable ? Table(kThree) : Settings(kThree);
        const std::string section = isTable ? "" : "S";
        const auto remove = [&](std::string_view name, int32_t occurrence) {
            return mox_remove(document.get(), section.data(), section.size(), name.data(), name.size(),
                              occurrence, nullptr);
        };
        EXPECT_EQ(remove("A", 1), MOX_OK);
        EXPECT_EQ(EntryNames(document, section), (std::vector<std::string>{"A", "A", "B"}));
        EXPECT_EQ(Int(document, section, "A"), 1);
        EXPECT_EQ(remove("A", 0), MOX_OK);
        EXPECT_EQ(Int(document, section, "A"), 3);
        EXPECT_EQ(remove("A", 1), MOX_NO_SUCH_KEY);
        EXPECT_EQ(remove("A", -2), MOX_INVALID_ARGUMENT);
        EXPECT_EQ(remove("A", MOX_ALL), MOX_OK);
        EXPECT_EQ(remove("A", MOX_ALL), MOX_NO_SUCH_KEY);
        EXPECT_EQ(EntryNames(document, section), (std::vector<std::string>{"B"}));
        EXPECT_EQ(mox_clear(document.get(), section.data(), section.size(), nullptr), MOX_OK);
        EXPECT_EQ(EntryNames(document, section), std::vector<std::string>());
    }
}

TEST(HostValues, AreRenamedInTheirPlace) {
    const Document document = Settings(kValues);
    mox_document* const d = document.get();
    EXPECT_EQ(mox_rename(d, MOX_STR("S"), MOX_STR("I"), MOX_STR("New"), nullptr), MOX_OK);
    EXPECT_EQ(EntryNames(document, "S"), (std::vector<std::string>{"New", "D", "B", "H", "T", "U"}));
    EXPECT_EQ(mox_rename(d, MOX_STR("S"), MOX_STR("New"), MOX_STR("D"), nullptr), MOX_NAME_TAKEN);
    EXPECT_EQ(mox_rename(d, MOX_STR("S"), MOX_STR("I"), MOX_STR("J"), nullptr), MOX_NO_SUCH_KEY);
    EXPECT_EQ(mox_rename(d, MOX_STR("S"), MOX_STR("New"), MOX_STR(""), nullptr), MOX_INVALID_TEXT);
}

TEST(HostValues, LongNamesAndTextsAreWhole) {
    const Document document = Settings("");
    const std::string name(300, 'n');
    const std::string value(100'000, 'v');
    EXPECT_EQ(SetText(document, "S", name, value), MOX_OK);
    std::string read(value.size() + 1, '?');
    size_t size = 0;
    EXPECT_EQ(mox_get_text(document.get(), MOX_STR("S"), name.data(), name.size(), read.data(), read.size(),
                           &size, nullptr),
              MOX_OK);
    EXPECT_EQ(read.substr(0, size), value);
    EXPECT_EQ(mox_remove(document.get(), MOX_STR("S"), name.data(), name.size(), MOX_ALL, nullptr), MOX_OK);
}

TEST(HostValues, TheNumbersAtTheEndsOfATypeFit) {
    struct Case {
        uint32_t type;
        int64_t least;
        int64_t most;
    };
    const Document document = Settings("");
    const auto set = [&](int64_t value, uint32_t type) {
        return mox_set_int(document.get(), MOX_STR("S"), MOX_STR("N"), value, type, nullptr);
    };
    for (const Case& each :
         {Case{MOX_TYPE_SHORT, -32768, 32767}, Case{MOX_TYPE_USHORT, 0, 65535},
          Case{MOX_TYPE_LONG, -2147483648LL, 2147483647}, Case{MOX_TYPE_ULONG, 0, 4294967295}}) {
        for (const int64_t value : {each.least, each.most}) {
            EXPECT_EQ(set(value, each.type), MOX_OK) << value;
            EXPECT_EQ(Int(document, "S", "N"), value);
        }
        EXPECT_EQ(set(each.least - 1, each.type), MOX_OUT_OF_RANGE);
        EXPECT_EQ(set(each.most + 1, each.type), MOX_OUT_OF_RANGE);
        EXPECT_EQ(Int(document, "S", "N"), each.most);
    }
    EXPECT_EQ(set((std::numeric_limits<int64_t>::max)(), MOX_TYPE_STRING), MOX_OK);
    EXPECT_EQ(Int(document, "S", "N"), (std::numeric_limits<int64_t>::max)());
}

TEST(HostValues, ATruthValueIsZeroOrOne) {
    const Document document = Settings("");
    mox_document* const d = document.get();
    int32_t value = 9;
    for (const int32_t written : {1, 0}) {
        EXPECT_EQ(mox_set_bool(d, MOX_STR("S"), MOX_STR("B"), written, nullptr), MOX_OK);
        EXPECT_EQ(TextOf(document, "S", "B"), std::to_string(written));
        EXPECT_EQ(mox_get_bool(d, MOX_STR("S"), MOX_STR("B"), &value, nullptr), MOX_OK);
        EXPECT_EQ(value, written);
    }
    for (const int32_t wrong : {-1, 2})
        EXPECT_EQ(mox_set_bool(d, MOX_STR("S"), MOX_STR("B"), wrong, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(TextOf(document, "S", "B"), "0");
}

// A host may pass memory of any size; short and long texts, 7-bit and others, are read in different ways.
TEST(HostValues, TextIsCopiedWithItsZeroByteAndNothingElse) {
    for (const bool isTable : {false, true}) {
        const Document document = isTable ? Table("") : Settings("");
        const std::string_view section = isTable ? "" : "S";
        const mox_status formed = isTable ? MOX_OK : mox_set_form(document.get(), MOX_FORM_WIDE, nullptr);
        ASSERT_EQ(formed, MOX_OK);
        for (const size_t length : {0U, 1U, 126U, 127U, 128U, 129U, 300U}) {
            for (const char* const end : {"", "\xC3\xA4"}) {
                const std::string value = std::string(length, 'v') + end;
                ASSERT_EQ(SetText(document, section, "K", value), MOX_OK);
                for (const size_t room : {value.size() + 1, value.size() + 2, value.size() + 500}) {
                    std::string buffer(room + 1, '?');
                    size_t size = 9999;
                    EXPECT_EQ(mox_get_text(document.get(), section.data(), section.size(), MOX_STR("K"),
                                           buffer.data(), room, &size, nullptr),
                              MOX_OK);
                    EXPECT_EQ(size, value.size());
                    EXPECT_EQ(buffer, value + '\0' + std::string(room - value.size(), '?'));
                }
                std::string buffer(value.size() + 1, '?');
                const std::string before = buffer;
                size_t size = 9999;
                EXPECT_EQ(mox_get_text(document.get(), section.data(), section.size(), MOX_STR("K"),
                                       buffer.data(), value.size(), &size, nullptr),
                          MOX_BUFFER_TOO_SMALL);
                EXPECT_EQ(size, value.size());
                EXPECT_EQ(buffer, before);
            }
        }
    }
}

TEST(HostValues, BytesFillAllOfABuffer) {
    const Document document = Settings("");
    mox_document* const d = document.get();
    ASSERT_EQ(mox_set_bytes(d, MOX_STR("S"), MOX_STR("H"), "\x01\x02\xFF", 3, nullptr), MOX_OK);
    EXPECT_EQ(TextOf(document, "S", "H"), "0102FF");
    std::string buffer = "????";
    size_t size = 9;
    EXPECT_EQ(mox_get_bytes(d, MOX_STR("S"), MOX_STR("H"), buffer.data(), 2, &size, nullptr),
              MOX_BUFFER_TOO_SMALL);
    EXPECT_EQ(buffer, "????");
    EXPECT_EQ(size, 3U);
    EXPECT_EQ(mox_get_bytes(d, MOX_STR("S"), MOX_STR("H"), buffer.data(), 3, &size, nullptr), MOX_OK);
    EXPECT_EQ(buffer, "\x01\x02\xFF?");
    ASSERT_EQ(mox_set_bytes(d, MOX_STR("S"), MOX_STR("H"), nullptr, 0, nullptr), MOX_OK);
    EXPECT_EQ(mox_get_bytes(d, MOX_STR("S"), MOX_STR("H"), nullptr, 0, &size, nullptr), MOX_OK);
    EXPECT_EQ(size, 0U);
}

TEST(HostValues, ReadsOfATableSayWhyTheyFail) {
    const Document table = Table(kValues);
    const Problem problem;
    double number = 2.5;
    int32_t truth = 7;
    size_t size = 9;
    char buffer[] = "?";
    EXPECT_EQ(mox_get_double(table.get(), nullptr, 0, MOX_STR("T"), &number, problem), MOX_WRONG_TYPE);
    EXPECT_EQ(problem.Text(), "T: the value \"a b\" is not a decimal number");
    EXPECT_EQ(mox_get_bool(table.get(), nullptr, 0, MOX_STR("X"), &truth, problem), MOX_UNREADABLE);
    EXPECT_EQ(mox_get_bytes(table.get(), nullptr, 0, MOX_STR("T"), buffer, 1, &size, problem),
              MOX_WRONG_TYPE);
    EXPECT_EQ(mox_get_text(table.get(), nullptr, 0, MOX_STR("None"), buffer, 1, &size, problem),
              MOX_NO_SUCH_KEY);
    EXPECT_EQ(problem.Text(), "None: there is no such entry");
    EXPECT_EQ(mox_get_text(table.get(), "\xFF", 1, MOX_STR("I"), buffer, 1, &size, problem),
              MOX_INVALID_TEXT);
    EXPECT_EQ(problem.Text(), "the section is not UTF-8, or contains a zero");
    EXPECT_EQ(mox_contains(table.get(), "\xFF", 1, MOX_STR("I"), &truth, problem), MOX_INVALID_TEXT);
    EXPECT_TRUE(number == 2.5 && truth == 7 && size == 9 && buffer[0] == '?');
}

TEST(HostValues, ReadsOfSettingsSayWhyTheyFail) {
    const Document document = Settings(kValues);
    const Problem problem;
    size_t size = 9;
    char buffer[] = "?";
    const auto get = [&](std::string_view section, std::string_view name) {
        const mox_status status = mox_get_text(document.get(), section.data(), section.size(), name.data(),
                                               name.size(), buffer, sizeof buffer, &size, problem);
        EXPECT_EQ(problem.Status(), status);
        return problem.Text();
    };
    EXPECT_EQ(get("S", "X"), "S/X: the key has no known type, so that it cannot be read");
    EXPECT_EQ(get("S", "None"), "S/None: there is no such key");
    EXPECT_EQ(get("R", "I"), "R/I: there is no such section");
    EXPECT_EQ(get("S", ""), "S: the key is empty");
    EXPECT_EQ(get("S", "\xFF"), "S: the key is not UTF-8, contains a zero, or is null");
    EXPECT_EQ(get("S", std::string(260, 'n')).substr(260),
              "nn: the key has no known type, so that it cannot be read")
        << "which element cannot be read, no record tells of such a name";
    EXPECT_TRUE(size == 9 && buffer[0] == '?');
    double number = 2.5;
    EXPECT_EQ(mox_get_double(document.get(), MOX_STR("S"), MOX_STR("X"), &number, problem), MOX_UNREADABLE);
    EXPECT_EQ(mox_get_double(document.get(), MOX_STR("S"), MOX_STR("None"), &number, problem),
              MOX_NO_SUCH_KEY);
    EXPECT_EQ(mox_get_double(document.get(), MOX_STR("R"), MOX_STR("D"), &number, problem),
              MOX_NO_SUCH_SECTION);
    EXPECT_EQ(mox_get_double(document.get(), MOX_STR("S"), MOX_STR("T"), &number, problem), MOX_WRONG_TYPE);
    EXPECT_EQ(problem.Text(), "S/T: the value \"a b\" is not a decimal number");
    EXPECT_EQ(number, 2.5);
}

TEST(HostValues, NamesOfMoreThan259UnitsAreCutInLists) {
    const std::string cut(259, 'n');
    const Document document = Settings("");
    ASSERT_EQ(SetText(document, "S", cut + "1", "one"), MOX_OK);
    ASSERT_EQ(SetText(document, "S", "short", "two"), MOX_OK);
    EXPECT_EQ(EntryNames(document, "S"), (std::vector<std::string>{cut, "short"}));
    EXPECT_EQ(TextOf(document, "S", cut + "1"), "one");
    EXPECT_EQ(TextOf(document, "S", cut), "MOX_NO_SUCH_KEY");
    // An entry of such a name cannot be told from others by a record.
    const Problem problem;
    EXPECT_EQ(mox_remove(document.get(), MOX_STR("S"), (cut + "1").data(), 260, 0, problem),
              MOX_INVALID_TEXT);
    EXPECT_EQ(problem.Text(), "S/" + cut + "1: the name has more than 259 units");
    EXPECT_EQ(mox_remove(document.get(), MOX_STR("S"), (cut + "1").data(), 260, MOX_ALL, problem), MOX_OK);
    EXPECT_EQ(EntryNames(document, "S"), std::vector<std::string>{"short"});
}

TEST(HostValues, ARemovalOfAllSaysWhatIsMissing) {
    const Document document = Settings(kValues);
    const Problem problem;
    EXPECT_EQ(mox_remove(document.get(), MOX_STR("S"), MOX_STR("None"), MOX_ALL, problem), MOX_NO_SUCH_KEY);
    EXPECT_EQ(mox_remove(document.get(), MOX_STR("R"), MOX_STR("I"), MOX_ALL, problem), MOX_NO_SUCH_SECTION);
    EXPECT_EQ(mox_remove(document.get(), MOX_STR("R"), MOX_STR("I"), 0, problem), MOX_NO_SUCH_SECTION);
    EXPECT_EQ(mox_clear(document.get(), MOX_STR("R"), problem), MOX_NO_SUCH_SECTION);
    EXPECT_EQ(mox_rename(document.get(), MOX_STR("R"), MOX_STR("I"), MOX_STR("J"), problem),
              MOX_NO_SUCH_SECTION);
    EXPECT_EQ(EntryNames(document, "S"), (std::vector<std::string>{"I", "D", "B", "H", "T", "U"}));
}

}  // namespace
}  // namespace c_host
