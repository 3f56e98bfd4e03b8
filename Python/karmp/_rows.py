"""What models and documents tell as values with names: findings, differences, records."""

from __future__ import annotations

TYPE_CHECKING = False  # the module typing takes as long to import as the package
if TYPE_CHECKING:
    from collections.abc import Iterable
    from typing import Any, Literal, NoReturn, Self

    from ._karmp import Entity, _Item

    _Values = tuple[Any, ...]
else:
    _Values = tuple


class _Row(_Values):
    """What the extension module tells: values with names."""

    __slots__ = ()

    def __new__(cls, values: Iterable[Any]) -> Self:
        return _Values.__new__(cls, values)

    def _repr_html_(self) -> str:
        from . import _display

        return _display.text_html(self)


def _told(index: int, says: str) -> Any:
    return property(lambda row: row[index], doc=says)


class Finding(_Row):
    """What is the matter with a document, and where."""

    __slots__ = ()
    severity: _Item[Literal["warning", "error"], NoReturn] = _told(0, '"warning" or "error".')
    code: _Item[str, NoReturn] = _told(1, "The stable name of the finding.")
    file: _Item[str, NoReturn] = _told(2, "The name of the file.")
    path: _Item[str, NoReturn] = _told(3, "The element.")
    text: _Item[str, NoReturn] = _told(4, "One sentence.")
    line: _Item[int, NoReturn] = _told(5, "From 1; 0 for no line.")
    column: _Item[int, NoReturn] = _told(6, "From 1; 0 for no column.")

    def __repr__(self) -> str:
        return f"{self[7]}"


class Difference(_Row):
    """One difference between two models."""

    __slots__ = ()
    kind: _Item[str, NoReturn] = _told(0, '"changed", "added" and so on.')
    item: _Item[str, NoReturn] = _told(1, "The item, or a part of one by its path in documents.")
    entity: _Item[Entity | None, NoReturn] = _told(2, "The entity, of the first model if it is there.")
    before: _Item[Any, NoReturn] = _told(3, "The value in the first model.")
    after: _Item[Any, NoReturn] = _told(4, "The value in the second one.")
    target: _Item[Entity | None, NoReturn] = _told(5, "The target of a link.")

    def __repr__(self) -> str:
        told = [self.kind, self.entity, self.item]
        text = " ".join(str(part) for part in told if part)
        if self.before is not None or self.after is not None:
            text += f": {self.before} -> {self.after}"
        return text if self.target is None else f"{text} {self.target}"


def findings(rows: Iterable[Iterable[Any]]) -> list[Finding]:
    """What the extension module tells of a document."""
    return [Finding(row) for row in rows]


_record_classes: dict[tuple[str, ...], Any] = {}


def _record(key: tuple[str, ...], values: Iterable[Any]) -> Any:
    """A record by the names of its item and of its fields."""
    if key not in _record_classes:
        import collections

        # It has no types for names that are not written out.
        make = getattr(collections, "namedtuple")
        made = make(key[0].title().replace("_", ""), key[1:], module="karmp")

        def reduce(record: _Values) -> _Values:
            return _record, (key, tuple(record))

        made.__reduce__ = reduce
        _record_classes[key] = made
    return _record_classes[key]._make(values)


def records(item: tuple[Any, ...], rows: list[Any]) -> tuple[Any, ...]:
    """The records of an item, which is described by a tuple, as named tuples."""
    key = item[0], *(field[0] for field in item[8])
    return tuple(_record(key, row) for row in rows)
