"""The results browser end to end: quillon serve and quillon html in headless Chromium."""

import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
import urllib.request

import pytest
from selenium import webdriver
from selenium.common.exceptions import StaleElementReferenceException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support import expected_conditions as ready
from selenium.webdriver.support.ui import WebDriverWait

QUILLON = os.environ["QUILLON"]
REPORT = os.environ["QUILLON_REPORT"]
OUTPUT = os.environ.get("QUILLON_BROWSER_OUTPUT", tempfile.mkdtemp())


def serve(report, *flags):
    process = subprocess.Popen([QUILLON, "serve", report, "--port", "0", *flags],
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    line = process.stdout.readline()
    match = re.search(r"at (http://127\.0\.0\.1:(\d+)/)\?token=([0-9a-f]{32})$", line.strip())
    assert match, line
    yield {"base": match.group(1), "token": match.group(3)}
    process.send_signal(signal.SIGINT)
    out, _ = process.communicate(timeout=10)
    assert process.returncode == 0
    assert "stopped" in out


@pytest.fixture(scope="module")
def server():
    yield from serve(REPORT)


@pytest.fixture(scope="module")
def review_copy():
    """A copy of the report to review, served until the module ends (its changes discarded)."""
    folder = tempfile.mkdtemp(prefix="quillon-review-")
    report = shutil.copy(REPORT, os.path.join(folder, "batch.txt"))
    for running in serve(report, "--discard-on-exit"):
        yield {**running, "report": report}
    shutil.rmtree(folder)


@pytest.fixture(scope="module")
def browser():
    options = webdriver.ChromeOptions()
    for flag in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                 "--disable-background-networking", "--disable-component-update",
                 "--disable-sync", "--window-size=1280,800",
                 f"--user-data-dir={tempfile.mkdtemp(prefix='quillon-chromium-')}"):
        options.add_argument(flag)
    options.binary_location = "/usr/bin/chromium"
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    # The leave-page warning is a prompt the test answers itself.
    options.set_capability("unhandledPromptBehavior", "ignore")
    driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"),
                              options=options)
    yield driver
    driver.quit()


def wait_for(driver, css, timeout=10):
    return WebDriverWait(driver, timeout).until(
        ready.presence_of_element_located((By.CSS_SELECTOR, css)))


def rows(driver, table):
    return driver.find_elements(By.CSS_SELECTOR, f"#{table} tbody tr")


def console_errors(driver):
    return [entry for entry in driver.get_log("browser") if entry["level"] == "SEVERE"]


def walk_to_a_metabolite(driver):
    """Opens the sample with the most found metabolites and selects its first found one."""
    wait_for(driver, "#samples-table tbody tr")
    samples = rows(driver, "samples-table")
    max(samples, key=lambda row: int(row.find_elements(By.TAG_NAME, "td")[-1].text)).click()
    wait_for(driver, "#metabolite-table tbody tr")
    found = [row for row in rows(driver, "metabolite-table")
             if "dim" not in row.get_attribute("class")]
    assert found
    found[0].find_element(By.TAG_NAME, "td").click()  # the first cell: no sideways scroll
    wait_for(driver, "#trace-plot canvas")
    wait_for(driver, "#spectrum-plot canvas")
    assert "/s/" in driver.current_url and "/m/" in driver.current_url


def test_served_page(server, browser):
    browser.get(f"{server['base']}?token={server['token']}")
    wait_for(browser, "#samples-table tbody tr")
    batch = browser.execute_script(
        "return fetch('/api/v1/batch').then(r => r.json())")
    assert len(rows(browser, "samples-table")) == len(batch["samples"])
    assert rows(browser, "heat-table")

    walk_to_a_metabolite(browser)
    table = browser.find_element(By.CSS_SELECTOR, "#metabolites")
    before = browser.current_url
    table.send_keys(Keys.ARROW_DOWN)
    WebDriverWait(browser, 5).until(lambda d: d.current_url != before)
    wait_for(browser, "#trace-plot canvas")
    browser.execute_script("window.scrollTo(0, 0)")
    browser.save_screenshot(os.path.join(OUTPUT, "browser.png"))

    shown = len(rows(browser, "metabolite-table"))
    area = browser.find_element(By.CSS_SELECTOR, "#filters input[name=area]")
    area.send_keys("1e7")
    area.send_keys(Keys.ENTER)
    WebDriverWait(browser, 5).until(lambda d: len(rows(d, "metabolite-table")) < shown)

    browser.find_element(By.ID, "fragments-run").click()
    wait_for(browser, "#fragments-list tbody tr", timeout=30)
    # The arrow keys replace the selection in the history; back returns to the sample itself.
    browser.back()
    WebDriverWait(browser, 5).until(lambda d: re.search(r"/s/\d+$", d.current_url))
    browser.back()
    wait_for(browser, "#samples-table tbody tr")
    assert console_errors(browser) == []


def test_snapshot_opens_from_disk(server, browser):
    page = os.path.join(OUTPUT, "browser.html")
    subprocess.run([QUILLON, "html", REPORT, "-o", page], check=True)
    assert os.path.getsize(page) < 3 * 1024 * 1024
    browser.get("file://" + page)
    walk_to_a_metabolite(browser)
    wait_for(browser, "#fragments-list tbody tr")
    assert not browser.find_element(By.ID, "fragments-run").is_displayed()
    # A snapshot is read-only: no review controls.
    assert not browser.find_element(By.ID, "review").is_displayed()
    assert not browser.find_elements(By.CSS_SELECTOR, "#confirm, #delete-candidate")

    # The snapshot filters its rows itself: the same rows as the server's filter.
    sample = re.search(r"/s/(\d+)", browser.current_url).group(1)
    query = {"mass_defect_low": "0.2", "mass_defect_high": "0.05", "area": "2000"}
    for name, value in query.items():
        browser.find_element(By.CSS_SELECTOR, f"#filters input[name={name}]").send_keys(value)
    browser.find_element(By.CSS_SELECTOR, "#filters button[type=submit]").click()
    url = (f"{server['base']}api/v1/samples/{sample}/metabolites?token={server['token']}&" +
           "&".join(f"{k}={v}" for k, v in query.items()))
    with urllib.request.urlopen(url, timeout=5) as answer:
        expected = [str(row["index"]) for row in json.loads(answer.read())["metabolites"]]
    WebDriverWait(browser, 5).until(lambda d: [
        row.find_element(By.TAG_NAME, "td").text for row in rows(d, "metabolite-table")
    ] == sorted(expected, key=int))
    assert console_errors(browser) == []


def until(driver, condition, timeout=5):
    """Waits for condition, looking again when a row it read was redrawn meanwhile."""
    return WebDriverWait(driver, timeout, ignored_exceptions=[StaleElementReferenceException]) \
        .until(condition)


def selected_cells(driver):
    row = driver.find_element(By.CSS_SELECTOR, "#metabolite-table tr.selected")
    return row, [cell.text for cell in row.find_elements(By.TAG_NAME, "td")]


def test_review_with_the_keyboard_and_save(review_copy, browser):
    browser.get(f"{review_copy['base']}?token={review_copy['token']}")
    walk_to_a_metabolite(browser)
    table = browser.find_element(By.CSS_SELECTOR, "#metabolites")
    table.send_keys("c")
    until(browser, lambda d: selected_cells(d)[1][2] == "✓")
    row, cells = selected_cells(browser)
    assert "edited" in row.get_attribute("class")
    assert browser.find_element(By.ID, "unsaved").text == "1 unsaved change"

    table.send_keys("l")
    label = browser.find_element(By.ID, "label-input")
    label.send_keys("N-oxide, checked" + Keys.ENTER)
    until(browser, lambda d: selected_cells(d)[1][3] == "N-oxide, checked")
    table.send_keys(Keys.CONTROL, "z")
    until(browser, lambda d: selected_cells(d)[1][3] == "")
    table.send_keys(Keys.CONTROL, Keys.SHIFT, "z")
    until(browser, lambda d: selected_cells(d)[1][3] == "N-oxide, checked")
    assert browser.find_element(By.ID, "unsaved").text == "2 unsaved changes"

    # Leaving with unsaved changes asks first. Headless Chromium answers the question itself
    # without showing it, so the test asks the page whether it would stop the leaving.
    leaving = "const e = new Event('beforeunload', {cancelable: true}); " \
              "window.dispatchEvent(e); return e.defaultPrevented"
    assert browser.execute_script(leaving)
    browser.save_screenshot(os.path.join(OUTPUT, "review-light.png"))

    table.send_keys(Keys.CONTROL, "s")
    until(browser, 
        lambda d: d.find_element(By.ID, "saved-at").text.startswith("Saved batch.txt at"))
    assert browser.find_element(By.ID, "unsaved").text == "No unsaved changes"
    assert not browser.execute_script(leaving)

    # After a reload (in the dark theme) the page shows the save; the row is no longer marked.
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
        "features": [{"name": "prefers-color-scheme", "value": "dark"}]})
    browser.refresh()
    wait_for(browser, "#metabolite-table tr.selected")
    wait_for(browser, "#trace-plot canvas")
    assert "edited" not in selected_cells(browser)[0].get_attribute("class")
    assert browser.find_element(By.ID, "saved-at").text.startswith("Saved batch.txt at")
    browser.save_screenshot(os.path.join(OUTPUT, "review-dark.png"))
    browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": []})
    assert console_errors(browser) == []
