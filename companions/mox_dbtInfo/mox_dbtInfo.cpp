#include "mox_xmlApi/platform/mox_dbtInfo.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "mox_xmlApi/platform/mox_porting.h"

// Both forms of a value. Made at once when it is set, so that reading needs no memory.
struct TableEntryValueInfoStruct::Texts {
    std::string narrow;
    std::basic_string<wchar16> wide;
};

namespace {

// A copy of zero-terminated text made by new[]; null for null.
wchar16* Copy(const wchar16* text) {
    if (text == nullptr) return nullptr;
    const std::size_t size = std::char_traits<wchar16>::length(text) + 1;
    auto* copy = new wchar16[size];
    std::copy_n(text, size, copy);
    return copy;
}

// The value of a hexadecimal digit, or -1.
int DigitValue(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    return -1;
}

}  // namespace

void TableEntryBaseInfoStruct::Clear() {
    *this = TableEntryBaseInfoStruct();
}

TableEntryValueInfoStruct::TableEntryValueInfoStruct() noexcept = default;

TableEntryValueInfoStruct::TableEntryValueInfoStruct(const TableEntryValueInfoStruct& other)
    : TableEntryBaseInfoStruct(other), texts_(other.texts_ == nullptr ? nullptr : new Texts(*other.texts_)) {}

TableEntryValueInfoStruct::TableEntryValueInfoStruct(TableEntryValueInfoStruct&& other) noexcept
    : TableEntryBaseInfoStruct(other), texts_(std::exchange(other.texts_, nullptr)) {}

TableEntryValueInfoStruct& TableEntryValueInfoStruct::operator=(const TableEntryValueInfoStruct& other) {
    return *this = TableEntryValueInfoStruct(other);
}

TableEntryValueInfoStruct& TableEntryValueInfoStruct::operator=(TableEntryValueInfoStruct&& other) noexcept {
    TableEntryBaseInfoStruct::operator=(other);
    if (this != &other) {
        delete texts_;
        texts_ = std::exchange(other.texts_, nullptr);
    }
    return *this;
}

TableEntryValueInfoStruct::~TableEntryValueInfoStruct() {
    delete texts_;
}

const char* TableEntryValueInfoStruct::GetVal() const {
    return texts_ == nullptr ? nullptr : texts_->narrow.c_str();
}

const wchar16* TableEntryValueInfoStruct::GetVal_w() const {
    return texts_ == nullptr ? nullptr : texts_->wide.c_str();
}

bool TableEntryValueInfoStruct::SetVal(const char* text) {
    std::unique_ptr<Texts> texts;
    if (text != nullptr) {
        texts = std::make_unique<Texts>();
        texts->narrow = text;
        if (!pdConvertString(texts->narrow, texts->wide)) return false;
    }
    delete texts_;
    texts_ = texts.release();
    return true;
}

bool TableEntryValueInfoStruct::SetVal_w(const wchar16* text) {
    std::unique_ptr<Texts> texts;
    if (text != nullptr) {
        texts = std::make_unique<Texts>();
        texts->wide = text;
        if (!pdConvertString(texts->wide, texts->narrow)) return false;
    }
    delete texts_;
    texts_ = texts.release();
    return true;
}

void TableEntryValueInfoStruct::DataToHex(const void* data, char* hex, std::size_t size) {
    if (hex == nullptr) return;
    if (const auto* bytes = static_cast<const unsigned char*>(data); bytes != nullptr) {
        for (std::size_t i = 0; i < size; ++i) {
            *hex++ = "0123456789ABCDEF"[bytes[i] >> 4];
            *hex++ = "0123456789ABCDEF"[bytes[i] & 0x0F];
        }
    }
    *hex = '\0';
}

std::size_t TableEntryValueInfoStruct::HexToData(const char* hex, void* data, std::size_t size) {
    if (hex == nullptr || data == nullptr) return 0;
    auto* const bytes = static_cast<unsigned char*>(data);
    std::size_t stored = 0;
    for (; stored < size; hex += 2) {
        const int high = DigitValue(hex[0]);
        if (high < 0) break;
        const int low = DigitValue(hex[1]);
        if (low < 0) break;
        bytes[stored++] = static_cast<unsigned char>(high * 16 + low);
    }
    return stored;
}

TableEntryUInfoStruct::TableEntryUInfoStruct() noexcept = default;

TableEntryUInfoStruct::TableEntryUInfoStruct(const TableEntryUInfoStruct& other)
    : TableEntryValueInfoStruct(other),
      control(other.control),
      prov_index(other.prov_index),
      prov_owner(other.prov_owner) {
    std::unique_ptr<wchar16[]> comment(Copy(other.comment_));
    userName_ = Copy(other.userName_);
    comment_ = comment.release();
}

TableEntryUInfoStruct::TableEntryUInfoStruct(TableEntryUInfoStruct&& other) noexcept
    : TableEntryValueInfoStruct(static_cast<TableEntryValueInfoStruct&&>(other)),
      control(other.control),
      prov_index(other.prov_index),
      prov_owner(other.prov_owner),
      comment_(other.comment_),
      userName_(other.userName_) {
    other.comment_ = nullptr;
    other.userName_ = nullptr;
}

TableEntryUInfoStruct& TableEntryUInfoStruct::operator=(const TableEntryUInfoStruct& other) {
    return *this = TableEntryUInfoStruct(other);
}

TableEntryUInfoStruct& TableEntryUInfoStruct::operator=(TableEntryUInfoStruct&& other) noexcept {
    if (this == &other) return *this;
    TableEntryValueInfoStruct::operator=(static_cast<TableEntryValueInfoStruct&&>(other));
    control = other.control;
    prov_index = other.prov_index;
    prov_owner = other.prov_owner;
    delete[] comment_;
    delete[] userName_;
    comment_ = other.comment_;
    userName_ = other.userName_;
    other.comment_ = nullptr;
    other.userName_ = nullptr;
    return *this;
}

TableEntryUInfoStruct::~TableEntryUInfoStruct() {
    delete[] comment_;
    delete[] userName_;
}

void TableEntryUInfoStruct::Clear() {
    *this = TableEntryUInfoStruct();
}

const wchar16* TableEntryUInfoStruct::GetComment_w() const {
    return comment_;
}

const wchar16* TableEntryUInfoStruct::GetUserName_w() const {
    return userName_;
}

bool TableEntryUInfoStruct::SetComment_w(const wchar16* text) {
    wchar16* const copy = Copy(text);
    delete[] comment_;
    comment_ = copy;
    return true;
}

bool TableEntryUInfoStruct::SetUserName_w(const wchar16* text) {
    wchar16* const copy = Copy(text);
    delete[] userName_;
    userName_ = copy;
    return true;
}
