// The verbs. Each function adds a family of them to the command line; they run while it is parsed, write to the session,
// and end by Stop when something is wrong. The session must live as long as the command line.
#ifndef MOX_XMLAPI_TOOLS_VERBS_H
#define MOX_XMLAPI_TOOLS_VERBS_H

#include <CLI/CLI.hpp>

#include "tools/outcome.h"

namespace mox::tool {

void AddKeyVerbs(CLI::App& app, Session& session);         // sections, keys, get
void AddKeyWritingVerbs(CLI::App& app, Session& session);  // set, delete
void AddEntryVerbs(CLI::App& app, Session& session);       // entries, entry get|set|add|remove
void AddShowVerb(CLI::App& app, Session& session);         // show
void AddFileVerbs(CLI::App& app, Session& session);        // export, convert
void AddDiffVerb(CLI::App& app, Session& session);         // diff
void AddCheckVerb(CLI::App& app, Session& session);        // check

}  // namespace mox::tool

#endif
