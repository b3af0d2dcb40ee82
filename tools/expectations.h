// What a changed file must have.
#ifndef MOX_XMLAPI_TOOLS_EXPECTATIONS_H
#define MOX_XMLAPI_TOOLS_EXPECTATIONS_H

#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "mox_xmlApi/document/document.hpp"

namespace mox::tool {

// The fields of sections and entries that were written, and the sections and entries that were removed. What is set
// later counts: a field of what was removed means that it is there again. The fields are those of FieldsOf
// (tools/document_diff.h). In a table document every change must name the section alike; an empty name will do.
class Expectations {
  public:
    // The field that hosts read as the value.
    static constexpr const char* kEffective = "effective value";

    void Set(const std::string& section, const std::string& entry, const std::string& field,
             const std::string& text);
    void SetSection(const std::string& section, const std::string& field, const std::string& text);
    void SetGone(const std::string& section);
    void SetGone(const std::string& section, const std::string& entry);

    // Nothing is expected any more of the section and its entries, or of the fields of the entry.
    void Forget(const std::string& section);
    void Forget(const std::string& section, const std::string& entry);

    // Returns what the document does not have as expected, or an empty string.
    std::string FindBroken(const Document& document) const;

  private:
    std::set<std::pair<std::string, std::optional<std::string>>> gone_{};
    std::map<std::pair<std::string, std::string>, std::string> sectionFields_{};
    std::map<std::tuple<std::string, std::string, std::string>, std::string> fields_{};
};

}  // namespace mox::tool

#endif
