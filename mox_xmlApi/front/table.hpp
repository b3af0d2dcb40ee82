// Table, a table document.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_TABLE_HPP
#define MOX_XMLAPI_FRONT_TABLE_HPP

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "mox_xmlApi/front/entry_table.hpp"
#include "mox_xmlApi/front/table_options.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/write_rules.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox {

// A table document. Its file is always wide.
class Table : public EntryTable {
  public:
    // A new document with an empty table.
    static Table create(const Text& name, const TableOptions& options = {}) {
        return Table(xmlTableNew(nullptr, nullptr, 0, name.c_str(), options.editable ? 1 : 0, options.firstId,
                                 options.type, 1));
    }

    // Opens a file; nullopt if it cannot be read, does not parse, or has a table of another name. The empty name
    // accepts any. A document without a table gets an empty one of that name in memory.
    static std::optional<Table> open(const Text& path, const Text& name = "") {
        if (!path.isValid() || !name.isValid()) return std::nullopt;
        return FromHandle(xmlTableNew(path.c_str(), nullptr, 0, name.c_str(), 0, 0, 0, 0));
    }

    // Opens a document from 7-bit text, up to its first zero byte; otherwise like open.
    static std::optional<Table> parse(std::string_view text, const Text& name = "") {
        if (!name.isValid()) return std::nullopt;
        const std::string copy(text);
        const char* const source =
            copy.c_str()[0] == '\0' ? "\n" : copy.c_str();  // an empty text would mean a new document
        return FromHandle(xmlTableNew(nullptr, source, -1, name.c_str(), 0, 0, 0, 0));
    }

    // Whether writes do what the exports do, see Profile::setLossy. It is not so at first.
    void setLossy(bool isLossy) noexcept {
        if (Rules() != nullptr) Rules()->isLossy = isLossy;
    }
    bool isLossy() const noexcept { return Rules() != nullptr && Rules()->isLossy; }

  private:
    static void Dispose(void* handle) { xmlTableDispose(&handle); }

    explicit Table(void* handle)
        : EntryTable(front::TableHandle(handle, Dispose), std::make_shared<front::WriteRules>(), {}) {}

    static std::optional<Table> FromHandle(void* handle) {
        if (handle == nullptr) return std::nullopt;
        return Table(handle);
    }
};

}  // namespace mox

#endif
