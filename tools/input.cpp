#include "tools/input.h"

#include <utility>

#include "tools/exit_error.h"

namespace mox::tool {
namespace {

const InputReader* unread = nullptr;  // the reader of this run, until it is called

}  // namespace

Input::Input(const InputReader& reader) noexcept {
    unread = &reader;
}

Input::~Input() {
    unread = nullptr;
}

std::string Input::ReadAll() {
    const InputReader* const reader = std::exchange(unread, nullptr);
    if (reader == nullptr) throw ExitError(ExitCode::kUsageError, "stdin can be used only once");
    return (*reader)();
}

}  // namespace mox::tool
