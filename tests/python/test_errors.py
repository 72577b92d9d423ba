"""What fails, and what a caller learns of it."""

import numpy as np
import pytest

import zdkvision as zv
from conftest import text_of


def test_an_error_carries_what_the_library_tells():
    with pytest.raises(zv.Error) as failure:
        zv.RectangleROI(0, 0, 1, 1).bounding_box
    error = failure.value
    assert error.status is zv.Status.BAD_PARAMETER
    assert error.function.startswith("Zvl::")
    assert error.file.startswith("src/") and error.line > 0
    assert error.message == ""
    assert error.function in str(error)
    assert not isinstance(error, MemoryError)


def test_a_status_without_a_name_stays_a_number():
    points = np.random.default_rng(1).normal(size=(10, 2))
    with pytest.raises(zv.Error) as failure:
        zv.fit_circle_by_rlts(points, 80, seed=1)  # 2 points would stay
    assert failure.value.status == 0
    assert failure.value.function == "Zvl::FitCircleByRLTS"


def test_a_message_is_handed_on(surface):
    empty = zv.Surface(scale=(1, 1, 1), offset=(0, 0, 0))
    with pytest.raises(zv.Error) as failure:
        zv.Arithmetics.apply(zv.ArithmeticOperator.ADD, zv.ArithmeticLogic.UNION, empty, surface)
    assert failure.value.message == "Empty Data"
    assert failure.value.status == zv.Status.BAD_PARAMETER


def rows_of_failures():
    heights = np.zeros((4, 5), np.int16)
    surface = zv.Surface(heights, scale=(1, 1, 1), offset=(0, 0, 0))
    mask = np.ones((4, 5), np.uint8)
    line = np.zeros((3, 2))
    bad, mismatch = zv.Status.BAD_PARAMETER, zv.Status.MISMATCH
    profile = zv.Profile(np.zeros(5, np.int16), scale=(1, 1), offset=(0, 0))
    region = zv.RectangleRoiProfile(zv.Region2d(0, 0, 3, 3, 0), frame=profile)
    shifted = zv.Profile(np.zeros(5, np.int16), scale=(1, 1), offset=(1, 0))
    gaps = zv.SurfaceFillGapParams(1, 1, 1, 2, 2, 90, 0)
    return [
        ("Zvl::ProfileFilter::Impl::CheckConditions", bad, lambda: zv.ProfileFilter(heights[0]).average(2)),
        ("Zvl::ProfileFilter::Impl::CheckConditions", bad, lambda: zv.ProfileFilter(heights[0]).median(0)),
        ("Zvl::CropSurfaceFromROI", bad, lambda: zv.crop_surface_from_roi(surface, (1, 1, 5, 4), mask)),
        ("Zvl::MaskOperation", bad, lambda: zv.mask_operation(mask, mask[1:], zv.MaskOperationType.AND)),
        ("Zvl::MergeMasks", bad, lambda: zv.merge_masks([mask], [])),
        ("Zvl::RLEToMask", bad, lambda: zv.rle_to_mask(np.array([[0, 0, -1]], np.int32))),
        ("Zvl::FitLineIterative", bad, lambda: zv.fit_line_iterative([[0, 0]], 10)),
        ("Zvl::FitCircle_LSC", zv.Status.BAD_DATA, lambda: zv.fit_circle(line)),
        ("Zvl::FitSphere", zv.Status.NOT_SUPPORTED, lambda: zv.fit_sphere(np.zeros((4, 3)))),
        ("Zvl::RefFrame::SetFrame", zv.Status.BAD_DATA, lambda: zv.RefFrame().set_frame(line, line[1:])),
        ("Zvl::RefFrame::Deserialize", zv.Status.END_OF_STREAM, lambda: zv.RefFrame().deserialize(b"\x64\x00")),
        ("Zvl::EstimateRigidTransformation", bad, lambda: zv.estimate_rigid_transformation(line[:0], line[:0])),
        ("Zvl::SurfaceFillGapXY", bad, lambda: zv.surface_fill_gap_xy(gaps, heights)),
        ("Zvl::SurfaceDecimate", bad, lambda: zv.surface_decimate(surface)),
        ("Zvl::PadArray2", bad, lambda: zv.pad_array2(heights, 6, 1)),
        ("Zvl::SmoothFullArray2", bad, lambda: zv.smooth_full_array2(heights, 5, 2)),
        ("Zvl::ComposedROI::GetSubMask", bad, lambda: zv.ComposedROI().get_sub_mask(0)),
        ("Zvl::SingleRoiProfile::_CheckApplyRoiConditions", mismatch, lambda: region.apply_roi(shifted)),
    ]


@pytest.mark.parametrize("function, status, call", rows_of_failures(), ids=text_of)
def test_failures_name_their_function_and_status(function, status, call):
    with pytest.raises(zv.Error) as failure:
        call()
    assert (failure.value.function, failure.value.status) == (function, status)


@pytest.mark.parametrize("heights", [
    np.zeros((2, 2)), np.zeros((2, 2), np.uint16), np.zeros((2, 2), np.dtype(">i2")), [[1, 2]], "text",
    np.array([[None]]), np.zeros((2, 2), np.complex128),
])
def test_heights_of_another_type_are_refused(heights):
    with pytest.raises(TypeError):
        zv.Surface(heights)


def test_heights_of_another_shape_are_refused():
    with pytest.raises(ValueError):
        zv.Surface(np.zeros(3, np.int16))
    with pytest.raises(ValueError):
        zv.Profile(np.zeros((3, 3), np.int16))


@pytest.mark.parametrize("points", [
    np.zeros((3, 3)), np.zeros(4), np.zeros((2, 2, 2)), 1.0, [[1, 2], [3, 4], [5, 6, 7]],
])
def test_points_of_another_shape_are_refused(points):
    with pytest.raises((ValueError, TypeError)):
        zv.fit_line(points)


@pytest.mark.parametrize("points", ["text", [["a", "b"]], [[None, {}]]])
def test_points_that_are_no_numbers_are_refused(points):
    with pytest.raises((ValueError, TypeError)):
        zv.fit_line(points)


def test_none_is_no_surface_and_no_mask(surface, whole):
    rect, mask = whole
    for arguments in [(None, rect, mask), (surface, None, mask), (surface, rect, None)]:
        with pytest.raises(TypeError):
            zv.get_points_from_roi(*arguments)
    with pytest.raises(TypeError):
        zv.threshold_height(surface, 0, 1, None)


def test_a_region_of_none_is_nothing(surface):
    assert zv.apply_mask(surface, None).heights is None
    composition = zv.ComposedROI()
    composition.add(None)
    assert len(composition) == 0


@pytest.mark.parametrize("record", [
    (1, 2, 3), (1, 2, 3, 4, 5), "abcd", (1, 2, 3, 4.5), (1, 2, 3, None), (0, 0, 1 << 31, 1), 5,
])
def test_records_of_other_fields_are_refused(surface, whole, record):
    with pytest.raises(TypeError):
        zv.fit_plane(surface, record, whole[1])


def test_one_record_is_not_taken_for_another(surface, whole):
    with pytest.raises(TypeError):
        zv.fit_plane(surface, zv.Anchor(0, 0, 5, 4), whole[1])


def test_a_number_is_no_enumerator():
    with pytest.raises(TypeError):
        zv.fit_circle(np.eye(3)[:, :2], 0, 0)
    with pytest.raises(TypeError):
        zv.mask_operation(np.ones((1, 1), np.uint8), np.ones((1, 1), np.uint8), 1)


def test_classes_without_a_shape_cannot_be_made():
    for name in ("ROI", "SingleROI", "RoiProfile", "SingleRoiProfile", "ArithmeticsPixelOperation"):
        with pytest.raises(TypeError):
            getattr(zv, name)()


def test_a_class_of_the_users_own_is_no_region():
    class Mine(zv.ROI):
        pass

    with pytest.raises(TypeError):
        Mine()


def test_negative_counts_are_refused():
    with pytest.raises(TypeError):
        zv.fit_polynomial(np.zeros((3, 2)), -1)
    with pytest.raises(TypeError):
        zv.ProfileFilter(np.zeros(3, np.int16)).average(-3)


def test_an_output_that_cannot_take_the_line_is_refused():
    line = np.zeros(4, np.int16)
    read_only = np.zeros(4, np.int16)
    read_only.flags.writeable = False
    for out in (np.zeros(3, np.int16), np.zeros(4, np.int32), np.zeros(8, np.int16)[::2], read_only, [0, 0, 0, 0]):
        with pytest.raises(ValueError):
            zv.ProfileFilter(line, out)
