"""A function for every row of a pandas, Polars or Arrow table."""

from __future__ import annotations

import sys
from collections.abc import Sequence
from typing import Any

from . import _arrow
from ._errors import Error
from ._plan import Plan, make_plan

import pyarrow as pa  # _arrow has said what is missing


def apply(table: Any, function_name: str, /, *, outputs: Sequence[str] | None = None,
          keep: Sequence[str] | None = None, units: dict[str, str] | None = None, c6plus: Sequence[float] | None = None,
          defaults: str = "warn", messages: bool = True, threads: int = 1, **inputs: Any) -> Any:
    """Calculates a function for every row and answers with a table of the same kind that has the outputs behind it.

    An input comes from the column of its name; "p [psia]" tells the unit of its numbers, as do units={"p": "psia"} and
    the metadata "unit" of an Arrow field. A gas comes from a column of lists of 22, a column of structures, or the
    columns of its components. What is called otherwise is said: pressure="p", or pressure=("p", "psia"); a value that
    is no column is that of every row: edition=2017, temperature="20 °C". An input with neither takes its default, and a
    DefaultsWarning names it (defaults="allow": silently; defaults="refuse": an Error).

    new="output" adds that output alone under a name of its own; outputs=[...] some outputs, keep=[...] the columns that
    are passed on. A row that has no result has null outputs, its status, and the reason in "message"
    (messages=False leaves that column out). What is wrong with a whole column is an Error before the first row.
    """
    if not isinstance(threads, int) or isinstance(threads, bool) or threads < 1:
        raise ValueError(f"threads is a whole number above 0, not {threads!r}")
    adapter = _adapter(table)
    schema = adapter.schema()
    if keep is not None:
        for name in keep:
            _arrow.find_column(schema.names, name)
    plan = make_plan(function_name, schema.names, inputs, outputs=outputs, keep=keep, units=units,
                     field_units=_arrow.field_units(schema), members=_arrow.members(schema), c6plus=c6plus,
                     defaults=defaults, messages=messages)
    _arrow.check_types(plan, schema)
    return adapter.with_columns(_new_columns(plan, adapter.read(plan.used()), threads), keep)


def _new_columns(plan: Plan, table: pa.Table, threads: int) -> pa.Table:
    _arrow.check_lists(plan, table)
    fields = _arrow.new_fields(plan)
    parts = [_arrow.calculate(plan, batch, threads) for batch in _arrow.record_batches(table)]
    return pa.table([pa.chunked_array([part[i] for part in parts], field.type) for i, field in enumerate(fields)],
                    schema=pa.schema(fields))


class _Arrow:
    """A pyarrow Table or RecordBatch, and whatever hands its rows out as an Arrow stream."""

    def __init__(self, table: Any):
        self.batch = isinstance(table, pa.RecordBatch)
        self.table = pa.Table.from_batches([table]) if self.batch else (
            table if isinstance(table, pa.Table) else pa.table(table))

    def schema(self) -> pa.Schema:
        return self.table.schema

    def read(self, names: list[str]) -> pa.Table:
        return self.table.select(names)

    def with_columns(self, new: pa.Table, keep: Sequence[str] | None) -> Any:
        table = self.table if keep is None else self.table.select(list(keep))
        for i, field in enumerate(new.schema):
            table = table.append_column(field, new.column(i))
        return table.combine_chunks().to_batches()[0] if self.batch and table.num_rows else (
            pa.RecordBatch.from_arrays([c.combine_chunks() for c in table.columns], schema=table.schema)
            if self.batch else table)


class _Pandas:
    def __init__(self, frame: Any):
        self.frame = frame
        self.names = [str(name) for name in frame.columns]
        if len(set(self.names)) != len(self.names):
            raise Error("two columns of the table bear one name")

    def schema(self) -> pa.Schema:
        return pa.schema([pa.field(name, self._array(i, 0).type) for i, name in enumerate(self.names)])

    def _array(self, i: int, rows: int | None = None) -> pa.Array:
        series = self.frame.iloc[:, i]
        if rows is not None and series.dtype != object:
            series = series.iloc[:rows]
        try:
            # NaN stays a number that is none: only what pandas itself calls missing is null.
            array = pa.array(series, from_pandas=series.dtype.kind != "f" if hasattr(series.dtype, "kind") else True)
        except (pa.ArrowInvalid, pa.ArrowTypeError, pa.ArrowNotImplementedError):
            array = pa.array([], pa.string())  # mixed: no numbers
        return array.combine_chunks() if isinstance(array, pa.ChunkedArray) else array

    def read(self, names: list[str]) -> pa.Table:
        return pa.table([self._array(self.names.index(name)) for name in names], names=names)

    def with_columns(self, new: pa.Table, keep: Sequence[str] | None) -> Any:
        import pandas as pd

        frame = self.frame if keep is None else self.frame[[self.frame.columns[self.names.index(k)] for k in keep]]
        made = {}
        for i, field in enumerate(new.schema):
            column = new.column(i)
            if pa.types.is_int32(field.type):
                made[field.name] = pd.array(column.to_pylist() if column.null_count else column.to_numpy(), dtype="Int32")
            else:
                made[field.name] = column.to_pandas().to_numpy()
        return pd.concat([frame, pd.DataFrame(made, index=frame.index)], axis=1)


class _Polars:
    def __init__(self, frame: Any):
        import polars as pl

        if not isinstance(frame, pl.DataFrame):
            raise Error(f"a Polars {type(frame).__name__} has no rows yet; collect() it first")
        self.pl = pl
        self.frame = frame

    def schema(self) -> pa.Schema:
        return pa.table(self.frame.head(0)).schema

    def read(self, names: list[str]) -> pa.Table:
        return pa.table(self.frame.select(names))

    def with_columns(self, new: pa.Table, keep: Sequence[str] | None) -> Any:
        frame = self.frame if keep is None else self.frame.select(list(keep))
        return frame.hstack(self.pl.from_arrow(new))


def _adapter(table: Any):
    module = type(table).__module__.split(".")[0]
    if module == "pandas" and "pandas" in sys.modules and isinstance(table, sys.modules["pandas"].DataFrame):
        return _Pandas(table)
    if module == "polars":
        return _Polars(table)
    if isinstance(table, (pa.Table, pa.RecordBatch)) or hasattr(table, "__arrow_c_stream__"):
        return _Arrow(table)
    raise Error(f"a {type(table).__name__} is no table; pandas, Polars and Arrow tables are")
