"""Prints the types of the package's extension module: of entities by the table of items, of models and solids by
the source of what the package gives them. Its functions are for the package alone.

Usage: python3 stubs.py <output>, with the package in PYTHONPATH
"""

import ast
import pathlib
import re
import sys

import karmp
import karmp._karmp as module

HEAD = '''\
# The types of the extension module. Printed by Python/tools/stubs.py.
# Planar classes hold other items than the spatial ones that they are derived from.
# mypy: disable-error-code="assignment,misc,override"
# pyright: reportIncompatibleVariableOverride=false, reportIncompatibleMethodOverride=false

import os
from collections.abc import Iterable, Sequence
from typing import Any, Generic, Literal, NamedTuple, NoReturn, Self, TypeVar, overload

import numpy as np
from numpy.typing import NDArray

from ._display import Graph, Page
from ._lists import Editing as Editing_
from ._lists import Entities, Links
from ._rows import Difference, Finding

_E = TypeVar("_E", bound="Entity")
_Got = TypeVar("_Got")
_Taken = TypeVar("_Taken")

_Array = NDArray[np.float64]
_Numbers = Sequence[float] | NDArray[np.floating[Any]] | NDArray[np.integer[Any]]
_Rows = Sequence[_Numbers] | NDArray[np.floating[Any]] | NDArray[np.integer[Any]]
_Vector3 = tuple[float, float, float]
_Path = str | os.PathLike[str]
_Owner = Entity | Model | Solid | tuple[Any, ...]

class _Item(Generic[_Got, _Taken]):
    """An item that takes other types than it gives, or none."""

    @overload
    def __get__(self, owner: None, cls: type[_Owner]) -> Self: ...
    @overload
    def __get__(self, owner: _Owner, cls: type[_Owner]) -> _Got: ...
    def __set__(self, owner: _Owner, value: _Taken) -> None: ...

class _NoItem:
    """What a planar class hides of the spatial one; reading it raises."""

_Vector = _Item[_Array, _Numbers]
_Matrix = _Item[_Array, _Rows]
'''
NOT_MADE = "    def __init__(self, _none: NoReturn, /) -> None: ...\n"

ROWS = {}
for row in karmp._items(own=False):
    ROWS.setdefault(row["class"], {})[row["name"]] = row


def words(row):
    return f"Literal[{', '.join(repr(word) for word in row['words'])}]"


def record(cls, row):
    return f"_{cls}{row['name'].title().replace('_', '')}"


def fields(row, type_of):
    return ", ".join(type_of(None, field) for field in row["fields"])


def got(cls, row):
    """The type of an item that is read."""
    target = row["target"] or "Entity"
    return {
        "number": "float",
        "integer": "int",
        "flag": "bool",
        "text": "str",
        "word": words(row),
        "vector": "_Array",
        "matrix": "_Array",
        "optional": "float | None",
        "reference": f"{target} | None",
        "references": f"Links[{target}]",
        "records": f"tuple[{record(cls, row)}, ...]",
        "stream": "bytes",
    }[row["kind"]]


def taken(cls, row):
    """The type of values that an item takes."""
    return {
        "vector": "_Numbers",
        "matrix": "_Rows",
        "references": f"Iterable[{row['target'] or 'Entity'}]",
        "records": f"Iterable[tuple[{fields(row, taken)}]]",
    }.get(row["kind"]) or got(cls, row)


def told(text, indent="    "):
    escaped = text.replace("\\", "\\\\").replace('"""', '\\"""')
    return f'{indent}"""{escaped}"""\n'


def read_only(name, of, doc=""):
    text = told(doc, " " * 8) if doc else ""
    return f"    @property\n    def {name}(self) -> {of}:" + (f"\n{text}" if doc else " ...\n")


def item(cls, row):
    name, read, written = row["name"], got(cls, row), taken(cls, row)
    if not row["can_get"]:
        read = "None"
    if row["read_only"]:
        return read_only(name, read, row["doc"])
    descriptors = {"vector": "_Vector", "matrix": "_Matrix"}
    plain = read if read == written else f"_Item[{read}, {written}]"
    return f"    {name}: {descriptors.get(row['kind'], plain)}\n{told(row['doc'])}"


def records(cls, row):
    text = f"class {record(cls, row)}(NamedTuple):\n"
    for field in row["fields"]:
        text += f"    {field['name']}: {got(None, field)}\n{told(field['doc'])}"
    return text + "\n"


def with_items(call):
    """Tells the items that a call takes by keyword which makes an entity of one class."""
    made = ROWS.get(ast.unparse(call.returns)) if call.returns else None
    if made and call.args.kwarg:
        known = [argument.arg for argument in call.args.args + call.args.kwonlyargs]
        for row in made.values():
            if not row["read_only"] and row["name"] not in known:
                call.args.kwonlyargs.append(ast.arg(row["name"], ast.Name(taken(made, row))))
                call.args.kw_defaults.append(ast.Constant(...))
        call.args.kwarg = None


def members(cls):
    """What the package gives a class, by its source."""
    source = pathlib.Path(module.__file__).with_name("_model.py").read_text("utf-8")
    [body] = [node.body for node in ast.parse(source).body
              if isinstance(node, ast.ClassDef) and node.name == f"_{cls.__name__}"]
    overloaded = {inner.name for inner in body if isinstance(inner, ast.FunctionDef) and inner.decorator_list}
    for inner in body:
        if isinstance(inner, ast.AnnAssign):
            name, kind = inner.target.id, ast.unparse(inner.annotation)
            can_set = getattr(cls, name).fset is not None
            yield f"    {name}: {kind}\n" if can_set else read_only(name, kind)
        if isinstance(inner, ast.FunctionDef) and (inner.decorator_list or inner.name not in overloaded):
            with_items(inner)
            inner.body = [ast.Expr(ast.Constant(...))]
            text = ast.unparse(inner).replace("-> Editing", "-> Editing_")
            yield "    " + text.replace("\n    ...", " ...").replace("\n", "\n    ") + "\n"


def own_class(cls):
    """A class of the module's own that is no entity."""
    text = "".join(members(cls))
    if "def __init__" not in text:
        text = NOT_MADE + text
    for name, member in vars(cls).items():
        family = re.fullmatch(r"The entities of the family (\w+)\.", getattr(member, "__doc__", None) or "")
        if family:
            text += read_only(name, f"Entities[{family[1]}]")
        elif name == "Editing":
            text += "    Editing = Editing_\n"
    return f"class {cls.__name__}:\n{text}\n"


def entity_class(name, rows):
    cls = getattr(module, name)
    own = [row for row in rows if row["name"] in vars(cls)]
    before = "".join(records(name, row) for row in own if row["fields"])
    base = "" if cls is module.Entity else f"({cls.__base__.__name__})"
    body = told(cls.__doc__ or "")
    if cls is module.Entity:
        body += NOT_MADE + "".join(members(cls))
    body += "".join(item(name, row) for row in own)
    known = {row["name"] for row in rows}
    for hidden, value in vars(cls).items():
        if cls is not module.Entity and isinstance(value, property) and hidden not in known:
            body += read_only(hidden, "_NoItem")
    return f"{before}class {name}{base}:\n{body}\n"


def main(output):
    text = f"{HEAD}_Quantity = {words(ROWS['Value']['physical_quantity'])}\n_families: list[tuple[str, str]]\n\n"
    for name, member in vars(module).items():
        if isinstance(member, type) and not issubclass(member, module.Entity):
            text += own_class(member)
        elif type(member).__name__ == "builtin_function_or_method":
            text += f"def {name}(*given: Any) -> Any: ...\n"
    text += "".join(entity_class(name, rows.values()) for name, rows in ROWS.items())
    pathlib.Path(output).write_text(text.rstrip("\n") + "\n", "utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
