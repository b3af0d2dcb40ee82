// Work in a process of its own, where it can give up privileges or set limits permanently. Linux only.
#ifndef MOX_XMLAPI_TESTS_FAULTS_CHILD_PROCESS_SUPPORT_H
#define MOX_XMLAPI_TESTS_FAULTS_CHILD_PROCESS_SUPPORT_H

#if !defined(_WIN32)

#include <functional>
#include <string>

namespace faults {

// Runs the work in a child and returns what it returned: what was wrong, or nothing. A child that dies is wrong, too.
std::string InChild(const std::function<std::string()>& work);

// Turns this process into one without privileges, if it has any. Returns whether it has none now.
bool GiveUpPrivileges();

}  // namespace faults

#endif

#endif
