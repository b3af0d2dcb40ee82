#!/usr/bin/env python3
"""Runs the tests of the Python package as it is in the sources, without a wheel.

    run_from_sources.py <build folder> [<argument of pytest>...]

The targets mox_host, front_replay and other_host must be built. The tests that are about the wheel itself are left out.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

TESTS = pathlib.Path(__file__).resolve().parent
CHECKOUT = TESTS.parent.parent


def main(build, arguments):
    libraries = build.resolve() / "lib"
    with tempfile.TemporaryDirectory(dir=os.environ.get("MOX_TEST_TMP")) as folder:
        package = pathlib.Path(folder) / "mox_xmlapi"
        shutil.copytree(CHECKOUT / "python/mox_xmlapi", package)
        (package / "lib").mkdir()
        for name in ("host", "xmlApi", "dbtInfo", "porting"):
            shutil.copy(libraries / f"libmox_{name}.so.0", package / "lib")
        environment = {**os.environ, "PYTHONPATH": folder, "PYTHONDONTWRITEBYTECODE": "1",
                       "MOX_EXAMPLES": str(CHECKOUT / "examples"),
                       "MOX_FRONT_REPLAY": str(build.resolve() / "bin/front_replay"),
                       "MOX_OTHER_HOST": str(libraries / "libother_host.so"),
                       "MOX_NO_HOST": str(libraries / "libmox_porting.so.0")}
        environment.pop("MOX_HOST_LIBRARY", None)
        command = [sys.executable, "-m", "pytest", "-q", "-p", "no:cacheprovider", "--basetemp", folder + "/tmp",
                   "-o", "doctest_optionflags=ELLIPSIS", "--doctest-modules", "--pyargs", "mox_xmlapi", ".",
                   "--deselect", "test_library.py::test_the_package_is_the_one_of_the_wheel", *arguments]
        return subprocess.run(command, cwd=TESTS, env=environment, check=False).returncode


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]), sys.argv[2:]))
