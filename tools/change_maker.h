// Makes a list of changes to a file in memory.
#ifndef MOX_XMLAPI_TOOLS_CHANGE_MAKER_H
#define MOX_XMLAPI_TOOLS_CHANGE_MAKER_H

#include <cstddef>
#include <map>
#include <optional>
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
    // The first section of a name, as the changes so far have left it; or the table of a table document.
    struct SectionState {
        std::size_t removals = 0;  // how many of the file's sections of the name are removed
        // The place in removedSections_ of the one that was removed last, until the name is used for anything but
        // removing the entries of that.
        std::optional<std::size_t> lastRemoved{};
        std::map<std::string, std::size_t> removedEntries{};  // how many of each name
        std::optional<TableOptions> options{};                // once a field is added or changed
        bool isEditableChanged = false;                       // after the section was added, if it was
    };

    // A section of the file that the changes remove, and the entries that they have not removed yet, by name and
    // occurrence.
    struct RemovedSection {
        std::string name{};
        std::map<std::pair<std::string, std::size_t>, const DocumentEntry*> left{};
    };

    void Make(const RequestedChange& change);
    SectionState& StateOf(const RequestedChange& change);
    const DocumentTable* InFile(const RequestedChange& change) const;
    const DocumentEntry* EntryInFile(const RequestedChange& change) const;
    void RemoveFrom(RemovedSection& section, const RequestedChange& change) const;
    void RequireAllRemoved() const;

    void ChangeSection(const RequestedChange& change);
    void AddSection(const RequestedChange& change);
    void RemoveSection(const RequestedChange& change);
    void ChangeSectionField(const RequestedChange& change);
    void ChangeEditableTexts();

    void SetValue(const RequestedChange& change);
    void WriteInteger(const RequestedChange& change);
    void WriteBytes(const RequestedChange& change);
    template <class T>
    void Write(const RequestedChange& change, const T& value);

    void AddEntry(const RequestedChange& change);
    void RemoveEntry(const RequestedChange& change, EntryTable& table);
    void ChangeField(const RequestedChange& change, EntryTable& table);
    void RequireOldField(const RequestedChange& change) const;
    void Expect(const RequestedChange& change, const std::string& field, const std::string& text);
    std::string KeyOf(const RequestedChange& change) const;
    EntryTable& TableOf(const RequestedChange& change);

    EditedFile& file_;
    const Document& before_;
    Profile* profile_ = nullptr;        // belongs to the file; null for a table document
    Table* table_ = nullptr;            // belongs to the file; null for a settings document
    std::optional<Section> section_{};  // of the last change
    std::map<std::string, std::vector<const DocumentTable*>> inFile_{};  // by KeyOf, in their order
    std::map<std::string, SectionState> sections_{};                     // by KeyOf
    std::vector<RemovedSection> removedSections_{};
    Expectations expectations_{};
};

// Makes all changes and the content of the new file, and returns what that would be read as. Nothing is written. Throws
// ExitError for the first change that cannot be made, or if the new file would not keep one.
const Document& PrepareChanges(EditedFile& file, const std::vector<RequestedChange>& changes);

}  // namespace mox::tool

#endif
