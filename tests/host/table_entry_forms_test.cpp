// What the records give of an entry's XML form, the same over both kinds of table handles.
#include "tests/host/table_support.h"

namespace host {
namespace {

template <class Kind>
class TableEntryForms : public testing::Test {
  protected:
    // The value record of an entry named k with these attributes.
    static std::string Value(std::string_view attributes, std::string_view children = {}) {
        return GetValue(Kind(Entry(attributes, children)), "k"_w);
    }
    // The presentation record of an entry named k with this "UI".
    static std::string Ui(std::string_view attributes, std::string_view children = {}) {
        const std::string block =
            std::string("<UI ").append(attributes).append(">").append(children).append("</UI>");
        return GetUi(Kind(Entry("type=\"long\"", block)), "k"_w);
    }
    static std::string Entry(std::string_view attributes, std::string_view children) {
        return std::string("<Var name=\"k\" ")
            .append(attributes)
            .append(">")
            .append(children)
            .append("</Var>");
    }
};
TYPED_TEST_SUITE(TableEntryForms, TableKinds, TableKindNames);

TYPED_TEST(TableEntryForms, EveryTypeHasItsCode) {
    for (const auto& [name, code] : {std::pair{"short", "0002"},
                                     {"long", "0003"},
                                     {"double", "0005"},
                                     {"string", "0008"},
                                     {"bool", "000B"},
                                     {"char", "0010"},
                                     {"byte", "0011"},
                                     {"ushort", "0012"},
                                     {"ulong", "0013"},
                                     {"ucstring", "001F"}}) {
        EXPECT_EQ(this->Value(std::string("type=\"") + name + "\""), std::string("k #0 ") + code + " ''");
    }
}

TYPED_TEST(TableEntryForms, QualifiersAddTheirBits) {
    EXPECT_EQ(this->Value("type=\"long\" array=\"vector\""), "k #0 1003 ''");
    EXPECT_EQ(this->Value("type=\"long\" array=\"array\""), "k #0 2003 ''");
    EXPECT_EQ(this->Value("array=\"vector\" type=\"double\""), "k #0 1005 ''");
    EXPECT_EQ(this->Value("type=\"long\" array=\"\""), "k #0 0003 ''");
}

TYPED_TEST(TableEntryForms, UnknownQualifierLeavesThePlainType) {
    EXPECT_EQ(this->Value("type=\"long\" array=\"list\""), "k #0 0003 ''");
}

TYPED_TEST(TableEntryForms, EntryWithoutKnownTypeCannotBeRead) {
    EXPECT_EQ(this->Value("type=\"float\"", "<Value>1</Value>"), "none");
    EXPECT_EQ(this->Value("", "<Value>1</Value>"), "none");
    EXPECT_EQ(this->Value("type=\"\""), "none");
    EXPECT_EQ(this->Value("type=\"Long\""), "none");
    EXPECT_EQ(this->Value("array=\"array\""), "none");
}

TYPED_TEST(TableEntryForms, IdIsReadUnsigned) {
    EXPECT_EQ(this->Value("id=\"12abc\" type=\"long\""), "k #12 0003 ''");
    EXPECT_EQ(this->Value("id=\"-2147483648\" type=\"long\""), "k #2147483648 0003 ''");
    EXPECT_EQ(this->Value("id=\"4294967296\" type=\"long\""), "k #4294967295 0003 ''");
    EXPECT_EQ(this->Value("id=\"x\" type=\"long\""), "k #0 0003 ''");
}

TYPED_TEST(TableEntryForms, ValueIsTheTextOfTheChild) {
    EXPECT_EQ(this->Value("type=\"long\"", "<Value>a &lt;&amp;&gt; b</Value>"), "k #0 0003 'a <&> b'");
    EXPECT_EQ(this->Value("type=\"long\"", "<Value/>"), "k #0 0003 ''");
    EXPECT_EQ(this->Value("type=\"long\"", "text"), "k #0 0003 ''");
}

TYPED_TEST(TableEntryForms, LastOfSeveralValuesWins) {
    EXPECT_EQ(this->Value("type=\"long\"", "<Value>1</Value><Value>2</Value>"), "k #0 0003 '2'");
    EXPECT_EQ(this->Value("type=\"long\"", "<Value>1</Value><Value/>"), "k #0 0003 ''");
}

TYPED_TEST(TableEntryForms, ValueAttributeStandsInForTheChild) {
    EXPECT_EQ(this->Value("type=\"long\" Value=\"5\""), "k #0 0003 '5'");
    EXPECT_EQ(this->Value("type=\"long\" Value=\"5\"", "<Value>6</Value>"), "k #0 0003 '6'");
}

TYPED_TEST(TableEntryForms, OtherChildrenAreSkipped) {
    EXPECT_EQ(this->Value("type=\"long\"",
                          "<!-- c --><value>1</value><Values>2</Values><Group><Value>3</Value></Group>"
                          "<Value>4</Value><!-- d --><Comment>5</Comment>"),
              "k #0 0003 '4'");
}

TYPED_TEST(TableEntryForms, OtherAttributesAreSkipped) {
    EXPECT_EQ(this->Value("eud=\"true\" type=\"long\" x=\"1\" Name=\"n\" ID=\"7\""), "k #0 0003 ''");
    EXPECT_EQ(this->Ui("id=\"7\" type=\"bool\" Control=\"num\""), "k #0 0003 '' control 65535");
}

TYPED_TEST(TableEntryForms, EntryWithoutUiHasControl65535) {
    EXPECT_EQ(GetUi(TypeParam(this->Entry("type=\"long\"", "<Value>1</Value>")), "k"_w),
              "k #0 0003 '' control 65535");
}

TYPED_TEST(TableEntryForms, EveryControlHasItsCode) {
    for (const auto& [name, code] : {std::pair{"num", 1},
                                     {"text", 2},
                                     {"switch", 4},
                                     {"no_edit", 5},
                                     {"rgb", 7},
                                     {"button", 8},
                                     {"text_array", 12},
                                     {"named_array", 14},
                                     {"switch_array", 15},
                                     {"radio_array", 16},
                                     {"state", 17},
                                     {"named_list_array", 18},
                                     {"radio", 19},
                                     {"prop_array", 20}}) {
        EXPECT_EQ(this->Ui(std::string("control=\"") + name + "\""),
                  "k #0 0003 '' control " + std::to_string(code));
    }
}

TYPED_TEST(TableEntryForms, UnknownControlIsText) {
    EXPECT_EQ(this->Ui("control=\"Text\""), "k #0 0003 '' control 2");
    EXPECT_EQ(this->Ui("control=\"\""), "k #0 0003 '' control 2");
    EXPECT_EQ(this->Ui("control=\"slider\""), "k #0 0003 '' control 2");
}

TYPED_TEST(TableEntryForms, EveryOwnerHasItsCodeAndAnUnknownOneIsApp) {
    EXPECT_EQ(this->Ui("prov_owner=\"app\""), "k #0 0003 '' control 65535 owner 1");
    EXPECT_EQ(this->Ui("prov_owner=\"dwg\""), "k #0 0003 '' control 65535 owner 2");
    EXPECT_EQ(this->Ui("prov_owner=\"erg\""), "k #0 0003 '' control 65535 owner 4");
    EXPECT_EQ(this->Ui("prov_owner=\"xyz\""), "k #0 0003 '' control 65535 owner 1");
    EXPECT_EQ(this->Ui("prov_owner=\"\""), "k #0 0003 '' control 65535");
}

TYPED_TEST(TableEntryForms, ProviderIndexIsUnsigned) {
    EXPECT_EQ(this->Ui("prov_index=\"12abc\""), "k #0 0003 '' control 65535 index 12");
    EXPECT_EQ(this->Ui("prov_index=\"4294967295\""), "k #0 0003 '' control 65535 index 4294967295");
    EXPECT_EQ(this->Ui("prov_index=\"abc\""), "k #0 0003 '' control 65535");
}

TYPED_TEST(TableEntryForms, UiGivesNameCommentAndValue) {
    EXPECT_EQ(this->Ui("name=\"Shown\"", "<Comment>c</Comment><Value>v</Value>"),
              "k #0 0003 'v' control 65535 comment 'c' user 'Shown'");
    EXPECT_EQ(this->Ui("name=\"\"", "<Comment/><Value/>"), "k #0 0003 '' control 65535");
}

TYPED_TEST(TableEntryForms, LastOfSeveralCommentsAndUiValuesWins) {
    EXPECT_EQ(this->Ui("", "<Comment>1</Comment><Value>2</Value><Comment>3</Comment><Value>4</Value>"),
              "k #0 0003 '4' control 65535 comment '3'");
}

TYPED_TEST(TableEntryForms, CommentAndValueAreAlsoReadAsAttributes) {
    EXPECT_EQ(this->Ui("Comment=\"c\" Value=\"v\""), "k #0 0003 'v' control 65535 comment 'c'");
    EXPECT_EQ(this->Ui("Comment=\"c\" Value=\"v\"", "<Comment/><Value/>"), "k #0 0003 '' control 65535");
}

TYPED_TEST(TableEntryForms, AllUisOfAnEntryAreRead) {
    EXPECT_EQ(
        GetUi(TypeParam(this->Entry("type=\"long\"", "<UI control=\"num\" name=\"a\"/><UI name=\"b\"/>")),
              "k"_w),
        "k #0 0003 '' control 1 user 'b'");
}

TYPED_TEST(TableEntryForms, OtherUiChildrenAreSkipped) {
    EXPECT_EQ(this->Ui("", "<!-- c --><comment>1</comment><UI><Value>2</Value></UI><Value>3</Value>"),
              "k #0 0003 '3' control 65535");
}

TYPED_TEST(TableEntryForms, UiRecordNeverGetsTheEntrysOwnValue) {
    EXPECT_EQ(
        GetUi(TypeParam(this->Entry("type=\"long\"", "<Value>own</Value><UI><Value>ui</Value></UI>")), "k"_w),
        "k #0 0003 'ui' control 65535");
    EXPECT_EQ(GetUi(TypeParam(this->Entry("type=\"long\"", "<Value>own</Value><UI/>")), "k"_w),
              "k #0 0003 '' control 65535");
    EXPECT_EQ(
        GetUi(TypeParam(this->Entry("type=\"ucstring\"", "<Value>own</Value><UI><Value>ui</Value></UI>")),
              "k"_w),
        "k #0 001F 'ui' control 65535");
}

// Both value forms of the value record of the entry named k.
std::string Forms(void* handle, TableEntryUInfoStruct* ui) {
    TableEntryValueInfoStruct value = ValueRecord("k"_w, 0, "old");
    EXPECT_TRUE(xmlTableEntryGet(handle, nullptr, &value, ui));
    return std::string(value.GetVal()) + "|" + Printable(value.GetVal_w());
}

TYPED_TEST(TableEntryForms, EmptyValueFallsBackToTheUiValue) {
    const TypeParam table(this->Entry("type=\"long\"", "<Value/><UI><Value>ui</Value></UI>"));
    TableEntryUInfoStruct ui;
    EXPECT_EQ(Forms(table, nullptr), "ui|ui");
    EXPECT_EQ(Forms(table, &ui), "|");
    EXPECT_EQ(Show(ui), "k #0 0003 'ui' control 65535");
}

TYPED_TEST(TableEntryForms, OwnValueGoesBeforeTheUiValue) {
    EXPECT_EQ(this->Value("type=\"long\"", "<Value>own</Value><UI><Value>ui</Value></UI>"),
              "k #0 0003 'own'");
}

TYPED_TEST(TableEntryForms, WideTextNeverFallsBackToTheUiValue) {
    const TypeParam table(this->Entry("type=\"ucstring\"", "<Value/><UI><Value>ui</Value></UI>"));
    TableEntryUInfoStruct ui;
    EXPECT_EQ(Forms(table, nullptr), "|");
    EXPECT_EQ(Forms(table, &ui), "|");
    EXPECT_EQ(Show(ui), "k #0 001F 'ui' control 65535");
}

TYPED_TEST(TableEntryForms, QualifiedWideTextCountsAsAnyOtherType) {
    EXPECT_EQ(this->Value("type=\"ucstring\" array=\"array\"", "<Value/><UI><Value>ui</Value></UI>"),
              "k #0 201F 'ui'");
}

// Texts with a lone surrogate have no 8-bit form; they come in through a key.
class UnpairedSurrogate : public testing::Test {
  protected:
    UnpairedSurrogate()
        : profile_(LoadEntries("<Var name=\"k\" id=\"5\" type=\"long\"><UI control=\"num\" name=\"n\">"
                               "<Comment>c</Comment><Value>ui</Value></UI></Var>"
                               "<Var name=\"w\" id=\"6\" type=\"ucstring\"/>")),
          section_(xmlGetProfileSection(profile_, "S"_w, nullptr)) {
        EXPECT_EQ(xmlWriteProfileString(profile_, "S"_w, "k"_w, u"\xD800"_w), 1U);
        EXPECT_EQ(xmlWriteProfileString(profile_, "S"_w, "w"_w, u"\xD800"_w), 1U);
    }

    Profile profile_;
    Table section_;
};

TEST_F(UnpairedSurrogate, ValueIsFalseWithTheRecordsFilledInPart) {
    TableEntryValueInfoStruct value = ValueRecord("k"_w, 8, "old");
    TableEntryUInfoStruct ui = UiRecord("old"_w, 7, 8, "old");
    EXPECT_FALSE(xmlTableEntryGet(section_, nullptr, &value, &ui));
    EXPECT_EQ(Show(value), "k #5 0003 'old'");
    EXPECT_EQ(Show(ui), " #0 0000 none control 0");
}

TEST_F(UnpairedSurrogate, ValueDoesNotMatterToThePresentationRecord) {
    std::uint64_t position = 0;
    TableEntryUInfoStruct ui;
    EXPECT_TRUE(xmlTableEntryGet(section_, &position, nullptr, &ui));
    EXPECT_EQ(Show(ui), "k #5 0003 'ui' control 1 comment 'c' user 'n'");
}

TEST_F(UnpairedSurrogate, ValueInAnEnumerationIsPassedOverByTheNextCall) {
    std::uint64_t position = 0;
    TableEntryValueInfoStruct value;
    EXPECT_FALSE(xmlTableEntryGet(section_, &position, &value, nullptr));
    EXPECT_EQ(Show(value), " #5 0003 none");
    EXPECT_TRUE(xmlTableEntryGet(section_, &position, &value, nullptr));
    EXPECT_EQ(value.id, 6U);
    EXPECT_EQ(WideText(value.GetVal_w()), WideText(u"\xD800"_w));
}

TEST_F(UnpairedSurrogate, WideValueIsReadAsItStands) {
    TableEntryValueInfoStruct value = ValueRecord("w"_w, 8, "old");
    EXPECT_TRUE(xmlTableEntryGet(section_, nullptr, &value, nullptr));
    EXPECT_EQ(WideText(value.GetVal_w()), WideText(u"\xD800"_w));
    EXPECT_EQ(value.GetVal(), nullptr);
}

TEST_F(UnpairedSurrogate, WideValueIsWrittenAsItStands) {
    TableEntryValueInfoStruct value = ValueRecord("w"_w, 31, "");
    ASSERT_TRUE(value.SetVal_w(u"\xDC00\xD800"_w));
    ASSERT_TRUE(xmlTableEntrySet(section_, nullptr, &value, nullptr, 0, 0));
    wchar16 text[8];
    EXPECT_EQ(xmlGetProfileString(profile_, "S"_w, "w"_w, text, 8, nullptr), 2U);
    EXPECT_EQ(WideText(text), WideText(u"\xDC00\xD800"_w));
}

}  // namespace
}  // namespace host
