// The one file of a fuzz target, in memory where the system has a folder for that.
#ifndef MOX_XMLAPI_FUZZ_SCRATCH_FILE_H
#define MOX_XMLAPI_FUZZ_SCRATCH_FILE_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

#include "fuzz/fuzz_input.h"
#include "mox_xmlApi/platform/wide_text.h"

namespace mox::fuzz {

class ScratchFile {
  public:
    ScratchFile() : path_(Folder() / ("mox_fuzz_" + std::to_string(std::random_device()()) + ".xml")) {
        const std::u16string units = path_.u16string();
        wide_.assign(units.begin(), units.end());
    }
    ~ScratchFile() { Remove(); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    // As the exports take it.
    const wchar16* Name() const { return wide_.c_str(); }

    void Write(std::string_view bytes) const {
        std::ofstream stream(path_, std::ios::binary | std::ios::trunc);
        stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        stream.close();
        Check(stream.good(), "the scratch file can be written");
    }

    std::string Read() const {
        std::ifstream stream(path_, std::ios::binary);
        Check(stream.is_open(), "the scratch file is there");
        return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    }

    void Remove() const {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }

    bool Exists() const { return std::filesystem::exists(path_); }

  private:
    static std::filesystem::path Folder() {
        const char* folder = std::getenv("MOX_TEST_TMP");
        if (folder != nullptr && *folder != '\0') return folder;
        const std::filesystem::path inMemory = "/dev/shm";
        std::error_code ignored;
        return std::filesystem::is_directory(inMemory, ignored) ? inMemory
                                                                : std::filesystem::temp_directory_path();
    }

    std::filesystem::path path_;
    WideString wide_;
};

}  // namespace mox::fuzz

#endif
