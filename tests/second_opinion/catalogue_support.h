// All small documents of certain shapes.
#ifndef MOX_XMLAPI_TESTS_SECOND_OPINION_CATALOGUE_SUPPORT_H
#define MOX_XMLAPI_TESTS_SECOND_OPINION_CATALOGUE_SUPPORT_H

#include <functional>
#include <string>

namespace opinion {

// Calls `use` with every document of the catalogue: all rows of up to so many tokens at the top level, inside an
// element, inside a tag, inside a declaration; and every 7-bit character and every pair of those that mean something
// at each place of a small document.
void ForEachSmallDocument(const std::function<void(const std::string&)>& use);

}  // namespace opinion

#endif
