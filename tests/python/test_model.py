"""The model and its tables against the tool's JSON export of the same report, the numpy views
and their lifetime, and the tables' dtypes and filters."""

import gc

import numpy as np
import pandas as pd
import pytest

import quillon


@pytest.fixture(scope="module")
def batch(example):
    return quillon.read(example)


@pytest.fixture(scope="module")
def export(tool, example):
    return tool("export", example)


def traces_of(sample):
    for function in sample.functions:
        yield from function.traces
    yield from sample.analog_traces


def test_model_matches_the_tools_export(batch, export):
    samples = [{"sample": s.number, "id": s.id, "type": s.type, "description": s.description,
                "parent": s.parent, "control": s.control} for s in batch.samples]
    assert samples == [{k: row[k] for k in samples[0]} for row in export["samples"]]
    assert [s.time for s in batch.samples] == pytest.approx([r["time"] for r in export["samples"]])

    traces = [(s.number, t.trace, len(t), len(t.peaks)) for s in batch.samples for t in traces_of(s)]
    assert traces == [(r["sample"], r["trace"], r["points"], r["peaks"]) for r in export["traces"]]
    sums = pd.DataFrame(export["trace_points"]).groupby(["sample", "trace"])["intensity"].sum()
    for s in batch.samples:
        for t in traces_of(s):
            if len(t):
                assert t.intensities.sum(dtype=np.float64) == pytest.approx(sums[s.number, t.trace], rel=1e-6)

    spectra = [(s.number, f.number, p.peak_id, len(p)) for s in batch.samples
               for f in s.functions for p in f.spectra]
    assert spectra == [(r["sample"], r["function"], r["peak_id"], r["points"]) for r in export["spectra"]]

    table = pd.concat([s.metabolites_df() for s in batch.samples], ignore_index=True)
    expected = pd.DataFrame(export["metabolites"])
    assert len(table) == len(expected)
    for column in ["sample", "index", "name", "formula", "peak_id", "trace", "label"]:
        assert table[column].tolist() == expected[column].tolist(), column
    assert table["kind"].astype(str).tolist() == expected["kind"].tolist()
    # Integers and flags in the JSON are ints and booleans.
    assert expected[["sample", "index"]].dtypes.eq(np.int64).all() and expected["found"].dtype == bool
    assert table["found"].tolist() == expected["found"].tolist()
    for column in ["mz", "time_min", "area"]:
        given = expected[column].notna()  # null in the JSON, NaN in the table
        assert (table[column].isna() == ~given).all(), column
        np.testing.assert_allclose(table[column][given], expected[column][given].astype(float), atol=0.006)

    elemental = pd.concat([s.elemental_df() for s in batch.samples], ignore_index=True)
    assert elemental["formula"].tolist() == [r["formula"] for r in export["elemental"]]
    correlation = pd.concat([s.correlation_df() for s in batch.samples], ignore_index=True)
    for column in ["masses_matched", "neutral_losses_matched", "common_neutral_losses"]:
        assert correlation[column].tolist() == [r[column] for r in export["correlation"]], column


def test_points_are_read_only_views_that_keep_the_batch_alive(example):
    batch = quillon.read(example)
    trace = max(traces_of(batch.samples[0]), key=len)
    times = trace.times
    assert times.dtype == np.float32 and not times.flags.writeable and not times.flags.owndata
    assert times.__array_interface__["data"][0] == trace.times.__array_interface__["data"][0]
    spectrum = next(p for f in batch.samples[0].functions for p in f.spectra if len(p))
    mz, intensity = spectrum.get_peaks()
    assert mz.dtype == np.float64 and np.array_equal(mz, spectrum.mz)
    before = (times.copy(), mz.copy())
    assert trace.to_df()["time_min"].tolist() == before[0].tolist()

    del batch, trace, spectrum, intensity
    gc.collect()
    quillon.read(example)  # reuses freed memory if the views had let go of theirs
    assert np.array_equal(times, before[0]) and np.array_equal(mz, before[1])


def test_tables_have_proper_dtypes(batch):
    samples = batch.samples_df()
    assert samples["sample"].dtype == np.int32 and samples["control"].dtype == "Int64"
    assert samples["type"].dtype == "category"
    metabolites = batch.samples[-1].metabolites_df()
    assert metabolites["kind"].dtype == "category"
    assert list(metabolites["kind"].cat.categories) == ["expected", "unexpected", "msms"]
    assert metabolites["found"].dtype == bool and metabolites["confirmed"].dtype == bool
    assert metabolites["mz"].dtype == np.float64 and metabolites["peak_id"].dtype == np.int32
    summary = batch.summary_df()
    assert list(summary.columns[:2]) == ["metabolite", "shift"]
    assert list(summary.columns[2:]) == [f"sample {s.number}" for s in batch.samples]


def test_filters_match_the_tools_metabolite_filters(batch, tool, example):
    sample = batch.samples[-1]
    for options, filters in [(["--area", 10000], {"area": 10000}),
                             (["--time", 2, 6], {"time": (2, 6)}),
                             (["--mass-error", 3, "--hide-high-energy"],
                              {"mass_error": 3, "hide_high_energy": True}),
                             (["--relative-area", 50, "--area-unexpected-only", "--hide-isotopes",
                               "--with-elemental", "--mass-defect", 0.3, 0.1],
                              {"relative_area": 50, "area_unexpected_only": True,
                               "hide_isotopes": True, "with_elemental": True,
                               "mass_defect": (0.1, 0.3)})]:
        rows = tool("metabolites", example, "--sample", sample.number, *options)
        table = sample.metabolites_df(**filters)
        assert table["name"].tolist() == [r["name"] for r in rows], options
        assert sample.metabolites_df(filters).equals(table)
    with pytest.raises(TypeError):
        sample.metabolites_df(colour="red")
    for bad in [{"area": 1, "relative_area": 1}, {"time": (6, 2)}, {"mass_error": -1}]:
        with pytest.raises(ValueError):
            sample.metabolites_df(**bad)
