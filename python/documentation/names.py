"""What the names of the C++ interface are called in Python, and which of them have no counterpart there."""

import re

_SPECIAL = {
    "Zvl::MergeMasks": "merge_masks",
    "Zvl::zvlMat": "Mat",
    "Zvl::zvlMat::GetMat": "Mat.pixels",
    "Zvl::zvlMat::GetOffset": "Mat.offset",
    "Zvl::zvlMat::GetScale": "Mat.scale",
    "Zvl::zvlMat::GetSize": "Mat.size",
    "Zvl::zvlMat::GetqArray2Ofq16s": "Mat.get_heights",
    "Zvl::zvlMat::operator=": "Mat",
    "Zvl::ROI::GetBoundingBox": "ROI.bounding_box",
    "Zvl::ROI::GetBoundingRegion": "ROI.bounding_region",
    "Zvl::ROI::GetMask": "ROI.mask",
    "Zvl::ROI::GetMaskValidity": "ROI.mask_valid",
    "Zvl::ROI::GetBoundingBoxValidity": "ROI.bounding_box_valid",
    "Zvl::RoiProfile::GetBoundingSegment": "RoiProfile.bounding_segment",
    "Zvl::RoiProfile::GetMask": "RoiProfile.mask",
    "Zvl::RoiProfile::IsBoundingSegmentValid": "RoiProfile.bounding_segment_valid",
    "Zvl::RoiProfile::IsMaskValid": "RoiProfile.mask_valid",
    "Zvl::ComposedRoiProfile::IsBoundingSegmentValid": "ComposedRoiProfile.bounding_segment_valid",
    "Zvl::ComposedRoiProfile::IsMaskValid": "ComposedRoiProfile.mask_valid",
    "Zvl::ComposedROI::Begin": "ComposedROI.__iter__",
    "Zvl::ComposedROI::End": "ComposedROI.__iter__",
    "Zvl::ComposedROI::GetRoiCount": "ComposedROI.__len__",
    "Zvl::ComposedRoiProfile::Begin": "ComposedRoiProfile.__iter__",
    "Zvl::ComposedRoiProfile::End": "ComposedRoiProfile.__iter__",
    "Zvl::ComposedRoiProfile::GetRoiCount": "ComposedRoiProfile.__len__",
    "Zvl::RefFrame::operator*": "RefFrame.__mul__",
    "Zvl::ArithmeticsPixelOperationFactory::Create": "ArithmeticsPixelOperation.create",
    "Zvl::ArithmeticsPixelOperation::Operate": "ArithmeticsPixelOperation.operate_heights",
    "Zvl::ArithmeticsPixelAdd::Operate": "ArithmeticsPixelAdd.operate_heights",
    "Zvl::ArithmeticsPixelSubtract::Operate": "ArithmeticsPixelSubtract.operate_heights",
    "Zvl::ArithmeticsPixelAverage::Operate": "ArithmeticsPixelAverage.operate_heights",
    "Zvl::GetPointsFromROI": "get_points_from_roi",
    "Zvl::GetPointsFromROI<qPoint3d64f>": "get_points_from_roi",
    "Zvl::GetPointsFromROI<qPoint3d32s>": "get_cells_from_roi",
    "Zvl::GetPointsFromROI<double>": "get_heights_from_roi",
    "Zvl::GetPointsFromROI<short>": "get_counts_from_roi",
    "Zvl::GetPointsFromROI<unsigned char>": "get_intensities_from_roi",
    "Zvl::ThresholdPercentile": "threshold_percentile_heights",
    "Zvl::ThresholdPercentile<short>": "threshold_percentile_heights",
    "Zvl::ThresholdPercentile<double>": "threshold_percentile_distances",
    "Zvl::ThresholdPercentile<unsigned char>": "threshold_percentile_intensities",
    "qPlane3d64f": "Plane",
    "Zo::Exception": "Error",
    "Zo::Exception::Exception": "Error",
    "Zo::Exception::GetStatus": "Error.status",
    "Zo::Exception::GetFunction": "Error.function",
    "Zo::Exception::GetFile": "Error.file",
    "Zo::Exception::GetLine": "Error.line",
    "Zo::Exception::GetMessage": "Error.message",
    "Zo::Exception::what": "Error.__str__",
    "ZvSurfaceMsg_Construct": "SurfaceMessage",
    "xxZvSurfaceMsg_type": "SurfaceMessage",
    "ZvSurfaceMsg_Length": "SurfaceMessage.rows",
    "ZvSurfaceMsg_Width": "SurfaceMessage.columns",
    "ZvSurfaceMsg_Scale": "SurfaceMessage.scale",
    "ZvSurfaceMsg_SetScale": "SurfaceMessage.scale",
    "ZvSurfaceMsg_SetOffset": "SurfaceMessage.set_offset",
    "ZvSurfaceMsg_OffsetForRef": "SurfaceMessage.get_offset",
    "ZvSurfaceMsg_PointsArray": "SurfaceMessage.heights",
    "Zvl::GetSurfaceItemOffset": "SurfaceMessage.get_offset",
    "qThreadPool_Default": "worker_count",
    "qThreadPool_Count": "worker_count",
    "qThreadPool_SetCount": "set_worker_count",
    "qArray1_Construct": "empty",
    "qArray2_Construct": "empty",
}

_HANDLES = "Handles and their counts: a NumPy array over cells holds one count of them."
_PLATFORM = "Arrays, lists, streams and jobs of the platform: NumPy and Python have their own."
_STEP = "A step inside a class, which is reached through its public calls."
_ALLOCATOR = "Results of the module live in the default heap."

# Patterns of whole C++ names without a counterpart, and why.
LEFT_OUT = {
    r"(typeinfo|typeinfo name|vtable) for .*": "Tables of the compiler.",
    r"Zvl::(\w+::)+_\w+": _STEP,
    r"Zvl::\w+Filter::Impl::\w+": _STEP,
    r"Zvl::(SingleROI::(DropCaches|RequireMapping|SetBounds)|zvlMat::RegionClipXY|zvlMat::RegionMergeXY)": _STEP,
    r"Zvl::SingleRoiProfile::(RequireMapping|SelectHeights|SelectPairs|SetBounds)": _STEP,
    r"Zvl::SingleROI::SetAllocator|qAlloc_\w+|xxqAlloc_type": _ALLOCATOR,
    r"Zvl::RetrieveSurfaceInputData": "A view of borrowed handles; a Surface has the same as attributes.",
    r"Zvl::CheckAndReserveqArrayList<.*>|Zvl::GetqType<.*>": _PLATFORM,
    r"Zo::Test|Zo::Exception::~Exception|xqApiLib_\w+": "An exception that leaves the library becomes an Error.",
    r"xqObject_\w+|qObject_\w+|xqCastClass_\w+|xxqObject_type": _HANDLES,
    r"qArray1_\w+|x?qArray2_\w+|qArrayList_\w+|qParallel\w+|qRandomSize|qType_Size": _PLATFORM,
    r"qMem\w+|x?qSerializer_\w+|qMatrix_\w+|qL3dTransform3d_Identity": _PLATFORM,
    r"xxq(8u|16u|16s|32s|64s|64f|Bool|Point\w+|Array1|Array2|ArrayList|Memory|Serializer)_type": _PLATFORM,
}


def snake_case(name):
    """`FitCircleByRLTS` becomes `fit_circle_by_rlts`, and `Rect2dTo3d` becomes `rect2d_to_3d`."""
    name = re.sub(r"(To)(\d)", r"\1_\2", name)
    name = re.sub(r"([a-z0-9])([A-Z])", r"\1_\2", name)
    return re.sub(r"([A-Z]+)([A-Z][a-z])", r"\1_\2", name).lower()


def reason_to_leave_out(name):
    """Why the C++ name has no counterpart in Python, or None when it has one."""
    if name in _SPECIAL:
        return None
    return next((reason for pattern, reason in LEFT_OUT.items() if re.fullmatch(pattern, name)), None)


def python_name(name):
    """The name in Python, dotted below the module, of a qualified C++ name; `Class::Class` is the class."""
    if name in _SPECIAL:
        return _SPECIAL[name]
    parts = re.sub(r"<.*>$", "", name).split("::")[1:]
    if len(parts) == 2 and parts[1].lstrip("~") == parts[0]:
        return python_name(f"Zvl::{parts[0]}")
    if len(parts) == 2:
        if parts[1] in ("GetShape", "GetShapeType"):
            parts[1] = parts[1].removeprefix("Get")
        return python_name(f"Zvl::{parts[0]}") + "." + snake_case(parts[1])
    return parts[0] if _is_class(parts[0]) else snake_case(parts[0])


_CLASS = re.compile(
    r"(Composed|Single|Polygon|Rectangle|Ellipse|Circle|Surface|Intensity)?(ROI|RoiProfile)|Surface|Profile|"
    r"SurfaceSlice|RefFrame|Arithmetics|ArithmeticsPixel\w+|ProfileFilter|SurfaceFilter|SurfaceFillGapParams|Anchor|"
    r"(Rect|Region|AnnularSector|EllipticalSector)[23]d|RunLength|MaskType|MaskOperationType|CircleType|InpaintMethod|"
    r"ArithmeticOperator|ArithmeticLogic")


def _is_class(name):
    return _CLASS.fullmatch(name) is not None
