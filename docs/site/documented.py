"""Tells how many public classes, functions and enumerations have documentation, by Doxygen's XML,
and lists those that have none, which is a failure.

Not counted are functions that are defaulted or deleted, destructors, copies and moves, classes that
are only declared in the public headers, and specializations of a template. An enumeration "Enum" is
documented by the class that is made for it.
"""

import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree


def is_documented(node):
    texts = (node.find("briefdescription"), node.find("detaileddescription"))
    return any("".join(text.itertext()).strip() for text in texts if text is not None)


def is_special(member, scope):
    """Whether a function is a destructor, or copies or moves its class, as in every class."""
    name, arguments = member.findtext("name"), member.findtext("argsstring") or ""
    if name.startswith("~") or arguments.endswith(("=default", "=delete")):
        return True
    classes = "|".join(map(re.escape, {name, scope.split("::")[-1]}))
    types = ["".join(each.itertext()).strip() for each in member.findall("param/type")]
    copies = len(types) == 1 and re.fullmatch(rf"(const )?({classes})( ?&&?)?", types[0])
    return bool(copies) and (name == "operator=" or re.fullmatch(classes, name) is not None)


def members(compound):
    """The public functions and enumerations of a class or namespace with a name for each."""
    scope = compound.findtext("compoundname")
    for member in compound.iter("memberdef"):
        kind = member.get("kind")
        arguments = member.findtext("argsstring") or ""
        if member.get("prot") != "public" or kind not in ("function", "enum"):
            continue
        if kind == "function" and is_special(member, scope):
            continue
        name = f"{scope}::{member.findtext('name')}{arguments}"
        yield kind, name, is_documented(member), member


def entries(folder):
    for path in sorted(folder.glob("*.xml")):
        for compound in ElementTree.parse(path).getroot().findall("compounddef"):
            kind = compound.get("kind")
            is_specialized = "<" in compound.findtext("compoundname")
            is_declared = kind != "namespace" and compound.find("location").get("bodyend") == "-1"
            if is_specialized or is_declared:
                continue
            is_class = kind in ("class", "struct") and compound.get("prot") == "public"
            if is_class:
                yield "class", compound.findtext("compoundname"), is_documented(compound), compound
            if is_class or kind == "namespace":
                for kind, name, documented, member in members(compound):
                    by_class = kind == "enum" and name.endswith("::Enum") and is_documented(compound)
                    yield kind, name, documented or by_class, member


def main():
    folder = pathlib.Path(sys.argv[1])
    counts = {}
    for kind, name, documented, node in entries(folder):
        all_of, with_text = counts.get(kind, (0, 0))
        counts[kind] = (all_of + 1, with_text + documented)
        if not documented:
            print(f"{node.find('location').get('file')}: {name}")
    titles = {"class": "classes", "function": "functions", "enum": "enumerations"}
    for kind, title in titles.items():
        all_of, with_text = counts.get(kind, (0, 0))
        print(f"{title} with documentation: {with_text} of {all_of}")
    return 0 if all(all_of == with_text for all_of, with_text in counts.values()) else 1


sys.exit(main())
