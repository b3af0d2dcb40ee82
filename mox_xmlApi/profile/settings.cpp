#include "mox_xmlApi/profile/settings.h"

#include <new>

#include "mox_xmlApi/xml/xml_names.h"

using mox::WideView;
using mox::XmlDocument;
using mox::XmlNode;
namespace names = mox::names;

namespace {

bool HasSchemaLocation(const XmlNode& settings) noexcept {
    return XmlDocument::FindAttribute(&settings, names::kSchemaLocation) != nullptr ||
           XmlDocument::FindAttribute(&settings, names::kSchemaLocationXsi) != nullptr;
}

}  // namespace

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
    XmlNode* settings = nullptr;
    while (XmlDocument::NextSettingsElement(document.root, settings) != nullptr) {
        if (!HasSchemaLocation(*settings))
            continue;  // without a schema location it is not the root, and it is kept as it is
        root = settings;
        hasRoot = true;
        return true;
    }
    XmlNode& made = document.AppendElement(*document.root, names::kSettings);
    document.SetAttribute(made, names::kSchemaLocation, names::kSettingsSchema);
    root = &made;
    hasRoot = true;
    return true;
}
