#include "tools/nearest_words.h"

#include <algorithm>
#include <cstddef>

namespace mox::tool {
namespace {

char LowerCase(char character) noexcept {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

// The smallest number of typing errors between two short words.
std::size_t Distance(std::string_view a, std::string_view b) {
    // row[j]: the distance of the first i bytes of a to the first j of b
    std::vector<std::size_t> beforeLast(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        beforeLast.swap(last);
        last.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t wrong = LowerCase(a[i - 1]) == LowerCase(b[j - 1]) ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + wrong});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row[b.size()];
}

}  // namespace

std::vector<std::string> NearestWords(std::string_view word, const std::vector<std::string>& words) {
    std::vector<std::string> nearest;
    if (word.size() >= 3) {
        std::copy_if(words.begin(), words.end(), std::back_inserter(nearest),
                     [word](const std::string& known) { return known.rfind(word, 0) == 0; });
        if (!nearest.empty()) return nearest;
    }
    std::size_t fewest = 1 + word.size() / 5;
    for (const std::string& known : words) {
        if (known.size() > word.size() + fewest || word.size() > known.size() + fewest) continue;
        const std::size_t distance = Distance(word, known);
        if (distance > fewest || distance >= word.size()) continue;
        if (distance < fewest) nearest.clear();
        fewest = distance;
        nearest.push_back(known);
    }
    return nearest;
}

std::string NearestText(const std::vector<std::string>& nearest) {
    std::string text;
    for (std::size_t i = 0; i < nearest.size(); ++i) {
        const bool isLast = i + 1 == nearest.size();
        text += i == 0 ? (isLast ? "; the nearest is " : "; the nearest are ") : (isLast ? " and " : ", ");
        text += nearest[i];
    }
    return text;
}

}  // namespace mox::tool
