"""Compares the JSON that aia-import writes of every fixture with the independent reading, to the last bit.

python3 compare.py AIA-IMPORT FOLDER-OF-BUILT-FIXTURES
"""

import json
import pathlib
import subprocess
import sys
import unittest

import numpy as np

from numpy_import import Refused, Run

# Fixtures that are too large for this comparison.
TOO_LARGE = {
    "claimed-masses": "it claims 2,000 million masses, and the reading holds all of them at once",
    "huge-scans": "its second scan has 16,777,216 points, some 200 MB of JSON",
    "info-claims": "it claims 2,147,483,647 scans, and the reading holds all of them at once",
}


class Comparison(unittest.TestCase):
    maxDiff = 2000

    def compare(self, length):
        texts = pathlib.Path(__file__).parent.parent.glob("fixtures/*/*.cdl")
        names = {text.name.split(".")[0] for text in texts}
        self.assertLessEqual(TOO_LARGE.keys(), names)
        paths = [f"{fixtures}/{name}.cdf" for name in sorted(names - TOO_LARGE.keys())]
        command = [aia_import, "--quiet", "--json", "-", "--gcxgc", str(length), *paths]
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
        results = {result["file"]: result for result in map(json.loads, done.stdout.splitlines())}
        for path in paths:
            with self.subTest(path):
                result, expected = results.get(path), None  # refused
                try:
                    expected = Run(path, length).as_json()
                except Refused:
                    pass
                if result:
                    self.check_and_drop_verdicts(result)
                if result and expected and expected["header"]["date"] is None:
                    result["header"]["date"] = None  # today's
                self.assertEqual(json.dumps(result, indent=1), json.dumps(expected, indent=1))

    def check_and_drop_verdicts(self, result):
        """Takes out what aia-import says of the numbers, after a look at whether it agrees with itself."""
        result.pop("version")
        reasons = [scan.pop("reason") for scan in result["scans"] if not scan.pop("read", True)]
        losses = [doubt for doubt in result.pop("doubts") if doubt["loss"]]
        self.assertEqual(result.pop("complete"), not reasons and not losses)

    def test_plain(self):
        self.compare(0)

    def test_gcxgc(self):
        self.compare(2)


if __name__ == "__main__":
    np.seterr(all="ignore")
    aia_import, fixtures = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1])
