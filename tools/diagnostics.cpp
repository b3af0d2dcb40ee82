#include "tools/diagnostics.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "mox_xmlApi/xml/xml_names.h"
#include "tools/document_model.h"
#include "tools/syntax_error.h"
#include "tools/text_format.h"

namespace mox::tool {
namespace {

// Collects the diagnostics of a file that parses.
class Checker {
  public:
    explicit Checker(const SourceFile& file) : file_(file), document_(ReadDocument(file)) {}

    std::vector<Diagnostic> Run() {
        CheckTopLevel();
        CheckTables();
        CheckNonAscii();
        CheckEnd();
        const auto isBefore = [](const Diagnostic& a, const Diagnostic& b) {
            return std::tie(a.position.line, a.position.column) <
                   std::tie(b.position.line, b.position.column);
        };
        std::stable_sort(diagnostics_.begin(), diagnostics_.end(), isBefore);
        return std::move(diagnostics_);
    }

  private:
    void Add(Position position, const std::string& message, Severity severity = Severity::Warning) {
        diagnostics_.push_back({severity, position, message});
    }
    void Warn(const XmlNode& node, const std::string& message) { Add(file_.PositionOf(node), message); }

    std::string LineOf(const XmlNode& node) const {
        return "line " + std::to_string(file_.PositionOf(node).line);
    }

    bool IsTableDocument() const noexcept { return document_.kind == DocumentKind::Table; }

    void CheckTopLevel() {
        for (const XmlNode* node : file_.Tree().children) {
            if (node->kind != XmlNodeKind::Element || node == document_.root) continue;
            if (node->name.View() == names::kSettings) {
                CheckOtherSettings(*node);
            } else if (node->name.View() == names::kTable && IsTableDocument()) {
                Warn(*node,
                     "another \"Table\" element: hosts read only the one on " + LineOf(*document_.root));
            }
        }
        if (document_.kind == DocumentKind::Other) {
            Add(Position(),
                "neither a \"Settings\" element with a schema attribute nor a \"Table\" element: "
                "hosts see an empty document");
        }
        if (IsTableDocument() && file_.GetForm() == Form::Narrow)
            Warn(*document_.root, "table documents must be wide: hosts cannot read this narrow one");
    }

    // A top-level "Settings" element that is not the root.
    void CheckOtherSettings(const XmlNode& settings) {
        if (IsSettingsRoot(settings)) {
            Warn(settings,
                 "another \"Settings\" element: hosts read only the one on " + LineOf(*document_.root));
        } else {
            Warn(settings,
                 "\"Settings\" has no attribute \"xmlns:noNamespaceSchemaLocation\": hosts do not see its "
                 "sections");
        }
    }

    void CheckTables() {
        std::map<std::string, const XmlNode*> seen;
        for (const TableModel& table : document_.tables) {
            if (!table.isTable) {
                Warn(*table.node, "<" + Utf8(table.node->name.View()) +
                                      "> is not a section, but enumerations and exports treat it as one");
                continue;
            }
            if (!table.hasName && !IsTableDocument()) {
                Warn(*table.node, "section without a name: hosts cannot find it by name");
            } else if (const auto [first, isNew] = seen.emplace(table.name, table.node); !isNew) {
                Warn(*table.node, "duplicate section " + QuotedIfNeeded(table.name) +
                                      ": hosts read only the one on " + LineOf(*first->second));
            }
            CheckEntries(table);
        }
    }

    void CheckEntries(const TableModel& table) {
        std::map<std::string, const XmlNode*> seen;
        for (const EntryModel& entry : table.entries) {
            const std::string name = entry.hasName ? " " + QuotedIfNeeded(entry.name) : " without a name";
            if (!entry.isReadable) {
                WarnUnreadable(entry, name);
            } else if (!entry.hasName) {
                Warn(*entry.node, "entry without a name: hosts cannot find it by name");
            }
            if (entry.hasName) {
                const auto [first, isNew] = seen.emplace(entry.name, entry.node);
                if (!isNew)
                    Warn(*entry.node,
                         "duplicate entry" + name + ": hosts read only the one on " + LineOf(*first->second));
            }
            CheckShape(entry, name);
            if (entry.value.find('\n') != std::string::npos)
                Warn(*entry.node,
                     "the value of entry" + name + " contains line breaks: each save adds indentation to it");
        }
    }

    void WarnUnreadable(const EntryModel& entry, const std::string& name) {
        const std::string element = Utf8(entry.node->name.View());
        std::string message = element == "Var" ? "entry" + name : "<" + element + "> counts as an entry but";
        message += entry.type.empty() ? " has no type" : " has the unknown type " + Quoted(entry.type);
        Warn(*entry.node, message + ": hosts cannot read it, and exports of its section stop here");
    }

    void CheckShape(const EntryModel& entry, const std::string& name) {
        const std::string array = AttributeOf(*entry.node, names::kArray).value_or("");
        if (entry.isReadable && !array.empty() && entry.shape.empty())
            Warn(*entry.node, "entry" + name + " has array=" + Quoted(array) +
                                  ", which is neither \"array\" nor \"vector\" and has no effect");
    }

    void CheckNonAscii() {
        const WideView text = file_.Text();
        const auto isNonAscii = [](wchar16 unit) { return (unit & 0xFFFF) >= 0x80; };
        const auto first = std::find_if(text.begin(), text.end(), isNonAscii);
        if (first == text.end()) return;
        const Position position = file_.PositionAt(static_cast<std::size_t>(first - text.begin()));
        const auto count = static_cast<std::size_t>(std::count_if(first, text.end(), isNonAscii));
        if (file_.GetForm() == Form::Narrow) {
            Add(position, "non-ASCII text (" + Counted(count, "byte") +
                              " in the whole file): hosts read byte " + ByteText(*first) + " as " +
                              UnitText(*first));
        } else if (!IsTableDocument()) {
            Add(position,
                "non-ASCII text (" + Counted(count, "unit") +
                    " in the whole file): a narrow file cannot store it",
                Severity::Note);
        }
    }

    void CheckEnd() {
        if (file_.UnreadBytes() == 0) return;
        Add(file_.PositionAt(file_.Text().size()), "the text ends here: hosts ignore what follows (" +
                                                       Counted(file_.UnreadBytes(), "byte") +
                                                       "), and saving discards it");
    }

    const SourceFile& file_;
    const DocumentModel document_;
    std::vector<Diagnostic> diagnostics_;
};

}  // namespace

std::vector<Diagnostic> Diagnose(const SourceFile& file) {
    if (file.IsParsed()) return Checker(file).Run();
    const SyntaxError error = DescribeSyntaxError(file);
    return {{Severity::Error, error.position, MessageOf(error)}};
}

}  // namespace mox::tool
