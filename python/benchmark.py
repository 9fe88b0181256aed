#!/usr/bin/env python3
"""Measures the Python package against the library's own tool, in one run on one machine:

  read       quillon.read of a report against the tool's read of it (`quillon info`, which reads
             and prints one row per sample), interleaved, ratio of medians;
  views      memory allocated while touching every trace's times and intensities (tracemalloc
             and resident set), against the points' own size;
  metabolites  sample.metabolites_df() of a sample of many metabolites, median;
  dask       the archive example on a local cluster of 2 worker processes against a plain loop.

    PYTHONPATH=build/dev/python /usr/bin/python3 python/benchmark.py \\
        --tool build/dev/tools/quillon/quillon --generate build/dev/tools/quillon-generate/quillon-generate
"""

import argparse
import importlib.util
import os
import pathlib
import resource
import statistics
import subprocess
import sys
import tempfile
import time
import tracemalloc

ROOT = pathlib.Path(__file__).resolve().parents[1]
# This script's folder holds the package's sources, not the built package: import the build.
sys.path = [p for p in sys.path if pathlib.Path(p or ".").resolve() != ROOT / "python"]

import quillon  # noqa: E402


def seconds(action):
    started = time.perf_counter()
    action()
    return time.perf_counter() - started


def bench_read(tool, report, runs):
    ours, theirs = [], []
    for _ in range(runs):
        theirs.append(seconds(lambda: subprocess.run([tool, "info", str(report), "--format", "csv"],
                                                     check=True, stdout=subprocess.DEVNULL)))
        ours.append(seconds(lambda: quillon.read(report)))
    size = report.stat().st_size / 2**20
    print(f"read {size:.0f} MiB: quillon.read median {statistics.median(ours):.3f} s, "
          f"tool median {statistics.median(theirs):.3f} s, ratio "
          f"{statistics.median(ours) / statistics.median(theirs):.3f} ({runs} runs each)")


def bench_views(report):
    batch = quillon.read(report)
    traces = [t for s in batch.samples for f in s.functions for t in f.traces]
    points = sum(len(t) for t in traces)
    rss_before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    tracemalloc.start()
    total = 0.0
    for trace in traces:
        total += float(trace.times[-1:].sum()) + float(trace.intensities.max(initial=0))
    _, peak = tracemalloc.get_traced_memory()
    tracemalloc.stop()
    rss_after = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    print(f"views: {len(traces)} traces, {points} points ({points * 8 / 2**20:.1f} MiB of points); "
          f"tracemalloc peak {peak / 1024:.0f} KiB, max RSS growth {(rss_after - rss_before) / 1024:.1f} MiB")


def bench_metabolites(report, runs):
    batch = quillon.read(report)
    sample = max(batch.samples, key=lambda s: len(s.metabolites))
    times = [seconds(sample.metabolites_df) for _ in range(runs)]
    print(f"metabolites_df of {len(sample.metabolites)} metabolites: median "
          f"{statistics.median(times):.3f} s ({runs} runs)")


def bench_dask(folder, runs):
    spec = importlib.util.spec_from_file_location("many_reports", ROOT / "examples" / "many_reports.py")
    many = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(many)
    paths = many.report_paths(str(folder), "*.txt")
    loops, dasks = [], []
    with many.dask_client(workers=2) as client:
        many.with_dask(paths[:2], client)  # workers warm: imports done
        for _ in range(runs):
            loops.append(seconds(lambda: many.with_loop(paths)))
            dasks.append(seconds(lambda: many.with_dask(paths, client)))
    loop, dask = statistics.median(loops), statistics.median(dasks)
    print(f"dask: {len(paths)} reports, plain loop median {loop:.2f} s, 2 workers median "
          f"{dask:.2f} s, speed-up {loop / dask:.2f}x ({runs} runs each, interleaved; load average "
          f"{os.getloadavg()[0]:.1f} on {os.cpu_count()} cores)")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("--generate", required=True)
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--bulk", type=int, default=100000)
    parser.add_argument("--only", choices=["read", "views", "metabolites", "dask"])
    args = parser.parse_args()
    with tempfile.TemporaryDirectory() as work:
        work = pathlib.Path(work)

        def generate(name, *options):
            path = work / name
            subprocess.run([args.generate, "-o", str(path), *map(str, options)], check=True,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            return path

        if args.only in (None, "read", "views"):
            big = generate("big.txt", "--samples", 24, "--points", 21000)  # about 100 MB
            if args.only in (None, "read"):
                bench_read(args.tool, big, args.runs)
            if args.only in (None, "views"):
                bench_views(big)
        if args.only in (None, "metabolites"):
            bench_metabolites(generate("bulk.txt", "--bulk-metabolites", args.bulk), args.runs)
        if args.only in (None, "dask"):
            (work / "archive").mkdir()
            for seed in range(16):
                generate(f"archive/report{seed}.txt", "--samples", 8, "--points", 20000,
                         "--seed", seed + 1)
            bench_dask(work / "archive", args.runs)
    return 0


if __name__ == "__main__":
    sys.exit(main())
