"""Every item of every class: read, written, saved, loaded and equal, by the table of items."""

import collections
import keyword
import os
import pickle
import re
import unittest

os.environ["MOT_DUMP_OUTPUTS"] = "1"  # documents hold outputs; looked at once a process

import karmp

ITEMS = collections.defaultdict(list)
for row in karmp._items(own=False):
    ITEMS[row["class"]].append(row)

# Items that are not written here, or that their document does not give back, and why. None stands
# for the document as a whole.
FRICTION = "Documents hold it where friction is enabled, for which there is no item."
EXCEPTIONS = {
    ("KinematicConstraint", "friction_model"): FRICTION,
    ("KinematicConstraint", "static_friction"): FRICTION,
    ("KinematicConstraint", "dynamic_friction"): FRICTION,
    ("KinematicConstraint", "static_speed_limit"): FRICTION,
    ("KinematicConstraint", "dynamic_speed_limit"): FRICTION,
    ("KinematicConstraint", "reference_diameter"): FRICTION,
    ("KinematicConstraint", "reference_axial_diameter"): FRICTION,
    ("KinematicConstraint", "reference_length"): FRICTION,
    ("KinematicConstraint", "reference_width"): FRICTION,
    ("Body", "floating"): "Documents hold it for a body that another one carries, if not fixed.",
    ("Coupling", "equation"): "It is the first of the constraints, which are written.",
    ("CollisionInterLayer", "collidables"): "They are its collision layers, which are written.",
    ("CollisionLayer", "collidables"): "They are its entities, which are written.",
    ("Screw", "equation"): "It is the first of the constraints, which are written.",
    ("Cylinder", "origin"): "It is read by another name than it is written by.",
    ("Cylinder", "axis"): "It is read by another name than it is written by.",
    ("Cone", None): "It is read from another element than it is written to.",
    ("Curve", None): "Without pieces, which are read only, it cannot be read.",
}
EVERY_CLASS = os.path.join(os.path.dirname(__file__), "../../Examples/classes/every-class.xml")


def is_exception(name, item):
    return any((base.__name__, item) in EXCEPTIONS for base in getattr(karmp, name).__mro__)


def make(model, name, identifier):
    """An entity of a class or of the first one that is derived from it; None where none is made."""
    wanted = getattr(karmp, name)
    for candidate in [name, *ITEMS]:
        if issubclass(getattr(karmp, candidate), wanted):
            try:
                return model.add(getattr(karmp, candidate), identifier)
            except karmp.Error:
                continue
    return None


TURNED = [[0, -1, 0, 5], [1, 0, 0, 6], [0, 0, 1, 7], [0, 0, 0, 1]]
TURNED_2D = [[0, -1, 5], [1, 0, 6], [0, 0, 1]]


def matrix(row):
    if row["is_transformation"]:
        return TURNED if row["rows"] == 4 else TURNED_2D
    return [[10.0 * (i + 1) + j for j in range(row["rows"])] for i in range(row["rows"])]


class Filler:
    """Values for items that differ from those that a new entity has."""

    streams = []  # a model with streams of each class

    def __init__(self, model):
        self.model = model
        self.count = 0

    def target(self, row):
        self.count += 1
        target = make(self.model, row["target"] or "Body", f"target {self.count}")
        for inner in ITEMS[type(target).__name__]:
            if inner["kind"] == "stream":  # without which no document holds it
                setattr(target, inner["name"], self.bytes_of(inner))
        return target

    def bytes_of(self, row):
        """Bytes that the class takes, from a document of all classes."""
        if not self.streams:
            with open(EVERY_CLASS, encoding="utf-8") as file:
                text = re.sub("<Cone .*?</Cone>", "", file.read(), flags=re.DOTALL)
            self.streams.append(karmp.loads(text))
        [found, *_] = self.streams[0].all(getattr(karmp, row["class"]))
        return getattr(found, row["name"])

    def value(self, row, held=None, index=None):
        kind = row["kind"]
        self.count += 1
        if kind == "number" or kind == "optional":
            return 1.25 + self.count
        if kind == "integer":
            return 1 if index is None else index
        if kind == "flag":
            return not held
        if kind == "stream":
            return self.bytes_of(row)
        if kind == "text" and (row["class"], row["name"]) == ("Expression", "value"):
            return "1 + 2"
        if kind == "text":
            return f"Text <{self.count}> & \u00e9"
        if kind == "word":
            return next(word for word in reversed(row["words"]) if word != held)
        if kind == "vector":
            # Directions are unit vectors; those of six numbers stand behind a point.
            return [float(i % 3 == 1) for i in range(row["rows"])]
        if kind == "matrix":
            return matrix(row)
        if kind == "reference":
            return self.target(row)
        if kind == "references":
            return [self.target(row), self.target(row)]
        if kind == "records":
            return [self.record(row, index) for index in range(self.count_of(row))]
        raise NotImplementedError(kind)

    @staticmethod
    def count_of(row):
        return 1 if row["class"].startswith("DofSensor") else 2  # which has few free axes

    def record(self, row, index):
        return tuple(None if field["read_only"] else self.value(field, index=index)
                     for field in row["fields"])


def plain(value):
    """A value in which entities are their identifiers and arrays are lists."""
    if isinstance(value, karmp.Entity):
        return value.id
    if isinstance(value, (karmp.Links, list, tuple)):
        return [plain(entry) for entry in value]
    return value.tolist() if hasattr(value, "tolist") else value


def concrete():
    model = karmp.Model("Classes")
    for name in ITEMS:
        try:
            model.add(getattr(karmp, name), name)
        except karmp.Error:
            continue
        yield name


class EveryItem(unittest.TestCase):
    def test_is_written_and_comes_back(self):
        for name in concrete():
            model = karmp.Model("M")
            filler = Filler(model)
            entity = make(model, name, "subject")
            written = {}
            for row in ITEMS[name]:
                item = row["name"]
                if row["read_only"] or is_exception(name, item):
                    plain(getattr(entity, item))
                    continue
                with self.subTest(f"{name}.{item} is written"):
                    value = filler.value(row, plain(getattr(entity, item)))
                    setattr(entity, item, value)
                    held = plain(getattr(entity, item))
                    self.assertEqual(held, plain(value))
                    written[item] = held
            if name == "CollisionLayer":  # which documents hold for the relations of layers
                model.add(karmp.CollisionInterLayer, "relation").collision_layers = [entity]
            if is_exception(name, None):
                continue
            with self.subTest(f"{name} is saved and loaded"):
                again = karmp.loads(model.text())
                loaded = again.all(karmp.Entity)["subject"]
                self.assertIs(type(loaded), type(entity))
                for item, value in written.items():
                    if isinstance(value, list) and not next(
                            r for r in ITEMS[name] if r["name"] == item)["is_in_order"]:
                        if value and isinstance(value[0], str):
                            self.assertEqual(sorted(plain(getattr(loaded, item))), sorted(value), item)
                            continue
                    self.assertEqual(plain(getattr(loaded, item)), value, item)
                self.assertEqual(model.diff(again), [])
            with self.subTest(f"{name} is pickled"):
                self.assertEqual(model.diff(pickle.loads(pickle.dumps(model))), [])
            for row in ITEMS[name]:
                if row["kind"] == "records" and row["can_get"]:
                    with self.subTest(f"{name}.{row['name']} is pickled"):
                        value = getattr(entity, row["name"])
                        copied = pickle.loads(pickle.dumps(value))
                        self.assertEqual(plain(copied), plain(value))
                        self.assertEqual([record._fields for record in copied],
                                         [record._fields for record in value])

    def test_exceptions_are_few_and_known(self):
        self.assertLessEqual(len(EXCEPTIONS), 20)
        for name, item in EXCEPTIONS:
            known = [row["name"] for of, rows in ITEMS.items() for row in rows
                     if issubclass(getattr(karmp, of), getattr(karmp, name))]
            self.assertIn(item, [None, *known])


class Table(unittest.TestCase):
    def test_names_are_identifiers_without_clashes(self):
        for name, rows in ITEMS.items():
            names = [row["name"] for row in rows]
            self.assertEqual(len(names), len(set(names)), name)
            for item in names + [name]:
                self.assertTrue(item.isidentifier() and not keyword.iskeyword(item), item)
            self.assertFalse(set(names) & {"model", "__reduce__"})

    def test_names_have_the_words_of_their_items_and_of_groups_that_tell_them_apart(self):
        known = {(name, row["name"]) for name, rows in ITEMS.items() for row in rows}
        for name in [("Body", "mass"), ("Body", "cog"), ("JointDOFSensor", "dof_index"),
                     ("DofSensor", "number_of_dof"), ("Bushing", "pre_force_rx"),
                     ("SketchFunction", "reference_axis_origin"), ("ForceElement", "class_"),
                     ("SpatialForceActuator2D", "force2d_vx"), ("SpatialForceActuator2D", "force2d_vy")]:
            self.assertIn(name, known)

    def test_all_classes_are_there(self):
        self.assertEqual(len(list(concrete())), 107)  # no world lists a Diagnostic
        self.assertTrue(all(issubclass(getattr(karmp, name), karmp.Entity) for name in ITEMS))

    def test_each_item_has_a_sentence(self):
        for name, rows in ITEMS.items():
            for row in rows:
                self.assertTrue(row["doc"].endswith("."), (name, row["name"], row["doc"]))
                self.assertEqual(getattr(getattr(karmp, name), row["name"]).__doc__, row["doc"])


if __name__ == "__main__":
    unittest.main()
