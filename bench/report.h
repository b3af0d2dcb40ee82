// The results as a table for people and as JSON for scripts.
#ifndef BENCH_REPORT_H
#define BENCH_REPORT_H

#include <iosfwd>

#include "bench/suite.h"

namespace bench {

// "1.23 us" and the like.
std::string TimeText(double seconds);

// The table in pieces, so that each row shows as soon as it is measured.
void PrintHeader(std::ostream& out);
void PrintRow(const RowResult& row, std::ostream& out);
void PrintFigures(const std::vector<Figure>& figures, std::ostream& out);
// The results without the times, which mean nothing after a quick run.
void PrintChecked(const Suite& suite, std::ostream& out);
void WriteJson(const Suite& suite, std::ostream& out);

// Whether every count keeps its limit. Counts are results, unlike times.
bool CountsAreRight(const Suite& suite);

}  // namespace bench

#endif
