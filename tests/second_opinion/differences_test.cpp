// The list of what differs between the library's dialect and XML is exact: every line shows its difference, and small
// documents of all shapes show no other.
#include <gtest/gtest.h>
#include <iostream>
#include <map>

#include "tests/second_opinion/catalogue_support.h"
#include "tests/second_opinion/kinds_support.h"
#include "tests/second_opinion/readings_support.h"

namespace opinion {
namespace {

TEST(Differences, EveryLineShowsItsOwn) {
    ASSERT_FALSE(ListedDifferences().empty());
    for (const Difference& difference : ListedDifferences()) {
        SCOPED_TRACE(difference.kind);
        EXPECT_EQ(Shown(ReadByLibrary(difference.sample)), difference.library);
        EXPECT_EQ(Shown(ReadByLibxml2(difference.sample)), difference.xml);
        const Comparison comparison = Compare(difference.sample);
        EXPECT_EQ(comparison.kinds, Kinds{difference.kind});
        EXPECT_EQ(comparison.unexplained, "");
    }
}

TEST(Differences, AreListedOnceEach) {
    EXPECT_EQ(ListedKinds().size(), ListedDifferences().size());
}

TEST(Differences, SmallDocumentsShowThoseOfTheListAndNoOther) {
    std::uint64_t documents = 0;
    std::uint64_t acceptedByBoth = 0;
    std::map<std::string, std::pair<std::uint64_t, std::string>> met;
    std::map<std::string, std::string> unexplained;
    ForEachSmallDocument([&](const std::string& document) {
        documents += 1;
        const Comparison comparison = Compare(document);
        acceptedByBoth += comparison.byLibrary && comparison.byLibxml2 ? 1 : 0;
        for (const std::string& kind : comparison.kinds) {
            auto& [count, shortest] = met[kind];
            if (count++ == 0 || document.size() < shortest.size()) shortest = document;
        }
        if (!comparison.unexplained.empty() && unexplained.size() < 20)
            unexplained.emplace(Escaped(document), comparison.unexplained);
    });
    for (const auto& [document, why] : unexplained)
        ADD_FAILURE() << document << ": " << why;
    for (const auto& [kind, count] : met) {
        EXPECT_EQ(ListedKinds().count(kind), 1U)
            << kind << " is not on the list: " << Escaped(count.second) << ", " << count.first << " times";
    }
    for (const std::string& kind : ListedKinds())
        EXPECT_EQ(met.count(kind), 1U) << kind << " is on the list and was never met";
    EXPECT_GT(acceptedByBoth, 1000U);
    std::cout << "small documents: " << documents << ", accepted by both: " << acceptedByBoth << "\n";
}

}  // namespace
}  // namespace opinion
