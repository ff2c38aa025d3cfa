// SPDX-License-Identifier: MIT
// ostrel._core: fluid handles for Python. It knows arrays of states and texts, and no name of an input, an output or a
// constant: the face in ostrel/*.py asks the library's lists for them.
//
// Computes   what the functions of ostrel_fluid.h compute, with their bits
// Given      arrays of one dimension; of two inputs, one may have a single element that holds for all states
// Returned   new arrays, one for each output, in SI units
// Errors     a call that is refused raises the exception that ostrel/errors.py has for its status; so does a state that
//            failed, unless the caller asks for the statuses
// Threads    calls with arrays release the interpreter; any number of threads may use a handle
#include "Interfaces/Python/studies.h"
#include "ostrel.hpp"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace py = pybind11;

namespace {

using numbers = py::array_t<double, py::array::c_style | py::array::forcecast>;
using states = py::array_t<ostrel_state, py::array::c_style>;
using statuses = py::array_t<int>;

/// A call or a state that failed, on its way to Python.
struct failed {
    int status;
    std::string message;
};

/// Texts of files need not be UTF-8. Python keeps their other bytes as lone surrogates.
py::str decoded(std::string_view text) {
    PyObject *const made = PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape");
    if (made == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<py::str>(made);
}
std::string encoded(const py::str &text) {
    PyObject *const made = PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape");
    if (made == nullptr)
        throw py::error_already_set();
    std::string bytes = py::reinterpret_steal<py::bytes>(made);
    if (bytes.find('\0') != std::string::npos)
        throw failed{OSTREL_BAD_ARGUMENT, "a text has a NUL character"};
    return bytes;
}

/// A text that the library takes without a length. The interpreter has its UTF-8 form with a NUL behind it.
class text {
public:
    explicit text(std::string_view given) : data_(given.data()) {
        if (given.find('\0') != std::string_view::npos)
            throw failed{OSTREL_BAD_ARGUMENT, "a text has a NUL character"};
    }
    operator const char *() const { return data_; }

private:
    const char *data_;
};

void require(int status) {
    if (status != OSTREL_OK)
        throw failed{status, ostrel_last_message()};
}

// ---- Arrays --------------------------------------------------------------------------------------------------------

/// States are computed in blocks. What a block needs stays in the processor's cache, and a number that holds for all
/// states needs no array of its own. Threads are started anew for each block, so that it is larger with several.
std::size_t block_for(unsigned workers) {
    return workers == 1 ? 1024 : std::size_t{1} << 18;
}

/// `call(begin, count)` computes some of the states. After a failure, if statuses are not wanted, this raises it. The
/// library counts states from the beginning of its call, so that a state that is not in the first block is described
/// by one more call.
template <class Call>
void in_blocks(std::size_t count, std::size_t block, bool with_status, Call call) {
    const py::gil_scoped_release others_may_run;
    std::size_t begin = 0;
    // A call without states checks its texts.
    do {
        const std::size_t here = std::min(block, count - begin);
        const int status = call(begin, here);
        if (status >= OSTREL_BAD_ARGUMENT || (status != OSTREL_OK && !with_status))
            require(begin == 0 ? status : call(0, begin + here));
        begin += here;
    } while (begin < count);
}

/// An input of all states.
class input {
public:
    explicit input(const numbers &given) : data_(given.data()), repeated_(given.size() == 1) {}
    /// The array of some of the states.
    const double *of(std::size_t begin, std::size_t count) {
        if (!repeated_)
            return data_ + begin;
        if (copies_.size() < count)
            copies_.assign(count, *data_);
        return copies_.data();
    }

private:
    const double *data_;
    bool repeated_;
    std::vector<double> copies_{};
};

std::size_t count_of(const numbers &first, const numbers &second) {
    const auto n = first.size();
    const auto m = second.size();
    if (first.ndim() != 1 || second.ndim() != 1 || (n != m && n != 1 && m != 1))
        throw failed{OSTREL_BAD_ARGUMENT, "the two inputs must have one dimension and the same length"};
    return static_cast<std::size_t>(n == 1 ? m : n);
}

/// New arrays for some outputs, and for the statuses if they are wanted.
class columns {
public:
    /// phases [-] 2 for both saturated phases, one after the other
    columns(std::string_view names, std::size_t count, bool with_status, std::size_t phases = 1)
        : width_(ostrel::names::count_of_names(names)), phases_(phases), with_status_(with_status),
          status_(static_cast<py::ssize_t>(with_status ? count : 0)), status_data_(status_.mutable_data()) {
        for (std::size_t i = 0; i < width_ * phases_; ++i) {
            numbers made(static_cast<py::ssize_t>(count));
            data_.push_back(made.mutable_data());
            arrays_.append(made);
        }
    }

    int *status(std::size_t begin) const { return with_status_ ? status_data_ + begin : nullptr; }
    /// Room in which the library puts the outputs of one phase of `count` states.
    double *room(std::size_t count, std::size_t phase = 0) {
        values_.resize(std::max(values_.size(), count * width_ * phases_));
        return values_.data() + phase * count * width_;
    }
    /// Moves them from there to the arrays.
    void take(std::size_t begin, std::size_t count) {
        const double *from = values_.data();
        for (std::size_t phase = 0; phase < phases_; ++phase, from += count * width_)
            for (std::size_t output = 0; output < width_; ++output)
                for (std::size_t i = 0; i < count; ++i)
                    data_[phase * width_ + output][begin + i] = from[i * width_ + output];
    }
    /// (arrays, statuses or None)
    py::tuple answer() const {
        return py::make_tuple(py::tuple(arrays_), with_status_ ? py::object(status_) : py::none());
    }

private:
    std::size_t width_, phases_;
    bool with_status_;
    statuses status_;
    int *status_data_;
    py::list arrays_{};
    std::vector<double *> data_{};
    std::vector<double> values_{};
};

// ---- A handle ------------------------------------------------------------------------------------------------------

class handle {
public:
    explicit handle(ostrel::result<ostrel::fluid> opened) : fluid_(checked(std::move(opened))) {}

    static handle by_name(const py::str &name, const py::str &options) {
        return opened([](const auto &...texts) { return ostrel::fluid::try_open(texts...); }, options, name);
    }
    static handle from_file(const py::str &path, const py::str &options) {
        return opened([](const auto &...texts) { return ostrel::fluid::try_open_file(texts...); }, options, path);
    }
    static handle from_text(const py::str &text, const py::str &options) {
        return opened([](const auto &...texts) { return ostrel::fluid::try_open_text(texts...); }, options, text);
    }
    static handle from_database(const py::str &location, const py::str &name, const py::str &options) {
        return opened([](const auto &...texts) { return ostrel::fluid::try_open_database(texts...); }, options,
                      location, name);
    }

    const ostrel::fluid &fluid() const { return fluid_; }

    py::tuple evaluate(std::string_view inputs, std::string_view outputs, const numbers &first, const numbers &second,
                       unsigned workers, bool with_status) const {
        const std::size_t count = count_of(first, second);
        columns made(outputs, count, with_status);
        input one(first);
        input other(second);
        in_blocks(count, block_for(workers), with_status, [&](std::size_t begin, std::size_t n) {
            const double *const a = one.of(begin, n);
            const double *const b = other.of(begin, n);
            double *const values = made.room(n);
            const int status = workers == 1
                                   ? ostrel_fluid_evaluate(fluid_.handle(), text(inputs), text(outputs), n, a, b,
                                                           values, made.status(begin))
                                   : ostrel_fluid_evaluate_parallel(fluid_.handle(), text(inputs), text(outputs), n, a,
                                                                    b, values, made.status(begin), workers);
            if (status < OSTREL_BAD_ARGUMENT)
                made.take(begin, n);
            return status;
        });
        return made.answer();
    }

    double value(std::string_view inputs, double first, double second, std::string_view output) const {
        int status = OSTREL_OK;
        const double found = ostrel_fluid_value(fluid_.handle(), text(inputs), first, second, text(output), &status);
        require(status);
        return found;
    }

    py::tuple saturation(std::string_view name, std::string_view outputs, const numbers &at, bool with_status) const {
        const std::size_t count = count_of(at, at);
        columns made(outputs, count, with_status, 2);
        in_blocks(count, block_for(1), with_status, [&](std::size_t begin, std::size_t n) {
            double *const liquid = made.room(n);
            const int status = ostrel_fluid_saturation(fluid_.handle(), text(name), text(outputs), n, at.data() + begin,
                                                       liquid, made.room(n, 1), made.status(begin));
            if (status < OSTREL_BAD_ARGUMENT)
                made.take(begin, n);
            return status;
        });
        return made.answer();
    }

    states solve(std::string_view inputs, const numbers &first, const numbers &second, bool with_status) const {
        const std::size_t count = count_of(first, second);
        states made(static_cast<py::ssize_t>(count));
        ostrel_state *const data = made.mutable_data();
        input one(first);
        input other(second);
        in_blocks(count, block_for(1), with_status, [&](std::size_t begin, std::size_t n) {
            return ostrel_fluid_solve(fluid_.handle(), text(inputs), n, one.of(begin, n), other.of(begin, n),
                                      data + begin);
        });
        return made;
    }

    ostrel_state solve_one(std::string_view inputs, double first, double second) const {
        ostrel_state found;
        require(ostrel_fluid_solve(fluid_.handle(), text(inputs), 1, &first, &second, &found));
        return found;
    }

    py::tuple outputs(std::string_view names, const states &of, bool with_status) const {
        if (of.ndim() != 1)
            throw failed{OSTREL_BAD_ARGUMENT, "the states must have one dimension"};
        const auto count = static_cast<std::size_t>(of.size());
        columns made(names, count, with_status);
        in_blocks(count, block_for(1), with_status, [&](std::size_t begin, std::size_t n) {
            const int status = ostrel_fluid_outputs(fluid_.handle(), text(names), n, of.data() + begin, made.room(n),
                                                    made.status(begin));
            if (status < OSTREL_BAD_ARGUMENT)
                made.take(begin, n);
            return status;
        });
        return made.answer();
    }

    double output_of(const ostrel_state &of, std::string_view name) const {
        double found = 0;
        require(ostrel_fluid_outputs(fluid_.handle(), text(name), 1, &of, &found, nullptr));
        return found;
    }

    double constant(std::string_view name) const { return ostrel_fluid_constant(fluid_.handle(), text(name)); }
    py::object text_of(std::string_view name) const {
        const char *const found = ostrel_fluid_text(fluid_.handle(), text(name));
        return found == nullptr ? py::object(py::none()) : py::object(decoded(found));
    }

private:
    template <class Open, class... Text>
    static handle opened(Open open, const py::str &options, const Text &...texts) {
        const std::string with = encoded(options);
        return handle(open(encoded(texts)..., ostrel::unchecked(with)));
    }
    static ostrel::fluid checked(ostrel::result<ostrel::fluid> opened) {
        if (!opened)
            throw failed{opened.error().status, opened.error().message};
        return *std::move(opened);
    }

    ostrel::fluid fluid_;
};

// ---- Lists ---------------------------------------------------------------------------------------------------------

/// [(name, unit, description)]
py::list list(std::string_view kind_of_list) {
    const text kind(kind_of_list);
    py::list rows;
    for (std::size_t i = 0; ostrel_list(kind, i, "name") != nullptr; ++i)
        rows.append(py::make_tuple(ostrel_list(kind, i, "name"), ostrel_list(kind, i, "unit"),
                                   ostrel_list(kind, i, "description")));
    return rows;
}

/// [(name of the file, name of the fluid)]
py::list find(const py::str &words) {
    const auto found = ostrel::try_find(encoded(words));
    if (!found)
        throw failed{found.error().status, found.error().message};
    py::list rows;
    for (const ostrel::found_fluid &one : *found)
        rows.append(py::make_tuple(decoded(one.file), decoded(one.name)));
    return rows;
}

void raise(const failed &why) {
    // The interpreter decides which exception a status is, so that programs can catch them all by name.
    const py::object exception =
        py::module_::import("ostrel.errors").attr("of_status")(decoded(why.message), why.status);
    PyErr_SetObject(reinterpret_cast<PyObject *>(Py_TYPE(exception.ptr())), exception.ptr());
}

} // namespace

PYBIND11_MODULE(_core, module) {
    module.doc() = "Handles of fluids, for the package ostrel.";
    module.attr("version") = OSTREL_VERSION;
    py::register_local_exception_translator([](std::exception_ptr problem) {
        try {
            if (problem)
                std::rethrow_exception(std::move(problem));
        } catch (const failed &why) {
            raise(why);
        }
    });
    PYBIND11_NUMPY_DTYPE(ostrel_state, t, p, v, q, first, second, inputs, status, phase, reserved);
    module.attr("state_dtype") = py::dtype::of<ostrel_state>();

    module.attr("NO_STATE") = int{OSTREL_NO_STATE};
    module.attr("BAD_ARGUMENT") = int{OSTREL_BAD_ARGUMENT};
    module.attr("OUT_OF_MEMORY") = int{OSTREL_OUT_OF_MEMORY};

    py::class_<ostrel_state>(module, "State", "A state that has been solved.")
        .def(py::pickle(
            [](const ostrel_state &state) { return py::bytes(reinterpret_cast<const char *>(&state), sizeof state); },
            [](const py::bytes &bytes) {
                const std::string_view from = bytes;
                ostrel_state state;
                if (from.size() != sizeof state)
                    throw failed{OSTREL_BAD_ARGUMENT, "these bytes are no state"};
                std::copy(from.begin(), from.end(), reinterpret_cast<char *>(&state));
                return state;
            }));
    py::class_<handle>(module, "Handle", "An open fluid; it never changes.")
        .def_static("open", &handle::by_name, py::arg("name"), py::arg("options"))
        .def_static("open_file", &handle::from_file, py::arg("path"), py::arg("options"))
        .def_static("open_text", &handle::from_text, py::arg("text"), py::arg("options"))
        .def_static("open_database", &handle::from_database, py::arg("location"), py::arg("name"), py::arg("options"))
        .def("evaluate", &handle::evaluate, py::arg("inputs"), py::arg("outputs"), py::arg("first"), py::arg("second"),
             py::arg("workers"), py::arg("with_status"))
        .def("value", &handle::value)
        .def("saturation", &handle::saturation, py::arg("name"), py::arg("outputs"), py::arg("at"),
             py::arg("with_status"))
        .def("solve", &handle::solve, py::arg("inputs"), py::arg("first"), py::arg("second"), py::arg("with_status"))
        .def("solve_one", &handle::solve_one)
        .def("outputs", &handle::outputs, py::arg("names"), py::arg("states"), py::arg("with_status"))
        .def("output_of", &handle::output_of)
        .def("constant", &handle::constant)
        .def("text", &handle::text_of);
    module.def("list", &list, py::arg("kind"), "Rows of a list of the library: (name, unit, description).");
    module.def("find", &find, py::arg("words"), "Fluids that the words find: (name of the file, name of the fluid).");
    module.def("status_text", &ostrel_status_text, py::arg("status"), "What a status means.");
    add_studies(module,
                [](py::handle object) -> const ostrel::fluid & { return object.cast<const handle &>().fluid(); });
}
