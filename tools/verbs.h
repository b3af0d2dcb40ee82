// The verbs of the command line. A function here adds the verbs of one source to `app`. A verb runs as a callback while
// the command line is parsed: it prints to `output`, which must outlive `app`, and throws ExitError on failure.
//
// To add a verb, write its source and enter its function here, twice. Then describe it in mox-xml.1 and completion/;
// tests/tool/all_verbs_test.cpp compares both with --help.
#ifndef MOX_XMLAPI_TOOLS_VERBS_H
#define MOX_XMLAPI_TOOLS_VERBS_H

#include <CLI/CLI.hpp>

#include "tools/output.h"

namespace mox::tool {

void AddKeyVerbs(CLI::App& app, Output& output);         // sections, keys, get
void AddKeyWritingVerbs(CLI::App& app, Output& output);  // set, delete
void AddEntryVerbs(CLI::App& app, Output& output);       // entries, entry get|set|add|rename|remove
void AddDocumentVerbs(CLI::App& app, Output& output);    // new, section add|set|rename|copy|remove
void AddShowVerb(CLI::App& app, Output& output);         // show
void AddFileVerbs(CLI::App& app, Output& output);        // export
void AddConvertVerb(CLI::App& app, Output& output);      // convert
void AddDiffVerb(CLI::App& app, Output& output);         // diff
void AddApplyVerb(CLI::App& app, Output& output);        // apply
void AddCheckVerb(CLI::App& app, Output& output);        // check
void AddEditVerb(CLI::App& app, Output& output);         // edit, form

// In the order of --help.
inline constexpr void (*kVerbSources[])(CLI::App& app, Output& output) = {
    AddKeyVerbs,    AddKeyWritingVerbs, AddEntryVerbs, AddDocumentVerbs, AddShowVerb, AddFileVerbs,
    AddConvertVerb, AddDiffVerb,        AddApplyVerb,  AddCheckVerb,     AddEditVerb};

}  // namespace mox::tool

#endif
