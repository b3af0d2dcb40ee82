// Elements and attributes with long names, which the writer cannot put into one piece of its output.
#include "tests/host/host_support.h"

namespace host {
namespace {

// Up to several times the first piece of the output; 128 is where the writer goes another way.
constexpr std::size_t kLengths[] = {1, 127, 128, 129, 2047, 2048, 2049, 8191, 8192, 20'000, 100'000};

TEST(LongNames, ElementsKeepThemInBothTags) {
    for (const std::size_t length : kLengths) {
        const std::string name(length, 'n');
        const Profile profile = LoadSections("<" + name + "><b/></" + name + ">");
        const std::string bytes = SettingsFile({"\t<" + name + ">", "\t\t<b/>", "\t</" + name + ">"});
        EXPECT_TRUE(SaveBytes(profile) == bytes) << length;
        EXPECT_TRUE(SaveBytes(LoadBytes(bytes, 0)) == bytes) << length;
    }
}

TEST(LongNames, AttributesKeepThemAndTheirTexts) {
    for (const std::size_t length : kLengths) {
        const std::string name(length, 'n');
        std::string escaped;
        for (std::size_t i = 0; i < length; ++i)
            escaped += "&lt;";
        const std::string element =
            "<e " + name + "=\"" + escaped + "\" a=\"" + escaped + "\" " + name + "2=\"\"/>";
        EXPECT_TRUE(SaveBytes(LoadSections(element)) == SettingsFile({"\t" + element})) << length;
    }
}

}  // namespace
}  // namespace host
