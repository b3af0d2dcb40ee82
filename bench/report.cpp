#include "bench/report.h"

#include <array>
#include <cstdio>
#include <ostream>

namespace bench {
namespace {

std::string Text(const char* format, double value) {
    std::array<char, 64> buffer;
    std::snprintf(buffer.data(), buffer.size(), format, value);
    return buffer.data();
}

std::string RatioText(double ratio) {
    return Text(ratio >= 100 ? "%.0f" : ratio >= 10 ? "%.1f" : ratio >= 0.1 ? "%.2f" : "%.2g", ratio);
}

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

void WriteTiming(const Timing& timing, std::ostream& out) {
    out << "{\"name\": " << Quoted(timing.name) << ", \"median\": " << Text("%.6g", timing.median)
        << ", \"repetitions\": [";
    for (std::size_t i = 0; i < timing.repetitions.size(); ++i)
        out << (i == 0 ? "" : ", ") << Text("%.6g", timing.repetitions[i]);
    out << "]}";
}

void WriteRow(const RowResult& row, std::ostream& out) {
    out << "{\"operation\": " << Quoted(row.operation) << ", \"size\": " << Quoted(row.size)
        << ", \"fresh\": " << (row.isFresh ? "true" : "false") << ",\n     \"timings\": [";
    for (std::size_t i = 0; i < row.timings.size(); ++i) {
        out << (i == 0 ? "" : ",\n       ");
        WriteTiming(row.timings[i], out);
    }
    out << "],\n     \"targets\": [";
    for (std::size_t i = 0; i < row.targets.size(); ++i) {
        const Target& target = row.targets[i];
        out << (i == 0 ? "" : ", ") << "{\"peer\": " << Quoted(target.peer)
            << ", \"least\": " << Text("%g", target.least) << ", \"aim\": " << Text("%g", target.aim)
            << ", \"ratio\": " << Text("%.6g", row.Ratio(target.peer)) << '}';
    }
    out << "]}";
}

void WriteFigure(const Figure& figure, std::ostream& out) {
    out << "{\"subject\": " << Quoted(figure.subject) << ", \"size\": " << Quoted(figure.size)
        << ", \"value\": " << Text("%.6g", figure.value)
        << ", \"fresh\": " << (figure.fresh ? Text("%.6g", *figure.fresh) : "null")
        << ", \"limit\": " << (figure.limit ? Text("%g", *figure.limit) : "null")
        << ", \"detail\": " << Quoted(figure.detail) << '}';
}

}  // namespace

std::string TimeText(double seconds) {
    if (seconds < 1e-6) return Text("%.1f ns", seconds * 1e9);
    if (seconds < 1e-3) return Text("%.2f us", seconds * 1e6);
    return seconds < 1 ? Text("%.2f ms", seconds * 1e3) : Text("%.2f s", seconds);
}

void PrintHeader(std::ostream& out) {
    out << "| Operation | Size | Ours | Peer's time over ours | Least / aim | Reached |\n"
           "|---|---|---|---|---|---|\n";
}

void PrintRow(const RowResult& row, std::ostream& out) {
    out << "| " << row.operation << (row.isFresh ? ", fresh memory" : "") << " | " << row.size << " | "
        << TimeText(row.timings.front().median) << " | ";
    for (std::size_t i = 1; i < row.timings.size(); ++i)
        out << (i == 1 ? "" : ", ") << row.timings[i].name << ' '
            << RatioText(row.Ratio(row.timings[i].name));
    out << " | ";
    bool isReached = true;
    for (const Target& target : row.targets) {
        out << (&target == row.targets.data() ? "" : ", ") << target.peer << ' ' << Text("%g", target.least)
            << " / " << Text("%g", target.aim);
        isReached = isReached && row.Ratio(target.peer) >= target.least;
    }
    out << " | " << (row.targets.empty() ? "" : isReached ? "yes" : "NO") << " |\n" << std::flush;
}

void PrintFigures(const std::vector<Figure>& figures, std::ostream& out) {
    if (figures.empty()) return;
    out << "\n| Figure | Size | Value | Fresh | At most | Reached | |\n|---|---|---|---|---|---|---|\n";
    for (const Figure& figure : figures) {
        out << "| " << figure.subject << " | " << figure.size << " | " << Text("%.3g", figure.value) << " | "
            << (figure.fresh ? Text("%.3g", *figure.fresh) : "") << " | "
            << (figure.limit ? Text("%g", *figure.limit) : "") << " | "
            << (!figure.limit                   ? ""
                : figure.value <= *figure.limit ? "yes"
                                                : "NO")
            << " | " << figure.detail << " |\n";
    }
}

void PrintChecked(const Suite& suite, std::ostream& out) {
    for (const RowResult& row : suite.Rows())
        out << row.operation << (row.isFresh ? ", fresh memory, " : ", ") << row.size << ": checked\n";
    for (const Figure& figure : suite.Figures()) {
        out << figure.subject << ", " << figure.size << ": ";
        if (figure.isCount) {
            out << Text("%.3g", figure.value)
                << (figure.limit && figure.value > *figure.limit ? ", TOO MANY\n" : "\n");
        } else {
            out << "checked\n";
        }
    }
}

void WriteJson(const Suite& suite, std::ostream& out) {
    out << "{\n  \"compiler\": " << Quoted(__VERSION__)
        << ",\n  \"repetitions\": " << suite.Options().repetitions << ",\n  \"rows\": [\n    ";
    for (std::size_t i = 0; i < suite.Rows().size(); ++i) {
        out << (i == 0 ? "" : ",\n    ");
        WriteRow(suite.Rows()[i], out);
    }
    out << "\n  ],\n  \"figures\": [\n    ";
    for (std::size_t i = 0; i < suite.Figures().size(); ++i) {
        out << (i == 0 ? "" : ",\n    ");
        WriteFigure(suite.Figures()[i], out);
    }
    out << "\n  ]\n}\n";
}

bool CountsAreRight(const Suite& suite) {
    for (const Figure& figure : suite.Figures()) {
        if (figure.isCount && figure.limit && figure.value > *figure.limit) return false;
    }
    return true;
}

}  // namespace bench
