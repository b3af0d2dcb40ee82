// Random sequences of calls over both families, each answer, record and saved file compared with those of a
// model.
//
//   host_tests --gtest_filter=RandomCalls.* [--random-seed=<first>] [--random-count=<how many>]
//
// A sequence that fails is printed in its shortest form; its seed alone gives it again.
#include <array>
#include <gtest/gtest.h>
#include <iostream>

#include "tests/host/model/runner_support.h"
#include "tests/host/random_options_support.h"

namespace host {
namespace {

using model::Sequence;

bool Fails(const Sequence& sequence) {
    return !model::Run(sequence).agreed;
}

TEST(RandomCalls, LibraryAndModelAgree) {
    const RandomOptions& options = GetRandomOptions();
    std::uint64_t calls = 0;
    for (std::uint64_t i = 0; i < options.count; ++i) {
        const std::uint64_t seed = options.seed + i;
        const Sequence sequence = model::RandomSequence(seed);
        const model::Outcome outcome = model::Run(sequence);
        calls += static_cast<std::uint64_t>(outcome.calls);
        ASSERT_TRUE(outcome.agreed) << "seed " << seed << "\n"
                                    << model::Run(model::Shortest(sequence, Fails)).story;
    }
    // A run that does nothing would agree as well.
    EXPECT_GE(calls, 10 * options.count);
    std::cout << "random calls: seeds " << options.seed << " to " << options.seed + options.count - 1 << ", "
              << calls << " calls\n";
}

TEST(RandomCalls, SameSeedGivesTheSameSequence) {
    EXPECT_EQ(model::Run(model::RandomSequence(7)).story, model::Run(model::RandomSequence(7)).story);
    EXPECT_NE(model::Run(model::RandomSequence(7)).story, model::Run(model::RandomSequence(8)).story);
}

TEST(RandomCalls, FailingSequenceIsShortenedToWhatMatters) {
    // Stands for a library that goes wrong when a removal follows an addition to a table whose document has
    // part 11.
    const auto fails = [](const Sequence& sequence) {
        bool added = false;
        bool wrong = false;
        for (const model::Call& call : sequence.calls) {
            added = added || (call.op == model::Op::Add && call.picks[3] % 6 == 1);
            wrong = wrong || (added && call.op == model::Op::RemoveAll);
        }
        for (const unsigned part : sequence.table) {
            if (part == 11) return wrong;
        }
        return false;
    };
    Sequence sequence = model::RandomSequence(1);
    sequence.table.insert(sequence.table.begin(), 11);
    sequence.calls.push_back({model::Op::Add, {1, 2, 3, 7, 5}});
    sequence.calls.push_back({model::Op::Get, {1, 2, 3}});
    sequence.calls.push_back({model::Op::RemoveAll, {1}});
    ASSERT_TRUE(fails(sequence));

    const Sequence shortest = model::Shortest(sequence, fails);
    EXPECT_TRUE(fails(shortest));
    EXPECT_EQ(shortest.root, 0U);
    EXPECT_TRUE(shortest.settings.empty());
    EXPECT_EQ(shortest.table, std::vector<unsigned>{11});
    ASSERT_EQ(shortest.calls.size(), 2U);
    EXPECT_EQ(shortest.calls[0].op, model::Op::Add);
    std::array<unsigned, 18> picks{};
    picks[3] = 7;
    if (shortest.calls[0].picks != picks)
        picks[3] = shortest.calls[0].picks[3];  // an earlier addition will do
    EXPECT_EQ(shortest.calls[0].picks, picks);
    EXPECT_EQ(shortest.calls[1].op, model::Op::RemoveAll);
    EXPECT_EQ(shortest.calls[1].picks, (std::array<unsigned, 18>{}));
}

}  // namespace
}  // namespace host
