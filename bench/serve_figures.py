"""Figures of the web server on a report: time to the first line (the read), every API answer's
latency, a concurrent burst, and the time from opening the page to the samples table drawn in
headless Chromium; the server's peak memory against `quillon info`'s on the same report.
Usage: serve_figures.py QUILLON REPORT [--burst 200] [--samples N] [--no-browser]"""

import argparse
import concurrent.futures
import json
import os
import re
import signal
import statistics
import subprocess
import tempfile
import time
import urllib.request


def median_ms(values):
    return statistics.median(values) * 1000


def percentile_ms(values, share):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, int(share * len(ordered)))] * 1000


def fetch(base, token, path):
    started = time.perf_counter()
    with urllib.request.urlopen(f"{base}api/v1/{path}{'&' if '?' in path else '?'}token={token}",
                                timeout=30) as answer:
        body = answer.read()
    return time.perf_counter() - started, json.loads(body)


def routes(base, token, samples):
    """Every GET route of the first samples (all when None), with the first metabolites' details."""
    paths = ["reports", "batch"]
    for sample in fetch(base, token, "batch")[1]["samples"][:samples]:
        s = f"samples/{sample['sample']}"
        paths += [s, f"{s}/metabolites", f"{s}/metabolites?area=1000&time_low=2&time_high=12",
                  f"{s}/peaks", f"{s}/combined/all?width=1000", f"{s}/structure"]
        for row in fetch(base, token, f"{s}/metabolites")[1]["metabolites"][:6]:
            m = f"{s}/metabolites/{row['index']}"
            detail = fetch(base, token, m)[1]
            paths += [m, f"{m}/candidates", f"{m}/correlation"]
            if detail["plot_trace"] is not None:
                paths.append(f"{s}/traces/{detail['plot_trace']}?width=1000")
            if detail["spectrum_function"] is not None:
                paths.append(f"{s}/spectra/{row['peak_id']}?function={detail['spectrum_function']}")
    return paths


def page_drawn(address, runs=5):
    from selenium import webdriver
    from selenium.webdriver.chrome.service import Service
    from selenium.webdriver.common.by import By
    options = webdriver.ChromeOptions()
    for flag in ("--headless=new", "--no-sandbox", "--disable-gpu", "--window-size=1280,800",
                 f"--user-data-dir={tempfile.mkdtemp()}"):
        options.add_argument(flag)
    options.binary_location = "/usr/bin/chromium"
    driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    times = []
    for _ in range(runs):
        driver.get("about:blank")
        started = time.perf_counter()
        driver.get(address)
        while not driver.find_elements(By.CSS_SELECTOR, "#samples-table tbody tr"):
            time.sleep(0.005)
        times.append(time.perf_counter() - started)
    driver.quit()
    return times


def peak_rss_mb(pid):
    """The peak resident memory of a running process (VmHWM)."""
    with open(f"/proc/{pid}/status") as status:
        for line in status:
            if line.startswith("VmHWM:"):
                return int(line.split()[1]) / 1024
    return float("nan")


def info_peak_rss_mb(quillon, report):
    """The peak resident memory of `quillon info` on the report."""
    child = subprocess.Popen([quillon, "-q", "info", report], stdout=subprocess.DEVNULL)
    _, _, usage = os.wait4(child.pid, 0)
    return usage.ru_maxrss / 1024


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("quillon")
    parser.add_argument("report")
    parser.add_argument("--burst", type=int, default=200)
    parser.add_argument("--samples", type=int, default=None,
                        help="measure the views of the first N samples only")
    parser.add_argument("--no-browser", action="store_true")
    arguments = parser.parse_args()

    started = time.perf_counter()
    server = subprocess.Popen([arguments.quillon, "serve", arguments.report, "--port", "0"],
                              stdout=subprocess.PIPE, text=True)
    line = server.stdout.readline()
    read = time.perf_counter() - started
    match = re.search(r"at (http://\S+/)\?token=(\w+)", line)
    base, token = match.group(1), match.group(2)
    print(f"serve: address printed after {read * 1000:.0f} ms (the read)")
    try:
        paths = routes(base, token, arguments.samples)
        latencies = {path: min(fetch(base, token, path)[0] for _ in range(5)) for path in paths}
        slowest = max(latencies, key=latencies.get)
        print(f"API: {len(paths)} answers, median {median_ms(latencies.values()):.1f} ms, "
              f"slowest {latencies[slowest] * 1000:.1f} ms ({slowest}) (best of 5 each)")

        burst = [paths[i % len(paths)] for i in range(arguments.burst)]
        errors = 0
        times = []
        started = time.perf_counter()
        with concurrent.futures.ThreadPoolExecutor(max_workers=50) as pool:
            for result in pool.map(lambda p: fetch(base, token, p), burst):
                times.append(result[0])
        total = time.perf_counter() - started
        print(f"burst: {len(burst)} requests, 50 at a time, {errors} errors, in {total:.2f} s; "
              f"p50 {percentile_ms(times, 0.5):.1f} ms, p99 {percentile_ms(times, 0.99):.1f} ms")

        if not arguments.no_browser:
            drawn = page_drawn(f"{base}?token={token}")
            print(f"page: samples table drawn {drawn[0] * 1000:.0f} ms after opening (cold), "
                  f"median of the next {len(drawn) - 1}: {median_ms(drawn[1:]):.0f} ms")
            snapshot = os.path.join(tempfile.mkdtemp(), "batch.html")
            subprocess.run([arguments.quillon, "-q", "html", arguments.report, "-o", snapshot],
                           check=True)
            drawn = page_drawn("file://" + snapshot)
            print(f"html: {os.path.getsize(snapshot) / 1e6:.2f} MB, samples table drawn "
                  f"{drawn[0] * 1000:.0f} ms after opening from disk (cold), median of the next "
                  f"{len(drawn) - 1}: {median_ms(drawn[1:]):.0f} ms")
        served = peak_rss_mb(server.pid)
        alone = info_peak_rss_mb(arguments.quillon, arguments.report)
        print(f"memory: server peak {served:.0f} MB, quillon info {alone:.0f} MB "
              f"({served / alone:.2f}x)")
    finally:
        server.send_signal(signal.SIGINT)
        server.wait(timeout=10)


if __name__ == "__main__":
    main()
