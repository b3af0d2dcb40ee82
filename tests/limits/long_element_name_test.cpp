// An element whose name is longer than the largest piece of the writer's output.
#include <gtest/gtest.h>
#include <string>

#include "tests/host/host_support.h"

namespace limits {
namespace {

TEST(LongElementName, IsSavedInBothTags) {
    const std::string name(12'000'000, 'n');
    const host::Profile profile = host::LoadSections("<" + name + "><b/></" + name + ">");
    ASSERT_NE(profile, nullptr);
    const bool isSame =
        host::SaveBytes(profile) == host::SettingsFile({"\t<" + name + ">", "\t\t<b/>", "\t</" + name + ">"});
    EXPECT_TRUE(isSame);
}

}  // namespace
}  // namespace limits
