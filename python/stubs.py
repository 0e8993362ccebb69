"""Writes norvane/__init__.pyi: every function of the catalogue with its inputs and its result.

usage: stubs.py norvane.json
"""

from __future__ import annotations

import json
import keyword
import re
import sys

HEAD = '''\
# Made from the catalogue when the wheel was built.
from collections.abc import Mapping, Sequence
from typing import Any, Literal, overload

import numpy as np
from numpy.typing import NDArray

# One value: a number, or a text or pair with its unit.
Scalar = float | str | tuple[float, str]
Array = NDArray[Any] | Sequence[float] | tuple[NDArray[Any] | Sequence[float], str]
# A whole number, or the label that stands for it.
Option = int | str
Gas = Mapping[str, Scalar] | Sequence[Scalar]
GasArray = Mapping[str, Scalar | Array] | NDArray[Any] | Sequence[Sequence[float]]
Errors = Literal["raise", "status"] | None

NOT_RUN: int
NO_OUTPUT: int
__version__: str

class Error(ValueError):
    message: str
    function: str | None
    argument: str | None
    value: object
    limit: object
    unit: str | None
    status: int | None

class DefaultsWarning(UserWarning): ...
class UnitWarning(UserWarning): ...

class Code(int):
    text: str

class Result:
    units: dict[str, str]
    status: Any
    status_text: str
    message: str
    defaulted: dict[str, float | None]
    def as_dict(self) -> dict[str, Any]: ...
    def message_at(self, index: int | tuple[int, ...]) -> str: ...
    def __getitem__(self, name: str) -> Any: ...

def functions() -> list[str]: ...
def function(name: str) -> Any: ...
def convert(value: Any, unit: str, to: str) -> Any: ...
def apply(table: Any, function_name: str, /, *, outputs: Sequence[str] | None = None, keep: Sequence[str] | None = None,
          units: Mapping[str, str] | None = None, c6plus: Sequence[float] | None = None,
          defaults: Literal["warn", "allow", "refuse"] = "warn", messages: bool = True, threads: int = 1,
          **inputs: Any) -> Any: ...
'''


def identifier(key: str) -> str:
    name = re.sub(r"[^0-9a-z]", "_", key.lower())
    return name + "_" if keyword.iskeyword(name) else name


def fields(function: dict, array: bool) -> str:
    lines = []
    for output in function["outputs"]:
        kind = "NDArray[np.float64]" if array else "Code" if output["type"] == "option" else "float"
        unit = f"  # {output['unit']}" if "unit" in output else ""
        lines.append(f"    {identifier(output['key'])}: {kind}{unit}")
    return "\n".join(lines)


def parameters(function: dict, array: bool) -> str:
    listed = []
    for parameter in function["inputs"]:
        if parameter["type"] == "range":
            kind = "Gas" if not array else "Gas | GasArray"
            default = " = ..." if parameter["may_be_left_out"] else ""
        else:
            kind = "Option" if parameter["type"] == "option" else "Scalar"
            kind += " | Array" if array else ""
            default = " = ..." if "default" in parameter else ""
        listed.append(f"{identifier(parameter['key'])}: {kind}{default}")
    steering = ["errors: Errors = None"] + (["threads: int = 1"] if array else [])
    return ", ".join(["*", *listed, *steering])


def function_stub(function: dict) -> str:
    name = function["function"]
    said = " ".join((function["description"] or function["display"]).split()).replace("\\", "/").replace('"""', "'''")
    return f'''
class {name}_Result(Result):
    status: int
{fields(function, False)}

class {name}_Arrays(Result):
    status: NDArray[np.uint32]
{fields(function, True)}

@overload
def {name}({parameters(function, False)}) -> {name}_Result:
    """{said}"""
@overload
def {name}({parameters(function, True)}) -> {name}_Arrays: ...
'''


def stubs(functions: list[dict]) -> str:
    return HEAD + "".join(function_stub(f) for f in functions)


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as file:
        sys.stdout.write(stubs(json.load(file)))
