// Random sequences of calls over both families, each answer, record and saved file compared with those of a
// model.
//
//   host_tests --gtest_filter=RandomCalls.* [--random-seed=<first>] [--random-count=<how many>]
//
// A sequence that fails is printed in its shortest form; its seed alone gives it again.
#include <array>
#include <gtest/gtest.h>
#include <iostream>

#include "tests/host/random_calls/options_support.h"
#include "tests/host/random_calls/run_support.h"

namespace host {
namespace {

using random_calls::Sequence;

bool Fails(const Sequence& sequence) {
    return !random_calls::Run(sequence).agreed;
}

TEST(RandomCalls, LibraryAndModelAgree) {
    const RandomOptions& options = GetRandomOptions();
    std::uint64_t calls = 0;
    for (std::uint64_t i = 0; i < options.count; ++i) {
        const std::uint64_t seed = options.seed + i;
        const Sequence sequence = random_calls::RandomSequence(seed);
        const random_calls::Outcome outcome = random_calls::Run(sequence);
        calls += static_cast<std::uint64_t>(outcome.calls);
        ASSERT_TRUE(outcome.agreed) << "seed " << seed << "\n"
                                    << random_calls::Run(random_calls::Shortest(sequence, Fails)).log;
    }
    // A run that does nothing would agree as well.
    EXPECT_GE(calls, 10 * options.count);
    std::cout << "random calls: seeds " << options.seed << " to " << options.seed + options.count - 1 << ", "
              << calls << " calls\n";
}

TEST(RandomCalls, SameSeedGivesTheSameSequence) {
    EXPECT_EQ(random_calls::Run(random_calls::RandomSequence(7)).log,
              random_calls::Run(random_calls::RandomSequence(7)).log);
    EXPECT_NE(random_calls::Run(random_calls::RandomSequence(7)).log,
              random_calls::Run(random_calls::RandomSequence(8)).log);
}

TEST(RandomCalls, FailingSequenceIsShortenedToWhatMatters) {
    // Stands for a library that goes wrong when a removal follows an addition to a table whose document has
    // part 11.
    const auto fails = [](const Sequence& sequence) {
        bool added = false;
        bool wrong = false;
        for (const random_calls::Call& call : sequence.calls) {
            added = added || (call.op == random_calls::Op::Add && call.picks[3] % 6 == 1);
            wrong = wrong || (added && call.op == random_calls::Op::RemoveAll);
        }
        for (const unsigned part : sequence.table) {
            if (part == 11) return wrong;
        }
        return false;
    };
    Sequence sequence = random_calls::RandomSequence(1);
    sequence.table.insert(sequence.table.begin(), 11);
    sequence.calls.push_back({random_calls::Op::Add, {1, 2, 3, 7, 5}});
    sequence.calls.push_back({random_calls::Op::Get, {1, 2, 3}});
    sequence.calls.push_back({random_calls::Op::RemoveAll, {1}});
    ASSERT_TRUE(fails(sequence));

    const Sequence shortest = random_calls::Shortest(sequence, fails);
    EXPECT_TRUE(fails(shortest));
    EXPECT_EQ(shortest.root, 0U);
    EXPECT_TRUE(shortest.settings.empty());
    EXPECT_EQ(shortest.table, std::vector<unsigned>{11});
    ASSERT_EQ(shortest.calls.size(), 2U);
    EXPECT_EQ(shortest.calls[0].op, random_calls::Op::Add);
    std::array<unsigned, 18> picks{};
    picks[3] = 7;
    if (shortest.calls[0].picks != picks)
        picks[3] = shortest.calls[0].picks[3];  // an earlier addition will do
    EXPECT_EQ(shortest.calls[0].picks, picks);
    EXPECT_EQ(shortest.calls[1].op, random_calls::Op::RemoveAll);
    EXPECT_EQ(shortest.calls[1].picks, (std::array<unsigned, 18>{}));
}

}  // namespace
}  // namespace host
