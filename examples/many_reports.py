#!/usr/bin/env python3
"""Summaries and metabolic stability of every report in a folder, computed in parallel on Dask.

Each report is read by one Dask task (a Dask bag of file names), which returns its found-count
summary and its stability series as rows; the rows of all reports are gathered into one pandas
DataFrame, one row per report, series and metabolite. Runs on a local cluster of worker
processes by default, or on a running Dask scheduler given by address:

    python3 examples/many_reports.py archive/ -o results.csv
    python3 examples/many_reports.py archive/ --scheduler tcp://10.0.0.5:8786
"""

from __future__ import annotations

import argparse
import contextlib
import glob
import os
import sys
import time

import pandas as pd

import quillon

COLUMNS = ["report", "parent", "process_parameters", "half_life_min", "clint_ul_min_mg",
           "r_squared", "flags", "metabolite", "shift", "samples_found"]


def report_rows(path: str) -> list[dict]:
    """The rows of one report: for every stability series, one row per expected metabolite with
    the number of samples in which it was found (a series row without metabolites when the
    summary is empty). A report that cannot be read gives one row whose flags say why."""
    try:
        batch = quillon.read(path)
    except (OSError, ValueError) as error:
        return [dict.fromkeys(COLUMNS) | {"report": os.path.basename(path), "flags": str(error)}]
    summary = batch.summary_df()
    counts = summary.drop(columns=["metabolite", "shift"])
    found = (counts > 0).sum(axis=1)
    rows = []
    for series in batch.stability():
        base = {"report": os.path.basename(path), "parent": series.parent,
                "process_parameters": series.process_parameters,
                "half_life_min": series.half_life_min, "clint_ul_min_mg": series.clint_ul_min_mg,
                "r_squared": series.r_squared, "flags": series.flags}
        for name, shift, samples_found in zip(summary["metabolite"], summary["shift"], found):
            rows.append(base | {"metabolite": name, "shift": shift,
                                "samples_found": int(samples_found)})
        if summary.empty:
            rows.append(base | {"metabolite": None, "shift": None, "samples_found": None})
    return rows


def as_frame(rows: list[dict]) -> pd.DataFrame:
    """The gathered rows as one DataFrame in a fixed order (by report, then as computed)."""
    table = pd.DataFrame.from_records(rows, columns=COLUMNS)
    table = table.astype({"half_life_min": "float64", "clint_ul_min_mg": "float64",
                          "r_squared": "float64", "samples_found": "Int64"})
    return table.sort_values("report", kind="stable").reset_index(drop=True)


def with_dask(paths: list[str], client) -> pd.DataFrame:
    """All reports' rows computed by the Dask client's workers, one task per report."""
    import dask.bag as db

    bag = db.from_sequence(paths, npartitions=max(1, len(paths))).map(report_rows).flatten()
    return as_frame(client.compute(bag).result())


def with_loop(paths: list[str]) -> pd.DataFrame:
    """The same rows computed one report after the other in this process."""
    return as_frame([row for path in paths for row in report_rows(path)])


def report_paths(folder: str, pattern: str) -> list[str]:
    return sorted(glob.glob(os.path.join(folder, pattern)))


@contextlib.contextmanager
def dask_client(scheduler: str | None = None, workers: int = 2):
    """A client of the scheduler at that address, or of a new local cluster of worker processes
    (one thread each) that is shut down afterwards."""
    from dask.distributed import Client, LocalCluster

    if scheduler:
        with Client(scheduler) as client:
            yield client
        return
    with LocalCluster(n_workers=workers, threads_per_worker=1, processes=True,
                      dashboard_address=None) as cluster, Client(cluster) as client:
        yield client


def main(argv: list[str] | None = None) -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder", help="folder of report files")
    parser.add_argument("--pattern", default="*.txt", help="report file names (default *.txt)")
    parser.add_argument("--scheduler", help="address of a Dask scheduler (tcp://host:port); "
                                            "default: a local cluster")
    parser.add_argument("--workers", type=int, default=2,
                        help="worker processes of the local cluster (default 2)")
    parser.add_argument("--loop", action="store_true", help="no Dask: one report after another")
    parser.add_argument("-o", "--output", help="CSV file to write (default: print)")
    args = parser.parse_args(argv)

    paths = report_paths(args.folder, args.pattern)
    if not paths:
        print(f"many_reports: no {args.pattern} in {args.folder}", file=sys.stderr)
        return 1
    started = time.perf_counter()
    if args.loop:
        table = with_loop(paths)
    else:
        with dask_client(args.scheduler, args.workers) as client:
            table = with_dask(paths, client)
    seconds = time.perf_counter() - started
    if args.output:
        table.to_csv(args.output, index=False)
    else:
        print(table.to_string(index=False))
    print(f"many_reports: {len(paths)} reports in {seconds:.2f} s", file=sys.stderr)
    return 0


if __name__ == "__main__":
    sys.exit(main())
