// The table that an entry verb works on: that of a table document, or a section of a settings document.
#ifndef MOX_XMLAPI_TOOLS_ENTRY_TARGET_H
#define MOX_XMLAPI_TOOLS_ENTRY_TARGET_H

#include <functional>
#include <optional>
#include <string>

#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tools/edited_file.h"

namespace mox::tool {

// The arguments that select the table.
struct TargetArguments {
    EditArguments edit{};
    std::string section{};
    CLI::Option* sectionOption = nullptr;  // null until one of the next two; belongs to the verb

    // Add the arguments of a verb that reads or changes the table. This object must live until the command line is
    // parsed.
    void AddForReading(CLI::App& verb);
    void AddForWriting(CLI::App& verb);

    bool HasSection() const { return sectionOption != nullptr && sectionOption->count() > 0; }
    const std::string& Path() const noexcept { return edit.file.path; }
};

// The table in a document that was read. Throws ExitError if the document is of the wrong kind (kUsageError) or lacks the
// section (kNotFound).
const DocumentTable& FindTarget(const TargetArguments& arguments, const Document& document);

class EditedTable {
  public:
    // Reads the file. Throws what EditedFile and FindTarget throw.
    explicit EditedTable(const TargetArguments& arguments);

    // The table for changes. It belongs to this object.
    EntryTable& Entries() noexcept { return *entries_; }

    // The table as it was read.
    const DocumentTable& Before() const { return FindTarget(arguments_, *file_.Before()); }

    // Ends the verb with a problem about an entry.
    [[noreturn]] void ThrowRefused(const Problem& problem) const { tool::ThrowRefused(file_, problem); }

    // Removes the presentation data of the entry, after all other changes.
    void RemovePresentation(const std::string& name);

    // See EditedFile::Save; `holds` gets the table.
    void Save(const std::function<bool(const DocumentTable& after)>& holds, Output& output);

  private:
    const TargetArguments& arguments_;
    EditedFile file_;
    std::optional<Section> section_{};
    EntryTable* entries_ = nullptr;
};

}  // namespace mox::tool

#endif
