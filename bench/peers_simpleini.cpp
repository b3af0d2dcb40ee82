// Files and texts have the same form, so its conversions are not needed.
#define SI_NO_CONVERSION
#include <SimpleIni.h>

#include "bench/contestant.h"

namespace bench {
namespace {

class SimpleIniContestant final : public Contestant {
  public:
    std::string Name() const override { return "SimpleIni"; }

    void Load(const Source& source, bool /*wide*/) override {
        file_ = std::make_unique<CSimpleIniCaseA>();
        Check(file_->LoadFile(source.ini.c_str()) == SI_OK, "SimpleIni cannot load");
    }

    void Release() override { file_.reset(); }

    void Save(const std::string& path, bool /*wide*/) override {
        Check(file_->SaveFile(path.c_str(), false) == SI_OK, "SimpleIni cannot save");
    }

    Sum ReadStrings(std::span<const Query> queries) override {
        Sum sum = 0;
        for (const Query& query : queries)
            sum += SumOf(file_->GetValue(query.section.c_str(), query.key.c_str()));
        return sum;
    }

    Sum ReadNumbers(std::span<const Query> queries) override {
        Sum sum = 0;
        for (const Query& query : queries)
            sum += static_cast<Sum>(file_->GetLongValue(query.section.c_str(), query.key.c_str(), -1));
        return sum;
    }

    void Update(std::span<const Query> queries) override {
        for (const Query& query : queries) {
            Check(file_->SetValue(query.section.c_str(), query.key.c_str(), query.value.c_str()) >= 0,
                  "SimpleIni cannot write");
        }
    }

    void Append(std::span<const Query> queries) override { Update(queries); }

    void Delete(std::span<const Query> queries) override {
        for (const Query& query : queries)
            Check(file_->Delete(query.section.c_str(), query.key.c_str()), "SimpleIni cannot delete");
    }

    void Empty(const Query& section) override {
        Check(file_->Delete(section.section.c_str(), nullptr), "SimpleIni cannot empty");
    }

    std::size_t Count(const Query& section) override {
        const int size = file_->GetSectionSize(section.section.c_str());
        return size < 0 ? 0U : static_cast<std::size_t>(size);
    }

  private:
    std::unique_ptr<CSimpleIniCaseA> file_;
};

}  // namespace

std::unique_ptr<Contestant> MakeSimpleIni() {
    return std::make_unique<SimpleIniContestant>();
}

}  // namespace bench
