// show: prints a whole document as a tree.
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "mox_xmlApi/document/text_format.h"
#include "tools/command_line.h"
#include "tools/json_output.h"
#include "tools/open_document.h"
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
    TreeWriter(const Document& document, Output& output) : document_(document), output_(output) {}

    void Write() {
        if (document_.kind() == DocumentKind::Table) {
            WriteTable(document_.tables().front(), 0);
            return;
        }
        auto table = document_.tables().begin();
        for (const DocumentNode child : document_.root().children()) {
            if (child.kind() == NodeKind::Comment) {
                WriteComment(child, 0);
            } else if (table->isTable) {
                WriteTable(*table++, 0);
            } else {
                WriteOtherElement(child, 0);
                ++table;
            }
        }
    }

  private:
    void Line(std::size_t depth, const std::string& text) {
        constexpr std::size_t kMaxIndentedDepth = 20;  // a file may be nested to any depth
        output_.PrintLine(std::string(2 * std::min(depth, kMaxIndentedDepth), ' ') + text);
    }

    void WriteComment(DocumentNode comment, std::size_t depth) { Line(depth, "# " + Quoted(comment.text())); }

    void WriteTable(const DocumentTable& table, std::size_t depth) {
        std::vector<std::string> parts;
        if (table.firstId != 0) parts.push_back("first id " + std::to_string(table.firstId));
        if (table.type != 0) parts.push_back("type " + Hex(table.type, 4));
        if (table.isEditable) parts.emplace_back("editable");
        if (table.hasEud) parts.emplace_back("eud");
        const char* const word = document_.kind() == DocumentKind::Table ? "table " : "section ";
        const std::string name = table.hasName ? QuotedIfNeeded(table.name) : "(unnamed)";
        Line(depth, word + name + InBrackets(parts));
        auto entry = table.entries.begin();
        for (const DocumentNode child : table.node.children()) {
            if (child.kind() == NodeKind::Comment) {
                WriteComment(child, depth + 1);
            } else if (entry->isReadable) {
                WriteEntry(*entry++, depth + 1);
            } else {
                WriteOtherElement(child, depth + 1);
                ++entry;
            }
        }
    }

    void WriteEntry(const DocumentEntry& entry, std::size_t depth) {
        std::vector<std::string> parts{entry.describeType()};
        if (entry.id != 0) parts.push_back("id " + std::to_string(entry.id));
        if (entry.hasEud) parts.emplace_back("eud");
        const std::string name = entry.hasName ? QuotedIfNeeded(entry.name) : "(unnamed)";
        Line(depth, name + " = " + Quoted(entry.value) + InBrackets(parts));
        if (entry.ui != nullptr) WriteUi(*entry.ui, depth + 1);
    }

    void WriteUi(const DocumentPresentation& ui, std::size_t depth) {
        std::vector<std::string> parts;
        AddPart(parts, "value", ui.value);
        AddPart(parts, "minimum", ui.minimum);
        AddPart(parts, "maximum", ui.maximum);
        if (!ui.access.empty()) parts.push_back("access " + ui.access);
        if (ui.flags != 0) parts.push_back("flags " + Hex(ui.flags, 4));
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
    void WriteOtherElement(DocumentNode top, std::size_t topDepth) {
        std::size_t depth = topDepth;
        for (DocumentNode node = top;;) {
            WriteOtherNode(node, depth);
            if (const DocumentNode child = node.firstChild()) {
                node = child;
                ++depth;
                continue;
            }
            while (node != top && !node.next()) {
                node = node.parent();
                --depth;
            }
            if (node == top) return;
            node = node.next();
        }
    }

    void WriteOtherNode(DocumentNode node, std::size_t depth) {
        if (node.kind() == NodeKind::Comment) return WriteComment(node, depth);
        std::string text = "<" + node.name() + ">";
        for (const DocumentAttribute& attribute : node.attributes())
            text += " " + attribute.name + "=" + Quoted(attribute.value);
        if (const std::string value = node.text(); !value.empty()) text += " " + Quoted(value);
        Line(depth, text);
    }

    const Document& document_;
    Output& output_;
};

void RunShow(const ShowArguments& arguments, Output& output) {
    const Document document = ReadDocument(arguments.file.path, arguments.file.RequestedForm());
    if (arguments.isJson) {
        output.PrintLines(JsonText(DocumentJson(document)));
        return;
    }
    output.PrintLine(describe(document.kind()) + (document.form() == Form::Wide ? ", wide" : ", narrow"));
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
