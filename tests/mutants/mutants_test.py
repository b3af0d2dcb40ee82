#!/usr/bin/env python3
"""Tests of the faults that mutants.py makes, and of its verdicts on those in a small project."""
import contextlib
import io
import json
import pathlib
import tempfile
import unittest

import faults
import mutants
import python_faults
import script_faults


def in_second_line(source, kind):
    """What the second line becomes, with each fault of the kind."""
    return sorted(fault.after.strip() for fault in source.faults().get(2, {}).get(kind, []))


def faults_in(body, kind):
    """The same for a line of a function."""
    return in_second_line(faults.Source("a.cpp", "void F() {\n" + body + "\n}\n"), kind)


class EachKindOfFault(unittest.TestCase):
    def test_conditions_are_negated_and_fixed(self):
        self.assertEqual(faults_in("if (a(b)) c();", "condition"),
                         ["if (!(a(b))) c();", "if (false) c();", "if (true) c();"])
        self.assertEqual(faults_in("while (a) c();", "condition"), ["while (!(a)) c();", "while (false) c();"])
        self.assertEqual(faults_in("return !a;", "condition"), ["return a;"])

    def test_boundaries_move_by_one(self):
        for before, after in (("<", "<="), ("<=", "<"), (">", ">="), (">=", ">")):
            self.assertEqual(faults_in(f"return a {before} b;", "boundary"), [f"return a {after} b;"])

    def test_constants_change(self):
        self.assertEqual(faults_in("a = 7;", "constant"), ["a = 6;", "a = 8;"])
        self.assertEqual(faults_in("a = 0xFFU;", "constant"), ["a = 254U;", "a = 256U;"])
        self.assertEqual(faults_in("a = 0;", "constant"), ["a = 1;"])
        self.assertEqual(faults_in("a = true;", "constant"), ["a = false;"])
        self.assertEqual(faults_in("a = 'x';", "constant"), ["a = 'y';"])
        self.assertEqual(faults_in("a1 = 2.5;", "constant"), [])

    def test_statements_are_dropped(self):
        self.assertEqual(faults_in("    a.b(c);", "statement"), [";"])
        self.assertEqual(faults_in("if (a) return;", "statement"), [";"])
        self.assertEqual(faults_in("break;  // here", "statement"), [";"])
        self.assertEqual(faults_in("++a;", "statement"), [";"])
        self.assertEqual(faults_in("a(b,\n  c);", "statement"), [])

    def test_operators_are_exchanged(self):
        self.assertEqual(faults_in("return a + b;", "operator"), ["return a - b;"])
        self.assertEqual(faults_in("return a == b;", "operator"), ["return a != b;"])
        self.assertEqual(faults_in("if (a &&\n b) c();", "operator"), ["if (a ||"])
        self.assertEqual(faults_in("++a;", "operator"), ["--a;"])
        self.assertEqual(faults_in("T<A*> a = F<B&>(-1, *c, &d);", "operator"), [])

    def test_names_are_exchanged_for_others_of_the_same_style_nearby(self):
        self.assertEqual(faults_in("a = b;", "name"), ["a = a;", "b = b;"])
        self.assertEqual(faults_in("First(kA, value);\nSecond(kB, value);", "name"),
                         ["First(kB, value);", "Second(kA, value);"])
        self.assertEqual(faults_in("const int a = b.c;", "name"), [])

    def test_constants_outside_of_functions_change(self):
        source = faults.Source("a.h", "constexpr int kA = 5;\n"
                               "constexpr int kTable[] = {\n    3,\n};\nint Sum(int a = 2);\n")
        after = [fault.after for kinds in source.faults().values() for some in kinds.values() for fault in some]
        self.assertEqual(after, ["constexpr int kA = 6;", "constexpr int kA = 4;", "    4,", "    2,",
                                 "int Sum(int a = 3);", "int Sum(int a = 1);"])


def python_faults_in(body, kind):
    """The same for a line of a Python function."""
    return in_second_line(python_faults.Source("a.py", f"def f():\n    {body}\n"), kind)


class EachKindOfFaultInPython(unittest.TestCase):
    def test_conditions_are_negated_and_fixed(self):
        self.assertEqual(python_faults_in("if a(b): return c", "condition"),
                         ["if (not (a(b))): return c", "if False: return c", "if True: return c"])
        self.assertEqual(python_faults_in("while a: b()", "condition"), ["while (not (a)): b()", "while False: b()"])
        self.assertEqual(python_faults_in("return not a", "condition"), ["return a"])
        self.assertEqual(python_faults_in("return [a for a in b if a]", "condition"),
                         ["return [a for a in b if (not (a))]", "return [a for a in b if False]",
                          "return [a for a in b if True]"])

    def test_boundaries_move_by_one(self):
        self.assertEqual(python_faults_in("return a < b", "boundary"), ["return a <= b"])
        self.assertEqual(python_faults_in("return 1 <= (a) >= b", "boundary"),
                         ["return 1 < (a) >= b", "return 1 <= (a) > b"])

    def test_constants_change(self):
        self.assertEqual(python_faults_in("a = 7", "constant"), ["a = 6", "a = 8"])
        self.assertEqual(python_faults_in("a = (0x10, 0, True, None, 'x', 1.5)", "constant"),
                         ["a = (0x10, 0, False, None, 'x', 1.5)", "a = (0x10, 1, True, None, 'x', 1.5)",
                          "a = (15, 0, True, None, 'x', 1.5)", "a = (17, 0, True, None, 'x', 1.5)"])

    def test_statements_are_dropped(self):
        for statement in ("a.b(c)", "a = b", "a += b", "raise a", "del a"):
            self.assertEqual(python_faults_in(statement, "statement"), ["pass"])
        self.assertEqual(python_faults_in("while a: break", "statement"), ["while a: pass"])
        self.assertEqual(python_faults_in("return a", "statement"), [])
        self.assertEqual(python_faults_in("a(b,\n      c)", "statement"), [])

    def test_operators_are_exchanged(self):
        self.assertEqual(python_faults_in("return a is not b and c | d", "operator"),
                         ["return a is b and c | d", "return a is not b and c & d", "return a is not b or c | d"])
        self.assertEqual(python_faults_in("a += b", "operator"), ["a -= b"])
        self.assertEqual(python_faults_in("return 'a%s' % b", "operator"), [])

    def test_names_are_exchanged_for_others_of_the_same_style_nearby(self):
        self.assertEqual(python_faults_in("return first(a, b.c)", "name"),
                         ["return first(a, a.c)", "return first(b, b.c)"])
        self.assertEqual(python_faults_in("return F(_a).c + _b + D", "name"), ["return F(_a).c + _a + D",
                                                                             "return F(_b).c + _b + D"])

    def test_columns_count_characters(self):
        self.assertEqual(python_faults_in("return 'ä', 7, 'ö', a < b", "boundary"), ["return 'ä', 7, 'ö', a <= b"])

    def test_annotations_texts_and_what_is_no_function_are_left_alone(self):
        text = "@a(1)\nclass A:\n    b: C[1] = a(b)\n\n    def f(self, b: int[1]) -> C[1]:\n" \
               "        '''If a < 1'''\n        # a < 1\n"
        self.assertEqual(python_faults.Source("a.py", text).faults(), {})
        found = python_faults.Source("a.py", "A = 3\n\n\ndef f(a=2):\n    pass\n").faults()
        self.assertEqual([fault.after for kinds in found.values() for some in kinds.values() for fault in some],
                         ["A = 4", "A = 2", "def f(a=3):", "def f(a=1):"])


def script_faults_in(body, kind):
    """The same for a line of a function of JavaScript."""
    return in_second_line(script_faults.Source("a.js", "function f() {\n" + body + "\n}\n"), kind)


class FaultsInScripts(unittest.TestCase):
    def test_are_those_of_the_other_sources(self):
        self.assertEqual(script_faults_in("if (a === 1) b();", "condition"),
                         ["if (!(a === 1)) b();", "if (false) b();", "if (true) b();"])
        self.assertEqual(script_faults_in("return a !== b || c === d;", "operator"),
                         ["return a !== b && c === d;", "return a !== b || c !== d;", "return a === b || c === d;"])
        self.assertEqual(script_faults_in("a.b(c);", "statement"), [";"])
        self.assertEqual(script_faults_in("const a = (b) => b < 2;", "statement"), [])
        self.assertEqual(script_faults_in("const a = (b) => b < 2;", "boundary"), ["const a = (b) => b <= 2;"])
        self.assertEqual(script_faults_in("let a = b(c, null);", "name"), [])
        self.assertEqual(script_faults_in("b(c, d);", "name"), ["b(c, c);", "b(d, d);"])

    def test_leave_texts_comments_and_regular_expressions_alone(self):
        for line in ('a("b < 1");', "// a < 1", "/^[a/]+ < \\/1/u.test(a);"):
            self.assertEqual(script_faults_in(line, "boundary"), [])
        self.assertEqual(script_faults_in("return a / b < c / d;", "boundary"), ["return a / b <= c / d;"])


class LeftAlone(unittest.TestCase):
    def assert_no_faults(self, text):
        self.assertEqual(faults.Source("a.h", text).faults(), {})

    def test_comments_and_texts(self):
        self.assert_no_faults("// if (a < 1) b = 2;\n/* b = 2;\n   a < 1 */\n")
        self.assertEqual(faults_in('"if (a < 1) b = 2; /* \\" ";', "constant"), [])
        self.assertEqual(faults_in('(R"x(a < 1)" b == 2;)x");', "boundary"), [])
        self.assertEqual(faults_in("a('\"', b < c, '\"');", "boundary"), ["a('\"', b <= c, '\"');"])

    def test_lines_of_the_preprocessor(self):
        self.assert_no_faults("#define A(b) (b < 1 && \\\n              b == 2)\n#if A > 3\n#endif\n")

    def test_code_for_windows(self):
        self.assert_no_faults("#if defined(_WIN32)\nint a = 1;\n#endif\n"
                              "#if !defined(_WIN32)\n#else\nint a = 1;\n#endif\n")
        ours = faults.Source("a.h", "#if defined(_WIN32)\nint a = 1;\n#else\nint b = 2;\n#endif\n").faults()
        self.assertEqual(list(ours), [4])

    def test_declarations(self):
        self.assert_no_faults("#include <a>\nnamespace a {\nusing B = int;\nclass C {\n  public:\n"
                              "    C(const C& other) noexcept;\n"
                              "    char name[260];\n    bool Has(int a) const;\n};\ntemplate <int N = 3>\nvoid F();\n"
                              "static_assert(sizeof(int) == 4);\nextern \"C\" {\nint G(int a);\n}\n}\n")
        self.assertEqual(faults_in("T* a;", "statement"), [])
        self.assertEqual(faults_in("const int a = F(b);", "statement"), [])


SOURCE = """int Half(int a) {
    int spare = a;
    spare += 0;
    if (a > 10) return 5;
    while (a % 2 != 0)
        ++a;
    return a / 2;
}
"""
TEST = """int Half(int a);
int main() { return Half(4) == 2 && Half(5) == 3 && Half(12) == 5 ? 0 : 1; }
"""
CMAKE = """cmake_minimum_required(VERSION 3.25)
project(small LANGUAGES CXX)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
add_executable(host_tests tools/half.cpp tests/test.cpp)
"""
PRESETS = {"version": 6, "configurePresets": [
    {"name": name, "generator": "Ninja", "binaryDir": "${sourceDir}/build/" + name,
     "cacheVariables": {"CMAKE_CXX_FLAGS": "-O1", "CMAKE_CXX_COMPILER_FORCED": "ON"}}
    for name in ("linux", "sanitize")]}


class SmallProject(unittest.TestCase):
    """Verdicts on the faults of a project that consists of one function and its test."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.root = pathlib.Path(cls.folder.name)
        for name, text in (("tools/half.cpp", SOURCE), ("tests/test.cpp", TEST), ("CMakeLists.txt", CMAKE),
                           ("CMakePresets.json", json.dumps(PRESETS)), ("tests/mutants.txt", "")):
            (cls.root / name).parent.mkdir(exist_ok=True)
            (cls.root / name).write_text(text)
        (cls.root / "mox_xmlApi").mkdir()
        (cls.root / "companions").mkdir()

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def run_all(self):
        """The exit code and what was printed."""
        with contextlib.redirect_stdout(io.StringIO()) as output, contextlib.redirect_stderr(output):
            code = mutants.main(["40", "1"], self.root, ("host_tests",))
        return code, output.getvalue()

    def test_1_verdicts(self):
        code, output = self.run_all()
        self.assertEqual(code, 1, output)
        results = {(entry["before"].strip(), entry["after"].strip()): entry["result"] for entry in
                   map(json.loads, (self.root / "build/mutants/results.jsonl").read_text().splitlines())}
        self.assertEqual(results["return a / 2;", "return a * 2;"], "caught")
        self.assertEqual(results["++a;", ";"], "caught")  # an endless loop
        self.assertEqual(results["spare += 0;", "spare -= 0;"], "no difference")
        self.assertEqual(results["if (a > 10) return 5;", "if (a > 11) return 5;"], "survived")
        self.assertIn("- if (a > 10) return 5;\n+ if (a > 11) return 5;", output)
        self.assertEqual((self.root / "build/mutants/linux-0/tree/tools/half.cpp").read_text(), SOURCE)

    def test_2_a_survivor_that_is_listed_passes(self):
        _, output = self.run_all()
        blocks = [block.split("\n", 1)[1] for block in output.split("\n\n") if block.startswith("survived")]
        self.assertGreater(len(blocks), 0)
        list_file = self.root / "tests/mutants.txt"
        list_file.write_text("\n\n".join(block + "\nNo test calls it so." for block in blocks))
        code, output = self.run_all()
        self.assertEqual(code, 0, output)
        list_file.write_text("tools/half.cpp\n- return a;\n+ return b;\nThis line does not exist.\n\n" +
                             list_file.read_text())
        code, output = self.run_all()
        self.assertEqual(code, 1, output)
        self.assertIn("no longer exists:\ntools/half.cpp\n- return a;", output)
        list_file.write_text("tools/half.cpp\n- return a;\n+ return b;\n")
        self.assertRaises(ValueError, self.run_all)

    def test_3_tests_that_fail_without_a_fault_are_no_result(self):
        (self.root / "tests/mutants.txt").write_text("")
        (self.root / "tests/test.cpp").write_text(TEST.replace("== 2", "== 3"))
        code, output = self.run_all()
        self.assertEqual(code, 2, output)
        self.assertIn("host_tests fails without a fault", output)

    def test_4_a_project_that_does_not_build_is_no_result(self):
        (self.root / "tests/test.cpp").write_text("int main() {")
        code, output = self.run_all()
        self.assertEqual(code, 2, output)
        self.assertIn("the project does not build without a fault", output)


class TheList(unittest.TestCase):
    def test_names_faults_that_can_still_be_made(self):
        explained = mutants.read_explained(mutants.ROOT / "tests/mutants.txt")
        self.assertEqual(mutants.outdated(mutants.ROOT, explained), [])


if __name__ == "__main__":
    unittest.main()
