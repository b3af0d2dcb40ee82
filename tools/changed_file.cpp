#include "tools/changed_file.h"

#include "tools/change_maker.h"
#include "tools/edited_file.h"

namespace mox::tool {

ChangedFile MakeChangedFile(const std::string& path, std::string_view bytes, Form form,
                            const std::vector<RequestedChange>& changes) {
    EditArguments arguments;
    arguments.file.path = path;
    EditedFile file(arguments, std::string(bytes), form);
    PrepareChanges(file, changes);
    return {file.TakeNewBytes(), file.TakeAfter()};
}

}  // namespace mox::tool
