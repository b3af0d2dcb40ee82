// The generated documents as files in a folder that lies in memory.
#ifndef BENCH_DOCUMENT_FILES_H
#define BENCH_DOCUMENT_FILES_H

#include <filesystem>
#include <string>

#include "bench/contestant.h"

namespace bench {

// A folder of this process, removed at the end with what is in it. Throws std::filesystem::filesystem_error.
class MemoryFolder {
  public:
    MemoryFolder();
    MemoryFolder(const MemoryFolder&) = delete;
    MemoryFolder& operator=(const MemoryFolder&) = delete;
    ~MemoryFolder();

    std::string File(const std::string& name) const;

  private:
    std::filesystem::path path_;
};

// One document in the requested forms, and always as narrow XML. The files are deleted with the object.
class DocumentFiles {
  public:
    struct Forms {
        bool wide;
        bool ini;
    };
    explicit DocumentFiles(const DocumentShape& shape, Forms forms = {true, true});

    const MemoryFolder& Folder() const { return folder_; }
    const Source& Files() const { return source_; }
    const std::string& Xml() const { return xml_; }

  private:
    MemoryFolder folder_;
    Source source_;
    std::string xml_;
};

// Throw CheckFailed.
void WriteFile(const std::string& path, const std::string& bytes);
std::string ReadFile(const std::string& path);

}  // namespace bench

#endif
