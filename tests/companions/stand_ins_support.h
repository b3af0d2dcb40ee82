// Companion functions of another make, in the place of the project's own: they may throw, and do no more than their
// names say. This program defines them, so the library's calls come here; the rest of the companions stays.
#ifndef MOX_XMLAPI_TESTS_COMPANIONS_STAND_INS_SUPPORT_H
#define MOX_XMLAPI_TESTS_COMPANIONS_STAND_INS_SUPPORT_H

#include <string>
#include <vector>

namespace companions {

// What the functions throw.
struct Failure {
    std::string function;
};

// From now on the call of that number, 1 for the next one, of the function of that name throws; all others work.
void FailAt(int number, const std::string& function);
// From now on the call of that number of a conversion, SetVal or SetVal_w returns false and changes nothing.
void RefuseAt(int number, const std::string& function);
// No call throws or refuses.
void FailNever();

// The functions that were called since the last call of this, in their order; pdSwprintf with its format.
std::vector<std::string> TakeCalls();

}  // namespace companions

#endif
