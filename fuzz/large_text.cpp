#include "fuzz/large_text.h"

#include <algorithm>

#include "fuzz/fixed_key.h"
#include "fuzz/fuzz_input.h"

#if !defined(_WIN32)
#include <pthread.h>
#endif

namespace mox::fuzz {
namespace {

constexpr char kRepeat = 0x11;
constexpr char kEnd = 0x12;
constexpr char kNewName = 0x13;
constexpr char kCollidingName = 0x14;

std::string NewName(std::size_t number) {
    constexpr std::size_t kLetters = 26;
    std::string name;
    for (std::size_t left = number + 1; left > 0; left = (left - 1) / kLetters)
        name.insert(name.begin(), static_cast<char>('A' + (left - 1) % kLetters));
    return name;
}

std::size_t CountOf(char byte) {
    if (byte >= '0' && byte <= '9') return std::size_t{1} << (2 * (byte - '0'));
    return static_cast<unsigned char>(byte);
}

}  // namespace

std::string Expand(std::string_view description, std::size_t most) {
    std::string text;
    while (!description.empty() && text.size() < most) {
        const char first = description.front();
        description.remove_prefix(1);
        if (first != kRepeat || description.empty()) {
            text += first;
            continue;
        }
        const std::size_t count = CountOf(description.front());
        const std::string_view pattern = description.substr(1, description.find(kEnd) - 1);
        description.remove_prefix(std::min(description.size(), pattern.size() + 2));
        for (std::size_t i = 0; i < count && text.size() < most && !pattern.empty(); ++i) {
            for (const char byte : pattern) {
                if (byte == kNewName) {
                    text += NewName(i);
                } else if (byte == kCollidingName) {
                    text += NameOfSameSlot(i);
                } else {
                    text += byte;
                }
            }
        }
    }
    text.resize(std::min(text.size(), most));
    return text;
}

std::size_t DepthBelow(const XmlNode& top) {
    std::size_t deepest = 0;
    std::size_t depth = 0;
    for (const XmlNode* node = &top;;) {
        if (node->children.First() != nullptr) {
            node = node->children.First();
            deepest = std::max(deepest, ++depth);
            continue;
        }
        while (node != &top && node->next == nullptr) {
            node = node->parent;
            --depth;
        }
        if (node == &top) return deepest;
        node = node->next;
    }
}

#if defined(_WIN32)

void WithLargeStack(const std::function<void()>& work) {
    work();
}

#else

void WithLargeStack(const std::function<void()>& work) {
    constexpr std::size_t kStack = std::size_t{1} << 30;  // the system gives what is used of it
    const auto run = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_t thread{};
    std::function<void()> copy = work;
    pthread_attr_init(&attributes);
    const bool isStarted = pthread_attr_setstacksize(&attributes, kStack) == 0 &&
                           pthread_create(&thread, &attributes, run, &copy) == 0;
    pthread_attr_destroy(&attributes);
    Check(isStarted, "a thread with a large stack can be started");
    pthread_join(thread, nullptr);
}

#endif

}  // namespace mox::fuzz
