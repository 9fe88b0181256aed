"""Metabolite-identification reports in Python.

``quillon.read(path)`` loads a report into a :class:`Batch`; its samples hold functions with
traces and spectra (numpy arrays that view the batch's memory), metabolites that a reviewer can
confirm and label, and tables as pandas DataFrames whose column names follow the quillon tool's
JSON output.

    >>> batch = quillon.read("batch.txt")
    >>> trace = batch.samples[0].functions[0].traces[0]
    >>> trace.times, trace.intensities          # numpy views, no copy
    >>> batch.samples[0].metabolites_df(area=10000)
"""

from __future__ import annotations

import os
import stat
import warnings
from dataclasses import dataclass, field
from typing import Any, Callable, Optional, Union

from . import _quillon, _tables
from ._quillon import Batch, Function, Metabolite, Peak, ReadError, Sample, Spectrum, Trace

__all__ = [
    "read", "Batch", "Sample", "Function", "Trace", "Spectrum", "Peak", "Metabolite",
    "FragmentAnalysis", "Stability", "ReadError", "ReadWarning",
]


class ReadWarning(UserWarning):
    """The report was read, but parts of it were passed over (see ``Batch.read_report``)."""


def _progress_callable(progress: Union[None, bool, Callable[[float], Any]]):
    if progress is None or progress is False:
        return None
    if progress is True:
        try:
            from tqdm import tqdm
        except ImportError:
            return None
        bar = tqdm(total=1000, unit="‰", leave=False)

        def update(fraction: float) -> None:
            bar.update(int(fraction * 1000) - bar.n)
            if fraction >= 1.0:
                bar.close()

        return update
    if not callable(progress):
        raise TypeError("progress must be a callable taking a fraction, True or None")
    return progress


def _check_readable(path: str) -> None:
    status = os.stat(path)  # FileNotFoundError, PermissionError on the way
    if stat.S_ISDIR(status.st_mode):
        raise IsADirectoryError(21, "Is a directory", path)
    if not stat.S_ISREG(status.st_mode):
        raise ReadError(f"'{path}' is not a regular file")
    if not os.access(path, os.R_OK):
        raise PermissionError(13, "Permission denied", path)


def read(path: Union[str, os.PathLike], progress: Union[None, bool, Callable[[float], Any]] = None) -> Batch:
    """Reads the report at ``path`` into a :class:`Batch`.

    ``progress`` is a callable receiving the fraction read (0 to 1), or ``True`` for a tqdm bar
    when tqdm is installed. The GIL is released while reading; Ctrl-C stops the read with
    KeyboardInterrupt. Raises FileNotFoundError, PermissionError, IsADirectoryError, or
    :class:`ReadError` (a ValueError) for a file that holds no report. A report read with
    passages it could not read gives a :class:`ReadWarning`.
    """
    path = os.fspath(path)
    _check_readable(path)
    batch = _quillon._read(path, _progress_callable(progress))
    passed_over = batch.read_report
    if passed_over:
        kinds = sorted({entry["kind"] for entry in passed_over})
        warnings.warn(
            f"'{path}': {len(passed_over)} passage(s) passed over ({', '.join(kinds)}); "
            "see Batch.read_report", ReadWarning, stacklevel=2)
    return batch


@dataclass
class FragmentAnalysis:
    """The result of a sample's fragment analysis: the fragment masses and the neutral losses as
    DataFrames, and the lines the browser lists them with."""

    fragments: Any
    neutral_losses: Any
    fragment_lines: list = field(default_factory=list)
    neutral_loss_lines: list = field(default_factory=list)


@dataclass
class Stability:
    """The metabolic stability of one incubation series (one parent, one set of processing
    parameters). Numbers that mean nothing for the series are None, and ``flags`` says why."""

    parent: str
    process_parameters: str
    points_used: int
    k_per_min: float
    k_standard_error: float
    r_squared: float
    flags: str
    half_life_min: Optional[float]
    half_life_low_min: Optional[float]
    half_life_high_min: Optional[float]
    clint_ul_min_mg: Optional[float]
    scaled_clearance_ml_min_kg: Optional[float]
    points: Any
    formation: Any
    times_min: list


def _fragment_analysis(self: Sample, settings: Optional[dict] = None, progress=None,
                       settings_file: Optional[str] = None) -> FragmentAnalysis:
    """Runs the fragment analysis of this sample and returns a :class:`FragmentAnalysis`.

    ``settings``: fragment settings by name (intensity_threshold, mass_tolerance,
    use_mass_defect_filter, mass_defect_lower, mass_defect_upper, parent_intensity_threshold,
    extra_option); the browser's defaults otherwise. The neutral-loss list comes from the
    Tarnwick.ini in the folder of ``settings_file``, or beside the report. ``progress`` as for
    :func:`read`; Ctrl-C cancels with KeyboardInterrupt.
    """
    result = _quillon._fragment_analysis(self, settings, _progress_callable(progress), settings_file)
    return FragmentAnalysis(
        fragments=_tables.frame(result["fragments"], _tables.FRAGMENT_COLUMNS),
        neutral_losses=_tables.frame(result["neutral_losses"], _tables.NEUTRAL_LOSS_COLUMNS),
        fragment_lines=result["fragment_lines"],
        neutral_loss_lines=result["neutral_loss_lines"])


def _stability(self: Batch, protein: float = 0.5, protein_per_liver: float = 45.0,
               liver_per_kg: float = 20.0, minimum_r_squared: float = 0.8) -> list:
    """The metabolic stability of every incubation series, one :class:`Stability` each.

    ``protein``: microsomal protein in the incubation (mg/mL); ``protein_per_liver`` (mg/g) and
    ``liver_per_kg`` (g/kg) scale the clearance to the body; a fit below ``minimum_r_squared`` is
    flagged "poor fit".
    """
    series = []
    for record in _quillon._stability(self, protein, protein_per_liver, liver_per_kg,
                                      minimum_r_squared):
        record["points"] = _tables.frame(record["points"], _tables.STABILITY_POINT_COLUMNS)
        record["formation"] = _tables.frame(record["formation"], _tables.FORMATION_COLUMNS)
        series.append(Stability(**record))
    return series


def _save(self: Batch, path: Union[None, str, os.PathLike] = None) -> None:
    """Saves the batch with the reviewer's edits, atomically: over the report it was read from
    when ``path`` is omitted, else to ``path`` (the batch then belongs to that file). On failure
    the target is left as it was and an OSError names it."""
    _quillon._save(self, None if path is None else os.fspath(path))


Batch.save = _save
Batch.stability = _stability
Batch.samples_df = _tables.samples_df
Batch.summary_df = _tables.summary_df
Sample.fragment_analysis = _fragment_analysis
Sample.metabolites_df = _tables.metabolites_df
Sample.elemental_df = _tables.elemental_df
Sample.correlation_df = _tables.correlation_df
Trace.to_df = _tables.trace_df
Spectrum.to_df = _tables.spectrum_df
