"""The functions on Spark: columns and data frames, over Arrow batches in the workers.

The package has to be installed where the workers run. A function keeps nothing from one row to the next, so a task that
is run again, after a worker was lost, gives the same rows bit for bit.
"""

from __future__ import annotations

from collections.abc import Iterator, Sequence
from typing import Any

from . import _arrow, _plan
from ._errors import Error

import pyarrow as pa  # _arrow has said what is missing


def _plan_of(frame: Any, function_name: str, given: dict[str, Any], **options: Any) -> _plan.Plan:
    from pyspark.sql.pandas.types import to_arrow_schema

    schema = to_arrow_schema(frame.schema)
    units = {f.name: f.metadata["unit"] for f in frame.schema.fields if isinstance(f.metadata.get("unit"), str)}
    plan = _plan.make_plan(function_name, schema.names, given, field_units=units, members=_arrow.members(schema),
                           **options)
    _arrow.check_types(plan, schema)
    return plan


def _spark_fields(plan: _plan.Plan) -> list:
    from pyspark.sql.pandas.types import from_arrow_type
    from pyspark.sql.types import StructField

    return [StructField(f.name, from_arrow_type(f.type), True,
                        {"unit": f.metadata[_arrow.UNIT].decode()} if f.metadata else {}) for f in _arrow.new_fields(plan)]


def apply(frame: Any, function_name: str, /, *, outputs: Sequence[str] | None = None,
          keep: Sequence[str] | None = None, units: dict[str, str] | None = None, c6plus: Sequence[float] | None = None,
          defaults: str = "warn", messages: bool = True, **inputs: Any) -> Any:
    """Calculates a function for every row of a data frame: norvane.apply for Spark, lazy as Spark is.

    What is wrong with a column is an Error here and now, not in a task.
    """
    from pyspark.sql.types import StructType

    if keep is not None:
        for name in keep:
            _arrow.find_column(frame.columns, name)
    plan = _plan_of(frame, function_name, inputs, outputs=outputs, keep=keep, units=units, c6plus=c6plus,
                    defaults=defaults, messages=messages)
    kept = list(frame.columns) if keep is None else list(keep)
    read = list(dict.fromkeys([*kept, *plan.used()]))

    def calculate(batches: Iterator[pa.RecordBatch]) -> Iterator[pa.RecordBatch]:
        for rows in batches:
            new = _arrow.calculate(plan, rows.select(plan.used()))
            columns = [rows.column(rows.schema.get_field_index(name)) for name in kept]
            yield pa.RecordBatch.from_arrays([*columns, *new], names=[*kept, *plan.new()])

    wanted = StructType([frame.schema[name] for name in kept] + _spark_fields(plan))
    return frame.select(*[f"`{name}`" for name in read]).mapInArrow(calculate, wanted)


def column(frame: Any, function_name: str, /, *, output: str | None = None, units: dict[str, str] | None = None,
           c6plus: Sequence[float] | None = None, defaults: str = "warn", **inputs: Any) -> Any:
    """A column of a data frame: the answers of a function as structures, or one output of them alone.

        frame.withColumn("z", norvane.spark.column(frame, "AGA8_M", output="z", pressure="p"))
    """
    from pyspark.sql import functions as F
    from pyspark.sql.types import StructField, StructType

    plan = _plan_of(frame, function_name, inputs, units=units, keep=(), c6plus=c6plus, defaults=defaults)
    # A structure's fields carry no units: Spark compares them with those of the answer, without metadata.
    fields = [StructField(f.name, f.dataType) for f in _spark_fields(plan)]
    bare = [f.remove_metadata() for f in _arrow.new_fields(plan)]
    used = plan.used()

    @F.arrow_udf(StructType(fields))
    def calculate(*columns: pa.Array) -> pa.Array:
        rows = pa.RecordBatch.from_arrays(list(columns), names=used)
        return pa.StructArray.from_arrays(_arrow.calculate(plan, rows), fields=bare)

    answers = calculate(*[frame[f"`{name}`"] for name in used])
    if output is None:
        return answers
    wanted = plan.record.find_output(output)
    if wanted is None:
        from ._errors import meant

        raise Error(f"{plan.function}: there is no output {output!r}{meant(output, plan.record.output_of)}",
                    function=plan.function, value=output)
    return answers[wanted.name].alias(wanted.name)
