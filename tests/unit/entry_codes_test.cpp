#include "mox_xmlApi/entries/entry_codes.h"

#include <array>
#include <gtest/gtest.h>
#include <set>
#include <utility>

#include "tests/unit/xml_support.h"

namespace mox::test {
namespace {

constexpr std::array<std::pair<WideView, std::uint16_t>, 10> kTypes = {{{"short"_w, 2},
                                                                        {"long"_w, 3},
                                                                        {"double"_w, 5},
                                                                        {"string"_w, 8},
                                                                        {"bool"_w, 11},
                                                                        {"char"_w, 16},
                                                                        {"byte"_w, 17},
                                                                        {"ushort"_w, 18},
                                                                        {"ulong"_w, 19},
                                                                        {"ucstring"_w, 31}}};

constexpr std::array<std::pair<WideView, std::uint16_t>, 14> kControls = {{{"num"_w, 1},
                                                                           {"text"_w, 2},
                                                                           {"switch"_w, 4},
                                                                           {"no_edit"_w, 5},
                                                                           {"rgb"_w, 7},
                                                                           {"button"_w, 8},
                                                                           {"text_array"_w, 12},
                                                                           {"named_array"_w, 14},
                                                                           {"switch_array"_w, 15},
                                                                           {"radio_array"_w, 16},
                                                                           {"state"_w, 17},
                                                                           {"named_list_array"_w, 18},
                                                                           {"radio"_w, 19},
                                                                           {"prop_array"_w, 20}}};

// "<code> ok" or "<code> refused", with 99 as the code beforehand.
std::string TypeFrom(WideView name, WideView qualifier) {
    std::uint16_t code = 99;
    const bool known = ValueTypeFromName(name, qualifier, code);
    return std::to_string(code) + (known ? " ok" : " refused");
}

// "<name>/<qualifier> ok" or "... refused", with "old" as both beforehand.
std::string TypeTo(std::uint16_t code) {
    WideView name = "old"_w;
    WideView qualifier = "old"_w;
    const bool known = ValueTypeToName(code, name, qualifier);
    return Shown(name) + "/" + Shown(qualifier) + (known ? " ok" : " refused");
}

TEST(ValueTypes, EveryNameGivesItsCodeAndBack) {
    for (const auto& [name, code] : kTypes) {
        EXPECT_EQ(TypeFrom(name, WideView()), std::to_string(code) + " ok");
        EXPECT_EQ(TypeTo(code), Shown(name) + "/ ok");
    }
}

TEST(ValueTypes, QualifiersAddTheirBit) {
    for (const auto& [name, code] : kTypes) {
        EXPECT_EQ(TypeFrom(name, "array"_w), std::to_string(code + 0x2000) + " ok");
        EXPECT_EQ(TypeFrom(name, "vector"_w), std::to_string(code + 0x1000) + " ok");
        EXPECT_EQ(TypeTo(static_cast<std::uint16_t>(code + 0x2000)), Shown(name) + "/array ok");
        EXPECT_EQ(TypeTo(static_cast<std::uint16_t>(code + 0x1000)), Shown(name) + "/vector ok");
    }
}

TEST(ValueTypes, VectorWinsOverArray) {
    EXPECT_EQ(TypeTo(0x3005), "double/vector ok");
}

TEST(ValueTypes, UnknownNameIsRefusedAndLeavesTheCode) {
    for (const WideView name : {""_w, "float"_w, "Long"_w, "long "_w, "lon"_w, "3"_w}) {
        EXPECT_EQ(TypeFrom(name, WideView()), "99 refused");
        EXPECT_EQ(TypeFrom(name, "array"_w), "99 refused");
    }
}

TEST(ValueTypes, UnknownQualifierIsRefusedWithThePlainCodeStored) {
    for (const WideView qualifier : {"list"_w, "Array"_w, "vectors"_w, " "_w})
        EXPECT_EQ(TypeFrom("long"_w, qualifier), "3 refused");
}

TEST(ValueTypes, UnknownCodeIsRefusedAndLeavesTheName) {
    EXPECT_EQ(TypeTo(0), "old/ refused");
    EXPECT_EQ(TypeTo(4), "old/ refused");
    EXPECT_EQ(TypeTo(0x4003), "old/ refused");
    EXPECT_EQ(TypeTo(0x2000), "old/array refused");
    EXPECT_EQ(TypeTo(0x1004), "old/vector refused");
    EXPECT_EQ(TypeTo(0xFFFF), "old/vector refused");
}

TEST(ValueTypes, NoOtherCodeHasAName) {
    std::size_t known = 0;
    for (unsigned code = 0; code < 0x1000; ++code) {
        WideView name;
        WideView qualifier;
        known += ValueTypeToName(static_cast<std::uint16_t>(code), name, qualifier) ? 1 : 0;
    }
    EXPECT_EQ(known, kTypes.size());
}

TEST(Controls, EveryNameGivesItsCodeAndBack) {
    for (const auto& [name, code] : kControls) {
        EXPECT_EQ(ControlKindFromName(name), code);
        EXPECT_EQ(ControlKindToName(code), name);
    }
}

TEST(Controls, UnknownNameIsText) {
    for (const WideView name : {""_w, "Text"_w, "num "_w, "prop"_w, "20"_w})
        EXPECT_EQ(ControlKindFromName(name), 2);
}

TEST(Controls, TwoMoreCodesArePropArray) {
    EXPECT_EQ(ControlKindToName(24), "prop_array"_w);
    EXPECT_EQ(ControlKindToName(26), "prop_array"_w);
}

TEST(Controls, EveryOtherCodeIsText) {
    std::set<unsigned> named = {24, 26};
    for (const auto& [name, code] : kControls)
        named.insert(code);
    for (unsigned code = 0; code <= 0xFFFF; ++code) {
        if (named.count(code) == 0) {
            ASSERT_EQ(ControlKindToName(static_cast<std::uint16_t>(code)), "text"_w) << code;
        }
    }
}

TEST(Owners, NamesAndCodes) {
    EXPECT_EQ(OwnerFromName("app"_w), 1);
    EXPECT_EQ(OwnerFromName("dwg"_w), 2);
    EXPECT_EQ(OwnerFromName("erg"_w), 4);
    EXPECT_EQ(OwnerFromName(""_w), 0);
    EXPECT_EQ(OwnerToName(1), "app"_w);
    EXPECT_EQ(OwnerToName(2), "dwg"_w);
    EXPECT_EQ(OwnerToName(4), "erg"_w);
}

TEST(Owners, UnknownNameIsApp) {
    for (const WideView name : {"xyz"_w, "App"_w, "dwg "_w, " "_w, "4"_w})
        EXPECT_EQ(OwnerFromName(name), 1);
}

TEST(Owners, UnknownCodeHasTheEmptyName) {
    for (unsigned code = 0; code <= 0xFF; ++code) {
        if (code != 1 && code != 2 && code != 4) {
            EXPECT_EQ(OwnerToName(static_cast<std::uint8_t>(code)), WideView()) << code;
        }
    }
}

TEST(Access, NamesAndCodes) {
    EXPECT_EQ(AccessFromName("editable"_w), 0);
    EXPECT_EQ(AccessFromName("visible"_w), 1);
    EXPECT_EQ(AccessFromName("hidden"_w), 2);
    EXPECT_EQ(AccessToName(0), "editable"_w);
    EXPECT_EQ(AccessToName(1), "visible"_w);
    EXPECT_EQ(AccessToName(2), "hidden"_w);
}

TEST(Access, AnythingElseIsEditable) {
    for (const WideView name : {""_w, "Hidden"_w, "xyz"_w, "2"_w})
        EXPECT_EQ(AccessFromName(name), 0);
    for (unsigned code = 3; code <= 0xFF; ++code)
        EXPECT_EQ(AccessToName(static_cast<std::uint8_t>(code)), "editable"_w) << code;
}

}  // namespace
}  // namespace mox::test
