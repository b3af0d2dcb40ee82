// show: a whole document as a tree for people.
#include <memory>
#include <utility>
#include <vector>

#include "mox_xmlApi/xml/xml_names.h"
#include "tools/command_line.h"
#include "tools/document_model.h"
#include "tools/json_output.h"
#include "tools/shown_text.h"
#include "tools/verbs.h"

namespace mox::tool {
namespace {

struct ShowArguments {
    FileArgument file{};
    bool isJson = false;
};

// Parts in brackets, parted by commas; nothing without parts.
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
    TreeWriter(const DocumentModel& document, Session& session) : document_(document), session_(session) {}

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
                WriteForeign(*child, 0);
                ++table;
            }
        }
    }

  private:
    void Line(std::size_t depth, const std::string& text) {
        constexpr std::size_t kDeepest = 20;  // a hostile file may go down for ever
        session_.Line(std::string(2 * std::min(depth, kDeepest), ' ') + text);
    }

    void WriteComment(const XmlNode& comment, std::size_t depth) {
        Line(depth, "# " + Quoted(Utf8(comment.value.View())));
    }

    void WriteTable(const TableModel& table, std::size_t depth) {
        std::vector<std::string> parts;
        if (table.firstId != 0) parts.push_back("first id " + std::to_string(table.firstId));
        if (table.type != "0000") parts.push_back("type " + table.type);
        if (table.isEditable) parts.emplace_back("editable");
        if (table.isMarked) parts.emplace_back("marked");
        const char* const word = document_.kind == DocumentKind::Table ? "table " : "section ";
        const std::string name = table.hasName ? ShownName(table.name) : "without a name";
        Line(depth, word + name + InBrackets(parts));
        auto entry = table.entries.begin();
        for (const XmlNode* child : table.node->children) {
            if (child->kind == XmlNodeKind::Comment) {
                WriteComment(*child, depth + 1);
            } else if (entry->isReadable) {
                WriteEntry(*entry++, depth + 1);
            } else {
                WriteForeign(*child, depth + 1);
                ++entry;
            }
        }
    }

    void WriteEntry(const EntryModel& entry, std::size_t depth) {
        std::vector<std::string> parts{entry.shape.empty() ? entry.type : entry.type + " " + entry.shape};
        if (entry.id != 0) parts.push_back("id " + std::to_string(entry.id));
        if (entry.isMarked) parts.emplace_back("marked");
        const std::string name = entry.hasName ? ShownName(entry.name) : "(without a name)";
        Line(depth, name + " = " + Quoted(entry.value) + InBrackets(parts));
        if (entry.ui.has_value()) WriteUi(*entry.ui, depth + 1);
    }

    void WriteUi(const UiModel& ui, std::size_t depth) {
        std::vector<std::string> parts;
        AddPart(parts, "value", ui.value);
        AddPart(parts, "from", ui.minimum);
        AddPart(parts, "to", ui.maximum);
        if (!ui.access.empty()) parts.push_back(ui.access);
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

    // What is no section and no entry, with all that it holds.
    void WriteForeign(const XmlNode& top, std::size_t topDepth) {
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
    Session& session_;
};

void Show(const ShowArguments& arguments, Session& session) {
    const SourceFile file(arguments.file.path, arguments.file.ForcedForm());
    file.RequireParsed();
    const DocumentModel document = ReadDocument(file);
    if (arguments.isJson) {
        session.out += JsonText(DocumentJson(document, file.GetForm()));
        return;
    }
    session.Line(KindName(document.kind) + (file.GetForm() == Form::Wide ? ", wide" : ", narrow"));
    TreeWriter(document, session).Write();
}

}  // namespace

void AddShowVerb(CLI::App& app, Session& session) {
    const auto arguments = std::make_shared<ShowArguments>();
    CLI::App& show = AddVerb(app, "show", "A whole file as a tree, presentation data included",
                             "mox-xml show camera.xml\nmox-xml show tools.xml --json");
    AddFile(show, arguments->file);
    AddJson(show, arguments->isJson);
    show.callback([arguments, &session] { Show(*arguments, session); });
}

}  // namespace mox::tool
