#!/usr/bin/env python3
"""Takes the time of its making out of a type library, so that the same sources give the same bytes: settle_typelib.py FILE

widl writes it twice, as text and behind that as a number of seconds.
"""
import re
import sys

with open(sys.argv[1], "r+b") as file:
    data, found = re.subn(rb"(Created by WIDL version [^\n]{0,20} at )[^\n]{24}(\n.{0,8}?\x13\x00).{4}",
                          lambda m: m[1] + b"Thu Jan  1 00:00:00 1970" + m[2] + bytes(4), file.read(), flags=re.S)
    file.seek(0)
    file.write(data)
if found != 1:
    print(f"settle_typelib: {found} times in {sys.argv[1]}: packages will differ in it", file=sys.stderr)
