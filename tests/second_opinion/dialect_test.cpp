// Documents in the dialect have the same elements, attributes and texts for libxml2 as for the library, and documents
// near it differ only as listed.
#include <gtest/gtest.h>
#include <iostream>

#include "tests/second_opinion/dialect_support.h"
#include "tests/second_opinion/kinds_support.h"
#include "tests/second_opinion/readings_support.h"

namespace opinion {
namespace {

TEST(Dialect, ReadsTheSameAsXml) {
    RandomDocuments documents(RandomSeed());
    for (std::uint64_t i = 0; i < RandomCount(); ++i) {
        const std::string document = documents.Next();
        const Comparison comparison = ExpectListed(document);
        ASSERT_TRUE(comparison.byLibrary && comparison.byLibxml2) << Escaped(document);
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}

TEST(Dialect, DamagedDocumentsDifferOnlyAsListed) {
    RandomDocuments documents(RandomSeed());
    std::uint64_t byLibrary = 0;
    std::uint64_t byLibxml2 = 0;
    const std::uint64_t count = 4 * RandomCount();
    for (std::uint64_t i = 0; i < count; ++i) {
        const Comparison comparison = ExpectListed(documents.NextDamaged());
        ASSERT_FALSE(testing::Test::HasFailure());
        byLibrary += comparison.byLibrary ? 1 : 0;
        byLibxml2 += comparison.byLibxml2 ? 1 : 0;
    }
    std::cout << "damaged documents: " << count << ", accepted by the library: " << byLibrary
              << ", by libxml2: " << byLibxml2 << "\n";
    EXPECT_GT(byLibrary, count / 20);
    EXPECT_GT(byLibxml2, count / 20);
    EXPECT_LT(byLibrary, count);
    EXPECT_LT(byLibxml2, count);
}

}  // namespace
}  // namespace opinion
