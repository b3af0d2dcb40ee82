#include "tests/tool/tool_support.h"
#include "tests/tool/writing_calls.h"

namespace tool {

std::string TextForCalls() {
    return Settings("\t<Table name=\"S\" eud=\"true\">\n" + Var("k", "1") + "\t</Table>\n");
}

Calls LibraryCalls(const std::string& file) {
    return {{"set", file, "S", "k", "2"},
            {"set", file, "S", "k", "2", "--create"},
            {"delete", file, "S", "k"},
            {"delete", file, "S"},
            {"entry", "set", file, "k", "2", "--section", "S"},
            {"entry", "set", file, "k", "--no-ui", "--id", "3", "--section", "S"},
            {"entry", "add", file, "new", "2", "--section", "S"},
            {"entry", "rename", file, "k", "l", "--section", "S"},
            {"entry", "remove", file, "k", "--section", "S"},
            {"section", "add", file, "T"},
            {"section", "remove", file, "S"}};
}

Calls TextCalls(const std::string& file) {
    return {{"section", "set", file, "S", "--first-id", "7"},
            {"section", "rename", file, "S", "T"},
            {"section", "copy", file, "S", "T"}};
}

Calls WritingCalls(const std::string& file) {
    Calls calls = LibraryCalls(file);
    for (const auto& call : TextCalls(file))
        calls.push_back(call);
    return calls;
}

}  // namespace tool
