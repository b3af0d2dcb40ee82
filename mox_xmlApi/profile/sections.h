// The sections of a profile: the elements under its root.
//
// Look-ups by name find "Table" elements only; the enumeration returns every element. Hosts rely on both.
#ifndef MOX_XMLAPI_PROFILE_SECTIONS_H
#define MOX_XMLAPI_PROFILE_SECTIONS_H

#include <cstdint>

#include "mox_xmlApi/entries/table_cursor.h"
#include "mox_xmlApi/profile/settings.h"

namespace mox {

// Thrown by ObtainSection. Reserved for hosts that catch it; cannot occur through the exports.
inline constexpr auto kSectionUpdateFailed = static_cast<std::int32_t>(0x80000008U);

// The first section called `name`, or null. Does not throw.
XmlNode* FindSection(const moxSettings& settings, WideView name) noexcept;

// Whether a section carries "editable"="true". Does not throw.
bool IsEditable(const XmlNode& section) noexcept;

// The first element under the root after `current`, or the first of all if that is null; null at the end. Does not
// throw.
XmlNode* NextSection(const moxSettings& settings, XmlNode* current) noexcept;

// The section that `header` names. One that exists gets the name, first id and type of `header` and keeps its editable
// flag; one that does not is appended with all of `header`. `eud` receives whether a section that existed carries
// "eud"="true". Null if there is no root. Throws kSectionUpdateFailed if a section that exists cannot be updated; may
// throw std::bad_alloc and std::length_error, and then a section that did not exist still does not.
XmlNode* ObtainSection(moxSettings& settings, const TableHeader& header, bool& eud);

// Removes a section with all its contents. Returns 1, or 0 for null and for an element that is no section of this
// profile. Does not throw.
int DeleteSection(moxSettings& settings, XmlNode* section) noexcept;

// A cursor on an element under the root, ready for use; not ready for null. Does not throw.
inline TableCursor SectionCursor(moxSettings& settings, XmlNode* section) noexcept {
    const bool isElement = section != nullptr && section->kind == XmlNodeKind::Element;
    return {isElement, isElement, &settings.document, section, false};
}

}  // namespace mox

#endif
