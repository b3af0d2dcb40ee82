// The profile handle: a settings document and its root element.
#ifndef MOX_XMLAPI_PROFILE_SETTINGS_H
#define MOX_XMLAPI_PROFILE_SETTINGS_H

#include "mox_xmlApi/xml/xml_document.h"

// Hosts hold it as an opaque pointer, and companions may release it through slot 0 of its virtual table: the
// one virtual operation is the deleting destructor, and it comes first.
struct moxSettings {
    moxSettings() = default;
    virtual ~moxSettings() = default;
    moxSettings(const moxSettings&) = delete;
    moxSettings& operator=(const moxSettings&) = delete;

    // Builds an empty settings document: the declaration and the root. False when the document is not empty.
    // May throw std::bad_alloc.
    bool CreateNew();

    // Finds the root: the first "Settings" element that has a schema location, or else a new one after all
    // others. Does nothing and returns false when there is a root already or nothing was loaded. May throw
    // std::bad_alloc.
    bool LocateRoot();

    mox::XmlDocument document;
    mox::XmlNode* root = nullptr;  // in `document`
    bool hasRoot = false;
    bool isLoaded = false;
};

#endif
