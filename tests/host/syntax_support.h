// What the tests of the syntax share: a text is loaded and, where it loads, saved again.
#ifndef MOX_XMLAPI_TESTS_HOST_SYNTAX_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_SYNTAX_SUPPORT_H

#include <string>
#include <string_view>

#include "tests/host/host_support.h"

namespace host {

// The saved form of a document without a settings root, less the root that loading appends.
inline std::string Reprinted(std::string_view text) {
    const Profile profile = LoadText(text);
    EXPECT_NE(profile, nullptr) << text;
    const std::string bytes = SaveBytes(profile);
    const std::string end = NarrowFile(Lines({kEmptyRoot}));
    EXPECT_TRUE(bytes.ends_with(end)) << bytes;
    return bytes.substr(0, bytes.size() - end.size());
}

inline testing::AssertionResult Loads(std::string_view text) {
    if (LoadText(text) != nullptr) return testing::AssertionSuccess() << text;
    return testing::AssertionFailure() << text;
}

}  // namespace host

#endif
