"""One-line faults that can be made in a C++ source formatted by clang-format.

Fault kinds:
    condition   if (a) -> if (!(a)), if (true), if (false);  !a -> a
    boundary    a < b  -> a <= b, and so on
    constant    7 -> 8, 6;  true -> false;  'a' -> 'b'
    statement   a line that is one statement -> ;
    operator    a + b  -> a - b, and so on
    name        a name -> another name of the same style that stands within a few lines

Faults are made in the bodies of functions; outside of them only constants are changed, after a "=" or in a list of
values. Comments, texts, lines of the preprocessor, code for Windows alone, and declarations are left alone.
"""
import bisect
import collections
import re

KINDS = ("condition", "boundary", "constant", "statement", "operator", "name")

# kind; line number from 1; the whole line before and after
Fault = collections.namedtuple("Fault", "file kind number before after")

TOKEN = re.compile(r'''(?P<raw>R"(?P<end>[^(\s]*)\(.*?\)(?P=end)")|(?P<comment>//[^\n]*|/\*.*?\*/)'''
                   r'''|(?P<text>"(?:\\.|[^"\\\n])*")|(?P<char>(?<![0-9a-fA-F])'(?:\\.[^']*|[^'\\\n])')''', re.S)
CHARACTER = re.compile(r"'(?:\\.[^']*|[^'\\\n])'")
BOUNDARIES = {"<": "<=", "<=": "<", ">": ">=", ">=": ">"}
OPERATORS = {"==": "!=", "!=": "==", "&&": "||", "||": "&&", "+": "-", "-": "+", "*": "/", "/": "*", "%": "*",
             "&": "|", "|": "&", "<<": ">>", ">>": "<<", "+=": "-=", "-=": "+=", "|=": "&=", "&=": "|="}
# clang-format puts white space around these only when they are binary.
BINARY = re.compile(r"(?<=\s)(<=|>=|<<|>>|==|!=|&&|\|\||[+\-|&]=|[<>+\-*/%&|])(?=\s|$)")
STEP = re.compile(r"\+\+|--")
CONSTANT = re.compile(r"(?<![\w.'])(0x[0-9A-Fa-f]+|[0-9]+)(?=[uUlL]*(?![\w.']))|\b(true|false)\b|(?<=')[^\\'\n](?=')")
NOT = re.compile(r"(?<![\w)=])!(?=[\w(])")
IF = re.compile(r"\b(if|while) \(")
NAME = re.compile(r"(?P<before>(?:\b\w+::)+|\.|->|)\b(?P<name>[A-Za-z_]\w*)(?P<after>\(?)")
NO_NAMES = set("""alignof auto bool break case catch char char16_t char32_t class const const_cast constexpr continue
    decltype default delete do double else enum explicit false float for friend goto if inline int long mutable
    namespace new noexcept nullptr operator private protected public reinterpret_cast return short signed sizeof static
    static_assert static_cast std struct switch template this throw true try typedef typename union unsigned using
    virtual void volatile wchar16 while""".split())
DECLARATION = re.compile(r"(const |constexpr |static |auto\b|(?!(return|throw|delete|new|goto) )"
                         r"[A-Za-z_][\w:]*(<.*>)?[*&]* +[*&]*[A-Za-z_]\w*\s*([;={(\[,]|$))")
NO_STATEMENT = re.compile(r"(return\b.|using |static_assert|typedef |friend |goto |else\b|do\b|case |default:|public:)")
DECLARED = re.compile(r"(?<![\w.])(?!(return|throw|delete|new|case|else|goto) )[A-Za-z_][\w:]*(<.*>)?[*&]* $")
LEFT_ALONE = re.compile(r"\s*(static_assert|template <|using |friend |typedef )")
NAMES_NEAR = 8  # lines


def masked(text):
    """The text with comments, texts and lines of the preprocessor replaced by others of the same length."""
    def mask(match):
        if match["char"]:
            return match[0]
        filler = " " if match["comment"] else '"'
        return re.sub(r"[^\n]", filler, match[0])

    lines = TOKEN.sub(mask, text).split("\n")
    conditions = []  # of each "#if": is it about Windows, and is its code for other systems?
    continued = False
    for i, line in enumerate(lines):
        directive = re.match(r"\s*#\s*(\w+)(.*)", line)
        if directive and not continued:
            name, what = directive.groups()
            if name.startswith("if"):
                isWindows = "_WIN32" in what or "_MSC_VER" in what
                conditions.append((isWindows, not isWindows or "!defined" in what or name == "ifndef"))
            elif name == "endif":
                conditions.pop()
            elif name in ("else", "elif"):
                isWindows, isOurs = conditions.pop()
                conditions.append((isWindows, not isWindows or not isOurs))
        isDirective = continued or directive is not None
        continued = isDirective and line.endswith("\\")
        if isDirective or not all(isOurs for _, isOurs in conditions):
            lines[i] = " " * len(line)
    return "\n".join(lines)


def scopes(code):
    """Where the kind of the innermost braces changes, and to which: "file", "type", "values" or "body"."""
    starts, kinds, stack = [0], ["file"], ["file"]
    head = 0
    for match in re.finditer(CHARACTER.pattern + "|[{};]", code):
        mark = match[0]
        if len(mark) > 1:
            continue
        if mark == "{":
            before = code[head:match.start()]
            if stack[-1] == "body":
                stack.append("body")
            elif re.search(r"=\s*$", before) or stack[-1] == "values":
                stack.append("values")
            elif re.search(r"\b(namespace|class|struct|union|enum|extern)\b", before) and ")" not in before:
                stack.append("file" if "namespace" in before else "type")
            else:
                stack.append("body" if ")" in before else "values")
        elif mark == "}" and len(stack) > 1:
            stack.pop()
        head = match.end()
        starts.append(match.end())
        kinds.append(stack[-1])
    return starts, kinds


def closing(code, opening):
    """The position of the parenthesis that closes the one at the given position of a line, or -1."""
    depth = 0
    for i in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[i], 0)
        if depth == 0:
            return i
    return -1


class Source:
    """A source file and the faults that can be made in it."""

    # What a language has of its own.
    masked = staticmethod(masked)
    BINARY, OPERATORS, NO_NAMES, DECLARATION, DECLARED = BINARY, OPERATORS, NO_NAMES, DECLARATION, DECLARED

    def __init__(self, file, text):
        self.file = file
        self.lines = text.split("\n")
        code = self.masked(text)
        self.code = code.split("\n")
        self.starts, self.kinds = scopes(code)
        self.offsets = [0]
        for line in self.code:
            self.offsets.append(self.offsets[-1] + len(line) + 1)
        self.body_names = [[found for found in self.names_of(line) if self.scope(i, found[1]) == "body"]
                           for i, line in enumerate(self.code)]

    def scope(self, i, column):
        return self.kinds[bisect.bisect_right(self.starts, self.offsets[i] + column) - 1]

    def faults(self):
        """For each line that can have a fault: for each kind, the faults."""
        found = {}
        for i, code in enumerate(self.code):
            if not code.strip() or LEFT_ALONE.match(code):
                continue
            kinds = collections.defaultdict(list)
            for kind, start, end, new in self.changes(i, code):
                line = self.lines[i]
                kinds[kind].append(Fault(self.file, kind, i + 1, line, line[:start] + new + line[end:]))
            if kinds:
                found[i + 1] = kinds
        return found

    def changes(self, i, code):
        """(kind, first column, last column, new text) of each fault of a line."""
        for match in CONSTANT.finditer(code):
            inBody = self.scope(i, match.start()) == "body"
            isValue = self.scope(i, match.start()) == "values" or "=" in code[:match.start()]
            if inBody or isValue:
                yield from (("constant", *match.span(), new) for new in self.other_constants(match[0]))

        bodyChanges = [*self.conditions(code, self.lines[i]), *self.operators(code), *self.names(i),
                       *self.statements(i, code)]
        yield from (change for change in bodyChanges if self.scope(i, change[1]) == "body")

    @staticmethod
    def other_constants(old):
        if old in ("true", "false"):
            return ["false" if old == "true" else "true"]
        if not old[0].isdigit() or (len(old) == 1 and old not in "0123456789"):
            return [chr(ord(old) + 1)] if old != "&" else ["%"]  # '&' + 1 is a quote
        number = int(old, 16) if old.startswith("0x") else int(old)
        return [str(number + 1)] + ([str(number - 1)] if number > 0 else [])

    @staticmethod
    def conditions(code, line):
        for match in IF.finditer(code):
            end = closing(code, match.end() - 1)
            inner = code[match.end():end]
            if end < 0 or ";" in inner or re.search(r"[^=!<>]=[^=]", inner):
                continue
            yield "condition", match.end(), end, f"!({line[match.end():end]})"
            for constant in ("true", "false") if match[1] == "if" else ("false",):
                if inner != constant:
                    yield "condition", match.end(), end, constant
        for match in NOT.finditer(code):
            yield "condition", *match.span(), ""

    def operators(self, code):
        for match in self.BINARY.finditer(code):
            old = match[1]
            if old in BOUNDARIES:
                yield "boundary", *match.span(), BOUNDARIES[old]
            else:
                yield "operator", *match.span(), self.OPERATORS[old]
        for match in STEP.finditer(code):
            yield "operator", *match.span(), {"++": "--", "--": "++"}[match[0]]

    def statements(self, i, code):
        statement = code.strip()
        before = "".join(self.code[max(0, i - 20):i]).rstrip()[-1:]
        isWhole = (statement.endswith(";") and len(statement) > 1 and before in ";{}:)" and
                   re.match(r"\+\+|--|[*(A-Za-z_]", statement) and
                   all(statement.count(a) == statement.count(b) for a, b in ("()", "{}", "[]")))
        if isWhole and not NO_STATEMENT.match(statement) and not self.DECLARATION.match(statement):
            yield "statement", len(code) - len(code.lstrip()), len(self.lines[i]), ";"

    def names_of(self, code):
        """(style, position, name) of each name that another of its style may replace."""
        for match in NAME.finditer(CHARACTER.sub(lambda match: "'" * len(match[0]), code)):
            name = match["name"]
            isCall = match["after"] == "("
            isType = name[0].isupper() and not isCall and not match["before"]
            if name in self.NO_NAMES or isType or match["before"].startswith("std::") or name.endswith("_t"):
                continue
            if self.DECLARED.search(code[:match.start()]):
                continue
            before = "." if match["before"] == "->" else match["before"]
            form = "k" if re.match("k[A-Z]", name) else name[0].isupper()
            yield (form, isCall, before, name.endswith("_")), match.start("name"), name

    def names(self, i):
        near = collections.defaultdict(set)
        for names in self.body_names[max(0, i - NAMES_NEAR):i + NAMES_NEAR + 1]:
            for style, _, name in names:
                near[style].add(name)
        for style, column, name in self.body_names[i]:
            for other in sorted(near[style] - {name}):
                yield "name", column, column + len(name), other
