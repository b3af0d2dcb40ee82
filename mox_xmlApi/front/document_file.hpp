// How documents get from files, and from memory, to the exports and back.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
// A file is read once. Its bytes are inspected, and the same bytes are passed to the exports. A save is what the exports
// write to a scratch file; that is read, checked, and put in the place of the old file.
#ifndef MOX_XMLAPI_FRONT_DOCUMENT_FILE_HPP
#define MOX_XMLAPI_FRONT_DOCUMENT_FILE_HPP

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/disk/replace_file.hpp"
#include "mox_xmlApi/disk/scratch_file.hpp"
#include "mox_xmlApi/document/inspect.hpp"
#include "mox_xmlApi/front/file_options.hpp"
#include "mox_xmlApi/front/form.hpp"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/write_rules.hpp"

namespace mox::front {

// The low byte of each unit of a wide text.
inline std::string LowBytesOf(std::string_view wide) {
    std::string bytes(wide.size() / 2, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = wide[2 * i];
    return bytes;
}

// ---- opening

// Names the file in a problem that does not name one yet. Returns false.
inline bool FailInFile(Problem* problem, const Text& path) {
    if (problem != nullptr && problem->file.empty()) problem->file = Utf8Of(path.units());
    return false;
}

// Whether a document of this kind can be opened from the bytes. `findings` are set in any case.
inline bool RequireDocument(std::string_view bytes, DocumentKind kind, const OpenOptions& options,
                            DocumentFindings& findings, Problem* problem) {
    const bool isFine = Inspect(bytes, options.form, findings, problem);
    if (options.anyDocument) return findings.isParsed;
    if (!isFine) return false;
    if (findings.kind == kind) return true;
    return problem != nullptr &&
           Fail(problem, Reason::WrongKind,
                "found a " + describe(findings.kind) + ", expected a " + describe(kind));
}

// Passes the bytes of a document to an export that opens documents: open(path, buffer, size, wide) calls it. Returns
// what that returns; a null handle, with the problem set, on failure.
template <class Open>
auto OpenBytes(std::string_view bytes, const DocumentFindings& findings, Open open, Problem* problem)
    -> decltype(open(nullptr, nullptr, 0, 0)) {
    const bool isWide = findings.encoding.form == Form::Wide;
    const std::string_view text = bytes.substr(0, findings.encoding.textSize);
    if (isWide && !findings.isSevenBit) {
        std::optional<ScratchFile> scratch = ScratchFile::create(problem);
        if (!scratch.has_value() || !scratch->write(bytes, problem)) return nullptr;
        return open(scratch->path(), nullptr, 0, 1);
    }
    // A buffer has one byte per unit. An empty one would mean a new document.
    const std::string narrow = isWide ? LowBytesOf(text) : std::string();
    std::string_view buffer = isWide ? std::string_view(narrow) : text;
    if (buffer.empty()) buffer = "\n";
    if (buffer.size() > static_cast<std::size_t>((std::numeric_limits<std::int32_t>::max)())) {
        Fail(problem, Reason::TooLarge, "the document has more than 2^31 - 1 units");
        return nullptr;
    }
    return open(nullptr, buffer.data(), static_cast<std::int32_t>(buffer.size()), 0);
}

// Stores the findings about a document that has been opened, except for its form. Odd entries are recorded by section
// and name only. If one of several entries with the same name is odd, writes to all of them are refused.
inline void TakeFindings(const DocumentFindings& findings, WriteRules& rules) {
    constexpr std::uint32_t kValueOddities = kTwoTypes | kTwoValues | kValueHasChildren;
    rules.indentationUnits = findings.indentationUnits;
    for (const OddTable& table : findings.tables) {
        const UnitsView section =
            findings.kind == DocumentKind::Settings ? UnitsView(table.name) : UnitsView();
        if (!table.isOnly) rules.troubled.Keep(section);
        for (const OddEntry& entry : table.entries) {
            const std::uint32_t doubled = entry.oddities & ~std::uint32_t{kUnreadable};
            if (!entry.hasName || doubled == 0) continue;
            unsigned parts = Troubled::kOther;
            if ((doubled & kValueOddities) != 0) parts |= Troubled::kValue;
            rules.troubled.Add(section, entry.name, parts);
        }
    }
}

// ---- saving

// Whether a save of the document takes a reasonable amount of memory: each level of nesting is a tab on every line.
inline bool RequireShallow(const WriteRules& rules, Problem* problem) {
    constexpr std::uint64_t kMostIndentation = std::uint64_t{1} << 27;  // units
    return rules.indentationUnits <= kMostIndentation ||
           Fail(problem, Reason::TooDeep,
                "the elements are nested so deeply that the saved file would consist of little but "
                "indentation");
}

// What write(path) writes to a file; nullopt if it returns false, or on a failure of the system.
template <class Write>
std::optional<std::string> BytesWrittenBy(Write write, Problem* problem) {
    std::optional<ScratchFile> scratch = ScratchFile::create(problem);
    if (!scratch.has_value()) return std::nullopt;
    if (!write(scratch->path())) {
        Fail(problem, Reason::WriteFailed, "cannot write the document to a temporary file");
        return std::nullopt;
    }
    return scratch->read(problem);
}

// Whether a narrow file keeps the text of this wide file. The bytes from 0x80 on of a narrow file are U+FF80 to U+FFFF
// in memory, and are saved as the same bytes.
inline bool RequireNarrow(std::string_view wide, Problem* problem) {
    for (std::size_t i = 0; i + 1 < wide.size(); i += 2) {
        const auto low = static_cast<unsigned char>(wide[i]);
        const auto high = static_cast<unsigned char>(wide[i + 1]);
        if ((high == 0 && low < 0x80) || (high == 0xFF && low >= 0x80)) continue;
        const BrokenRule broken{TextRule::NotAscii, static_cast<char16_t>(high << 8 | low)};
        return Fail(problem, Reason::NotKept, "the document " + Describe(broken));
    }
    return true;
}

// Replaces the file at `path` by the bytes. Of a document as a whole, `known` is the file that it was read from or saved
// to last, and becomes this one, also if that is Unconfirmed; it is null for anything else.
inline bool ReplaceKnownFile(const Text& path, std::string_view bytes, const SaveOptions& options,
                             KnownFile* known, Problem* problem) {
    ReplaceOptions replacing;
    replacing.backup = options.backup;
    FileStamp stamp;
    const FileStamp missing;
    const bool isKnown = known != nullptr && known->stamp.exists;
    if (!options.overwrite)
        replacing.onlyIf = isKnown && known->path == path.units() ? &known->stamp : &missing;
    Problem found;
    bool isReplaced = replaceFile(path, bytes, replacing, &stamp, &found);
    if (found.reason == Reason::Changed && isKnown && replacing.onlyIf == &missing) {
        // The known file may be meant by another name.
        replacing.onlyIf = &known->stamp;
        isReplaced = replaceFile(path, bytes, replacing, &stamp, &found);
    }
    if (known != nullptr && (isReplaced || found.reason == Reason::Unconfirmed))
        *known = {Units(path.units()), stamp};
    if (problem != nullptr) *problem = std::move(found);
    return isReplaced;
}

}  // namespace mox::front

#endif
