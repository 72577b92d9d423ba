#include "Fitting/ZoneGeometry.h"

#include "Common/Check.h"

namespace Zvl
{

void RequireUsablePoints(const char* function, const qPoint64f* points, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
    {
        if (!IsUsable(points[i]))
        {
            ZVL_THROW(function, STATUS_BAD_DATA);
        }
    }
}

} // namespace Zvl
