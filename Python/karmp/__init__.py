"""Mechanisms: models of bodies, joints and all that belongs to them.

    model = karmp.load("four-bar.xml")
    model.bodies["Rocker"].mass = 0.75
    model.save("heavier.xml")
"""
from ._karmp import *
from ._karmp import _items

# Printers of the standard library want functions that can be keys.
for _class in (Difference, Entities, Finding, Links, Model):
    _class.__repr__ = lambda self, _represent=_class.__repr__: _represent(self)

# Printers of the standard library want functions that can be keys.
for _class in (Difference, Entities, Finding, Links, Model):
    _class.__repr__ = lambda self, _represent=_class.__repr__: _represent(self)


def _model(text):
    """What a model is unpickled by."""
    return loads(text, "<pickle>")


def _entity(model, identifier):
    """What an entity is unpickled by."""
    return model.all(Entity)[identifier]
