// The profile family of exports: promised outputs first, then the handle, then one call below.
#include <array>
#include <memory>
#include <string>

#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/platform/mox_porting.h"
#include "mox_xmlApi/platform/numbers.h"
#include "mox_xmlApi/profile/keys.h"
#include "mox_xmlApi/profile/profile_save.h"
#include "mox_xmlApi/profile/sections.h"
#include "mox_xmlApi/table/table_handle.h"
#include "mox_xmlApi/xml/xml_names.h"

using mox::CopyToBuffer;
using mox::operator""_w;
using mox::ViewOf;
using mox::WideString;
using mox::WideView;

namespace {

void SetFlag(std::uint32_t* flag, bool value) noexcept {
    if (flag != nullptr) *flag = value ? 1 : 0;
}

void SetEditable(std::uint32_t* flag, const mox::XmlNode& section) noexcept {
    if (flag != nullptr) SetFlag(flag, mox::IsEditable(section));
}

// A table handle over a section, for the host. Throws std::bad_alloc.
std::unique_ptr<mox::TableHandle> NewSectionHandle(moxSettings& settings, mox::XmlNode* section) {
    return mox::SpareHandle::Take(settings.spareSection, settings.document.Pool(), section);
}

}  // namespace

moxSettings* xmlProfileNew(const wchar16* path, const char* buffer, int32_t size, int32_t wide) {
    mox::OwnedSettings settings(new moxSettings);
    if (path == nullptr && (buffer == nullptr || size == 0)) {
        settings->CreateNew();
        return settings.release();
    }
    if (!settings->document.Load(path, wide == 1, buffer, size)) return nullptr;
    settings->isLoaded = true;
    settings->LocateRoot();
    return settings.release();
}

void xmlProfileDispose(moxSettings** handleAddress) {
    if (*handleAddress != nullptr) (*handleAddress)->Destroy(moxSettings::kFree);
    *handleAddress = nullptr;
}

uint32_t xmlProfileSave(moxSettings* handle, const wchar16* path, uint32_t mode, uint32_t refuse,
                        int32_t wide) {
    if (handle == nullptr || path == nullptr) return 0;
    const bool written = mode == mox::kSaveDocument
                             ? mox::WriteToFile(*handle, path, refuse == 1, wide == 1)
                             : mox::WriteExport(*handle, path, mode, refuse == 1, wide == 1);
    return written ? 1 : 0;
}

void* xmlGetProfileSection(moxSettings* handle, const wchar16* section, uint32_t* editable) {
    SetFlag(editable, true);
    if (handle == nullptr) return nullptr;
    mox::XmlNode* element = mox::FindSection(*handle, ViewOf(section));
    if (element == nullptr) return nullptr;
    auto table = NewSectionHandle(*handle, element);
    SetEditable(editable, *element);
    return table.release();
}

void* xmlEnumProfileSections(moxSettings* handle, uintptr_t* position, wchar16* name, uint32_t nameLength,
                             uint32_t* editable) {
    SetFlag(editable, true);
    if (name != nullptr && nameLength != 0) *name = 0;
    if (handle == nullptr) return nullptr;

    // The position variable holds the address of a cell with the section returned last.
    auto* cell = reinterpret_cast<mox::XmlNode**>(*position);
    mox::XmlNode* section = mox::NextSection(*handle, cell == nullptr ? nullptr : *cell);
    if (section == nullptr) {
        delete cell;
        *position = 0;
        return nullptr;
    }
    auto table = NewSectionHandle(*handle, section);
    if (cell == nullptr) cell = new mox::XmlNode*;
    *cell = section;
    *position = reinterpret_cast<uintptr_t>(cell);
    SetEditable(editable, *section);
    WideView sectionName;
    mox::XmlDocument::GetAttribute(section, mox::names::kName, sectionName);
    if (name != nullptr) CopyToBuffer(sectionName, name, nameLength);
    return table.release();
}

void* xmlWriteProfileSection(moxSettings* handle, const wchar16* section, uint32_t editable, uint32_t firstId,
                             uint32_t type, uint32_t* eud) {
    if (handle == nullptr) return nullptr;
    const mox::TableHeader header{ViewOf(section), firstId, static_cast<std::uint16_t>(type & 0xFFFF),
                                  editable != 0};
    bool eudIsSet = false;
    mox::XmlNode* element = mox::ObtainSection(*handle, header, eudIsSet);
    std::unique_ptr<mox::TableHandle> table;
    if (element != nullptr) table = NewSectionHandle(*handle, element);
    SetFlag(eud, eudIsSet);
    return table.release();
}

int32_t xmlGetProfileInt(moxSettings* handle, const wchar16* section, const wchar16* key,
                         int32_t defaultValue) {
    WideView value;
    if (handle == nullptr || !mox::ReadKeyValue(*handle, ViewOf(section), ViewOf(key), value))
        return defaultValue;
    return value.empty() ? defaultValue : mox::ReadDecimal(value);
}

uint32_t xmlGetProfileString(moxSettings* handle, const wchar16* section, const wchar16* key,
                             wchar16* destination, uint32_t length, const wchar16* defaultText) {
    std::size_t provisional = 0;
    if (destination != nullptr && defaultText != nullptr) {
        provisional = CopyToBuffer(WideView(defaultText), destination, length);
    }
    WideView value;
    if (handle == nullptr || !mox::ReadKeyValue(*handle, ViewOf(section), ViewOf(key), value)) {
        return static_cast<std::uint32_t>(provisional);
    }
    if (value.empty())
        return 0;  // the default stays in the buffer: a host that ignores the result finds it there
    if (destination == nullptr) return static_cast<std::uint32_t>(value.size());
    return static_cast<std::uint32_t>(CopyToBuffer(value, destination, length));
}

uint32_t xmlGetProfileData(moxSettings* handle, const wchar16* section, const wchar16* key, void* destination,
                           uint32_t size) {
    WideView value;
    if (handle == nullptr || !mox::ReadKeyValue(*handle, ViewOf(section), ViewOf(key), value)) return 0;
    if (value.empty()) return 0;
    std::string hex;
    if (!pdConvertString(WideString(value), hex)) return 0;
    return static_cast<std::uint32_t>(TableEntryValueInfoStruct::HexToData(hex.c_str(), destination, size));
}

uint32_t xmlWriteProfileInt(moxSettings* handle, const wchar16* section, const wchar16* key, int32_t value) {
    if (handle == nullptr) return 0;
    if (key == nullptr) return mox::RemoveSection(*handle, ViewOf(section)) ? 1 : 0;
    std::array<wchar16, 256> text{};
    pdSwprintf(text.data(), text.size(), "%d"_w.data(), value);
    return mox::WriteKeyValue(*handle, ViewOf(section), WideView(key), WideView(text.data())) ? 1 : 0;
}

uint32_t xmlWriteProfileString(moxSettings* handle, const wchar16* section, const wchar16* key,
                               const wchar16* value) {
    if (handle == nullptr) return 0;
    if (key == nullptr) return mox::RemoveSection(*handle, ViewOf(section)) ? 1 : 0;
    if (value == nullptr) return mox::RemoveKey(*handle, ViewOf(section), WideView(key)) ? 1 : 0;
    return mox::WriteKeyValue(*handle, ViewOf(section), WideView(key), WideView(value)) ? 1 : 0;
}

uint32_t xmlWriteProfileData(moxSettings* handle, const wchar16* section, const wchar16* key,
                             const void* data, uint32_t size) {
    if (handle == nullptr) return 0;
    if (key == nullptr) return mox::RemoveSection(*handle, ViewOf(section)) ? 1 : 0;
    if (data == nullptr) return mox::RemoveKey(*handle, ViewOf(section), WideView(key)) ? 1 : 0;
    std::string hex(std::size_t{size} * 2, '0');
    TableEntryValueInfoStruct::DataToHex(data, hex.data(), size);
    WideString text;
    if (!pdConvertString(hex, text)) return 0;
    return mox::WriteKeyValue(*handle, ViewOf(section), WideView(key), text) ? 1 : 0;
}
