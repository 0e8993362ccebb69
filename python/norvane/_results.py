"""Named results: one class a function, made from its record."""

from __future__ import annotations

from typing import Any

from ._library import Output, Record

OWN = ("status", "status_text", "message", "defaulted", "units", "as_dict", "message_at")


class Code(int):
    """A coded output, such as a range status: a number with a text."""

    text: str

    def __new__(cls, value: int, text: str = ""):
        code = super().__new__(cls, value)
        code.text = text
        return code

    def __repr__(self) -> str:
        return f"{int(self)} ({self.text})" if self.text else str(int(self))

    __str__ = __repr__

    def __format__(self, form: str) -> str:
        return format(int(self), form) if form else repr(self)

    def __reduce__(self):
        return Code, (int(self), self.text)


class Result:
    """The answer of a function: its outputs by name, its status, and which inputs took their defaults."""

    record: Record
    units: dict[str, str]
    __slots__ = ("_values", "status", "defaulted", "_tell", "_message", "_at")

    def __init__(self, values: dict[str, Any], status: Any, defaulted: dict[str, Any], tell: Any = None,
                 message: str | None = None):
        self._values = values
        self.status = status
        self.defaulted = defaulted
        self._tell = tell
        self._message = message
        self._at: Any = None

    def __getattr__(self, name: str):
        values = object.__getattribute__(self, "_values")
        try:
            return values[name]
        except KeyError:
            from ._errors import meant

            raise AttributeError(f"{self.record.id} has no output {name!r}{meant(name, values)}") from None

    def __getitem__(self, name: str):
        output = self.record.find_output(name)
        if output is None or output.name not in self._values:
            raise KeyError(name)
        return self._values[output.name]

    @property
    def status_text(self) -> str:
        """What the status stands for; of arrays that of the first row whose status is not 0."""
        status = self.status if isinstance(self.status, int) else _first_status(self.status)
        return status_text(self.record, status)

    @property
    def message(self) -> str:
        """Why there is no result, or a remark on a good one; empty when there is nothing to say."""
        if self._message is None:
            self._message = self._tell() if self._tell is not None else ""
        return self._message

    def message_at(self, index: Any) -> str:
        """What there is to say about one row of arrays, by its index."""
        if self._at is None:
            raise TypeError("message_at is for the results of arrays")
        return self._at(index)

    def as_dict(self) -> dict[str, Any]:
        return dict(self._values)

    def __dir__(self):
        return [*OWN, *self._values]

    def __eq__(self, other: object):
        if type(other) is not type(self) or not isinstance(self.status, int):
            return NotImplemented
        return (self._values, self.status) == (other._values, other.status)  # type: ignore[attr-defined]

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        parts = []
        for name, value in self._values.items():
            unit = self.units.get(name, "")
            parts.append(f"{name}={value!r}{' ' + unit if unit else ''}")
        text = f"{self.record.id}({', '.join([*parts, f'status={self.status!r}'])})"
        return text + (f"  # defaults used: {defaults_text(self.record, self.defaulted)}" if self.defaulted else "")

    def __reduce__(self):
        return _again, (self.record.id, self._values, self.status, self.defaulted, self.message)


def _again(function: str, values: dict, status: Any, defaulted: dict, message: str) -> Result:
    from ._library import records

    return result_class(records[function])(values, status, defaulted, None, message)


def _first_status(statuses: Any) -> int:
    bad = statuses[statuses != 0]
    return int(bad.flat[0]) if bad.size else 0


def status_text(record: Record, status: int) -> str:
    from ._library import NO_OUTPUT, NOT_RUN

    if status == NOT_RUN:
        return "nothing was calculated"
    if status == NO_OUTPUT:
        return "an output could not be delivered"
    return record.statuses.get(status, f"status {status}")


def defaults_text(record: Record, defaulted: dict[str, Any]) -> str:
    """ "temperature = 0 °C, edition = 1 (1994)"."""
    parts = []
    for name, value in defaulted.items():
        parameter = record.input_of[name]
        if value is None:
            parts.append(f"{name} = none")
            continue
        label = parameter.options.get(int(value)) if parameter.options else None
        extra = f" ({label})" if label else f" {parameter.unit}" if parameter.unit else ""
        parts.append(f"{name} = {value:.15g}{extra}")
    return ", ".join(parts)


_classes: dict[str, type[Result]] = {}


def result_class(record: Record) -> type[Result]:
    made = _classes.get(record.id)
    if made is None:
        units = {o.name: o.unit for o in record.outputs if o.unit}
        made = type(record.id + "_Result", (Result,),
                    {"__slots__": (), "record": record, "units": units, "__module__": "norvane",
                     "__doc__": f"The answer of {record.id}."})
        _classes[record.id] = made
    return made


def field(output: Output, value: Any):
    """An output as a field: a number, or a code with its text."""
    return Code(value, output.meanings.get(value, "")) if output.kind == "option" else value
