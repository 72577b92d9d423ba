#include <ZdkVisionLib/Fitting/Fit.h>

#include "Common/Check.h"
#include "Fitting/LineSums.h"

namespace Zvl
{

void FitLine(const qPoint64f* points, const int* excluded, std::size_t count, double* slope, double* intercept)
{
    ZVL_REQUIRE("Zvl::FitLine", slope != nullptr && intercept != nullptr);
    const std::size_t present = points == nullptr ? 0 : count;
    const Line line = SolveLine(SumPoints(points, excluded, present), points, excluded, present);
    *slope = line.slope;
    *intercept = line.intercept;
}

} // namespace Zvl
