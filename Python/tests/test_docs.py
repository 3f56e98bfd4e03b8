"""The documentation of the package: docstrings of all that is public, the guide, the notebooks."""

import contextlib
import doctest
import io
import json
import os
import pathlib
import re
import tempfile
import unittest

import karmp

PROJECT = pathlib.Path(__file__).resolve().parents[2]
GUIDE = PROJECT / "docs/python.md"
README = PROJECT / "README.md"
NOTEBOOKS = sorted((PROJECT / "Python/examples").glob("*.ipynb"))


def guide_examples():
    """The interactive examples of the guide, of which each block ends with an empty line."""
    blocks = re.findall(r"^```python\n(>>>.*?)^```$", GUIDE.read_text("utf-8"), re.MULTILINE | re.DOTALL)
    return "\n".join(blocks)


def sentence(documented):
    return (documented.__doc__ or "").strip()


def public(owner):
    return {name: value for name, value in vars(owner).items() if not name.startswith("_")}


class Docstrings(unittest.TestCase):
    def test_all_that_is_public_has_a_sentence(self):
        self.assertTrue(sentence(karmp))
        count = 0
        for name, value in public(karmp).items():
            if type(value).__name__ == "module":
                continue
            with self.subTest(name):
                self.assertTrue(sentence(value).endswith("."), value.__doc__)
            members = public(value) if isinstance(value, type) else {}
            for member, inner in members.items():
                with self.subTest(f"{name}.{member}"):
                    count += 1
                    if name not in ("Error", "DocumentError"):  # their attributes are values
                        self.assertTrue(sentence(inner).endswith("."), inner.__doc__)
        self.assertGreater(count, 300)


@contextlib.contextmanager
def scratch_folder():
    before = os.getcwd()
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        try:
            yield
        finally:
            os.chdir(before)


class Pages(unittest.TestCase):
    def test_examples_of_the_guide_give_what_it_shows(self):
        test = doctest.DocTestParser().get_doctest(guide_examples(), {}, GUIDE.name, str(GUIDE), 0)
        self.assertGreater(len(test.examples), 40)
        told = io.StringIO()
        with scratch_folder():
            runner = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS)
            result = runner.run(test, out=told.write)
        self.assertEqual(result.failed, 0, told.getvalue())

    def test_program_of_the_first_page_builds_a_sound_linkage(self):
        [program] = re.findall(r"^```python\n(.*?)^```$", README.read_text("utf-8"), re.MULTILINE | re.DOTALL)
        self.assertLessEqual(len([line for line in program.splitlines() if line]), 20)
        names = {}
        with scratch_folder():
            exec(compile(program, README.name, "exec"), names)
            self.assertEqual(karmp.check("four-bar.xml"), [])
            self.assertEqual(len(karmp.load("four-bar.xml").joints), 4)

    def test_cells_of_notebooks_run_one_after_the_other(self):
        self.assertTrue(NOTEBOOKS)
        for path in NOTEBOOKS:
            notebook = json.loads(path.read_text("utf-8"))
            self.assertEqual(notebook["nbformat"], 4)
            names = {"__name__": "__main__"}
            with self.subTest(path.name), scratch_folder():
                for cell in notebook["cells"]:
                    if cell["cell_type"] == "code":
                        self.assertEqual(cell["outputs"], [])
                        exec(compile("".join(cell["source"]), path.name, "exec"), names)


if __name__ == "__main__":
    unittest.main()
