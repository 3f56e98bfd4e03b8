"""What must not be done raises, and nothing else happens: deleted entities, lost models, foreign
models, wrong values."""

import contextlib
import gc
import inspect
import io
import math
import os
import random
import tempfile
import unittest
import warnings
import weakref

import karmp
from mechanisms import four_bar


class Ownership(unittest.TestCase):
    def test_entity_keeps_its_model(self):
        crank = four_bar().bodies["Crank"]
        gc.collect()
        self.assertEqual(crank.mass, 0.2)
        self.assertEqual(len(crank.model.bodies), 4)
        self.assertEqual(crank.joints[0].bodies[1], crank)

    def test_links_and_collections_keep_their_model(self):
        bodies, links = four_bar().bodies, four_bar().joints["A"].bodies
        gc.collect()
        self.assertEqual((len(bodies), len(links)), (4, 2))

    def test_same_entity_is_the_same_object(self):
        m = four_bar()
        crank = m.bodies["Crank"]
        self.assertIs(m.joints["A"].bodies[1], crank)
        self.assertIs(crank.model, m)
        self.assertEqual({crank: 1}[m.bodies["Crank"]], 1)
        seen = weakref.ref(crank)
        del crank
        self.assertIsNone(seen())

    def test_deleted_entity_raises(self):
        m = four_bar()
        joint = m.joints["D"]
        links = joint.bodies
        m.delete(joint)
        self.assertIn("deleted", repr(joint))
        for use in (lambda: joint.name, lambda: joint.bodies, lambda: joint.model,
                    lambda: setattr(joint, "name", "x"), lambda: links[0], lambda: len(links),
                    lambda: links.append(m.ground), lambda: m.delete(joint),
                    lambda: m.link(joint, m.ground), lambda: m.rename(joint, "x"),
                    lambda: m.dependents(joint), lambda: joint.__reduce__(),
                    lambda: m.variable("v", joint)):
            with self.assertRaises(karmp.DeletedError):
                use()
        self.assertNotIn(joint, m.joints)
        self.assertIsNone(m.joints.get("D"))

    def test_entities_of_another_model_are_refused(self):
        m, other = four_bar(), four_bar()
        foreign = other.bodies["Crank"]
        point = m.all(karmp.AxisSystem)[0]
        for use in (lambda: setattr(point, "body", foreign), lambda: m.delete(foreign),
                    lambda: m.link(point, foreign), lambda: m.rename(foreign, "x"),
                    lambda: m.joints["A"].bodies.append(foreign), lambda: m.extract([foreign]),
                    lambda: m.add_joint(karmp.Revolute, "X", m.ground, foreign, (0, 0, 0))):
            with self.assertRaisesRegex(ValueError, "another model"):
                use()
        self.assertEqual(m.diff(other), [])


class WrongValues(unittest.TestCase):
    def setUp(self):
        self.model = karmp.Model("M")
        self.body = self.model.add_body("B")

    def test_wrong_word_tells_the_near_ones(self):
        variable = self.model.variable("v")
        with self.assertRaisesRegex(ValueError, 'one of Free, .*did you mean "Constant"'):
            variable.type = "Constnt"

    def test_wrong_types_are_type_errors(self):
        for item, value in (("mass", "1"), ("mass", None), ("name", 3), ("is_fixed", 1),
                            ("cog", 5), ("cog", ["a", "b", "c"]), ("sketch", 1)):
            with self.assertRaises((TypeError, AttributeError)):
                setattr(self.body, item, value)

    def test_wrong_arguments_are_told_by_what_is_needed(self):
        m, body = self.model, self.body
        for use, needed in ((lambda: m.add_body(3), "a str is needed, not 3"),
                            (lambda: m.add_body("C", solid=3), "a Solid is needed, not 3"),
                            (lambda: m.add_rod("C", "1", (0, 0), (1, 0)), "a number is needed, not '1'"),
                            (lambda: m.add_point("C", 3, (0, 0, 0)), "an entity is needed, not 3"),
                            (lambda: m.add_motor("C", body), 'Body "B" is no Variable'),
                            (lambda: m.add(int, "C"), "a class of entities is needed, not <class 'int'>"),
                            (lambda: m.attach(karmp.Body, "C", body), "a class of Geometry is needed"),
                            (lambda: m.diff(3), "a Model is needed, not 3"),
                            (lambda: m.save(3), "a path is needed, not 3")):
            with self.assertRaisesRegex(TypeError, needed):
                use()

    def test_wrong_shapes_are_value_errors(self):
        for item, value in (("cog", [1, 2]), ("cog", [[1, 2, 3]]), ("inertia_matrix", [1] * 9),
                            ("inertia_matrix", [[1, 2], [3, 4]]), ("cog", []),
                            ("inertia_matrix", [[1, 2, 3], [4, 5], [6, 7, 8]]),
                            ("position", [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [0, 0, 1, 1]])):
            with self.assertRaises(ValueError, msg=item):
                setattr(self.body, item, value)

    def test_sentences_have_the_names_of_python(self):
        m = four_bar()
        crank, motor = m.bodies["Crank"], m.add(karmp.Motor, "KARMPMotor")
        for error, text, call in (
            (TypeError, '^variable takes an entity of class Variable, not Body "Crank".$',
             lambda: setattr(motor, "variable", crank)),
            (ValueError, "^target_type takes one of ", lambda: setattr(motor, "target_type", "Vel")),
            (TypeError, "^is_fixed takes True or False$", lambda: setattr(crank, "is_fixed", 1)),
            (ValueError, "^mass takes finite numbers$", lambda: setattr(crank, "mass", math.inf)),
            (ValueError, "^the numbers of cog have", lambda: setattr(crank, "cog", [[1, 2, 3]])),
            (karmp.Error, "^a Joint is a base class,", lambda: m.add(karmp.Joint, "J")),
            (karmp.Error, '^Body "Crank" and Motor "KARMPMotor" have no link "KARMPLink"$',
             lambda: m.link(crank, motor, "KARMPLink")),
        ):
            with self.assertRaisesRegex(error, text):
                call()

    def test_unknown_items_tell_a_near_name(self):
        for use in (lambda: self.body.mas, lambda: setattr(self.body, "mas", 1)):
            with self.assertRaisesRegex(AttributeError, 'no item "mas"; near: "mass"'):
                use()
        with self.assertRaises(AttributeError):
            self.body.id = "other"
        with self.assertRaises(TypeError):
            del self.body.mass

    def test_arrays_are_read_only_and_by_row_and_column(self):
        self.body.inertia_matrix = [[1, 2, 3], [4, 5, 6], [7, 8, 9]]
        inertia = self.body.inertia_matrix
        self.assertEqual(inertia[0, 2], 3)
        self.assertIn("<M1z>7</M1z>", self.model.text())
        with self.assertRaises(ValueError):
            inertia[0, 0] = 5
        self.body.cog = inertia[1]
        self.assertEqual(self.body.cog.tolist(), [4, 5, 6])

    def test_planar_bodies_lack_what_documents_do_not_hold_of_them(self):
        planar = self.model.add_planar_body("P")
        self.assertFalse(hasattr(planar, "connectors"))
        with self.assertRaises(AttributeError):
            planar.connectors = []

    def test_objects_that_only_the_module_makes(self):
        for kind in (karmp.Entity, karmp.Body, karmp.Finding, karmp.Difference, karmp.Solid):
            for make in (kind, lambda: kind.__new__(kind), lambda: object.__new__(kind)):
                with self.assertRaises(TypeError):
                    make()
        empty = karmp.Model.__new__(karmp.Model)
        for use in (empty.text, empty.clone, empty.check, lambda: empty.name, lambda: len(empty.bodies),
                    lambda: empty.add_body("B"), lambda: empty.diff(self.model),
                    lambda: self.model.diff(empty), lambda: empty.ground):
            with self.assertRaises(Exception):
                use()

    def test_class_of_an_entity_stays(self):
        with self.assertRaisesRegex(TypeError, "class of an entity cannot be set"):
            self.body.__class__ = karmp.Motor
        with self.assertRaises(TypeError):
            object.__setattr__(self.body, "__class__", karmp.Motor)
        self.assertIs(type(self.body), karmp.Body)

    def test_lists_and_blocks_that_are_of_nothing_raise(self):
        for kind in (karmp.Links, karmp.Entities, karmp.Model.Editing):
            for make in (kind, lambda: kind(None), lambda: kind(None, None)):
                with self.assertRaises((TypeError, AttributeError)):
                    repr(make())
        for kind in (karmp.Links, karmp.Entities):
            with self.assertRaises(AttributeError):
                len(kind.__new__(kind))
        with self.assertRaises(karmp.Error):
            karmp.Model.Editing.__new__(karmp.Model.Editing).__exit__(None, None, None)

    def test_numbers_that_are_not_finite(self):
        m, before = self.model, self.model.text()
        for value in (math.nan, math.inf):
            for call in (lambda: setattr(self.body, "mass", value),
                         lambda: setattr(self.body, "cog", (0, value, 0)),
                         lambda: setattr(m, "gravity", (0, value, 0)),
                         lambda: setattr(m, "linear_tolerance", value),
                         lambda: setattr(m, "angular_tolerance", -1),
                         lambda: m.set(karmp.Body, "mass", [value] * len(m.bodies)),
                         lambda: m.add_body("new", mass=value),
                         lambda: m.add_constant("new", "Length", value),
                         lambda: m.add_motor("new", m.variable("v"), velocity=value)):
                with self.assertRaises((ValueError, karmp.Error)):
                    call()
            m.delete(m.variables["v"])
        self.assertEqual(m.text(), before)

    def test_settings_of_the_world_are_not_none(self):
        m, before = self.model, self.model.text()
        for name in ("gravity", "linear_tolerance", "angular_tolerance"):
            with self.assertRaises(TypeError):
                setattr(m, name, None)
            with self.assertRaises(TypeError):
                karmp.Model("M", **{name: None})
        self.assertEqual(m.text(), before)

    def test_frames_are_rigid(self):
        m = self.model
        moved = [[1, 0, 0, 1], [0, 1, 0, 2], [0, 0, 1, 3], [0, 0, 0, 1]]
        self.assertEqual(list(m.add_frame("f", m.ground, moved).origin), [1, 2, 3])
        for wrong in (list(zip(*moved)), range(16), [[2, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0], [0, 0, 0, 1]],
                      [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, -1, 0], [0, 0, 0, 1]]):
            with self.assertRaises((ValueError, karmp.Error)):
                m.add_frame("g", m.ground, wrong)
        with self.assertRaises(TypeError):
            m.add_joint(karmp.Revolute, "J", m.ground, self.body, (1, 2, 3), frame=moved)

    def test_methods_take_no_none_for_self(self):
        for kind in (karmp.Model, karmp.Links, karmp.Entities, karmp.Finding, karmp.Difference):
            for name, member in vars(kind).items():
                call = getattr(member, "fget", member)
                if callable(call) and not inspect.isfunction(call) and name not in ("__new__", "__init__", "Editing"):
                    with self.assertRaises(TypeError, msg=f"{kind.__name__}.{name}"):
                        call(None)
        with self.assertRaises(TypeError):
            self.model.diff(None)
        for name, call in vars(karmp._karmp).items():
            if inspect.isbuiltin(call) and name != "_items":  # which takes anything
                with self.assertRaises(TypeError, msg=name):
                    call(None)
                with self.assertRaises((TypeError, IndexError), msg=name):
                    call()

    def test_calls_make_entities_of_their_family_alone(self):
        m, point = self.model, self.model.add_point("P", self.body, (0, 0, 0))
        before = m.text()
        for call in (lambda: m.attach(karmp.Revolute, "X", self.body),
                     lambda: m.connect(karmp.Body, "X", point, point),
                     lambda: m.couple(karmp.Revolute, "X", {}),
                     lambda: m.add_joint(karmp.Body, "X", m.ground, self.body, (0, 0, 0)),
                     lambda: m.add(str, "X")):
            with self.assertRaises(TypeError):
                call()
        self.assertEqual(m.text(), before)

    def test_blocks_that_were_not_entered_do_not_end(self):
        with self.assertRaises(karmp.Error):
            self.model.editing().__exit__(None, None, None)

    def test_failed_check_is_a_warning_with_the_items_name(self):
        child, other = self.model.add_body("C"), self.model.add_body("D")
        self.body.children_bodies = [child]
        with self.assertWarnsRegex(karmp.CheckWarning, "^children_bodies: .* 1 failed check$"):
            other.children_bodies.append(child)  # which has a father already


class Random(unittest.TestCase):
    """Random programs end with results or exceptions."""

    def program(self, random):
        models = [four_bar(), karmp.Model("Other")]
        things = list(models)
        values = [0, -1, 1.5, "x", "", None, (1, 2, 3), [[1, 2], [3, 4]], b"x", float("nan"), True]
        names = [row["name"] for row in karmp._items()]
        classes = [getattr(karmp, row["class"]) for row in karmp._items()]

        def anything():
            return random.choice([random.choice(things), random.choice(values),
                                  random.choice(classes)])

        for _ in range(30):
            thing = random.choice(things)
            try:
                step = random.randrange(5)
                if step == 0:
                    made = getattr(thing, random.choice([n for n in dir(thing) if n[0] != "_"]))
                    if callable(made) and made not in (getattr(thing, "save", None),):
                        made = made(*[anything() for _ in range(random.randrange(4))])
                    things.append(made)
                elif step == 1:
                    setattr(thing, random.choice(names), anything())
                elif step == 2:
                    things.append(random.choice(list(random.choice(models).bodies)))
                    things.append(random.choice(list(random.choice(models).joints)))
                elif step == 3:
                    random.choice(models).delete(thing)
                else:
                    models[random.randrange(2)] = random.choice(models).clone()
                    things.append(random.choice(models))
                    things.pop(random.randrange(len(things) - 1))
                    repr(things)
            except Exception:
                pass

    def test_programs_of_misuse_raise_at_most(self, count=300):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(folder.name)  # for what the programs happen to write
        with warnings.catch_warnings(), contextlib.redirect_stdout(io.StringIO()):
            warnings.simplefilter("ignore")
            for seed in range(count):
                self.program(random.Random(seed))


if __name__ == "__main__":
    unittest.main()
