# SPDX-License-Identifier: MIT
"""Exceptions. Each has the library's message, and the number of its status."""
from __future__ import annotations

from . import _core


class OstrelError(Exception):
    """Something that the library refused. `status` is the number of the library's status."""

    def __init__(self, message: str, status: int) -> None:
        super().__init__(message, status)
        self.status = status

    def __str__(self) -> str:
        return str(self.args[0])


class StateError(OstrelError):
    """No state has these inputs, or an output has no meaning there. ``errors="nan"`` gives NaN instead."""


class OpeningError(OstrelError):
    """There is no such fluid, or its parameters cannot be used."""


class StudyError(OstrelError):
    """The fluid cannot have this cycle or this diagram."""

    def __init__(self, message: str, status: int = _core.NO_STATE) -> None:
        super().__init__(message, status)


class ArgumentError(OstrelError, ValueError):
    """The call cannot be understood."""

    def __init__(self, message: str, status: int = _core.BAD_ARGUMENT) -> None:
        super().__init__(message, status)


def of_status(message: str, status: int) -> Exception:
    """The exception that a status is."""
    if status < _core.BAD_ARGUMENT:
        return StateError(message, status)
    if status == _core.BAD_ARGUMENT:
        return ArgumentError(message, status)
    if status == _core.OUT_OF_MEMORY:
        return MemoryError(message)
    return OpeningError(message, status)
