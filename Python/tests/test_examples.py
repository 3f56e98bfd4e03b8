"""The examples run, in processes of their own, and make what they say."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import karmp

ROOT = pathlib.Path(__file__).parents[2]
FOUR_BAR = ROOT / "Examples/documents/four-bar.xml"


class Examples(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_example(self, name, *arguments):
        program = ROOT / "Python/examples" / name
        environment = os.environ | {"PYTHONPATH": str(pathlib.Path(karmp.__file__).parents[1])}
        subprocess.run([sys.executable, "-B", "-W", "error", program, *arguments],
                       cwd=self.folder, check=True,
                       env=environment, stdout=subprocess.DEVNULL)

    def test_four_bar_is_that_of_the_program(self):
        self.run_example("four_bar.py")
        self.assertEqual(karmp.load(FOUR_BAR).diff(karmp.load(self.folder / "four-bar.xml")), [])

    def test_four_bar_has_at_most_twenty_lines(self):
        text = (ROOT / "Python/examples/four_bar.py").read_text(encoding="utf-8")
        code = text.split('"""')[2].splitlines()
        self.assertLessEqual(len([line for line in code if line.strip(" #")]), 20)

    def test_parameter_study_saves_closed_linkages(self):
        self.run_example("parameter_study.py", FOUR_BAR, self.folder)
        documents = sorted(self.folder.glob("crank-*.xml"))
        self.assertEqual(len(documents), 100)
        for document in (documents[0], documents[99]):
            model = karmp.load(document)
            for joint in model.joints:
                points = [frame.body.position @ [*frame.origin, 1.0]
                          for frame in joint.constraints[0].geometries]
                self.assertLess(abs(points[0] - points[1]).max(), 1e-12)
        lengths = [karmp.load(d).get(karmp.AxisSystem, "Crank.B").origin[0] for d in documents[::99]]
        self.assertEqual([round(length, 12) for length in lengths], [0.05, 0.15])

    def test_report_is_a_page(self):
        self.run_example("report.py", FOUR_BAR, "report.html")
        page = (self.folder / "report.html").read_text(encoding="utf-8")
        for text in ("<h1>four-bar</h1>", "Rocker", "Revolute", "nothing to tell", "<iframe"):
            self.assertIn(text, page)


if __name__ == "__main__":
    unittest.main()
