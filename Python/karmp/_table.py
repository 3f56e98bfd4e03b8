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


def _described(item: tuple[Any, ...]) -> dict[str, Any]:
    (name, says, kind, shape, count, words, target, fields, is_flag, is_in_order, read_only,
     can_get) = item
    return {
        "name": name,
        "doc": says,
        "kind": "flag" if is_flag else "matrix" if shape else _KINDS[kind],
        "rows": (count, round(count**0.5), 4 if count == 12 else 3)[shape],
        "is_transformation": _KINDS[kind] == "vector" and shape == 2,
        "words": words if _KINDS[kind] == "word" else (),
        "target": target,
        "fields": [_described(field) for field in fields],
        "read_only": read_only,
        "is_in_order": is_in_order,
        "can_get": can_get,
    }


def _items(own: bool = True) -> list[dict[str, Any]]:
    """The items of each class as dictionaries, with or without those of its bases."""
    rows: list[dict[str, Any]] = []
    for cls in vars(_karmp).values():
        if not isinstance(cls, type) or not issubclass(cls, Entity):
            continue
        for name, item in zip(_karmp._item_names(cls), _karmp._items(cls)):
            if not own or name in vars(cls):
                doc = getattr(cls, name).__doc__
                rows.append({**_described(item), "name": name, "doc": doc, "class": cls.__name__})
    return rows


_names_of_columns: dict[type[Entity], list[str]] = {}


def column_names(cls: type[Entity]) -> list[str]:
    """The items of a class that have columns."""
    if cls not in _names_of_columns:
        described = zip(_karmp._item_names(cls), map(_described, _karmp._items(cls)))
        _names_of_columns[cls] = [name for name, item in described
                                  if item["can_get"] and item["kind"] not in _NO_COLUMNS]
    return _names_of_columns[cls]


def near(text: str, names: list[str]) -> str:
    """Tells the nearest of some names; nothing when none is near."""
    nearest = _karmp._nearest(text, names)
    return f'; near: "{nearest}"' if nearest else ""


def check_item(cls: type[Entity], item: str, error: type[Exception] = AttributeError,
               text: str = "") -> None:
    """Raises an error that tells the near name for what is no item of a class."""
    names = _karmp._item_names(cls)
    if item not in names:
        text = text or f"karmp.{cls.__name__} has no item"
        raise error(f'{text} "{item}"{near(item, names)}')


def index_of_quantity(word: str) -> int:
    """The place of a quantity, such as "Length", among all of them."""
    row = _karmp._item_names(_karmp.Value).index("physical_quantity")
    words: list[str] = _karmp._items(_karmp.Value)[row][5]
    if word not in words:
        nearest = _karmp._nearest(word, words)
        raise ValueError(f'there is no quantity "{word}"; near: {nearest}')
    return words.index(word)
