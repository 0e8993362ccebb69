"""Single calls: published values, what is refused and how that is told, units, options, names."""
import copy
import inspect
import math
import pickle
import threading

import pytest

import norvane
from norvane._library import identifier, records
from norvane._results import OWN

from conftest import GAS


def flat(value):
    return [x for row in value for x in (row if isinstance(row, list) else [row])] if isinstance(value, list) else value


def test_published_values(check_values):
    called = 0
    for case in check_values:
        record = records.get(case["function"])
        if record is None:
            continue
        inputs = {identifier(key): flat(value) for key, value in case["inputs"].items() if value is not None}
        if not set(inputs) <= set(record.input_of):
            continue
        wanted = case["outputs"].get("status", 0)
        try:
            answer = norvane.function(case["function"])(**inputs, errors="status")
        except norvane.Error:
            assert wanted != 0, case
            continue
        called += 1
        assert answer.status == wanted or (wanted == 1 and answer.status == norvane.NOT_RUN), (case, answer.message)
        assert (answer.message != "") or wanted == 0
        if wanted:
            continue
        for key, value in case["outputs"].items():
            if key == "status" or value is None:
                continue
            rtol = case.get("rtols", {}).get(key, case.get("rtol", 0.0 if "atol" in case else 1e-9))
            limit = case.get("atols", {}).get(key, case.get("atol", 0.0)) + rtol * abs(value)
            assert abs(answer[key] - value) <= limit, (case, key, answer[key])
    assert called > 1000


def test_every_function_has_a_name_a_help_and_fields_of_its_own():
    assert len(records) == 106 and len(norvane.functions()) == 100
    for name, record in records.items():
        function = getattr(norvane, name)
        assert list(inspect.signature(function).parameters)[:-2] == [i.name for i in record.inputs]
        assert record.description in function.__doc__ and pickle.loads(pickle.dumps(function)) is function
        fields = {o.name for o in record.outputs}
        assert not fields & set(OWN) and not {"errors", "threads"} & set(record.input_of)
        assert all(field.isidentifier() for field in fields)


def test_a_result_has_fields_units_codes_and_says_which_defaults_it_used():
    answer = norvane.AGA8_M(pressure=60, temperature=20, composition=GAS)
    assert answer.status == 0 and answer.status_text == "Normal" and answer.message == ""
    assert answer.z == answer["z"] and answer["mass density"] == answer.mass_density
    assert answer.units == {"mass_density": "kg/m3", "molar_density": "kmol/m3", "molar_mass": "kg/kmol"}
    assert answer.oor == 0 and answer.oor.text == "In range" and f"{answer.oor:d}" == "0"
    assert answer.defaulted == {"neo_c5_mode": 1.0, "edition": 1.0}
    assert "defaults used: neo_c5_mode = 1 (Add to iC5), edition = 1 (1994)" in repr(answer)
    assert list(answer.as_dict()) == ["z", "mass_density", "molar_density", "molar_mass", "oor"]
    for again in (pickle.loads(pickle.dumps(answer)), copy.deepcopy(answer)):
        assert again == answer and again.units == answer.units and again.oor.text == "In range"
    with pytest.raises(AttributeError, match="mass_density"):
        answer.mass_densty


def test_one_gas_in_all_its_forms():
    fractions = [0.9, 0.04, 0, 0.06] + [0.0] * 18
    wanted = norvane.AGA8_M(pressure=60, composition=fractions)
    for gas in ({"methane": 0.9, "nitrogen": 0.04, "ethane": 0.06}, {"C1": 0.9, "N2": 0.04, "c2h6": 0.06},
                {"Methane": "90 %", "nitrogen": "4 mol%", "ethane": ("60000", "ppm")}, tuple(fractions)):
        if isinstance(gas, dict) and "Methane" in gas:
            gas["ethane"] = (60000, "ppm")
        assert norvane.AGA8_M(pressure=60, composition=gas).z == pytest.approx(wanted.z, rel=1e-14)


@pytest.mark.parametrize("given, plain", [
    ({"pressure": "870 psia"}, {"pressure": norvane.convert(870, "psia", "bar(a)")}),
    ({"pressure": (870, "psi a")}, {"pressure": norvane.convert(870, "psia", "bar_a")}),
    ({"pressure": " +6e1 "}, {"pressure": 60}),
    ({"temperature": "68 degF"}, {"temperature": norvane.convert(68, "degF", "°C")}),
    ({"temperature": "293.15 K"}, {"temperature": norvane.convert(293.15, "K", "degC")}),
    ({"edition": "2017"}, {"edition": 2}), ({"edition": 2017}, {"edition": 2}), ({"edition": True}, {"edition": 1}),
    ({"neo_c5_mode": "add to nC5"}, {"neo_c5_mode": 2}),
])
def test_values_with_units_and_options_by_label(given, plain):
    assert norvane.AGA8_M(**given, composition=GAS).as_dict() == norvane.AGA8_M(**plain, composition=GAS).as_dict()


def test_conversions_are_those_of_the_command():
    assert norvane.convert(1, "bar", "kPa") == 100 and norvane.convert(25, "°C", "K") == 298.15
    assert norvane.convert(50, "mol%", "mol/mol") == 0.5
    with pytest.warns(norvane.UnitWarning, match="in3"):
        norvane.convert(1, "in3", "m3")
    for unit, to, said in (("furlong", "m", "furlong"), ("m", "kg", "mass"), ("barg", "bara", "atmosphere"),
                           ("x" * 100, "m", "64 bytes"), ("mJ", "J", "mJ")):
        with pytest.raises(norvane.Error, match=said):
            norvane.convert(1.0, unit, to)


@pytest.mark.parametrize("inputs, argument, said, limit, unit", [
    ({"pressure": -5}, "pressure", r"pressure \(-5\) must be within 0 to 2800", "within 0 to 2800 bar(a)", "bar(a)"),
    ({"pressure": math.nan}, "pressure", "nan", "within 0 to 2800 bar(a)", "bar(a)"),
    ({"pressure": math.inf}, "pressure", "inf", "within 0 to 2800 bar(a)", "bar(a)"),
    ({"pressure": 10 ** 400}, "pressure", "is not a number", None, "bar(a)"),
    ({"pressure": None}, "pressure", "it is blank", None, "bar(a)"),
    ({"pressure": True}, "pressure", "True is not a number", None, "bar(a)"),
    ({"pressure": "5 barg"}, "pressure", "pressure of the atmosphere", None, "bar(a)"),
    ({"pressure": "5 kg"}, "pressure", "unit of mass", None, "bar(a)"),
    ({"pressure": "5,5"}, "pressure", "is not a number", None, "bar(a)"),
    ({"pressure": "high"}, "pressure", "'high' is not a number", None, "bar(a)"),
    ({"pressure": b"60"}, "pressure", "is not a number", None, "bar(a)"),
    ({"edition": 9}, "edition", "1: 1994; 2: 2017", "1 to 2", None),
    ({"edition": 1.5}, "edition", "not a whole number", "1 to 2", None),
    ({"edition": "first"}, "edition", "1: 1994; 2: 2017", "1 to 2", None),
    ({"composition": {}}, "composition", "is empty", None, None),
    ({"composition": {"methan": 1}}, "composition", "did you mean methane", None, None),
    ({"composition": {"methane": 0.5, "C1": 0.5}}, "composition", "are one component", None, None),
    ({"composition": {"methane": "90 kg"}}, "composition", "is", None, None),
    ({"composition": [1.0] * 21}, "composition", "a list of 21, but 22", None, None),
    ({"composition": "methane"}, "composition", "is not a list", None, None),
    ({"composition": [0.5] + [0.0] * 21}, "composition", "sum", None, None),
])
def test_what_is_wrong_is_told(inputs, argument, said, limit, unit):
    with pytest.raises(norvane.Error, match=said) as caught:
        norvane.AGA8_M(**{"composition": GAS, **inputs})
    error = caught.value
    assert (error.function, error.argument, error.unit) == ("AGA8_M", argument, unit)
    assert limit is None or error.limit == limit
    again = pickle.loads(pickle.dumps(error))
    assert str(again) == str(error) and again.argument == argument and again.status == error.status


def test_a_limit_that_is_one_number_is_a_number():
    with pytest.raises(norvane.Error) as caught:
        norvane.AGA5_C(specific_gravity=1.5, composition=[1.0] + [0.0] * (records["AGA5_C"].gas.cells - 1))
    assert caught.value.limit == 1.0 and caught.value.value == 1.5 and caught.value.status == norvane.NOT_RUN


def test_statuses_instead_of_errors():
    answer = norvane.AGA8_M(pressure=-5, composition=GAS, errors="status")
    assert answer.status == 1 and answer.status_text == "argument error" and "pressure (-5)" in answer.message
    assert math.isnan(answer.z) and answer.oor is None and "defaults used" in repr(answer)
    refused = norvane.AGA8_M(edition=9, composition=GAS, errors="status")
    assert refused.status == norvane.NOT_RUN and refused.status_text == "nothing was calculated"


def test_wrong_use():
    for call, said in ((lambda: norvane.AGA8_M(presure=5, composition=GAS), "did you mean pressure"),
                       (lambda: norvane.AGA8_M(60, 20, GAS), "positional"),
                       (lambda: norvane.function("AGA8_X"), "AGA8_M")):
        with pytest.raises((TypeError, norvane.Error), match=said):
            call()
    with pytest.raises(norvane.Error, match="composition is not given"):
        norvane.AGA8_M(pressure=5)
    with pytest.raises(ValueError, match="errors"):
        norvane.AGA8_M(composition=GAS, errors="ignore")
    assert norvane.function("aga8_m") is norvane.AGA8_M


def test_threads_do_not_mix_their_messages():
    failures = []

    def work(pressure):
        for _ in range(300):
            answer = norvane.AGA8_M(pressure=pressure, composition=GAS, errors="status")
            if f"({pressure})" not in answer.message:
                failures.append(answer.message)

    threads = [threading.Thread(target=work, args=(-n,)) for n in range(1, 5)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not failures
