import copy
import math
import os
import pickle
import sys
import tempfile
import unittest
import warnings

import karmp
from mechanisms import four_bar


class Building(unittest.TestCase):
    def test_four_bar_is_whole(self):
        m = four_bar()
        self.assertEqual(m.check(), [])
        self.assertEqual([b.name for b in m.bodies], ["GlobalBody", "Crank", "Coupler", "Rocker"])
        self.assertIs(type(m.joints["A"]), karmp.Revolute)
        self.assertEqual(m.joints["A"].bodies, [m.ground, m.bodies["Crank"]])
        self.assertEqual(m.joints["A"].bodies.words, ["Out", "In"])

    def test_keywords_set_items(self):
        m = karmp.Model("M")
        b = m.add_body("B", at=(1, 2, 3), mass=4, cog=[1, 0, 0], is_fixed=True)
        self.assertEqual((b.mass, b.is_fixed, list(b.cog)), (4.0, True, [1, 0, 0]))
        self.assertEqual(list(b.position[:3, 3]), [1, 2, 3])

    def test_entity_that_cannot_be_made_whole_is_not_made(self):
        m = karmp.Model("M")
        before = m.text()
        with self.assertRaisesRegex(TypeError, 'no "mss"; near: "mass"'):
            m.add_body("B", mss=3)
        with self.assertRaises(ValueError):
            m.add_body("B", cog=(1, 2))
        with self.assertRaises(karmp.Error):
            m.add_body("")
        self.assertEqual(m.text(), before)

    def test_planar_bodies_are_joined_in_the_plane(self):
        m = karmp.Model("M")
        rod = m.add_rod("Rod", 1.0, (0, 0), (1, 0))
        pin = m.add_joint(karmp.UserDefined2D, "Pin", m.planar_ground(), rod, (0, 0))
        self.assertEqual(pin.bodies2d, [m.planar_ground(), rod])

    def test_reading_what_models_and_entities_have_changes_nothing(self):
        m = four_bar()
        before = m.text()
        for owner in (m, *m.all(karmp.Entity)):
            for name in dir(owner):
                getattr(owner, name)
        self.assertEqual(m.text(), before)
        self.assertIsInstance(m.planar_ground(), karmp.Body2D)
        self.assertEqual(m.check(), [])

    def test_frames_points_variables_and_couplings(self):
        m = karmp.Model("M")
        a = m.add_body("A")
        b = m.add_body("B")
        first = m.add_joint(karmp.Revolute, "J", m.ground, a, (0, 0, 0))
        second = m.add_joint(karmp.Prismatic, "K", m.ground, b, (0, 0, 0), (1, 0, 0))
        x, y = m.variable("x", first), m.variable("y", second, 0.5)
        self.assertEqual((x.physical_quantity, y.physical_quantity), ("Angle", "Length"))
        self.assertEqual(y.value, 0.5)
        m.couple(karmp.Rack, "C", {x: 0.1, y: -1.0})
        frame = m.add_frame("F", a, [[0, -1, 0, 5], [1, 0, 0, 6], [0, 0, 1, 7], [0, 0, 0, 1]])
        self.assertIs(frame.body, a)
        self.assertEqual(list(m.add_point("P", a, (1, 2, 3)).origin), [1, 2, 3])


    def test_values_motors_springs_and_geometries(self):
        m = four_bar()
        angle = m.variables["Crank angle"]
        motor = m.add_motor("Motor", angle, velocity=2.0, maximum=5.0)
        self.assertEqual((motor.variable, angle.type), (angle, "Controlled"))
        self.assertEqual(m.add_constant("Rest", "Length", 0.2).physical_quantity, "Length")
        follows = m.add_expression("Double", "Angle", "2 * x", [angle])
        self.assertEqual(follows.variables, [angle])
        with self.assertRaisesRegex(ValueError, 'near: "Length"'):
            m.add_constant("X", "Lenght", 1.0)
        first, second = (m.add_point(f"P{i}", body, (0, 0, 0))
                         for i, body in enumerate((m.ground, m.bodies["Rocker"])))
        spring = m.connect(karmp.LinearSpring, "Spring", first, second)
        self.assertEqual(spring.geometries, [first, second])
        line = m.attach(karmp.Line, "Line", m.ground, direction=(0, 1, 0))
        self.assertIs(line.body, m.ground)


    def test_bodies_have_the_mass_of_solids(self):
        m = karmp.Model("M")
        box = m.add_body("Box", solid=karmp.box(12.0, (1, 2, 3)), at=(4, 5, 6))
        self.assertEqual(box.inertia_matrix.diagonal().tolist(), [13.0, 10.0, 5.0])
        self.assertEqual(list(box.position[:3, 3]), [4, 5, 6])
        ball = m.add_body("Ball", solid=karmp.ball(5.0, 1.0, center=(0, 0, 2)), mass=6.0)
        self.assertEqual((ball.mass, list(ball.cog)), (6.0, [0, 0, 2]))
        both = karmp.cylinder(1.0, 2.0, 3.0) + karmp.cylinder(3.0, 2.0, 3.0, (4, 0, 0))
        self.assertEqual((both.mass, list(m.add_body("Both", solid=both).cog)), (4.0, [3, 0, 0]))
        with self.assertRaisesRegex(ValueError, "3 numbers are needed, not 2"):
            karmp.box(1.0, (1, 2))


class Finding(unittest.TestCase):
    def test_collections_find_by_identifier_name_and_index(self):
        m = four_bar()
        crank = m.bodies["Crank"]
        m.rename(crank, "Handle")
        self.assertIs(m.bodies["Crank"], crank)
        self.assertIs(m.bodies["Handle"], crank)
        self.assertIs(m.bodies[1], crank)
        self.assertIn("Handle", m.bodies)
        self.assertIn(crank, m.bodies)
        self.assertNotIn(crank, m.joints)
        self.assertEqual(len(m.bodies), 4)
        self.assertEqual(m.joints.keys(), ["A", "B", "C", "D"])
        self.assertIsNone(m.bodies.get("none"))
        self.assertIs(m.find("Crank"), crank)
        with self.assertRaisesRegex(KeyError, 'there is no Body "Crnk"; near: "Crank"'):
            m.bodies["Crnk"]
        with self.assertRaisesRegex(KeyError, 'there is no Revolute "E"'):
            m.all(karmp.Revolute)["E"]
        m.rename(m.bodies["Rocker"], "Handle")
        with self.assertRaisesRegex(KeyError, 'there are 2 Body of the name "Handle"'):
            m.bodies["Handle"]

    def test_classes_hold_what_is_derived_from_them(self):
        m = four_bar()
        self.assertEqual(len(m.all(karmp.Revolute)), 4)
        self.assertEqual(len(m.all(karmp.Prismatic)), 0)
        self.assertEqual(len(m.all(karmp.Joint)), 4)
        with self.assertRaises(KeyError):
            m.get(karmp.Prismatic, "A")
        with self.assertRaises(TypeError):
            m.all(int)


class Names(unittest.TestCase):
    def test_entities_are_found_by_a_name_that_is_theirs_alone_in_the_class(self):
        m = karmp.Model("N")
        bodies = [m.add_body(name) for name in "abc"]
        motor = m.add(karmp.Motor, "motor")
        for entity in (bodies[0], motor):
            m.rename(entity, "N")
        self.assertIs(m.bodies["N"], bodies[0])
        self.assertIs(m.all(karmp.Motor)["N"], motor)
        m.rename(bodies[1], "N")
        self.assertIsNone(m.bodies.get("N"))
        with self.assertRaisesRegex(KeyError, 'there are 2 Body of the name "N"'):
            m.bodies["N"]
        with self.assertRaisesRegex(KeyError, "'there is no Joint \"N\"'"):
            m.joints["N"]
        with self.assertRaisesRegex(KeyError, "'there is no Body \"motor\"'"):
            m.bodies["motor"]

    def test_lists_of_entities_compare_with_others(self):
        m = four_bar()
        crank, bodies = m.bodies["Crank"], m.joints["A"].bodies
        self.assertTrue(crank in bodies and m.bodies["Rocker"] not in bodies)
        self.assertTrue(bodies == [m.ground, crank] and bodies == (m.ground, crank))
        self.assertFalse(bodies == [crank] or bodies == 3)
        bodies.index(crank)


class Numbers(unittest.TestCase):
    def test_numbers_of_values_become_constants_while_an_entity_is_made(self):
        m = karmp.Model("S")
        a, b = m.add_body("A"), m.add_body("B", at=(1, 0, 0))
        p, q = m.add_point("p", a, (0, 0, 0)), m.add_point("q", b, (1, 0, 0))
        rest = m.add_constant("Rest", "Length", 0.3)
        spring = m.connect(karmp.LinearSpring, "s", p, q, stiffness=1200, rest_length=rest,
                           damping_coefficient=m.column(karmp.Body, "mass")[0] + 2.5)
        self.assertEqual([(v.name, v.physical_quantity, v.value) for v in
                          (spring.stiffness, spring.rest_length, spring.damping_coefficient)],
                         [("s.stiffness", "LinearStiffness", 1200.0), ("Rest", "Length", 0.3),
                          ("s.damping", "LinearDamping", 2.5)])
        self.assertEqual(m.add(karmp.TorsionSpring, "t", stiffness=2).stiffness.value, 2.0)
        before = m.text()
        for given in ({"stiffness": math.nan}, {"first_body": 1.0}, {"stiffness": 1.0, "behavior": "x"}):
            with self.assertRaises((karmp.Error, ValueError)):
                m.connect(karmp.LinearSpring, "u", p, q, **given)
            self.assertEqual(m.text(), before)
        with self.assertRaisesRegex(TypeError, "an entity is needed, not 'stiff'"):
            m.add(karmp.LinearSpring, "u", stiffness="stiff")


class Links(unittest.TestCase):
    def test_both_ends_are_linked_and_unlinked(self):
        m = karmp.Model("M")
        a, b = m.add_body("A"), m.add_body("B")
        p = m.add(karmp.Point, "P")
        p.body = a
        self.assertEqual(a.geometries, [p])
        p.body = b
        self.assertEqual((list(a.geometries), list(b.geometries)), ([], [p]))
        p.body = None
        self.assertEqual(list(b.geometries), [])
        a.geometries.append(p)
        self.assertIs(p.body, a)
        self.assertEqual(a.geometries.index(p), 0)
        for entity in a.geometries:
            a.geometries.remove(entity)
        self.assertIsNone(p.body)
        with self.assertRaises(ValueError):
            a.geometries.remove(p)
        for first, second, item in ((p, b, "body"), (b, p, "body"), (p, b, "Body"), (b, p, "geometries")):
            m.link(first, second, item)
            self.assertIs(p.body, b)
            m.unlink(second, first, item)
            self.assertIsNone(p.body)
        with self.assertRaisesRegex(karmp.Error, 'no link "nodes"'):
            m.link(p, b, "nodes")
        b.geometries = [p]
        self.assertIs(p.body, b)
        with self.assertRaises(TypeError):
            b.geometries = [a]
        with self.assertRaises(TypeError):
            p.body = p

    def test_delete_tells_what_goes_along(self):
        m = four_bar()
        joint = m.joints["D"]
        told = m.delete(joint, preview=True)
        self.assertEqual([e.name for e in told["gone"]], ["D", "D.constraint"])
        self.assertIn((m.bodies["Rocker"], "joints", joint), told["unlinked"])
        self.assertIn((m.bodies["Rocker"], "joints", joint), m.dependents(joint))
        self.assertEqual(len(m.joints), 4)
        m.delete(joint)
        self.assertEqual(len(m.joints), 3)
        with self.assertRaises(karmp.Error):
            m.delete(m.ground)


class Editing(unittest.TestCase):
    def test_exception_undoes_the_block(self):
        m = four_bar()
        before = m.text()
        with self.assertRaises(ZeroDivisionError), m.editing():
            m.add_joint(karmp.Prismatic, "P", m.ground, m.add_body("Bar", mass=1), (0, 0, 0))
            m.bodies["Crank"].mass = 9
            m.unlink(m.bodies["Crank"], m.joints["A"])
            m.set(karmp.Body, "mass", range(5))
            m.rename(m.bodies["Rocker"], "Other")
            1 / 0
        self.assertEqual(m.text(), before)

    def test_what_was_entered_and_never_left_is_kept(self):
        m = four_bar()
        block = m.editing()
        block.__enter__()
        m.bodies["Crank"].mass = 9
        del block
        self.assertEqual(m.bodies["Crank"].mass, 9)
        m.delete(m.joints["D"])  # no block is open

    def test_inner_block_is_undone_alone(self):
        m = karmp.Model("M")
        with m.editing():
            m.add_body("A")
            with self.assertRaises(ZeroDivisionError), m.editing():
                m.add_body("B")
                1 / 0
        self.assertEqual(m.bodies.keys(), ["GlobalBody", "A"])

    def test_deletion_in_a_block_is_refused(self):
        m = four_bar()
        with m.editing(), self.assertRaises(karmp.Error):
            m.delete(m.joints["A"])
        self.assertEqual(len(m.joints), 4)

    def test_settings_of_the_world_are_undone_with_a_block(self):
        m = karmp.Model("M", gravity=(0, 0, -9.81))
        for name, value in (("gravity", (0, 1, 0)), ("linear_tolerance", 1e-3), ("angular_tolerance", 1e-3)):
            before = getattr(m, name)
            with self.assertRaises(ZeroDivisionError), m.editing():
                setattr(m, name, value)
                self.assertEqual(getattr(m, name), value)
                1 / 0
            self.assertEqual(getattr(m, name), before)
        m.gravity = (0, 0, 0)
        self.assertEqual((m.gravity, m.linear_tolerance), ((0, 0, 0), 1e-6))

    def test_inner_block_ends_with_the_outer_one(self):
        m = four_bar()
        outer, inner = m.editing(), m.editing()
        outer.__enter__()
        inner.__enter__()
        outer.__exit__(None, None, None)
        with self.assertRaisesRegex(karmp.Error, "not open"):
            inner.__exit__(None, None, None)
        self.assertTrue(m.delete(m.joints["D"]))
        self.assertEqual(len(m.joints), 3)


class Documents(unittest.TestCase):
    def test_extract_takes_families_by_the_names_of_the_collections(self):
        m = karmp.Model("S")
        a, b = m.add_body("A"), m.add_body("B", at=(1, 0, 0))
        m.connect(karmp.LinearSpring, "s", m.add_point("p", a, (0, 0, 0)), m.add_point("q", b, (1, 0, 0)),
                  stiffness=m.add_constant("k", "LinearStiffness", 1))
        for families in (["Connectors"], ["connectors"], iter(["CONNECTORS"])):
            self.assertEqual(len(m.extract([a, b], families=families)[0].connectors), 1)
        for family in karmp._table.families:
            m.extract([a], families=[family])
        self.assertEqual(len(m.extract([a, b])[0].connectors), 0)
        with self.assertRaisesRegex(ValueError, 'no family "conectors"; near: "connectors"'):
            m.extract([a], families=["conectors"])
        with self.assertRaisesRegex(TypeError, "a list of families"):
            m.extract([a], families="connectors")

    def test_clone_tells_what_it_could_not_keep(self):
        m = four_bar()
        m.bodies["Crank"].outputs.append(m.add(karmp.Output, "o"))
        clone = m.clone()
        self.assertEqual(len(clone.findings), 1)
        self.assertEqual([b.id for b in clone.bodies], [b.id for b in m.bodies])

    def test_saved_model_is_loaded_again(self):
        m = four_bar()
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "four-bar.xml")
            self.assertEqual(m.save(path), [])
            self.assertEqual(karmp.check(path), [])
            self.assertEqual(m.diff(karmp.load(path)), [])
        self.assertEqual(m.diff(karmp.loads(m.text())), [])
        self.assertEqual(m.diff(karmp.loads(m.text().encode())), [])

    def test_bad_document_raises_its_findings(self):
        with self.assertRaises(karmp.DocumentError) as raised:
            karmp.loads("<KARMPDocument", "broken")
        finding = raised.exception.findings[0]
        self.assertEqual((finding.severity, finding.code, finding.file, finding.line),
                         ("error", "syntax", "broken", 1))
        with self.assertRaises(karmp.DocumentError):
            karmp.load("/does/not/exist.xml")
        with self.assertRaises(karmp.DocumentError):
            four_bar().save("/does/not/exist.xml")

    def test_errors_tell_their_status_entity_and_findings(self):
        m = four_bar()
        with self.assertRaises(karmp.Error) as raised:
            m.add_body("")
        self.assertLess(raised.exception.status, 0)
        self.assertIsNone(raised.exception.entity)
        self.assertLess(karmp.Error().status, 0)
        self.assertIs(karmp.Error("", -1, m.ground).entity, m.ground)
        text = m.text().replace("</Weight>", "<Colour/></Weight>", 1).replace("<Mass>0.2", "<Mass>heavy")
        with self.assertRaises(karmp.DocumentError) as raised:
            karmp.loads(text, "heavy.xml")
        told = raised.exception
        self.assertEqual([f.severity for f in told.findings], ["warning", "error"])
        self.assertEqual(str(told), f"heavy.xml cannot be loaded\n{told.findings[1]!r}")

    def test_findings_of_a_good_load_are_kept(self):
        text = four_bar().text().replace("</Weight>", "<Colour/></Weight>", 1)
        [finding] = karmp.loads(text, "four-bar").findings
        line = text[:text.index("<Colour/>")].count("\n") + 1
        column = text.splitlines()[line - 1].index("Colour/>") + 1
        self.assertEqual((finding.severity, finding.code, finding.file, finding.line, finding.column),
                         ("warning", "unknown-element", "four-bar", line, column))
        self.assertTrue(finding.path.endswith("/Body[1]/Weight/Colour"), finding.path)
        self.assertIn('"Colour"', finding.text)
        self.assertEqual(repr(finding), f"four-bar:{line}:{column}: warning: {finding.text} "
                                        f"[unknown-element] at {finding.path}")

    def test_differences_tell_what_changed(self):
        m = four_bar()
        other = m.clone()
        other.bodies["Crank"].mass = 3
        [difference] = m.diff(other)
        self.assertEqual((difference.kind, difference.item, difference.before, difference.after),
                         ("changed", "mass", 0.2, 3.0))
        self.assertIs(difference.entity, m.bodies["Crank"])
        self.assertEqual(repr(difference), 'changed <karmp.Body "Crank"> mass: 0.2 -> 3.0')

    def test_differences_show_the_side_that_has_a_value(self):
        m = four_bar()
        other = m.clone()
        other.variables["Crank angle"].max_value = 2.0
        self.assertEqual([repr(d) for d in m.diff(other)],
                         ['changed <karmp.Variable "Crank angle"> max_value: None -> 2.0'])
        self.assertEqual([repr(d) for d in other.diff(m)],
                         ['changed <karmp.Variable "Crank angle"> max_value: 2.0 -> None'])
        body = other.add_body("New")
        self.assertEqual(repr(m.diff(other)[0]), 'added <karmp.Body "New">')
        self.assertIs(m.diff(other)[0].entity, body)

    def test_differences_call_items_and_settings_as_python_does(self):
        m = four_bar()
        other = m.clone()
        other.gravity, other.linear_tolerance = (0, 0, -9.81), 1e-3
        setattr(other.joints["A"], "name", "Other")
        other.delete(other.joints["B"])
        told = m.diff(other)
        self.assertEqual([(d.kind, d.item) for d in told if d.entity is None],
                         [("setting", "linear_tolerance"), ("setting", "gravity")])
        self.assertEqual(repr(told[0]), "setting linear_tolerance: 1e-06 -> 0.001")
        for difference in told:
            if difference.item:
                getattr(m if difference.entity is None else difference.entity, difference.item)

    def test_copies_are_models_of_their_own(self):
        m = four_bar()
        for other in (m.clone(), copy.deepcopy(m), pickle.loads(pickle.dumps(m))):
            self.assertEqual(m.diff(other), [])
            other.bodies["Crank"].mass = 7
            self.assertEqual(m.bodies["Crank"].mass, 0.2)

    def test_pickled_entities_share_their_model(self):
        m = four_bar()
        crank, rocker, other = pickle.loads(pickle.dumps([m.bodies["Crank"], m.bodies["Rocker"], m]))
        self.assertIs(crank.model, other)
        self.assertIs(other.bodies["Rocker"], rocker)

    def test_extract_takes_the_part_around_bodies(self):
        m = four_bar()
        self.assertEqual(sorted(m.extract([m.bodies["Crank"]])[0].bodies.keys()), ["Crank", "GlobalBody"])
        part, cut = m.extract([m.bodies["Crank"]], reach=1)
        self.assertEqual(sorted(part.bodies.keys()), ["Coupler", "Crank", "GlobalBody"])
        self.assertIn((m.bodies["Coupler"], "joints", m.joints["C"]), cut)


class Calls(unittest.TestCase):
    def test_what_is_left_out_has_a_default(self):
        for solid in (karmp.box(1, (1, 1, 1)), karmp.ball(1, 1), karmp.cylinder(1, 1, 1)):
            body = karmp.Model("S").add_body("B", solid=solid)
            self.assertEqual(list(body.cog), [0, 0, 0])
        m = karmp.Model("M")
        self.assertEqual(list(m.gravity), [0, 0, 0])
        rods = [m.add_rod(f"R{i}", 3.0, (0, 0, 0), (0, 0, 2.0), *radius)
                for i, radius in enumerate([(), (0,)])]
        self.assertEqual(rods[0].inertia_matrix.tolist(), rods[1].inertia_matrix.tolist())
        m.add_joint(karmp.Prismatic, "J", *rods, (0, 0, 0))
        m.add_joint(karmp.Prismatic, "K", m.ground, rods[0], (0, 0, 0))
        one, other = m.variable("v", m.joints["J"]), m.variable("w", m.joints["K"])
        self.assertEqual((one.value, m.couple(karmp.Gear, "C", {one: 1.0, other: 2.0}).equation
                          .constant_term), (0.0, 0.0))
        self.assertNotIn(rods[0], m.delete(m.joints["K"])["gone"])
        self.assertIn("w", m.variables)


class Columns(unittest.TestCase):
    def test_planar_bodies_have_their_own_items(self):
        m = karmp.Model("P")
        rod = m.add_rod("P", 2.0, (1, 2), (3, 2))
        column = m.column(karmp.Body, "mass")
        self.assertEqual(list(column), [b.mass for b in m.bodies])
        self.assertIn(2.0, column)
        m.set(karmp.Body, "mass", 1.5 * column)
        self.assertEqual(rod.mass, 3.0)
        # A planar position has another shape, and its class no centre in space.
        self.assertTrue(math.isnan(m.column(karmp.Body, "position")[list(m.bodies).index(rod)][0, 0]))

    def test_links_and_what_has_no_numbers_are_no_columns(self):
        m = four_bar()
        for name in ("outputs", "joints", "shapes"):
            self.assertNotIn(name, m.table(karmp.Body))
            with self.assertRaisesRegex(ValueError, f"^{name} is no column$"):
                m.column(karmp.Body, name)
        for call in (lambda: m.column(karmp.Body, "mas"), lambda: m.set(karmp.Body, "mas", [1] * 4)):
            with self.assertRaisesRegex(AttributeError, 'karmp.Body has no item "mas"; near: "mass"'):
                call()

    def test_flags_of_numpy_and_numbers_that_are_not_there_go_back(self):
        m = four_bar()
        m.set(karmp.Body, "is_fixed", m.column(karmp.Body, "is_fixed") == 1)
        v = m.variables["Crank angle"]
        v.max_value = 2.0
        v.max_value = math.nan
        self.assertIsNone(v.max_value)

    def test_columns_are_read_and_written(self):
        m = four_bar()
        table = m.table(karmp.Body)
        self.assertEqual(list(table["mass"]), [0.0, 0.2, 0.6, 0.4])
        self.assertEqual(table["position"].shape, (4, 4, 4))
        self.assertEqual(table["id"], m.bodies.keys())
        m.set(karmp.Body, "mass", 2 * table["mass"])
        self.assertEqual(list(m.column(karmp.Body, "mass")), [0.0, 0.4, 1.2, 0.8])
        turned = table["position"].transpose(0, 2, 1)[:, :3, :3]
        m.set(karmp.Body, "inertia_matrix", turned)
        self.assertTrue((m.column(karmp.Body, "inertia_matrix") == turned).all())

    def test_columns_have_a_value_for_each_entity(self):
        m = four_bar()
        for item in ("is_fixed", "mass", "id"):
            expected = [getattr(body, item) for body in m.bodies]
            self.assertEqual([*m.column(karmp.Body, item)], expected)
        self.assertEqual(m.column(karmp.Body, "is_fixed").dtype, bool)
        values = m.column(karmp.Variable, "value")  # of which the world's time has none
        self.assertEqual((values.shape, values.dtype), ((len(m.variables),), float))

    def test_column_of_another_length_changes_nothing(self):
        m = four_bar()
        for values in ([1, 2], [1, 2, 3, "x"]):
            with self.assertRaises((ValueError, TypeError)):
                m.set(karmp.Body, "mass", values)
        self.assertEqual(list(m.column(karmp.Body, "mass")), [0.0, 0.2, 0.6, 0.4])
        with self.assertRaisesRegex(AttributeError, 'near: "mass"'):
            m.set(karmp.Body, "mas", [1, 2, 3, 4])


if __name__ == "__main__":
    unittest.main()
