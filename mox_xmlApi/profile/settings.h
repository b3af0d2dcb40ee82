// The profile handle: a settings document and its root element.
#ifndef MOX_XMLAPI_PROFILE_SETTINGS_H
#define MOX_XMLAPI_PROFILE_SETTINGS_H

#include <memory>

#include "mox_xmlApi/xml/xml_document.h"

namespace mox {
struct SpareHandle;
}

// Hosts hold it as an opaque pointer, and may release it through slot 0 of its virtual table. Destroy is the one virtual
// operation, so that it has that slot under every compiler: some give a virtual destructor two slots, of which the first
// does not free.
struct moxSettings {
    // For Destroy: free the storage as well. Other bits mean nothing.
    static constexpr unsigned int kFree = 1;

    // Destroys an object that was made by new and returns its address. Without kFree the storage is the caller's, who
    // frees it by the `operator delete` of the C++ runtime that the library uses. Does not throw.
    virtual void* Destroy(unsigned int flags) noexcept;

    moxSettings() = default;
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
    std::shared_ptr<mox::SpareHandle> spareSection = {};  // null before the first section handle

  protected:
    ~moxSettings() = default;  // Destroy is the one way out
};

namespace mox {

struct FreeSettings {
    void operator()(moxSettings* settings) const noexcept { settings->Destroy(moxSettings::kFree); }
};

// A profile that is destroyed and freed at the end of its scope.
using OwnedSettings = std::unique_ptr<moxSettings, FreeSettings>;

}  // namespace mox

#endif
