# SPDX-License-Identifier: Apache-2.0
"""The Conan recipe, for Conan 2, of the source tree that it lies in:

    conan create packaging/conan -s compiler.cppstd=20

It has not been run yet.
"""

import os
import re

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeToolchain, cmake_layout
from conan.tools.files import copy, load, rmdir
from conan.tools.scm import Version


class NxcoreRecipe(ConanFile):
    name = "nxcore"
    license = "Apache-2.0"
    description = "Foundation library of trading front ends and servers"
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False]}
    default_options = {"shared": True}

    @property
    def _source(self):
        return os.path.join(self.recipe_folder, "..", "..")

    def set_version(self):
        self.version = re.search(r"project\(nxcore VERSION ([\d.]+)", load(self, os.path.join(self._source, "CMakeLists.txt"))).group(1)

    def export_sources(self):
        for pattern in ("CMakeLists.txt", "LICENSE", "*.md", "cmake/*", "core/*", "docs/*", "examples/*", "tools/gdb/*"):
            copy(self, pattern, self._source, self.export_sources_folder, excludes="build*")

    def validate(self):
        check_min_cppstd(self, 20)
        minimum = {"gcc": "12", "clang": "14"}.get(str(self.settings.compiler))
        if minimum is None or Version(self.settings.compiler.version) < minimum:
            raise ConanInvalidConfiguration("nxcore needs g++ 12 or clang 14, or later")
        if self.settings.compiler.libcxx != "libstdc++11":
            raise ConanInvalidConfiguration("nxcore needs libstdc++ with the C++11 strings")
        if self.settings.os != "Linux" or self.settings.arch not in ("x86_64", "armv8"):
            raise ConanInvalidConfiguration("nxcore needs a 64-bit Linux")

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        for part in ("TESTS", "TOOLS", "EXAMPLES"):
            toolchain.cache_variables[f"NXCORE_BUILD_{part}"] = False
        toolchain.generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        copy(self, "LICENSE", self.source_folder, os.path.join(self.package_folder, "licenses"))
        # Conan writes files of its own in their place.
        rmdir(self, os.path.join(self.package_folder, "lib", "cmake"))
        rmdir(self, os.path.join(self.package_folder, "lib", "pkgconfig"))

    def package_info(self):
        self.cpp_info.set_property("pkg_config_name", "nxcore")
        core = self.cpp_info.components["nxcore"]
        core.set_property("cmake_target_name", "nxcore::nxcore")
        core.libs = ["nxcore"]
        core.includedirs = [os.path.join("include", "nxcore")]
        core.system_libs = ["pthread"]
        testing = self.cpp_info.components["testing"]
        testing.set_property("cmake_target_name", "nxcore::testing")
        testing.requires = ["nxcore"]
        testing.includedirs = []
        testing.libdirs = []
