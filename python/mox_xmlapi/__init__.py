"""Settings documents and data tables in XML files, by the library mox_host.

>>> import pathlib, tempfile
>>> path = pathlib.Path(tempfile.mkdtemp(), "camera.xml")
>>> with Settings() as settings:
...     settings.make_section("Camera")["Exposure"] = 1800
...     settings.save(path)
>>> with Settings.open(path) as settings:
...     settings["Camera"]["Exposure"] = 2400
...     settings.save(backup=path.with_suffix(".bak"))
>>> Settings.open(path)["Camera"]["Exposure"]
2400

Settings is a mapping of sections, a Section one of values; a Table document is a mapping of values, too. Whole entries,
with their presentation data, are Entry objects. What cannot be stored, or would be lost when the document is saved and
opened, is refused: every failure is a MoxError, of a class for its reason, with file, line and column.
"""
from ._documents import Document, Section, Settings, Table, diagnose
from ._entries import EntryTable
from ._errors import (AmbiguousError, ArgumentError, BusyError, ChangedError, ClosedError, DocumentError,
                      DocumentSyntaxError, FileError, FileMissingError, FilePermissionError, InvalidTextError,
                      LibraryError, MoxError, NameTakenError, NoSuchKeyError, NoSuchSectionError, NotKeptError,
                      NotStoredError, OutOfMemoryError, OutOfRangeError, ProtectedError, Reason, RefusedError,
                      UnconfirmedError, UnreadableError, WrongEncodingError, WrongKindError, WrongTypeError)
from ._library import library_version
from ._types import (Content, Control, Diagnostic, Encoding, Entry, Form, Owner, Presentation, Severity,
                     Shape, Value, ValueType)

__all__ = [
    "AmbiguousError", "ArgumentError", "BusyError", "ChangedError", "ClosedError", "Content", "Control", "Diagnostic",
    "Document", "DocumentError", "DocumentSyntaxError", "Encoding", "Entry", "EntryTable", "FileError",
    "FileMissingError", "FilePermissionError", "Form", "InvalidTextError", "LibraryError", "MoxError", "NameTakenError",
    "NoSuchKeyError", "NoSuchSectionError", "NotKeptError", "NotStoredError", "OutOfMemoryError",
    "OutOfRangeError", "Owner", "Presentation", "ProtectedError", "Reason", "RefusedError", "Section", "Settings",
    "Severity", "Shape", "Table", "UnconfirmedError", "UnreadableError", "Value", "ValueType", "WrongEncodingError",
    "WrongKindError", "WrongTypeError", "diagnose", "library_version",
]

# Messages name the classes as programs import them.
for _class in [found for found in map(globals().get, __all__) if isinstance(found, type)]:
    _class.__module__ = __name__
