// The code tables, where the exports do not show them: all codes without a name, what a refusal leaves, and access
// levels. That every name has its code and every code its name is in tests/host/table_entry_forms_test.cpp,
// table_add_test.cpp and table_ui_test.cpp.
#include "mox_xmlApi/entries/entry_codes.h"

#include <gtest/gtest.h>

#include "tests/unit/xml_support.h"

namespace mox::test {
namespace {

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

TEST(ValueTypes, QualifiersAddTheirBit) {
    EXPECT_EQ(TypeFrom("byte"_w, WideView()), "17 ok");
    EXPECT_EQ(TypeFrom("byte"_w, "array"_w), "8209 ok");
    EXPECT_EQ(TypeFrom("byte"_w, "vector"_w), "4113 ok");
    EXPECT_EQ(TypeTo(17), "byte/ ok");
    EXPECT_EQ(TypeTo(8209), "byte/array ok");
    EXPECT_EQ(TypeTo(4113), "byte/vector ok");
    EXPECT_EQ(TypeTo(0x3011), "byte/vector ok");
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

TEST(ValueTypes, TenCodesHaveAName) {
    std::string known;
    for (unsigned code = 0; code < 0x1000; ++code) {
        if (TypeTo(static_cast<std::uint16_t>(code)) != "old/ refused") known += std::to_string(code) + " ";
    }
    EXPECT_EQ(known, "2 3 5 8 11 16 17 18 19 31 ");
}

TEST(Controls, FifteenCodesAreNotText) {
    std::string others;
    for (unsigned code = 0; code <= 0xFFFF; ++code) {
        if (ControlKindToName(static_cast<std::uint16_t>(code)) != "text"_w)
            others += std::to_string(code) + " ";
    }
    EXPECT_EQ(others, "1 4 5 7 8 12 14 15 16 17 18 19 20 24 26 ");
}

TEST(Controls, UnknownNameIsText) {
    for (const WideView name : {""_w, "Text"_w, "num "_w, "prop"_w, "20"_w})
        EXPECT_EQ(ControlKindFromName(name), 2);
}

TEST(Owners, UnknownNameIsApp) {
    for (const WideView name : {"xyz"_w, "App"_w, "dwg "_w, " "_w, "4"_w})
        EXPECT_EQ(OwnerFromName(name), 1);
    EXPECT_EQ(OwnerFromName(""_w), 0);
}

TEST(Owners, ThreeCodesHaveAName) {
    std::string names;
    for (unsigned code = 0; code <= 0xFF; ++code) {
        const WideView name = OwnerToName(static_cast<std::uint8_t>(code));
        if (!name.empty()) names += std::to_string(code) + Shown(name) + " ";
    }
    EXPECT_EQ(names, "1app 2dwg 4erg ");
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
