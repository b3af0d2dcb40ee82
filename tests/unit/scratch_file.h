// Files of the tests' own, byte for byte.
#ifndef MOX_XMLAPI_TESTS_UNIT_SCRATCH_FILE_H
#define MOX_XMLAPI_TESTS_UNIT_SCRATCH_FILE_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <string_view>

#include "mox_xmlApi/platform/wide_text.h"

namespace mox::test {

// The folder that the tests may write to: MOX_TEST_TMP, or the system's own.
inline std::filesystem::path ScratchFolder() {
    const char* folder = std::getenv("MOX_TEST_TMP");
    return folder != nullptr && *folder != '\0' ? std::filesystem::path(folder)
                                                : std::filesystem::temp_directory_path();
}

inline WideString WidePath(const std::filesystem::path& path) {
    const std::u16string units = path.u16string();
    return {units.begin(), units.end()};
}

// The name of a file that does not exist yet. The file, if one is made, goes at the end of the scope.
class ScratchFile {
  public:
    explicit ScratchFile(std::u16string_view name = u"mox_xml_test.xml")
        : path_(ScratchFolder() / std::u16string(name)), wide_(WidePath(path_)) {
        std::filesystem::remove(path_);
    }
    ~ScratchFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    const wchar16* Name() const { return wide_.c_str(); }
    bool Exists() const { return std::filesystem::exists(path_); }

    std::string Bytes() const {
        std::ifstream stream(path_, std::ios::binary);
        EXPECT_TRUE(stream.is_open()) << path_;
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }
    void Write(std::string_view bytes) const {
        std::ofstream stream(path_, std::ios::binary | std::ios::trunc);
        stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        stream.close();
        EXPECT_TRUE(stream.good()) << path_;
    }

  private:
    std::filesystem::path path_;
    WideString wide_;
};

// The units as bytes, the low byte of each first.
inline std::string WideBytes(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes.append(1, static_cast<char>(static_cast<unsigned char>(unit & 0xFF)));
        bytes.append(1, static_cast<char>(static_cast<unsigned char>(unit >> 8)));
    }
    return bytes;
}

}  // namespace mox::test

#endif
