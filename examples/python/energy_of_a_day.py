#!/usr/bin/env python3
"""Energy a day of many meters on Spark, recalculated from hourly data and the day's composition of the gas.

usage: energy_of_a_day.py [METERS DAYS]          on spark-submit, or by itself with the cluster in MASTER
       energy_of_a_day.py FLOW GAS OUT           Parquet folders: hours of the meters, gases of the days

An hour is a row: meter, day, dp [mbar], p [bar(a)], t [°C]. A gas is a row: day, composition (22 amounts). Meters are
the partitions; each hour gets its density by AGA-8, its mass rate by ISO 5167 and, with the calorific value of the
day by ISO 6976, its energy.
"""
import os
import sys

import norvane
import norvane.spark
from pyspark.sql import SparkSession
from pyspark.sql import functions as F

ORIFICE = {"pipe_diam": 303.12, "dev_diam": 120.04, "config": "flange tappings", "visc": 1.1e-5, "kappa": 1.31}
GAS = [0.936, 0.0102, 0.0141, 0.031, 0.006] + [0.0] * 5 + [0.001, 0.0010, 0.0, 0.0, 0.0007] + [0.0] * 7


def sample(session, meters, days):
    """Hours as a database would hold them, and a gas a day."""
    hours = session.range(meters * days * 24)
    flow = hours.select(
        (F.col("id") % meters).alias("meter"), F.floor(F.col("id") / (meters * 24)).alias("day"),
        (110.0 + (F.col("id") % 37)).alias("dp"), (52.0 + (F.col("id") % 11) * 0.3).alias("p"),
        (8.0 + (F.col("id") % 24) * 0.25).alias("t"))
    gases = []
    for day in range(days):
        gas = list(GAS)
        gas[0], gas[3] = GAS[0] - 0.001 * (day % 7), GAS[3] + 0.001 * (day % 7)
        gases.append((day, gas))
    return flow, session.createDataFrame(gases, "day long, composition array<double>")


def energy_a_day(flow, gas):
    """Meter, day, hours, energy in MJ."""
    calorific = norvane.spark.apply(gas, "ISO6976_2016_M", outputs=["sup cal val mass"], messages=False,
                                    defaults="allow")
    rows = flow.join(F.broadcast(calorific.drop("status")), "day").repartition("meter")
    rows = norvane.spark.apply(rows, "AGA8_M", pressure="p", temperature="t", edition=2017, dens="mass density",
                               messages=False, defaults="allow")
    rows = norvane.spark.apply(rows.drop("status"), "ISO5167_Orifice", pres="p", temp="t", outputs=["mass rate"],
                               messages=False, defaults="allow", **ORIFICE)
    hourly = rows.withColumn("energy", F.col("mass_rate") * 3600 * F.col("sup_cal_val_mass"))
    # A row without a result makes a day without one, never a smaller sum.
    return hourly.groupBy("meter", "day").agg(
        F.count("*").alias("hours"),
        F.when(F.count("energy") == F.count("*"), F.sum("energy")).alias("energy"))


def energy_of_an_hour(row, composition):
    """The same for one row by single calls, to compare with."""
    density = norvane.AGA8_M(pressure=row["p"], temperature=row["t"], composition=composition, edition=2017).mass_density
    rate = norvane.ISO5167_Orifice(dp=row["dp"], pres=row["p"], temp=row["t"], dens=density, **ORIFICE).mass_rate
    return rate * 3600 * norvane.ISO6976_2016_M(composition=composition).sup_cal_val_mass


def main():
    os.environ.setdefault("PYSPARK_PYTHON", sys.executable)  # the workers need the package too
    session = SparkSession.builder.appName("energy of a day").master(os.environ.get("MASTER", "local[*]")).getOrCreate()
    if len(sys.argv) == 4:
        flow, gas = session.read.parquet(sys.argv[1]), session.read.parquet(sys.argv[2])
        energy_a_day(flow, gas).write.parquet(sys.argv[3])
    else:
        meters, days = map(int, sys.argv[1:3]) if len(sys.argv) == 3 else (4, 2)
        for row in energy_a_day(*sample(session, meters, days)).orderBy("meter", "day").collect():
            print(f"meter {row['meter']}, day {row['day']}: {row['hours']} hours, {row['energy']:.0f} MJ")
    session.stop()


if __name__ == "__main__":
    main()
