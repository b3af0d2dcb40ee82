// The fields of an entry as command-line arguments.
#ifndef MOX_XMLAPI_TOOLS_ENTRY_FIELDS_H
#define MOX_XMLAPI_TOOLS_ENTRY_FIELDS_H

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>

#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tools/value_argument.h"

namespace mox::tool {

// The type, control or provider of that name; of an empty name, Owner::None. Throw ExitError (kUsageError) if there is none.
ValueType ValueTypeOf(const std::string& name);
Control ControlOf(const std::string& name);
Owner OwnerOf(const std::string& name);

// The field arguments of `entry set` and `entry add`.
class EntryFields {
  public:
    // Adds [VALUE] --stdin --value-from --type --array --vector --id --control --shown-name --comment --provider
    // --provider-index --ui-value. Parsing the command line sets this object, which must live until then. The other
    // functions need the verb, which owns the options.
    void AddTo(CLI::App& verb);

    const ValueArgument& Value() const noexcept { return value_; }
    bool HasType() const { return type_->count() > 0; }

    // Whether fields besides the value were given that Apply sets.
    bool HasOthers() const { return HasType() || id_->count() > 0 || isArray_ || isVector_ || HasUi(); }
    // Whether presentation data were given, empty or not.
    bool HasPresentation() const { return HasUi() || HasCleared(); }
    // Whether fields were given that only Clear sets: presentation data without a value.
    bool HasCleared() const { return ClearsComment() || ClearsShownName() || ClearsProvider(); }

    // Sets the fields of the entry that were given; the others stay. Throws ExitError (kUsageError) for an unknown type,
    // control or provider.
    void Apply(Entry& entry) const;

    // Clears the fields of an entry in the table that were given as empty or 0. Returns false on failure.
    bool Clear(EntryTable& table, const std::string& name, Problem& problem) const;

    // Whether the entry has the fields that were given, not counting the value.
    bool AreIn(const DocumentEntry& entry) const;

  private:
    // Whether presentation data were given that Apply sets.
    bool HasUi() const;
    bool ClearsComment() const { return comment_->count() > 0 && commentText_.empty(); }
    bool ClearsShownName() const { return shownName_->count() > 0 && shownNameText_.empty(); }
    bool ClearsProvider() const {
        return (provider_->count() > 0 && providerText_.empty()) ||
               (providerIndex_->count() > 0 && providerNumber_ == 0);
    }

    ValueArgument value_{};
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
