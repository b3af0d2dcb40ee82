// instruction_ops
//
// Runs a fixed list of operations under callgrind, which writes one file per operation: the instructions that
// it took, named as "<operation>|<how often it was done>". Everything around an operation is not counted.
// Without callgrind it does the same and counts nothing. Ends with 1 when an operation gives a wrong result.
#include <cstdio>
#include <exception>
#include <functional>
#include <valgrind/callgrind.h>

#include "bench/contestant.h"
#include "bench/document_files.h"
#include "mox_host/mox_host.h"
#include "mox_xmlApi/mox_xmlApi.hpp"

namespace bench {
namespace {

void CountInstructions(const std::string& operation, std::size_t times, const std::function<void()>& work) {
    const std::string label = operation + '|' + std::to_string(times);
    CALLGRIND_ZERO_STATS;
    work();
    CALLGRIND_DUMP_STATS_AT(label.c_str());
    std::printf("%s\n", label.c_str());
}

Sum ExpectedOf(const std::vector<Query>& queries) {
    Sum sum = 0;
    for (const Query& query : queries)
        sum += SumOf(std::string_view(query.value));
    return sum;
}

// Loading, saving and releasing: the first time, which also sets up what the libraries below set up once,
// does not count.
void CountWhole(const DocumentShape& shape, bool wide) {
    const DocumentFiles files(shape);
    const std::string kind = ShapeName(shape) + (wide ? ", wide" : ", narrow");
    const std::vector<Query> queries = SampleQueries(shape, 50);
    const std::string path = files.Folder().File("saved");
    const auto ours = MakeOurs();
    for (const bool counted : {false, true}) {
        const auto count = [&](const std::string& operation, const std::function<void()>& work) {
            if (counted) {
                CountInstructions(operation + ' ' + kind, 1, work);
            } else {
                work();
            }
        };
        count("load", [&] { ours->Load(files.Files(), wide); });
        Check(ours->ReadStrings(queries) == ExpectedOf(queries), "loaded other values");
        count("save", [&] { ours->Save(path, wide); });
        Check(ReadFile(path).size() == (files.Xml().size() + 1) * (wide ? 2 : 1), "saved another size");
        count("release", [&] { ours->Release(); });
    }
}

void CountReads(const DocumentShape& shape) {
    const DocumentFiles files(shape, {false, false});
    const auto ours = MakeOurs();
    ours->Load(files.Files(), false);
    const std::vector<Query> queries = SampleQueries(shape, 500);
    const std::vector<Query> numbers = SampleNumbers(shape, 500);
    Sum sum = ours->ReadStrings(queries);
    for (int pass = 0; pass < 9; ++pass)
        Check(ours->ReadStrings(queries) == sum, "reads differ");
    Check(sum == ExpectedOf(queries), "read other values");

    CountInstructions("get string " + ShapeName(shape), queries.size(),
                      [&] { sum = ours->ReadStrings(queries); });
    Check(sum == ExpectedOf(queries), "read other values");
    CountInstructions("get integer " + ShapeName(shape), numbers.size(),
                      [&] { sum = ours->ReadNumbers(numbers); });
    Sum expected = 0;
    for (const Query& query : numbers)
        expected += static_cast<Sum>(std::stoll(query.value));
    Check(sum == expected, "read other numbers");
}

// The same reads through the classes of the C++ front, with UTF-8 texts.
void CountFrontReads(const DocumentShape& shape) {
    const DocumentFiles files(shape, {false, false});
    const auto profile = mox::Profile::parse(files.Xml());
    Check(profile.has_value(), "the document does not parse");
    const std::vector<Query> queries = SampleQueries(shape, 500);
    const auto read = [&] {
        Sum sum = 0;
        for (const Query& query : queries)
            sum += SumOf(std::string_view(*profile->getString(query.section, query.key)));
        return sum;
    };
    for (int pass = 0; pass < 10; ++pass)
        Check(read() == ExpectedOf(queries), "read other values");
    Sum sum = 0;
    CountInstructions("get string through the C++ front " + ShapeName(shape), queries.size(),
                      [&] { sum = read(); });
    Check(sum == ExpectedOf(queries), "read other values");
}

// Writes and enumerations by the C++ front, and all three by mox_host, which is built on it.
void CountHost(const DocumentShape& shape) {
    const DocumentFiles files(shape, {false, false});
    auto profile = mox::Profile::parse(files.Xml());
    Check(profile.has_value(), "the document does not parse");
    mox_document* host = nullptr;
    Check(mox_parse(files.Xml().data(), files.Xml().size(), MOX_SETTINGS, nullptr, &host, nullptr) == MOX_OK,
          "the document does not parse");
    const std::vector<Query> queries = SampleQueries(shape, 500);
    const std::string section = queries.front().section;
    Sum sum = 0;
    const auto readByHost = [&] {
        char text[256];
        size_t size = 0;
        sum = 0;
        for (const Query& query : queries) {
            mox_get_text(host, query.section.data(), query.section.size(), query.key.data(), query.key.size(),
                         text, sizeof text, &size, nullptr);
            sum += SumOf(std::string_view(text, size));
        }
    };
    const auto writeByFront = [&] {
        for (const Query& query : queries)
            Check(profile->set(query.section, query.key, query.value), "not written");
    };
    const auto writeByHost = [&] {
        for (const Query& query : queries)
            Check(mox_set_text(host, query.section.data(), query.section.size(), query.key.data(),
                               query.key.size(), query.value.data(), query.value.size(), nullptr) == MOX_OK,
                  "not written");
    };
    const auto enumerateByFront = [&] {
        sum = 0;
        for (const mox::Entry& entry : profile->findSection(section)->entries())
            sum += entry.value->size();
    };
    const auto enumerateByHost = [&] {
        mox_list* list = nullptr;
        Check(mox_entries(host, section.data(), section.size(), &list, nullptr) == MOX_OK, "not listed");
        mox_entry entry{};
        entry.size = sizeof entry;
        sum = 0;
        for (size_t i = 0; i < mox_list_count(list); ++i) {
            Check(mox_list_entry(list, i, &entry) == MOX_OK, "not read");
            sum += entry.value_size;
        }
        mox_list_free(list);
    };
    for (int pass = 0; pass < 10; ++pass)
        readByHost();
    CountInstructions("get string through mox_host " + ShapeName(shape), queries.size(), readByHost);
    Check(sum == ExpectedOf(queries), "read other values");
    writeByFront();
    CountInstructions("write existing key through the C++ front " + ShapeName(shape), queries.size(),
                      writeByFront);
    writeByHost();
    CountInstructions("write existing key through mox_host " + ShapeName(shape), queries.size(), writeByHost);
    CountInstructions("enumerate entries through the C++ front " + ShapeName(shape), shape.keys,
                      enumerateByFront);
    const Sum expected = sum;
    CountInstructions("enumerate entries through mox_host " + ShapeName(shape), shape.keys, enumerateByHost);
    Check(sum == expected, "listed other values");
    mox_document_free(host);
}

void CountChanges() {
    const DocumentShape shape{1, 2000};
    const DocumentFiles files(shape, {false, false});
    const auto ours = MakeOurs();
    ours->Load(files.Files(), false);
    std::vector<Query> queries = SampleQueries(shape, shape.keys);
    for (Query& query : queries)
        query = MakeQuery(query.section, query.key, "changed");
    Check(ours->ReadStrings(queries) != ExpectedOf(queries), "the values were changed already");

    CountInstructions("write existing key 1 x 2000", queries.size(), [&] { ours->Update(queries); });
    Check(ours->ReadStrings(queries) == ExpectedOf(queries), "wrote other values");
    const std::vector<Query> added = NewQueries("New", 2000);
    CountInstructions("append 2000 keys to a new section", added.size(), [&] { ours->Append(added); });
    Check(ours->ReadStrings(added) == ExpectedOf(added), "appended other values");
    CountInstructions("enumerate 2000 entries with both records", shape.keys,
                      [&] { ours->Enumerate(queries.front()); });
    CountInstructions("delete 2000 keys by name, mixed order", queries.size(),
                      [&] { ours->Delete(queries); });
    Check(ours->Count(queries.front()) == 0, "deleted other keys");
    CountInstructions("empty a table of 2000 entries", 1, [&] { ours->Empty(added.front()); });
    Check(ours->Count(added.front()) == 0, "a table is not empty");
}

// The first look-up after loading must not cost more when more sections follow.
void CountFirstLookUp(const DocumentShape& shape) {
    const DocumentFiles files(shape, {false, false});
    const std::vector<Query> first = {SampleQueries(shape, shape.sections * shape.keys, false).front()};
    const auto ours = MakeOurs();
    ours->Load(files.Files(), false);
    Sum sum = 0;
    CountInstructions("first look-up " + ShapeName(shape), 1, [&] { sum = ours->ReadStrings(first); });
    Check(sum == ExpectedOf(first), "read another value");
}

void CountAll() {
    CountWhole({4, 5}, false);
    CountWhole({50, 40}, false);
    CountWhole({50, 40}, true);
    CountWhole({50, 40, true}, false);
    CountReads({4, 5});
    CountReads({50, 40});
    CountReads({1, 10000});
    CountFrontReads({50, 40});
    CountHost({50, 40});
    CountChanges();
    CountFirstLookUp({5, 20});
    CountFirstLookUp({500, 20});
}

}  // namespace
}  // namespace bench

int main() {
    try {
        bench::CountAll();
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "instruction_ops: %s\n", error.what());
        return 1;
    }
}
