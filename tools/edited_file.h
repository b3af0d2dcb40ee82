// EditedFile, a file that a verb changes: read once, changed in memory, and replaced as a whole.
#ifndef MOX_XMLAPI_TOOLS_EDITED_FILE_H
#define MOX_XMLAPI_TOOLS_EDITED_FILE_H

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "mox_xmlApi/disk/file_lock.hpp"
#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tools/command_line.h"
#include "tools/lock_arguments.h"

namespace mox::tool {

// The arguments of a verb that changes a file.
struct EditArguments {
    FileArgument file{};
    bool withBackup = false;
    bool mayOverwrite = false;
    LockArguments lock{};

    // Adds FILE, --wide, --narrow, --backup, --overwrite, --lock and --lock-timeout. This object must live until the
    // command line is parsed.
    void AddTo(CLI::App& verb);
};

// What a verb does to a missing file, or to a document without settings or a table.
enum class Missing { Refuse, Create };

class EditedFile {
  public:
    // Changes the bytes of a file; nullopt, with the problem set, on failure. See document/text_edit.hpp.
    using TextChange =
        std::function<std::optional<std::string>(std::string_view bytes, Form form, Problem* problem)>;

    // Reads the file, and locks it before if the user asks for that. Throws ExitError if it cannot be read or locked
    // (kIoError), does not parse (kSyntaxError), or is stdin (kUsageError).
    explicit EditedFile(const EditArguments& arguments, Missing missing = Missing::Refuse);

    // Changes these bytes, which the file has, in memory: nothing is read or locked. Throws ExitError (kSyntaxError) if
    // they do not parse.
    EditedFile(const EditArguments& arguments, std::string bytes, Form form);

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

    // Adds a change of the text. It is made after those of the document, on the bytes to which that is saved; if the
    // document was not opened for changes, on the bytes of the file.
    void ChangeText(TextChange change) { textChanges_.push_back(std::move(change)); }

    // Makes the content of the new file. Returns what it would be read as, which belongs to this object. Throws ExitError
    // (kIoError) if the document cannot be saved.
    const Document& Prepare();

    // Move out what Prepare has made. Then nothing can be written.
    std::string TakeNewBytes() { return std::move(newBytes_); }
    Document TakeAfter() { return *std::move(after_); }

    // Replaces the file with what Prepare has made, and prints a note about what that changes besides. `changedEud` has
    // the entries of a table document whose "eud" the user has asked to change.
    //
    // Throws ExitError (kIoError) on failure; the file is then unchanged. Fails if the file is no longer the one that was
    // read, unless the user said --overwrite.
    void Write(Output& output, const std::set<std::string>& changedEud = {});

    // Both. `holds` returns whether the document that Prepare returns has what was asked for; if not, nothing is written
    // (kIoError).
    void Save(const std::function<bool(const Document& after)>& holds, Output& output);

  private:
    void Lock();

    const EditArguments& arguments_;
    Missing missing_ = Missing::Refuse;
    std::optional<FileLock> lock_{};
    std::string bytes_{};
    FileStamp stamp_{};
    std::optional<Document> before_{};
    std::optional<Profile> profile_{};
    std::optional<Table> table_{};
    std::vector<TextChange> textChanges_{};
    std::string newBytes_{};
    std::optional<Document> after_{};
};

// Ends the verb with a problem about a key, an entry or a section of the file.
[[noreturn]] void ThrowRefused(const EditedFile& file, const Problem& problem);

}  // namespace mox::tool

#endif
