"""The analyses against the tool's results, edits saved and read back, every error, and Ctrl-C
during a long read."""

import os
import signal
import threading

import pytest

import quillon


def test_stability_matches_the_tool(example, tool):
    batch = quillon.read(example)
    ours = batch.stability(protein=1.0)
    theirs = tool("stability", example, "--protein", 1.0)
    assert len(ours) == len(theirs) > 0
    for series, row in zip(ours, theirs):
        for name in ["parent", "flags", "points_used"]:
            assert getattr(series, name) == row[name]
        for name in ["half_life_min", "half_life_low_min", "half_life_high_min", "k_per_min",
                     "clint_ul_min_mg", "r_squared"]:
            assert getattr(series, name) == pytest.approx(row[name]), name
        assert series.points["sample"].tolist() == [p["sample"] for p in row["points"]]
        assert series.formation["name"].tolist() == [f["name"] for f in row["formation"]]
    assert ours[0].clint_ul_min_mg == pytest.approx(batch.stability(protein=0.5)[0].clint_ul_min_mg / 2)


def test_fragment_analysis_matches_the_tool(example_copy, tool):
    batch = quillon.read(example_copy)
    sample = max(batch.samples, key=lambda s: len(s.metabolites))
    fractions = []
    result = sample.fragment_analysis(progress=fractions.append)
    theirs = tool("fragments", example_copy, "--sample", sample.number)
    # The tool prints one record per fragment mass with the clusters of its spectra.
    ours = result.fragments.groupby("nominal_mass")["cluster_id"].apply(lambda c: sorted(set(c)))
    fragments = [r for r in theirs if r["kind"] == "fragment"]
    assert [(m, c) for m, c in ours.items()] == [(r["nominal_mass"], sorted(r["clusters"])) for r in fragments]
    losses = [r for r in theirs if r["kind"] == "neutral_loss"]
    assert result.neutral_losses["mass"].tolist() == pytest.approx([r["mass"] for r in losses])
    assert result.neutral_losses["label"].tolist() == [
        f'{r["neutral_loss"]}  ({r["formula"]})' for r in losses]
    assert fractions and fractions == sorted(fractions) and fractions[-1] == 1.0

    def interrupt(fraction):
        raise KeyboardInterrupt

    with pytest.raises(KeyboardInterrupt):
        sample.fragment_analysis(progress=interrupt)
    # While the analysis runs without the GIL, its batch refuses other callers; afterwards not.
    with pytest.raises(RuntimeError, match="busy"):
        sample.fragment_analysis(progress=lambda fraction: sample.metabolites_df())
    assert len(sample.metabolites_df()) == len(sample.metabolites)
    with pytest.raises(ValueError, match="unknown fragment setting"):
        sample.fragment_analysis(settings={"tolerance": 1})


def test_edits_are_saved_atomically_and_read_back(example_copy, tmp_path):
    batch = quillon.read(example_copy)
    sample = next(s for s in batch.samples if any(m.elemental for m in s.metabolites))
    metabolite = next(m for m in sample.metabolites if len(m.elemental) >= 2)
    kept = metabolite.elemental[1]
    metabolite.confirmed = True
    metabolite.label = "checked by hand"
    metabolite.delete_elemental(0)
    with pytest.raises(ValueError, match="tab"):
        metabolite.label = "a\tb"
    with pytest.raises(ValueError):
        metabolite.delete_elemental(99)

    original = example_copy.read_bytes()
    batch.save(tmp_path / "edited.txt")
    assert example_copy.read_bytes() == original
    edited = tmp_path / "edited.txt"
    again = quillon.read(edited).sample(sample.number).metabolites[metabolite.index]
    assert again.confirmed
    assert "checked by hand" in edited.read_text()  # written; the reader passes over labels
    assert again.elemental[0]["formula"] == kept["formula"]

    again.confirmed = False
    quillon.read(edited)  # the edited batch lives on through `again` alone
    assert again.confirmed is False
    reread = quillon.read(edited)
    reread.sample(sample.number).metabolites[metabolite.index].confirmed = False
    reread.save()
    assert not quillon.read(edited).sample(sample.number).metabolites[metabolite.index].confirmed

    os.chmod(tmp_path, 0o500)
    try:
        if os.access(tmp_path / "new.txt", os.W_OK) or os.geteuid() == 0:
            pytest.skip("root writes anywhere")
        with pytest.raises(PermissionError):
            reread.save(tmp_path / "new.txt")
    finally:
        os.chmod(tmp_path, 0o700)


def test_every_error_is_an_exception(tmp_path, example):
    with pytest.raises(FileNotFoundError):
        quillon.read(tmp_path / "missing.txt")
    with pytest.raises(IsADirectoryError):
        quillon.read(tmp_path)
    for content in [b"", b"just some text\n", bytes(range(256)) * 64, b"[OTHER]\n{\n}\n" * 1000]:
        (tmp_path / "bad.txt").write_bytes(content)
        with pytest.raises(quillon.ReadError) as caught:
            quillon.read(tmp_path / "bad.txt")
        assert isinstance(caught.value, ValueError) and "bad.txt" in str(caught.value)
    damaged = tmp_path / "damaged.txt"
    damaged.write_bytes(example.read_bytes() + b"[MYSTERY]\n{\n")
    with pytest.warns(quillon.ReadWarning):
        assert len(quillon.read(damaged).read_report) > 0
    if os.geteuid() != 0:
        os.chmod(damaged, 0)
        with pytest.raises(PermissionError):
            quillon.read(damaged)


def test_ctrl_c_cancels_a_long_read(generate):
    path = generate("long.txt", "--samples", 12, "--points", 40000)
    seen = []
    quillon.read(path, progress=seen.append)
    assert seen[-1] == 1.0

    timer = threading.Timer(0.05, os.kill, (os.getpid(), signal.SIGINT))
    timer.start()
    try:
        with pytest.raises(KeyboardInterrupt):
            quillon.read(path)
    finally:
        timer.cancel()
