"""A report of a mechanism as one page of HTML: its bodies and joints, what the check finds, its
graph when Graphviz is there, and the mechanism in space.

    python3 report.py four-bar.xml report.html
"""

import html
import pathlib
import sys

import karmp


def section(title: str, body: str) -> str:
    return f"<h2>{title}</h2>\n{body}\n"


def rows(*cells: object) -> str:
    return "<tr>" + "".join(f"<td>{html.escape(str(cell))}</td>" for cell in cells) + "</tr>\n"


def report(model: karmp.Model, title: str) -> str:
    bodies = "".join(rows(body.name, f"{body.mass:g} kg", "fixed" if body.is_fixed else "")
                     for body in model.bodies)
    joints = "".join(rows(joint.name, type(joint).__name__,
                          " - ".join(body.name for body in joint.bodies))
                     for joint in model.joints)
    findings = "".join(rows(finding) for finding in model.check()) or rows("nothing to tell")
    parts = [section("Bodies", f"<table>{bodies}</table>"),
             section("Joints", f"<table>{joints}</table>"),
             section("Check", f"<table>{findings}</table>")]
    if picture := model.graph(title)._repr_svg_():
        parts.append(section("Graph", picture[picture.index("<svg"):]))
    parts.append(section("In space", model.show(title)._repr_html_()))
    heading = html.escape(title)
    return (f'<!DOCTYPE html>\n<meta charset="utf-8">\n<title>{heading}</title>\n'
            f"<h1>{heading}</h1>\n" + "".join(parts))


def main(document: str, output: str) -> None:
    path = pathlib.Path(document)
    pathlib.Path(output).write_text(report(karmp.load(path), path.stem), encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
