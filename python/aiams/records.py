"""What a file says beside its scans. What it lacks is None, NaN for numbers."""

from __future__ import annotations

from dataclasses import dataclass, field
from math import nan

import numpy as np


@dataclass(frozen=True)
class Instrument:
    """One component of the instrument."""

    name: str | None = None
    id: str | None = None
    mfr: str | None = None  # the maker
    model: str | None = None
    serial_no: str | None = None
    sw_version: str | None = None
    fw_version: str | None = None
    os_version: str | None = None
    app_version: str | None = None
    comments: str | None = None


@dataclass(frozen=True, eq=False)
class Group:
    """A group of monitored masses; the arrays have a number for each mass."""

    mass_count: int  # as the file says: the arrays may have fewer
    starting_scan: int
    masses: np.ndarray
    sampling_times: np.ndarray  # in s
    delay_times: np.ndarray  # in s


@dataclass(frozen=True)
class Compound:
    """The compound of a library entry. CAS numbers come without the hyphens."""

    name: str | None = None
    other_names: tuple[str, ...] = ()
    id: str | None = None
    number: int | None = None
    formula: str | None = None
    cas_name: str | None = None
    cas_number: int | None = None
    smiles: str | None = None
    wiswesser: str | None = None
    source: str | None = None  # the file of the spectrum
    molfile: str | None = None
    structure: str | None = None
    information: str | None = None
    retention_index: float = nan
    retention_type: str | None = None
    absolute_retention: float = nan
    relative_retention: float = nan
    retention_reference: str | None = None
    retention_reference_number: int | None = None
    melting_point: float = nan
    boiling_point: float = nan
    chemical_mass: float = nan
    nominal_mass: int | None = None
    accurate_mass: float = nan


# The names of a compound's fields in a file, other names aside.
COMPOUND_VARIABLES = {
    "name": "entry_name",
    "id": "entry_id",
    "number": "entry_number",
    "formula": "chemical_formula",
    "cas_name": "CAS_name",
    "cas_number": "CAS_number",
    "smiles": "smiles",
    "wiswesser": "wiswesser",
    "source": "source_data_file_reference",
    "molfile": "molfile_reference",
    "structure": "other_structure",
    "information": "entry_other_information",
    "retention_index": "retention_index",
    "retention_type": "retention_type",
    "absolute_retention": "absolute_retention",
    "relative_retention": "relative_retention",
    "retention_reference": "retention_reference_name",
    "retention_reference_number": "retention_reference_CAS",
    "melting_point": "melting_point",
    "boiling_point": "boiling_point",
    "chemical_mass": "chemical_mass",
    "nominal_mass": "nominal_mass",
    "accurate_mass": "accurate_mass",
}


@dataclass(frozen=True)
class Modulation:
    """The modulation length of a GCxGC run, as its trace shows it."""

    seconds: float  # NaN: the trace shows none
    confidence: float  # 0 to 1
    is_confident: bool  # whether a program may take it without asking


@dataclass(frozen=True)
class Doubt:
    """What can't be right about a run, or was worked out for lack of it."""

    code: str
    count: int  # how often
    example: str  # the first place, such as "scan 3"; may be empty
    text: str  # a sentence
    is_loss: bool  # scans or numbers are lost

    def __str__(self) -> str:
        return self.text


@dataclass
class ScanData:
    """A scan to be written. A Scan that was read does as well."""

    time: float  # in s
    mz: np.ndarray
    intensity: np.ndarray  # as many
    tic: float | None = None  # None: the sum of the intensities
    numbers: dict[str, float] = field(default_factory=dict)  # others, by their names in the file
