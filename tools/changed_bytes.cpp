#include "tools/changed_bytes.h"

#include "tools/change_maker.h"
#include "tools/edited_file.h"

namespace mox::tool {

std::string ChangedBytes(const std::string& path, std::string_view bytes, Form form,
                         const std::vector<RequestedChange>& changes) {
    EditArguments arguments;
    arguments.file.path = path;
    EditedFile file(arguments, std::string(bytes), form);
    PrepareChanges(file, changes);
    return file.NewBytes();
}

}  // namespace mox::tool
