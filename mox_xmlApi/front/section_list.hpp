// How the C++ front finds the sections of a profile.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_SECTION_LIST_HPP
#define MOX_XMLAPI_FRONT_SECTION_LIST_HPP

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "mox_xmlApi/front/entry_reading.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox::front {

using ProfileHandle = std::shared_ptr<moxSettings>;

struct FoundSection {
    TableHandle handle;
    Units name;
    bool isEditable = false;
};

// Releases a section handle, and the profile it belongs to after it.
class SectionDisposer {
  public:
    explicit SectionDisposer(ProfileHandle profile) : profile_(std::move(profile)) {}
    void operator()(void* handle) const { xmlTableDispose(&handle); }

  private:
    ProfileHandle profile_;
};

// Takes ownership of a section handle.
inline FoundSection AdoptSection(const ProfileHandle& profile, void* handle) {
    FoundSection section;
    section.handle = TableHandle(handle, SectionDisposer(profile));
    return section;
}

// An enumeration of sections. Its destructor steps to the end, because the position owns memory until then.
class SectionEnumeration {
  public:
    explicit SectionEnumeration(moxSettings* profile) noexcept : profile_(profile) {}
    SectionEnumeration(const SectionEnumeration&) = delete;
    SectionEnumeration& operator=(const SectionEnumeration&) = delete;
    ~SectionEnumeration() {
        try {
            while (position_ != 0) {
                void* handle = Next(nullptr, 0, nullptr);
                xmlTableDispose(&handle);
            }
        } catch (...) {
            // A step needs memory. If there is none, the memory of the position leaks.
            position_ = 0;
        }
    }

    // Returns the next section's handle, which the caller owns; null at the end.
    void* Next(wchar16* name, std::uint32_t size, std::uint32_t* editable) {
        return xmlEnumProfileSections(profile_, &position_, name, size, editable);
    }

  private:
    moxSettings* profile_;
    std::uintptr_t position_ = 0;
};

// Reads again, into a buffer of 4 * `size` units, the names that filled one of `size` units and may have been cut. A
// step cannot be repeated, so each size takes a whole enumeration. Returns whether a name fills the new buffer, too.
inline bool ReadLongNames(moxSettings* profile, std::vector<Units>& names, std::uint32_t size) {
    SectionEnumeration enumeration(profile);
    Units buffer(std::size_t{size} * 4, wchar16{0});
    bool isCut = false;
    for (Units& name : names) {
        const bool mayBeCut = name.size() + 1 == size;
        void* handle = enumeration.Next(mayBeCut ? buffer.data() : nullptr, size * 4, nullptr);
        xmlTableDispose(&handle);
        if (!mayBeCut) continue;
        name = ViewOf(buffer.data());
        isCut = isCut || name.size() + 1 == buffer.size();
    }
    return isCut;
}

// Returns the whole names of all sections. Passes the handle of each, which it takes over, to `take` with whether the
// section is editable.
template <class Take>
std::vector<Units> ReadSections(moxSettings* profile, Take take) {
    constexpr std::uint32_t kFirstSize = 128;
    constexpr std::uint32_t kMaxSize = std::uint32_t{1} << 29;
    std::vector<Units> names;
    bool isCut = false;
    {
        SectionEnumeration enumeration(profile);
        Units buffer(kFirstSize, wchar16{0});
        std::uint32_t editable = 0;
        while (void* const handle = enumeration.Next(buffer.data(), kFirstSize, &editable)) {
            take(handle, editable != 0);
            names.emplace_back(ViewOf(buffer.data()));
            isCut = isCut || names.back().size() + 1 == buffer.size();
        }
    }
    for (std::uint32_t size = kFirstSize; isCut && size <= kMaxSize; size *= 4)
        isCut = ReadLongNames(profile, names, size);
    return names;
}

inline std::vector<Units> FindSectionNames(moxSettings* profile) {
    return ReadSections(profile, [](void* handle, bool /*isEditable*/) { xmlTableDispose(&handle); });
}

// Returns every section with its whole name.
inline std::vector<FoundSection> FindSections(const ProfileHandle& profile) {
    std::vector<FoundSection> sections;
    std::vector<Units> names = ReadSections(profile.get(), [&](void* handle, bool isEditable) {
        FoundSection section = AdoptSection(profile, handle);
        section.isEditable = isEditable;
        sections.push_back(std::move(section));
    });
    for (std::size_t i = 0; i < sections.size(); ++i)
        sections[i].name = std::move(names[i]);
    return sections;
}

}  // namespace mox::front

#endif
