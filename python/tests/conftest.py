import os
import pathlib
import subprocess

import pytest

FIXTURES = pathlib.Path(os.environ["AIA_FIXTURES"])
BIN = pathlib.Path(os.environ["AIA_BIN"])
SOURCE = pathlib.Path(os.environ["AIA_SOURCE"])


def make_sample(path, *options):
    subprocess.run([BIN / "aia-sample", *map(str, options), path], check=True)
    return path


@pytest.fixture(scope="session")
def sample(tmp_path_factory):
    """A run of 200 scans."""
    return make_sample(tmp_path_factory.mktemp("sample") / "sample.cdf", "--scans", 200, "gcms")
