// The profile functions of the model.
#ifndef MOX_XMLAPI_TESTS_MODEL_PROFILE_H
#define MOX_XMLAPI_TESTS_MODEL_PROFILE_H

#include <cstdint>
#include <optional>
#include <string>

#include "tests/model/entries.h"

namespace model {

class Profile {
  public:
    // A new one.
    Profile();
    // Over a document, which gets a root when it has none.
    explicit Profile(NodePtr document);

    const Node& Root() const { return *root_; }
    // The section of that name, or null.
    NodePtr Section(const Text& name) const;
    // Makes the section or gives it a new first id and type; whether it carries the mark.
    NodePtr WriteSection(const Text& name, bool editable, std::uint32_t firstId, std::uint16_t type,
                         bool& marked);
    bool DeleteSection(const Text& name);

    // The value text of a key; none when it cannot be read.
    std::optional<Text> Read(const Text& section, const Text& key) const;
    bool Write(const Text& section, const Text& key, const Text& value);
    bool DeleteKey(const Text& section, const Text& key);

    // Before a save in mode 0.
    void StripMarks();
    // The text of the document, or of its export in that mode.
    Text DocumentText() const;
    Text Export(std::uint32_t mode) const;

  private:
    void LocateRoot();

    NodePtr document_;
    NodePtr root_;
};

// The bytes that pairs of hexadecimal digits give, up to the first that is none, at most `size` of them.
std::string BytesOf(const Text& hex, std::size_t size);

}  // namespace model

#endif
