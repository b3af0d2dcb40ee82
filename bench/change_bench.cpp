// Writing, adding and deleting keys by name.
#include <algorithm>

#include "bench/suite.h"

namespace bench {
namespace {

// New values for the same keys; in turns longer and shorter than those before.
std::vector<Query> WithValues(std::vector<Query> queries, const std::string& value) {
    for (Query& query : queries)
        query = MakeQuery(query.section, query.key, value + query.key.substr(0, 3));
    return queries;
}

// The batches write two sets of values in turn, so that each write changes something.
Participant Updates(std::shared_ptr<Contestant> contestant, const std::vector<Query>& queries) {
    const Workload first = StringWorkload(WithValues(queries, "changed to "));
    const Workload second = StringWorkload(WithValues(queries, "and back "));
    const std::size_t probe = std::min<std::size_t>(queries.size(), 32);
    const auto batch = [contestant, first, second, probe, odd = false]() mutable {
        odd = !odd;
        const std::vector<Query>& values = odd ? *first.queries : *second.queries;
        Stopwatch watch;
        watch.Start();
        contestant->Update(values);
        watch.Stop();
        const std::vector<Query> some(values.end() - static_cast<std::ptrdiff_t>(probe), values.end());
        Check(contestant->ReadStrings(some) == StringWorkload(some).expected,
              contestant->Name() + " did not write what it said");
        return watch.Seconds();
    };
    return {contestant->Name(), batch, static_cast<double>(queries.size())};
}

// The same keys for all, and a few for one that scans a hundred thousand keys, as in the reads.
void RunUpdate(Suite& suite, const DocumentShape& shape, const std::vector<Target>& targets) {
    const DocumentFiles files(shape, {false, true});
    const std::vector<Query> queries = SampleQueries(shape, suite.Quick() ? 512 : 4096);
    const std::vector<Query> scanned = SampleQueries(shape, shape.keys > 10000 ? 128 : queries.size());
    Row row{"write existing key", ShapeName(shape), {}, targets};
    for (auto& contestant : Loaded({MakeOurs, MakeGKeyFile, MakeSimpleIni}, files.Files()))
        row.participants.push_back(Updates(std::move(contestant), queries));
    for (auto& contestant : Loaded({MakePugixml}, files.Files()))
        row.participants.push_back(Updates(std::move(contestant), scanned));
    suite.Add(row);
}

// Loads the document, does one thing to it, and counts the keys that a section has then.
template <class Work>
Participant Changes(Make make, const DocumentFiles& files, const Query& section, std::size_t left,
                    std::size_t operations, Work work) {
    std::shared_ptr<Contestant> contestant = make();
    const auto batch = [contestant, &files, section, left, work] {
        contestant->Load(files.Files(), false);
        Stopwatch watch;
        watch.Start();
        work(*contestant);
        watch.Stop();
        const std::size_t count = contestant->Count(section);
        contestant->Release();
        Check(count == left, contestant->Name() + " left " + std::to_string(count) + " keys");
        return watch.Seconds();
    };
    return {contestant->Name(), batch, static_cast<double>(operations)};
}

void RunAppend(Suite& suite) {
    const std::size_t count = suite.Quick() ? 1000 : 100000;
    const DocumentFiles files({4, 5}, {false, true});
    const auto queries = std::make_shared<std::vector<Query>>(NewQueries("New", count));
    Row row{"append to a new section",
            std::to_string(count) + " keys",
            {},
            {{"GKeyFile", 1.0, 1.6}, {"SimpleIni", 0.4, 1}}};
    for (const Make make : {MakeOurs, MakeGKeyFile, MakeSimpleIni}) {
        row.participants.push_back(
            Changes(make, files, queries->front(), count, count,
                    [queries](Contestant& contestant) { contestant.Append(*queries); }));
    }
    suite.Add(row);
}

// GKeyFile and pugixml walk to each key that they delete: with a hundred thousand of them they would take all day.
void RunDelete(Suite& suite, std::size_t keys, const Target& target) {
    const DocumentShape shape{1, keys};
    const DocumentFiles files(shape, {false, true});
    for (const bool mixed : {true, false}) {
        const auto queries = std::make_shared<std::vector<Query>>(SampleQueries(shape, shape.keys, mixed));
        Row row{mixed ? "delete by name, mixed order" : "delete by name, document order",
                std::to_string(shape.keys) + " keys",
                {},
                {target}};
        std::vector<Make> makers{MakeOurs, MakeSimpleIni};
        if (keys <= 10000) makers.insert(makers.end(), {MakeGKeyFile, MakePugixml});
        for (const Make make : makers) {
            row.participants.push_back(
                Changes(make, files, queries->front(), 0, shape.keys,
                        [queries](Contestant& contestant) { contestant.Delete(*queries); }));
        }
        suite.Add(row);
    }
}

void RunEmpty(Suite& suite) {
    const DocumentShape shape{1, suite.Quick() ? 1000U : 100000U};
    const DocumentFiles files(shape, {false, true});
    const Query section = SampleQueries(shape, 1).front();
    Row row{"empty a table", std::to_string(shape.keys) + " entries", {}, {{"SimpleIni", 1.0, 3}}};
    // The others throw the section away as a whole.
    row.participants.push_back(Changes(MakeOurs, files, section, 0, 1,
                                       [section](Contestant& contestant) { contestant.Empty(section); }));
    for (const Make make : {MakeSimpleIni, MakePugixml}) {
        row.participants.push_back(Changes(make, files, section, 0, 1,
                                           [section](Contestant& contestant) { contestant.Empty(section); }));
    }
    suite.Add(row);
}

}  // namespace

void RunChange(Suite& suite) {
    if (suite.Wants("write existing key")) {
        const std::vector<Target> targets{{"GKeyFile", 1.1, 1.6}};
        RunUpdate(suite, {50, 40}, targets);
        RunUpdate(suite, {1, suite.Quick() ? 1000U : 100000U}, targets);
    }
    if (suite.Wants("append to a new section")) RunAppend(suite);
    if (suite.Wants("delete by name")) {
        RunDelete(suite, 1000, {"SimpleIni", 0.9, 1.2});
        if (!suite.Quick()) {
            RunDelete(suite, 10000, {"SimpleIni", 0.4, 1.2});
            RunDelete(suite, 100000, {"SimpleIni", 0.3, 1.2});
        }
    }
    if (suite.Wants("empty a table")) RunEmpty(suite);
}

}  // namespace bench
