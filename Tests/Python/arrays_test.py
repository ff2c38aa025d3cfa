# SPDX-License-Identifier: MIT
"""Arrays of every kind: what comes out has the form of what went in, and the numbers of the C interface."""
import numpy as np
import pytest
from hypothesis import given, settings
from hypothesis import strategies as some
from hypothesis.extra import numpy as some_numpy

import ostrel
from c_library import Handle, same_bits

settings.register_profile("tests", deadline=None, derandomize=True, max_examples=500, database=None)
settings.load_profile("tests")

FLUID, HANDLE = ostrel.Fluid("toluene"), Handle("toluene")


def wanted_of(p, t, outputs):
    """Values of the C interface with the shape to which the inputs broadcast, the outputs first."""
    p, t = np.broadcast_arrays(np.asarray(p, dtype=np.float64), np.asarray(t, dtype=np.float64))
    values, status = HANDLE.evaluate("pt", outputs, p.flatten(), t.flatten())
    return values.T.reshape((outputs.count(",") + 1, *p.shape)), status.reshape(p.shape)


@some.composite
def strided(draw, shape, low, high):
    """An array of this shape as a view of another one: steps, reversed axes, axes in another order, types."""
    steps = [draw(some.sampled_from([1, 2, 3, -1, -2])) for _ in shape]
    order = draw(some.permutations(range(len(shape))))
    dtype = draw(some.sampled_from([np.float64, np.float32, np.int64, np.uint32, ">f8", np.longdouble]))
    seed = draw(some.integers(0, 2**32 - 1))
    whole = [0] * len(shape)
    for place, axis in enumerate(order):
        whole[place] = shape[axis] * abs(steps[axis])
    base = np.random.default_rng(seed).uniform(low, high, whole).astype(dtype)
    view = base.transpose(np.argsort(order))[tuple(slice(None, None, step) for step in steps)]
    assert view.shape == tuple(shape)
    return view


@given(some.data(), some_numpy.mutually_broadcastable_shapes(num_shapes=2, max_dims=4, max_side=5, min_side=0))
def test_shapes_strides_and_types(data, shapes):
    p = data.draw(strided(shapes.input_shapes[0], 1e4, 6e6))
    t = data.draw(strided(shapes.input_shapes[1], 250, 800))
    outputs = data.draw(some.sampled_from(["d", "h,d", "s,dp/dd|u,c", "q,phase"]))
    workers = data.draw(some.sampled_from([1, 2]))
    before = p.tobytes(), t.tobytes()
    wanted, wanted_status = wanted_of(p, t, outputs)
    made, status = FLUID("pt", p, t, outputs, workers=workers, errors="nan")
    assert (p.tobytes(), t.tobytes()) == before
    made = (made,) if "," not in outputs else made
    assert np.shape(status) == shapes.result_shape and np.array_equal(status, wanted_status)
    assert same_bits(np.array(made), wanted)
    state = FLUID.state(p=p, T=t, errors="nan")
    assert state.shape == shapes.result_shape
    solved = state[outputs]
    assert same_bits(np.array((solved,) if "," not in outputs else solved), wanted)


@given(some.data(), some.integers(0, 12))
def test_masks(data, count):
    def masked(low, high):
        values = data.draw(strided((count,), low, high))
        mask = data.draw(some.sampled_from([False, True]))
        if mask is False:
            return values, np.zeros(count, dtype=bool)
        mask = data.draw(some_numpy.arrays(np.bool_, count))
        return np.ma.MaskedArray(values, mask=mask), mask

    (p, hidden_p), (t, hidden_t) = masked(1e4, 6e6), masked(250, 800)
    hidden = hidden_p | hidden_t
    wanted, wanted_status = wanted_of(np.asarray(p), np.asarray(t), "d")
    made, status = FLUID("pt", p, t, "d", errors="nan")
    if not (isinstance(p, np.ma.MaskedArray) or isinstance(t, np.ma.MaskedArray)):
        assert type(made) is np.ndarray
        return
    assert isinstance(made, np.ma.MaskedArray) and np.array_equal(np.ma.getmaskarray(made), hidden)
    assert same_bits(made.data[~hidden], wanted[0][~hidden])
    assert np.array_equal(status.data[~hidden], wanted_status[~hidden])


def test_masked_states_cannot_fail():
    p = np.ma.MaskedArray([1e5, -1.0, 2e5], mask=[False, True, False])
    made = FLUID("pt", p, 400.0, "d")
    assert made.mask.tolist() == FLUID.state(p=p, T=400.0).d.mask.tolist() == [False, True, False]
    with pytest.raises(ostrel.StateError):
        FLUID("pt", p.data, 400.0, "d")


def test_numbers_and_empty_arrays():
    for one in (400, 400.0, np.float64(400), np.float32(400), np.int8(100) * np.int64(4), np.array(400.0)):
        assert type(FLUID("pt", 1e5, one, "d")) is float
        assert FLUID("pt", 1e5, one, "d") == FLUID("pt", 1e5, 400.0, "d")
    d, h = FLUID("pt", [], 400.0, "d,h")
    assert d.shape == h.shape == (0,) and FLUID.state(p=np.empty((3, 0)), T=400.0).h.shape == (3, 0)
    assert FLUID("pt", np.empty((2, 0)), np.empty((1, 1)), "d").shape == (2, 0)
    assert FLUID("pt", [[1e5]], 400.0, "d").shape == (1, 1)


def test_outputs_are_arrays_of_their_own():
    d, h = FLUID("pt", [1e5, 2e5], 450.0, ["d", "h"])
    assert d.flags.c_contiguous and d.flags.writeable and d.dtype == np.float64 and not np.shares_memory(d, h)
    d[:] = 0
    assert (FLUID("pt", [1e5, 2e5], 450.0, "d") > 0).all()
