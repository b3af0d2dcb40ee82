// What the target of mox_host holds it against: the C++ front, which does the same to a second document.
#ifndef MOX_XMLAPI_FUZZ_HOST_TWIN_H
#define MOX_XMLAPI_FUZZ_HOST_TWIN_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "fuzz/fuzz_input.h"
#include "fuzz/tree_check.h"
#include "mox_host/call.h"
#include "mox_host/document_handle.h"
#include "mox_host/mox_host.h"
#include "mox_xmlApi/mox_xmlApi.hpp"
#include "mox_xmlApi/profile/settings.h"
#include "mox_xmlApi/table/table_handle.h"
#include "tests/model/dump.h"

namespace mox::fuzz {

// The whole tree of a document in memory: "eud" and what no function returns, too.
inline std::string TreeOf(const mox_document& document) {
    const auto* const profile = std::get_if<Profile>(&document.content);
    const XmlNode* const root =
        profile != nullptr
            ? profile->handle()->document.root
            : static_cast<const TableHandle*>(std::get<Table>(document.content).handle())->document.root;
    return model::DumpChildren(*CopyTree(*root));
}

// A document that stays the same as another one, to which mox_host does what the front does to this one.
class HostTwin {
  public:
    // Takes ownership of the twin; the other document must outlive this object.
    HostTwin(const mox_document* document, mox_document* twin) noexcept : document_(document), twin_(twin) {}
    ~HostTwin() { mox_document_free(twin_); }
    HostTwin(const HostTwin&) = delete;
    HostTwin& operator=(const HostTwin&) = delete;

    // Checks what a call has returned and done. change(entries, problem) does the same to a section or table.
    template <class Change>
    void CheckEntries(mox_status status, const std::string& section, Change change) {
        if (IsRefusedByHost(status, section)) return;
        Problem problem;
        bool isDone = false;
        if (auto* const profile = std::get_if<Profile>(&twin_->content)) {
            std::optional<Section> found = profile->findSection(section, &problem);
            isDone = found.has_value() && change(static_cast<EntryTable&>(*found), &problem);
        } else {
            isDone = change(static_cast<EntryTable&>(std::get<Table>(twin_->content)), &problem);
        }
        Check(status, isDone, problem);
    }

    // The same for a call that is about sections. change(profile, problem)
    template <class Change>
    void CheckProfile(mox_status status, Change change) {
        auto* const profile = std::get_if<Profile>(&twin_->content);
        fuzz::Check((profile == nullptr) == (status == MOX_WRONG_KIND) || status == MOX_INVALID_ARGUMENT,
                    "a table document has no sections");
        if (profile == nullptr || status == MOX_INVALID_ARGUMENT) return;
        Problem problem;
        const bool isDone = change(*profile, &problem);
        Check(status, isDone, problem);
    }

    // The same for a write of a value.
    template <class T>
    void CheckSet(mox_status status, const std::string& section, const std::string& name, const T& value) {
        if (IsRefusedByHost(status, section)) return;
        Problem problem;
        auto* const profile = std::get_if<Profile>(&twin_->content);
        const bool isDone = profile != nullptr ? profile->set(section, name, value, &problem)
                                               : std::get<Table>(twin_->content).set(name, value, &problem);
        Check(status, isDone, problem);
    }

    // Checks what a call has read.
    template <class T>
    void CheckGet(mox_status status, const std::string& section, const std::string& name,
                  const std::optional<T>& value) const {
        if (IsRefusedByHost(status, section)) return;
        Problem problem;
        const auto* const profile = std::get_if<Profile>(&twin_->content);
        const std::optional<T> expected = profile != nullptr
                                              ? profile->get<T>(section, name, &problem)
                                              : std::get<Table>(twin_->content).get<T>(name, &problem);
        fuzz::Check(status == (expected.has_value() ? MOX_OK : host::StatusOf(problem.reason)),
                    "a read succeeds where the front does");
        fuzz::Check(value == expected, "a read gives what the front does");
    }

    // Checks the bytes of a save; null if it has failed.
    void CheckSave(mox_status status, const mox_save_options& options, const std::string* bytes) {
        const std::string section(options.section == nullptr ? "" : options.section, options.section_size);
        if (IsRefusedByHost(status, section)) return;
        Problem problem;
        std::optional<std::string> expected;
        auto* const profile = std::get_if<Profile>(&twin_->content);
        if (profile == nullptr) {
            expected = std::get<Table>(twin_->content).toBytes(&problem);
        } else if (options.section != nullptr) {
            const std::optional<Section> found = profile->findSection(section, &problem);
            if (found.has_value()) expected = found->toBytes(&problem);
        } else {
            const bool isDefault = options.form == MOX_FORM_DEFAULT;
            const Form form = options.form == MOX_FORM_NARROW ? Form::Narrow : Form::Wide;
            expected = profile->toBytes(isDefault ? profile->form() : form,
                                        static_cast<Content>(options.content), &problem);
        }
        if (expected.has_value() && options.form == MOX_FORM_UTF8)
            expected = exportUtf8(*expected, Form::Wide);
        Check(status, expected.has_value(), problem);
        fuzz::Check(bytes == nullptr || *bytes == expected, "a save gives the bytes of the front");
    }

  private:
    // Whether the front would not have been asked.
    bool IsRefusedByHost(mox_status status, const std::string& section) const {
        const bool isTable = std::holds_alternative<Table>(twin_->content);
        fuzz::Check(!isTable || section.empty() || status != MOX_OK, "a table document has no sections");
        return status == MOX_INVALID_ARGUMENT || (isTable && !section.empty());
    }

    void Check(mox_status status, bool isDone, const Problem& problem) const {
        fuzz::Check(status == (isDone ? MOX_OK : host::StatusOf(problem.reason)),
                    "a call returns what the front does");
        fuzz::Check(TreeOf(*twin_) == TreeOf(*document_), "a call does what the front does");
    }

    const mox_document* document_;
    mox_document* twin_;
};

}  // namespace mox::fuzz

#endif
