// The sections of a profile: the elements under its root.
//
// Look-ups by name see "Table" elements alone; the enumeration sees every element. Hosts rely on both.
#ifndef MOX_XMLAPI_PROFILE_SECTIONS_H
#define MOX_XMLAPI_PROFILE_SECTIONS_H

#include <cstdint>
#include <memory>

#include "mox_xmlApi/entries/table_cursor.h"
#include "mox_xmlApi/profile/settings.h"
#include "mox_xmlApi/table/table_handle.h"

namespace mox {

// Reserved: leaves xmlWriteProfileSection and xmlProfileSave when an existing section cannot be given its new data. No
// document is known to cause it.
inline constexpr auto kStampFailed = static_cast<std::int32_t>(0x80000008U);

// The first section called `name`, or null. Does not throw.
XmlNode* FindSection(const moxSettings& settings, WideView name) noexcept;

// Whether a section carries "editable"="true".
bool IsEditable(const XmlNode& section) noexcept;

// The first element under the root after `current`, or the first of all when that is null; null at the end.
// Its name (empty without one) and flag go into the outputs. Does not throw.
XmlNode* NextSection(const moxSettings& settings, XmlNode* current) noexcept;

// The section that `header` names: stamped with its name, first id and type when it exists (its editable flag
// never changes), made with all of `header` when it does not. `eud` tells whether a section that existed
// carries the mark. Null when there is no root. Throws kStampFailed when a section that exists cannot be
// stamped; std::bad_alloc and std::length_error, and then a section that did not exist still does not.
XmlNode* ObtainSection(moxSettings& settings, const TableHeader& header, bool& eud);

// Removes a section with all it holds. Returns 1, or 0 for null and for what is no section of this profile.
int DeleteSection(moxSettings& settings, XmlNode* section) noexcept;

// A table handle over a section, for the host. Throws std::bad_alloc.
std::unique_ptr<TableHandle> NewSectionHandle(moxSettings& settings, XmlNode* section);

}  // namespace mox

#endif
