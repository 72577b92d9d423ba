"""Filters of lines and maps, and arithmetic on maps."""

import numpy as np
import pytest

import zdkvision as zv

NULL = zv.NULL_HEIGHT


def test_filters_of_a_line_are_chained():
    line = np.array([0, NULL, 10, 40, 10, 10], np.int16)
    chain = zv.ProfileFilter(line)
    assert chain.fill_gap(2, 10) is chain
    assert chain.result.tolist() == [0, 5, 10, 40, 10, 10]
    assert chain.median(3).result.tolist() == [2, 5, 10, 10, 10, 10]
    assert line[1] == NULL


def test_missing_heights_are_kept_or_filled():
    line = np.array([3, NULL, 6], np.int16)
    assert zv.ProfileFilter(line).average(3).result.tolist() == [3, 4, 6]
    assert zv.ProfileFilter(line).average(3, keep_nulls=True).result.tolist() == [3, NULL, 6]


def test_a_gaussian_lags_by_a_cell():
    line = np.array([0, 0, 100, 0, 0], np.int16)
    result = zv.ProfileFilter(line).gaussian(3, 0.5).result
    weights = np.exp(-np.array([1, 0, 1]) / 0.5)
    assert result[3] == round(100 * weights[1] / weights.sum())


def test_a_band_of_percentiles():
    line = np.array([5, 1, 4, 2, 3], np.int16)
    assert zv.ProfileFilter(line).percentile(25, 75, zv.PercentileType.RANK).result.tolist() == [NULL, NULL, 4, 2, 3]
    assert zv.ProfileFilter(line).percentile(0, 50, zv.PercentileType.RANGE).result.tolist() == [NULL, 1, NULL, 2, 3]


def test_a_strided_line_is_taken_as_it_reads():
    line = np.array([1, 9, 2, 9, 3, 9], np.int16)[::2]
    assert zv.ProfileFilter(line).average(3).result.tolist() == [1, 2, 2]


def test_other_lines_are_refused():
    for line in (np.zeros(3), np.zeros((2, 2), np.int16), [1, 2]):
        with pytest.raises(TypeError):
            zv.ProfileFilter(line)
    with pytest.raises(zv.Error):
        zv.ProfileFilter(np.zeros(0, np.int16))


def test_a_map_is_smoothed_along_rows_and_columns():
    heights = np.array([[0, 3, 6], [9, NULL, 15]], np.int16)
    smooth = zv.SurfaceFilter(heights)
    assert smooth.average((3, 1)) is smooth
    assert smooth.result.tolist() == [[1, 3, 4], [9, 12, 15]]
    assert smooth.average((1, 2)).result.tolist() == [[5, 7, 9], [9, 12, 15]]
    assert zv.SurfaceFilter(heights).average((3, 1), keep_nulls=True).result[1, 1] == NULL


def test_a_result_of_a_filter_can_go_on_without_a_copy():
    smooth = zv.SurfaceFilter(np.ones((3, 3), np.int16)).average((3, 3)).result
    assert np.shares_memory(zv.Surface(smooth).heights, smooth)


@pytest.mark.parametrize("dtype", ["uint8", "int16", "int32", "uint16"])
def test_padding_mirrors_about_the_edge(dtype):
    padded = zv.pad_array2(np.array([[1, 2], [3, 4]], dtype), 1, 2)
    assert padded.dtype == dtype
    assert padded.tolist() == [[3, 3, 4, 4], [1, 1, 2, 2], [1, 1, 2, 2], [3, 3, 4, 4], [3, 3, 4, 4], [1, 1, 2, 2]]


def test_padding_takes_cells_of_certain_widths():
    with pytest.raises(TypeError):
        zv.pad_array2(np.zeros((2, 2)), 1, 1)


def test_smoothing_in_a_box_keeps_missing_heights():
    heights = np.full((4, 4), 8, np.int16)
    heights[0, 0] = NULL
    smooth = zv.smooth_full_array2(heights, 2, 2)
    assert smooth[0, 0] == NULL and (smooth.ravel()[1:] == 8).all()


def test_a_map_is_decimated_by_size_or_ratio():
    surface = zv.Surface(np.array([[0, 2, 4, 6], [2, 4, 6, 8]], np.int16), scale=(1, 1, 1), offset=(0, 0, 0))
    for coarse in (zv.surface_decimate(surface, out_size=(2, 1)), zv.surface_decimate(surface, ratio=(0.5, 0.5))):
        assert coarse.heights.tolist() == [[2, 6]]
        assert coarse.scale == (2, 2, 1) and coarse.offset == (0.5, 0.5, 0)


def test_gaps_of_a_map_are_filled():
    heights = np.array([[0, NULL, 10]], np.int16)
    intensities = np.array([[10, 0, 30]], np.uint8)
    params = zv.SurfaceFillGapParams(1, 1, 1, max_gap_x=1, max_gap_y=0, max_slope_x=89.9)
    filled = zv.surface_fill_gap_xy(params, heights, intensities)
    assert filled.heights.tolist() == [[0, 5, 10]] and filled.intensities.tolist() == [[10, 20, 30]]
    assert zv.surface_fill_gap_xy(params, heights).intensities is None
    assert heights[0, 1] == NULL


def test_maps_are_added_and_subtracted_where_they_meet():
    first = zv.Surface(np.array([[10, 20, 30]], np.int16), scale=(1, 1, 1), offset=(0, 0, 0))
    second = zv.Surface(np.array([[1, 2, 3]], np.int16), scale=(1, 1, 1), offset=(1, 0, 0))
    operator, logic = zv.ArithmeticOperator, zv.ArithmeticLogic
    difference = zv.Arithmetics.apply(operator.SUBTRACT, logic.INTERSECTION, first, second)
    assert difference.heights.tolist() == [[19, 28]] and difference.offset == (1, 0, 0)
    united = zv.Arithmetics.apply(operator.ADD, logic.UNION, first, second)
    assert united.heights.tolist() == [[10, 21, 32, 3]]
    second.heights[0, 0] = NULL
    assert zv.Arithmetics.apply_mask(first, second).heights.tolist() == [[NULL, 30]]


def test_pixels_are_combined_one_by_one():
    mean = zv.ArithmeticsPixelOperation.create(zv.ArithmeticOperator.AVERAGE)
    assert type(mean) is zv.ArithmeticsPixelAverage
    assert mean.operate_heights(3, 8) == 5 and mean.operate_intensities(3, 8) == 5
    assert mean.operate_heights(NULL, NULL) is None
    plus = zv.ArithmeticsPixelAdd()
    plus.set_scale(0.5)
    plus.set_offsets(1, 2)
    assert (plus.z_scale, plus.z_offset0, plus.z_offset1) == (0.5, 1, 2)
    # 1 + 0.5 * 2 and 2 + 0.5 * 4 are 6; above the offset of 1 that is 10 counts.
    assert plus.operate_heights(2, 4) == 10
    assert zv.ArithmeticsPixelSubtract().operate_intensities(3, 8) == 0
