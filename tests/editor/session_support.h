// Sessions and requests for the tests of the editor that need no network.
#ifndef MOX_XMLAPI_TESTS_EDITOR_SESSION_SUPPORT_H
#define MOX_XMLAPI_TESTS_EDITOR_SESSION_SUPPORT_H

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "tools/edit/editor_session.h"
#include "tools/edit/editor_site.h"

namespace editor {

// A narrow settings document with these lines in its root element, and the zero that ends it.
std::string Narrow(const std::string& inner);

// The same bytes as units, for a wide file. Each '~' becomes the unit.
std::string Wide(const std::string& narrow, char16_t unit = u'~');

void WriteBytes(const std::string& path, const std::string& bytes);
std::string ReadBytes(const std::string& path);

// A change of a value, as the page sends it.
std::vector<mox::tool::RequestedChange> Change(const std::string& section, const std::string& entry,
                                               const std::string& before, const std::string& after);

// Each test begins with a file of its own.
class SessionTest : public testing::Test {
  protected:
    void SetUp() override;

    mox::tool::SessionOptions Options() const;

    std::string path_{};
};

// With a site over the session, at port 80.
class SiteTest : public SessionTest {
  protected:
    void SetUp() override;

    std::unique_ptr<mox::tool::EditorSession> session_{};
    std::unique_ptr<mox::tool::EditorSite> site_{};
};

}  // namespace editor

#endif
