// The documents that the killed program saves, and that the test expects to find.
#ifndef MOX_XMLAPI_TESTS_FRONT_SAVER_DOCUMENTS_H
#define MOX_XMLAPI_TESTS_FRONT_SAVER_DOCUMENTS_H

#include <cstddef>
#include <string>

#include "mox_xmlApi/mox_xmlApi.hpp"

namespace saver {

// A document whose value repeats the letter. Each letter gives another length.
inline mox::Profile Document(char letter) {
    const std::size_t length = 20000 + 1000 * static_cast<std::size_t>(letter - 'a');
    mox::Profile profile;
    profile.setString("S", "K", std::string(length, letter));
    return profile;
}

}  // namespace saver

#endif
