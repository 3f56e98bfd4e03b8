"""Prints the types of the package's extension module, from the module itself.

Usage: python3 stubs.py <template> <output>, with the package in PYTHONPATH
"""

import pathlib
import re
import sys

import karmp._karmp as module

ROWS = {}
for row in module._items(own=False):
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


def item(cls, row):
    name, read, written = row["name"], got(cls, row), taken(cls, row)
    if not row["can_get"]:
        read = "None"
    if row["read_only"]:
        return f"    @property\n    def {name}(self) -> {read}:\n{told(row['doc'], ' ' * 8)}"
    descriptors = {"vector": "_Vector", "matrix": "_Matrix"}
    plain = read if read == written else f"_Item[{read}, {written}]"
    return f"    {name}: {descriptors.get(row['kind'], plain)}\n{told(row['doc'])}"


def records(cls, row):
    text = f"class {record(cls, row)}(NamedTuple):\n"
    for field in row["fields"]:
        text += f"    {field['name']}: {got(None, field)}\n{told(field['doc'])}"
    return text + "\n"


def entity_class(name, rows):
    cls = getattr(module, name)
    own = [row for row in rows if row["name"] in vars(cls)]
    before = "".join(records(name, row) for row in own if row["fields"])
    base = "" if cls is module.Entity else f"({cls.__base__.__name__})"
    body = told(cls.__doc__ or "")
    if cls is module.Entity:
        body += "    def __init__(self, _none: NoReturn, /) -> None: ...\n"
        body += "    @property\n    def model(self) -> Model: ...\n"
    body += "".join(item(name, row) for row in own)
    known = {row["name"] for row in rows}
    for hidden, value in vars(cls).items():
        if type(value).__name__ == "getset_descriptor" and hidden not in known:
            body += f"    @property\n    def {hidden}(self) -> _NoItem: ...\n"
    return f"{before}class {name}{base}:\n{body}\n"


def families(match):
    text = ""
    for name, value in vars(module.Model).items():
        family = re.fullmatch(r"The entities of the family (\w+)\.", getattr(value, "__doc__", None) or "")
        if family:
            text += f"    @property\n    def {name}(self) -> Entities[{family[1]}]: ...\n"
    return text


def keywords(match):
    """The items that a call of a model takes by keyword, but for those with the names of others."""
    cls = match[1]
    known = re.findall(r"(\w+):", match.string[: match.start()].rpartition("    def ")[2])
    return "".join(
        f"        {row['name']}: {taken(cls, row)} = ...,\n"
        for row in ROWS[cls].values()
        if not row["read_only"] and row["name"] not in known
    )


def main(template, output):
    text = pathlib.Path(template).read_text("utf-8")
    text = re.sub(r"    # families\n", families, text)
    text = re.sub(r"# words (\w+) (\w+)", lambda match: words(ROWS[match[1]][match[2]]), text)
    text = re.sub(r" +# items (\w+)\n", keywords, text)
    text += "".join(entity_class(name, rows.values()) for name, rows in ROWS.items())
    pathlib.Path(output).write_text(text.rstrip("\n") + "\n", "utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
