#include <tinyxml2.h>

#include "bench/contestant.h"

namespace bench {
namespace {

class Tinyxml2 final : public Contestant {
  public:
    std::string Name() const override { return "TinyXML-2"; }

    void Load(const Source& source, bool /*wide*/) override {
        document_ = std::make_unique<tinyxml2::XMLDocument>();
        Check(document_->LoadFile(source.narrowXml.c_str()) == tinyxml2::XML_SUCCESS,
              "TinyXML-2 cannot load");
    }

    void Release() override { document_.reset(); }

    void Save(const std::string& path, bool /*wide*/) override {
        Check(document_->SaveFile(path.c_str()) == tinyxml2::XML_SUCCESS, "TinyXML-2 cannot save");
    }

    Sum ReadStrings(std::span<const Query> queries) override {
        Sum sum = 0;
        for (const Query& query : queries)
            sum += SumOf(FindValue(query)->GetText());
        return sum;
    }

    Sum ReadNumbers(std::span<const Query> queries) override {
        Sum sum = 0;
        for (const Query& query : queries)
            sum += static_cast<Sum>(FindValue(query)->IntText(-1));
        return sum;
    }

  private:
    static tinyxml2::XMLElement* Named(tinyxml2::XMLElement* parent, const char* element,
                                       const std::string& name) {
        tinyxml2::XMLElement* child = parent->FirstChildElement(element);
        while (child != nullptr && child->Attribute("name", name.c_str()) == nullptr)
            child = child->NextSiblingElement(element);
        Check(child != nullptr, "TinyXML-2 does not find ", name);
        return child;
    }
    tinyxml2::XMLElement* FindValue(const Query& query) {
        tinyxml2::XMLElement* section = Named(document_->RootElement(), "Table", query.section);
        return Named(section, "Var", query.key)->FirstChildElement("Value");
    }

    std::unique_ptr<tinyxml2::XMLDocument> document_;
};

}  // namespace

std::unique_ptr<Contestant> MakeTinyxml2() {
    return std::make_unique<Tinyxml2>();
}

}  // namespace bench
