// EditedFile, a file that a verb changes: read once, changed in memory, and replaced as a whole.
#ifndef MOX_XMLAPI_TOOLS_EDITED_FILE_H
#define MOX_XMLAPI_TOOLS_EDITED_FILE_H

#include <functional>
#include <optional>
#include <string>

#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tools/command_line.h"

namespace mox::tool {

// The arguments of a verb that changes a file.
struct EditArguments {
    FileArgument file{};
    bool withBackup = false;
    bool mayOverwrite = false;

    // Adds FILE, --wide, --narrow, --backup and --overwrite. This object must live until the command line is parsed.
    void AddTo(CLI::App& verb);
};

// What a verb does to a missing file, or to a document without settings or a table.
enum class Missing { Refuse, Create };

class EditedFile {
  public:
    // Reads the file. Throws ExitError if it cannot be read (kIoError), does not parse (kSyntaxError), or is stdin
    // (kUsageError).
    explicit EditedFile(const EditArguments& arguments, Missing missing = Missing::Refuse);

    // Creates a file, which must not exist unless the user said --overwrite. Nothing is written before Save.
    EditedFile(const EditArguments& arguments, Profile&& profile);
    EditedFile(const EditArguments& arguments, Table&& table);

    const std::string& Path() const noexcept { return arguments_.file.path; }

    // The document as it was read; null for a new file.
    const Document* Before() const noexcept { return before_.has_value() ? &*before_ : nullptr; }

    // The document for changes. Opened by the first call, from the bytes that were read. Throws ExitError if it is of
    // another kind (kUsageError), or if it cannot be changed without losing something (kIoError).
    Profile& Settings();
    Table& TableDocument();

    // Replaces the file with the changed document, and prints a note about what that changes besides. `holds` returns
    // whether a document, which is what the new file would be read as, has what was asked for.
    //
    // Throws ExitError (kIoError) on failure; the file is then unchanged. Fails if the file is no longer the one that was
    // read, unless the user said --overwrite.
    void Save(const std::function<bool(const Document& after)>& holds, Output& output);

  private:
    const EditArguments& arguments_;
    Missing missing_ = Missing::Refuse;
    std::string bytes_{};
    FileStamp stamp_{};
    std::optional<Document> before_{};
    std::optional<Profile> profile_{};
    std::optional<Table> table_{};
};

// Ends the verb with a problem about a key, an entry or a section of the file.
[[noreturn]] void ThrowRefused(const EditedFile& file, const Problem& problem);

}  // namespace mox::tool

#endif
