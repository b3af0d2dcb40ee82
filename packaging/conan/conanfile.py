"""A recipe for Conan 2. It takes the sources from the folder that it is in: conan create packaging/conan"""
import re
from pathlib import Path

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load


class MoxXmlApi(ConanFile):
    name = "mox_xmlapi"
    description = "Settings profiles and data tables in XML files"
    # There is no attribute "license", because no licence has been chosen yet. Until there is one, the package is for
    # the owners of the software alone.
    package_type = "shared-library"
    settings = "os", "compiler", "build_type", "arch"

    def _project(self) -> Path:
        return Path(self.recipe_folder).parents[1]

    def set_version(self):
        text = load(self, str(self._project() / "CMakeLists.txt"))
        self.version = re.search(r"^project\(mox_xmlApi VERSION (\S+)$", text, re.MULTILINE)[1]

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "*.md"):
            copy(self, pattern, str(self._project()), self.export_sources_folder, excludes="*/*")
        for folder in ("cmake", "companions", "docs", "examples", "mox_host", "mox_xmlApi", "schemas"):
            copy(self, f"{folder}/*", str(self._project()), self.export_sources_folder)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        for option in ("BUILD_TESTS", "BUILD_EXAMPLES", "BUILD_TOOLS", "WARNINGS_ARE_ERRORS"):
            toolchain.cache_variables[f"MOX_{option}"] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        # find_package finds the project's own files.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs = ["lib/cmake/mox_xmlApi"]
        self.cpp_info.libs = ["mox_front", "mox_host", "mox_xmlApi", "mox_dbtInfo", "mox_porting"]
