#!/usr/bin/env python3
"""Collects which lines and branches of the library the tests executed, in a file for gcovr.

    coverage.py <build folder> <tracefile.json>

One line of a header is compiled many times: inline functions once in each program that includes them, templates once
more for each type. gcovr 5.2 reads gcov's text output, which for a copy that never ran does not say which of its
branches are exceptions, so that these count as missed although another copy of the same code ran. gcov's JSON output
says it for every copy; this script merges the copies from there and leaves the figures and their limits to gcovr.

What counts:
- A line is executed when any copy of it was. A line that no copy executed is kept, with the count 0.
- Copies of a function are those that begin and end at the same position in the same file. Where the compiler made the
  same branches, in the same order, in each copy, their counts are added. Where it made different ones (a template for
  another type), each set counts by itself, and a branch that none of its copies took is missed.
- Not counted is what the source does not decide: both ways out of a call that may throw, the exception and the next
  statement, and lines that consist of braces (where objects are destroyed).

What the tests leave uncovered, from the most branches to the fewest:
- System calls that do not fail on the test machine, mostly in a save that replaces a file: flushing, closing, reading
  and setting permissions, interrupted calls; a system without the locale for letters; a thousand names of temporary
  files that are all in use.
- Results of the companion libraries that the bundled builds never return, above all for conversions to 16-bit text.
- The index of the names of children: no memory for it, and long sequences of colliding hashes.
- Results in the C++ front that are checked a second time, such as that of reading what was just written.
- Branches that the compiler adds to "new[]", to "catch", and to a template one of whose instances cannot fail.
- Texts, files and names larger than a test can create, a null record, and storage of a text that is never that small.
- The failure of xmlWriteProfileSection that no document is known to cause, and memory that runs out while the first
  document is created or when an enumeration of the front is abandoned.
"""
import collections
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LIBRARY = ROOT / "mox_xmlApi"
NO_CODE = re.compile(r"[{}\s]*(//.*)?")


class SourceFile:
    """The lines and functions of one file, over all its copies."""

    def __init__(self, path):
        self.text = path.read_text(encoding="utf-8").splitlines()
        self.line_counts = collections.Counter()
        self.function_counts = collections.Counter()
        # (line, function, shape) -> how often each of the branches was taken
        self.branch_counts = {}

    def add(self, report):
        places = {}
        for function in report["functions"]:
            place = tuple(function[key] for key in ("start_line", "start_column", "end_line", "end_column"))
            places[function["name"]] = place
            self.function_counts[place] += function["execution_count"]
        for line in report["lines"]:
            number = line["line_number"]
            if NO_CODE.fullmatch(self.text[number - 1]):
                continue
            self.line_counts[number] += line["count"]
            branches = line["branches"]
            shape = tuple((branch["fallthrough"], branch["throw"]) for branch in branches)
            counts = self.branch_counts.setdefault((number, places.get(line.get("function_name")), shape),
                                                   [0] * len(shape))
            for i, branch in enumerate(branches):
                counts[i] += branch["count"]

    def decisions(self):
        """For each line, how often each of its branches was taken, of those that the source decides."""
        found = collections.defaultdict(list)
        for (number, _, shape), counts in self.branch_counts.items():
            found[number] += [count for i, count in enumerate(counts) if not is_way_out_of_call(shape, i)]
        return found

    def traced(self, name):
        """This file in the form of gcovr's JSON."""
        decisions = self.decisions()
        return {
            "file": name,
            "functions": [{"name": f"{place[0]}:{place[1]}", "lineno": place[0], "execution_count": count}
                          for place, count in sorted(self.function_counts.items())],
            "lines": [{"line_number": number, "count": count, "gcovr/noncode": False, "gcovr/excluded": False,
                       "branches": [{"count": taken, "fallthrough": False, "throw": False}
                                    for taken in decisions[number]]}
                      for number, count in sorted(self.line_counts.items())],
        }


def is_way_out_of_call(shape, i):
    """Whether branch i leaves a call by an exception or continues after it: gcov lists the two in a row."""
    falls_through, throws = shape[i]
    next_throws = i + 1 < len(shape) and shape[i + 1][1]
    return throws or (falls_through and next_throws)


def reports(build):
    """gcov's report for each object file, even if it never ran. Notes without an object are from earlier builds."""
    notes = sorted(path for path in build.rglob("*.gcno") if path.with_suffix(".o").exists())
    gcov = ["gcov", "--json-format", "--stdout", "--branch-probabilities", "--relative-only", "--source-prefix", ROOT]
    output = subprocess.run(gcov + notes, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True).stdout
    for line in output.splitlines():
        yield json.loads(line)


def main(build, tracefile):
    files = {}
    for report in reports(pathlib.Path(build).resolve()):
        folder = pathlib.Path(report["current_working_directory"])
        for file in report["files"]:
            path = (folder / file["file"]).resolve()
            if LIBRARY in path.parents:
                files.setdefault(path, SourceFile(path)).add(file)
    traced = [source.traced(str(path.relative_to(ROOT))) for path, source in sorted(files.items())]
    pathlib.Path(tracefile).write_text(json.dumps({"gcovr/format_version": "0.3", "files": traced}), encoding="utf-8")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2])
