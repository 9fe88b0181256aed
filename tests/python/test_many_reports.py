"""The archive example: Dask over a folder of reports gives what a plain loop gives."""

import importlib.util
import pathlib

import pytest

EXAMPLE = pathlib.Path(__file__).resolve().parents[2] / "examples" / "many_reports.py"


@pytest.fixture(scope="module")
def many_reports():
    spec = importlib.util.spec_from_file_location("many_reports", EXAMPLE)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def test_dask_on_a_local_cluster_equals_a_plain_loop(many_reports, generate, tmp_path):
    pytest.importorskip("dask.distributed")
    folder = tmp_path / "archive"
    folder.mkdir()
    for seed in range(4):
        report = generate(f"report{seed}.txt", "--samples", 4, "--points", 200, "--seed", seed + 1,
                          "--half-life", 20 + 10 * seed)
        (folder / report.name).write_bytes(report.read_bytes())
    (folder / "broken.txt").write_text("not a report\n")
    paths = many_reports.report_paths(str(folder), "*.txt")

    expected = many_reports.with_loop(paths)
    with many_reports.dask_client(workers=2) as client:
        computed = many_reports.with_dask(paths, client)

    assert len(expected) > 4 and expected["half_life_min"].notna().any()
    assert "not a report" in expected.loc[expected["report"] == "broken.txt", "flags"].item()
    assert computed.equals(expected)
