#!/usr/bin/python3
"""The bucket workload of tables.cpp with pandas: a million events by week and item, six aggregates of a value.

    bench/pandas_bucket.py              # python3-pandas; `./dev bench bucket` runs it too where that is installed

Prints the median, fastest and slowest of seven runs, in milliseconds.
"""
import time

import numpy as np
import pandas as pd

ROWS, RUNS, FIRST_DAY, DAYS, SEED = 1_000_000, 7, 44200, 1092, 3
GROUPS, TOTAL = 7800, 519367645.1


def random_words(count):
    """splitmix64 (Steele, Lea, Flood 2014), as in TableData.h."""
    z = np.uint64(SEED) + np.arange(1, count + 1, dtype=np.uint64) * np.uint64(0x9E3779B97F4A7C15)
    z = (z ^ (z >> np.uint64(30))) * np.uint64(0xBF58476D1CE4E5B9)
    z = (z ^ (z >> np.uint64(27))) * np.uint64(0x94D049BB133111EB)
    return z ^ (z >> np.uint64(31))


def events():
    day, item, value = random_words(3 * ROWS).reshape(ROWS, 3).T
    unit = lambda words: (words >> np.uint64(11)).astype(np.float64) * 2.0**-53
    return pd.DataFrame({
        "date": FIRST_DAY + DAYS * ((np.arange(ROWS) + unit(day)) / ROWS),
        "item": ((item >> np.uint64(32)) * np.uint64(50) >> np.uint64(32)).astype(np.int32),
        "value": unit(value) * 1000,
    })


def bucket(frame):
    week = ((np.floor(frame["date"]) - FIRST_DAY) // 7).astype(np.int32).rename("week")
    return frame.groupby([week, "item"])["value"].agg(["sum", "min", "max", "mean", "first", "last"])


def main():
    frame = events()
    result, times = bucket(frame), []
    for _ in range(RUNS):
        start = time.perf_counter()
        result = bucket(frame)
        times.append((time.perf_counter() - start) * 1000)
    assert len(result) == GROUPS and abs(result.to_numpy().sum() - TOTAL) < 0.1, "another result than the other ways"
    print(f"bucket/rows:{ROWS}/groups:{GROUPS}/pandas {pd.__version__}: "
          f"median {sorted(times)[RUNS // 2]:.1f} ms, {min(times):.1f} to {max(times):.1f}")


main()
