// How the C++ front replaces an entry by a new one in the same place, where the exports cannot change it. An entry with
// parts that the exports do not carry, such as a minimum or a comment of XML, is left alone.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_ENTRY_REBUILDING_HPP
#define MOX_XMLAPI_FRONT_ENTRY_REBUILDING_HPP

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/front/document_file.hpp"
#include "mox_xmlApi/front/entry.hpp"
#include "mox_xmlApi/front/entry_reading.hpp"
#include "mox_xmlApi/front/entry_renaming.hpp"
#include "mox_xmlApi/front/entry_writing.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/write_rules.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox::front {

// ---- what an entry has

// Returns the name of the first attribute that is not in `names`, a list with a space before and after each name. Returns
// an empty string if there is no such attribute. An empty "loc" is ignored.
inline std::string FindOtherAttribute(DocumentNode node, std::string_view names) {
    for (const DocumentAttribute& attribute : node.attributes()) {
        if (attribute.name == "loc" && attribute.value.empty()) continue;
        const std::string padded = " " + attribute.name + " ";
        if (names.find(padded) == std::string_view::npos) return attribute.name;
    }
    return {};
}

// Returns the first child that is none of the elements with these names, or the second of one of them; empty if there
// is none.
inline std::string FindOtherChild(DocumentNode node, std::string_view first, std::string_view second) {
    bool hasFirst = false;
    bool hasSecond = false;
    for (const DocumentNode child : node.children()) {
        bool* const isThere = child.isElement(first)    ? &hasFirst
                              : child.isElement(second) ? &hasSecond
                                                        : nullptr;
        if (isThere == nullptr)
            return child.kind() == NodeKind::Element ? "<" + child.name() + ">" : "<!-- -->";
        if (*isThere) return "a second <" + child.name() + ">";
        *isThere = true;
    }
    return {};
}

// The same for a "Value" or "Comment" element, which has nothing but a text.
inline std::string FindOtherThanText(DocumentNode node) {
    std::string other = FindOtherAttribute(node, "");
    return other.empty() ? FindOtherChild(node, "", "") : other;
}

inline std::string FindOtherThanUi(DocumentNode node) {
    std::string other = FindOtherAttribute(node, " control prov_index prov_owner name ");
    if (other.empty()) other = FindOtherChild(node, "Comment", "Value");
    for (const DocumentNode child : node.children())
        if (other.empty()) other = FindOtherThanText(child);
    return other;
}

// Returns a part of the entry that no record carries; empty if there is none.
inline std::string FindOtherThanEntry(DocumentNode node) {
    if (!node.isElement("Var")) return "<" + node.name() + ">";
    std::string other = FindOtherAttribute(node, " name id type array eud ");
    if (other.empty()) other = FindOtherChild(node, "Value", "UI");
    for (const DocumentNode child : node.children())
        if (other.empty()) other = child.isElement("UI") ? FindOtherThanUi(child) : FindOtherThanText(child);
    return other;
}

// Writes the table to a file of its own and reads that as a document; nullopt, with the reason, if that fails.
inline std::optional<Document> DocumentOf(void* handle, Problem* problem) {
    const auto write = [handle](const wchar16* path) { return xmlTableSave(handle, path, 0, 0); };
    const std::optional<std::string> bytes = BytesWrittenBy(write, problem);
    if (!bytes.has_value()) return std::nullopt;
    return Document::parse(*bytes, Form::Wide, problem);
}

// The table in a document from DocumentOf: of a table document its first "Table" element, of a section the only element.
inline DocumentNode FindTableNode(const Document& document) {
    DocumentNode table;
    for (const DocumentNode node : document.nodes()) {
        if (node.isElement("Table")) return node;
        if (!table && node.kind() == NodeKind::Element) table = node;
    }
    return table;
}

inline DocumentNode FindEntryNode(DocumentNode table, const std::string& name) {
    for (const DocumentNode node : table.children())
        if (node.attribute("name") == name) return node;
    return {};
}

// Whether an entry can be replaced without losing anything, and whether it has "eud".
inline bool RequireReplaceable(void* handle, const Target& target, const Text& name, Eud& eud) {
    if (!RequireShallow(*target.rules, target.problem)) return false;
    const std::optional<Document> document = DocumentOf(handle, target.problem);
    if (!document.has_value()) return false;
    const DocumentNode table = FindTableNode(*document);
    const DocumentNode node = FindEntryNode(table, Utf8Of(name.units()));
    eud = node.attribute("eud") == "true" ? Eud::Set : Eud::DoNotSet;
    std::string other = FindOtherThanEntry(node);
    // A new "eud" would also be set on the table, whose saves would remove it from all entries.
    if (other.empty() && eud == Eud::Set && !table.attribute("eud").has_value()) other = "eud";
    return other.empty() ||
           target.Refuse(Reason::NotStored, "the exports can only replace the entry to do this, and it has " +
                                                other + ", which would be lost");
}

// ---- the new entry

// A name that no entry of the table has.
inline Text UnusedName(void* handle) {
    for (int number = 0;; ++number) {
        const Text name("_" + std::to_string(number));
        TableEntryBaseInfoStruct record;
        SetRecordName(name.units(), record);
        if (!xmlTableEntryIsExist(handle, &record)) return name;
    }
}

// Replaces an entry by a new one that was added directly before it under a temporary name. After the new entry has been
// renamed, both have the same name. The destructor removes one of them: the old one if Keep was called, the new one
// otherwise. It allocates no memory.
class Replacement {
  public:
    Replacement(void* handle, const Text& temporary, const Text& name) noexcept : handle_(handle) {
        SetRecordName(temporary.units(), temporary_);
        SetRecordName(name.units(), name_);
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;
    ~Replacement() {
        if (isKept_) {
            xmlTableRemoveEntry(handle_, &name_, 1, 0);
        } else if (!xmlTableRemoveEntry(handle_, &temporary_, -1, 1) && mayBeRenamed_) {
            xmlTableRemoveEntry(handle_, &name_, 0, 0);
        }
    }
    void WillBeRenamed() noexcept { mayBeRenamed_ = true; }
    void Keep() noexcept { isKept_ = true; }

  private:
    void* handle_;
    TableEntryBaseInfoStruct temporary_;
    TableEntryBaseInfoStruct name_;
    bool mayBeRenamed_ = false;
    bool isKept_ = false;
};

// Writes the values and the presentation data of an entry that is there with name, type and id. An entry without any
// value gets the one of its presentation data together with these, whether they have a comment or not.
inline bool CompleteEntry(void* handle, const Entry16& entry, TableEntryValueInfoStruct& value, Eud eud) {
    const auto flag = static_cast<std::int32_t>(eud);
    TableEntryUInfoStruct ui;
    value.writeMask = kMaskName;
    if (!FillUiRecord(*entry.ui, ui) || !SetRecordValue(Text(*entry.ui->value), value.type, value))
        return false;
    const bool isUiWritten = entry.ui->value->empty()
                                 ? xmlTableEntryAdd(handle, nullptr, &value, &ui, flag, 1)
                                 : xmlTableEntrySet(handle, nullptr, &value, &ui, 1, flag);
    if (!isUiWritten || !HasText(entry.value)) return isUiWritten;
    value.writeMask = kMaskName | kMaskValue;
    return SetRecordValue(Text(*entry.value), value.type, value) &&
           xmlTableEntryAdd(handle, nullptr, &value, nullptr, flag, 1);
}

// Puts `entry`, which was read and changed, in the place of the first entry of its name, if that has nothing that would
// be lost. Takes time in proportion to the size of the table. If it fails, nothing is changed.
inline bool RebuildEntry(void* handle, const Target& target, const Text& name, const Entry16& entry) {
    Eud eud = Eud::DoNotSet;
    if (!entry.value.has_value() || !entry.ui.has_value() || !entry.ui->value.has_value())
        return RefuseRecord(target);
    if (KeepsValuesInUi(handle) && HasText(entry.value)) return RefuseValuesInUi(target);
    if (!RequireReplaceable(handle, target, name, eud)) return false;
    const std::optional<std::uint64_t> found = FindPositionBefore(handle, name.units());
    if (!found.has_value()) return RefuseWritten(target);

    std::uint64_t position = *found;
    const bool isFirst = position == 0;
    Entry16 made;
    ReadNext(handle, position, made);  // moves the position to the old entry
    made = entry;

    // While it has a value in its presentation data alone, the new entry must not be the table's first one, which decides
    // where values go. Another one comes before it for that time.
    std::optional<NewEntry> first;
    if (isFirst && HasText(entry.value) && HasUiValue(entry)) {
        TableEntryValueInfoStruct record;
        SetRecordName(UnusedName(handle).units(), record);
        record.type = static_cast<std::uint16_t>(ValueType::Long);
        record.SetVal("0");
        first.emplace(handle, record);
        if (!xmlTableEntryAdd(handle, &position, &record, nullptr, 0, 0)) return RefuseWritten(target);
    }

    const Text temporary = UnusedName(handle);
    made.name = StringOf<std::u16string>(temporary.units());
    made.value.reset();
    TableEntryValueInfoStruct value;
    Replacement replacement(handle, temporary, name);
    if (!FillValueRecord(made, value) ||
        !xmlTableEntryAdd(handle, &position, &value, nullptr, static_cast<std::int32_t>(eud), 0) ||
        !CompleteEntry(handle, entry, value, eud))
        return RefuseWritten(target);
    replacement.WillBeRenamed();
    const std::optional<std::uint64_t> before = FindPositionBefore(handle, temporary.units());
    if (!before.has_value() || !WriteName(handle, *before, temporary, name, entry))
        return RefuseWritten(target);
    replacement.Keep();
    return target.Succeed();
}

}  // namespace mox::front

#endif
