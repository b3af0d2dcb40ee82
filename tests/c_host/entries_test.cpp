// Whole entries with their presentation data, and the changes of their parts.
#include "tests/c_host/c_host_support.h"

namespace c_host {
namespace {

constexpr std::string_view kEntries =
    "<Var name=\"A\" type=\"long\" array=\"array\" id=\"4\" eud=\"true\"><Value>1</Value>"
    "<UI control=\"num\" prov_index=\"7\" prov_owner=\"app\" name=\"shown\"><Comment>comment</Comment>"
    "<Value>2</Value></UI></Var>"
    "<Var name=\"B\" type=\"string\"/><Var name=\"X\"/>";

std::string Shown(const char* text, size_t size) {
    return text == nullptr ? "null" : "'" + std::string(text, size) + "'";
}

// All fields of an entry.
std::string Shown(const mox_entry& entry) {
    std::string text = Shown(entry.name, entry.name_size) + " type " + std::to_string(entry.type) +
                       " shape " + std::to_string(entry.shape) + " id " + std::to_string(entry.id) +
                       " value " + Shown(entry.value, entry.value_size);
    if (entry.has_ui == 0) return text;
    return text + " ui " + std::to_string(entry.control) + " " + std::to_string(entry.provider_owner) + "/" +
           std::to_string(entry.provider_index) + " " + Shown(entry.shown_name, entry.shown_name_size) + " " +
           Shown(entry.comment, entry.comment_size) + " " + Shown(entry.ui_value, entry.ui_value_size);
}

std::vector<std::string> Shown(const mox_list* list) {
    std::vector<std::string> shown;
    for (size_t i = 0; i < mox_list_count(list); ++i) {
        auto entry = Sized<mox_entry>();
        EXPECT_EQ(mox_list_entry(list, i, &entry), MOX_OK);
        shown.push_back(Shown(entry));
    }
    return shown;
}

std::vector<std::string> Entries(const Document& document, std::string_view section) {
    mox_list* list = nullptr;
    EXPECT_EQ(mox_entries(document.get(), section.data(), section.size(), &list, nullptr), MOX_OK);
    return Shown(List(list).get());
}

std::string Entry(const Document& document, std::string_view section, std::string_view name) {
    mox_list* list = nullptr;
    const mox_status status = mox_find_entry(document.get(), section.data(), section.size(), name.data(),
                                             name.size(), &list, nullptr);
    if (status != MOX_OK) return mox_status_name(status);
    EXPECT_EQ(mox_list_count(list), 1U);
    return Shown(List(list).get()).at(0);
}

mox_entry Given(const char* name, const char* value, uint32_t type) {
    auto entry = Sized<mox_entry>();
    entry.name = name;
    entry.name_size = std::string_view(name).size();
    entry.value = value;
    entry.value_size = value == nullptr ? 0 : std::string_view(value).size();
    entry.type = type;
    return entry;
}

const std::string kA = "'A' type 3 shape 8192 id 4 value '1' ui 1 1/7 'shown' 'comment' '2'";

TEST(HostEntries, HaveAllTheirFields) {
    for (const bool isTable : {false, true}) {
        const Document document = isTable ? Table(kEntries) : Settings(kEntries);
        const std::string_view section = isTable ? "" : "S";
        EXPECT_EQ(Entries(document, section),
                  (std::vector<std::string>{kA, "'B' type 8 shape 0 id 0 value ''"}));
        EXPECT_EQ(Entry(document, section, "A"), kA);
        EXPECT_EQ(Entry(document, section, "X"), "MOX_UNREADABLE");
        EXPECT_EQ(Entry(document, section, "Y"), "MOX_NO_SUCH_KEY");
        EXPECT_EQ(Entry(document, "R", "A"), "MOX_NO_SUCH_SECTION");
        size_t unreadable = 0;
        EXPECT_EQ(mox_count_unreadable(document.get(), section.data(), section.size(), &unreadable, nullptr),
                  MOX_OK);
        EXPECT_EQ(unreadable, 1U);
    }
}

TEST(HostEntries, AListDoesNotChangeWithTheDocument) {
    Document document = Settings(kEntries);
    mox_list* list = nullptr;
    ASSERT_EQ(mox_entries(document.get(), MOX_STR("S"), &list, nullptr), MOX_OK);
    const List owned(list);
    EXPECT_EQ(mox_remove_section(document.get(), MOX_STR("S"), nullptr), MOX_OK);
    document.reset();
    EXPECT_EQ(Shown(list).at(0), kA);
    EXPECT_EQ(Names(list), (std::vector<std::string>{"A", "B"}));
}

TEST(HostEntries, AreAddedWithAllTheirFields) {
    for (const bool isTable : {false, true}) {
        const Document document = isTable ? Table(kEntries) : Settings(kEntries);
        const std::string section = isTable ? "" : "S";
        mox_entry entry = Given("C", "3", MOX_TYPE_ULONG);
        entry.shape = MOX_SHAPE_VECTOR;
        entry.id = 9;
        entry.has_ui = 1;
        entry.control = MOX_CONTROL_SWITCH;
        entry.provider_owner = MOX_OWNER_ERG;
        entry.provider_index = 5;
        entry.shown_name = "s";
        entry.shown_name_size = 1;
        entry.comment = "c";
        entry.comment_size = 1;
        entry.ui_value = "6";
        entry.ui_value_size = 1;
        const auto add = [&](const char* before, const mox_entry& added, uint32_t flags) {
            return mox_add_entry(document.get(), section.data(), section.size(), before,
                                 before == nullptr ? 0 : 1, &added, flags, nullptr);
        };
        EXPECT_EQ(add(nullptr, entry, 0), MOX_OK);
        EXPECT_EQ(Entry(document, section, "C"),
                  "'C' type 19 shape 4096 id 9 value '3' ui 4 4/5 's' 'c' '6'");
        EXPECT_EQ(add(nullptr, entry, 0), MOX_NAME_TAKEN);
        EXPECT_EQ(add("B", Given("D", nullptr, MOX_TYPE_STRING), MOX_EUD_SET), MOX_OK);
        EXPECT_EQ(add("Z", Given("E", nullptr, MOX_TYPE_STRING), 0), MOX_NO_SUCH_KEY);
        EXPECT_EQ(add(nullptr, Given("E", "1", 77), 0), MOX_NOT_STORED);
        EXPECT_EQ(add(nullptr, Given("", "1", MOX_TYPE_LONG), 0), MOX_INVALID_TEXT);
        EXPECT_EQ(add(nullptr, Given("E", "1", MOX_TYPE_LONG), MOX_EUD_RESPECT), MOX_INVALID_ARGUMENT);
        EXPECT_EQ(EntryNames(document, section), (std::vector<std::string>{"A", "D", "B", "C"}));
    }
}

TEST(HostEntries, AStructureThatContradictsItselfIsRefused) {
    const Document document = Settings(kEntries);
    const auto add = [&](const mox_entry& added) {
        return mox_add_entry(document.get(), MOX_STR("S"), nullptr, 0, &added, 0, nullptr);
    };
    mox_entry entry = Given("C", "3", MOX_TYPE_ULONG);
    entry.comment = "c";
    entry.comment_size = 1;
    EXPECT_EQ(add(entry), MOX_INVALID_ARGUMENT) << "presentation data without has_ui would be lost";
    entry.has_ui = 2;
    EXPECT_EQ(add(entry), MOX_INVALID_ARGUMENT);
    for (uint32_t mox_entry::*field :
         {&mox_entry::type, &mox_entry::shape, &mox_entry::control, &mox_entry::provider_owner}) {
        entry = Given("C", "3", MOX_TYPE_ULONG);
        entry.has_ui = 1;
        entry.*field += 0x10000;
        EXPECT_EQ(add(entry), MOX_INVALID_ARGUMENT) << "the low bits alone would be another number";
    }
    for (const uint32_t size : {0U, 4U, 111U, 113U, 0xFFFFFFFFU}) {
        entry = Given("C", "3", MOX_TYPE_ULONG);
        entry.size = size;
        EXPECT_EQ(add(entry), MOX_INVALID_ARGUMENT) << size;
    }
    EXPECT_EQ(EntryNames(document, "S"), (std::vector<std::string>{"A", "B"}));
}

TEST(HostEntries, PutChangesWhatIsGiven) {
    const Document document = Settings(kEntries);
    mox_entry entry = Given("A", nullptr, MOX_TYPE_LONG);
    entry.shape = MOX_SHAPE_ARRAY;
    entry.id = 5;
    EXPECT_EQ(mox_put_entry(document.get(), MOX_STR("S"), &entry, 0, nullptr), MOX_OK);
    EXPECT_EQ(Entry(document, "S", "A"),
              "'A' type 3 shape 8192 id 5 value '1' ui 1 1/7 'shown' 'comment' '2'");
    entry = Given("N", "new", MOX_TYPE_STRING);
    EXPECT_EQ(mox_put_entry(document.get(), MOX_STR("S"), &entry, MOX_EUD_SET, nullptr), MOX_OK);
    EXPECT_EQ(Entry(document, "S", "N"), "'N' type 8 shape 0 id 0 value 'new'");
    EXPECT_EQ(mox_put_entry(document.get(), MOX_STR("R"), &entry, 0, nullptr), MOX_NO_SUCH_SECTION);
}

TEST(HostEntries, ValuesRespectEudIfAsked) {
    const Document document = Settings(kEntries);
    const auto set = [&](std::string_view value, uint32_t flags) {
        return mox_set_value(document.get(), MOX_STR("S"), MOX_STR("A"), value.data(), value.size(), flags,
                             nullptr);
    };
    EXPECT_EQ(set("8", MOX_EUD_RESPECT), MOX_PROTECTED);
    EXPECT_EQ(TextOf(document, "S", "A"), "1");
    EXPECT_EQ(set("8", MOX_EUD_SET), MOX_OK);
    EXPECT_TRUE(HasEud(document, "S"));
    EXPECT_EQ(set("9", 4), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(TextOf(document, "S", "A"), "8");
    EXPECT_EQ(mox_set_eud(document.get(), MOX_STR("S"), MOX_STR("A"), 0, nullptr), MOX_OK);
    EXPECT_EQ(set("9", MOX_EUD_RESPECT), MOX_OK);
    EXPECT_EQ(TextOf(document, "S", "A"), "9");
    EXPECT_EQ(mox_set_eud(document.get(), MOX_STR("S"), MOX_STR("A"), 1, nullptr), MOX_OK);
    EXPECT_EQ(set("10", MOX_EUD_RESPECT), MOX_PROTECTED);
    EXPECT_EQ(mox_set_eud(document.get(), MOX_STR("S"), MOX_STR("A"), 2, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_set_eud(document.get(), MOX_STR("S"), MOX_STR("Z"), 1, nullptr), MOX_NO_SUCH_KEY);
}

TEST(HostEntries, PartsOfThePresentationDataChangeAlone) {
    const Document document = Settings(kEntries);
    mox_document* const d = document.get();
    EXPECT_EQ(mox_set_comment(d, MOX_STR("S"), MOX_STR("A"), MOX_STR("other"), nullptr), MOX_OK);
    EXPECT_EQ(mox_set_shown_name(d, MOX_STR("S"), MOX_STR("A"), MOX_STR("\xC3\xA4"), nullptr), MOX_NOT_KEPT);
    EXPECT_EQ(mox_set_shown_name(d, MOX_STR("S"), MOX_STR("A"), MOX_STR("name"), nullptr), MOX_OK);
    EXPECT_EQ(mox_set_provider(d, MOX_STR("S"), MOX_STR("A"), MOX_OWNER_DWG, 12, nullptr), MOX_OK);
    EXPECT_EQ(Entry(document, "S", "A"), "'A' type 3 shape 8192 id 4 value '1' ui 1 2/12 'name' 'other' '2'");
    EXPECT_EQ(mox_set_provider(d, MOX_STR("S"), MOX_STR("A"), 3, 12, nullptr), MOX_NOT_STORED);
    EXPECT_EQ(mox_set_provider(d, MOX_STR("S"), MOX_STR("A"), 0x101, 12, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_set_shown_name(d, MOX_STR("S"), MOX_STR("A"), nullptr, 0, nullptr), MOX_OK);
    EXPECT_EQ(Entry(document, "S", "A"), "'A' type 3 shape 8192 id 4 value '1' ui 1 2/12 '' 'other' '2'");
}

TEST(HostEntries, AValueThatNoRecordHoldsIsNull) {
    // Half of a surrogate pair, in the three bytes of the UTF-8 pattern.
    const std::string text =
        SettingsText("<Var name=\"K\" type=\"string\"><Value>\xED\xA0\x80</Value></Var>");
    auto options = Sized<mox_open_options>();
    options.encoding = MOX_ENCODING_UTF8;
    mox_document* made = nullptr;
    ASSERT_EQ(mox_parse(text.data(), text.size(), MOX_SETTINGS, &options, &made, nullptr), MOX_OK);
    const Document document(made);
    EXPECT_EQ(Entry(document, "S", "K"), "'K' type 8 shape 0 id 0 value null");
    EXPECT_EQ(TextOf(document, "S", "K"), "\xED\xA0\x80");
    EXPECT_EQ(SetText(document, "S", "L", "\xED\xA0\x80"), MOX_NOT_KEPT);
}

TEST(HostEntries, PresentationDataNeedHasUi) {
    const Document document = Settings(kEntries);
    const auto add = [&](void (*set)(mox_entry & entry)) {
        mox_entry entry = Given("C", "3", MOX_TYPE_ULONG);
        set(entry);
        return mox_add_entry(document.get(), MOX_STR("S"), nullptr, 0, &entry, 0, nullptr);
    };
    for (void (*const set)(mox_entry&) : {+[](mox_entry& entry) { entry.control = MOX_CONTROL_TEXT; },
                                          +[](mox_entry& entry) { entry.provider_owner = MOX_OWNER_APP; },
                                          +[](mox_entry& entry) { entry.provider_index = 1; },
                                          +[](mox_entry& entry) {
                                              entry.shown_name = "s";
                                              entry.shown_name_size = 1;
                                          },
                                          +[](mox_entry& entry) { entry.ui_value = ""; }})
        EXPECT_EQ(add(set), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(add([](mox_entry& entry) { entry.comment = entry.shown_name = "not read"; }), MOX_OK);
    EXPECT_EQ(Entry(document, "S", "C"), "'C' type 19 shape 0 id 0 value '3'");
}

TEST(HostEntries, NumbersThatNoRecordHoldsAreRefused) {
    const Document document = Settings(kEntries);
    const auto add = [&](uint32_t mox_entry::*field, uint32_t number) {
        mox_entry entry = Given("C", "3", MOX_TYPE_ULONG);
        entry.has_ui = 1;
        entry.*field = number;
        return mox_add_entry(document.get(), MOX_STR("S"), nullptr, 0, &entry, 0, nullptr);
    };
    for (uint32_t mox_entry::*field : {&mox_entry::type, &mox_entry::shape, &mox_entry::control}) {
        EXPECT_EQ(add(field, 0xFFFF), MOX_NOT_STORED) << "no name in files";
        EXPECT_EQ(add(field, 0x10000), MOX_INVALID_ARGUMENT);
    }
    EXPECT_EQ(add(&mox_entry::provider_owner, 0xFF), MOX_NOT_STORED);
    EXPECT_EQ(add(&mox_entry::provider_owner, 0x100), MOX_INVALID_ARGUMENT);
    const auto setProvider = [&](uint32_t owner) {
        return mox_set_provider(document.get(), MOX_STR("S"), MOX_STR("A"), owner, 7, nullptr);
    };
    EXPECT_EQ(setProvider(0xFF), MOX_NOT_STORED);
    EXPECT_EQ(setProvider(0x100), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(Entries(document, "S").size(), 2U);
}

TEST(HostEntries, NullValuesAreNotEmptyOnes) {
    const Document document = Settings(kEntries);
    const auto put = [&](const char* value, const char* uiValue) {
        mox_entry entry = Given("A", value, MOX_TYPE_LONG);
        entry.shape = MOX_SHAPE_ARRAY;
        entry.has_ui = 1;
        entry.control = MOX_CONTROL_NUMBER;
        entry.ui_value = uiValue;
        return mox_put_entry(document.get(), MOX_STR("S"), &entry, 0, nullptr);
    };
    EXPECT_EQ(put(nullptr, nullptr), MOX_OK);
    EXPECT_EQ(Entry(document, "S", "A"), kA);
    EXPECT_EQ(put("", nullptr), MOX_OK);
    EXPECT_EQ(Entry(document, "S", "A"),
              "'A' type 3 shape 8192 id 4 value '' ui 1 1/7 'shown' 'comment' '2'");
    mox_entry unnamed = Given("", "1", MOX_TYPE_LONG);
    unnamed.name = nullptr;
    EXPECT_EQ(mox_put_entry(document.get(), MOX_STR("S"), &unnamed, 0, nullptr), MOX_INVALID_TEXT);
}

TEST(HostEntries, WritesSetEudOnlyIfAsked) {
    const Document document = Settings("<Var name=\"A\" type=\"long\"><Value>1</Value></Var>");
    const auto clear = [&](const char* name) {
        return mox_set_eud(document.get(), MOX_STR("S"), name, 1, 0, nullptr);
    };
    const auto hasEud = [&](const char* name) {
        const std::string text = SectionText(document, "S");
        const size_t start = text.find(std::string("<Var name=\"") + name + "\"");
        return text.substr(start, text.find('>', start) - start).find("eud=\"true\"") != std::string::npos;
    };
    mox_entry entry = Given("B", "1", MOX_TYPE_LONG);
    EXPECT_EQ(mox_add_entry(document.get(), MOX_STR("S"), nullptr, 0, &entry, 0, nullptr), MOX_OK);
    EXPECT_FALSE(HasEud(document, "S"));
    EXPECT_EQ(mox_remove(document.get(), MOX_STR("S"), MOX_STR("B"), 0, nullptr), MOX_OK);
    EXPECT_EQ(mox_add_entry(document.get(), MOX_STR("S"), MOX_STR("A"), &entry, MOX_EUD_SET, nullptr),
              MOX_OK);
    EXPECT_TRUE(HasEud(document, "S"));
    EXPECT_EQ(EntryNames(document, "S"), (std::vector<std::string>{"B", "A"}));
    EXPECT_EQ(clear("B"), MOX_OK);
    entry = Given("A", "2", MOX_TYPE_LONG);
    EXPECT_EQ(mox_put_entry(document.get(), MOX_STR("S"), &entry, 0, nullptr), MOX_OK);
    EXPECT_FALSE(hasEud("A"));
    EXPECT_EQ(mox_put_entry(document.get(), MOX_STR("S"), &entry, MOX_EUD_RESPECT, nullptr),
              MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_put_entry(document.get(), MOX_STR("S"), &entry, MOX_EUD_SET, nullptr), MOX_OK);
    EXPECT_TRUE(hasEud("A")) << SectionText(document, "S");
    EXPECT_EQ(clear("A"), MOX_OK);
    EXPECT_FALSE(hasEud("A"));
    EXPECT_EQ(mox_set_value(document.get(), MOX_STR("S"), MOX_STR("A"), MOX_STR("3"),
                            MOX_EUD_SET | MOX_EUD_RESPECT, nullptr),
              MOX_OK);
    EXPECT_TRUE(hasEud("A"));
    EXPECT_EQ(mox_set_value(document.get(), MOX_STR("S"), MOX_STR("A"), MOX_STR("4"), 0, nullptr), MOX_OK);
    EXPECT_FALSE(hasEud("A"));
    EXPECT_EQ(mox_set_eud(document.get(), MOX_STR("S"), MOX_STR("A"), -1, nullptr), MOX_INVALID_ARGUMENT);
    EXPECT_EQ(mox_set_eud(document.get(), MOX_STR("S"), MOX_STR("A"), 1, nullptr), MOX_OK);
    EXPECT_TRUE(hasEud("A"));
}

TEST(HostEntries, ChangesNameTheEntryThatIsMissing) {
    const Document document = Settings(kEntries);
    mox_document* const d = document.get();
    const Problem problem;
    EXPECT_EQ(mox_set_comment(d, MOX_STR("S"), MOX_STR("Z"), MOX_STR("c"), problem), MOX_NO_SUCH_KEY);
    EXPECT_EQ(problem.Text(), "S/Z: there is no such entry");
    EXPECT_EQ(mox_set_shown_name(d, MOX_STR("R"), MOX_STR("A"), MOX_STR("c"), problem), MOX_NO_SUCH_SECTION);
    EXPECT_EQ(problem.Text(), "R: there is no such section");
    EXPECT_EQ(mox_set_provider(d, MOX_STR("S"), MOX_STR("X"), 1, 1, problem), MOX_UNREADABLE);
    EXPECT_EQ(mox_set_value(d, MOX_STR("S"), MOX_STR("Z"), MOX_STR("1"), 0, problem), MOX_NO_SUCH_KEY);
    EXPECT_EQ(mox_set_provider(Table(kEntries).get(), nullptr, 0, MOX_STR("Z"), 1, 1, problem),
              MOX_NO_SUCH_KEY);
    EXPECT_EQ(problem.Text(), "Z: there is no such entry");
}

TEST(HostEntries, APresentationValueThatNoRecordHoldsIsNull) {
    const std::string text = SettingsText(
        "<Var name=\"K\" type=\"string\"><Value>1</Value><UI control=\"text\"><Comment>c</Comment>"
        "<Value>\xED\xA0\x80</Value></UI></Var>");
    auto options = Sized<mox_open_options>();
    options.encoding = MOX_ENCODING_UTF8;
    mox_document* made = nullptr;
    ASSERT_EQ(mox_parse(text.data(), text.size(), MOX_SETTINGS, &options, &made, nullptr), MOX_OK);
    EXPECT_EQ(Entry(Document(made), "S", "K"), "'K' type 8 shape 0 id 0 value '1' ui 2 0/0 '' 'c' null");
}

}  // namespace
}  // namespace c_host
