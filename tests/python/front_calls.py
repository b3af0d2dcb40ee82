"""Random calls, carried out through the package, in the words that front_replay reads.

A call is a list of words. Texts and bytes are in hexadecimal digits after an "x"; "-" stands for None. The first word
says what is called, the next ones are section, name, kind of value and value, where the call has these.
"""
import random
from typing import Any, Callable, Dict, List, Optional, Union

from mox_xmlapi import (Control, Entry, EntryTable, Form, MoxError, Owner, Presentation, Reason, Section, Settings,
                        Shape, Table, Value, ValueType)

Call = List[str]
REASONS = [None, *Reason]  # the front numbers its reasons from 1 on, in the same order


def hexed(data: Union[str, bytes, None]) -> str:
    if data is None:
        return "-"
    return "x" + (data if isinstance(data, bytes) else data.encode("utf-8", "surrogatepass")).hex()


def unhexed(word: str) -> str:
    return bytes.fromhex(word[1:]).decode("utf-8", "surrogatepass")


# ---- values

def value_words(value: Value) -> List[str]:
    if isinstance(value, bool):
        return ["bool", str(int(value))]
    if isinstance(value, int):
        return ["int", str(value)]
    if isinstance(value, float):
        return ["float", f"{value:.17g}"]
    return ["str" if isinstance(value, str) else "bytes", hexed(value)]


def value_of(kind: str, word: str) -> Value:
    if kind == "bool":
        return word == "1"
    if kind == "int":
        return int(word)
    if kind == "float":
        return float(word)
    return unhexed(word) if kind == "str" else bytes.fromhex(word[1:])


def entry_words(entry: Entry) -> List[str]:
    words = [hexed(entry.name), hexed(entry.value), str(int(entry.type)), str(int(entry.shape)), str(entry.id)]
    ui = entry.ui
    if ui is not None:
        words += [str(int(ui.control)), str(int(ui.provider_owner)), str(ui.provider_index), hexed(ui.shown_name),
                  hexed(ui.comment), hexed(ui.value)]
    return words


def entry_of(words: List[str]) -> Entry:
    def optional(word: str) -> Optional[str]:
        return None if word == "-" else unhexed(word)

    ui = None
    if len(words) > 5:
        ui = Presentation(Control(int(words[5])), Owner(int(words[6])), int(words[7]), unhexed(words[8]),
                          unhexed(words[9]), optional(words[10]))
    return Entry(unhexed(words[0]), optional(words[1]), ValueType(int(words[2])), Shape(int(words[3])), int(words[4]),
                 ui)


# ---- carrying out

KINDS: Dict[str, Any] = {"int": int, "float": float, "bool": bool, "str": str, "bytes": bytes}


class Replay:
    """Carries out calls through the package and says what each of them gives, as front_replay does."""

    def __init__(self) -> None:
        self.document: Any = None

    def call(self, words: Call) -> str:
        makers: Dict[str, Callable[..., Any]] = {
            "new_settings": Settings, "new_table": lambda name: Table(unhexed(name)),
            "parse_settings": lambda data: Settings.parse(bytes.fromhex(data[1:])),
            "parse_table": lambda data: Table.parse(bytes.fromhex(data[1:]))}
        if words[0] in makers:
            self.document = makers[words[0]](*words[1:])
            return "ok"
        try:
            return "ok " + self._carry(words)
        except MoxError as error:
            message = "" if words[0] == "assign" else error.message
            return f"failed {REASONS.index(error.reason)} {message}"

    def _section(self, word: str) -> EntryTable:
        if isinstance(self.document, Table):
            return self.document
        # Also one that is not there: it can be written to, but is not found.
        return Section(self.document._handle, unhexed(word))

    def _carry(self, words: Call) -> str:
        call, *rest = words
        if call == "save":
            section = None if rest[1] == "-" else unhexed(rest[1])
            form = Form(int(rest[0])) if rest[0] != "0" else None
            if isinstance(self.document, Table):
                return hexed(self.document.to_bytes(form=form if form is Form.UTF8 else None))
            return hexed(self.document.to_bytes(form=form, section=section))
        if call == "form":
            self.document.form = Form(int(rest[0]))
            return ""
        if call == "sections":
            return "".join(hexed(name) + " " for name in self.document)
        if call == "make_section":
            self.document.make_section(unhexed(rest[0]), editable=rest[1] == "1", first_id=int(rest[2]),
                                       type=int(rest[3]))
            return ""
        if call == "remove_section":
            del self.document[unhexed(rest[0])]
            return ""
        return self._carry_in(call, self._section(rest[0]), rest[1:])

    def _carry_in(self, call: str, table: EntryTable, rest: Call) -> str:
        if call == "get":
            return " ".join(value_words(table[unhexed(rest[0])]))
        if call == "read":
            return " ".join(value_words(table.read(unhexed(rest[0]), KINDS[rest[1]])))
        if call == "contains":
            return str(int(unhexed(rest[0]) in table))
        if call == "names":
            return "".join(hexed(entry.name) + " " for entry in table.entries())
        if call == "entries":
            entries = "".join(" ".join(entry_words(entry)) + "; " for entry in table.entries())
            return entries + str(table.count_unreadable())
        actions: Dict[str, Callable[..., None]] = {
            "assign": lambda name, kind, value: table.__setitem__(unhexed(name), value_of(kind, value)),
            "write": lambda name, kind, value: table.write(unhexed(name), value_of(kind, value)),
            "add": lambda eud, before, *entry: table.add(entry_of(list(entry)),
                                                         None if before == "-" else unhexed(before), eud=eud == "1"),
            "put": lambda eud, *entry: table.put(entry_of(list(entry)), eud=eud == "1"),
            "clear": table.clear,
            "rename": lambda name, new: table.rename(unhexed(name), unhexed(new)),
            "comment": lambda name, text: table.set_comment(unhexed(name), unhexed(text)),
            "shown": lambda name, text: table.set_shown_name(unhexed(name), unhexed(text)),
            "provider": lambda name, owner, index: table.set_provider(unhexed(name), Owner(int(owner)), int(index)),
            "eud": lambda name, eud: table.set_eud(unhexed(name), eud == "1"),
            "remove": lambda name, occurrence: table.remove(unhexed(name),
                                                            None if occurrence == "-" else int(occurrence)),
            "set_value": lambda name, value, eud, respect: table.set_value(unhexed(name), unhexed(value),
                                                                           eud=eud == "1", respect_eud=respect == "1"),
        }
        actions[call](*rest)
        return ""


# ---- random calls

NAMES = ["Exposure", "Gain", "Model", "A", "a b", "Länge", "😀", "\ud800", "<&>\"'", "", "x" * 259, "y" * 260,
         "ä" * 200, "nul\0", "AutoExposure", "ToneCurve", "TestPattern", "Lease", "CalibratedOn", "LegacyName"]
SECTIONS = ["Camera", "Lens", "Trigger", "Neu", "Ab Schnitt", "", "\udfff", "Network"]
TEXTS = ["", "1", "0", " 17", "17 ", "+5", "-3", "1_0", "00012", "2147483648", "9223372036854775808", "true", "false",
         "1.5", ".5", "5.", "1e3", "1e999", "nan", "0A0b", "abc", "text", "Förderband", "😀", "\ud83d", "a\nb", "\x01",
         " ", "x" * 300, "ä" * 200, "٣", "<&>", "0x10", "1" * 30, "\ufeff", "\uffff"]
INTS = [0, 1, -1, 7, 255, 32767, -32769, 65536, 2147483647, -2147483648, 2147483648, 4294967295, 4294967296,
        -2147483649, 2**53, 2**53 + 1, 2**63 - 1, -2**63]
FLOATS = [0.0, -0.0, 1.5, 0.1, 1e300, 5e-324, float("inf"), float("nan"), 2400.0]
DATA = [b"", b"\0", b"\x00\xff\x10", bytes(range(200))]


class RandomCalls:
    """A sequence of calls, the same ones for the same seed."""

    def __init__(self, seed: int, documents: List[Call]) -> None:
        self.random = random.Random(seed)
        first = self.random.choice(documents)
        self.is_table = first[0].endswith("table")
        calls = [first] + [self.one() for _ in range(self.random.randint(5, 40))]
        self.calls = calls + [["entries", self.section()], ["save", "2", "-"], ["save", "3", "-"]]

    def section(self) -> str:
        return "x" if self.is_table else hexed(self.random.choice(SECTIONS))

    def name(self) -> str:
        return hexed(self.random.choice(NAMES[:5] if self.random.random() < 0.5 else NAMES))

    def text(self) -> str:
        return hexed(self.random.choice(TEXTS))

    def value(self) -> List[str]:
        kinds: List[List[Any]] = [[True, False], INTS, FLOATS, TEXTS, DATA]
        return value_words(self.random.choice(self.random.choice(kinds)))

    def entry(self) -> List[str]:
        r = self.random
        ui = None
        if r.random() < 0.5:
            ui = Presentation(r.choice(list(Control)), r.choice(list(Owner)), r.choice([0, 3, 2**32 - 1]),
                              r.choice(["", "Verstärkung", "Gain"]), r.choice(["", "a comment"]),
                              r.choice([None, "", "1.5", "1"]))
        return entry_words(Entry(r.choice(NAMES), r.choice([None, *TEXTS]), r.choice(list(ValueType)),
                                 r.choice([Shape.SINGLE, *Shape]), r.choice([0, 1, 2**32 - 1]), ui))

    def flag(self) -> str:
        return self.random.choice("01")

    def one(self) -> Call:
        r, section, name = self.random, self.section(), self.name()
        calls: List[Callable[[], Call]] = [
            lambda: ["assign", section, name, *self.value()], lambda: ["write", section, name, *self.value()],
            lambda: ["get", section, name], lambda: ["read", section, name, r.choice(list(KINDS))],
            lambda: ["contains", section, name], lambda: ["names", section], lambda: ["entries", section],
            lambda: ["add", section, self.flag(), r.choice(["-", self.name()]), *self.entry()],
            lambda: ["put", section, self.flag(), *self.entry()],
            lambda: ["rename", section, name, self.name()], lambda: ["comment", section, name, self.text()],
            lambda: ["shown", section, name, self.text()],
            lambda: ["provider", section, name, str(int(r.choice(list(Owner)))), r.choice(["0", "5", "4294967295"])],
            lambda: ["eud", section, name, self.flag()],
            lambda: ["remove", section, name, r.choice(["-", "0", "1"])],
            lambda: ["set_value", section, name, self.text(), self.flag(), self.flag()],
            lambda: ["save", r.choice("0123"), "-"]]
        if not self.is_table:
            calls += [lambda: ["sections"], lambda: ["form", r.choice("12")], lambda: ["save", "2", section],
                      lambda: ["make_section", section, self.flag(), r.choice(["0", "100"]), r.choice(["0", "65535"])]]
        rare: List[Callable[[], Call]] = [lambda: ["clear", section]]
        if not self.is_table:
            rare += [lambda: ["remove_section", section]]
        writes_and_reads = calls[:4]
        return r.choice(rare if r.random() < 0.02 else writes_and_reads if r.random() < 0.4 else calls)()
