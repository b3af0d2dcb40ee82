// Reading all entries of a table with their values and their presentation data.
#include "bench/suite.h"

namespace bench {
namespace {

Sum ExpectedOf(const Entry& entry) {
    const auto sumOf = [](const std::string& text) { return SumOf(std::string_view(text)); };
    Sum sum = sumOf(entry.name) + entry.id + sumOf(entry.type) + sumOf(entry.value);
    if (!entry.hasUi) return sum;
    sum += sumOf(entry.control) + entry.provIndex + 1;  // the owner "app"
    return sum + sumOf(entry.shownName) + sumOf(entry.comment) + sumOf(entry.value);
}

Participant Enumerates(std::shared_ptr<Contestant> contestant, const DocumentShape& shape) {
    Sum expected = 0;
    for (std::size_t key = 0; key < shape.keys; ++key)
        expected += ExpectedOf(MakeEntry(shape, 0, key));
    const Query section = SampleQueries(shape, 1).front();
    const auto batch = [contestant, section, expected] {
        Stopwatch watch;
        watch.Start();
        const Sum sum = contestant->Enumerate(section);
        watch.Stop();
        Check(sum == expected, contestant->Name() + " enumerated other entries");
        return watch.Seconds();
    };
    return {contestant->Name(), batch, static_cast<double>(shape.keys)};
}

Participant EnumeratesSections(std::shared_ptr<Contestant> contestant, const DocumentShape& shape) {
    Sum expected = 0;
    for (std::size_t section = 0; section < shape.sections; ++section)
        expected += SumOf(std::string_view(SectionName(shape, section)));
    const auto batch = [contestant, expected] {
        Stopwatch watch;
        watch.Start();
        const Sum sum = contestant->EnumerateSections();
        watch.Stop();
        Check(sum == expected, contestant->Name() + " enumerated other sections");
        return watch.Seconds();
    };
    return {contestant->Name(), batch, static_cast<double>(shape.sections)};
}

void RunEnumerateSections(Suite& suite) {
    const DocumentShape shape{suite.Quick() ? 50U : 500U, 20};
    const DocumentFiles files(shape, {false, false});
    Row row{"enumerate sections", std::to_string(shape.sections) + " sections", {}, {{"pugixml", 0.6, 1.0}}};
    for (auto& contestant : Loaded({MakeOurs, MakePugixml}, files.Files()))
        row.participants.push_back(EnumeratesSections(std::move(contestant), shape));
    suite.Add(row);
}

}  // namespace

void RunEnumerate(Suite& suite) {
    if (suite.Wants("enumerate sections")) RunEnumerateSections(suite);
    if (!suite.Wants("enumerate with both records")) return;
    const DocumentShape shape{1, suite.Quick() ? 1000U : 100000U};
    const DocumentFiles files(shape, {false, false});
    Row row{
        "enumerate with both records", std::to_string(shape.keys) + " entries", {}, {{"pugixml", 0.75, 1.0}}};
    for (auto& contestant : Loaded({MakeOurs, MakePugixml}, files.Files()))
        row.participants.push_back(Enumerates(std::move(contestant), shape));
    suite.Add(row);
}

}  // namespace bench
