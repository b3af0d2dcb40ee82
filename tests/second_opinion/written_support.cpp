#include "tests/second_opinion/written_support.h"

#include <algorithm>

namespace opinion {
namespace {

host::WideText Wide(std::string_view text) {
    return {text.begin(), text.end()};
}

constexpr std::uint16_t kTypes[] = {2, 3, 5, 8, 11, 16, 17, 18, 19, 31, 0x2003, 0x1011, 0x2011, 0};

}  // namespace

std::vector<Written> Host::WriteSettings() {
    const host::Profile profile(xmlProfileNew(nullptr, nullptr, 0, 0));
    Fill(profile);
    return Saved(profile);
}

std::vector<Written> Host::WriteSettings(const std::string& document) {
    const host::Profile profile = host::LoadText(document);
    EXPECT_NE(profile, nullptr) << document;
    if (random_.OneIn(2)) Fill(profile);
    return Saved(profile);
}

Written Host::WriteTable() {
    const host::WideText name = Name();
    const host::Table table(
        xmlTableNew(nullptr, nullptr, 0, random_.OneIn(4) ? nullptr : name.c_str(), random_.OneIn(2) ? 1 : 0,
                    static_cast<std::uint32_t>(random_.Below(3)) * 0x7FFFFFFFU,
                    static_cast<std::uint16_t>(random_.Below(0x10000)), random_.OneIn(4) ? 0 : 1));
    FillTable(table);
    const host::ScratchFile file;
    EXPECT_TRUE(xmlTableSave(table, file.Name(), 0, 0));
    return {file.Bytes(), true, false};
}

host::WideText Host::Text() {
    return Wide(RandomText(random_, control_));
}

// Few names, so that some are met again; or any text.
host::WideText Host::Name() {
    static constexpr std::string_view kNames[] = {"", "Window", "Left", "a b", "<x>", "k"};
    return random_.OneIn(2) ? Wide(random_.Pick(kNames)) : Text();
}

std::string Host::Bytes() {
    return RandomText(random_, true);
}

void Host::Fill(moxSettings* profile) {
    for (std::size_t calls = 1 + random_.Below(8); calls > 0; --calls) {
        const host::WideText section = Name();
        const host::WideText key = Name();
        const std::string bytes = Bytes();
        switch (random_.Below(6)) {
            case 0:
                xmlWriteProfileInt(profile, section.c_str(), key.c_str(),
                                   static_cast<std::int32_t>(random_.Below(9)) - 4);
                break;
            case 1:
            case 2:
                xmlWriteProfileString(profile, section.c_str(), key.c_str(), Text().c_str());
                break;
            case 3:
                xmlWriteProfileData(profile, section.c_str(), key.c_str(), bytes.data(),
                                    static_cast<std::uint32_t>(bytes.size()));
                break;
            case 4:
                xmlWriteProfileString(profile, section.c_str(), random_.OneIn(2) ? nullptr : key.c_str(),
                                      nullptr);
                break;
            default:
                const host::Table table(xmlWriteProfileSection(
                    profile, section.c_str(), static_cast<std::uint32_t>(random_.Below(2)),
                    static_cast<std::uint32_t>(random_.Below(3)),
                    static_cast<std::uint32_t>(random_.Below(0x10000)), nullptr));
                if (table != nullptr) FillTable(table);
        }
    }
}

void Host::FillTable(void* table) {
    for (std::size_t calls = random_.Below(6); calls > 0; --calls) {
        const host::WideText name = Name();
        const std::uint16_t type = random_.Pick(kTypes);
        TableEntryValueInfoStruct value =
            host::ValueRecord(name.c_str(), type, nullptr, static_cast<std::uint32_t>(random_.Below(3)),
                              static_cast<std::uint16_t>(random_.OneIn(2) ? 0 : random_.Below(16)));
        EXPECT_TRUE(type == 31 ? value.SetVal_w(Text().c_str())
                               : value.SetVal(RandomText(random_, control_).c_str()));
        TableEntryUInfoStruct ui =
            host::UiRecord(name.c_str(), static_cast<std::uint16_t>(random_.Below(30)), 31);
        EXPECT_TRUE(ui.SetVal_w(Text().c_str()));
        if (random_.OneIn(2)) ui.SetComment_w(Text().c_str());
        if (random_.OneIn(2)) ui.SetUserName_w(Text().c_str());
        ui.prov_index = static_cast<std::uint32_t>(random_.Below(3));
        ui.prov_owner = static_cast<std::uint8_t>(random_.Below(5));
        TableEntryValueInfoStruct* const first = random_.OneIn(6) ? nullptr : &value;
        TableEntryUInfoStruct* const second = first == nullptr || random_.OneIn(2) ? &ui : nullptr;
        const int mark = random_.OneIn(4) ? 1 : 0;
        if (random_.OneIn(3)) {
            xmlTableEntrySet(table, nullptr, first, second, static_cast<std::int32_t>(random_.Below(2)),
                             mark);
        } else {
            xmlTableEntryAdd(table, nullptr, first, second, mark,
                             static_cast<std::int32_t>(random_.Below(2)));
        }
    }
}

std::vector<Written> Host::Saved(moxSettings* profile) {
    std::vector<Written> saved;
    std::uintptr_t position = 0;
    const host::Table section(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr));
    if (section != nullptr) {
        const host::ScratchFile file;
        EXPECT_TRUE(xmlTableSave(section, file.Name(), 0, 0));
        saved.push_back({file.Bytes(), true, false});
    }
    while (position != 0)
        const host::Table rest(xmlEnumProfileSections(profile, &position, nullptr, 0, nullptr));
    for (const std::uint32_t mode : {2U, 1U, 3U, 0U}) {
        saved.push_back({host::SaveBytes(profile, mode, 0), false, true});
        saved.push_back({host::SaveBytes(profile, mode, 1), true, true});
    }
    return saved;
}

std::string TextOf(const Written& written) {
    const std::string text =
        written.wide ? host::WideFileText(written.bytes) : written.bytes.substr(0, written.bytes.size() - 1);
    EXPECT_TRUE(written.wide || written.bytes.ends_with('\0'));
    EXPECT_EQ(text.find('\0'), std::string::npos);
    for (const char byte : text)
        EXPECT_GT(byte, 0);
    return text;
}

std::string AdaptedToXml(const Written& written) {
    const auto inFile = [&](std::string_view text) {
        std::string bytes;
        for (const char character : text) {
            bytes += character;
            if (written.wide) bytes += '\0';
        }
        return bytes;
    };
    const bool ascii = std::none_of(written.bytes.begin(), written.bytes.end(),
                                    [](char byte) { return (byte & 0x80) != 0; });
    const std::string old = inFile("encoding=\"UTF-8\"?>");
    std::string text = written.bytes.substr(0, written.bytes.size() - (written.wide ? 2 : 1));
    const std::size_t at = text.find(old);
    if (at != std::string::npos && (written.wide || !ascii))
        text.replace(at, old.size(),
                     inFile(written.wide ? "encoding=\"UTF-16\"?>" : "encoding=\"ISO-8859-1\"?>"));
    return written.wide ? "\xFF\xFE" + text : text;
}

}  // namespace opinion
