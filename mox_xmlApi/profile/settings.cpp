#include "mox_xmlApi/profile/settings.h"

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
        if (!HasSchemaLocation(*settings)) continue;  // without its mark it is not ours, and is kept as it is
        root = settings;
        hasRoot = true;
        return true;
    }
    settings = document.InsertChild(document.root, names::kSettings, std::nullopt, nullptr);
    if (settings == nullptr) return false;
    if (!document.SetAttribute(settings, names::kSchemaLocation, names::kSettingsSchema)) return false;
    root = settings;
    hasRoot = true;
    return true;
}
