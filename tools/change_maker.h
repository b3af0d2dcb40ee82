// Makes a list of changes to a file in memory.
#ifndef MOX_XMLAPI_TOOLS_CHANGE_MAKER_H
#define MOX_XMLAPI_TOOLS_CHANGE_MAKER_H

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tools/change_list.h"
#include "tools/edited_file.h"
#include "tools/expectations.h"

namespace mox::tool {

class ChangeMaker {
  public:
    // Opens the document of the file for changes. Throws what EditedFile throws. The file must outlive this object.
    explicit ChangeMaker(EditedFile& file);

    // Makes all changes, in their order. Throws ExitError, with the number of the change, for the first one that the
    // file or the library refuses; and if a section is removed with an entry that the changes do not remove.
    void MakeAll(const std::vector<RequestedChange>& changes);

    // What the changed file must have.
    const Expectations& Expected() const noexcept { return expectations_; }

  private:
    // The fields of a section that the changes have added or changed.
    struct SectionHeader {
        TableOptions options{};
        bool isEditableChanged = false;  // after the section was added, if it was
    };

    void Make(const RequestedChange& change);
    void RequireRemoved(const RequestedChange& change);
    void RequireAllRemoved() const;

    void ChangeSection(const RequestedChange& change);
    void AddSection(const RequestedChange& change);
    void RemoveSection(const RequestedChange& change);
    void ChangeSectionField(const RequestedChange& change);
    void ChangeEditableTexts();
    TableOptions OptionsOf(const std::string& section) const;
    bool IsOnlySection(const std::string& name) const;

    void SetValue(const RequestedChange& change);
    void WriteInteger(const RequestedChange& change);
    void WriteBytes(const RequestedChange& change);
    template <class T>
    void Write(const RequestedChange& change, const T& value);

    void AddEntry(const RequestedChange& change);
    void RemoveEntry(const RequestedChange& change, EntryTable& table);
    void ChangeField(const RequestedChange& change, EntryTable& table);
    void RequireOldField(const RequestedChange& change) const;
    std::string ExpectedSection(const RequestedChange& change) const;
    EntryTable& TableOf(const RequestedChange& change);

    EditedFile& file_;
    const Document& before_;
    Profile* profile_ = nullptr;        // belongs to the file; null for a table document
    Table* table_ = nullptr;            // belongs to the file; null for a settings document
    std::optional<Section> section_{};  // of the last change
    // The names and occurrences of the entries that the changes remove with each section.
    std::map<std::string, std::set<std::pair<std::string, std::size_t>>> removedSections_{};
    std::map<std::string, std::size_t> removals_{};  // how often a section of that name was removed
    std::map<std::string, SectionHeader> sections_{};
    Expectations expectations_{};
};

// Makes all changes and the content of the new file, and returns what that would be read as. Nothing is written. Throws
// ExitError for the first change that cannot be made, or if the new file would not keep one.
const Document& PrepareChanges(EditedFile& file, const std::vector<RequestedChange>& changes);

}  // namespace mox::tool

#endif
