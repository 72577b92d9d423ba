"""Threads of Python at once, and counts that come out even."""

import concurrent.futures
import gc
import resource
import sys
import threading
import time

import numpy as np
import pytest

import zdkvision as zv
from conftest import text_of


def in_two_threads(work):
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        return [job.result() for job in [pool.submit(work, number) for number in range(2)]]


@pytest.fixture(params=[1, 3])
def workers(request):
    count = zv.worker_count()
    zv.set_worker_count(request.param)
    yield request.param
    zv.set_worker_count(count)


def test_the_worker_count_is_limited():
    with pytest.raises(zv.Error):
        zv.set_worker_count(0)
    with pytest.raises(zv.Error):
        zv.set_worker_count(1025)


def test_two_threads_measure_at_once(workers):
    generator = np.random.default_rng(2)
    surface = zv.Surface(generator.integers(-99, 99, (400, 400)).astype(np.int16), scale=(1, 1, 1), offset=(0, 0, 0))

    def measure(_):
        region = zv.CircleROI((200, 200), 20, 150, frame=surface)
        zv.threshold_height(surface, -50, 50, region)
        points = zv.get_points_from_roi(surface, region.bounding_box, region.mask)
        return len(points), points.sum(axis=0).tolist(), zv.fit_plane(surface, region.bounding_box, region.mask)

    alone = measure(0)
    for _ in range(5):
        assert in_two_threads(measure) == [alone, alone]


def test_one_region_may_be_asked_by_two_threads(workers):
    member = zv.CircleROI((200, 200), 0, 150, frame=zv.Frame(400, 400, (1, 1), (0, 0)))
    composition = zv.ComposedROI()
    composition.add(member)
    selected = int(member.mask.sum())

    def ask(number):
        for turn in range(100):
            member.set_scale((1, 1))
            region = composition if (turn + number) % 2 else member
            assert int(region.mask.sum()) == selected and region.bounding_box == (50, 50, 301, 301)
        return True

    assert in_two_threads(ask) == [True, True]


def test_one_filter_may_be_used_by_two_threads():
    line = np.zeros(10000, np.int16)
    chain = zv.ProfileFilter(line)
    in_two_threads(lambda _: [chain.average(101) for _ in range(50)])
    assert not chain.result.any()


def test_the_interpreter_runs_on_during_a_long_call():
    points = np.random.default_rng(3).normal(size=(3000, 2))
    ticks = []
    done = threading.Event()

    def tick():
        while not done.is_set():
            ticks.append(time.monotonic())
            time.sleep(0.001)

    ticker = threading.Thread(target=tick)
    ticker.start()
    begin = time.monotonic()
    zv.fit_circle_by_rlts(points, 75, seed=1)
    end = time.monotonic()
    done.set()
    ticker.join()
    within = [time_ for time_ in ticks if begin < time_ < end]
    assert len(within) >= 3, f"{end - begin:.3f} s with the interpreter held"


def calls_without_a_trace():
    rng = np.random.default_rng(4)
    heights = rng.integers(-9, 9, (8, 8)).astype(np.int16)
    surface = zv.Surface(heights, scale=(1, 1, 1), offset=(0, 0, 0))
    mask = np.ones((8, 8), np.uint8)
    rect = zv.Rect2d(0, 0, 8, 8)
    points = rng.normal(size=(20, 3))
    message = zv.SurfaceMessage(4, 4)

    def failing():
        try:
            zv.fit_sphere(np.zeros((4, 3)))
        except zv.Error:
            pass

    return {
        "surface": lambda: zv.Surface(heights).heights,
        "frame": lambda: zv.CircleROI((0, 0), 0, 3, frame=surface).mask,
        "points": lambda: zv.get_points_from_roi(surface, rect, mask),
        "threshold": lambda: zv.threshold_height(surface, -100, 100, rect, mask),
        "circle": lambda: zv.fit_circle(points[:, :2], 10),
        "line": lambda: zv.ProfileFilter(heights[0]).average(3).result,
        "frames": lambda: zv.RefFrame().translate(1, 2, 3).apply_n(points),
        "box": lambda: zv.get_bounding_box([(surface, rect, mask)]),
        "mat": lambda: zv.Mat(message, 0, zv.Mat.get_region_from_msg(message, 0)).pixels,
        "arithmetic": lambda: zv.Arithmetics.apply_mask(surface, surface),
        "inpaint": lambda: zv.inpaint(mask, mask * 0, 3, zv.InpaintMethod.NS),
        "failure": failing,
    }


@pytest.mark.parametrize("name, call", calls_without_a_trace().items(), ids=text_of)
def test_a_thousand_calls_leave_no_objects_behind(name, call):
    for _ in range(10):
        call()
    gc.collect()
    before = sys.getallocatedblocks()
    for _ in range(1000):
        call()
    gc.collect()
    assert sys.getallocatedblocks() - before < 500


def test_large_results_are_given_back():
    source = np.ones((1000, 1000), np.int16)
    for _ in range(5):
        zv.smooth_full_array2(source, 4, 4)
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    for _ in range(100):  # 200 MB of results, and as much of copies, one after the other
        zv.smooth_full_array2(source, 4, 4)
    assert resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before < 50_000


def test_arguments_keep_their_counts():
    points = np.zeros((4, 2))
    record = zv.Rect2d(0, 0, 2, 2)
    mask = zv.empty((2, 2), "uint8")
    mask[:] = 1
    surface = zv.Surface(np.ones((2, 2), np.int16), scale=(1, 1, 1), offset=(0, 0, 0))
    counts = [sys.getrefcount(item) for item in (points, record, mask, surface)]
    for _ in range(100):
        zv.fit_line(points)
        zv.get_points_from_roi(surface, record, mask)
        zv.threshold_height(surface, 0, 9, record, mask)
    assert [sys.getrefcount(item) for item in (points, record, mask, surface)] == counts
