#!/usr/bin/env python3
"""A library whose tables were altered refuses to calculate with them, and says so in its identity.

usage: altered_tables.py LIBRARY

Copies of the library get one bit of one coefficient turned over and are loaded; then one that is loaded and has answered
gets it in its memory.
"""
import ctypes
import os
import re
import struct
import sys
import tempfile

GAS = (ctypes.c_double * 22)(0.95, 0.02, 0.01, 0.02)
number, option = ctypes.c_double, ctypes.c_uint32

# Standard, bytes that stand in its tables alone, and a function that uses them with its inputs.
ALTERED = (
    ("AGA-8", struct.pack("<dd", 0.97164, 0.886106), "AGA8_M",
     (number(60), number(20), GAS, option(22), option(1), option(1)), 5),
    ("GERG-2008", struct.pack("<ddd", 10.139342719, 190.564, 28.0134), "AGA8_GERG",
     (number(60), number(20), GAS, option(22), option(1)), 7),
    ("ISO 6976:2016", struct.pack("<d", 892.92), "ISO6976_2016_M",
     (GAS, option(22), option(1), option(1), option(1)), 12),
    ("IAPWS-IF97", struct.pack("<iid", 0, -2, 0.14632971213167), "IAPWS_IF97_M", (number(60), number(20), option(1)), 5),
)


def load(path):
    library = ctypes.CDLL(path)
    for text in (library.norvane_identity, library.norvane_last_message):
        text.restype = ctypes.c_char_p
    return library


def status(library, function, inputs, outputs):
    places = [ctypes.byref((ctypes.c_double * 1)()) for _ in range(outputs)]
    return getattr(library, "Norvane_" + function)(*inputs, *places)


class Column(ctypes.Structure):
    _fields_ = [("values", ctypes.POINTER(number)), ("row_step", ctypes.c_size_t), ("cells", ctypes.c_size_t),
                ("cell_step", ctypes.c_size_t)]


def batch_status(library, function, inputs, outputs):
    """Of a batch of one row; a list is followed by its count, which a column knows by itself."""
    columns = []
    for value in inputs:
        if isinstance(value, ctypes.Array):
            columns.append(Column(value, 0, len(value), 1))
        elif not (columns and columns[-1].cells > 1 and value.value == columns[-1].cells):
            columns.append(Column((number * 1)(value.value), 0, 1, 0))
    statuses = (option * 1)()
    places = (ctypes.POINTER(number) * outputs)()
    library.norvane_batch(function.encode(), ctypes.c_size_t(1), (Column * len(columns))(*columns),
                          ctypes.c_size_t(len(columns)), places, ctypes.c_size_t(outputs), statuses)
    return statuses[0]


failures = 0


def check(what, good):
    global failures
    if not good:
        failures += 1
        print("FAILED", what)


with open(sys.argv[1], "rb") as file:
    built = file.read()
sound = load(sys.argv[1])
identity = sound.norvane_identity().decode()
check(f"identity: {identity}", re.fullmatch(r"[0-9.]+, commit \S+, checksum [0-9A-F]{8}", identity))
for _, _, function, inputs, outputs in ALTERED:
    for call in (status, batch_status):
        check(f"{function} of the library as built", call(sound, function, inputs, outputs) == 0)

with tempfile.TemporaryDirectory() as folder:
    for standard, pattern, function, inputs, outputs in ALTERED:
        check(f"the bytes of {standard} are found", pattern in built)
        turned = pattern[:-2] + bytes([pattern[-2] ^ 1]) + pattern[-1:]
        path = os.path.join(folder, standard.replace(" ", "_") + ".so")
        with open(path, "wb") as file:
            file.write(built.replace(pattern, turned))
        library = load(path)
        check(f"{standard}: status of a batch", batch_status(library, function, inputs, outputs) == 2)
        check(f"{standard}: status", status(library, function, inputs, outputs) == 2)
        message = library.norvane_last_message().decode()
        check(f"{standard}: {message}", f"tables of {standard} are not those this library was built with" in message)
        check(f"{standard}: identity", "DOES NOT MATCH" in library.norvane_identity().decode())
        for other, _, function, inputs, outputs in ALTERED:
            if other != standard:
                check(f"{other} beside an altered {standard}", status(library, function, inputs, outputs) == 0)

# In memory, behind a good answer: found when the identity is asked for, also by calls that remember that answer.
page = ctypes.CDLL(None, use_errno=True)
page.mprotect.argtypes = (ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int)


def turn(pattern):
    """Turns one bit of the pattern over wherever it stands in what is mapped of the library."""
    turned = 0
    with open("/proc/self/maps", encoding="utf-8") as maps:
        regions = [line.split() for line in maps if line.rstrip().endswith(os.path.realpath(sys.argv[1]))]
    for words in regions:
        first, last = (int(word, 16) for word in words[0].split("-"))
        at = ctypes.string_at(first, last - first).find(pattern) if words[1].startswith("r") else -1
        if at >= 0:
            writable, before = 7 if "x" in words[1] else 3, (4 if "x" in words[1] else 0) + (3 if "w" in words[1] else 1)
            check("memory can be written", page.mprotect(first, last - first, writable) == 0)
            ctypes.c_ubyte.from_address(first + at + len(pattern) - 2).value ^= 1
            check("memory is as before", page.mprotect(first, last - first, before) == 0)
            turned += 1
    return turned


for standard, pattern, function, inputs, outputs in ALTERED:
    check(f"{standard}: bytes in memory", turn(pattern) > 0)
    check(f"{standard}: nobody has asked yet", status(sound, function, inputs, outputs) == 0)
    check(f"{standard}: identity of the memory", b"DOES NOT MATCH" in sound.norvane_identity())
    for call in (status, batch_status):
        check(f"{standard}: status behind a good answer", call(sound, function, inputs, outputs) == 2)
    turn(pattern[:-2] + bytes([pattern[-2] ^ 1]) + pattern[-1:])
    check(f"{standard}: identity of what is put right", sound.norvane_identity().decode() == identity)
    check(f"{standard}: status of what is put right", status(sound, function, inputs, outputs) == 0)

print(identity)
sys.exit(1 if failures else 0)
