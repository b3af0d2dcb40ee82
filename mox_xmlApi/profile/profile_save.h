// Saving a profile: as it stands, or as an export that is rebuilt from what the entries say.
#ifndef MOX_XMLAPI_PROFILE_PROFILE_SAVE_H
#define MOX_XMLAPI_PROFILE_PROFILE_SAVE_H

#include <cstdint>

#include "mox_xmlApi/profile/settings.h"

namespace mox {

// The modes of xmlProfileSave. Every other number is an export whose entries carry nothing.
inline constexpr std::uint32_t kSaveDocument = 0;
inline constexpr std::uint32_t kExportPresentation = 1;
inline constexpr std::uint32_t kExportValues = 2;

// Removes "eud" from the sections and their entries and writes the document. Results and flags are those of
// XmlDocument::Save; "eud" is removed also if that fails.
bool WriteToFile(moxSettings& settings, const wchar16* path, bool refuse, bool wide);

// Writes an export of the profile in another mode than kSaveDocument. The profile itself does not change.
// Throws kSectionUpdateFailed as ObtainSection does, std::bad_alloc, std::length_error.
bool WriteExport(moxSettings& settings, const wchar16* path, std::uint32_t mode, bool refuse, bool wide);

}  // namespace mox

#endif
