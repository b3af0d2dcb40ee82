#!/usr/bin/env python3
"""Makes a wheel of the package and of the libraries in an installation of the project.

    build_wheel.py <prefix of the installation> <folder for the wheel>

Needs the Debian packages python3-build, python3-setuptools, python3-wheel and binutils, and no package index.
"""
import os
import platform
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path
from typing import List

HERE = Path(__file__).resolve().parent


def needed(library: Path) -> List[str]:
    """The names of the libraries that it is linked with."""
    output = subprocess.run(["objdump", "-p", str(library)], check=True, stdout=subprocess.PIPE, text=True).stdout
    return re.findall(r"(?:NEEDED|DLL Name:)\s+(\S+)", output)


def copy_libraries(folder: Path, first: str, target: Path) -> None:
    """Copies a library with those that it needs from the folder; any other one is of the system."""
    target.mkdir()
    names = [first]
    for name in names:
        shutil.copyfile(folder / name, target / name)
        names += [other for other in needed(folder / name) if other not in names and (folder / other).exists()]


def main() -> None:
    prefix, output = (Path(argument).resolve() for argument in sys.argv[1:])
    is_windows = (prefix / "bin" / "mox_host.dll").exists()
    [version] = re.findall(r"^project\(mox_xmlApi VERSION (\S+)$", (HERE.parent / "CMakeLists.txt").read_text(),
                           re.MULTILINE)
    with tempfile.TemporaryDirectory() as folder:
        stage = Path(folder, "python")
        shutil.copytree(HERE, stage, ignore=shutil.ignore_patterns("__pycache__", ".mypy_cache", "lib", "*.egg-info"))
        shutil.copy(HERE.parent / "docs" / "python.md", stage / "README.md")
        (stage / "VERSION").write_text(version + "\n")
        libraries = stage / "mox_xmlapi" / "lib"
        if is_windows:
            copy_libraries(prefix / "bin", "mox_host.dll", libraries)
            shutil.copy(HERE.parent / "cmake" / "runtime-dlls.txt", libraries)
        else:
            [found] = list(prefix.glob("lib*/libmox_host.so.0")) + list(prefix.glob("lib/*/libmox_host.so.0"))
            copy_libraries(found.parent, found.name, libraries)
        tag = "win_amd64" if is_windows else f"linux_{platform.machine()}"
        # The same input gives the same bytes.
        environment = dict(os.environ, MOX_WHEEL_PLATFORM=tag, SOURCE_DATE_EPOCH="315532800")
        build = [sys.executable, "-m", "build", "--wheel", "--no-isolation", "--outdir", str(output), str(stage)]
        subprocess.run(build, check=True, env=environment)


if __name__ == "__main__":
    main()
