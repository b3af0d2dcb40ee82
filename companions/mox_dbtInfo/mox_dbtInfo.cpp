#include "mox_xmlApi/platform/mox_dbtInfo.h"

#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "mox_xmlApi/platform/mox_porting.h"

namespace {

using WideText = std::basic_string<wchar16>;

// Texts up to this many units keep their memory when they are taken away, for the next entry of an enumeration.
constexpr std::size_t kMostKept = 2048;

template <class Text>
void Drop(Text& text) noexcept {
    if (text.capacity() > kMostKept) {
        Text().swap(text);
    } else {
        text.clear();
    }
}

// Gives back what a much longer text has left behind.
template <class Text>
void Trim(Text& text) noexcept {
    if (text.capacity() <= kMostKept || text.size() > kMostKept) return;
    try {
        text.shrink_to_fit();
    } catch (const std::bad_alloc&) {
        // The text is as good where it is.
    }
}

}  // namespace

// Both forms of a value. Made at once when it is set, so that reading needs no memory.
struct TableEntryValueInfoStruct::Texts {
    bool isSet = false;
    bool hasNarrow = false;
    std::string narrow;
    WideText wide;
    // Where the next value is taken, so that the present one stays when that fails.
    std::string nextNarrow;
    WideText nextWide;

    bool Set(const char* text) {
        nextNarrow = text;
        if (!pdConvertString(nextNarrow, wide)) return false;
        narrow.swap(nextNarrow);
        Drop(nextNarrow);
        Trim(wide);
        isSet = hasNarrow = true;
        return true;
    }

    void Set(const wchar16* text) {
        nextWide = text;
        hasNarrow = pdConvertString(nextWide, narrow);
        wide.swap(nextWide);
        Drop(nextWide);
        if (hasNarrow) {
            Trim(narrow);
        } else {
            Drop(narrow);
        }
        isSet = true;
    }

    void Unset() noexcept {
        isSet = hasNarrow = false;
        Drop(narrow);
        Drop(wide);
    }
};

// The texts of a presentation that are not its value.
struct TableEntryUInfoStruct::ShownTexts {
    struct Shown {
        bool isSet = false;
        WideText text;

        const wchar16* Get() const noexcept { return isSet ? text.c_str() : nullptr; }
        void Set(const wchar16* units) {
            if (units != nullptr) {
                text = units;
                Trim(text);
            } else {
                Drop(text);
            }
            isSet = units != nullptr;
        }
    };
    Shown comment;
    Shown userName;
};

namespace {

// The value of a hexadecimal digit, or -1.
int DigitValue(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    return -1;
}

}  // namespace

void TableEntryBaseInfoStruct::Clear() {
    type = 0;
    writeMask = 0;
    std::memset(name, 0, sizeof(name));
    id = 0;
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
    return texts_ != nullptr && texts_->hasNarrow ? texts_->narrow.c_str() : nullptr;
}

const wchar16* TableEntryValueInfoStruct::GetVal_w() const {
    return texts_ != nullptr && texts_->isSet ? texts_->wide.c_str() : nullptr;
}

bool TableEntryValueInfoStruct::SetVal(const char* text) {
    if (text == nullptr) return SetVal_w(nullptr);
    if (texts_ == nullptr) texts_ = new Texts;
    return texts_->Set(text);
}

bool TableEntryValueInfoStruct::SetVal_w(const wchar16* text) {
    if (text != nullptr) {
        if (texts_ == nullptr) texts_ = new Texts;
        texts_->Set(text);
    } else if (texts_ != nullptr) {
        texts_->Unset();
    }
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
      prov_owner(other.prov_owner),
      shown_(other.shown_ == nullptr ? nullptr : new ShownTexts(*other.shown_)) {}

TableEntryUInfoStruct::TableEntryUInfoStruct(TableEntryUInfoStruct&& other) noexcept
    : TableEntryValueInfoStruct(static_cast<TableEntryValueInfoStruct&&>(other)),
      control(other.control),
      prov_index(other.prov_index),
      prov_owner(other.prov_owner),
      shown_(other.shown_) {
    other.shown_ = nullptr;
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
    delete shown_;
    shown_ = other.shown_;
    other.shown_ = nullptr;
    return *this;
}

TableEntryUInfoStruct::~TableEntryUInfoStruct() {
    delete shown_;
}

void TableEntryUInfoStruct::Clear() {
    TableEntryBaseInfoStruct::Clear();
    SetVal_w(nullptr);
    control = 0;
    prov_index = 0;
    prov_owner = 0;
    if (shown_ == nullptr) return;
    shown_->comment.Set(nullptr);
    shown_->userName.Set(nullptr);
}

const wchar16* TableEntryUInfoStruct::GetComment_w() const {
    return shown_ == nullptr ? nullptr : shown_->comment.Get();
}

const wchar16* TableEntryUInfoStruct::GetUserName_w() const {
    return shown_ == nullptr ? nullptr : shown_->userName.Get();
}

bool TableEntryUInfoStruct::SetComment_w(const wchar16* text) {
    if (shown_ == nullptr) shown_ = new ShownTexts;
    shown_->comment.Set(text);
    return true;
}

bool TableEntryUInfoStruct::SetUserName_w(const wchar16* text) {
    if (shown_ == nullptr) shown_ = new ShownTexts;
    shown_->userName.Set(text);
    return true;
}
