// What the tests of mox_host share: handles that free themselves, and results as strings. Of the library it uses
// mox_host.h alone.
#ifndef MOX_XMLAPI_TESTS_C_HOST_C_HOST_SUPPORT_H
#define MOX_XMLAPI_TESTS_C_HOST_C_HOST_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mox_host/mox_host.h"
#include "tests/c_host/sized.h"

namespace c_host {

template <auto Free>
struct Freeing {
    template <class Handle>
    void operator()(Handle* handle) const {
        Free(handle);
    }
};
using Document = std::unique_ptr<mox_document, Freeing<mox_document_free>>;
using List = std::unique_ptr<mox_list, Freeing<mox_list_free>>;
using Tree = std::unique_ptr<mox_tree, Freeing<mox_tree_free>>;
using ProblemHandle = std::unique_ptr<mox_problem, Freeing<mox_problem_free>>;

// A problem, and what it says about the last call.
class Problem {
  public:
    Problem() {
        mox_problem* made = nullptr;
        EXPECT_EQ(mox_problem_new(&made), MOX_OK);
        handle_.reset(made);
    }
    operator mox_problem*() const { return handle_.get(); }
    mox_problem_info Info() const {
        auto info = Sized<mox_problem_info>();
        EXPECT_EQ(mox_problem_get(handle_.get(), &info), MOX_OK);
        return info;
    }
    mox_status Status() const { return Info().status; }
    std::string Text() const {
        const mox_problem_info info = Info();
        return {info.text, info.text_size};
    }

  private:
    ProblemHandle handle_;
};

inline constexpr std::string_view kStart =
    "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\"><Table name=\"S\">";
inline constexpr std::string_view kEnd = "</Table></Settings>\n";

// A settings document with one section "S", which has these entries.
inline std::string SettingsText(std::string_view entries) {
    return std::string(kStart).append(entries).append(kEnd);
}

inline Document Parse(std::string_view text, uint32_t kind) {
    mox_document* document = nullptr;
    EXPECT_EQ(mox_parse(text.data(), text.size(), kind, nullptr, &document, nullptr), MOX_OK);
    return Document(document);
}
inline Document Settings(std::string_view entries) {
    return Parse(SettingsText(entries), MOX_SETTINGS);
}
inline Document Table(std::string_view entries) {
    return Parse(std::string("<Table name=\"T\">").append(entries).append("</Table>\n"), MOX_TABLE);
}

// The value of a key, or the name of the status.
inline std::string TextOf(const Document& document, std::string_view section, std::string_view name) {
    std::string text(1000, '?');
    size_t size = 0;
    const mox_status status = mox_get_text(document.get(), section.data(), section.size(), name.data(),
                                           name.size(), text.data(), text.size(), &size, nullptr);
    if (status != MOX_OK) return mox_status_name(status);
    EXPECT_EQ(text[size], '\0');
    return text.substr(0, size);
}

inline mox_status SetText(const Document& document, std::string_view section, std::string_view name,
                          std::string_view value, mox_problem* problem = nullptr) {
    return mox_set_text(document.get(), section.data(), section.size(), name.data(), name.size(),
                        value.data(), value.size(), problem);
}

// Names in a list.
inline std::vector<std::string> Names(const mox_list* list) {
    std::vector<std::string> names;
    for (size_t i = 0; i < mox_list_count(list); ++i) {
        const char* name = nullptr;
        size_t size = 0;
        EXPECT_EQ(mox_list_name(list, i, &name, &size), MOX_OK);
        names.emplace_back(name, size);
        EXPECT_EQ(name[size], '\0');
    }
    return names;
}

inline std::vector<std::string> EntryNames(const Document& document, std::string_view section) {
    mox_list* names = nullptr;
    EXPECT_EQ(mox_entry_names(document.get(), section.data(), section.size(), &names, nullptr), MOX_OK);
    return Names(List(names).get());
}

// What the document would save as UTF-8, with these options; the name of the status if it would not.
inline std::string SavedText(const Document& document, mox_save_options options) {
    options.form = MOX_FORM_UTF8;
    void* bytes = nullptr;
    size_t size = 0;
    const mox_status status = mox_to_bytes(document.get(), &options, &bytes, &size, nullptr);
    if (status != MOX_OK) return mox_status_name(status);
    EXPECT_EQ(static_cast<char*>(bytes)[size], '\0');
    std::string text(static_cast<char*>(bytes), size);
    mox_free(bytes);
    return text;
}
inline std::string SavedText(const Document& document) {
    return SavedText(document, Sized<mox_save_options>());
}

// The same of one section. (A save of the document removes "eud", this one does not.)
inline std::string SectionText(const Document& document, std::string_view section) {
    auto options = Sized<mox_save_options>();
    options.section = section.data();
    options.section_size = section.size();
    return SavedText(document, options);
}

// The attribute eud="true", wherever it is in the section.
inline bool HasEud(const Document& document, std::string_view section) {
    return SectionText(document, section).find("eud=\"true\"") != std::string::npos;
}

// A path, in UTF-8, of a file that does not exist yet and is removed at the end of the scope.
class ScratchPath {
  public:
    explicit ScratchPath(const char* name) {
        const char* const folder = std::getenv("MOX_TEST_TMP");
        path_ = std::filesystem::path(folder == nullptr ? "." : folder) / std::filesystem::u8path(name);
        std::filesystem::remove(path_);
        const auto text = path_.u8string();
        utf8_.assign(text.begin(), text.end());
    }
    ~ScratchPath() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    ScratchPath(const ScratchPath&) = delete;
    ScratchPath& operator=(const ScratchPath&) = delete;

    const char* data() const { return utf8_.data(); }
    size_t size() const { return utf8_.size(); }
    std::string Bytes() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    void Write(std::string_view bytes) const {
        std::ofstream(path_, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

  private:
    std::filesystem::path path_;
    std::string utf8_;
};

}  // namespace c_host

#endif
