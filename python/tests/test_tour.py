"""The tour prints what docs/python.md shows."""

import subprocess
import sys

from conftest import BIN, SOURCE


def test_the_tour_prints_what_its_page_shows(tmp_path):
    tour = SOURCE / "examples" / "tour.py"
    command = [sys.executable, "-B", tour, BIN / "aia-sample", tmp_path]
    printed = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    page = (SOURCE / "docs" / "python.md").read_text()
    assert f"\n```\n{printed}```\n" in page
    for plot in ("tour-run.png", "tour-map.png"):
        assert (tmp_path / plot).stat().st_size > 5000 and f"]({plot})" in page
