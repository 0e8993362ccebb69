"""Tables of three kinds, Parquet files and SQL: the same rows as single calls, and what is wrong with columns."""
import os
import signal
import subprocess
import sys
import time

import numpy as np
import pandas as pd
import polars as pl
import pyarrow as pa
import pyarrow.parquet as pq
import pytest

import norvane

from conftest import GAS, TOP

pytestmark = pytest.mark.filterwarnings("ignore::norvane.DefaultsWarning")
LIST = [0.9, 0.04, 0.0, 0.06] + [0.0] * 18
P = [60.0, 61.5, -3.0, 70.0]
Z = [norvane.AGA8_M(pressure=p, temperature=20, composition=GAS, errors="status").z for p in P]


def column(table, name):
    values = table[name].to_pylist() if isinstance(table, (pa.Table, pa.RecordBatch)) else table[name].to_list()
    return [np.nan if v is None or v is pd.NA else v for v in values]


def hours(kind, **columns):
    columns = columns or {"p": P, "t": [20, 20, 20, 20], "methane": [0.9] * 4, "ethane": [0.06] * 4, "N2": [0.04] * 4}
    return {"pandas": pd.DataFrame, "polars": pl.DataFrame, "arrow": pa.table,
            "batch": lambda c: pa.RecordBatch.from_pydict(c)}[kind](columns)


@pytest.mark.parametrize("kind", ["pandas", "polars", "arrow", "batch"])
def test_a_table_of_any_kind(kind):
    table = hours(kind)
    done = norvane.apply(table, "aga8_m", pressure="p", temperature="t")
    assert type(done) is type(table)
    names = list(done.columns) if kind in ("pandas", "polars") else done.schema.names
    assert names == ["p", "t", "methane", "ethane", "N2", "z", "mass_density", "molar_density", "molar_mass", "oor",
                     "status", "message"]
    assert np.array_equal(column(done, "z"), Z, equal_nan=True)
    assert column(done, "status") == [0, 0, 1, 0] and "pressure (-3)" in column(done, "message")[2]
    assert column(done, "oor")[0] == 0 and column(done, "oor")[2] is not None
    # The answer of one function is the input of the next; a name that is taken bears the function's.
    flow = norvane.apply(done, "ISO5167_Orifice", pres="p", temp="t", dens="mass density", dp=100, visc=1.1e-5,
                         kappa=1.3, pipe_diam="303.12 mm", dev_diam=120.04, config="flange tappings",
                         outputs=["mass rate"], messages=False)
    assert column(flow, "mass_rate")[0] == norvane.ISO5167_Orifice(
        pres=60, temp=20, dens=column(done, "mass_density")[0], dp=100, visc=1.1e-5, kappa=1.3, pipe_diam=303.12,
        dev_diam=120.04, config="flange tappings").mass_rate
    assert column(flow, "iso5167_orifice_status")[2] != 0 and np.isnan(column(flow, "mass_rate")[2])


def test_units_of_columns():
    table = pa.table({"pressure [psia]": [870.0], "T": [68.0], "C1 [mol%]": [90.0], "ethane": [0.06], "nitrogen": [0.04]})
    wanted = norvane.AGA8_M(pressure="870 psia", temperature="68 degF",
                            composition={"methane": "90 %", "ethane": 0.06, "nitrogen": 0.04}).z
    assert column(norvane.apply(table, "AGA8_M", temperature=("T", "degF")), "z") == [wanted]
    assert column(norvane.apply(table, "AGA8_M", temperature="T", units={"T": "degF"}), "z") == [wanted]
    told = pa.table([[870.0], [68.0], [LIST]], schema=pa.schema([
        pa.field("pressure", pa.float64(), metadata={"unit": "psia"}),
        pa.field("temperature", pa.float32(), metadata={"unit": "°F"}), pa.field("composition", pa.list_(pa.float64()))]))
    done = norvane.apply(told, "AGA8_M")
    assert column(done, "z") == [norvane.AGA8_M(pressure="870 psia", temperature="68 degF", composition=LIST).z]
    assert done.schema.field("mass_density").metadata == {b"unit": b"kg/m3"}


@pytest.mark.parametrize("gas", [
    pa.array([LIST] * 4), pa.array([LIST] * 4, pa.list_(pa.float64(), 22)), pa.array([LIST] * 4, pa.large_list(pa.float32())),
    pa.array([LIST] * 6)[1:5], pa.array([GAS] * 4), pa.array([LIST] * 5, pa.list_(pa.float64(), 22))[1:]])
def test_gases_as_lists_and_structures(gas):
    done = norvane.apply(pa.table({"pressure": P, "composition": gas}), "AGA8_M", temperature=20, outputs=["z"])
    assert np.allclose(column(done, "z"), Z, rtol=1e-6, equal_nan=True)
    if "float" not in str(gas.type):
        assert np.array_equal(column(done, "z"), Z, equal_nan=True)


def test_rows_with_nulls_short_lists_and_labels():
    table = pa.table({"pressure": pa.chunked_array([[60.0, None], [60.0, 60.0, 60.0, 60.0], [np.nan]]),
                      "composition": [LIST, LIST, LIST[:21], None, LIST[:3] + [None] + LIST[4:], LIST, LIST],
                      "edition": ["2017", "1994", "1994", "1994", "1994", "1066", "1994"]})
    done = norvane.apply(table, "AGA8_M", keep=[])
    assert column(done, "status") == [0] + [norvane.NOT_RUN] * 5 + [1]
    said = ["pressure is blank", "a list of 21, but 22", "composition is blank", "an amount is blank", "not a whole number",
            "(nan)"]
    for text, message in zip(said, column(done, "message")[1:]):
        assert text in message
    assert np.isnan(column(done, "z")[1:]).all() and column(done, "z")[0] > 0


def test_pandas_keeps_its_index_and_missing_numbers():
    frame = pd.DataFrame({"pressure": pd.array([60, None], dtype="Float64"), "composition": [LIST, LIST]}, index=["b", "b"])
    done = norvane.apply(frame, "AGA8_M", keep=["pressure"], outputs=["z", "oor"])
    assert list(done.columns) == ["pressure", "z", "oor", "status", "message"] and list(done.index) == ["b", "b"]
    assert done.oor.dtype == "Int32" and done.oor.isna().tolist() == [False, True] and "blank" in done.message.iloc[1]


@pytest.mark.parametrize("columns, given, said", [
    ({"p": ["a"], "composition": [LIST]}, {"pressure": "p"}, "'p' holds .*str.*, where numbers"),
    ({"p": [True], "composition": [LIST]}, {"pressure": "p"}, "bool"),
    ({"p": [60.0], "composition": [LIST]}, {"pressure": "q"}, "there is no column 'q'"),
    ({"p": [60.0], "composition": [LIST]}, {"pressure": ("p", "kg")}, "unit of mass"),
    ({"p [kg]": [60.0], "composition": [LIST]}, {"pressure": "p"}, "unit of mass"),
    ({"p": [60.0]}, {"pressure": "p"}, "composition is not given"),
    ({"p": [60.0], "composition": [LIST[:21]]}, {"pressure": "p"}, "holds lists of 21"),
    ({"p": [60.0], "composition": [1.0]}, {"pressure": "p"}, "where lists of 22"),
    ({"p": [60.0], "composition": [{"methan": 1.0}]}, {"pressure": "p"}, "did you mean methane"),
    ({"p": [60.0], "methane": [1.0], "C1": [1.0]}, {"pressure": "p"}, "comes also from 'methane'"),
    ({"p": [60.0], "methane": [1.0], "C6+": [0.0]}, {"pressure": "p"}, "must be split"),
    ({"presure": [60.0], "composition": [LIST]}, {}, "slip for the input 'pressure'"),
    ({"p": [60.0], "P": [60.0], "composition": [LIST]}, {"pressure": "P "}, "several columns"),
    ({"x": [60.0]}, {"composition": GAS}, "no input comes from a column"),
    ({"p": [60.0], "composition": [LIST]}, {"pressure": "p", "defaults": "refuse"}, "temperature = 0 °C"),
    ({"p": [60.0], "composition": [LIST]}, {"pressure": "p", "outputs": ["zz"]}, "no output 'zz'"),
    ({"p": [60.0], "composition": [LIST]}, {"pressure": "p", "dens": "mss density"}, "did you mean mass_density"),
    ({"p": [60.0], "composition": [LIST]}, {"pressure": "p", "keep": ["q"]}, "no column 'q'"),
    ({"p": [60.0], "composition": [LIST]}, {"pressure": "p", "units": {"q": "bar"}}, "no column 'q'"),
    ({"p": [60.0], "methane": [1.0], "C6+": [0.0]}, {"pressure": "p", "c6plus": (1, 2)}, "sum to 100 or 1"),
])
def test_a_wrong_column_is_refused_before_the_first_row(columns, given, said):
    for kind in ("arrow", "pandas", "polars"):
        with pytest.raises(norvane.Error, match=said):
            norvane.apply(hours(kind, **columns), "AGA8_M", **given)


def test_c6plus_is_split_and_defaults_are_told():
    table = pa.table({"pressure": [60.0], "methane": [0.95], "C6+": [0.05]})
    with pytest.warns(norvane.DefaultsWarning, match="temperature = 0 °C"):
        done = norvane.apply(table, "AGA8_M", c6plus=(47, 36, 17))
    gas = {"methane": 0.95, "n-hexane": 0.05 * 0.47, "n-heptane": 0.05 * 0.36, "n-octane": 0.05 * 0.17}
    assert column(done, "z") == [norvane.AGA8_M(pressure=60, composition=gas).z]


def test_no_rows_and_no_table():
    empty = pa.table({"pressure": pa.array([], pa.float64()), "composition": pa.array([], pa.list_(pa.float64()))})
    assert norvane.apply(empty, "AGA8_M").num_rows == 0
    for wrong in ({"pressure": [60.0]}, pl.LazyFrame({"pressure": [60.0]}), 5):
        with pytest.raises(norvane.Error):
            norvane.apply(wrong, "AGA8_M", composition=GAS)


def command(*arguments, cwd):
    return subprocess.run([sys.executable, "-m", "norvane", *map(str, arguments)], cwd=cwd, capture_output=True, text=True)


@pytest.fixture
def parquet(tmp_path):
    rows = 5000
    p = np.linspace(-1, 100, rows)
    pq.write_table(pa.table({"ts": np.arange(rows), "p": p, "gas": [LIST] * rows}), tmp_path / "in.parquet",
                   row_group_size=700)
    return tmp_path


def test_parquet_in_and_out(parquet):
    done = command("batch", "AGA8_M", "in.parquet", "out.parquet", "pressure=p", "temperature=20 °C", "composition=gas",
                   "edition=2017", "--keep", "ts", "--batch-rows", "999", "--progress", cwd=parquet)
    assert done.returncode == 0 and "5000 rows: 50 without a result" in done.stderr and "100%" in done.stderr
    assert "note: AGA8_M: defaults used in every row: neo_c5_mode = 1" in done.stderr
    table = pq.read_table(parquet / "out.parquet")
    source = pq.read_table(parquet / "in.parquet")
    wanted = norvane.AGA8_M(pressure=source["p"].to_numpy(), temperature=20, composition=LIST, edition=2017)
    assert table.schema.names[:2] == ["ts", "z"] and table["ts"].equals(source["ts"])
    assert np.array_equal(table["z"].to_numpy(), wanted.z, equal_nan=True)
    assert (table["status"].to_numpy() == wanted.status).all() and table["message"].null_count == 4950
    strict = command("batch", "AGA8_M", "in.parquet", "out.parquet", "pressure=p", "composition=gas", "--strict", "--quiet",
                     cwd=parquet)
    assert strict.returncode == 1


@pytest.mark.parametrize("arguments, code, said", [
    (("in.parquet", "out.parquet", "pressure=q", "composition=gas"), 2, "no column 'q'"),
    (("in.parquet", "out.parquet", "pressure=gas", "composition=gas"), 2, "where numbers are wanted"),
    (("in.parquet", "in.parquet", "pressure=p", "composition=gas"), 2, "the input itself"),
    (("in.parquet", "out.parquet", "pressure", "composition=gas"), 2, "key=value"),
    (("in.parquet", "out.parquet", "pressure=p", "pressure=p"), 2, "twice"),
    (("none.parquet", "out.parquet"), 3, "none.parquet"),
    (("text.parquet", "out.parquet"), 2, "no Parquet file"),
    (("in.parquet", "no/out.parquet", "pressure=p", "composition=gas"), 3, "No such file"),
    (("cut.parquet", "out.parquet", "pressure=p", "composition=gas"), 3, "norvane: "),
])
def test_nothing_half_written(parquet, arguments, code, said):
    (parquet / "text.parquet").write_text("ts,p\n1,2\n")
    whole = bytearray((parquet / "in.parquet").read_bytes())
    middle = len(whole) // 2
    whole[middle : middle + 2000] = b"\xff" * 2000
    (parquet / "cut.parquet").write_bytes(whole)
    (parquet / "out.parquet").write_bytes(b"before")
    before = sorted(os.listdir(parquet))
    done = command("batch", "AGA8_M", *arguments, cwd=parquet)
    assert done.returncode == code and said in done.stderr and "Traceback" not in done.stderr
    assert sorted(os.listdir(parquet)) == before and (parquet / "out.parquet").read_bytes() == b"before"


def test_an_interrupted_command_leaves_nothing(parquet):
    pq.write_table(pa.table({"p": np.full(400_000, 60.0), "gas": pa.array([LIST] * 1).take([0] * 400_000)}),
                   parquet / "big.parquet", row_group_size=1000)
    process = subprocess.Popen([sys.executable, "-m", "norvane", "batch", "AGA8_M", "big.parquet", "out.parquet",
                                "pressure=p", "composition=gas", "--batch-rows", "500"], cwd=parquet, stderr=subprocess.PIPE)
    while process.poll() is None and not list(parquet.glob(".out.parquet.*")):
        time.sleep(0.01)
    process.send_signal(signal.SIGINT)
    process.communicate(timeout=60)
    assert process.returncode == 130 and not (parquet / "out.parquet").exists() and not list(parquet.glob(".out*"))


def test_sql():
    duckdb = pytest.importorskip("duckdb")
    import norvane.duckdb

    connection = duckdb.connect()
    assert len(norvane.duckdb.register(connection)) == 98
    rows = 7000
    connection.execute(f"create table hours as select i as ts, 50e0 + i * 1e-2 as p, 20 as t, {LIST}::double[] as list, "
                       "{'methane': 0.9, 'ethane': 0.06, 'N2': 0.04} as gas from range(?) q(i)", [rows])
    wanted = norvane.AGA8_M(pressure=50 + np.arange(rows) * 0.01, temperature=20, composition=GAS)
    for gas in ("gas", "list"):
        answer = connection.sql(f"select aga8_m(p, t, {gas}) as r from hours order by ts").fetchnumpy()["r"]
        assert [r["z"] for r in answer] == wanted.z.tolist() and {r["status"] for r in answer} == {0}
    assert connection.sql("select max(aga8_m({'composition': gas, 'pressure': p}).z) from hours").fetchall()[0][0] < 1
    bad = connection.sql("select aga8_m(x, 20, gas) from (values (-5.0), (null), (60.0)) v(x), hours where ts = 0").fetchall()
    assert [r[0]["status"] for r in bad] == [1, norvane.NOT_RUN, 0] and bad[1][0]["z"] is None
    assert "blank" in bad[1][0]["message"] and bad[2][0]["message"] is None
    for wrong, said in (("'x', 20, gas", "numbers are wanted"), ("1, 2, gas, 1, 1, 1", "6 inputs"), ("1, 2", "composition")):
        with pytest.raises(duckdb.Error, match=said):
            connection.sql(f"select aga8_m({wrong}) from hours").fetchall()
    assert norvane.duckdb.register(connection, ["ISO6976_2016_M"], prefix="nv_", messages=False) == ["nv_iso6976_2016_m"]
    assert connection.sql("select nv_iso6976_2016_m(list).wobbe from hours limit 1").fetchall()[0][0] > 40
