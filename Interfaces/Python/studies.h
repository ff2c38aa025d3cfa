// SPDX-License-Identifier: MIT
// The studies on handles, for ostrel._core: curves of diagrams, cycles, and texts with units.
#pragma once

#include "ostrel.hpp"

#include <functional>
#include <pybind11/pybind11.h>

/// Adds the functions. `fluid_of` has the fluid of an object of the module's class of handles.
void add_studies(pybind11::module_ &module, const std::function<const ostrel::fluid &(pybind11::handle)> &fluid_of);
