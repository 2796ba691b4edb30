# SPDX-License-Identifier: BSD-3-Clause
"""check.py DEMO: the demo as a user without a display starts it."""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

DEMO = sys.argv.pop()
ENTERED = {"Price": "1234567.25", "Offset": "-0.75", "Total": "1234566.50", "Quantity": "1500",
           "Side": "B", "GoodTill": "2035.12.31 00:00:00.000"}
# Option, the file's content (None: there is no file), and what is said behind its name.
BAD_FILES = [("--database", None, ": no such file"),
             ("--database", "garbage, not SQLite", ": file is not a database"),
             ("--values", "{\n\"Price\": 1,\n}", ":3: "),
             ("--values", "[1]", ":1: "),
             ("--values", "{\"Price\": [1]}", ": \"Price\"")]


class Demo(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_demo(self, *arguments):
        return subprocess.run([DEMO, "--headless", *arguments], capture_output=True, text=True,
                              timeout=120, check=False)

    def test_scripted_order(self):
        demo = self.run_demo("--pictures", self.folder / "pictures")
        self.assertEqual(demo.returncode, 0, demo.stderr)
        result, end = json.JSONDecoder().raw_decode(demo.stdout)
        before, after = result["before"], result["after"]
        self.assertEqual(before.keys(), after.keys())
        self.assertEqual((before["Price"], before["SecurityId"]), ("", "0"))
        self.assertEqual(after, {**after, **ENTERED})
        self.assertGreater(int(after["SecurityId"]), 0)
        lines = demo.stdout[end:].split("\n")[1:-1]
        self.assertEqual(len(lines), 5)
        for line in lines:
            self.assertTrue(line.startswith("Picture: "), line)
            self.assertGreater(pathlib.Path(line[9:]).stat().st_size, 10000)

    def test_bad_files(self):
        for option, content, reason in BAD_FILES:
            with self.subTest(option=option, content=content):
                path = self.folder / ("missing" if content is None else "file")
                if content is not None:
                    path.write_text(content)
                demo = self.run_demo(option, path)
                self.assertEqual(demo.returncode, 1)
                self.assertIn(f"formkit-demo: {path}{reason}", demo.stderr)


unittest.main()
