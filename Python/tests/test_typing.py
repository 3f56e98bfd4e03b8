"""The types of the package, by mypy: they are the module's own, right programs pass, and forty mistakes
are found."""

import doctest
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

import karmp
from test_docs import guide_examples

TESTS = pathlib.Path(__file__).resolve().parent
TYPING = TESTS / "typing"
PACKAGE = pathlib.Path(karmp.__file__).parent
CACHE = tempfile.TemporaryDirectory()


def has_mypy():
    return subprocess.run([sys.executable, "-m", "mypy", "--version"], capture_output=True).returncode == 0


def run(module, *arguments):
    # Mypy finds an installed package by itself, and minds being told.
    path = {} if PACKAGE.parent.name == "site-packages" else {"MYPYPATH": str(PACKAGE.parent)}
    return subprocess.run(
        [sys.executable, "-m", module, *map(str, arguments)],
        capture_output=True,
        text=True,
        cwd=CACHE.name,
        env=os.environ | path,
    )


def check(*files):
    return run("mypy", "--strict", "--no-error-summary", *files)


# Continuous integration has mypy; a machine that only builds the package may lack it.
@unittest.skipUnless(has_mypy() or "CI" in os.environ, "mypy is not installed")
class Types(unittest.TestCase):
    @classmethod
    def tearDownClass(cls):
        CACHE.cleanup()

    def test_stubs_are_what_the_module_has(self):
        exceptions = TYPING / "not_in_stubs.txt"
        told = run("mypy.stubtest", "karmp", "--concise", "--allowlist", exceptions)
        self.assertEqual((told.returncode, told.stdout, told.stderr), (0, "", ""))
        lines = exceptions.read_text("utf-8").splitlines()
        self.assertLessEqual(len([line for line in lines if not line.startswith("#")]), 5)

    def test_stubs_and_right_programs_have_no_error(self):
        examples = sorted((TESTS.parent / "examples").glob("*.py"))
        told = check("-p", "karmp")
        self.assertEqual((told.returncode, told.stdout), (0, ""))
        guide = pathlib.Path(CACHE.name, "guide.py")
        parsed = doctest.DocTestParser().get_examples(guide_examples())
        guide.write_text("".join(example.source for example in parsed), "utf-8")
        for program in [TYPING / "uses.py", guide, *examples]:
            with self.subTest(program.name):
                told = check(program)
                self.assertEqual((told.returncode, told.stdout), (0, ""))

    def test_forty_of_forty_mistakes_are_found(self):
        program = TYPING / "mistakes.py"
        lines = program.read_text("utf-8").splitlines()
        planted = [i for i, line in enumerate(lines, 1) if line.endswith("# mistake")]
        self.assertEqual(len(planted), 40)
        found = re.findall(r"^.*mistakes\.py:(\d+): error", check(program).stdout, re.MULTILINE)
        self.assertEqual(sorted({int(line) for line in found}), planted)


if __name__ == "__main__":
    unittest.main()
