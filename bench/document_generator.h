// Documents for the measurements: the same data as XML and as INI, the same in every run.
#ifndef BENCH_DOCUMENT_GENERATOR_H
#define BENCH_DOCUMENT_GENERATOR_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct DocumentShape {
    std::size_t sections;
    std::size_t keys;        // in each section
    bool irregular = false;  // names and values of varying length, comments, entities, other attribute orders
};

// "50 x 40", "500 x 200 irregular", ...
std::string ShapeName(const DocumentShape& shape);

// One key of a document. `value` is what every library must read for it.
struct Entry {
    std::string name;
    std::string type;
    std::string value;
    std::uint32_t id = 0;
    bool hasUi = false;  // every third entry; the rest is empty without
    std::string control;
    std::uint32_t provIndex = 0;
    std::string shownName;
    std::string comment;
};

std::string SectionName(const DocumentShape& shape, std::size_t section);
Entry MakeEntry(const DocumentShape& shape, std::size_t section, std::size_t key);
// Whether the value of this key is a decimal number.
bool IsNumber(std::size_t key);

// The settings document, narrow and without a terminating zero. A regular one is laid out as the library
// itself writes it.
std::string MakeXml(const DocumentShape& shape);
// The same keys and values as INI; what is no value becomes comment lines.
std::string MakeIni(const DocumentShape& shape);

// 7-bit text with two bytes per character, low byte first.
std::string Widen(const std::string& narrow);
std::u16string ToUtf16(const std::string& narrow);

// A key of a document with everything that a look-up needs in the forms that the libraries want.
struct Query {
    std::string section;
    std::string key;
    std::string value;
    std::u16string wideSection;
    std::u16string wideKey;
    std::u16string wideValue;
};

Query MakeQuery(const std::string& section, const std::string& key, const std::string& value);

// `count` different keys (all of them when there are fewer), evenly spread over the document and then mixed
// by a fixed shuffle, or left in document order.
std::vector<Query> SampleQueries(const DocumentShape& shape, std::size_t count, bool shuffled = true);
// The same of the keys whose values are numbers.
std::vector<Query> SampleNumbers(const DocumentShape& shape, std::size_t count);
// Keys that no document has, for a section of that name.
std::vector<Query> NewQueries(const std::string& section, std::size_t count);

}  // namespace bench

#endif
