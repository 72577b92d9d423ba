"""Regions of interest over surfaces."""

import numpy as np
import pytest

import zdkvision as zv

FRAME = zv.Frame(10, 8, (1, 1), (0, 0))


def test_a_frame_is_taken_from_a_surface(surface):
    by_hand = zv.RectangleROI(1, 1, 9, 9, frame=zv.Frame(5, 4, (1, 1), (0, 0)))
    assert zv.RectangleROI(1, 1, 9, 9, frame=surface).bounding_box == by_hand.bounding_box == (1, 1, 4, 3)


def test_a_rectangle_covers_the_centres_within_it():
    region = zv.RectangleROI(x=1.5, y=2, width=3, height=2, frame=FRAME)
    assert region.bounding_box == zv.Rect2d(2, 2, 3, 3)
    assert region.mask.tolist() == [[1] * 3] * 3
    assert region.bounding_region == zv.Region2d(1.5, 2, 3, 2, 0)
    assert region.shape == zv.Region2d(1.5, 2, 3, 2, 0)
    assert region.shape_type is zv.MaskType.RECTANGLE


def test_a_turned_rectangle_tells_so():
    region = zv.RectangleROI(zv.Region2d(1, 1, 2, 2, 45), FRAME)
    assert region.shape_type is zv.MaskType.ROTATED_RECTANGLE
    assert region.mask.tolist() == [[0, 1, 0], [1, 1, 1], [0, 1, 0]]


def test_a_circle_selects_a_disc():
    region = zv.CircleROI(zv.AnnularSector2d(0, 1, 0, 360, (3, 3)), FRAME)
    assert region.bounding_box == (2, 2, 3, 3)
    assert region.mask.tolist() == [[0, 1, 0], [1, 1, 1], [0, 1, 0]]
    assert region.shape == zv.AnnularSector2d(0, 1, 0, 360, (3, 3))
    assert isinstance(region.shape.center, zv.Point2)
    assert region.shape_type is zv.MaskType.CIRCLE


def test_an_ellipse_is_as_wide_as_told():
    region = zv.EllipseROI((4, 4), 0, 0, outer_height=2, outer_width=4, frame=FRAME)
    assert region.bounding_box == (2, 3, 5, 3)
    assert region.mask.tolist() == [[0, 0, 1, 0, 0], [1, 1, 1, 1, 1], [0, 0, 1, 0, 0]]
    assert region.shape_type is zv.MaskType.ELLIPSE


def test_polygons_are_closed_once():
    corners = [(1, 1), (4, 1), (1, 4)]
    region = zv.PolygonROI(corners, FRAME)
    assert region.shape.tolist() == [[1, 1], [4, 1], [1, 4], [1, 1]]
    assert region.mask.tolist() == [[1, 1, 1, 1], [1, 1, 1, 0], [1, 1, 0, 0], [1, 0, 0, 0]]
    closed = zv.PolygonROI(corners + corners[:1], FRAME, closed=True)
    assert np.array_equal(closed.shape, region.shape) and np.array_equal(closed.mask, region.mask)
    assert zv.PolygonROI([], FRAME).mask is None


def test_a_reference_surface_selects_its_heights(surface):
    region = zv.SurfaceROI(surface, FRAME)
    assert region.bounding_box == (0, 0, 5, 4)
    assert region.mask.sum() == 19 and region.mask[1, 1] == 0
    assert np.shares_memory(region.shape.heights, surface.heights)
    assert region.shape_type is zv.MaskType.SURFACE


def test_intensities_select_a_range(surface):
    surface.intensities = np.arange(20, dtype=np.uint8).reshape(4, 5)
    region = zv.IntensityROI(surface, 5, 8, frame=surface)
    assert region.mask.tolist() == [[0] * 5, [1, 0, 1, 1, 0], [0] * 5, [0] * 5]
    assert region.shape_type is zv.MaskType.INTENSITY
    with pytest.raises(TypeError):
        zv.IntensityROI(surface, 5, 256, frame=surface)


def test_an_anchor_moves_a_region_to_a_new_one_of_its_class():
    region = zv.CircleROI((3, 3), 0, 1, frame=FRAME)
    moved = region.apply_anchor(zv.Anchor(x=2, y=1))
    assert type(moved) is zv.CircleROI
    assert moved.bounding_box == (4, 3, 3, 3) and region.bounding_box == (2, 2, 3, 3)


def test_validity_is_told_without_computing():
    region = zv.CircleROI((3, 3), 0, 1, frame=FRAME)
    assert not region.mask_valid and not region.bounding_box_valid
    region.bounding_box
    assert region.bounding_box_valid and not region.mask_valid
    region.mask
    assert region.mask_valid
    region.set_frame(10, 8)
    assert not region.mask_valid and not region.bounding_box_valid


def test_setters_change_the_frame():
    region = zv.RectangleROI(1, 1, 2, 2)
    region.set_frame_width(3)
    region.set_frame_height(2)
    region.set_scale((1, 1))
    region.set_offset((0, 0))
    assert region.bounding_box == (1, 1, 2, 1)
    region.set_scale(None)
    with pytest.raises(zv.Error):
        region.bounding_box


def test_compositions_unite_their_members():
    composition = zv.ComposedROI()
    assert composition.mask is None
    left, right = (zv.RectangleROI(x, 1, 1, 1, frame=FRAME) for x in (1, 4))
    composition.add(left)
    composition.add(right)
    assert len(composition) == 2 and list(composition) == [left, right]
    assert composition.bounding_box == (1, 1, 5, 2)
    assert composition.mask.tolist() == [[1, 1, 0, 1, 1]] * 2
    assert composition.get_sub_bounding_box(1) == (4, 1, 2, 2)
    assert np.array_equal(composition.get_sub_mask(0), left.mask)
    assert composition.shape_type is zv.MaskType.COMPOSED
    nested = zv.ComposedROI()
    nested.add(composition)
    assert list(nested) == [left, right]


def test_copies_are_independent():
    region = zv.RectangleROI(1, 1, 2, 2, frame=FRAME)
    copy = region.deep_copy()
    assert type(copy) is zv.RectangleROI
    copy.mask[:] = 0
    assert region.mask.all()


def test_regions_that_are_no_numbers_are_empty():
    assert zv.RectangleROI(np.nan, 0, 1, 1, frame=FRAME).mask is None
    assert zv.CircleROI((0, 0), 0, np.inf, frame=FRAME).mask is None
