// Documents: making, opening and saving them; their sections.
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "mox_host/call.h"
#include "mox_host/document_handle.h"
#include "mox_host/list_handle.h"
#include "mox_host/mox_host.h"
#include "mox_host/option_values.h"

namespace mox::host {
namespace {

constexpr const char* kUnknownKind = "the kind of document is unknown";

bool TakeTableOptions(Outcome& outcome, const mox_table_options* given, TableOptions& options) noexcept {
    mox_table_options taken{};
    if (!TakeStructure(outcome, given, taken)) return false;
    if (taken.editable > 1) return outcome.RefuseArgument("\"editable\" is neither 0 nor 1");
    if (taken.type > 0xFFFF) return outcome.RefuseArgument("the type of a table is larger than 65535");
    options.editable = taken.editable == 1;
    options.firstId = taken.first_id;
    options.type = static_cast<std::uint16_t>(taken.type);
    return true;
}

// ---- opening

struct OpenArguments {
    std::uint32_t kind{};
    OpenOptions options{};
    std::optional<Encoding> encoding{};
    std::string_view tableName{};
};

bool TakeOpenArguments(Outcome& outcome, std::uint32_t kind, const mox_open_options* given,
                       OpenArguments& arguments) noexcept {
    mox_open_options taken{};
    if (kind != MOX_SETTINGS && kind != MOX_TABLE) return outcome.RefuseArgument(kUnknownKind);
    if (!TakeStructure(outcome, given, taken) || !FormOf(taken.form, arguments.options.form, outcome) ||
        !EncodingOf(taken.encoding, arguments.encoding, outcome) ||
        !RequireFlags(outcome, taken.flags, MOX_OPEN_ANY) ||
        !RequireTexts(outcome, {{taken.table_name, taken.table_name_size}}))
        return false;
    if (arguments.encoding.has_value() && (taken.form != 0 || taken.flags != 0))
        return outcome.RefuseArgument("an import has neither a form nor flags");
    if (kind == MOX_SETTINGS && taken.table_name_size != 0)
        return outcome.RefuseArgument("a settings document has no name");
    arguments.kind = kind;
    arguments.options.anyDocument = (taken.flags & MOX_OPEN_ANY) != 0;
    arguments.tableName = {taken.table_name, taken.table_name_size};
    return true;
}

template <class Opened>
bool Adopt(std::optional<Opened>&& opened, std::unique_ptr<mox_document>& document) {
    if (!opened.has_value()) return false;
    // NOLINTNEXTLINE(modernize-make-unique): clang 14 makes no aggregates in parentheses
    document.reset(new mox_document{std::move(*opened)});
    return true;
}

bool Parse(std::string_view bytes, const OpenArguments& arguments, std::unique_ptr<mox_document>& document,
           Problem* problem) {
    const Text name(arguments.tableName);
    const bool isTable = arguments.kind == MOX_TABLE;
    if (arguments.encoding.has_value()) {
        return isTable ? Adopt(Table::import(bytes, *arguments.encoding, name, problem), document)
                       : Adopt(Profile::import(bytes, *arguments.encoding, problem), document);
    }
    return isTable ? Adopt(Table::parse(bytes, name, arguments.options, problem), document)
                   : Adopt(Profile::parse(bytes, arguments.options, problem), document);
}

bool Open(const Text& path, const OpenArguments& arguments, std::unique_ptr<mox_document>& document,
          Problem* problem) {
    if (arguments.encoding.has_value()) {
        const std::optional<std::string> bytes = readFile(path, nullptr, problem);
        return bytes.has_value() &&
               (Parse(*bytes, arguments, document, problem) || front::FailInFile(problem, path));
    }
    if (arguments.kind == MOX_TABLE)
        return Adopt(Table::open(path, arguments.tableName, arguments.options, problem), document);
    return Adopt(Profile::open(path, arguments.options, problem), document);
}

// ---- saving

struct SaveArguments {
    mox_save_options given{};
    Content content = Content::Document;
    std::optional<Form> form{};
    bool isUtf8 = false;
};

// What both saves check; `isFile` is false for bytes.
bool TakeSaveArguments(Outcome& outcome, const mox_document& document, const mox_save_options* options,
                       bool isFile, SaveArguments& arguments) noexcept {
    mox_save_options& given = arguments.given;
    if (!TakeStructure(outcome, options, given) || !ContentOf(given.content, arguments.content, outcome) ||
        !RequireFlags(outcome, given.flags, isFile ? MOX_SAVE_OVERWRITE : 0) ||
        !RequireTexts(outcome, {{given.backup, given.backup_size}, {given.section, given.section_size}}))
        return false;
    if (!isFile && given.backup != nullptr) return outcome.RefuseArgument("bytes in memory have no backup");
    arguments.isUtf8 = given.form == MOX_FORM_UTF8 && !isFile;
    if (!arguments.isUtf8 && !FormOf(given.form, arguments.form, outcome)) return false;
    const bool isTable = std::holds_alternative<Table>(document.content);
    if (!isTable && given.section == nullptr) return true;
    if (given.content != MOX_CONTENT_DOCUMENT)
        return outcome.RefuseArgument("tables and sections are always saved as they are");
    return given.form != MOX_FORM_NARROW || outcome.RefuseArgument("tables and sections are never narrow");
}

// Calls use(profile), or use(entries) for a table or section.
template <class Use>
bool WithSaved(const mox_document& document, const SaveArguments& arguments, Outcome& outcome, Use use) {
    const auto* const profile = std::get_if<Profile>(&document.content);
    if (profile != nullptr && arguments.given.section == nullptr) return use(*profile);
    return WithEntries(document, std::string_view(arguments.given.section, arguments.given.section_size),
                       outcome, use);
}

std::optional<std::string> BytesOf(const Profile& profile, const SaveArguments& arguments, Problem* problem) {
    const Form form = arguments.isUtf8 ? Form::Wide : arguments.form.value_or(profile.form());
    return profile.toBytes(form, arguments.content, problem);
}

std::optional<std::string> BytesOf(const EntryTable& entries, const SaveArguments& /*arguments*/,
                                   Problem* problem) {
    return entries.toBytes(problem);
}

// ---- sections

// Calls use(profile) for a settings document.
template <class Document, class Use>
bool WithProfile(Document& document, Outcome& outcome, Use use) {
    auto* const profile = std::get_if<Profile>(&document.content);
    if (profile == nullptr) return outcome.Refuse(MOX_WRONG_KIND, "a table document has no sections");
    return use(*profile);
}

}  // namespace
}  // namespace mox::host

using namespace mox::host;  // NOLINT(google-build-using-namespace): what is defined here are functions of C

// ---- making and opening

mox_status mox_new_settings(mox_document** document, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, document)) return false;
        *document = new mox_document{mox::Profile()};
        return true;
    });
}

mox_status mox_new_table(const char* name, size_t name_size, const mox_table_options* options,
                         mox_document** document, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        mox::TableOptions tableOptions;
        if (!RequirePointers(outcome, document) || !RequireTexts(outcome, {{name, name_size}}) ||
            !TakeTableOptions(outcome, options, tableOptions))
            return false;
        auto table = mox::Table::create(std::string_view(name, name_size), tableOptions, outcome.Why());
        if (!table) return false;
        *document = new mox_document{std::move(table)};
        return true;
    });
}

mox_status mox_open(const char* path, size_t path_size, uint32_t kind, const mox_open_options* options,
                    mox_document** document, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        OpenArguments arguments;
        std::unique_ptr<mox_document> opened;
        if (!RequirePointers(outcome, document) || !RequireTexts(outcome, {{path, path_size}}) ||
            !TakeOpenArguments(outcome, kind, options, arguments) ||
            !Open(std::string_view(path, path_size), arguments, opened, outcome.Why()))
            return false;
        *document = opened.release();
        return true;
    });
}

mox_status mox_parse(const void* bytes, size_t size, uint32_t kind, const mox_open_options* options,
                     mox_document** document, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        OpenArguments arguments;
        std::unique_ptr<mox_document> opened;
        if (!RequirePointers(outcome, document) || !RequireBytes(outcome, bytes, size) ||
            !TakeOpenArguments(outcome, kind, options, arguments) ||
            !Parse({static_cast<const char*>(bytes), size}, arguments, opened, outcome.Why()))
            return false;
        *document = opened.release();
        return true;
    });
}

mox_status mox_document_get_info(const mox_document* document, mox_document_info* info) {
    if (document == nullptr || info == nullptr) return MOX_INVALID_ARGUMENT;
    mox_document_info filled{};
    const auto* const profile = std::get_if<mox::Profile>(&document->content);
    filled.kind = profile != nullptr ? MOX_SETTINGS : MOX_TABLE;
    const bool isNarrow = profile != nullptr && profile->form() == mox::Form::Narrow;
    filled.form = isNarrow ? MOX_FORM_NARROW : MOX_FORM_WIDE;
    return GiveStructure(filled, info);
}

mox_status mox_set_form(mox_document* document, uint32_t form, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        std::optional<mox::Form> newForm;
        if (!RequirePointers(outcome, document) || !FormOf(form, newForm, outcome)) return false;
        auto* const profile = std::get_if<mox::Profile>(&document->content);
        if (profile == nullptr) return outcome.RefuseArgument("a table document is always wide");
        if (!newForm.has_value()) return outcome.RefuseArgument("the form is neither narrow nor wide");
        profile->setForm(*newForm);
        return true;
    });
}

// ---- saving

mox_status mox_save(mox_document* document, const char* path, size_t path_size,
                    const mox_save_options* options, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        SaveArguments arguments;
        if (!RequirePointers(outcome, document) || !RequireTexts(outcome, {{path, path_size}}) ||
            !TakeSaveArguments(outcome, *document, options, true, arguments))
            return false;
        const mox_save_options& given = arguments.given;
        mox::SaveOptions saving;
        saving.form = arguments.form;
        saving.content = arguments.content;
        saving.overwrite = (given.flags & MOX_SAVE_OVERWRITE) != 0;
        if (given.backup != nullptr) saving.backup.emplace(std::string_view(given.backup, given.backup_size));
        return WithSaved(*document, arguments, outcome, [&](const auto& saved) {
            return saved.saveReplacing(std::string_view(path, path_size), saving, outcome.Why());
        });
    });
}

mox_status mox_to_bytes(mox_document* document, const mox_save_options* options, void** bytes, size_t* size,
                        mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        SaveArguments arguments;
        if (!RequirePointers(outcome, document, bytes, size) ||
            !TakeSaveArguments(outcome, *document, options, false, arguments))
            return false;
        std::optional<std::string> content;
        const bool isMade = WithSaved(*document, arguments, outcome, [&](const auto& saved) {
            content = BytesOf(saved, arguments, outcome.Why());
            return content.has_value();
        });
        if (!isMade) return false;
        if (arguments.isUtf8) content = mox::exportUtf8(*content, mox::Form::Wide);
        *bytes = CopyForHost(*content);
        *size = content->size();
        return true;
    });
}

void mox_document_free(mox_document* document) {
    delete document;
}

// ---- sections

mox_status mox_section_names(const mox_document* document, mox_list** names, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, document, names)) return false;
        auto list = std::make_unique<mox_list>(mox_list::Kind::Names);
        const bool isDone = WithProfile(*document, outcome, [&](const mox::Profile& profile) {
            for (const std::string& name : profile.sectionNames())
                list->AddName(name);
            return true;
        });
        if (isDone) *names = list.release();
        return isDone;
    });
}

mox_status mox_section_get_info(const mox_document* document, const char* section, size_t section_size,
                                mox_section_info* info, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, document, info) || !RequireTexts(outcome, {{section, section_size}}))
            return false;
        return WithProfile(*document, outcome, [&](const mox::Profile& profile) {
            const auto found = profile.findSection(std::string_view(section, section_size), outcome.Why());
            if (!found.has_value()) return false;
            mox_section_info filled{};
            filled.editable = found->isEditable() ? 1 : 0;
            return GiveStructure(filled, info) == MOX_OK || outcome.RefuseArgument(kUnknownSize);
        });
    });
}

mox_status mox_make_section(mox_document* document, const char* section, size_t section_size,
                            const mox_table_options* options, mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        mox::TableOptions tableOptions;
        if (!RequirePointers(outcome, document) || !RequireTexts(outcome, {{section, section_size}}) ||
            !TakeTableOptions(outcome, options, tableOptions))
            return false;
        return WithProfile(*document, outcome, [&](mox::Profile& profile) {
            return profile.makeSection(std::string_view(section, section_size), tableOptions, outcome.Why())
                .has_value();
        });
    });
}

mox_status mox_remove_section(mox_document* document, const char* section, size_t section_size,
                              mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, document) || !RequireTexts(outcome, {{section, section_size}}))
            return false;
        return WithProfile(*document, outcome, [&](mox::Profile& profile) {
            return profile.removeSection(std::string_view(section, section_size), outcome.Why());
        });
    });
}
