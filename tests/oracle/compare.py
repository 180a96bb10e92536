"""Compares the JSON that aia-import writes of every fixture with the independent reading, to the last bit."""

import io
import json
import pathlib
import subprocess
import sys
import unittest

import numpy as np

import numpy_import

# Fixtures that are too large for this comparison.
TOO_LARGE = {
    "claimed-masses": "it claims 2,000 million masses, and the reading holds all of them at once",
    "huge-scans": "its second scan has 16,777,216 points, some 200 MB of JSON",
    "info-claims": "it claims 2,147,483,647 scans, and the reading holds all of them at once",
}


class Comparison(unittest.TestCase):
    maxDiff = 2000

    def setUp(self):
        texts = pathlib.Path(__file__).parent.parent.glob("fixtures/*/*.cdl")
        names = {text.name.split(".")[0] for text in texts}
        self.assertLessEqual(TOO_LARGE.keys(), names)
        self.paths = [f"{fixtures}/{name}.cdf" for name in sorted(names - TOO_LARGE.keys())]

    def compare(self, length):
        command = [aia_import, "--quiet", "--json", "-", "--gcxgc", str(length), *self.paths]
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
        self.assertIn(done.returncode, (0, 1))
        results = {result["file"]: result for result in map(json.loads, done.stdout.splitlines())}
        for path in self.paths:
            with self.subTest(path):
                result, expected = results.get(path), self.read(path, length)
                if result and expected and expected["header"]["date"] is None:  # no stamp, so it is today's
                    result["header"]["date"] = None
                self.assertEqual(json.dumps(result, indent=1), json.dumps(expected, indent=1))

    @staticmethod
    def read(path, length):
        """None if the file is refused."""
        try:
            run = numpy_import.Run(path, length)
        except numpy_import.Refused:
            return None
        out = io.StringIO()
        run.write(out)
        result = json.loads(out.getvalue())
        if run.stamp is None:
            result["header"]["date"] = None
        return result

    def test_plain(self):
        self.compare(0)

    def test_gcxgc(self):
        self.compare(2)


if __name__ == "__main__":
    np.seterr(all="ignore")
    aia_import, fixtures = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1])
