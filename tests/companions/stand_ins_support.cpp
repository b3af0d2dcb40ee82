#include "tests/companions/stand_ins_support.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "mox_xmlApi/platform/mox_dbtInfo.h"
#include "mox_xmlApi/platform/mox_porting.h"

namespace companions {
namespace {

using WideText = std::basic_string<wchar16>;

std::string failing;
int callsBeforeFailure = 0;
std::string refusing;
int callsBeforeRefusal = 0;
std::vector<std::string> calls;

// The texts of the last record that got any: a test has one record at a time.
std::string narrowValue;
WideText wideValue;
WideText comment;
WideText userName;

// Every function begins with this.
void Called(const char* function, const std::string& detail = "") {
    calls.push_back(function + detail);
    if (failing == function && --callsBeforeFailure == 0) throw Failure{function};
}

// Whether this call of a function that reports failure by its result is to do so, and to change nothing.
bool IsRefused(const char* function) {
    return refusing == function && --callsBeforeRefusal == 0;
}

}  // namespace

void FailAt(int number, const std::string& function) {
    failing = function;
    callsBeforeFailure = number;
}

void FailNever() {
    failing.clear();
    refusing.clear();
}

void RefuseAt(int number, const std::string& function) {
    refusing = function;
    callsBeforeRefusal = number;
}

std::vector<std::string> TakeCalls() {
    return std::exchange(calls, {});
}

}  // namespace companions

using namespace companions;

bool pdConvertString(const std::basic_string<wchar16>& wide, std::string& narrow) {
    Called("pdConvertString to narrow");
    if (IsRefused("pdConvertString to narrow")) return false;
    narrow.clear();
    for (const wchar16 unit : wide)
        narrow += static_cast<char>(unit);
    return true;
}

bool pdConvertString(const std::string& narrow, std::basic_string<wchar16>& wide) {
    Called("pdConvertString to wide");
    if (IsRefused("pdConvertString to wide")) return false;
    wide.assign(narrow.begin(), narrow.end());
    return true;
}

int pdSwprintf(wchar16* buffer, std::size_t capacity, const wchar16* format, ...) {
    std::string narrowFormat;
    for (const wchar16* unit = format; *unit != 0; ++unit)
        narrowFormat += static_cast<char>(*unit);
    Called("pdSwprintf", " " + narrowFormat);
    va_list arguments;
    va_start(arguments, format);
    std::array<char, 32> text{};
    int length = -1;
    if (narrowFormat == "%d") length = std::snprintf(text.data(), text.size(), "%d", va_arg(arguments, int));
    if (narrowFormat == "%u")
        length = std::snprintf(text.data(), text.size(), "%u", va_arg(arguments, unsigned));
    if (narrowFormat == "%04X")
        length = std::snprintf(text.data(), text.size(), "%04X", va_arg(arguments, unsigned));
    va_end(arguments);
    if (length < 0 || static_cast<std::size_t>(length) >= capacity) return -1;
    std::copy_n(text.data(), length + 1, buffer);
    return length;
}

// Of the name it clears the first unit alone.
void TableEntryBaseInfoStruct::Clear() {
    Called("TableEntryBaseInfoStruct::Clear");
    type = 0;
    writeMask = 0;
    name[0] = 0;
    id = 0;
}

void TableEntryUInfoStruct::Clear() {
    Called("TableEntryUInfoStruct::Clear");
    type = 0;
    writeMask = 0;
    name[0] = 0;
    id = 0;
    control = 0;
    prov_index = 0;
    prov_owner = 0;
}

const char* TableEntryValueInfoStruct::GetVal() const {
    Called("GetVal");
    return narrowValue.c_str();
}

const wchar16* TableEntryValueInfoStruct::GetVal_w() const {
    Called("GetVal_w");
    return wideValue.c_str();
}

bool TableEntryValueInfoStruct::SetVal(const char* text) {
    Called("SetVal");
    if (IsRefused("SetVal")) return false;
    narrowValue = text;
    return true;
}

bool TableEntryValueInfoStruct::SetVal_w(const wchar16* text) {
    Called("SetVal_w");
    if (IsRefused("SetVal_w")) return false;
    wideValue = text;
    return true;
}

void TableEntryValueInfoStruct::DataToHex(const void* data, char* hex, std::size_t size) {
    Called("DataToHex");
    for (std::size_t i = 0; i < size; ++i)
        std::snprintf(hex + 2 * i, 3, "%02X", unsigned{static_cast<const unsigned char*>(data)[i]});
}

std::size_t TableEntryValueInfoStruct::HexToData(const char* hex, void* data, std::size_t size) {
    Called("HexToData");
    std::size_t stored = 0;
    for (; stored < size && hex[0] != 0 && hex[1] != 0; hex += 2) {
        const std::string digits(hex, 2);
        static_cast<unsigned char*>(data)[stored++] =
            static_cast<unsigned char>(std::strtoul(digits.c_str(), nullptr, 16));
    }
    return stored;
}

const wchar16* TableEntryUInfoStruct::GetComment_w() const {
    Called("GetComment_w");
    return comment.c_str();
}

const wchar16* TableEntryUInfoStruct::GetUserName_w() const {
    Called("GetUserName_w");
    return userName.c_str();
}

bool TableEntryUInfoStruct::SetComment_w(const wchar16* text) {
    Called("SetComment_w");
    comment = text;
    return true;
}

bool TableEntryUInfoStruct::SetUserName_w(const wchar16* text) {
    Called("SetUserName_w");
    userName = text;
    return true;
}
