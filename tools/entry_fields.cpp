#include "tools/entry_fields.h"

#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/entries/entry_codes.h"
#include "tools/exit_error.h"

namespace mox::tool {
Control ControlOf(const std::string& name) {
    const mox::Text text(name);
    const std::uint16_t code = ControlKindFromName(text.units());
    if (Utf8(ControlKindToName(code)) != name)
        throw ExitError(ExitCode::kUsageError,
                        "unknown control " + QuotedIfNeeded(name) +
                            " (expected num, text, switch, no_edit, rgb, button, text_array, named_array, "
                            "switch_array, radio_array, state, named_list_array, radio or prop_array)");
    return static_cast<Control>(code);
}

Owner OwnerOf(const std::string& name) {
    if (name.empty()) return Owner::None;
    const mox::Text text(name);
    const std::uint8_t code = OwnerFromName(text.units());
    if (Utf8(OwnerToName(code)) != name)
        throw ExitError(ExitCode::kUsageError,
                        "unknown provider " + QuotedIfNeeded(name) + " (expected app, dwg or erg)");
    return static_cast<Owner>(code);
}

ValueType ValueTypeOf(const std::string& name) {
    const mox::Text text(name);
    std::uint16_t code = 0;
    if (!ValueTypeFromName(text.units(), WideView(), code))
        throw ExitError(ExitCode::kUsageError,
                        "unknown type " + QuotedIfNeeded(name) +
                            " (expected short, long, double, string, bool, char, byte, ushort, ulong or "
                            "ucstring)");
    return static_cast<ValueType>(code);
}

void EntryFields::AddTo(CLI::App& verb) {
    value_.AddTo(verb);
    type_ =
        verb.add_option("--type", typeText_, R"(Value type, for example "long"; a new entry has "string")");
    CLI::Option* const array = verb.add_flag("--array", isArray_, "The value is an array of that type");
    verb.add_flag("--vector", isVector_, "The value is a vector of that type")->excludes(array);
    id_ = verb.add_option("--id", idNumber_, "Id of the entry");
    control_ = verb.add_option("--control", controlText_, R"(Presentation data: control, for example "num")");
    shownName_ = verb.add_option("--shown-name", shownNameText_, "Presentation data: name shown to users");
    comment_ = verb.add_option("--comment", commentText_, "Presentation data: comment");
    provider_ = verb.add_option("--provider", providerText_, "Presentation data: provider (app, dwg or erg)");
    providerIndex_ =
        verb.add_option("--provider-index", providerNumber_, "Presentation data: provider index");
    uiValue_ = verb.add_option("--ui-value", uiValueText_, "Presentation data: value (needs a comment)");
}

bool EntryFields::HasUi() const {
    const bool hasText = !shownNameText_.empty() || !commentText_.empty() || !providerText_.empty();
    return hasText || control_->count() > 0 || providerNumber_ != 0 || uiValue_->count() > 0;
}

void EntryFields::Apply(Entry& entry) const {
    if (HasType()) entry.type = ValueTypeOf(typeText_);
    if (isArray_) entry.shape = Shape::Array;
    if (isVector_) entry.shape = Shape::Vector;
    if (id_->count() > 0) entry.id = idNumber_;
    if (!HasUi()) return;
    if (!entry.ui.has_value()) entry.ui.emplace();
    Presentation& ui = *entry.ui;
    if (control_->count() > 0) ui.control = ControlOf(controlText_);
    if (shownName_->count() > 0) ui.shownName = shownNameText_;
    if (comment_->count() > 0) ui.comment = commentText_;
    if (provider_->count() > 0) ui.providerOwner = OwnerOf(providerText_);
    if (providerIndex_->count() > 0) ui.providerIndex = providerNumber_;
    if (uiValue_->count() > 0) ui.value = uiValueText_;
}

bool EntryFields::Clear(EntryTable& table, const std::string& name, Problem& problem) const {
    if (ClearsComment() && !table.setComment(name, "", &problem)) return false;
    if (ClearsShownName() && !table.setShownName(name, "", &problem)) return false;
    if (!ClearsProvider()) return true;
    const std::optional<Entry> entry = table.find(name, &problem);
    if (!entry.has_value()) return false;
    Presentation ui = entry->ui.value_or(Presentation());
    if (provider_->count() > 0) ui.providerOwner = OwnerOf(providerText_);
    if (providerIndex_->count() > 0) ui.providerIndex = providerNumber_;
    return table.setProvider(name, ui.providerOwner, ui.providerIndex, &problem);
}

bool EntryFields::AreIn(const DocumentEntry& entry) const {
    const DocumentPresentation none;
    const DocumentPresentation& ui = entry.ui == nullptr ? none : *entry.ui;
    const auto isText = [](const CLI::Option* option, const std::string& given, const std::string& found) {
        return option->count() == 0 || given == found;
    };
    const auto isNumber = [](const CLI::Option* option, std::uint32_t given, std::uint32_t found) {
        return option->count() == 0 || given == found;
    };
    return isText(type_, typeText_, entry.type) && (!isArray_ || entry.shape == "array") &&
           (!isVector_ || entry.shape == "vector") && isNumber(id_, idNumber_, entry.id) &&
           isText(control_, controlText_, ui.control) && isText(shownName_, shownNameText_, ui.shownName) &&
           isText(comment_, commentText_, ui.comment) && isText(provider_, providerText_, ui.provider) &&
           isNumber(providerIndex_, providerNumber_, ui.providerIndex) &&
           isText(uiValue_, uiValueText_, ui.value);
}

}  // namespace mox::tool
