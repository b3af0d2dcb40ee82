"""Documents: settings with sections, and tables."""
import os
from ctypes import byref, c_char, c_size_t
from typing import Any, Dict, Iterator, List, Mapping, Optional, Type, TypeVar, Union

from ._entries import EntryTable, names_of
from ._errors import ArgumentError, InvalidTextError, NoSuchSectionError, Reason
from ._library import (CALLS, FREE_CALLS, OF_THREAD, DiagnosticRecord, DocumentInfo, Handle, OpenOptions,
                       SaveOptions, SectionInfo, TableOptions, check, decoded, encoded, in_range, sized)
from ._types import Content, Diagnostic, Encoding, Form, Severity

PathLike = Union[str, "os.PathLike[str]"]
_D = TypeVar("_D", bound="Document")


class Document:
    """What Settings and Table have in common. A document may be used by any thread, but by one at a time.

    At the end of a with block it is closed, not saved. One that is not closed is freed with the last reference to it or
    to one of its sections.
    """

    _kind: int
    _handle: Handle
    _path: Optional[PathLike]
    _sections: Dict[str, "Section"]  # that have been asked for

    def __new__(cls: Type[_D], *_arguments: Any, **_options: Any) -> _D:
        document = super().__new__(cls)
        document._handle = Handle(CALLS.mox_document_free)
        document._path, document._sections = None, {}
        return document

    @classmethod
    def open(cls: Type[_D], path: PathLike, *, form: Optional[Form] = None, encoding: Optional[Encoding] = None,
             any_document: bool = False, name: str = "") -> _D:
        """Opens a file in the form that is given, or found. A table is always wide, and must have the name, if there is
        one. With an encoding, a file of another program is imported; it does not count as read, so saving to it takes
        overwrite. With any_document, every document that parses is opened; one of another kind seems empty."""
        document = cls.__new__(cls)
        document._open(FREE_CALLS.mox_open, encoded(os.fspath(path)), form, encoding, any_document, name)
        document._path = path
        return document

    @classmethod
    def parse(cls: Type[_D], data: Union[bytes, bytearray, memoryview], *, form: Optional[Form] = None,
              encoding: Optional[Encoding] = None, any_document: bool = False, name: str = "") -> _D:
        """The same for the content of a file. Here a table may have either form.

        >>> from mox_xmlapi import Settings
        >>> Settings.parse(b"<Settings><Table></Settings>")
        Traceback (most recent call last):
            ...
        mox_xmlapi.DocumentSyntaxError: 1:18: found "</Settings>", expected "</Table>" to close the element ...
        """
        document = cls.__new__(cls)
        document._open(FREE_CALLS.mox_parse, bytes(data), form, encoding, any_document, name)
        return document

    def _open(self, function: Any, source: bytes, form: Optional[Form], encoding: Optional[Encoding],
              any_document: bool, name: str) -> None:
        table = encoded(name)
        options = sized(OpenOptions, form or 0, encoding or 0, 1 if any_document else 0, table, len(table))
        check(function(source, len(source), self._kind, byref(options), byref(self._handle), OF_THREAD.problem))

    def close(self) -> None:
        """Frees the document. What was not saved is lost; later calls raise ClosedError. Closing again does nothing."""
        self._handle.close()
        self._sections.clear()

    def __enter__(self: _D) -> _D:
        return self

    def __exit__(self, *_error: object) -> None:
        self.close()

    @property
    def form(self) -> Form:
        """The form of the next save. Setting that of settings makes later writes refuse what it does not keep."""
        info = sized(DocumentInfo)
        check(CALLS.mox_document_get_info(self._handle, byref(info)), self._handle)
        return Form(info.form)

    @form.setter
    def form(self, form: Form) -> None:
        check(CALLS.mox_set_form(self._handle, in_range(form, "the form"), OF_THREAD.problem), self._handle)

    def save(self, path: Optional[PathLike] = None, *, form: Optional[Form] = None,
             content: Content = Content.DOCUMENT, section: Optional[str] = None, overwrite: bool = False,
             backup: Optional[PathLike] = None) -> None:
        """Replaces a file as a whole, without a path the one that was opened. After an exception the old file is
        unchanged, except for UnconfirmedError. A save of whole settings, unless it is an export, removes "eud".

        A file that is not the one that was read or saved last is not replaced (ChangedError), unless overwrite is set.
        A narrow file keeps 7-bit text only (NotKeptError). The old file is copied to backup before it is replaced. With
        a section, only its element is saved. Tables and sections are always wide and saved as they are."""
        target = self._path if path is None else path
        if target is None:
            raise ArgumentError("a document that was not opened from a file needs a path", Reason.INVALID_ARGUMENT)
        name = encoded(os.fspath(target))
        options = _save_options(form, content, section, overwrite, backup)
        check(FREE_CALLS.mox_save(self._handle, name, len(name), byref(options), OF_THREAD.problem), self._handle)

    def to_bytes(self, *, form: Optional[Form] = None, content: Content = Content.DOCUMENT,
                 section: Optional[str] = None) -> bytes:
        """What save would write or, with Form.UTF8, the same text as UTF-8. Like save, it removes "eud" in memory."""
        data, size = Handle(CALLS.mox_free), c_size_t()
        options = _save_options(form, content, section)
        check(CALLS.mox_to_bytes(self._handle, byref(options), byref(data), byref(size), OF_THREAD.problem),
              self._handle)
        return (c_char * size.value).from_address(data.value or 0).raw  # string_at counts by an int of 32 bits

    def __repr__(self) -> str:
        return f"<{type(self).__name__}{'' if self._path is None else f' {os.fspath(self._path)!r}'}>"


def _save_options(form: Optional[Form], content: Content, section: Optional[str], overwrite: bool = False,
                  backup: Optional[PathLike] = None) -> Any:
    texts = [None if text is None else encoded(os.fspath(text)) for text in (backup, section)]
    return sized(SaveOptions, form or 0, content, 1 if overwrite else 0, texts[0], len(texts[0] or b""), texts[1],
                 len(texts[1] or b""))


def _table_options(editable: bool, first_id: int, type: int) -> Any:
    return sized(TableOptions, 1 if editable else 0, in_range(first_id, "the first id"), in_range(type, "the type"))


class Section(EntryTable):
    """A section of settings. It is looked up by its name in every call; a write of a value creates it if it is gone."""

    def __init__(self, handle: Handle, name: str) -> None:
        self._handle = handle
        self._section = encoded(name)
        self.name = name

    @property
    def editable(self) -> bool:
        """An attribute of the section, on which no function acts."""
        info = sized(SectionInfo)
        self._call(CALLS.mox_section_get_info, None, byref(info))
        return bool(info.editable)

    def __repr__(self) -> str:
        return f"<Section {self.name!r}>"


class Settings(Document, Mapping[str, Section]):
    """A settings document: a mapping from names to sections.

    >>> settings = Settings()                                    # or Settings.open("camera.xml")
    >>> settings.make_section("Camera")["Exposure"] = 1800
    >>> settings["Camera"]["Exposure"] += 600
    >>> settings["Camera"]["Exposure"], settings["Camera"].get("Gain", 1.0), "Lens" in settings
    (2400, 1.0, False)
    >>> {name: dict(section) for name, section in settings.items()}
    {'Camera': {'Exposure': 2400}}
    """

    _kind = 1

    def __init__(self) -> None:
        """Makes settings without sections, in the wide form."""
        check(CALLS.mox_new_settings(byref(self._handle), OF_THREAD.problem))

    def __getitem__(self, name: str) -> Section:
        section = self._sections.get(name)
        if section is None:
            section = Section(self._handle, name)
            section._call(CALLS.mox_section_get_info, None, byref(sized(SectionInfo)))
            self._sections[name] = section
        return section

    def __delitem__(self, name: str) -> None:
        self._sections.pop(name, None)
        Section(self._handle, name)._call(CALLS.mox_remove_section, None)

    def __contains__(self, name: object) -> bool:
        try:
            return isinstance(name, str) and self[name] is not None
        except (InvalidTextError, NoSuchSectionError):
            return False

    def __iter__(self) -> Iterator[str]:
        names = Handle(CALLS.mox_list_free)
        check(CALLS.mox_section_names(self._handle, byref(names), OF_THREAD.problem), self._handle)
        # The list also has elements that are not sections, and the names of those that come twice.
        return iter([name for name in dict.fromkeys(names_of(names)) if name in self])

    def __len__(self) -> int:
        return sum(1 for _ in self)

    def make_section(self, name: str, *, editable: bool = False, first_id: int = 0, type: int = 0) -> Section:
        """Creates a section, or gives an existing one the first id and the type; whether that one is editable does not
        change."""
        section = Section(self._handle, name)
        section._call(CALLS.mox_make_section, None, byref(_table_options(editable, first_id, type)))
        return section


class Table(Document, EntryTable):
    """A table document: a mapping from names to values.

    >>> table = Table("Recipe", editable=True)
    >>> table.update(Temperature=182.5, Steps=4, Name="Förderband")
    >>> list(table), table["Temperature"]
    (['Temperature', 'Steps', 'Name'], 182.5)
    """

    _kind = 2

    def __init__(self, name: str, *, editable: bool = False, first_id: int = 0, type: int = 0) -> None:
        """Makes a document with an empty table of that name."""
        text = encoded(name)
        options = _table_options(editable, first_id, type)
        check(CALLS.mox_new_table(text, len(text), byref(options), byref(self._handle), OF_THREAD.problem))


def diagnose(data: Union[bytes, bytearray, memoryview], *, form: Optional[Form] = None,
             values: bool = False) -> List[Diagnostic]:
    """What is wrong with the content of a file, and what is likely to be, sorted by position. A file with an error has
    no other diagnostics. With values, also values that do not suit the types, limits and controls of their entries.
    """
    content = bytes(data)
    found = Handle(CALLS.mox_list_free)
    check(FREE_CALLS.mox_diagnose(content, len(content), form or 0, 1 if values else 0, byref(found),
                                  OF_THREAD.problem))
    record = sized(DiagnosticRecord)
    result = []
    for index in range(CALLS.mox_list_count(found)):
        check(CALLS.mox_list_diagnostic(found, index, byref(record)))
        result.append(Diagnostic(Severity(record.severity), record.line, record.column, decoded(record.message),
                                 Encoding(record.encoding) if record.encoding else None))
    return result
