"""Mechanisms: models of bodies, joints and all that belongs to them.

    model = karmp.load("four-bar.xml")
    model.bodies["Rocker"].mass = 0.75
    model.save("heavier.xml")
"""

from . import _karmp
from ._karmp import *


def _model(text):
    """What a model is unpickled by."""
    return loads(text, "<pickle>")


def _entity(model, identifier):
    """What an entity is unpickled by."""
    return model.all(Entity)[identifier]
