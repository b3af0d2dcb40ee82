#include "tests/limits/small_stack_support.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <pthread.h>
#endif

namespace limits {

#ifdef _WIN32
namespace {

DWORD WINAPI Run(void* work) {
    (*static_cast<std::function<void()>*>(work))();
    return 0;
}

}  // namespace

bool RunOnSmallStack(std::function<void()> work) {
    HANDLE thread =
        CreateThread(nullptr, kSmallStack, &Run, &work, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread == nullptr) return false;
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    return true;
}

#else
namespace {

void* Run(void* work) {
    (*static_cast<std::function<void()>*>(work))();
    return nullptr;
}

}  // namespace

bool RunOnSmallStack(std::function<void()> work) {
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return false;
    pthread_t thread{};
    const bool started = pthread_attr_setstacksize(&attributes, kSmallStack) == 0 &&
                         pthread_create(&thread, &attributes, &Run, &work) == 0;
    pthread_attr_destroy(&attributes);
    return started && pthread_join(thread, nullptr) == 0;
}

#endif

}  // namespace limits
