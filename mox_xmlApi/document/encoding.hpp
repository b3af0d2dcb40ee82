// Encodings: what the bytes of a file are, and conversion of other encodings to a document's own and back.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
// The library reads every file as one of two forms and looks at no byte-order mark. What it makes of other files is
// rarely what was meant: a file with a mark does not parse, UTF-16 with the high byte first is an empty document, and of
// UTF-8 without a mark each byte from 0x80 on becomes a unit of its own. The functions here tell such files apart.
#ifndef MOX_XMLAPI_DOCUMENT_ENCODING_HPP
#define MOX_XMLAPI_DOCUMENT_ENCODING_HPP

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "mox_xmlApi/front/form.hpp"
#include "mox_xmlApi/front/problem.hpp"

namespace mox {

enum class Encoding : std::uint8_t {
    // What documents are stored in. Each program reads such a text as the library does.
    Narrow,  // one byte per character, all of them 7-bit
    Wide,    // UTF-16, low byte first; a unit may be an unpaired surrogate

    // What the library reads as narrow text, but as another text: bytes from 0x80 on become U+FF80 to U+FFFF.
    Utf8,  // UTF-8 with at least one character beyond 7-bit
    Latin1,  // one byte per character, at least one beyond 7-bit, and not UTF-8: Latin-1, or another such encoding

    // What the library does not read at all.
    Utf16Be,  // UTF-16, high byte first
    Zeros,    // at least one byte, and nothing but zeros
};

// What detectEncoding finds out about the bytes of a file.
struct EncodingReport {
    Encoding encoding = Encoding::Narrow;
    bool hasByteOrderMark = false;  // the text begins with U+FEFF: no document does
    Form form = Form::Narrow;       // the form in which the library reads the bytes
    std::size_t textSize = 0;       // the bytes before the first zero unit of that form, where its text ends
    std::size_t unreadBytes = 0;    // the bytes after that which are not zero: the library ignores them

    // Whether the library reads all of the text, and as what it is.
    bool isDocument() const noexcept {
        return (encoding == Encoding::Narrow || encoding == Encoding::Wide) && !hasByteOrderMark &&
               unreadBytes == 0;
    }
};

// Finds out how `bytes`, the whole content of a file, are encoded. Takes linear time and no memory.
//
//   form  The form in which the library reads the bytes. Without one, the first two bytes decide: a document begins with
//         "<" or white space, so that the second byte of a wide one is zero. An empty file is wide, one byte is narrow.
//
// The encoding is that of the text before the first zero unit of that form.
EncodingReport detectEncoding(std::string_view bytes, std::optional<Form> form = std::nullopt) noexcept;

// Returns the encoding for people: "UTF-8 with a byte-order mark", "UTF-16 with the high byte first", or "7-bit text that
// ends after 434 bytes, before 12 bytes other than zero".
std::string describe(const EncodingReport& report);

// Converts a text in another encoding to the bytes of a document's file: they end with a zero unit, as those of saved
// files do, and have no byte-order mark. Nothing else changes, neither line breaks nor what an XML declaration says.
// The result need not be a document that parses.
//
//   bytes    The text. A byte-order mark of this encoding at its beginning and zeros at its end are left out.
//   from     How it is encoded. Of UTF-8, the three-byte forms of surrogates are accepted (see front/text.hpp); of
//            UTF-16, unpaired surrogates. Narrow accepts only 7-bit bytes, Latin1 all of them.
//   to       The form of the result.
//   problem  Set if not null. Reason::Encoding for bytes that are not in this encoding, and for a zero between others:
//            the message has the offset of the first of them. Reason::NotKept for a character beyond 7-bit if the
//            result is to be narrow. Line and column are those in `bytes`, in units of the encoding.
//
// Returns nullopt on failure. Throws std::bad_alloc.
std::optional<std::string> importText(std::string_view bytes, Encoding from, Form to = Form::Wide,
                                      Problem* problem = nullptr);

// Returns the text of a document's file as UTF-8, without a byte-order mark and without the zero at its end: the text up
// to the first zero unit, as the library reads it. Without a form, it is that of detectEncoding. An unpaired surrogate
// becomes the three bytes that front/text.hpp describes; importText reads them back exactly, but other programs refuse
// them. The bytes from 0x80 on of a narrow file become U+FF80 to U+FFFF. Throws std::bad_alloc.
std::string exportUtf8(std::string_view bytes, std::optional<Form> form = std::nullopt);

}  // namespace mox

#endif
