#include "tools/arguments.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "mox_xmlApi/document/text_format.h"
#include "tools/exit_error.h"
#include "tools/nearest_words.h"

namespace mox::tool {
namespace {

bool IsDigit(char character) noexcept {
    return character >= '0' && character <= '9';
}

// The names that `verb` gives its verbs.
std::vector<std::string> VerbNames(const CLI::App& verb) {
    std::vector<std::string> names;
    for (const CLI::App* inner : verb.get_subcommands({}))
        names.push_back(inner->get_name());
    return names;
}

// The verbs near `word`, with their full names but without that of the program.
std::vector<std::string> NearestVerbs(const CLI::App& verb, const std::string& word) {
    std::string prefix;
    for (const CLI::App* outer = &verb; outer->get_parent() != nullptr; outer = outer->get_parent())
        prefix.insert(0, outer->get_name() + " ");
    std::vector<std::string> nearest = NearestWords(word, VerbNames(verb));
    for (std::string& name : nearest)
        name.insert(0, prefix);
    if (!nearest.empty()) return nearest;
    for (const CLI::App* inner : verb.get_subcommands({})) {
        const std::vector<std::string> more = NearestVerbs(*inner, word);
        nearest.insert(nearest.end(), more.begin(), more.end());
    }
    return nearest;
}

std::vector<std::string> OptionNames(const CLI::App& verb) {
    std::vector<std::string> names;
    for (const CLI::Option* option : verb.get_options()) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    }
    return names;
}

class Sorter {
  public:
    Sorter(const CLI::App& program, const std::vector<std::string>& given)
        : next_(given.begin()), end_(given.end()) {
        arguments_.verb = &program;
    }

    Arguments Run() {
        ReadVerb();
        std::vector<std::string> early;
        early.swap(early_);
        for (const std::string& option : early)
            ReadOption(option, false);
        while (next_ != end_)
            ReadArgument();
        if (isHelp_) {
            words_.emplace_back("--help");
            others_.clear();
        } else {
            RequireUsableOptions();
        }
        RequireVerb();
        words_.insert(words_.end(), options_.begin(), options_.end());
        if (!others_.empty()) words_.emplace_back("--");
        words_.insert(words_.end(), others_.begin(), others_.end());
        arguments_.words = std::move(words_);
        return std::move(arguments_);
    }

  private:
    bool IsVerbMissing() const { return arguments_.verb->get_require_subcommand_min() > 0; }

    // Reads the verb, or the two words of one, and the options between.
    void ReadVerb() {
        while (IsVerbMissing() && next_ != end_ && *next_ != "--") {
            const std::string& word = *next_++;
            if (IsOption(word)) {
                early_.push_back(word);
                continue;
            }
            const CLI::App* const inner = FindVerb(word);
            if (inner == nullptr) {
                ThrowUsageError(*arguments_.verb, "unknown verb " + QuotedIfNeeded(word) +
                                                      NearestText(NearestVerbs(*arguments_.verb, word)));
            }
            arguments_.verb = inner;
            words_.push_back(word);
        }
    }

    const CLI::App* FindVerb(const std::string& name) const {
        for (const CLI::App* inner : arguments_.verb->get_subcommands({})) {
            if (inner->get_name() == name) return inner;
        }
        return nullptr;
    }

    void RequireVerb() const {
        const bool isAnswered = isHelp_ || !options_.empty();  // the program and a group have --version alone
        if (IsVerbMissing() && !isAnswered) ThrowUsageError(*arguments_.verb, "a verb is required");
    }

    void ReadArgument() {
        const std::string& argument = *next_++;
        if (isAfterDashes_ || (argument != "--" && !IsOption(argument))) {
            others_.push_back(argument);
        } else if (argument == "--") {
            isAfterDashes_ = true;
        } else {
            ReadOption(argument, true);
        }
    }

    // Only after the verb may the value of an option be the next argument.
    void ReadOption(const std::string& argument, bool mayTakeNext) {
        const bool isLong = argument.rfind("--", 0) == 0;
        const std::size_t equals = isLong ? argument.find('=') : std::string::npos;
        const std::string name = argument.substr(0, equals);
        const CLI::Option* const option = arguments_.verb->get_option_no_throw(name);
        if (option == nullptr) {
            if (!unknownOption_.has_value()) unknownOption_ = name;
            return;
        }
        const bool hasValue = option->get_items_expected_max() > 0;
        if (!hasValue && equals != std::string::npos) return SetProblem(name + " takes no value");
        if (name == "--help" || name == "-h") isHelp_ = true;
        options_.push_back(name);
        if (!hasValue) return;
        if (equals != std::string::npos) {
            options_.push_back(argument.substr(equals + 1));
        } else if (mayTakeNext && next_ != end_) {
            options_.push_back(*next_++);
        } else {
            SetProblem(name + (mayTakeNext ? " requires a value" : " requires a value after \"=\""));
        }
    }

    void RequireUsableOptions() const {
        if (unknownOption_.has_value()) {
            const std::vector<std::string> nearest =
                NearestWords(*unknownOption_, OptionNames(*arguments_.verb));
            const bool hasHint = nearest.empty() || IsArgumentMissing();
            ThrowUsageError(*arguments_.verb, "unknown option " + QuotedIfNeeded(*unknownOption_) +
                                                  NearestText(nearest) + (hasHint ? kDashHint : ""));
        }
        if (problem_.has_value()) ThrowUsageError(*arguments_.verb, *problem_);
    }

    // Whether a required argument is missing, so that an option may have been meant for it.
    bool IsArgumentMissing() const {
        std::size_t required = 0;
        for (const CLI::Option* option : arguments_.verb->get_options()) {
            if (option->get_positional() && option->get_required()) ++required;
        }
        return others_.size() < required;
    }

    void SetProblem(const std::string& message) {
        if (!problem_.has_value()) problem_ = message;
    }

    std::vector<std::string>::const_iterator next_;
    std::vector<std::string>::const_iterator end_;
    Arguments arguments_{};
    std::vector<std::string> words_{};
    std::vector<std::string> early_{};    // options before the verb
    std::vector<std::string> options_{};  // options with their values
    std::vector<std::string> others_{};
    bool isAfterDashes_ = false;
    bool isHelp_ = false;
    std::optional<std::string> unknownOption_{};  // the first one
    std::optional<std::string> problem_{};        // the first other one
};

}  // namespace

Arguments SortArguments(const CLI::App& program, const std::vector<std::string>& given) {
    return Sorter(program, given).Run();
}

std::string FullName(const CLI::App& verb) {
    std::string name = verb.get_name();
    for (const CLI::App* outer = verb.get_parent(); outer != nullptr; outer = outer->get_parent())
        name.insert(0, outer->get_name() + " ");
    return name;
}

bool IsOption(const std::string& argument) noexcept {
    if (argument.size() < 2 || argument[0] != '-') return false;
    return !IsDigit(argument[1]) && !(argument.size() > 2 && argument[1] == '.' && IsDigit(argument[2]));
}

void ThrowUsageError(const CLI::App& verb, const std::string& message) {
    throw ExitError(ExitCode::kUsageError, message + " (see \"" + FullName(verb) + " --help\")");
}

}  // namespace mox::tool
