"""The results browser end to end: quillon serve and quillon html in headless Chromium."""

import json
import os
import re
import signal
import subprocess
import tempfile
import urllib.error
import urllib.request

import pytest
from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support import expected_conditions as ready
from selenium.webdriver.support.ui import WebDriverWait

QUILLON = os.environ["QUILLON"]
REPORT = os.environ["QUILLON_REPORT"]
OUTPUT = os.environ.get("QUILLON_BROWSER_OUTPUT", tempfile.mkdtemp())


@pytest.fixture(scope="module")
def server():
    process = subprocess.Popen([QUILLON, "serve", REPORT, "--port", "0"], stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE, text=True)
    line = process.stdout.readline()
    match = re.search(r"at (http://127\.0\.0\.1:(\d+)/)\?token=([0-9a-f]{32})$", line.strip())
    assert match, line
    yield {"base": match.group(1), "token": match.group(3)}
    process.send_signal(signal.SIGINT)
    out, _ = process.communicate(timeout=10)
    assert process.returncode == 0
    assert "stopped" in out


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


def test_requests_without_the_token_or_from_a_foreign_host_are_refused(server):
    for headers in ({}, {"Host": "evil.example"}):
        request = urllib.request.Request(server["base"] + "api/v1/batch", headers=headers)
        with pytest.raises(urllib.error.HTTPError) as refused:
            urllib.request.urlopen(request, timeout=5)
        assert refused.value.code == 403
        assert "error" in json.loads(refused.value.read())


def test_snapshot_opens_from_disk(server, browser):
    page = os.path.join(OUTPUT, "browser.html")
    subprocess.run([QUILLON, "html", REPORT, "-o", page], check=True)
    assert os.path.getsize(page) < 3 * 1024 * 1024
    browser.get("file://" + page)
    walk_to_a_metabolite(browser)
    wait_for(browser, "#fragments-list tbody tr")
    assert not browser.find_element(By.ID, "fragments-run").is_displayed()

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
