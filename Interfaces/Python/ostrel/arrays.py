# SPDX-License-Identifier: MIT
"""What comes in as numbers of any kind goes to the library as arrays of one dimension, and comes out as what it was.

Plain numbers, sequences and arrays of numpy come out as arrays of float64 with the shape to which the inputs broadcast;
masked arrays keep their masks, series of pandas their index. Where an input is a quantity of pint, the outputs are
quantities of its registry. Neither pandas nor pint is imported here: if a program has not, it has no such input.
"""
from __future__ import annotations

import importlib
import re
import sys
from dataclasses import dataclass, field
from typing import Any, Sequence

import numpy as np
import numpy.typing as npt

from . import _core
from .errors import ArgumentError

Floats = npt.NDArray[np.float64]
Inputs = Sequence[tuple[str, Any]]  #: names and values
#: Types of a single number, which needs no array.
PLAIN = frozenset((float, int, np.float64))
masked: Any = np.ma  # whose functions have no types

#: {name: unit} of outputs, in lower case; inputs have the units of the outputs with their letters.
UNITS = {name: unit for kind in ("outputs", "derivatives") for name, unit, _ in _core.list(kind)}


def unit_of(name: str) -> str:
    """The SI unit of an output or an input, as the library writes it.

    >>> unit_of("d"), unit_of("dp/dd|u")
    ('kg/m3', 'Pa/(kg/m3)')
    """
    return UNITS.get(name.strip().lower(), "1")


def pint_unit(unit: str) -> str:
    """A unit of the library in pint's words.

    >>> pint_unit("Pa kg2/m6"), pint_unit("1")
    ('Pa kg**2/m**6', 'dimensionless')
    """
    return "dimensionless" if unit == "1" else re.sub(r"(?<=[A-Za-z])(\d)", r"**\1", unit)


def without_units(inputs: Inputs) -> tuple[Inputs, Any]:
    """Inputs in SI units, and the registry of pint, or None if no input is a quantity."""
    registry, values = None, []
    for name, value in inputs:
        if hasattr(value, "_REGISTRY") and hasattr(value, "magnitude"):
            registry = value._REGISTRY
            try:
                value = value.to(pint_unit(unit_of(name))).magnitude
            except Exception as problem:  # pint's exceptions have no common base
                raise ArgumentError(f"{name} must have a unit of {unit_of(name)}: {problem}") from problem
        values.append((name, value))
    return values, registry


@dataclass
class Form:
    """How inputs came, and outputs go."""

    shape: tuple[int, ...] = ()
    keep: npt.NDArray[np.bool_] | None = None  #: states that are not masked, in one dimension
    index: Any = None  #: of pandas
    registry: Any = None  #: of pint
    lazy: bool = False  #: arrays of dask, which have their shape

    # Registries have no pickles. As quantities do, the form takes the registry of the program that reads it.
    def __getstate__(self) -> dict[str, Any]:
        return self.__dict__ | {"registry": self.registry is not None}

    def __setstate__(self, state: dict[str, Any]) -> None:
        self.__dict__.update(state)
        self.registry = importlib.import_module("pint").get_application_registry().get() if state["registry"] else None

    def array(self, flat: npt.NDArray[Any], name: str) -> Any:
        """The values of the states that are not masked, in the shape of the inputs."""
        if self.lazy:
            return flat
        if self.keep is not None:
            full = np.full(self.keep.size, np.nan if flat.dtype.kind == "f" else 0, dtype=flat.dtype)
            full[self.keep] = flat
            return masked.MaskedArray(full.reshape(self.shape), mask=~self.keep.reshape(self.shape))
        if self.shape == ():
            return flat[0].item()
        if self.index is not None:
            return sys.modules["pandas"].Series(flat, index=self.index, name=name)
        return flat.reshape(self.shape)

    def outputs(self, columns: Sequence[Floats], names: Names) -> Any:
        """One output, or a tuple of several, or a table of pandas; with units, if the inputs had units."""
        made = [self.array(column, name) for column, name in zip(columns, names.names)]
        if self.registry is not None:
            made = [self.registry.Quantity(values, pint_unit(unit_of(name)))
                    for values, name in zip(made, names.names)]
        if names.single:
            return made[0]
        if self.index is not None and self.registry is None:
            return sys.modules["pandas"].DataFrame(dict(zip(names.names, made)), index=self.index)
        return tuple(made)


@dataclass
class Names:
    """Outputs as they were asked: a name, names with commas between them, or a sequence of names."""

    asked: str | Sequence[str]
    names: list[str] = field(init=False)
    single: bool = field(init=False)  #: one name, whose values come out without a tuple around them

    def __post_init__(self) -> None:
        if isinstance(self.asked, str):
            self.names = [name.strip(" \t") for name in self.asked.split(",")]
            self.single = len(self.names) == 1
            return
        self.names, self.single = list(self.asked), False
        for name in self.names:
            if not isinstance(name, str) or "," in name:
                raise ArgumentError(f"{name!r} is not the name of one output")

    def __str__(self) -> str:
        return ",".join(self.names)


def _plain(value: Any, name: str) -> tuple[Floats, npt.NDArray[np.bool_] | None, Any]:
    """An array of any shape, its mask and its index."""
    pandas = sys.modules.get("pandas")
    mask = index = None
    if pandas is not None and isinstance(value, pandas.DataFrame):
        raise ArgumentError(f"{name} is a whole table; give one of its columns")
    if pandas is not None and isinstance(value, pandas.Series):
        index = value.index
        if value.dtype.kind in "fiu":
            value = value.to_numpy(dtype=np.float64, na_value=np.nan)
    elif isinstance(value, np.ma.MaskedArray):
        if value.mask is not np.ma.nomask:
            mask = masked.getmaskarray(value)
        value = value.data
    elif getattr(value, "__dask_graph__", None) is not None:
        raise ArgumentError(f"{name} is not computed yet, and a state is solved where it is made; the call of the fluid "
                            f'takes arrays of dask and gives others, as fluid("pt", p, t, ["d", "h"])')
    array = np.asarray(value)
    if array.dtype.kind not in "fiu":
        raise ArgumentError(f"{name} must be real numbers, but is {value!r:.60}")
    return array.astype(np.float64, copy=False), mask, index


def read(inputs: Inputs) -> tuple[list[Floats], Form]:
    """Inputs as arrays of one dimension and one length; but what has one element may stay so."""
    inputs, registry = without_units(inputs)
    form = Form(registry=registry)
    arrays, masks = [], []
    for name, value in inputs:
        array, mask, index = _plain(value, name)
        if index is not None:
            if form.index is not None and not form.index.equals(index):
                raise ArgumentError("the inputs have different indices")
            form.index = index
        arrays.append(array)
        masks.append(mask)
    try:
        form.shape = np.broadcast_shapes(*(array.shape for array in arrays))
    except ValueError as problem:
        raise ArgumentError(
            f"the inputs have shapes that do not fit: {', '.join(str(array.shape) for array in arrays)}") from problem
    if form.index is not None and form.shape != (len(form.index),):
        raise ArgumentError(f"a series of {len(form.index)} values and an array of another shape do not fit")
    if any(mask is not None for mask in masks):
        left_out = np.zeros(form.shape, dtype=np.bool_)
        for mask in masks:
            if mask is not None:
                left_out |= mask
        form.keep = ~left_out.ravel()
    return [_flat(array, form) for array in arrays], form


def _flat(array: Floats, form: Form) -> Floats:
    if array.size == 1:
        return array.reshape(1)
    flat = np.broadcast_to(array, form.shape).ravel()
    return flat if form.keep is None else flat[form.keep]
