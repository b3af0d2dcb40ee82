#include "tests/faults/power_cut_support.h"

#if !defined(_WIN32)

#include <algorithm>
#include <cstddef>
#include <stdexcept>

#include "tests/host/host_support.h"

namespace faults {
namespace {

FileNumber NumberOf(const std::filesystem::path& path, mode_t& mode) {
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0) throw std::runtime_error("cannot examine " + path.string());
    mode = status.st_mode & 07777;
    return {status.st_dev, status.st_ino};
}

}  // namespace

void DiskModel::File::Flush() {
    flushedContent = content;
    flushedMode = mode;
}

DiskModel::Found DiskModel::File::AfterPowerCut() const {
    Found found{{content, flushedContent}, {mode, flushedMode}};
    if (content == flushedContent) return found;
    const std::size_t half = content.size() / 2;
    const std::string zeros(content.size(), '\0');
    found.contents.insert(content.substr(0, half));
    found.contents.insert(zeros);
    found.contents.insert(content.substr(0, half) + zeros.substr(half));
    found.contents.insert(zeros.substr(0, half) + content.substr(half));
    return found;
}

void DiskModel::Change::ApplyTo(Names& names) const {
    if (!from.second.empty()) names.erase(from);
    if (file != nullptr) names[to] = file;
}

void DiskModel::AddFolder(const std::filesystem::path& folder) {
    mode_t mode = 0;
    const FileNumber number = NumberOf(folder, mode);
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        const auto file = std::make_shared<File>();
        files_[NumberOf(entry.path(), file->mode)] = file;
        file->content = host::ReadBytes(entry.path());
        file->Flush();
        names_[{number, entry.path().filename().string()}] = file;
    }
    flushedNames_ = names_;
}

void DiskModel::Make(Change change) {
    change.ApplyTo(names_);
    unflushed_.push_back(std::move(change));
}

void DiskModel::Apply(const Operation& operation) {
    const Name name(operation.folder, operation.name);
    const Name to(operation.folder, operation.to);
    const auto found = files_.find(operation.file);
    switch (operation.kind) {
        case Operation::Kind::Create: {
            // Its number may be that of a file that is gone.
            const auto file = std::make_shared<File>();
            file->mode = file->flushedMode = operation.mode;
            files_[operation.file] = file;
            Make({{}, name, file});
            break;
        }
        case Operation::Kind::Write: {
            if (found == files_.end()) break;
            std::string& content = found->second->content;
            content.resize(std::max(content.size(), operation.offset + operation.bytes.size()));
            content.replace(operation.offset, operation.bytes.size(), operation.bytes);
            break;
        }
        case Operation::Kind::SetMode:
            if (found != files_.end()) found->second->mode = operation.mode;
            break;
        case Operation::Kind::Flush:
        case Operation::Kind::FlushAll: {
            const bool isAll = operation.kind == Operation::Kind::FlushAll;
            for (const auto& [number, file] : files_) {
                if (isAll || number == operation.file) file->Flush();
            }
            std::vector<Change> left;
            for (const Change& change : unflushed_) {
                const FileNumber& folder = change.file != nullptr ? change.to.first : change.from.first;
                if (isAll || folder == operation.file) {
                    change.ApplyTo(flushedNames_);
                } else {
                    left.push_back(change);
                }
            }
            unflushed_ = left;
            break;
        }
        case Operation::Kind::Rename:
            Make({name, to, names_.at(name)});
            break;
        case Operation::Kind::Link:
            Make({{}, to, names_.at(name)});
            break;
        case Operation::Kind::Remove:
            Make({name, {}, nullptr});
            break;
        case Operation::Kind::Return:
            break;
    }
}

void DiskModel::ForEachState(const std::function<void(const State& state)>& visit) const {
    constexpr std::size_t kMostChanges = 12;
    if (unflushed_.size() > kMostChanges) throw std::runtime_error("too many changes of names");
    for (unsigned chosen = 0; chosen < 1U << unflushed_.size(); ++chosen) {
        Names names = flushedNames_;
        for (std::size_t i = 0; i < unflushed_.size(); ++i) {
            if ((chosen >> i & 1U) != 0) unflushed_[i].ApplyTo(names);
        }
        State state;
        for (const auto& [name, file] : names)
            state[name] = file->AfterPowerCut();
        visit(state);
    }
}

std::string DiskModel::Content(const Name& name) const {
    return names_.at(name)->content;
}

std::set<std::string> DiskModel::NamesIn(const FileNumber& folder) const {
    std::set<std::string> names;
    for (const auto& [name, file] : names_) {
        if (name.first == folder) names.insert(name.second);
    }
    return names;
}

}  // namespace faults

#endif
