// What the program that is killed saves, and what the tests expect to find.
#ifndef MOX_XMLAPI_TESTS_FRONT_SAVER_DOCUMENTS_H
#define MOX_XMLAPI_TESTS_FRONT_SAVER_DOCUMENTS_H

#include <cstddef>
#include <string>

#include "mox_xmlApi/mox_xmlApi.hpp"

namespace saver {

// A document full of the letter; each letter gives another length.
inline mox::Profile Document(char letter) {
    const std::size_t length = 20000 + 1000 * static_cast<std::size_t>(letter - 'a');
    mox::Profile profile;
    profile.setString("S", "K", std::string(length, letter));
    return profile;
}

}  // namespace saver

#endif
