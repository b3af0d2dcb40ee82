// Documents of extreme shape: twice the size may take little more than twice the time.
#include "bench/suite.h"
#include "mox_xmlApi/mox_xmlApi.h"

namespace bench {
namespace {

constexpr const char* kRoot = "<Settings xmlns:noNamespaceSchemaLocation=\"MXSettings.xsd\">\n";

std::string Repeated(std::string_view piece, std::size_t count) {
    std::string text;
    text.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        text += piece;
    return text;
}

std::string Deep(std::size_t levels) {
    return Repeated("<a>", levels) + Repeated("</a>", levels) + '\n';
}

std::string Attributes(std::size_t count) {
    std::string xml = kRoot + std::string("<Table name=\"s\"");
    for (std::size_t i = 0; i < count; ++i)
        xml += " a" + std::to_string(i) + "=\"1\"";
    return xml + "/></Settings>\n";
}

std::string Entries(std::size_t count) {
    std::string xml = kRoot + std::string("<Table name=\"s\">");
    for (std::size_t i = 0; i < count; ++i)
        xml += "<Var name=\"k" + std::to_string(i) + "\" type=\"long\"><Value>1</Value></Var>";
    return xml + "</Table></Settings>\n";
}

std::string Sections(std::size_t count) {
    std::string xml = kRoot;
    for (std::size_t i = 0; i < count; ++i)
        xml += "<Table name=\"s" + std::to_string(i) + "\"/>";
    return xml + "</Settings>\n";
}

std::string LongValue(std::size_t bytes) {
    return kRoot + std::string("<Table name=\"s\"><Var name=\"k\" type=\"string\"><Value>") +
           std::string(bytes, 'v') + "</Value></Var></Table></Settings>\n";
}

std::string Pieces(std::size_t count) {
    return "<a>" + Repeated("text<b/>", count) + "</a>\n";
}
std::string Entities(std::size_t count) {
    return "<a>" + Repeated("&amp;", count) + "</a>\n";
}
std::string OpenEntity(std::size_t bytes) {
    return "<a>&" + std::string(bytes, 'e') + "\n";
}
std::string OpenComment(std::size_t bytes) {
    return "<!--" + std::string(bytes, 'c') + "\n";
}
std::string OpenTag(std::size_t bytes) {
    return "<" + std::string(bytes, 'n') + "\n";
}

moxSettings* Load(const std::string& xml) {
    return xmlProfileNew(nullptr, xml.data(), static_cast<std::int32_t>(xml.size()), 0);
}

// From the text in memory to having released the document.
Participant Loads(const std::string& xml, std::size_t size, bool accepted) {
    const auto batch = [xml, accepted] {
        Stopwatch watch;
        watch.Start();
        moxSettings* settings = Load(xml);
        const bool loaded = settings != nullptr;
        xmlProfileDispose(&settings);
        watch.Stop();
        Check(loaded == accepted,
              accepted ? "a document of extreme shape does not load" : "a document that has no end loads");
        return watch.Seconds();
    };
    return {std::to_string(size), batch, 1};
}

Participant Saves(const std::string& xml, std::size_t size) {
    struct Held {
        explicit Held(moxSettings* loaded) : settings(loaded) {}
        Held(const Held&) = delete;
        Held& operator=(const Held&) = delete;
        ~Held() { xmlProfileDispose(&settings); }

        moxSettings* settings;
        MemoryFolder folder;
    };
    const auto held = std::make_shared<Held>(Load(xml));
    const std::string path = held->folder.File("saved.xml");
    const auto batch = [held, path, least = xml.size() / 2] {
        const std::u16string widePath = ToUtf16(path);
        Stopwatch watch;
        watch.Start();
        const bool saved = xmlProfileSave(held->settings, widePath.c_str(), 0, 0, 0) == 1;
        watch.Stop();
        Check(saved && std::filesystem::file_size(path) > least, "a document of extreme shape is not saved");
        return watch.Seconds();
    };
    return {std::to_string(size), batch, 1};
}

struct Shape {
    const char* name;
    std::string (*make)(std::size_t size);
    std::size_t size;  // the larger of the two
    bool accepted = true;
};

constexpr std::size_t kMebi = 1024 * 1024;

}  // namespace

void RunShapes(Suite& suite) {
    if (!suite.Wants("time(2n) : time(n)")) return;
    const std::string subject = "time(2n) : time(n)";
    const std::size_t divisor = suite.Quick() ? 100 : 1;
    const std::vector<Shape> shapes = {{"levels", Deep, 1000000},
                                       {"attributes of one element", Attributes, 400000},
                                       {"entries in one table", Entries, 1000000},
                                       {"sections", Sections, 500000},
                                       {"bytes in one value", LongValue, 64 * kMebi},
                                       {"pieces of one text", Pieces, 1000000},
                                       {"entities in one text", Entities, 4000000},
                                       {"bytes in an entity without end", OpenEntity, 64 * kMebi, false},
                                       {"bytes in a comment without end", OpenComment, 64 * kMebi, false},
                                       {"bytes in a tag without end", OpenTag, 64 * kMebi, false}};
    for (const Shape& shape : shapes) {
        const std::size_t size = shape.size / divisor;
        suite.AddGrowth(subject, std::string("load, ") + shape.name,
                        {Loads(shape.make(size / 2), size / 2, shape.accepted),
                         Loads(shape.make(size), size, shape.accepted)},
                        2.5);
        if (!shape.accepted || shape.make == Deep) continue;
        suite.AddGrowth(subject, std::string("save, ") + shape.name,
                        {Saves(shape.make(size / 2), size / 2), Saves(shape.make(size), size)}, 2.5);
    }
    // The indentation alone grows with the square of the depth.
    suite.AddGrowth(subject, "save, levels",
                    {Saves(Deep(2500 / divisor), 2500), Saves(Deep(5000 / divisor), 5000)}, std::nullopt);
}

}  // namespace bench
