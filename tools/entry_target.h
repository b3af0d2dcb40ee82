// The table that an entry verb works on: that of a table document, or a section of a settings document.
#ifndef MOX_XMLAPI_TOOLS_ENTRY_TARGET_H
#define MOX_XMLAPI_TOOLS_ENTRY_TARGET_H

#include <optional>
#include <string>

#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tools/command_line.h"

namespace mox::tool {

// The arguments that select the table.
struct TargetArguments {
    FileArgument file{};
    std::string section{};
    CLI::Option* sectionOption = nullptr;  // null until AddTo; belongs to the verb

    // Adds FILE, --wide, --narrow and --section. This object must live until the command line is parsed.
    void AddTo(CLI::App& verb);
    bool HasSection() const { return sectionOption != nullptr && sectionOption->count() > 0; }
};

class EntryTarget {
  public:
    // Reads the file. Throws ExitError if it cannot be read (kIoError), does not parse (kSyntaxError), is of the wrong
    // kind (kUsageError), or lacks the section (kNotFound).
    explicit EntryTarget(const TargetArguments& arguments);

    // The table as it is in the file. It belongs to this object.
    const DocumentTable& Model() const noexcept { return *model_; }

    // The table for changes, opened by the first call. It belongs to this object. Throws ExitError if it cannot be
    // opened.
    EntryTable& Entries();
    Form GetForm() const noexcept { return document_.form(); }

    // Replaces the file with the changed document, if Entries was called. Throws ExitError (kIoError) on failure; the
    // file is then unchanged.
    void Save(bool withBackup);

  private:
    std::string path_;
    Document document_;
    const DocumentTable* model_ = nullptr;
    std::optional<Profile> profile_;
    std::optional<Section> section_;
    std::optional<Table> table_;
};

}  // namespace mox::tool

#endif
