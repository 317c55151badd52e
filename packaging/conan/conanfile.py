"""Builds the library from the sources that this recipe stands in: conan create packaging/conan"""

import os
import re

from conan import ConanFile
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain
from conan.tools.files import copy, load


class QuorvaneCommon(ConanFile):
    name = "quorvane-common"
    description = "Common library of a platform power-analysis tool"
    package_type = "shared-library"
    settings = "os", "arch", "compiler", "build_type"

    def _sources(self):
        return os.path.join(self.recipe_folder, os.pardir, os.pardir)

    def set_version(self):
        text = load(self, os.path.join(self._sources(), "CMakeLists.txt"))
        self.version = re.search(r"project\(QuorvaneCommon VERSION ([0-9.]+)", text).group(1)

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "client/src/*", "cmake/*", "packaging/*"):
            copy(self, pattern, self._sources(), self.export_sources_folder)

    def requirements(self):
        # A public header includes it.
        self.requires("nlohmann_json/[>=3.11 <4]", transitive_headers=True)

    def generate(self):
        CMakeDeps(self).generate()
        toolchain = CMakeToolchain(self)
        toolchain.variables["QUORVANE_BUILD_TESTS"] = False
        toolchain.variables["QUORVANE_BUILD_EXAMPLES"] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "Quorvane")
        self.cpp_info.set_property("cmake_target_name", "Quorvane::common")
        self.cpp_info.set_property("pkg_config_name", "quorvane")
        self.cpp_info.includedirs = [os.path.join("include", "quorvane")]
        self.cpp_info.libs = ["quorvane_common"]
        self.cpp_info.requires = ["nlohmann_json::nlohmann_json"]
