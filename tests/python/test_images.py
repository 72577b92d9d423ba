"""Repair of images, and cells for OpenCV."""

import copy

import numpy as np
import pytest

import zdkvision as zv


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "int16", "float32"])
@pytest.mark.parametrize("method", list(zv.InpaintMethod))
def test_a_hole_in_an_even_image_is_filled_evenly(dtype, method):
    image = np.full((9, 9), 50, dtype)
    mask = np.zeros((9, 9), np.uint8)
    mask[4, 4] = 1
    image[4, 4] = 0
    repaired = zv.inpaint(image, mask, 3, method)
    assert repaired.dtype == dtype and repaired[4, 4] == pytest.approx(50, abs=0.5)
    assert image[4, 4] == 0


def test_colours_and_truth_values():
    image = np.zeros((20, 21, 3), np.uint8)
    image[:] = (10, 20, 30)
    hole = np.zeros((20, 21), bool)
    hole[9:11, 8] = True
    image[hole] = 255
    repaired = zv.inpaint(image, hole, 3, zv.InpaintMethod.TELEA)
    assert np.abs(repaired.astype(int) - (10, 20, 30)).max() <= 1


def test_strided_and_read_only_images_are_taken_as_they_read():
    image = np.arange(400, dtype=np.uint8).reshape(20, 20)
    image.flags.writeable = False
    mask = np.zeros((10, 10), np.uint8)
    mask[5, 5] = 1
    repaired = zv.inpaint(image[::2, ::2], mask, 3, zv.InpaintMethod.NS)
    expected = np.ascontiguousarray(image[::2, ::2])
    assert np.array_equal(repaired[mask == 0], expected[mask == 0])


@pytest.mark.parametrize("image, mask", [
    (np.zeros((3, 3), np.uint8), np.zeros((3, 4), np.uint8)),
    (np.zeros((3, 3), np.float64), np.zeros((3, 3), np.uint8)),
    (np.zeros((3, 3, 2), np.uint8), np.zeros((3, 3), np.uint8)),
    (np.zeros((3, 3), np.uint8), np.zeros((3, 3), np.int16)),
    (np.zeros(3, np.uint8), np.zeros(3, np.uint8)),
    (np.zeros((3, 3, 600), np.uint8), np.zeros((3, 3), np.uint8)),
])
def test_other_images_are_refused(image, mask):
    with pytest.raises(ValueError):
        zv.inpaint(image, mask, 3, zv.InpaintMethod.NS)


def test_an_unknown_method_is_refused():
    for method in (1, 7, "telea", zv.CircleType.MZC, None):
        with pytest.raises(TypeError):
            zv.inpaint(np.zeros((3, 3), np.uint8), np.ones((3, 3), np.uint8), 3, method)


def test_empty_images_are_no_harm():
    empty = np.zeros((0, 3), np.uint8)
    assert zv.inpaint(empty, empty, 3, zv.InpaintMethod.NS).shape == (0, 3)


@pytest.fixture
def message():
    made = zv.SurfaceMessage(rows=2, columns=3, item_count=2)
    made.scale = (1, 1, 0.5)
    made.set_offset(1, (10, 20, 30))
    made.heights[:] = [[0, 1, 2], [3, 4, zv.NULL_HEIGHT]]
    return made


def test_a_message_tells_what_it_holds(message):
    assert (message.rows, message.columns, message.scale) == (2, 3, (1, 1, 0.5))
    assert message.get_offset(0) == (0, 0, 0) and message.get_offset(1) == (10, 20, 30)
    with pytest.raises(zv.Error):
        message.get_offset(2)
    with pytest.raises(zv.Error):
        message.set_offset(-1, (0, 0, 0))
    assert zv.SurfaceMessage(1, 1, 0).heights is None


def test_a_message_becomes_pixels_and_heights_again(message):
    region = zv.Mat.get_region_from_msg(message, 1)
    assert (region.x, region.y, region.width, region.height) == (10, 20, 3, 2)
    mat = zv.Mat(message, 1, region)
    assert mat.size == (3, 2) and mat.scale == (1, 1, 0.5) and mat.offset == (10, 20, 30)
    assert mat.pixels.dtype == np.uint16
    assert mat.pixels.tolist() == [[32768, 32769, 32770], [32771, 32772, 0]]
    assert np.array_equal(mat.get_heights(), message.heights)
    limited = zv.Mat(message, 1, region._replace(z=31, depth=0.5), use_z_limits=True)
    assert limited.get_heights().tolist() == [[zv.NULL_HEIGHT] * 2 + [2], [3] + [zv.NULL_HEIGHT] * 2]


def test_mats_copy_deeply_and_take_a_mapping(message):
    mat = zv.Mat(message, 0, zv.Mat.get_region_from_msg(message, 0))
    other = copy.copy(mat)
    other.pixels[:] = 0
    assert mat.pixels.any()
    fresh = zv.Mat()
    assert fresh.pixels is None and fresh.get_heights() is None and fresh.size == (0, 0)
    fresh.set_destination_parameters(mat)
    assert fresh.scale == (1, 1, 0.5)
    fresh.set_destination_parameters((2, 2, 2), (3, 3, 3))
    assert fresh.get_destination_mat(2, 5).shape == (5, 2)
    assert fresh.scale == (2, 2, 2) and fresh.offset == (3, 3, 3)
    assert zv.Mat.get_smallest_size(mat, fresh) == (2, 2)
    assert fresh.get_destination_mat(-1, 2) is None


def test_regions_in_common():
    a, b = zv.Region3d(0, 0, 4, 4, 0, 0, 4), zv.Region3d(2, 1, 4, 2, 0, 3, 5)
    assert zv.Mat.compute_overlapping_region(a, b) == (2, 1, 2, 2, 0, 3, 1)
    assert zv.Mat.compute_container_region(a, b) == (0, 0, 6, 4, 0, 0, 8)
