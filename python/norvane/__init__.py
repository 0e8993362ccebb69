"""Calculations for custody-transfer flow measurement.

Every function of the catalogue is a function of this module:

    >>> import norvane
    >>> norvane.AGA8_M(pressure="870 psia", temperature=20, composition={"methane": 0.9, "ethane": 0.1}).z
    0.8559...

help(norvane.AGA8_M) tells its standard, units and limits. Arrays go to the batch exports of the shared library;
norvane.apply calculates the rows of a pandas, Polars or Arrow table; norvane.duckdb and norvane.spark take the same
functions into these engines.
"""

from __future__ import annotations

from . import _call, _library
from ._errors import DefaultsWarning, Error, UnitWarning
from ._library import NO_OUTPUT, NOT_RUN
from ._results import Code, Result
from ._values import convert

__version__ = _library.version


def functions() -> list[str]:
    """The names of all functions but those that stand in the catalogue for older programs only."""
    return [record.id for record in _library.records.values() if not record.hidden]


def function(name: str):
    """A function by its name, in any case."""
    if name in _library.records:
        return globals()[name]
    for known in _library.records:
        if known.lower() == name.lower():
            return globals()[known]
    from ._errors import meant

    raise Error(f"there is no function {name!r}{meant(name, _library.records)}", function=name)


def apply(table, function_name, /, **options):
    """Calculates a function for every row of a pandas, Polars or Arrow table. See norvane.tables.apply."""
    from . import tables

    return tables.apply(table, function_name, **options)


for _record in _library.records.values():
    globals()[_record.id] = _call.make_function(_record)
del _record

__all__ = ["Code", "DefaultsWarning", "Error", "NOT_RUN", "NO_OUTPUT", "Result", "UnitWarning", "apply", "convert",
           "function", "functions", *functions()]
