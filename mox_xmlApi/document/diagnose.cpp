#include "mox_xmlApi/document/diagnose.hpp"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "mox_xmlApi/document/document_content.h"
#include "mox_xmlApi/document/entry_check.h"
#include "mox_xmlApi/document/text_format.h"
#include "mox_xmlApi/xml/settings_root.h"
#include "mox_xmlApi/xml/xml_names.h"

namespace mox {
namespace {

// Collects the diagnostics of a file that parses.
class Checker {
  public:
    Checker(const Document& document, const DiagnoseOptions& options)
        : document_(document), options_(options) {}

    std::vector<Diagnostic> Run() {
        if (!CheckEncoding()) return std::move(diagnostics_);
        CheckTopLevel();
        CheckTables();
        CheckNodes();
        CheckNonAscii();
        CheckControlCharacters();
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
        diagnostics_.push_back({severity, position, message, std::nullopt});
    }
    void Warn(DocumentNode node, const std::string& message) { Add(node.position(), message); }

    static std::string LineOf(DocumentNode node) { return "line " + std::to_string(node.position().line); }

    static bool IsNamed(DocumentNode node, WideView name) noexcept {
        return front::DocumentContent::NodeOf(node)->name.View() == name;
    }

    bool IsTableDocument() const noexcept { return document_.kind() == DocumentKind::Table; }

    // Returns whether the library reads the text at all.
    bool CheckEncoding() {
        const EncodingReport& report = document_.encoding();
        if (report.encoding != Encoding::Utf16Be && report.encoding != Encoding::Zeros) return true;
        Add(Position(), "the text is " + describe(report), Severity::Error);
        if (report.encoding != Encoding::Zeros) diagnostics_.back().encoding = report.encoding;
        return false;
    }

    void CheckTopLevel() {
        for (const DocumentNode node : document_.nodes()) {
            if (node.kind() != NodeKind::Element || node == document_.root()) continue;
            if (IsNamed(node, names::kSettings)) {
                CheckOtherSettings(node);
            } else if (IsNamed(node, names::kTable) && IsTableDocument()) {
                Warn(node,
                     "another \"Table\" element: hosts read only the one on " + LineOf(document_.root()));
            }
        }
        if (document_.kind() == DocumentKind::Other) {
            Add(Position(),
                "neither a \"Settings\" element with a schema attribute nor a \"Table\" element: "
                "hosts see an empty document");
        }
        if (IsTableDocument() && document_.form() == Form::Narrow)
            Warn(document_.root(), "table documents must be wide: hosts cannot read this narrow one");
    }

    // A top-level "Settings" element that is not the root.
    void CheckOtherSettings(DocumentNode settings) {
        if (HasSchemaLocation(*front::DocumentContent::NodeOf(settings))) {
            Warn(settings,
                 "another \"Settings\" element: hosts read only the one on " + LineOf(document_.root()));
        } else {
            Warn(settings,
                 "\"Settings\" has no attribute \"xmlns:noNamespaceSchemaLocation\": hosts do not see its "
                 "sections");
        }
    }

    void CheckTables() {
        std::map<std::string, DocumentNode> seen;
        for (const DocumentTable& table : document_.tables()) {
            if (!table.isTable) {
                Warn(table.node, "<" + table.node.name() +
                                     "> is not a section, but enumerations and exports treat it as one");
                continue;
            }
            if (!table.hasName && !IsTableDocument()) {
                Warn(table.node, "section without a name: hosts cannot find it by name");
            } else if (const auto [first, isNew] = seen.emplace(table.name, table.node); !isNew) {
                Warn(table.node, "duplicate section " + QuotedIfNeeded(table.name) +
                                     ": hosts read only the one on " + LineOf(first->second));
            }
            CheckNumber(table.node, "first_id", table.firstId,
                        [this](DocumentNode node, const std::string& message) { Warn(node, message); });
            CheckEntries(table);
        }
    }

    void CheckEntries(const DocumentTable& table) {
        std::map<std::string, const DocumentEntry*> seen;
        for (const DocumentEntry& entry : table.entries) {
            const std::string name = entry.hasName ? " " + QuotedIfNeeded(entry.name) : " without a name";
            if (!entry.isReadable) {
                WarnUnreadable(entry, name);
            } else if (!entry.hasName) {
                Warn(entry.node, "entry without a name: hosts cannot find it by name");
            }
            if (entry.hasName) {
                const auto [first, isNew] = seen.emplace(entry.name, &entry);
                if (!isNew) {
                    const bool isRead = first->second->isReadable;
                    Warn(entry.node, "duplicate entry" + name + ": hosts " + (isRead ? "read" : "find") +
                                         " only the one on " + LineOf(first->second->node) +
                                         (isRead ? "" : ", which they cannot read"));
                }
            }
            CheckShape(entry, name);
            const Warner warn = [this](DocumentNode node, const std::string& message) {
                Warn(node, message);
            };
            CheckParts(entry, name, warn);
            if (options_.values) CheckValue(entry, name, warn);
            if (entry.value.find('\n') != std::string::npos)
                Warn(entry.node,
                     "the value of entry" + name + " contains line breaks: each save adds indentation to it");
        }
    }

    void WarnUnreadable(const DocumentEntry& entry, const std::string& name) {
        const std::string element = entry.node.name();
        std::string message = element == "Var" ? "entry" + name : "<" + element + "> counts as an entry but";
        message += entry.type.empty() ? " has no type" : " has the unknown type " + Quoted(entry.type);
        Warn(entry.node, message + ": hosts cannot read it, and exports of its section stop here");
    }

    void CheckShape(const DocumentEntry& entry, const std::string& name) {
        const std::string array = entry.node.attribute(Utf8(names::kArray)).value_or("");
        if (entry.isReadable && !array.empty() && entry.shape.empty())
            Warn(entry.node, "entry" + name + " has array=" + Quoted(array) +
                                 R"(, which is neither "array" nor "vector" and has no effect)");
    }

    // All elements, whatever they are.
    void CheckNodes() {
        constexpr std::size_t kDeep = 256;
        const Warner warn = [this](DocumentNode node, const std::string& message) { Warn(node, message); };
        DocumentNode firstDeep;
        std::size_t deepest = 0;
        std::size_t depth = 1;
        for (DocumentNode node = *document_.nodes().begin(); node;) {
            if (node.kind() == NodeKind::Element) CheckAttributes(node, warn);
            deepest = std::max(deepest, depth);
            if (depth > kDeep && !firstDeep) firstDeep = node;
            if (const DocumentNode child = node.firstChild()) {
                node = child;
                ++depth;
                continue;
            }
            while (node && !node.next()) {
                node = node.parent();
                --depth;
            }
            if (node) node = node.next();
        }
        if (firstDeep) {
            Warn(firstDeep, "elements are nested " + std::to_string(deepest) +
                                " levels deep: each save indents every line by its level");
        }
    }

    // XML allows only the tab and line breaks.
    void CheckControlCharacters() {
        const WideView text = document_.units();
        const auto isControl = [](wchar16 unit) {
            return unit < 0x20 && unit != '\t' && unit != '\n' && unit != '\r';
        };
        const auto first = std::find_if(text.begin(), text.end(), isControl);
        if (first == text.end()) return;
        const auto count = static_cast<std::size_t>(std::count_if(first, text.end(), isControl));
        Add(document_.positionAt(static_cast<std::size_t>(first - text.begin())),
            "control character " + UnitText(*first) + " (" + Counted(count, "such character") +
                " in the whole file): no XML parser reads it");
    }

    void CheckNonAscii() {
        const WideView text = document_.units();
        const auto isNonAscii = [](wchar16 unit) { return (unit & 0xFFFF) >= 0x80; };
        const auto first = std::find_if(text.begin(), text.end(), isNonAscii);
        if (first == text.end()) return;
        const Position position = document_.positionAt(static_cast<std::size_t>(first - text.begin()));
        const auto count = static_cast<std::size_t>(std::count_if(first, text.end(), isNonAscii));
        if (document_.form() == Form::Narrow) {
            Add(position, "non-ASCII text (" + Counted(count, "byte") +
                              " in the whole file): hosts read byte " + ByteText(*first) + " as " +
                              UnitText(*first) + "; the text is " + describe(document_.encoding()));
            diagnostics_.back().encoding = document_.encoding().encoding;
        } else if (!IsTableDocument()) {
            Add(position,
                "non-ASCII text (" + Counted(count, "unit") +
                    " in the whole file): a narrow file cannot store it",
                Severity::Note);
        }
    }

    void CheckEnd() {
        if (document_.encoding().unreadBytes == 0) return;
        Add(document_.positionAt(document_.units().size()),
            "the text ends here: hosts ignore what follows (" +
                Counted(document_.encoding().unreadBytes, "byte") + "), and saving discards it");
    }

    const Document& document_;
    DiagnoseOptions options_;
    std::vector<Diagnostic> diagnostics_;
};

}  // namespace

std::vector<Diagnostic> diagnose(const Document& document, const DiagnoseOptions& options) {
    return Checker(document, options).Run();
}

std::vector<Diagnostic> diagnose(std::string_view bytes, std::optional<Form> form,
                                 const DiagnoseOptions& options) {
    Problem problem;
    const std::optional<Document> document = Document::parse(bytes, form, &problem);
    if (document.has_value()) return diagnose(*document, options);
    Diagnostic error{Severity::Error, {problem.line, problem.column}, problem.message, std::nullopt};
    if (problem.reason == Reason::Encoding) error.encoding = detectEncoding(bytes, form).encoding;
    return {error};
}

}  // namespace mox
