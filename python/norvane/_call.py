"""Functions of the catalogue as Python functions."""

from __future__ import annotations

import ctypes
import inspect
import math
from collections.abc import Mapping
from typing import Any

from . import _values
from ._errors import Error, meant, refused
from ._library import NO_OUTPUT, NOT_RUN, Column, Input, Record, bind, bind_batch, last_message, output_values
from ._results import Result, field, result_class

STEERING = ("errors", "threads")
# A signed 32-bit option, as the C interface passes it.
_WORD = 0xFFFFFFFF


def is_array(value: object) -> bool:
    """Whether a value stands for many rows. A pair such as (870, "psia") is one quantity, or an array with its unit."""
    if isinstance(value, (float, int, str)):
        return False
    if isinstance(value, tuple) and len(value) == 2 and isinstance(value[1], str):
        return is_array(value[0])
    if isinstance(value, (list, tuple, range)):
        return True
    dimensions = getattr(value, "ndim", None)
    if dimensions is not None:
        return dimensions > 0
    return hasattr(value, "__array__") or hasattr(value, "__arrow_c_array__") or hasattr(value, "__arrow_c_stream__")


def has_rows(parameter: Input, value: object) -> bool:
    """The same for an input that may be a list itself."""
    if not parameter.is_list:
        return is_array(value)
    if isinstance(value, Mapping):
        return any(is_array(amount) for amount in value.values())
    dimensions = getattr(value, "ndim", None)
    if dimensions is not None:
        return dimensions > 1
    return isinstance(value, (list, tuple)) and any(type(row) is not float and is_array(row) for row in value)


def unknown_input(record: Record, name: str) -> TypeError:
    listed = ", ".join(i.name for i in record.inputs)
    return TypeError(f"{record.id} has no input {name!r}"
                     f"{meant(name, record.input_of) or f'; its inputs are {listed}'}")


def not_given(record: Record, parameter: Input) -> Error:
    return Error(f"{record.id}: {parameter.name} is not given", function=record.id, argument=parameter.name,
                 limit=parameter.limits() or None, unit=parameter.unit)


class Single:
    """Single calls of one function."""

    def __init__(self, record: Record):
        self.record = record
        self.export = bind(record)
        self.result = result_class(record)

    def arguments(self, given: dict[str, Any]) -> tuple[list, dict[str, Any]]:
        """The C arguments, and the inputs that took their defaults."""
        values: list = []
        defaulted: dict[str, Any] = {}
        record = self.record
        for parameter in record.inputs:
            name = parameter.name
            if name in given:
                value = given[name]
                if parameter.is_list:
                    amounts = _values.cells(record, parameter, value)
                    values += [_values.double_array(amounts), len(amounts)]
                elif parameter.kind == "option":
                    values.append(_values.option(record, parameter, value) & _WORD)
                else:
                    values.append(_values.number(record, parameter, value))
            elif parameter.required:
                raise not_given(record, parameter)
            else:
                defaulted[name] = parameter.default
                if parameter.is_list:
                    values += [None, 0]
                else:
                    values.append(int(parameter.default) & _WORD if parameter.kind == "option" else parameter.default)
        return values, defaulted

    def run(self, values: list) -> tuple[int, list]:
        outputs = output_values(self.record)
        return self.export(*values, *map(ctypes.byref, outputs)), outputs

    def message(self, values: list) -> str:
        self.run(values)
        return last_message()

    def __call__(self, given: dict[str, Any], errors: str | None) -> Result:
        values, defaulted = self.arguments(given)
        status, outputs = self.run(values)
        record = self.record
        if status == 0:
            fields = {o.name: field(o, v.value) for o, v in zip(record.outputs, outputs)}
            return self.result(fields, 0, defaulted, lambda: self.message(values))
        message = last_message()
        if errors != "status":
            raise refused(record, status, message, given)
        return self.result(self.written(values), status, defaulted, None, message)

    def written(self, values: list) -> dict[str, Any]:
        """The outputs behind a status other than 0. A batch tells what the function wrote from what it did not."""
        record = self.record
        columns = (Column * max(len(record.inputs), 1))()
        given, alive = iter(values), []
        for column, parameter in zip(columns, record.inputs):
            numbers, cells = next(given), 1
            if parameter.is_list:
                cells = max(next(given), 1)
            else:
                number = numbers - (numbers >> 31 << 32) if parameter.kind == "option" else numbers
                numbers = (ctypes.c_double * 1)(number)
            alive.append(numbers)
            column.values, column.cells, column.cell_step = ctypes.cast(numbers, ctypes.c_void_p), cells, 1
        outputs = [ctypes.c_double(math.nan) for _ in record.outputs]
        targets = (ctypes.c_void_p * max(len(outputs), 1))(*map(ctypes.addressof, outputs))
        bind_batch(record)(1, columns, len(record.inputs), targets, len(outputs), ctypes.byref(ctypes.c_uint32()))
        numbers = {o.name: v.value for o, v in zip(record.outputs, outputs)}
        return {o.name: numbers[o.name] if o.kind == "number" else
                None if math.isnan(numbers[o.name]) else field(o, int(numbers[o.name])) for o in record.outputs}


def _docstring(record: Record) -> str:
    lines = [record.description or record.display, ""]
    if record.notes.strip():
        lines += [*record.notes.strip().splitlines(), ""]
    lines.append("Inputs:")
    for i in record.inputs:
        said = [part for part in (i.unit, i.limits(), None if i.default is None else f"default {i.default:.15g}") if part]
        if i.components:
            said.append("a mapping of component to amount, or 22 amounts")
        elif i.is_list:
            said.append(f"a list of {i.cells} numbers")
        text = i.description or i.display
        lines.append(f"    {i.name}: {text}" + (f" [{', '.join(said)}]" if said else ""))
        lines += [f"        {number}: {label}" for number, label in i.options.items()]
    lines += ["", "Outputs:"]
    for o in record.outputs:
        lines.append(f"    {o.name}: {o.description or o.display}" + (f" [{o.unit}]" if o.unit else ""))
        lines += [f"        {number}: {label}" for number, label in o.meanings.items()]
    lines += ["    status:", *(f"        {number}: {label}" for number, label in record.statuses.items())]
    lines += ["", "Values may carry a unit: \"870 psia\", (array, \"psia\"). Arrays of one broadcastable shape give arrays.",
              "errors=\"status\" answers with the status where errors=\"raise\" raises norvane.Error."]
    return "\n".join(lines)


def _signature(record: Record) -> inspect.Signature:
    kind = inspect.Parameter.KEYWORD_ONLY
    parameters = [inspect.Parameter(i.name, kind, default=inspect.Parameter.empty if i.required else i.default)
                  for i in record.inputs]
    parameters.append(inspect.Parameter("errors", kind, default=None))
    parameters.append(inspect.Parameter("threads", kind, default=1))
    return inspect.Signature(parameters, return_annotation=result_class(record))


def make_function(record: Record):
    """The Python function of a record."""
    single = Single(record)
    inputs = record.input_of

    def function(*, errors: str | None = None, threads: int = 1, **given):
        rows = False
        for name, value in given.items():
            parameter = inputs.get(name)
            if parameter is None:
                raise unknown_input(record, name)
            rows = rows or has_rows(parameter, value)
        if errors not in (None, "raise", "status"):
            raise ValueError(f"errors is \"raise\" or \"status\", not {errors!r}")
        if not rows:
            return single(given, errors)
        from . import _arrays

        return _arrays.call(single, given, errors, threads)

    function.__name__ = function.__qualname__ = record.id
    function.__module__ = "norvane"
    function.__doc__ = _docstring(record)
    function.__signature__ = _signature(record)  # type: ignore[attr-defined]
    function.record = record  # type: ignore[attr-defined]
    function.single = single  # type: ignore[attr-defined]
    return function
