#include <glib.h>

#include "bench/contestant.h"

namespace bench {
namespace {

class GKeyFileContestant final : public Contestant {
  public:
    ~GKeyFileContestant() override { Release(); }

    std::string Name() const override { return "GKeyFile"; }

    void Load(const Source& source, bool /*wide*/) override {
        file_ = g_key_file_new();
        Check(
            g_key_file_load_from_file(file_, source.ini.c_str(), G_KEY_FILE_KEEP_COMMENTS, nullptr) != FALSE,
            "GKeyFile cannot load");
    }

    void Release() override {
        if (file_ != nullptr) g_key_file_free(file_);
        file_ = nullptr;
    }

    void Save(const std::string& path, bool /*wide*/) override {
        Check(g_key_file_save_to_file(file_, path.c_str(), nullptr) != FALSE, "GKeyFile cannot save");
    }

    Sum ReadStrings(std::span<const Query> queries) override {
        Sum sum = 0;
        for (const Query& query : queries) {
            gchar* value = g_key_file_get_string(file_, query.section.c_str(), query.key.c_str(), nullptr);
            sum += SumOf(value);
            g_free(value);
        }
        return sum;
    }

    Sum ReadNumbers(std::span<const Query> queries) override {
        Sum sum = 0;
        for (const Query& query : queries)
            sum += static_cast<Sum>(
                g_key_file_get_integer(file_, query.section.c_str(), query.key.c_str(), nullptr));
        return sum;
    }

    void Update(std::span<const Query> queries) override {
        for (const Query& query : queries)
            g_key_file_set_string(file_, query.section.c_str(), query.key.c_str(), query.value.c_str());
    }

    void Append(std::span<const Query> queries) override { Update(queries); }

    void Delete(std::span<const Query> queries) override {
        for (const Query& query : queries) {
            Check(g_key_file_remove_key(file_, query.section.c_str(), query.key.c_str(), nullptr) != FALSE,
                  "GKeyFile cannot delete");
        }
    }

    void Empty(const Query& section) override {
        Check(g_key_file_remove_group(file_, section.section.c_str(), nullptr) != FALSE,
              "GKeyFile cannot empty");
    }

    std::size_t Count(const Query& section) override {
        gsize count = 0;
        g_strfreev(g_key_file_get_keys(file_, section.section.c_str(), &count, nullptr));
        return count;
    }

  private:
    GKeyFile* file_ = nullptr;
};

}  // namespace

std::unique_ptr<Contestant> MakeGKeyFile() {
    return std::make_unique<GKeyFileContestant>();
}

}  // namespace bench
