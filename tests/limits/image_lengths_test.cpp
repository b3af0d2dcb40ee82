// Texts that end at every place they can end at: by a zero, by their length, or in the middle of a unit.
#include <memory>
#include <vector>

#include "tests/host/table_support.h"

namespace limits {
namespace {

using host::operator""_w;

// One character for each length from 0 on: "+" where a text of that length is a document.
constexpr std::string_view kText = "<a/>\n<b x=\"&lt;\">t<c/></b>\n<!--d-->\n";
constexpr std::string_view kLoads = "+---++--------------------++-------++";
constexpr std::string_view kDeclared = "<?xml version=\"1.0\"?>\n<a>\n</a>\n";
constexpr std::string_view kDeclaredLoads = "+--------------------++-------++";

// The bytes in a block of memory of just their size, so that a read beyond it is found by the sanitizer.
std::unique_ptr<char[]> Tight(std::string_view bytes) {
    std::unique_ptr<char[]> block(new char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), block.get());
    return block;
}

host::Profile LoadProfileImage(const char* image, std::int32_t size) {
    return host::Profile(xmlProfileNew(nullptr, image, size, 0));
}

bool TableLoads(const char* image, std::int32_t size) {
    return static_cast<void*>(host::Table(xmlTableNew(nullptr, image, size, nullptr, 0, 0, 0, 0))) != nullptr;
}

// The places, from 1 on, at which the text loads when `image` has it end there. (Nothing at all is no image.)
template <class Image>
void ExpectLoads(std::string_view text, std::string_view loads, Image image) {
    ASSERT_EQ(loads.size(), text.size() + 1);
    for (std::size_t end = 1; end <= text.size(); ++end) {
        const std::string bytes = image(std::string(text), end);
        const std::unique_ptr<char[]> block = Tight(bytes);
        const auto size = static_cast<std::int32_t>(bytes.size());
        EXPECT_EQ(LoadProfileImage(block.get(), size) != nullptr, loads[end] == '+') << end;
        EXPECT_EQ(TableLoads(block.get(), size), loads[end] == '+') << end;
    }
}

TEST(MemoryImage, EndsWithItsSize) {
    const auto cut = [](const std::string& text, std::size_t end) { return text.substr(0, end); };
    ExpectLoads(kText, kLoads, cut);
    ExpectLoads(kDeclared, kDeclaredLoads, cut);
}

TEST(MemoryImage, EndsAtAZeroAtEachPlace) {
    const auto zero = [](std::string text, std::size_t end) {
        if (end < text.size()) text[end] = '\0';
        return text;
    };
    ExpectLoads(kText, kLoads, zero);
    ExpectLoads(kDeclared, kDeclaredLoads, zero);
}

TEST(MemoryImage, IsNotReadPastTheFirstZero) {
    ExpectLoads(kText, kLoads, [](const std::string& text, std::size_t end) {
        return text.substr(0, end).append(1, '\0').append("\xFF<<&").append(3, '\0');
    });
}

TEST(MemoryImage, OfAZeroAloneIsAnEmptyDocument) {
    const std::unique_ptr<char[]> block = Tight(std::string_view("\0", 1));
    EXPECT_EQ(host::SaveBytes(LoadProfileImage(block.get(), 1)),
              host::NarrowFile(host::Lines({host::kEmptyRoot})));
    EXPECT_TRUE(TableLoads(block.get(), 1));
}

TEST(MemoryImage, WithANegativeSizeEndsAtItsZero) {
    for (const std::int32_t size : {-1, -2147483647 - 1}) {
        const std::unique_ptr<char[]> block = Tight(std::string(kText).append(1, '\0'));
        EXPECT_NE(LoadProfileImage(block.get(), size), nullptr);
        EXPECT_TRUE(TableLoads(block.get(), size));
    }
}

TEST(MemoryImage, WithASizeBeyondItsZeroEndsThere) {
    const std::unique_ptr<char[]> block = Tight(std::string(kText).append(1, '\0'));
    EXPECT_NE(LoadProfileImage(block.get(), 2147483647), nullptr);
    EXPECT_TRUE(TableLoads(block.get(), 2147483647));
}

// The same lengths as files.
void ExpectFileLoads(const std::string& bytes, bool wide, bool loads) {
    const host::ScratchFile file;
    host::WriteBytes(file.Path(), bytes);
    EXPECT_EQ(host::Profile(xmlProfileNew(file.Name(), nullptr, 0, wide ? 1 : 0)) != nullptr, loads)
        << bytes.size();
    if (!wide) return;
    const host::Table table(xmlTableNew(file.Name(), nullptr, 0, nullptr, 0, 0, 0, 0));
    EXPECT_EQ(static_cast<void*>(table) != nullptr, loads) << bytes.size();
}

TEST(NarrowFile, EndsAtEachPlace) {
    for (std::size_t end = 0; end <= kText.size(); ++end) {
        const bool loads = kLoads[end] == '+';
        const std::string bytes(kText.substr(0, end));
        ExpectFileLoads(bytes, false, loads);
        ExpectFileLoads(bytes + std::string("\0<", 2), false, loads);
    }
}

TEST(WideFile, EndsAtEachByteAndDropsAnOddOne) {
    std::string whole = host::WideFile(kText);
    whole.resize(whole.size() - 2);
    for (std::size_t end = 0; end <= whole.size(); ++end)
        ExpectFileLoads(whole.substr(0, end), true, kLoads[end / 2] == '+');
}

TEST(WideFile, EndsAtAZeroUnitAtEachPlace) {
    for (std::size_t end = 0; end <= kText.size(); ++end) {
        const std::string bytes = host::WideFile(kText.substr(0, end));
        ExpectFileLoads(bytes, true, kLoads[end] == '+');
        ExpectFileLoads(bytes + "<", true, kLoads[end] == '+');
        ExpectFileLoads(bytes + "<<", true, kLoads[end] == '+');
    }
}

TEST(WideFile, MayHaveZeroBytesAtOddPlaces) {
    // The low byte of one unit and the high byte of the next.
    const std::string value("\x00\x01\x01\x00", 4);
    std::string bytes = host::WideFile("<a x=\"");
    bytes.resize(bytes.size() - 2);
    std::string end = host::WideFile("\"/>");
    ExpectFileLoads(bytes + value + end, true, true);
}

// Files whose last byte is the first or the last of a block, or the one before.
TEST(WideFile, OfAnOddSizeAroundABlockLosesOneByte) {
    for (const std::size_t size : {4095U, 4096U, 4097U, 16383U, 16384U, 16385U, 65535U, 65536U, 65537U}) {
        // White space up to the last whole unit, and a stray byte that would break the document.
        std::string bytes = host::WideFile("<a/>\n");
        bytes.resize(bytes.size() - 2);
        while (bytes.size() + 2 <= size)
            bytes.append(" \0", 2);
        ExpectFileLoads(bytes, true, true);
        if (bytes.size() < size) ExpectFileLoads(bytes + "<", true, true);
        ExpectFileLoads(bytes + std::string("<\0", 2), true, false);
    }
}

}  // namespace
}  // namespace limits
