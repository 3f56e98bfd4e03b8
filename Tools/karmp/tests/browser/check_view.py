"""Opens pages of `karmp view` in headless Chromium, looks at what they show, and uses them.

Usage: check_view.py KARMP DOCUMENTS [PICTURES]

KARMP is the program, DOCUMENTS the folder of the example documents. Screenshots are left in the
folder PICTURES, if there is one.
"""

import collections
import functools
import json
import math
import os
import subprocess
import sys
import tempfile
import time
import unittest

from devtools import Browser

KARMP = DOCUMENTS = PICTURES = None
BACKGROUNDS = {False: (246, 247, 249), True: (20, 24, 31)}
MARKS = {False: (247, 103, 7), True: (255, 140, 26)}


def hue(colour):
    """The hue of a colour in degrees, and how saturated it is."""
    high, low = max(colour), min(colour)
    if high == low:
        return 0.0, 0.0
    red, green, blue = colour
    if high == red:
        sixth = (green - blue) / (high - low)
    elif high == green:
        sixth = 2 + (blue - red) / (high - low)
    else:
        sixth = 4 + (red - green) / (high - low)
    return 60 * sixth % 360, (high - low) / high


def is_shade(pixel, colour):
    """Whether a pixel may be a lit surface of a colour."""
    (pixel_hue, pixel_depth), (colour_hue, colour_depth) = hue(pixel), hue(colour)
    turn = abs(pixel_hue - colour_hue)
    return min(turn, 360 - turn) < 14 and abs(pixel_depth - colour_depth) < 0.35


def rgb(text):
    return tuple(int(text[start:start + 2], 16) for start in (1, 3, 5))


class ViewTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.browser = Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.close()
        cls.folder.cleanup()

    def page_of(self, document, name=None):
        name = name or os.path.splitext(os.path.basename(document))[0]
        path = os.path.join(self.folder.name, name + ".html")
        done = subprocess.run([KARMP, "view", document, "-o", path], stdin=subprocess.DEVNULL)
        self.assertIn(done.returncode, (0, 1))
        return path

    def open(self, document, dark=False, **options):
        path = self.page_of(document)
        page = self.browser.open(path, dark=dark, **options)
        self.addCleanup(page.close)
        self.addCleanup(lambda: self.assertEqual(page.problems, []))
        self.addCleanup(lambda: self.assertEqual(page.requests, ["file://" + path]))
        self.assertTrue(page.run("document.getElementById('message').hidden"))
        return page

    def example(self, name, **options):
        return self.open(os.path.join(DOCUMENTS, name + ".xml"), **options)

    def written(self, name, text):
        path = os.path.join(self.folder.name, name)
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(text)
        return path

    def place(self, page, name):
        """Where an entity is on the page, in pixels."""
        x, y = page.run(f"karmp.where({name!r})")
        left = page.run("document.getElementById('view').getBoundingClientRect().left")
        return left + x, y

    def picture(self, page, name):
        return page.screenshot(PICTURES and os.path.join(PICTURES, name + ".png"))

    def selected_row(self, page):
        return page.run("(document.querySelector('#tree .row.chosen .name') || {}).textContent")

    def shades_near(self, picture, at, colour, reach=14):
        return sum(is_shade(pixel, colour) for pixel in picture.around(*at, reach))

    def background(self, picture):
        """The commonest colour in a corner of the view."""
        (colour, _), = collections.Counter(picture.around(360, 600, 38)).most_common(1)
        return colour

    def is_seen(self, page, picture, name):
        """Whether the colour of a body is seen where it is."""
        colour = rgb(page.run(f"karmp.colour({name!r})"))
        return self.shades_near(picture, self.place(page, name), colour, 40) > 60

    def test_bodies_of_the_examples_are_seen_in_light_and_dark(self):
        bodies = {"seven-body": ["K2", "K3", "K4", "K5", "K6", "K7"],
                  "quarter-car": ["Upper arm", "Lower arm", "Tie rod", "Wheel"],
                  "slider-crank": ["Crank", "Rod", "Slider"],
                  "motor-drive": ["Turntable", "Slide", "Arm"],
                  "four-bar": ["Crank", "Coupler", "Rocker"],
                  "gear-pair": ["Pinion", "Wheel"], "collision": ["Dumbbell", "Gate"]}
        for example, names in bodies.items():
            for dark in (False, True):
                with self.subTest(example=example, dark=dark):
                    page = self.example(example, dark=dark)
                    picture = self.picture(page, example + ("-dark" if dark else ""))
                    self.assertEqual(self.background(picture), BACKGROUNDS[dark])
                    for name in names:
                        self.assertTrue(self.is_seen(page, picture, name), name)

    def test_a_click_in_the_picture_selects_in_the_tree(self):
        page = self.example("seven-body")
        page.click(*self.place(page, "Revolute.B"))
        self.assertEqual(page.run("karmp.selected()"), "Revolute.B")
        self.assertEqual(self.selected_row(page), "Revolute.B")
        self.assertIn("Revolute", page.run("document.getElementById('details').textContent"))
        page.mouse("mouseMoved", 340, 780)
        page.settle()
        picture = self.picture(page, "selected")
        self.assertGreater(
            self.shades_near(picture, self.place(page, "Revolute.B"), MARKS[False]), 40)
        page.click(340, 780)
        self.assertIsNone(page.run("karmp.selected()"))
        self.assertIsNone(self.selected_row(page))

    def test_a_click_in_the_tree_marks_the_picture(self):
        page = self.example("seven-body", dark=True)
        before = self.shades_near(page.screenshot(), self.place(page, "K5"), MARKS[True], 30)
        left, top = page.run("""(() => {
            const row = [...document.querySelectorAll('#tree .row')].find(
                row => row.querySelector('.name').textContent === 'K5');
            const box = row.getBoundingClientRect();
            return [box.left + 80, box.top + box.height / 2];
        })()""")
        page.click(left, top)
        self.assertEqual(page.run("karmp.selected()"), "K5")
        page.mouse("mouseMoved", 340, 780)
        page.settle()
        after = self.shades_near(page.screenshot(), self.place(page, "K5"), MARKS[True], 30)
        self.assertGreater(after, before + 200)

    def test_the_name_shows_under_the_pointer(self):
        page = self.example("quarter-car")
        page.mouse("mouseMoved", *self.place(page, "Spring"))
        page.mouse("mouseMoved", *self.place(page, "Upper ball"))
        page.settle()
        self.assertEqual(page.run("document.getElementById('tip').textContent"),
                         "Upper ballSpherical")
        page.mouse("mouseMoved", 340, 780)
        page.settle()
        self.assertTrue(page.run("document.getElementById('tip').hidden"))

    def test_a_search_keeps_what_it_finds_and_fades_the_rest(self):
        page = self.example("seven-body")
        colour = rgb(page.run("karmp.colour('K5')"))
        at = self.place(page, "K5")
        before = self.shades_near(page.screenshot(), at, colour, 30)
        page.run("document.getElementById('view').focus()")
        page.press("/")
        page.type("revolute.f")
        names = "[...document.querySelectorAll('#tree .row:not(.family) .name')].map(n => n.textContent)"
        self.assertEqual(page.run(names), ["Revolute.F", "Revolute.F.constraint", "K1.Revolute.F",
                                           "K2.Revolute.F"])
        self.assertLess(self.shades_near(page.screenshot(), at, colour, 30), before / 4)
        page.press("Enter", "\r")
        self.assertEqual(page.run("karmp.selected()"), "Revolute.F")
        page.press("Escape")
        self.assertGreater(len(page.run(names)), 10)

    def test_drags_wheel_and_keys_move_the_view(self):
        page = self.example("quarter-car")
        places = [self.place(page, "Upper ball")]

        def moved(action):
            action()
            page.settle()
            places.append(self.place(page, "Upper ball"))
            self.assertGreater(math.dist(places[-1], places[-2]), 1)

        moved(lambda: page.drag((600, 400), (700, 420)))
        moved(lambda: page.mouse("mouseWheel", 500, 300, deltaX=0, deltaY=-300))
        moved(lambda: page.press("ArrowRight"))
        moved(lambda: page.press("x", "x"))
        moved(lambda: page.press("f", "f") or page.press("p", "p"))
        moved(lambda: page.press("i", "i"))
        self.assertIsNone(page.run("karmp.selected()"), "a drag selects nothing")

    def test_the_keyboard_walks_the_tree(self):
        page = self.example("slider-crank")
        page.run("document.getElementById('tree').focus()")
        page.press("ArrowDown")
        self.assertEqual(page.run("karmp.selected()"), "Crank")
        page.press("ArrowRight")
        page.press("ArrowRight")
        self.assertRegex(page.run("karmp.selected()"), r"^Crank\.")
        page.press("ArrowLeft")
        self.assertEqual(page.run("karmp.selected()"), "Crank")

    def test_the_theme_key_turns_light_into_dark(self):
        page = self.example("slider-crank")
        page.run("document.getElementById('view').focus()")
        page.press("t", "t")
        self.assertEqual(self.background(page.screenshot()), BACKGROUNDS[True])

    def test_hostile_names_stay_names(self):
        name = "</script><script>document.title='broken'</script><img src=x onerror=\"document.title='broken'\">"
        name += "'\"&amp;\u2028\u2029`${1}\u202e"
        with open(os.path.join(DOCUMENTS, "slider-crank.xml"), encoding="utf-8") as file:
            text = file.read()
        escaped = name.replace("&", "&amp;").replace("<", "&lt;").replace('"', "&quot;")
        page = self.open(self.written("hostile.xml", text.replace('"Crank"', f'"{escaped}"')))
        self.assertEqual(page.run("document.title"), "hostile.xml")
        self.assertEqual(page.run("document.querySelectorAll('img').length"), 0)
        page.run("karmp.select(0)")
        self.assertEqual(page.run("karmp.selected()"), name)
        self.assertEqual(self.selected_row(page), name)
        self.assertEqual(page.run("document.querySelector('#details h2').textContent"), name)
        page.press("n", "n")
        self.assertEqual(page.run("document.querySelectorAll('script').length"), 2)

    def test_numbers_that_are_not_finite_leave_the_rest(self):
        with open(os.path.join(DOCUMENTS, "slider-crank.xml"), encoding="utf-8") as file:
            text = file.read()
        crank = text.index('<Body id="Crank"')
        for number in ("nan", "inf", "1e999", "1e300"):
            with self.subTest(number=number):
                start = text.index("<Vx>", crank) + 4
                end = text.index("</Vx>", crank)
                page = self.open(self.written(f"not-{number}.xml", text[:start] + number + text[end:]))
                picture = self.picture(page, "not-" + number)
                self.assertTrue(self.is_seen(page, picture, "Rod"))

    def test_a_small_world_and_an_empty_one_open(self):
        head = '<KARMPDocument version="R2018.1"><World>'
        for name, text in (("empty", ""), ("lone", '<Bodies><Body id="b" name="b"/></Bodies>')):
            with self.subTest(name=name):
                page = self.open(self.written(name + ".xml", f"{head}{text}</World></KARMPDocument>"))
                self.picture(page, name)
                page.press("f", "f")

    def patched(self, name, change):
        """The page of a copy of an example's page whose data were changed."""
        path = self.page_of(os.path.join(DOCUMENTS, "slider-crank.xml"), name)
        with open(path, encoding="utf-8") as file:
            text = file.read()
        start = text.index('id="scene">') + len('id="scene">')
        end = text.index("</script>", start)
        scene = json.loads(text[start:end])
        change(scene)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text[:start] + json.dumps(scene) + text[end:])
        page = self.browser.open(path)
        self.addCleanup(page.close)
        self.addCleanup(lambda: self.assertEqual(page.problems, []))
        return page

    def test_a_mechanism_far_from_the_origin_is_as_sharp(self):
        def move(scene):
            frames = [body["position"] for body in scene["bodies"]]
            frames += [frame for joint in scene["joints"] for frame in joint["frames"]]
            for frame in frames:
                frame[9:12] = [frame[9] + 1e7, frame[10] - 2e7, frame[11] + 3e6]

        near = self.example("slider-crank")
        far = self.patched("far", move)
        picture = self.picture(far, "far")
        for name in ("Crank", "Rod", "Slider"):
            self.assertTrue(self.is_seen(far, picture, name), name)
            self.assertLess(math.dist(self.place(far, name), self.place(near, name)), 1)

    def test_representations_take_the_place_of_rods(self):
        corners = [[x, y, z] for x in (-1, 1) for y in (-1, 1) for z in (-1, 1)]
        faces = [(0, 1, 3, 2), (4, 6, 7, 5), (0, 4, 5, 1), (2, 3, 7, 6), (0, 2, 6, 4), (1, 5, 7, 3)]
        red, clear = [0.9, 0.1, 0.1, 1.0], [0.1, 0.8, 0.2, 0.4]
        shapes = [{"entity": 0, "pieces": [
            {"points": [0.06 * number for corner in corners for number in corner],
             "triangles": [n for a, b, c, d in faces for n in (a, b, c, a, c, d)], "colour": colour},
            {"points": [0, 0, 0, 0.2, 0.2, 0.2]}]} for colour in (red, clear)]

        def give(scene):
            scene["shapes"] = shapes
            for name, shape in (("Crank", 0), ("Slider", 1)):
                entity = [entity[1] for entity in scene["entities"]].index(name)
                body = [body for body in scene["bodies"] if body["entity"] == entity][0]
                body["shapes"] = [shape]

        page = self.patched("shapes", give)
        picture = self.picture(page, "shapes")
        self.assertGreater(self.shades_near(picture, self.place(page, "Crank"), (230, 26, 26)), 200)
        page.click(*self.place(page, "Crank"))
        self.assertEqual(page.run("karmp.selected()"), "Crank")
        page.press("Escape")
        names = page.run("[...document.querySelectorAll('#layers label')].map(l => l.textContent)")
        self.assertIn("Geometry under shapes", names)

    def test_motors_and_sensors_have_symbols(self):
        red, blue = (224, 49, 49), (12, 133, 153)
        for example, layer, colour, names in (
                ("motor-drive", "Motors", red, ["Turn motor", "Lift motor", "Reach motor"]),
                ("instrumented-crank", "Motors", red, ["Motor"]),
                ("instrumented-crank", "Sensors", blue,
                 ["Crank angle sensor", "Stroke sensor", "Displacement sensor", "Pin force sensor",
                  "Motor sensor", "Redundancy sensor"])):
            with self.subTest(example=example, layer=layer):
                page = self.example(example)
                shown = page.run("[...document.querySelectorAll('#layers label')].map(l => l.textContent)")
                self.assertIn(layer, shown)
                picture = self.picture(page, f"{example}-{layer}")
                for name in names:
                    seen = self.shades_near(picture, self.place(page, name), colour, 40)
                    self.assertGreater(seen, 60, name)

    def test_ten_thousand_bodies_are_written_and_used_in_seconds(self):
        document = self.written("chain.xml", chain(10000))
        start = time.monotonic()
        self.page_of(document, "chain")
        written = time.monotonic() - start
        page = self.open(document)
        opened = time.monotonic() - start - 2 * written
        self.assertEqual(page.run("document.title"), "chain.xml")
        start = time.monotonic()
        page.click(*self.place(page, "Joint 5000"))
        page.drag((700, 400), (720, 410))
        used = time.monotonic() - start
        self.picture(page, "chain")
        print(f"10000 bodies: written in {written:.1f} s, open in {opened:.1f} s, "
              f"a click and a turn in {used:.1f} s", file=sys.stderr)
        self.assertLess(written, 20)
        self.assertLess(opened, 60)
        self.assertLess(used, 60)
        page.run("document.getElementById('search').focus()")
        page.type("body 9999")
        self.assertEqual(page.run("document.querySelectorAll('#tree .row').length"), 2)


@functools.lru_cache
def chain(count):
    """A document of bodies along a spiral, each with a joint to the next."""
    bodies, joints, constraints, geometries = [], [], [], []
    for i in range(count):
        angle = 2.2 * math.sqrt(i)
        radius = 0.5 * angle
        x, y = radius * math.cos(angle), radius * math.sin(angle)
        bodies.append(
            f'<Body id="b{i}" name="Body {i}" isActive="yes" is_fixed="no"><Position><Translation>'
            f"<Vx>{x:.4f}</Vx><Vy>{y:.4f}</Vy><Vz>{0.01 * i:.3f}</Vz></Translation><Rotation>"
            "<M1x>1</M1x><M1y>0</M1y><M1z>0</M1z><M2x>0</M2x><M2y>1</M2y><M2z>0</M2z>"
            "<M3x>0</M3x><M3y>0</M3y><M3z>1</M3z></Rotation></Position>"
            f'<Geometries><Geometry id="g{i}a"/><Geometry id="g{i}b"/></Geometries></Body>')
        for end, shift in (("a", 0.0), ("b", 0.9)):
            geometries.append(
                f'<AxisSystem id="g{i}{end}" name="" isActive="yes"><Body id="b{i}"/><Coordinates>'
                f"<Ox>{shift}</Ox><Oy>0</Oy><Oz>0</Oz><D1x>1</D1x><D1y>0</D1y><D1z>0</D1z>"
                "<D2x>0</D2x><D2y>1</D2y><D2z>0</D2z><D3x>0</D3x><D3y>0</D3y><D3z>1</D3z>"
                "</Coordinates></AxisSystem>")
        if i == 0:
            continue
        joints.append(
            f'<Revolute id="j{i}" name="Joint {i}" isActive="yes"><Bodies>'
            f'<Body id="b{i - 1}" bodyOrientation="Out"/><Body id="b{i}" bodyOrientation="In"/>'
            f'</Bodies><Constraints><Constraint id="c{i}"/></Constraints></Revolute>')
        constraints.append(
            f'<RevoluteConstraint id="c{i}" name="" isActive="yes"><Joint id="j{i}"/><Geometries>'
            f'<Geometry id="g{i - 1}b"/><Geometry id="g{i}a"/></Geometries></RevoluteConstraint>')
    lists = (("Bodies", bodies), ("Joints", joints), ("Constraints", constraints),
             ("Geometries", geometries))
    return ('<KARMPDocument version="R2018.1"><World>' +
            "".join(f"<{name}>{''.join(items)}</{name}>" for name, items in lists) +
            "</World></KARMPDocument>")


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    KARMP, DOCUMENTS = map(os.path.abspath, sys.argv[1:3])
    if len(sys.argv) > 3:
        PICTURES = os.path.abspath(sys.argv[3])
        os.makedirs(PICTURES, exist_ok=True)
    unittest.main(argv=sys.argv[:1], verbosity=1)
