"""Shapes, anchors, frames, and cells of regions."""

import math

import numpy as np
import pytest

import zdkvision as zv


def test_cells_of_a_range():
    assert zv.get_region_pixel(10, 0.0, 1.0, zv.RunLength(1.5, 3)) == zv.RunLength(2, 3)
    assert zv.get_region_pixel(10, 0.0, 1.0, zv.RunLength(1.5, 3), 0.6) == (1, 5)
    assert zv.get_region_pixel(3, 0.0, 1.0, zv.RunLength(-5, 30)) == (0, 3)
    assert zv.get_region_pixel(3, 0.0, 1.0, zv.RunLength(-5, 30), clip=False) == (-5, 31)


def test_cells_of_a_rectangle_and_a_box(surface):
    region = zv.Region2d(1, 1, 2, 1)
    assert zv.get_region_pixel(5, 4, (0, 0), (1, 1), region) == zv.Rect2d(1, 1, 3, 2)
    box = zv.Region3d(1, 1, 2, 1, 0, 101, 2)
    assert zv.get_region_pixel(5, 4, (0, 0, 100), (1, 1, 0.5), box) == zv.Rect3d(1, 1, 3, 2, 2, 5)
    assert zv.get_region_pixel(surface, box) == zv.Rect3d(1, 1, 3, 2, 2, 5)
    assert zv.get_region_xz_pixel(5, (0, 0), (1, 1), region) == (1, 1, 3, 2)


def test_shapes_gain_and_lose_a_dimension():
    assert zv.rect2d_to_3d(zv.Region2d(1, 2, 3, 4, 5)) == zv.Region3d(1, 2, 3, 4, 5, 0, 0)
    assert zv.rect3d_to_2d(zv.Region3d(1, 2, 3, 4, 5, 6, 7)) == zv.Region2d(1, 2, 3, 4, 5)
    ring = zv.AnnularSector2d(1, 2, 3, 4, (5, 6))
    assert zv.annular_sector2d_to_3d(ring) == zv.AnnularSector3d(1, 2, 3, 4, 0, 0, (5, 6, 0))
    assert zv.annular_sector3d_to_2d(zv.annular_sector2d_to_3d(ring)) == ring
    ellipse = zv.EllipticalSector2d(1, 2, 3, 4, 5, 6, 7, (8, 9))
    assert zv.elliptical_sector2d_to_3d(ellipse) == zv.EllipticalSector3d(1, 2, 3, 4, 5, 6, 7, 0, 0, (8, 9, 0))
    assert zv.elliptical_sector3d_to_2d(zv.elliptical_sector2d_to_3d(ellipse)) == ellipse
    assert zv.polygon2d_to_3d([(1, 2), (3, 4)]).tolist() == [[1, 2, 0], [3, 4, 0]]
    assert zv.polygon3d_to_2d([(1, 2, 3)]).tolist() == [[1, 2]]


def test_nulls_travel_as_none():
    assert zv.rect2d_to_3d(zv.Region2d()).x is None
    assert zv.annular_sector2d_to_3d(zv.AnnularSector2d()).center == (None, None, 0)
    assert zv.annular_sector3d_to_2d(zv.AnnularSector3d()).center is None


def test_points_are_found_in_sectors():
    ring = zv.AnnularSector2d(1, 2, 0, 90, (0, 0))
    assert zv.check_point_in_annular_sector(ring, (1, 1)) is True
    assert zv.check_point_in_annular_sector(ring, (-1, 1)) is False
    tube = zv.annular_sector2d_to_3d(ring)
    assert not zv.check_point_in_annular_sector(tube, (1, 1, 5))
    assert zv.check_point_in_annular_sector(tube, (1, 1, 5), use_z=False)
    ellipse = zv.EllipticalSector2d(0, 0, 2, 4, 0, 360, 0, (0, 0))
    assert zv.check_point_in_elliptical_sector(ellipse, np.array([2.0, 0.0]))
    assert not zv.check_point_in_elliptical_sector(ellipse, (0, 2))
    assert zv.check_point_in_elliptical_sector(zv.elliptical_sector2d_to_3d(ellipse), (0, 1, 0))


def test_a_rectangle_has_five_vertices():
    assert zv.extract_polygon_from_rect(zv.Region2d(0, 0, 2, 1)).tolist() == [[0, 0], [2, 0], [2, 1], [0, 1], [0, 0]]


def test_the_box_around_selected_cells(surface, whole):
    rect, mask = whole
    mask[:] = 0
    mask[2, 1:4] = 1
    box = zv.get_bounding_box([zv.SurfaceSlice(surface, rect, mask)])
    # Three cells by one, from edge to edge; counts 21 to 23 are heights from 110.5 to 111.5.
    assert (box.x, box.y, box.width, box.height, box.angle) == (2, 2, 3, 1, 90)
    assert box.z == 111
    turned = zv.get_bounding_box([(surface, rect, mask)], rotated=True)
    assert (turned.width, turned.height, turned.angle) == pytest.approx((1, 3, 0))
    assert zv.get_bounding_box([]).x is None


def test_anchors_move_shapes():
    anchor = zv.Anchor(1, 2, 3, 90)
    assert zv.anchor_point_set_region(anchor, [(1, 0, 0)]) == pytest.approx(np.array([[1, 3, 3]]))
    assert zv.anchor_polygon(anchor, [(1, 0)]) == pytest.approx(np.array([[1, 3]]))
    assert zv.anchor_polygon(anchor, [(1, 0, 4)]) == pytest.approx(np.array([[1, 3, 7]]))
    assert zv.anchor_rectangle(zv.Anchor(1, 2), zv.Region2d(0, 0, 1, 1, 5)) == (1, 2, 1, 1, 5)
    assert zv.anchor_rectangle(anchor, zv.Region3d(-1, -1, 2, 2, 0, 0, 1)) == pytest.approx((0, 1, 2, 2, 90, 3, 1))
    assert zv.anchor_surface_region(zv.Anchor(z=3), zv.Region3d(0, 0, 1, 1, 0, 1, 1)).z == 4
    moved = zv.anchor_annular_sector(anchor, zv.AnnularSector2d(0, 1, 10, 20, (1, 0)))
    assert moved.start_angle == 100 and moved.center == pytest.approx((1, 3))
    assert zv.anchor_annular_sector(anchor, zv.AnnularSector3d(center=(1, 0, 0))).center.z == 3
    turned = zv.anchor_elliptical_sector(anchor, zv.EllipticalSector2d(center=(1, 0)))
    assert turned.rotation == 90 and turned.start_angle == 0
    assert zv.anchor_elliptical_sector(anchor, zv.EllipticalSector3d(center=(1, 0, 0))).center.z == 3


def test_an_anchor_of_nulls_moves_nothing():
    assert zv.anchor_rectangle(zv.Anchor(), zv.Region2d(1, 2, 3, 4, 5)) == (1, 2, 3, 4, 5)


def test_frames_map_points():
    frame = zv.RefFrame().rotate_around_point((1, 0, 0), 90).translate(0, 0, 5)
    assert frame.apply((2, 0, 0)) == pytest.approx((1, 1, 5))
    assert frame.apply((2, 0)) == pytest.approx((1, 1))
    assert frame.apply_n([(2, 0, 0), (1, 0, 0)]) == pytest.approx(np.array([[1, 1, 5], [1, 0, 5]]))
    assert frame.get_translation() == frame.get_column(3) == (frame.tx, frame.ty, frame.tz)
    assert frame.get_column(4) is None
    assert frame.get_scale() == pytest.approx((1, 1, 1))


def test_chained_calls_return_the_frame_itself():
    frame = zv.RefFrame()
    assert frame.set_identity() is frame and frame.scale((2, 2, 2)) is frame
    assert frame.rotate(90, (0, 0, 1)) is frame and frame.translate((1, 0, 0)) is frame
    assert frame.apply((1, 0, 0)) == pytest.approx((1, 2, 0))
    assert frame.invert_ortho() is frame
    assert zv.RefFrame().rotate(zv.Region3d(0, 0, 2, 2, 90, 0, 0)).apply((2, 1, 0)) == pytest.approx((1, 2, 0))


def test_frames_compose_from_left_to_right():
    turn, shift = zv.RefFrame().rotate(90, (0, 0, 1)), zv.RefFrame().translate(1, 0, 0)
    assert (turn * shift).apply((1, 0, 0)) == pytest.approx((1, 1, 0))
    assert zv.RefFrame.mul(shift, turn).apply((1, 0, 0)) == pytest.approx((0, 2, 0))


def test_a_null_angle_skips_its_axis():
    assert zv.RefFrame().rotate_xyz(None, None, 90).apply((1, 0, 0)) == pytest.approx((0, 1, 0))
    assert zv.RefFrame().rotate_zyx(90, None, None).apply((0, 1, 0)) == pytest.approx((0, 0, 1))


def test_a_frame_is_found_from_pairs():
    frame = zv.RefFrame()
    frame.set_frame([(1, 2), (1, 3)], [(0, 0), (1, 0)])
    assert frame.apply((1, 0)) == pytest.approx((1, 3))
    frame.set_frame((1, 2, 3), 90)
    assert frame.apply((1, 0, 0)) == pytest.approx((1, 3, 3))


def test_a_frame_survives_its_bytes():
    values = [1.5, math.nan, 0, -2, 1e300, 0, 7, 8, 9, 10, 11, 12]
    frame = zv.RefFrame(*values)
    entries = [getattr(frame, axis + coordinate) for axis in "ijkt" for coordinate in "xyz"]
    assert entries == pytest.approx(values, nan_ok=True)
    data = frame.serialize()
    assert len(data) == 102 and data[:6] == b"\x64\x00\x01\x00\x00\x00"
    back = zv.RefFrame()
    back.deserialize(data)
    assert back.serialize() == data and back.tz == 12 and math.isnan(back.iy)


def test_a_rigid_motion_is_found():
    source = np.array([(0, 0, 0), (1, 0, 0), (0, 1, 0), (0, 0, 1.0)])
    target = source[:, [1, 0, 2]] * (-1, 1, 1) + (5, 6, 7)
    assert zv.estimate_rigid_transformation(source, target) == pytest.approx(
        np.array([[0, -1, 0, 5], [1, 0, 0, 6], [0, 0, 1, 7]]), abs=1e-12)


def test_eigenvalues_stand_in_descending_order():
    matrix = np.array([[2.0, 1], [1, 2]])
    found = zv.decompose_eigen(matrix)
    assert found.values == pytest.approx(np.array([3, 1]))
    assert matrix @ found.vectors[0] == pytest.approx(3 * found.vectors[0])
    assert matrix.tolist() == [[2, 1], [1, 2]]
    assert zv.decompose_eigen(matrix, values_only=True).vectors is None
    with pytest.raises(ValueError):
        zv.decompose_eigen(np.zeros((2, 3)))
