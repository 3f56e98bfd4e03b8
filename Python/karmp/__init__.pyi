from ._karmp import *
