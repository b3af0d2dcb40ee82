// Work on a thread that has little stack.
#ifndef MOX_XMLAPI_TESTS_LIMITS_SMALL_STACK_SUPPORT_H
#define MOX_XMLAPI_TESTS_LIMITS_SMALL_STACK_SUPPORT_H

#include <cstddef>
#include <functional>

namespace limits {

inline constexpr std::size_t kSmallStack = std::size_t{256} * 1024;

// Runs the work on a thread with a stack of kSmallStack bytes and waits for its end. False when there could
// be no such thread. The work does not throw.
bool RunOnSmallStack(std::function<void()> work);

}  // namespace limits

#endif
