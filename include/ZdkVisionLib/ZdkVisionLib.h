#pragma once

/** @file
 *  The whole library in one include, but for Common/Mat.h: that header needs OpenCV's, and this one needs no header of
 *  another library. */

#include <ZdkVisionLib/Alignment/Anchor.h>
#include <ZdkVisionLib/Alignment/RefFrame.h>
#include <ZdkVisionLib/Arithmetic/Arithmetic.h>
#include <ZdkVisionLib/Common/Common.h>
#include <ZdkVisionLib/Common/MaskProfile.h>
#include <ZdkVisionLib/Common/MaskUniformSurface.h>
#include <ZdkVisionLib/Filter/Filter.h>
#include <ZdkVisionLib/Filter/ProfileFilter.h>
#include <ZdkVisionLib/Filter/SurfaceDecimate.h>
#include <ZdkVisionLib/Filter/SurfaceFillGap.h>
#include <ZdkVisionLib/Filter/SurfaceFilter.h>
#include <ZdkVisionLib/Fitting/Fit.h>
#include <ZdkVisionLib/Geometry/Geometry.h>
#include <ZdkVisionLib/Utils/Utils.h>
#include <ZdkVisionLib/platform/ZoApi.h>
#include <ZdkVisionLib/platform/ZoVision.h>
#include <ZdkVisionLib/platform/qApi.h>
#include <ZdkVisionLib/platform/qVision.h>
