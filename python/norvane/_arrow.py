"""Rows of Arrow record batches through the batch exports; columns of doubles are read where they lie."""

from __future__ import annotations

from typing import Any

from . import _values
from ._arrays import Batch, Prepared, batch_of, converted, row_message
from ._errors import Error, meant
from ._library import NOT_RUN, Input, Record
from ._plan import Gas, Plan, Source

try:
    import numpy as np
    import pyarrow as pa
    import pyarrow.compute as pc
except ImportError as missing:
    raise ImportError("norvane: tables need NumPy and PyArrow; pip install norvane[arrow]") from missing

UNIT = b"unit"


def field_units(schema: pa.Schema) -> dict[str, str]:
    """Units that the fields themselves tell."""
    return {field.name: field.metadata[UNIT].decode("utf-8", "replace")
            for field in schema if field.metadata and UNIT in field.metadata}


def members(schema: pa.Schema) -> dict[str, list[str]]:
    """The fields of the columns that are structures."""
    return {field.name: [inner.name for inner in field.type] for field in schema if pa.types.is_struct(field.type)}


def _is_numeric(kind: pa.DataType) -> bool:
    return pa.types.is_integer(kind) or pa.types.is_floating(kind) or pa.types.is_decimal(kind)


def _is_list(kind: pa.DataType) -> bool:
    return pa.types.is_list(kind) or pa.types.is_large_list(kind) or pa.types.is_fixed_size_list(kind)


def check_types(plan: Plan, schema: pa.Schema) -> None:
    """Refuses columns that cannot be what an input wants, before any row is calculated."""
    for name, value in plan.inputs.items():
        parameter = plan.record.input_of[name]
        sources = [value] if isinstance(value, Source) else (
            [source for _, source, _ in value.columns] if isinstance(value, Gas) else [])
        whole_list = parameter.is_list and isinstance(value, Source)
        for source in sources:
            kind = schema.field(source.column).type
            if source.member is not None:
                kind = kind.field(source.member).type
            if pa.types.is_dictionary(kind):
                kind = kind.value_type
            if not _fits(parameter, kind, whole_list):
                wanted = f"lists of {parameter.cells} numbers" if whole_list else "numbers"
                raise _values.wrong(plan.record, parameter, source.shown,
                                    f"column {source.shown!r} holds {kind}, where {wanted} are wanted")


def check_lists(plan: Plan, table: pa.Table) -> None:
    """Refuses a column of lists none of which has the right length, before any row is calculated."""
    for name, value in plan.inputs.items():
        parameter = plan.record.input_of[name]
        if not (parameter.is_list and isinstance(value, Source)) or pa.types.is_null(table.schema.field(value.column).type):
            continue
        lengths = pc.unique(pc.list_value_length(table.column(value.column))).drop_null().to_pylist()
        if lengths and parameter.cells not in lengths:
            raise _values.wrong(plan.record, parameter, value.shown, f"column {value.shown!r} holds lists of "
                                f"{lengths[0]}, where {parameter.cells} numbers are wanted")


def _fits(parameter: Input, kind: pa.DataType, whole_list: bool) -> bool:
    if pa.types.is_null(kind):
        return True
    if whole_list:
        if not _is_list(kind) or not (_is_numeric(kind.value_type) or pa.types.is_null(kind.value_type)):
            return False
        return not pa.types.is_fixed_size_list(kind) or kind.list_size == parameter.cells
    if _is_numeric(kind):
        return True
    text = pa.types.is_string(kind) or pa.types.is_large_string(kind) or pa.types.is_string_view(kind)
    return parameter.kind == "option" and (pa.types.is_boolean(kind) or (text and bool(parameter.options)))


class _Chunk:
    """The prepared inputs of one record batch, and the rows that cannot be calculated."""

    def __init__(self, plan: Plan, rows: int):
        self.plan = plan
        self.rows = rows
        self.prepared: list[Prepared] = []
        self.refused: list[tuple[Any, str]] = []  # rows as a mask, and why

    def refuse(self, mask, why: str) -> None:
        self.refused.append((mask, why))


def _doubles(array: pa.Array, parameter: Input):
    """The numbers of an array, as they lie where they are doubles; nulls are NaN. And which are null."""
    if pa.types.is_dictionary(array.type):
        array = array.dictionary_decode()
    if pa.types.is_string(array.type) or pa.types.is_large_string(array.type) or pa.types.is_string_view(array.type):
        array = _labels(array, parameter)
    null = np.asarray(array.is_null()) if array.null_count else None
    if pa.types.is_null(array.type):
        return np.full(len(array), np.nan), null
    if array.type != pa.float64():
        if pa.types.is_boolean(array.type):
            array = array.cast(pa.int8())
        array = array.cast(pa.float64(), safe=False)
    buffer = array.buffers()[1]
    values = np.empty(0) if buffer is None else np.frombuffer(buffer, np.float64)[array.offset : array.offset + len(array)]
    return (values if null is None else np.where(null, np.nan, values)), null


def _labels(array: pa.Array, parameter: Input) -> pa.Array:
    """Options by their labels as numbers; a text that is none is NaN, which the function refuses."""
    encoded = array.dictionary_encode()
    numbers = []
    for text in encoded.dictionary.to_pylist():
        number = parameter.option(text)
        numbers.append(float("nan") if number is None else float(number))
    return pa.DictionaryArray.from_arrays(encoded.indices, pa.array(numbers, pa.float64())).dictionary_decode()


def _column(batch: pa.RecordBatch, source: Source) -> pa.Array:
    array = batch.column(batch.schema.get_field_index(source.column))
    return array if source.member is None else pc.struct_field(array, source.member)


def _in_unit(parameter: Input, source: Source, values):
    if source.unit is None:
        return values
    values, problem = converted(values, source.unit, _values.target_unit(parameter) or "")
    if problem:
        raise Error(f"column {source.shown!r}: {problem}", argument=parameter.name)
    return values


def _number_column(chunk: _Chunk, batch: pa.RecordBatch, parameter: Input, source: Source) -> Prepared:
    values, null = _doubles(_column(batch, source), parameter)
    if null is not None:
        chunk.refuse(null, f"{parameter.name} is blank")
    return Prepared(_in_unit(parameter, source, values), 1)


def _gas_columns(chunk: _Chunk, batch: pa.RecordBatch, parameter: Input, gas: Gas) -> Prepared:
    amounts = np.zeros((parameter.cells, chunk.rows))
    for place, constant in gas.constants.items():
        amounts[place] = constant
    for place, source, share in gas.columns:
        values, null = _doubles(_column(batch, source), parameter)
        if null is not None:
            chunk.refuse(null, f"{parameter.name}: {parameter.components[place]} is blank")
        values = _in_unit(parameter, source, values)
        amounts[place] = values if share == 1.0 else values * share
    return Prepared(amounts, 1, parameter.cells, chunk.rows)


def _list_column(chunk: _Chunk, batch: pa.RecordBatch, parameter: Input, source: Source) -> Prepared:
    array = _column(batch, source)
    cells, rows = parameter.cells, chunk.rows
    null = np.asarray(array.is_null())
    if pa.types.is_null(array.type):
        chunk.refuse(null, f"{parameter.name} is blank")
        return Prepared(np.full(cells, np.nan), 0, cells, 1)
    if pa.types.is_fixed_size_list(array.type):
        starts = (np.arange(rows, dtype=np.int64) + array.offset) * cells
        lengths = np.full(rows, cells, dtype=np.int64)
    else:
        offsets = np.asarray(array.offsets).astype(np.int64, copy=False)
        starts, lengths = offsets[:-1], np.diff(offsets)
    lengths = np.where(null, cells, lengths)
    short = lengths != cells
    if null.any():
        chunk.refuse(null, f"{parameter.name} is blank")
    for length in np.unique(lengths[short]):
        chunk.refuse(short & (lengths == length),
                     f"{parameter.name}: a list of {length}, but {cells} numbers are wanted")
    flat, inner = _doubles(array.values, parameter)
    good = ~(short | null)
    if good.all() and (rows == 0 or (starts == starts[0] + cells * np.arange(rows)).all()):
        first = int(starts[0]) if rows else 0
        table = flat[first : first + rows * cells].reshape(rows, cells)
    else:
        table = np.full((rows, cells), np.nan)
        table[good] = flat[starts[good][:, None] + np.arange(cells)]
    if inner is not None:
        blank = np.isnan(table).any(axis=1) & good
        if blank.any():
            chunk.refuse(blank, f"{parameter.name}: an amount is blank or no number")
    table = _in_unit(parameter, source, table)
    return Prepared(table, cells, cells, 1)


def _prepare(plan: Plan, batch: pa.RecordBatch) -> _Chunk:
    chunk = _Chunk(plan, batch.num_rows)
    for parameter in plan.record.inputs:
        value = plan.inputs[parameter.name]
        if value is None:
            prepared = Prepared(None, 0, parameter.cells)
        elif isinstance(value, Source):
            read = _list_column if parameter.is_list else _number_column
            prepared = read(chunk, batch, parameter, value)
        elif isinstance(value, Gas):
            prepared = _gas_columns(chunk, batch, parameter, value)
        elif parameter.is_list:
            prepared = Prepared(np.array(value, dtype=np.float64), 0, parameter.cells, 1)
        else:
            prepared = Prepared(np.array(value, dtype=np.float64), 0)
        chunk.prepared.append(prepared)
    return chunk


def new_fields(plan: Plan) -> list[pa.Field]:
    """The columns that a plan adds, with their units."""
    fields = []
    for name, wanted in plan.outputs:
        output = plan.record.output_of[wanted]
        kind = pa.int32() if output.kind == "option" else pa.float64()
        fields.append(pa.field(name, kind, metadata={UNIT: output.unit.encode()} if output.unit else None))
    if plan.status is not None:
        fields.append(pa.field(plan.status, pa.int64()))
    if plan.message is not None:
        fields.append(pa.field(plan.message, pa.string()))
    return fields


def calculate(plan: Plan, batch: pa.RecordBatch, threads: int = 1) -> list[pa.Array]:
    """The new columns of a batch, in the order of new_fields()."""
    record: Record = plan.record
    rows = batch.num_rows
    chunk = _prepare(plan, batch)
    wanted = {output for _, output in plan.outputs}
    values = {o.name: np.empty(rows) for o in record.outputs if o.name in wanted}
    statuses = np.empty(rows, dtype=np.uint32)
    if rows:
        runner: Batch = batch_of(record)
        runner.run(rows, chunk.prepared, [values.get(o.name) for o in record.outputs], statuses, threads)
    own: dict[int, str] = {}
    for mask, why in chunk.refused:
        statuses[mask] = NOT_RUN
        for column in values.values():
            column[mask] = np.nan
        if plan.message is not None:
            for row in np.flatnonzero(mask).tolist():
                own.setdefault(row, f"{record.id}: {why}")
    failed = np.flatnonzero(statuses)
    arrays = []
    for name, output in plan.outputs:
        column = values[output]
        if record.output_of[output].kind == "option":
            arrays.append(_codes(column, failed.size > 0))
        elif failed.size:
            arrays.append(pa.array(column, mask=np.isnan(column)))
        else:
            arrays.append(pa.array(column))
    if plan.status is not None:
        arrays.append(pa.array(statuses.astype(np.int64)))
    if plan.message is not None:
        arrays.append(_messages(record, chunk, failed, own, rows))
    return arrays


def _codes(column, some_failed: bool) -> pa.Array:
    if not some_failed:
        return pa.array(column.astype(np.int32))
    blank = np.isnan(column)
    return pa.array(np.where(blank, 0, column).astype(np.int32), mask=blank)


def _messages(record: Record, chunk: _Chunk, failed, own: dict[int, str], rows: int) -> pa.Array:
    if not failed.size:
        return pa.nulls(rows, pa.string())
    from . import function

    single = function(record.id).single
    texts: list[str | None] = [None] * rows
    for row in failed.tolist():
        texts[row] = own.get(row) or row_message(single, chunk.prepared, row)
    return pa.array(texts, pa.string())


def record_batches(table: pa.Table):
    """The rows of a table as record batches, without copies."""
    return table.to_batches() or [pa.RecordBatch.from_arrays([pa.array([], field.type) for field in table.schema],
                                                             schema=table.schema)]


def find_column(names, wanted: str) -> str:
    if wanted not in names:
        raise Error(f"there is no column {wanted!r}{meant(wanted, names)}", value=wanted)
    return wanted
