// Section, one section of a profile.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_SECTION_HPP
#define MOX_XMLAPI_FRONT_SECTION_HPP

#include <memory>
#include <string>
#include <utility>

#include "mox_xmlApi/front/entry_table.hpp"
#include "mox_xmlApi/front/section_list.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/write_rules.hpp"

namespace mox {

// One section of a profile, as the table of its keys. After the section has been removed from the profile, a Section
// can only be destroyed or assigned to.
class Section : public EntryTable {
  public:
    // The name that the section had when this object was made; empty for an element without a name.
    std::string name() const { return front::StringOf<std::string>(Scope()); }
    std::u16string name16() const { return front::StringOf<std::u16string>(Scope()); }

    // Whether the section was editable when this object was made.
    bool isEditable() const noexcept { return isEditable_; }

  private:
    friend class Profile;

    Section(front::FoundSection&& found, std::shared_ptr<front::WriteRules> rules)
        : EntryTable(std::move(found.handle), std::move(rules), std::move(found.name)),
          isEditable_(found.isEditable) {}

    bool isEditable_;
};

}  // namespace mox

#endif
