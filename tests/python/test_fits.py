"""Fits."""

import numpy as np
import pytest

import zdkvision as zv

SQUARE = np.array([(1, 0), (0, 1), (-1, 0), (0, -1.0)])


def test_a_line_through_points():
    points = np.array([(0, 1), (1, 3), (2, 5), (3, 70.0)])
    assert zv.fit_line(points, excluded=[0, 0, 0, 1]) == zv.LineFit(2, 1)
    assert zv.fit_line(points.tolist(), [False, False, False, True]) == pytest.approx((2, 1))
    with pytest.raises(ValueError):
        zv.fit_line(points, [0, 0])


@pytest.mark.parametrize("points", [[], np.zeros((0, 2)), [(1, 2)], [(1, 2), (1, 2)]])
def test_too_few_points_have_no_line(points):
    assert zv.fit_line(points) == (None, None)


def test_points_with_a_null_are_left_out():
    assert zv.fit_line([(0, 1), (zv.NULL, 5), (2, 5)]) == (2, 1)


def test_outliers_of_a_line_are_told():
    x = np.arange(20.0)
    points = np.column_stack([x, 2 * x + 1])
    points[4, 1] += 5
    fit = zv.fit_line_iterative(points, 5)
    assert (fit.slope, fit.intercept) == pytest.approx((2, 1))
    assert fit.outliers.dtype == bool and np.flatnonzero(fit.outliers).tolist() == [4]


def test_a_line_of_consensus():
    x = np.arange(20.0)
    points = np.column_stack([x, 2 * x + 1])
    points[:3, 1] += 50
    assert zv.fit_line_ransac(points, 0.2, 200, 0.1) == pytest.approx((2, 1))
    assert zv.fit_line_ransac(points, 0.2, 0, 0.1) == (None, None)


@pytest.mark.parametrize("dtype", ["float32", "float64", "int64"])
def test_a_parabola(dtype):
    points = np.array([(-1, 4), (0, 1), (1, 2), (2, 7)], dtype)  # 1 - x + 2 x²
    coefficients = zv.fit_polynomial(points, 2)
    assert coefficients == pytest.approx(np.array([1, -1, 2]))
    assert zv.calculate_polynomial_value(coefficients, 3) == pytest.approx(16)


def test_no_polynomial_without_points():
    assert zv.fit_polynomial([(0, 0)], 1) is None
    assert zv.fit_polynomial([(0, 0), (0, 1), (0, 2)], 1) is None
    assert zv.fit_polynomial(np.zeros((0, 2), np.float32), 0) is None
    assert zv.fit_polynomial([(0, 0)], 2**63) is None
    assert zv.calculate_polynomial_value([], 3) is None


def test_a_circle_and_its_distances():
    fit = zv.fit_circle(SQUARE)
    assert fit.center == pytest.approx((0, 0), abs=1e-15)
    assert (fit.min_radius, fit.max_distance, fit.min_distance) == pytest.approx((1, 1, 1))
    assert len(fit.max_dist_points) == len(fit.min_dist_points) == 1
    assert np.array_equal(fit.kept_points, SQUARE) and fit.outlier_points.shape == (0, 2)


def test_too_few_points_have_no_circle():
    fit = zv.fit_circle(SQUARE[:2], 1)
    assert fit.center is None and fit.min_radius is None and fit.max_distance is None
    assert np.array_equal(fit.kept_points, SQUARE[:2])


def test_a_minimum_zone():
    angles = np.radians(np.arange(5, 365, 11.3))
    radii = 10 + 0.1 * np.sin(3 * angles)
    fit = zv.fit_circle(np.column_stack([radii * np.cos(angles), radii * np.sin(angles)]), 0, zv.CircleType.MZC)
    assert 9.9 <= fit.min_radius < fit.max_radius <= 10.1
    assert fit.center == pytest.approx((0, 0), abs=0.01) and fit.max_distance is None


def test_a_circle_among_many_outliers_is_found_again_with_its_seed():
    generator = np.random.default_rng(5)
    angles = generator.uniform(0, 2 * np.pi, 60)
    radii = 3 + generator.uniform(-0.01, 0.01, 60)
    points = np.column_stack([radii * np.cos(angles), radii * np.sin(angles)]) + 7
    points[:20] += generator.uniform(1, 9, (20, 2))
    fit = zv.fit_circle_by_rlts(points, 50, seed=3)
    assert fit.center == pytest.approx((7, 7), abs=0.01) and fit.radius == pytest.approx(3, abs=0.01)
    assert fit.outliers[:20].all() and fit.outliers[20:].sum() < 8
    again = zv.fit_circle_by_rlts(points, 50, seed=3)
    assert (again.center, again.radius) == (fit.center, fit.radius)
    assert zv.fit_circle_by_rlts(points[:2], 50).radius is None
    assert zv.fit_circle_by_rlts(points, 50, seed=3, use_weights=True).radius == pytest.approx(3, abs=0.01)


def test_a_circle_in_space_keeps_the_callers_points():
    points = np.insert(SQUARE, 2, [5, 5, 5, 5], axis=1)
    with_outlier = np.vstack([points, points, [(1.5, 0, 9)]])
    fit = zv.fit_circle_deprecated(with_outlier, 0, 12)
    assert fit.center == pytest.approx((0, 0, 5), abs=1e-12) and fit.radius == pytest.approx(1)
    assert len(fit.kept_points) == 8 and len(with_outlier) == 9
    assert zv.fit_circle_deprecated([]).center is None


def test_a_sphere_and_its_outliers():
    axes = np.vstack([np.eye(3), -np.eye(3)]) * 2 + (1, 2, 3)
    fit = zv.fit_sphere(np.vstack([axes, axes, [(3.5, 2, 3)]]), outlier_percent=10, max_passes=3)
    assert fit.center == pytest.approx((1, 2, 3)) and fit.radius == pytest.approx(2)
    assert fit.outlier_points.tolist() == [[3.5, 2, 3]] and len(fit.kept_points) == 12
    assert zv.fit_sphere(axes[:3]).center is None


def test_a_sphere_through_cells():
    heights = np.array([[0, 3, 0], [3, 4, 3], [0, 3, 0]], np.int16)
    surface = zv.Surface(heights, scale=(1, 1, 1), offset=(0, 0, 0))
    fit = zv.fit_sphere(surface, (0, 0, 3, 3), heights > 0)
    assert fit.points.tolist() == [[1, 0, 3], [0, 1, 3], [1, 1, 4], [2, 1, 3], [1, 2, 3]]
    # Through (1, 1, 4) and four points around it, one lower and one off: a sphere of radius 1.
    assert fit.center == pytest.approx((1, 1, 3)) and fit.radius == pytest.approx(1)


def test_a_plane_through_cells(surface, whole):
    rect, mask = whole
    mask[1, 1] = 0
    plane = zv.fit_plane(surface, rect, mask)
    # z = 100 + 5 y + 0.5 x
    assert plane.normal == pytest.approx(np.array([-0.5, -5, 1]) / np.sqrt(26.25))
    assert plane.point.z == pytest.approx(100 + 5 * plane.point.y + 0.5 * plane.point.x)
    mask[:] = 0
    assert zv.fit_plane(surface, rect, mask) is None


def test_values_that_are_no_numbers_crash_nothing():
    bad = np.full((20, 3), np.nan)
    bad[10:] = np.inf
    for call in (
        lambda: zv.fit_line(bad[:, :2]), lambda: zv.fit_line_iterative(bad[:, :2], 50),
        lambda: zv.fit_line_ransac(bad[:, :2], 0.5, 5, 1), lambda: zv.fit_polynomial(bad[:, :2], 2),
        lambda: zv.fit_circle(bad[:, :2], 10), lambda: zv.fit_circle(bad[:, :2], 0, zv.CircleType.MZC),
        lambda: zv.fit_circle_by_rlts(bad[:, :2], 50, seed=1), lambda: zv.fit_sphere(bad, 10),
        lambda: zv.decompose_eigen(bad[:3]), lambda: zv.estimate_rigid_transformation(bad, bad),
        lambda: zv.anchor_polygon(zv.Anchor(np.nan, 1, 1, np.inf), bad),
    ):
        try:
            call()
        except zv.Error:
            pass
