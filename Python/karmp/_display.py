"""How models, entities, findings and differences look in a notebook, and tables of pandas.

All texts of a model are foreign: they are escaped wherever they stand in HTML."""

from __future__ import annotations

import html
import importlib
import os
import subprocess
from collections.abc import Iterable, Iterator, Sequence
from typing import Any, cast

import karmp

from ._table import families, items_of

MOST_ROWS = 200  # of a table in a notebook


def _cell(value: Any) -> str:
    if isinstance(value, karmp.Entity):
        return html.escape(f"{type(value).__name__} {value.name}")
    if hasattr(value, "tolist"):
        rows = value.tolist() if value.ndim == 2 else [value.tolist()]
        return "<br>".join(" ".join(f"{number:.6g}" for number in row) for row in rows)
    if isinstance(value, (list, tuple, karmp.Links)):
        return ", ".join(map(_cell, cast("Iterable[Any]", value)))
    if isinstance(value, bytes):
        return f"{len(value)} bytes"
    return "" if value is None else html.escape(f"{value:.6g}" if isinstance(value, float)
                                                else str(value))


def _table(head: Sequence[str], rows: Iterable[Sequence[str]]) -> str:
    rows = list(rows)
    line = "".join(f"<th>{html.escape(name)}</th>" for name in head)
    body = "".join("<tr>" + "".join(f"<td>{cell}</td>" for cell in row) + "</tr>"
                   for row in rows[:MOST_ROWS])
    rest = f"<p>and {len(rows) - MOST_ROWS} more</p>" if len(rows) > MOST_ROWS else ""
    return f"<table><thead><tr>{line}</tr></thead><tbody>{body}</tbody></table>{rest}"


def _families(model: karmp.Model) -> Iterator[tuple[str, karmp.Entities[Any]]]:
    """The collections of a model that hold something, by name."""
    for name in sorted(families):
        held: karmp.Entities[Any] = getattr(model, name)
        if len(held) > 0:
            yield name, held


def model_html(model: karmp.Model) -> str:
    """Counts, the entities in folds, and the findings of loading."""
    parts = [f"<p>{html.escape(repr(model)[1:-1])}</p>"]
    for name, held in _families(model):
        rows = ([_cell(entity.id), _cell(entity.name), type(entity).__name__] for entity in held)
        parts.append(f"<details><summary>{name}: {len(held)}</summary>"
                     + _table(["id", "name", "class"], rows) + "</details>")
    if model.findings:
        parts.append(_table(["finding"], ([text_html(finding)] for finding in model.findings)))
    return "".join(parts)


def entity_html(entity: karmp.Entity) -> str:
    """The items with their values; the meaning is shown above the name."""
    rows: list[list[str]] = []
    for name in items_of(type(entity)):
        says = html.escape(getattr(type(entity), name).__doc__ or "", quote=True)
        rows.append([f'<span title="{says}">{name}</span>', _cell(getattr(entity, name))])
    return f"<p>{html.escape(repr(entity)[1:-1])}</p>" + _table(["item", "value"], rows)


def text_html(value: object) -> str:
    """A finding or a difference."""
    return f"<code>{html.escape(repr(value))}</code>"


class Graph:
    """The graph of a mechanism: text holds it for Graphviz."""

    def __init__(self, text: str) -> None:
        self.text = text

    def svg(self) -> str:
        """The picture, which Graphviz's program dot makes; karmp.Error without one."""
        try:
            done = subprocess.run(["dot", "-Tsvg"], input=self.text, capture_output=True,
                                  encoding="utf-8", timeout=60, check=True)
        except (OSError, subprocess.SubprocessError) as error:
            raise karmp.Error(f"Graphviz's program dot makes no picture: {error}") from error
        return done.stdout

    def _repr_svg_(self) -> str | None:
        try:
            return self.svg()
        except karmp.Error:
            return None


class Page:
    """A page that shows a mechanism in space; html holds it, and needs no other file."""

    def __init__(self, text: str) -> None:
        self.html = text

    def save(self, path: str | os.PathLike[str]) -> None:
        """Writes the page to a file."""
        with open(path, "w", encoding="utf-8") as file:
            file.write(self.html)

    def _repr_html_(self) -> str:
        return ('<iframe style="width:100%;height:480px;border:0" sandbox="allow-scripts" '
                f'srcdoc="{html.escape(self.html, quote=True)}"></iframe>')


def frame(model: karmp.Model, cls: type[karmp.Entity]) -> Any:
    """The table of a class as a data frame, a column for each number of vectors and matrices."""
    pandas: Any = importlib.import_module("pandas")  # which has no types
    columns: dict[str, Any] = {}
    for name, column in model.table(cls).items():
        if getattr(column, "ndim", 1) == 1:
            columns[name] = column
            continue
        flat = column.reshape(len(column), -1)
        width = column.shape[-1] if column.ndim == 3 else 0
        for i in range(flat.shape[1]):
            index = f"{i // width}{i % width}" if width else str(i)
            columns[f"{name}_{index}"] = flat[:, i]
    return pandas.DataFrame(columns).set_index("id")
