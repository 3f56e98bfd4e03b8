"""The errors of the package."""

from __future__ import annotations

TYPE_CHECKING = False
if TYPE_CHECKING:
    from collections.abc import Sequence

    from ._karmp import Entity, Finding


class Error(Exception):
    """A call failed. status is the library's number, entity the entity or None."""

    status = 0x80004005
    entity: Entity | None = None


class DocumentError(Error):
    """A document was not read or written. findings tells what is the matter."""

    findings: Sequence[Finding] = ()


class DeletedError(Error):
    """The entity was deleted from its model."""


class CheckWarning(UserWarning):
    """The library reported a failed check in a call."""
