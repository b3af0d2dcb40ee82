// What belongs to no document: the version, problems, files as they are, diagnostics.
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "mox_host/call.h"
#include "mox_host/list_handle.h"
#include "mox_host/mox_host.h"
#include "mox_host/option_values.h"
#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/document/diagnose.hpp"

using mox::host::FormOf;
using mox::host::Outcome;
using mox::host::RequireBytes;
using mox::host::RequireFlags;
using mox::host::RequirePointers;
using mox::host::RequireTexts;
using mox::host::Run;

uint32_t mox_version(void) {
    return MOX_HOST_MAJOR * 10000 + MOX_HOST_MINOR * 100 + MOX_HOST_PATCH;
}

const char* mox_status_name(mox_status status) {
    switch (status) {
#define MOX_NAME_OF(name) \
    case name:            \
        return #name
        MOX_NAME_OF(MOX_OK);
        MOX_NAME_OF(MOX_NOT_FOUND);
        MOX_NAME_OF(MOX_NO_PERMISSION);
        MOX_NAME_OF(MOX_NOT_REGULAR_FILE);
        MOX_NAME_OF(MOX_TOO_LARGE);
        MOX_NAME_OF(MOX_READ_FAILED);
        MOX_NAME_OF(MOX_WRITE_FAILED);
        MOX_NAME_OF(MOX_CHANGED);
        MOX_NAME_OF(MOX_BUSY);
        MOX_NAME_OF(MOX_UNCONFIRMED);
        MOX_NAME_OF(MOX_SYNTAX);
        MOX_NAME_OF(MOX_WRONG_KIND);
        MOX_NAME_OF(MOX_WRONG_ENCODING);
        MOX_NAME_OF(MOX_TOO_DEEP);
        MOX_NAME_OF(MOX_NO_SUCH_SECTION);
        MOX_NAME_OF(MOX_NO_SUCH_KEY);
        MOX_NAME_OF(MOX_NAME_TAKEN);
        MOX_NAME_OF(MOX_PROTECTED);
        MOX_NAME_OF(MOX_UNREADABLE);
        MOX_NAME_OF(MOX_AMBIGUOUS);
        MOX_NAME_OF(MOX_INVALID_TEXT);
        MOX_NAME_OF(MOX_NOT_KEPT);
        MOX_NAME_OF(MOX_WRONG_TYPE);
        MOX_NAME_OF(MOX_OUT_OF_RANGE);
        MOX_NAME_OF(MOX_NOT_STORED);
        MOX_NAME_OF(MOX_INVALID_ARGUMENT);
        MOX_NAME_OF(MOX_BUFFER_TOO_SMALL);
        MOX_NAME_OF(MOX_OUT_OF_MEMORY);
        MOX_NAME_OF(MOX_INTERNAL_ERROR);
#undef MOX_NAME_OF
        default:
            return "unknown status";
    }
}

void mox_free(void* memory) {
    ::operator delete(memory);
}

// ---- problems

mox_status mox_problem_new(mox_problem** problem) {
    return Run(nullptr, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, problem)) return false;
        *problem = new mox_problem();
        return true;
    });
}

mox_status mox_problem_get(const mox_problem* problem, mox_problem_info* info) {
    if (problem == nullptr || info == nullptr) return MOX_INVALID_ARGUMENT;
    const auto set = [](std::string_view text, const char*& data, size_t& size) {
        data = text.data();
        size = text.size();
    };
    mox_problem_info filled{};
    filled.status = problem->status;
    filled.line = problem->problem.line;
    filled.column = problem->problem.column;
    const bool isFixed = problem->fixed != nullptr;
    set(isFixed ? std::string_view(problem->fixed) : problem->text, filled.text, filled.text_size);
    set(isFixed ? std::string_view(problem->fixed) : problem->problem.message, filled.message,
        filled.message_size);
    set(problem->problem.file, filled.file, filled.file_size);
    set(problem->problem.found, filled.found, filled.found_size);
    set(problem->problem.expected, filled.expected, filled.expected_size);
    return mox::host::GiveStructure(filled, info);
}

void mox_problem_free(mox_problem* problem) {
    delete problem;
}

// ---- files

mox_status mox_read_file(const char* path, size_t path_size, void** bytes, size_t* size,
                         mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        if (!RequirePointers(outcome, bytes, size) || !RequireTexts(outcome, {{path, path_size}}))
            return false;
        const std::optional<std::string> content =
            mox::readFile(std::string_view(path, path_size), nullptr, outcome.Why());
        if (!content.has_value()) return false;
        *bytes = mox::host::CopyForHost(*content);
        *size = content->size();
        return true;
    });
}

mox_status mox_diagnose(const void* bytes, size_t size, uint32_t form, uint32_t flags, mox_list** diagnostics,
                        mox_problem* problem) {
    return Run(problem, [&](Outcome& outcome) {
        std::optional<mox::Form> asForm;
        if (!RequirePointers(outcome, diagnostics) || !RequireBytes(outcome, bytes, size) ||
            !FormOf(form, asForm, outcome) || !RequireFlags(outcome, flags, MOX_DIAGNOSE_VALUES))
            return false;
        mox::DiagnoseOptions options;
        options.values = (flags & MOX_DIAGNOSE_VALUES) != 0;
        auto list = std::make_unique<mox_list>(mox_list::Kind::Diagnostics);
        for (const mox::Diagnostic& diagnostic :
             mox::diagnose({static_cast<const char*>(bytes), size}, asForm, options))
            list->AddDiagnostic(diagnostic);
        *diagnostics = list.release();
        return true;
    });
}
