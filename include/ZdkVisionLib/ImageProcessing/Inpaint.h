#pragma once

/** @file
 *  Repair of images. This header needs the headers of OpenCV's core module, and what uses it is linked with that module;
 *  it is therefore no part of ZdkVisionLib.h. The CMake target `ZdkVisionLib::OpenCV` and the pkg-config module
 *  `zdkvisionlib-opencv` bring both along. */

#include <ZdkVisionLib/Export.h>

#include <opencv2/core.hpp>

namespace Zvl
{

/** How Inpaint() extends an image into its holes. */
enum InpaintMethod : int
{
    CV_INPAINT_NS = 0,   ///< along the isophotes, as a fluid would flow (Bertalmio, Bertozzi, Sapiro)
    CV_INPAINT_TELEA = 1 ///< by weighted extrapolation of values and gradients (Telea)
};

/** Repairs the masked cells of an image from the known ones around them. The holes are filled from their edge inwards,
 *  in the order in which a front that moves at unit speed arrives (fast marching), and each cell becomes a weighted mean
 *  over the known cells and those repaired before it that lie within @p range.
 *
 *  The first row and column of the image are read one cell further inside, and so are, in part, the neighbours of the
 *  last ones, so that gradients stay within the image. What a hole there holds may therefore show in the result: let it
 *  hold something plausible, and in a height map the mean height rather than the missing one. In images of a single row or
 *  column, that one is read in place of its missing neighbours.
 *
 *  @param source 8-bit with 1 or 3 channels, or 16-bit unsigned, 16-bit signed or 32-bit float with 1 channel, of two
 *         dimensions; it may be a part of another matrix. In float images, a result is not finite where cells around it
 *         are not
 *  @param mask 8-bit with 1 channel, as large as @p source: cells that are not 0 are repaired. Without any, or with
 *         nothing else, the result is a copy
 *  @param destination the result, made anew unless it has the size and type of @p source already. It may be @p source
 *         or @p mask, or share cells with them: the result is that of separate images
 *  @param range radius of the neighbourhood in cells, rounded to the nearest integer (the even one of two) and limited to
 *         1 to 100; what is not a number counts as 1
 *  @param flags one of #InpaintMethod
 *  @throws cv::Exception with the function name "Zvl::icvInpaint"
 *   - `cv::Error::StsUnmatchedSizes` when @p mask is not as large as @p source
 *   - `cv::Error::StsUnsupportedFormat` when an image or the mask is not of the types told
 *   - `cv::Error::StsBadArg` when @p flags is neither method and there is something to repair; @p destination is then a
 *     copy of @p source
 *   - `cv::Error::StsOutOfRange` when an image has 2^31 - 3 rows or columns or more, or 2^32 cells
 *  @throws cv::Exception with the function name "Zvl::Inpaint": `cv::Error::StsAssert`, "m.dims <= 2", when an image has more
 *          than two dimensions; @p destination is then as it was
 *  @throws cv::Exception `cv::Error::StsNoMem` when memory is exhausted, std::bad_alloc when it does not even suffice for
 *          that. When it does not suffice for the front, nothing is thrown, and @p destination is a copy.
 *
 *  Errors are raised by OpenCV's `cv::error`, and so are told to the handler that a host has given to `cv::redirectError`.
 *
 *  With n cells in the holes and around them, time proportional to n (log n + range^2), and some steps for each cell of the
 *  image. Working memory: up to 12 bytes for each cell of the image and 16 for each cell of the holes and their edges, for
 *  #CV_INPAINT_TELEA also for those within @p range. On the calling thread, but for what OpenCV does with threads of its
 *  own; calls on different images may run at once.
 *
 *  Sources: A. Telea, An Image Inpainting Technique Based on the Fast Marching Method, 2004. M. Bertalmio, A. L. Bertozzi,
 *  G. Sapiro, Navier-Stokes, Fluid Dynamics, and Image and Video Inpainting, 2001. J. A. Sethian, A Fast Marching Level Set
 *  Method for Monotonically Advancing Fronts, 1996. */
ZDK_VISION_EXPORT void Inpaint(cv::Mat& source, cv::Mat& mask, cv::Mat& destination, double range, int flags);

} // namespace Zvl
