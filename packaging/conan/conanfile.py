"""Takes the zip that package.sh makes, which stands beside this file."""
import os

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.files import copy, unzip


class VekLib(ConanFile):
    name = "veklib"
    version = "0.2.0"
    description = "General-purpose utility library for graphics tools"
    settings = "os", "arch", "compiler"
    package_type = "shared-library"
    exports_sources = "VekLib-*-windows.zip"

    def validate(self):
        if self.settings.os != "Windows" or str(self.settings.arch) not in ("x86", "x86_64"):
            raise ConanInvalidConfiguration("VekLib is for Windows on x86 and x64")

    def _flavour(self):
        settings = self.settings
        gnu = settings.compiler == "gcc" or (settings.compiler == "clang" and not settings.get_safe("compiler.runtime"))
        return ("win64" if settings.arch == "x86_64" else "win32") + ("-gnu" if gnu else "-msvc")

    def package_id(self):
        # One DLL is for all versions and settings of a compiler family.
        settings = self.info.settings
        for part in ("version", "cppstd", "cstd", "libcxx", "runtime", "runtime_type", "runtime_version", "threads", "exception",
                     "toolset", "update"):
            settings.rm_safe("compiler." + part)

    def build(self):
        unzip(self, os.path.join(self.source_folder, f"VekLib-{self.version}-windows.zip"), strip_root=True)

    def package(self):
        flavour = self._flavour()
        for pattern, source, target in (
                ("VekLib.*", f"bin/{flavour}", "bin"), ("*VekLib.*", f"lib/{flavour}", "lib"), ("*", "include", "include"),
                ("*", "licences", "licenses"), ("LICENSE", ".", "licenses"), ("THIRD-PARTY-NOTICES.txt", ".", "licenses")):
            copy(self, pattern, os.path.join(self.build_folder, source), os.path.join(self.package_folder, target))

    def package_info(self):
        self.cpp_info.libs = ["VekLib"]
        self.cpp_info.set_property("cmake_file_name", "VekLib")
        self.cpp_info.set_property("cmake_target_name", "VekLib::VekLib")
        self.cpp_info.set_property("pkg_config_name", "veklib")
