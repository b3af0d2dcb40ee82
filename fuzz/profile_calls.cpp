// The profile family as CallHost calls it.
#include <algorithm>
#include <memory>

#include "fuzz/call_host.h"
#include "fuzz/large_text.h"
#include "fuzz/read_everything.h"
#include "fuzz/special_files.h"
#include "fuzz/tree_check.h"
#include "mox_xmlApi/profile/settings.h"
#include "mox_xmlApi/table/table_handle.h"
#include "mox_xmlApi/xml/xml_names.h"
#include "tests/model/profile.h"

namespace mox::fuzz {
namespace {

constexpr std::size_t kMostSavedDepth = 300;  // files grow with the square of the depth

XmlNode* SectionOf(const moxSettings* profile, const WideString& name) {
    return profile == nullptr ? nullptr : ScanForTable(*profile->root, name);
}

}  // namespace

// Profile, source ('0' new, '1' memory, '2' narrow file, '3' wide file), document.
void CallHost::OpenProfile() {
    Profile& profile = ChooseProfile();
    const std::size_t source = input_.Below(4);
    const std::string document = source == 0 ? std::string() : ChooseDocument();
    DisposeProfile(profile);
    if (source == 0) {
        profile.handle = Make(Changes::Nothing, [] { return xmlProfileNew(nullptr, nullptr, 0, 0); });
        Check(profile.handle != nullptr, "a new profile is always there");
    } else if (source == 1) {
        const auto size = static_cast<std::int32_t>(document.size());
        profile.handle = Make(
            Changes::Nothing, [&] { return xmlProfileNew(nullptr, document.data(), size, 0); },
            document.size());
    } else {
        const bool wide = source == 3;
        const WideString text = model::FromNarrowBytes(document);
        file_.Write(wide ? model::WideBytes(text) : model::NarrowBytes(text));
        profile.handle = Make(
            Changes::Nothing, [&] { return xmlProfileNew(file_.Name(), nullptr, 0, wide ? 1 : 0); },
            document.size());
    }
}

// Profile, whether wide, document.
void CallHost::OpenFromPipe() {
    Profile& profile = ChooseProfile();
    const bool wide = input_.Flag();
    const model::Text text = model::FromNarrowBytes(ChooseDocument());
    DisposeProfile(profile);
    if (!Pipe::IsThere()) return;
    const std::string bytes = wide ? model::WideBytes(text) : model::NarrowBytes(text);
    profile.handle = Make(
        Changes::Nothing,
        [&] {
            Pipe pipe;
            return xmlProfileNew(pipe.Filled(bytes).c_str(), nullptr, 0, wide ? 1 : 0);
        },
        bytes.size());
    Check((profile.handle != nullptr) == (ParseByModel(text) != nullptr),
          "a pipe opens exactly when its text is in the dialect");
}

// Profile, mode, whether to refuse, whether wide.
void CallHost::SaveProfile() {
    Profile& profile = ChooseProfile();
    const auto mode = static_cast<std::uint32_t>(input_.Below(4));
    const auto refuse = static_cast<std::uint32_t>(input_.Below(3));
    const auto wide = static_cast<std::int32_t>(input_.Below(3));
    file_.Remove();
    if (profile.handle != nullptr && DepthBelow(*profile.handle->document.root) > kMostSavedDepth) return;
    const bool isWritten = Save(profile, file_.Name(), mode, refuse, wide);
    Check(isWritten == (profile.handle != nullptr && refuse != 1),
          "a profile is saved unless that is refused");
    Check(isWritten == file_.Exists(), "a file is there when it was written");
    if (!isWritten) return;
    const std::string bytes = file_.Read();
    Check(wide != 1 || ParseByModel(model::FromWideBytes(bytes)) != nullptr, "a wide file can be read");
    // (A save in mode 0 may find another "eud" each time.)
    if (mode != 0 && Pipe::IsThere() && bytes.size() < Pipe::kMost) {
        Pipe pipe;
        Check(Save(profile, pipe.Writable().c_str(), mode, refuse, wide), "a profile is saved to a pipe");
        Check(pipe.Written() == bytes, "a pipe gets what a file gets");
    }
    if (mode == 0) CheckRoundTrip(profile.handle, file_, wide == 1);
}

bool CallHost::Save(const Profile& profile, const wchar16* name, std::uint32_t mode, std::uint32_t refuse,
                    std::int32_t wide) {
    const std::uint64_t tabs =
        profile.handle == nullptr ? 0 : SizeOfDocuments() * DepthBelow(*profile.handle->document.root);
    return Make(
               mode == 0 ? Changes::Eud : Changes::Nothing,
               [&] { return xmlProfileSave(profile.handle, name, mode, refuse, wide); }, tabs) == 1;
}

// Profile, mode ('4': the table that is chosen next instead), where to ('0' a full disk, '1' a folder, '2' a folder that
// is missing, '3' a disk with too little room), how much room.
void CallHost::FailSave() {
    const Profile& profile = ChooseProfile();
    const auto mode = static_cast<std::uint32_t>(input_.Below(5));
    const bool isTable = mode == 4;
    const Table table = isTable ? ChooseTable() : Table();
    const std::size_t where = input_.Below(4);
    const std::uint64_t room = input_.Number() % 4096;
    if (!FileSizeLimit::IsThere() || (isTable ? table.handle == nullptr : profile.handle == nullptr)) return;
    const XmlNode& top = isTable ? *table.element : *profile.handle->document.root;
    if (DepthBelow(top) > kMostSavedDepth) return;
    const model::NodePtr before = CopyTree(top);
    if (mode == 0) model::StripEud(*model::FindRoot(*before));
    const auto save = [&](const wchar16* name) {
        return isTable ? SaveTable(table, name, 0, 0) : Save(profile, name, mode, 0, 0);
    };
    constexpr std::array<const char*, 3> kNames = {"/dev/full", "/dev", "/dev/null/missing.xml"};
    file_.Remove();
    if (where < kNames.size()) {
        Check(!save(model::Wide(kNames[where]).c_str()), "a save that fails says so");
    } else {
        // A save in mode 0 may find another "eud" each time, so that two files differ.
        const std::size_t whole = mode != 0 && save(file_.Name()) ? file_.Read().size() : 0;
        file_.Remove();
        const FileSizeLimit limit(room);
        const bool isSaved = save(file_.Name());
        const std::string bytes = file_.Read();
        Check(bytes.size() <= room, "there is no more room");
        Check(!isSaved || (!bytes.empty() && bytes.back() == '\0'), "a save that succeeds has written all");
        Check(mode == 0 || isSaved == (whole <= room), "a save succeeds exactly when there is room");
    }
    Check(model::IsSame(*CopyTree(top), *before), "a save that fails removes eud and nothing else");
}

// Profile, section, whether the output is given.
void CallHost::GetSection() {
    Profile& profile = ChooseProfile();
    const WideString name = input_.Text();
    std::uint32_t editable = 7;
    std::uint32_t* const output = input_.Flag() ? &editable : nullptr;
    void* section =
        Make(Changes::Nothing, [&] { return xmlGetProfileSection(profile.handle, name.c_str(), output); });
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
    void* section = Make(Changes::Nothing, [&] {
        return xmlEnumProfileSections(profile.handle, &profile.enumeration,
                                      length == 0 ? nullptr : name.get(), length, &editable);
    });
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
    void* section = Make(Changes::OneEntry, [&] {
        return xmlWriteProfileSection(profile.handle, name.c_str(), editable, firstId, type,
                                      givesEud ? &eud : nullptr);
    });
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
    const std::int32_t value = Make(
        Changes::Nothing, [&] { return xmlGetProfileInt(profile.handle, section.c_str(), key.c_str(), -5); });
    if (!IsReadable(profile, section, key)) Check(value == -5, "without a key there is the default");
}

// Profile, section, key, default ('-': none, '=': what the buffer holds from its second unit on), length of the buffer.
void CallHost::ReadString() {
    Profile& profile = ChooseProfile();
    const WideString section = input_.Text();
    const WideString key = input_.Text();
    const WideString fallback = input_.Text();
    const wchar16* defaultText = fallback == "-"_w ? nullptr : fallback.c_str();
    const std::uint32_t length = input_.Number() % 6000;
    const auto buffer = std::make_unique<wchar16[]>(length);
    const bool overlaps = fallback == "="_w && length > 1;
    const auto read = [&](wchar16* destination) {
        if (overlaps) {
            std::fill_n(buffer.get(), length - 1, wchar16{'d'});
            buffer[0] = 'D';
            buffer[length - 1] = 0;
            defaultText = buffer.get() + 1;
        }
        return xmlGetProfileString(profile.handle, section.c_str(), key.c_str(), destination, length,
                                   defaultText);
    };
    const std::uint32_t whole = Make(Changes::Nothing, [&] { return read(nullptr); });
    const std::uint32_t got = Make(Changes::Nothing, [&] { return read(buffer.get()); });
    if (overlaps && whole == 0 && !IsReadable(profile, section, key)) {
        Check(got == length - 2 && WideView(buffer.get()) == WideString(length - 2, 'd'),
              "a default may be a part of the buffer");
    }
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
    const std::uint32_t got = Make(Changes::Nothing, [&] {
        return xmlGetProfileData(profile.handle, section.c_str(), key.c_str(), buffer.get(), size);
    });
    Check(got <= size, "data stay in their buffer");
}

// Profile, section, key ('-': delete the section), value.
void CallHost::WriteInt() {
    Profile& profile = ChooseProfile();
    const WideString section = input_.Text();
    const WideString key = input_.Text();
    if (key == "-"_w) return DeleteSection(profile, section, 'i');
    const auto value = static_cast<std::int32_t>(input_.Number());
    const bool wasReadable = IsReadable(profile, section, key);
    const bool isWritten = Make(Changes::OneEntry, [&] {
                               return xmlWriteProfileInt(profile.handle, section.c_str(), key.c_str(), value);
                           }) == 1;
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
        Make(Changes::OneEntry, [&] {
            return xmlWriteProfileString(profile.handle, section.c_str(), key.c_str(), value.c_str());
        }) == 1;
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
        Make(Changes::OneEntry, [&] {
            return xmlWriteProfileData(profile.handle, section.c_str(), key.c_str(), units.data(), size);
        }) == 1;
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
    const std::uint32_t result = Make(Changes::Nothing, [&] {
        if (how == 'i') return xmlWriteProfileInt(profile.handle, name, nullptr, 1);
        if (how == 's') return xmlWriteProfileString(profile.handle, name, nullptr, name);
        return xmlWriteProfileData(profile.handle, name, nullptr, name, 2);
    });
    Check(result == (doomed == nullptr ? 0U : 1U), "a section is deleted when there is one");
    if (doomed != nullptr) ForgetSection(doomed);
}

void CallHost::DeleteKey(Profile& profile, const WideString& section, const WideString& key, bool asData) {
    const XmlNode* element = SectionOf(profile.handle, section);
    const std::size_t before = element == nullptr ? 0 : element->children.Size();
    const std::uint32_t result = Make(Changes::Nothing, [&] {
        return asData ? xmlWriteProfileData(profile.handle, section.c_str(), key.c_str(), nullptr, 0)
                      : xmlWriteProfileString(profile.handle, section.c_str(), key.c_str(), nullptr);
    });
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
