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
from ._lists import Entities as Entities
from ._lists import Links as Links
from ._model import ball as ball
from ._model import box as box
from ._model import check as check
from ._model import cylinder as cylinder
from ._model import load as load
from ._model import loads as loads
from ._model import meeting_point as meeting_point
from ._rows import Difference as Difference
from ._rows import Finding as Finding
from ._table import _items as _items

for _own in [*vars().values()]:
    if getattr(_own, "__module__", "").startswith("karmp."):
        _own.__module__ = "karmp"
