// show: prints a whole document as a tree.
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "tools/command_line.h"
#include "tools/document_model.h"
#include "tools/json_output.h"
#include "tools/text_format.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct ShowArguments {
    FileArgument file{};
    bool isJson = false;
};

// The parts in brackets, comma-separated; empty without parts.
std::string InBrackets(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts)
        text.append(text.empty() ? "  [" : ", ").append(part);
    return text.empty() ? text : text + "]";
}

void AddPart(std::vector<std::string>& parts, const std::string& label, const std::string& text) {
    if (!text.empty()) parts.push_back(label + " " + Quoted(text));
}

class TreeWriter {
  public:
    TreeWriter(const DocumentModel& document, Output& output) : document_(document), output_(output) {}

    void Write() {
        if (document_.root == nullptr) return;
        if (document_.kind == DocumentKind::Table) {
            WriteTable(document_.tables.front(), 0);
            return;
        }
        auto table = document_.tables.begin();
        for (const XmlNode* child : document_.root->children) {
            if (child->kind == XmlNodeKind::Comment) {
                WriteComment(*child, 0);
            } else if (table->isTable) {
                WriteTable(*table++, 0);
            } else {
                WriteOtherElement(*child, 0);
                ++table;
            }
        }
    }

  private:
    void Line(std::size_t depth, const std::string& text) {
        constexpr std::size_t kMaxIndentedDepth = 20;  // a file may be nested to any depth
        output_.PrintLine(std::string(2 * std::min(depth, kMaxIndentedDepth), ' ') + text);
    }

    void WriteComment(const XmlNode& comment, std::size_t depth) {
        Line(depth, "# " + Quoted(Utf8(comment.value.View())));
    }

    void WriteTable(const TableModel& table, std::size_t depth) {
        std::vector<std::string> parts;
        if (table.firstId != 0) parts.push_back("first id " + std::to_string(table.firstId));
        if (table.type != "0000") parts.push_back("type " + table.type);
        if (table.isEditable) parts.emplace_back("editable");
        if (table.hasEud) parts.emplace_back("eud");
        const char* const word = document_.kind == DocumentKind::Table ? "table " : "section ";
        const std::string name = table.hasName ? QuotedIfNeeded(table.name) : "(unnamed)";
        Line(depth, word + name + InBrackets(parts));
        auto entry = table.entries.begin();
        for (const XmlNode* child : table.node->children) {
            if (child->kind == XmlNodeKind::Comment) {
                WriteComment(*child, depth + 1);
            } else if (entry->isReadable) {
                WriteEntry(*entry++, depth + 1);
            } else {
                WriteOtherElement(*child, depth + 1);
                ++entry;
            }
        }
    }

    void WriteEntry(const EntryModel& entry, std::size_t depth) {
        std::vector<std::string> parts{entry.shape.empty() ? entry.type : entry.type + " " + entry.shape};
        if (entry.id != 0) parts.push_back("id " + std::to_string(entry.id));
        if (entry.hasEud) parts.emplace_back("eud");
        const std::string name = entry.hasName ? QuotedIfNeeded(entry.name) : "(unnamed)";
        Line(depth, name + " = " + Quoted(entry.value) + InBrackets(parts));
        if (entry.ui.has_value()) WriteUi(*entry.ui, depth + 1);
    }

    void WriteUi(const UiModel& ui, std::size_t depth) {
        std::vector<std::string> parts;
        AddPart(parts, "value", ui.value);
        AddPart(parts, "minimum", ui.minimum);
        AddPart(parts, "maximum", ui.maximum);
        if (!ui.access.empty()) parts.push_back("access " + ui.access);
        if (!ui.flags.empty()) parts.push_back("flags " + ui.flags);
        AddPart(parts, "regen", ui.regen);
        if (!ui.provider.empty() || ui.providerIndex != 0) {
            const std::string number = ui.providerIndex == 0 ? "" : " " + std::to_string(ui.providerIndex);
            parts.push_back("provider" + (ui.provider.empty() ? "" : " " + ui.provider) + number);
        }
        const std::string name = ui.shownName.empty() ? "" : " " + Quoted(ui.shownName);
        Line(depth, "shown as " + ui.control + name + InBrackets(parts));
        if (!ui.comment.empty()) Line(depth, "comment " + Quoted(ui.comment));
    }

    // Writes an element that is neither a section nor an entry, with everything in it.
    void WriteOtherElement(const XmlNode& top, std::size_t topDepth) {
        std::vector<std::pair<const XmlNode*, std::size_t>> waiting{{&top, topDepth}};
        while (!waiting.empty()) {
            const auto [node, depth] = waiting.back();
            waiting.pop_back();
            if (node->kind == XmlNodeKind::Comment) {
                WriteComment(*node, depth);
                continue;
            }
            std::string text = "<" + Utf8(node->name.View()) + ">";
            for (const XmlAttribute& attribute : node->attributes)
                text += " " + Utf8(attribute.name.View()) + "=" + Quoted(Utf8(attribute.value.View()));
            if (!node->value.IsEmpty()) text += " " + Quoted(Utf8(node->value.View()));
            Line(depth, text);
            for (auto child = node->children.end(); child != node->children.begin();)
                waiting.emplace_back(*--child, depth + 1);
        }
    }

    const DocumentModel& document_;
    Output& output_;
};

void RunShow(const ShowArguments& arguments, Output& output) {
    const SourceFile file(arguments.file.path, arguments.file.RequestedForm());
    file.RequireParsed();
    const DocumentModel document = ReadDocument(file);
    if (arguments.isJson) {
        output.data += JsonText(DocumentJson(document, file.GetForm()));
        return;
    }
    output.PrintLine(KindName(document.kind) + (file.GetForm() == Form::Wide ? ", wide" : ", narrow"));
    TreeWriter(document, output).Write();
}

}  // namespace

void AddShowVerb(CLI::App& app, Output& output) {
    const auto arguments = std::make_shared<ShowArguments>();
    CLI::App& show = AddVerb(app, "show", "Print a whole file as a tree, with its presentation data",
                             "mox-xml show camera.xml\nmox-xml show tools.xml --json");
    AddFileArgument(show, arguments->file);
    AddJsonOption(show, arguments->isJson);
    show.callback([arguments, &output] { RunShow(*arguments, output); });
}

}  // namespace mox::tool
