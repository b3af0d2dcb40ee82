#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>

#include "bench/contestant.h"

namespace bench {
namespace {

namespace pt = boost::property_tree;

class PropertyTree final : public Contestant {
  public:
    std::string Name() const override { return "PropertyTree"; }

    void Load(const Source& source, bool /*wide*/) override {
        tree_ = std::make_unique<pt::ptree>();
        pt::read_xml(source.narrowXml, *tree_, pt::xml_parser::trim_whitespace);
    }

    void Release() override { tree_.reset(); }

    void Save(const std::string& path, bool /*wide*/) override {
        pt::write_xml(path, *tree_, std::locale(), pt::xml_writer_make_settings<std::string>('\t', 1));
    }

    Sum ReadStrings(std::span<const Query> queries) override {
        Sum sum = 0;
        for (const Query& query : queries) {
            const pt::ptree& section = Named(tree_->get_child("Settings"), "Table", query.section);
            const std::string& value = Named(section, "Var", query.key).get_child("Value").data();
            sum += SumOf(std::string_view(value));
        }
        return sum;
    }

  private:
    static const pt::ptree& Named(const pt::ptree& parent, const char* element, const std::string& name) {
        for (const auto& [tag, child] : parent) {
            if (tag == element && child.get_child("<xmlattr>.name").data() == name) return child;
        }
        throw CheckFailed("PropertyTree does not find " + name);
    }

    std::unique_ptr<pt::ptree> tree_;
};

}  // namespace

std::unique_ptr<Contestant> MakePropertyTree() {
    return std::make_unique<PropertyTree>();
}

}  // namespace bench
