// One document as the library reads it and as libxml2 reads it, in one form that can be compared.
#ifndef MOX_XMLAPI_TESTS_SECOND_OPINION_READINGS_SUPPORT_H
#define MOX_XMLAPI_TESTS_SECOND_OPINION_READINGS_SUPPORT_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace opinion {

// An element, a comment, or the document itself, which has children alone. Texts are UTF-8.
struct Node {
    bool comment = false;
    std::string name{};
    std::vector<std::pair<std::string, std::string>> attributes{};
    // Of a comment: its text. Of an element: its texts between its children as XML has them, one for each place that
    // has any; the library has one at most.
    std::vector<std::string> texts{};
    std::vector<Node> children{};

    friend bool operator==(const Node&, const Node&) = default;
};

struct Reading {
    bool accepted = false;
    int error = 0;  // libxml2's code of what was refused first
    Node document{};
};

// Both take the document's bytes; the library reads up to the first zero.
Reading ReadByLibrary(std::string_view bytes);
Reading ReadByLibxml2(std::string_view bytes);

// What was read in one line: name{attribute='text' ...}'text'(child child ...), where parts that are empty are left
// out; each text of an element stands in quotes of its own; a comment is !'text'. "refused" for what was refused,
// "nothing" for a document without nodes.
std::string Shown(const Reading& reading);

// The UTF-8 text as it is read when each of its bytes is taken for a unit, sign and all.
std::string WithBytesAsUnits(std::string_view text);

// The text in printable ASCII: \n, \r, \t, \\ and \xNN stand for what is not, and back.
std::string Escaped(std::string_view text);
std::string Unescaped(std::string_view text);

}  // namespace opinion

#endif
