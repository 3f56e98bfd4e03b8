"""The types of the package, by mypy and pyright: they are the module's own, right programs pass, and forty
mistakes are found."""

import doctest
import json
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
MISTAKES = TYPING / "mistakes.py"
PACKAGE = pathlib.Path(karmp.__file__).parent
PYRIGHT = TESTS.parents[1] / "build/pyright/node_modules/.bin/pyright"
CACHE = tempfile.TemporaryDirectory()
unittest.addModuleCleanup(CACHE.cleanup)


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


def right_programs():
    """Programs without mistakes, that of the guide among them."""
    guide = pathlib.Path(CACHE.name, "guide.py")
    parsed = doctest.DocTestParser().get_examples(guide_examples())
    shown = "# pyright: reportUnusedExpression=false\n"
    guide.write_text(shown + "".join(example.source for example in parsed), "utf-8")
    return [TYPING / "uses.py", guide, *sorted((TESTS.parent / "examples").glob("*.py"))]


def planted_mistakes():
    """The lines of the program with mistakes that have one."""
    lines = MISTAKES.read_text("utf-8").splitlines()
    return [i for i, line in enumerate(lines, 1) if line.endswith("# mistake")]


# Continuous integration has mypy; a machine that only builds the package may lack it.
@unittest.skipUnless(has_mypy() or "CI" in os.environ, "mypy is not installed")
class Types(unittest.TestCase):
    def test_stubs_are_what_the_module_has(self):
        exceptions = TYPING / "not_in_stubs.txt"
        told = run("mypy.stubtest", "karmp._karmp", "--concise", "--allowlist", exceptions)
        self.assertEqual((told.returncode, told.stdout, told.stderr), (0, "", ""))
        lines = exceptions.read_text("utf-8").splitlines()
        self.assertLessEqual(len([line for line in lines if not line.startswith("#")]), 5)

    def test_stubs_and_right_programs_have_no_error(self):
        told = check("-p", "karmp")
        self.assertEqual((told.returncode, told.stdout), (0, ""))
        for program in right_programs():
            with self.subTest(program.name):
                told = check(program)
                self.assertEqual((told.returncode, told.stdout), (0, ""))

    def test_forty_of_forty_mistakes_are_found(self):
        planted = planted_mistakes()
        self.assertEqual(len(planted), 40)
        found = re.findall(r"^.*mistakes\.py:(\d+): error", check(MISTAKES).stdout, re.MULTILINE)
        self.assertEqual(sorted({int(line) for line in found}), planted)


@unittest.skipUnless(PYRIGHT.exists(), "pyright is not installed; scripts/types installs it")
class Pyright(unittest.TestCase):
    def test_package_and_right_programs_are_clean_and_mistakes_are_found(self):
        files = [*PACKAGE.glob("*.py*"), MISTAKES, *right_programs()]
        project = pathlib.Path(CACHE.name, "pyrightconfig.json")
        project.write_text(json.dumps({
            "include": [os.path.relpath(file, CACHE.name) for file in files],
            "exclude": [],
            "extraPaths": [str(PACKAGE.parent)],
            "typeCheckingMode": "strict",
            "reportPrivateUsage": False,  # within the package, and of what notebooks call
        }), "utf-8")
        told = subprocess.run([PYRIGHT, "--outputjson", "--pythonpath", sys.executable, "-p", project],
                              capture_output=True, text=True, cwd=CACHE.name)
        report = json.loads(told.stdout)
        self.assertEqual(report["summary"]["filesAnalyzed"], len(files))
        found = [(pathlib.Path(entry["file"]).name, entry["range"]["start"]["line"] + 1, entry["message"])
                 for entry in report["generalDiagnostics"]]
        self.assertEqual([entry for entry in found if entry[0] != MISTAKES.name], [])
        self.assertEqual(sorted({line for _, line, _ in found}), planted_mistakes())


if __name__ == "__main__":
    unittest.main()
