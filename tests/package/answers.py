"""Every check value of the catalogue by the Python package, to the last bit: answers.py FOLDER_OF_CHECK_VALUES

Its output is to be the same on every system that there is a wheel for.
"""
import json
import pathlib
import sys

import norvane
from norvane._library import identifier, records


def shown(value):
    return float(value).hex() if isinstance(value, (int, float)) else repr(value)


def flat(value):
    return [x for row in value for x in (row if isinstance(row, list) else [row])] if isinstance(value, list) else value


called = 0
for path in sorted(pathlib.Path(sys.argv[1]).glob("*.jsonl")):
    for line in path.read_text(encoding="utf-8").splitlines():
        case = json.loads(line)
        record = records.get(case["function"])
        inputs = {identifier(key): flat(value) for key, value in case["inputs"].items() if value is not None}
        if record is None or not set(inputs) <= set(record.input_of):
            continue
        try:
            answer = norvane.function(record.id)(**inputs, errors="status")
        except norvane.Error as error:
            print(record.id, error)
            continue
        called += 1
        print(record.id, answer.status, *[shown(answer[o.name]) for o in record.outputs], answer.message)
print(called, "calls")
