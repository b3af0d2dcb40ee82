"""Files and documents: opening, saving, closing, and what their errors say."""
import copy
import errno
import gc
import os
import pickle
import threading

import pytest

import mox_xmlapi as mox
from mox_xmlapi import Content, Encoding, Form, Settings, Table, diagnose


def test_save_replaces_the_file_and_keeps_its_form(camera):
    before = camera.read_bytes()
    backup = camera.with_suffix(".bak")
    with Settings.open(camera) as settings:
        assert settings.form is Form.NARROW
        settings["Camera"]["Exposure"] = 2400
        settings.save(backup=backup)
        settings["Camera"]["Exposure"] = 2500
        settings.save()
    assert backup.read_bytes() == before
    saved = camera.read_bytes()
    expected = before.replace(b"<Value>1800</Value>", b'<Value loc="">2500</Value>', 1).replace(b' eud="true"', b"")
    assert saved == expected


def test_a_file_that_was_changed_is_not_replaced(camera):
    settings = Settings.open(camera)
    camera.write_bytes(camera.read_bytes() + b"\n")
    changed = camera.read_bytes()
    with pytest.raises(mox.ChangedError) as caught:
        settings.save()
    assert caught.value.reason is mox.Reason.CHANGED and caught.value.file == str(camera)
    assert isinstance(caught.value, OSError) and caught.value.filename == str(camera)
    assert camera.read_bytes() == changed
    settings.save(overwrite=True)
    assert camera.read_bytes() != changed


def test_saving_without_a_path(tmp_path):
    with pytest.raises(mox.ArgumentError):
        Settings().save()
    settings = Settings()
    settings.make_section("S")["a"] = 1
    settings.save(tmp_path / "Länge.xml")
    assert Settings.open(str(tmp_path / "Länge.xml"))["S"]["a"] == 1


def test_missing_and_unreadable_files(tmp_path):
    with pytest.raises(FileNotFoundError) as caught:
        Settings.open(tmp_path / "none.xml")
    assert caught.value.errno == errno.ENOENT and caught.value.strerror == caught.value.message
    assert isinstance(caught.value, mox.MoxError) and caught.value.file == str(tmp_path / "none.xml")
    assert caught.value.line is None and str(caught.value).startswith(str(tmp_path / "none.xml") + ": ")
    with pytest.raises(mox.FileError) as caught:
        Settings.open(tmp_path)
    assert caught.value.reason is mox.Reason.NOT_REGULAR_FILE
    with pytest.raises(FileNotFoundError):
        Settings().save(tmp_path / "none" / "file.xml")


def test_a_syntax_error_has_its_place(tmp_path):
    path = tmp_path / "broken.xml"
    path.write_bytes(b"<Settings>\n\t<Table>\n\t</Tabel>\n</Settings>\n")
    with pytest.raises(mox.DocumentSyntaxError) as caught:
        Settings.open(path)
    error = caught.value
    assert (error.file, error.line, error.column) == (str(path), 3, 2)
    assert error.found == '"</Tabel"' or error.found == '"</Tabel>"'
    assert str(error).startswith(f"{path}:3:2: found")
    other = pickle.loads(pickle.dumps(error))
    assert type(other) is type(error) and vars(other) == vars(error) and str(other) == str(error)


def test_every_error_can_be_pickled():
    for reason in mox.Reason:
        error = mox._errors.CLASSES[reason]("message", reason, file="a.xml", line=1, column=2)
        other = pickle.loads(pickle.dumps(error))
        assert type(other) is type(error) and vars(other) == vars(error) and str(other) == "a.xml:1:2: message"


def test_other_kinds_and_encodings(tmp_path):
    table = Table("Recipe").to_bytes()
    with pytest.raises(mox.WrongKindError):
        Settings.parse(table)
    (tmp_path / "table.xml").write_bytes(table)
    with pytest.raises(mox.WrongKindError):
        Settings.open(tmp_path / "table.xml")
    assert list(Settings.parse(table, any_document=True)) == []
    with pytest.raises(mox.WrongKindError):
        Table.parse(table, name="Other")
    text = ('<?xml version="1.0"?>\n<Settings xmlns:noNamespaceSchemaLocation="MXSettings.xsd">\n\t<Table name="S">\n'
            '\t\t<Var name="a" type="string"><Value>Länge</Value></Var>\n\t</Table>\n</Settings>\n')
    for encoding, codec in ((Encoding.UTF8, "utf-8"), (Encoding.LATIN1, "latin-1"), (Encoding.UTF16_BE, "utf-16-be")):
        assert Settings.parse(text.encode(codec), encoding=encoding)["S"]["a"] == "Länge"
    with pytest.raises(mox.WrongEncodingError):
        Settings.parse(b"\xef\xbb\xbf" + text.encode())
    found = diagnose(b"\xef\xbb\xbf" + text.encode())
    assert found[0].severity is mox.Severity.ERROR and found[0].encoding is Encoding.UTF8


def test_forms_and_contents(camera):
    settings = Settings.open(camera)
    assert settings.to_bytes(form=Form.WIDE).decode("utf-16-le") == settings.to_bytes().decode("ascii")
    assert settings.to_bytes(form=Form.UTF8) + b"\0" == settings.to_bytes()
    assert b"<UI" not in settings.to_bytes(content=Content.VALUES)
    assert settings.to_bytes(section="Lens").decode("utf-16-le").count("<Table") == 1
    with pytest.raises(mox.NotKeptError):
        settings["Camera"]["Model"] = "Länge"
    settings.form = Form.WIDE
    settings["Camera"]["Model"] = "Länge"
    with pytest.raises(mox.NotKeptError):
        settings.to_bytes(form=Form.NARROW)
    with pytest.raises(mox.ArgumentError):
        Table("T").form = Form.NARROW


def test_sections(camera):
    settings = Settings.open(camera)
    assert list(settings) == ["Camera", "Lens", "Trigger", "Window", "Network"] and len(settings) == 5
    assert "Camera" in settings and "Exposure" not in settings and 5 not in settings
    assert "nul\0" not in settings
    camera_section = settings["Camera"]
    assert camera_section.name == "Camera" and camera_section.editable
    del settings["Camera"]
    assert "Camera" not in settings and settings.get("Camera") is None
    with pytest.raises(KeyError):
        settings["Camera"]
    with pytest.raises(mox.NoSuchSectionError):
        camera_section["Exposure"]
    with pytest.raises(mox.NoSuchSectionError):
        del settings["Camera"]
    camera_section["Exposure"] = 5
    assert dict(settings["Camera"]) == {"Exposure": 5}
    with pytest.raises(mox.OutOfRangeError):
        settings.make_section("New", first_id=-1)
    with pytest.raises(mox.OutOfRangeError, match=f": {2**70 - 1}$"):
        settings.make_section("New", first_id=2**70 - 1)
    with pytest.raises(mox.OutOfRangeError, match=": far more digits$"):
        settings.make_section("New", first_id=2**70)


def test_a_new_section_cannot_be_edited_unless_that_is_said():
    settings = Settings()
    assert not settings.make_section("S").editable
    assert settings.make_section("E", editable=True).editable


def test_a_closed_document_says_so(camera):
    with Settings.open(camera) as settings:
        section = settings["Camera"]
    for call in (lambda: section["Exposure"], lambda: section.entries(), lambda: settings["Lens"], settings.to_bytes,
                 lambda: settings["Camera"], lambda: "Camera" in settings,
                 lambda: settings.form, lambda: list(settings), lambda: section.write("a", 1), settings.save):
        with pytest.raises(mox.ClosedError) as caught:
            call()
        assert str(caught.value) == "the document is closed"
    settings.close()


def test_other_threads_run_while_a_save_waits(camera):
    fcntl = pytest.importorskip("fcntl")
    settings = Settings.open(camera)
    with open(camera, "rb") as other:
        fcntl.flock(other, fcntl.LOCK_EX)
        release = threading.Timer(0.2, fcntl.flock, (other, fcntl.LOCK_UN))
        release.start()
        settings.save()  # BusyError, if the thread that releases the lock could not run
        release.join()


def test_a_section_keeps_its_document_alive(camera):
    section = Settings.open(camera)["Camera"]
    gc.collect()
    assert section["Exposure"] == 1800
    with pytest.raises(ValueError):  # a document is not copied
        copy.deepcopy(section)


def test_documents_are_freed(camera):
    def memory():
        with open("/proc/self/statm", encoding="ascii") as file:
            return int(file.read().split()[1]) * 4096

    def use():
        for _ in range(300):
            settings = Settings.open(camera)
            settings["Camera"].entries()
            settings["Camera"]["Exposure"] += 1
            settings.to_bytes()
            with pytest.raises(KeyError):
                settings["Camera"]["none"]

    use()
    before = memory()
    use()
    use()
    assert memory() - before < 300 * 4096


def test_errors_belong_to_the_thread_that_caused_them(camera):
    results = []

    def work(number):
        settings = Settings.open(camera)
        section = settings["Camera"]
        for turn in range(200):
            section["Exposure"] = number * 1000 + turn
            assert section["Exposure"] == number * 1000 + turn
            try:
                section[f"key{number}"]
            except mox.NoSuchKeyError as error:
                assert str(error) == f"Camera/key{number}: there is no such entry"
        results.append(number)

    threads = [threading.Thread(target=work, args=(number,)) for number in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert sorted(results) == [0, 1, 2, 3]


def test_diagnostics():
    assert diagnose(Settings().to_bytes()) == []
    [found] = diagnose(b"<Settings>\n\t<Table>\n\t</Tabel>\n</Settings>\n")
    assert (found.severity, found.line, found.column) == (mox.Severity.ERROR, 3, 2)
    table = Table("T")
    table.add(mox.Entry("a", "x", mox.ValueType.LONG))
    assert diagnose(table.to_bytes()) == []
    [found] = diagnose(table.to_bytes(), values=True)
    assert found.severity is mox.Severity.WARNING and '"x"' in found.message


def test_paths_that_no_text_can_be(tmp_path):
    if os.name == "posix":
        with pytest.raises(mox.MoxError):
            Settings.open(os.fsdecode(os.fsencode(tmp_path) + b"/\xff.xml"))
    with pytest.raises(mox.MoxError):
        Settings.open("a\0b")
    with pytest.raises(TypeError):
        Settings.open(5)
