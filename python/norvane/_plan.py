"""Which column of a table, which value and which default each input of a function takes.

A plan is made from the names of the columns alone and is plain data, so that it is made once, before the first row, and
travels to other processes.
"""

from __future__ import annotations

import difflib
import re
import warnings
from collections.abc import Mapping, Sequence
from dataclasses import dataclass, field
from typing import Any

from . import _values
from ._errors import DefaultsWarning, Error, meant
from ._library import Input, Output, Record, identifier, letters, records

C6PLUS = {"c6+", "c6plus", "hexanes+", "hexane+", "hexanesplus", "hexaneplus", "nhexane+", "nc6+", "c6++"}
_BRACKETS = re.compile(r"(.*?)\s*\[([^\[\]]*)\]\s*", re.DOTALL)
_SLIP = 0.8


@dataclass(frozen=True)
class Source:
    """A column, the field of it that is meant when it is a structure, and the unit of its numbers."""

    column: str
    unit: str | None = None
    member: str | None = None

    @property
    def shown(self) -> str:
        return f"{self.column}.{self.member}" if self.member else self.column


@dataclass
class Gas:
    """A composition whose components come from columns of their own, or are the same in every row."""

    columns: list[tuple[int, Source, float]] = field(default_factory=list)  # place, source, share of it
    constants: dict[int, float] = field(default_factory=dict)


@dataclass
class Plan:
    """How the rows of a table become calls, and the answers columns."""

    function: str
    inputs: dict[str, Any]  # by input: Source, Gas, a number, a list of numbers, or None for the default
    outputs: list[tuple[str, str]]  # new column, output
    status: str | None
    message: str | None
    defaulted: dict[str, Any]

    @property
    def record(self) -> Record:
        return records[self.function]

    def used(self) -> list[str]:
        """The columns that are read."""
        names: dict[str, None] = {}
        for value in self.inputs.values():
            sources = [value] if isinstance(value, Source) else (
                [source for _, source, _ in value.columns] if isinstance(value, Gas) else [])
            names.update((source.column, None) for source in sources)
        return list(names)

    def new(self) -> list[str]:
        return [name for name, _ in self.outputs] + [n for n in (self.status, self.message) if n is not None]


def bare(column: str) -> tuple[str, str | None]:
    """Name and unit of "p [bar(a)]"."""
    match = _BRACKETS.fullmatch(column)
    return (match[1].strip(), match[2].strip()) if match else (column.strip(), None)


class _Columns:
    """The columns of a table by the names they may be asked for."""

    def __init__(self, record: Record, names: Sequence[str], field_units: Mapping[str, str],
                 members: Mapping[str, Sequence[str]]):
        self.record = record
        self.names = [str(name) for name in names]
        self.units = dict(field_units)
        self.members = members
        self.by_name: dict[str, list[str]] = {}
        for name in self.names:
            self.by_name.setdefault(identifier(bare(name)[0]), []).append(name)

    def find(self, wanted: str) -> str | None:
        if self.names.count(wanted) == 1:
            return wanted
        found = self.by_name.get(identifier(bare(wanted)[0]), [])
        if len(found) > 1 or self.names.count(wanted) > 1:
            raise Error(f"{self.record.id}: several columns are called {wanted!r}: "
                        f"{', '.join(map(repr, found or [wanted]))}", function=self.record.id)
        return found[0] if found else None

    def source(self, column: str, unit: str | None = None, member: str | None = None) -> Source:
        return Source(column, unit or self.units.get(column) or bare(column)[1], member)


def _unit_checked(record: Record, parameter: Input, source: Source) -> Source:
    """The source with a unit only where numbers have to be converted; refuses a unit that cannot be."""
    to = _values.target_unit(parameter)
    if source.unit in (None, "", "-"):
        return Source(source.column, None, source.member)
    if to is None:
        raise _values.wrong(record, parameter, source.unit, f"column {source.shown!r} is in {source.unit}, but the "
                                                            "input has no unit")
    _, problem = _values.convertible(source.unit, to)
    if problem:
        raise _values.wrong(record, parameter, source.unit, f"column {source.shown!r}: {problem}")
    return Source(source.column, None if _values.same_unit(source.unit, to) else source.unit, source.member)


def _gas_of_columns(columns: _Columns, parameter: Input, pairs: list[tuple[str, Source]],
                    c6plus: Sequence[float] | None, gas: Gas) -> list[str]:
    """Adds the components that these columns name; answers with the columns that were taken."""
    record = columns.record
    taken = []
    seen: dict[int, str] = {place: "" for place in gas.constants}
    for name, source in pairs:
        place = parameter.component(name)
        shares = [(place, 1.0)] if place is not None else []
        if place is None and letters(name) in C6PLUS:
            if c6plus is None:
                raise _values.wrong(record, parameter, name, f"column {source.shown!r} is an amount of n-hexane and "
                                    "heavier, which must be split; c6plus=(47, 36, 17) takes 47 % of it for n-hexane, "
                                    "36 % for n-heptane and 17 % for n-octane")
            first = parameter.component("n-hexane")
            shares = [(first + i, share) for i, share in enumerate(shares_of(c6plus))]
        for at, share in shares:
            if at in seen:
                raise _values.wrong(record, parameter, name, f"column {source.shown!r}: {parameter.components[at]} "
                                    f"comes also from {seen[at]!r}" if seen[at] else
                                    f"column {source.shown!r}: {parameter.components[at]} is given already")
            seen[at] = source.shown
            gas.columns.append((at, _unit_checked(record, parameter, source), share))
        if shares:
            taken.append(source.column)
    return taken


def shares_of(c6plus: Sequence[float]) -> list[float]:
    shares = [float(share) for share in c6plus]
    total = sum(shares)
    if not (1 <= len(shares) <= 5 and all(s >= 0 for s in shares)
            and (abs(total - 1) <= 1e-4 or abs(total - 100) <= 0.01)):
        raise Error(f"c6plus: {shares} is not a list of at most 5 shares that sum to 100 or 1; (47, 36, 17) is one for "
                    "n-hexane, n-heptane and n-octane")
    return [share / total for share in shares]


def _named_gas(columns: _Columns, parameter: Input, given: Mapping, c6plus) -> Gas:
    """A gas given as a mapping of component to column or amount."""
    gas = Gas()
    pairs = []
    for name, value in given.items():
        column = columns.find(value) if isinstance(value, str) else None
        if column is not None:
            pairs.append((str(name), columns.source(column)))
            continue
        place = parameter.component(name) if isinstance(name, str) else None
        if place is None:
            raise _values.wrong(columns.record, parameter, name, f"{name!r} is no component of the gas"
                                + meant(str(name), parameter.components))
        gas.constants[place] = _constant(columns, parameter, value)
    taken = _gas_of_columns(columns, parameter, pairs, c6plus, gas)
    if len(taken) != len(pairs):
        wrong = next(name for name, source in pairs if source.column not in taken)
        raise _values.wrong(columns.record, parameter, wrong, f"{wrong!r} is no component of the gas"
                            + meant(wrong, parameter.components))
    return gas


def _constant(columns: _Columns, parameter: Input, value: Any) -> float:
    """The same value in every row; a text that is none was meant as the name of a column."""
    try:
        if parameter.kind == "option":
            return float(_values.option(columns.record, parameter, value))
        return _values.number(columns.record, parameter, value)
    except Error:
        if not isinstance(value, str) or re.match(r"\s*[-+.]?\d", value):
            raise
        raise Error(f"{columns.record.id}: {parameter.name}: there is no column {value!r}"
                    f"{meant(value, columns.names)}", function=columns.record.id, argument=parameter.name,
                    value=value, unit=parameter.unit) from None


def _gas_column(columns: _Columns, parameter: Input, column: str, c6plus, unit: str | None = None):
    """A column that holds whole gases: lists of 22, or structures of components."""
    members = columns.members.get(column)
    if not members or not parameter.components:
        return _unit_checked(columns.record, parameter, columns.source(column, unit))
    gas = Gas()
    pairs = [(bare(member)[0], columns.source(column, unit or bare(member)[1], member)) for member in members]
    _gas_of_columns(columns, parameter, pairs, c6plus, gas)
    known = {source.member for _, source, _ in gas.columns}
    for member in members:
        if member not in known:
            raise _values.wrong(columns.record, parameter, member, f"{column}.{member} is no component of the gas"
                                + meant(member, parameter.components))
    return gas


def _given(columns: _Columns, parameter: Input, value: Any, c6plus) -> Any:
    record = columns.record
    unit = None
    if isinstance(value, tuple) and len(value) == 2 and isinstance(value[0], str) and isinstance(value[1], str):
        value, unit = value
    if isinstance(value, str):
        column = columns.find(value)
        if column is not None:
            if parameter.is_list:
                return _gas_column(columns, parameter, column, c6plus, unit)
            return _unit_checked(record, parameter, columns.source(column, unit))
        if unit is not None or parameter.is_list:
            raise Error(f"{record.id}: {parameter.name}: there is no column {value!r}{meant(value, columns.names)}",
                        function=record.id, argument=parameter.name, value=value, unit=parameter.unit)
    if not parameter.is_list:
        return _constant(columns, parameter, value)
    if isinstance(value, Mapping):
        return _named_gas(columns, parameter, value, c6plus)
    return _values.cells(record, parameter, value)


def _found(columns: _Columns, parameter: Input, c6plus) -> Any:
    """An input that is not given comes from the column of its name, a gas also from those of its components."""
    column = columns.find(parameter.name)
    if column is not None:
        if parameter.is_list:
            return _gas_column(columns, parameter, column, c6plus)
        return _unit_checked(columns.record, parameter, columns.source(column))
    if not parameter.components:
        return None
    gas = Gas()
    _gas_of_columns(columns, parameter, [(bare(name)[0], columns.source(name)) for name in columns.names], c6plus, gas)
    return gas if gas.columns else None


def _refuse_slips(columns: _Columns, plan: Plan) -> None:
    """A column whose name is nearly that of an input which would take its default is a slip of the pen."""
    used = set(plan.used())
    for name in plan.defaulted:
        for column in columns.names:
            near = identifier(bare(column)[0])
            if column not in used and near not in plan.record.input_of and near not in plan.record.output_of and \
                    difflib.SequenceMatcher(None, near, name).ratio() >= _SLIP and len(near) > 3:
                raise Error(f"{plan.function}: column {column!r} looks like a slip for the input {name!r}; say "
                            f"{name}={column!r}, or give {name} a value", function=plan.function, argument=name,
                            value=column)


def _outputs(record: Record, taken: set[str], outputs: Sequence[str] | None,
             renamed: dict[str, Output]) -> list[tuple[str, str]]:
    chosen: list[tuple[str, str]] = [(name, output.name) for name, output in renamed.items()]
    if outputs is not None:
        for wanted in outputs:
            output = record.find_output(wanted)
            if output is None:
                raise Error(f"{record.id}: there is no output {wanted!r}{meant(wanted, record.output_of)}",
                            function=record.id, value=wanted)
            chosen.append((output.name, output.name))
    elif not renamed:
        chosen = [(output.name, output.name) for output in record.outputs]
    return [(free_name(record, name, taken), output) for name, output in chosen]


def free_name(record: Record, name: str, taken: set[str]) -> str:
    """The name of a new column: where it is taken it bears the function's."""
    made = name if name not in taken else f"{record.id.lower()}_{name}"
    number = 2
    while made in taken:
        made, number = f"{record.id.lower()}_{name}_{number}", number + 1
    taken.add(made)
    return made


def make_plan(function: str, names: Sequence[str], given: Mapping[str, Any], *, outputs: Sequence[str] | None = None,
              keep: Sequence[str] | None = None, units: Mapping[str, str] | None = None,
              field_units: Mapping[str, str] | None = None, members: Mapping[str, Sequence[str]] | None = None,
              c6plus: Sequence[float] | None = None, defaults: str = "warn", messages: bool = True) -> Plan:
    """Finds where every input comes from; raises Error before anything is calculated."""
    from . import function as find

    record: Record = find(function).record
    if defaults not in ("warn", "allow", "refuse"):
        raise ValueError(f"defaults is \"warn\", \"allow\" or \"refuse\", not {defaults!r}")
    columns = _Columns(record, names, field_units or {}, members or {})
    for column, unit in (units or {}).items():
        found = columns.find(column)
        if found is None:
            raise Error(f"{record.id}: units: there is no column {column!r}{meant(column, columns.names)}",
                        function=record.id, value=column)
        columns.units[found] = unit
    inputs: dict[str, Any] = {}
    renamed: dict[str, Output] = {}
    for name, value in given.items():
        parameter = record.input_of.get(name)
        if parameter is not None:
            inputs[name] = _given(columns, parameter, value, c6plus)
            continue
        output = record.find_output(value) if isinstance(value, str) else None
        if output is None:
            raise Error(f"{record.id}: {name}={value!r}: {name!r} is no input and {value!r} no output of the function"
                        f"{meant(str(value), record.output_of) or meant(name, record.input_of)}", function=record.id,
                        argument=name, value=value)
        renamed[name] = output
    defaulted = {}
    for parameter in record.inputs:
        if parameter.name in inputs:
            continue
        inputs[parameter.name] = _found(columns, parameter, c6plus)
        if inputs[parameter.name] is not None:
            continue
        if parameter.required:
            raise Error(f"{record.id}: {parameter.name} is not given, and there is no column of this name",
                        function=record.id, argument=parameter.name, unit=parameter.unit)
        defaulted[parameter.name] = parameter.default
    kept = set(map(str, names if keep is None else keep))
    plan = Plan(record.id, {i.name: inputs[i.name] for i in record.inputs}, _outputs(record, kept, outputs, renamed),
                free_name(record, "status", kept), free_name(record, "message", kept) if messages else None, defaulted)
    _refuse_slips(columns, plan)
    if not plan.used():
        raise Error(f"{record.id}: no input comes from a column; the columns are "
                    f"{', '.join(map(repr, columns.names[:20]))}", function=record.id)
    if defaulted:
        from ._results import defaults_text

        said = f"{record.id}: defaults used in every row: {defaults_text(record, defaulted)}"
        if defaults == "refuse":
            raise Error(f"{record.id}: not given are {defaults_text(record, defaulted)}", function=record.id,
                        argument=next(iter(defaulted)))
        if defaults == "warn":
            warnings.warn(said, DefaultsWarning, stacklevel=4)
    return plan
