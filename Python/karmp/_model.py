"""What the classes of the extension module have besides what it binds. The classes below are never made:
their functions become those of the classes that they are derived from."""

from __future__ import annotations

from . import _karmp
from ._karmp import Difference, Entity, Finding, Model
from ._lists import Editing, Entities

TYPE_CHECKING = False  # the module typing takes as long to import as the package
if TYPE_CHECKING:
    from typing import Any, TypeVar, overload

    from ._display import Graph, Page

    _E = TypeVar("_E", bound=Entity)
else:

    def overload(function):
        return function


def loads(text: str | bytes, name: str = "<text>") -> Model:
    """Loads a model from a str or bytes, which findings call by name."""
    return _karmp._loads(text.encode("utf-8", "surrogatepass") if isinstance(text, str) else text, name)


def _unpickled(model: Model, identifier: str) -> Entity:
    return model.all(Entity)[identifier]


class _Model(Model):
    def all(self, cls: type[_E]) -> Entities[_E]:
        """The entities of a class, those of the classes derived from it as well."""
        _karmp._item_names(cls)  # raises for another class
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

    def table(self, cls: type[Entity], *names: str) -> dict[str, Any]:
        """The columns of all items of a class that have one, or of those that are named."""
        return {name: self.column(cls, name) for name in names or _karmp._item_names(cls, True)}

    def frame(self, cls: type[Entity]) -> Any:
        """The table of a class as a data frame of pandas."""
        from . import _display

        return _display.frame(self, cls)

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

    def __reduce__(self) -> tuple[Any, ...]:
        return _unpickled, (self.model, self.id)

    def _repr_html_(self) -> str:
        from . import _display

        return _display.entity_html(self)


class _Finding(Finding):
    def __repr__(self) -> str:
        return self._line

    def _repr_html_(self) -> str:
        from . import _display

        return _display.text_html(self)


class _Difference(Difference):
    def __repr__(self) -> str:
        text = f"{self.kind} {self.entity}" + (f" {self.item}" if self.item else "")
        if self.before is not None or self.after is not None:
            text += f": {self.before} -> {self.after}"
        return text if self.target is None else f"{text} {self.target}"

    def _repr_html_(self) -> str:
        from . import _display

        return _display.text_html(self)


def _collection(cls: type[Entity]) -> property:
    return property(lambda self: Entities(self, cls), doc=f"The entities of the family {cls.__name__}.")


for _class in (_Model, _Entity, _Finding, _Difference):
    for _name, _member in vars(_class).items():
        if callable(_member):
            setattr(_class.__base__, _name, _member)
for _name, _family in _karmp._families.items():
    setattr(Model, _name, _collection(_family))
setattr(Model, "Editing", Editing)
