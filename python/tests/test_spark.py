"""A cluster of a master and two workers on the loopback: the rows of single calls, also when a worker is killed."""
import contextlib
import os
import re
import signal
import subprocess
import sys
import time
from pathlib import Path

import numpy as np
import pyarrow as pa
import pytest

import norvane

pyspark = pytest.importorskip("pyspark", reason="pyspark is not installed: pip install -r python/requirements-spark.txt")
import norvane.spark  # noqa: E402

pytestmark = pytest.mark.filterwarnings("ignore::norvane.DefaultsWarning", "ignore::FutureWarning")
GAS = {"methane": 0.9, "ethane": 0.06, "nitrogen": 0.04}
STRUCT = "named_struct('methane', 0.9D, 'ethane', 0.06D, 'nitrogen', 0.04D)"


class Cluster:
    """A standalone master with two workers of one core each, in processes of their own."""

    def __init__(self, folder: Path):
        home = Path(pyspark.__file__).parent
        self.folder = folder
        self.environment = {**os.environ, "SPARK_HOME": str(home), "SPARK_LOCAL_IP": "127.0.0.1",
                            "PYSPARK_PYTHON": sys.executable, "PYSPARK_DRIVER_PYTHON": sys.executable,
                            "SPARK_LOCAL_DIRS": str(folder / "local"), "SPARK_WORKER_DIR": str(folder / "work")}
        # Short-lived: what the compiler of the last stage would win is less than it costs.
        self.environment["SPARK_DAEMON_JAVA_OPTS"] = "-XX:TieredStopAtLevel=1"
        self.environment["PYSPARK_SUBMIT_ARGS"] = (
            "--driver-java-options -XX:TieredStopAtLevel=1 --conf spark.ui.enabled=false pyspark-shell")
        os.environ.update(self.environment)
        self.program = str(home / "bin" / "spark-class")
        self.processes = []
        self.url = self._start("master", r"Starting Spark master at (spark://\S+)", "master.Master",
                               "--host", "127.0.0.1", "--port", "0", "--webui-port", "0")
        self.workers = [self._worker(i) for i in range(2)]

    def _worker(self, i: int):
        self._start(f"worker{i}", r"(Successfully registered) with master", "worker.Worker", "--host", "127.0.0.1",
                    "--webui-port", "0", "--cores", "1", "--memory", "1g", self.url)
        return self.processes[-1]

    def _start(self, name: str, sign: str, kind: str, *arguments: str) -> str:
        log = self.folder / f"{name}.log"
        with open(log, "wb") as out:
            process = subprocess.Popen([self.program, f"org.apache.spark.deploy.{kind}", *arguments], stdout=out,
                                       stderr=subprocess.STDOUT, env=self.environment, start_new_session=True)
        self.processes.append(process)
        for _ in range(1200):
            found = re.search(sign, log.read_text(errors="replace"))
            if found:
                return found[1]
            if process.poll() is not None:
                break
            time.sleep(0.1)
        raise AssertionError(f"the {name} did not start:\n{log.read_text(errors='replace')[-2000:]}")

    def stop(self):
        for process in self.processes:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)
            process.wait()


@pytest.fixture(scope="module")
def cluster(tmp_path_factory):
    made = Cluster(tmp_path_factory.mktemp("spark"))
    yield made
    made.stop()


@pytest.fixture(scope="module")
def session(cluster):
    from pyspark.sql import SparkSession

    made = (SparkSession.builder.master(cluster.url).appName("norvane")
            .config("spark.driver.host", "127.0.0.1").config("spark.driver.bindAddress", "127.0.0.1")
            .config("spark.ui.enabled", "false").config("spark.executor.memory", "600m")
            .config("spark.executor.extraJavaOptions", "-XX:TieredStopAtLevel=1")
            .config("spark.sql.shuffle.partitions", "2").config("spark.python.worker.faulthandler.enabled", "true")
            .getOrCreate())
    made.sparkContext.setLogLevel("ERROR")
    yield made
    made.stop()


def hours(session, rows, partitions):
    return session.range(rows, numPartitions=partitions).selectExpr(
        "id", "50e0 + id * 1e-3 as p", f"{STRUCT} as gas")


def wanted(rows):
    return norvane.AGA8_M(pressure=50 + np.arange(rows) * 1e-3, temperature=20, composition=GAS)


def calculated(frame):
    return frame.toArrow().sort_by("id")


def test_rows_are_those_of_the_batch(session):
    from pyspark.sql.types import StringType

    frame = hours(session, 20_000, 4)
    answers = norvane.spark.apply(frame, "AGA8_M", pressure="p", temperature=20, composition="gas", keep=["id"])
    assert answers.schema["mass_density"].metadata == {"unit": "kg/m3"}
    done, right = calculated(answers), wanted(20_000)
    assert done.column_names == ["id", "z", "mass_density", "molar_density", "molar_mass", "oor", "status", "message"]
    assert np.array_equal(done["z"].to_numpy(), right.z) and done["message"].null_count == 20_000
    # A column, with rows that have no result.
    frame = frame.selectExpr("id", "case when id = 3 then null when id = 5 then -1 else p end as pressure", "gas")
    one = calculated(frame.withColumn("a", norvane.spark.column(frame, "AGA8_M", temperature=20, composition="gas"))
                     .selectExpr("id", "a.z", "a.status", "a.message").limit(20_000))
    assert one["status"].to_pylist()[:7] == [0, 0, 0, norvane.NOT_RUN, 0, 1, 0]
    assert one["z"][3].as_py() is None and "blank" in one["message"][3].as_py() and one["z"][6].as_py() == right.z[6]
    for given, said in (({"pressure": "q"}, "no column 'q'"), ({"pressure": "gas"}, "numbers are wanted"), ({}, "composition")):
        with pytest.raises(norvane.Error, match=said):
            norvane.spark.apply(frame.withColumn("t", frame["id"].cast(StringType())),
                                "AGA8_M", **({"composition": "gas"} if given else {}), **given)


def test_energy_of_a_day(session):
    """The documented job: hours of meters, a composition a day, energy a day."""
    sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "examples" / "python"))
    import energy_of_a_day as job

    meters, days = 3, 2
    flow, gas = job.sample(session, meters, days)
    done = job.energy_a_day(flow, gas).toArrow().sort_by([("meter", "ascending"), ("day", "ascending")])
    assert done.num_rows == meters * days
    amounts = {row["day"]: row for row in gas.toArrow().to_pylist()}
    rows = flow.toArrow().to_pylist()
    for answer in done.to_pylist():
        energy = 0.0
        for row in rows:
            if (row["meter"], row["day"]) == (answer["meter"], answer["day"]):
                energy += job.energy_of_an_hour(row, amounts[row["day"]]["composition"])
        assert answer["energy"] == pytest.approx(energy, rel=1e-12) and answer["hours"] == 24


def test_a_killed_worker_loses_nothing(cluster, session):
    rows = 40_000
    frame = hours(session, rows, 8)

    def slowly(batches):
        for rows in batches:
            time.sleep(1.0)
            yield rows

    slow = frame.mapInArrow(slowly, frame.schema)
    answers = norvane.spark.apply(slow, "AGA8_M", pressure="p", temperature=20, composition="gas", keep=["id"])
    import threading

    done = []
    thread = threading.Thread(target=lambda: done.append(calculated(answers)))
    thread.start()
    tracker = session.sparkContext.statusTracker()
    for _ in range(600):  # until a task runs on each worker
        stages = [tracker.getStageInfo(i) for i in tracker.getActiveStageIds()]
        if any(stage is not None and stage.numActiveTasks >= 2 for stage in stages):
            break
        time.sleep(0.1)
    victim = cluster.workers[0]
    os.killpg(victim.pid, signal.SIGKILL)  # the worker, its executor and its Python processes
    thread.join(300)
    assert done and done[0].num_rows == rows
    assert np.array_equal(done[0]["z"].to_numpy(), wanted(rows).z)
    assert isinstance(done[0], pa.Table)


def test_the_example_of_the_guide(cluster, session, tmp_path):
    from test_docs import blocks, console

    session.stop()
    (block,) = (b for b in blocks("shell-session") if "energy_of_a_day" in b)
    for wanted, done in console(block, tmp_path, MASTER=cluster.url):
        assert done.stdout == wanted
