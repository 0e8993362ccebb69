#!/usr/bin/env python3
"""Calorific value, density and Wobbe index of a natural gas by ISO 6976:2016, through the shared library.

usage: calorific_value.py [LIBRARY]     LIBRARY defaults to libnorvane.so on the library path
"""
import ctypes
import sys

NOT_RUN = 0xFFFFFFFF
NO_OUTPUT = 0xFFFFFFFE

library = ctypes.CDLL(sys.argv[1] if len(sys.argv) > 1 else "libnorvane.so")
library.norvane_version.restype = ctypes.c_char_p

# norvane.h says: composition and its count, three options, eleven numbers out, one range status out.
iso6976 = library.Norvane_ISO6976_2016_M
iso6976.restype = ctypes.c_uint32
iso6976.argtypes = (
    [ctypes.POINTER(ctypes.c_double), ctypes.c_uint32]
    + [ctypes.c_uint32] * 3
    + [ctypes.POINTER(ctypes.c_double)] * 11
    + [ctypes.POINTER(ctypes.c_uint32)]
)

# Methane, nitrogen, carbon dioxide, ethane, propane, water, hydrogen sulfide, hydrogen, carbon monoxide, oxygen,
# i-butane, n-butane, i-pentane, n-pentane, n-hexane, n-heptane, n-octane, n-nonane, n-decane, helium, argon,
# neo-pentane.
gas = [0.9247, 0.0175, 0.0068, 0.0350, 0.0098] + [0.0] * 5 + [0.0034, 0.0022, 0.0, 0.0006] + [0.0] * 8
composition = (ctypes.c_double * len(gas))(*gas)

numbers = [ctypes.c_double() for _ in range(11)]
out_of_range = ctypes.c_uint32()
status = iso6976(composition, len(gas), 1, 1, 1, *map(ctypes.byref, numbers), ctypes.byref(out_of_range))
if status in (NOT_RUN, NO_OUTPUT):
    sys.exit("the function refused its arguments")
if status != 0:
    sys.exit(f"the calculation ended with status {status}")

print(f"Norvane {library.norvane_version().decode()}, ISO 6976:2016, 15 degC / 15 degC")
print(f"superior calorific value  {numbers[0].value:.4f} MJ/m3")
print(f"density                   {numbers[1].value:.5f} kg/m3")
print(f"compressibility           {numbers[2].value:.6f}")
print(f"Wobbe index               {numbers[10].value:.4f} MJ/m3")
