"""The shared library and its catalogue: loaded once, bound from the records, nothing declared by hand."""

from __future__ import annotations

import ctypes
import json
import os
import re
import sys
from pathlib import Path

_HERE = Path(__file__).parent
_NAMES = ("Norvane.dll",) if sys.platform == "win32" else ("libnorvane.so",)

NOT_RUN = 0xFFFFFFFF
NO_OUTPUT = 0xFFFFFFFE

POINTER_TO_DOUBLE = ctypes.POINTER(ctypes.c_double)
_C_TYPE = {"number": ctypes.c_double, "option": ctypes.c_uint32}


def identifier(key: str) -> str:
    """The Python name of a key: lower case, everything but letters and digits an underscore."""
    return re.sub(r"[^0-9a-z]", "_", key.lower())


def letters(name: str) -> str:
    """The letters and digits of a component's name: "i-Butane" and "i butane" are one."""
    return re.sub(r"[ _-]", "", name.lower())


class Input:
    """One input of a function, as its record says."""

    def __init__(self, record: dict, name: str):
        self.name = name
        self.key: str = record["key"]
        self.kind: str = record["type"]  # number, option or range
        self.argument: int = record["argument"]  # its number in messages
        self.display: str = record["display"]
        self.description: str = record["description"]
        self.unit: str | None = record.get("unit")
        self.unit_key: str | None = record.get("unit_key")
        self.minimum: float | None = record.get("minimum")
        self.maximum: float | None = record.get("maximum")
        self.default: float | None = record.get("default")
        self.options: dict[int, str] = {o["number"]: o["label"] for o in record.get("options", ())}
        self.cells: int = record.get("cells", 1)
        self.may_be_left_out: bool = record.get("may_be_left_out", False)
        self.components: list[str] = [names[0] for names in record.get("cell_names", ())]
        self.is_list = self.kind == "range"
        self.required = self.default is None and not self.may_be_left_out
        self._places = {letters(n): i for i, names in enumerate(record.get("cell_names", ())) for n in names}
        self._spelled = {n: i for i, names in enumerate(record.get("cell_names", ())) for n in names}

    def component(self, name: str) -> int | None:
        """The place of a component in the list, None for a name that is none."""
        place = self._spelled.get(name)  # as it is mostly written
        return self._places.get(letters(name)) if place is None else place

    def option(self, value: object) -> int | None:
        """The number of an option given by its number or its label, None when it is neither."""
        if isinstance(value, str):
            wanted = identifier(value.strip())
            for number, label in self.options.items():
                if wanted in (identifier(label), str(number)):
                    return number
            return None
        if value in self.options:
            return int(value)  # type: ignore[call-overload]
        label = str(int(value)) if value == int(value) else None  # type: ignore[call-overload]
        return next((n for n, text in self.options.items() if text == label), None)

    def limits(self) -> str:
        low, high = self.minimum, self.maximum
        if low is not None and high is not None:
            return f"{low:.15g} to {high:.15g}"
        return f"at least {low:.15g}" if low is not None else f"at most {high:.15g}" if high is not None else ""


class Output:
    """One output of a function, as its record says."""

    def __init__(self, record: dict, name: str):
        self.name = name
        self.key: str = record["key"]
        self.kind: str = record["type"]  # number or option
        self.display: str = record["display"]
        self.description: str = record["description"]
        self.unit: str | None = record.get("unit")
        self.meanings: dict[int, str] = {m["number"]: m["label"] for m in record.get("meanings", ())}


class Record:
    """A function of the catalogue: names, inputs, outputs and statuses."""

    def __init__(self, record: dict):
        self.id: str = record["function"]
        self.export: str = record["export"]
        self.batch: str = record["batch"]
        self.display: str = record["display"]
        self.description: str = record["description"]
        self.standard: str = record["standard"]
        self.group: str = record["group"]
        self.hidden: bool = record["hidden"]
        self.notes: str = record["notes"]
        self.statuses: dict[int, str] = {s["number"]: s["label"] for s in record["statuses"]}
        self.inputs = [Input(i, identifier(i["key"])) for i in record["inputs"]]
        # An output that is also an input keeps its name: inputs are arguments, outputs are fields.
        self.outputs = [Output(o, identifier(o["key"])) for o in record["outputs"]]
        self.input_of = {i.name: i for i in self.inputs}
        self.output_of = {o.name: o for o in self.outputs}
        self.by_argument = {i.argument: i for i in self.inputs}
        for names in (self.input_of, self.output_of):
            if len(names) != len(self.inputs if names is self.input_of else self.outputs):
                raise ImportError(f"{self.id}: two parameters of its record bear one name")

    @property
    def gas(self) -> Input | None:
        """The input that is a gas composition."""
        return next((i for i in self.inputs if i.components), None)

    def find_input(self, name: str) -> Input | None:
        return self.input_of.get(identifier(name.strip()))

    def find_output(self, name: str) -> Output | None:
        return self.output_of.get(identifier(name.strip()))


class Column(ctypes.Structure):
    """One input of a batch: where its numbers stand."""

    _fields_ = [
        ("values", ctypes.c_void_p),
        ("row_step", ctypes.c_size_t),
        ("cells", ctypes.c_size_t),
        ("cell_step", ctypes.c_size_t),
    ]


def _load() -> ctypes.CDLL:
    for name in _NAMES:
        path = _HERE / name
        if path.exists():
            return ctypes.CDLL(os.fspath(path))
    raise ImportError(f"norvane: {' or '.join(_NAMES)} is missing beside {__file__}; install the package from its wheel")


def _catalogue() -> dict[str, Record]:
    path = _HERE / "norvane.json"
    try:
        functions = json.loads(path.read_text(encoding="utf-8"))
    except FileNotFoundError:
        raise ImportError(f"norvane: norvane.json is missing beside {__file__}; install the package from its wheel") from None
    return {f["function"]: Record(f) for f in functions}


library = _load()
records = _catalogue()

library.norvane_version.restype = ctypes.c_char_p
library.norvane_last_message.restype = ctypes.c_char_p
library.norvane_convert.restype = ctypes.c_uint32
library.norvane_convert.argtypes = [
    ctypes.c_char_p, ctypes.c_char_p, POINTER_TO_DOUBLE, ctypes.c_size_t, ctypes.POINTER(ctypes.c_char_p)]

version: str = library.norvane_version().decode()


def last_message() -> str:
    return library.norvane_last_message().decode("utf-8", "replace")


def bind(record: Record):
    """The export of a single call, with its C types."""
    types: list = []
    for parameter in record.inputs:
        types += [POINTER_TO_DOUBLE, ctypes.c_uint32] if parameter.is_list else [_C_TYPE[parameter.kind]]
    types += [ctypes.POINTER(_C_TYPE[output.kind]) for output in record.outputs]
    export = getattr(library, record.export)
    export.argtypes = types
    export.restype = ctypes.c_uint32
    return export


def bind_batch(record: Record):
    """The export of a batch: rows, columns and their count, outputs and their count, statuses."""
    export = getattr(library, record.batch)
    export.argtypes = [ctypes.c_size_t, ctypes.c_void_p, ctypes.c_size_t, ctypes.c_void_p, ctypes.c_size_t,
                       ctypes.c_void_p]
    export.restype = ctypes.c_size_t
    return export


def output_values(record: Record) -> list:
    return [_C_TYPE[output.kind]() for output in record.outputs]
