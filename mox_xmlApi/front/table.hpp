// Table, a table document.
// Part of mox_xmlApi.hpp; valid in C++17 and later.
#ifndef MOX_XMLAPI_FRONT_TABLE_HPP
#define MOX_XMLAPI_FRONT_TABLE_HPP

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "mox_xmlApi/disk/file_stamp.hpp"
#include "mox_xmlApi/disk/read_file.hpp"
#include "mox_xmlApi/document/document.hpp"
#include "mox_xmlApi/document/encoding.hpp"
#include "mox_xmlApi/document/inspect.hpp"
#include "mox_xmlApi/front/document_file.hpp"
#include "mox_xmlApi/front/entry_table.hpp"
#include "mox_xmlApi/front/file_options.hpp"
#include "mox_xmlApi/front/form.hpp"
#include "mox_xmlApi/front/kept_text.hpp"
#include "mox_xmlApi/front/problem.hpp"
#include "mox_xmlApi/front/table_options.hpp"
#include "mox_xmlApi/front/text.hpp"
#include "mox_xmlApi/front/write_rules.hpp"
#include "mox_xmlApi/mox_xmlApi.h"

namespace mox {

// A table document. Its file is always wide.
class Table : public EntryTable {
  public:
    // A new document with an empty table of that name. If the name is invalid (InvalidText, see Text) or no file keeps
    // it (NotKept), the result is empty as after a move: it converts to false, finds nothing and writes nothing.
    static Table create(const Text& name, const TableOptions& options = {}, Problem* problem = nullptr) {
        const front::WriteRules rules;
        const front::Target target{{}, {}, &rules, problem};
        if (!target.RequireValid(name, "the name") ||
            !target.RequireKept(name.units(), front::TextPlace::Attribute, "the name"))
            return Table(front::TableHandle());
        void* const handle = xmlTableNew(nullptr, nullptr, 0, name.c_str(), options.editable ? 1 : 0,
                                         options.firstId, options.type, 1);
        front::Succeed(problem);
        return Table(front::TableHandle(handle, Dispose));
    }

    // Opens a file. nullopt if it cannot be read, does not parse or is no table document, see Profile::open, or if its
    // table has another name (WrongKind). The empty name accepts any. A document that is opened with
    // OpenOptions::anyDocument and has no table gets an empty one of that name in memory. The form of a file is wide,
    // because the exports open no other one (Encoding).
    static std::optional<Table> open(const Text& path, const Text& name, const OpenOptions& options,
                                     Problem* problem = nullptr) {
        FileStamp stamp;
        const std::optional<std::string> bytes = readFile(path, &stamp, problem);
        if (!bytes.has_value()) return std::nullopt;
        std::optional<Table> table = Parse(*bytes, name, options, true, problem);
        if (table.has_value()) {
            table->Rules()->file = {front::Units(path.units()), stamp};
        } else {
            front::FailInFile(problem, path);
        }
        return table;
    }
    static std::optional<Table> open(const Text& path, const Text& name = "", Problem* problem = nullptr) {
        return open(path, name, OpenOptions(), problem);
    }

    // The same for bytes in memory, in either form.
    static std::optional<Table> parse(std::string_view bytes, const Text& name, const OpenOptions& options,
                                      Problem* problem = nullptr) {
        return Parse(bytes, name, options, false, problem);
    }
    static std::optional<Table> parse(std::string_view bytes, const Text& name = "",
                                      Problem* problem = nullptr) {
        return parse(bytes, name, OpenOptions(), problem);
    }

    // Opens a table document that is stored in another encoding; see importText.
    static std::optional<Table> import(std::string_view bytes, Encoding from, const Text& name = "",
                                       Problem* problem = nullptr) {
        const std::optional<std::string> wide = importText(bytes, from, Form::Wide, problem);
        if (!wide.has_value()) return std::nullopt;
        return parse(*wide, name, problem);
    }

    // Whether writes do what the exports do, see Profile::setLossy. Off by default.
    void setLossy(bool isLossy) noexcept {
        if (Rules() != nullptr) Rules()->isLossy = isLossy;
    }
    bool isLossy() const noexcept { return Rules() != nullptr && Rules()->isLossy; }

  private:
    static void Dispose(void* handle) { xmlTableDispose(&handle); }

    explicit Table(front::TableHandle handle)
        : EntryTable(std::move(handle), std::make_shared<front::WriteRules>(), {}) {
        Rules()->isTableDocument = true;
    }

    static std::optional<Table> Parse(std::string_view bytes, const Text& name, const OpenOptions& options,
                                      bool isWideOnly, Problem* problem) {
        if (!name.isValid()) {
            front::Fail(problem, Reason::InvalidText, "the name is not UTF-8, contains a zero, or is null");
            return std::nullopt;
        }
        front::DocumentFindings findings;
        if (!front::RequireDocument(bytes, DocumentKind::Table, options, findings, problem))
            return std::nullopt;
        if (isWideOnly && findings.encoding.form == Form::Narrow) {
            front::Fail(problem, Reason::Encoding,
                        "found a narrow file, expected a wide one: table documents are wide");
            return std::nullopt;
        }
        const auto open = [&name](const wchar16* path, const char* buffer, std::int32_t size,
                                  std::int32_t /*wide*/) {
            return xmlTableNew(path, buffer, size, name.c_str(), 0, 0, 0, 0);
        };
        front::Succeed(problem);
        void* const handle = front::OpenBytes(bytes, findings, open, problem);
        if (handle == nullptr) {
            if (problem != nullptr && !*problem)
                front::Fail(problem, Reason::WrongKind, "the table has another name");
            return std::nullopt;
        }
        Table table(front::TableHandle(handle, Dispose));
        front::TakeFindings(findings, *table.Rules());
        return table;
    }
};

}  // namespace mox

#endif
