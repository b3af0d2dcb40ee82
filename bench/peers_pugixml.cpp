#include <pugixml.hpp>

#include "bench/contestant.h"

namespace bench {
namespace {

// Comments are kept, as the library under test keeps them.
constexpr unsigned kParse = pugi::parse_default | pugi::parse_comments | pugi::parse_declaration;

Sum SumOfEntry(const pugi::xml_node& entry) {
    Sum sum = SumOf(entry.attribute("name").value()) + entry.attribute("id").as_uint() +
              SumOf(entry.attribute("type").value()) + SumOf(entry.child_value("Value"));
    const pugi::xml_node ui = entry.child("UI");
    if (!ui) return sum;
    sum += SumOf(ui.attribute("control").value()) + ui.attribute("prov_index").as_uint();
    sum += std::string_view(ui.attribute("prov_owner").value()) == "app" ? 1U : 0U;
    sum += SumOf(ui.attribute("name").value()) + SumOf(ui.child_value("Comment"));
    return sum + SumOf(ui.child_value("Value"));
}

class Pugixml final : public Contestant {
  public:
    std::string Name() const override { return "pugixml"; }

    void Load(const Source& source, bool wide) override {
        document_ = std::make_unique<pugi::xml_document>();
        const auto result = document_->load_file((wide ? source.wideXml : source.narrowXml).c_str(), kParse,
                                                 wide ? pugi::encoding_utf16_le : pugi::encoding_utf8);
        Check(static_cast<bool>(result), "pugixml cannot load");
    }

    void Release() override { document_.reset(); }

    void Save(const std::string& path, bool wide) override {
        Check(document_->save_file(path.c_str(), "\t", pugi::format_default,
                                   wide ? pugi::encoding_utf16_le : pugi::encoding_utf8),
              "pugixml cannot save");
    }

    Sum ReadStrings(std::span<const Query> queries) override {
        Sum sum = 0;
        for (const Query& query : queries)
            sum += SumOf(Find(query).child_value("Value"));
        return sum;
    }

    Sum ReadNumbers(std::span<const Query> queries) override {
        Sum sum = 0;
        for (const Query& query : queries)
            sum += static_cast<Sum>(Find(query).child("Value").text().as_int(-1));
        return sum;
    }

    void Update(std::span<const Query> queries) override {
        for (const Query& query : queries)
            Check(Find(query).child("Value").text().set(query.value.c_str()), "pugixml cannot write");
    }

    void Delete(std::span<const Query> queries) override {
        for (const Query& query : queries) {
            pugi::xml_node section = FindSection(query);
            Check(section.remove_child(section.find_child_by_attribute("Var", "name", query.key.c_str())),
                  "pugixml cannot delete");
        }
    }

    void Empty(const Query& section) override {
        Check(FindSection(section).remove_children(), "pugixml cannot empty");
    }

    Sum Enumerate(const Query& section) override {
        Sum sum = 0;
        for (const pugi::xml_node& entry : FindSection(section).children("Var"))
            sum += SumOfEntry(entry);
        return sum;
    }

    Sum EnumerateSections() override {
        Sum sum = 0;
        for (const pugi::xml_node& section : document_->child("Settings").children("Table"))
            sum += SumOf(section.attribute("name").value());
        return sum;
    }

    std::size_t Count(const Query& section) override {
        const auto entries = FindSection(section).children("Var");
        return static_cast<std::size_t>(std::distance(entries.begin(), entries.end()));
    }

  private:
    pugi::xml_node FindSection(const Query& query) const {
        return document_->child("Settings").find_child_by_attribute("Table", "name", query.section.c_str());
    }
    pugi::xml_node Find(const Query& query) const {
        return FindSection(query).find_child_by_attribute("Var", "name", query.key.c_str());
    }

    std::unique_ptr<pugi::xml_document> document_;
};

}  // namespace

std::unique_ptr<Contestant> MakePugixml() {
    return std::make_unique<Pugixml>();
}

}  // namespace bench
