#include "tests/second_opinion/dialect_support.h"

#include <cstdlib>
#include <set>

#include "tests/sanitized_build.h"

namespace opinion {
namespace {

std::uint64_t FromEnvironment(const char* name, std::uint64_t otherwise) {
    const char* text = std::getenv(name);
    return text == nullptr || *text == '\0' ? otherwise : std::strtoull(text, nullptr, 10);
}

void Replace(std::string& text, std::string_view what, std::string_view with) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
}

}  // namespace

std::uint64_t RandomSeed() {
    return FromEnvironment("MOX_OPINION_SEED", 1);
}
std::uint64_t RandomCount() {
    return FromEnvironment("MOX_OPINION_COUNT", kIsSanitized ? 500 : 2000);
}

std::string RandomText(Random& random, bool control) {
    static constexpr std::string_view kMarkup = "<>&\"' \t\n\r-]";
    std::string text;
    for (std::size_t length = random.OneIn(8) ? 0 : 1 + random.Below(20); length > 0; --length) {
        const auto any = static_cast<char>(1 + random.Below(127));
        if (random.OneIn(4)) {
            text += random.Pick(kMarkup);
        } else if (any >= ' ' || kMarkup.find(any) != std::string_view::npos || control) {
            text += any;
        }
    }
    return text;
}

std::string RandomDocuments::Next() {
    std::string text = random_.OneIn(2) ? Declaration() + "\n" + Space() : Space();
    if (text.find("<?") == std::string::npos) text.clear();
    while (random_.OneIn(4))
        text += Comment() + "\n" + Space();
    text += Element(0);
    while (random_.OneIn(4))
        text += "\n" + Space() + Comment();
    return text + (random_.OneIn(2) ? "\n" : "");
}

std::string RandomDocuments::NextDamaged() {
    static constexpr std::string_view kPieces[] = {
        "<",        ">",      "/",         "\"",       "'",          "=",
        "&",        ";",      "-",         " ",        "\n",         "x",
        "<a/>",     "</a>",   "<a>",       "<!--b-->", "<?p?>",      "<?xml version=\"1.0\"?>",
        "]]>",      "&#65;",  "<![CDATA[", "\x01",     "<!DOCTYPE ", "\r\n",
        " b=\"1\"", " b='1'", "--",        "a.b",      "&lt;",       "<a:b/>",
        "\t"};
    std::string text = Next();
    for (std::size_t count = 1 + random_.Below(3); count > 0; --count) {
        const std::size_t at = random_.Below(text.size() + 1);
        switch (random_.Below(4)) {
            case 0:
                text.erase(at, 1);
                break;
            case 1:
                text.erase(at, random_.Below(10));
                break;
            case 2:
                text.insert(at, text.substr(random_.Below(text.size() + 1), random_.Below(20)));
                break;
            default:
                text.insert(at, random_.Pick(kPieces));
        }
    }
    return text;
}

std::string RandomDocuments::Declaration() {
    std::string text = "<?xml" + Space() + " version=\"1.0\"";
    if (random_.OneIn(2)) text += " encoding=\"UTF-8\"";
    if (random_.OneIn(4)) text += " standalone=\"yes\"";
    return text + Space() + "?>";
}

std::string RandomDocuments::Element(int depth) {
    const std::string name = Name();
    std::string text = "<" + name + Attributes() + Space();
    if (random_.OneIn(4)) return text + "/>";
    text += ">";
    for (std::size_t count = random_.Below(6); count > 0; --count) {
        switch (random_.Below(depth > 4 ? 3 : 5)) {
            case 0:
                text += Space();
                break;
            case 1:
                text += Text(false);
                break;
            case 2:
                text += Comment();
                break;
            default:
                text += Element(depth + 1);
        }
        Replace(text, "]]>", "]]&gt;");
    }
    return text + "</" + name + ">";
}

std::string RandomDocuments::Attributes() {
    std::string text;
    std::set<std::string> names;
    while (random_.OneIn(2)) {
        const std::string name = Name();
        if (!names.insert(name).second) continue;
        text += " " + Space() + name + Space() + "=" + Space() + "\"" + Text(true) + "\"";
    }
    return text;
}

std::string RandomDocuments::Comment() {
    std::string text = RandomText(random_, false);
    Replace(text, ">", "");
    Replace(text, "--", "- ");
    if (!text.empty() && text.back() == '-') text += ' ';
    return "<!--" + text + "-->";
}

std::string RandomDocuments::Text(bool attribute) {
    std::string text = RandomText(random_, false);
    Replace(text, "&", random_.OneIn(2) ? "&amp;" : "&apos;");
    Replace(text, "<", random_.OneIn(2) ? "&lt;" : "&gt;");
    if (attribute) Replace(text, "\"", "&quot;");
    Replace(text, "]]>", "]]&gt;");
    return text;
}

std::string RandomDocuments::Name() {
    static constexpr std::string_view kNames[] = {"a",  "Table", "Var",   "Value",   "xs:e", "_",
                                                  ":",  "name",  "xmlns", "A1",      "x",    "UI",
                                                  "_9", "Z",     "b:c",   "xml:lang"};
    static constexpr std::string_view kLetters =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_:0123456789";
    if (random_.OneIn(2)) return std::string(random_.Pick(kNames));
    std::string name(1, kLetters[random_.Below(54)]);
    while (!random_.OneIn(3))
        name += random_.Pick(kLetters);
    return name;
}

std::string RandomDocuments::Space() {
    std::string text;
    while (random_.OneIn(4))
        text += random_.Pick(std::string_view(" \n\t\r"));
    return text;
}

}  // namespace opinion
