"""Plain records and enumerations. A field that is None is null in the library's terms: not there."""

from __future__ import annotations

from enum import IntEnum
from typing import TYPE_CHECKING, NamedTuple, Optional

import numpy as np
import numpy.typing as npt

if TYPE_CHECKING:
    from zdkvision._core import Surface

__all__ = [
    "Status",
    "MaskType",
    "MaskOperationType",
    "CircleType",
    "ArithmeticOperator",
    "ArithmeticLogic",
    "PercentileType",
    "InpaintMethod",
    "Point2",
    "Point3",
    "RunLength",
    "Rect2d",
    "Rect3d",
    "Region2d",
    "Region3d",
    "AnnularSector2d",
    "AnnularSector3d",
    "EllipticalSector2d",
    "EllipticalSector3d",
    "Anchor",
    "SurfaceFillGapParams",
    "SurfaceSlice",
    "Frame",
    "ProfileFrame",
    "Plane",
    "LineFit",
    "IterativeLineFit",
    "CircleFit",
    "RobustCircleFit",
    "ProjectedCircleFit",
    "SphereFit",
    "SurfaceSphereFit",
    "EigenDecomposition",
    "MaskAndRect",
    "FilledGaps",
]

#: What has its comment in the headers, as its fields have, and under which name.
FROM_HEADERS = {
    "MaskType": "Zvl::MaskType",
    "MaskOperationType": "Zvl::MaskOperationType",
    "CircleType": "Zvl::CircleType",
    "ArithmeticOperator": "Zvl::ArithmeticOperator",
    "ArithmeticLogic": "Zvl::ArithmeticLogic",
    "PercentileType": "Zvl::ProfileFilter::PercentileType",
    "InpaintMethod": "Zvl::InpaintMethod",
    "RunLength": "Zvl::RunLength",
    "Rect2d": "Zvl::Rect2d",
    "Rect3d": "Zvl::Rect3d",
    "Region2d": "Zvl::Region2d",
    "Region3d": "Zvl::Region3d",
    "AnnularSector2d": "Zvl::AnnularSector2d",
    "AnnularSector3d": "Zvl::AnnularSector3d",
    "EllipticalSector2d": "Zvl::EllipticalSector2d",
    "EllipticalSector3d": "Zvl::EllipticalSector3d",
    "Anchor": "Zvl::Anchor",
    "SurfaceFillGapParams": "Zvl::SurfaceFillGapParams",
    "SurfaceSlice": "Zvl::SurfaceSlice",
    "Plane": "qPlane3d64f",
}

Floats = npt.NDArray[np.float64]


class Status(IntEnum):
    """What an Error reports; one that is no member here stays a plain number."""

    OK = 1
    BAD_PARAMETER = -997
    NOT_SUPPORTED = -996
    OUT_OF_MEMORY = -992
    ABORTED = -988
    BAD_DATA = -984
    MISMATCH = -980
    END_OF_STREAM = -976


class MaskType(IntEnum):
    CIRCLE = 0
    ELLIPSE = 1
    POLYGON = 2
    ROTATED_RECTANGLE = 3
    SURFACE = 4
    INTENSITY = 5
    COMPOSED = 7
    RECTANGLE = 8


class MaskOperationType(IntEnum):
    AND = 0
    OR = 1


class CircleType(IntEnum):
    LSC = 0
    MZC = 1


class ArithmeticOperator(IntEnum):
    ADD = 0
    SUBTRACT = 1
    AVERAGE = 2


class ArithmeticLogic(IntEnum):
    INTERSECTION = 0
    UNION = 1


class PercentileType(IntEnum):
    RANK = 0
    RANGE = 1


class InpaintMethod(IntEnum):
    NS = 0
    TELEA = 1


class Point2(NamedTuple):
    """A point in the plane."""

    x: Optional[float]
    y: Optional[float]


class Point3(NamedTuple):
    """A point in space."""

    x: Optional[float]
    y: Optional[float]
    z: Optional[float]


class RunLength(NamedTuple):
    start: float
    length: float


class Rect2d(NamedTuple):
    x: int = 0
    y: int = 0
    width: int = 0
    height: int = 0


class Rect3d(NamedTuple):
    x: int = 0
    y: int = 0
    width: int = 0
    height: int = 0
    z: int = 0
    depth: int = 0


class Region2d(NamedTuple):
    x: Optional[float] = None
    y: Optional[float] = None
    width: float = 0.0
    height: float = 0.0
    angle: Optional[float] = 0.0


class Region3d(NamedTuple):
    x: Optional[float] = None
    y: Optional[float] = None
    width: Optional[float] = 0.0
    height: Optional[float] = 0.0
    angle: Optional[float] = 0.0
    z: Optional[float] = None
    depth: float = 0.0


class AnnularSector2d(NamedTuple):
    inner_radius: float = 0.0
    outer_radius: float = 0.0
    start_angle: Optional[float] = 0.0
    angle_span: float = 0.0
    center: Optional[Point2 | tuple[float, float]] = None


class AnnularSector3d(NamedTuple):
    inner_radius: float = 0.0
    outer_radius: float = 0.0
    start_angle: Optional[float] = 0.0
    angle_span: float = 0.0
    z: float = 0.0
    depth: float = 0.0
    center: Optional[Point3 | tuple[float, float, float]] = None


class EllipticalSector2d(NamedTuple):
    inner_height: float = 0.0
    inner_width: float = 0.0
    outer_height: float = 0.0
    outer_width: float = 0.0
    start_angle: float = 0.0
    angle_span: float = 0.0
    rotation: Optional[float] = 0.0
    center: Optional[Point2 | tuple[float, float]] = None


class EllipticalSector3d(NamedTuple):
    inner_height: float = 0.0
    inner_width: float = 0.0
    outer_height: float = 0.0
    outer_width: float = 0.0
    start_angle: float = 0.0
    angle_span: float = 0.0
    rotation: Optional[float] = 0.0
    z: float = 0.0
    depth: float = 0.0
    center: Optional[Point3 | tuple[float, float, float]] = None


class Anchor(NamedTuple):
    x: Optional[float] = None
    y: Optional[float] = None
    z: Optional[float] = None
    angle: Optional[float] = None


class SurfaceFillGapParams(NamedTuple):
    resolution_x: float = 0.0
    resolution_y: float = 0.0
    resolution_z: float = 0.0
    max_gap_x: float = 0.0
    max_gap_y: float = 0.0
    max_slope_x: float = 0.0
    max_slope_y: float = 0.0
    fill_high: int = 0


class SurfaceSlice(NamedTuple):
    surface: Surface
    rect: Rect2d
    mask: npt.NDArray[np.uint8]


class Frame(NamedTuple):
    """The size in cells and the mapping of the surfaces that a region is for. Without a mapping it is null."""

    width: int = 0
    height: int = 0
    scale: Optional[Point2 | tuple[float, float]] = None
    offset: Optional[Point2 | tuple[float, float]] = None


class ProfileFrame(NamedTuple):
    """The number of items and the mapping of the profiles that a region is for."""

    width: int = 0
    scale: Optional[Point2 | tuple[float, float]] = None
    offset: Optional[Point2 | tuple[float, float]] = None


class Plane(NamedTuple):
    point: Point3
    normal: Point3


class LineFit(NamedTuple):
    """The line `y = slope * x + intercept`; None in both without a fit."""

    slope: Optional[float]
    intercept: Optional[float]


class IterativeLineFit(NamedTuple):
    """A line and which of the points were rejected."""

    slope: Optional[float]
    intercept: Optional[float]
    outliers: npt.NDArray[np.bool_]


class CircleFit(NamedTuple):
    """What fit_circle() finds. Points are arrays of n rows by 2 columns."""

    center: Optional[Point2]
    min_radius: Optional[float]
    max_radius: Optional[float]
    max_distance: Optional[float]
    min_distance: Optional[float]
    max_dist_points: Floats
    min_dist_points: Floats
    kept_points: Floats
    outlier_points: Floats


class RobustCircleFit(NamedTuple):
    """A circle and which of the points do not lie on it."""

    center: Optional[Point2]
    radius: Optional[float]
    outliers: npt.NDArray[np.bool_]


class ProjectedCircleFit(NamedTuple):
    """A circle in a plane along two axes, and the points in space that were kept."""

    center: Optional[Point3]
    radius: Optional[float]
    kept_points: Floats


class SphereFit(NamedTuple):
    """A sphere. Points are arrays of n rows by 3 columns."""

    center: Optional[Point3]
    radius: Optional[float]
    kept_points: Floats
    outlier_points: Floats


class SurfaceSphereFit(NamedTuple):
    """A sphere through cells of a surface, and the points that the cells are."""

    center: Optional[Point3]
    radius: Optional[float]
    points: Floats
    kept_points: Floats
    outlier_points: Floats


class EigenDecomposition(NamedTuple):
    """Eigenvalues in descending order, and the unit eigenvectors as rows, or None if they were not asked for."""

    values: Floats
    vectors: Optional[Floats]


class MaskAndRect(NamedTuple):
    """A mask, and the cells of the surface that it is over."""

    mask: Optional[npt.NDArray[np.uint8]]
    rect: Rect2d


class FilledGaps(NamedTuple):
    """Heights and, if there were any, intensities with their gaps closed."""

    heights: npt.NDArray[np.int16]
    intensities: Optional[npt.NDArray[np.uint8]]
