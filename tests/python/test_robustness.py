"""Arguments beyond all reason end in a result or in an exception."""

import math

import numpy as np
import pytest

import zdkvision as zv

INF, NAN = math.inf, math.nan
HEIGHTS = np.arange(20, dtype=np.int16).reshape(4, 5)
MASK = np.ones((4, 5), np.uint8)
WHOLE = zv.Rect2d(0, 0, 5, 4)
LONGEST, LARGEST = 2**31 - 1, 2**64 - 1
HUGE_FRAME = zv.Frame(LARGEST, LARGEST, (1e-9, 1e-9), (0, 0))


def result_of(call):
    """What the call returns, or the exception that is a fair answer."""
    try:
        return call()
    except (zv.Error, MemoryError, ValueError) as failure:
        return failure


REFUSED = {
    "size of pixels": lambda: zv.SurfaceMessage(2**40, 2**40),
    "items of a message": lambda: zv.SurfaceMessage(1, 1, 2**61),
    "workers": lambda: zv.set_worker_count(LARGEST),
    "coarse map": lambda: zv.surface_decimate(zv.Surface(HEIGHTS), (LARGEST, LARGEST), (1, 1)),
    "even window": lambda: zv.ProfileFilter(HEIGHTS[0]).average(LARGEST - 1),
    "padding": lambda: zv.pad_array2(HEIGHTS, LONGEST, LONGEST),
    "box": lambda: zv.smooth_full_array2(HEIGHTS, -LONGEST, LONGEST),
    "runs": lambda: zv.rle_to_mask(np.array([[LONGEST] * 3, [-LONGEST, -LONGEST, 1]], np.int32)),
    "union of boxes": lambda: zv.merge_masks([MASK] * 2, [(LONGEST, 0, 5, 4), (-LONGEST, 0, 5, 4)]),
    "negative box": lambda: zv.merge_masks([MASK], [(0, 0, -5, -4)]),
    "window beside the map": lambda: zv.crop_surface_from_roi(zv.Surface(HEIGHTS), (-1, -1, 5, 4), MASK),
    "no bytes": lambda: zv.RefFrame().deserialize(b""),
    "no such item": lambda: zv.Mat(zv.SurfaceMessage(2, 2), 7, zv.Region3d()),
}


@pytest.mark.parametrize("call", REFUSED.values(), ids=REFUSED)
def test_what_cannot_be_is_refused(call):
    assert isinstance(result_of(call), (zv.Error, MemoryError))


def test_numbers_without_bounds_have_results():
    assert zv.get_region_pixel(LARGEST, NAN, 0.0, zv.RunLength(INF, -INF), NAN).length == 0
    assert zv.PolygonROI([(NAN, NAN)] * 5, zv.Frame(10, 10, (1, 1), (0, 0))).mask is None
    assert zv.Mat().get_destination_mat(LONGEST, LONGEST) is None
    assert zv.RefFrame().get_column(LARGEST) is None
    assert zv.get_points_from_roi(zv.Surface(HEIGHTS), (LONGEST, -LONGEST, 5, 4), MASK).shape == (0, 3)
    assert zv.Mat(zv.SurfaceMessage(2, 2), 0, zv.Region3d(NAN, INF, 1e300, -1, 0, NAN, NAN), True, True).pixels is None
    assert zv.decompose_eigen(np.zeros((0, 0))).values.shape == (0,)
    assert zv.fit_line_ransac([(0, 0)] * 5, NAN, 10, NAN) == (None, None)
    assert len(zv.ProfileFilter(HEIGHTS[0]).median(LARGEST).result) == 5
    assert isinstance(result_of(lambda: zv.CircleROI((0, 0), 0, 1e300, frame=HUGE_FRAME).mask),
                      (type(None), zv.Error, MemoryError))


def test_compositions_do_not_come_to_hold_themselves():
    composition = zv.ComposedROI()
    composition.add(zv.RectangleROI(0, 0, 2, 2, frame=zv.Frame(5, 4, (1, 1), (0, 0))))
    composition.add(composition)
    assert len(composition) == 2 and composition.mask.all()
    scan = zv.Profile(HEIGHTS[0], (1, 1), (0, 0))
    over_lines = zv.ComposedRoiProfile()
    over_lines.add(zv.RectangleRoiProfile(zv.Region2d(0, 0, 3, 3), scan))
    over_lines.add(over_lines)
    assert len(over_lines) == 2 and over_lines.mask.tolist() == [1, 1, 1, 1]


@pytest.mark.parametrize("scale", [None, (0, 0, 0), (NAN,) * 3, (INF, 1, 1), (-1, -1, -1), (1e-300,) * 3])
@pytest.mark.parametrize("offset", [None, (0, 0, 0), (INF,) * 3, (1e300,) * 3])
def test_any_mapping_can_be_measured(scale, offset):
    surface = zv.Surface(HEIGHTS, scale=scale, offset=offset)
    answers = [result_of(call) for call in (
        lambda: zv.CircleROI((0, 0), 0, 3, frame=surface).mask,
        lambda: zv.SurfaceROI(surface, surface).mask,
        lambda: zv.Arithmetics.apply(zv.ArithmeticOperator.ADD, zv.ArithmeticLogic.UNION, surface, surface),
        lambda: zv.fit_plane(surface, WHOLE, MASK),
        lambda: zv.fit_sphere(surface, WHOLE, MASK, 50, 3),
        lambda: zv.apply_mask(surface, zv.RectangleROI(0, 0, 2, 2, frame=surface)),
        lambda: zv.get_bounding_box([(surface, WHOLE, MASK)], True),
        lambda: zv.threshold_height(surface, NAN, INF, WHOLE, MASK.copy()),
    )]
    assert answers[-1] is None
    assert len(zv.get_points_from_roi(surface, WHOLE, MASK)) == 20
