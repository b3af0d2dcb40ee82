#include "tests/host/random_calls/runner_support.h"

namespace host::random_calls {
namespace {

// What a buffer of this length holds after a text was copied into it.
Text Copied(const Text& text, std::size_t length) {
    Text buffer = text.substr(0, length - 1);
    buffer.resize(length, 0);
    return buffer;
}

}  // namespace

void Runner::GetInt(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    Log(Concat("xmlGetProfileInt ", Quote(section), " ", Quote(key)));
    const std::optional<Text> value = model_->Read(section, key);
    const std::int32_t expected = value && !value->empty() ? model::ReadSigned(*value) : -99;
    Compare(Concat(xmlGetProfileInt(profile_, section.c_str(), key.c_str(), -99)), Concat(expected));
}

void Runner::GetString(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    const unsigned length = arguments.Pick(std::array<unsigned, 5>{300, 0, 1, 2, 4});
    const unsigned defaultNumber = arguments.Below(3);
    const Text defaultText = defaultNumber == 1 ? "d"_w : "default"_w;
    const wchar16* given = defaultNumber == 0 ? nullptr : defaultText.c_str();
    Log(Concat("xmlGetProfileString ", Quote(section), " ", Quote(key), " length ", length, " default ",
               given == nullptr ? "null" : Quote(defaultText)));

    // Length 0 stands for no destination.
    Text buffer(300, 'x');
    wchar16* destination = length == 0 ? nullptr : buffer.data();
    const std::uint32_t result =
        xmlGetProfileString(profile_, section.c_str(), key.c_str(), destination, length, given);

    Text expected(300, 'x');
    std::size_t expectedResult = 0;
    const auto copy = [&](const Text& text) {
        expected.replace(0, length, Copied(text, length));
        expectedResult = Text(expected.c_str()).size();
    };
    if (length != 0 && given != nullptr) copy(defaultText);
    const std::optional<Text> value = model_->Read(section, key);
    if (value && value->empty()) expectedResult = 0;
    if (value && !value->empty() && length != 0) copy(*value);
    if (value && !value->empty() && length == 0) expectedResult = value->size();
    Compare(Concat(result, " ", Quote(buffer)), Concat(expectedResult, " ", Quote(expected)));
}

void Runner::GetData(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    const unsigned size = arguments.Pick(std::array<unsigned, 4>{100, 0, 1, 2});
    Log(Concat("xmlGetProfileData ", Quote(section), " ", Quote(key), " size ", size));
    std::string bytes(101, 'x');
    const std::uint32_t result =
        xmlGetProfileData(profile_, section.c_str(), key.c_str(), bytes.data(), size);
    const std::optional<Text> value = model_->Read(section, key);
    const std::string expected = value && model::HasNarrowForm(*value) ? model::BytesOf(*value, size) : "";
    Compare(Concat(result, bytes),
            Concat(expected.size(), expected, std::string(101 - expected.size(), 'x')));
}

void Runner::WriteInt(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    const auto number = static_cast<std::int32_t>(arguments.Pick(kNumbers));
    Log(Concat("xmlWriteProfileInt ", Quote(section), " ", Quote(key), " ", number));
    const bool written = model_->Write(section, key, model::SignedText(static_cast<std::uint32_t>(number)));
    Compare(Concat(xmlWriteProfileInt(profile_, section.c_str(), key.c_str(), number)),
            Concat(written ? 1 : 0));
}

void Runner::WriteString(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    const unsigned number = arguments.Below(kTexts.size() + 1);
    const Text& text = number < kTexts.size() ? kTexts[number] : kUnpaired;
    Log(Concat("xmlWriteProfileString ", Quote(section), " ", Quote(key), " ", Quote(text)));
    const bool written = model_->Write(section, key, text);
    Compare(Concat(xmlWriteProfileString(profile_, section.c_str(), key.c_str(), text.c_str())),
            Concat(written ? 1 : 0));
}

void Runner::WriteData(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    const unsigned size = arguments.Below(4);
    Log(Concat("xmlWriteProfileData ", Quote(section), " ", Quote(key), " size ", size));
    const bool written = model_->Write(section, key, Wide(std::string_view("01ABFF").substr(0, 2 * size)));
    const std::uint32_t result =
        xmlWriteProfileData(profile_, section.c_str(), key.c_str(), "\x01\xAB\xFF", size);
    Compare(Concat(result), Concat(written ? 1 : 0));
}

void Runner::DeleteKey(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const Text& key = arguments.Pick(kKeys);
    const bool asData = arguments.Flag();
    Log(Concat("xmlWriteProfile", asData ? "Data " : "String ", Quote(section), " ", Quote(key), " null"));
    const bool removed = model_->DeleteKey(section, key);
    const std::uint32_t result = asData
                                     ? xmlWriteProfileData(profile_, section.c_str(), key.c_str(), nullptr, 3)
                                     : xmlWriteProfileString(profile_, section.c_str(), key.c_str(), nullptr);
    Compare(Concat(result), Concat(removed ? 1 : 0));
}

void Runner::DeleteSection(Arguments arguments) {
    const Text& section = arguments.Pick(kSections);
    const unsigned function = arguments.Below(3);
    Log(Concat("xmlWriteProfile", std::array{"Int ", "String ", "Data "}[function], Quote(section), " null"));
    const bool removed = model_->DeleteSection(section);
    const std::uint32_t result = function == 0 ? xmlWriteProfileInt(profile_, section.c_str(), nullptr, 1)
                                 : function == 1
                                     ? xmlWriteProfileString(profile_, section.c_str(), nullptr, "v"_w)
                                     : xmlWriteProfileData(profile_, section.c_str(), nullptr, "v", 1);
    Compare(Concat(result), Concat(removed ? 1 : 0));
    DropLostSections();
}

}  // namespace host::random_calls
