#include "tools/change_list.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <set>
#include <system_error>
#include <utility>

#include "mox_xmlApi/document/text_format.h"
#include "tools/exit_error.h"
#include "tools/json_depth.h"

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

    // A member that says nothing about such a change would be ignored.
    void RefuseMembers(std::initializer_list<const char*> others) const {
        for (const char* const name : others) {
            if (object_.contains(name)) Fail(Quoted(name) + " does not belong to such a change");
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
            RefuseMembers({"field", "type", "after", "fields"});
            change.value = object_["value"];
            return;
        }
        if (object_.contains("value")) Fail("\"value\" and \"change\" exclude each other");
        if (*kind == "changed") {
            RefuseMembers({"type", "fields"});
            change.kind = Change::Changed;
            change.field = RequiredText("field");
            change.after = RequiredText("after");
        } else if (*kind == "added") {
            RefuseMembers({"field", "before"});
            if (!change.hasEntry) RefuseMembers({"type", "after"});
            change.kind = Change::Added;
            if (change.hasEntry) change.type = RequiredText("type");
            change.after = Text("after");
        } else if (*kind == "removed") {
            RefuseMembers({"field", "after", "fields"});
            if (!change.hasEntry) RefuseMembers({"type", "before"});
            change.kind = Change::Removed;
        } else {
            Fail("unknown change " + Quoted(*kind) + " (expected added, removed or changed)");
        }
    }

    const std::string& path_;
    std::size_t number_;
    const ChangeJson& object_;
};

// Whether a number of JSON is a whole one that has more than 64 bits. It would become a floating-point number, and lose
// digits.
bool IsLongInteger(std::string_view number) {
    if (number.find_first_of(".eE") != std::string_view::npos) return false;
    std::int64_t negative = 0;
    std::uint64_t positive = 0;
    const char* const begin = number.data();
    const char* const end = begin + number.size();
    const auto result =
        number.front() == '-' ? std::from_chars(begin, end, negative) : std::from_chars(begin, end, positive);
    return result.ec != std::errc();
}

// Returns the first such number of a text that is JSON; empty if there is none.
std::string_view FindLongInteger(std::string_view text) {
    constexpr std::string_view kOfNumbers = "+-.0123456789Ee";
    bool isQuoted = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"') isQuoted = !isQuoted;
        if (isQuoted && text[at] == '\\') ++at;
        if (isQuoted || (text[at] != '-' && (text[at] < '0' || text[at] > '9'))) continue;
        const std::size_t end = std::min(text.find_first_not_of(kOfNumbers, at), text.size());
        const std::string_view number = text.substr(at, end - at);
        if (IsLongInteger(number)) return number;
        at = end - 1;
    }
    return {};
}

}  // namespace

std::string RequestedChange::Location() const {
    std::string location = hasSection ? QuotedIfNeeded(section) : "";
    if (hasEntry) location.append(hasSection ? "/" : "").append(QuotedIfNeeded(entry));
    if (occurrence > 1) location += "#" + std::to_string(occurrence);
    return location;
}

std::vector<RequestedChange> ReadChanges(const std::string& path, std::string_view text) {
    if (IsDeepJson(text)) throw ExitError(ExitCode::kSyntaxError, path + ": " + kTooDeepJson);
    ChangeJson list;
    std::vector<std::set<std::string>> members;  // of the objects that are open
    std::optional<std::string> twice;
    const auto watch = [&](int /*depth*/, ChangeJson::parse_event_t event, const ChangeJson& parsed) {
        if (event == ChangeJson::parse_event_t::object_start) members.emplace_back();
        if (event == ChangeJson::parse_event_t::object_end) members.pop_back();
        if (event != ChangeJson::parse_event_t::key) return true;
        const auto name = parsed.get<std::string>();
        if (!members.back().insert(name).second) twice = name;
        return true;
    };
    try {
        list = ChangeJson::parse(text, watch);
    } catch (const ChangeJson::exception& error) {
        const std::string what = error.what();
        const std::size_t end = what.find("] ");  // of the name of the exception
        throw ExitError(ExitCode::kSyntaxError,
                        path + ": not JSON: " + (end == std::string::npos ? what : what.substr(end + 2)));
    }
    if (twice.has_value())
        throw ExitError(ExitCode::kSyntaxError,
                        path + ": an object has the member " + Quoted(*twice) + " twice");
    if (const std::string_view number = FindLongInteger(text); !number.empty()) {
        throw ExitError(ExitCode::kSyntaxError, path + ": the number " + std::string(number) +
                                                    " has more than 64 bits; write it as a text");
    }
    return ChangesFromJson(path, list);
}

std::vector<RequestedChange> ChangesFromJson(const std::string& path, const ChangeJson& list) {
    if (!list.is_array()) throw ExitError(ExitCode::kSyntaxError, path + ": expected a list of changes");
    std::vector<RequestedChange> changes;
    for (const ChangeJson& object : list)
        changes.push_back(Reader(path, changes.size() + 1, object).Read());
    return changes;
}

}  // namespace mox::tool
