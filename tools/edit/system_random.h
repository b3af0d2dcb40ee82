// Secrets from the system's generator of random numbers.
#ifndef MOX_XMLAPI_TOOLS_EDIT_SYSTEM_RANDOM_H
#define MOX_XMLAPI_TOOLS_EDIT_SYSTEM_RANDOM_H

#include <string>

namespace mox::tool {

// 64 hexadecimal digits: 256 random bits. Throws ExitError (kIoError) if the system gives none; there is no weaker
// form.
std::string RandomSecret();

}  // namespace mox::tool

#endif
