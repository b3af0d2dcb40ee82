#include "mox_xmlApi/profile/settings.h"

#include <new>

#include "mox_xmlApi/xml/settings_root.h"
#include "mox_xmlApi/xml/xml_names.h"

using mox::WideView;
using mox::XmlDocument;
using mox::XmlNode;
namespace names = mox::names;

void* moxSettings::Destroy(unsigned int flags) noexcept {
    void* const storage = this;
    this->moxSettings::~moxSettings();
    if ((flags & kFree) != 0) ::operator delete(storage);
    return storage;  // NOLINT(clang-analyzer-cplusplus.NewDelete): the address alone
}

bool moxSettings::CreateNew() {
    if (!document.AddDeclaration()) return false;
    isLoaded = true;
    LocateRoot();
    return true;
}

bool moxSettings::LocateRoot() {
    if (hasRoot || !isLoaded) return false;
    // What is called "Settings" without a schema location is not the root, and it is kept as it is.
    XmlNode* settings = mox::FindSettingsRoot(*document.root);
    if (settings == nullptr) {
        settings = &document.AppendElement(*document.root, names::kSettings);
        document.SetAttribute(*settings, names::kSchemaLocation, names::kSettingsSchema);
    }
    root = settings;
    hasRoot = true;
    return true;
}
