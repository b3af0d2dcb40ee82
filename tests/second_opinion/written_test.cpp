// What the library writes from 7-bit text is well-formed XML and means to XML what it means to the library, but for
// what the list says.
#include <gtest/gtest.h>
#include <iostream>
#include <set>

#include "tests/second_opinion/kinds_support.h"
#include "tests/second_opinion/readings_support.h"
#include "tests/second_opinion/written_support.h"

namespace opinion {
namespace {

// Files for xmllint and the schemas, which look at them when this program has run.
class SavedFolder {
  public:
    SavedFolder() {
        std::filesystem::remove_all(Root());
        std::filesystem::create_directories(Root() / "settings");
        std::filesystem::create_directories(Root() / "table");
    }
    void Add(const Written& written) {
        const std::string name = std::to_string(100000 + count_++) + ".xml";
        host::WriteBytes(Root() / (written.settings ? "settings" : "table") / name, AdaptedToXml(written));
    }

  private:
    static std::filesystem::path Root() { return host::ScratchFolder() / "saved"; }
    int count_ = 0;
};

void ExpectWellFormed(const Written& written) {
    const std::string text = TextOf(written);
    const Comparison comparison = ExpectListed(text);
    ASSERT_TRUE(comparison.byLibrary && comparison.byLibxml2) << Escaped(text);
    const std::string adapted = AdaptedToXml(written);
    ASSERT_EQ(Shown(ReadByLibxml2(adapted)), Shown(ReadByLibxml2(text)));
}

TEST(WrittenFiles, AreWellFormedXml) {
    SavedFolder folder;
    Host host(RandomSeed(), false);
    std::uint64_t documents = 0;
    for (std::uint64_t i = 0; i < RandomCount() / 10; ++i) {
        std::vector<Written> files = host.WriteSettings();
        files.push_back(host.WriteTable());
        for (const Written& written : files) {
            ASSERT_NO_FATAL_FAILURE(ExpectWellFormed(written));
            ASSERT_FALSE(testing::Test::HasFailure());
            folder.Add(written);
            documents += 1;
        }
    }
    std::cout << "written documents: " << documents << "\n";
}

Kinds KindsOf(const std::vector<Written>& files) {
    Kinds kinds;
    for (const Written& written : files)
        kinds.merge(ExpectListed(TextOf(written)).kinds);
    return kinds;
}

// All 7-bit text there is, and documents that were well-formed when they were opened.
TEST(WrittenFiles, DifferFromXmlExactlyAsListed) {
    Host host(RandomSeed(), true);
    RandomDocuments documents(RandomSeed());
    Kinds met;
    for (std::uint64_t i = 0; i < 100 + RandomCount() / 20; ++i) {
        met.merge(KindsOf(host.WriteSettings()));
        met.merge(KindsOf({host.WriteTable()}));
        met.merge(KindsOf(host.WriteSettings(documents.Next())));
        ASSERT_FALSE(testing::Test::HasFailure());
    }
    Kinds listed;
    for (const Difference& difference : ListedDifferences()) {
        if (difference.who == "written") listed.insert(difference.kind);
    }
    EXPECT_EQ(met, listed);
}

// XML has no character below the space but these; all others come back.
TEST(WrittenFiles, HoldEverySevenBitCharacterThatXmlHas) {
    for (char character = 1; character > 0; character = static_cast<char>(character + 1)) {
        const wchar16 text[] = {'v', static_cast<wchar16>(character), 'w', 0};
        const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
        ASSERT_EQ(xmlWriteProfileString(profile, text, text, text), 1U);
        const std::string bytes = TextOf({host::SaveBytes(profile), false, true});
        const bool allowed = character >= ' ' || character == '\t' || character == '\n' || character == '\r';
        EXPECT_EQ(ReadByLibxml2(bytes).accepted, allowed) << int{character};
        EXPECT_TRUE(ReadByLibrary(bytes).accepted);
        if (character == 0x7F) break;
    }
}

// Those that are written and are no XML, one by one.
TEST(WrittenFiles, OfADocumentWithoutTheRootHaveTwoElements) {
    const std::string foreign = "<a/>\n";
    ASSERT_TRUE(ReadByLibxml2(foreign).accepted);
    const host::Profile profile = host::LoadText(foreign);
    const std::string bytes = TextOf({host::SaveBytes(profile), false, true});
    EXPECT_EQ(Shown(ReadByLibrary(bytes)), "a Settings{xmlns:noNamespaceSchemaLocation='MXSettings.xsd'}");
    EXPECT_EQ(Compare(bytes).kinds, Kinds{"several-elements"});

    const host::Table table = host::LoadTable(foreign);
    EXPECT_EQ(Compare(host::SavedText(table)).kinds, Kinds{"several-elements"});
}

}  // namespace
}  // namespace opinion
