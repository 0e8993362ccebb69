"""python -m norvane: a function for every row of a Parquet file."""

from __future__ import annotations

import argparse
import os
import secrets
import sys
import time
import warnings
from pathlib import Path

from . import __version__
from ._errors import Error

GOOD, NO_RESULT, WRONG_USE, NOT_WRITTEN = 0, 1, 2, 3


class Progress:
    """A line on a terminal that tells how far it is."""

    def __init__(self, total: int, shown: bool):
        self.total, self.shown, self.done = total, shown, 0
        self.start = self.last = time.monotonic()

    def add(self, rows: int) -> None:
        self.done += rows
        now = time.monotonic()
        if not self.shown or (now - self.last < 0.1 and self.done < self.total):
            return
        self.last = now
        share = self.done / self.total if self.total else 1.0
        speed = self.done / max(now - self.start, 1e-9)
        left = (self.total - self.done) / speed if speed else 0.0
        bar = "#" * int(30 * share)
        sys.stderr.write(f"\r[{bar:<30}] {share:4.0%}  {self.done:,} of {self.total:,} rows, {speed:,.0f} rows/s, "
                         f"{left:,.0f} s left ")
        sys.stderr.flush()

    def end(self) -> None:
        if self.shown:
            sys.stderr.write("\r" + " " * 100 + "\r")
            sys.stderr.flush()


def parser() -> argparse.ArgumentParser:
    top = argparse.ArgumentParser(prog="python -m norvane", description="Calculations for flow measurement.")
    top.add_argument("--version", action="version", version=f"norvane {__version__}")
    commands = top.add_subparsers(dest="command", required=True)
    batch = commands.add_parser("batch", help="calculate a function for every row of a Parquet file")
    batch.add_argument("function", help="for example AGA8_M")
    batch.add_argument("input", type=Path, help="Parquet file")
    batch.add_argument("output", type=Path, help="Parquet file; it appears when it is complete, or not at all")
    batch.add_argument("values", nargs="*", metavar="key=value", help="an input's column, or its value in every row; "
                       "new=output names an output's column")
    batch.add_argument("--outputs", metavar="A,B", help="these outputs only")
    batch.add_argument("--keep", metavar="A,B", help="pass these columns on only")
    batch.add_argument("--unit", action="append", default=[], metavar="COLUMN=UNIT", help="unit of a column")
    batch.add_argument("--c6plus", metavar="47,36,17", help="shares of an amount of C6+")
    batch.add_argument("--no-defaults", action="store_true", help="refuse to calculate with defaults")
    batch.add_argument("--no-messages", action="store_true", help="no column of messages")
    batch.add_argument("--strict", action="store_true", help="end with 1 when a row has no result")
    batch.add_argument("--threads", type=int, default=len(os.sched_getaffinity(0)) if hasattr(os, "sched_getaffinity")
                       else os.cpu_count() or 1, help="default: all cores")
    batch.add_argument("--batch-rows", type=int, default=65536, metavar="N", help="rows in memory at a time")
    shown = batch.add_mutually_exclusive_group()
    shown.add_argument("--progress", action="store_true", default=None, help="show progress (default on a terminal)")
    shown.add_argument("--quiet", action="store_true", help="show nothing but errors")
    return top


def split(assignment: str, what: str) -> tuple[str, str]:
    key, equals, value = assignment.partition("=")
    if not equals or not key.strip():
        raise Error(f"{assignment!r} is not of the form {what}")
    return key.strip(), value


def listed(text: str | None) -> list[str] | None:
    return None if text is None else [name.strip() for name in text.split(",") if name.strip()]


def assignments(values: list[str], what: str) -> dict[str, str]:
    given: dict[str, str] = {}
    for assignment in values:
        key, value = split(assignment, what)
        if key in given:
            raise Error(f"{key} is given twice")
        given[key] = value
    return given


def inputs_of(record, values: list[str]) -> dict:
    """Inputs by their keys; the amounts of a gas also by its components."""
    from ._library import identifier

    inputs: dict = {}
    gas: dict = {}
    for key, value in assignments(values, "key=value").items():
        name = identifier(key)
        if name not in record.input_of and record.gas is not None and record.gas.component(key) is not None:
            gas[key] = value
        elif name in inputs:
            raise Error(f"{key} is given twice")
        else:
            inputs[name if name in record.input_of else key] = value
    if gas:
        if record.gas.name in inputs:
            raise Error(f"{record.gas.name} is given, and so are components of it")
        inputs[record.gas.name] = gas
    return inputs


def batch(options: argparse.Namespace) -> int:
    from . import _arrow, function
    from ._plan import make_plan

    import pyarrow as pa
    import pyarrow.parquet as pq

    if options.threads < 1 or options.batch_rows < 1:
        raise Error("--threads and --batch-rows are numbers above 0")
    record = function(options.function).record
    if options.output.exists() and options.input.exists() and os.path.samefile(options.input, options.output):
        raise Error(f"{options.output} is the input itself; name another file for the output")
    try:
        source = pq.ParquetFile(options.input)
    except pa.ArrowInvalid as error:
        raise Error(f"{options.input} is no Parquet file ({str(error).splitlines()[0]})") from None
    with source:
        schema = source.schema_arrow
        keep = listed(options.keep)
        for name in keep or ():
            _arrow.find_column(schema.names, name)
        c6plus = None if options.c6plus is None else [float(share) for share in options.c6plus.split(",")]
        plan = make_plan(record.id, schema.names, inputs_of(record, options.values), outputs=listed(options.outputs),
                         keep=keep, units=assignments(options.unit, "COLUMN=UNIT"),
                         field_units=_arrow.field_units(schema), members=_arrow.members(schema), c6plus=c6plus,
                         defaults="refuse" if options.no_defaults else "warn", messages=not options.no_messages)
        _arrow.check_types(plan, schema)
        return write(options, source, schema, keep, plan)


def write(options: argparse.Namespace, source, schema, keep: list[str] | None, plan) -> int:
    """Row by row into a file beside the output, which takes its name when it is complete."""
    from . import _arrow

    import pyarrow as pa
    import pyarrow.parquet as pq

    kept = schema.names if keep is None else keep
    wanted = pa.schema([schema.field(name) for name in kept] + _arrow.new_fields(plan), metadata=schema.metadata)
    read = list(dict.fromkeys([*kept, *plan.used()]))
    total = source.metadata.num_rows
    shown = bool(options.progress) or (options.progress is None and not options.quiet and sys.stderr.isatty())
    progress = Progress(total, shown)
    failed = 0
    target = options.output.resolve()  # a link stays one
    if target.exists() and not (target.is_file() and os.access(target, os.W_OK)):
        raise PermissionError(f"{options.output} is write-protected, or no file")
    part = target.with_name(f".{target.name}.{secrets.token_hex(8)}.part")
    try:
        with pq.ParquetWriter(part, wanted, compression="zstd") as writer:
            for rows in source.iter_batches(batch_size=options.batch_rows, columns=read):
                if progress.done == 0:
                    _arrow.check_lists(plan, pa.Table.from_batches([rows]))
                new = _arrow.calculate(plan, rows.select(plan.used()), options.threads)
                failed += rows.num_rows - int((new[len(plan.outputs)].to_numpy() == 0).sum())
                columns = [rows.column(rows.schema.get_field_index(name)) for name in kept]
                writer.write_batch(pa.RecordBatch.from_arrays([*columns, *new], schema=wanted))
                progress.add(rows.num_rows)
        with open(part, "rb+") as file:
            os.fsync(file.fileno())
        if target.exists():
            os.chmod(part, target.stat().st_mode & 0o777)
        os.replace(part, target)
    except BaseException:
        part.unlink(missing_ok=True)
        raise
    finally:
        progress.end()
    if not options.quiet:
        print(f"{total} rows: {'all good' if failed == 0 else f'{failed} without a result'}", file=sys.stderr)
    return NO_RESULT if failed and options.strict else GOOD


def main(arguments: list[str] | None = None) -> int:
    options = parser().parse_args(arguments)
    warnings.showwarning = lambda message, *rest, **named: print(f"note: {message}", file=sys.stderr)
    warnings.simplefilter("always")
    try:
        return batch(options)
    except (Error, ValueError, ImportError) as error:
        print(f"norvane: {error}", file=sys.stderr)
        return WRONG_USE
    except OSError as error:
        print(f"norvane: {error}", file=sys.stderr)
        return NOT_WRITTEN
    except KeyboardInterrupt:
        print("norvane: interrupted; nothing is written", file=sys.stderr)
        return 130


if __name__ == "__main__":
    sys.exit(main())
