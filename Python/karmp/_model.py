"""What the classes of the extension module have: its functions with names, types and defaults. The
classes below are never made: what they hold becomes that of the classes they are derived from."""

# What the functions of the extension module return has no types.
# mypy: disable-error-code=no-any-return
# pyright: reportIncompatibleMethodOverride=false, reportIncompatibleVariableOverride=false

from __future__ import annotations

from . import _karmp
from ._karmp import Entity, Model, Solid
from ._lists import Editing, Entities
from ._rows import Difference, Finding
from ._rows import findings as _findings
from ._table import (check_item, columns_of, index_of_quantity, is_reference, item_name,
                     item_path, items_of, near)
from ._table import families as _families

TYPE_CHECKING = False  # the module typing takes as long to import as the package
if TYPE_CHECKING:
    from collections.abc import Callable, Iterable
    from typing import Any, TypeVar, overload

    from ._display import Graph, Page
    from ._karmp import (AxisSystem, Body, Body2D, Constant, Expression, Geometry, Joint, Motor,
                         Variable, _Item, _Numbers, _Path, _Quantity, _Rows, _Vector3)

    _E = TypeVar("_E", bound=Entity)
else:

    def overload(function):
        return function


def load(path: _Path) -> Model:
    """Loads a model; DocumentError for one with errors, warnings in its findings."""
    return _karmp._load(path)


def loads(text: str | bytes, name: str = "<text>") -> Model:
    """Loads a model from a str or bytes, which findings call by name."""
    if isinstance(text, str):
        text = text.encode("utf-8", "surrogatepass")
    return _karmp._loads(text, name)


def check(path: _Path) -> list[Finding]:
    """What the check of a file finds."""
    return _findings(_karmp._check(path))


def box(mass: float, edges: _Numbers, center: _Numbers = (0, 0, 0)) -> Solid:
    """A box by its edges along the body's axes."""
    return _karmp._box(mass, edges, center)


def cylinder(mass: float, radius: float, length: float, center: _Numbers = (0, 0, 0)) -> Solid:
    """A cylinder along the body's third axis."""
    return _karmp._cylinder(mass, radius, length, center)


def ball(mass: float, radius: float, center: _Numbers = (0, 0, 0)) -> Solid:
    """A ball."""
    return _karmp._ball(mass, radius, center)


def meeting_point(start: _Numbers, distance: float, end: _Numbers,
                  other_distance: float) -> _Vector3 | None:
    """The point of the plane z = 0 at given distances from two others, on the left of the way from
    the first to the second; None when they do not meet."""
    return _karmp._meeting_point(start, distance, end, other_distance)


def _property(get: Callable[[Any], Any], says: str,
              set: Callable[[Any, Any], None] | None = None) -> Any:
    return property(get, set, doc=says)


def _told(name: str, says: str) -> Any:
    """A property that the extension module reads."""
    return _property(getattr(_karmp, "_" + name), says)


def _all_given(options: list[Any]) -> list[Any]:
    """The settings of a world, of which the extension module would take None for the default."""
    if any(option is None for option in options):
        raise TypeError("gravity and tolerances are numbers, not None")
    return options


def _option(index: int, says: str) -> Any:
    """A setting of the world, which is undone with a block of edits."""

    def change(model: Model, value: Any) -> None:
        options = list(_karmp._options(model))
        options[index] = value
        _karmp._set_options(model, _all_given(options))

    return _property(lambda model: _karmp._options(model)[index], says, change)


def _check_class(cls: type[Entity], base: type[Entity]) -> None:
    items_of(cls)  # raises for a class of another kind
    if not issubclass(cls, base):
        raise TypeError(f"a class of {base.__name__} is needed, not {cls!r}")


def _unpickled(model: Model, identifier: str) -> Entity:
    return model.all(Entity)[identifier]


def _path_of_link(first: Entity, second: Entity, item: str) -> str:
    """An item of one of two entities by its path; what is none of them is refused by the model."""
    return item and (item_path(first, item) or item_path(second, item) or item)


def _links(links: Iterable[tuple[Entity, str, Entity]]) -> list[tuple[Entity, str, Entity]]:
    """References of entities, with the names of their items."""
    return [(owner, item_name(owner, item), target) for owner, item, target in links]


_init: Any = Model.__init__


def _elements_of(families: Iterable[str]) -> list[str]:
    """The names of families, such as "connectors", as documents have them."""
    if isinstance(families, str):
        raise TypeError(f"a list of families is needed, not {families!r}")
    known = {family: "".join(word.capitalize() for word in family.split("_"))
             for family in _families}
    elements = {element.lower(): element for element in known.values()}
    found: list[str] = []
    for name in families:
        element = elements.get(name.replace("_", "").lower())
        if element is None:
            raise ValueError(f'there is no family "{name}"{near(name, list(known))}')
        found.append(element)
    return found


class _Model(Model):
    gravity: _Item[_Vector3, _Numbers] = _option(0, "In m/s2 along the axes of the world.")
    linear_tolerance: _Item[float, float] = _option(1, "In m.")
    angular_tolerance: _Item[float, float] = _option(2, "In rad.")
    ground: Body = _told("ground", "The body that everything stands on.")
    time: Variable = _told("time", "The world's time.")
    name: str = _told("name", "The name of the world, which documents do not hold.")
    findings: list[Finding] = _property(lambda model: _findings(_karmp._findings(model)),
                                        "The warnings of loading the model.")

    def __init__(self, name: str, *, gravity: _Numbers = (0, 0, 0), linear_tolerance: float = 1e-6,
                 angular_tolerance: float = 1e-9) -> None:
        """An empty model in metres."""
        _init(self, name, _all_given([gravity, linear_tolerance, angular_tolerance]))

    def _make(self, items: dict[str, Any], call: str, *given: Any) -> Any:
        """What a call makes, with its items set by keyword: all of it or nothing."""
        with Editing(self):
            made: Entity = getattr(_karmp, "_" + call)(self, *given)
            for item, value in items.items():
                check_item(type(made), item, TypeError, f"{call} takes no")
                if hasattr(value, "__float__") and is_reference(type(made), item):
                    _karmp._set_number(self, made, item_path(made, item), value)
                else:
                    setattr(made, item, value)
        return made

    def add(self, cls: type[_E], id: str, **items: Any) -> _E:
        """A new entity of a class; items are set by keyword, all or nothing. A number for a value of a
        quantity becomes a constant."""
        return self._make(items, "add", cls, id)

    def add_body(self, id: str, *, at: _Numbers | None = None, towards: _Numbers | None = None,
                 solid: Solid | None = None, **items: Any) -> Body:
        """A body with its origin at a point and its first axis towards another one, and with the
        mass of a solid."""
        return self._make(items, "add_body", id, at, towards, solid)

    def add_planar_body(self, id: str, *, at: _Numbers | None = None,
                        towards: _Numbers | None = None, **items: Any) -> Body2D:
        """A body in the plane z = 0, which comes with the first one."""
        return self._make(items, "add_planar_body", id, (at, towards))

    def planar_ground(self) -> Body2D:
        """The frame of planar bodies, which is made with the first of them or when it is asked for."""
        return _karmp._planar_ground(self)

    def add_rod(self, id: str, mass: float, start: _Numbers, end: _Numbers,
                radius: float = 0.0, **items: Any) -> Body:
        """A round rod from one point to another, in the plane for points of two numbers."""
        return self._make(items, "add_rod", id, mass, start, end, radius)

    def add_frame(self, id: str, body: Body, position: _Rows, **items: Any) -> AxisSystem:
        """An axis system of a body by its homogeneous matrix in the world."""
        return self._make(items, "add_frame", id, body, position)

    def add_point(self, id: str, body: Body, at: _Numbers, **items: Any) -> Geometry:
        """A point of a body."""
        return self._make(items, "add_point", id, body, at)

    def add_joint(self, kind: type[_E], id: str, parent: Entity, child: Entity,
                  at: _Numbers | None = None, axis: _Numbers = (0, 0, 1),
                  frame: _Rows | None = None, **items: Any) -> _E:
        """A joint between two bodies, about or along an axis through a point, or between two
        geometries, with all that realises it."""
        _check_class(kind, _karmp.Joint)
        if frame is not None and at is not None:
            raise TypeError("add_joint takes a frame, or a point and an axis, not both")
        return self._make(items, "add_joint", kind, id, parent, child, at, axis, frame)

    def variable(self, id: str, joint: Joint | None = None, value: float = 0.0,
                 **items: Any) -> Variable:
        """A variable, the next one of a joint in the order of its freedoms."""
        return self._make(items, "variable", id, joint, value)

    def add_constant(self, id: str, quantity: _Quantity, number: float, **items: Any) -> Constant:
        """A number of a quantity, such as "Length", which entities may share."""
        return self._make(items, "add_constant", id, index_of_quantity(quantity), number)

    def add_expression(self, id: str, quantity: _Quantity, equation: str,
                       variables: Iterable[Variable] = (), **items: Any) -> Expression:
        """A value that follows an equation of its variables."""
        quantity_index = index_of_quantity(quantity)
        return self._make(items, "add_expression", id, quantity_index, equation, variables)

    def add_motor(self, id: str, variable: Variable, *, position: float | None = None,
                  velocity: float | None = None, acceleration: float | None = None,
                  maximum: float | None = None, **items: Any) -> Motor:
        """A motor on a variable, which is controlled from then on."""
        given = position, velocity, acceleration, maximum
        return self._make(items, "add_motor", id, variable, given)

    def connect(self, cls: type[_E], id: str, first: Geometry, second: Geometry,
                **items: Any) -> _E:
        """A connector, a spring for one, between geometries of two bodies. A number for a value, such
        as its stiffness, becomes a constant."""
        _check_class(cls, _karmp.Connector)
        return self._make(items, "connect", cls, id, first, second)

    def attach(self, cls: type[_E], id: str, body: Entity, **items: Any) -> _E:
        """A geometry on a body."""
        _check_class(cls, _karmp.Geometry)
        return self._make(items, "attach", cls, id, body)

    def couple(self, cls: type[_E], id: str, terms: dict[Variable, float], constant: float = 0.0,
               **items: Any) -> _E:
        """A coupling: the sum of coefficients times variables, plus the constant, is 0."""
        _check_class(cls, _karmp.Coupling)
        return self._make(items, "couple", cls, id, [*terms.items()], constant)

    def link(self, first: Entity, second: Entity, item: str = "") -> None:
        """Links two entities, both ends; the item, of either of them, chooses where there are several
        links."""
        _karmp._link(self, first, second, _path_of_link(first, second, item))

    def unlink(self, first: Entity, second: Entity, item: str = "") -> None:
        """Takes the links between two entities away, both ends, or those of an item of either."""
        _karmp._unlink(self, first, second, _path_of_link(first, second, item))

    def rename(self, entity: Entity, name: str) -> None:
        """Gives an entity another name. Its identifier stays."""
        _karmp._rename(self, entity, name)

    def delete(self, entity: Entity, *, preview: bool = False,
               with_short: bool = False) -> dict[str, list[Any]]:
        """Deletes an entity with what it owns. Returns what is gone, the references that were
        dropped and those whose entities lack something now; a preview only tells."""
        gone, *told = _karmp._delete(self, entity, preview, with_short)
        unlinked, left_short = map(_links, told)
        return {"gone": gone, "unlinked": unlinked, "left_short": left_short}

    def dependents(self, entity: Entity) -> list[tuple[Entity, str, Entity]]:
        """All references of other entities to one, with their items."""
        return _links(_karmp._dependents(self, entity))

    def all(self, cls: type[_E]) -> Entities[_E]:
        """The entities of a class, those of the classes derived from it as well."""
        items_of(cls)  # raises for another class
        return Entities(self, cls)

    def get(self, cls: type[_E], key: str) -> _E:
        """The entity of a class by identifier or name; KeyError without one."""
        return Entities(self, cls)[key]

    @overload
    def find(self, key: str) -> Entity | None: ...
    @overload
    def find(self, key: str, cls: type[_E]) -> _E | None: ...
    def find(self, key: str, cls: type[Entity] = Entity) -> Entity | None:
        """The entity of an identifier or name, None when there is none or several."""
        return Entities(self, cls).get(key)

    def editing(self) -> Editing:
        """A context in which an exception undoes all that was done, in reverse order."""
        return Editing(self)

    def column(self, cls: type[Entity], item: str) -> Any:
        """An item of all entities of a class: an array of numbers, a list of texts. A number that
        is not there is a NaN."""
        check_item(cls, item)
        if item not in columns_of(cls):
            raise ValueError(f"{item} is no column")
        kind, shape = columns_of(cls)[item]
        if kind in ("text", "word"):
            property = getattr(cls, item)
            return [property.__get__(entity) for entity in _karmp._all(self, cls)]
        column = _karmp._numbers(self, cls, item, shape)
        return column.astype({"integer": "i4", "flag": "?"}.get(kind, "f8"), copy=False)

    def set(self, cls: type[Entity], item: str, values: Iterable[Any]) -> None:
        """Stores a value of an item in each entity of a class, in all of them or in none."""
        check_item(cls, item)
        entities, given = _karmp._all(self, cls), [*values]
        if len(given) != len(entities):
            raise ValueError(f"{len(entities)} values are needed, not {len(given)}")
        with Editing(self):
            for entity, value in zip(entities, given):
                setattr(entity, item, value)

    def table(self, cls: type[Entity], *names: str) -> dict[str, Any]:
        """The columns of all items of a class that have one, or of those that are named."""
        return {name: self.column(cls, name) for name in names or columns_of(cls)}

    def frame(self, cls: type[Entity]) -> Any:
        """The table of a class as a data frame of pandas."""
        from . import _display

        return _display.frame(self, cls)

    def save(self, path: _Path, version: str | None = None, exact: bool = True) -> list[Finding]:
        """Saves the model as a whole or not at all; returns warnings."""
        return _findings(_karmp._save(self, path, (version, bool(exact))))

    def text(self, version: str | None = None, exact: bool = True) -> str:
        """The document as a text."""
        return _karmp._text(self, (version, bool(exact)))

    def check(self) -> list[Finding]:
        """What the check of its document finds in the model."""
        return _findings(_karmp._check_model(self))

    def clone(self) -> Model:
        """A model of its own with the same entities."""
        return _karmp._clone(self)

    def diff(self, other: Model, *, tolerance: float = 0.0, floor: float = 0.0) -> list[Difference]:
        """The differences to another model."""
        rows = _karmp._diff(self, other, tolerance, floor)
        return [Difference((kind, item_name(entity, item), entity, *values))
                for kind, item, entity, *values in rows]

    def extract(self, bodies: Iterable[Body], *, reach: int = 0,
                families: Iterable[str] = ()) -> tuple[Model, list[tuple[Entity, str, Entity]]]:
        """The part around some bodies as a model, and the links that were cut."""
        part, cut = _karmp._extract(self, bodies, (reach, _elements_of(families)))
        return part, _links(cut)

    def graph(self, title: str = "") -> Graph:
        """The graph of bodies and joints, a picture in a notebook."""
        from . import _display

        return _display.Graph(_karmp._graph_text(self, title))

    def show(self, title: str = "") -> Page:
        """The mechanism in space, on a page that a notebook shows and that can be saved."""
        from . import _display

        return _display.Page(_karmp._view_page(self, title))

    def __copy__(self) -> Model:
        return self.clone()

    def __deepcopy__(self, memo: dict[int, Any], /) -> Model:
        copy = memo[id(self)] = self.clone()
        return copy

    def __reduce__(self) -> tuple[Any, ...]:
        return loads, (self.text(), "<pickle>")

    def __repr__(self) -> str:
        return f"<karmp.Model of {len(self.bodies)} bodies and {len(self.joints)} joints>"

    def _repr_html_(self) -> str:
        from . import _display

        return _display.model_html(self)


class _Entity(Entity):
    __slots__ = ()

    model: Model = _told("model", "The model of the entity.")

    def __reduce__(self) -> tuple[Any, ...]:
        return _unpickled, (self.model, self.id)

    def _repr_html_(self) -> str:
        from . import _display

        return _display.entity_html(self)


class _Solid(Solid):
    mass: float = _told("mass", "In kg.")

    def __add__(self, other: Solid) -> Solid:
        return _karmp._together(self, other)


def _collection(cls: type[Entity]) -> property:
    return property(lambda self: Entities(self, cls), doc=f"The entities of the family {cls.__name__}.")


for _class in (_Model, _Entity, _Solid):
    for _name, _member in vars(_class).items():
        if callable(_member) or isinstance(_member, property):
            setattr(_class.__base__, _name, _member)
for _name, _family in _families.items():
    setattr(Model, _name, _collection(_family))
setattr(Model, "Editing", Editing)
