"""What models and entities list: the entities of a class, those that an item refers to, and blocks of
edits."""

# What the functions of the extension module return has no types.
# mypy: disable-error-code=no-any-return

from __future__ import annotations

from . import _karmp
from ._errors import DeletedError, Error
from ._karmp import Entity, Model
from ._table import near

TYPE_CHECKING = False  # the module typing takes as long to import as the package
if TYPE_CHECKING:
    from collections.abc import Iterable, Iterator
    from types import TracebackType
    from typing import Any, Generic, Literal, TypeVar, overload

    E = TypeVar("E", bound=Entity)
    E_co = TypeVar("E_co", bound=Entity, covariant=True)
    D = TypeVar("D")
else:

    class Generic:
        """Stands for that of typing."""

        __slots__ = ()
        __class_getitem__ = classmethod(lambda cls, parameter: cls)

    E = E_co = None

    def overload(function):
        return function


class Entities(Generic[E_co]):
    """The entities of a class in a model, by identifier or name, or by index."""

    __slots__ = ("_model", "_cls")

    def __init__(self, model: Model, cls: type[E_co]) -> None:
        self._model, self._cls = model, cls

    def _all(self) -> list[E_co]:
        return _karmp._all(self._model, self._cls)

    def __len__(self) -> int:
        return _karmp._count(self._model, self._cls)

    def __iter__(self) -> Iterator[E_co]:
        return iter(self._all())

    @overload
    def __getitem__(self, key: str | int) -> E_co: ...
    @overload
    def __getitem__(self, key: slice) -> list[E_co]: ...
    def __getitem__(self, key: str | int | slice) -> E_co | list[E_co]:
        if not isinstance(key, str):
            return self._all()[key]
        found = self._find(key)
        if found is None:
            raise KeyError(self._why_none(key))
        return found

    def _find(self, key: str) -> E_co | None:
        found = _karmp._find(self._model, key)
        if isinstance(found, self._cls):
            return found
        # Of several with the name one may be of the class.
        named = [entity for entity in self if entity.name == key]
        return named[0] if len(named) == 1 else None

    def _why_none(self, key: str) -> str:
        name, names = self._cls.__name__, [entity.name for entity in self]
        if names.count(key) > 1:
            return f'there are {names.count(key)} {name} of the name "{key}"'
        return f'there is no {name} "{key}"{near(key, self.keys() + names)}'

    def __contains__(self, key: object) -> bool:
        if isinstance(key, str):
            return self._find(key) is not None
        try:
            return isinstance(key, self._cls) and key.model is self._model
        except DeletedError:
            return False

    def __repr__(self) -> str:
        return repr(self._all())

    @overload
    def get(self, key: str) -> E_co | None: ...
    @overload
    def get(self, key: str, default: D) -> E_co | D: ...
    def get(self, key: str, default: object = None) -> object:
        """The entity of an identifier or name, the default when there is none or several."""
        found = self._find(key)
        return default if found is None else found

    def keys(self) -> list[str]:
        """The identifiers."""
        return [entity.id for entity in self]


class Links(Generic[E]):
    """The entities that an item lists. Iterating is over a copy; changes make both ends."""

    __slots__ = ("_owner", "_item")

    def __init__(self, owner: Entity, item: str) -> None:
        self._owner, self._item = owner, item

    def _targets(self) -> list[E]:
        return _karmp._targets(self._owner, self._item)

    def __len__(self) -> int:
        return len(self._targets())

    def __iter__(self) -> Iterator[E]:
        return iter(self._targets())

    @overload
    def __getitem__(self, key: int) -> E: ...
    @overload
    def __getitem__(self, key: slice) -> list[E]: ...
    def __getitem__(self, key: int | slice) -> E | list[E]:
        return self._targets()[key]

    def __contains__(self, target: object) -> bool:
        return target in self._targets()

    def __eq__(self, other: Any) -> bool:
        return hasattr(other, "__getitem__") and self._targets() == [*other]

    def __repr__(self) -> str:
        return repr(self._targets())

    def index(self, target: Entity) -> int:
        """The position of an entity; ValueError when it is not listed."""
        targets: list[Entity] = [*self._targets()]
        return targets.index(target)

    def append(self, target: E) -> None:
        """Links an entity, both ends."""
        _karmp._link_item(self._owner, self._item, target, True)

    def extend(self, targets: Iterable[E]) -> None:
        """Links several."""
        for target in list(targets):
            self.append(target)

    def remove(self, target: E) -> None:
        """Takes both ends of a link away; ValueError when it is not listed."""
        self.index(target)
        _karmp._link_item(self._owner, self._item, target, False)

    @property
    def words(self) -> list[str]:
        """The words of the entries, such as the orientation of a joint's bodies."""
        return _karmp._words(self._owner, self._item)


class Editing:
    """A block of edits: all of them or none."""

    _begins: list[int] = []

    def __init__(self, model: Model) -> None:
        _karmp._options(model)  # raises for what is no model
        self._model, self._end = model, _karmp._end_editing
        self._begins = []

    def __enter__(self) -> Editing:
        self._begins.append(_karmp._begin_editing(self._model))
        return self

    def __exit__(
        self,
        kind: type[BaseException] | None,
        error: BaseException | None,
        traceback: TracebackType | None,
    ) -> Literal[False]:
        if not self._begins:
            raise Error("the block of edits is not open")
        self._end(self._model, self._begins.pop(), kind is None)
        return False

    def __del__(self) -> None:
        # What was entered and not left is kept.
        while self._begins:
            self._end(self._model, self._begins.pop(), True)
