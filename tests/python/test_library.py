"""The package as it is installed, the library that it loads, and the example."""
import ctypes
import os
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

import mox_xmlapi
from mox_xmlapi import Settings, _library

USE = "import mox_xmlapi; print(mox_xmlapi.library_version())"


def run(*arguments, library=None):
    environment = {name: value for name, value in os.environ.items() if name != "MOX_HOST_LIBRARY"}
    if library is not None:
        environment["MOX_HOST_LIBRARY"] = str(library)
    return subprocess.run([sys.executable, *map(str, arguments)], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          env=environment, encoding="utf-8")


def test_the_package_is_the_one_of_the_wheel():
    package = Path(mox_xmlapi.__file__).parent
    assert Path(sys.prefix) in package.parents
    assert "MOX_HOST_LIBRARY" not in os.environ
    with open("/proc/self/maps", encoding="utf-8") as maps:
        loaded = {line.split()[-1] for line in maps if "/libmox_" in line}
    assert {Path(path).parent for path in loaded} == {package / "lib"}
    assert sorted(Path(path).name.split(".")[0] for path in loaded) == [
        "libmox_dbtInfo", "libmox_host", "libmox_porting", "libmox_xmlApi"]
    assert (package / "py.typed").exists()


def test_the_package_has_at_most_900_lines():
    files = list(Path(mox_xmlapi.__file__).parent.glob("*.py"))
    assert 0 < sum(len(path.read_text(encoding="utf-8").splitlines()) for path in files) <= 900


def test_a_chosen_library_that_is_missing(tmp_path):
    result = run("-c", USE, library=tmp_path / "none.so")
    assert result.returncode == 1
    last = result.stderr.splitlines()[-1]
    assert last.startswith(
        f"mox_xmlapi._errors.LibraryError: the library mox_host cannot be loaded ({tmp_path}/none.so: ")
    assert last.endswith("; install it, or set MOX_HOST_LIBRARY to its path")


def test_a_library_that_is_another_one():
    result = run("-c", USE, library=os.environ["MOX_NO_HOST"])
    assert result.returncode == 1
    assert "the library mox_host cannot be loaded" in result.stderr and "mox_version" in result.stderr


@pytest.mark.parametrize("number, version", [("10203", "1.2.3"), ("99", "0.0.99"), ("0", "0.0.0")])
def test_a_library_of_another_version(monkeypatch, number, version):
    monkeypatch.setenv("MOX_TEST_VERSION", number)
    other = os.environ["MOX_OTHER_HOST"]
    result = run("-c", USE, library=other)
    assert result.returncode == 1
    assert result.stderr.splitlines()[-1] == (
        f"mox_xmlapi._errors.LibraryError: {other} has version {version}; this package needs 0.1.0 or a later one of "
        "major version 0")


def test_the_chosen_library_comes_first(tmp_path):
    lib = Path(mox_xmlapi.__file__).parent / "lib"
    shutil.copytree(lib, tmp_path / "lib")
    chosen = tmp_path / "lib" / "libmox_host.so.0"
    result = run("-c", USE + "; print(mox_xmlapi._library.CALLS._name)", library=chosen)
    assert result.stdout.splitlines() == [str(mox_xmlapi.library_version()), str(chosen)]


def test_structures_have_the_layout_of_the_header():
    layout = ctypes.CDLL(os.environ["MOX_OTHER_HOST"]).mox_test_layout
    layout.restype = ctypes.c_size_t
    structures = [_library.ProblemInfo, _library.OpenOptions, _library.SaveOptions, _library.DocumentInfo,
                  _library.TableOptions, _library.SectionInfo, _library.EntryRecord, _library.DiagnosticRecord]
    for index, structure in enumerate(structures):
        last = getattr(structure, structure._fields_[-1][0])
        assert 1000 * ctypes.sizeof(structure) + last.offset == layout(index), index
    assert layout(len(structures)) == 0


def test_every_status_of_the_library_has_a_reason():
    name_of = ctypes.CDLL(_library.CALLS._name).mox_status_name
    name_of.restype = ctypes.c_char_p
    names = {name_of(number).decode(): number for number in range(1000)}
    names = {name[len("MOX_"):]: number for name, number in names.items() if name.startswith("MOX_")}
    assert names.pop("OK") == 0
    assert names.pop("BUFFER_TOO_SMALL") == 81
    assert names == {reason.name: reason.value for reason in mox_xmlapi.Reason}


def test_the_example_compares_machines_and_copies_a_value(tmp_path, data_folder):
    script = data_folder.parent / "compare_machines.py"
    for name, exposure in (("line1.xml", 1800), ("line2.xml", 2400)):
        shutil.copyfile(data_folder / "camera.xml", tmp_path / name)
        settings = Settings.open(tmp_path / name)
        settings["Camera"]["Exposure"] = exposure
        settings.save()
    del settings["Trigger"]["Armed"]
    settings.save()
    (tmp_path / "broken.xml").write_bytes(b"<Settings>")
    result = run(script, tmp_path)
    assert result.returncode == 0
    assert result.stdout.splitlines() == ["                 line1.xml  line2.xml",
                                          "Camera/Exposure  1800       2400",
                                          "Trigger/Armed    1          (none)"]
    assert result.stderr.startswith(f"{tmp_path}/broken.xml:1:")
    old = (tmp_path / "line1.xml").read_bytes()

    result = run(script, tmp_path, "line1.xml", "Camera", "Exposure", "line2.xml")
    assert result.stdout.splitlines()[1:] == ["Trigger/Armed  1          (none)"]
    assert Settings.open(tmp_path / "line1.xml")["Camera"]["Exposure"] == 2400
    assert (tmp_path / "line1.xml.bak").read_bytes() == old

    result = run(script, tmp_path, "line1.xml", "Camera", "None", "line2.xml")
    assert result.returncode == 1 and result.stderr == "Camera/None: there is no such entry\n"
