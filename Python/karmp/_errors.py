"""The errors of the package."""

from __future__ import annotations

from ._rows import findings as _findings

TYPE_CHECKING = False
if TYPE_CHECKING:
    from collections.abc import Iterable
    from typing import Any

    from ._karmp import Entity


class Error(Exception):
    """A call failed. status is the library's number, entity the entity or None."""

    def __init__(self, text: str = "", status: int = -2147467259, entity: Entity | None = None) -> None:
        super().__init__(text)
        self.status, self.entity = status, entity


class DocumentError(Error):
    """A document was not read or written. findings tells what is the matter."""

    def __init__(self, text: str = "", findings: Iterable[Iterable[Any]] = ()) -> None:
        self.findings = _findings(findings)
        errors = [repr(finding) for finding in self.findings if finding.severity == "error"]
        super().__init__("\n".join([text, *errors]))


class DeletedError(Error):
    """The entity was deleted from its model."""


class CheckWarning(UserWarning):
    """The library reported a failed check in a call."""
