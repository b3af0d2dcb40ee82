// Loading of documents that are larger than one piece of the loader and than its first buffer, and what grows with
// them. The first byte says where the document comes from, the others describe it (large_text.h); in a wide file, a
// byte of 0xF0 and above is followed by the two bytes of a unit.
//
//   'n'  a narrow file    'm'  memory                      anything else: its lowest bits choose
//   'w'  a wide file      'p'  a pipe with a narrow file
//                         'q'  a pipe with a wide file
//
// It is a settings document; 'W', 'M' and 'Q' are table documents.
#include "fuzz/large_text.h"
#include "fuzz/read_everything.h"
#include "fuzz/special_files.h"
#include "fuzz/tree_check.h"
#include "fuzz/work.h"
#include "mox_xmlApi/table/table_handle.h"
#include "tests/model/profile.h"
#include "tests/model/tables.h"
#include "tests/model/text.h"

namespace mox::fuzz {
namespace {

constexpr std::size_t kMostBytes = 70000;
constexpr std::size_t kMostSavedDepth = 200;  // files grow with the square of the depth

enum class Source { NarrowFile, WideFile, Memory, NarrowPipe, WidePipe };

Source SourceOf(char letter) {
    constexpr std::string_view kLetters = "nwmpqWMQ";
    constexpr Source kSources[] = {Source::NarrowFile, Source::WideFile, Source::Memory, Source::NarrowPipe,
                                   Source::WidePipe,   Source::WideFile, Source::Memory, Source::WidePipe};
    const std::size_t number = kLetters.find(letter);
    return kSources[number == std::string_view::npos ? static_cast<unsigned char>(letter) & 7U : number];
}

bool IsTable(char letter) {
    return letter == 'W' || letter == 'M' || letter == 'Q';
}

bool IsWide(Source source) {
    return source == Source::WideFile || source == Source::WidePipe;
}

model::Text WideText(std::string_view bytes) {
    model::Text text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte < 0xF0 || i + 2 >= bytes.size()) {
            text += byte;
            continue;
        }
        const unsigned low = static_cast<unsigned char>(bytes[i + 1]);
        const unsigned high = static_cast<unsigned char>(bytes[i + 2]);
        text += static_cast<wchar16>(low | high << 8);
        i += 2;
    }
    return text;
}

// A document in one of its places. Each export that loads it reads it once.
class LargeDocument {
  public:
    LargeDocument(Source source, std::string_view description, const ScratchFile& file)
        : source_(source), bytes_(Expand(description, kMostBytes)), file_(file) {
        if (IsWide(source)) bytes_ = model::WideBytes(WideText(bytes_));
        text_ = IsWide(source) ? model::FromWideBytes(bytes_) : model::FromNarrowBytes(bytes_);
        if (!Pipe::IsThere() && source >= Source::NarrowPipe)
            source_ = source == Source::WidePipe ? Source::WideFile : Source::NarrowFile;
        if (source_ == Source::NarrowFile || source_ == Source::WideFile) file.Write(bytes_);
    }

    bool IsWideFile() const { return IsWide(source_); }
    std::size_t Size() const { return bytes_.size(); }
    const model::Text& Text() const { return text_; }

    // What `opener` opens, which takes the arguments for a document.
    template <class Opener>
    auto Open(const Opener& opener) const {
        if (source_ == Source::Memory)
            return opener(nullptr, bytes_.data(), static_cast<std::int32_t>(bytes_.size()));
        if (source_ == Source::NarrowFile || source_ == Source::WideFile)
            return opener(file_.Name(), nullptr, 0);
        Pipe pipe;
        return opener(pipe.Filled(bytes_).c_str(), nullptr, 0);
    }

    moxSettings* OpenProfile() const {
        const std::int32_t wide = IsWide(source_) ? 1 : 0;
        return Open([&](const wchar16* path, const char* image, std::int32_t size) {
            return Measured([&] { return xmlProfileNew(path, image, size, wide); });
        });
    }

    void* OpenTable() const {
        return Open([&](const wchar16* path, const char* image, std::int32_t size) {
            return Measured([&] { return xmlTableNew(path, image, size, nullptr, 0, 0, 0, 0); });
        });
    }

  private:
    Source source_;
    std::string bytes_;
    model::Text text_;
    const ScratchFile& file_;
};

// Of a document that is read, each unit counts so often: texts beyond ASCII are converted to UTF-8 and back each time.
constexpr std::size_t kReadings = 4;

// `expected` is what the model reads of the document; null when that is not in the dialect.
void LoadProfile(const LargeDocument& document, const model::NodePtr& expected, const ScratchFile& file) {
    MeasuredWork::Reset();
    moxSettings* profile = document.OpenProfile();
    CheckWork(MeasuredWork::Sum(), document.Size(), "loading a profile");
    Check((profile != nullptr) == (expected != nullptr),
          "a profile opens exactly when its text is in the dialect");
    if (profile == nullptr) return;
    const model::NodePtr opened = model::Copy(*expected);
    model::OpenRoot(*opened);
    const XmlNode& top = *profile->document.root;
    Check(model::IsSame(*CopyTree(top), *opened), "the tree agrees with the model");
    MeasuredWork::Reset();
    ReadProfile(profile);
    CheckWork(MeasuredWork::Sum(), kReadings * document.Size(), "reading a profile");
    if (DepthBelow(top) <= kMostSavedDepth) CheckRoundTrip(profile, file, document.IsWideFile());
    xmlProfileDispose(&profile);
}

void LoadTable(const LargeDocument& document, const model::NodePtr& expected, const ScratchFile& file) {
    MeasuredWork::Reset();
    void* table = document.OpenTable();
    CheckWork(MeasuredWork::Sum(), document.Size(), "loading a table");
    Check((table != nullptr) == (expected != nullptr),
          "a table opens exactly when its text is in the dialect");
    if (table == nullptr) return;
    const model::NodePtr opened = model::Copy(*expected);
    model::OpenTable(*opened, model::Text());
    const XmlNode& top = *static_cast<TableHandle*>(table)->document.root;
    Check(model::IsSame(*CopyTree(top), *opened), "the tree agrees with the model");
    MeasuredWork::Reset();
    ReadTable(table);
    CheckWork(MeasuredWork::Sum(), kReadings * document.Size(), "reading a table");
    if (DepthBelow(top) <= kMostSavedDepth) CheckRoundTrip(table, file);
    xmlTableDispose(&table);
}

}  // namespace
}  // namespace mox::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mox::fuzz;
    if (size < 2) return 0;
    static const ScratchFile file;
    WithLargeStack([&] {
        const auto [letter, bit0, bit1, description] = TakeApart(data, size);
        const LargeDocument document(SourceOf(letter), description, file);
        if (document.Size() == 0) return;
        const model::NodePtr expected = ParseByModel(document.Text());
        if (IsTable(letter)) return LoadTable(document, expected, file);
        LoadProfile(document, expected, file);
    });
    return 0;
}
