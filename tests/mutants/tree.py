"""A copy of the project that is built once, and in which one fault at a time is made, built, tested and taken back."""
import collections
import json
import math
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import threading
import time

MEMORY = 8 << 30  # bytes of address space of a test program

# The programs in the order in which they run. Those after the folder of a fault run first.
PROGRAMS = ("host_tests", "companion_tests", "document_tests", "second_opinion_tests", "unit_tests", "tool_tests",
            "limit_tests", "c_host_tests", "editor_tests", "front_tests", "fault_tests", "disk_tests", "memory_tests",
            "editor_server", "replay", "python_package", "editor_page")
FIRST = {
    "mox_host/": ("c_host_tests", "fault_tests"),
    "mox_xmlApi/disk/": ("disk_tests", "fault_tests", "document_tests", "tool_tests", "front_tests"),
    "mox_xmlApi/document/": ("document_tests", "tool_tests", "front_tests"),
    "mox_xmlApi/front/": ("front_tests", "document_tests", "fault_tests", "tool_tests"),
    "mox_xmlApi/mox_xmlApi.hpp": ("front_tests",),
    "mox_xmlApi/platform/": ("host_tests", "unit_tests"),
    "mox_xmlApi/xml/": ("host_tests", "document_tests", "unit_tests"),
    "tools/edit/": ("editor_tests", "editor_server", "tool_tests"),
    "tools/": ("tool_tests", "editor_tests"),
}
# What survives runs with the sanitizers in these, after the same order.
SANITIZED = ("host_tests", "document_tests", "unit_tests", "c_host_tests", "editor_tests", "front_tests", "tool_tests")
# Tests that are scripts, with the targets that they need; and tests that run the tool as a process.
SCRIPTS = {"editor_server": ("tests/editor/server_test.py", "mox-xml"),
           "editor_page": ("tests/editor/browser_test.py", "mox-xml"),
           "python_package": ("tests/python/run_from_sources.py", "mox_host", "front_replay", "other_host")}
TOOL_TESTS = ("tool_tests", "editor_server", "editor_page")
# The only one that runs after a fault in such a file. The last one is too slow to run after any other.
ALONE = {".py": "python_package", ".js": "editor_page"}
# One program for each of their files: a fault in a header then costs one file more at a time.
PROGRAM_PER_FILE = ("front_tests",)

preparing = threading.Lock()  # one tree at a time: with a compiler cache, the others take their objects from there
Verdict = collections.namedtuple("Verdict", "result detail")


class BrokenTree(Exception):
    """The project does not build, or its tests fail, without a fault."""


Ended = collections.namedtuple("Ended", "code seconds")  # the code is None if the time was up


def run(command, folder, log, environment=None, cpu=None, wall=None, memory=None):
    """Runs the command as a process group of its own and ends whatever is left of it. The seconds are of processor
    time. The memory is in bytes of address space."""
    def limit():
        os.nice(10)
        if cpu is not None:
            resource.setrlimit(resource.RLIMIT_CPU, (cpu, cpu + 1))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        if memory is not None:
            resource.setrlimit(resource.RLIMIT_AS, (memory, memory))

    with open(log, "wb") as output:
        process = subprocess.Popen([str(word) for word in command], cwd=folder, stdin=subprocess.DEVNULL, stdout=output,
                                   stderr=subprocess.STDOUT, start_new_session=True, preexec_fn=limit,
                                   env={**os.environ, **(environment or {})})
        end = time.monotonic() + wall if wall else math.inf
        ended = (0, 0, None)
        while ended[0] == 0 and time.monotonic() < end:
            time.sleep(0.01)
            ended = os.wait4(process.pid, os.WNOHANG)
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        if ended[0] == 0:
            process.wait()
            return Ended(None, 0)
        process.returncode = os.waitstatus_to_exitcode(ended[1])
        return Ended(process.returncode, ended[2].ru_utime + ended[2].ru_stime)


def is_same(path, other):
    """Whether the files have the same size and time."""
    if not other.exists():
        return False
    a, b = path.stat(), other.stat()
    return (a.st_mtime_ns, a.st_size) == (b.st_mtime_ns, b.st_size)


def files_below(folder):
    return [path for path in folder.rglob("*") if path.is_file() or path.is_symlink()]


def targets_of(program):
    return SCRIPTS[program][1:] if program in SCRIPTS else (program,)


def make_same(folder, model):
    """Makes all files of the model the same in the folder; whatever a test does to the sources is undone, too."""
    for path in files_below(model):
        target = folder / path.relative_to(model)
        if target.is_symlink() if path.is_symlink() else is_same(path, target):
            continue
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(path, target, follow_symlinks=False)


class Tree:
    """A copy of the project, built, in which one fault at a time is made."""

    def __init__(self, name, preset, options, project, programs=PROGRAMS):
        self.project = project
        self.programs = programs
        self.home = project / "build/mutants" / name
        self.sources = self.home / "tree"
        self.build = self.sources / "build" / preset
        self.saved = self.home / "saved"  # a copy of all that, as it was before a fault
        self.preset, self.options = preset, options
        self.libraries = {}  # of each program that has run
        self.costs = {}  # of each program that has run: seconds of processor time, seconds

    def prepare(self):
        """Copies and builds the project, as far as it has changed."""
        self.home.mkdir(parents=True, exist_ok=True)
        done = self.home / "done"
        if done.exists():
            make_same(self.sources, self.saved)  # the last run may have been ended with a fault in place
        if copy_sources(self.project, self.sources) or not done.exists():
            done.unlink(missing_ok=True)
            with preparing:
                self.do(["cmake", "--preset", self.preset, *self.options], "configure")
                targets = [target for program in self.runs("") for target in targets_of(program)]
                self.do(["ninja", "-C", self.build, "-j", "2", *targets], "build")
            shutil.rmtree(self.saved, ignore_errors=True)
            make_same(self.saved, self.sources)
            done.touch()

    def cost(self, program):
        """What the program costs without a fault. The first time it is run for that, and must pass."""
        if program not in self.costs:
            start = time.monotonic()
            ended = self.start(program, self.saved, 3600, 3600)
            if ended.code != 0:
                raise BrokenTree(f"{program} fails without a fault: {self.home / 'test.log'}")
            self.costs[program] = (ended.seconds, time.monotonic() - start)
        return self.costs[program]

    def do(self, command, name):
        log = self.home / f"{name}.log"
        if run(command, self.sources, log).code != 0:
            raise BrokenTree(f"the project does not {name} without a fault: {log}")

    def replays(self):
        return sorted(folder.name for folder in (self.sources / "fuzz/corpus").iterdir() if folder.is_dir())

    def runs(self, file):
        """The programs to run after a fault in the file; without one, all."""
        alone = ALONE.get(pathlib.Path(file).suffix)
        if alone is not None:
            yield from (program for program in self.programs if program == alone)
            return
        first = next((programs for start, programs in FIRST.items() if file.startswith(start)), ())
        ordered = [program for program in dict.fromkeys((*first, *PROGRAMS)) if program in self.programs]
        words = set(re.split(r"[/._]", file))
        for program in ordered:
            if program == "editor_page" and file != "":
                continue
            if program in PROGRAM_PER_FILE:
                folder = program.removesuffix("_tests")
                tests = [path.stem for path in (self.sources / "tests" / folder).glob("*_test.cpp")]
                # The files whose names have most in common with the file of the fault.
                tests.sort(key=lambda test: (-len(words & set(test.split("_")[:-1])), test))
                yield from (f"{folder}-{test}" for test in tests)
            elif program == "replay":
                yield from ("replay_" + name for name in self.replays())
            else:
                yield program

    def start(self, program, folder, cpu, wall):
        """Runs the test program of this tree, or of the saved one."""
        scratch = self.home / "tmp"
        shutil.rmtree(scratch, ignore_errors=True)
        scratch.mkdir(mode=0o755)
        programs = folder / "build" / self.preset / "bin"
        environment = {"MOX_TEST_TMP": str(scratch), "MOX_TOOL": str(programs / "mox-xml"),
                       "MOX_EXAMPLES": str(folder / "examples/data"),
                       "MOX_AXE": str(self.project / "build/axe/node_modules/axe-core/axe.min.js"),
                       "ASAN_OPTIONS": "detect_stack_use_after_return=1:strict_string_checks=1:hard_rss_limit_mb=4000"}
        arguments = ["--gtest_fail_fast", "--gtest_brief=1", "--gtest_shuffle=0"]
        if program.startswith("replay_"):
            name = program.removeprefix("replay_")
            found = (f"fuzz/corpus/{name}", f"tests/regression/inputs/{name}")
            arguments = [f"../{inputs}" for inputs in found if (folder / inputs).exists()]
        command = [programs / program, *arguments]
        if program in SCRIPTS:
            end = [programs.parent, "--exitfirst"] if program == "python_package" else ["--failfast"]
            command = ["/usr/bin/python3", "-B", folder / SCRIPTS[program][0], *end]
        # The sanitizer and the browser reserve terabytes of addresses.
        memory = None if self.preset == "sanitize" or program == "editor_page" else MEMORY
        return run(command, folder / "tests", self.home / "test.log", environment, cpu, wall, memory)

    def make(self, *targets):
        """Builds the targets. A compiler cache is not used: no fault is compiled twice."""
        return run(["ninja", "-C", self.build, "-j", "1", *targets], self.sources, self.home / "make.log",
                   {"CCACHE_DISABLE": "1"}).code == 0

    def has_changed(self, output):
        path, old = self.build / output, self.saved / "build" / self.preset / output
        return path.exists() and not is_same(path, old) and path.read_bytes() != old.read_bytes()

    def objects(self, file):
        """The object files of a source; none for a header."""
        commands = json.loads((self.build / "compile_commands.json").read_text())
        paths = [re.search(r" -o (\S+)", entry["command"])[1] for entry in commands
                 if entry["file"] == str(self.sources / file)]
        return paths

    def libraries_of(self, program):
        """Our shared libraries that the program loads, without a fault."""
        if program not in self.libraries:
            path = "lib/libmox_host.so.0" if program == "python_package" else f"bin/{program}"
            listed = subprocess.run(["ldd", self.saved / "build" / self.preset / path], text=True, check=False,
                                    stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
            names = tuple(line.split()[0] for line in listed.splitlines() if line.strip())
            self.libraries[program] = [path.relative_to(self.build) for path in self.build.glob("lib/*.so*")
                                       if not path.is_symlink() and path.name.startswith(names)]
        return self.libraries[program]

    def outputs(self, program):
        """The files that the program consists of."""
        if program == "python_package":
            return ["bin/front_replay", "lib/libmox_host.so.0", *self.libraries_of(program)]
        return [*([] if program in SCRIPTS else [f"bin/{program}"]), *self.libraries_of(program),
                *(["bin/mox-xml"] if program in TOOL_TESTS else [])]

    def has_types(self):
        """Whether mypy accepts the Python package."""
        command = ["/usr/bin/python3", "-m", "mypy", "--strict", "--python-version", "3.9", "--cache-dir",
                   self.home / "mypy", "mox_xmlapi"]
        return run(command, self.sources / "python", self.home / "make.log").code == 0

    def judge(self, fault):
        """Makes the fault, tests it, and takes it back."""
        path = self.sources / fault.file
        lines = path.read_text(encoding="utf-8").split("\n")
        assert lines[fault.number - 1] == fault.before
        lines[fault.number - 1] = fault.after
        path.write_text("\n".join(lines), encoding="utf-8")
        try:
            return self.test(fault)
        finally:
            make_same(self.sources, self.saved)

    def test(self, fault):
        isPython = fault.file.endswith(".py")
        if isPython and not self.has_types():
            return Verdict("not compiled", "")
        objects = self.objects(fault.file)
        if objects:
            if not self.make(*objects):
                return Verdict("not compiled", "")
            if not any(self.has_changed(output) for output in objects):
                return Verdict("no difference", "")
        differs = False
        for program in self.runs(fault.file):
            if not isPython:
                if not self.make(*targets_of(program)):
                    return Verdict("not compiled", "")
                if not any(self.has_changed(output) for output in self.outputs(program)):
                    continue
            differs = True
            cpu, wall = self.cost(program)
            code = self.start(program, self.sources, int(2 + 3 * cpu), 60 + 4 * wall).code
            if code != 0:
                return Verdict("caught", f"{program}: {self.what_failed(code)}")
        return Verdict("survived" if differs else "no difference", "")

    def what_failed(self, code):
        log = (self.home / "test.log").read_text(encoding="utf-8", errors="replace")
        failed = re.search(r"(?:\[  FAILED  \]|^(?:FAIL|ERROR):|^FAILED) ([\w./:]+)", log, re.M)
        if failed:
            return failed[1]
        return "time limit" if code in (None, -signal.SIGXCPU, -signal.SIGKILL) else f"exit code {code}"


def copy_sources(project, folder):
    """Makes the sources in the folder those of the project; returns whether any was not."""
    changed = False
    wanted = set()
    for top in project.iterdir():
        if top.name in ("build", ".git"):
            continue
        for path in files_below(top) if top.is_dir() else [top]:
            if "__pycache__" in path.parts:
                continue
            relative = path.relative_to(project)
            wanted.add(relative)
            if not is_same(path, folder / relative):
                (folder / relative).parent.mkdir(parents=True, exist_ok=True)
                shutil.copy2(path, folder / relative)
                changed = True
    for top in folder.iterdir():
        for path in files_below(top) if top.is_dir() and top.name != "build" else []:
            if path.relative_to(folder) not in wanted and "__pycache__" not in path.parts:
                path.unlink()
                changed = True
    return changed
