// The files of tests/data/golden, which the writer gave, are well-formed XML too; xmllint holds them against the schema
// when this program has run.
#include <gtest/gtest.h>
#include <libxml/xmlerror.h>

#include "tests/second_opinion/kinds_support.h"
#include "tests/second_opinion/readings_support.h"
#include "tests/second_opinion/written_support.h"

namespace opinion {
namespace {

// Narrow files of a document with letters from many places: what was cut off left characters that XML has none of.
const Kinds kCut = {"production_line_wide.mode0.narrow.xml", "production_line_wide.mode1.narrow.xml",
                    "production_line_wide.mode2.narrow.xml"};

TEST(GoldenFiles, AreWellFormedXmlUnlessCharactersWereCut) {
    const std::filesystem::path folder = host::ScratchFolder() / "golden";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    Kinds refused;
    for (const auto& entry : std::filesystem::directory_iterator("data/golden")) {
        const std::string name = entry.path().filename().string();
        const bool wide = name.find(".wide.") != std::string::npos;
        const std::string adapted = AdaptedToXml({host::ReadBytes(entry.path()), wide, true});
        const Reading reading = ReadByLibxml2(adapted);
        if (reading.accepted) {
            host::WriteBytes(folder / name, adapted);
        } else {
            EXPECT_EQ(reading.error, XML_ERR_INVALID_CHAR) << name;
            refused.insert(name);
        }
    }
    EXPECT_EQ(refused, kCut);
}

}  // namespace
}  // namespace opinion
