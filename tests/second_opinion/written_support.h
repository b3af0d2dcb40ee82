// Documents that the library writes when a host calls its exports with 7-bit text by chance.
#ifndef MOX_XMLAPI_TESTS_SECOND_OPINION_WRITTEN_SUPPORT_H
#define MOX_XMLAPI_TESTS_SECOND_OPINION_WRITTEN_SUPPORT_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/host/table_support.h"
#include "tests/second_opinion/dialect_support.h"

namespace opinion {

struct Written {
    std::string bytes{};  // of the file
    bool wide = false;
    bool settings = false;  // a settings document; else a table
};

class Host {
  public:
    // With `control`, texts have characters that XML has none of.
    Host(std::uint64_t seed, bool control) : random_(seed), control_(control) {}

    // Fills a new settings document and saves it in every way: plain and as exports, wide and narrow, and one section
    // of it.
    std::vector<Written> WriteSettings();
    // The same with the document that has this text.
    std::vector<Written> WriteSettings(const std::string& document);
    // Fills a new table document and saves it.
    Written WriteTable();

  private:
    host::WideText Text();
    host::WideText Name();
    std::string Bytes();
    void Fill(moxSettings* profile);
    void FillTable(void* table);
    std::vector<Written> Saved(moxSettings* profile);

    Random random_;
    bool control_;
};

// The document in a file, without the zero at its end. Every unit has to be 7-bit text.
std::string TextOf(const Written& written);

// The file as XML has it: without the zero at its end, with the encoding that it has in its declaration, and a wide one
// with a byte-order mark. A narrow one with bytes beyond 7-bit text is taken for Latin-1.
std::string AdaptedToXml(const Written& written);

}  // namespace opinion

#endif
