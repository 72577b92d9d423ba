#pragma once

/** @file
 *  The weights of a Gaussian window over a line. */

#include "Filter/Line.h"

#include <vector>

namespace Zvl
{

/** The weights under a Gaussian, and the weighted mean at one cell as it is defined: weights of missing cells are 0,
 *  the others are divided by their sum, and products are added from the left.
 *
 *  Of a window that is longer than the line, only the weights that can meet a cell are kept. */
class GaussianKernel
{
public:
    /** @param size weights, odd
     *  @param sigma in cells; 0 or less stands for the value that goes with @p size
     *  @param begin, end the cells */
    GaussianKernel(std::size_t size, double sigma, const std::int16_t* begin, const std::int16_t* end);

    /** The weights that are kept, an odd number of them about the centre. */
    const std::vector<double>& Taps() const { return kernel; }

    /** Index of the cell that the first kept weight meets in the window of result @p index. The window's centre is one
     *  cell to the left of its result. */
    std::ptrdiff_t FirstCell(std::size_t index) const;

    /** True unless the Gaussian itself could not be computed: sigma is not a number, or its square is 0. */
    bool IsNumber() const;

    /** The result at @p index, in as many steps as there are weights. */
    std::int16_t Apply(std::size_t index);

    /** Divides the weights by their sum.
     *  @throws Zo::Exception #STATUS_ABORTED when the sum is 0 or below */
    static void Normalize(std::vector<double>& values);

private:
    static void DivideBySum(std::vector<double>& values, double sum);
    void Compute(std::size_t size, double sigma);

    const std::int16_t* begin;
    const std::int16_t* end;
    std::size_t reach; ///< weights kept on either side of the centre
    std::vector<double> kernel;
    std::vector<double> weights; ///< of one position
};

} // namespace Zvl
