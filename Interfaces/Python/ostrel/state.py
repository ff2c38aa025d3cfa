# SPDX-License-Identifier: MIT
"""States of a fluid that are solved once and asked for their properties as often as one likes."""
from __future__ import annotations

import keyword
from typing import TYPE_CHECKING, Any, NamedTuple, Sequence

import numpy as np
import numpy.typing as npt

from . import _core
from .arrays import Form, Names

if TYPE_CHECKING:
    from .fluid import Fluid


class State:
    """One state, or an array of states, made by :meth:`ostrel.Fluid.state`.

    Each output of the library is an attribute, and an item; it is computed when it is asked for. What is no name of
    Python is an item alone, or has an underscore behind it (``lambda_``). ``T`` is ``t``.

    >>> import ostrel
    >>> state = ostrel.Fluid("toluene").state(p=1e5, T=400.0)
    >>> round(state.d, 3), round(state.h), state.phase_name
    (2.85, -185627, 'vapor')
    >>> round(state["dp/dd|u"], 1), state["d, h"] == (state.d, state.h)
    (34198.3, True)
    """

    __slots__ = ("_fluid", "_handle", "_solved", "_form", "_strict", "__weakref__")

    _solved: Any

    def __init__(self, fluid: Fluid, handle: _core.Handle, solved: _core.State | npt.NDArray[Any], form: Form | None,
                 strict: bool) -> None:
        self._fluid = fluid
        self._handle = handle
        self._solved = solved  # without a form one state, else an array
        self._form = form
        self._strict = strict

    if TYPE_CHECKING:
        def __getattr__(self, name: str) -> Any: ...

    # Nothing can tell a copy from the original.
    def __copy__(self) -> State:
        return self

    def __deepcopy__(self, memo: object) -> State:
        return self

    def __getstate__(self) -> tuple[Any, ...]:
        return self._fluid, self._solved, self._form, self._strict

    def __setstate__(self, state: tuple[Any, ...]) -> None:
        self._fluid, self._solved, self._form, self._strict = state
        self._handle = self._fluid._handle

    def __getitem__(self, outputs: str | Sequence[str]) -> Any:
        if self._form is None and type(outputs) is str and "," not in outputs:
            return self._handle.output_of(self._solved, outputs)
        names = Names(outputs)
        if self._form is None:
            made = [self._handle.output_of(self._solved, name) for name in names.names]
            return made[0] if names.single else tuple(made)
        columns, _ = self._handle.outputs(str(names), self._solved, with_status=not self._strict)
        return self._form.outputs(columns, names)

    @property
    def fluid(self) -> Fluid:
        """The fluid."""
        return self._fluid

    @property
    def shape(self) -> tuple[int, ...]:
        """The shape to which the inputs broadcast; () for one state."""
        return () if self._form is None else self._form.shape

    @property
    def status(self) -> Any:
        """The status of each state, 0 where it is solved; others need ``errors="nan"``."""
        return 0 if self._form is None else self._form.array(self._solved["status"], "status")

    @property
    def phase_name(self) -> Any:
        """The phase in words; an empty text where there is no state."""
        if self._form is None:
            return _core.phase_name(int(self["phase"]))
        phases, _ = self._handle.outputs("phase", self._solved, with_status=True)
        words = ["" if np.isnan(phase) else _core.phase_name(int(phase)) for phase in phases[0]]
        return self._form.array(np.array(words, dtype=np.str_), "phase_name")

    def __repr__(self) -> str:
        if self._form is not None:
            return f"<states of {self._fluid.name}, shape {self.shape}>"
        return f"<{self.phase_name} state of {self._fluid.name}: t={self['t']:g} K, p={self['p']:g} Pa>"


def _attribute(name: str, unit: str, description: str) -> property:
    def get(state: State) -> Any:
        if state._form is None:
            return state._handle.output_of(state._solved, name)
        return state[name]

    return property(get, doc=f"{description} [{unit}]")


for _name, _unit, _description in _core.list("outputs"):
    setattr(State, _name + "_" * keyword.iskeyword(_name), _attribute(_name, _unit, _description))
setattr(State, "T", State.__dict__["t"])


class Saturation(NamedTuple):
    """The two phases on the saturation line, made by :meth:`ostrel.Fluid.saturation`."""

    liquid: State
    vapor: State
