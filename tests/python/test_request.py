"""The typical request, as a user writes it."""

import numpy as np
import pytest

import zdkvision as zv


def test_a_ball_is_measured_in_ten_lines():
    y, x = np.mgrid[-100:100, -100:100] * 0.1
    counts = np.int16(1000 * np.sqrt(400 - x * x - y * y) + 0.5)
    scan = zv.Surface(counts, scale=(0.1, 0.1, 0.001), offset=(-10, -10, 0))
    cap = zv.CircleROI(center=(0, 0), inner_radius=0, outer_radius=8, frame=scan)
    moved = cap.apply_anchor(zv.Anchor(x=0.5, y=-0.5))
    zv.threshold_height(scan, 19, 20, moved)
    points = zv.get_points_from_roi(scan, moved.bounding_box, moved.mask)
    ball = zv.fit_sphere(points, outlier_percent=1)
    assert ball.center == pytest.approx((0, 0, 0), abs=1e-3)
    assert ball.radius == pytest.approx(20, abs=1e-3)
    # The heights from 19 mm up lie within sqrt(400 - 361) mm of the axis.
    assert np.hypot(points[:, 0], points[:, 1]).max() <= np.sqrt(39) + 1e-3
    assert len(points) > 10000


def test_a_bore_is_measured_from_masked_cells(surface):
    angles = np.linspace(0, 2 * np.pi, 100, endpoint=False)
    edge = np.column_stack([3 + 2 * np.cos(angles), 4 + 2 * np.sin(angles)])
    edge[::20] += 1.0  # 5 points beside the circle
    fit = zv.fit_circle(edge, outlier_percent=5)
    assert fit.center == pytest.approx((3, 4), abs=1e-9)
    assert fit.min_radius == fit.max_radius == pytest.approx(2, abs=1e-9)
    assert fit.outlier_points.shape == (5, 2) and fit.kept_points.shape == (95, 2)
