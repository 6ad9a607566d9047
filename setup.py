"""Builds the zemcalc package with the project's CMake: `pip install --no-build-isolation .`.

CMake builds the library and the extension module and installs them into a staging directory
laid out as the package itself (the module finds the library beside it), which is then copied
into the wheel. Needs cmake, a C++17 compiler and pybind11 (Debian: pybind11-dev); nothing is
downloaded.
"""
import glob
import os
import re
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = os.path.dirname(os.path.abspath(__file__))


class CMakeBuild(build_ext):
    def build_extension(self, ext):
        build = os.path.abspath(os.path.join(self.build_temp, "cmake"))
        stage = os.path.abspath(os.path.join(self.build_temp, "stage"))
        shutil.rmtree(stage, ignore_errors=True)
        subprocess.run(["cmake", "-S", ROOT, "-B", build, "-DCMAKE_BUILD_TYPE=Release",
                        "-DZEMCALC_BUILD_PYTHON=ON", "-DZEMCALC_BUILD_TESTS=OFF", "-DZEMCALC_BUILD_EXAMPLES=OFF",
                        "-DZEMCALC_BUILD_BENCH=OFF", "-DZEMCALC_BUILD_TOOLS=OFF", f"-DPython3_EXECUTABLE={sys.executable}",
                        "-DZEMCALC_PYTHON_INSTALL_DIR=.", "-DCMAKE_INSTALL_LIBDIR=zemcalc"], check=True)
        subprocess.run(["cmake", "--build", build, "--target", "_zemcalc", "-j", str(os.cpu_count() or 2)], check=True)
        subprocess.run(["cmake", "--install", build, "--prefix", stage], check=True, stdout=subprocess.DEVNULL)
        target = os.path.dirname(os.path.abspath(self.get_ext_fullpath(ext.name)))
        os.makedirs(target, exist_ok=True)
        for path in glob.glob(os.path.join(stage, "zemcalc", "*")):
            name = os.path.basename(path)
            # the module, the package files, and each shared library under its run-time name only
            if name.startswith("_zemcalc") or name.endswith((".py", ".pyi", ".typed")) or re.fullmatch(
                    r"lib\w+\.so\.\d+", name):
                shutil.copyfile(path, os.path.join(target, name))


setup(
    packages=["zemcalc"],
    package_dir={"zemcalc": "python/zemcalc"},
    package_data={"zemcalc": ["*.pyi", "py.typed"]},
    ext_modules=[Extension("zemcalc._zemcalc", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
)
