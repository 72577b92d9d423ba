"""Masks, and the way from masks to data."""

import numpy as np
import pytest

import zdkvision as zv


def test_height_limits_clear_the_mask_where_it_is(surface, whole):
    rect, mask = whole
    # Counts 3 to 21, as the heights are 100 + count / 2.
    zv.threshold_height(surface, 101.5, 110.5, rect, mask)
    assert mask.tolist() == [[0, 0, 0, 1, 1], [1, 0, 1, 1, 1], [1, 1, 0, 0, 0], [0, 0, 0, 0, 0]]


def test_masks_of_the_library_and_of_numpy_end_alike(surface, whole):
    rect, mask = whole
    shared = zv.array(mask)
    flags = mask.astype(bool)
    strided = np.ones((8, 10), np.uint8)
    for edited in (mask, shared, flags, strided[::2, ::2]):
        zv.threshold_height(surface, 102, 112, rect, edited)
    assert np.array_equal(mask, shared) and np.array_equal(mask, flags) and np.array_equal(mask, strided[::2, ::2])
    assert strided[1::2].all()
    assert flags.dtype == bool


def test_a_missing_limit_clears_missing_heights_alone(surface, whole):
    rect, mask = whole
    zv.threshold_height(surface, None, 101, rect, mask)
    assert mask.sum() == 19 and mask[1, 1] == 0


def test_a_limit_that_is_no_number_leaves_nothing(surface, whole):
    rect, mask = whole
    zv.threshold_height(surface, np.nan, 200, rect, mask)
    assert not mask.any()


def test_a_read_only_mask_is_refused(surface, whole):
    rect, mask = whole
    mask.flags.writeable = False
    for call in (zv.threshold_height, zv.threshold_percentile_heights):
        with pytest.raises(ValueError):
            call(surface, 0, 1, rect, mask)
    assert mask.all()
    assert len(zv.get_points_from_roi(surface, rect, mask)) == 20


def test_a_mask_that_does_not_fit_is_left_alone(surface):
    mask = np.ones((3, 3), np.uint8)
    zv.threshold_height(surface, 0, 1, (0, 0, 5, 4), mask)
    assert mask.all()


def test_masks_are_combined_into_a_new_one():
    a = np.array([[1, 1], [0, 0]], np.uint8)
    b = np.array([[1, 0], [1, 0]], np.uint8)
    assert zv.mask_operation(a, b, zv.MaskOperationType.AND).tolist() == [[1, 0], [0, 0]]
    assert zv.mask_operation(a, b, zv.MaskOperationType.OR).tolist() == [[1, 1], [1, 0]]
    assert zv.mask_operation(a > 0, b > 0, zv.MaskOperationType.OR).tolist() == [[1, 1], [1, 0]]
    assert zv.mask_operation(a[:0], b[:0], zv.MaskOperationType.OR) is None


def test_runs_become_a_mask_with_a_column_more():
    runs = np.array([[2, 5, 2], [3, 4, 1]], np.int32)
    assert zv.rle_to_mask(runs).rect == (4, 2, 4, 2)
    assert zv.rle_to_mask(runs).mask.tolist() == [[0, 1, 1, 0], [1, 0, 0, 0]]
    assert zv.rle_to_mask(runs[:0]) == (None, (0, 0, 0, 0))


def test_runs_of_another_shape_are_refused():
    with pytest.raises(ValueError):
        zv.rle_to_mask(np.zeros((2, 2), np.int32))
    with pytest.raises(TypeError):
        zv.rle_to_mask(np.zeros((2, 3)))


def test_masks_are_merged_over_the_union_of_their_boxes():
    one = np.ones((1, 2), np.uint8)
    merged = zv.merge_masks([one, one, None], [(0, 0, 2, 1), (2, 1, 2, 1), (0, 0, 0, 0)])
    assert merged.rect == zv.Rect2d(0, 0, 4, 2)
    assert merged.mask.tolist() == [[1, 1, 0, 0], [0, 0, 1, 1]]
    assert zv.merge_masks([], []).mask is None


def test_a_surface_is_cut_to_a_window(surface):
    mask = np.array([[1, 0], [1, 1]], np.uint8)
    cropped = zv.crop_surface_from_roi(surface, (2, 1, 2, 2), mask)
    assert cropped.heights.tolist() == [[12, zv.NULL_HEIGHT], [22, 23]]
    assert cropped.offset == (2, 1, 100) and cropped.scale == surface.scale


def test_an_empty_window_gives_a_surface_without_layers(surface):
    cropped = zv.crop_surface_from_roi(surface, (2, 1, 0, 0), np.ones((0, 0), np.uint8))
    assert cropped.layers == [] and cropped.offset == (2, 1, 100)


def test_a_surface_is_masked_with_a_region(surface):
    region = zv.RectangleROI(1, 1, 1, 2, frame=surface)
    masked = zv.apply_mask(surface, region)
    assert masked.heights.tolist() == [[zv.NULL_HEIGHT, 12], [21, 22], [31, 32]]
    assert masked.offset == (1, 1, 100)


def test_selected_cells_are_gathered_in_five_forms(surface):
    surface.intensities = np.arange(20, dtype=np.uint8).reshape(4, 5)
    rect, mask = (3, 2, 2, 2), np.array([[1, 0], [0, 1]], np.uint8)
    assert zv.get_points_from_roi(surface, rect, mask).tolist() == [[3, 2, 111.5], [4, 3, 117]]
    assert zv.get_cells_from_roi(surface, rect, mask).tolist() == [[3, 2, 23], [4, 3, 34]]
    assert zv.get_heights_from_roi(surface, rect, mask).tolist() == [111.5, 117]
    assert zv.get_counts_from_roi(surface, rect, mask).tolist() == [23, 34]
    assert zv.get_intensities_from_roi(surface, rect, mask).tolist() == [13, 19]


def test_nothing_is_gathered_where_nothing_fits(surface):
    mask = np.ones((2, 2), np.uint8)
    assert zv.get_points_from_roi(surface, (4, 3, 2, 2), mask).shape == (0, 3)
    assert zv.get_cells_from_roi(surface, (4, 3, 2, 2), mask).shape == (0, 3)
    assert zv.get_intensities_from_roi(surface, (0, 0, 2, 2), mask).shape == (0,)


def test_percentiles_clear_what_lies_outside(surface, whole):
    rect, mask = whole
    mask[1, 1] = 0
    zv.threshold_percentile_heights(surface, 50, 100, rect, mask)
    # 19 counts: the middle one is the tenth, 20.
    assert mask.tolist() == [[0] * 5, [0] * 5, [1] * 5, [1] * 5]


def test_percentiles_of_distances_find_a_bump():
    heights = np.zeros((20, 20), np.int16)
    heights[7, 7] = 100
    bumpy = zv.Surface(heights, scale=(1, 1, 1), offset=(0, 0, 0))
    mask = np.ones((20, 20), np.uint8)
    zv.threshold_percentile_distances(bumpy, 0, 99, (0, 0, 20, 20), mask)
    assert mask[7, 7] == 0 and mask.sum() >= 390


def test_percentiles_of_intensities(surface, whole):
    rect, mask = whole
    surface.intensities = np.arange(20, dtype=np.uint8).reshape(4, 5)
    zv.threshold_percentile_intensities(surface, 0, 0, rect, mask)
    assert mask.sum() == 1 and mask[0, 0] == 1
