#include "bench/document_files.h"

#include <fstream>
#include <iterator>
#include <unistd.h>

namespace bench {

MemoryFolder::MemoryFolder() {
    static int count = 0;
    const std::filesystem::path shared("/dev/shm");
    const std::filesystem::path base =
        std::filesystem::is_directory(shared) ? shared : std::filesystem::temp_directory_path();
    path_ = base / ("mox_bench." + std::to_string(getpid()) + "." + std::to_string(count++));
    std::filesystem::create_directory(path_);
}

MemoryFolder::~MemoryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string MemoryFolder::File(const std::string& name) const {
    return (path_ / name).string();
}

DocumentFiles::DocumentFiles(const DocumentShape& shape, Forms forms) : xml_(MakeXml(shape)) {
    source_ = {folder_.File("narrow.xml"), folder_.File("wide.xml"), folder_.File("data.ini")};
    WriteFile(source_.narrowXml, xml_);
    if (forms.wide) WriteFile(source_.wideXml, Widen(xml_));
    if (forms.ini) WriteFile(source_.ini, MakeIni(shape));
}

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    Check(file.good(), "cannot write ", path);
}

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    Check(file.is_open(), "cannot read ", path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace bench
