#include <libxml/parser.h>
#include <libxml/tree.h>

#include "bench/contestant.h"

namespace bench {
namespace {

const xmlChar* Xml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}
const char* Plain(const xmlChar* text) {
    return reinterpret_cast<const char*>(text);
}

class Libxml2 final : public Contestant {
  public:
    ~Libxml2() override { Release(); }

    std::string Name() const override { return "libxml2"; }

    void Load(const Source& source, bool wide) override {
        document_ = xmlReadFile((wide ? source.wideXml : source.narrowXml).c_str(),
                                wide ? "UTF-16LE" : nullptr, XML_PARSE_HUGE | XML_PARSE_NOBLANKS);
        Check(document_ != nullptr, "libxml2 cannot load");
    }

    void Release() override {
        if (document_ != nullptr) xmlFreeDoc(document_);
        document_ = nullptr;
    }

    void Save(const std::string& path, bool wide) override {
        Check(xmlSaveFormatFileEnc(path.c_str(), document_, wide ? "UTF-16LE" : "UTF-8", 1) > 0,
              "libxml2 cannot save");
    }

    Sum ReadStrings(std::span<const Query> queries) override {
        Sum sum = 0;
        for (const Query& query : queries) {
            xmlChar* value = xmlNodeGetContent(FindValue(query));
            sum += SumOf(Plain(value));
            xmlFree(value);
        }
        return sum;
    }

  private:
    static xmlNode* Named(const xmlNode* parent, const char* element, const std::string& name) {
        for (xmlNode* child = parent->children; child != nullptr; child = child->next) {
            if (child->type != XML_ELEMENT_NODE || xmlStrcmp(child->name, Xml(element)) != 0) continue;
            const xmlAttr* attribute = xmlHasProp(child, Xml("name"));
            if (attribute != nullptr && attribute->children != nullptr &&
                xmlStrcmp(attribute->children->content, Xml(name.c_str())) == 0)
                return child;
        }
        throw CheckFailed("libxml2 does not find " + name);
    }
    const xmlNode* FindValue(const Query& query) const {
        const xmlNode* section = Named(xmlDocGetRootElement(document_), "Table", query.section);
        const xmlNode* value = Named(section, "Var", query.key)->children;
        while (value != nullptr && xmlStrcmp(value->name, Xml("Value")) != 0)
            value = value->next;
        Check(value != nullptr, "libxml2 does not find the value of ", query.key);
        return value;
    }

    xmlDoc* document_ = nullptr;
};

}  // namespace

std::unique_ptr<Contestant> MakeLibxml2() {
    return std::make_unique<Libxml2>();
}

}  // namespace bench
