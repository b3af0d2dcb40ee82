// What decides whether a write is refused: the form of the file, the entries of which a write changes another part than
// is read, and whether the program wants the checks at all.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_WRITE_RULES_HPP
#define MOX_XMLAPI_FRONT_WRITE_RULES_HPP

#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/front/form.hpp"
#include "mox_xmlApi/front/kept_text.hpp"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/text.hpp"

namespace mox::front {

// The entries that have a part twice, of which one is written and another one is read, two <Value> elements for
// example. The exports do not show such entries, so the set is filled when the document is opened. An entry stays in it
// until all entries of its name are removed, or for good if other sections have the same name, because entries are known
// by names alone. The section of a table document is empty.
class Troubled {
  public:
    // Bits: the value is there twice, or its element has children, which add white space to it; something else is.
    static constexpr unsigned kValue = 1;
    static constexpr unsigned kOther = 2;

    void Add(UnitsView section, UnitsView name, unsigned parts) {
        sections_[Units(section)][Units(name)] |= parts;
    }

    // Keeps all entries of that section, which is not the only one of its name.
    void Keep(UnitsView section) { kept_.insert(Units(section)); }

    // The bits of the entries with that name; 0 if they are in order.
    unsigned PartsOf(UnitsView section, UnitsView name) const noexcept {
        const auto names = sections_.find(section);
        if (names == sections_.end()) return 0;
        const auto parts = names->second.find(name);
        return parts == names->second.end() ? 0 : parts->second;
    }

    void Remove(UnitsView section, UnitsView name) noexcept {
        const auto names = sections_.find(section);
        if (names == sections_.end() || kept_.find(section) != kept_.end()) return;
        const auto parts = names->second.find(name);
        if (parts != names->second.end()) names->second.erase(parts);
    }

    void RemoveSection(UnitsView section) noexcept {
        const auto names = sections_.find(section);
        if (names != sections_.end()) sections_.erase(names);
    }

    // Removes the names of the section of which `isLeft` returns false.
    template <class IsLeft>
    void RemoveUnless(UnitsView section, IsLeft isLeft) {
        const auto names = sections_.find(section);
        if (names == sections_.end() || kept_.find(section) != kept_.end()) return;
        for (auto name = names->second.begin(); name != names->second.end();)
            name = isLeft(name->first) ? std::next(name) : names->second.erase(name);
    }

  private:
    using Names = std::map<Units, unsigned, std::less<>>;
    std::map<Units, Names, std::less<>> sections_;
    std::set<Units, std::less<>> kept_;
};

// The file that a document was read from, or saved to last.
struct KnownFile {
    Units path{};
    FileStamp stamp{};  // that of a missing file if there is none
};

// Belongs to a document and is shared by the objects that write to it.
struct WriteRules {
    Form form = Form::Wide;  // that of the next save
    bool isLossy = false;    // write what the exports write, whether it is kept or not
    Troubled troubled{};
    bool isTableDocument = false;
    KnownFile file{};
    std::uint64_t indentationUnits = 0;  // that a save would have written when the document was opened
};

// What a call is about, and where it reports why it fails.
struct Target {
    UnitsView section{};  // empty in a table document
    UnitsView name{};     // of the key or entry
    const WriteRules* rules = nullptr;
    Problem* problem = nullptr;

    // Fills in the problem, if the caller asks for it. Returns false.
    bool Refuse(Reason reason, std::string_view what) const {
        if (problem == nullptr) return false;
        std::string message = Utf8Of(section);
        if (!section.empty() && !name.empty()) message += '/';
        message += Utf8Of(name);
        if (!message.empty()) message += ": ";
        return Fail(problem, reason, message.append(what));
    }

    bool Succeed() const noexcept { return front::Succeed(problem); }

    bool IsLossy() const noexcept { return rules->isLossy; }

    // Whether the text can be passed to the exports; `what` is what it is, "the value" for example.
    bool RequireValid(const Text& text, const char* what) const {
        if (text.isValid()) return true;
        return problem != nullptr &&
               Refuse(Reason::InvalidText, std::string(what) + " is not UTF-8, contains a zero, or is null");
    }

    // Whether the file keeps the text.
    bool RequireKept(UnitsView text, TextPlace place, const char* what) const {
        if (IsLossy()) return true;
        const BrokenRule broken = FindBrokenRule(text, place, rules->form);
        if (!broken) return true;
        return problem != nullptr && Refuse(Reason::NotKept, std::string(what) + " " + Describe(broken));
    }

    // Whether what is written to these parts of the entry is what is read.
    bool RequireUntroubled(unsigned parts) const {
        if (IsLossy() || (rules->troubled.PartsOf(section, name) & parts) == 0) return true;
        return Refuse(Reason::Ambiguous,
                      "the entry has a part twice, and a write changes another one than is read");
    }
};

// Whether an object has a document, which it has not after it was moved from.
inline bool RequireHandle(const void* handle, Problem* problem) {
    return handle != nullptr ||
           Fail(problem, Reason::NotStored, "the object has no document, because it was moved from");
}

}  // namespace mox::front

#endif
