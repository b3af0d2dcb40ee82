#include "mox_xmlApi/document/parsed_text.h"

#include <utility>

#include "mox_xmlApi/xml/xml_names.h"

namespace mox {

ParsedText::ParsedText(WideString text) : text_(std::move(text)) {
    isParsed_ = ParseInPlace(document_, text_.data(), text_.size() - kZeros, document_.root, &failure_);
}

XmlNode* FindSettingsRoot(const XmlNode& tree) noexcept {
    XmlNode* settings = nullptr;
    while (XmlDocument::NextSettingsElement(&tree, settings) != nullptr) {
        if (HasSchemaAttribute(*settings)) return settings;
    }
    return nullptr;
}

bool HasSchemaAttribute(const XmlNode& settings) noexcept {
    return XmlDocument::FindAttribute(&settings, names::kSchemaLocation) != nullptr ||
           XmlDocument::FindAttribute(&settings, names::kSchemaLocationXsi) != nullptr;
}

}  // namespace mox
