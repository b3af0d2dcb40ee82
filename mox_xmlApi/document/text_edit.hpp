// Changes to the text of a document: what no export can change, or not without changing something else.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
//
// Each function takes the bytes of a file and returns those of the changed file. Only the units that the change concerns
// are different: comments, unknown elements and attributes, "eud", the order and the layout stay as they are. Bytes go to
// Profile::parse, Table::parse or replaceFile; to change a document that is open, save it to memory first (toBytes).
//
//   bytes    The whole content of a file.
//   form     The form of the file; without one, it is that of detectEncoding.
//   problem  Set if not null: why the function failed, or reset.
//
// The functions return nullopt on failure. Besides the reasons named below, a document fails that has text after its
// first zero or another encoding (Encoding), does not parse (Syntax) or is of another kind (WrongKind), and a name that
// is no valid text (InvalidText). They take time in proportion to the size of the file, however deeply it is nested, and
// throw what Document::parse throws.
#ifndef MOX_XMLAPI_DOCUMENT_TEXT_EDIT_HPP
#define MOX_XMLAPI_DOCUMENT_TEXT_EDIT_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mox_xmlApi/front/form.hpp"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox {

// Gives the section `name` of a settings document another name, in its place. If several sections have the name, the
// first one gets the new name. If the section already has the new name, the bytes are returned unchanged.
//
// Fails if there is no such section (NoSuchSection), if another section has the new name (NameTaken), if that is empty
// (InvalidText), or if the file does not keep it (NotKept).
std::optional<std::string> renameSection(std::string_view bytes, std::optional<Form> form, const Text& name,
                                         const Text& newName, Problem* problem = nullptr);

// Adds a copy of the section, with everything in it, directly after it. If several sections have the name, the first
// one is copied. Fails as renameSection does, and also if the new name is that of the section itself (NameTaken).
std::optional<std::string> copySection(std::string_view bytes, std::optional<Form> form, const Text& name,
                                       const Text& newName, Problem* problem = nullptr);

// The attributes of a section or table besides its name. What is not set stays as it is.
struct HeaderChange {
    std::optional<bool> editable{};
    std::optional<std::uint32_t> firstId{};  // beyond 2147483647 reads return that number
    std::optional<std::uint16_t> type{};     // written as four hexadecimal digits: 16 as "0010"
};

// Changes attributes of a section; a missing one is added. Fails if there is no such section (NoSuchSection).
std::optional<std::string> changeSection(std::string_view bytes, std::optional<Form> form, const Text& name,
                                         const HeaderChange& change, Problem* problem = nullptr);

// A change of one of several sections.
struct SectionChange {
    Text name;
    HeaderChange header{};
};

// Changes several sections at once, in the time that one takes. Of several changes of the same attribute the last one
// counts. Fails as changeSection does, for the first section that is missing.
std::optional<std::string> changeSections(std::string_view bytes, std::optional<Form> form,
                                          const std::vector<SectionChange>& changes,
                                          Problem* problem = nullptr);

// Removes the presentation data of an entry: all its "UI" elements, with everything in them. If the entry has no value
// of its own, it gets the one that the presentation data had, so that hosts read the same value as before. An entry
// without presentation data stays as it is.
//
//   section  A section of a settings document. Without one, the document must be a table document.
//   name     The entry; the first one of that name.
//
// Fails if there is no such section or entry (NoSuchSection, NoSuchKey), if the entry has no known type (Unreadable), or
// if a value that moves begins with white space, or would replace an empty "Value" that holds comments or elements
// (NotKept).
std::optional<std::string> removePresentation(std::string_view bytes, std::optional<Form> form,
                                              const std::optional<Text>& section, const Text& name,
                                              Problem* problem = nullptr);

}  // namespace mox

#endif
