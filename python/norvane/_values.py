"""Values as people write them: numbers, "870 psia", an option by its label, a gas by its components."""

from __future__ import annotations

import ctypes
import numbers
import re
import warnings
from collections.abc import Mapping

from ._errors import Error, UnitWarning, meant
from ._library import NOT_RUN, Input, Record, library

_QUANTITY = re.compile(r"\s*([-+]?(?:\d+\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)(?![\d.,])\s*(.*?)\s*", re.DOTALL)
FRACTION = "mol/mol"


def shown(value: object) -> str:
    text = repr(value)
    return text if len(text) <= 60 else text[:57] + "..."


def wrong(record: Record, parameter: Input, value: object, problem: str) -> Error:
    return Error(f"{record.id}: {parameter.name}: {problem}", function=record.id, argument=parameter.name, value=value,
                 limit=parameter.limits() or None, unit=parameter.unit)


def convert_in_place(pointer, count: int, unit: str, to: str) -> str:
    """Converts the numbers there; what is wrong with the units, or nothing."""
    message = ctypes.c_char_p()
    result = library.norvane_convert(unit.encode(), to.encode(), pointer, count, ctypes.byref(message))
    text = (message.value or b"").decode("utf-8", "replace")
    if result == NOT_RUN:
        return text or "there is no such conversion"
    if text:
        warnings.warn(text, UnitWarning, stacklevel=4)
    return ""


def convert(value, unit: str, to: str):
    """A number, or an array of numbers, in another unit of the same quantity: convert(870, "psia", "bar(a)").

    Raises Error for a name that is no unit and for units of different quantities.
    """
    if isinstance(value, numbers.Real) and not isinstance(value, bool):
        number = ctypes.c_double(value)
        problem = convert_in_place(ctypes.byref(number), 1, unit, to)
        result = number.value
    else:
        from . import _arrays

        result, problem = _arrays.converted(value, unit, to)
    if problem:
        raise Error(problem, value=value, unit=to)
    return result


def convertible(unit: str, to: str) -> tuple[float, str]:
    """What 1 becomes, and what is wrong with the units."""
    one = ctypes.c_double(1.0)
    problem = convert_in_place(ctypes.byref(one), 1, unit, to)
    return one.value, problem


def same_unit(unit: str, to: str) -> bool:
    """Whether numbers in the one unit are numbers in the other as they are."""
    numbers_ = (ctypes.c_double * 2)(0.0, 1.0)
    return not convert_in_place(numbers_, 2, unit, to) and list(numbers_) == [0.0, 1.0]


_EXACT = 2**53  # whole numbers up to here are doubles


def target_unit(parameter: Input) -> str | None:
    """The unit in which the function wants this input, None when it has none."""
    return FRACTION if parameter.components else parameter.unit_key


def number(record: Record, parameter: Input, value: object) -> float:
    """One number in the input's unit."""
    if isinstance(value, float):
        return value
    if type(value) is int and -_EXACT <= value <= _EXACT:
        return float(value)
    if isinstance(value, tuple) and len(value) == 2 and isinstance(value[1], str):
        return _in_unit(record, parameter, value, number(record, parameter, value[0]), value[1])
    if isinstance(value, str):
        match = _QUANTITY.fullmatch(value)
        if match is None:
            raise wrong(record, parameter, value, f"{shown(value)} is not a number")
        return _in_unit(record, parameter, value, float(match[1]), match[2]) if match[2] else float(match[1])
    if value is None:
        raise wrong(record, parameter, value, "it is blank (leave it out to take its default)"
                    if not parameter.required else "it is blank")
    if isinstance(value, bool) or type(value).__name__ in ("bool", "bool_"):
        raise wrong(record, parameter, value, f"{shown(value)} is not a number")
    try:
        if isinstance(value, numbers.Number) or getattr(value, "ndim", None) == 0:
            return float(value)  # type: ignore[arg-type]
    except (TypeError, ValueError, OverflowError):
        pass
    raise wrong(record, parameter, value, f"{shown(value)} is not a number")


def _in_unit(record: Record, parameter: Input, given: object, value: float, unit: str) -> float:
    to = target_unit(parameter)
    if to is None:
        raise wrong(record, parameter, given, f"{shown(given)} is not a number, and the input has no unit")
    converted = ctypes.c_double(value)
    problem = convert_in_place(ctypes.byref(converted), 1, unit, to)
    if problem:
        raise wrong(record, parameter, given, problem)
    return converted.value


def option(record: Record, parameter: Input, value: object) -> int:
    """The number of an option, given by its number or its label."""
    if isinstance(value, bool) or type(value).__name__ in ("bool", "bool_"):
        return int(value)  # type: ignore[call-overload]
    if isinstance(value, str):
        found = parameter.option(value)
        if found is not None:
            return found
        if not re.fullmatch(r"\s*[-+]?\d{1,9}\s*", value):
            listed = "; ".join(f"{n}: {label}" for n, label in parameter.options.items())
            raise wrong(record, parameter, value, f"{shown(value)} is none of its options ({listed})"
                        if listed else f"{shown(value)} is not a whole number")
        return int(value)
    whole = number(record, parameter, value)
    if not (whole == whole and -2147483648 <= whole <= 2147483647 and whole == int(whole)):
        raise wrong(record, parameter, value, f"{shown(value)} is not a whole number")
    found = parameter.option(int(whole))
    return int(whole) if found is None else found


def named_cells(record: Record, parameter: Input, gas: Mapping) -> list[tuple[int, str, object]]:
    """The cells of a gas by the names of its components: place, name as given, value."""
    if not parameter.components:
        raise wrong(record, parameter, gas, f"its {parameter.cells} numbers have no names; give them in their order")
    places: dict[int, str] = {}
    cells = []
    for name, value in gas.items():
        place = parameter.component(name) if isinstance(name, str) else None
        if place is None:
            raise wrong(record, parameter, name, f"{shown(name)} is no component of the gas"
                        + meant(str(name), parameter.components))
        if place in places:
            raise wrong(record, parameter, name, f"{shown(places[place])} and {shown(name)} are one component")
        places[place] = name
        cells.append((place, name, value))
    if not cells:
        raise wrong(record, parameter, gas, "it is empty")
    return cells


def cells(record: Record, parameter: Input, value: object) -> list[float]:
    """The numbers of a list."""
    if isinstance(value, Mapping):
        amounts = [0.0] * parameter.cells
        for place, _, amount in named_cells(record, parameter, value):
            amounts[place] = number(record, parameter, amount)
        return amounts
    if isinstance(value, (str, bytes)) or not hasattr(value, "__iter__"):
        raise wrong(record, parameter, value, f"{shown(value)} is not a list of {parameter.cells} numbers")
    amounts = [number(record, parameter, amount) for amount in value]
    if len(amounts) != parameter.cells:
        raise wrong(record, parameter, value, f"a list of {len(amounts)}, but {parameter.cells} numbers are wanted")
    return amounts


def double_array(amounts: list[float]):
    return (ctypes.c_double * len(amounts))(*amounts)
