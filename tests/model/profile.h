// Settings documents: their root, sections and keys, and what a save or an export writes of them.
#ifndef MOX_XMLAPI_TESTS_MODEL_PROFILE_H
#define MOX_XMLAPI_TESTS_MODEL_PROFILE_H

#include <cstdint>
#include <optional>
#include <string>

#include "tests/model/entries.h"

namespace model {

// The first "Settings" with a schema location among the children of the document, or null.
NodePtr FindRoot(const Node& document);
// The same, but a new one at the end of the document where there is none: what opening a profile does to a document.
NodePtr OpenRoot(Node& document);
// Removes what a save in mode 0 does: the first "eud" of each section and, where that is "true", the first "eud" of each
// of its entries.
void StripEud(Node& root);

class Profile {
  public:
    // A new one.
    Profile();
    // Over a document, which gets a root when it has none.
    explicit Profile(NodePtr document);

    const Node& Root() const { return *root_; }
    // The section of that name, or null.
    NodePtr Section(const Text& name) const;
    // Makes the section or gives it a new first id and type; `hasEud` says whether its "eud" is "true".
    NodePtr WriteSection(const Text& name, bool editable, std::uint32_t firstId, std::uint16_t type,
                         bool& hasEud);
    bool DeleteSection(const Text& name);

    // The value text of a key; none when it cannot be read.
    std::optional<Text> Read(const Text& section, const Text& key) const;
    bool Write(const Text& section, const Text& key, const Text& value);
    bool DeleteKey(const Text& section, const Text& key);

    void StripEud() { model::StripEud(*root_); }
    // The text of the document, or of its export in that mode.
    Text DocumentText() const;
    Text Export(std::uint32_t mode) const;

  private:
    NodePtr document_;
    NodePtr root_;
};

// The bytes that pairs of hexadecimal digits give, up to the first that is none, at most `size` of them.
std::string BytesOf(const Text& hex, std::size_t size);

}  // namespace model

#endif
