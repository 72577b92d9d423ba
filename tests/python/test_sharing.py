"""Cells are shared both ways, and either side may go first."""

import copy
import gc
import weakref

import numpy as np
import pytest

import zdkvision as zv


def address(array):
    return array.__array_interface__["data"][0]


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "int16", "int32", "int64", "float64"])
@pytest.mark.parametrize("shape", [(7,), (3, 5)])
def test_new_arrays_have_their_shape_and_lie_at_multiples_of_64_bytes(dtype, shape):
    array = zv.empty(shape, dtype)
    assert array.shape == shape and array.dtype == dtype
    assert address(array) % 64 == 0
    assert array.flags.writeable and array.flags.c_contiguous and not array.flags.owndata


def test_a_single_length_makes_a_line():
    assert zv.empty(4, np.int16).shape == (4,)


def test_empty_arrays_keep_their_lengths():
    assert zv.empty((0, 3), "int16").shape == (0, 3)
    assert zv.Surface(zv.empty((2, 0), "int16")).heights.shape == (2, 0)


def test_truth_values_are_bytes():
    assert zv.empty((2, 2), bool).dtype == np.uint8
    assert zv.array(np.array([True, False])).tolist() == [1, 0]


@pytest.mark.parametrize("shape", [(), (1, 2, 3), (-1,), (2, -1)])
def test_other_shapes_are_refused(shape):
    with pytest.raises(ValueError):
        zv.empty(shape, "int16")


@pytest.mark.parametrize("dtype", ["complex128", "int8", "float32", "U4", "O", ">i2"])
def test_other_cells_are_refused(dtype):
    with pytest.raises(TypeError):
        zv.empty((2, 2), dtype)


def test_a_size_that_cannot_exist_is_told_at_once():
    with pytest.raises(zv.OutOfMemoryError) as failure:
        zv.empty((1 << 40, 1 << 40), "float64")
    assert failure.value.status == zv.Status.OUT_OF_MEMORY
    assert isinstance(failure.value, MemoryError)


def test_an_array_of_the_library_is_the_layer_itself():
    heights = zv.empty((3, 4), "int16")
    surface = zv.Surface(heights)
    assert address(surface.heights) == address(heights)
    heights[2, 3] = 17
    assert surface.heights[2, 3] == 17
    surface.heights[0, 0] = -5
    assert heights[0, 0] == -5


def test_an_array_of_numpy_is_copied_once():
    heights = np.zeros((3, 4), np.int16)
    surface = zv.Surface(heights)
    assert not np.shares_memory(surface.heights, heights)
    assert np.shares_memory(surface.heights, surface.heights)
    heights[0, 0] = 1
    assert surface.heights[0, 0] == 0


def test_two_surfaces_may_share_a_layer(surface):
    other = zv.Surface(surface.heights)
    surface.heights[3, 4] = 99
    assert other.heights[3, 4] == 99
    assert copy.copy(surface).heights[3, 4] == 99


def test_a_deep_copy_has_cells_of_its_own(surface):
    other = copy.deepcopy(surface)
    assert other.scale == surface.scale and np.array_equal(other.heights, surface.heights)
    assert not np.shares_memory(other.heights, surface.heights)


def test_views_of_a_part_and_turned_ones_are_copied_by_value():
    heights = zv.empty((3, 4), "int16")
    heights[:] = np.arange(12).reshape(3, 4)
    for view in (heights[1:], heights[:, ::2], heights.T, heights[::-1]):
        surface = zv.Surface(view)
        assert np.array_equal(surface.heights, view)
        assert not np.shares_memory(surface.heights, heights)


def test_a_whole_view_of_the_same_cells_is_shared():
    heights = zv.empty((3, 4), "int16")
    assert address(zv.Surface(heights[:]).heights) == address(heights)
    assert address(zv.Surface(heights.reshape(12).reshape(3, 4)).heights) == address(heights)


def test_cells_of_another_type_over_the_same_memory_are_not_mistaken():
    bytes_ = zv.empty((2, 8), "uint8")
    bytes_[:] = 0
    heights = bytes_.view(np.int16)
    surface = zv.Surface(heights)
    assert surface.heights.shape == (2, 4)
    assert not np.shares_memory(surface.heights, bytes_)


def test_a_read_only_array_is_not_written():
    heights = zv.empty((2, 2), "int16")
    heights[:] = 3
    heights.flags.writeable = False
    surface = zv.Surface(heights)
    surface.heights[:] = 4
    assert (heights == 3).all()


def test_strided_arrays_are_taken_as_they_read():
    wide = np.arange(24, dtype=np.int16).reshape(4, 6)
    assert np.array_equal(zv.Surface(wide[::2, ::3]).heights, [[0, 3], [12, 15]])
    assert np.array_equal(zv.Surface(np.asfortranarray(wide)).heights, wide)


def test_misaligned_points_are_copied():
    memory = np.zeros(8 * 8 + 1, np.uint8)
    points = memory[1:].view(np.float64).reshape(4, 2)
    points[:] = [[0, 1], [1, 3], [2, 5], [3, 7]]
    assert not points.flags.aligned
    assert zv.fit_line(points) == pytest.approx((2, 1))


def test_cells_outlive_their_surface_and_the_other_way_round():
    heights = zv.empty((100, 100), "int16")
    surface = zv.Surface(heights)
    heights[:] = 7
    del heights
    gc.collect()
    assert (surface.heights == 7).all()
    view = surface.heights
    del surface
    gc.collect()
    assert (view == 7).all()


def test_the_mask_of_a_region_is_its_own_and_outlives_it(surface):
    region = zv.RectangleROI(0, 0, 2, 2, frame=surface)
    mask = region.mask
    mask[0, 0] = 0
    assert region.mask[0, 0] == 0
    region.set_mask_pixel(0, 0, 5)
    assert mask[0, 0] == 1
    region.set_offset((10, 10))  # the next mask is another one
    assert region.mask is None
    del region
    gc.collect()
    assert mask.shape == (3, 3) and mask[0, 0] == 1


def test_points_of_a_list_outlive_everything_else(surface, whole):
    points = zv.get_points_from_roi(surface, *whole)
    del surface
    gc.collect()
    assert points.shape == (20, 3) and points[19].tolist() == [4, 3, 117]


def test_a_profile_filter_works_in_the_memory_of_numpy():
    line = np.array([0, zv.NULL_HEIGHT, 10], np.int16)
    out = np.zeros(3, np.int16)
    filtered = zv.ProfileFilter(line, out).fill_gap(2, 10)
    assert filtered.result is out and out.tolist() == [0, 5, 10]
    assert line[1] == zv.NULL_HEIGHT
    zv.ProfileFilter(line, line).fill_gap(2, 10)
    assert line.tolist() == [0, 5, 10]


def test_a_message_shares_its_cells():
    message = zv.SurfaceMessage(2, 3)
    cells = message.heights
    assert (cells == zv.NULL_HEIGHT).all()
    cells[1, 2] = 8
    assert message.heights[1, 2] == 8
    assert address(zv.Surface(cells).heights) == address(cells)
    del message
    gc.collect()
    assert cells[1, 2] == 8


def test_pixels_of_a_mat_outlive_a_change_of_its_size():
    mat = zv.Mat()
    first = mat.get_destination_mat(3, 2)
    first[:] = 9
    assert address(mat.get_destination_mat(3, 2)) == address(first)
    second = mat.get_destination_mat(300, 200)
    second[:] = 1
    del mat
    gc.collect()
    assert (first == 9).all() and first.shape == (2, 3) and second.shape == (200, 300)


def test_a_filter_holds_its_lines():
    line = np.array([1, 2, 3], np.int16)
    held = weakref.ref(line)
    chain = zv.ProfileFilter(line)
    del line
    gc.collect()
    assert held() is not None
    assert chain.average(3).result.tolist() == [1, 2, 2]
    del chain
    gc.collect()
    assert held() is None
