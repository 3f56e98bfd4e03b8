"""Mechanisms: models of bodies, joints and all that belongs to them.

    model = karmp.load("four-bar.xml")
    model.bodies["Rocker"].mass = 0.75
    model.save("heavier.xml")
"""

from . import _model as _model
from ._errors import CheckWarning as CheckWarning
from ._errors import DeletedError as DeletedError
from ._errors import DocumentError as DocumentError
from ._errors import Error as Error
from ._karmp import *
from ._karmp import _item_names as _item_names
from ._karmp import _items as _items
from ._lists import Entities as Entities
from ._lists import Links as Links
from ._model import loads as loads

for _own in [*vars().values()]:
    if getattr(_own, "__module__", "").startswith("karmp."):
        _own.__module__ = "karmp"
