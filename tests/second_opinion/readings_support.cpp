#include "tests/second_opinion/readings_support.h"

#include <cstring>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <memory>

#include "mox_xmlApi/xml/xml_document.h"

namespace opinion {
namespace {

// ---- The library

std::string Utf8(mox::WideView text) {
    std::string bytes;
    for (const wchar16 wide : text) {
        const auto unit = static_cast<unsigned>(wide);
        if (unit < 0x80) {
            bytes += static_cast<char>(unit);
        } else if (unit < 0x800) {
            bytes.append({static_cast<char>(0xC0 | unit >> 6), static_cast<char>(0x80 | (unit & 0x3F))});
        } else {
            bytes.append({static_cast<char>(0xE0 | unit >> 12), static_cast<char>(0x80 | (unit >> 6 & 0x3F)),
                          static_cast<char>(0x80 | (unit & 0x3F))});
        }
    }
    return bytes;
}

// The declaration is no part of what is compared.
Node Copied(const mox::XmlNode& node) {
    Node copy;
    copy.comment = node.kind == mox::XmlNodeKind::Comment;
    copy.name = Utf8(node.name.View());
    for (const mox::XmlAttribute& attribute : node.attributes)
        copy.attributes.emplace_back(Utf8(attribute.name.View()), Utf8(attribute.value.View()));
    if (copy.comment || !node.value.IsEmpty()) copy.texts.push_back(Utf8(node.value.View()));
    for (const mox::XmlNode* child : node.children) {
        if (child->kind != mox::XmlNodeKind::ProcessingInstruction) copy.children.push_back(Copied(*child));
    }
    return copy;
}

// ---- libxml2

// Builds a document from the parser's events. Namespaces play no part: a colon is a letter of a name.
class Builder {
  public:
    explicit Builder(Reading& reading) : reading_(reading) { open_.push_back({}); }

    void Start(const xmlChar* name, const xmlChar** attributes) {
        FinishText();
        Node node;
        node.name = Text(name);
        for (; attributes != nullptr && *attributes != nullptr; attributes += 2)
            node.attributes.emplace_back(Text(attributes[0]), Text(attributes[1]));
        open_.push_back(std::move(node));
    }
    void End() {
        FinishText();
        Node node = std::move(open_.back());
        open_.pop_back();
        open_.back().children.push_back(std::move(node));
    }
    void Characters(const xmlChar* text, int length) {
        pending_.append(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length));
    }
    void Comment(const xmlChar* text) {
        FinishText();
        Node node;
        node.comment = true;
        node.texts.push_back(Text(text));
        open_.back().children.push_back(std::move(node));
    }
    void Error(const xmlError& error) {
        if (error.level == XML_ERR_FATAL && reading_.error == 0) reading_.error = error.code;
    }
    void Finish() {
        if (open_.size() == 1) reading_.document = std::move(open_.front());
    }

  private:
    static std::string Text(const xmlChar* text) {
        return text == nullptr ? std::string() : reinterpret_cast<const char*>(text);
    }
    void FinishText() {
        if (!pending_.empty()) open_.back().texts.push_back(std::move(pending_));
        pending_.clear();
    }

    Reading& reading_;
    std::vector<Node> open_;
    std::string pending_;
};

Builder& Of(void* data) {
    return *static_cast<Builder*>(data);
}

xmlSAXHandler Handler() {
    xmlSAXHandler handler{};
    handler.initialized = 1;  // the events without namespaces
    handler.startElement = [](void* data, const xmlChar* name, const xmlChar** attributes) {
        Of(data).Start(name, attributes);
    };
    handler.endElement = [](void* data, const xmlChar*) { Of(data).End(); };
    handler.characters = [](void* data, const xmlChar* text, int length) {
        Of(data).Characters(text, length);
    };
    handler.ignorableWhitespace = handler.characters;
    handler.cdataBlock = handler.characters;
    handler.comment = [](void* data, const xmlChar* text) { Of(data).Comment(text); };
    return handler;
}

struct FreeParser {
    void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
};

// ---- Showing

std::string Quoted(std::string_view text) {
    return "'" + Escaped(text) + "'";
}

std::string Shown(const Node& node) {
    if (node.comment) return "!" + Quoted(node.texts.at(0));
    std::string shown = node.name;
    std::string_view separator = "{";
    for (const auto& [name, value] : node.attributes) {
        shown.append(separator).append(name).append("=").append(Quoted(value));
        separator = " ";
    }
    if (!node.attributes.empty()) shown += "}";
    for (const std::string& text : node.texts)
        shown += Quoted(text);
    separator = "(";
    for (const Node& child : node.children) {
        shown.append(separator).append(Shown(child));
        separator = " ";
    }
    if (!node.children.empty()) shown += ")";
    return shown;
}

}  // namespace

Reading ReadByLibrary(std::string_view bytes) {
    mox::XmlDocument document;
    Reading reading;
    reading.accepted = document.LoadBuffer(bytes.data(), bytes.size());
    if (reading.accepted) reading.document = Copied(*document.root);
    return reading;
}

Reading ReadByLibxml2(std::string_view bytes) {
    Reading reading;
    const std::unique_ptr<xmlParserCtxt, FreeParser> parser(
        xmlCreateMemoryParserCtxt(bytes.data(), static_cast<int>(bytes.size())));
    if (parser == nullptr) {
        // No parser is made for no bytes.
        reading.error = XML_ERR_DOCUMENT_EMPTY;
        return reading;
    }
    Builder builder(reading);
    *parser->sax = Handler();
    parser->userData = &builder;
    xmlCtxtUseOptions(parser.get(), XML_PARSE_NONET | XML_PARSE_NOENT);
    xmlSetStructuredErrorFunc(&builder, [](void* data, xmlErrorPtr error) { Of(data).Error(*error); });
    xmlParseDocument(parser.get());
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    reading.accepted = parser->wellFormed == 1;
    if (reading.accepted) builder.Finish();
    return reading;
}

std::string Shown(const Reading& reading) {
    if (!reading.accepted) return "refused";
    std::string shown;
    for (const Node& child : reading.document.children)
        shown.append(shown.empty() ? "" : " ").append(Shown(child));
    return shown.empty() ? "nothing" : shown;
}

std::string Escaped(std::string_view text) {
    static constexpr std::string_view kPlain = "\n\r\t\\";
    static constexpr std::string_view kLetters = "nrt\\";
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string escaped;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (const std::size_t i = kPlain.find(character); i != std::string_view::npos) {
            escaped.append(1, '\\').append(1, kLetters[i]);
        } else if (byte >= 0x20 && byte < 0x7F) {
            escaped += character;
        } else {
            escaped.append("\\x").append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 0xF]);
        }
    }
    return escaped;
}

std::string WithBytesAsUnits(std::string_view text) {
    std::string changed;
    for (const char byte : text) {
        const wchar16 unit = static_cast<wchar16>(static_cast<std::int16_t>(static_cast<signed char>(byte)));
        changed += Utf8({&unit, 1});
    }
    return changed;
}

std::string Unescaped(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            plain += text[i];
            continue;
        }
        const char letter = text.at(++i);
        if (letter == 'x') {
            plain += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
            i += 2;
        } else {
            plain += letter == 'n' ? '\n' : letter == 'r' ? '\r' : letter == 't' ? '\t' : letter;
        }
    }
    return plain;
}

}  // namespace opinion
