#include "tools/findings.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "mox_xmlApi/xml/xml_names.h"
#include "tools/document_model.h"
#include "tools/parse_message.h"
#include "tools/shown_text.h"

namespace mox::tool {
namespace {

class Search {
  public:
    explicit Search(const SourceFile& file) : file_(file), document_(ReadDocument(file)) {}

    std::vector<Finding> Run() {
        SearchTopLevel();
        SearchTables();
        SearchUnits();
        SearchEnd();
        const auto isBefore = [](const Finding& a, const Finding& b) {
            return std::tie(a.position.line, a.position.column) <
                   std::tie(b.position.line, b.position.column);
        };
        std::stable_sort(findings_.begin(), findings_.end(), isBefore);
        return std::move(findings_);
    }

  private:
    void Add(Position position, const std::string& message, Severity severity = Severity::Warning) {
        findings_.push_back({severity, position, message});
    }
    void Warn(const XmlNode& node, const std::string& message) { Add(file_.PositionOf(node), message); }

    std::string LineOf(const XmlNode& node) const {
        return "line " + std::to_string(file_.PositionOf(node).line);
    }

    bool IsTableDocument() const noexcept { return document_.kind == DocumentKind::Table; }

    void SearchTopLevel() {
        for (const XmlNode* node : file_.Tree().children) {
            if (node->kind != XmlNodeKind::Element || node == document_.root) continue;
            if (node->name.View() == names::kSettings) {
                SearchSettings(*node);
            } else if (node->name.View() == names::kTable && IsTableDocument()) {
                Warn(*node, "hosts read the first table alone, which is in " + LineOf(*document_.root));
            }
        }
        if (document_.kind == DocumentKind::Other) {
            Add(Position(),
                "there is neither a \"Settings\" with its mark nor a \"Table\": hosts see an empty "
                "document");
        }
        if (IsTableDocument() && file_.GetForm() == Form::Narrow)
            Warn(*document_.root, "a table document has to be wide: hosts cannot read this one");
    }

    void SearchSettings(const XmlNode& settings) {
        if (IsMarkedSettings(settings)) {
            Warn(settings,
                 "hosts read the first marked \"Settings\" alone, which is in " + LineOf(*document_.root));
        } else {
            Warn(settings,
                 "this \"Settings\" lacks the mark xmlns:noNamespaceSchemaLocation: hosts do not see its "
                 "sections");
        }
    }

    void SearchTables() {
        std::map<std::string, const XmlNode*> seen;
        for (const TableModel& table : document_.tables) {
            if (!table.isTable) {
                Warn(*table.node, "<" + Utf8(table.node->name.View()) +
                                      "> is no section, but enumerations and exports take it for one");
                continue;
            }
            if (!table.hasName && !IsTableDocument()) {
                Warn(*table.node, "a section without a name cannot be found");
            } else if (const auto [first, isNew] = seen.emplace(table.name, table.node); !isNew) {
                Warn(*table.node, "a second section " + ShownName(table.name) +
                                      ": hosts read the first, in " + LineOf(*first->second));
            }
            SearchEntries(table);
        }
    }

    void SearchEntries(const TableModel& table) {
        std::map<std::string, const XmlNode*> seen;
        for (const EntryModel& entry : table.entries) {
            const std::string name = entry.hasName ? " " + ShownName(entry.name) : " without a name";
            if (!entry.isReadable) {
                SearchUnreadable(entry, name);
            } else if (!entry.hasName) {
                Warn(*entry.node, "an entry without a name cannot be found");
            }
            if (entry.hasName) {
                const auto [first, isNew] = seen.emplace(entry.name, entry.node);
                if (!isNew)
                    Warn(*entry.node,
                         "a second entry" + name + ": hosts read the first, in " + LineOf(*first->second));
            }
            SearchShape(entry, name);
            if (entry.value.find('\n') != std::string::npos)
                Warn(*entry.node,
                     "the value of entry" + name + " has line ends: each save adds indentation to it");
        }
    }

    void SearchUnreadable(const EntryModel& entry, const std::string& name) {
        const std::string element = Utf8(entry.node->name.View());
        std::string message = element == "Var" ? "entry" + name : "<" + element + "> counts as an entry and";
        message += entry.type.empty() ? " has no type" : " has the unknown type " + Quoted(entry.type);
        Warn(*entry.node, message + ": hosts cannot read it, and exports of its section end here");
    }

    void SearchShape(const EntryModel& entry, const std::string& name) {
        const std::string array = AttributeOf(*entry.node, names::kArray).value_or("");
        if (entry.isReadable && !array.empty() && entry.shape.empty())
            Warn(*entry.node, "entry" + name + " has array=" + Quoted(array) + ", which counts as no array");
    }

    void SearchUnits() {
        const WideView text = file_.Text();
        const auto isHigh = [](wchar16 unit) { return (unit & 0xFFFF) >= 0x80; };
        const auto first = std::find_if(text.begin(), text.end(), isHigh);
        if (first == text.end()) return;
        const Position position = file_.PositionAt(static_cast<std::size_t>(first - text.begin()));
        const std::string count = std::to_string(std::count_if(first, text.end(), isHigh));
        if (file_.GetForm() == Form::Narrow) {
            Add(position, "not ASCII (" + count + " bytes from here on): hosts read byte 0x" +
                              UnitNumber(*first & 0xFF).substr(4) + " as " + UnitNumber(*first & 0xFFFF));
        } else if (!IsTableDocument()) {
            Add(position, "not ASCII (" + count + " units from here on): the narrow form would lose them",
                Severity::Note);
        }
    }

    void SearchEnd() {
        if (file_.UnreadBytes() == 0) return;
        Add(file_.PositionAt(file_.Text().size()),
            "the text ends here: " + std::to_string(file_.UnreadBytes()) +
                " bytes behind it are not read, and lost by a save");
    }

    const SourceFile& file_;
    const DocumentModel document_;
    std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> FindingsIn(const SourceFile& file) {
    if (file.IsParsed()) return Search(file).Run();
    const ParseProblem problem = DescribeFailure(file);
    return {{Severity::Error, problem.position, "found " + problem.found + ", wanted " + problem.wanted}};
}

}  // namespace mox::tool
