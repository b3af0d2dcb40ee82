// The table on which the entry verbs work: that of a table document, or a section of a settings document.
#ifndef MOX_XMLAPI_TOOLS_ENTRY_TARGET_H
#define MOX_XMLAPI_TOOLS_ENTRY_TARGET_H

#include <optional>
#include <string>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tools/command_line.h"
#include "tools/document_model.h"

namespace mox::tool {

// FILE --section
struct TargetArguments {
    FileArgument file{};
    std::string section{};
    CLI::Option* sectionOption = nullptr;

    void AddTo(CLI::App& verb);
    bool HasSection() const { return sectionOption != nullptr && sectionOption->count() > 0; }
};

class EntryTarget {
  public:
    // Opens the document. Throws Stop when it has no such table.
    explicit EntryTarget(const TargetArguments& arguments);

    // The table as plain values, as it was in the file.
    const TableModel& Model() const noexcept { return *model_; }

    EntryTable& Entries();
    Form GetForm() const noexcept { return source_.GetForm(); }

    // Replaces the file by the changed document.
    void Save(bool withBackup);

  private:
    SourceFile source_;
    DocumentModel document_;
    const TableModel* model_ = nullptr;
    std::optional<Profile> profile_;
    std::optional<Section> section_;
    std::optional<Table> table_;
};

}  // namespace mox::tool

#endif
