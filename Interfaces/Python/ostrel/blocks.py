# SPDX-License-Identifier: MIT
"""Arrays of dask: outputs that are computed block by block, when they are asked for."""
from __future__ import annotations

import sys
from typing import TYPE_CHECKING, Any

import numpy as np

from .arrays import Names, masked

if TYPE_CHECKING:
    from .fluid import Fluid


def is_lazy(value: object) -> bool:
    """Whether this is an array of dask."""
    dask: Any = sys.modules.get("dask.array")
    return dask is not None and isinstance(value, dask.Array)


def _compute(first: Any, second: Any, fluid: Fluid, inputs: str, names: Names, workers: int, errors: str) -> Any:
    """The outputs of a block along a new last axis, the statuses behind them if they are wanted."""
    made = fluid(inputs, first, second, names.asked, workers=workers, errors=errors)
    if errors == "nan":
        values, status = made
        made = (*((values,) if names.single else values), status)
    elif names.single:
        return made
    return (masked if any(isinstance(column, np.ma.MaskedArray) for column in made) else np).stack(made, axis=-1)


def evaluate(fluid: Fluid, inputs: str, first: Any, second: Any, names: Names, workers: int,
             errors: str) -> tuple[tuple[Any, ...], Any]:
    """The outputs as arrays of dask, and the statuses, if they are wanted."""
    # Without states, the library checks the texts. It should complain now rather than when a block is computed.
    fluid(inputs, [], [], names.asked, workers=workers, errors=errors)
    dask = sys.modules["dask.array"]
    given = [value if np.ndim(value) == 0 else dask.asarray(value) for value in (first, second)]
    if all(is_lazy(value) for value in given):
        given = list(dask.broadcast_arrays(*given))
    like = next(value for value in given if is_lazy(value))
    count = len(names.names) + (errors == "nan")
    stacked = not names.single or errors == "nan"
    made = dask.map_blocks(
        _compute, *given, fluid=fluid, inputs=inputs, names=names, workers=workers, errors=errors, dtype=np.float64,
        new_axis=like.ndim if stacked else None, chunks=like.chunks + ((count,),) if stacked else like.chunks,
        meta=np.empty((0,) * (like.ndim + stacked)))
    if not stacked:
        return (made,), None
    columns = tuple(made[..., i] for i in range(count))
    return (columns[:-1], columns[-1].astype(np.int32)) if errors == "nan" else (columns, None)
