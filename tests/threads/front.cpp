#include "mox_xmlApi/mox_xmlApi.hpp"
#include "tests/threads/threads.h"

namespace threads {
namespace {

void UseProfile(const std::string& path, int number) {
    mox::Profile profile;
    for (int i = 0; i < 30; ++i)
        Expect(profile.set("S", "k" + std::to_string(i), i * number), "a number is written");
    Expect(profile.setString("S", "text", "\xC3\xA4" + std::to_string(number)), "a text is written");
    mox::SaveOptions options;
    options.overwrite = true;
    Expect(profile.saveReplacing(path, options), "a profile is saved");
    std::optional<mox::Profile> opened = mox::Profile::open(path);
    Expect(opened.has_value() && opened->get<int>("S", "k29") == 29 * number, "a profile is opened");
    Expect(opened->getString("S", "text") == "\xC3\xA4" + std::to_string(number), "a text is read");
    for (const mox::Section& section : opened->sections())
        Expect(section.entries().begin() != section.entries().end(), "a section has entries");
    const std::optional<std::string> bytes = opened->toBytes(mox::Form::Wide);
    const std::optional<mox::Document> document = mox::Document::parse(*bytes);
    Expect(document.has_value() && document->tables().size() == 1, "a document is parsed");
}

void UseTable(const std::string& path, int number) {
    mox::Table table = mox::Table::create("T");
    for (int i = 0; i < 20; ++i) {
        mox::Entry entry;
        entry.name = "e" + std::to_string(i);
        entry.type = mox::ValueType::Long;
        entry.value = std::to_string(number);
        Expect(table.add(entry), "an entry is added");
    }
    mox::SaveOptions options;
    options.overwrite = true;
    Expect(table.saveReplacing(path, options), "a table is saved");
    const std::optional<mox::Table> opened = mox::Table::open(path, "T");
    Expect(opened.has_value() && opened->find("e19")->value == std::to_string(number), "a table is opened");
}

}  // namespace

void UseFront(int rounds) {
    InThreads([&](int number) {
        const std::string profile = FilePath("front_" + std::to_string(number) + ".xml").string();
        const std::string table = FilePath("front_table_" + std::to_string(number) + ".xml").string();
        for (int i = 0; i < rounds; ++i) {
            UseProfile(profile, number);
            UseTable(table, number);
        }
    });
}

void ReplaceOneFile(int rounds) {
    const std::string path = FilePath("front_common.xml").string();
    Expect(mox::Profile().saveReplacing(path), "the common file is there");
    const int changes = rounds / 5;
    InThreads([&](int number) {
        const std::string key = "thread" + std::to_string(number);
        for (int done = 0; done < changes;) {
            std::optional<mox::Profile> profile = mox::Profile::open(path);
            Expect(profile.has_value(), "a file that others replace is the old or the new one");
            Expect(profile->getOr<int>("S", key, 0) == done, "no change is lost");
            Expect(profile->set("S", key, done + 1), "a number is written");
            mox::Problem problem;
            if (profile->saveReplacing(path, &problem)) {
                ++done;
            } else {
                Expect(problem.reason == mox::Reason::Changed || problem.reason == mox::Reason::Busy,
                       problem.message.c_str());
            }
        }
    });
    const std::optional<mox::Profile> profile = mox::Profile::open(path);
    for (int number = 0; number < kThreads; ++number)
        Expect(profile->getOr<int>("S", "thread" + std::to_string(number), 0) == changes,
               "no change is lost");
}

}  // namespace threads
