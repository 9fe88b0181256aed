"""quillon serve killed mid-review loses nothing: the journal replays into the same report."""

import json
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
import urllib.request

QUILLON = os.environ["QUILLON"]
REPORT = os.environ["QUILLON_REPORT"]
SAMPLE = 4
WITH_CANDIDATES = 22  # the sample's first metabolite with elemental candidates


class Server:
    def __init__(self, report, *flags):
        self.process = subprocess.Popen([QUILLON, "serve", report, "--port", "0", *flags],
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        line = self.process.stdout.readline()
        match = re.search(r"at (http://127\.0\.0\.1:\d+/)\?token=([0-9a-f]{32})$", line.strip())
        assert match, line + self.process.stderr.read()
        self.base, self.token = match.groups()
        self.version = self.call("GET", "batch")["version"]

    def call(self, method, path, body=None):
        request = urllib.request.Request(
            f"{self.base}api/v1/{path}?token={self.token}", method=method,
            data=None if method == "GET" else json.dumps(body or {}).encode(),
            headers={"X-Quillon-Request": "1", "If-Match": f'"{getattr(self, "version", 0)}"',
                     "Content-Type": "application/json"})
        with urllib.request.urlopen(request, timeout=10) as answer:
            result = json.loads(answer.read())
        self.version = result["version"]
        return result

    def review(self):
        """The edits of a reviewer: confirm, label, delete a candidate, undo, redo, relabel."""
        at = f"samples/{SAMPLE}/metabolites/{WITH_CANDIDATES}"
        self.call("PATCH", at, {"confirmed": True})
        self.call("PATCH", at, {"label": "N-oxide, checked"})
        self.call("DELETE", f"{at}/candidates/0")
        self.call("POST", "undo")
        self.call("POST", "redo")
        return self.call("PATCH", f"samples/{SAMPLE}/metabolites/{WITH_CANDIDATES + 1}",
                         {"confirmed": True})["review"]["unsaved"]

    def interrupt(self):
        self.process.send_signal(signal.SIGINT)


def without_save_comments(path):
    with open(path, "rb") as report:
        return [line for line in report if not line.startswith(b";Metabolite sections updated by")]


def copy_of_report(folder):
    os.makedirs(folder)
    return shutil.copy(REPORT, os.path.join(folder, "batch.txt"))


def test_a_killed_server_loses_no_change():
    work = tempfile.mkdtemp(prefix="quillon-crash-")
    crashed, calm, discarded = (copy_of_report(os.path.join(work, name))
                                for name in ("crashed", "calm", "discarded"))

    server = Server(crashed)
    assert server.review() == 4
    server.process.kill()
    server.process.wait()
    server = Server(crashed)
    offer = server.call("GET", "batch")["review"]["journal"]
    assert offer["changes"] == 4
    server.call("POST", "journal/apply")
    server.call("POST", "save")
    server.interrupt()
    assert server.process.wait(timeout=10) == 0
    assert not os.path.exists(os.path.join(work, "crashed", ".batch.txt.quillon-journal"))

    # Without the crash; the first Ctrl-C only says how much is unsaved.
    server = Server(calm)
    assert server.review() == 4
    server.interrupt()
    time.sleep(0.5)
    assert server.process.poll() is None
    server.call("POST", "save")
    server.interrupt()
    assert server.process.wait(timeout=10) == 0
    assert "4 changes are unsaved" in server.process.stderr.read()

    assert without_save_comments(crashed) == without_save_comments(calm)
    assert without_save_comments(calm) != without_save_comments(REPORT)

    # --discard-on-exit stops at once and leaves nothing to offer.
    server = Server(discarded, "--discard-on-exit")
    server.review()
    server.interrupt()
    assert server.process.wait(timeout=10) == 0
    assert os.listdir(os.path.dirname(discarded)) == ["batch.txt"]
    shutil.rmtree(work)
