"""Arrays by the batch exports: every row is the single call bit for bit, whatever the shape it came in."""
import math
import subprocess
import sys

import numpy as np
import pytest

import norvane
from norvane._library import identifier, records

from conftest import GAS

AGA8 = dict(composition=GAS)


def test_every_function_row_by_row(check_values):
    """The check values of each function with the first number spread over rows that are good and bad."""
    cases = {}
    for case in check_values:
        if case["function"] in records:
            cases.setdefault(case["function"], case)
    compared = 0
    for name, case in cases.items():
        record = records[name]
        given = {identifier(k): v for k, v in case["inputs"].items() if v is not None}
        spread = next((i for i in record.inputs if i.kind == "number" and isinstance(given.get(i.name), (int, float))), None)
        if spread is None or not set(given) <= set(record.input_of) or any(
                isinstance(v, list) and v and isinstance(v[0], list) for v in given.values()):
            continue
        value = float(given[spread.name])
        rows = np.array([value, value * 1.01, -1e9, value * 0.99, np.nan, np.inf, value, 0.0, 1e300])
        function = norvane.function(name)
        many = function(**{**given, spread.name: rows})
        for i, row in enumerate(rows):
            one = function(**{**given, spread.name: row}, errors="status")
            assert many.status[i] == one.status, (name, row)
            assert many.message_at(i) == one.message
            for output in record.outputs:
                value = one[output.name]
                assert np.array_equal(many[output.name][i], float(math.nan if value is None else value),
                                      equal_nan=True), (name, output.name, row)
            compared += 1
    assert compared > 700


def singles(**given):
    return [norvane.AGA8_M(**AGA8 | dict(zip(given, values)), errors="status").z for values in zip(*given.values())]


@pytest.mark.parametrize("make", [
    lambda p: p, list, lambda p: p[::-1][::-1], lambda p: np.repeat(p, 3)[::3], lambda p: p.astype(">f8"),
    lambda p: np.asfortranarray(np.outer(p, [1, 1]))[:, 0], lambda p: np.ma.masked_array(p, mask=False),
    lambda p: (p, "bar_a"), lambda p: np.array([*p], dtype=object).astype(float)])
def test_layouts(make):
    p = np.linspace(10, 100, 7)
    assert list(norvane.AGA8_M(pressure=make(p), **AGA8).z) == singles(pressure=p)


def test_reversed_and_other_kinds_of_numbers():
    p = np.array([10, 20, 30])
    assert list(norvane.AGA8_M(pressure=p[::-1], **AGA8).z) == singles(pressure=[30, 20, 10])
    assert list(norvane.AGA8_M(pressure=p.astype(np.float32), **AGA8).z) == singles(pressure=[10, 20, 30])
    assert list(norvane.AGA8_M(edition=np.array([False, True]) + 1, **AGA8).status) == [0, 0]


def test_broadcasting_over_every_input():
    p, t = np.linspace(10, 100, 4)[:, None], np.array([0.0, 20.0, 40.0])
    methane = np.array([0.9, 0.95, 0.85])
    gas = {"methane": methane, "ethane": 1 - methane}
    answer = norvane.AGA8_M(pressure=p, temperature=t, composition=gas)
    assert answer.z.shape == answer.status.shape == (4, 3)
    for i in range(4):
        for k in range(3):
            one = norvane.AGA8_M(pressure=p[i, 0], temperature=t[k], composition={n: a[k] for n, a in gas.items()})
            assert answer.z[i, k] == one.z and answer.molar_mass[i, k] == one.molar_mass
    table = np.zeros((3, 22))
    table[:, 0], table[:, 3] = methane, 1 - methane
    for same in (table, np.asfortranarray(table), table.tolist(), np.repeat(table, 2, axis=1)[:, ::2]):
        assert np.array_equal(norvane.AGA8_M(pressure=p, temperature=t, composition=same).z, answer.z)
    assert norvane.AGA8_M(pressure=np.empty((0, 2)), **AGA8).z.shape == (0, 2)


def test_threads_give_the_same_bits():
    p = np.random.default_rng(1).uniform(-5, 200, 50_000)
    one, four = (norvane.AGA8_M(pressure=p, **AGA8, threads=n) for n in (1, 4))
    assert one.z.tobytes() == four.z.tobytes() and (one.status == four.status).all() and one.status.any()


def test_rows_that_fail_are_told():
    answer = norvane.AGA8_M(pressure=np.ma.masked_array([10.0, -5.0, 20.0, 30.0], mask=[0, 0, 1, 0]), **AGA8)
    assert list(answer.status) == [0, 1, 1, 0] and np.isnan(answer.z[1:3]).all() and np.isnan(answer.oor[1])
    assert answer.message.startswith("2 of 4 rows have no result; the first, row 1: AGA8_M: [2] pressure (-5)")
    assert "(nan)" in answer.message_at(2) and answer.status_text == "argument error"
    with pytest.raises(norvane.Error, match=r"row 1: .*pressure \(-5\)"):
        norvane.AGA8_M(pressure=[10, -5], **AGA8, errors="raise")
    assert norvane.AGA8_M(edition=[1, 1.5, 7], **AGA8).status.tolist() == [0, norvane.NOT_RUN, norvane.NOT_RUN]


@pytest.mark.parametrize("given, said", [
    ({"pressure": np.array(["60"])}, "holds no numbers"), ({"pressure": ["60", "high"]}, "'high' is not a number"),
    ({"pressure": np.array([1j])}, "complex"), ({"pressure": np.array([None, 1])}, "object"),
    ({"pressure": np.array(["2024-01-01"], dtype="datetime64")}, "datetime64"),
    ({"pressure": np.array([True])}, "bool"), ({"pressure": [[1, 2], [3]]}, "not of one length"),
    ({"pressure": ([1, 2], "kg")}, "mass"), ({"edition": ([1, 2], "kg")}, "no unit"),
    ({"pressure": [1, 2], "temperature": [1, 2, 3]}, r"pressure \(2,\), temperature \(3,\)"),
    ({"composition": np.ones((4, 21))}, "22 numbers"), ({"composition": {"methane": [1, 2], "C1": [1, 2]}}, "one component"),
    ({"composition": {"methane": [1, 2], "ethane": [1, 2, 3]}}, "methane"),
])
def test_a_wrong_array_is_refused_as_a_whole(given, said):
    with pytest.raises(norvane.Error, match=said):
        norvane.AGA8_M(**{**AGA8, **given})
    with pytest.raises(ValueError, match="threads"):
        norvane.AGA8_M(pressure=[1, 2], **AGA8, threads=0)


def test_single_calls_do_without_numpy():
    code = ("import sys; sys.modules['numpy'] = None\nimport norvane\n"
            "assert norvane.AGA8_M(pressure=60, composition={'methane': 1}).status == 0\n"
            "try: norvane.AGA8_M(pressure=[60, 70], composition={'methane': 1})\n"
            "except ImportError as error: assert 'norvane[numpy]' in str(error)\n"
            "else: sys.exit(1)")
    subprocess.run([sys.executable, "-c", code], check=True)
