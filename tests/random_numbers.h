// A source of numbers that gives the same sequence for the same seed, with every compiler and on every system.
#ifndef MOX_XMLAPI_TESTS_RANDOM_NUMBERS_H
#define MOX_XMLAPI_TESTS_RANDOM_NUMBERS_H

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace mox::test {

class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    // A number from 0 to count - 1; `count` is not 0.
    std::size_t Below(std::size_t count) { return static_cast<std::size_t>(Next() % count); }
    bool OneIn(std::size_t count) { return Below(count) == 0; }

    template <class List>
    const auto& Pick(const List& list) {
        return *std::next(std::begin(list), static_cast<std::ptrdiff_t>(Below(std::size(list))));
    }

  private:
    std::uint64_t Next() {
        state_ += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = (state_ ^ (state_ >> 30)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31);
    }

    std::uint64_t state_;
};

}  // namespace mox::test

#endif
