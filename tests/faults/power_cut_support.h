// A model of what a power cut may leave of files, from the operations that were made on them. Linux only.
//
// What has not been flushed may be on the disk or not: of the content of a file a part, or zeros, or nothing; its mode
// bits or those before; each change of a name by itself, in any order. A rename is there as a whole or not at all.
// Flushing a file says nothing about its names; those are flushed with their folder.
#ifndef MOX_XMLAPI_TESTS_FAULTS_POWER_CUT_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_POWER_CUT_SUPPORT_H

#if !defined(_WIN32)

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/faults/recorded_disk_support.h"

namespace faults {

class DiskModel {
  public:
    // A name and the folder that it is in.
    using Name = std::pair<FileNumber, std::string>;

    // Takes over what is in the folder, all of it flushed.
    void AddFolder(const std::filesystem::path& folder);

    void Apply(const Operation& operation);

    // What a name may be after a power cut: the contents that its file may have, and its mode bits. A name that is not
    // there has none.
    struct Found {
        std::set<std::string> contents;
        std::set<mode_t> modes;
    };
    // The names that there are.
    using State = std::map<Name, Found>;

    // Calls `visit` with each combination of names that a power cut may leave now.
    void ForEachState(const std::function<void(const State& state)>& visit) const;

    // What is there without a power cut.
    std::string Content(const Name& name) const;
    std::set<std::string> NamesIn(const FileNumber& folder) const;

  private:
    struct File {
        std::string content;
        std::string flushedContent;
        mode_t mode = 0;
        mode_t flushedMode = 0;

        void Flush();
        Found AfterPowerCut() const;
    };
    using Names = std::map<Name, std::shared_ptr<File>>;

    // `from` disappears, or nothing if it is empty; `to` is the file, or nothing if it is null.
    struct Change {
        Name from;
        Name to;
        std::shared_ptr<File> file;

        void ApplyTo(Names& names) const;
    };

    void Make(Change change);

    std::map<FileNumber, std::shared_ptr<File>> files_;
    Names names_;
    Names flushedNames_;
    std::vector<Change> unflushed_;
};

}  // namespace faults

#endif

#endif
