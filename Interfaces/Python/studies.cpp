// SPDX-License-Identifier: MIT
#include "Interfaces/Python/studies.h"

#include "Studies/curves.h"
#include "Studies/cycle.h"
#include "Studies/remarks.h"
#include "Studies/units.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>
#include <pybind11/numpy.h>
#include <pybind11/stl.h>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace {

using fluid_of_object = std::function<const ostrel::fluid &(py::handle)>;
using range = std::optional<std::array<double, 2>>;

// ---- Diagrams ------------------------------------------------------------------------------------------------------

/// An array with a row for each point.
py::array_t<double> array_of(const studies::polyline &line) {
    static_assert(sizeof(studies::diagram_point) == 2 * sizeof(double));
    py::array_t<double> made({static_cast<py::ssize_t>(line.size()), py::ssize_t{2}});
    if (!line.empty())
        std::memcpy(made.mutable_data(), line.data(), line.size() * sizeof line[0]);
    return made;
}

studies::unit_system system_named(std::string_view name) {
    if (name == "si")
        return studies::unit_system::si;
    if (name == "engineering")
        return studies::unit_system::engineering;
    throw studies::wrong_value(R"(units are "si" or "engineering", not ")" + std::string(name) + '"');
}

/// [(name, letter of x, letter of y)]
py::list diagram_kinds() {
    py::list rows;
    for (const studies::diagram_kind &kind : studies::diagram_kinds())
        rows.append(py::make_tuple(kind.name, studies::text_of(kind.x).letter, studies::text_of(kind.y).letter));
    return rows;
}

/// {letter: (name, symbol, SI unit, name of its lines, whether axes are logarithmic)}
py::dict properties() {
    py::dict rows;
    for (std::size_t i = 0; i < studies::property_count; ++i) {
        const studies::property_text &row = studies::text_of(static_cast<studies::property>(i));
        rows[py::str(std::string(row.letter))] =
            py::make_tuple(row.name, row.symbol, row.si, row.lines, row.logarithmic);
    }
    return rows;
}

/// The range of an axis [SI].
std::optional<studies::axis_range> axis(const char *name, const range &given, studies::property what) {
    if (!given)
        return std::nullopt;
    const auto [low, high] = *given;
    if (!std::isfinite(low) || !std::isfinite(high) || low >= high)
        throw studies::wrong_value(std::string(name) + ": two numbers are wanted, the lower one first");
    if (studies::text_of(what).logarithmic && (low <= 0 || high / low > 1e15))
        throw studies::wrong_value(std::string(name) +
                                   ": the axis is logarithmic, for values above 0 and at most 15 decades");
    return studies::axis_range{low, high};
}

/// (range of x, range of y, saturation line, critical point or None, [(letter, value, [pieces])]), in SI units
py::tuple diagram(const ostrel::fluid &fluid, std::string_view kind, const range &x, const range &y,
                  const std::optional<std::string> &lines, const std::string &units) {
    studies::diagram_request asked{.kind = studies::diagram_kind_named(kind)};
    if (asked.kind == nullptr)
        throw studies::wrong_value("there is no diagram \"" + std::string(kind) + '"');
    asked.x = axis("x", x, asked.kind->x);
    asked.y = axis("y", y, asked.kind->y);
    if (lines && lines->find_first_not_of(asked.kind->possible) != std::string::npos)
        throw studies::wrong_value("the lines of this diagram are some of the letters " +
                                   std::string(asked.kind->possible) + ", not \"" + *lines + '"');
    asked.families = lines;
    asked.units = system_named(units);
    const studies::diagram made = [&] {
        const py::gil_scoped_release others_may_run;
        return studies::make_diagram(fluid, asked);
    }();
    py::list isolines;
    for (const studies::isoline &line : made.lines) {
        py::list pieces;
        for (const studies::polyline &piece : line.pieces)
            pieces.append(array_of(piece));
        isolines.append(py::make_tuple(studies::text_of(line.what).letter, line.value, pieces));
    }
    const py::object critical =
        made.critical ? py::object(py::make_tuple(made.critical->x, made.critical->y)) : py::object(py::none());
    return py::make_tuple(py::make_tuple(made.x.low, made.x.high), py::make_tuple(made.y.low, made.y.high),
                          array_of(made.dome), critical, isolines);
}

/// (name, factor, offset): a value in SI units is that in the unit times the factor plus the offset.
py::tuple shown_unit(std::string_view si, std::string_view units) {
    const studies::unit shown = studies::shown_unit(si, system_named(units));
    return py::make_tuple(shown.name, shown.factor, shown.offset);
}

double parse_value(std::string_view text, std::string_view si, bool difference) {
    return difference ? studies::parse_difference(text, si) : studies::parse_value(text, si);
}

// ---- Cycles --------------------------------------------------------------------------------------------------------

/// [(section, name, SI unit, whether it is a difference, what holds without it or None, meaning)]
py::list cycle_keys() {
    py::list rows;
    for (const studies::cycle_key &row : studies::cycle_keys())
        rows.append(py::make_tuple(row.section, row.name, row.si, row.difference, row.standard, row.meaning));
    return rows;
}

/// [(name, meaning)]
py::list cycle_kinds() {
    py::list rows;
    for (const studies::cycle_kind_row &row : studies::cycle_kinds())
        rows.append(py::make_tuple(row.name, row.meaning));
    return rows;
}

/// [(name, SI unit, meaning)]
py::list cycle_figures() {
    py::list rows;
    for (const studies::cycle_figure &row : studies::cycle_figure_list())
        rows.append(py::make_tuple(row.name, row.si, row.meaning));
    return rows;
}

/// ([(place, state)], [(process, its first state, its last state, states along it)], {figure: value})
py::tuple cycle(const ostrel::fluid &fluid, std::string_view kind, const py::dict &values) {
    studies::cycle_definition wanted;
    const auto kinds = studies::cycle_kinds();
    const auto found = std::ranges::find(kinds, kind, &studies::cycle_kind_row::name);
    if (found == kinds.end())
        throw studies::wrong_value("there is no kind of cycle \"" + std::string(kind) + '"');
    wanted.kind = found->kind;
    for (const auto &[name, value] : values) {
        const studies::cycle_key *const key = studies::cycle_key_named(name.cast<std::string>());
        if (key == nullptr)
            throw studies::wrong_value("there is no key \"" + name.cast<std::string>() + '"');
        wanted.*key->member = value.cast<double>();
    }
    const studies::cycle_result solved = [&] {
        const py::gil_scoped_release others_may_run;
        return studies::solve(fluid, wanted);
    }();
    py::list states;
    py::list processes;
    for (const studies::cycle_state &one : solved.states)
        states.append(py::make_tuple(one.place, one.at.state));
    for (const studies::cycle_process &one : solved.processes) {
        py::array_t<ostrel_state> along(static_cast<py::ssize_t>(one.points.size()));
        std::ranges::transform(one.points, along.mutable_data(), &studies::point::state);
        processes.append(py::make_tuple(one.name, one.from, one.to, along));
    }
    py::dict figures;
    for (const studies::cycle_figure &row : studies::cycle_figure_list())
        figures[py::str(std::string(row.name))] = solved.figures.*row.member;
    return py::make_tuple(states, processes, figures);
}

/// Exceptions of the studies in Python: a text that means nothing, or a study that has no answer.
void translate(std::exception_ptr problem) {
    const auto raise = [](const char *name, const char *message) {
        const py::object kind = py::module_::import("ostrel.errors").attr(name);
        PyErr_SetObject(kind.ptr(), py::str(message).ptr());
    };
    try {
        if (problem)
            std::rethrow_exception(std::move(problem));
    } catch (const studies::wrong_value &why) {
        raise("ArgumentError", why.what());
    } catch (const studies::impossible &why) {
        raise("StudyError", why.what());
    } catch (const studies::no_diagram &why) {
        raise("StudyError", why.what());
    }
}

} // namespace

void add_studies(py::module_ &module, const fluid_of_object &fluid_of) {
    py::register_local_exception_translator(&translate);
    module.def("phase_name", &studies::phase_name, py::arg("phase"), "The name of a phase's number.");
    module.def("parse_value", &parse_value, py::arg("text"), py::arg("si"), py::arg("difference"),
               "The value of a text with or without a unit.");
    module.def("shown_unit", &shown_unit, py::arg("si"), py::arg("units"), "How a system of units shows values.");
    module.def("diagram_kinds", &diagram_kinds, "Kinds of diagrams.");
    module.def("properties", &properties, "Properties of axes and isolines.");
    module.def(
        "diagram",
        [fluid_of](py::handle of, std::string_view kind, const range &x, const range &y,
                   const std::optional<std::string> &lines,
                   const std::string &units) { return diagram(fluid_of(of), kind, x, y, lines, units); },
        py::arg("handle"), py::arg("kind"), py::arg("x"), py::arg("y"), py::arg("lines"), py::arg("units"),
        "The curves of a diagram.");
    module.def("cycle_kinds", &cycle_kinds, "Kinds of cycles.");
    module.def("cycle_keys", &cycle_keys, "Values of a cycle's definition.");
    module.def("cycle_figures", &cycle_figures, "What is computed for a cycle.");
    module.def(
        "cycle",
        [fluid_of](py::handle of, std::string_view kind, const py::dict &values) {
            return cycle(fluid_of(of), kind, values);
        },
        py::arg("handle"), py::arg("kind"), py::arg("values"), "Solves a cycle.");
}
