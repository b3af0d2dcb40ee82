"""The shared library mox_host: where it is, its structures and functions, and how a failure becomes an exception."""
import ctypes
import os
import sys
import threading
from ctypes import byref, c_char_p, c_double, c_int32, c_int64, c_size_t, c_uint32, c_uint64, c_void_p
from ctypes.util import find_library
from pathlib import Path
from typing import Any, List, Optional, Tuple

from ._errors import CLASSES, ClosedError, InvalidTextError, LibraryError, MoxError, OutOfRangeError, Reason

# The first release with all functions that are used here; a later one with the same major number has them, too.
NEEDED_VERSION = (0, 1, 0)
_FILE = "mox_host.dll" if sys.platform == "win32" else "libmox_host.so.0"
_VARIABLE = "MOX_HOST_LIBRARY"


def _path() -> str:
    """Where the library is: what the user says, the one in the package, or the one of the system."""
    chosen = os.environ.get(_VARIABLE)
    if chosen:
        return os.path.abspath(chosen)
    bundled = Path(__file__).resolve().parent / "lib" / _FILE
    if bundled.exists():
        return str(bundled)
    # Loading by name does not search PATH on Windows.
    return (sys.platform == "win32" and find_library("mox_host")) or _FILE


def library_version(library: Optional[ctypes.CDLL] = None) -> Tuple[int, int, int]:
    """The version of mox_host that is in use."""
    number = int((library or CALLS).mox_version())
    return number // 10000, number // 100 % 100, number % 100


def _load() -> Tuple[ctypes.PyDLL, ctypes.CDLL]:
    path = _path()
    try:
        calls, free_calls = ctypes.PyDLL(path), ctypes.CDLL(path)
        version = library_version(calls)
    except (OSError, AttributeError) as error:
        raise LibraryError(f"the library mox_host cannot be loaded ({error}); install it, or set {_VARIABLE} to its "
                           "path", Reason.NOT_FOUND) from None
    if version[0] != NEEDED_VERSION[0] or version < NEEDED_VERSION:
        found, needed = (".".join(map(str, numbers)) for numbers in (version, NEEDED_VERSION))
        raise LibraryError(f"{path} has version {found}; this package needs {needed} or a later one of major version "
                           f"{NEEDED_VERSION[0]}", Reason.NOT_FOUND)
    return calls, free_calls


# Calls through CALLS keep Python's global lock: they cost less, and no thread comes between. FREE_CALLS do not keep it.
CALLS, FREE_CALLS = _load()

# The types of C, by letter: "t" is a text with its length, "p" a handle or what byref gives.
_C = {"t": (c_char_p, c_size_t), "p": (c_void_p,), "z": (c_size_t,), "u": (c_uint32,), "i": (c_int32,),
      "l": (c_int64,), "w": (c_uint64,), "d": (c_double,)}


def _structure(*fields: str) -> Any:
    """A structure that begins with its size. The fields are names after the letter of their type."""
    members: List[Tuple[str, Any]] = [("size", c_uint32)]
    for letter, *names in map(str.split, fields):
        for name in names:
            members.extend(zip((name, name + "_size"), _C[letter]))
    return type("Record", (ctypes.Structure,), {"_fields_": members})


def sized(structure: Any, *values: Any) -> Any:
    return structure(ctypes.sizeof(structure), *values)


ProblemInfo = _structure("i status", "w line column", "t text message file found expected")
OpenOptions = _structure("u form encoding flags", "t table_name")
SaveOptions = _structure("u form content flags", "t backup section")
DocumentInfo = _structure("u kind form")
TableOptions = _structure("u editable first_id type")
SectionInfo = _structure("u editable")
EntryRecord = _structure("u type shape id", "t name value", "u has_ui control provider_owner provider_index",
                         "t shown_name comment ui_value")
DiagnosticRecord = _structure("u severity encoding reserved", "w line column", "t message")

_STATUS_CALLS = """
    problem_new p, problem_get pp, new_settings pp, new_table tppp, document_get_info pp, set_form pup,
    to_bytes ppppp, section_names ppp, section_get_info ptpp, make_section ptpp, remove_section ptp, entry_names ptpp,
    contains pttpp, get_text pttpzpp, get_int pttpp, get_double pttpp, get_bool pttpp, get_bytes pttpzpp,
    set_text ptttp, set_int pttlup, set_double pttdp, set_bool pttip, set_bytes ptttp, remove pttip, rename ptttp,
    clear ptp, entries ptpp, find_entry pttpp, count_unreadable ptpp, add_entry pttpup, put_entry ptpup,
    set_value ptttup, set_eud pttip, set_comment ptttp, set_shown_name ptttp, set_provider pttuup, list_name pzpp,
    list_entry pzp, list_diagnostic pzp"""


def _declare(library: ctypes.CDLL, signatures: str, result: Any) -> None:
    for name, letters in map(str.split, signatures.split(",")):
        function = getattr(library, "mox_" + name)
        function.argtypes = [kind for letter in letters for kind in _C[letter]]
        function.restype = result


_declare(CALLS, _STATUS_CALLS, c_int32)
_declare(FREE_CALLS, "open tuppp, parse tuppp, diagnose tuupp, save ptpp", c_int32)
_declare(CALLS, "free p, problem_free p, document_free p, list_free p", None)
_declare(CALLS, "list_count p", c_size_t)


class Handle(c_void_p):
    """A handle of the library, which is freed with this object, or by close."""

    def __init__(self, free: Any) -> None:
        super().__init__()
        self._free = free

    def close(self) -> None:
        value, self.value = self.value, None
        if value is not None:
            self._free(value)

    __del__ = close


class _OfThread(threading.local):
    """What each thread has for itself: a problem, which its calls fill in."""

    def __init__(self) -> None:
        self.problem = Handle(CALLS.mox_problem_free)
        check(CALLS.mox_problem_new(byref(self.problem)))


def encoded(text: str) -> bytes:
    """The text as the library takes it: UTF-8, in which an unpaired surrogate has three bytes."""
    try:
        return text.encode()
    except AttributeError:
        raise TypeError(f"a str is needed, not {type(text).__name__}") from None
    except UnicodeEncodeError:
        if text.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "surrogatepass") == text:
            return text.encode("utf-8", "surrogatepass")
        message = "a text has two surrogates in a row, which would be read as one character"
        raise InvalidTextError(message, Reason.INVALID_TEXT) from None


def decoded(data: bytes) -> str:
    """A text of the library."""
    try:
        return data.decode()
    except UnicodeDecodeError:
        return data.decode("utf-8", "surrogatepass")


def in_range(number: int, what: str, least: int = 0, most: int = 0xFFFFFFFF) -> int:
    """The number, if the C type of an argument can hold it."""
    if least <= number <= most:
        return number
    shown = number if abs(number) < 2**70 else "far more digits"  # Python does not print numbers of any length
    raise OutOfRangeError(f"{what} is not from {least} to {most}: {shown}", Reason.OUT_OF_RANGE)


def check(status: int, handle: Optional[Handle] = None) -> None:
    """Raises the exception for a call of this thread that has failed with the status."""
    if status == 0:
        return
    if handle is not None and not handle:
        raise ClosedError("the document is closed", Reason.INVALID_ARGUMENT)
    info = sized(ProblemInfo)
    CALLS.mox_problem_get(OF_THREAD.problem, byref(info))
    reason = Reason(status) if status in _STATUSES else Reason.INTERNAL_ERROR
    where = {name: decoded(text) for name in ("file", "found", "expected") for text in [getattr(info, name)] if text}
    raise CLASSES.get(reason, MoxError)(decoded(info.message or b"") or reason.name, reason, line=info.line or None,
                                        column=info.column or None, **where)


_STATUSES = frozenset(Reason)
OF_THREAD = _OfThread()
