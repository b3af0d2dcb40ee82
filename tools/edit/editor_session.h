// EditorSession, one file that is edited in a page: read once, shown as a form, changed by lists of changes, and
// replaced as a whole. It knows nothing of the network.
#ifndef MOX_XMLAPI_TOOLS_EDIT_EDITOR_SESSION_H
#define MOX_XMLAPI_TOOLS_EDIT_EDITOR_SESSION_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/document/document.hpp"
#include "tools/change_list.h"
#include "tools/changed_file.h"
#include "tools/command_line.h"
#include "tools/json_output.h"

namespace mox::tool {

struct SessionOptions {
    FileArgument file{};
    bool isReadOnly = false;
    std::string choicesPath{};  // of a JSON file with the choices that providers offer; empty: none
};

class EditorSession {
  public:
    // Reads the file. Throws ExitError if it cannot be read (kIoError), does not parse or is in another encoding
    // (kSyntaxError), or has neither settings nor a table (kUsageError); also if the choices cannot be read.
    explicit EditorSession(const SessionOptions& options);

    const std::string& Path() const noexcept { return options_.file.path; }

    // The document for the page: what FormJson says, and
    //
    //     {"file": "camera.xml", "path": "/etc/camera.xml", "version": 1, "readOnly": "why", "choices": {...}}
    //
    // "version" counts the states of the file that the session has seen. "readOnly" is missing if the file can be
    // changed.
    Json Form() const;

    // What a save would do: {"asked": [...], "besides": [...]}, both lists of differences (see DifferenceJson).
    // "besides" has what the save changes without being asked, because of how the library writes. Throws ExitError if
    // the changes cannot be made, like `apply`, or `version` is not that of the form.
    Json Preview(std::uint64_t version, const std::vector<RequestedChange>& changes) const;

    // Replaces the file, as `apply` does. Returns one of
    //
    //     {"saved": true, "document": <Form()>}
    //     {"unchanged": true}                     the changes leave the file as it is
    //     {"conflict": {"version": 2, "rows": [...]}}
    //     {"conflict": {"version": 2, "unreadable": "why"}}
    //
    // A conflict means that the file has changed since it was read, and that nothing was written. Each row is one field
    // of an entry that somebody has changed: {"section", "entry", "field", "base", "theirs", "mine", "by"}, "base"
    // being the file as it was read and "theirs" the one on disk now. A version in which the entry is missing has no
    // text. "by" is "theirs", "mine", "both" (alike) or "conflict". Rebase or Overwrite go on from there.
    //
    // Throws ExitError like Preview, and if the file cannot be replaced; the file is then unchanged, unless the message
    // says that it was replaced.
    Json Save(std::uint64_t version, const std::vector<RequestedChange>& changes, bool withBackup);

    // Goes on with the file on disk that the last conflict has shown, and returns its form. The changes that were made
    // to the old one are the page's to make again. Throws ExitError unless `version` is that of the conflict and it is
    // readable.
    Json Rebase(std::uint64_t version);

    // After a conflict with a file that cannot be read: like Save, but replaces that file, unless it has changed again.
    Json Overwrite(std::uint64_t version, const std::vector<RequestedChange>& changes, bool withBackup);

  private:
    // The file at one moment. There is no document if it could not be read or does not parse.
    struct State {
        std::string bytes{};
        FileStamp stamp{};
        std::optional<Document> document{};
        std::string problem{};  // why there is no document
        std::uint64_t version = 0;
    };

    State ReadState() const;
    void RequireVersion(const State& state, std::uint64_t version) const;
    void RequireWritable() const;
    ChangedFile Changed(const std::vector<RequestedChange>& changes) const;
    Json Replace(const FileStamp& expected, const std::vector<RequestedChange>& changes, bool withBackup);
    Json Conflict(const Document& mine);

    SessionOptions options_;
    Json choices_ = Json::object();
    State current_{};
    std::optional<State> onDisk_{};  // what the last conflict has shown
    std::string readOnly_{};         // why nothing can be changed; empty if it can
    std::uint64_t lastVersion_ = 0;
};

}  // namespace mox::tool

#endif
