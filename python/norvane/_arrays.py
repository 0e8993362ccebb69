"""Arrays of any broadcastable shape, by the batch exports: no loop over rows on this side."""

from __future__ import annotations

import ctypes
from collections.abc import Mapping
from concurrent.futures import ThreadPoolExecutor
from typing import Any

from . import _values
from ._errors import Error, refused
from ._library import NOT_RUN, POINTER_TO_DOUBLE, Column, Input, Record, bind_batch, last_message

try:
    import numpy as np
except ImportError as missing:  # single calls do without
    raise ImportError("norvane: arrays need NumPy; pip install norvane[numpy]") from missing

REFUSED = ctypes.c_size_t(-1).value
# Rows of one call: small enough for outputs to stay in the cache, large enough that calls cost nothing.
_SHARE = 8192


def doubles(record: Record, parameter: Input, value: Any):
    """An array of numbers as doubles; without a copy where it is one."""
    unit = None
    if isinstance(value, tuple) and len(value) == 2 and isinstance(value[1], str):
        value, unit = value
    if isinstance(value, (list, tuple)) and any(isinstance(v, str) or v is None for v in value):
        value = [np.nan if v is None else _values.number(record, parameter, v) for v in value]
    try:
        array = value if isinstance(value, np.ndarray) else np.asarray(value)
    except ValueError:
        raise _values.wrong(record, parameter, value, "its rows are not of one length") from None
    kind = array.dtype.kind
    if kind not in "fiu" and not (kind == "b" and parameter.kind == "option"):
        raise _values.wrong(record, parameter, value, f"an array of {array.dtype} holds no numbers")
    masked = np.ma.getmaskarray(array) if isinstance(array, np.ma.MaskedArray) else None
    array = np.asarray(array.data if masked is not None else array)
    if array.dtype != np.float64:
        array = array.astype(np.float64)
    if masked is not None and masked.any():
        array = np.where(masked, np.nan, array)
    if unit is not None:
        to = _values.target_unit(parameter)
        if to is None:
            raise _values.wrong(record, parameter, unit, "the input has no unit")
        array, problem = converted(array, unit, to)
        if problem:
            raise _values.wrong(record, parameter, unit, problem)
    return array


def converted(value: Any, unit: str, to: str):
    """The numbers in another unit, and what is wrong with the units."""
    array = np.array(value, dtype=np.float64, order="C")
    problem = _values.convert_in_place(array.ctypes.data_as(POINTER_TO_DOUBLE), array.size, unit, to)
    return array, problem


def _steps(array, shape: tuple[int, ...], trailing: int):
    """The array so that its rows lie one step apart, and that step in numbers; `trailing` axes belong to the row."""
    rows = array.shape[: array.ndim - trailing]
    if not rows or all(n == 1 for n in rows):
        return np.ascontiguousarray(array.reshape(array.shape[array.ndim - trailing :])), 0
    if rows == shape:
        if len(rows) == 1 and array.strides[0] > 0 and array.strides[0] % 8 == 0 and array.flags.aligned and (
                trailing == 0 or (array.strides[1] > 0 and array.strides[1] % 8 == 0)):
            return array, array.strides[0] // 8
        array = np.ascontiguousarray(array)
    else:
        array = np.ascontiguousarray(np.broadcast_to(array, shape + array.shape[array.ndim - trailing :]))
    return array, int(np.prod(array.shape[array.ndim - trailing :], dtype=np.int64)) if trailing else 1


class Prepared:
    """An input as the batch takes it, and what must live as long."""

    __slots__ = ("holder", "address", "row_step", "cells", "cell_step")

    def __init__(self, holder: Any, row_step: int, cells: int = 1, cell_step: int = 1):
        self.holder = holder
        self.address = None if holder is None else holder.ctypes.data
        self.row_step = row_step
        self.cells = cells
        self.cell_step = cell_step

    def column(self, first: int) -> Column:
        address = None if self.address is None else self.address + 8 * first * self.row_step
        return Column(address, self.row_step, self.cells, self.cell_step)

    def of_row(self, row: int) -> list[float]:
        pointer = ctypes.cast(self.address + 8 * row * self.row_step, POINTER_TO_DOUBLE)
        return [pointer[i * self.cell_step] for i in range(self.cells)]


class Batch:
    """The batch export of one function."""

    def __init__(self, record: Record):
        self.record = record
        self.export = bind_batch(record)

    def run(self, rows: int, prepared: list[Prepared], outputs: list, statuses, threads: int = 1) -> None:
        """Calculates every row. `outputs` holds an array of doubles for each output that is wanted, else None."""
        shares = [(0, rows)]
        if threads > 1 and rows > _SHARE:
            share = max(_SHARE // 8, min(_SHARE, -(-rows // threads)))
            shares = [(first, min(first + share, rows)) for first in range(0, rows, share)]
        if len(shares) == 1:
            self._run(0, rows, prepared, outputs, statuses)
            return
        with ThreadPoolExecutor(threads) as pool:
            for done in [pool.submit(self._run, a, b, prepared, outputs, statuses) for a, b in shares]:
                done.result()

    def _run(self, first: int, last: int, prepared: list[Prepared], outputs: list, statuses) -> None:
        columns = (Column * max(len(prepared), 1))(*[p.column(first) for p in prepared])
        targets = (ctypes.c_void_p * max(len(outputs), 1))(
            *[None if o is None else o.ctypes.data + 8 * first for o in outputs])
        bad = self.export(last - first, columns, len(prepared), targets, len(outputs), statuses.ctypes.data + 4 * first)
        if bad == REFUSED:
            raise Error(last_message() or f"{self.record.id}: the batch is refused", function=self.record.id)


_batches: dict[str, Batch] = {}


def batch_of(record: Record) -> Batch:
    made = _batches.get(record.id)
    if made is None:
        made = _batches[record.id] = Batch(record)
    return made


def _broadcast(record: Record, shapes: dict[str, tuple[int, ...]]) -> tuple[int, ...]:
    try:
        return np.broadcast_shapes(*shapes.values())
    except ValueError:
        said = ", ".join(f"{name} {shape}" for name, shape in shapes.items() if shape)
        raise Error(f"{record.id}: these shapes do not go together: {said}", function=record.id) from None


def _scalar(record: Record, parameter: Input, value: Any):
    if parameter.kind == "option":
        return float(_values.option(record, parameter, value))
    return _values.number(record, parameter, value)


def _read(record: Record, parameter: Input, value: Any) -> tuple[Any, tuple[int, ...]]:
    """An array, or the arrays of a gas by place, with the shape of its rows."""
    from ._call import is_array

    if not parameter.is_list:
        array = doubles(record, parameter, value) if is_array(value) else np.array(_scalar(record, parameter, value))
        return array, array.shape
    if isinstance(value, Mapping):
        parts: dict[int, Any] = {}
        shapes = {}
        for place, name, amount in _values.named_cells(record, parameter, value):
            part = doubles(record, parameter, amount) if is_array(amount) else np.array(
                _values.number(record, parameter, amount))
            parts[place] = part
            shapes[name] = part.shape
        return parts, _broadcast(record, shapes)
    array = doubles(record, parameter, value)
    if array.ndim == 0 or array.shape[-1] != parameter.cells:
        raise _values.wrong(record, parameter, value, f"an array of shape {array.shape}, but the last axis has to be "
                                                      f"of {parameter.cells} numbers")
    return array, array.shape[:-1]


def _prepare(parameter: Input, value: Any, own: tuple[int, ...], shape: tuple[int, ...]) -> Prepared:
    if not parameter.is_list:
        array, step = _steps(value, shape, 0)
        return Prepared(array, step)
    if isinstance(value, dict):
        rows = int(np.prod(own, dtype=np.int64))
        if rows == 1:
            amounts = np.zeros(parameter.cells)
            for place, part in value.items():
                amounts[place] = part.reshape(())
            return Prepared(amounts, 0, parameter.cells, 1)
        amounts = np.zeros((parameter.cells, *shape))
        for place, part in value.items():
            amounts[place] = part
        return Prepared(amounts, 1, parameter.cells, int(np.prod(shape, dtype=np.int64)))
    array, step = _steps(value, shape, 1)
    return Prepared(array, step, parameter.cells, array.strides[-1] // 8)


def call(single, given: dict[str, Any], errors: str | None, threads: int):
    """Many calls at once: arrays in, arrays out."""
    from ._call import not_given

    record: Record = single.record
    if not isinstance(threads, int) or threads < 1:
        raise ValueError(f"threads is a whole number above 0, not {threads!r}")
    read: dict[str, tuple[Any, tuple[int, ...]]] = {}
    defaulted: dict[str, Any] = {}
    for parameter in record.inputs:
        if parameter.name in given:
            read[parameter.name] = _read(record, parameter, given[parameter.name])
        elif parameter.required:
            raise not_given(record, parameter)
        else:
            defaulted[parameter.name] = parameter.default
    shape = _broadcast(record, {name: own for name, (_, own) in read.items()})
    rows = int(np.prod(shape, dtype=np.int64))
    prepared = []
    for parameter in record.inputs:
        if parameter.name in read:
            prepared.append(_prepare(parameter, *read[parameter.name], shape))
        else:
            prepared.append(Prepared(None, 0, parameter.cells))
    values = np.empty((len(record.outputs), rows))
    statuses = np.empty(rows, dtype=np.uint32)
    if rows:
        batch_of(record).run(rows, prepared, list(values), statuses, threads)

    def message_at(row: int) -> str:
        return row_message(single, prepared, row)

    if errors == "raise" and statuses.any():
        row = int(np.flatnonzero(statuses)[0])
        error = refused(record, int(statuses[row]), message_at(row), {})
        error.args = (f"row {row}: {error.message}",)
        raise error
    fields = {o.name: v.reshape(shape) for o, v in zip(record.outputs, values)}
    return ArrayTell(single, prepared).result(fields, statuses.reshape(shape), defaulted)


def row_message(single, prepared: list[Prepared], row: int) -> str:
    """What there is to say about one row of a batch, by calculating it again."""
    values: list = []
    for parameter, column in zip(single.record.inputs, prepared):
        if column.address is None:
            if parameter.is_list:
                values += [None, 0]
            else:
                values.append(int(parameter.default) & 0xFFFFFFFF if parameter.kind == "option" else parameter.default)
            continue
        numbers = column.of_row(row)
        if parameter.is_list:
            values += [_values.double_array(numbers), len(numbers)]
        elif parameter.kind == "option":
            number = numbers[0]
            if number != number or number != int(number) or not -2147483648 <= number <= 2147483647:
                return f"{single.record.id}: {parameter.name} ({number:.15g}) is not a whole number"
            values.append(int(number) & 0xFFFFFFFF)
        else:
            values.append(numbers[0])
    return single.message(values)


class ArrayTell:
    """Messages of the rows of a batch."""

    def __init__(self, single, prepared: list[Prepared]):
        self.single = single
        self.prepared = prepared

    def result(self, fields, statuses, defaulted):
        result = self.single.result(fields, statuses, defaulted, lambda: self.summary(statuses))
        result._at = lambda index: row_message(self.single, self.prepared,
                                               int(np.ravel_multi_index(index, statuses.shape))
                                               if isinstance(index, tuple) else int(index))
        return result

    def summary(self, statuses) -> str:
        bad = np.flatnonzero(statuses)
        if bad.size == 0:
            return ""
        first = int(bad[0])
        return (f"{bad.size} of {statuses.size} rows have no result; the first, row {first}: "
                f"{row_message(self.single, self.prepared, first)}")
