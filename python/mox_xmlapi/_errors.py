"""Exceptions: one class for each way in which a call can fail, all derived from MoxError."""
import enum
import errno
from typing import Any, Dict, Optional, Type

# Why a call failed. The classes below tell the same.
Reason = enum.IntEnum("Reason", {
    "NOT_FOUND": 1, "NO_PERMISSION": 2, "NOT_REGULAR_FILE": 3, "TOO_LARGE": 4, "READ_FAILED": 5, "WRITE_FAILED": 6,
    "CHANGED": 7, "BUSY": 8, "UNCONFIRMED": 9, "SYNTAX": 20, "WRONG_KIND": 21, "WRONG_ENCODING": 22, "TOO_DEEP": 23,
    "NO_SUCH_SECTION": 40, "NO_SUCH_KEY": 41, "NAME_TAKEN": 42, "PROTECTED": 43, "UNREADABLE": 44, "AMBIGUOUS": 45,
    "INVALID_TEXT": 60, "NOT_KEPT": 61, "WRONG_TYPE": 62, "OUT_OF_RANGE": 63, "NOT_STORED": 64,
    "INVALID_ARGUMENT": 80, "OUT_OF_MEMORY": 82, "INTERNAL_ERROR": 83})


class MoxError(Exception):
    """A call that failed. What it should have changed is unchanged; a save may have removed "eud" in memory.

    str(error) has the file and the message: 'camera.xml:3:17: found ...', 'Camera/Exposure: there is no such key'.
    """

    message: str  # why, in plain English, with the section and the key that it is about
    reason: Reason  # why, for programs; INTERNAL_ERROR also for a status that this package does not know
    file: Optional[str] = None  # the path as it was given, if the call was about a file
    line: Optional[int] = None  # of the place in the file, from 1 on, if there is one
    column: Optional[int] = None  # from 1 on: in bytes of a narrow file, in 16-bit units of a wide one
    found: Optional[str] = None  # what is at that place, if the file does not parse
    expected: Optional[str] = None  # what was expected there

    def __init__(self, message: str, reason: Reason, **where: Any) -> None:
        super().__init__(message, reason)
        self.message = message
        self.reason = reason
        self.__dict__.update(where)

    def __str__(self) -> str:
        position = "" if self.line is None else f"{self.line}:{self.column}"
        return ": ".join(filter(None, [":".join(filter(None, [self.file, position])), self.message]))


class LibraryError(MoxError, ImportError):
    """The shared library mox_host is missing, cannot be loaded, or has a version that does not fit."""


class FileError(MoxError, OSError):
    """A file cannot be read or written."""

    def __init__(self, message: str, reason: Reason, **where: Any) -> None:
        super().__init__(message, reason, **where)
        self.errno = _ERRNO.get(reason, errno.EIO)
        self.strerror = message

    @property
    def filename(self) -> Optional[str]:
        return self.file


class FileMissingError(FileError, FileNotFoundError): """There is no such file or folder."""
class FilePermissionError(FileError, PermissionError): """The process may not read, replace or create the file."""
class ChangedError(FileError): """The file is no longer the one that was read: another program has written it."""
class BusyError(FileError): """Another process is replacing the file and does not finish."""
class UnconfirmedError(FileError): """The file was replaced; whether the new one is in place the system cannot tell."""
class DocumentError(MoxError, ValueError): """The content of a file cannot be used, or is too large or too deep."""
class DocumentSyntaxError(DocumentError): """It does not parse: line, column, found and expected say where and why."""
class WrongKindError(DocumentError): """It is another kind of document, or one that has no sections."""
class WrongEncodingError(DocumentError): """It is stored in another way than documents are, or than was said."""
class NoSuchSectionError(MoxError, KeyError): """There is no section of that name."""
class NoSuchKeyError(MoxError, KeyError): """There is no key or entry of that name."""
class RefusedError(MoxError, ValueError): """A value cannot be read or written like this: the base of those below."""
class NameTakenError(RefusedError): """There is an entry of that name already."""
class ProtectedError(RefusedError): """The entry has eud="true"."""
class UnreadableError(RefusedError): """The entry has no known type, so that nobody could read the value."""
class AmbiguousError(RefusedError): """The entry has two elements for one: one is written, the other one read."""
class InvalidTextError(RefusedError): """A text contains a zero, or is empty or longer than it may be."""
class NotKeptError(RefusedError): """The text would be another one after the document has been saved and opened."""
class WrongTypeError(RefusedError, TypeError): """The value is not of the type that was asked for, or of the key's."""
class OutOfRangeError(RefusedError, OverflowError): """The number does not fit the type."""
class NotStoredError(RefusedError): """The library cannot store this combination of values."""
class ArgumentError(MoxError, ValueError): """The arguments do not go together. Nothing was done."""
class ClosedError(ArgumentError): """The document was closed."""
class OutOfMemoryError(MoxError, MemoryError): """There is not enough memory."""

_ERRNO = {Reason.NOT_FOUND: errno.ENOENT, Reason.NO_PERMISSION: errno.EACCES, Reason.BUSY: errno.EBUSY}
CLASSES: Dict[Reason, Type[MoxError]] = dict(zip(Reason, [
    FileMissingError, FilePermissionError, FileError, DocumentError, FileError, FileError, ChangedError, BusyError,
    UnconfirmedError, DocumentSyntaxError, WrongKindError, WrongEncodingError, DocumentError, NoSuchSectionError,
    NoSuchKeyError, NameTakenError, ProtectedError, UnreadableError, AmbiguousError, InvalidTextError, NotKeptError,
    WrongTypeError, OutOfRangeError, NotStoredError, ArgumentError, OutOfMemoryError, MoxError]))  # as Reason
