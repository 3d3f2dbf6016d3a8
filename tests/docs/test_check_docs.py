"""Tests of check_docs.py: names and links that lead nowhere are noticed.

Usage: test_check_docs.py   (unittest; run by CTest)
"""

import pathlib
import tempfile
import unittest

import check_docs


class Names(unittest.TestCase):

    def complaints(self, text):
        """About a README with that text, beside docs/page.md and board/move.cpp."""
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            files = {"README.md": text, "CONTRIBUTING.md": "",
                     "docs/page.md": "# The page\n## What it does, and how\n```\n# no heading\n```\n",
                     "board/move.cpp": "void MakeMove() {}"}
            for name, contents in files.items():
                path = root / name
                path.parent.mkdir(exist_ok=True)
                path.write_text(contents, encoding="utf-8")
            return check_docs.check_names(root)

    def test_what_exists_is_no_fault(self):
        self.assertEqual(self.complaints(
            "# Own\n[a](docs/page.md) [b](docs/page.md#what-it-does-and-how) [c](#own)\n"
            "`board/move.cpp` `docs/` `MakeMove` in `board/move.cpp` [d](https://example.org/#x)"), [])

    def test_each_fault_is_told(self):
        for text, complaint in (
                ("[a](docs/pag.md)", "dead link: docs/pag.md"),
                ("[a](docs/page.md#what)", "dead link: docs/page.md#what"),
                ("[a](docs/page.md#no-heading)", "dead link: docs/page.md#no-heading"),
                ("[a](#own)", "dead link: #own"),
                ("`web/nothing.js`", "no such file: web/nothing.js"),
                ("`Unmake` in `board/move.cpp`", "Unmake is not in board/move.cpp")):
            self.assertEqual(self.complaints(text), [f"README.md: {complaint}"])


if __name__ == "__main__":
    unittest.main()
