// Finds what somebody may have meant by a word that is not known.
#ifndef MOX_XMLAPI_TOOLS_NEAREST_WORDS_H
#define MOX_XMLAPI_TOOLS_NEAREST_WORDS_H

#include <string>
#include <string_view>
#include <vector>

namespace mox::tool {

// The words that are nearest to `word`, in the order of `words`: those that begin with it or, if there are none, those
// that the fewest typing errors lead to (a letter too many, missing, wrong, in the wrong case or exchanged with the
// next). Empty if none is near. Takes time only for words of about the same length.
std::vector<std::string> NearestWords(std::string_view word, const std::vector<std::string>& words);

// "", "; the nearest is get" or "; the nearest are entries and entry"
std::string NearestText(const std::vector<std::string>& nearest);

}  // namespace mox::tool

#endif
