#include "mox_xmlApi/platform/random_key.h"

#include <chrono>
#include <exception>
#include <random>

namespace mox {
namespace {

std::uint64_t Mix(std::uint64_t bits) noexcept {
    bits = (bits ^ (bits >> 32)) * 0xD6E8FEB86659FD93U;
    bits = (bits ^ (bits >> 32)) * 0xD6E8FEB86659FD93U;
    return bits ^ (bits >> 32);
}

// What differs from one process to the next without any help: the time, and where the system has put things.
std::uint64_t TimeAndPlaces() noexcept {
    const int onStack = 0;
    const auto time = std::chrono::steady_clock::now().time_since_epoch().count();
    const auto date = std::chrono::system_clock::now().time_since_epoch().count();
    std::uint64_t bits = Mix(static_cast<std::uint64_t>(time));
    bits = Mix(bits ^ static_cast<std::uint64_t>(date));
    bits = Mix(bits ^ reinterpret_cast<std::uintptr_t>(&onStack));
    return Mix(bits ^ reinterpret_cast<std::uintptr_t>(&ProcessHashKey));
}

// 0 where there are none.
std::uint64_t RandomBits() noexcept {
    try {
        std::random_device device;
        return (std::uint64_t{device()} << 32) ^ device();
    } catch (const std::exception&) {
        return 0;
    }
}

HashKey MakeKey() noexcept {
    const std::uint64_t weak = TimeAndPlaces();
    return {weak ^ RandomBits(), (Mix(weak + 1) ^ RandomBits()) | 1};
}

}  // namespace

HashKey ProcessHashKey() noexcept {
    static const HashKey key = MakeKey();
    return key;
}

}  // namespace mox
