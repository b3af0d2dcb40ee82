#include "tests/editor/session_support.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace editor {

std::string Narrow(const std::string& inner) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">\n" +
           inner + "</Settings>\n" + std::string(1, '\0');
}

std::string Wide(const std::string& narrow, char16_t unit) {
    std::string bytes;
    for (const char character : narrow) {
        const unsigned one = character == '~' ? unit : static_cast<unsigned char>(character);
        bytes.append(1, static_cast<char>(one & 0xFFU)).append(1, static_cast<char>(one >> 8U));
    }
    return bytes;
}

void WriteBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string ReadBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<mox::tool::RequestedChange> Change(const std::string& section, const std::string& entry,
                                               const std::string& before, const std::string& after) {
    const mox::tool::Json change = {{"change", "changed"}, {"section", section}, {"entry", entry},
                                    {"field", "value"},    {"before", before},   {"after", after}};
    return mox::tool::ReadChanges("changes", mox::tool::Json::array({change}).dump());
}

void SessionTest::SetUp() {
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    const char* const folder = std::getenv("MOX_TEST_TMP");
    ASSERT_NE(folder, nullptr);
    const std::string own = std::string(folder) + "/" + test.test_suite_name() + "." + test.name();
    std::filesystem::create_directories(own);
    path_ = own + "/a.xml";
    WriteBytes(path_, Narrow("\t<Table name=\"S\">\n\t\t<Var name=\"k\" type=\"long\" array=\"\">\n"
                             "\t\t\t<Value>1</Value>\n\t\t</Var>\n\t</Table>\n"));
}

mox::tool::SessionOptions SessionTest::Options() const {
    mox::tool::SessionOptions options;
    options.file.path = path_;
    return options;
}

void SiteTest::SetUp() {
    SessionTest::SetUp();
    session_ = std::make_unique<mox::tool::EditorSession>(Options());
    site_ = std::make_unique<mox::tool::EditorSite>(*session_, std::uint16_t{80},
                                                    mox::tool::SiteSecrets{"TOKEN", "COOKIE", "FOLDER"});
}

}  // namespace editor
