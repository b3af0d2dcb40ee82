#include "tests/faults/recorded_disk_support.h"

#if !defined(_WIN32)

#include <sys/syscall.h>
#include <unistd.h>

namespace faults {
namespace {

bool isRecording = false;
std::vector<Operation> recorded;

}  // namespace

FileNumber NumberOf(int file) {
    struct stat status {};
    syscall(SYS_fstat, file, &status);
    return {status.st_dev, status.st_ino};
}

std::string Describe(const Operation& operation) {
    static const char* const kNames[] = {"create", "write", "set mode", "flush", "flush all",
                                         "rename", "link",  "remove",   "return"};
    std::string text = kNames[static_cast<std::size_t>(operation.kind)];
    if (!operation.name.empty()) text += " " + operation.name;
    if (!operation.to.empty()) text += " to " + operation.to;
    if (operation.kind == Operation::Kind::Write)
        text += " " + std::to_string(operation.bytes.size()) + " bytes";
    return text;
}

RecordedFiles::RecordedFiles() {
    recorded.clear();
    isRecording = true;
}

RecordedFiles::~RecordedFiles() {
    isRecording = false;
}

const std::vector<Operation>& RecordedFiles::Operations() const {
    return recorded;
}

bool IsRecording() {
    return isRecording;
}

void Record(Operation operation) {
    if (isRecording) recorded.push_back(std::move(operation));
}

}  // namespace faults

#endif
