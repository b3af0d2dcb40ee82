// The root element of a settings document.
#ifndef MOX_XMLAPI_XML_SETTINGS_ROOT_H
#define MOX_XMLAPI_XML_SETTINGS_ROOT_H

#include "mox_xmlApi/xml/xml_document.h"
#include "mox_xmlApi/xml/xml_names.h"
#include "mox_xmlApi/xml/xml_node.h"

namespace mox {

// Whether an element has the attribute that marks the root, under either of its names.
inline bool HasSchemaLocation(const XmlNode& settings) noexcept {
    return XmlDocument::FindAttribute(&settings, names::kSchemaLocation) != nullptr ||
           XmlDocument::FindAttribute(&settings, names::kSchemaLocationXsi) != nullptr;
}

// The first "Settings" element of the tree that has it; null if there is none.
inline XmlNode* FindSettingsRoot(const XmlNode& tree) noexcept {
    XmlNode* settings = nullptr;
    while (XmlDocument::NextSettingsElement(&tree, settings) != nullptr) {
        if (HasSchemaLocation(*settings)) return settings;
    }
    return nullptr;
}

}  // namespace mox

#endif
