#include "tests/second_opinion/catalogue_support.h"

#include <string_view>
#include <vector>

namespace opinion {
namespace {

using Tokens = std::vector<std::string_view>;
using Use = std::function<void(const std::string&)>;

const Tokens kNodes = {"<a/>",
                       "<b>",
                       "</b>",
                       "<!--c-->",
                       "<!--c>d-->",
                       "<?xml version=\"1.0\"?>",
                       "<?p q?>",
                       "<!DOCTYPE a>",
                       "<!DOCTYPE a [<!ENTITY u \"v\">]>",
                       "<![CDATA[c]]>",
                       " ",
                       "\n",
                       "\r",
                       "x",
                       "<",
                       ">",
                       "&",
                       "\xEF\xBB\xBF",
                       "\x01"};

const Tokens kFewNodes = {"<a/>", "<b>", "</b>", "<!--c-->", "<?xml version=\"1.0\"?>", "\n", "x", "<"};

const Tokens kContent = {"x",        "y z",           " ",      "\n",       "\r",       "\t",    "<a/>",
                         "<!--c-->", "<![CDATA[c]]>", "<?p?>",  "&lt;",     "&gt;",     "&#65;", "&#x41;",
                         "&u;",      "]]>",           "<a-b/>", "<a></a >", "\xC3\xA4", "\x01",  ">",
                         "<",        "&amp;",         "'",      "\"",       "\x7F"};

const Tokens kInTag = {" b=\"v\"",    " b='v'",    "c=\"v\"",   " b = \"v\"",  " d=\">\"",
                       " d=\"<\"",    " e=\"\t\"", " e=\"\n\"", " e=\"\r\n\"", " f=\"&lt;\"",
                       " f=\"&#9;\"", " g",        " h=v",      " ",           "\n",
                       "/",           " i=\"'\"",  " i='\"'",   " j-k=\"\"",   " l.m=\"\"",
                       " 1=\"\"",     " n:o=\"\"", " :=\"\"",   " _=\"\"",     " xmlns=\"u\""};

const Tokens kInDeclaration = {" version=\"1.0\"",
                               " version='1.0'",
                               " version=\"1.1\"",
                               " version=\"2.0\"",
                               " version=\"\"",
                               " version=\"x\"",
                               " encoding=\"UTF-8\"",
                               "encoding=\"UTF-8\"",
                               " encoding=\"US-ASCII\"",
                               " encoding=\"none\"",
                               " encoding=\"\"",
                               " encoding=\"1\"",
                               " standalone=\"yes\"",
                               " standalone=\"no\"",
                               " standalone=\"maybe\"",
                               " other=\"\"",
                               " version",
                               " ",
                               "\n",
                               "?"};

// Every row of at most `most` tokens between `before` and `after`.
void ForEachRow(const Tokens& tokens, int most, std::string_view before, std::string_view after,
                const Use& use) {
    std::vector<std::string> rows = {""};
    for (int length = 0; length <= most; ++length) {
        std::vector<std::string> longer;
        for (const std::string& row : rows) {
            use(std::string(before).append(row).append(after));
            if (length == most) continue;
            for (const std::string_view token : tokens)
                longer.push_back(row + std::string(token));
        }
        rows = std::move(longer);
    }
}

// The places where something may stand; "^" is the place.
const Tokens kPlaces = {"^<a/>",
                        "<a/>^",
                        "<^/>",
                        "<a^/>",
                        "<a^b/>",
                        "<a ^=\"1\"/>",
                        "<a b^=\"1\"/>",
                        "<a b=^\"1\"/>",
                        "<a b=\"^\"/>",
                        "<a b=\"1\"^/>",
                        "<a b=\"1\"^c=\"2\"/>",
                        "<a>^</a>",
                        "<a>x^y</a>",
                        "<a>x<b/>^</a>",
                        "<a>&^;</a>",
                        "<a><^a/></a>",
                        "<a></^a>",
                        "<a></a^>",
                        "<a><!^--c--></a>",
                        "<a><!--^--></a>",
                        "<a><!--c-^-></a>",
                        "<a/>\n^<b/>",
                        "<a/>^<b/>",
                        "<!--c-->^<a/>",
                        "<a/>^<!--c-->",
                        "<?xml version=\"1.0\"?>^<a/>",
                        "<?xml^version=\"1.0\"?>\n<a/>",
                        "<?xml version=\"^\"?>\n<a/>",
                        "<?xml version=\"1.0\" encoding=\"^\"?>\n<a/>",
                        "<?xml version=\"1.0\"^?>\n<a/>"};

void ForEachFilledPlace(const Use& use) {
    static constexpr std::string_view kMarks = "<>/?!-&;\"'= \n\r\tab:_.1#[]x";
    for (const std::string_view place : kPlaces) {
        const std::size_t at = place.find('^');
        const auto fill = [&](const std::string& text) {
            use(std::string(place.substr(0, at)).append(text).append(place.substr(at + 1)));
        };
        fill("");
        for (char character = 1; character > 0; character = static_cast<char>(character + 1)) {
            fill(std::string(1, character));
            if (character == 0x7F) break;
        }
        for (const char first : kMarks) {
            for (const char second : kMarks)
                fill({first, second});
        }
    }
}

}  // namespace

void ForEachSmallDocument(const Use& use) {
    ForEachRow(kNodes, 3, "", "", use);
    ForEachRow(kFewNodes, 5, "", "", use);
    ForEachRow(kContent, 3, "<a>", "</a>", use);
    ForEachRow(kInTag, 3, "<a", "/>", use);
    ForEachRow(kInTag, 1, "<a", "></a>", use);
    ForEachRow(kInDeclaration, 3, "<?xml", "?>\n<a/>", use);
    ForEachFilledPlace(use);
}

}  // namespace opinion
