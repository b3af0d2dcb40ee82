// The profile family as CallHost calls it.
#include <memory>

#include "fuzz/call_host.h"
#include "fuzz/read_everything.h"
#include "fuzz/tree_check.h"
#include "mox_xmlApi/profile/settings.h"
#include "mox_xmlApi/table/table_handle.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox::fuzz {
namespace {

XmlNode* SectionOf(const moxSettings* profile, const WideString& name) {
    return profile == nullptr ? nullptr : ScanForTable(*profile->root, name);
}

}  // namespace

// Profile, source ('0' new, '1' memory, '2' narrow file, '3' wide file), document.
void CallHost::OpenProfile() {
    Profile& profile = ChooseProfile();
    const std::size_t source = input_.Below(4);
    const std::string_view document = source == 0 ? std::string_view() : ChooseDocument();
    DisposeProfile(profile);
    if (source == 0) {
        profile.handle = xmlProfileNew(nullptr, nullptr, 0, 0);
        Check(profile.handle != nullptr, "a new profile is always there");
    } else if (source == 1) {
        profile.handle =
            xmlProfileNew(nullptr, document.data(), static_cast<std::int32_t>(document.size()), 0);
    } else {
        const bool wide = source == 3;
        const WideString text = model::FromNarrowBytes(document);
        file_.Write(wide ? model::WideBytes(text) : model::NarrowBytes(text));
        profile.handle = xmlProfileNew(file_.Name(), nullptr, 0, wide ? 1 : 0);
    }
}

// Profile, mode, whether to refuse, whether wide.
void CallHost::SaveProfile() {
    Profile& profile = ChooseProfile();
    const auto mode = static_cast<std::uint32_t>(input_.Below(4));
    const auto refuse = static_cast<std::uint32_t>(input_.Below(3));
    const auto wide = static_cast<std::int32_t>(input_.Below(3));
    file_.Remove();
    const bool isWritten = xmlProfileSave(profile.handle, file_.Name(), mode, refuse, wide) == 1;
    Check(isWritten == (profile.handle != nullptr && refuse != 1),
          "a profile is saved unless that is refused");
    Check(isWritten == file_.Exists(), "a file is there when it was written");
    if (!isWritten) return;
    const std::string bytes = file_.Read();
    Check(wide != 1 || ParseByModel(model::FromWideBytes(bytes)) != nullptr, "a wide file can be read");
    if (mode == 0) CheckRoundTrip(profile.handle, file_, wide == 1);
}

// Profile, section, whether the output is given.
void CallHost::GetSection() {
    Profile& profile = ChooseProfile();
    const WideString name = input_.Text();
    std::uint32_t editable = 7;
    void* section = xmlGetProfileSection(profile.handle, name.c_str(), input_.Flag() ? &editable : nullptr);
    const XmlNode* scanned = SectionOf(profile.handle, name);
    Check(editable == 7 || editable <= 1, "the flag is 0 or 1");
    Check(scanned != nullptr || editable != 0, "without a section the flag is 1");
    Check((section != nullptr) == (scanned != nullptr), "a section is found when a scan finds it");
    if (section != nullptr)
        Check(static_cast<TableHandle*>(section)->cursor.table == scanned, "the first section is found");
    KeepSection(profile, section);
}

// Profile, length of the name buffer ('0': none).
void CallHost::EnumerateSections() {
    Profile& profile = ChooseProfile();
    const std::uint32_t length = input_.Number() % 300;
    const auto name = std::make_unique<wchar16[]>(length);
    std::uint32_t editable = 7;
    void* section = xmlEnumProfileSections(profile.handle, &profile.enumeration,
                                           length == 0 ? nullptr : name.get(), length, &editable);
    Check(editable <= 1, "the flag is always set");
    Check(length == 0 || name[length - 1] == 0, "the name ends in its buffer");
    Check((section != nullptr) == (profile.enumeration != 0), "an enumeration that has ended is 0");
    XmlNode* element = const_cast<XmlNode*>(profile.enumerated);
    if (profile.handle != nullptr) {
        const XmlNode* next = XmlDocument::NextChildElement(profile.handle->root, element);
        const XmlNode* got = section == nullptr ? nullptr : static_cast<TableHandle*>(section)->cursor.table;
        Check(got == next, "an enumeration goes from element to element");
        profile.enumerated = next;
    }
    KeepSection(profile, section);
}

// Profile, section, editable, first id, type, whether the output "eud" is given.
void CallHost::WriteSection() {
    Profile& profile = ChooseProfile();
    const WideString name = input_.Text();
    const auto editable = static_cast<std::uint32_t>(input_.Below(3));
    const std::uint32_t firstId = input_.Number();
    const std::uint32_t type = input_.Number();
    const XmlNode* before = SectionOf(profile.handle, name);
    WideView text;
    const bool hasEud = XmlDocument::GetAttribute(before, names::kEud, text) && text == names::kTrue;
    std::uint32_t eud = 7;
    const bool givesEud = input_.Flag();
    void* section = xmlWriteProfileSection(profile.handle, name.c_str(), editable, firstId, type,
                                           givesEud ? &eud : nullptr);
    Check((section != nullptr) == (profile.handle != nullptr), "a section can always be made");
    if (section == nullptr) return;
    Check(!givesEud || eud == (hasEud ? 1U : 0U), "the eud of a section is reported");
    const XmlNode* element = static_cast<TableHandle*>(section)->cursor.table;
    Check(element == SectionOf(profile.handle, name), "a section that was written is found");
    Check(before == nullptr || element == before, "an existing section is written, not doubled");
    KeepSection(profile, section);
}

// Profile, section, key.
void CallHost::ReadInt() {
    Profile& profile = ChooseProfile();
    const WideString section = input_.Text();
    const WideString key = input_.Text();
    const std::int32_t value = xmlGetProfileInt(profile.handle, section.c_str(), key.c_str(), -5);
    if (!IsReadable(profile, section, key)) Check(value == -5, "without a key there is the default");
}

// Profile, section, key, default ('-': none), length of the buffer.
void CallHost::ReadString() {
    Profile& profile = ChooseProfile();
    const WideString section = input_.Text();
    const WideString key = input_.Text();
    const WideString fallback = input_.Text();
    const wchar16* defaultText = fallback == "-"_w ? nullptr : fallback.c_str();
    const std::uint32_t length = input_.Number() % 6000;
    const auto buffer = std::make_unique<wchar16[]>(length);
    const std::uint32_t whole =
        xmlGetProfileString(profile.handle, section.c_str(), key.c_str(), nullptr, length, defaultText);
    const std::uint32_t got =
        xmlGetProfileString(profile.handle, section.c_str(), key.c_str(), buffer.get(), length, defaultText);
    Check(length == 0 ? got == 0 : got < length, "a text stays in its buffer");
    Check(length == 0 || buffer[length - 1] == 0, "a text ends in its buffer");
    Check(whole == 0 || length == 0 || got == std::min(whole, length - 1), "a value is cut to the buffer");
}

// Profile, section, key, size.
void CallHost::ReadData() {
    Profile& profile = ChooseProfile();
    const WideString section = input_.Text();
    const WideString key = input_.Text();
    const std::uint32_t size = input_.Number() % 6000;
    const auto buffer = std::make_unique<unsigned char[]>(size);
    Check(xmlGetProfileData(profile.handle, section.c_str(), key.c_str(), buffer.get(), size) <= size,
          "data stay in their buffer");
}

// Profile, section, key ('-': delete the section), value.
void CallHost::WriteInt() {
    Profile& profile = ChooseProfile();
    const WideString section = input_.Text();
    const WideString key = input_.Text();
    if (key == "-"_w) return DeleteSection(profile, section, 'i');
    const auto value = static_cast<std::int32_t>(input_.Number());
    const bool wasReadable = IsReadable(profile, section, key);
    const bool isWritten = xmlWriteProfileInt(profile.handle, section.c_str(), key.c_str(), value) == 1;
    Check(isWritten == (profile.handle != nullptr), "a key can always be written");
    if (isWritten && wasReadable)
        Check(xmlGetProfileInt(profile.handle, section.c_str(), key.c_str(), ~value) == value,
              "a number is read as it was written");
}

// Profile, section, key ('-': delete the section), value ('-': delete the key).
void CallHost::WriteString() {
    Profile& profile = ChooseProfile();
    const WideString section = input_.Text();
    const WideString key = input_.Text();
    if (key == "-"_w) return DeleteSection(profile, section, 's');
    const WideString value = input_.Text();
    if (value == "-"_w) return DeleteKey(profile, section, key, false);
    const bool wasReadable = IsReadable(profile, section, key);
    const bool isWritten =
        xmlWriteProfileString(profile.handle, section.c_str(), key.c_str(), value.c_str()) == 1;
    Check(isWritten == (profile.handle != nullptr), "a key can always be written");
    if (isWritten) CheckWritten(profile, section, key, value, wasReadable);
}

// Profile, section, key ('-': delete the section), bytes ('-': delete the key).
void CallHost::WriteData() {
    Profile& profile = ChooseProfile();
    const WideString section = input_.Text();
    const WideString key = input_.Text();
    if (key == "-"_w) return DeleteSection(profile, section, 'd');
    const WideString units = input_.Text();
    if (units == "-"_w) return DeleteKey(profile, section, key, true);
    const auto size = static_cast<std::uint32_t>(units.size() * sizeof(wchar16));
    const bool wasReadable = IsReadable(profile, section, key);
    const bool isWritten =
        xmlWriteProfileData(profile.handle, section.c_str(), key.c_str(), units.data(), size) == 1;
    Check(isWritten == (profile.handle != nullptr), "a key can always be written");
    if (!isWritten || !wasReadable || size == 0) return;
    WideString read(units.size(), 0);
    Check(xmlGetProfileData(profile.handle, section.c_str(), key.c_str(), read.data(), size) == size &&
              read == units,
          "data are read as they were written");
}

// An enumeration must not stand on the section.
void CallHost::DeleteSection(Profile& profile, const WideString& section, char how) {
    XmlNode* doomed = SectionOf(profile.handle, section);
    if (doomed != nullptr && profile.enumerated == doomed) EndEnumeration(profile);
    const wchar16* name = section.c_str();
    const std::uint32_t result = how == 'i'   ? xmlWriteProfileInt(profile.handle, name, nullptr, 1)
                                 : how == 's' ? xmlWriteProfileString(profile.handle, name, nullptr, name)
                                              : xmlWriteProfileData(profile.handle, name, nullptr, name, 2);
    Check(result == (doomed == nullptr ? 0U : 1U), "a section is deleted when there is one");
    if (doomed != nullptr) ForgetSection(doomed);
}

void CallHost::DeleteKey(Profile& profile, const WideString& section, const WideString& key, bool asData) {
    const XmlNode* element = SectionOf(profile.handle, section);
    const std::size_t before = element == nullptr ? 0 : element->children.Size();
    const std::uint32_t result =
        asData ? xmlWriteProfileData(profile.handle, section.c_str(), key.c_str(), nullptr, 0)
               : xmlWriteProfileString(profile.handle, section.c_str(), key.c_str(), nullptr);
    if (element == nullptr) return Check(result == 0, "there is no key without a section");
    ForgetRemoved(element);
    Check((result == 1) == (element->children.Size() < before), "the result says whether keys were deleted");
    if (!key.empty()) Check(ScanForEntry(*element, key) == nullptr, "every key of the name was deleted");
}

// Whether a value that is written now will be read back: the entry is new, or has a known type.
bool CallHost::IsReadable(Profile& profile, const WideString& section, const WideString& key) {
    const XmlNode* element = SectionOf(profile.handle, section);
    const XmlNode* entry = element == nullptr ? nullptr : ScanForEntry(*element, key);
    if (entry == nullptr) return true;
    return ReadByModel(*entry).isReadable;
}

void CallHost::CheckWritten(Profile& profile, const WideString& section, const WideString& key,
                            const WideString& value, bool wasReadable) {
    if (!wasReadable || value.empty()) return;
    WideString read(value.size() + 1, '?');
    const std::uint32_t length =
        xmlGetProfileString(profile.handle, section.c_str(), key.c_str(), read.data(),
                            static_cast<std::uint32_t>(read.size()), nullptr);
    read.resize(length);
    Check(read == value, "a text is read as it was written");
}

}  // namespace mox::fuzz
