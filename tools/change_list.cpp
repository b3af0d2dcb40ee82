#include "tools/change_list.h"

#include <cstdint>
#include <utility>

#include "mox_xmlApi/document/text_format.h"
#include "tools/exit_error.h"

namespace mox::tool {
namespace {

using ChangeJson = nlohmann::json;

class Reader {
  public:
    Reader(const std::string& path, std::size_t number, const ChangeJson& object)
        : path_(path), number_(number), object_(object) {}

    RequestedChange Read() {
        if (!object_.is_object()) Fail("expected an object");
        RequireKnownMembers();
        RequestedChange change;
        change.hasSection = object_.contains("section");
        change.section = Text("section").value_or("");
        change.hasEntry = object_.contains("entry");
        change.entry = Text("entry").value_or("");
        change.before = Text("before");
        change.field = Text("field").value_or("");
        change.type = Text("type").value_or("");
        change.occurrence = ReadOccurrence();
        ReadFields(change);
        ReadKind(change);
        return change;
    }

  private:
    [[noreturn]] void Fail(const std::string& message) const {
        throw ExitError(ExitCode::kSyntaxError,
                        path_ + ": change " + std::to_string(number_) + ": " + message);
    }

    void RequireKnownMembers() const {
        for (const auto& [name, value] : object_.items()) {
            bool isKnown = false;
            for (const char* const known : {"change", "section", "entry", "occurrence", "field", "type",
                                            "before", "after", "fields", "value"})
                isKnown = isKnown || name == known;
            if (!isKnown) Fail("unknown member " + Quoted(name));
        }
    }

    std::optional<std::string> Text(const char* name) const {
        const auto found = object_.find(name);
        if (found == object_.end()) return std::nullopt;
        if (!found->is_string()) Fail(std::string("\"") + name + "\" is not a string");
        return found->get<std::string>();
    }

    std::string RequiredText(const char* name) const {
        std::optional<std::string> text = Text(name);
        if (!text.has_value()) Fail(std::string("\"") + name + "\" is missing");
        return *std::move(text);
    }

    std::size_t ReadOccurrence() const {
        const auto found = object_.find("occurrence");
        if (found == object_.end()) return 1;
        if (!found->is_number_unsigned()) Fail("\"occurrence\" is not a number");
        return found->get<std::size_t>();
    }

    void ReadFields(RequestedChange& change) const {
        const auto found = object_.find("fields");
        if (found == object_.end()) return;
        if (!found->is_object()) Fail("\"fields\" is not an object");
        for (const auto& [name, text] : found->items()) {
            if (!text.is_string()) Fail("the field " + Quoted(name) + " is not a string");
            change.fields.emplace_back(name, text.get<std::string>());
        }
    }

    void ReadKind(RequestedChange& change) const {
        const std::optional<std::string> kind = Text("change");
        if (!kind.has_value()) {
            if (!change.hasEntry) Fail("\"entry\" is missing");
            if (!object_.contains("value")) Fail("\"value\" is missing");
            change.value = object_["value"];
            return;
        }
        if (object_.contains("value")) Fail("\"value\" and \"change\" exclude each other");
        if (*kind == "changed") {
            change.kind = Change::Changed;
            change.field = RequiredText("field");
            change.after = RequiredText("after");
        } else if (*kind == "added") {
            change.kind = Change::Added;
            if (change.hasEntry) change.type = RequiredText("type");
            change.after = Text("after");
        } else if (*kind == "removed") {
            change.kind = Change::Removed;
        } else {
            Fail("unknown change " + Quoted(*kind) + " (expected added, removed or changed)");
        }
    }

    const std::string& path_;
    std::size_t number_;
    const ChangeJson& object_;
};

}  // namespace

std::string RequestedChange::Location() const {
    std::string location = hasSection ? QuotedIfNeeded(section) : "";
    if (hasEntry) location.append(hasSection ? "/" : "").append(QuotedIfNeeded(entry));
    if (occurrence > 1) location += "#" + std::to_string(occurrence);
    return location;
}

std::vector<RequestedChange> ReadChanges(const std::string& path, std::string_view text) {
    ChangeJson list;
    try {
        list = ChangeJson::parse(text);
    } catch (const ChangeJson::exception& error) {
        const std::string what = error.what();
        const std::size_t end = what.find("] ");  // of the name of the exception
        throw ExitError(ExitCode::kSyntaxError,
                        path + ": not JSON: " + (end == std::string::npos ? what : what.substr(end + 2)));
    }
    if (!list.is_array()) throw ExitError(ExitCode::kSyntaxError, path + ": expected a list of changes");
    std::vector<RequestedChange> changes;
    for (const ChangeJson& object : list)
        changes.push_back(Reader(path, changes.size() + 1, object).Read());
    return changes;
}

}  // namespace mox::tool
