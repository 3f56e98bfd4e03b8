"""Programs without mistakes, and the types of what they get."""

from __future__ import annotations

import pathlib
from typing import Any, Literal, assert_type

import karmp
import numpy as np
from numpy.typing import NDArray


def read(model: karmp.Model) -> None:
    assert_type(model.bodies, karmp.Entities[karmp.Body])
    assert_type(model.bodies["Crank"], karmp.Body)
    assert_type(model.bodies[0:2], list[karmp.Body])
    assert_type(model.bodies.get("Crank"), karmp.Body | None)
    assert_type(model.bodies.get("Crank", 0), karmp.Body | int)
    assert_type(model.all(karmp.Revolute), karmp.Entities[karmp.Revolute])
    assert_type(model.find("Crank"), karmp.Entity | None)
    assert_type(model.find("Crank", karmp.Body), karmp.Body | None)
    assert_type(model.get(karmp.Variable, "Angle").value, float | None)
    assert_type(model.gravity, tuple[float, float, float])
    body = model.ground
    assert_type(body.mass, float)
    assert_type(body.cog, NDArray[np.float64])
    assert_type(body.inertia_matrix, NDArray[np.float64])
    assert_type(body.joints, karmp.Links[karmp.Joint])
    assert_type(body.joints[0], karmp.Joint)
    assert_type([joint.name for joint in body.joints], list[str])
    assert_type(body.model, karmp.Model)
    motor = model.get(karmp.Motor, "Motor")
    assert_type(
        motor.target_type,
        Literal["NotSpecified", "PositionTarget", "VelocityTarget", "AccelerationTarget"],
    )
    assert_type(motor.variable, karmp.Variable | None)
    for finding in model.findings:
        assert_type(finding.severity, Literal["warning", "error"])
    # A record may be taken apart.
    constraint = model.constraints[0]
    assert_type(constraint.constraint_parameters[0].types_type1, int)
    assert_type(model.table(karmp.Body, "mass"), dict[str, Any])


def write(model: karmp.Model) -> None:
    body = model.add_body("Bar", mass=1.2, at=(0, 0, 0), towards=np.array([1.0, 0, 0]))
    body.cog = [0, 0.5, 0]
    body.cog = np.array([1, 2, 3])
    body.inertia_matrix = [[1, 0, 0], [0, 2, 0], (0, 0, 3)]
    body.inertia_matrix = np.eye(3)
    joint = model.add_joint(karmp.Prismatic, "P", model.ground, body, at=(0, 0, 0), axis=(1, 0, 0))
    assert_type(joint, karmp.Prismatic)
    variable = model.variable("Way", joint, type="Controlled")
    variable.value = None
    motor = model.add(karmp.Motor, "Motor", variable=variable)
    motor.target_type = "VelocityTarget"
    motor.variable = None
    joint.bodies = [model.ground, body]
    with model.editing():
        model.delete(joint, preview=True)
    model.save(pathlib.Path("out.xml"), exact=False)
    try:
        karmp.load("out.xml")
    except karmp.DocumentError as error:
        assert_type(error.findings[0], karmp.Finding)
