"""The functions of the group "Math" as SQL functions of DuckDB.

    connection = duckdb.connect()
    norvane.duckdb.register(connection)
    connection.sql("select ts, aga8_m(p, t, gas).z from hours")
"""

from __future__ import annotations

import threading
import warnings
from collections.abc import Iterable
from typing import Any

from . import _arrow, _plan
from ._errors import DefaultsWarning, Error
from ._library import Record, records
from ._results import defaults_text

import pyarrow as pa  # _arrow has said what is missing

_SQL = {"number": "DOUBLE", "option": "INTEGER"}


def register(connection: Any, functions: Iterable[str] | None = None, *, prefix: str = "",
             messages: bool = True) -> list[str]:
    """Makes every function of the group "Math", or those that are named, an SQL function; answers with their names.

    aga8_m(pressure, temperature, composition, ...) takes its inputs in the order of the record, as many as are given;
    aga8_m({'pressure': p, 'composition': gas}) takes them by name. A composition is a list of 22 numbers or a structure
    of components. The others take their defaults, which a DefaultsWarning names once a function. The answer is a
    structure: the outputs, "status", and "message" (messages=False leaves it out). A row with a null or without a
    result has null outputs.
    """
    import duckdb
    from duckdb import func

    chosen = [r for r in records.values() if r.group == "Math"] if functions is None else [
        _find(name) for name in functions]
    made = []
    for record in chosen:
        answer: dict[str, Any] = {o.name: _SQL[o.kind] for o in record.outputs}
        answer["status"] = "BIGINT"
        if messages:
            answer["message"] = "VARCHAR"
        name = prefix + record.id.lower()
        try:
            connection.remove_function(name)
        except duckdb.Error:
            pass
        connection.create_function(name, _Function(record, messages).of_columns, None, duckdb.struct_type(answer),
                                   type=func.PythonUDFType.ARROW, null_handling=func.FunctionNullHandling.SPECIAL)
        made.append(name)
    return made


def _find(name: str) -> Record:
    from . import function

    return function(name).record


class _Function:
    """A function of SQL: columns of a vector of rows in, a column of structures out."""

    def __init__(self, record: Record, messages: bool):
        self.record = record
        self.messages = messages
        self.plans: dict[tuple, _plan.Plan] = {}
        self.lock = threading.Lock()

    def of_columns(self, *columns):
        arrays = [c.combine_chunks() if isinstance(c, pa.ChunkedArray) else c for c in columns]
        arrays = [a.chunk(0) if isinstance(a, pa.ChunkedArray) else a for a in arrays]
        if not arrays:
            raise Error(f"{self.record.id}: no input is given", function=self.record.id)
        names = [i.name for i in self.record.inputs]
        if len(arrays) == 1 and pa.types.is_struct(arrays[0].type) and \
                all(field.name.lower() in names for field in arrays[0].type):
            whole = arrays[0]
            names = [field.name.lower() for field in whole.type]
            arrays = whole.flatten()
        elif len(arrays) > len(names):
            raise Error(f"{self.record.id}: {len(arrays)} inputs are given, but it has {len(names)}: "
                        f"{', '.join(names)}", function=self.record.id)
        rows = pa.RecordBatch.from_arrays(arrays, names=names[: len(arrays)])
        new = _arrow.calculate(self._plan(rows.schema), rows)
        return pa.StructArray.from_arrays(new, fields=_arrow.new_fields(self._plan(rows.schema)))

    def _plan(self, schema: pa.Schema) -> _plan.Plan:
        key = tuple((field.name, str(field.type)) for field in schema)
        with self.lock:
            plan = self.plans.get(key)
            if plan is None:
                plan = _plan.make_plan(self.record.id, schema.names, {n: n for n in schema.names},
                                       members=_arrow.members(schema), keep=(), defaults="allow",
                                       messages=self.messages)
                _arrow.check_types(plan, schema)
                if plan.defaulted:
                    warnings.warn(f"{self.record.id}: defaults used in every row: "
                                  f"{defaults_text(self.record, plan.defaulted)}", DefaultsWarning, stacklevel=2)
                self.plans[key] = plan
        return plan
