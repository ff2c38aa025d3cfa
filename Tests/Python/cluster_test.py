# SPDX-License-Identifier: MIT
"""A study on a cluster of two worker processes, of which one is killed in the middle."""
import os
import pathlib
import signal
import threading
import time

import dask
import dask.array as dask_array
import numpy as np
import pytest

import ostrel
from c_library import same_bits

distributed = pytest.importorskip("distributed", reason="python3-distributed is not installed")
#: What a step may take on a machine that is busy [s]. No result depends on it.
PATIENCE = 40.0
BLOCKS, FINISHED_BEFORE = 32, 2

_seen = 0  # blocks that this worker process has begun


def recorded(block, folder):
    """The block itself. The process writes down that it begins, and once one of the processes that have finished some
    blocks stops here: it goes on only if nobody kills it."""
    global _seen
    _seen += 1
    with open(folder / "begun", "a", encoding="utf-8") as file:
        file.write(f"{os.getpid()} {block.flat[0]:.17g}\n")
    if _seen > FINISHED_BEFORE:
        try:
            (folder / "waiting").mkdir()
        except FileExistsError:
            return block
        (folder / "waiting" / str(os.getpid())).touch()
        threading.Event().wait(2 * PATIENCE)
        raise RuntimeError("this worker should have been killed")
    return block


def wait_for(what, condition):
    """What the condition gives once it is true."""
    end = time.monotonic() + PATIENCE
    while not (found := condition()):
        assert time.monotonic() < end, f"{what} takes more than {PATIENCE} s"
        time.sleep(0.02)
    return found


def begun(folder):
    """[(process, first pressure of the block)] in the order of time."""
    lines = (folder / "begun").read_text(encoding="utf-8").splitlines()
    return [(int(process), float(p)) for process, p in (line.split() for line in lines)]


def test_a_worker_dies(tmp_path):
    fluid = ostrel.Fluid("toluene", model="pr", reference="iir")
    p, t = np.geomspace(1e4, 5e6, 640 * BLOCKS), np.linspace(300.0, 650.0, 640 * BLOCKS)
    wanted = fluid("pt", p, t, ["d", "h"])
    lazy = dask_array.from_array(p, chunks=640)
    given = dask_array.map_blocks(recorded, lazy, tmp_path, dtype=np.float64, meta=np.empty(0))
    study = dask_array.stack(fluid("pt", given, dask_array.from_array(t, chunks=640), ["d", "h"]))

    # What a process has finished stays in its own memory alone, unless others take its work.
    with dask.config.set({"distributed.scheduler.work-stealing": False}), \
            distributed.LocalCluster(n_workers=2, threads_per_worker=1, host="127.0.0.1",
                                     dashboard_address="127.0.0.1:0", local_directory=str(tmp_path)) as cluster, \
            distributed.Client(cluster, timeout=PATIENCE) as client:
        client.wait_for_workers(2, timeout=PATIENCE)
        workers = set(client.run(os.getpid).values())
        assert len(workers) == 2 and os.getpid() not in workers
        under_way = client.compute(study)
        victim = int(wait_for("the work", lambda: list((tmp_path / "waiting").glob("*")))[0].name)
        assert victim in workers and not under_way.done()
        os.kill(victim, signal.SIGKILL)
        wait_for("the death", lambda: not pathlib.Path(f"/proc/{victim}").exists())
        made = under_way.result(timeout=PATIENCE)
        workers_after = set(client.run(os.getpid).values())

    assert same_bits(made, wanted)
    assert victim not in workers_after
    # What the dead process had begun was begun by others again, also what it had finished and had in its memory alone.
    blocks = begun(tmp_path)
    lost = [first for process, first in blocks if process == victim]
    assert len(lost) == FINISHED_BEFORE + 1
    assert set(lost) <= {first for process, first in blocks if process != victim}
    assert {first for _, first in blocks} == set(p[::640])
