// Typed access: get, getOr and set of Profile, Section and Table, and Entry::valueAs.
#include <array>
#include <clocale>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tests/front/front_support.h"

namespace {

using front_tests::ProfileWith;
using front_tests::SavedBytes;
using front_tests::TableWith;
using mox::Problem;
using mox::Profile;
using mox::Reason;
using mox::Section;
using mox::Table;
using mox::ValueType;
using Bytes = std::vector<std::uint8_t>;

Profile WithValue(const std::string& value) {
    return ProfileWith("<Var name=\"K\" type=\"long\"><Value>" + value + "</Value></Var>");
}

// What a strict read of the text gives: by Profile, Section and Entry alike.
template <class T>
std::optional<T> Read(const std::string& text, Reason* reason = nullptr) {
    const Profile profile = WithValue(text);
    Problem problem;
    const std::optional<T> value = profile.get<T>("S", "K", &problem);
    EXPECT_EQ(value.has_value(), !problem) << text;
    const Section section = *profile.findSection("S");
    Problem other;
    EXPECT_EQ(section.get<T>("K", &other), value) << text;
    EXPECT_EQ(other.message, problem.message);
    EXPECT_EQ(section.find("K")->valueAs<T>(), value) << text;
    EXPECT_EQ(section.find16("K")->valueAs<T>(), value) << text;
    EXPECT_EQ(profile.get<T>("S", "K"), value) << text;
    EXPECT_EQ(section.get<T>("K"), value) << text;
    if (reason != nullptr) *reason = problem.reason;
    return value;
}

template <class T>
Reason ReasonOf(const std::string& text) {
    Reason reason = Reason::None;
    EXPECT_EQ(Read<T>(text, &reason), std::nullopt) << text;
    return reason;
}

TEST(FrontTypedValues, WholeNumbersAreReadStrictly) {
    EXPECT_EQ(Read<int>("42"), 42);
    EXPECT_EQ(Read<int>("-7"), -7);
    EXPECT_EQ(Read<int>("+7"), 7);
    EXPECT_EQ(Read<int>("007"), 7);
    EXPECT_EQ(Read<int>("12 \t\n"), 12) << "white space around it does not count";
    for (const char* text : {"abc", "3.7", "3.0", "5e9", "12x", "1 2", "", " ", "-", "+", "+-1", "--1",
                             "0x10", "1,000", "1\xC3\xA4"}) {
        EXPECT_EQ(ReasonOf<int>(text), Reason::WrongType) << text;
        EXPECT_EQ(ReasonOf<std::uint64_t>(text), Reason::WrongType) << text;
    }
}

TEST(FrontTypedValues, NumbersOutsideTheRangeAreNotClipped) {
    EXPECT_EQ(Read<std::int32_t>("-2147483648"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(Read<std::int32_t>("2147483647"), 2147483647);
    EXPECT_EQ(ReasonOf<std::int32_t>("2147483648"), Reason::OutOfRange);
    EXPECT_EQ(ReasonOf<std::int32_t>("-2147483649"), Reason::OutOfRange);
    EXPECT_EQ(ReasonOf<std::int32_t>("5000000000"), Reason::OutOfRange);
    EXPECT_EQ(Read<std::uint32_t>("4294967295"), 4294967295U);
    EXPECT_EQ(ReasonOf<std::uint32_t>("4294967296"), Reason::OutOfRange);
    EXPECT_EQ(ReasonOf<std::uint32_t>("-1"), Reason::OutOfRange);
    EXPECT_EQ(Read<std::uint32_t>("-0"), 0U);
    EXPECT_EQ(Read<std::int64_t>("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(Read<std::int64_t>("9223372036854775807"), 9223372036854775807);
    EXPECT_EQ(ReasonOf<std::int64_t>("9223372036854775808"), Reason::OutOfRange);
    EXPECT_EQ(Read<std::uint64_t>("18446744073709551615"), 18446744073709551615U);
    EXPECT_EQ(ReasonOf<std::uint64_t>("18446744073709551616"), Reason::OutOfRange);
    EXPECT_EQ(ReasonOf<std::uint64_t>("99999999999999999999999"), Reason::OutOfRange);
    EXPECT_EQ(Read<short>("-32768"), -32768);
    EXPECT_EQ(ReasonOf<short>("32768"), Reason::OutOfRange);
    EXPECT_EQ(Read<unsigned short>("65535"), 65535);
    EXPECT_EQ(ReasonOf<unsigned short>("65536"), Reason::OutOfRange);
}

TEST(FrontTypedValues, AMessageNamesTheValueAndTheRule) {
    Problem problem;
    EXPECT_EQ(WithValue("5e9").get<int>("S", "K", &problem), std::nullopt);
    EXPECT_EQ(problem.message, "S/K: the value \"5e9\" is not a whole number");
    EXPECT_EQ(WithValue("70000").get<short>("S", "K", &problem), std::nullopt);
    EXPECT_EQ(problem.message, "S/K: the value \"70000\" is not from -32768 to 32767");
    EXPECT_EQ(WithValue("maybe").get<bool>("S", "K", &problem), std::nullopt);
    EXPECT_EQ(problem.message, "S/K: the value \"maybe\" is not 1, 0, true or false");
    EXPECT_EQ(WithValue("3,7").get<double>("S", "K", &problem), std::nullopt);
    EXPECT_EQ(problem.message, "S/K: the value \"3,7\" is not a decimal number");
    EXPECT_EQ(WithValue("1e999").get<double>("S", "K", &problem), std::nullopt);
    EXPECT_EQ(problem.message, "S/K: the value \"1e999\" is out of the range of a double");
    EXPECT_EQ(WithValue("012").get<Bytes>("S", "K", &problem), std::nullopt);
    EXPECT_EQ(problem.message, "S/K: the value \"012\" does not consist of pairs of hexadecimal digits");
    EXPECT_EQ(WithValue(std::string(100, 'x')).get<int>("S", "K", &problem), std::nullopt);
    EXPECT_EQ(problem.message, "S/K: the value \"" + std::string(60, 'x') + "...\" is not a whole number");
    EXPECT_EQ(WithValue("1").get<int>("S", "L", &problem), std::nullopt);
    EXPECT_EQ(problem.message, "S/L: there is no such key");
}

TEST(FrontTypedValues, TruthValues) {
    EXPECT_EQ(Read<bool>("1"), true);
    EXPECT_EQ(Read<bool>("0"), false);
    EXPECT_EQ(Read<bool>("true"), true);
    EXPECT_EQ(Read<bool>("false"), false);
    EXPECT_EQ(Read<bool>("1 "), true);
    for (const char* text : {"", "2", "yes", "TRUE", "10", "-1", "0.0"})
        EXPECT_EQ(ReasonOf<bool>(text), Reason::WrongType) << text;
}

TEST(FrontTypedValues, DoublesAreReadStrictly) {
    EXPECT_EQ(Read<double>("3.7"), 3.7);
    EXPECT_EQ(Read<double>("-0.5e-3"), -0.0005);
    EXPECT_EQ(Read<double>("+2."), 2.0);
    EXPECT_EQ(Read<double>(".5"), 0.5);
    EXPECT_EQ(Read<double>("5"), 5.0);
    EXPECT_EQ(Read<double>("1E5 "), 1e5);
    EXPECT_EQ(Read<double>("4.9406564584124654e-324"), 5e-324);
    for (const char* text : {"", "abc", "3,7", "3.7mm", "1e", "e5", ".", "nan", "inf", "-infinity", "0x1p3",
                             "1 e5", "--1", "+-1", "1e+-5"})
        EXPECT_EQ(ReasonOf<double>(text), Reason::WrongType) << text;
    EXPECT_EQ(ReasonOf<double>("1e309"), Reason::OutOfRange);
    EXPECT_EQ(ReasonOf<double>("-1e309"), Reason::OutOfRange);
    EXPECT_EQ(ReasonOf<double>("1e-400"), Reason::OutOfRange);
}

TEST(FrontTypedValues, BytesAreReadStrictly) {
    EXPECT_EQ(Read<Bytes>("0010FFab"), (Bytes{0, 0x10, 0xFF, 0xAB}));
    EXPECT_EQ(Read<Bytes>(""), Bytes());
    EXPECT_EQ(Read<Bytes>("00 "), Bytes{0});
    for (const char* text : {"0", "012", "0G", "G0", "00 11", "0x00", "\xC3\xA4"})
        EXPECT_EQ(ReasonOf<Bytes>(text), Reason::WrongType) << text;
}

TEST(FrontTypedValues, TextsAreReadAsTheyAre) {
    EXPECT_EQ(Read<std::string>("a  "), "a  ");
    EXPECT_EQ(Read<std::u16string>("a"), u"a");
    EXPECT_EQ(Read<std::string>(""), "");
}

TEST(FrontTypedValues, AFallbackServesWhateverIsMissing) {
    const Profile profile = WithValue("abc");
    EXPECT_EQ(profile.get<int>("S", "K", 5), 5);
    EXPECT_EQ(profile.get<int>("S", "L", 0), 0);
    EXPECT_EQ(profile.get<std::int64_t>("S", "L", 0), 0);
    EXPECT_EQ(profile.get<bool>("S", "L", true), true);
    EXPECT_EQ(profile.get<double>("S", "L", 1.5), 1.5);
    EXPECT_EQ(profile.get<std::string>("S", "L", "none"), "none");
    EXPECT_EQ(profile.get<std::string>("S", "K", "none"), "abc");
    Problem problem;
    EXPECT_EQ(profile.getOr<int>("S", "K", 5, &problem), 5);
    EXPECT_EQ(problem.reason, Reason::WrongType);
    EXPECT_EQ(profile.getOr<int>("T", "K", 5, &problem), 5);
    EXPECT_EQ(problem.reason, Reason::NoSuchSection);
    EXPECT_EQ(profile.getOr<std::string>("S", "K", "none", &problem), "abc");
    EXPECT_FALSE(problem);
    const Section section = *profile.findSection("S");
    EXPECT_EQ(section.get<int>("K", 5), 5);
    EXPECT_EQ(section.get<bool>("K", false), false);
    EXPECT_EQ(section.getOr<int>("L", 6, &problem), 6);
    EXPECT_EQ(problem.reason, Reason::NoSuchKey);
    EXPECT_EQ(profile.get<bool>("S", "K", nullptr), std::nullopt) << "no fallback, and nobody asks why";
}

// What a new key holds after set, by Profile, Section and Table alike.
template <class T>
void ExpectNew(const T& value, const std::string& text, ValueType type) {
    Profile profile;
    Problem problem;
    ASSERT_TRUE(profile.set("S", "K", value, &problem)) << problem.message;
    EXPECT_FALSE(problem);
    EXPECT_EQ(profile.getString("S", "K"), text);
    Section section = *profile.findSection("S");
    EXPECT_EQ(section.find("K")->type, type);
    ASSERT_TRUE(section.set("L", value));
    EXPECT_EQ(profile.getString("S", "L"), text);
    EXPECT_EQ(section.find("L")->type, type);
    Table table = TableWith("");
    ASSERT_TRUE(table.set("K", value));
    EXPECT_EQ(table.find("K")->value, text);
    EXPECT_EQ(table.find("K")->type, type);
}

template <class T>
void ExpectReadBack(const T& value, const std::string& text, ValueType type) {
    ExpectNew(value, text, type);
    Profile profile;
    ASSERT_TRUE(profile.set("S", "K", value));
    EXPECT_EQ(profile.get<T>("S", "K"), value);
    EXPECT_EQ(profile.findSection("S")->get<T>("K"), value);
}

TEST(FrontTypedValues, NewKeysGetTheFittingType) {
    ExpectReadBack(true, "1", ValueType::Bool);
    ExpectReadBack(false, "0", ValueType::Bool);
    ExpectReadBack(short{-5}, "-5", ValueType::Short);
    ExpectReadBack(static_cast<unsigned short>(65535), "65535", ValueType::UShort);
    ExpectReadBack(-2147483647 - 1, "-2147483648", ValueType::Long);
    ExpectReadBack(4000000000U, "4000000000", ValueType::ULong);
    ExpectReadBack(std::int64_t{-5000000000}, "-5000000000", ValueType::String);
    ExpectReadBack(std::uint64_t{18446744073709551615U}, "18446744073709551615", ValueType::String);
    ExpectReadBack(5000000000LL, "5000000000", ValueType::String);
    ExpectReadBack(0.1, "0.1", ValueType::Double);
    ExpectReadBack(-1e300, "-1e+300", ValueType::Double);
    ExpectReadBack(std::string("t"), "t", ValueType::String);
    ExpectReadBack(std::u16string(u"\u00E4"), "\xC3\xA4", ValueType::String);
    ExpectReadBack(Bytes{1, 0xAB}, "01AB", ValueType::String);
}

TEST(FrontTypedValues, TextsAndBytesOfEveryKindAreWritten) {
    ExpectNew("literal", "literal", ValueType::String);
    const char* const pointer = "pointer";
    ExpectNew(pointer, "pointer", ValueType::String);
    ExpectNew(u"\u00E4", "\xC3\xA4", ValueType::String);
    ExpectNew(std::string_view("view"), "view", ValueType::String);
    ExpectNew(std::u16string_view(u"view"), "view", ValueType::String);
    ExpectNew(std::filesystem::path("a.xml"), "a.xml", ValueType::String);
    ExpectNew(mox::Text("text"), "text", ValueType::String);
    ExpectNew(std::array<std::uint8_t, 2>{0, 0xFF}, "00FF", ValueType::String);
    const std::array<std::byte, 2> bytes{std::byte{0x0A}, std::byte{0xB0}};
    ExpectNew(bytes, "0AB0", ValueType::String);
    ExpectNew(std::span<const std::byte>(bytes), "0AB0", ValueType::String);
    Profile profile;
    EXPECT_TRUE(profile.setData("S", "K", std::span<const std::byte>(bytes)));
    EXPECT_EQ(profile.getString("S", "K"), "0AB0");
}

TEST(FrontTypedValues, AnExistingKeyKeepsItsType) {
    Profile profile = ProfileWith("<Var name=\"K\" type=\"ushort\" id=\"7\"><Value>1</Value></Var>");
    EXPECT_TRUE(profile.set("S", "K", 2.5));
    EXPECT_EQ(profile.findSection("S")->find("K")->type, ValueType::UShort);
    EXPECT_TRUE(profile.findSection("S")->set("K", true));
    EXPECT_EQ(profile.findSection("S")->find("K")->type, ValueType::UShort);
    EXPECT_EQ(profile.findSection("S")->find("K")->id, 7U);
    EXPECT_EQ(profile.get<int>("S", "K"), 1);
}

TEST(FrontTypedValues, AKeyThatNoRecordCanNameIsAString) {
    const std::string name(260, 'n');
    Profile profile;
    EXPECT_TRUE(profile.set("S", name, 5));
    EXPECT_EQ(profile.get<int>("S", name), 5);
    EXPECT_EQ(profile.findSection("S")->list().at(0).type, ValueType::String);
    EXPECT_TRUE(profile.set("S", std::string(259, 'n'), 6));
    EXPECT_EQ(profile.findSection("S")->list().at(1).type, ValueType::Long);
}

TEST(FrontTypedValues, ANewKeyFollowsATableThatKeepsValuesInThePresentationData) {
    Profile profile =
        ProfileWith("<Var name=\"A\" type=\"long\"><UI control=\"num\"><Value>1</Value></UI></Var>");
    EXPECT_TRUE(profile.set("S", "B", 2));
    EXPECT_EQ(profile.get<int>("S", "B"), 2);
    Section section = *profile.findSection("S");
    EXPECT_TRUE(section.set("B", 3));
    EXPECT_EQ(profile.get<int>("S", "B"), 3);
    EXPECT_FALSE(section.set("A", ""));
    EXPECT_EQ(profile.getString("S", "A"), "1");
}

TEST(FrontTypedValues, NoNumberIsNotWritten) {
    Profile profile;
    const std::string before = SavedBytes(profile);
    for (const double value :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()}) {
        Problem problem;
        EXPECT_FALSE(profile.set("S", "K", value, &problem));
        EXPECT_EQ(problem.reason, Reason::OutOfRange);
        EXPECT_EQ(problem.message, "S/K: the value is infinite or not a number");
    }
    EXPECT_EQ(SavedBytes(profile), before);
}

TEST(FrontTypedValues, SetIntTakesWhatFits) {
    Profile profile;
    EXPECT_TRUE(profile.setInt("S", "K", -5));
    EXPECT_EQ(profile.getInt("S", "K"), -5);
    EXPECT_TRUE(profile.setInt("S", "K", static_cast<unsigned short>(65535)));
    EXPECT_EQ(profile.getInt("S", "K"), 65535);
    EXPECT_EQ(profile.findSection("S")->find("K")->type, ValueType::String) << "as the export does";
}

// ---- doubles, by the standard library and by the functions of C

bool HasSameBits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(FrontTypedValues, EveryDoubleReadsBack) {
    std::mt19937_64 random(20240318);
    std::vector<double> values = {0.0,
                                  -0.0,
                                  0.1,
                                  1.0 / 3,
                                  1e22,
                                  1e23,
                                  123456789012345678.0,
                                  std::numeric_limits<double>::max(),
                                  std::numeric_limits<double>::min(),
                                  std::numeric_limits<double>::denorm_min(),
                                  -std::numeric_limits<double>::epsilon()};
    while (values.size() < 20000) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value)) values.push_back(value);
    }
    for (const double value : values) {
        double read = 1;
        const std::string text = mox::front::FormatDouble(value);
        ASSERT_EQ(mox::front::ParseDouble(text, read).reason, Reason::None) << text;
        ASSERT_TRUE(HasSameBits(read, value)) << text;
        const std::string textInC = mox::front::FormatDoubleInC(value);
        ASSERT_TRUE(mox::front::IsDecimal(textInC)) << textInC;
        ASSERT_TRUE(mox::front::ParseDoubleInC(textInC, read)) << textInC;
        ASSERT_TRUE(HasSameBits(read, value)) << textInC;
        ASSERT_LE(text.size(), textInC.size() + 1);
    }
    EXPECT_EQ(mox::front::FormatDouble(5.0), "5");
    EXPECT_EQ(mox::front::FormatDouble(0.1), "0.1");
    EXPECT_EQ(mox::front::FormatDoubleInC(0.1), "0.1");
}

TEST(FrontTypedValues, TheFunctionsOfCKnowTheRange) {
    double value = 7;
    EXPECT_FALSE(mox::front::ParseDoubleInC("1e309", value));
    EXPECT_FALSE(mox::front::ParseDoubleInC("-1e309", value));
    EXPECT_FALSE(mox::front::ParseDoubleInC("1e-400", value));
    EXPECT_TRUE(mox::front::ParseDoubleInC("0e-400", value));
    EXPECT_TRUE(mox::front::ParseDoubleInC("+1.5", value));
    EXPECT_EQ(value, 1.5);
}

TEST(FrontTypedValues, TheLocaleOfTheProgramDoesNotMatter) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "German_Germany.1252"}) {
        if (std::setlocale(LC_ALL, name) == nullptr) continue;
        EXPECT_EQ(Read<double>("3.7"), 3.7);
        EXPECT_EQ(mox::front::FormatDouble(3.75), "3.75");
        EXPECT_EQ(mox::front::FormatDoubleInC(3.75), "3.75");
        double value = 0;
        EXPECT_TRUE(mox::front::ParseDoubleInC("3.75", value));
        EXPECT_EQ(value, 3.75);
    }
    std::setlocale(LC_ALL, before.c_str());
}

}  // namespace
