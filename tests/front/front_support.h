// Support for the tests of the C++ front, in addition to that for the host tests.
#ifndef MOX_XMLAPI_TESTS_FRONT_FRONT_SUPPORT_H
#define MOX_XMLAPI_TESTS_FRONT_FRONT_SUPPORT_H

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/host/host_support.h"

namespace front_tests {

// An empty folder that is removed at the end of the scope.
class ScratchFolder {
  public:
    ScratchFolder() : path_(host::ScratchFolder() / ("front_" + std::to_string(++Number()))) {
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::filesystem::path Of(const char* name) const { return path_ / name; }

    // The names of the files and folders in it, sorted.
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path_))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

  private:
    static int& Number() {
        static int number = 0;
        return number;
    }

    std::filesystem::path path_;
};

// A settings document with the section "S", which contains these elements.
inline mox::Profile ProfileWith(std::string_view entries) {
    std::string text(host::kDeclaration);
    text.append("\n").append(host::kRootStart).append("<Table name=\"S\">");
    text.append(entries).append("</Table>").append(host::kRootEnd);
    auto profile = mox::Profile::parse(text);
    EXPECT_TRUE(profile.has_value());
    return profile.has_value() ? std::move(*profile) : mox::Profile();
}

// A table document with the table "T", which contains these elements.
inline mox::Table TableWith(std::string_view entries) {
    auto table = mox::Table::parse(std::string("<Table name=\"T\">").append(entries).append("</Table>\n"));
    EXPECT_TRUE(table.has_value());
    return table.has_value() ? std::move(*table) : mox::Table::create("T");
}

// For saves that replace whatever is there.
inline mox::SaveOptions Overwriting(mox::Form form = mox::Form::Wide,
                                    mox::Content content = mox::Content::Document) {
    mox::SaveOptions options;
    options.form = form;
    options.content = content;
    options.overwrite = true;
    return options;
}

// The bytes of the file that a save writes.
template <class Document>
std::string SavedBytes(const Document& document) {
    const host::ScratchFile file;
    EXPECT_TRUE(document.saveReplacing(file.Path().u16string()));
    return file.Bytes();
}

// The bytes of a wide file with these lines in its table.
inline std::string TableFile(std::initializer_list<std::string_view> lines,
                             std::string_view tag = "<Table name=\"T\">") {
    return host::WideFile(host::Lines({tag}) + host::Lines(lines) + host::Lines({"</Table>"}));
}

// The first entry of a table, which decides where the exports store the values of the others.
enum class First { None, OwnValue, UiValue };
inline constexpr First kFirsts[] = {First::None, First::OwnValue, First::UiValue};

inline std::string FirstEntry(First first) {
    if (first == First::None) return "";
    return first == First::OwnValue ? "<Var name=\"F\" type=\"long\"><Value>0</Value></Var>"
                                    : "<Var name=\"F\" type=\"long\"><UI><Value>0</Value></UI></Var>";
}

// Presentation data in which no field is empty.
inline mox::Presentation FullUi() {
    mox::Presentation ui;
    ui.control = mox::Control::Number;
    ui.providerIndex = 7;
    ui.providerOwner = mox::Owner::App;
    ui.shownName = "shown";
    ui.comment = "comment";
    ui.value = "ui value";
    return ui;
}

// A surrogate alone, which is no letter.
inline const std::u16string kUnpaired{0xD800};

}  // namespace front_tests

#endif
