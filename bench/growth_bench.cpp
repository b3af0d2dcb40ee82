// What one call or one byte costs in a large document, over what it costs in a small one.
#include <algorithm>

#include "bench/suite.h"

namespace bench {
namespace {

struct Sizes {
    std::size_t small;
    std::size_t large;
};

std::shared_ptr<Contestant> LoadOurs(const DocumentFiles& files) {
    std::shared_ptr<Contestant> contestant = MakeOurs();
    contestant->Load(files.Files(), false);
    return contestant;
}

Participant Gets(std::shared_ptr<Contestant> contestant, const DocumentShape& shape, std::size_t keys,
                 bool mixed) {
    const Workload work = StringWorkload(SampleQueries(shape, keys, mixed));
    const auto batch = [contestant, work] {
        Stopwatch watch;
        watch.Start();
        const Sum sum = contestant->ReadStrings(*work.queries);
        watch.Stop();
        Check(sum == work.expected, "other values in a document of another size");
        return watch.Seconds();
    };
    return {std::to_string(shape.keys) + " keys", batch, static_cast<double>(work.queries->size())};
}

Participant Updates(std::shared_ptr<Contestant> contestant, const DocumentShape& shape, std::size_t keys) {
    std::vector<Query> queries = SampleQueries(shape, keys);
    for (Query& query : queries)
        query = MakeQuery(query.section, query.key, "a new value");
    const Workload fresh = StringWorkload(std::move(queries));
    const Workload old = StringWorkload(SampleQueries(shape, keys));
    // Ends with the old values, which other measurements read.
    const auto batch = [contestant, fresh, old] {
        Stopwatch watch;
        watch.Start();
        contestant->Update(*fresh.queries);
        watch.Stop();
        Check(contestant->ReadStrings(*fresh.queries) == fresh.expected, "an update got lost");
        watch.Start();
        contestant->Update(*old.queries);
        watch.Stop();
        return watch.Seconds();
    };
    return {std::to_string(shape.keys) + " keys", batch, 2 * static_cast<double>(old.queries->size())};
}

// The new keys go away again, outside the time.
Participant Appends(std::shared_ptr<Contestant> contestant, const DocumentShape& shape) {
    const Workload work = StringWorkload(NewQueries(SectionName(shape, 0), 200));
    const auto batch = [contestant, work] {
        Stopwatch watch;
        watch.Start();
        contestant->Append(*work.queries);
        watch.Stop();
        Check(contestant->ReadStrings(*work.queries) == work.expected, "an appended key got lost");
        contestant->Delete(*work.queries);
        return watch.Seconds();
    };
    return {std::to_string(shape.keys) + " keys", batch, static_cast<double>(work.queries->size())};
}

void RunCalls(Suite& suite) {
    const Sizes sizes = suite.Quick() ? Sizes{100, 1000} : Sizes{1000, 1000000};
    const DocumentShape small{1, sizes.small};
    const DocumentShape large{1, sizes.large};
    const DocumentFiles smallFiles(small, {false, false});
    const DocumentFiles largeFiles(large, {false, false});
    const auto inSmall = LoadOurs(smallFiles);
    const auto inLarge = LoadOurs(largeFiles);
    const std::string subject = "per call, 1,000,000 keys : 1,000";
    const std::size_t same =
        sizes.small;  // as many different keys in both, so that they fit the caches alike
    suite.AddGrowth(subject, "get, 1,000 different keys, mixed order",
                    {Gets(inSmall, small, same, true), Gets(inLarge, large, same, true)}, 3);
    // More keys than the caches hold, one after the other and all over the document. Both show the
    // machine's memory, whatever the library does.
    const std::size_t many = std::min<std::size_t>(sizes.large, 65536);
    suite.AddGrowth(subject, "get, 65,536 different keys of the large one, document order",
                    {Gets(inSmall, small, same, false), Gets(inLarge, large, many, false)}, std::nullopt);
    suite.AddGrowth(subject, "get, 65,536 different keys of the large one, mixed order",
                    {Gets(inSmall, small, same, true), Gets(inLarge, large, many, true)}, std::nullopt);
    suite.AddGrowth(subject, "update, 1,000 different keys, mixed order",
                    {Updates(inSmall, small, same), Updates(inLarge, large, same)}, 3);
    suite.AddGrowth(subject, "append, 200 keys", {Appends(inSmall, small), Appends(inLarge, large)}, 3);
}

double SizeOf(const DocumentFiles& files, bool wide) {
    return static_cast<double>(files.Xml().size()) * (wide ? 2 : 1);
}

std::string Megabytes(double bytes) {
    return std::to_string(static_cast<int>(bytes / 1e6 + 0.5)) + " MB";
}

Participant LoadsPerByte(Make make, std::shared_ptr<DocumentFiles> files, bool wide, MemoryUse use) {
    const std::shared_ptr<Contestant> contestant = make();
    const auto batch = [contestant, files, wide, use] {
        ReturnMemory(use);
        Stopwatch watch;
        watch.Start();
        contestant->Load(files->Files(), wide);
        contestant->Release();
        watch.Stop();
        return watch.Seconds();
    };
    const double bytes = SizeOf(*files, wide);
    return {Megabytes(bytes), batch, bytes};
}

Participant SavesPerByte(Make make, std::shared_ptr<DocumentFiles> files, bool wide, MemoryUse use) {
    const std::shared_ptr<Contestant> contestant = make();
    contestant->Load(files->Files(), wide);
    const std::string path = files->Folder().File("saved");
    const double bytes = SizeOf(*files, wide);
    const auto batch = [contestant, path, wide, bytes, use] {
        ReturnMemory(use);
        Stopwatch watch;
        watch.Start();
        contestant->Save(path, wide);
        watch.Stop();
        Check(static_cast<double>(std::filesystem::file_size(path)) >= bytes, "saved too little");
        return watch.Seconds();
    };
    return {Megabytes(bytes), batch, bytes};
}

using FilesBySize = std::vector<std::shared_ptr<DocumentFiles>>;

// Sections of 200 keys that make about 1, 16 and 200 MB.
FilesBySize MakeFiles(const Suite& suite, bool wide) {
    FilesBySize files;
    for (const std::size_t megabytes : {1U, 16U, 200U}) {
        const DocumentShape shape{33 * megabytes / (wide ? 2 : 1), 200};
        if (!suite.Quick() || megabytes == 1)
            files.push_back(std::make_shared<DocumentFiles>(shape, DocumentFiles::Forms{wide, false}));
    }
    return files;
}

std::string NameOf(MemoryUse use) {
    switch (use) {
        case MemoryUse::FetchAll:
            return "all memory fetched from the system";
        case MemoryUse::KeepAll:
            return "memory that the process has";
        default:
            return "memory as malloc has it";
    }
}

void RunBytes(Suite& suite, Make make, const FilesBySize& files, bool wide, MemoryUse use) {
    const std::string form =
        (wide ? "wide, " : "narrow, ") + NameOf(use) + (make == MakeOurs ? "" : ", pugixml to compare");
    const std::optional<double> limit = make == MakeOurs ? std::optional<double>(1.5) : std::nullopt;
    std::vector<Participant> loads;
    for (const auto& file : files)
        loads.push_back(LoadsPerByte(make, file, wide, use));
    suite.AddGrowth("per byte, 200 MB : 1 MB", "load, " + form, std::move(loads), limit);
    std::vector<Participant> saves;
    for (const auto& file : files)
        saves.push_back(SavesPerByte(make, file, wide, use));
    suite.AddGrowth("per byte, 200 MB : 1 MB", "save, " + form, std::move(saves), limit);
}

// A look-up in the first section right after loading, in each of several documents.
Participant FirstLookUps(std::shared_ptr<DocumentFiles> files, const DocumentShape& shape,
                         std::size_t count) {
    const std::vector<Query> all = SampleQueries(shape, shape.sections * shape.keys, false);
    const Workload work = StringWorkload({all.front()});
    const auto batch = [files, work, count] {
        std::vector<std::shared_ptr<Contestant>> documents;
        for (std::size_t i = 0; i < count; ++i)
            documents.push_back(LoadOurs(*files));
        Stopwatch watch;
        watch.Start();
        Sum sum = 0;
        for (const auto& document : documents)
            sum += document->ReadStrings(*work.queries);
        watch.Stop();
        Check(sum == work.expected * count, "the first key has another value");
        return watch.Seconds();
    };
    return {std::to_string(shape.sections) + " sections", batch, static_cast<double>(count)};
}

// Both documents are larger than the caches, so that what was loaded first is no longer there in either. The time
// says how far it has been pushed out; that the look-up does no more work in the larger one, the count of instructions.
void RunFirstSection(Suite& suite) {
    const DocumentShape few{suite.Quick() ? 5U : 500U, 20};
    const DocumentShape many{suite.Quick() ? 20U : 2000U, 20};
    constexpr std::size_t kDocuments = 8;
    const DocumentFiles::Forms forms{false, false};
    suite.AddGrowth("per call, 2,000 sections : 500", "first look-up after loading, first section",
                    {FirstLookUps(std::make_shared<DocumentFiles>(few, forms), few, kDocuments),
                     FirstLookUps(std::make_shared<DocumentFiles>(many, forms), many, kDocuments)},
                    std::nullopt);
}

}  // namespace

void RunGrowth(Suite& suite) {
    if (suite.Wants("per call")) RunCalls(suite);
    if (suite.Wants("per call")) RunFirstSection(suite);
    if (!suite.Wants("per byte")) return;
    for (const bool wide : {false, true}) {
        const FilesBySize files = MakeFiles(suite, wide);
        RunBytes(suite, MakeOurs, files, wide, MemoryUse::AsMalloc);
        RunBytes(suite, MakePugixml, files, wide, MemoryUse::AsMalloc);
    }
}

void RunGrowthInMemory(Suite& suite, MemoryUse use) {
    UseMemory(use);
    if (!suite.Wants("per byte")) return;
    for (const bool wide : {false, true})
        RunBytes(suite, MakeOurs, MakeFiles(suite, wide), wide, use);
}

}  // namespace bench
