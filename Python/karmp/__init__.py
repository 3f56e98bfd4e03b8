"""Mechanisms: models of bodies, joints and all that belongs to them.

    model = karmp.load("four-bar.xml")
    model.bodies["Rocker"].mass = 0.75
    model.save("heavier.xml")
"""

from . import _karmp
from ._karmp import *
from ._karmp import _item_names, _items


def _model(text):
    """What a model is unpickled by."""
    return loads(text, "<pickle>")


def _entity(model, identifier):
    """What an entity is unpickled by."""
    return model.all(Entity)[identifier]


def _looks():
    from . import _display

    return _display


def _graph(self, title=""):
    """The graph of bodies and joints, a picture in a notebook."""
    return _looks().Graph(_karmp._graph_text(self, title))


def _show(self, title=""):
    """The mechanism in space, on a page that a notebook shows and that can be saved."""
    return _looks().Page(_karmp._view_page(self, title))


def _frame(self, cls):
    """The table of a class as a data frame of pandas."""
    return _looks().frame(self, cls)


Model.graph, Model.show, Model.frame = _graph, _show, _frame
Model._repr_html_ = lambda self: _looks().model_html(self)
Entity._repr_html_ = lambda self: _looks().entity_html(self)
for _class in (Difference, Entities, Finding, Links, Model):
    # Printers of the standard library want functions that can be keys.
    _class.__repr__ = lambda self, _represent=_class.__repr__: _represent(self)
for _class in (Difference, Finding):
    _class._repr_html_ = lambda self: _looks().text_html(self)
del _class
