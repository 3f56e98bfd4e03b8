"""Writes the reference of the package as pages of Markdown, from the module itself and its types.

Usage: python3 reference.py <folder>, with the package in PYTHONPATH
"""

import ast
import pathlib
import re
import sys

import karmp as module
from stubs import ROWS, got, taken

PACKAGE = pathlib.Path(module.__file__).parent
# What is public, of the extension module and of Python's.
STUBS = {node.name: node
         for name in ("_karmp.pyi", "_model.py", "_lists.py", "_rows.py", "_errors.py")
         for node in ast.parse((PACKAGE / name).read_text("utf-8")).body
         if isinstance(node, (ast.ClassDef, ast.FunctionDef)) and hasattr(module, node.name)}


def sentence(documented):
    """The docstring in one line."""
    return " ".join((documented.__doc__ or "").split())


def cell(text):
    return text.replace("|", "\\|")


def family(cls):
    """The class below Entity that a class is derived from."""
    while cls is not module.Entity and cls.__base__ is not module.Entity:
        cls = cls.__base__
    return cls.__name__


def link(name, page):
    of = family(getattr(module, name))
    return f"[{name}]({'' if of == page else of + '.md'}#{name.lower()})"


def type_text(cls, row, page):
    read, written = (text.replace("_Array", "array") for text in (got(cls, row), taken(cls, row)))
    if row["kind"] == "records":
        return "records of " + ", ".join(f"`{field['name']}`" for field in row["fields"])
    if row["kind"] in ("vector", "matrix"):
        shape = (row["rows"],) if row["kind"] == "vector" else (row["rows"],) * 2
        return f"array {shape}"
    if row["kind"] in ("reference", "references"):
        target = link(row["target"] or "Entity", page)
        return f"{target} or None" if row["kind"] == "reference" else f"links to {target}"
    return f"`{cell(read)}`"


def class_section(name, rows, page):
    cls = getattr(module, name)
    base = "" if cls is module.Entity else f" Derived from {link(cls.__base__.__name__, page)}."
    text = f"## {name}\n\n{cls.__doc__ or ''}{base}\n\n"
    own = [row for row in rows if row["name"] in vars(cls)]
    if own:
        text += "| item | type | |\n|---|---|---|\n"
        for row in own:
            doc = re.sub(r" One of .*", "", row["doc"]) if row["words"] else row["doc"]
            text += f"| `{row['name']}` | {type_text(name, row, page)} | {cell(doc)} |\n"
        text += "\n"
    return text


def function_section(node, documented, level):
    arguments = ast.unparse(node.args).replace("self, /, ", "").removeprefix("self, ")
    arguments = "" if arguments == "self" else arguments
    # The items that a call takes by keyword stand with their class.
    if len(arguments) > 400:
        arguments = re.sub(r", name: str=\.\.\..*", ", **items", arguments)
    returns = ast.unparse(node.returns)
    return (f"{'#' * level} {node.name}\n\n```python\n{node.name}({arguments}) -> {returns}\n```\n\n"
            f"{sentence(documented)}\n\n")


def plain_class(name, level=2):
    """A class of the module's own that is no entity, or one of its functions."""
    node, documented = STUBS[name], getattr(module, name)
    if isinstance(node, ast.FunctionDef):
        return function_section(node, documented, level)
    text, properties = f"{'#' * level} {name}\n\n{sentence(documented)}\n\n", ""
    functions = {}
    for member in node.body:
        if isinstance(member, ast.FunctionDef) and not member.name.startswith("_"):
            if any(ast.unparse(mark) == "property" for mark in member.decorator_list):
                doc = sentence(getattr(documented, member.name))
                properties += f"| `{member.name}` | `{cell(ast.unparse(member.returns))}` | {doc} |\n"
            else:
                functions[member.name] = member
        elif isinstance(member, ast.AnnAssign):
            doc = sentence(getattr(documented, member.target.id, None) or "")
            doc = doc if isinstance(vars(documented).get(member.target.id), property) else ""
            kind = re.sub(r"_Item\[_?(.*), \w+\]", r"\1", ast.unparse(member.annotation))
            properties += f"| `{member.target.id}` | `{cell(kind)}` | {doc} |\n"
    if properties:
        text += f"| property | type | |\n|---|---|---|\n{properties}\n"
    return text + "".join(
        function_section(member, getattr(documented, member.name), level + 1)
        for member in functions.values()
    )


def main(folder):
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    pages = {"Entity": "# Entity\n\n"}
    for name, rows in ROWS.items():
        page = family(getattr(module, name))
        pages.setdefault(page, f"# {page} and what is derived from it\n\n")
        pages[page] += class_section(name, rows.values(), page)
    own = [name for name in STUBS if not name.startswith("_") and name not in ROWS]
    own.sort(key=lambda name: (name != "Model", isinstance(STUBS[name], ast.ClassDef)))
    pages["model"] = "# Models, documents, errors\n\n" + "".join(plain_class(name) for name in own)
    for page, text in pages.items():
        (folder / f"{page}.md").write_text(text, "utf-8")
    listed = "\n".join(["model", "Entity", *sorted(set(pages) - {"model", "Entity"})])
    (folder / "index.md").write_text(
        "# Python classes\n\nEvery class and item of the package, as `help()` and the types have it."
        f"\n\n```{{toctree}}\n:maxdepth: 2\n\n{listed}\n```\n", "utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
