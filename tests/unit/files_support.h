// What the tests of files share: a folder for each test, and files read and written with and without the library.
#ifndef MOX_XMLAPI_TESTS_UNIT_FILES_SUPPORT_H
#define MOX_XMLAPI_TESTS_UNIT_FILES_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

#include "mox_xmlApi/platform/files.h"
#include "mox_xmlApi/platform/wide_text.h"

namespace mox::test {

namespace fs = std::filesystem;

// A folder of its own for each test, removed afterwards.
class Files : public testing::Test {
  protected:
    Files() {
        const char* const given = std::getenv("MOX_TEST_TMP");
        const fs::path parent = given != nullptr ? fs::path(given) : fs::temp_directory_path();
        const char* const name = testing::UnitTest::GetInstance()->current_test_info()->name();
        folder_ = parent / (std::string("files_test_") + name);
        fs::remove_all(folder_);
        fs::create_directories(folder_);
    }
    ~Files() override {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    fs::path At(WideView name) const { return folder_ / fs::path(WideString(name)); }

    static WideString Wide(const fs::path& path) { return path.string<wchar16>(); }

    // The bytes of a file, read by the standard library.
    static std::string BytesOf(const fs::path& path) {
        std::ifstream stream(path, std::ios::binary);
        EXPECT_TRUE(stream.is_open()) << path;
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    static void Make(const fs::path& path, const std::string& bytes) {
        std::ofstream stream(path, std::ios::binary);
        stream << bytes;
        ASSERT_TRUE(stream.good());
    }

    // Everything an InputFile gives, taken in pieces.
    static std::string ReadAll(InputFile& file, std::size_t piece) {
        std::string bytes;
        std::string buffer(piece, '#');
        for (;;) {
            const std::size_t count = file.Read(buffer.data(), piece);
            bytes.append(buffer, 0, count);
            if (count < piece) return bytes;
        }
    }

    // Writes a whole file; whether that was reported as done.
    static bool Write(const wchar16* path, const std::string& bytes) {
        OutputFile file(path);
        const bool written = file.Write(bytes.data(), bytes.size());
        const bool closed = file.Close();
        EXPECT_EQ(written, closed);
        return closed;
    }

    static bool Write(const fs::path& path, const std::string& bytes) {
        return Write(Wide(path).c_str(), bytes);
    }

    fs::path folder_;
};

// Bytes of every value, more than any block.
inline std::string ManyBytes(std::size_t size) {
    std::string bytes(size, '\0');
    std::uint32_t state = 1;
    for (char& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

}  // namespace mox::test

#endif
