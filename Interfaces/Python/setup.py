# SPDX-License-Identifier: MIT
"""Builds a wheel of the package with the library and the fluids in it. CMake builds and installs all of it, by the
rules of the repository; CMAKE_ARGS has more arguments for it."""
import os
import pathlib
import shlex
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
VERSION = (REPOSITORY / "VERSION").read_text(encoding="utf-8").split()[0]


class cmake_build(build_ext):
    """CMake in place of setuptools' own compiler."""

    def run(self):
        build = pathlib.Path(self.build_temp).resolve()
        target = pathlib.Path(self.build_lib).resolve()
        shutil.rmtree(target, ignore_errors=True)  # what is left from another build would go into the wheel
        switches = {"COMMAND": "OFF", "EXAMPLES": "OFF", "TESTS": "OFF", "FUZZERS": "OFF", "BENCHMARKS": "OFF",
                    "PYTHON": "ON"}
        subprocess.run([
            "cmake", "-S", REPOSITORY, "-B", build, "-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_CXX_FLAGS_RELEASE=-O2",
            f"-DOSTREL_PYTHON={sys.executable}", f"-DCMAKE_INSTALL_PREFIX={target}", "-DOSTREL_INSTALL_PYTHONDIR=.",
            # The library looks for its fluids, and the package for the library, by the relative place.
            "-DCMAKE_INSTALL_LIBDIR=ostrel/lib", "-DCMAKE_INSTALL_DATADIR=ostrel/share",
            *(f"-DOSTREL_BUILD_{name}={value}" for name, value in switches.items()),
            *shlex.split(os.environ.get("CMAKE_ARGS", ""))], check=True)
        subprocess.run(["cmake", "--build", build, "--parallel", str(os.cpu_count())], check=True)
        for component in ("python", "library", "fluids"):
            subprocess.run(["cmake", "--install", build, "--component", component], check=True)
        # Wheels have no links: only the file under the name for which the module asks stays.
        links = [path for path in (target / "ostrel/lib").iterdir() if path.is_symlink()]
        for link in links:
            file = link.resolve()
            link.unlink()
            file.rename(link)


setup(version=VERSION, ext_modules=[Extension("ostrel._core", sources=[])], cmdclass={"build_ext": cmake_build},
      options={"build": {"build_base": str(REPOSITORY / "build/python")}})
