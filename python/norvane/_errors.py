"""What is raised, and what is warned of."""

from __future__ import annotations

import difflib
import re
from collections.abc import Iterable

from ._library import Record


class Error(ValueError):
    """A calculation that has no result, or an argument that cannot be read.

    function, argument, value, limit, unit and status say what the message says; each is None where it does not apply.
    """

    def __init__(self, message: str, *, function: str | None = None, argument: str | None = None,
                 value: object = None, limit: object = None, unit: str | None = None, status: int | None = None):
        super().__init__(message)
        self.message = message
        self.function = function
        self.argument = argument
        self.value = value
        self.limit = limit
        self.unit = unit
        self.status = status

    def __reduce__(self):
        names = ("function", "argument", "value", "limit", "unit", "status")
        return _again, (type(self), self.message, {name: getattr(self, name) for name in names})


def _again(kind: type, message: str, fields: dict) -> Error:
    return kind(message, **fields)


class DefaultsWarning(UserWarning):
    """Inputs that were not given took their defaults in every row."""


class UnitWarning(UserWarning):
    """A conversion whose factor is kept although it is not the physical one."""


_BLAMED = re.compile(r"\[(\d+)\] ")
_LIMIT = re.compile(r"(?:must|should) (?:be |lie |not be )?(.*)")
_BOUND = re.compile(r"(?:lower or equal than: |higher or equal than: |above |below |at least |greater than )([-+0-9.eE]+)")


def refused(record: Record, status: int, message: str, given: dict[str, object]) -> Error:
    """The error of a call with this status; the library's message numbers the argument that is to blame."""
    blamed = _BLAMED.search(message)
    argument = record.by_argument.get(int(blamed[1])) if blamed else None
    limit: object = None
    if argument is not None:
        said = _LIMIT.search(message)
        bound = _BOUND.fullmatch(said[1]) if said else None
        limit = float(bound[1]) if bound else said[1] if said else argument.limits() or None
    if argument is not None and argument.unit and argument.unit not in message:
        message += f" [{argument.unit}]"
    return Error(message or f"{record.id}: status {status}", function=record.id,
                 argument=argument.name if argument else None,
                 value=given.get(argument.name, argument.default) if argument else None,
                 limit=limit, unit=argument.unit if argument else None, status=status)


def meant(name: str, known: Iterable[str]) -> str:
    """ "; did you mean ...?", or nothing."""
    near = difflib.get_close_matches(name.lower(), {k.lower(): k for k in known}, n=3)
    spelt = {k.lower(): k for k in known}
    return f"; did you mean {' or '.join(spelt[n] for n in near)}?" if near else ""
