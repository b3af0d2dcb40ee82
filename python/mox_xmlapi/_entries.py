"""Entries of a section or table: as a mapping from names to values, and whole with their presentation data."""
import ctypes
import re
from binascii import unhexlify
from ctypes import byref, c_double, c_int32, c_int64, c_size_t, c_void_p
from typing import Any, Callable, Dict, Iterator, List, MutableMapping, Optional, Tuple, Type, TypeVar, Union, overload

from ._errors import InvalidTextError, NoSuchKeyError, NoSuchSectionError, Reason, RefusedError, WrongTypeError
from ._library import CALLS, OF_THREAD, EntryRecord, Handle, check, decoded, encoded, in_range, sized
from ._types import Control, Entry, Owner, Presentation, Shape, Value, ValueType

_T = TypeVar("_T")
_V = TypeVar("_V", int, float, bool, str, bytes)

_EUD_SET, _EUD_RESPECT, _ALL, _BUFFER_TOO_SMALL = 1, 2, -1, 81
_LONGEST_NAME = 259  # of an entry, in UTF-16 units

# Values of entries as Python's, by type and shape, how plain ones look, and what converts those; others are texts.
_INT = (int, re.compile(rb"[+-]?[0-9]{1,18}").fullmatch, int)
_FLOAT = (float, re.compile(rb"[+-]?[0-9]{1,9}(\.[0-9]{1,9})?").fullmatch, float)
_BOOL = (bool, re.compile(rb"[01]").fullmatch, b"1".__eq__)
_BYTES = (bytes, re.compile(rb"([0-9A-Fa-f]{2})+").fullmatch, unhexlify)
_KINDS: Dict[Tuple[int, int], Tuple[type, Any, Any]] = {
    (2, 0): _INT, (3, 0): _INT, (18, 0): _INT, (19, 0): _INT, (5, 0): _FLOAT, (11, 0): _BOOL, (17, 0x1000): _BYTES,
    (17, 0x2000): _BYTES}
_TEXT: Tuple[type, Any, Any] = (str, lambda text: True, decoded)
_RANGES = {ValueType.SHORT: (-0x8000, 0x7FFF), ValueType.LONG: (-0x80000000, 0x7FFFFFFF),
           ValueType.USHORT: (0, 0xFFFF), ValueType.ULONG: (0, 0xFFFFFFFF)}
_READERS: Dict[Any, Tuple[Any, Any]] = {
    int: (CALLS.mox_get_int, c_int64), float: (CALLS.mox_get_double, c_double), bool: (CALLS.mox_get_bool, c_int32),
    str: (CALLS.mox_get_text, None), bytes: (CALLS.mox_get_bytes, None)}  # and what they fill in

# Looked up once: a read of a key takes about two microseconds.
_find_entry, _list_entry, _list_free = CALLS.mox_find_entry, CALLS.mox_list_entry, CALLS.mox_list_free
_SIZE_OF_RECORD = ctypes.sizeof(EntryRecord)


class EntryTable(MutableMapping[str, Value]):
    """The entries of a Section or a Table, found by their names. If several have the same name, the first one is used.

    table[name] is an int, float or bool if the entry has such a type, bytes if it is an array of bytes, else a str. An
    empty value is replaced by that of the presentation data. Text that is no value of its type raises WrongTypeError;
    read(name, str) returns it. Iteration gives the names of the entries that can be read.

    table[name] = value changes the value of an entry and nothing else, except that it removes its "eud"; or it adds an
    entry at the end, with the type that fits: "long" or "ulong", "double", "bool", else "string". The value has to suit
    the type of an entry that is there. One of the type "string" takes any value as text, and is read as that text.
    """

    _handle: Handle
    _section: bytes = b""

    def __getitem__(self, name: str) -> Value:
        try:
            key = name.encode()
        except (UnicodeEncodeError, AttributeError):
            key = encoded(name)
        section = self._section
        found = c_void_p()
        if _find_entry(self._handle, section, len(section), key, len(key), byref(found), None):
            # Names that are too long for an entry can be those of keys. For others, entry says what was wrong.
            return self.read(name, str) if len(key) > _LONGEST_NAME or not self.entry(name) else self[name]
        record = EntryRecord(_SIZE_OF_RECORD)
        _list_entry(found, 0, byref(record))
        text = record.value
        if text == b"" and record.has_ui:
            text = record.ui_value
        kind, is_plain, convert = _KINDS.get((record.type, record.shape), _TEXT)
        _list_free(found)
        return convert(text) if text is not None and is_plain(text) else self.read(name, kind)

    def __setitem__(self, name: str, value: Value) -> None:
        self._require_suitable(name, value)
        self.write(name, value)

    def __delitem__(self, name: str) -> None:
        self.remove(name)

    def __contains__(self, name: object) -> bool:
        """Whether there is such an entry. That of a Table counts also if it cannot be read."""
        found = c_int32()
        try:
            if isinstance(name, str):
                self._call(CALLS.mox_contains, name, byref(found))
        except InvalidTextError:
            pass  # no entry can have such a name
        return found.value == 1

    def __iter__(self) -> Iterator[str]:
        names = Handle(_list_free)
        self._call(CALLS.mox_entry_names, None, byref(names))
        # Each name that can be looked up, once. Of one that is longer than an entry's, the list has the start.
        unique = dict.fromkeys(filter(None, names_of(names)))
        return iter([name for name in unique if len(name) < _LONGEST_NAME // 2 or name in self])

    def __len__(self) -> int:
        return sum(1 for _ in self)

    @overload
    def read(self, name: str, kind: Type[_V]) -> _V: ...
    @overload
    def read(self, name: str, kind: Type[_V], default: _T) -> Union[_V, _T]: ...

    def read(self, name: str, kind: Any, default: Any = NoSuchKeyError) -> Any:
        """The value as an int, float, bool, str or bytes, whatever the type of the entry; the default, if one is given,
        where there is no such key. Text is a number, a truth value ("1", "0", "true", "false") or bytes (pairs of
        hexadecimal digits) only if all of it is one; white space around it does not count. Otherwise WrongTypeError or
        OutOfRangeError is raised.

        >>> from mox_xmlapi import Settings
        >>> camera = Settings().make_section("Camera")
        >>> camera["Number"] = "417"
        >>> camera["Number"], camera.read("Number", int), camera.read("Exposure", int, 1000)
        ('417', 417, 1000)
        """
        if kind not in _READERS:
            raise TypeError(f"a value is read as int, float, bool, str or bytes, not as {kind!r}")
        function, c_type = _READERS[kind]
        try:
            if c_type is not None:
                value = c_type()
                self._call(function, name, byref(value))
                return kind(value.value)
            size = c_size_t(255)
            while True:
                buffer = ctypes.create_string_buffer(size.value + 1)
                if self._call(function, name, buffer, len(buffer), byref(size)) == 0:
                    data = buffer.raw[:size.value]
                    return decoded(data) if kind is str else data
        except (NoSuchKeyError, NoSuchSectionError):
            if default is NoSuchKeyError:
                raise
            return default

    def write(self, name: str, value: Value) -> None:
        """Writes a value whatever the type of an existing entry: its text changes, the type stays. A new entry with an
        int of more than 32 bits, or with bytes, gets the type "string"."""
        if isinstance(value, bool):
            self._call(CALLS.mox_set_bool, name, value)
        elif isinstance(value, int):
            in_range(value, "the value", -2**63, 2**63 - 1)
            fits_ulong = -2**31 <= value < 2**32
            type = (ValueType.LONG if value < 2**31 else ValueType.ULONG) if fits_ulong else ValueType.STRING
            self._call(CALLS.mox_set_int, name, value, type)
        elif isinstance(value, float):
            self._call(CALLS.mox_set_double, name, value)
        elif isinstance(value, str):
            self._call_with_text(CALLS.mox_set_text, name, value)
        elif isinstance(value, (bytes, bytearray, memoryview)):
            self._call(CALLS.mox_set_bytes, name, bytes(value), memoryview(value).nbytes)
        else:
            raise TypeError(f"a value is an int, float, bool, str or bytes, not {value.__class__.__name__}")

    def _require_suitable(self, name: str, value: Any) -> None:
        """Refuses a value that self[name] would not return once it is written; a "string" returns its text."""
        try:
            entry = self.entry(name)
        except (NoSuchKeyError, NoSuchSectionError, RefusedError):
            return  # it is new, or the write says what is wrong
        kind = _KINDS.get((entry.type, entry.shape), _TEXT)[0]
        is_int = isinstance(value, int) and not isinstance(value, bool)
        what = f"{'/'.join(filter(None, (decoded(self._section), name)))}: the type is {entry.type.name.lower()}"
        fits = isinstance(value, (bytes, bytearray, memoryview) if kind is bytes else kind)
        if is_int and (kind is int or kind is float):
            in_range(value, what + ", but the value", *_RANGES.get(entry.type, (-2**53, 2**53)))
        elif (not fits or kind is int) and (kind is not str or entry.shape):
            array = " array" if entry.shape else ""
            raise WrongTypeError(f"{what}{array}: expected {kind.__name__}, found {value!r:.60}", Reason.WRONG_TYPE)

    def remove(self, name: str, occurrence: Optional[int] = None) -> None:
        """Removes the entries of that name, which may be empty, or only one of them: occurrence 0 is the first."""
        number = _ALL if occurrence is None else in_range(occurrence, "the occurrence", 0, 0x7FFFFFFF)
        self._call(CALLS.mox_remove, name, number)

    def rename(self, name: str, new_name: str) -> None:
        """Gives an entry another name, in its place, and changes nothing else."""
        self._call_with_text(CALLS.mox_rename, name, new_name)

    def clear(self) -> None:
        """Removes every entry. Comments and other elements stay."""
        self._call(CALLS.mox_clear, None)

    def entries(self) -> List[Entry]:
        """The entries in document order, all of several with the same name, without those that cannot be read."""
        return self._entries(CALLS.mox_entries, None)

    def entry(self, name: str) -> Entry:
        """The entry of that name."""
        return self._entries(_find_entry, name)[0]

    def count_unreadable(self) -> int:
        """The number of elements that cannot be read because they have no known type."""
        count = c_size_t()
        self._call(CALLS.mox_count_unreadable, None, byref(count))
        return count.value

    def add(self, entry: Entry, before: Optional[str] = None, *, eud: bool = False) -> None:
        """Adds an entry after the last one, or before the first one with the name `before`. There must be none of its
        name (NameTakenError). With eud, it and its table get eud="true".

        >>> from mox_xmlapi import Control, Entry, Presentation, Table, ValueType
        >>> gauges = Table("Gauges")
        >>> gauges.add(Entry("Pressure", "2.5", ValueType.DOUBLE, ui=Presentation(Control.NUMBER, comment="in bar")))
        >>> gauges["Pressure"], gauges.entry("Pressure").ui.comment
        (2.5, 'in bar')
        """
        position = None if before is None else encoded(before)
        self._call(CALLS.mox_add_entry, None, position, len(position or b""), byref(_record_of(entry)),
                   _EUD_SET if eud else 0)

    def put(self, entry: Entry, *, eud: bool = False) -> None:
        """Changes the entry of that name, or adds it. What is None, 0 or empty leaves the entry as it is; but type,
        shape, an empty value and the control are always written."""
        self._call(CALLS.mox_put_entry, None, byref(_record_of(entry)), _EUD_SET if eud else 0)

    def set_value(self, name: str, value: str, *, eud: bool = False, respect_eud: bool = False) -> None:
        """Changes the text of an existing entry and nothing else. Without eud, its "eud" is removed. With respect_eud,
        an entry with eud="true" is left alone (ProtectedError), and so is one without a value of its own."""
        flags = (_EUD_SET if eud else 0) | (_EUD_RESPECT if respect_eud else 0)
        self._call_with_text(CALLS.mox_set_value, name, value, flags)

    def set_eud(self, name: str, eud: bool) -> None:
        """Sets "eud" of an entry, also of its table if that has none, or removes it."""
        self._call(CALLS.mox_set_eud, name, 1 if eud else 0)

    def set_comment(self, name: str, comment: str) -> None:
        """Sets or, with an empty text, removes the comment; NotStoredError if that would lose something else."""
        self._call_with_text(CALLS.mox_set_comment, name, comment)

    def set_shown_name(self, name: str, shown_name: str) -> None:
        """The same for the name that an editor displays."""
        self._call_with_text(CALLS.mox_set_shown_name, name, shown_name)

    def set_provider(self, name: str, owner: Owner, index: int) -> None:
        """The same for owner and index of the provider."""
        self._call(CALLS.mox_set_provider, name, in_range(owner, "the owner"), in_range(index, "the index"))

    def _entries(self, function: Any, name: Optional[str]) -> List[Entry]:
        found, record, entries = Handle(_list_free), sized(EntryRecord), []
        self._call(function, name, byref(found))
        for index in range(CALLS.mox_list_count(found)):
            check(_list_entry(found, index, byref(record)))
            value, ui_value = (None if data is None else decoded(data) for data in (record.value, record.ui_value))
            ui = Presentation(Control(record.control), Owner(record.provider_owner), record.provider_index,
                              decoded(record.shown_name), decoded(record.comment), ui_value) if record.has_ui else None
            entries.append(Entry(decoded(record.name), value, ValueType(record.type), Shape(record.shape), record.id,
                                 ui))
        return entries

    def _call(self, function: Callable[..., int], name: Optional[str], *arguments: Any) -> int:
        """Calls a function of the section or, with a name, of that entry. Returns 0, or that a buffer is too small."""
        names: Tuple[Any, ...] = (self._section, len(self._section))
        if name is not None:
            key = encoded(name)
            names += (key, len(key))
        status = function(self._handle, *names, *arguments, OF_THREAD.problem)
        if status != _BUFFER_TOO_SMALL:
            check(status, self._handle)
        return status

    def _call_with_text(self, function: Callable[..., int], name: str, text: str, *arguments: Any) -> None:
        data = encoded(text)
        self._call(function, name, data, len(data), *arguments)


def names_of(names: Handle) -> List[str]:
    start, size = c_void_p(), c_size_t()
    result = []
    for index in range(CALLS.mox_list_count(names)):
        check(CALLS.mox_list_name(names, index, byref(start), byref(size)))
        result.append(decoded(ctypes.string_at(start, size.value)))
    return result


def _record_of(entry: Entry) -> Any:
    ui = entry.ui or Presentation()
    fields = dict(name=entry.name, value=entry.value, type=entry.type, shape=entry.shape, id=entry.id,
                  has_ui=0 if entry.ui is None else 1, control=ui.control, provider_owner=ui.provider_owner,
                  provider_index=ui.provider_index, shown_name=ui.shown_name, comment=ui.comment, ui_value=ui.value)
    record = sized(EntryRecord)
    for field, value in fields.items():
        if isinstance(value, int):
            setattr(record, field, in_range(value, f"the {field} of an entry"))
        elif value is not None:
            data = encoded(value)
            setattr(record, field, data)
            setattr(record, field + "_size", len(data))
    return record
