"""The items of classes, as the extension module describes them."""

# pyright: reportUnusedFunction=false

from __future__ import annotations

from . import _karmp
from ._karmp import Entity

TYPE_CHECKING = False  # the module typing takes as long to import as the package
if TYPE_CHECKING:
    from typing import Any


_KINDS = ("group", "number", "integer", "flag", "text", "word", "word", "vector", "vector",
          "optional", "reference", "references", "records", "stream")
_NO_COLUMNS = ("group", "reference", "references", "records", "stream")

_names: dict[type[Entity], list[str]] = {}
_rows: dict[type[Entity], dict[str, tuple[Any, ...]]] = {}
_names_by_path: dict[type[Entity], dict[str, str]] = {}


def _class_name(record: str) -> str:
    """"Body" for "KARMPBody"; what would begin with a digit keeps its prefix."""
    return record[5:] if record[5:6] > "9" else record


def _make_class(record: str, base: type[Entity] | None, says: str, names: list[str]) -> type[Entity]:
    """The class of a record by the names of its items, to which the extension module adds them."""
    says = says or "What a solver tells of entities."  # the one class that documents do not hold
    space: dict[str, Any] = {"__slots__": (), "__module__": "karmp", "__doc__": says}
    # A planar class is no spatial one in documents: what it does not hold is hidden.
    space |= {name: property(doc="No item of the class.")
              for name in (_names[base] if base else ()) if name not in names}
    cls = type(_class_name(record), (base,), space) if base else Entity
    setattr(_karmp, cls.__name__, cls)
    _names[cls] = names
    return cls


_karmp._make_classes(_make_class)
families = {name: getattr(_karmp, _class_name(record)) for name, record in _karmp._families
            if hasattr(_karmp, _class_name(record))}


def items_of(cls: type[Entity]) -> dict[str, tuple[Any, ...]]:
    """The items of a class by name, as the extension module describes them."""
    if cls not in _rows:
        rows = _karmp._items(cls)  # raises for another class
        _rows[cls] = dict(zip(_names[cls], rows))
    return _rows[cls]


def item_name(owner: Entity | None, path: str) -> str:
    """The name of an item of an entity, which documents call by a path; what is no such path, as
    that of a part of an item, stays."""
    if owner is None:
        return path.lower()  # a setting of the world
    cls = type(owner)
    if cls not in _names_by_path:
        _names_by_path[cls] = {item[-1]: name for name, item in items_of(cls).items()}
    return _names_by_path[cls].get(path, path)


def item_path(owner: Entity, name: str) -> str:
    """The path of an item of an entity; empty when the class has none of the name."""
    *_, path = items_of(type(owner)).get(name, ("",))
    return str(path)


def is_reference(cls: type[Entity], name: str) -> bool:
    """Whether an item of a class is a reference to one entity."""
    kind: int = items_of(cls)[name][2]
    return _KINDS[kind] == "reference"


def _described(item: tuple[Any, ...]) -> dict[str, Any]:
    (name, says, kind, words, read_only, shape, count, target, fields, is_flag, is_in_order,
     can_get, _) = item
    return {
        "name": name,
        "doc": says,
        "kind": "flag" if is_flag else "matrix" if shape else _KINDS[kind],
        "rows": (count, round(count**0.5), 4 if count == 12 else 3)[shape],
        "is_transformation": _KINDS[kind] == "vector" and shape == 2,
        "words": words if _KINDS[kind] == "word" else (),
        "target": _class_name(target),
        "fields": [_described(field) for field in fields],
        "read_only": read_only,
        "is_in_order": is_in_order,
        "can_get": can_get,
    }


def _items(own: bool = True) -> list[dict[str, Any]]:
    """The items of each class as dictionaries, with or without those of its bases."""
    rows: list[dict[str, Any]] = []
    for cls in _names:
        for name, item in items_of(cls).items():
            if not own or name in vars(cls):
                doc = getattr(cls, name).__doc__
                rows.append({**_described(item), "name": name, "doc": doc, "class": cls.__name__})
    return rows


_columns: dict[type[Entity], dict[str, tuple[str, list[int]]]] = {}


def columns_of(cls: type[Entity]) -> dict[str, tuple[str, list[int]]]:
    """The items of a class that have columns: their kind and the shape of what an entity has."""
    if cls not in _columns:
        described = ((name, _described(item)) for name, item in items_of(cls).items())
        sides = {"vector": 1, "matrix": 2}
        _columns[cls] = {name: (item["kind"], [item["rows"]] * sides.get(item["kind"], 0))
                         for name, item in described
                         if item["can_get"] and item["kind"] not in _NO_COLUMNS}
    return _columns[cls]


def near(text: str, names: list[str]) -> str:
    """Tells the nearest of some names; nothing when none is near."""
    nearest = _karmp._nearest(text, names)
    return f'; near: "{nearest}"' if nearest else ""


def check_item(cls: type[Entity], item: str, error: type[Exception] = AttributeError,
               text: str = "") -> None:
    """Raises an error that tells the near name for what is no item of a class."""
    names = [*items_of(cls)]
    if item not in names:
        text = text or f"karmp.{cls.__name__} has no item"
        raise error(f'{text} "{item}"{near(item, names)}')


def index_of_quantity(word: str) -> int:
    """The place of a quantity, such as "Length", among all of them."""
    words: list[str] = items_of(_karmp.Value)["physical_quantity"][3]
    if word not in words:
        raise ValueError(f'there is no quantity "{word}"{near(word, words)}')
    return words.index(word)
