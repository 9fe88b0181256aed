"""Type stubs of the quillon package: metabolite-identification reports in Python."""

import os
from dataclasses import dataclass
from typing import Any, Callable, Optional, Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt
import pandas as pd

Progress = Union[None, bool, Callable[[float], Any]]

class ReadError(ValueError):
    """The file is not a report (it holds no sample), or not a regular file."""

class ReadWarning(UserWarning):
    """The report was read, but parts of it were passed over (see Batch.read_report)."""

def read(path: Union[str, os.PathLike[str]], progress: Progress = ...) -> Batch:
    """Reads a report. progress: a callable receiving the fraction read, or True for a tqdm bar.
    Ctrl-C raises KeyboardInterrupt. Raises FileNotFoundError, PermissionError,
    IsADirectoryError or ReadError."""

class Batch:
    """A report read into memory: its samples in number order."""
    @property
    def path(self) -> str:
        """The report file the batch was read from (or last saved to)."""
    @property
    def samples(self) -> list[Sample]:
        """The samples, in ascending number order."""
    @property
    def read_report(self) -> list[dict[str, Any]]:
        """What reading passed over: dicts of kind, name, offset and detail."""
    def sample(self, number: int) -> Sample:
        """The sample with that number; KeyError when there is none."""
    def __len__(self) -> int: ...
    def samples_df(self) -> pd.DataFrame:
        """One row per sample with its header and counts."""
    def summary_df(self) -> pd.DataFrame:
        """Found counts of each expected metabolite: metabolite, shift, "sample N" columns."""
    def stability(self, protein: float = 0.5, protein_per_liver: float = 45.0,
                  liver_per_kg: float = 20.0, minimum_r_squared: float = 0.8) -> list[Stability]:
        """Metabolic stability of every incubation series."""
    def save(self, path: Union[None, str, os.PathLike[str]] = None) -> None:
        """Saves the edits atomically: in place without path, else to path."""

class Sample:
    """One sample: header, functions, metabolites."""
    @property
    def number(self) -> int: ...
    @property
    def id(self) -> str: ...
    @property
    def type(self) -> str: ...
    @property
    def description(self) -> str: ...
    @property
    def time(self) -> float:
        """Incubation time, min."""
    @property
    def parent(self) -> str: ...
    @property
    def control(self) -> Optional[int]:
        """Number of the control sample, or None."""
    @property
    def header(self) -> dict[str, Any]:
        """The header fields."""
    @property
    def functions(self) -> list[Function]: ...
    @property
    def analog_traces(self) -> list[Trace]: ...
    @property
    def metabolites(self) -> list[Metabolite]: ...
    def metabolites_df(self, filters: Optional[dict[str, Any]] = None, *,
                       mass_defect: Optional[Tuple[float, float]] = ...,
                       area: Optional[float] = ..., relative_area: Optional[float] = ...,
                       area_unexpected_only: bool = ..., mass_error: Optional[float] = ...,
                       hide_isotopes: bool = ..., with_elemental: bool = ...,
                       time: Optional[Tuple[float, float]] = ...,
                       hide_high_energy: bool = ...) -> pd.DataFrame:
        """The metabolites, filtered as the browser filters them."""
    def elemental_df(self) -> pd.DataFrame:
        """Elemental composition candidates of every metabolite."""
    def correlation_df(self) -> pd.DataFrame:
        """MS/MS correlation entries of the metabolites."""
    def fragment_analysis(self, settings: Optional[dict[str, Any]] = None,
                          progress: Progress = None,
                          settings_file: Optional[str] = None) -> FragmentAnalysis:
        """Runs the fragment analysis; Ctrl-C raises KeyboardInterrupt."""

class Function:
    """An acquisition function."""
    @property
    def number(self) -> int: ...
    @property
    def description(self) -> str: ...
    @property
    def kind(self) -> str:
        """"ms", "pda" or "analog"."""
    @property
    def traces(self) -> list[Trace]: ...
    @property
    def spectra(self) -> list[Spectrum]: ...

class Peak:
    """An integrated chromatogram peak."""
    @property
    def peak_id(self) -> int: ...
    @property
    def cluster(self) -> int: ...
    @property
    def time_min(self) -> float: ...
    @property
    def area(self) -> float: ...
    @property
    def height(self) -> float: ...

class Trace:
    """A chromatogram."""
    @property
    def trace(self) -> int: ...
    @property
    def function(self) -> int: ...
    @property
    def description(self) -> str: ...
    @property
    def kind(self) -> str: ...
    @property
    def times(self) -> npt.NDArray[np.float32]:
        """Read-only view of the retention times, min."""
    @property
    def intensities(self) -> npt.NDArray[np.float32]:
        """Read-only view of the intensities."""
    @property
    def peaks(self) -> list[Peak]: ...
    def __len__(self) -> int: ...
    def to_df(self) -> pd.DataFrame:
        """time_min, intensity."""

class Spectrum:
    """A spectrum."""
    @property
    def peak_id(self) -> int: ...
    @property
    def cluster(self) -> int: ...
    @property
    def function(self) -> int: ...
    @property
    def time_min(self) -> float: ...
    @property
    def mz(self) -> npt.NDArray[np.float64]:
        """Read-only view of the m/z values."""
    @property
    def intensity(self) -> npt.NDArray[np.float64]:
        """Read-only view of the intensities."""
    def get_peaks(self) -> Tuple[npt.NDArray[np.float64], npt.NDArray[np.float64]]:
        """(mz, intensity)."""
    def __len__(self) -> int: ...
    def to_df(self) -> pd.DataFrame:
        """mz, intensity."""

class Metabolite:
    """A metabolite; confirmed and label can be set, candidates deleted."""
    @property
    def index(self) -> int: ...
    @property
    def sample(self) -> int: ...
    @property
    def kind(self) -> str: ...
    @property
    def name(self) -> str: ...
    @property
    def formula(self) -> str: ...
    @property
    def mz(self) -> float: ...
    @property
    def time_min(self) -> float: ...
    @property
    def area(self) -> Optional[float]: ...
    @property
    def found(self) -> bool: ...
    @property
    def high_energy(self) -> bool: ...
    @property
    def peak_id(self) -> int: ...
    @property
    def trace(self) -> int: ...
    @property
    def function(self) -> int: ...
    confirmed: bool
    label: str
    @property
    def elemental(self) -> list[dict[str, Any]]: ...
    def delete_elemental(self, k: int) -> None:
        """Deletes elemental candidate k."""

@dataclass
class FragmentAnalysis:
    """Fragment masses and neutral losses of a sample."""
    fragments: pd.DataFrame
    neutral_losses: pd.DataFrame
    fragment_lines: list[str]
    neutral_loss_lines: list[str]

@dataclass
class Stability:
    """Metabolic stability of one incubation series."""
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
    points: pd.DataFrame
    formation: pd.DataFrame
    times_min: list[float]
