"""A parameter study: a four-bar linkage is loaded once and cloned a hundred times, each time with
another length of the crank. The other rods are placed so that the loop closes, and each document is
checked and saved.

    python3 parameter_study.py four-bar.xml folder
"""

import pathlib
import sys

import numpy as np
from numpy.typing import NDArray

import karmp

COUPLER, ROCKER, ANGLE = 0.3, 0.2, 1.0


def position(start: NDArray[np.float64], end: NDArray[np.float64]) -> list[list[float]]:
    """The position of a rod in the plane z = 0: its first axis looks from its start to its end."""
    x, y = np.subtract(end, start)[:2] / np.linalg.norm(np.subtract(end, start))
    return [[x, -y, 0, start[0]], [y, x, 0, start[1]], [0, 0, 1, 0], [0, 0, 0, 1]]


def with_crank(model: karmp.Model, length: float) -> karmp.Model:
    """A clone of the linkage whose crank has another length."""
    clone = model.clone()
    pivot = clone.bodies["Rocker"].position[:3, 3]
    crank_end = length * np.array([np.cos(ANGLE), np.sin(ANGLE), 0])
    met = karmp.meeting_point(crank_end, COUPLER, pivot, ROCKER)
    if met is None:
        raise ValueError(f"a crank of {length} m does not close the loop")
    rocker_end = np.array(met)
    with clone.editing():
        crank = clone.bodies["Crank"]
        scale = length / (2 * crank.cog[0])
        clone.get(karmp.AxisSystem, "Crank.B").origin = (length, 0, 0)
        crank.cog = crank.cog * scale  # a slender rod of the same mass
        crank.inertia_matrix = crank.inertia_matrix * [[1], [scale**2], [scale**2]]
        clone.bodies["Coupler"].position = position(crank_end, rocker_end)
        clone.bodies["Rocker"].position = position(pivot, rocker_end)
    return clone


def main(document: str, folder: str) -> None:
    linkage = karmp.load(document)
    for number, length in enumerate(np.linspace(0.05, 0.15, 100)):
        clone = with_crank(linkage, length)
        findings = clone.check() + clone.save(pathlib.Path(folder) / f"crank-{number:03}.xml")
        if findings:
            sys.exit("\n".join(map(str, findings)))
    print(f"100 linkages with cranks of 0.05 to 0.15 m are in {folder}")


if __name__ == "__main__":
    main(*sys.argv[1:])
