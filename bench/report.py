#!/usr/bin/env python3
"""Turns the JSON of mox_bench into the tables of docs/benchmarks.md and a plot.

    report.py <results.json> <benchmarks.md>

Replaces the lines between "<!-- summary: begin -->" and "<!-- summary: end -->", and those between
"<!-- measured: begin -->" and "<!-- measured: end -->"; the rest of the page stays. The plot is written to the page's
path with .svg instead of .md.
"""
import html
import json
import math
import pathlib
import platform
import subprocess
import sys

# What most users want to know: the operation in their words, and the row that measures it.
SUMMARY = [
    ("load a small narrow file (4 sections with 5 keys)", "load, narrow", "4 x 5"),
    ("load a narrow file of 50 sections with 40 keys", "load, narrow", "50 x 40"),
    ("load the same as a wide file", "load, wide", "50 x 40"),
    ("save it, narrow", "save, narrow", "50 x 40"),
    ("load a narrow file of 500 sections with 200 keys", "load, narrow", "500 x 200"),
    ("read a key as text, 50 sections with 40 keys", "get string", "50 x 40"),
    ("read a key as text, one section with 100,000 keys", "get string", "1 x 100000"),
    ("write an existing key", "write existing key", "1 x 100000"),
    ("append a key", "append to a new section", "100000 keys"),
    ("delete a key", "delete by name, mixed order", "10000 keys"),
    ("read an entry with its presentation data", "enumerate with both records", "100000 entries"),
    ("release a document of 500 sections with 200 keys", "release", "500 x 200"),
]
SUMMARY_PEERS = 3  # of each row, the fastest ones
PACKAGES = {
    "pugixml": "libpugixml-dev",
    "RapidXML": "librapidxml-dev",
    "TinyXML-2": "libtinyxml2-dev",
    "libxml2": "libxml2-dev",
    "Boost.PropertyTree": "libboost-dev",
    "GLib (GKeyFile)": "libglib2.0-dev",
    "SimpleIni": "libsimpleini-dev",
    "Google Benchmark": "libbenchmark-dev",
    "C library": "libc6",
}


def time_text(seconds):
    for limit, factor, unit in ((1e-6, 1e9, "ns"), (1e-3, 1e6, "µs"), (1, 1e3, "ms")):
        if seconds < limit:
            return f"{seconds * factor:.3g} {unit}" if seconds * factor < 1000 else f"{seconds * factor:.0f} {unit}"
    return f"{seconds:.3g} s"


def ratio_text(ratio):
    if ratio < 0.1:
        return f"{ratio:.2g}"
    return f"{ratio:,.0f}" if ratio >= 100 else f"{ratio:.1f}" if ratio >= 10 else f"{ratio:.2f}"


def spread_text(timing):
    """Half the range of the middle half of the repetitions, in per cent of the median."""
    values = sorted(timing["repetitions"])
    if len(values) < 4:
        return ""
    quarter = len(values) // 4
    return f"±{50 * (values[-1 - quarter] - values[quarter]) / timing['median']:.0f} %"


def processor():
    try:
        for line in pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
            if line.startswith("model name"):
                return line.split(":", 1)[1].strip()
    except OSError:
        pass
    return platform.processor() or platform.machine()


def version(package):
    query = ["dpkg-query", "-W", "-f", "${Version}", package]
    try:
        return subprocess.run(query, capture_output=True, text=True, check=True).stdout
    except (OSError, subprocess.CalledProcessError):
        return "unknown"


def environment(results):
    system = platform.freedesktop_os_release().get("PRETTY_NAME", platform.system())
    lines = [
        f"- Machine: {processor()}, {system}, 64 bits",
        f"- Compiler: g++ {results['compiler']}, `-O3 -DNDEBUG`",
        "- Versions: " + ", ".join(f"{name} {version(package)}" for name, package in PACKAGES.items()),
        f"- {results['repetitions']} repetitions of each, the libraries in turn; medians of processor time",
        "- How times grow with size: the least of the repetitions",
        "- Fresh: freed memory goes back to the system before each sample, as if the process were new",
    ]
    return lines


def times_text(row):
    ours, *peers = row["timings"]
    ratios = ", ".join(f"{p['name']} {ratio_text(p['median'] / ours['median'])}" for p in peers)
    return f"{time_text(ours['median'])} | {spread_text(ours)} | {ratios}"


def target_lines(row):
    name = "fresh, " if row["fresh"] else ""
    return [f"{name}{t['peer']} {t['least']:,g} / {t['aim']:,g}" for t in row["targets"]]


def reached_lines(row):
    def word(target):
        if target["ratio"] >= target["aim"]:
            return "aim"
        return "least" if target["ratio"] >= target["least"] else "**no**"

    return [word(target) for target in row["targets"]]


def row_line(row, fresh):
    """`fresh` is the row of the same operation and size in fresh memory, or None."""
    both = [row] if fresh is None else [row, fresh]
    targets = [line for each in both for line in target_lines(each)]
    reached = [line for each in both for line in reached_lines(each)]
    fresh_times = " | | " if fresh is None else times_text(fresh)
    return (f"| {row['operation']} | {row['size']} | {times_text(row)} | {fresh_times} | {'<br>'.join(targets)} "
            f"| {'<br>'.join(reached)} |")


def is_speedup(row):
    return row["operation"].startswith("speed-up ")


def row_lines(rows):
    fresh = {(row["operation"], row["size"]): row for row in rows if row["fresh"]}
    return [row_line(row, fresh.get((row["operation"], row["size"])))
            for row in rows if not row["fresh"] and not is_speedup(row)]


def speedup_line(row):
    speedup, _, operation = row["operation"].removeprefix("speed-up ").partition(": ")
    ours, without = row["timings"]
    ratio = without["median"] / ours["median"]
    return (f"| {speedup} | {operation} | {row['size']} | {time_text(ours['median'])} | {spread_text(ours)} "
            f"| {ratio_text(ratio)} | {row['targets'][0]['least']:g} | {reached_lines(row)[0]} |")


def speedups(results):
    return ["| Speed-up | Operation | Size | With | Spread | Without it, over with it | Least | Reached |",
            "|---|---|---|---|---|---|---|---|",
            *[speedup_line(row) for row in results["rows"] if is_speedup(row)]]


def summary_line(words, row):
    ours, *peers = row["timings"]
    fastest = sorted(peers, key=lambda peer: peer["median"])[:SUMMARY_PEERS]
    ratios = ", ".join(f"{p['name']} {ratio_text(p['median'] / ours['median'])}" for p in fastest)
    return f"| {words} | {time_text(ours['median'])} | {ratios} |"


def summary(results):
    rows = {(row["operation"], row["size"]): row for row in results["rows"] if not row["fresh"]}
    return ["| Operation | Time | Fastest peers, their time over ours |", "|---|---|---|",
            *[summary_line(words, rows[operation, size]) for words, operation, size in SUMMARY]]


def figure_line(figure):
    limit = figure["limit"]
    reached = "" if limit is None else "yes" if figure["value"] <= limit else "**no**"
    at_most = "" if limit is None else f"{limit:g}"
    fresh = "" if figure["fresh"] is None else f"{figure['fresh']:.3g}"
    return (f"| {figure['subject']} | {figure['size']} | {figure['value']:.3g} | {fresh} | {at_most} | {reached} "
            f"| {figure['detail']} |")


def tables(results, plot):
    lines = environment(results)
    lines += ["", f"![Peers' time over ours]({plot})", "",
              "| Operation | Size | Ours | Spread | Peer's time over ours | Fresh | Spread | Peer's time over ours "
              "| Least / aim | Reached |",
              "|---|---|---|---|---|---|---|---|---|---|"]
    lines += row_lines(results["rows"])
    if results["figures"]:
        lines += ["", "| Figure | Size | Value | Fresh | At most | Reached | |", "|---|---|---|---|---|---|---|"]
        lines += [figure_line(figure) for figure in results["figures"]]
    return lines


class Plot:
    """Horizontal bars on a logarithmic scale: how many times longer the peer takes."""

    left, width, top, step = 330, 560, 46, 22

    def __init__(self, bars):
        self.bars = bars
        values = [v for bar in bars for v in (bar["ratio"], bar["least"], bar["aim"])]
        self.low = math.floor(math.log10(min(values)))
        self.high = math.ceil(math.log10(max(values)))
        self.parts = []

    def x(self, ratio):
        share = (math.log10(ratio) - self.low) / (self.high - self.low)
        return self.left + self.width * share

    def text(self, x, y, text, anchor="start", style=""):
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}"{style}>{html.escape(text)}</text>')

    def line(self, x, top, bottom, color, width=1):
        self.parts.append(f'<line x1="{x:.1f}" x2="{x:.1f}" y1="{top:.1f}" y2="{bottom:.1f}" stroke="{color}" '
                          f'stroke-width="{width}"/>')

    def bar(self, index, bar):
        y = self.top + index * self.step
        color = "#2a7f4f" if bar["ratio"] >= bar["aim"] else "#4477aa" if bar["ratio"] >= bar["least"] else "#c0392b"
        begin, end = sorted((self.x(1), self.x(bar["ratio"])))
        self.text(self.left - 8, y + 14, bar["label"], "end")
        self.parts.append(f'<rect x="{begin:.1f}" y="{y + 4}" width="{max(end - begin, 1):.1f}" height="13" '
                          f'fill="{color}"/>')
        for target, line_color in (("least", "#111111"), ("aim", "#e0a000")):
            self.line(self.x(bar[target]), y + 1, y + 20, line_color, 2)
        beside = max(self.x(v) for v in (bar["ratio"], bar["least"], bar["aim"], 1))
        self.text(beside + 6, y + 14, ratio_text(bar["ratio"]))

    def svg(self):
        bottom = self.top + len(self.bars) * self.step
        self.text(12, 20, "Peer's time over ours: to the right of 1 we are faster", style=' font-weight="bold"')
        for power in range(self.low, self.high + 1):
            x = self.x(10.0 ** power)
            self.line(x, self.top - 4, bottom + 4, "#444444" if power == 0 else "#cccccc")
            self.text(x, self.top - 8, f"{10.0 ** power:,g}", "middle")
        for index, bar in enumerate(self.bars):
            self.bar(index, bar)
        legend = "Lines: black is the least, yellow the aim. Bars: green reaches the aim, blue the least, red neither."
        self.text(12, bottom + 24, legend)
        size = (self.left + self.width + 80, bottom + 38)
        return "\n".join([f'<svg xmlns="http://www.w3.org/2000/svg" width="{size[0]}" height="{size[1]}" '
                          f'viewBox="0 0 {size[0]} {size[1]}" font-family="sans-serif" font-size="12">',
                          f'<rect width="{size[0]}" height="{size[1]}" fill="white"/>', *self.parts, "</svg>", ""])


def judged_bars(results):
    return [{"label": f"{row['operation']}, {row['size']}{', fresh' if row['fresh'] else ''}: {target['peer']}", **target}
            for row in results["rows"] if not is_speedup(row) for target in row["targets"]]


def replaced(page, part, lines):
    """The page with the lines between the two comments that enclose the part."""
    first, last = f"<!-- {part}: begin -->", f"<!-- {part}: end -->"
    head, begin, rest = page.partition(first)
    _, end, tail = rest.partition(last)
    if not begin or not end:
        raise SystemExit(f"report.py: the page has no lines {first} and {last}")
    return head + first + "\n" + "\n".join(lines) + "\n" + last + tail


def main():
    if len(sys.argv) != 3:
        raise SystemExit("usage: report.py <results.json> <benchmarks.md>")
    results = json.loads(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
    page = pathlib.Path(sys.argv[2])
    plot = page.with_suffix(".svg")
    text = replaced(page.read_text(encoding="utf-8"), "summary", summary(results))
    text = replaced(text, "speed-ups", speedups(results))
    page.write_text(replaced(text, "measured", tables(results, plot.name)), encoding="utf-8")
    plot.write_text(Plot(judged_bars(results)).svg(), encoding="utf-8")


if __name__ == "__main__":
    main()
