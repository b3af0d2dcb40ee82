// The tool as a function, which tests call.
#ifndef MOX_XMLAPI_TOOLS_MAIN_H
#define MOX_XMLAPI_TOOLS_MAIN_H

namespace mox::tool {

// What main does: runs the tool with the arguments of a program, and returns its exit code.
int Main(int argc, char** argv);

}  // namespace mox::tool

#endif
