"""Every demo figure, laid out by a headless browser: no two texts overlap, no text is crossed by
a line of the data (a trace, a fitted line, a stick), and each text lies within the figure. Run by CTest with QUILLON (the tool), QUILLON_SOURCE_DIR and QUILLON_WORK_DIR
in the environment."""
import itertools
import os
import pathlib
import subprocess
import tempfile

import pytest
from selenium import webdriver
from selenium.webdriver.chrome.service import Service

SOURCE = pathlib.Path(os.environ["QUILLON_SOURCE_DIR"])
WORK = pathlib.Path(os.environ["QUILLON_WORK_DIR"])
QUILLON = os.environ["QUILLON"]
EXAMPLE = SOURCE / "examples" / "Chlorpromazine_HLM_batch.txt"


def figures():
    """The demo's figures, and the crowded ones again at a small size."""
    demo = WORK / "demo"
    subprocess.run(["bash", str(SOURCE / "scripts" / "demo.sh"), QUILLON, str(EXAMPLE), str(demo)],
                   check=True, stdout=subprocess.DEVNULL)
    small = WORK / "small"
    small.mkdir(parents=True, exist_ok=True)
    for name, args in {"combined": ["plot", "--sample", "4", "--combined", "all"],
                       "spectrum": ["plot", "--sample", "4", "--spectrum", "1"],
                       "fragments": ["plot", "--sample", "4", "--fragments"]}.items():
        subprocess.run([QUILLON, "-q", *args, str(EXAMPLE), "--size", "480x320",
                        "-o", str(small / f"{name}.svg")], check=True)
    subprocess.run([QUILLON, "-q", "stability", str(EXAMPLE), "--size", "640x360",
                    "--plot", str(small / "stability.svg")], check=True, stdout=subprocess.DEVNULL)
    return sorted(demo.glob("*.svg")) + sorted(small.glob("*.svg"))


@pytest.fixture(scope="module")
def browser():
    options = webdriver.ChromeOptions()
    for flag in ["--headless", "--no-sandbox", "--disable-gpu", "--disable-background-networking",
                 "--disable-component-update", "--disable-sync"]:
        options.add_argument(flag)
    profile = tempfile.TemporaryDirectory()
    options.add_argument(f"--user-data-dir={profile.name}")
    options.binary_location = os.environ.get("QUILLON_CHROMIUM", "/usr/bin/chromium")
    driver = webdriver.Chrome(
        service=Service(os.environ.get("QUILLON_CHROMEDRIVER", "/usr/bin/chromedriver")),
        options=options)
    yield driver
    driver.quit()
    profile.cleanup()


FIGURES = figures()


def test_the_demo_draws_every_figure():
    names = {(path.parent.name, path.stem) for path in FIGURES}
    for figure in ["trace", "combined", "combined-unexpected", "spectrum", "spectrum-high-energy",
                   "fragments", "stability"]:
        assert ("demo", figure) in names


@pytest.mark.parametrize("path", FIGURES, ids=lambda p: f"{p.parent.name}/{p.name}")
def test_no_text_overlaps_another(browser, path):
    browser.get(path.as_uri())
    size = browser.execute_script(
        "const s = document.documentElement; return [s.width.baseVal.value, s.height.baseVal.value]")
    boxes = browser.execute_script(
        "return [...document.querySelectorAll('text')].map(t => {"
        " const r = t.getBoundingClientRect();"
        " return [t.textContent, r.left, r.top, r.right, r.bottom]; })")
    assert len(boxes) > 10
    for text, left, top, right, bottom in boxes:
        assert left >= -0.5 and top >= -0.5, text
        assert right <= size[0] + 0.5 and bottom <= size[1] + 0.5, text
    for a, b in itertools.combinations(boxes, 2):
        overlap_x = min(a[3], b[3]) - max(a[1], b[1])
        overlap_y = min(a[4], b[4]) - max(a[2], b[2])
        assert overlap_x <= 0.5 or overlap_y <= 0.5, f"'{a[0]}' overlaps '{b[0]}'"
    # The data's lines: polylines and sticks (leaders, ticks, grid and legend keys are not data).
    segments = browser.execute_script(
        "const out = [];"
        "for (const p of document.querySelectorAll('polyline')) {"
        "  const pts = [...p.points];"
        "  for (let i = 1; i < pts.length; ++i)"
        "    out.push([pts[i-1].x, pts[i-1].y, pts[i].x, pts[i].y]); }"
        "for (const l of document.querySelectorAll('line[stroke-width=\"1.5\"]'))"
        "  out.push([l.x1.baseVal.value, l.y1.baseVal.value, l.x2.baseVal.value, l.y2.baseVal.value]);"
        "return out;")
    assert segments
    for text, left, top, right, bottom in boxes:
        box = (left + 0.5, top + 0.5, right - 0.5, bottom - 0.5)
        for segment in segments:
            assert not crosses(segment, box), f"a line of the data crosses '{text}'"


def crosses(segment, box):
    """Whether the segment (x1, y1, x2, y2) passes through the box (left, top, right, bottom)."""
    x1, y1, x2, y2 = segment
    left, top, right, bottom = box
    if max(x1, x2) < left or min(x1, x2) > right or max(y1, y2) < top or min(y1, y2) > bottom:
        return False
    low, high = 0.0, 1.0
    for p, q in ((x1 - x2, x1 - left), (x2 - x1, right - x1), (y1 - y2, y1 - top),
                 (y2 - y1, bottom - y1)):
        if p == 0:
            if q < 0:
                return False
        elif p < 0:
            low = max(low, q / p)
        else:
            high = min(high, q / p)
        if low > high:
            return False
    return True
