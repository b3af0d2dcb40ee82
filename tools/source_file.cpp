#include "tools/source_file.h"

#include <algorithm>
#include <array>

#include "mox_xmlApi/platform/files.h"
#include "mox_xmlApi/platform/scan.h"
#include "tools/exit_error.h"
#include "tools/syntax_error.h"

namespace mox::tool {
namespace {

std::string ReadBytes(const std::string& path) {
    const mox::Text name(path);
    InputFile file(name.isValid() ? name.c_str() : nullptr);
    if (!file.IsOpen()) throw ExitError(ExitCode::kIoError, path + ": cannot open the file");
    std::string bytes;
    std::array<char, 64 * 1024> buffer;
    std::size_t count = buffer.size();
    while (count == buffer.size()) {
        count = file.Read(buffer.data(), buffer.size());
        bytes.append(buffer.data(), count);
    }
    if (file.Failed()) throw ExitError(ExitCode::kIoError, path + ": cannot read the file");
    return bytes;
}

// The units as the library reads them: wide, low byte first; narrow, each byte as a signed number.
WideString DecodeUnits(const std::string& bytes, Form form) {
    const auto byte = [&bytes](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
    WideString units;
    if (form == Form::Wide) {
        units.reserve(bytes.size() / 2);
        for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
            units += static_cast<wchar16>(byte(i) | (byte(i + 1) << 8));
    } else {
        units.reserve(bytes.size());
        for (std::size_t i = 0; i < bytes.size(); ++i)
            units += static_cast<wchar16>(byte(i) < 0x80 ? byte(i) : 0xFF00 | byte(i));
    }
    return units;
}

// A document begins with "<" or white space, so the second byte of a wide one is zero. A byte-order mark of
// UTF-16 counts, too: such a file does not parse, but the error should name the mark. An empty file has either form.
bool LooksWide(const std::string& bytes) noexcept {
    if (bytes.empty()) return true;
    if (bytes.size() == 1) return false;
    const auto first = static_cast<unsigned char>(bytes[0]);
    const auto second = static_cast<unsigned char>(bytes[1]);
    return second == 0 || (first == 0xFF && second == 0xFE) || (first == 0xFE && second == 0xFF);
}

}  // namespace

SourceFile::SourceFile(const std::string& path, std::optional<Form> form) : path_(path) {
    const std::string bytes = ReadBytes(path);
    Parse(bytes, form.value_or(LooksWide(bytes) ? Form::Wide : Form::Narrow));
    lineStarts_.push_back(0);
    for (std::size_t at = text_.find(wchar16{'\n'}); at != WideString::npos;
         at = text_.find(wchar16{'\n'}, at + 1))
        lineStarts_.push_back(at + 1);
}

void SourceFile::Parse(const std::string& bytes, Form form) {
    form_ = form;
    text_ = DecodeUnits(bytes, form);
    const std::size_t zero = text_.find(wchar16{0});
    const std::size_t length = std::min(zero, text_.size());
    const std::size_t unitSize = form == Form::Wide ? 2 : 1;
    const std::size_t readUnits = length + (zero == length ? 1 : 0);
    const auto unread =
        bytes.begin() + static_cast<std::ptrdiff_t>(std::min(bytes.size(), readUnits * unitSize));
    unread_ = static_cast<std::size_t>(bytes.end() - unread) -
              static_cast<std::size_t>(std::count(unread, bytes.end(), '\0'));
    text_.resize(length);
    document_ = std::make_unique<XmlDocument>();
    parsed_ = text_;
    parsed_.append(1 + kScanAhead, wchar16{0});
    isParsed_ = ParseInPlace(*document_, parsed_.data(), length, document_->root, &failure_);
}

void SourceFile::RequireParsed() const {
    if (isParsed_) return;
    const SyntaxError error = DescribeSyntaxError(*this);
    throw ExitError(ExitCode::kSyntaxError, AtPosition(*this, error.position, MessageOf(error)));
}

Position SourceFile::PositionAt(std::size_t offset) const noexcept {
    const auto next = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), offset);
    Position position;
    position.line = static_cast<std::size_t>(next - lineStarts_.begin());
    position.column = offset - *(next - 1) + 1;
    return position;
}

Position SourceFile::PositionOf(const XmlNode& node) const noexcept {
    const WideView text = node.name.IsEmpty() ? node.value.View() : node.name.View();
    return PositionAt(static_cast<std::size_t>(text.data() - parsed_.data()));
}

std::string AtPosition(const SourceFile& file, Position position, const std::string& message) {
    std::string text = file.Path();
    text.append(":").append(std::to_string(position.line));
    text.append(":").append(std::to_string(position.column));
    return text.append(": ").append(message);
}

}  // namespace mox::tool
