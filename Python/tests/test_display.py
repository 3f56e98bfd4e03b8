import html.parser
import pickle
import shutil
import unittest

import karmp
from mechanisms import four_bar

EVIL = '<script>alert("x")</script>'


class Elements(html.parser.HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.names = set()
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        self.names.add(tag)


class Notebook(unittest.TestCase):
    def setUp(self):
        self.model = four_bar()
        self.crank = self.model.bodies["Crank"]
        self.model.rename(self.crank, EVIL)

    def test_names_are_escaped(self):
        other = self.model.clone()
        other.bodies["Crank"].mass = 3
        other.rename(other.bodies["Crank"], "x" + EVIL)
        finding = karmp.loads(self.model.text().replace(
            "</Weight>", f"<Colour>{html.escape(EVIL)}</Colour></Weight>", 1)).findings[0]
        shown = [self.model, self.crank, self.model.joints["A"], finding,
                 *self.model.diff(other)]
        for value in shown:
            self.assertNotIn("script", Elements(value._repr_html_()).names)
        self.assertIn("&lt;script&gt;", self.crank._repr_html_())

    def test_model_shows_its_entities(self):
        text = self.model._repr_html_()
        self.assertIn("<summary>joints: 4</summary>", text)
        self.assertIn("Rocker", text)

    def test_model_is_not_changed_by_showing_it(self):
        m, before = four_bar(), four_bar().text()
        m._repr_html_()
        self.assertEqual(m.text(), before)

    def test_entity_shows_its_items(self):
        text = self.crank._repr_html_()
        self.assertIn(">mass</span></td><td>0.2</td>", text)
        self.assertIn("The mass.", text)

    def test_long_tables_tell_how_many_rows_they_leave_out(self):
        m = karmp.Model("Many")
        for i in range(199):
            m.add_body(f"B{i}")
        self.assertEqual(m._repr_html_().count("<td>Body</td>"), 200)  # with the ground
        self.assertNotIn("more</p>", m._repr_html_())
        m.add_body("Last")
        text = m._repr_html_()
        self.assertEqual(text.count("<td>Body</td>"), 200)
        self.assertIn("<p>and 1 more</p>", text)
        self.assertNotIn("Last", text)
        self.assertNotIn("finding", text)
        self.assertNotIn("joints: 0", text)

    def test_findings_of_loading_are_shown(self):
        m = karmp.loads(four_bar().text().replace("</Weight>", "<Colour/></Weight>", 1))
        self.assertIn("<th>finding</th>", m._repr_html_())
        self.assertIn("[unknown-element]", m._repr_html_())

    def test_every_entity_can_be_shown(self):
        for entity in self.model.all(karmp.Entity):
            self.assertIn("<table>", entity._repr_html_())

    def test_graph_is_drawn_by_graphviz(self):
        graph = self.model.graph("Four-bar")
        self.assertIn("Rocker", graph.text)
        if shutil.which("dot"):
            self.assertIn("<svg", graph._repr_svg_())
            self.assertNotIn("script", Elements(graph.svg()).names)
        else:
            self.assertIsNone(graph._repr_svg_())

    def test_page_stands_in_a_frame_of_its_own(self):
        page = self.model.show(EVIL)
        self.assertIn("Rocker", page.html)
        self.assertNotIn(EVIL, page.html)
        self.assertEqual(Elements(page._repr_html_()).names, {"iframe"})

    def test_data_frame_has_a_column_for_each_number(self):
        try:
            import pandas
        except ImportError:
            self.skipTest("pandas is not installed")
        frame = self.model.frame(karmp.Body)
        self.assertIsInstance(frame, pandas.DataFrame)
        self.assertEqual(frame.loc["Rocker", "mass"], 0.4)
        self.assertEqual(frame.loc["Rocker", "position_03"], 0.3)
        self.assertEqual(frame.loc["Rocker", "cog_0"], 0.1)

    def test_representations_can_be_printed(self):
        import pprint

        self.model.delete(self.model.joints["A"])
        for value in (self.model, self.model.bodies, self.crank.joints, self.crank):
            self.assertEqual(pprint.pformat([value]), f"[{value!r}]")


if __name__ == "__main__":
    unittest.main()
