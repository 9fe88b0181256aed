"""The batch's tables as pandas DataFrames, with the quillon tool's column names and dtypes."""

from __future__ import annotations

from typing import Optional

import numpy as np
import pandas as pd

from . import _quillon

METABOLITE_KINDS = ["expected", "unexpected", "msms"]

FRAGMENT_COLUMNS = {"nominal_mass": "int64", "parent_index": "int64", "partner_index": "int64",
                    "function_index": "int64", "spectrum_peak_id": "int64", "cluster_id": "int64"}
NEUTRAL_LOSS_COLUMNS = {"mass": "float64", "nominal_mass": "int64", "label": "object"}
STABILITY_POINT_COLUMNS = {"sample": "int64", "time_min": "float64", "amount": "float64",
                           "percent_remaining": "float64", "used_in_fit": "bool"}
FORMATION_COLUMNS = {"name": "object", "shift": "object", "amount_at_time": "object",
                     "time_of_maximum_min": "float64", "maximum_percent_of_parent": "float64"}


def frame(rows: list, columns: dict) -> pd.DataFrame:
    """A DataFrame of dict rows with the given columns and dtypes (also when there are no rows);
    None in a float column becomes NaN."""
    table = pd.DataFrame.from_records(rows, columns=list(columns))
    return table.astype(columns)


def samples_df(self) -> pd.DataFrame:
    """One row per sample: sample, id, type, description, time, parent, control (nullable
    Int64), and the counts functions, traces, expected, unexpected, msms, found."""
    table = pd.DataFrame(_quillon._sample_columns(self))
    table["control"] = table["control"].astype("Int64")
    table["type"] = table["type"].astype("category")
    return table


def summary_df(self) -> pd.DataFrame:
    """Found counts of each expected metabolite (metabolite, shift) with one column
    "sample N" per sample, as the tool's summary."""
    names, shifts, numbers, counts = _quillon._summary(self)
    table = pd.DataFrame(counts, columns=[f"sample {n}" for n in numbers])
    table.insert(0, "shift", shifts)
    table.insert(0, "metabolite", names)
    return table


METABOLITE_FILTERS = {
    "mass_defect", "area", "relative_area", "area_unexpected_only", "mass_error",
    "hide_isotopes", "with_elemental", "time", "hide_high_energy",
}


def metabolites_df(self, filters: Optional[dict] = None, **kwargs) -> pd.DataFrame:
    """The sample's metabolites, filtered as the browser filters them.

    Filters (in ``filters`` or as keyword arguments), as ``quillon metabolites`` takes them:
    ``mass_defect=(below, above)`` (Da: how far the predicted mass may lie below the next whole
    mass and above a whole mass), ``area=minimum`` or ``relative_area=percent`` (of its group),
    ``area_unexpected_only=True``, ``mass_error=mDa``, ``hide_isotopes=True``,
    ``with_elemental=True``, ``time=(low, high)`` (min), ``hide_high_energy=True``. A setting
    the table cannot take (negative, reversed, both area limits) raises ValueError.

    Columns: sample, index, kind (categorical), name, formula, mz, time_min, area,
    area_percent, mDa, ppm (NaN where the report has none, as the tool's JSON has null), found,
    confirmed, high_energy, peak_id, trace, function, label.
    """
    chosen = dict(filters or {}, **kwargs)
    unknown = set(chosen) - METABOLITE_FILTERS
    if unknown:
        raise TypeError(f"unknown filter(s): {', '.join(sorted(unknown))}")
    columns = _quillon._metabolite_columns(self, **chosen)
    columns["kind"] = pd.Categorical.from_codes(columns["kind"], METABOLITE_KINDS)
    return pd.DataFrame(columns, copy=False)


def elemental_df(self) -> pd.DataFrame:
    """The elemental composition candidates of every metabolite of the sample: sample,
    metabolite, candidate, mz, calc_mz, mDa, ppm, dbe, formula, i_fit."""
    return pd.DataFrame(_quillon._elemental_columns(self), copy=False)


def correlation_df(self) -> pd.DataFrame:
    """The MS/MS correlation entries of the sample's metabolites: sample, metabolite, entry,
    masses_matched, neutral_losses_matched, common_neutral_losses (lists of numbers)."""
    return pd.DataFrame(_quillon._correlation_columns(self), copy=False)


def trace_df(self) -> pd.DataFrame:
    """The trace's points: time_min, intensity (float32)."""
    return pd.DataFrame({"time_min": np.array(self.times), "intensity": np.array(self.intensities)})


def spectrum_df(self) -> pd.DataFrame:
    """The spectrum's points: mz, intensity."""
    return pd.DataFrame({"mz": np.array(self.mz), "intensity": np.array(self.intensity)})
