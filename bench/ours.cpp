// mox_xmlApi as a host uses it: through its shared object and its exports alone.
#include <array>

#include "bench/contestant.h"
#include "mox_xmlApi/mox_xmlApi.h"
#include "mox_xmlApi/platform/mox_dbtInfo.h"

namespace bench {
namespace {

constexpr std::size_t kBuffer = 128;

// The records name their kinds by code, the document by text. What the sum needs is the text.
std::string_view TypeName(std::uint16_t code) {
    return code == 3 ? "long" : code == 5 ? "double" : "string";
}
std::string_view ControlName(std::uint16_t code) {
    return code == 1 ? "num" : "text";
}

Sum SumOfEntry(const TableEntryValueInfoStruct& value, const TableEntryUInfoStruct& ui) {
    const std::uint32_t providerIndex = ui.prov_index;
    Sum sum = SumOf(std::u16string_view(value.name)) + value.id + SumOf(TypeName(value.type)) +
              SumOf(value.GetVal());
    if (providerIndex == 0) return sum;  // every entry with presentation data has a provider here
    sum += SumOf(ControlName(ui.control)) + providerIndex + ui.prov_owner;
    sum += SumOf(std::u16string_view(ui.GetUserName_w())) + SumOf(std::u16string_view(ui.GetComment_w()));
    return sum + SumOf(ui.GetVal());
}

class Ours final : public Contestant {
  public:
    ~Ours() override { xmlProfileDispose(&handle_); }

    std::string Name() const override { return "mox_xmlApi"; }

    void Load(const Source& source, bool wide) override {
        const std::string& path = wide ? source.wideXml : source.narrowXml;
        handle_ = xmlProfileNew(WidePath(path), nullptr, 0, wide ? 1 : 0);
        Check(handle_ != nullptr, "mox_xmlApi cannot load ", path);
    }

    void Release() override { xmlProfileDispose(&handle_); }

    void Save(const std::string& path, bool wide) override {
        Check(xmlProfileSave(handle_, WidePath(path), 0, 0, wide ? 1 : 0) == 1, "mox_xmlApi cannot save ",
              path);
    }

    Sum ReadStrings(std::span<const Query> queries) override {
        std::array<char16_t, kBuffer> buffer;
        Sum sum = 0;
        for (const Query& query : queries) {
            const std::size_t length =
                xmlGetProfileString(handle_, query.wideSection.c_str(), query.wideKey.c_str(), buffer.data(),
                                    static_cast<std::uint32_t>(buffer.size()), u"");
            sum += SumOf(std::u16string_view(buffer.data(), length));
        }
        return sum;
    }

    Sum ReadNumbers(std::span<const Query> queries) override {
        Sum sum = 0;
        for (const Query& query : queries)
            sum += static_cast<Sum>(
                xmlGetProfileInt(handle_, query.wideSection.c_str(), query.wideKey.c_str(), -1));
        return sum;
    }

    void Update(std::span<const Query> queries) override {
        for (const Query& query : queries) {
            Check(xmlWriteProfileString(handle_, query.wideSection.c_str(), query.wideKey.c_str(),
                                        query.wideValue.c_str()) == 1,
                  "mox_xmlApi cannot write ", query.key);
        }
    }

    void Append(std::span<const Query> queries) override { Update(queries); }

    void Delete(std::span<const Query> queries) override {
        for (const Query& query : queries) {
            Check(xmlWriteProfileString(handle_, query.wideSection.c_str(), query.wideKey.c_str(), nullptr) ==
                      1,
                  "mox_xmlApi cannot delete ", query.key);
        }
    }

    void Empty(const Query& section) override {
        const Section table(handle_, section);
        Check(xmlTableRemoveEntries(table.handle), "mox_xmlApi cannot empty ", section.section);
    }

    Sum Enumerate(const Query& section) override {
        const Section table(handle_, section);
        TableEntryValueInfoStruct value;
        TableEntryUInfoStruct ui;
        Sum sum = 0;
        std::uint64_t position = 0;
        while (xmlTableEntryGet(table.handle, &position, &value, &ui))
            sum += SumOfEntry(value, ui);
        return sum;
    }

    Sum EnumerateSections() override {
        std::array<char16_t, kBuffer> name;
        Sum sum = 0;
        std::uintptr_t position = 0;
        while (void* section = xmlEnumProfileSections(handle_, &position, name.data(), kBuffer, nullptr)) {
            sum += SumOf(std::u16string_view(name.data()));
            xmlTableDispose(&section);
        }
        return sum;
    }

    std::size_t Count(const Query& section) override {
        const Section table(handle_, section);
        TableEntryValueInfoStruct value;
        std::size_t count = 0;
        std::uint64_t position = 0;
        while (xmlTableEntryGet(table.handle, &position, &value, nullptr))
            ++count;
        return count;
    }

  private:
    struct Section {
        Section(moxSettings* settings, const Query& section)
            : handle(xmlGetProfileSection(settings, section.wideSection.c_str(), nullptr)) {
            Check(handle != nullptr, "mox_xmlApi finds no section ", section.section);
        }
        Section(const Section&) = delete;
        Section& operator=(const Section&) = delete;
        ~Section() { xmlTableDispose(&handle); }

        void* handle;
    };

    // A host has its paths in 16-bit text: that it is made here is no part of what is measured.
    const char16_t* WidePath(const std::string& path) {
        if (path != path_) {
            path_ = path;
            widePath_.assign(path.begin(), path.end());
        }
        return widePath_.c_str();
    }

    moxSettings* handle_ = nullptr;
    std::string path_;
    std::u16string widePath_;
};

}  // namespace

std::unique_ptr<Contestant> MakeOurs() {
    return std::make_unique<Ours>();
}

}  // namespace bench
