"""Runs the methods of the Conan recipe as Conan would, with stand-ins for what it imports.

    run_conanfile.py <recipe> <scratch folder> <expected version> <build folder of the project> <argument of cmake>...

Nothing is compiled: the libraries are those of the given build.
"""
import fnmatch
import importlib.util
import shutil
import subprocess
import sys
from pathlib import Path
from types import ModuleType, SimpleNamespace

recipe_path, scratch, version, first_build = Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[3], Path(sys.argv[4])
arguments = sys.argv[5:]
properties = {}


class ConanFile:
    def __init__(self):
        self.recipe_folder = str(recipe_path.parent)
        self.export_sources_folder = str(scratch / "exported")
        self.cpp_info = SimpleNamespace(set_property=properties.__setitem__)


class CMakeToolchain:
    def __init__(self, recipe):
        self.cache_variables = {}
        recipe.toolchain = self
        self.generated = False

    def generate(self):
        self.generated = True


class CMake:
    def __init__(self, recipe):
        self.recipe = recipe

    def configure(self):
        toolchain = self.recipe.toolchain
        assert toolchain.generated and self.recipe.has_layout
        variables = [f"-D{name}={'ON' if value else 'OFF'}" for name, value in toolchain.cache_variables.items()]
        subprocess.run(["cmake", "-S", self.recipe.export_sources_folder, "-B", scratch / "build", *arguments, *variables,
                        f"-DCMAKE_INSTALL_PREFIX={scratch / 'package'}", "-DCMAKE_INSTALL_LIBDIR=lib"], check=True)

    def build(self):
        for library in (first_build / "lib").glob("libmox_*"):
            (scratch / "build" / "lib").mkdir(exist_ok=True)
            shutil.copy(library, scratch / "build" / "lib", follow_symlinks=False)

    def install(self):
        subprocess.run(["cmake", "--install", scratch / "build"], check=True)


def cmake_layout(recipe):
    recipe.has_layout = True


def copy(recipe, pattern, src, dst, excludes=None):
    for path in Path(src).rglob("*"):
        name = path.relative_to(src).as_posix()
        if path.is_file() and fnmatch.fnmatch(name, pattern) and not (excludes and fnmatch.fnmatch(name, excludes)):
            Path(dst, name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(path, Path(dst, name))


def stand_in(name, **contents):
    sys.modules[name] = ModuleType(name)
    vars(sys.modules[name]).update(contents)


stand_in("conan", ConanFile=ConanFile)
stand_in("conan.tools")
stand_in("conan.tools.cmake", CMake=CMake, CMakeToolchain=CMakeToolchain, cmake_layout=cmake_layout)
stand_in("conan.tools.files", copy=copy, load=lambda recipe, path: Path(path).read_text(encoding="utf-8"))
sys.dont_write_bytecode = True
spec = importlib.util.spec_from_file_location("conanfile", recipe_path)
module = importlib.util.module_from_spec(spec)
spec.loader.exec_module(module)

recipe = module.MoxXmlApi()
recipe.set_version()
assert recipe.version == version, recipe.version
assert not hasattr(recipe, "license"), "a licence has been chosen: README.md and the other packages have to name it"
for step in ("export_sources", "layout", "generate", "build", "package", "package_info"):
    getattr(recipe, step)()
assert properties == {"cmake_find_mode": "none"}
for library in recipe.cpp_info.libs:
    assert list((scratch / "package" / "lib").glob(f"lib{library}.*")), library
for folder in recipe.cpp_info.builddirs:
    assert (scratch / "package" / folder / "mox_xmlApiConfig.cmake").exists(), folder
