"""The functions of Norvane in LibreOffice Calc: the worksheet wrappers of the spreadsheet module, called by ctypes.

Values travel in the records that the module exchanges with any spreadsheet, so a function takes and answers here what it
takes and answers there.
"""
import ctypes
import json
import os
import struct
import sys

import unohelper
from com.sun.star.lang import XServiceInfo
from com.sun.star.uno import RuntimeException
from norvane.calc import XFunctions

IMPLEMENTATION = "norvane.calc.Functions"
SERVICES = (IMPLEMENTATION, "com.sun.star.sheet.AddIn")
FOLDER = os.path.dirname(os.path.abspath(__file__))
MODULES = {"linux": "linux-x86_64/Norvane.so", "win32": "windows-x86_64/Norvane.XLL"}

NUMBER, STRING, BOOLEAN, ERROR, ARRAY, MISSING, NIL, INTEGER = 1, 2, 4, 16, 64, 128, 256, 2048
LONGEST_TEXT = 32767
# Results of up to so many values are laid out as a column and as a row at once.
LONGEST_ROW = 64


class Record(ctypes.Structure):
    pass


class Array(ctypes.Structure):
    _fields_ = [("elements", ctypes.POINTER(Record)), ("rows", ctypes.c_int32), ("columns", ctypes.c_int32)]


class Value(ctypes.Union):
    _fields_ = [("number", ctypes.c_double), ("string", ctypes.POINTER(ctypes.c_uint16)), ("boolean", ctypes.c_int32),
                ("error", ctypes.c_int32), ("integer", ctypes.c_int32), ("array", Array), ("room", ctypes.c_char * 24)]


Record._fields_ = [("value", Value), ("type", ctypes.c_uint32)]
assert ctypes.sizeof(Record) == 32 and Record.type.offset == 24


def error_number(code):
    """A cell's error as Calc passes it in numbers: in a NaN, by its own number."""
    return struct.unpack("<d", struct.pack("<Q", 0x7FF8000000000000 | code))[0]


# #NULL!, #DIV/0!, #VALUE!, #REF!, #NAME?, #NUM!, #N/A
ERRORS = {0: 521, 7: 532, 15: 519, 23: 524, 29: 525, 36: 503, 42: 32767}


class Module:
    """The loaded library and its functions, by their names on the worksheet."""

    def __init__(self):
        name = MODULES.get(sys.platform)
        if name is None or struct.calcsize("P") != 8:
            raise RuntimeException("Norvane has no library for this system: it runs on 64-bit Linux and Windows", None)
        self.library = ctypes.CDLL(os.path.join(FOLDER, *name.split("/")))
        with open(os.path.join(FOLDER, "functions.json"), encoding="utf-8") as file:
            self.functions = json.load(file)
        self.entries = {}

    def entry(self, name):
        if name not in self.entries:
            function = self.functions[name]
            entry = getattr(self.library, function["entry"])
            entry.argtypes = [ctypes.POINTER(Record)] * function["arguments"]
            entry.restype = ctypes.POINTER(Record)
            self.entries[name] = (entry, function["arguments"], function["repeated"])
        return self.entries[name]

    def call(self, name, given):
        entry, count, repeated = self.entry(name)
        if repeated:
            given = tuple(given[:-1]) + tuple(given[-1] or ())
        if len(given) > count:
            return ((error_number(504),),)  # more parameters than the function takes
        records = (Record * max(count, 1))()
        kept = []  # what the records point to
        for i in range(count):
            write(records[i], given[i] if i < len(given) else None, kept, MISSING)
        answer = entry(*(ctypes.pointer(records[i]) for i in range(count)))
        if not answer:
            return ((error_number(503),),)
        return laid_out(read(answer.contents))


def write(record, value, kept, blank):
    """Fills a record with a value of Calc; `blank` says what nothing is: no argument, or a blank cell."""
    if isinstance(value, tuple):
        rows = value if value and isinstance(value[0], tuple) else (value,)
        if len(rows) == 1 and len(rows[0]) == 1:
            return write(record, rows[0][0], kept, NIL)
        columns = max((len(row) for row in rows), default=0)
        cells = (Record * max(len(rows) * columns, 1))()
        kept.append(cells)
        for r, row in enumerate(rows):
            for c in range(columns):
                write(cells[r * columns + c], row[c] if c < len(row) else None, kept, NIL)
        record.value.array.elements = ctypes.cast(cells, ctypes.POINTER(Record))
        record.value.array.rows, record.value.array.columns = len(rows), columns
        record.type = ARRAY
    elif value is None:
        record.type = blank
    elif isinstance(value, bool):
        record.value.boolean, record.type = int(value), BOOLEAN
    elif isinstance(value, (int, float)):
        record.value.number, record.type = float(value), NUMBER
    else:
        units = str(value).encode("utf-16-le", "surrogatepass")[:2 * LONGEST_TEXT]
        text = (ctypes.c_uint16 * (len(units) // 2 + 2))(len(units) // 2)
        ctypes.memmove(ctypes.byref(text, 2), units, len(units))
        kept.append(text)
        record.value.string, record.type = ctypes.cast(text, ctypes.POINTER(ctypes.c_uint16)), STRING


def read(record):
    kind = record.type & 0xFFF
    value = record.value
    if kind == NUMBER:
        return value.number
    if kind == INTEGER:
        return float(value.integer)
    if kind == BOOLEAN:
        return value.boolean != 0
    if kind == STRING:
        return ctypes.string_at(ctypes.addressof(value.string.contents) + 2, 2 * value.string[0]).decode(
            "utf-16-le", "surrogatepass")
    if kind == ERROR:
        return error_number(ERRORS.get(value.error, 519))
    if kind == ARRAY:
        rows, columns = value.array.rows, value.array.columns
        return tuple(tuple(read(value.array.elements[r * columns + c]) for c in range(columns)) for r in range(rows))
    return None


def laid_out(result):
    """The answer as rows. Calc does not tell an add-in the shape of the cells that it answers, and repeats a column
    over all of a row's cells, where the status would stand for every result. So a list of results is the first column
    and the first row of a square: a column of cells shows it, and so does a row."""
    if not isinstance(result, tuple):
        return ((result,),)
    if not result or not result[0]:
        return ((None,),)
    if len(result[0]) != 1 or not 1 < len(result) <= LONGEST_ROW:
        return result
    column = [row[0] for row in result]
    return (tuple(column),) + tuple((value,) + (None,) * (len(column) - 1) for value in column[1:])


class Functions(unohelper.Base, XServiceInfo, XFunctions):
    module = None

    def __init__(self, context):
        if Functions.module is None:
            Functions.module = Module()

    def getImplementationName(self):
        return IMPLEMENTATION

    def supportsService(self, name):
        return name in SERVICES

    def getSupportedServiceNames(self):
        return SERVICES


def add_functions():
    def function(name):
        return lambda self, *given: self.module.call(name, given)

    with open(os.path.join(FOLDER, "functions.json"), encoding="utf-8") as file:
        for name in json.load(file):
            setattr(Functions, name, function(name))


add_functions()
g_ImplementationHelper = unohelper.ImplementationHelper()
g_ImplementationHelper.addImplementation(Functions, IMPLEMENTATION, SERVICES)
