// The keys of a profile: the entries of its sections.
#ifndef MOX_XMLAPI_PROFILE_KEYS_H
#define MOX_XMLAPI_PROFILE_KEYS_H

#include "mox_xmlApi/profile/settings.h"

namespace mox {

// The value text of a key: that of its first entry, or of that entry's presentation data when it is empty. An
// empty key is the first entry that has a name. The view lasts until the profile changes. False when there is
// no such section or key, or no known type. Does not throw.
bool ReadKeyValue(moxSettings& settings, WideView section, WideView key, WideView& value) noexcept;

// Sets the value text of a key; a section or key that is missing is made. False when there is no root. May
// throw std::bad_alloc or std::length_error; a section made by then stays.
bool WriteKeyValue(moxSettings& settings, WideView section, WideView key, WideView value);

// Removes every entry called `key` (an empty key: those with an empty name). False when none was there.
bool RemoveKey(moxSettings& settings, WideView section, WideView key) noexcept;

// Removes a section. False when none was there.
bool RemoveSection(moxSettings& settings, WideView section) noexcept;

}  // namespace mox

#endif
