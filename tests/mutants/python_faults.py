"""One-line faults that can be made in a Python source, of the kinds that faults.py lists.

Faults are made in the bodies of functions; outside of them only constants are changed. Comments, texts, annotations and
decorators are left alone, as is an expression that goes over several lines.
"""
import ast
import collections
import re

from faults import NAMES_NEAR, Fault

BOUNDARIES = {ast.Lt: ("<", "<="), ast.LtE: ("<=", "<"), ast.Gt: (">", ">="), ast.GtE: (">=", ">")}
OPERATORS = {ast.Eq: ("==", "!="), ast.NotEq: ("!=", "=="), ast.Is: ("is", "is not"), ast.IsNot: ("is not", "is"),
             ast.In: ("in", "not in"), ast.NotIn: ("not in", "in"), ast.And: ("and", "or"), ast.Or: ("or", "and"),
             ast.Add: ("+", "-"), ast.Sub: ("-", "+"), ast.Mult: ("*", "//"), ast.FloorDiv: ("//", "*"),
             ast.Mod: ("%", "*"), ast.BitAnd: ("&", "|"), ast.BitOr: ("|", "&"), ast.LShift: ("<<", ">>"),
             ast.RShift: (">>", "<<")}
STATEMENTS = (ast.Assign, ast.AugAssign, ast.Raise, ast.Break, ast.Continue, ast.Delete)
FUNCTIONS = (ast.FunctionDef, ast.AsyncFunctionDef, ast.Lambda)


def parts(node, in_body=False):
    """(node, whether it is in the body of a function) of the nodes below that can have a fault, in document order."""
    yield node, in_body
    for field, value in ast.iter_fields(node):
        if field in ("annotation", "returns", "decorator_list"):
            continue
        for part in value if isinstance(value, list) else [value]:
            if isinstance(part, ast.AST) and not isinstance(part, ast.JoinedStr):  # these have no exact positions
                yield from parts(part, in_body or (isinstance(node, FUNCTIONS) and field == "body"))


class Source:
    """A source file and the faults that can be made in it."""

    def __init__(self, file, text):
        self.file = file
        self.lines = text.split("\n")
        # The columns that ast gives are of bytes. Only texts and comments have other characters than those of ASCII.
        self.nodes = list(parts(ast.parse(re.sub(r"[^\x00-\x7f]", "?", text))))

    def faults(self):
        """For each line that can have a fault: for each kind, the faults."""
        found = collections.defaultdict(lambda: collections.defaultdict(list))
        for kind, number, start, end, new in self.changes():
            line = self.lines[number - 1]
            fault = Fault(self.file, kind, number, line, line[:start] + new + line[end:])
            if fault not in found[number][kind]:
                found[number][kind].append(fault)
        return {number: found[number] for number in sorted(found)}

    def changes(self):
        """(kind, line, first column, last column, new text) of each fault."""
        called = {id(node.func) for node, _ in self.nodes if isinstance(node, ast.Call)}
        names = [found for node, in_body in self.nodes if in_body for found in self.name_of(node, id(node) in called)]
        for node, in_body in self.nodes:
            if isinstance(node, ast.Constant):
                yield from self.constants(node)
            if in_body:
                yield from self.conditions(node)
                yield from self.operators(node)
                yield from self.statements(node)
        for style, number, column, name in names:
            near = {other for its, line, _, other in names if its == style and abs(line - number) <= NAMES_NEAR}
            yield from (("name", number, column, column + len(name), other) for other in sorted(near - {name}))

    def text_of(self, node):
        """What stands in the source; None if it goes over several lines."""
        if node.lineno != node.end_lineno:
            return None
        return self.lines[node.lineno - 1][node.col_offset:node.end_col_offset]

    def instead(self, kind, node, new):
        return kind, node.lineno, node.col_offset, node.end_col_offset, new

    def constants(self, node):
        value = node.value
        if isinstance(value, bool):
            yield self.instead("constant", node, str(not value))
        elif isinstance(value, int):
            yield self.instead("constant", node, str(value + 1))
            if value > 0:
                yield self.instead("constant", node, str(value - 1))

    def conditions(self, node):
        isChoice = isinstance(node, (ast.If, ast.IfExp))
        tests = [node.test] if isChoice or isinstance(node, ast.While) else getattr(node, "ifs", [])
        for test in tests:
            text = self.text_of(test)
            if text is None or isinstance(test, ast.NamedExpr):
                continue
            yield self.instead("condition", test, f"(not ({text}))")
            for constant in ("False",) if isinstance(node, ast.While) else ("True", "False"):
                if text != constant:
                    yield self.instead("condition", test, constant)
        if isinstance(node, ast.UnaryOp) and isinstance(node.op, ast.Not) and self.text_of(node.operand) is not None:
            yield self.instead("condition", node, self.text_of(node.operand))

    def operators(self, node):
        if isinstance(node, ast.Compare):
            pairs = zip(node.ops, [node.left, *node.comparators], node.comparators)
        elif isinstance(node, ast.BoolOp):
            pairs = ((node.op, left, right) for left, right in zip(node.values, node.values[1:]))
        elif isinstance(node, ast.BinOp):
            pairs = [(node.op, node.left, node.right)]
        elif isinstance(node, ast.AugAssign):
            pairs = [(node.op, node.target, node.value)]
        else:
            return
        for operator, left, right in pairs:
            boundary = BOUNDARIES.get(type(operator))
            old, new = boundary or OPERATORS.get(type(operator), (None, None))
            isFormat = isinstance(operator, ast.Mod) and isinstance(getattr(left, "value", None), str)
            if old is None or isFormat or left.end_lineno != right.lineno:
                continue
            between = self.lines[right.lineno - 1][left.end_col_offset:right.col_offset]
            at = left.end_col_offset + between.index(old.split()[0])
            length = len(re.match(old.replace("+", r"\+").replace("*", r"\*").replace("|", r"\|").replace(" ", r"\s+"),
                                  self.lines[right.lineno - 1][at:])[0])
            yield "boundary" if boundary else "operator", right.lineno, at, at + length, new

    def statements(self, node):
        isCall = isinstance(node, ast.Expr) and not isinstance(node.value, (ast.Constant, ast.Yield, ast.YieldFrom))
        if (isCall or isinstance(node, STATEMENTS)) and self.text_of(node) is not None:
            yield self.instead("statement", node, "pass")

    @staticmethod
    def name_of(node, isCall):
        """(style, line, position, name) of a name that another of its style may replace."""
        if isinstance(node, ast.Name) and isinstance(node.ctx, ast.Load):
            name = node.id
        elif isinstance(node, ast.Attribute):
            name = node.attr
        else:
            return
        style = (type(node), isCall, name[0] == "_", name.lstrip("_")[:1].isupper(), name.isupper())
        yield style, node.end_lineno, node.end_col_offset - len(name), name
