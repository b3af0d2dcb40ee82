// mox_host, for hosts in any language, compared with the C++ front that it is built on.
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench/suite.h"
#include "mox_host/mox_host.h"
#include "mox_xmlApi/mox_xmlApi.hpp"

namespace bench {
namespace {

struct HostDocument {
    explicit HostDocument(const std::string& xml) {
        Check(mox_parse(xml.data(), xml.size(), MOX_SETTINGS, nullptr, &document, nullptr) == MOX_OK,
              "the document does not parse");
    }
    ~HostDocument() { mox_document_free(document); }
    HostDocument(const HostDocument&) = delete;
    HostDocument& operator=(const HostDocument&) = delete;

    mox_document* document = nullptr;
};

// Runs work() and checks its sum; `repeats` is how many operations it does.
Participant Does(const std::string& name, std::function<Sum()> work, Sum expected, std::size_t operations) {
    const auto batch = [name, work, expected] {
        Stopwatch watch;
        watch.Start();
        const Sum sum = work();
        watch.Stop();
        Check(sum == expected, name + " has other values");
        return watch.Seconds();
    };
    return {name, batch, static_cast<double>(operations)};
}

Sum ReadByHost(const mox_document* document, const std::vector<Query>& keys) {
    Sum sum = 0;
    char text[256];
    size_t size = 0;
    for (const Query& key : keys) {
        if (mox_get_text(document, key.section.data(), key.section.size(), key.key.data(), key.key.size(),
                         text, sizeof text, &size, nullptr) == MOX_OK)
            sum += SumOf(std::string_view(text, size));
    }
    return sum;
}

Sum ReadByFront(const mox::Profile& profile, const std::vector<Query>& keys) {
    Sum sum = 0;
    for (const Query& key : keys) {
        const auto value = profile.getString(key.section, key.key);
        if (value.has_value()) sum += SumOf(std::string_view(*value));
    }
    return sum;
}

Sum WriteByHost(mox_document* document, const std::vector<Query>& keys) {
    Sum written = 0;
    for (const Query& key : keys)
        written += mox_set_text(document, key.section.data(), key.section.size(), key.key.data(),
                                key.key.size(), key.value.data(), key.value.size(), nullptr) == MOX_OK;
    return written;
}

Sum WriteByFront(mox::Profile& profile, const std::vector<Query>& keys) {
    Sum written = 0;
    for (const Query& key : keys)
        written += profile.set(key.section, key.key, key.value) ? 1 : 0;
    return written;
}

Sum EnumerateByHost(const mox_document* document, const std::string& section) {
    Sum sum = 0;
    mox_list* list = nullptr;
    if (mox_entries(document, section.data(), section.size(), &list, nullptr) != MOX_OK) return sum;
    const size_t count = mox_list_count(list);
    mox_entry entry{};
    entry.size = sizeof entry;
    for (size_t i = 0; i < count; ++i) {
        if (mox_list_entry(list, i, &entry) != MOX_OK) break;
        sum += SumOf(std::string_view(entry.value, entry.value_size)) + entry.shown_name_size;
    }
    mox_list_free(list);
    return sum;
}

Sum EnumerateByFront(const mox::Profile& profile, const std::string& section) {
    Sum sum = 0;
    for (const mox::Entry& entry : profile.findSection(section)->entries()) {
        sum += SumOf(std::string_view(*entry.value));
        if (entry.ui.has_value()) sum += entry.ui->shownName.size();
    }
    return sum;
}

}  // namespace

void RunHost(Suite& suite) {
    if (!suite.Wants("mox_host: ")) return;
    const DocumentShape shape{50, 40};
    const DocumentFiles files(shape, {false, false});
    const auto host = std::make_shared<HostDocument>(files.Xml());
    const auto front = std::make_shared<mox::Profile>(*mox::Profile::parse(files.Xml()));
    const auto keys = std::make_shared<const std::vector<Query>>(SampleQueries(shape, 2000));
    const std::string section = keys->front().section;
    const std::vector<Target> targets = {{"C++ front", 1 / 1.3, 1}};

    const Sum values = ReadByFront(*front, *keys);
    suite.Add(Row{"mox_host: read text",
                  ShapeName(shape),
                  {Does(
                       "mox_host", [=] { return ReadByHost(host->document, *keys); }, values, keys->size()),
                   Does(
                       "C++ front", [=] { return ReadByFront(*front, *keys); }, values, keys->size())},
                  targets});
    const auto count = static_cast<Sum>(keys->size());
    suite.Add(Row{"mox_host: write text",
                  ShapeName(shape),
                  {Does(
                       "mox_host", [=] { return WriteByHost(host->document, *keys); }, count, keys->size()),
                   Does(
                       "C++ front", [=] { return WriteByFront(*front, *keys); }, count, keys->size())},
                  targets});
    const Sum entries = EnumerateByFront(*front, section);
    suite.Add(
        Row{"mox_host: enumerate entries",
            ShapeName(shape),
            {Does(
                 "mox_host", [=] { return EnumerateByHost(host->document, section); }, entries, shape.keys),
             Does(
                 "C++ front", [=] { return EnumerateByFront(*front, section); }, entries, shape.keys)},
            targets});
}

}  // namespace bench
