"""Shared fixtures: the built package, the tool and the generator of the same build, and the
example batch."""

import json
import os
import pathlib
import shutil
import subprocess

import pytest

import quillon

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLE = ROOT / "examples" / "Chlorpromazine_HLM_batch.txt"
SETTINGS = ROOT / "examples" / "Tarnwick.ini"


def _program(variable):
    path = os.environ.get(variable)
    if not path or not os.access(path, os.X_OK):
        pytest.skip(f"{variable} does not name the built program")
    return path


def pytest_sessionstart(session):
    # From the repository root the C++ folder quillon/ would pass for the package.
    assert quillon.__file__ is not None and "_quillon" in dir(quillon), quillon.__path__


@pytest.fixture(scope="session")
def tool():
    """Runs the quillon tool and returns its JSON output."""
    program = _program("QUILLON_TOOL")

    def run(*args):
        result = subprocess.run([program, *map(str, args), "--format", "json"],
                                capture_output=True, text=True, check=True)
        return json.loads(result.stdout)

    return run


@pytest.fixture(scope="session")
def generate(tmp_path_factory):
    """Writes a generated report with the given generator options; returns its path."""
    program = _program("QUILLON_GENERATE")

    def run(name, *args):
        path = tmp_path_factory.mktemp("generated") / name
        subprocess.run([program, "-o", str(path), *map(str, args)], check=True,
                       capture_output=True)
        return path

    return run


@pytest.fixture(scope="session")
def example():
    return EXAMPLE


@pytest.fixture
def example_copy(tmp_path):
    """The example batch and its settings file in a folder of the test's own."""
    shutil.copy(SETTINGS, tmp_path / SETTINGS.name)
    return pathlib.Path(shutil.copy(EXAMPLE, tmp_path / EXAMPLE.name))
