# SPDX-License-Identifier: MIT
"""Thermodynamic and transport properties of pure fluids from simple equations of state. All numbers are in SI units.

>>> import ostrel
>>> toluene = ostrel.Fluid("toluene", model="pr")
>>> state = toluene.state(p=10e5, T=450.0)
>>> round(state.d, 2), round(state.c, 2), state.phase_name
(709.91, 557.91, 'liquid')
>>> d, h = toluene("pt", [1e5, 2e5], 400.0, ["d", "h"])
>>> round(toluene.saturation(T=400.0).vapor.d, 3)
4.551
"""
from . import plot
from ._core import version as __version__
from .cycles import Cycle, Process, cycle
from .errors import ArgumentError, OpeningError, OstrelError, StateError, StudyError
from .fluid import Fluid, Found, fluids
from .state import Saturation, State

__all__ = ["ArgumentError", "Cycle", "Fluid", "Found", "OpeningError", "OstrelError", "Process", "Saturation", "State",
           "StateError", "StudyError", "__version__", "cycle", "fluids", "plot"]
