"""The package works where it was installed, and in a virtual environment that pip installed it to."""

import os
import subprocess
import sys

import pytest
from conftest import FIXTURES, SOURCE

BUILD = FIXTURES.parent.parent
# A file of a newer kind, which goes through the installed program for the first look.
USE = f"import aiams; print(len(aiams.open({str(FIXTURES / 'wide-values.cdf')!r})), aiams.__file__)"


def check(python, folder, environment):
    environment = {**os.environ, "PYTHONPATH": "", **environment}
    done = subprocess.run([python, "-B", "-c", USE], capture_output=True, text=True, env=environment)
    assert done.returncode == 0, done.stderr
    scans, place = done.stdout.split()
    assert int(scans) > 0 and place.startswith(str(folder))


def test_an_installation_that_was_moved(tmp_path):
    subprocess.run(["cmake", "--install", BUILD, "--prefix", tmp_path / "first"], check=True, stdout=subprocess.DEVNULL)
    (tmp_path / "first").rename(tmp_path / "moved")
    folder = tmp_path / "moved/lib/python3/dist-packages"
    check(sys.executable, folder, {"PYTHONPATH": str(folder)})


@pytest.mark.skipif("AIA_TEST_PIP" not in os.environ, reason="it builds all anew; set AIA_TEST_PIP to run it")
def test_a_virtual_environment(tmp_path):
    subprocess.run([sys.executable, "-m", "venv", "--system-site-packages", tmp_path], check=True)
    python = tmp_path / "bin/python"
    subprocess.run([python, "-m", "pip", "install", "-q", "--no-build-isolation", "--no-deps", SOURCE], check=True)
    check(python, tmp_path, {})
