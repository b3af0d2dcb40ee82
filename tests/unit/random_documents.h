// Random documents: valid ones, and ones with something wrong. The same seed gives the same documents everywhere.
#ifndef MOX_XMLAPI_TESTS_UNIT_RANDOM_DOCUMENTS_H
#define MOX_XMLAPI_TESTS_UNIT_RANDOM_DOCUMENTS_H

#include <cstddef>
#include <string_view>

#include "tests/unit/xml_support.h"

namespace mox::test {

class RandomDocuments {
  public:
    explicit RandomDocuments(std::uint64_t seed) : random_(seed) {}

    // A text in the dialect, or one that is close to it.
    WideString NextText() {
        WideString text;
        if (random_.OneIn(6)) {
            for (std::size_t count = random_.Below(12); count > 0; --count)
                text += Snippet();
        } else {
            text = DocumentText();
        }
        for (std::size_t count = random_.OneIn(3) ? 0 : random_.Below(3); count > 0; --count)
            Mutate(text);
        return text;
    }

    // A tree whose names, values and comments hold anything at all.
    model::NodePtr NextTree() {
        const model::NodePtr document = NewDocument();
        if (random_.OneIn(2)) document->children.push_back(DeclarationNode());
        for (std::size_t count = random_.Below(4); count > 0; --count)
            document->children.push_back(Node(0, false));
        return document;
    }

    // A tree that comes back as it was when it is written and read.
    model::NodePtr NextStableTree() {
        const model::NodePtr document = NewDocument();
        if (random_.OneIn(2)) document->children.push_back(DeclarationNode());
        for (std::size_t count = 1 + random_.Below(3); count > 0; --count)
            document->children.push_back(Node(0, true));
        return document;
    }

    Random& Numbers() { return random_; }

  private:
    WideString DocumentText() {
        WideString text = Space();
        if (random_.OneIn(2))
            text += Wide("<?xml version=\"1.0\"") + Attributes() + Space() + Wide("?>") + Separator();
        for (std::size_t count = random_.Below(4); count > 0; --count)
            text += random_.OneIn(5) ? CommentText() + Separator() : ElementText(0) + Separator();
        return text;
    }

    // What stands after a top-level node: mostly a line feed, now and then anything, or nothing.
    WideString Separator() {
        if (random_.OneIn(12)) return {};
        if (random_.OneIn(12)) return WideString(1, AnyUnit());
        return Wide("\n") + Space();
    }

    WideString ElementText(int depth) {
        const WideString name = Name();
        WideString text = Wide("<") + name + Attributes() + Space();
        if (random_.OneIn(4)) return text + Wide("/>");
        text += Wide(">");
        for (std::size_t count = random_.Below(5); count > 0; --count) {
            switch (random_.Below(depth > 4 ? 3 : 5)) {
                case 0:
                    text += Space();
                    break;
                case 1:
                    text += Text();
                    break;
                case 2:
                    text += CommentText();
                    break;
                default:
                    text += ElementText(depth + 1);
            }
        }
        return text + Wide("</") + name + Wide(">");
    }

    WideString Attributes() {
        WideString text;
        while (random_.OneIn(2)) {
            text += random_.OneIn(8) ? WideString() : Wide(" ") + Space();
            text += Name() + Space() + Wide("=") + Space() + Wide("\"") + Text() + Wide("\"");
        }
        return text;
    }

    WideString CommentText() {
        WideString text = Wide("<!--");
        while (random_.OneIn(2))
            text += random_.OneIn(4) ? Wide(random_.OneIn(4) ? "--" : "-") : Text();
        return text + Wide("-->");
    }

    WideString Text() {
        static constexpr std::u16string_view kPieces[] = {
            u"&amp;",  u"&lt;",   u"&gt;", u"&quot;", u"&apos;", u"&amp;lt;", u" ",    u"\n",
            u"\t",     u"x",      u"one",  u"42",     u"'",      u"=",        u"/",    u"\u00E9",
            u"\xD800", u"]]",     u"?",    u";",      u"two ",   u" 3",       u"\r\n", u"\u00D7",
            u"!",      u"\uFF80", u"a-b",  u"#65;",   u"amp",    u"\u0416"};
        WideString text;
        while (!random_.OneIn(3))
            text += Wide(random_.Pick(kPieces));
        return text;
    }

    WideString Name() {
        static constexpr std::u16string_view kNames[] = {
            u"a",   u"b",       u"Var", u"Table",        u"name", u"xs:e", u"_1",    u":",
            u"xml", u"version", u"ab",  u"\u00E9\u4E2D", u"A",    u"a1",   u"\u0416"};
        return Wide(random_.Pick(kNames));
    }

    WideString Space() {
        WideString text;
        while (random_.OneIn(4))
            text += static_cast<wchar16>(random_.Pick(std::string_view(" \n\t\r")));
        return text;
    }

    WideString Snippet() {
        static constexpr std::string_view kSnippets[] = {"<a>",
                                                         "</a>",
                                                         "<a/>",
                                                         "<b x=\"1\"/>",
                                                         "<b x=\"",
                                                         "\"",
                                                         "=",
                                                         "<!--",
                                                         "-->",
                                                         "--",
                                                         "-",
                                                         ">",
                                                         "<",
                                                         "/",
                                                         "/>",
                                                         "</",
                                                         "<?xml version=\"1.0\"?>",
                                                         "<?",
                                                         "?>",
                                                         "<!",
                                                         "&lt;",
                                                         "&amp",
                                                         "&",
                                                         ";",
                                                         "&#65;",
                                                         " ",
                                                         "\n",
                                                         "text",
                                                         "a",
                                                         "x=\"1\" ",
                                                         "<a b=\"&quot;\">",
                                                         "<!---->",
                                                         "<![CDATA[",
                                                         "]]>",
                                                         "'",
                                                         "<a.b/>",
                                                         "<a-b/>",
                                                         "<1/>"};
        return Wide(random_.Pick(kSnippets));
    }

    wchar16 AnyUnit() {
        static constexpr std::u16string_view kUnits{
            u"<>/?!-&;\"'= \n\t\rax_:.1#\u00E9\u00D7\u0416\uFF80\xD800\uFFFF\0", 29};
        return static_cast<wchar16>(random_.Pick(kUnits));
    }

    // One small change.
    void Mutate(WideString& text) {
        const std::size_t at = random_.Below(text.size() + 1);
        const std::size_t count =
            at == text.size() ? 0 : 1 + random_.Below(random_.OneIn(2) ? 1 : text.size() - at);
        switch (random_.Below(6)) {
            case 0:
                text.erase(at, count);
                break;
            case 1:
                text.insert(at, 1, AnyUnit());
                break;
            case 2:
                text.replace(at, count == 0 ? 0 : 1, 1, AnyUnit());
                break;
            case 3:
                text.insert(at, Snippet());
                break;
            case 4:
                text.insert(random_.Below(text.size() + 1), text.substr(at, count));
                break;
            default:
                text.erase(at);
        }
    }

    static model::NodePtr NewDocument() {
        auto document = std::make_shared<model::Node>();
        document->kind = model::Kind::Document;
        return document;
    }

    model::NodePtr DeclarationNode() {
        model::NodePtr node = Declaration();
        while (random_.OneIn(2))
            node->attributes.emplace_back(Name(), Text());
        return node;
    }

    model::NodePtr Node(int depth, bool stable) {
        auto node = std::make_shared<model::Node>();
        if (random_.OneIn(6)) {
            node->kind = model::Kind::Comment;
            node->value = stable ? StableText() : Text();
            return node;
        }
        node->name = Name();
        while (random_.OneIn(2))
            node->attributes.emplace_back(Name(), Text());
        for (std::size_t count = depth > 4 ? 0 : random_.Below(4); count > 0; --count)
            node->children.push_back(Node(depth + 1, stable));
        if (!stable) node->value = Text();
        if (stable && node->children.empty()) node->value = StableText();
        return node;
    }

    // One line that does not begin with whitespace, without what a comment cannot hold.
    WideString StableText() {
        static constexpr std::string_view kTexts[] = {
            "", "x", "12", "two words ", "tab\tinside", "a & b ' \" <c", "-", "&amp;"};
        WideString text = Wide(random_.Pick(kTexts));
        if (!text.empty() && text.back() == '-') text += wchar16{' '};
        return text;
    }

    Random random_;
};

}  // namespace mox::test

#endif
