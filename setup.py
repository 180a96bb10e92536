"""Builds the package with CMake: pip install --no-build-isolation ."""

import os
import pathlib
import re
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent


class CMakeBuild(build_ext):
    """Makes the whole package, with the libraries and the program that it needs, in a folder of its own."""

    def run(self):
        build = ROOT / "build" / "pip"
        target = pathlib.Path(self.build_lib).resolve()
        subprocess.run(
            [
                "cmake", "-G", "Ninja", "-S", ROOT, "-B", build,
                "-DCMAKE_BUILD_TYPE=Release", "-DBUILD_TESTING=OFF", "-DAIA_PYTHON=ON",
                "-DCMAKE_INSTALL_LIBDIR=aiams", "-DAIA_PYTHON_DIR=.",
                f"-DPython_EXECUTABLE={sys.executable}",
            ],
            check=True,
        )  # fmt: skip
        subprocess.run(["cmake", "--build", build, "--target", "aiams"], check=True)
        for component in "aiams", "aiams-needs":
            subprocess.run(["cmake", "--install", build, "--prefix", target, "--component", component], check=True)


os.chdir(ROOT)
setup(
    version=re.search(r"project\(\w+ VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text())[1],
    packages=[],
    ext_modules=[Extension("aiams._core", [])],
    cmdclass={"build_ext": CMakeBuild},
)
