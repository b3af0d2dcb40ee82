// How long texts are compared.
#ifndef MOX_XMLAPI_TESTS_LIMITS_LONG_TEXTS_SUPPORT_H
#define MOX_XMLAPI_TESTS_LIMITS_LONG_TEXTS_SUPPORT_H

#include <gtest/gtest.h>

namespace limits {

// Whether two long texts are the same; they are not shown when they differ.
template <typename Text>
testing::AssertionResult SameLongText(const Text& actual, const Text& expected) {
    if (actual == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure() << actual.size() << " units, " << expected.size() << " expected";
}

}  // namespace limits

#endif
