// The fields of an entry as command-line arguments.
#ifndef MOX_XMLAPI_TOOLS_ENTRY_FIELDS_H
#define MOX_XMLAPI_TOOLS_ENTRY_FIELDS_H

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "mox_xmlApi/mox_xmlApi.hpp"

namespace mox::tool {

// The field arguments of `entry set` and `entry add`.
class EntryFields {
  public:
    // Adds [VALUE] --type --array --vector --id --control --shown-name --comment --provider --provider-index --ui-value.
    // Parsing the command line sets this object, which must live until then. The other functions need the verb, which
    // owns the options.
    void AddTo(CLI::App& verb);

    bool HasValue() const { return value_->count() > 0; }
    const std::string& Value() const noexcept { return valueText_; }
    // Whether a field other than the value was given.
    bool HasOthers() const { return type_->count() + id_->count() > 0 || isArray_ || isVector_ || HasUi(); }

    // Sets the fields of the entry that were given; the others stay. Throws ExitError (kUsageError) for an unknown type,
    // control or provider.
    void Apply(Entry& entry) const;

    // All texts that were given. Those that were not are empty.
    std::vector<std::string> Texts() const {
        return {valueText_, shownNameText_, commentText_, uiValueText_};
    }

    // Whether presentation data were given.
    bool HasUi() const;

  private:
    std::string valueText_{};
    std::string typeText_{};
    std::string controlText_{};
    std::string shownNameText_{};
    std::string commentText_{};
    std::string providerText_{};
    std::string uiValueText_{};
    std::uint32_t idNumber_ = 0;
    std::uint32_t providerNumber_ = 0;
    bool isArray_ = false;
    bool isVector_ = false;
    CLI::Option* value_ = nullptr;
    CLI::Option* type_ = nullptr;
    CLI::Option* id_ = nullptr;
    CLI::Option* control_ = nullptr;
    CLI::Option* shownName_ = nullptr;
    CLI::Option* comment_ = nullptr;
    CLI::Option* provider_ = nullptr;
    CLI::Option* providerIndex_ = nullptr;
    CLI::Option* uiValue_ = nullptr;
};

}  // namespace mox::tool

#endif
