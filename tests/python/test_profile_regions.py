"""Regions of interest over line scans."""

import numpy as np
import pytest

import zdkvision as zv


@pytest.fixture
def profile():
    """Eight heights a unit apart, in counts of one unit; item 5 is missing."""
    return zv.Profile(np.array([0, 1, 2, 3, 4, zv.NULL_HEIGHT, 2, 0], np.int16), scale=(1, 1), offset=(0, 0))


def test_a_rectangle_finds_the_items_within_it(profile):
    region = zv.RectangleRoiProfile(zv.Region2d(1, 2, 5, 2, 0), frame=profile)
    assert region.bounding_segment == zv.RunLength(1, 6)
    assert region.mask.tolist() == [1] * 6  # no profile seen yet
    region.apply_roi(profile)
    assert region.mask.tolist() == [0, 1, 1, 1, 0, 1]
    assert region.shape == (1, 2, 5, 2, 0) and region.shape_type is zv.MaskType.RECTANGLE
    assert region.mask_valid and region.bounding_segment_valid


def test_round_shapes_find_the_items_within_them(profile):
    circle = zv.CircleRoiProfile(zv.AnnularSector2d(0, 1.5, 0, 360, (3, 3)), frame=profile)
    circle.apply_roi(profile)
    assert circle.bounding_segment == (2, 3) and circle.mask.tolist() == [1, 1, 1]
    ellipse = zv.EllipseRoiProfile(zv.EllipticalSector2d(0, 0, 2, 8, 0, 360, 0, (3, 3)), frame=profile)
    ellipse.apply_roi(profile)
    # Items 2, 3 and 4 have heights 2, 3, 4; at x 2 and 4 the ellipse reaches 0.97 from its axis.
    assert ellipse.bounding_segment == (0, 8) and ellipse.mask.tolist() == [0, 0, 0, 1, 0, 0, 0, 0]


def test_a_polygon_is_closed_once(profile):
    corners = [(0.5, -1), (4.5, -1), (4.5, 5), (0.5, 5)]
    region = zv.PolygonRoiProfile(corners, frame=profile)
    assert region.shape.tolist() == [*map(list, corners), [0.5, -1]]
    region.apply_roi(profile)
    assert region.bounding_segment == (1, 4) and region.mask.tolist() == [1, 1, 1, 1]
    closed = zv.PolygonRoiProfile(corners + corners[:1], frame=profile, closed=True)
    assert np.array_equal(closed.shape, region.shape)


def test_pairs_may_lie_anywhere():
    pairs = np.array([[5, 5], [1, 1], [2, 9]], np.int16)
    scan = zv.Profile(pairs, scale=(1, 1), offset=(0, 0))
    assert scan.heights.tolist() == [5, 5, 1, 1, 2, 9]
    region = zv.RectangleRoiProfile(zv.Region2d(0, 0, 3, 3, 0), zv.ProfileFrame(3, (1, 1), (0, 0)), uniform=False)
    region.apply_roi(scan)
    assert region.mask.tolist() == [0, 1, 0]


def test_a_mask_is_a_copy_since_the_region_rebuilds_its_own(profile):
    composition = zv.ComposedRoiProfile()
    composition.add(zv.RectangleRoiProfile(zv.Region2d(0, 0, 2, 9, 0), frame=profile))
    small = composition.mask
    small[:] = 7
    composition.add(zv.RectangleRoiProfile(zv.Region2d(6, 0, 1, 9, 0), frame=profile))
    assert composition.mask.tolist() == [1, 1, 1, 0, 0, 0, 1, 1]
    assert small.tolist() == [7, 7, 7]
    composition.apply_roi(profile)
    assert len(composition) == 2 and composition.get_sub_bounding_segment(1) == (6, 2)
    assert composition.get_sub_mask(0).tolist() == [1, 1, 1]
    assert [member.shape.x for member in composition] == [0, 6]
    assert composition.bounding_segment_valid and composition.shape_type is zv.MaskType.COMPOSED


def test_an_anchor_moves_a_region(profile):
    region = zv.RectangleRoiProfile(zv.Region2d(1, 2, 2, 2, 0), frame=profile)
    moved = region.apply_anchor(zv.Anchor(x=3, y=0))
    assert type(moved) is zv.RectangleRoiProfile and moved.bounding_segment == (4, 3)


def test_layers_are_added(profile):
    assert profile.add_layer(np.zeros(8, np.uint8)) == 1
    assert [layer.dtype.name for layer in profile.layers] == ["int16", "uint8"]
    profile.layers = [None, profile.layers[1]]
    assert profile.heights is None
    assert zv.RectangleRoiProfile(zv.Region2d(0, 0, 1, 1, 0), frame=profile).bounding_segment.length == 0
