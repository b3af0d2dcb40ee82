"""Numbers and records of documents."""
import enum
from dataclasses import dataclass
from typing import Optional, Union

# What a key can hold, and what can be written to one.
Value = Union[int, float, bool, str, bytes]

# The forms of a document. NARROW: one byte per character, keeps 7-bit text only. WIDE: two bytes per UTF-16 unit, low
# byte first, keeps everything. UTF8: for other programs; only to_bytes makes it.
Form = enum.IntEnum("Form", {"NARROW": 1, "WIDE": 2, "UTF8": 3})
# Encodings that open and parse import; ZEROS only in a diagnostic, of a file that has nothing else.
Encoding = enum.IntEnum("Encoding", {"NARROW": 1, "WIDE": 2, "UTF8": 3, "LATIN1": 4, "UTF16_BE": 5, "ZEROS": 6})
# What a save of settings writes: the document, or an export of the presentation data or of the values of its entries.
Content = enum.IntEnum("Content", {"DOCUMENT": 0, "UI": 1, "VALUES": 2})
# Types of values, and how many of that type a value holds.
ValueType = enum.IntEnum("ValueType", {"SHORT": 2, "LONG": 3, "DOUBLE": 5, "STRING": 8, "BOOL": 11, "CHAR": 16,
                                       "BYTE": 17, "USHORT": 18, "ULONG": 19, "UCSTRING": 31})
Shape = enum.IntEnum("Shape", {"SINGLE": 0, "VECTOR": 0x1000, "ARRAY": 0x2000})
# The control that displays a value and edits it, and the owner of an entry's provider.
Control = enum.IntEnum("Control", {
    "NONE": 0, "NUMBER": 1, "TEXT": 2, "SWITCH": 4, "NO_EDIT": 5, "RGB": 7, "BUTTON": 8, "TEXT_ARRAY": 12,
    "NAMED_ARRAY": 14, "SWITCH_ARRAY": 15, "RADIO_ARRAY": 16, "STATE": 17, "NAMED_LIST_ARRAY": 18, "RADIO": 19,
    "PROPERTY_ARRAY": 20})
Owner = enum.IntEnum("Owner", {"NONE": 0, "APP": 1, "DWG": 2, "ERG": 4})
# How serious a diagnostic is.
Severity = enum.IntEnum("Severity", {"ERROR": 1, "WARNING": 2, "NOTE": 3})


@dataclass(frozen=True)
class Presentation:
    """What an editor needs to display an entry. Its value is mostly empty; see Entry for None."""

    control: Control = Control.NONE
    provider_owner: Owner = Owner.NONE
    provider_index: int = 0
    shown_name: str = ""
    comment: str = ""
    value: Optional[str] = None


@dataclass(frozen=True)
class Entry:
    """One entry of a table, or one key of a section, with its value as text. It is a copy of what is in the document.

    A value that was read is None if it contains an unpaired surrogate and the type is not UCSTRING. One that is to be
    written is None to write none. An id of 0 means none. To change an entry, use dataclasses.replace and put:

    >>> import dataclasses
    >>> dataclasses.replace(Entry("Gain", "1.5", ValueType.DOUBLE), id=7, ui=Presentation(Control.NUMBER)).id
    7
    """

    name: str
    value: Optional[str] = None
    type: ValueType = ValueType.STRING
    shape: Shape = Shape.SINGLE
    id: int = 0
    ui: Optional[Presentation] = None

    @property
    def effective_value(self) -> str:
        """The text that reads of the key return: the own value or, if that is empty, that of the presentation data."""
        if self.value is None or self.value or self.ui is None:
            return self.value or ""
        return self.ui.value or ""


@dataclass(frozen=True)
class Diagnostic:
    """What is wrong, or likely to be, at a place in a file. encoding is that with which the file can be imported."""

    severity: Severity
    line: int
    column: int
    message: str
    encoding: Optional[Encoding] = None
