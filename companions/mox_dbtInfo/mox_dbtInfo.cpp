#include "mox_xmlApi/platform/mox_dbtInfo.h"

#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <utility>

#include "mox_xmlApi/platform/mox_porting.h"

namespace {

using WideText = std::basic_string<wchar16>;

// A cleared text keeps its memory up to this many units, because enumerations fill the same record again and again.
constexpr std::size_t kMaxKeptUnits = 2048;

// Makes the text empty.
template <class Text>
void ClearText(Text& text) noexcept {
    if (text.capacity() > kMaxKeptUnits) {
        Text().swap(text);
    } else {
        text.clear();
    }
}

// Frees the memory that a long text has left to a short one.
template <class Text>
void TrimText(Text& text) noexcept {
    if (text.capacity() <= kMaxKeptUnits || text.size() > kMaxKeptUnits) return;
    try {
        text.shrink_to_fit();
    } catch (const std::bad_alloc&) {
        // The text stays in the larger block.
    }
}

// Eight bytes at a time, the last of them twice if necessary.
bool IsAscii(const char* text, std::size_t length) noexcept {
    std::uint64_t bits = 0;
    const auto add = [&](std::size_t from, std::size_t count) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, text + from, count);
        bits |= bytes;
    };
    for (std::size_t from = 0; from + 8 < length; from += 8)
        add(from, 8);
    if (length >= 8) {
        add(length - 8, 8);
    } else if (length >= 4) {
        add(0, 4);
        add(length - 4, 4);
    } else {
        for (std::size_t from = 0; from < length; ++from)
            add(from, 1);
    }
    return (bits & 0x8080808080808080U) == 0;
}

}  // namespace

// A value in the form in which it was set, and in the other form after the first call that gets it.
struct TableEntryValueInfoStruct::Texts {
    enum class Form { None, Ready, NotConverted };

    Form narrowForm = Form::None;
    Form wideForm = Form::None;
    std::string narrow;
    WideText wide;

    // Returns false for a text that is not well-formed UTF-8. Throws std::bad_alloc. In both cases the value is unchanged.
    bool Set(const char* text) {
        const std::size_t length = std::strlen(text);
        if (!IsAscii(text, length)) return SetNonAscii(text, length);
        narrow.assign(text, length);
        TrimText(narrow);
        ClearText(wide);
        narrowForm = Form::Ready;
        wideForm = Form::NotConverted;
        return true;
    }

    // As Set. Converts the text at once, to learn whether it is well-formed.
    bool SetNonAscii(const char* text, std::size_t length);

    // Throws std::bad_alloc; then the value is unchanged.
    void Set(const wchar16* text) {
        wide.assign(text);
        TrimText(wide);
        ClearText(narrow);
        wideForm = Form::Ready;
        narrowForm = Form::NotConverted;
    }

    void Unset() noexcept {
        narrowForm = wideForm = Form::None;
        ClearText(narrow);
        ClearText(wide);
    }

    // Return null if no value is set, or if it has no such form. Throw std::bad_alloc; then the value is unchanged.
    const char* Narrow() {
        if (narrowForm == Form::NotConverted)
            narrowForm = pdConvertString(wide, narrow) ? Form::Ready : Form::None;
        return narrowForm == Form::Ready ? narrow.c_str() : nullptr;
    }
    const wchar16* Wide() {
        if (wideForm == Form::NotConverted)
            wideForm = pdConvertString(narrow, wide) ? Form::Ready : Form::None;
        return wideForm == Form::Ready ? wide.c_str() : nullptr;
    }
};

bool TableEntryValueInfoStruct::Texts::SetNonAscii(const char* text, std::size_t length) {
    std::string copy(text, length);  // the text may be the value itself
    if (!pdConvertString(copy, wide)) return false;
    narrow.swap(copy);
    TrimText(narrow);
    TrimText(wide);
    narrowForm = wideForm = Form::Ready;
    return true;
}

// The texts of the presentation data other than the value.
struct TableEntryUInfoStruct::ShownTexts {
    struct Shown {
        bool isSet = false;
        WideText text;

        const wchar16* Get() const noexcept { return isSet ? text.c_str() : nullptr; }
        void Set(const wchar16* units) {
            if (units != nullptr) {
                text = units;
                TrimText(text);
            } else {
                ClearText(text);
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
    return texts_ == nullptr ? nullptr : texts_->Narrow();
}

const wchar16* TableEntryValueInfoStruct::GetVal_w() const {
    return texts_ == nullptr ? nullptr : texts_->Wide();
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
