// Whether the tests run under AddressSanitizer. It makes memory slow and scarce, and refuses large blocks by ending the
// process: tests that take their time or a lot of memory do less then.
#ifndef MOX_XMLAPI_TESTS_SANITIZED_BUILD_H
#define MOX_XMLAPI_TESTS_SANITIZED_BUILD_H

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool kIsSanitized = true;
#else
inline constexpr bool kIsSanitized = false;
#endif
#else
inline constexpr bool kIsSanitized = false;
#endif

#endif
