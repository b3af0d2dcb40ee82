#!/usr/bin/env python3
"""Makes one-line faults in the sources, one at a time, and reports which of them the tests catch.

    mutants.py <count> [<seed> [<folder or file>]]      (./dev mutants)

Draws the given number of faults in the files below FOLDERS, or in the folder or file: a kind of fault (faults.py has
them) at random, then a line that can have it, then one of the faults of this line. Each is made in a copy of the
project in build/mutants, which is then built as in the preset "linux", but for -O1. The test programs run until one
fails, beginning with those that are quick or test the folder of the fault. What they do not catch runs once more with
the sanitizers. A fault

    is not compiled     if the compiler refuses it, or warns; in Python, if mypy does; in JavaScript, never;
    makes no difference if all programs stay the same, byte by byte;
    is caught           if a test fails, crashes, or takes far more time or memory than without the fault;
    is explained        if it stands in tests/mutants.txt, with the reason why no test can see it;
    has survived        otherwise.

The exit code is 0 if none has survived and each fault in tests/mutants.txt can still be made.

The results are appended to build/mutants/results.jsonl. A run that was ended goes on where it was when it is started
with the same arguments. A fault is tried again if its file has changed, and one that made no difference or survived if
anything has.
"""
import collections
import hashlib
import json
import pathlib
import queue
import random
import re
import sys
import threading

import faults
import python_faults
import script_faults
from tree import ALONE, PROGRAM_PER_FILE, PROGRAMS, SANITIZED, BrokenTree, Tree, Verdict, files_below

FOLDERS = ("mox_xmlApi", "mox_host", "companions", "python/mox_xmlapi", "tools")  # a folder that ships is added here
SOURCES = {".h": faults.Source, ".hpp": faults.Source, ".cpp": faults.Source, ".js": script_faults.Source,
           ".py": python_faults.Source}
WORKERS = 2
RESULTS = ("drawn", "not compiled", "no difference", "caught", "explained", "survived")
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent


def sources(project):
    for folder in FOLDERS:
        for path in sorted((project / folder).rglob("*")):
            if path.suffix in SOURCES:
                file = path.relative_to(project).as_posix()
                yield SOURCES[path.suffix](file, path.read_text(encoding="utf-8"))


def draw(project, count, seed, folder=""):
    """The faults that the seed gives in the folder or file, each once; in all sources if it is empty."""
    lines = collections.defaultdict(list)  # of each kind: the faults of each line
    for source in sources(project):
        if folder not in ("", source.file, *map(str, pathlib.PurePath(source.file).parents)):
            continue
        for _, kinds in sorted(source.faults().items()):
            for kind, some in kinds.items():
                lines[kind].append(some)
    numbers = random.Random(seed)
    drawn = {}
    for _ in range(100 * count if lines else 0):
        if len(drawn) < count:
            drawn[numbers.choice(numbers.choice(lines[numbers.choice(sorted(lines))]))] = None
    return list(drawn)


def key(fault):
    """What names a fault in tests/mutants.txt: it stays the same when lines move."""
    return fault.file, fault.before.strip(), fault.after.strip()


def read_explained(path):
    """tests/mutants.txt: the reason of each fault in it, by its key."""
    reasons = {}
    blocks = re.split(r"\n{2,}", path.read_text(encoding="utf-8").strip())
    for block in blocks:
        lines = [line for line in block.split("\n") if not line.startswith("#")]
        if not "".join(lines):
            continue
        if len(lines) < 4 or not lines[1].startswith("- ") or not lines[2].startswith("+ ") or not lines[3].strip():
            raise ValueError(f"{path.name}: expected a file, lines with - and +, and a reason, found:\n{block}")
        reasons[lines[0].strip(), lines[1][2:].strip(), lines[2][2:].strip()] = " ".join(lines[3:])
    return reasons


def outdated(project, explained):
    """The keys that no fault has."""
    files = {file for file, _, _ in explained}
    all_faults = {key(fault) for source in sources(project) if source.file in files
                  for kinds in source.faults().values() for some in kinds.values() for fault in some}
    return [known for known in explained if known not in all_faults]


# ---- results

class Results:
    """The verdicts so far, in a file."""

    def __init__(self, path, project):
        self.path = path
        self.lock = threading.Lock()
        self.known = {}
        self.project = project
        names = sorted(path for top in project.iterdir() if top.name not in ("build", ".git")
                       for path in (files_below(top) if top.is_dir() else [top]) if "__pycache__" not in path.parts)
        self.state = hashlib.sha256(b"".join(hashlib.sha256(path.read_bytes()).digest() for path in names)).hexdigest()
        if path.exists():
            for line in path.read_text(encoding="utf-8").splitlines():
                entry = json.loads(line)
                self.known[entry["file"], entry["number"], entry["before"], entry["after"]] = entry

    def file_state(self, file):
        return hashlib.sha256((self.project / file).read_bytes()).hexdigest()

    def find(self, fault):
        entry = self.known.get((fault.file, fault.number, fault.before, fault.after))
        if entry is None or entry["file_state"] != self.file_state(fault.file):
            return None
        if entry["result"] in ("survived", "no difference") and entry["state"] != self.state:
            return None
        return Verdict(entry["result"], entry["detail"])

    def add(self, fault, verdict):
        entry = {**fault._asdict(), **verdict._asdict(), "state": self.state, "file_state": self.file_state(fault.file)}
        with self.lock, open(self.path, "a", encoding="utf-8") as file:
            file.write(json.dumps(entry) + "\n")


def judge_all(drawn, trees, results):
    """The verdict on each fault: known, or found by one thread for each of the trees."""
    verdicts, waiting, lock = {}, queue.SimpleQueue(), threading.Lock()
    for fault in drawn:
        verdict = results.find(fault)
        if verdict is None:
            waiting.put(fault)
        else:
            verdicts[fault] = verdict
    problems = []

    def work(tree):
        try:
            tree.prepare()
            while not problems:
                try:
                    fault = waiting.get_nowait()
                except queue.Empty:
                    return
                verdict = tree.judge(fault)
                results.add(fault, verdict)
                with lock:
                    verdicts[fault] = verdict
                    print(f"{len(verdicts)}/{len(drawn)} {verdict.result}: {fault.file}:{fault.number} {fault.kind}"
                          f" {verdict.detail}", flush=True)
        except BaseException as problem:  # pylint: disable=broad-except
            problems.append(problem)

    threads = [threading.Thread(target=work, args=(tree,)) for tree in trees]
    for thread in threads if waiting.qsize() > 0 else []:
        thread.start()
    for thread in threads:
        if thread.ident is not None:
            thread.join()
    if problems:
        raise problems[0]
    return verdicts


# ---- report

def folder_of(file):
    """The row of the table for a file: companions, mox_xmlApi/xml, ..."""
    parts = file.split("/")
    return "/".join(parts[:2]) if parts[0] == "mox_xmlApi" and len(parts) > 2 else parts[0]


def table(verdicts):
    """The results by folder, as a table of Markdown."""
    rows = {}
    for fault, verdict in verdicts.items():
        for name in (folder_of(fault.file), "all"):
            row = rows.setdefault(name, dict.fromkeys(RESULTS, 0))
            row["drawn"] += 1
            row[verdict.result] += 1
    lines = ["| Folder | " + " | ".join(RESULTS) + " |", "|---" * (len(RESULTS) + 1) + "|"]
    for name in sorted(rows, key=lambda name: (name == "all", name)):
        lines.append(f"| {name} | " + " | ".join(str(count) for count in rows[name].values()) + " |")
    return "\n".join(lines)


def report(verdicts, explained, old):
    """Prints the results; returns the exit code."""
    verdicts = {fault: Verdict("explained", "") if verdict.result == "survived" and key(fault) in explained else verdict
                for fault, verdict in verdicts.items()}
    survivors = [fault for fault, verdict in verdicts.items() if verdict.result == "survived"]
    for fault in survivors:
        print(f"\nsurvived, line {fault.number}:\n" + "\n".join(as_listed(key(fault))))
    for known in old:
        print("\nin tests/mutants.txt, but this line, or this fault of it, no longer exists:")
        print("\n".join(as_listed(known)))
    print("\n" + table(verdicts))
    seen = sum(verdict.result in ("caught", "explained", "survived") for verdict in verdicts.values())
    print(f"\n{seen - len(survivors)} of {seen} faults that make a difference are caught or explained")
    return 1 if survivors or old else 0


def as_listed(known):
    """A fault as tests/mutants.txt has it."""
    return [known[0], "- " + known[1], "+ " + known[2]]


def main(arguments, root=ROOT, programs=PROGRAMS):
    count = int(arguments[0]) if arguments else 50
    seed = int(arguments[1]) if len(arguments) > 1 else random.randrange(1000000)
    folder = arguments[2].removesuffix("/") if len(arguments) > 2 else ""
    print(f"{count} faults{' in ' * bool(folder)}{folder}, seed {seed}", flush=True)
    explained = read_explained(root / "tests/mutants.txt")
    home = root / "build/mutants"
    home.mkdir(parents=True, exist_ok=True)
    options = [f"-DCMAKE_PROJECT_mox_xmlApi_INCLUDE={root / 'tests/mutants/settings.cmake'}",
               f"-DMOX_TEST_PROGRAM_PER_FILE={';'.join(PROGRAM_PER_FILE)}"]
    drawn = draw(root, count, seed, folder)
    if not drawn:
        print("mutants: no fault can be made there", file=sys.stderr)
        return 2
    suffixes = {pathlib.Path(fault.file).suffix for fault in drawn}
    if suffixes <= set(ALONE):
        programs = [ALONE[suffix] for suffix in sorted(suffixes)]
    trees = [Tree(f"linux-{number}", "linux", options, root, programs) for number in range(WORKERS)]
    sanitized = Tree("sanitize", "sanitize", options, root, [name for name in programs if name in SANITIZED])
    try:
        verdicts = judge_all(drawn, trees, Results(home / "results.jsonl", root))
        unexplained = [fault for fault, verdict in verdicts.items()
                       if verdict.result == "survived" and key(fault) not in explained]
        if unexplained and sanitized.programs:
            print("what has survived, with the sanitizers:", flush=True)
            again = judge_all(unexplained, [sanitized], Results(home / "sanitized.jsonl", root))
            verdicts.update((fault, verdict) for fault, verdict in again.items() if verdict.result == "caught")
    except BrokenTree as problem:
        print(f"mutants: {problem}", file=sys.stderr)
        return 2
    return report(verdicts, explained, outdated(root, explained))


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
