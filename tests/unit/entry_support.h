// What the tests of entries and tables share: documents from short texts, a cursor over them, and entries as text
// again.
#ifndef MOX_XMLAPI_TESTS_UNIT_ENTRY_SUPPORT_H
#define MOX_XMLAPI_TESTS_UNIT_ENTRY_SUPPORT_H

#include <string>
#include <string_view>

#include "mox_xmlApi/entries/entry_records.h"
#include "mox_xmlApi/entries/table_cursor.h"
#include "tests/unit/xml_support.h"

namespace mox::test {

// A document from 8-bit text.
class TextDocument {
  public:
    explicit TextDocument(std::string_view text) {
        EXPECT_TRUE(document_.LoadBuffer(text.data(), text.size())) << text;
    }

    XmlDocument& Document() { return document_; }
    XmlNode* Root() { return document_.root; }
    XmlNode* First() { return document_.root->children.At(0); }
    // The written form of everything, with line feeds and tabs as \n and \t.
    std::string Text() const { return Written(document_.root); }

  private:
    XmlDocument document_;
};

// A table with one entry, and a ready cursor on the table.
class OneEntry : public TextDocument {
  public:
    explicit OneEntry(std::string_view entry) : TextDocument("<Table>" + std::string(entry) + "</Table>") {
        cursor_.document = &Document();
        cursor_.table = First();
        SetReady(true, true);
    }

    const TableCursor& Cursor() const { return cursor_; }
    void SetReady(bool document, bool table) {
        cursor_.documentReady = document;
        cursor_.tableReady = table;
    }
    XmlNode* Entry() { return First()->children.At(0); }
    // The "UI" child of the entry.
    XmlNode* Ui() { return XmlDocument::FindChildElement(Entry(), "UI"_w); }
    // Each in one line, see Dump.
    std::string EntryText() { return Dump(Entry()); }

  private:
    TableCursor cursor_;
};

// A record in one line: every field but those that have their cleared value.
inline std::string Show(const EntryValueRecord& record) {
    std::string shown = Quoted(record.name);
    if (record.writeMask != 0) shown += " mask " + std::to_string(record.writeMask);
    if (record.type != 0) shown += " type " + std::to_string(record.type);
    if (record.id != 0) shown += " id " + std::to_string(record.id);
    if (record.loc) shown += " loc";
    if (!record.Value.empty()) shown += " = " + Quoted(record.Value);
    if (record.locval) shown += " locval";
    return shown;
}

inline std::string Show(const EntryUiRecord& record) {
    std::string shown = "control " + std::to_string(record.control);
    if (record.access != 0) shown += " access " + std::to_string(record.access);
    if (record.flags != 0) shown += " flags " + std::to_string(record.flags);
    if (record.prov_index != 0) shown += " index " + std::to_string(record.prov_index);
    if (record.prov_owner != 0) shown += " owner " + std::to_string(record.prov_owner);
    if (!record.regen.empty()) shown += " regen " + Quoted(record.regen);
    if (!record.Comment.empty()) shown += " comment " + Quoted(record.Comment);
    if (!record.name.empty()) shown += " name " + Quoted(record.name);
    if (!record.minVal.empty()) shown += " min " + Quoted(record.minVal);
    if (!record.maxVal.empty()) shown += " max " + Quoted(record.maxVal);
    if (!record.Value.empty()) shown += " = " + Quoted(record.Value);
    if (record.loc) shown += " loc";
    return shown;
}

// Records with every field set.
inline EntryValueRecord FullValueRecord() {
    return {kWriteName, "n"_w, "v"_w, 3, 7, true, true};
}
inline EntryUiRecord FullUiRecord() {
    EntryUiRecord record;
    record.control = 1;
    record.access = 2;
    record.flags = 3;
    record.prov_index = 4;
    record.prov_owner = 1;
    record.regen = "r"_w;
    record.Comment = "c"_w;
    record.name = "n"_w;
    record.minVal = "0"_w;
    record.maxVal = "9"_w;
    record.Value = "v"_w;
    record.loc = true;
    return record;
}

}  // namespace mox::test

#endif
