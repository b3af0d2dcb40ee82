// Its own header for files includes <fstream> and reads by it; that is how a host would use it.
#include <fstream>
#include <iterator>
#include <rapidxml/rapidxml.hpp>
#include <rapidxml/rapidxml_print.hpp>
#include <rapidxml/rapidxml_utils.hpp>

#include "bench/contestant.h"

namespace bench {
namespace {

using Node = rapidxml::xml_node<>;

constexpr int kParse = rapidxml::parse_comment_nodes | rapidxml::parse_declaration_node;

class Rapidxml final : public Contestant {
  public:
    std::string Name() const override { return "RapidXML"; }

    void Load(const Source& source, bool /*wide*/) override {
        text_ = std::make_unique<rapidxml::file<>>(source.narrowXml.c_str());
        document_ = std::make_unique<rapidxml::xml_document<>>();
        document_->parse<kParse>(text_->data());
    }

    void Release() override {
        document_.reset();
        text_.reset();
    }

    void Save(const std::string& path, bool /*wide*/) override {
        std::ofstream file(path, std::ios::binary);
        rapidxml::print(std::ostreambuf_iterator<char>(file), *document_, 0);
        file.close();
        Check(file.good(), "RapidXML cannot save");
    }

    Sum ReadStrings(std::span<const Query> queries) override {
        Sum sum = 0;
        for (const Query& query : queries) {
            const Node* value = FindValue(query);
            sum += SumOf(std::string_view(value->value(), value->value_size()));
        }
        return sum;
    }

  private:
    static Node* Named(const Node* parent, std::string_view element, const std::string& name) {
        Node* child = parent->first_node(element.data(), element.size());
        for (; child != nullptr; child = child->next_sibling(element.data(), element.size())) {
            const rapidxml::xml_attribute<>* attribute = child->first_attribute("name", 4);
            if (attribute != nullptr && std::string_view(attribute->value(), attribute->value_size()) == name)
                return child;
        }
        throw CheckFailed("RapidXML does not find " + name);
    }
    const Node* FindValue(const Query& query) const {
        const Node* section = Named(document_->first_node("Settings"), "Table", query.section);
        return Named(section, "Var", query.key)->first_node("Value", 5);
    }

    std::unique_ptr<rapidxml::file<>> text_;
    std::unique_ptr<rapidxml::xml_document<>> document_;
};

}  // namespace

std::unique_ptr<Contestant> MakeRapidxml() {
    return std::make_unique<Rapidxml>();
}

}  // namespace bench
